#pragma once

#include "datacom/Export.h"

#include <pthread.h>
#include <sys/socket.h>
#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "datacom/MessageEvent.h"
#include "datacom/MessageHeader.h"
#include "datacom/Mutex.h"

namespace datacom {

class IEngineHooks;
class LocalAddress;

/// What requestGetParam does with its Item: read the value, or write the value
/// it carries (a "SET") and read back the value now pending.
enum class ParamAccess { Read, Write };

/// The messaging engine every daemon of the appliance links to talk to its
/// peers over local datagram sockets: one message (header and body tag text)
/// per datagram. It owns a receive (server) socket, served by its own server
/// thread, and a send (client) socket from which requests and events leave and
/// on which replies come back. Replies that reach the wrong reader are parked in
/// a small response history and found again by the request that owns their ID.
///
/// Time-outs and delays are whole seconds: 0 waits without limit, the all-ones
/// value (wire::NO_WAIT) never waits for a reply nor sleeps between tries.
///
/// Threads: init once, before anything else; start() once. The server thread
/// alone reads the receive socket and calls the holder. Requests may be issued
/// from any thread at once. The response history and the subscriber list are
/// guarded by their own mutexes.
class DATACOM_API DataCommunicator {
public:
    DataCommunicator();
    /// Stops the server thread (see stop) and closes the sockets.
    ~DataCommunicator();
    DataCommunicator(const DataCommunicator&) = delete;
    DataCommunicator& operator=(const DataCommunicator&) = delete;

    /// Transport.

    /// Makes and binds both sockets (stale socket files removed first, the mode
    /// of setSocketAccess, 0777 by default; 1-second send and receive
    /// time-outs). A process cannot run without its sockets: a failure ends
    /// it, with exit status 0.
    void init(IEngineHooks* holder, const std::string& receivePath, const std::string& sendPath,
              const std::string& taskName);
    /// Who may write to the sockets that init makes from now on, for the whole
    /// process: by default anyone (mode 0777). A daemon started with a group
    /// passes 0660 and that group, so that only its user and the group's
    /// members can send it commands; a tool passes 0600 or 0660 (group -1
    /// keeps the process's own). Set before init, from one thread.
    static void setSocketAccess(mode_t mode, gid_t group);
    /// Waits for and reads one message. `body` receives the whole BODY element,
    /// only when the header's Size is at least 1.
    Fcodes readMsg(int sock, MessageHeader& header, std::string& body, sockaddr* from, socklen_t* fromLen,
                   unsigned timeoutSec);
    /// Sends header text plus `body` (the caller's BODY element, or nothing) as
    /// one datagram. Each try waits for room in the peer's queue up to the
    /// socket's send time-out; a try that times out is followed by a `delaySec`
    /// sleep (10 when 0, none with NO_WAIT), `tries` times in all. A peer that
    /// is gone ends the tries at once.
    Fcodes sendMessage(int sock, MessageHeader& header, const std::string& body, const sockaddr* to, socklen_t toLen,
                       unsigned delaySec, unsigned tries);
    /// Reads a stream descriptor byte by byte up to a newline (not appended).
    Fcodes readline(int sock, std::string& line, unsigned timeoutSec);

    /// Set before start(); the server thread reads it without a lock.
    IEngineHooks* getDataHolder() const { return dataHolder; }
    void setDataHolder(IEngineHooks* holder) { dataHolder = holder; }
    const std::string& getSockName() const { return sockName; }
    const std::string& getSendSockName() const { return sendSockName; }
    int getReceiveSocket() const { return receiveSocket; }
    int getSendSocket() const { return sendSocket; }

    /// Server.

    /// Starts the server thread. No thread runs when its creation fails.
    void start();
    /// Ends the server thread and waits for it; the receive socket receives no
    /// more. The appliance's daemons never stop theirs; orderly shutdown and
    /// tests do. Not called on the server thread.
    void stop();
    /// Appends a subscriber's receive-socket path, moving a repeated one to the end.
    void subscribe(const std::string& subscriber) DATACOM_EXCLUDES(observersMutex);
    /// Stamps the event with the local time and sends it to every subscriber,
    /// one try each and no reply awaited. A subscriber whose queue is full holds
    /// the send up to the send socket's 1-second time-out, so one a little
    /// behind loses nothing; one that never reads costs at most that second per
    /// event, one whose socket is gone nothing. Either loses the event and stays
    /// subscribed; one WARN names it at its first loss, none after until an
    /// event reaches it again.
    void notify(MessageEvent& event) DATACOM_EXCLUDES(observersMutex);
    /// A copy of the subscribers, in order.
    std::vector<std::string> getObservers() const DATACOM_EXCLUDES(observersMutex);

