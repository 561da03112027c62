#include "SimService.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "SimVocabulary.h"
#include "TrafficLog.h"
#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/MessageTypes.h"
#include "datacom/SysmgtRoot.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"

using namespace datacom;

namespace {

// The command ID of a COMMAND body, or the message type of a "GET"/"SET",
// which the failure rules use as its name.
std::string requestName(const MessageHeader& header, const std::string& body) {
    if (header.Type != msgtype::COMMAND)
        return header.Type;
    std::string command, id;
    if (getSegment(body, 0, wire::TAG_COMMAND, command) >= 0)
        getPropertyValue(command, 0, wire::ATTR_ID, id);
    return id;
}

bool isControl(const std::string& id) {
    return id == sim::CMD_SIM_FAIL || id == sim::CMD_SIM_EMIT_EVENT || id == sim::CMD_SIM_REPORT ||
           id == sim::CMD_SIM_SET_PARAM || id == sim::CMD_SIM_SET_INPUT;
}

}  // namespace

Fcodes eventFromCommand(const MessageCommand& command, MessageEvent& event) {
    MessageParams::ParamMap params = command.params;
    auto take = [&params](const char* name, std::string& field) {
        auto found = params.find(name);
        if (found == params.end())
            return false;
        field = found->second;
        params.erase(found);
        return true;
    };
    if (!take(sim::PARAM_EVENT, event.id) || event.id.empty())
        return FC_BODY_ERROR;
    take(sim::PARAM_SOURCE, event.source);
    take(sim::PARAM_STATUS, event.status);
    take(sim::PARAM_DESCRIPTION, event.description);
    take(sim::PARAM_SEVERITY, event.severity);
    std::string fcode;
    if (take(sim::PARAM_FCODE, fcode)) {
        char* end = nullptr;
        unsigned long code = std::strtoul(fcode.c_str(), &end, 0);
        if (fcode.empty() || *end != '\0' || code > 0xFFFFFFFFul)
            return FC_BODY_ERROR;
        event.fcode = static_cast<Fcodes>(code);
    }
    event.params = params;
    return FC_OK;
}

SimService::SimService(std::string serviceName, TrafficLog& trafficLog)
    : shortName(std::move(serviceName)), traffic(trafficLog) {}

SimService::~SimService() {
    stop();
    shutdown();
    // Sockets left behind would look like a running service to the next start.
    if (bound) {
        unlink(sysmgtPath(getDataCommunicator()->getSockName()).c_str());
        unlink(sysmgtPath(getDataCommunicator()->getSendSockName()).c_str());
    }
}

bool SimService::start(const std::string& receivePath, const std::string& sendPath) {
    init("t" + shortName);
    getDataCommunicator()->init(this, receivePath, sendPath, "t" + shortName + "Com");
    bound = true;
    return launch();
}

bool SimService::launch() {
    stopping = false;
    if (pthread_create(&thread, nullptr, &SimService::run, this) != 0)
        return false;
    running = true;
    traffic.note(shortName + " serving " + getDataCommunicator()->getSockName());
    return true;
}

bool SimService::restart() {
    stop();
    {
        std::lock_guard<std::mutex> guard(pendingMutex);
        subscribers.clear();
        pendingEvents.clear();
    }
    afresh();
    DataCommunicator& engine = *getDataCommunicator();
    const std::string receivePath = engine.getSockName(), sendPath = engine.getSendSockName();
    // Unlinked first: the new files are new inodes, as a new process's are.
    unlink(sysmgtPath(receivePath).c_str());
    unlink(sysmgtPath(sendPath).c_str());
    engine.init(this, receivePath, sendPath, "t" + shortName + "Com");
    traffic.note(shortName + " restarted");
    return launch();
}

void SimService::noteSubscriber(const std::string& body) {
    std::string command, parameter, name, value;
    if (getSegment(body, 0, wire::TAG_COMMAND, command) < 0 || getSegment(command, 0, "Parameter", parameter) < 0 ||
        getPropertyValue(parameter, 0, "Name", name) < 0 || getPropertyValue(parameter, 0, "Value", value) < 0 ||
        name != wire::PARAM_SOCK_NAME)
        return;
    std::lock_guard<std::mutex> guard(pendingMutex);
    subscribers.erase(std::remove(subscribers.begin(), subscribers.end(), value), subscribers.end());
    subscribers.push_back(value);
}

void SimService::stop() {
    if (!running)
        return;
    stopping = true;
    ::shutdown(getDataCommunicator()->getReceiveSocket(), SHUT_RD);
    pthread_join(thread, nullptr);
    running = false;
}

void* SimService::run(void* self) {
    static_cast<SimService*>(self)->serveLoop();
    return nullptr;
}

