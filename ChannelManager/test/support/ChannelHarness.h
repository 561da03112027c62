#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "LogCapture.h"
#include "SimServices.h"
#include "TestPaths.h"
#include "TestRoot.h"
#include "TrafficLog.h"
#include "channel/ConfigChannelTarnevel.h"
#include "datacom/DataCommunicator.h"
#include "datacom/DataHolder.h"
#include "datacom/MessageCommand.h"
#include "datacom/WireConstants.h"
#include "manager/ChannelMngr.h"
#include "model/ChannelRunBook.h"
#include "ports/IChannelEvents.h"
#include "side/ProbeRegistry.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

// Copies a factory dataset of etc/sysmgt (by file name) to its logical path
// under the test's root, e.g. installFactoryFile(root, "vsrc_data_set.json").
inline bool installFactoryFile(const TestRoot& root, const std::string& fileName) {
    std::ifstream in(std::string(testpaths::FACTORY_DIR) + "/" + fileName, std::ios::binary);
    std::ofstream out(root.host("/etc/sysmgt/" + fileName), std::ios::binary);
    out << in.rdbuf();
    return in.good() && out.good();
}

// The four factory datasets the channel manager loads.
inline const char* const kFactoryFiles[] = {"channel_data_set_vex.json", "vsrc_data_set.json", "zixistat_data_set.json",
                                            "srtstat_data_set.json"};

// Command and event parameters in order, e.g. {{"RowID", "HEVC"}}.
using Params = std::vector<std::pair<std::string, std::string>>;

// A parsed command, e.g. makeCommand("Play", {{"RowID", "HEVC"}}).
inline datacom::MessageCommand makeCommand(const std::string& id, const Params& params = {}) {
    datacom::MessageCommand command;
    command.setId(id);
    for (const auto& [name, value] : params)
        command.addParam(name, value);
    return command;
}

// A command's text as the engine hands it to execute.
inline std::string commandText(const std::string& id, const Params& params = {}) {
    std::string text;
    makeCommand(id, params).toString(text);
    return text;
}

// An event as the mediator or the device manager sends it.
inline datacom::MessageEvent mediatorEvent(const std::string& id, const std::string& source, const std::string& status,
                                           const Params& params = {}) {
    datacom::MessageEvent event;
    event.id = id;
    event.source = source;
    event.status = status;
    for (const auto& [name, value] : params)
        event.addParam(name, value);
    return event;
}

