// The events the channel manager broadcasts to its subscribers, and the
// withdrawal of every SAP announcement.
#include "manager/ChannelMngr.h"

#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"
#include "datacom/WireConstants.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

void ChannelMngr::sendCfgEvent(const std::string& eventId, const std::string& fileName, unsigned long fcode) {
    MessageEvent event;
    event.id = eventId;
    event.source = "";
    event.status = state::ALARM_NONE;
    event.severity = state::SEVERITY_DEBUG;
    event.description = fileName;
    event.fcode = static_cast<Fcodes>(fcode);
    event.addParam(cmd::PARAM_FILE, fileName);
    DBG(DBG_INFO) << "sendCfgEvent: notifying eventId=" << eventId << " filename=" << fileName;
    notify(event);
}

void ChannelMngr::sendEvent(const std::string& eventId, const std::string& rowId, unsigned long fcode,
                            const std::string& status, const std::string& severity, const std::string& description) {
    MessageEvent event;
    event.id = eventId;
    event.source = rowId;
    event.status = status;
    event.severity = severity;
    event.description = description;
    event.fcode = static_cast<Fcodes>(fcode);
    event.addParam(cmd::PARAM_ROW_ID, rowId);
    DBG(DBG_INFO) << "sendEvent: notifying " << eventId;
    notify(event);
}

void ChannelMngr::sendSourceEvent(const std::string& input, bool off, const std::string& description) {
    MessageEvent event;
    event.id = ev::VIDEO_SOURCE_UPDATED;
    event.source = input;
    event.status = off ? state::ALARM_OFF : state::ALARM_ON;
    event.severity = state::SEVERITY_INFO;
    event.description = description;
    DBG(DBG_INFO) << "sendSourceEvent: notifying " << ev::VIDEO_SOURCE_UPDATED << " status=" << event.status
                  << " input=" << input;
    notify(event);
}

Fcodes ChannelMngr::sapStopAll() {
    MessageCommand command;
    command.setId(cmd::STOP_ALL_SAP);
    std::string text;
    command.toString(text);
    std::string result;
    return requestCommand(wire::SOCK_SAP, text, result, 10, 3) | FC_OK;
}
