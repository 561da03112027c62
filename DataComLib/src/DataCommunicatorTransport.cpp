// Socket set-up and the transfer primitives: one message per datagram.
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <ctime>

#include "DataCommunicator.h"
#include "DataCommunicatorInternal.h"
#include "DbgPrintClient.h"
#include "LocalAddress.h"
#include "SysmgtRoot.h"
#include "TagText.h"
#include "WireConstants.h"

namespace {

// Converts a time-out in whole seconds to poll's milliseconds: 0 waits
// without limit, NO_WAIT not at all.
int toPollMillis(unsigned timeoutSec) {
    if (timeoutSec == wire::WAIT_FOREVER)
        return -1;
    if (timeoutSec == wire::NO_WAIT)
        return 0;
    return timeoutSec >= INT_MAX / 1000 ? INT_MAX : static_cast<int>(timeoutSec * 1000);
}

int64_t monotonicMillis() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<int64_t>(now.tv_sec) * 1000 + now.tv_nsec / 1000000;
}

void setTimeouts(int sock) {
    const timeval oneSecond{1, 0};
    if (setsockopt(sock, SOL_SOCKET, SO_RCVTIMEO, &oneSecond, sizeof oneSecond) != 0)
        DBG(DBG_ERROR) << "init: setsockopt SO_RCVTIMEO failed";
    if (setsockopt(sock, SOL_SOCKET, SO_SNDTIMEO, &oneSecond, sizeof oneSecond) != 0)
        DBG(DBG_ERROR) << "init: setsockopt SO_SNDTIMEO failed";
}

[[noreturn]] void endProcess() {
    // Deliberately the success status: the supervisor must not restart a
    // process whose sockets cannot exist.
    std::exit(0);
}

}  // namespace

WaitResult waitReadable(int fd, unsigned timeoutSec) {
    // A signal (the daemon's timers) must not turn into a failed wait: poll
    // again for the time that is left.
    const int total = toPollMillis(timeoutSec);
    const int64_t deadline = total > 0 ? monotonicMillis() + total : 0;
    int left = total;
    for (;;) {
        pollfd entry{fd, POLLIN, 0};
        int ready = poll(&entry, 1, left);
        if (ready > 0)
            return (entry.revents & POLLIN) ? WaitResult::Readable : WaitResult::NotReadable;
        if (ready == 0)
            return WaitResult::TimedOut;
        if (errno != EINTR)
            return WaitResult::Failed;
        if (total > 0) {
            int64_t remaining = deadline - monotonicMillis();
            left = remaining > 0 ? static_cast<int>(remaining) : 0;
        }
    }
}

DataCommunicator::DataCommunicator() {
    wakeFd = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
}

DataCommunicator::~DataCommunicator() {
    stop();
    for (int fd : {receiveSocket, sendSocket, wakeFd})
        if (fd >= 0)
            close(fd);
}

Fcodes DataCommunicator::makeSocket(int& sock, const std::string& path, const char* createFailure) {
    if (sock >= 0)
        close(sock);
    sock = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (sock < 0) {
        DBG(DBG_FATAL) << createFailure;
        return FC_COMM_ERROR;
    }
    const std::string hostPath = sysmgtPath(path);
    unlink(hostPath.c_str());
    setTimeouts(sock);
    LocalAddress address;
    int bound =
        address.setHostPath(hostPath) ? bind(sock, address.get(), address.length()) : (errno = ENAMETOOLONG, -1);
    if (bound != 0) {
        DBG(DBG_FATAL) << "init: Socket bind failed to " << path << " errno=" << errno;
        return FC_COMM_ERROR;
    }
    chmod(hostPath.c_str(), 0777);
    return FC_OK;
}

void DataCommunicator::init(IDataHolder* holder, const std::string& receivePath, const std::string& sendPath,
                            const std::string& taskName) {
    name = taskName;
    dataHolder = holder;
    sockName = receivePath;
    sendSockName = sendPath;
    if (!isOk(makeSocket(sendSocket, sendSockName, "init: Send Socket create failed")))
        endProcess();
    if (!isOk(makeSocket(receiveSocket, sockName, "init: Socket create failed")))
        endProcess();
}