// One setting of a dataset: a component's property of an instance and its
// value, text, integer or flag by the value's type.
struct Set {
    Set(const char* c, const char* p, std::string i, std::string v)
        : component(c), property(p), instance(std::move(i)), text(std::move(v)) {}
    Set(const char* c, const char* p, std::string i, const char* v) : Set(c, p, std::move(i), std::string(v)) {}
    Set(const char* c, const char* p, std::string i, int v)
        : component(c), property(p), instance(std::move(i)), number(v), kind(1) {}
    Set(const char* c, const char* p, std::string i, bool v)
        : component(c), property(p), instance(std::move(i)), flag(v), kind(2) {}
    const char *component, *property;
    std::string instance, text;
    int number = 0;
    bool flag = false;
    int kind = 0;
};

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
    void sendEvent(const std::string& eventId, const std::string& rowId, unsigned long fcode, const std::string& status,
                   const std::string& severity, const std::string& description) override {
        add({eventId, rowId, fcode, status, severity, description});
    }
    void sendCfgEvent(const std::string& eventId, const std::string& fileName, unsigned long fcode) override {
        add({eventId, fileName, fcode, "None", "Debug", fileName});
    }
    void sendSourceEvent(const std::string& input, bool off, const std::string& description) override {
        add({"Video Source Updated", input, 0, off ? "OFF" : "ON", "Info", description});
    }
    datacom::Fcodes sapStopAll() override {
        add({"STOP ALL SAP", "", 0, "", "", ""});
        return datacom::FC_OK;
    }
    std::vector<RecordedEvent> events() const {
        std::lock_guard<std::mutex> guard(mutex);
        return recorded;
    }
    // "id rowId" of each event, in order, for compact comparisons.
    std::vector<std::string> names() const {
        std::vector<std::string> out;
        for (const RecordedEvent& event : events())
            out.push_back(event.id + " " + event.rowId);
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
class ChannelTestHolder : public datacom::DataHolder {
public:
    ChannelTestHolder() {
        init("tChMngrTest");
        for (const char* file : kFactoryFiles)
            loaded |= loadDataSet(std::string("/etc/sysmgt/") + file);
        getDataCommunicator()->init(this, datacom::wire::SOCK_CHAN, datacom::wire::SOCK_SEND_CHAN, "tChComTest");
        getDataCommunicator()->start();
    }
    ~ChannelTestHolder() override { shutdown(); }
    datacom::Fcodes doHandle(datacom::MessageEvent*) override { return datacom::FC_OK; }
    datacom::Fcodes loaded = datacom::FC_OK;
};

// The simulated peers of the channel logic in one process: a temporary root
// with the factory datasets, the mediator, device manager and SAP announcer
// (appliance_sim's services, their traffic printed to stdout), the holder and
// an event recorder. The log is captured from before the first thread starts
// to after the last one ends. Make one per test; channel() gives a fresh
// working object. ManagerHarness below runs the manager instead of the holder.
class ChannelHarness {
public:
    ChannelHarness() : ChannelHarness(true) {}
    // Target probes report to the recorder: they end (each within its bound)
    // before it goes. Then the services' threads end before their models go:
    // a thread still in its last request must not meet a model already destroyed.
    virtual ~ChannelHarness() {
        ProbeRegistry::instance().waitIdle(std::chrono::seconds(30));
        holder.reset();
        sap.stop();
        device.stop();
        mediator.stop();
        datacom::gDbgLevel = savedLevel;
    }
    ChannelHarness(const ChannelHarness&) = delete;
    ChannelHarness& operator=(const ChannelHarness&) = delete;
    // True when the simulator and the datasets are all up.
    bool ready() const { return started && datacom::isOk(simLoaded) && (!holder || datacom::isOk(holder->loaded)); }
    ConfigChannelTarnevel channel() { return ConfigChannelTarnevel(*holder, recorder, book); }
    // A channel command as the manager hands it on, parsed.
    datacom::Fcodes channelCommand(const std::string& id, const Params& params = {}) {
        return channel().execute(makeCommand(id, params));
    }

    // The next `Sim Fail` rule of the mediator: the next request of
    // `commandId` fails ("Unavailable" unless `extra` names an Fcode, a Count or a Mode).
    datacom::Fcodes failNext(const std::string& commandId, Params extra = {}) {
        extra.insert(extra.begin(), {"Command", commandId});
        return simControl("Sim Fail", extra);
    }
    // A control command of the simulated mediator ("Sim Set Input", ...), handled in place.
    datacom::Fcodes simControl(const std::string& id, const Params& params) {
        std::string result;
        return mediator.execute(commandText(id, params), result);
    }

    // Applies `sets` to "ChannelDataSet" (committed at once, as a load would);
    // false when one is refused.
    bool set(const std::vector<Set>& sets, const char* dataSet = vocab::ds::CHANNEL) {
        bool ok = true;
        for (const Set& s : sets)
            ok &= datacom::isOk(s.kind == 0 ? store->initTextParam(dataSet, s.component, s.property, s.text, s.instance)
                                : s.kind == 1
                                    ? store->initIntParam(dataSet, s.component, s.property, s.number, s.instance)
                                    : store->initBoolParam(dataSet, s.component, s.property, s.flag, s.instance));
        return ok;
    }

    // A value of the holder's (or the manager's) datasets; "<unread>", -1 or
    // false when it cannot be read.
    std::string text(const char* dataSet, const char* component, const char* property, const std::string& row) {
        std::string value = "<unread>";
        store->getTextParam(dataSet, component, property, value, row);
        return value;
    }
    int number(const char* dataSet, const char* component, const char* property, const std::string& row) {
        int value = -1;
        store->getIntParam(dataSet, component, property, value, row);
        return value;
    }
    bool flag(const char* dataSet, const char* component, const char* property, const std::string& row) {
        bool value = false;
        store->getBoolParam(dataSet, component, property, value, row);
        return value;
    }

    // Sets a channel's "State" and "Status" as a play or a stop would leave them.
    void setState(const std::string& row, const char* state, const char* status = "OK") {
        holder->initTextParam(vocab::ds::CHANNEL, vocab::tbl::CHANNELS, vocab::prop::STATE, state, row);
        holder->initTextParam(vocab::ds::CHANNEL, vocab::tbl::CHANNELS, vocab::prop::STATUS, status, row);
    }

    // The mediator writes ("Component/Parameter=value") in arrival order, only
    // those starting with one of `prefixes` when any are given.
    std::vector<std::string> writes(const std::vector<std::string>& prefixes = {}) {
        std::vector<std::string> out;
        for (const std::string& w : mediator.model().writes())
            if (prefixes.empty() || std::any_of(prefixes.begin(), prefixes.end(),
                                                [&w](const std::string& p) { return w.compare(0, p.size(), p) == 0; }))
                out.push_back(w);
        return out;
    }

    // Logs only lines of `level` and above from now on (restored when the
    // harness goes), and forgets what was logged so far.
    void logLevel(int32_t level) {
        datacom::gDbgLevel = level;
        takeLog();
    }
    // Collects the log until a line holds `text` or `limitSec` passed.
    bool waitLog(const std::string& text, double limitSec = 10) {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::duration<double>(limitSec);
        for (;;) {
            logged += log.take();
            if (logged.find(text) != std::string::npos)
                return true;
            if (std::chrono::steady_clock::now() >= limit)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
    }
    // Everything logged so far, then forgets it.
    std::string takeLog() {
        logged += log.take();
        std::string text;
        text.swap(logged);
        return text;
    }

    LogCapture log;  // first made, last gone: no thread logs while its descriptor changes
    TestRoot root;
    TrafficLog traffic;
    MediatorService mediator{traffic};
    DeviceService device{traffic};
    SapService sap{traffic};
    EventRecorder recorder;
    ChannelRunBook book;  // lent to every channel() as the manager lends its own
    std::unique_ptr<ChannelTestHolder> holder;

protected:
    // The peers, and the test holder when `withHolder` (the manager of
    // ManagerHarness takes the holder's sockets instead).
    explicit ChannelHarness(bool withHolder) {
        for (const char* file : kFactoryFiles)
            installFactoryFile(root, file);
        std::string params, error;
        readHostFile(std::string(testpaths::SIM_DATA_DIR) + "/mediator_params.json", params);
        simLoaded = mediator.model().loadParams(params, error);
        started = mediator.start(datacom::wire::SOCK_MEDIATOR, "/tmp/sockSendTarnevelMediator") &&
                  device.start(datacom::wire::SOCK_DEV, "/tmp/sockSendDev") &&
                  sap.start(datacom::wire::SOCK_SAP, "/tmp/sockSendSap");
        if (started)
            simLoaded |= device.loadDataSetFile(std::string(testpaths::SIM_DATA_DIR) + "/device_data_set.json", error);
        if (withHolder)
            holder = std::make_unique<ChannelTestHolder>();
        store = holder.get();
    }
    datacom::DataHolder* store = nullptr;  // what the value readers read: the test holder or the manager

private:
    int32_t savedLevel = datacom::gDbgLevel.load();
    bool started = false;
    datacom::Fcodes simLoaded = datacom::FC_OK;
    std::string logged;
};

// A channel manager of the test's own (the daemon's is a singleton). It runs
// the real start-up; what it would broadcast as configuration events and the
// channels its KLV-ingest reconfiguration touches are recorded instead.
class TestChannelMngr : public ChannelMngr {
public:
    TestChannelMngr() = default;
    ~TestChannelMngr() override {
        stopPeerWatch();
        stopTimer();
        shutdown();
    }

    void sendCfgEvent(const std::string& eventId, const std::string& fileName, unsigned long fcode) override {
        std::lock_guard<std::mutex> guard(mutex);
        cfgEvents.push_back(eventId + " " + fileName + " " + std::to_string(fcode));
    }
    std::vector<std::string> configEvents() {
        std::lock_guard<std::mutex> guard(mutex);
        return cfgEvents;
    }
    void useTimerPeriod(std::chrono::milliseconds period) { timerPeriod = period; }

    // The reconfigurations asked for, and the result each one answers, in order
    // (then "OK").
    std::vector<std::string> reconfigured;
    std::vector<datacom::Fcodes> reconfigureResults;

protected:
    datacom::Fcodes reconfigureChannel(const std::string& rowId) override {
        const size_t call = reconfigured.size();
        reconfigured.push_back(rowId);
        return call < reconfigureResults.size() ? reconfigureResults[call] : datacom::FC_OK;
    }

private:
    std::mutex mutex;
    std::vector<std::string> cfgEvents;
};

// The daemon's surroundings in one process: the peers of ChannelHarness and,
// in place of its test holder, a manager after its real start-up.
class ManagerHarness : public ChannelHarness {
public:
    ManagerHarness() : ChannelHarness(false) {
        store = &manager;
        manager.init();
    }
    static std::string commandText(const std::string& id, const Params& params = {}) {
        return ::commandText(id, params);
    }
    datacom::Fcodes execute(const std::string& id, const Params& params = {}) {
        std::string result;
        return manager.execute(commandText(id, params), result);
    }

    TestChannelMngr manager;  // goes before the peers it talks to
};

// A test with a harness of its own, `h`, up before the body runs:
// `using Suite = ChannelTest;` then `TEST_F(Suite, Name)`.
template <typename Harness>
class HarnessTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(h.ready()); }
    Harness h;
};
using ChannelTest = HarnessTest<ChannelHarness>;
using ManagerTest = HarnessTest<ManagerHarness>;

// The mediator's "Auto Detection Event" of `source` with the format it detected.
inline datacom::Fcodes detectFormat(ChannelHarness& h, const std::string& source, const std::string& format) {
    datacom::MessageEvent event =
        mediatorEvent(vocab::ev::AUTO_DETECTION, source, "ON", {{vocab::ev::PARAM_INPUT_DETECTED, format}});
    return h.channel().updateVideoSource(&event);
}
