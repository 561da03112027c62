#pragma once

// The JSON channel document the store, holder and fuzz tests share: keyed,
// single and array instances; integer (one with a range), boolean, string,
// enum (integer and text) properties.
namespace testdoc {

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
      "properties": {"Label": {"type": "string", "default": "enc"},
                     "Port": {"type": "integer", "default": 5004, "minimum": 1, "maximum": 65535}},
      "instance": {"Label": "encoder", "Port": 5004}
    },
    "Targets": {
      "properties": {"Address": {"type": "string", "default": "239.1.1.1"}, "Port": {"type": "integer", "default": 1234}},
      "instances": [{"Address": "239.1.1.1", "Port": 1234}, {"Address": "127.0.0.1", "Port": 5000}]
    }
  }
})";

}  // namespace testdoc
