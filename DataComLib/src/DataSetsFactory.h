#pragma once

#include "IDataSetFactory.h"

// The production factory: makes a `DataSets` store.
class DataSetsFactory : public IDataSetFactory {
public:
    IDataSets* createDataSets() override;
};
