#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "support/ChannelTestSupport.h"
#include "channel/ConfigChannelTarnevel.h"
#include "channel/IChannelEvents.h"
#include "side/ProbeRegistry.h"
#include "SimServices.h"
#include "TrafficLog.h"
#include "holder/DataHolder.h"
#include "records/WireConstants.h"

// One channel event as the channel logic sent it.
struct RecordedEvent {
    std::string id;
    std::string rowId;  // the row, or the file name of a configuration event, or the video input
    unsigned long fcode;
    std::string status;
    std::string severity;
    std::string description;
};

// Records the channel logic's events instead of broadcasting them.
// Thread-safe: probe threads send events too.
class EventRecorder : public IChannelEvents {
public:
    void sendEvent(const std::string& eventId, const std::string& rowId, unsigned long fcode,
                   const std::string& status, const std::string& severity, const std::string& description) override {
        add({eventId, rowId, fcode, status, severity, description});
    }
    void sendCfgEvent(const std::string& eventId, const std::string& fileName, unsigned long fcode) override {
        add({eventId, fileName, fcode, "None", "Debug", fileName});
    }
    void sendSourceEvent(const std::string& input, bool off, const std::string& description) override {
        add({"Video Source Updated", input, 0, off ? "OFF" : "ON", "Info", description});
    }
    Fcodes sapStopAll() override {
        add({"STOP ALL SAP", "", 0, "", "", ""});
        return FC_OK;
    }
    std::vector<RecordedEvent> events() const {
        std::lock_guard<std::mutex> guard(mutex);
        return recorded;
    }
    // "id rowId" of each event, in order, for compact comparisons.
    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const RecordedEvent& event : events()) out.push_back(event.id + " " + event.rowId);
        return out;
    }
    void clear() {
        std::lock_guard<std::mutex> guard(mutex);
        recorded.clear();
    }

private:
    void add(RecordedEvent event) {
        std::lock_guard<std::mutex> guard(mutex);
        recorded.push_back(std::move(event));
    }
    mutable std::mutex mutex;
    std::vector<RecordedEvent> recorded;
};

// The channel manager's holder in a test: the four factory datasets loaded
// from the test root, and an engine on the manager's sockets for requests to
// the peers. It subscribes to nobody, so no event reaches doHandle.
class ChannelTestHolder : public DataHolder {
public:
    ChannelTestHolder() {
        init("tChMngrTest");
        for (const char* file : kFactoryFiles) loaded |= loadDataSet(std::string("/etc/sysmgt/") + file);
        getDataCommunicator()->init(this, wire::SOCK_CHAN, wire::SOCK_SEND_CHAN, "tChComTest");
        getDataCommunicator()->start();
    }
    ~ChannelTestHolder() override { shutdown(); }
    Fcodes doHandle(MessageEvent*) override { return FC_OK; }
    Fcodes loaded = FC_OK;
};

// A whole channel-logic fixture: a temporary root with the factory datasets,
// the simulated mediator, device manager and SAP announcer in this process
// (appliance_sim's services, their traffic printed to stdout), the holder and
// an event recorder. Make one per test; channel() gives a fresh working object.
class ChannelHarness {
public:
    ChannelHarness() {
        for (const char* file : kFactoryFiles) installFactoryFile(root, file);
        std::string params, error;
        readHostFile(std::string(APPLIANCE_SIM_DATA_DIR) + "/mediator_params.json", params);
        simLoaded = mediator.model().loadParams(params, error);
        started = mediator.start(wire::SOCK_MEDIATOR, "/tmp/sockSendTarnevelMediator") &&
                  device.start(wire::SOCK_DEV, "/tmp/sockSendDev") && sap.start(wire::SOCK_SAP, "/tmp/sockSendSap");
        if (started) simLoaded |= device.loadDataSetFile(std::string(APPLIANCE_SIM_DATA_DIR) + "/device_data_set.json", error);
        holder = std::make_unique<ChannelTestHolder>();
    }
    // Target probes report to the recorder: they end (each within its bound)
    // before it goes. Then the services' threads end before their models go:
    // a thread still in its last request must not meet a model already destroyed.
    ~ChannelHarness() {
        ProbeRegistry::instance().waitIdle(std::chrono::seconds(30));
        holder.reset();
        sap.stop();
        device.stop();
        mediator.stop();
    }
    ChannelHarness(const ChannelHarness&) = delete;
    ChannelHarness& operator=(const ChannelHarness&) = delete;
    // True when the simulator and the datasets are all up.
    bool ready() const { return started && isOk(simLoaded) && isOk(holder->loaded); }
    ConfigChannelTarnevel channel() { return ConfigChannelTarnevel(*holder, recorder); }

    TestRoot root;
    TrafficLog traffic;
    MediatorService mediator{traffic};
    DeviceService device{traffic};
    SapService sap{traffic};
    EventRecorder recorder;
    std::unique_ptr<ChannelTestHolder> holder;

private:
    bool started = false;
    Fcodes simLoaded = FC_OK;
};
