#pragma once

// Shared by the fuzz targets. Each target defines LLVMFuzzerTestOneInput; the
// same source is linked either with libFuzzer (the fuzz build) or with
// ReplayMain.cpp, which runs the checked-in corpus as an ordinary test.

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace fuzz {

// Makes, once per process, a private SYSMGT_ROOT with the appliance's
// directories (removed at exit), so that a target that writes files or binds
// sockets never reaches the real /tmp or /etc, and no debug collector is
// found: log lines are formatted and dropped.
void usePrivateRoot();

// A broken promise of a parser is a finding like a crash: prints `what` and
// the row of the check, then aborts, which both libFuzzer and the replay
// report with the input.
void check(bool condition, const char* what);

// Consumes the input from the front: a selector byte (0 when the input is
// used up), and the rest as text.
class Input {
public:
    Input(const uint8_t* data, size_t size) : data(data), size(size) {}
    uint8_t byte() {
        if (size == 0)
            return 0;
        --size;
        return *data++;
    }
    // Up to `limit` bytes, ended early by a newline (not included).
    std::string line(size_t limit) {
        std::string text;
        while (size > 0 && text.size() < limit) {
            char c = static_cast<char>(byte());
            if (c == '\n')
                break;
            text += c;
        }
        return text;
    }
    std::string rest() {
        std::string text(reinterpret_cast<const char*>(data), size);
        data += size;
        size = 0;
        return text;
    }

private:
    const uint8_t* data;
    size_t size;
};

}  // namespace fuzz
