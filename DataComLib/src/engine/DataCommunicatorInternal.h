#pragma once

#include <sys/socket.h>
#include <sys/types.h>

#include <string>

#include "datacom/MessageHeader.h"
#include "datacom/WireConstants.h"

namespace datacom {

// Helpers shared by the engine's source files; not part of its interface.

// The wait before a read, shared by the transport and the server loop.
enum class WaitResult { Readable, NotReadable, TimedOut, Failed };

// Waits for `fd` to become readable with the engine's time-out convention
// (whole seconds; 0 without limit, the all-ones value not at all). An
// interrupting signal does not end the wait early. On Failed, errno tells why.
WaitResult waitReadable(int fd, unsigned timeoutSec);
// The same in milliseconds, -1 without limit.
WaitResult waitReadableMillis(int fd, int millis);
// Waits for and receives one datagram with the same convention, leaving it in
// the calling thread's receive buffer; `readSize` is recvfrom's result.
// `oneSecondReceives`: the socket's receive time-out is one second, so a
// blocking receive may do the waiting. On Failed, errno tells why.
WaitResult receiveWithin(int sock, sockaddr* from, socklen_t* fromLen, unsigned timeoutSec, bool oneSecondReceives,
                         ssize_t& readSize);

// Receives one datagram into the calling thread's receive buffer: its size,
// or -1 with errno (EAGAIN: none queued, with MSG_DONTWAIT in `flags`).
ssize_t receiveDatagram(int sock, sockaddr* from, socklen_t* fromLen, int flags);
// Checks the size of the datagram the calling thread received last and
// parses it into header and body, as readMsg describes.
Fcodes parseDatagram(int sock, ssize_t readSize, MessageHeader& header, std::string& body);

// The header's wire text, for log lines and the response history.
inline std::string headerText(const MessageHeader& header) {
    std::string text;
    header.toString(text);
    return text;
}

// A request or event header as the builders make it: the placeholder ID
// (sendRequest replaces it), the type, the Fcode and the body's length.
inline MessageHeader outgoingHeader(const char* type, Fcodes fcode, const std::string& body) {
    MessageHeader header;
    header.ID = wire::PLACEHOLDER_REQUEST_ID;
    header.Type = type;
    header.Fcode = fcode;
    header.Size = static_cast<int32_t>(body.size());
    return header;
}

}  // namespace datacom
