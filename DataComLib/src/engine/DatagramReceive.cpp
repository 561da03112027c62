// Receiving one datagram under the engine's time-out convention, and the
// checks and parsing every received message goes through.
#include <poll.h>

#include <cerrno>
#include <climits>
#include <cstdint>
#include <ctime>
#include <vector>

#include "datacom/DbgPrintClient.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"
#include "engine/DataCommunicatorInternal.h"

namespace datacom {

namespace {

int64_t monotonicMillis() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

// One receive buffer per thread, reused: the largest message is refused, so
// the buffer is exactly the limit.
std::vector<char>& receiveBuffer() {
    thread_local std::vector<char> buffer(wire::MAX_DATAGRAM);
    return buffer;
}

bool nothingQueued(ssize_t readSize) {
    return readSize < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR);
}

}  // namespace

WaitResult waitReadableMillis(int fd, int millis) {
    // A signal (the daemon's timers) must not turn into a failed wait: poll
    // again for the time that is left.
    const int64_t deadline = millis > 0 ? monotonicMillis() + millis : 0;
    int left = millis;
    for (;;) {
        pollfd entry{fd, POLLIN, 0};
        int ready = poll(&entry, 1, left);
        if (ready > 0)
            return (entry.revents & POLLIN) ? WaitResult::Readable : WaitResult::NotReadable;
        if (ready == 0)
            return WaitResult::TimedOut;
        if (errno != EINTR)
            return WaitResult::Failed;
        if (millis > 0) {
            int64_t remaining = deadline - monotonicMillis();
            left = remaining > 0 ? static_cast<int>(remaining) : 0;
        }
    }
}

WaitResult waitReadable(int fd, unsigned timeoutSec) {
    if (timeoutSec == wire::WAIT_FOREVER)
        return waitReadableMillis(fd, -1);
    if (timeoutSec == wire::NO_WAIT)
        return waitReadableMillis(fd, 0);
    return waitReadableMillis(fd, timeoutSec >= INT_MAX / 1000 ? INT_MAX : static_cast<int>(timeoutSec * 1000));
}

ssize_t receiveDatagram(int sock, sockaddr* from, socklen_t* fromLen, int flags) {
    std::vector<char>& buffer = receiveBuffer();
    return recvfrom(sock, buffer.data(), buffer.size(), flags, from, fromLen);
}

WaitResult receiveWithin(int sock, sockaddr* from, socklen_t* fromLen, unsigned timeoutSec, bool oneSecondReceives,
                         ssize_t& readSize) {
    const bool forever = timeoutSec == wire::WAIT_FOREVER;
    const int64_t wait = timeoutSec == wire::NO_WAIT ? 0 : static_cast<int64_t>(timeoutSec) * 1000;
    const int64_t deadline = monotonicMillis() + wait;
    for (;;) {
        const int64_t left = forever ? INT64_MAX : deadline - monotonicMillis();
        // While a whole second is left, a socket whose receive time-out is one
        // second waits in the receive itself: one system call per message, as
        // on a bare socket. The rest of the time is waited in poll.
        const bool blocking = oneSecondReceives && left >= 1000;
        readSize = receiveDatagram(sock, from, fromLen, blocking ? 0 : MSG_DONTWAIT);
        if (!nothingQueued(readSize))
            return WaitResult::Readable;  // a datagram, or an error for the caller to report
        if (blocking)
            continue;
        if (left <= 0)
            return WaitResult::TimedOut;
        WaitResult waited = waitReadableMillis(sock, left > INT_MAX ? -1 : static_cast<int>(left));
        if (waited != WaitResult::Readable)
            return waited;
    }
}

Fcodes parseDatagram(int sock, ssize_t readSize, MessageHeader& header, std::string& body) {
    if (readSize >= static_cast<ssize_t>(wire::MAX_DATAGRAM)) {
        DBG(DBG_ERROR) << "readMsg: MAX header size=" << wire::MAX_DATAGRAM << " readSize=" << readSize;
        return FC_COMM_ERROR;
    }
    if (readSize <= 0) {
        DBG(DBG_ERROR) << "readMsg: read error from sock=" << sock << " errno=" << errno;
        return FC_COMM_ERROR;
    }
    thread_local std::string text;
    text.assign(receiveBuffer().data(), static_cast<size_t>(readSize));

    thread_local std::string headerText;
    int bodyFrom = getSegment(text, 0, wire::TAG_HEADER, headerText);
    if (bodyFrom < 0) {
        DBG(DBG_ERROR) << "readMsg: Not found tags HEADER in:\n" << text;
        return FC_HEADER_ERROR;
    }
    DBG(DBG_INFO) << "readMsg: Msg Header:\n" << headerText;
    Fcodes headerCode = header.initFromString(headerText);
    if (!isOk(headerCode)) {
        DBG(DBG_ERROR) << "readMsg: Header init failed from:\n" << headerText;
        return headerCode | FC_OK;
    }
    if (header.Size < 1)
        return FC_OK;
    if (getSegment(text, bodyFrom, wire::TAG_BODY, body) < 0) {
        DBG(DBG_ERROR) << "readMsg: Not found tags BODY in:\n" << text;
        return headerCode | FC_BODY_ERROR;
    }
    DBG(DBG_INFO) << "readMsg: Msg Body:\n" << body;
    return FC_OK;
}

}  // namespace datacom
