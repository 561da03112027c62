#pragma once

#include <string>

#include "MessageHeader.h"

// Helpers shared by the engine's source files; not part of its interface.

// The wait before a read, shared by the transport and the server loop.
enum class WaitResult { Readable, NotReadable, TimedOut, Failed };

// Waits for `fd` to become readable with the engine's time-out convention
// (whole seconds; 0 without limit, the all-ones value not at all). An
// interrupting signal does not end the wait early. On Failed, errno tells why.
WaitResult waitReadable(int fd, unsigned timeoutSec);

// The header's wire text, for log lines and the response history.
inline std::string headerText(const MessageHeader& header) {
    std::string text;
    header.toString(text);
    return text;
}
