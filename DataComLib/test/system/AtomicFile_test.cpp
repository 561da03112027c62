#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <sstream>

#include "TestFiles.h"
#include "datacom/AtomicFile.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

int countEntries(const std::string& logicalDir) {
    std::string command = "ls -A '" + sysmgtPath(logicalDir) + "' | wc -l";
    FILE* pipe = popen(command.c_str(), "r");
    int count = -1;
    if (pipe) {
        if (fscanf(pipe, "%d", &count) != 1)
            count = -1;
        pclose(pipe);
    }
    return count;
}

}  // namespace

TEST(AtomicFile, ReplacesWholeFileOrLeavesTheOldOne) {
    mkdir(sysmgtPath("/data/settings/atomic").c_str(), 0777);
    const std::string path = "/data/settings/atomic/channels.json";
    ASSERT_EQ(writeFileAtomically(path, "first version\n"), 0);
    EXPECT_EQ(readText(path), "first version\n");
    ASSERT_EQ(writeFileAtomically(path, "second"), 0);
    EXPECT_EQ(readText(path), "second");

    // Interrupted before the rename: the old file stays whole, no temporary is left.
    gAtomicFileBeforeRename = failBeforeRename;
    EXPECT_EQ(writeFileAtomically(path, std::string(100000, 'x')), EIO);
    gAtomicFileBeforeRename = nullptr;
    EXPECT_EQ(readText(path), "second");
    EXPECT_EQ(countEntries("/data/settings/atomic"), 1);

    // A directory that does not exist: the error, and nothing written.
    EXPECT_EQ(writeFileAtomically("/data/settings/missing/x.json", "x"), ENOENT);
}
