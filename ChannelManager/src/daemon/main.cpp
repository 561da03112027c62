// channel_manager: the daemon that owns the appliance's two encoding
// channels. Reads its options, optionally detaches, writes its pid file,
// starts the channel manager, tells its supervisor that start-up is complete
// and sleeps while the manager's threads serve.
#include <grp.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "daemon/DaemonFiles.h"
#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "manager/ChannelMngr.h"

using namespace datacom;

// The daemon's own times (timers, probe time-outs, the start file's moment)
// outlive January 2038 only with a 64-bit time_t.
static_assert(sizeof(time_t) == 8, "channel_manager needs a 64-bit time_t: build with _TIME_BITS=64");

int main(int argc, char** argv) {
    bool detach = false;
    std::string pidFile, startFile;
    opterr = 0;  // the usage line alone tells what went wrong
    int option;
    while ((option = getopt(argc, argv, "v:dp:s:g:")) != -1) {  // NOLINT(concurrency-mt-unsafe): no thread yet
        switch (option) {
            case 'v':
                gDbgLevel = std::atoi(optarg);
                break;
            case 'd':
                detach = true;
                break;
            case 'p':
                pidFile = optarg;
                break;
            case 's':
                startFile = optarg;
                break;
            case 'g': {
                // Sockets for the daemon's user and one group only (0660)
                // instead of every local user: who can command the daemon.
                const group* found = getgrnam(optarg);  // NOLINT(concurrency-mt-unsafe): no thread yet
                if (found == nullptr) {
                    std::fprintf(stderr, "%s: no group %s\n", argv[0], optarg);
                    return 1;
                }
                DataCommunicator::setSocketAccess(0660, found->gr_gid);
                break;
            }
            default:
                // The documented line, letter for letter (scripts match it),
                // then the options gained since on a line of their own.
                std::fprintf(stderr, "Usage: %s [-v verboseLevel] [-d] [-p pidfile] [-s startfile]\n", argv[0]);
                std::fprintf(stderr, "       [-g socketgroup]\n");
                return 1;
        }
    }
    // A failed detach leaves the daemon in the foreground, where it serves just as well.
    if (detach && daemon(1, 1) != 0)
        std::perror("daemon");
    if (!pidFile.empty())
        writePidFile(pidFile);

    ChannelMngr::getInstance()->init();

    if (!startFile.empty())
        writeStartFile(startFile);
    notifyServiceManager();

    while (pause() == -1 && errno == EINTR) {
    }
    return 0;
}
