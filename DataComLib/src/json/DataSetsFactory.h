#pragma once

#include "json/IDataSetFactory.h"

// The production factory: makes a `DataSets` store.
class DataSetsFactory : public IDataSetFactory {
public:
    IDataSets* createDataSets() override;
};
