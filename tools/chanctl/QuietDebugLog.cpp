#include "QuietDebugLog.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <string>

#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

// The engine logs into the debug pipe. Opening it blocks while the pipe exists
// without a reader, and a missing pipe is announced on stdout; a client tool
// must neither hang nor mix that into its answers. So the log client is made
// here, first: with a reader present it logs as any process does; otherwise
// its lines are lost.
void openDebugLogQuietly() {
    const std::string pipePath = sysmgtPath("/tmp/sockDbg");
    int probe = open(pipePath.c_str(), O_WRONLY | O_NONBLOCK);
    int heldReader = -1;
    if (probe >= 0) {
        close(probe);
    } else if (errno == ENXIO) {
        heldReader = open(pipePath.c_str(), O_RDONLY | O_NONBLOCK);  // lets the blocking open through
    }
    std::fflush(stdout);
    std::cout.flush();
    int savedStdout = dup(STDOUT_FILENO);
    int devNull = open("/dev/null", O_WRONLY);
    if (devNull >= 0)
        dup2(devNull, STDOUT_FILENO);
    DbgPrintClient::getInstance();
    std::cout.flush();
    if (savedStdout >= 0) {
        dup2(savedStdout, STDOUT_FILENO);
        close(savedStdout);
    }
    if (devNull >= 0)
        close(devNull);
    if (heldReader >= 0)
        close(heldReader);
}
