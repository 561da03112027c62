#pragma once

#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "manager/ChannelMngr.h"
#include "support/ChannelTestSupport.h"
#include "LogCapture.h"
#include "SimServices.h"
#include "TrafficLog.h"
#include "records/WireConstants.h"

// A channel manager of the test's own (the daemon's is a singleton). It runs
// the real start-up; what it would broadcast as configuration events and the
// channels its KLV-ingest reconfiguration touches are recorded instead.
class TestChannelMngr : public ChannelMngr {
public:
    TestChannelMngr() = default;
    ~TestChannelMngr() override {
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
    std::vector<Fcodes> reconfigureResults;

protected:
    Fcodes reconfigureChannel(const std::string& rowId) override {
        const size_t call = reconfigured.size();
        reconfigured.push_back(rowId);
        return call < reconfigureResults.size() ? reconfigureResults[call] : FC_OK;
    }

private:
    std::mutex mutex;
    std::vector<std::string> cfgEvents;
};

// The daemon's surroundings in one process: a temporary root with the
// factory datasets, the simulated mediator, device manager and SAP announcer
// (appliance_sim's services) and the manager after its start-up. The log is
// captured from the start, before any thread runs.
class ManagerHarness {
public:
    ManagerHarness() {
        for (const char* file : kFactoryFiles) installFactoryFile(root, file);
        std::string params, error;
        readHostFile(std::string(APPLIANCE_SIM_DATA_DIR) + "/mediator_params.json", params);
        simLoaded = mediator.model().loadParams(params, error);
        started = mediator.start(wire::SOCK_MEDIATOR, "/tmp/sockSendTarnevelMediator") &&
                  device.start(wire::SOCK_DEV, "/tmp/sockSendDev") && sap.start(wire::SOCK_SAP, "/tmp/sockSendSap");
        if (started)
            simLoaded |= device.loadDataSetFile(std::string(APPLIANCE_SIM_DATA_DIR) + "/device_data_set.json", error);
        manager.init();
    }
    bool ready() const { return started && isOk(simLoaded); }

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
    // A command's text, as the engine hands it to execute.
    static std::string commandText(const std::string& id, const MessageParams::ParamMap& params = {}) {
        MessageCommand command;
        command.setId(id);
        command.params = params;
        std::string text;
        command.toString(text);
        return text;
    }
    Fcodes execute(const std::string& id, const MessageParams::ParamMap& params = {}) {
        std::string result;
        return manager.execute(commandText(id, params), result);
    }

    LogCapture log;  // first made, last gone
    TestRoot root;
    TrafficLog traffic;
    MediatorService mediator{traffic};
    DeviceService device{traffic};
    SapService sap{traffic};
    TestChannelMngr manager;

private:
    bool started = false;
    Fcodes simLoaded = FC_OK;
    std::string logged;
};
