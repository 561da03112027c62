#pragma once

#include <string>

// A temporary directory used as SYSMGT_ROOT for the life of the object, with
// the appliance's directories (tmp, run, etc/sysmgt, data/settings) made inside it.
// Removed with everything in it on destruction. Not thread-safe: make it
// before starting threads.
class TestRoot {
public:
    TestRoot();
    ~TestRoot();
    TestRoot(const TestRoot&) = delete;
    TestRoot& operator=(const TestRoot&) = delete;

    const std::string& path() const { return root; }
    // The host path of a logical absolute path under this root.
    std::string host(const std::string& logicalPath) const { return root + logicalPath; }

private:
    std::string root;
    std::string previous;
    bool hadPrevious = false;
};
