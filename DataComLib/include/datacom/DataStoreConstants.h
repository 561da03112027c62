#pragma once

#include <cstdint>

namespace datacom {

/// Vocabulary of the tabular configuration store: change-state bits shared by
/// items, rows, tables, objects and datasets, and the column type and access
/// codes with the words that stand for them in the dataset files.

namespace datastate {
constexpr uint32_t UNCHANGED = 0;
constexpr uint32_t NEW = 1;
constexpr uint32_t DELETED = 2;
constexpr uint32_t CHANGED = 4;
}  // namespace datastate

namespace coltype {
constexpr int32_t INT = 1;
constexpr int32_t ENUM = 2;
constexpr int32_t STR = 3;
constexpr const char* INT_WORD = "int";
constexpr const char* ENUM_WORD = "enum";
constexpr const char* STR_WORD = "str";
}  // namespace coltype

namespace colaccess {
constexpr int32_t RO = 1;
constexpr int32_t RW = 2;
constexpr int32_t WO = 3;
constexpr const char* RO_WORD = "RO";
constexpr const char* RW_WORD = "RW";
constexpr const char* WO_WORD = "WO";
}  // namespace colaccess

}  // namespace datacom
