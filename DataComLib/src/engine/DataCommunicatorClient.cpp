// Client requests: the reliable request-reply exchange with reply matching
// through the response history, commands, subscriptions and events.
#include <string>

#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/MessageTypes.h"
#include "datacom/WireConstants.h"
#include "engine/DataCommunicatorInternal.h"
#include "engine/LocalAddress.h"

namespace datacom {

std::atomic<uint32_t> DataCommunicator::requestCounter{1};

Fcodes DataCommunicator::sendRequest(const std::string& peer, MessageHeader& request, const std::string& requestBody,
                                     MessageHeader& reply, std::string& replyBody, unsigned timeoutSec,
                                     unsigned tries) {
    LocalAddress peerAddress;
    if (!peerAddress.setLogicalPath(peer)) {
        DBG(DBG_ERROR) << "sendRequest: Error in sending to sock:" << peer << " (path too long)";
        return FC_COMM_ERROR;
    }

    Fcodes result = FC_COMM_ERROR;
    std::string storedHeader, storedSender;
    LocalAddress sender;
    while (result != FC_OK && tries > 0) {
        request.ID = static_cast<int32_t>(requestCounter.fetch_add(1));
        Fcodes sent =
            sendMessage(sendSocket, request, requestBody, peerAddress.get(), peerAddress.length(), timeoutSec, tries);
        if (!isOk(sent)) {
            DBG(DBG_ERROR) << "sendRequest: Error in sending to sock:" << peer;
            return sent;
        }

        // Held until the try ends, reads included: a reply read here for
        // another request is parked before that request looks for it.
        ScopedLock<RecursiveMutex> guard(historyMutex);
        // A parked reply answers this try only when the addressed peer sent
        // it: another peer's reply that happens to carry this ID (IDs come
        // from each requester's own counter) stays parked.
        auto parkedFromPeer = [&] {
            std::string parkedBody;
            if (!getResponse(request.ID, storedHeader, parkedBody, storedSender) || storedSender != peerAddress.path())
                return false;
            replyBody = parkedBody;
            return true;
        };
        for (;;) {
            if (parkedFromPeer()) {
                result = reply.initFromString(storedHeader);
                DBG(DBG_SYS) << "sendRequest: **** found in history *** id=" << request.ID << " sender=" << storedSender
                             << " resp=" << storedHeader;
                break;
            }
            sender.clearForReceive();
            Fcodes read = readMsg(sendSocket, reply, replyBody, sender.get(), &sender.length(), timeoutSec);
            if (!isOk(read)) {
                if (parkedFromPeer()) {
                    result = reply.initFromString(storedHeader);
                    DBG(DBG_SYS) << "sendRequest: **** found in history after read=err *** id=" << request.ID
                                 << " sender=" << storedSender << " resp=" << storedHeader;
                    break;
                }
                DBG(DBG_ERROR) << "sendRequest: Error in readMsg from sock:" << peer << " fcode=0x" << std::hex << read;
                reply.Type = request.Type;
                reply.ID = request.ID;
                reply.Size = 0;
                reply.Fcode = read;
                break;
            }
            if (sender.nothingReceived())
                continue;  // the wait ended without a datagram: wait again
            if (reply.ID == request.ID && sender.hasSamePath(peerAddress)) {
                result = FC_OK;
                break;
            }
            const std::string senderPath = sender.path();
            DBG(DBG_WARN) << "sendRequest: Responder=" << senderPath << "!=" << peerAddress.path()
                          << " or respID=" << reply.ID << "!=" << request.ID << " retries left=" << tries;
            const std::string strayHeader = headerText(reply);
            storeResponse(reply.ID, strayHeader, replyBody, senderPath);
            DBG(DBG_SYS) << "sendRequest: **** stored in history *** id=" << reply.ID << " sender=" << senderPath
                         << " resp=" << strayHeader;
            replyBody.clear();  // the stray's body must not pass for the body of a reply without one
        }
        --tries;
    }
    return result;
}

Fcodes DataCommunicator::requestCommand(const std::string& peer, const std::string& commandText, std::string& replyBody,
                                        unsigned timeoutSec, unsigned tries) {
    const std::string body = "<BODY>\n\t" + commandText + "\n</BODY>\n";
    MessageHeader request = outgoingHeader(msgtype::COMMAND, FC_OK, body);

    MessageHeader reply;
    Fcodes code = sendRequest(peer, request, body, reply, replyBody, timeoutSec, tries);
    if (!isOk(code)) {
        DBG(DBG_ERROR) << "requestCommand: Failed to sendRequest:\n" << headerText(request) << body;
        DBG(DBG_ERROR) << "requestCommand: FCODE=0x" << std::hex << code;
        return code;
    }
    if (reply.ID == request.ID && reply.Type == msgtype::ACK)
        return reply.Fcode;  // the peer's verdict
    DBG(DBG_ERROR) << "requestCommand: Request Header was:\n" << headerText(request);
    DBG(DBG_ERROR) << "requestCommand: Response Header mismatch:\n" << headerText(reply);
    return FC_HEADER_ERROR;
}

Fcodes DataCommunicator::requestSubscribe(const std::string& peer) {
    std::string command = "\t<Command ID=\"";
    command += wire::CMD_SUBSCRIBE;
    command += "\" >\n\t\t<Parameter Name=\"";
    command += wire::PARAM_SOCK_NAME;
    command += "\" Value=\"";
    command += sockName;
    command += "\" />\n\t</Command>\n";
    std::string replyBody;
    return requestCommand(peer, command, replyBody, wire::REQUEST_TIMEOUT_SEC, wire::REQUEST_TRIES);
}

Fcodes DataCommunicator::requestEvent(const std::string& peer, MessageEvent& event, unsigned delaySec, unsigned tries) {
    std::string eventText;
    event.toString(eventText);
    const std::string body = "<BODY>\n" + eventText + "</BODY>\n";
    MessageHeader header = outgoingHeader(msgtype::EVENT, event.fcode, body);

    LocalAddress address;
    Fcodes code = address.setLogicalPath(peer)
                      ? sendMessage(sendSocket, header, body, address.get(), address.length(), delaySec, tries)
                      : FC_COMM_ERROR;
    if (!isOk(code)) {
        DBG(DBG_ERROR) << "requestEvent: Failed to sendMessage:\n" << headerText(header) << body;
        DBG(DBG_ERROR) << "requestEvent: FCODE=0x" << std::hex << code;
    }
    return code;
}

}  // namespace datacom
