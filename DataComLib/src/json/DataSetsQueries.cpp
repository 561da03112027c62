// DataSets: read-only queries over the committed documents — property names,
// instance lists and filters, property definitions — and the request slots.
#include "json/DataSets.h"
#include "json/JsonDataSetKeys.h"

namespace datacom {

using dsjson::member;

namespace {

// Calls `visit(key, instance)` for every instance of a component: keys of an
// "instances" object, indexes as decimal text of an array, "" for "instance".
template <typename Visit>
void forEachInstance(const Json::Value& component, Visit&& visit) {
    const Json::Value* instances = member(component, jsonkeys::INSTANCES);
    if (instances && instances->isObject()) {
        for (auto it = instances->begin(); it != instances->end(); ++it)
            visit(it.name(), *it);
    } else if (instances && instances->isArray()) {
        for (Json::ArrayIndex i = 0; i < instances->size(); ++i)
            visit(std::to_string(i), (*instances)[i]);
    }
    const Json::Value* single = member(component, jsonkeys::INSTANCE);
    if (single)
        visit(std::string(), *single);
}

// Fills `keys` with the instances of `comp` that `wanted(key, instance)`
// accepts; an unknown component is logged with `op` and gives FC_NO_SUCH_NAME.
template <typename Wanted>
Fcodes collectInstances(const char* op, const Json::Value* comp, const std::string& dataSet,
                        const std::string& component, std::vector<std::string>& keys, Wanted&& wanted) {
    if (!comp) {
        DBG(DBG_ERROR) << op << ": No such name dataset=" << dataSet << " comp=" << component;
        return FC_NO_SUCH_NAME;
    }
    keys.clear();
    forEachInstance(*comp, [&](const std::string& key, const Json::Value& instance) {
        if (wanted(key, instance))
            keys.push_back(key);
    });
    return FC_OK;
}

// A value as text: strings bare, null empty, anything else as jsoncpp writes it.
std::string valueText(const Json::Value& value) {
    if (value.isString())
        return value.asString();
    return value.isNull() ? std::string() : dsjson::compactText(value);
}

}  // namespace

Fcodes DataSets::getProperties(const std::string& dataSet, const std::string& component,
                               std::vector<std::string>& names) {
    return guarded("getProperties", [&] {
        const Json::Value* properties = member(committedComponent(dataSet, component), jsonkeys::PROPERTIES);
        if (!properties || !properties->isObject()) {
            DBG(DBG_ERROR) << "getProperties: No such name dataset=" << dataSet << " comp=" << component;
            return FC_NO_SUCH_NAME;
        }
        names = properties->getMemberNames();
        return FC_OK;
    });
}

Fcodes DataSets::getInstances(const std::string& dataSet, const std::string& component,
                              std::vector<std::string>& keys) {
    return guarded("getInstances", [&] {
        return collectInstances("getInstances", committedComponent(dataSet, component), dataSet, component, keys,
                                [](const std::string&, const Json::Value&) { return true; });
    });
}

Fcodes DataSets::getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                         const std::string& property, const std::string& value,
                                         std::vector<std::string>& keys) {
    return guarded("getInstancesByParameter", [&] {
        return collectInstances("getInstancesByParameter", committedComponent(dataSet, component), dataSet, component,
                                keys, [&](const std::string&, const Json::Value& instance) {
                                    const Json::Value* found = member(instance, property);
                                    return found && found->isString() && found->asString() == value;
                                });
    });
}

Fcodes DataSets::getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                         const std::string& property, int value, std::vector<std::string>& keys) {
    return guarded("getInstancesByParameter", [&] {
        return collectInstances("getInstancesByParameter", committedComponent(dataSet, component), dataSet, component,
                                keys, [&](const std::string&, const Json::Value& instance) {
                                    const Json::Value* found = member(instance, property);
                                    return found && found->isInt() && found->asInt() == value;
                                });
    });
}

Fcodes DataSets::getInstancesByKey(const std::string& dataSet, const std::string& component,
                                   const std::string& keyPrefix, std::vector<std::string>& keys) {
    return guarded("getInstancesByKey", [&] {
        return collectInstances("getInstancesByKey", committedComponent(dataSet, component), dataSet, component, keys,
                                [&](const std::string& key, const Json::Value&) {
                                    return key.compare(0, keyPrefix.size(), keyPrefix) == 0;
                                });
    });
}

Fcodes DataSets::getComponentProperty(const std::string& dataSet, const std::string& component,
                                      const std::string& property, std::string& type, std::string& access,
                                      std::string& defaultValue, std::vector<std::string>& values) {
    return guarded("getComponentProperty", [&] {
        const Json::Value* definition =
            member(member(committedComponent(dataSet, component), jsonkeys::PROPERTIES), property);
        if (!definition || !definition->isObject()) {
            DBG(DBG_ERROR) << "getComponentProperty: No such name dataset=" << dataSet << " comp=" << component
                           << " param=" << property;
            return FC_NO_SUCH_NAME;
        }
        const Json::Value* field = member(*definition, jsonkeys::TYPE);
        type = field ? valueText(*field) : std::string();
        field = member(*definition, jsonkeys::ACCESS);
        access = field ? valueText(*field) : std::string();
        field = member(*definition, jsonkeys::DEFAULT);
        defaultValue = field ? valueText(*field) : std::string();
        values.clear();
        field = member(*definition, jsonkeys::VALUES);
        if (field && field->isArray())
            for (const Json::Value& entry : *field)
                values.push_back(valueText(entry));
        return FC_OK;
    });
}

Fcodes DataSets::getComponentPropertyDefault(const std::string& dataSet, const std::string& component,
                                             const std::string& property, std::string& defaultValue) {
    return guarded("getComponentPropertyDefault", [&] {
        const Json::Value* definition =
            member(member(committedComponent(dataSet, component), jsonkeys::PROPERTIES), property);
        const Json::Value* field = member(definition, jsonkeys::DEFAULT);
        if (!field) {
            DBG(DBG_ERROR) << "getComponentPropertyDefault: No such name dataset=" << dataSet << " comp=" << component
                           << " param=" << property;
            return FC_NO_SUCH_NAME;
        }
        defaultValue = valueText(*field);
        return FC_OK;
    });
}

namespace {

// The JSON request interface has no user on the appliance yet; it answers
// FC_UNSUPPORTED in the response rather than guess a format.
Fcodes unsupportedRequest(const char* op, Json::Value& response) {
    DBG(DBG_WARN) << op << ": request interface not supported";
    response = Json::Value(Json::objectValue);
    response["fcode"] = static_cast<Json::UInt>(FC_UNSUPPORTED);
    response["description"] = std::string(op) + ": not supported";
    return FC_UNSUPPORTED;
}

}  // namespace

Fcodes DataSets::setParams(const Json::Value&, Json::Value& response) {
    return unsupportedRequest("setParams", response);
}

Fcodes DataSets::getParams(const Json::Value&, Json::Value& response) {
    return unsupportedRequest("getParams", response);
}

Fcodes DataSets::fetchPropertyNames(const Json::Value&, Json::Value& response) {
    return unsupportedRequest("fetchPropertyNames", response);
}

Fcodes DataSets::fetchComponentKeys(const Json::Value&, Json::Value& response) {
    return unsupportedRequest("fetchComponentKeys", response);
}

}  // namespace datacom
