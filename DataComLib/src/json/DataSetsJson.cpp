#include "json/DataSetsJson.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <exception>
#include <memory>

#include "json/JsonDataSetKeys.h"

namespace datacom {

namespace dsjson {

namespace {

// Deepest nesting a dataset file may have; real documents nest about six
// levels, and a refused file is better than a stack overflow on the device.
constexpr int kNestingLimit = 64;

}  // namespace

const Json::Value* member(const Json::Value& node, const std::string& name) {
    if (!node.isObject())
        return nullptr;
    return node.find(name.data(), name.data() + name.size());
}

const Json::Value* element(const Json::Value& node, int index) {
    if (!node.isArray() || index < 0 || static_cast<Json::ArrayIndex>(index) >= node.size())
        return nullptr;
    return &node[static_cast<Json::ArrayIndex>(index)];
}

Json::Value* member(Json::Value& node, const std::string& name) {
    if (!node.isObject() || !node.isMember(name))
        return nullptr;
    return &node[name];  // present: operator[] finds it, inserts nothing
}

Json::Value* element(Json::Value& node, int index) {
    if (!node.isArray() || index < 0 || static_cast<Json::ArrayIndex>(index) >= node.size())
        return nullptr;
    return &node[static_cast<Json::ArrayIndex>(index)];
}

std::string Selector::text() const {
    return isIndex() ? std::to_string(index) : *key;
}

const Json::Value* instanceOf(const Json::Value& component, const Selector& selector) {
    const Json::Value* found = nullptr;
    if (selector.isIndex())
        found = element(member(component, jsonkeys::INSTANCES), selector.index);
    else if (selector.isSingle())
        found = member(component, jsonkeys::INSTANCE);
    else
        found = member(member(component, jsonkeys::INSTANCES), *selector.key);
    return found && found->isObject() ? found : nullptr;
}

Json::Value* instanceOf(Json::Value& component, const Selector& selector) {
    Json::Value* found = nullptr;
    if (selector.isIndex())
        found = element(member(component, jsonkeys::INSTANCES), selector.index);
    else if (selector.isSingle())
        found = member(component, jsonkeys::INSTANCE);
    else
        found = member(member(component, jsonkeys::INSTANCES), *selector.key);
    return found && found->isObject() ? found : nullptr;
}

std::string compactText(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    return Json::writeString(builder, value);
}

Json::Value derivedDefault(const Json::Value& definition, const char** how) {
    const char* note = "default value";
    Json::Value result;
    const Json::Value* typeNode = member(definition, jsonkeys::TYPE);
    const std::string type = typeNode && typeNode->isString() ? typeNode->asString() : std::string();
    const Json::Value* def = member(definition, jsonkeys::DEFAULT);
    const Json::Value none;
    const Json::Value& given = def ? *def : none;
    int number = 0;
    if (type == jsonkeys::TYPE_INTEGER) {
        if (given.isInt()) {
            result = given.asInt();
            note = "int value";
        } else if (given.isString() && parseInt(given.asString(), number)) {
            result = number;
            note = "intvalue";
        } else {
            result = 0;
            note = "int intvalue";
        }
    } else if (type == jsonkeys::TYPE_BOOLEAN) {
        if (given.isBool()) {
            result = given.asBool();
            note = "boolean value";
        } else {
            result = given.isString() && given.asString() == "true";
            note = "bool value";
        }
    } else if (type == jsonkeys::TYPE_STRING) {
        result = given.isString() ? given.asString() : std::string();
        note = "string value";
    } else if (type == jsonkeys::TYPE_ENUM) {
        const Json::Value* first = element(member(definition, jsonkeys::VALUES), 0);
        result = def ? given : (first ? *first : none);
        note = "enum value";
    } else {
        result = given;
    }
    if (how)
        *how = note;
    return result;
}

Json::Value defaultInstance(const Json::Value& component) {
    Json::Value instance(Json::objectValue);
    const Json::Value* properties = member(component, jsonkeys::PROPERTIES);
    if (!properties || !properties->isObject())
        return instance;
    for (auto it = properties->begin(); it != properties->end(); ++it)
        instance[it.name()] = derivedDefault(*it);
    return instance;
}

bool parseInt(const std::string& text, int& value) {
    if (text.empty())
        return false;
    errno = 0;
    char* end = nullptr;
    long long parsed = std::strtoll(text.c_str(), &end, 10);
    if (errno != 0 || *end != '\0' || parsed < INT_MIN || parsed > INT_MAX)
        return false;
    value = static_cast<int>(parsed);
    return true;
}

bool parseDocument(const std::string& text, Json::Value& root, std::string& errors) {
    try {
        Json::CharReaderBuilder builder;
        builder["collectComments"] = true;
        builder["stackLimit"] = kNestingLimit;
        std::unique_ptr<Json::CharReader> reader(builder.newCharReader());
        Json::Value parsed;
        if (!reader->parse(text.data(), text.data() + text.size(), &parsed, &errors))
            return false;
        root.swap(parsed);
        return true;
    } catch (const std::exception& e) {
        errors = e.what();
    } catch (...) {
        errors = "unknown exception";
    }
    return false;
}

std::string styledText(const Json::Value& root) {
    Json::StreamWriterBuilder builder;
    return Json::writeString(builder, root) + "\n";
}

}  // namespace dsjson

}  // namespace datacom
