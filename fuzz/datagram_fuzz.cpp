// A whole datagram as the engine's server meets it: received from a socket,
// its header and body read, then treated as the receive loop does (events to
// the holder, late replies into the response history, requests answered)
// against a real holder with a tabular and a JSON data set loaded. Commands
// include the engine's own ("SUBSCRIBE", "Add Row", "Get Next Row", the log
// switches) and the holder's; GET and SET bodies reach both stores.
//
// Each input starts from the same state: a fresh engine (no subscribers, an
// empty history), the holder's pending changes rolled back, everything it
// queued run, and the log level as it was.
#include <sys/socket.h>
#include <unistd.h>

#include "FuzzStores.h"
#include "FuzzSupport.h"
#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/MessageTypes.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"
#include "engine/LocalAddress.h"

using namespace datacom;

namespace {

struct SocketPair {
    SocketPair() {
        fuzz::check(socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, fds) == 0, "socketpair");
        // Room for the largest datagram a peer can send, refused or not.
        int room = 4 * static_cast<int>(wire::MAX_DATAGRAM);
        setsockopt(fds[0], SOL_SOCKET, SO_SNDBUF, &room, sizeof room);
        setsockopt(fds[1], SOL_SOCKET, SO_RCVBUF, &room, sizeof room);
    }
    int fds[2] = {-1, -1};
};

bool isReply(const std::string& type) {
    return type == msgtype::ACK || type == msgtype::NACK || type == msgtype::RESPONSE || type == msgtype::NO_REPLY;
}

// What the requester does with the answer: it must be a header it can read,
// carrying its request's ID.
void checkAnswerReadable(const MessageHeader& request, MessageHeader& replyHeader, const std::string& replyBody) {
    std::string datagram;
    replyHeader.toString(datagram);
    datagram += replyBody;
    std::string segment;
    MessageHeader read;
    fuzz::check(getSegment(datagram, 0, wire::TAG_HEADER, segment) >= 0 && isOk(read.initFromString(segment)),
                "the answer's header reads back");
    fuzz::check(read.ID == request.ID, "the answer carries the request's ID");
}

void treat(DataCommunicator& engine, MessageHeader& header, const std::string& body) {
    if (header.Type == msgtype::EVENT) {
        engine.treatEventMsg(header, body);
        return;
    }
    if (isReply(header.Type)) {
        std::string text;
        header.toString(text);
        engine.storeResponse(header.ID, text, body, "/tmp/sockPeer");
        std::string storedHeader, storedBody, storedSender;
        fuzz::check(engine.getResponse(header.ID, storedHeader, storedBody, storedSender), "a parked reply is found");
        MessageHeader parked;
        fuzz::check(isOk(parked.initFromString(storedHeader)) && parked.ID == header.ID,
                    "a parked reply's header reads back");
        return;
    }
    MessageHeader replyHeader;
    std::string replyBody;
    if (isOk(engine.treatMsg(header, body, replyHeader, replyBody))) {
        checkAnswerReadable(header, replyHeader, replyBody);
    } else {
        replyHeader.ID = header.ID;
        replyHeader.Type = msgtype::NACK;
        replyHeader.Size = 0;
        checkAnswerReadable(header, replyHeader, std::string());
    }
    // Subscribers a hostile SUBSCRIBE added get an event: the engine has no
    // send socket here, so each send fails and is only logged.
    if (!engine.getObservers().empty()) {
        MessageEvent event;
        event.id = "Channel Configured";
        engine.notify(event);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static SocketPair peer;
    fuzz::FuzzHolder& holder = fuzz::servedHolder();
    const int32_t logLevel = gDbgLevel.load();

    if (send(peer.fds[0], data, size, 0) != static_cast<ssize_t>(size))
        return 0;  // larger than the socket carries: no peer can send it either
    DataCommunicator engine;
    engine.setDataHolder(&holder);
    MessageHeader header;
    std::string body;
    LocalAddress sender;
    sender.clearForReceive();
    if (isOk(engine.readMsg(peer.fds[1], header, body, sender.get(), &sender.length(), wire::NO_WAIT)))
        treat(engine, header, body);

    // The worker first, so that nothing it runs overlaps the roll-back.
    fuzz::check(holder.drain(), "the holder's worker runs what was queued");
    holder.rollbackChanges();
    holder.rollback();
    gDbgLevel = logLevel;
    return 0;
}
