// chanctl: the command-line client of the appliance's services. Sends a
// command, reads and writes data set values, listens for events, sends an
// event, and shows both channels of the channel manager at a glance.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "ChanctlArgs.h"
#include "ChanctlCommands.h"
#include "QuietDebugLog.h"
#include "ToolSocket.h"
#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

// Host paths of this process's two sockets, for the signal handler.
char gReceivePath[4096];
char gSendPath[4096];

void removeSockets() {
    unlink(gReceivePath);
    unlink(gSendPath);
}

// An interrupted chanctl (Ctrl-C during listen, or a kill) leaves no socket
// file behind. Only async-signal-safe calls here.
void onSignal(int signo) {
    removeSockets();
    _exit(128 + signo);
}

void installSignalHandlers() {
    struct sigaction action {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    for (int signo : {SIGINT, SIGTERM, SIGHUP})
        sigaction(signo, &action, nullptr);
}

// Says which socket was tried and why nothing may have answered, instead of
// a bare "Communication Error".
std::string noAnswerText(const ChanctlOptions& options) {
    const std::string hostPath = sysmgtPath(options.socket);
    if (access(hostPath.c_str(), F_OK) != 0)
        return fcodeText(FC_COMM_ERROR) + ": there is no socket " + options.socket +
               (hostPath != options.socket ? " (" + hostPath + ")" : std::string()) + "; the service is not running";
    return fcodeText(FC_COMM_ERROR) + ": no answer from " + options.socket + " within " +
           std::to_string(options.timeoutSec) + " s; the service may not be running";
}

Fcodes run(DataCommunicator& engine, ListenHolder& listener, const ChanctlOptions& options) {
    switch (options.action) {
        case ChanctlAction::Command:
            return runCommand(engine, options, stdout);
        case ChanctlAction::Get:
            return runGet(engine, options, stdout);
        case ChanctlAction::Set:
            return runSet(engine, options, stdout);
        case ChanctlAction::Event:
            return runEvent(engine, options);
        case ChanctlAction::Status:
            return runStatus(engine, options, stdout);
        case ChanctlAction::Listen:
            engine.start();
            return runListen(engine, listener, options, stderr);
        case ChanctlAction::Help:
            break;
    }
    return FC_UNSUPPORTED;
}

}  // namespace

int main(int argc, char** argv) {
    ChanctlOptions options;
    std::string refused = parseChanctlArgs(std::vector<std::string>(argv + 1, argv + argc), options);
    if (!refused.empty()) {
        std::fprintf(stderr, "chanctl: %s\n(chanctl --help tells how to use it)\n", refused.c_str());
        return 2;
    }
    if (options.action == ChanctlAction::Help) {
        std::fputs(chanctlUsage(), stdout);
        return 0;
    }

    // The engine ends the process (status 0) when it cannot bind; say why first.
    const std::string tmp = sysmgtPath("/tmp");
    if (access(tmp.c_str(), W_OK | X_OK) != 0) {
        std::fprintf(stderr, "chanctl: cannot make its sockets in %s: %s\n", tmp.c_str(),
                     std::generic_category().message(errno).c_str());
        return 1;
    }
    // A listener subscribes: its name stays the same over restarts, so the
    // service keeps one entry for it however often it is started.
    const std::string receiveSocket = options.action == ChanctlAction::Listen
                                          ? stableSocketName("chanctl-listen", "")
                                          : "/tmp/chanctl-" + std::to_string(getpid());
    const std::string sendSocket = sendSocketName(receiveSocket);
    std::snprintf(gReceivePath, sizeof gReceivePath, "%s", sysmgtPath(receiveSocket).c_str());
    std::snprintf(gSendPath, sizeof gSendPath, "%s", sysmgtPath(sendSocket).c_str());
    installSignalHandlers();
    openDebugLogQuietly();

    Fcodes code;
    {
        ListenHolder listener(stdout, options.json);
        DataCommunicator engine;
        engine.init(&listener, receiveSocket, sendSocket, "tChanctl");
        code = run(engine, listener, options);
        std::fflush(stdout);
    }  // the engine stops its server thread here
    removeSockets();
    if (isOk(code))
        return 0;
    if (code == FC_COMM_ERROR)
        std::fprintf(stderr, "chanctl: %s\n", noAnswerText(options).c_str());
    else
        std::fprintf(stderr, "chanctl: %s\n", fcodeText(code).c_str());
    return 1;
}
