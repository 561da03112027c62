#pragma once

#include <fstream>
#include <string>

#include "vocab/ChannelVocabulary.h"
#include "TestRoot.h"

// Copies a factory dataset of etc/sysmgt (by file name) to its logical path
// under the test's root, e.g. installFactoryFile(root, "vsrc_data_set.json").
inline bool installFactoryFile(const TestRoot& root, const std::string& fileName) {
    std::ifstream in(std::string(SYSMGT_FACTORY_DIR) + "/" + fileName, std::ios::binary);
    std::ofstream out(root.host("/etc/sysmgt/" + fileName), std::ios::binary);
    out << in.rdbuf();
    return in.good() && out.good();
}

// The four factory datasets the channel manager loads.
inline const char* const kFactoryFiles[] = {"channel_data_set_vex.json", "vsrc_data_set.json",
                                            "zixistat_data_set.json", "srtstat_data_set.json"};
