#include "ports/HolderStore.h"

#include "datacom/DataHolder.h"

using namespace datacom;

Fcodes HolderStore::getTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 std::string& value, const std::string& row) {
    return holder.getTextParam(dataSet, component, property, value, row);
}
Fcodes HolderStore::getTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 std::string& value, int index) {
    return holder.getTextParam(dataSet, component, property, value, index);
}
Fcodes HolderStore::getIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                int& value, const std::string& row) {
    return holder.getIntParam(dataSet, component, property, value, row);
}
Fcodes HolderStore::getBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 bool& value, const std::string& row) {
    return holder.getBoolParam(dataSet, component, property, value, row);
}
Fcodes HolderStore::getNewTextParam(const std::string& dataSet, const std::string& component,
                                    const std::string& property, std::string& value, const std::string& row) {
    return holder.getNewTextParam(dataSet, component, property, value, row);
}
Fcodes HolderStore::getNewIntParam(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int& value, const std::string& row) {
    return holder.getNewIntParam(dataSet, component, property, value, row);
}
Fcodes HolderStore::getNewBoolParam(const std::string& dataSet, const std::string& component,
                                    const std::string& property, bool& value, const std::string& row) {
    return holder.getNewBoolParam(dataSet, component, property, value, row);
}
Fcodes HolderStore::initTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                  const std::string& value, const std::string& row) {
    return holder.initTextParam(dataSet, component, property, value, row);
}
Fcodes HolderStore::initIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 int value, const std::string& row) {
    return holder.initIntParam(dataSet, component, property, value, row);
}
Fcodes HolderStore::initInt64Param(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int64_t value, const std::string& row) {
    return holder.initInt64Param(dataSet, component, property, value, row);
}
Fcodes HolderStore::initBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                  bool value, const std::string& row) {
    return holder.initBoolParam(dataSet, component, property, value, row);
}
bool HolderStore::hasInstance(const std::string& dataSet, const std::string& component, const std::string& row) {
    return holder.hasInstance(dataSet, component, row);
}
bool HolderStore::hasInstance(const std::string& dataSet, const std::string& component, int index) {
    return holder.hasInstance(dataSet, component, index);
}
Fcodes HolderStore::getInstances(const std::string& dataSet, const std::string& component,
                                 std::vector<std::string>& rows) {
    return holder.getInstances(dataSet, component, rows);
}
Fcodes HolderStore::getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                            const std::string& property, const std::string& value,
                                            std::vector<std::string>& rows) {
    return holder.getInstancesByParameter(dataSet, component, property, value, rows);
}
void HolderStore::lock() {
    holder.lock();
}
void HolderStore::unlock() {
    holder.unlock();
}
Fcodes HolderStore::requestGetTextParam(const std::string& socketPath, const std::string& dataSet,
                                        const std::string& component, const std::string& property, std::string& value,
                                        const std::string& row) {
    return holder.requestGetTextParam(socketPath, dataSet, component, property, value, row);
}
Fcodes HolderStore::requestGetIntParam(const std::string& socketPath, const std::string& dataSet,
                                       const std::string& component, const std::string& property, int& value,
                                       const std::string& row) {
    return holder.requestGetIntParam(socketPath, dataSet, component, property, value, row);
}
Fcodes HolderStore::requestCommand(const std::string& socketPath, const std::string& command, std::string& result,
                                   unsigned timeoutSec, unsigned tries) {
    return holder.requestCommand(socketPath, command, result, timeoutSec, tries);
}
