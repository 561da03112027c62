#pragma once

#include <pthread.h>

#include <atomic>
#include <mutex>
#include <string>
#include <vector>

#include "FailureRules.h"
#include "datacom/DataCommunicator.h"
#include "datacom/DataHolder.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"

class TrafficLog;

// One simulated peer service of the appliance: a data holder whose engine
// sockets are served by the simulator's own loop, so that every message in
// and out is printed, and injected failures can answer with a code, a NACK or
// not at all. The engine still treats what passes (SUBSCRIBE, GET, SET, and
// the commands, through execute); events go to the engine's subscribers.
//
// Every service also serves the control commands "Sim Fail", "Sim Emit
// Event" and "Sim Report" (SimVocabulary.h); a derived service serves its own
// commands in serveCommand.
//
// Lifetime: made, started and destroyed by the main thread. Threads: the
// serving loop alone calls execute and treats messages; the models and the
// failure rules guard their own state.
class SimService : public datacom::DataHolder {
public:
    SimService(std::string serviceName, TrafficLog& traffic);
    // Stops serving, then the holder's worker; removes the socket files.
    ~SimService() override;

    // Initialises the holder and binds the engine's sockets (a failure ends the
    // process, as for every service of the appliance), then starts serving.
    // False when the serving thread could not start.
    bool start(const std::string& receivePath, const std::string& sendPath);
    // Ends the serving loop and waits for it.
    void stop();
    // Plays the service's process ending and another one starting behind the
    // same socket: new socket files (a new identity), no subscriber, and what
    // the service knew forgotten (afresh). False when serving could not start.
    bool restart();

    // Serves a command synchronously: the control commands, then the
    // service's own. The events it raises are sent after the answer.
    datacom::Fcodes execute(const std::string& command, std::string& result) override;
    // Events sent to a simulated service are printed when they arrive and
    // otherwise ignored; the holder's worker destroys them afterwards.
    datacom::Fcodes doHandle(datacom::MessageEvent* event) override;

    const std::string& serviceName() const { return shortName; }

protected:
    // Serves one of the service's own commands. `answer` starts as a copy of
    // the request and is sent back when it gained parameters; raised events
    // go into `events`.
    virtual datacom::Fcodes serveCommand(const datacom::MessageCommand& request, datacom::MessageCommand& answer,
                                         std::vector<datacom::MessageEvent>& events) = 0;
    // A further control command of this service; FC_NO_SUCH_NAME when unknown.
    // Raised events go into `events`, sent after the answer.
    virtual datacom::Fcodes serveControl(const datacom::MessageCommand& request,
                                         std::vector<datacom::MessageEvent>& events);
    // What the service recorded, one entry a line.
    virtual std::string report() const = 0;
    // Called after a "SET" succeeded.
    virtual void afterSet() {}
    // What a restarted service forgets; called while it does not serve.
    virtual void afresh() {}

private:
    static void* run(void* self);
    void serveLoop();
    void serveRequest(datacom::MessageHeader& header, const std::string& body, sockaddr* from, socklen_t fromLength);
    // Answers with an injected failure; false when no rule covers the request.
    bool injectFailure(const datacom::MessageHeader& header, const std::string& body, sockaddr* from,
                       socklen_t fromLength);
    void send(datacom::MessageHeader& reply, const std::string& body, sockaddr* from, socklen_t fromLength);
    void emitPending();
    bool launch();
    // Notes the subscriber of a SUBSCRIBE the engine accepted.
    void noteSubscriber(const std::string& body);

    const std::string shortName;
    TrafficLog& traffic;
    FailureRules failures;
    // Raised while serving a request; sent once its answer is out. Guarded
    // by pendingMutex: a test may call execute on its own thread while the
    // serving thread sends.
    std::vector<datacom::MessageEvent> pendingEvents;
    std::mutex pendingMutex;
    // The subscribers of this run of the service (the engine's own list
    // would outlive a restart); guarded by pendingMutex.
    std::vector<std::string> subscribers;
    pthread_t thread{};
    bool running = false;
    bool bound = false;  // the engine's sockets exist
    std::atomic<bool> stopping{false};
};

// The event of a "Sim Emit Event" command: Event, Source, Status, Description
// and Severity fill the event's fields, Fcode (hex with 0x, or decimal) its
// code, every other parameter travels as an
// event parameter. FC_BODY_ERROR without Event.
datacom::Fcodes eventFromCommand(const datacom::MessageCommand& command, datacom::MessageEvent& event);
