// led_daemon: the front-panel LED of the encoder appliance. It follows the
// channel manager's events (a channel played lights it green, a channel
// stopped turns it off), keeps its state in a small JSON data set and answers
// peers' "GET"s of it on its socket /tmp/sockLed.
//   led_daemon [--timeout SEC]     ends by itself after SEC seconds (default: never)
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <mutex>
#include <string>
#include <thread>

#include "chanmgr/ChannelManagerNames.h"
#include "datacom/DataCommunicator.h"
#include "datacom/DataHolder.h"
#include "datacom/MessageEvent.h"
#include "datacom/SysmgtRoot.h"
#include "datacom/WireConstants.h"

namespace {

const char* const STORE = "LedDataSet";
const char* const STORE_FILE = "/tmp/led_data_set.json";
const char* const LED = "Front LED";

// The factory state of the store: one LED, off, no channel.
const char* const FACTORY_STORE = R"({
 "dataset": "LedDataSet",
 "components": {
  "Front LED": {
   "properties": {
    "Colour":  { "type": "string", "default": "off", "access": "R", "description": "" },
    "Channel": { "type": "string", "default": "",    "access": "R", "description": "" },
    "Changes": { "type": "integer", "default": 0,    "access": "R", "description": "" }
   },
   "instance": { "Colour": "off", "Channel": "", "Changes": 0 }
  }
 }
})";

// The daemon's data holder: the library queues the events, the worker thread
// calls doHandle one at a time, and "GET"s read the committed store.
class LedDaemon : public datacom::DataHolder {
public:
    ~LedDaemon() override { shutdown(); }

    datacom::Fcodes doHandle(datacom::MessageEvent* event) override {
        if (event->id == chanmgr::ev::CHANNEL_PLAYED)
            show("green", event->source);
        else if (event->id == chanmgr::ev::CHANNEL_STOPPED)
            show("off", "");
        std::lock_guard<std::mutex> guard(outputMutex);
        std::cout << "event: " << event->id << " " << event->source << std::endl;
        return datacom::FC_OK;
    }

private:
    void show(const std::string& colour, const std::string& channel) {
        int changes = 0;
        getIntParam(STORE, LED, "Changes", changes, "");
        setTextParam(STORE, LED, "Colour", colour, "");
        setTextParam(STORE, LED, "Channel", channel, "");
        setIntParam(STORE, LED, "Changes", changes + 1, "");
        commitComponent(STORE, LED);
    }
    std::mutex outputMutex;
};

}  // namespace

int main(int argc, char** argv) {
    int timeoutSec = -1;
    if (argc == 3 && std::strcmp(argv[1], "--timeout") == 0)
        timeoutSec = std::atoi(argv[2]);
    std::ofstream(datacom::sysmgtPath(STORE_FILE)) << FACTORY_STORE;

    LedDaemon led;
    led.init("led_daemon");
    if (!datacom::isOk(led.loadDataSet(STORE, STORE_FILE))) {
        std::cerr << "led_daemon: cannot load " << STORE_FILE << std::endl;
        return 1;
    }
    datacom::DataCommunicator* engine = led.getDataCommunicator();
    engine->init(&led, "/tmp/sockLed", "/tmp/sockLedSend", "tLed");
    engine->start();

    // The channel manager may start after us: ask until it takes the subscription.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(timeoutSec < 0 ? 1000000 : timeoutSec);
    while (!datacom::isOk(engine->requestSubscribe(datacom::wire::SOCK_CHAN))) {
        if (std::chrono::steady_clock::now() >= end)
            return 1;
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    }
    std::cout << "led_daemon subscribed" << std::endl;
    while (std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    return 0;
}
