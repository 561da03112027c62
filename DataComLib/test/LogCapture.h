#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <string>

#include "datacom/DbgPrintClient.h"

// Points the process-wide debug log at a pipe of the test while it lives, so
// a test can check the lines an operation logs. Other threads may log
// meanwhile (their lines are captured too); the pipe holds up to 1 MiB (64
// KiB where the system allows no more), beyond which lines are dropped.
class LogCapture {
public:
    LogCapture() {
        if (pipe2(ends, O_NONBLOCK) != 0)
            ends[0] = ends[1] = -1;
        else
            fcntl(ends[1], F_SETPIPE_SZ, 1 << 20);  // a whole reconfiguration's lines between two reads
        saved = datacom::DbgPrintClient::getInstance()->setSink(ends[1]);
    }
    ~LogCapture() {
        datacom::DbgPrintClient::getInstance()->setSink(saved);
        close(ends[0]);
        close(ends[1]);
    }
    LogCapture(const LogCapture&) = delete;
    LogCapture& operator=(const LogCapture&) = delete;

    // Everything logged since the last call.
    std::string take() {
        std::string text;
        char buf[4096];
        ssize_t got;
        while ((got = read(ends[0], buf, sizeof buf)) > 0)
            text.append(buf, static_cast<size_t>(got));
        return text;
    }

private:
    int ends[2] = {-1, -1};
    int saved = -1;
};
