#include <gtest/gtest.h>
#include <stdlib.h>

#include "datacom/SysmgtRoot.h"

using namespace datacom;

TEST(SysmgtRoot, MapsAbsolutePathsUnderTheRootOnlyWhenSet) {
    const char* saved = getenv("SYSMGT_ROOT");
    const std::string restore = saved ? saved : "";

    struct Row {
        const char* root;  // nullptr: unset
        const char* logical;
        const char* expected;
    } rows[] = {
        {nullptr, "/tmp/sockChan", "/tmp/sockChan"},
        {"", "/tmp/sockChan", "/tmp/sockChan"},
        {"/r", "/tmp/sockChan", "/r/tmp/sockChan"},
        {"/r/", "/etc/sysmgt/a.json", "/r/etc/sysmgt/a.json"},
        {"/r//", "/data/settings/x.json", "/r/data/settings/x.json"},
        {"/r", "relative/file", "relative/file"},
        {"/r", "", ""},
        {"/", "/tmp/sockDbg", "/tmp/sockDbg"},
    };
    for (const Row& row : rows) {
        if (row.root)
            setenv("SYSMGT_ROOT", row.root, 1);
        else
            unsetenv("SYSMGT_ROOT");
        EXPECT_EQ(sysmgtPath(row.logical), row.expected)
            << "root=" << (row.root ? row.root : "(unset)") << " path=" << row.logical;
    }
    setenv("SYSMGT_ROOT", restore.c_str(), 1);
}
