#pragma once

#include "datacom/Export.h"

#include "datacom/IDataSets.h"

namespace datacom {

/// Makes the JSON dataset store a data holder installs: a `DataSets`. A holder
/// that needs another store (a test's, say) overrides
/// DataHolder::createDataSets instead.
class DATACOM_API DataSetsFactory {
public:
    /// A new, empty store, owned by the caller.
    IDataSets* createDataSets();
};

}  // namespace datacom
