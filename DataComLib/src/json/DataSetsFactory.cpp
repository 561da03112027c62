#include "datacom/DataSetsFactory.h"

#include "json/DataSets.h"

namespace datacom {

IDataSets* DataSetsFactory::createDataSets() {
    return new DataSets();
}

}  // namespace datacom