Fcodes DataCommunicator::readMsg(int sock, MessageHeader& header, std::string& body, sockaddr* from, socklen_t* fromLen,
                                 unsigned timeoutSec, unsigned /*spare*/) {
    switch (waitReadable(sock, timeoutSec)) {
        case WaitResult::Failed:
            DBG(DBG_ERROR) << "readMsg: select failed errno=" << errno;
            return FC_COMM_ERROR;
        case WaitResult::TimedOut:
            DBG(DBG_WARN) << "readMsg: Time out" << timeoutSec << " sec. for sock=" << sock;
            return FC_COMM_ERROR;
        case WaitResult::NotReadable:
            return FC_OK;
        case WaitResult::Readable:
            break;
    }

    // One receive buffer per thread, reused: the largest message is refused,
    // so the buffer is exactly the limit.
    thread_local std::vector<char> buffer(wire::MAX_DATAGRAM);
    thread_local std::string text;
    ssize_t readSize = recvfrom(sock, buffer.data(), buffer.size(), 0, from, fromLen);
    DBG(DBG_INFO) << "readMsg: recvfrom sock=" << sock << " senderlen=" << (fromLen ? *fromLen : 0)
                  << " readSize=" << readSize;
    if (readSize >= static_cast<ssize_t>(wire::MAX_DATAGRAM)) {
        DBG(DBG_ERROR) << "readMsg: MAX header size=" << wire::MAX_DATAGRAM << " readSize=" << readSize;
        return FC_COMM_ERROR;
    }
    if (readSize <= 0) {
        DBG(DBG_ERROR) << "readMsg: read error from sock=" << sock << " errno=" << errno;
        return FC_COMM_ERROR;
    }
    text.assign(buffer.data(), static_cast<size_t>(readSize));

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

Fcodes DataCommunicator::sendMessage(int sock, MessageHeader& header, const std::string& body, const sockaddr* to,
                                     socklen_t toLen, unsigned delaySec, unsigned tries) {
    thread_local std::string text;
    text.clear();
    header.toString(text);
    text += body;

    // NO_WAIT: the caller (an event to a subscriber) must never block, not
    // even for the socket's 1-second send time-out.
    const int flags = MSG_NOSIGNAL | (delaySec == wire::NO_WAIT ? MSG_DONTWAIT : 0);
    Fcodes result = FC_COMM_ERROR;
    while (result != FC_OK && tries > 0) {
        DBG(DBG_INFO) << "sendMessage: Sending msg via sockfd=" << sock;
        if (sendto(sock, text.data(), text.size(), flags, to, toLen) >= 0) {
            result = FC_OK;
        } else if (errno == EINTR) {
            continue;  // interrupted before anything was queued: the same try again
        } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
            DBG(DBG_ERROR) << "sendMessage: in writing msg body to sock=" << sock << " tries left=" << tries - 1;
            if (delaySec != wire::NO_WAIT)
                sleep(delaySec == 0 ? wire::DEFAULT_RETRY_DELAY_SEC : delaySec);
            result = FC_COMM_ERROR;
        } else {
            DBG(DBG_ERROR) << "sendMessage: in writing msg body to sock=" << sock << " errno=" << errno
                           << " Stop sending.";
            result = FC_COMM_ERROR;
            break;
        }
        --tries;
    }
    return result;
}

Fcodes DataCommunicator::sendEvent(const std::string& peer, MessageHeader& header, const std::string& body) {
    LocalAddress address;
    if (!address.setLogicalPath(peer)) {
        DBG(DBG_ERROR) << "sendEvent: Error in sending to sock:" << peer;
        return FC_COMM_ERROR;
    }
    std::string headerText;
    header.toString(headerText);
    if (sendto(sendSocket, headerText.data(), headerText.size(), MSG_NOSIGNAL, address.get(), address.length()) < 0) {
        DBG(DBG_ERROR) << "sendEvent: in writing msg header to sock=" << peer << " errno=" << errno;
        DBG(DBG_ERROR) << "sendEvent: Error in sending to sock:" << peer;
        return FC_COMM_ERROR;
    }
    if (header.Size >= 1 && !body.empty() &&
        sendto(sendSocket, body.data(), body.size(), MSG_NOSIGNAL, address.get(), address.length()) < 0) {
        DBG(DBG_ERROR) << "sendEvent: in writing msg body to sock=" << peer << " errno=" << errno;
        DBG(DBG_ERROR) << "sendEvent: Error in sending to sock:" << peer;
        return FC_COMM_ERROR;
    }
    return FC_OK;
}

Fcodes DataCommunicator::readline(int sock, std::string& line, unsigned timeoutSec) {
    for (;;) {
        switch (waitReadable(sock, timeoutSec)) {
            case WaitResult::Failed:
                DBG(DBG_ERROR) << "readLine: select failed for sock=" << sock << " errno=" << errno;
                return FC_COMM_ERROR;
            case WaitResult::TimedOut:
                DBG(DBG_WARN) << "readLine: Time out" << timeoutSec << " sec. for sock=" << sock;
                return FC_COMM_ERROR;
            case WaitResult::NotReadable:
            case WaitResult::Readable:
                break;
        }
        char byte = 0;
        if (read(sock, &byte, 1) != 1) {
            DBG(DBG_ERROR) << "readLine: read error from sock=" << sock << " errno=" << errno;
            DBG(DBG_ERROR) << "readLine: Till now read:" << line;
            return FC_COMM_ERROR;
        }
        if (byte == '\n')
            return FC_OK;
        line += byte;
    }
}
