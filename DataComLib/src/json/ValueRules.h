#pragma once

#include <json/json.h>

#include <ostream>
#include <string>

#include "datacom/Fcodes.h"
#include "json/DataSetsJson.h"

namespace datacom {

namespace dsjson {

// Streams the parameter path of a log line: "<op>: dataset=d comp=c param=p ind=s".
struct ParamPath {
    const char* op;
    const std::string& dataSet;
    const std::string& component;
    const std::string& property;
    const Selector& selector;
};

std::ostream& operator<<(std::ostream& out, const ParamPath& path);

// The rule a property value meets to enter the store, whether a write offers
// it or a loaded document holds it: the declared "type" (with the committed
// value of the kind that type admits), an enumeration's "values", and an
// integer's "minimum"/"maximum" where the definition declares them. Decides
// what is stored (an enumeration's own entry, a text converted to its type)
// and logs a refusal under `path`: FC_WRONG_TYPE for a type that does not
// admit the value, FC_BAD_VALUE for a value outside the admitted ones.
Fcodes admitValue(const ParamPath& path, const Json::Value& definition, const Json::Value* committedValue,
                  const Json::Value& offered, Json::Value& stored);

// Holds every value of a component, as a file or a text gives it, to the rule
// above under the component's own definitions, before it replaces anything
// (a value whose property has no definition has no rule and passes).
// The first value refused ends the check: its code is the result, and it is
// logged with its path, the value and `origin` (" in file=..." or empty).
// A component whose values could not be read (the component, "instance" or an
// instance not an object, "instances" neither object nor array) is refused
// with FC_BODY_ERROR.
Fcodes checkComponent(const char* op, const std::string& dataSet, const std::string& component, const Json::Value& body,
                      const std::string& origin);

// checkComponent for every member of a document's "components", in name order.
Fcodes checkDocument(const char* op, const std::string& dataSet, const Json::Value& document,
                     const std::string& origin);

}  // namespace dsjson

}  // namespace datacom
