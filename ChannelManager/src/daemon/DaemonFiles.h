#pragma once

#include <string>

// What the daemon's entry point tells the world about itself: the pid file,
// the start file a supervisor waits for, and the readiness message of a
// service manager. Paths are resolved under SYSMGT_ROOT like every other.
// The two files are replaced whole by a rename, never opened through a
// name that could be a planted link.

// Writes "<pid>\n". Skipped when the file cannot be written; false then.
bool writePidFile(const std::string& path);

// Writes "0:<pid>:0\n", retrying a write interrupted by a signal. On any
// other failure prints the system's reason for the path on stderr (as perror
// does) and returns false; the daemon serves all the same.
bool writeStartFile(const std::string& path);

// When NOTIFY_SOCKET names a datagram socket (a path, or "@name" in the
// abstract namespace), sends it "READY=1". True when sent; false when the
// variable is unset or the send failed. The variable's path is the service
// manager's own and is used as it is.
bool notifyServiceManager();
