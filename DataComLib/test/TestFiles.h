#pragma once

#include <cerrno>
#include <fstream>
#include <sstream>
#include <string>

#include "datacom/SysmgtRoot.h"

// Whole-file reads and writes at logical paths under the test's root, for
// the tests of every module.

// The whole text of a file; "" when it is missing.
inline std::string readText(const std::string& logicalPath) {
    std::ifstream in(datacom::sysmgtPath(logicalPath), std::ios::binary);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

// Replaces a file's content with `text`.
inline void writeText(const std::string& logicalPath, const std::string& text) {
    std::ofstream(datacom::sysmgtPath(logicalPath), std::ios::binary | std::ios::trunc) << text;
}

// A hook for gAtomicFileBeforeRename: the write fails with EIO just before
// its rename, as a power cut there would leave it.
inline int failBeforeRename(const std::string&) {
    return EIO;
}
