#pragma once

#include <json/json.h>

#include <string>

namespace datacom {

// Navigation and value helpers over dataset documents, shared by the parts of
// the JSON store. No lookup inserts anything: jsoncpp's non-const operator[]
// would add a null member for a missing name and so grow the document on a
// mere read. The lookups come in pairs: on a const node they give a const
// node, on a writable one a writable node, so that writers need no casts.
// None of these throws on a wrongly shaped document; a node of the wrong kind
// reads as absent.
namespace dsjson {

// The member `name` of `node`, or null when `node` is not an object or lacks it.
const Json::Value* member(const Json::Value& node, const std::string& name);
// The element `index` of `node`, or null when `node` is not an array or too short.
const Json::Value* element(const Json::Value& node, int index);
Json::Value* member(Json::Value& node, const std::string& name);
Json::Value* element(Json::Value& node, int index);
// Null-tolerant chaining: the same lookups on a node that may be absent.
inline const Json::Value* member(const Json::Value* node, const std::string& name) {
    return node ? member(*node, name) : nullptr;
}
inline const Json::Value* element(const Json::Value* node, int index) {
    return node ? element(*node, index) : nullptr;
}
inline Json::Value* member(Json::Value* node, const std::string& name) {
    return node ? member(*node, name) : nullptr;
}
inline Json::Value* element(Json::Value* node, int index) {
    return node ? element(*node, index) : nullptr;
}

// How an instance is addressed: by key (a non-empty key is a member of
// "instances" as an object, the empty key the single "instance") or by index
// (an element of "instances" as an array). Refers to the caller's key.
struct Selector {
    const std::string* key = nullptr;
    int index = -1;

    static Selector byKey(const std::string& k) { return Selector{&k, -1}; }
    static Selector byIndex(int i) { return Selector{nullptr, i}; }
    bool isIndex() const { return key == nullptr; }
    bool isSingle() const { return key != nullptr && key->empty(); }
    // The selector as log lines show it after " ind=".
    std::string text() const;
};

// The instance object of `component` at `selector`, or null.
const Json::Value* instanceOf(const Json::Value& component, const Selector& selector);
Json::Value* instanceOf(Json::Value& component, const Selector& selector);

// The compact text jsoncpp writes for a value ("\"boolean\"", 7, true), for log lines.
std::string compactText(const Json::Value& value);

// The value a new instance gets for a property, from its definition: the
// "default" in the declared type ("integer" an integer, also from numeric
// text; "boolean" a boolean, also from "true"/"false"; "string" a text; "enum"
// the default entry, else the first of "values"), any other type the
// "default" as it stands. `how` receives the log text of the conversion made.
Json::Value derivedDefault(const Json::Value& definition, const char** how = nullptr);

// An instance object holding every defined property's derived default.
Json::Value defaultInstance(const Json::Value& component);

// Parses a whole decimal integer in the int range ("-12", not "12a" or "");
// locale-independent.
bool parseInt(const std::string& text, int& value);

// Parses a document with comments kept and a nesting limit (deeper files are
// refused, not recursed into). Integers, booleans and texts read the same under
// any locale; a real, which the data model does not use, is read through the
// C++ global locale, which this code never changes (the C locale of setlocale
// does not matter). False with `errors` filled on any failure, exceptions of
// the reader included.
bool parseDocument(const std::string& text, Json::Value& root, std::string& errors);

// The styled text the store writes to a dataset file.
std::string styledText(const Json::Value& root);

}  // namespace dsjson

}  // namespace datacom
