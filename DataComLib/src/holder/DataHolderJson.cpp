// The JSON family: every operation forwarded unchanged to the store made by
// createDataSets. Without a store (its creation failed and was logged) the
// operations answer FC_UNAVAILABLE, or false.
#include "datacom/DataHolder.h"
#include "datacom/DataSetsFactory.h"
#include "holder/DataHolderImpl.h"

namespace datacom {

IDataSets* DataHolder::getDataSets() {
    return impl->dataSets_json.get();
}

IDataSets* DataHolder::createDataSets() {
    return DataSetsFactory().createDataSets();
}

Fcodes DataHolder::findDataSetWithComponent(std::string& dataSetName, const std::string& component) {
    return impl->dataSets_json ? impl->dataSets_json->findDataSetWithComponent(dataSetName, component) : FC_UNAVAILABLE;
}

bool DataHolder::hasInstance(const std::string& dataSet, const std::string& component, int index) {
    return impl->dataSets_json ? impl->dataSets_json->hasInstance(dataSet, component, index) : false;
}

bool DataHolder::hasInstance(const std::string& dataSet, const std::string& component, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->hasInstance(dataSet, component, key) : false;
}

Fcodes DataHolder::getProperties(const std::string& dataSet, const std::string& component,
                                 std::vector<std::string>& names) {
    return impl->dataSets_json ? impl->dataSets_json->getProperties(dataSet, component, names) : FC_UNAVAILABLE;
}

Fcodes DataHolder::getInstances(const std::string& dataSet, const std::string& component,
                                std::vector<std::string>& keys) {
    return impl->dataSets_json ? impl->dataSets_json->getInstances(dataSet, component, keys) : FC_UNAVAILABLE;
}

Fcodes DataHolder::getIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                               int& value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->getIntParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                               int& value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->getIntParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                std::string& value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->getTextParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                std::string& value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->getTextParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                bool& value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->getBoolParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                bool& value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->getBoolParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::setIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                               int value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->setIntParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::setIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                               int value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->setIntParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::setTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                const std::string& value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->setTextParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::setTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                const std::string& value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->setTextParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::setBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                bool value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->setBoolParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::setBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                bool value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->setBoolParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::loadDataSet(const std::string& path) {
    return impl->dataSets_json ? impl->dataSets_json->loadDataSet(path) : FC_UNAVAILABLE;
}

Fcodes DataHolder::loadDataSet(const std::string& name, const std::string& path) {
    return impl->dataSets_json ? impl->dataSets_json->loadDataSet(name, path) : FC_UNAVAILABLE;
}

Fcodes DataHolder::storeDataSet(const std::string& name, const std::string& path) {
    return impl->dataSets_json ? impl->dataSets_json->storeDataSet(name, path) : FC_UNAVAILABLE;
}

Fcodes DataHolder::deleteDataSet(const std::string& name) {
    return impl->dataSets_json ? impl->dataSets_json->deleteDataSet(name) : FC_UNAVAILABLE;
}

Fcodes DataHolder::updateDataSet(const std::string& source, const std::string& reference, bool keepExtras,
                                 bool addMissing, bool takeReferenceInstances) {
    return impl->dataSets_json
               ? impl->dataSets_json->updateDataSet(source, reference, keepExtras, addMissing, takeReferenceInstances)
               : FC_UNAVAILABLE;
}

Fcodes DataHolder::addInstance(const std::string& dataSet, const std::string& component, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->addInstance(dataSet, component, key) : FC_UNAVAILABLE;
}

Fcodes DataHolder::appendInstance(const std::string& dataSet, const std::string& component, int& index) {
    return impl->dataSets_json ? impl->dataSets_json->appendInstance(dataSet, component, index) : FC_UNAVAILABLE;
}

Fcodes DataHolder::removeInstance(const std::string& dataSet, const std::string& component, int index) {
    return impl->dataSets_json ? impl->dataSets_json->removeInstance(dataSet, component, index) : FC_UNAVAILABLE;
}

Fcodes DataHolder::removeInstance(const std::string& dataSet, const std::string& component, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->removeInstance(dataSet, component, key) : FC_UNAVAILABLE;
}

Fcodes DataHolder::clearComponent(const std::string& dataSet, const std::string& component) {
    return impl->dataSets_json ? impl->dataSets_json->clearComponent(dataSet, component) : FC_UNAVAILABLE;
}

Fcodes DataHolder::getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                           const std::string& property, const std::string& value,
                                           std::vector<std::string>& keys) {
    return impl->dataSets_json ? impl->dataSets_json->getInstancesByParameter(dataSet, component, property, value, keys)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                           const std::string& property, int value, std::vector<std::string>& keys) {
    return impl->dataSets_json ? impl->dataSets_json->getInstancesByParameter(dataSet, component, property, value, keys)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getInstancesByKey(const std::string& dataSet, const std::string& component, const std::string& key,
                                     std::vector<std::string>& keys) {
    return impl->dataSets_json ? impl->dataSets_json->getInstancesByKey(dataSet, component, key, keys) : FC_UNAVAILABLE;
}

Fcodes DataHolder::getComponentPropertyDefault(const std::string& dataSet, const std::string& component,
                                               const std::string& property, std::string& defaultValue) {
    return impl->dataSets_json
               ? impl->dataSets_json->getComponentPropertyDefault(dataSet, component, property, defaultValue)
               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getNewIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                  int& value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->getNewIntParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getNewIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                  int& value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->getNewIntParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getNewTextParam(const std::string& dataSet, const std::string& component,
                                   const std::string& property, std::string& value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->getNewTextParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getNewTextParam(const std::string& dataSet, const std::string& component,
                                   const std::string& property, std::string& value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->getNewTextParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getNewBoolParam(const std::string& dataSet, const std::string& component,
                                   const std::string& property, bool& value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->getNewBoolParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::getNewBoolParam(const std::string& dataSet, const std::string& component,
                                   const std::string& property, bool& value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->getNewBoolParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::initIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                int value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->initIntParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::initIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                int value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->initIntParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::initTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 const std::string& value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->initTextParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::initTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 const std::string& value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->initTextParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::initBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 bool value, int index) {
    return impl->dataSets_json ? impl->dataSets_json->initBoolParam(dataSet, component, property, value, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::initBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 bool value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->initBoolParam(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::initInt64Param(const std::string& dataSet, const std::string& component, const std::string& property,
                                  int64_t value, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->initInt64Param(dataSet, component, property, value, key)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::commit() {
    return impl->dataSets_json ? impl->dataSets_json->commit() : FC_UNAVAILABLE;
}

Fcodes DataHolder::commitComponent(const std::string& dataSet, const std::string& component) {
    return impl->dataSets_json ? impl->dataSets_json->commitComponent(dataSet, component) : FC_UNAVAILABLE;
}

Fcodes DataHolder::rollback() {
    return impl->dataSets_json ? impl->dataSets_json->rollback() : FC_UNAVAILABLE;
}

Fcodes DataHolder::rollbackComponent(const std::string& dataSet, const std::string& component) {
    return impl->dataSets_json ? impl->dataSets_json->rollbackComponent(dataSet, component) : FC_UNAVAILABLE;
}

Fcodes DataHolder::touchDataSet(const std::string& dataSet) {
    return impl->dataSets_json ? impl->dataSets_json->touchDataSet(dataSet) : FC_UNAVAILABLE;
}

Fcodes DataHolder::untouchDataSet(const std::string& dataSet) {
    return impl->dataSets_json ? impl->dataSets_json->untouchDataSet(dataSet) : FC_UNAVAILABLE;
}

Fcodes DataHolder::touchComponent(const std::string& dataSet, const std::string& component) {
    return impl->dataSets_json ? impl->dataSets_json->touchComponent(dataSet, component) : FC_UNAVAILABLE;
}

Fcodes DataHolder::untouchComponent(const std::string& dataSet, const std::string& component) {
    return impl->dataSets_json ? impl->dataSets_json->untouchComponent(dataSet, component) : FC_UNAVAILABLE;
}

bool DataHolder::isChanged() {
    return impl->dataSets_json ? impl->dataSets_json->isChanged() : false;
}

bool DataHolder::isChangedDataSet(const std::string& dataSet) {
    return impl->dataSets_json ? impl->dataSets_json->isChangedDataSet(dataSet) : false;
}

bool DataHolder::isChangedComponent(const std::string& dataSet, const std::string& component) {
    return impl->dataSets_json ? impl->dataSets_json->isChangedComponent(dataSet, component) : false;
}

bool DataHolder::isChangedInstance(const std::string& dataSet, const std::string& component, int index) {
    return impl->dataSets_json ? impl->dataSets_json->isChangedInstance(dataSet, component, index) : false;
}

bool DataHolder::isChangedInstance(const std::string& dataSet, const std::string& component, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->isChangedInstance(dataSet, component, key) : false;
}

bool DataHolder::isChangedProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int index) {
    return impl->dataSets_json ? impl->dataSets_json->isChangedProperty(dataSet, component, property, index) : false;
}

bool DataHolder::isChangedProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->isChangedProperty(dataSet, component, property, key) : false;
}

Fcodes DataHolder::untouchProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int index) {
    return impl->dataSets_json ? impl->dataSets_json->untouchProperty(dataSet, component, property, index)
                               : FC_UNAVAILABLE;
}

Fcodes DataHolder::untouchProperty(const std::string& dataSet, const std::string& component,
                                   const std::string& property, const std::string& key) {
    return impl->dataSets_json ? impl->dataSets_json->untouchProperty(dataSet, component, property, key)
                               : FC_UNAVAILABLE;
}

}  // namespace datacom
