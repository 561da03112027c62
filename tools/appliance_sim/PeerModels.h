#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "datacom/MessageCommand.h"

// The SAP announcer's state: the streams it announces, by channel name,
// destination address and port, each with the parameters of its START_SAP.
// Thread-safe.
class SapModel {
public:
    // "START_SAP" (re)announces, "STOP_SAP" withdraws one stream (a stream not
    // announced is no error: the result is the same), "STOP ALL SAP" withdraws
    // all. FC_BODY_ERROR when a stream's name, address or port is
    // missing, FC_NO_SUCH_NAME for another command.
    datacom::Fcodes serve(const datacom::MessageCommand& request);
    // "ChannelName DestinationIp:DestinationPort" of each announced stream, sorted.
    std::vector<std::string> streams() const;
    // Every request served, as `ID name=value ...` (names in order), in order.
    std::vector<std::string> requests() const;
    std::string report() const;

private:
    mutable std::mutex mutex;
    std::map<std::string, datacom::MessageParams::ParamMap> announced;
    std::vector<std::string> served;
};

// The device manager's commands: answered and recorded; "Toggle KLVoSDI
// Input" needs "KLV Source" and "ChannelID". Thread-safe.
class DeviceCommandModel {
public:
    // FC_NO_SUCH_NAME for a command the device manager does not have.
    datacom::Fcodes serve(const datacom::MessageCommand& request);
    // Each command served, as `ID name=value ...`, in order.
    std::vector<std::string> commands() const;
    std::string report() const;

private:
    mutable std::mutex mutex;
    std::vector<std::string> served;
};

// `name=value` pairs in name order, separated by blanks.
std::string paramsText(const datacom::MessageParams& params);
