#pragma once

#include <chrono>
#include <cstdint>

// What tells one process's socket from the next one's: the socket file's
// device, inode and change time; all 0 when there is no socket.
struct SocketIdentity {
    uint64_t device = 0, inode = 0;
    int64_t changedNs = 0;
    bool present() const { return inode != 0; }
    bool operator==(const SocketIdentity& o) const {
        return device == o.device && inode == o.inode && changedNs == o.changedNs;
    }
    bool operator!=(const SocketIdentity& o) const { return !(*this == o); }
};

// The peer watch's decisions for one peer, apart from the socket and the
// thread, so that a test drives them with identities and a clock of its own:
// when a new process behind the peer's socket counts as there, when a
// SUBSCRIBE is due, how long to wait after one that went unanswered, and when
// the peer's return work (configuring the mediator, reading the device
// manager's time zone) is due. Owned and called by one watcher thread.
class PeerWatch {
public:
    using Clock = std::chrono::steady_clock;
    // The longest wait between two SUBSCRIBE tries; waits go 1, 2, 4, ... up to it.
    static constexpr int MAX_BACKOFF_SEC = 8;

    enum class Change { None, Appeared, Restarted };

    // `identity`: the socket as start-up found it; `subscribed`: whether
    // start-up's SUBSCRIBE was acknowledged.
    PeerWatch(const SocketIdentity& identity, bool subscribed, Clock::time_point now);

    // One look at the socket, once a watch period. A new identity is acted on
    // only when two looks in a row saw it: a new socket's change time moves
    // again when its owner sets its mode just after binding it, and that must
    // not count as a second restart. Acted on, the peer needs a new
    // subscription and its return work is due.
    Change look(const SocketIdentity& now, Clock::time_point at);
    // A SUBSCRIBE is to be sent: unsubscribed, the socket there and acted on,
    // the back-off over.
    bool subscribeDue(Clock::time_point at) const;
    // Acknowledged: subscribed, the back-off back to none. Otherwise the next
    // try waits the doubled back-off from `at`.
    void subscribeAnswered(bool acknowledged, Clock::time_point at);
    // True once after the subscription of a peer that came back was
    // acknowledged: the work its return needs is due now.
    bool takeReturnWork();

    int backoffSec() const { return backoff; }
    bool subscribed() const { return isSubscribed; }

private:
    SocketIdentity acted;  // the identity acted on
    SocketIdentity seen;   // the one the last look saw
    bool isSubscribed;
    bool returnDue = false;
    int backoff = 0;
    Clock::time_point nextTry;
};
