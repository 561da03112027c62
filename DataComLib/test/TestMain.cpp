// Every test process runs in a temporary SYSMGT_ROOT of its own, so no test
// touches the real /tmp sockets, the real debug pipe or /etc.
#include <gtest/gtest.h>

#include <cstdio>
#include <exception>

#include "TestRoot.h"

int main(int argc, char** argv) {
    // A root that cannot be made ends the process with the reason, not std::terminate.
    try {
        testing::InitGoogleTest(&argc, argv);
        TestRoot root;
        return RUN_ALL_TESTS();
    } catch (const std::exception& e) {
        std::fprintf(stderr, "test main: %s\n", e.what());
        return 1;
    }
}
