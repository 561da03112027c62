#pragma once

#include <string>

#include "datacom/Fcodes.h"

// What the channel logic asks of its manager besides the rows and the
// mediator: the channel events broadcast to the subscribers of
// "/tmp/sockChan" and the withdrawal of every SAP announcement. ChannelMngr
// implements it for the daemon; tests hand the channel logic a recorder of
// their own.
// The number argument of sendEvent and sendCfgEvent is the event's fcode: it
// travels in the message header, so a subscriber reads the channel condition
// (0x20000 ... 0x20020, or a failure code) without parsing the description.
class IChannelEvents {
public:
    virtual ~IChannelEvents() = default;
    virtual void sendEvent(const std::string& eventId, const std::string& rowId, unsigned long fcode,
                           const std::string& status, const std::string& severity, const std::string& description) = 0;
    virtual void sendCfgEvent(const std::string& eventId, const std::string& fileName, unsigned long fcode) = 0;
    virtual void sendSourceEvent(const std::string& input, bool off, const std::string& description) = 0;
    // "STOP ALL SAP" to the SAP announcer; its result OR "OK".
    virtual datacom::Fcodes sapStopAll() = 0;
};
