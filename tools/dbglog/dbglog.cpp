// dbglog: the appliance's log collector for a host. Creates the debug pipe
// "/tmp/sockDbg" (under SYSMGT_ROOT) and prints the lines the daemons write
// into it, optionally only those at or above a severity.
#include <fcntl.h>
#include <getopt.h>
#include <poll.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>

#include "LogFilter.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

volatile sig_atomic_t gStop = 0;
void onSignal(int) {
    gStop = 1;
}

void usage(FILE* out) {
    std::fprintf(out,
                 "usage: dbglog [--severity SEV] [--count N] [--timeout SECONDS] [--pipe PATH]\n"
                 "Creates the debug pipe (default /tmp/sockDbg, under $SYSMGT_ROOT when set)\n"
                 "and prints every log line written into it.\n"
                 "  --severity SEV  only lines at or above SEV: INFO, WARN, ERROR, FATAL, SYS or 0-4\n"
                 "  --count N       stop after N printed lines\n"
                 "  --timeout S     stop after S seconds\n"
                 "  --pipe PATH     another logical pipe path\n");
}

// Makes `path` a named pipe, replacing a stale non-pipe file of that name.
bool makePipe(const std::string& path) {
    struct stat existing {};
    if (stat(path.c_str(), &existing) == 0) {
        if (S_ISFIFO(existing.st_mode))
            return true;
        unlink(path.c_str());
    }
    if (mkfifo(path.c_str(), 0666) != 0) {
        std::fprintf(stderr, "dbglog: cannot create the pipe %s: %s\n", path.c_str(),
                     std::generic_category().message(errno).c_str());
        return false;
    }
    chmod(path.c_str(), 0666);
    return true;
}

}  // namespace

int main(int argc, char** argv) {
    int minSeverity = 0;
    long count = -1;
    double timeoutSeconds = -1;
    std::string logicalPath = "/tmp/sockDbg";

    static const option kOptions[] = {
        {"severity", required_argument, nullptr, 's'}, {"count", required_argument, nullptr, 'n'},
        {"timeout", required_argument, nullptr, 't'},  {"pipe", required_argument, nullptr, 'p'},
        {"help", no_argument, nullptr, 'h'},           {nullptr, 0, nullptr, 0}};
    int option;
    while ((option = getopt_long(argc, argv, "s:n:t:p:h", kOptions, nullptr)) != -1) {
        switch (option) {
            case 's':
                minSeverity = LogFilter::parseSeverity(optarg);
                if (minSeverity < 0) {
                    std::fprintf(stderr, "dbglog: unknown severity %s\n", optarg);
                    return 2;
                }
                break;
            case 'n':
                count = std::strtol(optarg, nullptr, 10);
                break;
            case 't':
                timeoutSeconds = std::strtod(optarg, nullptr);
                break;
            case 'p':
                logicalPath = optarg;
                break;
            case 'h':
                usage(stdout);
                return 0;
            default:
                usage(stderr);
                return 2;
        }
    }

    const std::string path = sysmgtPath(logicalPath);
    if (!makePipe(path))
        return 1;
    // Read and write: the pipe never reports end-of-file when a daemon exits,
    // and opening does not wait for the first writer.
    int fd = open(path.c_str(), O_RDWR | O_NONBLOCK);
    if (fd < 0) {
        std::fprintf(stderr, "dbglog: cannot open %s: %s\n", path.c_str(),
                     std::generic_category().message(errno).c_str());
        return 1;
    }
    signal(SIGINT, onSignal);
    signal(SIGTERM, onSignal);
    setvbuf(stdout, nullptr, _IOLBF, 0);

    LogFilter filter(minSeverity);
    const auto started = std::chrono::steady_clock::now();
    long printed = 0;
    char buf[65536];
    while (!gStop && (count < 0 || printed < count)) {
        int waitMs = 200;
        if (timeoutSeconds >= 0) {
            double left =
                timeoutSeconds - std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
            if (left <= 0)
                break;
            waitMs = left < 0.2 ? static_cast<int>(left * 1000) + 1 : 200;
        }
        pollfd readable{fd, POLLIN, 0};
        if (poll(&readable, 1, waitMs) <= 0)
            continue;
        ssize_t got = read(fd, buf, sizeof buf);
        if (got <= 0)
            continue;
        for (const std::string& line : filter.feed(std::string(buf, static_cast<size_t>(got)))) {
            std::fputs(line.c_str(), stdout);
            if (++printed == count)
                break;
        }
    }
    if (count < 0 || printed < count)
        std::fputs(filter.flush().c_str(), stdout);
    close(fd);
    return 0;
}
