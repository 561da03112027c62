#pragma once

namespace datacom {

// The member names and declared types of a JSON dataset document.
namespace jsonkeys {

constexpr const char* DATASET = "dataset";
constexpr const char* COMPONENTS = "components";
constexpr const char* PROPERTIES = "properties";
constexpr const char* INSTANCE = "instance";
constexpr const char* INSTANCES = "instances";
constexpr const char* TYPE = "type";
constexpr const char* DEFAULT = "default";
constexpr const char* ACCESS = "access";
constexpr const char* VALUES = "values";
constexpr const char* DESCRIPTION = "description";
// An integer property's range, where its definition declares one.
constexpr const char* MINIMUM = "minimum";
constexpr const char* MAXIMUM = "maximum";

constexpr const char* TYPE_INTEGER = "integer";
constexpr const char* TYPE_BOOLEAN = "boolean";
constexpr const char* TYPE_STRING = "string";
constexpr const char* TYPE_ENUM = "enum";

}  // namespace jsonkeys

}  // namespace datacom
