// DataSets: instances of a component — size, add, append, remove, clear, has.
#include "json/DataSets.h"
#include "json/JsonDataSetKeys.h"

namespace datacom {

using dsjson::member;
using dsjson::Selector;

namespace {

// The array without one element, later ones moved down. Pending arrays are
// sparse (jsoncpp stores only the indexes written), which removeIndex does
// not handle, so the copy reads every index through const access.
Json::Value withoutElement(const Json::Value& list, int index) {
    Json::Value shifted(Json::arrayValue);
    for (Json::ArrayIndex i = 0; i < list.size(); ++i)
        if (static_cast<int>(i) != index)
            shifted[shifted.size()] = list[i];
    return shifted;
}

}  // namespace

Fcodes DataSets::getComponentSize(const std::string& dataSet, const std::string& component, int& size) {
    return guarded("getComponentSize", [&] {
        const Json::Value* comp = committedComponent(dataSet, component);
        if (!comp) {
            DBG(DBG_ERROR) << "getComponentSize: No such name dataset=" << dataSet << " comp=" << component;
            return FC_NO_SUCH_NAME;
        }
        const Json::Value* instances = member(*comp, jsonkeys::INSTANCES);
        if (instances && (instances->isArray() || instances->isObject()))
            size = static_cast<int>(instances->size());
        else
            size = member(*comp, jsonkeys::INSTANCE) ? 1 : 0;
        return FC_OK;
    });
}

Fcodes DataSets::addInstance(const std::string& dataSet, const std::string& component, const std::string& key) {
    return guarded("addInstance", [&] {
        Json::Value* comp = writableComponent(dataSet, component);
        if (!comp || !comp->isObject()) {
            DBG(DBG_ERROR) << "addInstance: No such name dataset=" << dataSet << " comp=" << component;
            return FC_NO_SUCH_NAME;
        }
        const Json::Value* instances = member(*comp, jsonkeys::INSTANCES);
        if (instances && !instances->isObject()) {
            DBG(DBG_ERROR) << "addInstance: Couldn't add to comp=" << component
                           << " instances those are not an object (by key)";
            return FC_WRONG_TYPE;
        }
        // The empty key names the single instance, which addInstance does not make.
        if (key.empty() || member(instances, key)) {
            DBG(DBG_ERROR) << "addInstance: Bad or existing key=" << key << " in comp=" << component;
            return FC_BAD_VALUE;
        }
        (*comp)[jsonkeys::INSTANCES][key] = dsjson::defaultInstance(*comp);
        return FC_OK;
    });
}

Fcodes DataSets::appendInstance(const std::string& dataSet, const std::string& component, int& index) {
    return guarded("appendInstance", [&] {
        Json::Value* comp = writableComponent(dataSet, component);
        if (!comp || !comp->isObject()) {
            DBG(DBG_ERROR) << "appendInstance: No such name dataset=" << dataSet << " comp=" << component;
            return FC_NO_SUCH_NAME;
        }
        const Json::Value* instances = member(*comp, jsonkeys::INSTANCES);
        if (instances && !instances->isArray()) {
            DBG(DBG_ERROR) << "addInstance: Couldn't append to comp=" << component
                           << " values those are not an array (by index)";
            return FC_WRONG_TYPE;
        }
        Json::Value& list = (*comp)[jsonkeys::INSTANCES];
        if (list.isNull())
            list = Json::Value(Json::arrayValue);
        list.append(dsjson::defaultInstance(*comp));
        index = static_cast<int>(list.size()) - 1;
        return FC_OK;
    });
}

Fcodes DataSets::removeInstance(const std::string& dataSet, const std::string& component, int index) {
    return guarded("removeInstance", [&] {
        Json::Value* comp = writableComponent(dataSet, component);
        if (!comp) {
            DBG(DBG_ERROR) << "removeInstance: No such name dataset=" << dataSet << " comp=" << component;
            return FC_NO_SUCH_NAME;
        }
        if (!dsjson::instanceOf(*comp, Selector::byIndex(index))) {
            DBG(DBG_ERROR) << "removeInstance: No such instance name dataset=" << dataSet << " comp=" << component
                           << " ind=" << index;
            return FC_NO_SUCH_NAME;
        }
        Json::Value& list = (*comp)[jsonkeys::INSTANCES];
        list = withoutElement(list, index);
        // Pending values follow their instances: later indexes shift down too.
        Json::Value* pending = pendingComponent(dataSet, component);
        Json::Value* pendingList = member(pending, jsonkeys::INSTANCES);
        if (pendingList && pendingList->isArray())
            *pendingList = withoutElement(*pendingList, index);
        prunePending(dataSet, component);
        return FC_OK;
    });
}

Fcodes DataSets::removeInstance(const std::string& dataSet, const std::string& component, const std::string& key) {
    return guarded("removeInstance", [&] {
        Json::Value* comp = writableComponent(dataSet, component);
        if (!comp) {
            DBG(DBG_ERROR) << "removeInstance: No such name dataset=" << dataSet << " comp=" << component;
            return FC_NO_SUCH_NAME;
        }
        if (!dsjson::instanceOf(*comp, Selector::byKey(key))) {
            DBG(DBG_ERROR) << "removeInstance: No such instance name dataset=" << dataSet << " comp=" << component
                           << " key=" << key;
            return FC_NO_SUCH_NAME;
        }
        Json::Value* pending = pendingComponent(dataSet, component);
        if (key.empty()) {
            comp->removeMember(jsonkeys::INSTANCE);
            if (pending && pending->isObject())
                pending->removeMember(jsonkeys::INSTANCE);
        } else {
            (*comp)[jsonkeys::INSTANCES].removeMember(key);
            Json::Value* pendingMap = member(pending, jsonkeys::INSTANCES);
            if (pendingMap && pendingMap->isObject())
                pendingMap->removeMember(key);
        }
        prunePending(dataSet, component);
        return FC_OK;
    });
}

Fcodes DataSets::clearComponent(const std::string& dataSet, const std::string& component) {
    return guarded("clearComponent", [&] {
        Json::Value* comp = writableComponent(dataSet, component);
        if (!comp) {
            DBG(DBG_ERROR) << "clearComponent: No such name dataset=" << dataSet << " comp=" << component;
            return FC_NO_SUCH_NAME;
        }
        Json::Value* instances = member(*comp, jsonkeys::INSTANCES);
        if (instances && (instances->isArray() || instances->isObject()))
            *instances = Json::Value(instances->type());
        Json::Value* pending = pendingComponent(dataSet, component);
        if (pending && pending->isObject())
            pending->removeMember(jsonkeys::INSTANCES);
        prunePending(dataSet, component);
        return FC_OK;
    });
}

bool DataSets::hasInstance(const std::string& dataSet, const std::string& component, const std::string& key) {
    return guarded("hasInstance", [&] {
        const Json::Value* comp = committedComponent(dataSet, component);
        return comp && dsjson::instanceOf(*comp, Selector::byKey(key));
    });
}

bool DataSets::hasInstance(const std::string& dataSet, const std::string& component, int index) {
    return guarded("hasInstance", [&] {
        const Json::Value* comp = committedComponent(dataSet, component);
        return comp && dsjson::instanceOf(*comp, Selector::byIndex(index));
    });
}

}  // namespace datacom
