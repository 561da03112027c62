// Socket set-up and the transfer primitives: one message per datagram.
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"
#include "datacom/WireConstants.h"
#include "engine/DataCommunicatorInternal.h"
#include "engine/LocalAddress.h"

namespace datacom {

namespace {

// True when the receive time-out could be set.
bool setTimeouts(int sock) {
    const timeval oneSecond{1, 0};
    bool receiveBounded = setsockopt(sock, SOL_SOCKET, SO_RCVTIMEO, &oneSecond, sizeof oneSecond) == 0;
    if (!receiveBounded)
        DBG(DBG_ERROR) << "init: setsockopt SO_RCVTIMEO failed";
    if (setsockopt(sock, SOL_SOCKET, SO_SNDTIMEO, &oneSecond, sizeof oneSecond) != 0)
        DBG(DBG_ERROR) << "init: setsockopt SO_SNDTIMEO failed";
    return receiveBounded;
}

[[noreturn]] void endProcess() {
    // Deliberately the success status: the supervisor must not restart a
    // process whose sockets cannot exist.
    std::exit(0);
}

}  // namespace

DataCommunicator::DataCommunicator() = default;

DataCommunicator::~DataCommunicator() {
    stop();
    for (int fd : {receiveSocket, sendSocket})
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
    // The sockets live in the shared /tmp, yet nothing here can be aimed by a
    // name planted there: unlink removes a link itself, never its target, and
    // bind makes the name afresh or fails on whatever is there (it never
    // follows a link; a neighbour's own file in the sticky /tmp stays and the
    // bind fails). Once bound, the sticky /tmp keeps the name ours, so chmod
    // reaches our socket; the group change does not follow a link even so.
    const std::string hostPath = sysmgtPath(path);
    unlink(hostPath.c_str());
    receivesBounded = setTimeouts(sock) && receivesBounded;
    LocalAddress address;
    int bound =
        address.setHostPath(hostPath) ? bind(sock, address.get(), address.length()) : (errno = ENAMETOOLONG, -1);
    if (bound != 0) {
        DBG(DBG_FATAL) << "init: Socket bind failed to " << path << " errno=" << errno;
        return FC_COMM_ERROR;
    }
    chmod(hostPath.c_str(), socketMode);
    if (socketGroup != static_cast<gid_t>(-1) && lchown(hostPath.c_str(), static_cast<uid_t>(-1), socketGroup) != 0)
        DBG(DBG_ERROR) << "init: cannot give socket " << path << " to group " << socketGroup << " errno=" << errno;
    return FC_OK;
}

mode_t DataCommunicator::socketMode = 0777;
gid_t DataCommunicator::socketGroup = static_cast<gid_t>(-1);

void DataCommunicator::setSocketAccess(mode_t mode, gid_t group) {
    socketMode = mode;
    socketGroup = group;
}

void DataCommunicator::init(IEngineHooks* holder, const std::string& receivePath, const std::string& sendPath,
                            const std::string& taskName) {
    name = taskName;
    dataHolder = holder;
    sockName = receivePath;
    sendSockName = sendPath;
    receivesBounded = true;
    if (!isOk(makeSocket(sendSocket, sendSockName, "init: Send Socket create failed")))
        endProcess();
    if (!isOk(makeSocket(receiveSocket, sockName, "init: Socket create failed")))
        endProcess();
}

Fcodes DataCommunicator::readMsg(int sock, MessageHeader& header, std::string& body, sockaddr* from, socklen_t* fromLen,
                                 unsigned timeoutSec) {
    ssize_t readSize = -1;
    const bool ownSocket = sock == sendSocket || sock == receiveSocket;
    switch (receiveWithin(sock, from, fromLen, timeoutSec, ownSocket && receivesBounded, readSize)) {
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
    DBG(DBG_INFO) << "readMsg: recvfrom sock=" << sock << " senderlen=" << (fromLen ? *fromLen : 0)
                  << " readSize=" << readSize;
    return parseDatagram(sock, readSize, header, body);
}

Fcodes DataCommunicator::sendMessage(int sock, MessageHeader& header, const std::string& body, const sockaddr* to,
                                     socklen_t toLen, unsigned delaySec, unsigned tries) {
    thread_local std::string text;
    text.clear();
    header.toString(text);
    text += body;

    // Every try waits for room in the peer's queue, up to the socket's send
    // time-out (1 second on the engine's sockets): a peer that is alive but a
    // little behind still gets the message. A peer that is gone fails at once.
    const int flags = MSG_NOSIGNAL;
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

}  // namespace datacom
