#include "json/DataSetsFactory.h"

#include "json/DataSets.h"

IDataSets* DataSetsFactory::createDataSets() {
    return new DataSets();
}
