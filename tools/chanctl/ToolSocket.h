#pragma once

#include <string>

// The receive-socket name under which a tool subscribes to a service's
// events. The service keeps a subscriber for as long as it runs, so the name
// must be the same each time the same tool instance starts (a restart takes
// its old entry back instead of adding a dead one) and different for two
// instances running at once: "/tmp/<tool>-<user>[-<instance>]", with "-2",
// "-3"... appended while a running process holds the name. The send socket is
// the same name plus "-send" (sendSocketName).
std::string stableSocketName(const std::string& tool, const std::string& instance);
// A tool's send socket, named after its receive socket.
inline std::string sendSocketName(const std::string& receiveSocket) {
    return receiveSocket + "-send";
}
