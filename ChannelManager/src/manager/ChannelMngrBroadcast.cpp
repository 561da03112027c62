// The events the channel manager broadcasts to its subscribers, and the
// withdrawal of every SAP announcement.
#include "manager/ChannelMngr.h"

#include "vocab/ChannelVocabulary.h"
#include "records/MessageCommand.h"
#include "records/WireConstants.h"
#include "system/DbgPrintClient.h"

void ChannelMngr::sendCfgEvent(const std::string& eventId, const std::string& fileName, unsigned long fcode) {
    MessageEvent event;
    event.id = eventId;
    event.source = "";
    event.status = vocab::state::ALARM_NONE;
    event.severity = vocab::state::SEVERITY_DEBUG;
    event.description = fileName;
    event.fcode = static_cast<Fcodes>(fcode);
    event.addParam(vocab::cmd::PARAM_FILE, fileName);
    DBG(0) << "sendCfgEvent: notifying eventId=" << eventId << " filename=" << fileName;
    notify(event);
}

void ChannelMngr::sendEvent(const std::string& eventId, const std::string& rowId, unsigned long fcode,
                            const std::string& status, const std::string& severity,
                            const std::string& description) {
    MessageEvent event;
    event.id = eventId;
    event.source = rowId;
    event.status = status;
    event.severity = severity;
    event.description = description;
    event.fcode = static_cast<Fcodes>(fcode);
    event.addParam(vocab::cmd::PARAM_ROW_ID, rowId);
    DBG(0) << "sendEvent: notifying " << eventId;
    notify(event);
}

void ChannelMngr::sendSourceEvent(const std::string& input, bool off, const std::string& description) {
    MessageEvent event;
    event.id = vocab::ev::VIDEO_SOURCE_UPDATED;
    event.source = input;
    event.status = off ? vocab::state::ALARM_OFF : vocab::state::ALARM_ON;
    event.severity = vocab::state::SEVERITY_INFO;
    event.description = description;
    DBG(0) << "sendSourceEvent: notifying " << vocab::ev::VIDEO_SOURCE_UPDATED << " status=" << event.status
           << " input=" << input;
    notify(event);
}

Fcodes ChannelMngr::sapStopAll() {
    MessageCommand command;
    command.setId(vocab::cmd::STOP_ALL_SAP);
    std::string text;
    command.toString(text);
    std::string result;
    return requestCommand(wire::SOCK_SAP, text, result, 10, 3) | FC_OK;
}
