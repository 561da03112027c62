// The server thread: the receive loop, the dispatch of requests, events and
// late replies, subscriptions and notifications, and the response history.
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>

#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/IDataHolder.h"
#include "datacom/MessageTypes.h"
#include "datacom/TagText.h"
#include "datacom/WallClock.h"
#include "datacom/WireConstants.h"
#include "engine/DataCommunicatorInternal.h"
#include "engine/LocalAddress.h"

namespace datacom {

namespace {

bool isReplyType(const std::string& type) {
    return type == msgtype::ACK || type == msgtype::NACK || type == msgtype::RESPONSE || type == msgtype::NO_REPLY;
}

}  // namespace

void DataCommunicator::start() {
    stopping = false;
    int error = pthread_create(&serverThread, nullptr, &DataCommunicator::work, this);
    if (error != 0) {
        DBG(DBG_FATAL) << "DataCommunicator::start() pthread_create failed errno=" << error;
        return;
    }
    serverRunning = true;
}

void DataCommunicator::stop() {
    if (!serverRunning)
        return;
    stopping = true;
    // Ends a receive that is waiting, and makes every later one return at once.
    shutdown(receiveSocket, SHUT_RD);
    pthread_join(serverThread, nullptr);
    serverRunning = false;
}

void* DataCommunicator::work(void* self) {
    static_cast<DataCommunicator*>(self)->doWork();
    return nullptr;
}

void DataCommunicator::doWork() {
    setTaskName(pthread_self(), name);
    prctl(PR_SET_NAME, "DataCommunicator", 0, 0, 0);

    MessageHeader header;
    std::string body;
    LocalAddress sender;
    while (!stopping) {
        header = MessageHeader();
        body.clear();
        sender.clearForReceive();
        // The receive waits by itself: its time-out (one second) only brings
        // the loop round again; stop() ends it at once.
        ssize_t readSize = receiveDatagram(receiveSocket, sender.get(), &sender.length(), 0);
        if (stopping)
            return;
        if (readSize < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR))
            continue;
        if (readSize < 0) {
            DBG(DBG_ERROR) << "doWork: select failed before recv msg or event errno=" << errno;
            sleep(1);
            continue;
        }
        DBG(DBG_INFO) << "readMsg: recvfrom sock=" << receiveSocket << " senderlen=" << sender.length()
                      << " readSize=" << readSize;
        Fcodes code = parseDatagram(receiveSocket, readSize, header, body);
        if (!isOk(code)) {
            DBG(DBG_ERROR) << "doWork: readMsg failed from sock=" << sender.path() << " fcode=0x" << std::hex << code;
            DBG(DBG_ERROR) << "doWork: msg header:\n" << headerText(header);
            DBG(DBG_ERROR) << "doWork: msg body:\n" << body;
            continue;
        }

        if (header.Type == msgtype::EVENT) {
            DBG(DBG_INFO) << "doWork: Event arrived: msg header:\n" << headerText(header);
            DBG(DBG_INFO) << "doWork: msg body:\n" << body;
            treatEventMsg(header, body);
        } else if (isReplyType(header.Type)) {
            // A reply whose requester gave up, or that came to the wrong socket:
            // kept for the request that owns its ID, never answered.
            const std::string replyHeader = headerText(header);
            const std::string senderPath = sender.path();
            storeResponse(header.ID, replyHeader, body, senderPath);
            DBG(DBG_SYS) << "doWork: **** stored in history *** id=" << header.ID << " sender=" << senderPath
                         << " msg=" << replyHeader;
        } else {
            answer(header, body, sender);
        }
    }
}

void DataCommunicator::answer(MessageHeader& request, const std::string& body, const LocalAddress& sender) {
    MessageHeader replyHeader;
    thread_local std::string replyBody;
    replyBody.clear();
    Fcodes code = treatMsg(request, body, replyHeader, replyBody);
    if (isOk(code)) {
        Fcodes sent = sendMessage(receiveSocket, replyHeader, replyBody, sender.get(), sender.length(),
                                  wire::REQUEST_TIMEOUT_SEC, wire::REQUEST_TRIES);
        if (!isOk(sent))
            DBG(DBG_ERROR) << "doWork: sending resp failed to sock=" << sender.path() << " id=" << request.ID
                           << " req=" << request.Type << " resp=" << replyHeader.Type << " fcode=0x" << std::hex
                           << sent;
        return;
    }

    DBG(DBG_ERROR) << "doWork: treatMsg failed from sock=" << sender.path() << " id=" << request.ID
                   << " req=" << request.Type << " fcode=0x" << std::hex << code;
    replyHeader.ID = request.ID;
    replyHeader.Type = msgtype::NACK;
    replyHeader.Size = 0;
    replyHeader.Fcode = code;
    if (!isOk(sendMessage(receiveSocket, replyHeader, std::string(), sender.get(), sender.length(),
                          wire::REQUEST_TIMEOUT_SEC, wire::REQUEST_TRIES)))
        DBG(DBG_ERROR) << "doWork: response failed to sock=" << sender.path();
    DBG(DBG_ERROR) << "doWork: response header:\n" << headerText(replyHeader);
    DBG(DBG_ERROR) << "doWork: response body:\n" << replyBody;
}

