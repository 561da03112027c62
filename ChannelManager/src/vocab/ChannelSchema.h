#pragma once

#include <vector>

// The JSON dataset names the channel logic reads and writes, each with the
// kind of value it expects. The factory datasets in etc/sysmgt are checked
// against this list by a test, so the code and the files cannot drift apart:
// an operation that names a new property adds its row here.
struct SchemaEntry {
    enum class Kind { Text, Integer, Boolean };
    const char* dataSet;
    const char* component;
    const char* property;
    Kind kind;
};

const std::vector<SchemaEntry>& channelSchema();
