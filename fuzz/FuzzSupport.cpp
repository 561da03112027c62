#include "FuzzSupport.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

#include "TestRoot.h"

namespace fuzz {

void usePrivateRoot() {
    // Made on first use and destroyed at exit, which removes the directory.
    static std::unique_ptr<TestRoot> root(new TestRoot());
}

void check(bool condition, const char* what) {
    if (condition)
        return;
    std::fprintf(stderr, "fuzz check failed: %s\n", what);
    std::abort();
}

}  // namespace fuzz