    /// The response history: at most HISTORY_LIMIT replies by ID (see
    /// storeResponse). Both take the history's lock, which is re-entrant: a
    /// request holds it for a whole try and looks up parked replies meanwhile.
    void storeResponse(int id, const std::string& header, const std::string& body, const std::string& sender);
    /// Copies out the texts kept for `id`; true when a header was kept.
    bool getResponse(int id, std::string& header, std::string& body, std::string& sender);

    /// Answers one request; FC_OK means "send replyHeader and replyBody back".
    Fcodes treatMsg(MessageHeader& header, const std::string& body, MessageHeader& replyHeader, std::string& replyBody);
    /// Hands the event in `body` to the holder, which takes ownership.
    Fcodes treatEventMsg(MessageHeader& header, const std::string& body);
    Fcodes treatCommandMsg(MessageHeader& header, const std::string& body, MessageHeader& replyHeader,
                           std::string& replyBody);
    /// "GET" and "SET" of data items: the item named by the request read, or set and read back.
    Fcodes treatDataMsg(MessageHeader& header, const std::string& body, MessageHeader& replyHeader,
                        std::string& replyBody);

    /// Client requests.

    /// One request-reply exchange with retries; each attempt takes a fresh ID
    /// from the process-wide counter. On return request.ID is the last one used.
    /// A reply is the answer when it carries the attempt's ID and comes from
    /// `peer`, read now or parked earlier; any other is parked.
    Fcodes sendRequest(const std::string& peer, MessageHeader& request, const std::string& requestBody,
                       MessageHeader& reply, std::string& replyBody, unsigned timeoutSec, unsigned tries);
    /// Sends a command (its tag text) and returns the peer's verdict from the ACK.
    Fcodes requestCommand(const std::string& peer, const std::string& commandText, std::string& replyBody,
                          unsigned timeoutSec, unsigned tries);
    /// Asks the peer to send its events to this engine's receive socket.
    Fcodes requestSubscribe(const std::string& peer);
    /// Sends an event, awaiting no reply.
    Fcodes requestEvent(const std::string& peer, MessageEvent& event, unsigned delaySec, unsigned tries);
    /// Reads one item of a peer's table.
    Fcodes requestDataItem(const std::string& peer, const std::string& table, int row, const std::string& item,
                           std::string& value, unsigned timeoutSec, unsigned tries);
    /// Reads (or, with ParamAccess::Write, sets and reads back) one property of
    /// a peer's JSON data set. `row`: instance key or decimal index, "" for the
    /// single instance.
    Fcodes requestGetParam(const std::string& peer, const std::string& dataSet, const std::string& component,
                           const std::string& item, std::string& value, ParamAccess access, const std::string& row,
                           unsigned timeoutSec, unsigned tries);
    /// Sets one item of a peer's table (the peer keeps it pending).
    Fcodes requestSetDataItem(const std::string& peer, const std::string& table, int row, const std::string& item,
                              const std::string& value, unsigned timeoutSec, unsigned tries);

    /// The ID the next request attempt of this process will take.
    static uint32_t peekNextRequestId() { return requestCounter.load(); }

private:
    static void* work(void* self);
    void doWork();
    /// Sends the reply, or the NACK refusal when treatment failed.
    void answer(MessageHeader& request, const std::string& body, const LocalAddress& sender);
    Fcodes makeSocket(int& sock, const std::string& path, const char* createFailure);
    /// One data request and the check of its reply; `op` names the log lines.
    Fcodes exchangeItem(const char* op, const std::string& peer, const char* type, const std::string& body,
                        const std::string& item, std::string& value, unsigned timeoutSec, unsigned tries);

    std::string sockName = "sockName";
    int receiveSocket = -1;
    std::string sendSockName = "sendSockName";
    int sendSocket = -1;
    std::string name = "tCom";
    IEngineHooks* dataHolder = nullptr;

    /// Response history: IDs oldest first, and the reply texts by ID.
    RecursiveMutex historyMutex;
    std::deque<int> historyOrder DATACOM_GUARDED_BY(historyMutex);
    std::map<int, std::string> historyHeaders DATACOM_GUARDED_BY(historyMutex);
    std::map<int, std::string> historyBodies DATACOM_GUARDED_BY(historyMutex);
    std::map<int, std::string> historySenders DATACOM_GUARDED_BY(historyMutex);

    /// Subscribers. Changed by the server thread, read by any notifying thread:
    /// guarded by a mutex of its own (notify sends from a copy, outside it).
    mutable Mutex observersMutex;
    std::vector<std::string> observers DATACOM_GUARDED_BY(observersMutex);
    /// Their last event was lost (warned once).
    std::set<std::string> failingObservers DATACOM_GUARDED_BY(observersMutex);

    /// Both sockets have their 1-second receive time-out (set by init).
    bool receivesBounded = false;

    pthread_t serverThread{};
    bool serverRunning = false;
    std::atomic<bool> stopping{false};

    static std::atomic<uint32_t> requestCounter;
    static mode_t socketMode;
    static gid_t socketGroup;
};

}  // namespace datacom