void SimService::serveLoop() {
    setTaskName(pthread_self(), "t" + shortName + "Sim");
    DataCommunicator& engine = *getDataCommunicator();
    const int sock = engine.getReceiveSocket();
    while (!stopping) {
        MessageHeader header;
        std::string body;
        sockaddr_storage from{};
        socklen_t fromLength = wire::SENDER_ADDR_SIZE;
        // Waits here, a second at a time, to look at `stopping` in between
        // (stop() ends the wait at once); the read itself then never waits.
        pollfd readable{sock, POLLIN, 0};
        if (poll(&readable, 1, 1000) <= 0 && !stopping)
            continue;
        if (stopping)
            break;
        Fcodes read =
            engine.readMsg(sock, header, body, reinterpret_cast<sockaddr*>(&from), &fromLength, wire::NO_WAIT);
        if (stopping)
            break;
        if (!isOk(read) || header.Type.empty())
            continue;
        traffic.message("IN", shortName, header, body);
        if (header.Type == msgtype::EVENT)
            engine.treatEventMsg(header, body);
        else if (header.Type == msgtype::COMMAND || header.Type == msgtype::GET || header.Type == msgtype::SET)
            serveRequest(header, body, reinterpret_cast<sockaddr*>(&from), fromLength);
        // Replies reach this socket only by mistake: printed, never answered.
    }
}

void SimService::serveRequest(MessageHeader& header, const std::string& body, sockaddr* from, socklen_t fromLength) {
    if (injectFailure(header, body, from, fromLength))
        return;
    MessageHeader reply;
    std::string replyBody;
    DataCommunicator& engine = *getDataCommunicator();
    Fcodes code = engine.treatMsg(header, body, reply, replyBody);
    // A device manager applies a setting at once: what was set is what a later
    // GET reads. (A refused SET the engine has already rolled back.)
    if (header.Type == msgtype::SET && isOk(code))
        afterSet();
    if (isOk(code) && requestName(header, body) == wire::CMD_SUBSCRIBE)
        noteSubscriber(body);
    // A refused command is answered with an ACK carrying the code, as the
    // mediator answers, so that the requester learns the code itself; a
    // refused GET or SET with a NACK, as the engine answers it.
    if (!isOk(code) && !(header.Type == msgtype::COMMAND && reply.Type == msgtype::ACK)) {
        reply = MessageHeader();
        reply.ID = header.ID;
        reply.Type = msgtype::NACK;
        reply.Fcode = code;
        replyBody.clear();
    }
    send(reply, replyBody, from, fromLength);
    emitPending();
}

bool SimService::injectFailure(const MessageHeader& header, const std::string& body, sockaddr* from,
                               socklen_t fromLength) {
    const std::string request = requestName(header, body);
    FailureRules::Failure failure;
    if (isControl(request) || !failures.take(request, failure))
        return false;
    if (failure.mode == FailureRules::Mode::Silent) {
        traffic.note(shortName + " leaves #" + std::to_string(header.ID) + " \"" + request + "\" unanswered");
        return true;
    }
    MessageHeader reply;
    reply.ID = header.ID;
    reply.Type = failure.mode == FailureRules::Mode::Nack ? msgtype::NACK : msgtype::ACK;
    reply.Fcode = failure.code;
    send(reply, std::string(), from, fromLength);
    return true;
}

void SimService::send(MessageHeader& reply, const std::string& body, sockaddr* from, socklen_t fromLength) {
    reply.Size = static_cast<int32_t>(body.size());
    Fcodes sent = getDataCommunicator()->sendMessage(getDataCommunicator()->getReceiveSocket(), reply, body, from,
                                                     fromLength, wire::NO_WAIT, wire::REQUEST_TRIES);
    traffic.message(isOk(sent) ? "OUT" : "LOST", shortName, reply, body);
}

void SimService::emitPending() {
    std::vector<MessageEvent> events;
    std::vector<std::string> to;
    {
        std::lock_guard<std::mutex> guard(pendingMutex);
        events.swap(pendingEvents);
        to = subscribers;
    }
    for (MessageEvent& event : events) {
        for (const std::string& subscriber : to)
            getDataCommunicator()->requestEvent(subscriber, event, wire::NO_WAIT, 1);
        MessageHeader header;
        header.Type = msgtype::EVENT;
        header.Fcode = event.fcode;
        std::string text;
        event.toString(text);
        traffic.message("OUT", shortName, header, "<BODY>" + text + "</BODY>");
    }
}

Fcodes SimService::execute(const std::string& commandText, std::string& result) {
    MessageCommand request;
    Fcodes code = request.initFromString(commandText);
    if (!isOk(code))
        return code;
    const std::string& id = request.getId();
    MessageCommand answer = request;
    std::vector<MessageEvent> raised;
    if (id == sim::CMD_SIM_FAIL) {
        code = failures.addFromCommand(request);
    } else if (id == sim::CMD_SIM_EMIT_EVENT) {
        MessageEvent event;
        code = eventFromCommand(request, event);
        if (isOk(code))
            raised.push_back(event);
    } else if (id == sim::CMD_SIM_REPORT) {
        answer.addParam(sim::PARAM_REPORT, report() + failures.describe());
    } else if (isControl(id)) {
        code = serveControl(request, raised);
    } else {
        code = serveCommand(request, answer, raised);
    }
    {
        std::lock_guard<std::mutex> guard(pendingMutex);
        pendingEvents.insert(pendingEvents.end(), raised.begin(), raised.end());
    }
    if (isOk(code) && answer.params != request.params)
        answer.toString(result);
    return code;
}

Fcodes SimService::serveControl(const MessageCommand& /*request*/, std::vector<MessageEvent>& /*events*/) {
    return FC_NO_SUCH_NAME;
}

Fcodes SimService::doHandle(MessageEvent* /*event*/) {
    return FC_OK;
}
