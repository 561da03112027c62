#pragma once

#include <string>

// The command line that starts a tool built by this project (through qemu-arm
// in the cross build), for popen/system in the tools' tests.
inline std::string toolCommand(const std::string& tool) {
    return std::string(SYSMGT_TOOL_LAUNCH) + SYSMGT_BIN_DIR + "/" + tool;
}
