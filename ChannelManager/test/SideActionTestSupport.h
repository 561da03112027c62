#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ChannelHarness.h"
#include "ChannelVocabulary.h"
#include "records/MessageCommand.h"
#include "records/MessageEvent.h"

// Helpers of the side-action tests (statistics, data-stream events, SAP, KLV,
// LEDs, probes, video sources): dataset reads that name the failing value,
// events as the mediator sends them, and the simulator's control commands.

inline int intOf(ChannelHarness& h, const char* dataSet, const char* component, const char* property,
                 const std::string& row) {
    int value = -1;
    h.holder->getIntParam(dataSet, component, property, value, row);
    return value;
}

inline std::string textOf(ChannelHarness& h, const char* dataSet, const char* component, const char* property,
                          const std::string& row) {
    std::string value = "<unread>";
    h.holder->getTextParam(dataSet, component, property, value, row);
    return value;
}

inline bool boolOf(ChannelHarness& h, const char* dataSet, const char* component, const char* property,
                   const std::string& row) {
    bool value = false;
    h.holder->getBoolParam(dataSet, component, property, value, row);
    return value;
}

inline MessageEvent mediatorEvent(const std::string& id, const std::string& source, const std::string& status,
                                  std::vector<std::pair<std::string, std::string>> params = {}) {
    MessageEvent event;
    event.id = id;
    event.source = source;
    event.status = status;
    event.severity = "Info";
    for (const auto& [name, value] : params) event.addParam(name, value);
    return event;
}

// A control command of the simulator ("Sim Fail", "Sim Set Input" ...) sent
// over the service's socket, as an operator would with chanctl.
inline Fcodes simControl(ChannelHarness& h, const char* socket, const std::string& id,
                         std::vector<std::pair<std::string, std::string>> params) {
    MessageCommand command;
    command.setId(id);
    for (const auto& [name, value] : params) command.addParam(name, value);
    std::string text, result;
    command.toString(text);
    return h.holder->requestCommand(socket, text, result, 2, 1);
}

// The next `count` requests of `commandId` to the socket fail with 0x10100.
inline Fcodes simFail(ChannelHarness& h, const char* socket, const std::string& commandId, int count = 1) {
    return simControl(h, socket, "Sim Fail", {{"Command", commandId}, {"Count", std::to_string(count)}});
}

inline std::vector<std::string> writesTo(ChannelHarness& h, const std::string& prefix) {
    std::vector<std::string> found;
    for (const std::string& write : h.mediator.model().writes())
        if (write.compare(0, prefix.size(), prefix) == 0) found.push_back(write);
    return found;
}
