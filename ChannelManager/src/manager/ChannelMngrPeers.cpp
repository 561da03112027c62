// Peers that come late or come back. The daemon subscribes to the mediator
// and the device manager at start-up; a peer that was not there then, or that
// restarts later (a new process behind the same socket), would never send it
// another event. A watcher thread, "tChPeers", looks at each peer's socket
// file about once a period: the file's identity (device, inode, change time)
// tells a peer that appeared or was replaced, once it held for a period
// (manager/PeerWatch.h). Such a peer is subscribed to again, retried with a
// back-off of 1, 2, 4, then 8 seconds at most until it acknowledges. Then
// what the new process lacks is given to it: a mediator has no configuration,
// so every channel is configured again and the channels that were playing
// play again, with one INFO line; a device manager's time zone is read again,
// as at start-up. Idle, the thread wakes once a period and makes one stat()
// per peer.
#include <sys/prctl.h>
#include <sys/stat.h>

#include "channel/ConfigChannelTarnevel.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"
#include "datacom/WireConstants.h"
#include "manager/ChannelMngr.h"
#include "model/ChannelRunBook.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace datacom;

using namespace vocab;

namespace {

// One short try per attempt: the back-off does the retrying.
constexpr unsigned SUBSCRIBE_TIMEOUT_SEC = 1;

// What tells one process's socket from the next one's; 0 when there is none.
SocketIdentity socketIdentity(const char* logicalPath) {
    struct stat info {};
    if (stat(sysmgtPath(logicalPath).c_str(), &info) != 0 || !S_ISSOCK(info.st_mode))
        return {};
    return {static_cast<uint64_t>(info.st_dev), static_cast<uint64_t>(info.st_ino),
            static_cast<int64_t>(info.st_ctim.tv_sec) * 1000000000 + info.st_ctim.tv_nsec};
}

}  // namespace

void ChannelMngr::startPeerWatch(Fcodes mediatorSubscribed, Fcodes deviceSubscribed) {
    const auto now = PeerWatch::Clock::now();
    peers = {{wire::SOCK_MEDIATOR, &ChannelMngr::configureMediatorAgain,
              PeerWatch(socketIdentity(wire::SOCK_MEDIATOR), isOk(mediatorSubscribed), now)},
             {wire::SOCK_DEV, &ChannelMngr::readTimeZoneAgain,
              PeerWatch(socketIdentity(wire::SOCK_DEV), isOk(deviceSubscribed), now)}};
    {
        ScopedLock<Mutex> guard(watchMutex);
        watchStopping = false;
    }
    watchThread = std::thread(&ChannelMngr::peerWatchLoop, this);
}

void ChannelMngr::stopPeerWatch() {
    {
        ScopedLock<Mutex> guard(watchMutex);
        watchStopping = true;
    }
    watchWake.notify_all();
    if (watchThread.joinable())
        watchThread.join();
}

void ChannelMngr::setPeerWatchPeriod(std::chrono::milliseconds period) {
    {
        ScopedLock<Mutex> guard(watchMutex);
        peerWatchPeriod = period;
    }
    watchWake.notify_all();
}

void ChannelMngr::peerWatchLoop() {
    setTaskName(pthread_self(), "tChPeers");
    while (awaitPeerWatchTurn())
        for (WatchedPeer& peer : peers)
            watchPeer(peer);
}

bool ChannelMngr::awaitPeerWatchTurn() {
    ScopedLock<Mutex> guard(watchMutex);
    if (watchStopping)
        return false;
    watchMutex.waitFor(watchWake, peerWatchPeriod);
    return !watchStopping;
}

void ChannelMngr::watchPeer(WatchedPeer& peer) {
    PeerWatch& watch = peer.watch;
    const PeerWatch::Change change = watch.look(socketIdentity(peer.socket), PeerWatch::Clock::now());
    if (change != PeerWatch::Change::None)
        DBG(DBG_INFO) << "peerWatch: peer=" << peer.socket
                      << (change == PeerWatch::Change::Restarted ? " restarted" : " appeared");
    if (watch.subscribeDue(PeerWatch::Clock::now())) {
        const bool acknowledged = isOk(subscribeTo(peer.socket));
        watch.subscribeAnswered(acknowledged, PeerWatch::Clock::now());
        if (!acknowledged)
            DBG(DBG_WARN) << "peerWatch: no answer to SUBSCRIBE from peer=" << peer.socket << ", next try in "
                          << watch.backoffSec() << " s";
    }
    if (watch.takeReturnWork())
        (this->*peer.afterReturn)();
}

Fcodes ChannelMngr::subscribeTo(const char* peer) {
    std::string command = "<Command ID=\"";
    command += wire::CMD_SUBSCRIBE;
    command += "\" >\n\t\t<Parameter Name=\"";
    command += wire::PARAM_SOCK_NAME;
    command += "\" Value=\"";
    command += wire::SOCK_CHAN;
    command += "\" />\n\t</Command>\n";
    std::string reply;
    return requestCommand(peer, command, reply, SUBSCRIBE_TIMEOUT_SEC, 1);
}

// The mediator knows nothing of the channels: every branch the run book
// held went with the old process, every parameter must be sent again, and
// the channels that were playing (or starting) are played again. A channel
// stopped by its operator or its input stays as it stands.
void ChannelMngr::configureMediatorAgain() {
    book.forgetBranches();
    std::vector<std::string> rows, replay;
    getInstances(ds::CHANNEL, tbl::CHANNELS, rows);
    for (const std::string& rowId : rows) {
        ScopedLock<DataHolder> guard(*this);
        std::string chanState;
        getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, chanState, rowId);
        ConfigChannelTarnevel channel(*this, *this, book);
        channel.configChannel(rowId);
        if (chanState == state::PLAYING || chanState == state::PLAYED)
            replay.push_back(rowId);
    }
    std::string names;
    for (const std::string& rowId : replay) {
        ConfigChannelTarnevel channel(*this, *this, book);
        channel.playChannel(rowId);
        names += (names.empty() ? "" : ",") + rowId;
    }
    // Once all is done: whoever reads it finds the channels as they stay.
    DBG(DBG_INFO) << "peerWatch: mediator restarted: " << rows.size()
                  << " channels configured again, playing again: " << (names.empty() ? "none" : names);
}

// The zone is the device manager's to say; while it cannot say, the one in
// force stays. Read and logged as at start-up, under the watch's own name
// ("peerWatch: setenv TZ="); a failure, which start-up leaves silent, is a
// warning here, since the zone in force may now be stale.
void ChannelMngr::readTimeZoneAgain() {
    if (!readDeviceTimeZone("peerWatch"))
        DBG(DBG_WARN) << "peerWatch: no time zone from peer=" << wire::SOCK_DEV << ", TZ kept";
}
