#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <string>

namespace datacom {

// The address of a local datagram socket: the family, then the path in a
// zeroed path field. The length handed to the system is the path length plus
// the family field, not the whole structure. Also receives a sender's address
// (the zeroed buffer the kernel fills is SENDER_ADDR_SIZE bytes).
class LocalAddress {
public:
    LocalAddress();

    // Addresses the socket at a host path (already resolved under SYSMGT_ROOT).
    // False, and nothing set, when the path does not fit the path field.
    bool setHostPath(const std::string& hostPath);
    // Addresses the socket at a logical path, resolving it with sysmgtPath.
    bool setLogicalPath(const std::string& logicalPath);

    sockaddr* get() { return reinterpret_cast<sockaddr*>(&address); }
    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&address); }
    socklen_t& length() { return addressLength; }
    socklen_t length() const { return addressLength; }
    // Prepares to receive a sender's address: zeroed, length SENDER_ADDR_SIZE.
    void clearForReceive();
    // True when nothing was received since clearForReceive.
    bool nothingReceived() const;
    // True when both hold the same path (senders are seen by their host path).
    bool hasSamePath(const LocalAddress& other) const;
    // The host path held, "" for an unnamed peer.
    std::string path() const;

private:
    size_t pathLength() const;

    sockaddr_un address;
    socklen_t addressLength;
};

}  // namespace datacom
