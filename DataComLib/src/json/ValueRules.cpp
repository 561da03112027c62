// The rule a property value meets to enter the JSON store, and the check of
// whole components and documents against it before a load replaces anything.
#include "json/ValueRules.h"

#include "datacom/DbgPrintClient.h"
#include "json/JsonDataSetKeys.h"

namespace datacom {

namespace dsjson {

namespace {

// An integer outside the range its definition declares is refused. A bound
// that is not an integer declares nothing.
Fcodes checkRange(const ParamPath& path, const Json::Value& definition, Json::Int64 value) {
    const Json::Value* minimum = member(definition, jsonkeys::MINIMUM);
    const Json::Value* maximum = member(definition, jsonkeys::MAXIMUM);
    const bool below = minimum && minimum->isInt64() && value < minimum->asInt64();
    const bool above = maximum && maximum->isInt64() && value > maximum->asInt64();
    if (!below && !above)
        return FC_OK;
    DBG(DBG_ERROR) << path << " out of range=" << value << (below ? " minimum=" : " maximum=")
                   << (below ? minimum : maximum)->asInt64();
    return FC_BAD_VALUE;
}

// Logs a component part that cannot hold values as the store reads them.
Fcodes malformed(const char* op, const std::string& dataSet, const std::string& component, const std::string& what,
                 const std::string& origin) {
    DBG(DBG_ERROR) << op << ": dataset=" << dataSet << " comp=" << component << " malformed " << what << origin;
    return FC_BODY_ERROR;
}

Fcodes checkInstance(const char* op, const std::string& dataSet, const std::string& component,
                     const Json::Value* properties, const Json::Value& instance, const Selector& selector,
                     const std::string& origin) {
    if (!instance.isObject())
        return malformed(op, dataSet, component, "instance ind=" + selector.text(), origin);
    for (const std::string& property : instance.getMemberNames()) {
        // A value without a definition declares no rule to meet; a stored file
        // may hold one for a property that the factory data defines again, and
        // the update against the defaults keeps it.
        const Json::Value* definition = member(properties, property);
        if (!definition)
            continue;
        const Json::Value& value = *member(instance, property);
        const ParamPath path{op, dataSet, component, property, selector};
        Json::Value stored;
        // The value is its own committed value: the type must admit it as a
        // write onto it would be admitted.
        const Fcodes admitted = admitValue(path, *definition, &value, value, stored);
        if (!isOk(admitted)) {
            DBG(DBG_ERROR) << path << " refused value=" << compactText(value) << origin;
            return admitted;
        }
    }
    return FC_OK;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const ParamPath& path) {
    return out << path.op << ": dataset=" << path.dataSet << " comp=" << path.component << " param=" << path.property
               << " ind=" << path.selector.text();
}

Fcodes admitValue(const ParamPath& path, const Json::Value& definition, const Json::Value* committedValue,
                  const Json::Value& offered, Json::Value& stored) {
    const Json::Value* typeNode = member(definition, jsonkeys::TYPE);
    const std::string type = typeNode && typeNode->isString() ? typeNode->asString() : std::string();
    // The committed value must be of the kind the declared type admits; one
    // that is missing is of no kind. (An enumeration is judged by its values.)
    auto committedIs = [&](bool (Json::Value::*test)() const) { return committedValue && (committedValue->*test)(); };

    if (type == jsonkeys::TYPE_ENUM && !offered.isBool()) {
        const Json::Value* values = member(definition, jsonkeys::VALUES);
        if (values && values->isArray()) {
            for (const Json::Value& entry : *values) {
                bool match = offered.isString() ? (entry.isString() && entry.asString() == offered.asString()) ||
                                                      (entry.isInt() && entry.asString() == offered.asString())
                                                : entry.isInt() && offered.isInt() && entry.asInt() == offered.asInt();
                if (match) {
                    stored = entry;
                    return FC_OK;
                }
            }
        }
        DBG(DBG_ERROR) << path << " absent in enum";
        return FC_BAD_VALUE;
    }
    // Integers of 64 bits too: a counter published beyond 32 bits stays writable.
    if (offered.isInt64() && type == jsonkeys::TYPE_INTEGER && committedIs(&Json::Value::isInt64)) {
        const Fcodes inRange = checkRange(path, definition, offered.asInt64());
        if (isOk(inRange))
            stored = offered;
        return inRange;
    }
    if (offered.isBool() && type == jsonkeys::TYPE_BOOLEAN && committedIs(&Json::Value::isBool)) {
        stored = offered;
        return FC_OK;
    }
    if (offered.isString()) {
        const std::string text = offered.asString();
        if (type == jsonkeys::TYPE_STRING && committedIs(&Json::Value::isString)) {
            stored = offered;
            return FC_OK;
        }
        if (type == jsonkeys::TYPE_INTEGER && committedIs(&Json::Value::isInt)) {
            int number = 0;
            if (!parseInt(text, number)) {
                DBG(DBG_ERROR) << path << " not an integer=" << text;
                return FC_BAD_VALUE;
            }
            const Fcodes inRange = checkRange(path, definition, number);
            if (!isOk(inRange))
                return inRange;
            stored = number;
            DBG(DBG_INFO) << path << " set as int=" << number;
            return FC_OK;
        }
        if (type == jsonkeys::TYPE_BOOLEAN && committedIs(&Json::Value::isBool)) {
            stored = text == "true";
            DBG(DBG_INFO) << path << " set as bool=" << (text == "true" ? "true" : "false");
            return FC_OK;
        }
    }
    DBG(DBG_ERROR) << path << " wrong expected type:" << compactText(typeNode ? *typeNode : Json::Value());
    return FC_WRONG_TYPE;
}

Fcodes checkComponent(const char* op, const std::string& dataSet, const std::string& component, const Json::Value& body,
                      const std::string& origin) {
    if (!body.isObject())
        return malformed(op, dataSet, component, "component", origin);
    // "properties" that are not an object define nothing (reads do not need them).
    const Json::Value* properties = member(body, jsonkeys::PROPERTIES);
    if (const Json::Value* single = member(body, jsonkeys::INSTANCE)) {
        static const std::string singleKey;
        const Fcodes result =
            checkInstance(op, dataSet, component, properties, *single, Selector::byKey(singleKey), origin);
        if (!isOk(result))
            return result;
    }
    const Json::Value* instances = member(body, jsonkeys::INSTANCES);
    if (!instances)
        return FC_OK;
    if (instances->isArray()) {
        for (Json::ArrayIndex i = 0; i < instances->size(); ++i) {
            const Fcodes result = checkInstance(op, dataSet, component, properties, (*instances)[i],
                                                Selector::byIndex(static_cast<int>(i)), origin);
            if (!isOk(result))
                return result;
        }
        return FC_OK;
    }
    if (!instances->isObject())
        return malformed(op, dataSet, component, jsonkeys::INSTANCES, origin);
    for (const std::string& key : instances->getMemberNames()) {
        const Fcodes result =
            checkInstance(op, dataSet, component, properties, *member(*instances, key), Selector::byKey(key), origin);
        if (!isOk(result))
            return result;
    }
    return FC_OK;
}

Fcodes checkDocument(const char* op, const std::string& dataSet, const Json::Value& document,
                     const std::string& origin) {
    const Json::Value* components = member(document, jsonkeys::COMPONENTS);
    if (!components || !components->isObject())
        return FC_OK;  // the load refuses a wrongly shaped "components" itself
    for (const std::string& component : components->getMemberNames()) {
        const Fcodes result = checkComponent(op, dataSet, component, *member(*components, component), origin);
        if (!isOk(result))
            return result;
    }
    return FC_OK;
}

}  // namespace dsjson

}  // namespace datacom
