#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support/ChannelHarness.h"
#include "vocab/ChannelVocabulary.h"
#include "records/MessageCommand.h"

// Helpers of the side-action tests: dataset reads, mediator events, the
// simulator's control commands and its recorded writes.
using Params = std::vector<std::pair<std::string, std::string>>;

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

inline MessageEvent mediatorEvent(const std::string& id, const std::string& source, const std::string& status,
                                  const Params& params = {}) {
    MessageEvent event;
    event.id = id;
    event.source = source;
    event.status = status;
    for (const auto& [name, value] : params)
        event.addParam(name, value);
    return event;
}

// A control command of the simulator ("Sim Fail", "Sim Set Input" ...) over the service's socket.
inline Fcodes simControl(ChannelHarness& h, const char* socket, const std::string& id, const Params& params) {
    MessageCommand command;
    command.setId(id);
    for (const auto& [name, value] : params)
        command.addParam(name, value);
    std::string text, result;
    command.toString(text);
    return h.holder->requestCommand(socket, text, result, 2, 1);
}

// The next request of `commandId` to the mediator fails with 0x10100.
inline Fcodes simFail(ChannelHarness& h, const std::string& commandId) {
    return simControl(h, wire::SOCK_MEDIATOR, "Sim Fail", {{"Command", commandId}});
}

inline std::vector<std::string> writesTo(ChannelHarness& h, const std::string& prefix) {
    std::vector<std::string> found;
    for (const std::string& write : h.mediator.model().writes())
        if (write.compare(0, prefix.size(), prefix) == 0)
            found.push_back(write);
    return found;
}
