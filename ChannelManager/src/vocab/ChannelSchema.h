#pragma once

#include <vector>

#include "vocab/ValueRanges.h"

// The JSON dataset names the channel logic reads and writes, each with the
// kind of value it expects. The factory datasets in etc/sysmgt are checked
// against this list by a test, so the code and the files cannot drift apart:
// an operation that names a new property adds its row here.
struct SchemaEntry {
    // Choice: a text among the "values" its definition lists (an "enum").
    enum class Kind { Text, Integer, Boolean, Choice };
    const char* dataSet;
    const char* component;
    const char* property;
    Kind kind;
    // The range the code clamps the value to, which the factory file states too; none when null.
    const range::IntRange* range = nullptr;
};

const std::vector<SchemaEntry>& channelSchema();
