#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <fstream>
#include <sstream>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "json/DataSets.h"
#include "system/DbgPrintClient.h"
#include "LogCapture.h"
#include "system/SysmgtRoot.h"

// Shared by the JSON store tests: a small channel document, file helpers and
// the debug log capture.
namespace dstest {

// Keyed, single and array instances; integer, boolean, string, enum
// (integer and text) properties.
constexpr const char* kChannelDoc = R"({
  "dataset": "ChannelDataSet",
  "components": {
    "ChannelsTable": {
      "properties": {
        "Name": {"type": "string", "default": "", "access": "RW", "description": "channel name"},
        "Bitrate": {"type": "integer", "default": 4000, "access": "RW", "description": "kbit/s"},
        "Enabled": {"type": "boolean", "default": false, "access": "RW", "description": ""},
        "Mode": {"type": "enum", "default": 1, "values": [1, 2, 7], "access": "RW", "description": ""},
        "Profile": {"type": "enum", "default": "Main", "values": ["Main", "High"], "access": "RO", "description": ""}
      },
      "instances": {
        "H.264": {"Name": "first", "Bitrate": 8000, "Enabled": true, "Mode": 2, "Profile": "High"},
        "HEVC": {"Name": "second", "Bitrate": 6000, "Enabled": false, "Mode": 1, "Profile": "Main"}
      }
    },
    "Device": {
      "properties": {"Label": {"type": "string", "default": "enc"}, "Port": {"type": "integer", "default": 5004}},
      "instance": {"Label": "encoder", "Port": 5004}
    },
    "Targets": {
      "properties": {"Address": {"type": "string", "default": "239.1.1.1"}, "Port": {"type": "integer", "default": 1234}},
      "instances": [{"Address": "239.1.1.1", "Port": 1234}, {"Address": "127.0.0.1", "Port": 5000}]
    }
  }
})";

inline void writeText(const std::string& logicalPath, const std::string& text) {
    std::ofstream(sysmgtPath(logicalPath), std::ios::binary | std::ios::trunc) << text;
}

inline std::string readText(const std::string& logicalPath) {
    std::ifstream in(sysmgtPath(logicalPath), std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Writes the channel document and loads it; true on "OK".
inline bool loadChannelDoc(DataSets& store, const std::string& path = "/etc/sysmgt/channel_test.json") {
    writeText(path, kChannelDoc);
    return store.loadDataSet(path) == FC_OK;
}

// The committed (or, with `pending`, the newest) value of a parameter of
// "ChannelDataSet"; a failed read fails the test, naming the parameter.
template <typename T, typename Selector>
T valueAt(DataSets& s, const std::string& comp, const std::string& prop, Selector sel, bool pending = false) {
    const std::string set = "ChannelDataSet";
    T value{};
    Fcodes code;
    if constexpr (std::is_same_v<T, int>)
        code = pending ? s.getNewIntParam(set, comp, prop, value, sel) : s.getIntParam(set, comp, prop, value, sel);
    else if constexpr (std::is_same_v<T, bool>)
        code = pending ? s.getNewBoolParam(set, comp, prop, value, sel) : s.getBoolParam(set, comp, prop, value, sel);
    else
        code = pending ? s.getNewTextParam(set, comp, prop, value, sel) : s.getTextParam(set, comp, prop, value, sel);
    EXPECT_EQ(code, FC_OK) << comp << "/" << prop << (pending ? " (pending)" : "");
    return value;
}

using ::LogCapture;

}  // namespace dstest