Fcodes DataCommunicator::treatMsg(MessageHeader& header, const std::string& body, MessageHeader& replyHeader,
                                  std::string& replyBody) {
    if (header.Type == msgtype::GET)
        return treatDataMsg(header, body, replyHeader, replyBody);
    if (header.Type == msgtype::SET) {
        Fcodes code = treatDataMsg(header, body, replyHeader, replyBody);
        if (!isOk(code) && dataHolder != nullptr)
            dataHolder->rollbackChanges();
        return code;
    }
    if (header.Type == msgtype::COMMAND)
        return treatCommandMsg(header, body, replyHeader, replyBody);
    replyHeader.Type = header.Type;
    replyHeader.ID = header.ID;
    replyHeader.Fcode = FC_HEADER_ERROR;
    replyHeader.Size = 0;
    return FC_HEADER_ERROR;
}

Fcodes DataCommunicator::treatEventMsg(MessageHeader& header, const std::string& body) {
    std::string bodySegment;
    if (getSegment(body, 0, wire::TAG_BODY, bodySegment) < 0) {
        DBG(DBG_ERROR) << "treatEventMsg: Not Found BODY tags in msg:\n" << body;
        return FC_BODY_ERROR;
    }
    std::string eventText;
    if (header.Type == msgtype::EVENT && getSegment(bodySegment, 0, wire::TAG_EVENT, eventText) < 0)
        DBG(DBG_ERROR) << "treatEventMsg: Not Found Event tags in msg:\n" << body;
    auto* event = new MessageEvent();
    Fcodes code = event->initFromString(eventText);
    if (!isOk(code)) {
        DBG(DBG_ERROR) << "treatEventMsg: event initFromString error fcode=0x" << std::hex << code;
        delete event;
        return code;
    }
    event->fcode = header.Fcode;
    if (dataHolder == nullptr) {
        DBG(DBG_ERROR) << "treatEventMsg: No data holder for event=" << event->id;
        delete event;
        return FC_UNAVAILABLE;
    }
    return dataHolder->handle(event) | FC_OK;  // the holder owns the event now
}

void DataCommunicator::subscribe(const std::string& subscriber) {
    DBG(DBG_INFO) << "subscribe: subscribing observer sockName=" << subscriber;
    ScopedLock<Mutex> guard(observersMutex);
    observers.erase(std::remove(observers.begin(), observers.end(), subscriber), observers.end());
    observers.push_back(subscriber);
}

std::vector<std::string> DataCommunicator::getObservers() const {
    ScopedLock<Mutex> guard(observersMutex);
    return observers;
}

// A subscriber that stops receiving (its socket gone, its queue full) stays
// subscribed: subscriptions last as long as this process, and a tool that
// comes back under the same socket name gets events again without asking.
// What changes is the noise: the first lost event of a subscriber logs one
// WARN naming it; later losses are not warned again until an event reaches it,
// which logs that it receives again. Tools subscribe under stable names, so a
// restarted tool takes its old entry back instead of adding one.
void DataCommunicator::notify(MessageEvent& event) {
    event.time = eventTimeText(wallClockNow().tv_sec);
    for (const std::string& observer : getObservers()) {
        DBG(DBG_INFO) << "notify: event=" << event.id << " to observer=" << observer;
        const bool delivered = isOk(requestEvent(observer, event, wire::NO_WAIT, 1));
        bool changed = false;
        {
            ScopedLock<Mutex> guard(observersMutex);
            changed = delivered == (failingObservers.count(observer) != 0);
            if (changed && delivered)
                failingObservers.erase(observer);
            else if (changed)
                failingObservers.insert(observer);
        }
        if (!changed)
            continue;
        if (delivered)
            DBG(DBG_INFO) << "notify: observer=" << observer << " receives events again";
        else
            DBG(DBG_WARN) << "notify: event=" << event.id << " lost for observer=" << observer
                          << "; it stays subscribed, its further losses are not warned";
    }
}

void DataCommunicator::storeResponse(int id, const std::string& header, const std::string& body,
                                     const std::string& sender) {
    ScopedLock<RecursiveMutex> guard(historyMutex);
    historyOrder.push_back(id);
    historyHeaders[id] = header;
    historyBodies[id] = body;
    historySenders[id] = sender;
    // Eviction is by ID: an ID that recurs within the window loses its newest
    // entry together with its oldest. The history is a best-effort cache.
    while (historyOrder.size() > wire::HISTORY_LIMIT) {
        int oldest = historyOrder.front();
        historyOrder.pop_front();
        historyHeaders.erase(oldest);
        historyBodies.erase(oldest);
        historySenders.erase(oldest);
    }
    DBG(DBG_INFO) << "**** storeResponse: stored=" << historyOrder.size() << " messages (hdrs=" << historyHeaders.size()
                  << ",bds=" << historyBodies.size() << ",snds=" << historySenders.size();
}

bool DataCommunicator::getResponse(int id, std::string& header, std::string& body, std::string& sender) {
    ScopedLock<RecursiveMutex> guard(historyMutex);
    auto foundBody = historyBodies.find(id);
    if (foundBody != historyBodies.end())
        body = foundBody->second;
    auto foundSender = historySenders.find(id);
    if (foundSender != historySenders.end())
        sender = foundSender->second;
    auto foundHeader = historyHeaders.find(id);
    if (foundHeader == historyHeaders.end())
        return false;
    header = foundHeader->second;
    return true;
}

}  // namespace datacom
