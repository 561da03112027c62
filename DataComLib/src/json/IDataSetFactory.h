#pragma once

#include "json/IDataSets.h"

// Makes the JSON dataset store for a data holder; a test can hand the holder
// a factory of its own.
class IDataSetFactory {
public:
    virtual ~IDataSetFactory() = default;
    // A new, empty store, owned by the caller.
    virtual IDataSets* createDataSets() = 0;
};
