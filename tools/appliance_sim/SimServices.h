#pragma once

#include <string>
#include <vector>

#include "MediatorModel.h"
#include "PeerModels.h"
#include "SimService.h"

// The media mediator: the "Tarnevel ..." commands over MediatorModel, and the
// control commands "Sim Set Param" and "Sim Set Input".
class MediatorService : public SimService {
public:
    // Stops serving and the worker before this object goes, so that no hook
    // runs on a half-destroyed service.
    ~MediatorService() override {
        stop();
        shutdown();
    }
    explicit MediatorService(TrafficLog& traffic) : SimService("mediator", traffic) {}
    MediatorModel& model() { return mediator; }

protected:
    datacom::Fcodes serveCommand(const datacom::MessageCommand& request, datacom::MessageCommand& answer,
                                 std::vector<datacom::MessageEvent>& events) override;
    datacom::Fcodes serveControl(const datacom::MessageCommand& request,
                                 std::vector<datacom::MessageEvent>& events) override;
    std::string report() const override { return mediator.report(); }
    void afresh() override { mediator.startAfresh(); }

private:
    MediatorModel mediator;
};

// The device manager: "GET" and "SET" of its "DeviceDataSet" through the
// holder's JSON store (a SET takes effect at once), and its commands.
class DeviceService : public SimService {
public:
    // Stops serving and the worker before this object goes, so that no hook
    // runs on a half-destroyed service.
    ~DeviceService() override {
        stop();
        shutdown();
    }
    explicit DeviceService(TrafficLog& traffic) : SimService("device", traffic) {}
    // Copies the data set's file into the device manager's place under the
    // root and loads it from there. Call after start(). `error` says why not.
    datacom::Fcodes loadDataSetFile(const std::string& hostPath, std::string& error);
    DeviceCommandModel& model() { return commands; }

protected:
    datacom::Fcodes serveCommand(const datacom::MessageCommand& request, datacom::MessageCommand& answer,
                                 std::vector<datacom::MessageEvent>& events) override;
    std::string report() const override { return commands.report(); }
    void afterSet() override { commit(); }

private:
    DeviceCommandModel commands;
};

// The SAP announcer: the streams it announces.
class SapService : public SimService {
public:
    // Stops serving and the worker before this object goes, so that no hook
    // runs on a half-destroyed service.
    ~SapService() override {
        stop();
        shutdown();
    }
    explicit SapService(TrafficLog& traffic) : SimService("sap", traffic) {}
    SapModel& model() { return sap; }

protected:
    datacom::Fcodes serveCommand(const datacom::MessageCommand& request, datacom::MessageCommand& answer,
                                 std::vector<datacom::MessageEvent>& events) override;
    std::string report() const override { return sap.report(); }

private:
    SapModel sap;
};

// The whole text of a file at a host path; false when it cannot be read.
bool readHostFile(const std::string& hostPath, std::string& text);
