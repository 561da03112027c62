#pragma once

#include <string>
#include <vector>

#include "datacom/WireConstants.h"

// What one chanweb invocation asks for.
struct ChanwebOptions {
    bool help = false;
    std::string bind = "127.0.0.1";
    std::vector<std::string> hosts;  // --host: names a request's Host may carry besides bind and localhost
    int port = 8080;                 // 0: any free port (the one taken is printed)
    bool allowRemote = false;        // --allow-remote: a bind address other than loopback is accepted
    std::string socket = datacom::wire::SOCK_CHAN;  // the channel manager's
    std::string www;                                // the page's files; "" = found beside the executable
    unsigned timeoutSec = 0;                        // ends by itself after this long; 0 = until a signal
};

// Reads the command line (without the program name). Returns "" or the reason
// it cannot run. A bind address other than 127.0.0.1, localhost or ::1 is
// refused unless --allow-remote is given too: the console has no authentication.
std::string parseChanwebArgs(const std::vector<std::string>& args, ChanwebOptions& options);

// The names a request's Host may carry: the bind address, "localhost"
// (and 127.0.0.1 when bound to "localhost") and each --host.
std::vector<std::string> allowedHosts(const ChanwebOptions& options);

// The --help text.
const char* chanwebUsage();
