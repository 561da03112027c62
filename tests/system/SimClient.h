#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine/DataCommunicator.h"
#include "records/MessageCommand.h"
#include "records/MessageEvent.h"
#include "engine/NullDataHolder.h"

// The test's side of the conversation with appliance_sim: an engine on its
// own sockets whose holder keeps the events that arrive, for the test to wait
// on. Events arrive on the engine's server thread; the test reads them under
// the same mutex.
class SimClient : public NullDataHolder {
public:
    static constexpr const char* SOCK = "/tmp/sockSimTest";

    SimClient() {
        engine.init(this, SOCK, "/tmp/sockSendSimTest", "tSimTest");
        engine.start();
    }
    ~SimClient() override { engine.stop(); }

    Fcodes handle(MessageEvent* event) override {
        std::unique_ptr<MessageEvent> owned(event);
        std::lock_guard<std::mutex> guard(mutex);
        events.push_back(*event);
        arrived.notify_all();
        return FC_OK;
    }

    // Waits a bounded time for an event of that ID; true with it in `found`.
    bool waitEvent(const std::string& id, MessageEvent& found, int limitSec = 10) {
        std::unique_lock<std::mutex> guard(mutex);
        return arrived.wait_for(guard, std::chrono::seconds(limitSec), [&] {
            for (const MessageEvent& event : events)
                if (event.id == id) {
                    found = event;
                    return true;
                }
            return false;
        });
    }

    // Sends a command (one try) and returns the peer's verdict.
    Fcodes command(const std::string& peer, const std::string& id, const MessageParams::ParamMap& params,
                   unsigned timeoutSec = 5) {
        MessageCommand request;
        request.setId(id);
        request.params = params;
        std::string text, reply;
        request.toString(text);
        return engine.requestCommand(peer, text, reply, timeoutSec, 1);
    }

    DataCommunicator engine;

private:
    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<MessageEvent> events;
};
