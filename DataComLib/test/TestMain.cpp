// Every test process runs in a temporary SYSMGT_ROOT of its own, so no test
// touches the real /tmp sockets, the real debug pipe or /etc.
#include <gtest/gtest.h>

#include "TestRoot.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    TestRoot root;
    return RUN_ALL_TESTS();
}
