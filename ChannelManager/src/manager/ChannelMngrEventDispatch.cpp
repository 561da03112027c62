// The events the channel manager reacts to, from the mediator and the device
// manager: an ordered table of event IDs, first whole-text match wins; any
// other event is ignored. Runs on the worker thread, one event at a time.
#include <cstdlib>
#include <ctime>
#include <vector>

#include "channel/ConfigChannelTarnevel.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"
#include "manager/ChannelMngr.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

namespace {

// Events only this table names: the mediator's critical error, and the
// device manager's changes of the KLV inputs and of the date and time
// (whose parameter "TZ" carries the new time zone).
constexpr const char* DATA_CRITICAL_ERROR = "Data Critical Error";
constexpr const char* KLVOIP_UPDATED = "KLVoIP Updated";
constexpr const char* KLVOSDI_UPDATED = "KLVoSDI Updated";
constexpr const char* COM_PORT_UPDATED = "Com Port Updated";
constexpr const char* DATE_TIME_UPDATED = "Date&Time Updated";
constexpr const char* PARAM_TZ = "TZ";

}  // namespace

const ChannelMngr::EventRoute ChannelMngr::eventRoutes[] = {
    {ev::AUTO_DETECTION, &ChannelMngr::onAutoDetection},
    {ev::BRANCH_STARTED, &ChannelMngr::onBranchEvent},
    {ev::BRANCH_STOPPED, &ChannelMngr::onBranchEvent},
    {ev::ZIXI_CONNECTION_FAILED, &ChannelMngr::onFeederEvent},
    {ev::DATA_STREAM, &ChannelMngr::onFeederEvent},
    {ev::ZIXI_CHANGE_BITRATE_REQUEST, &ChannelMngr::onFeederEvent},
    {ev::SRT_NEW_CLIENT_REQUEST, &ChannelMngr::onSrtNewClient},
    {DATA_CRITICAL_ERROR, &ChannelMngr::onIgnored},
    {KLVOIP_UPDATED, &ChannelMngr::onKlvOverIp},
    {KLVOSDI_UPDATED, &ChannelMngr::onKlvOverSdi},
    {COM_PORT_UPDATED, &ChannelMngr::onComPort},
    {DATE_TIME_UPDATED, &ChannelMngr::onDateTime},
};

Fcodes ChannelMngr::doHandle(MessageEvent* event) {
    DBG(DBG_INFO) << "doHandle: arrived event=" << event->id;
    for (const EventRoute& route : eventRoutes)
        if (event->id == route.id)
            return (this->*route.run)(*event);
    return FC_OK;
}

// Each pair's second text contains its first, so it can never decide alone;
// both stay, as the mediator's feeder names have two forms per channel.
std::string ChannelMngr::feederChannel(const std::string& description) {
    auto names = [&description](const char* feeder) { return description.find(feeder) != std::string::npos; };
    if (names(med::ZIXI_FEEDER[1]) || names(med::ZIXI_FEEDER_2[1]))
        return row::HEVC;
    if (!names(med::ZIXI_FEEDER[0]) && !names(med::ZIXI_FEEDER_2[0]))
        return "";
    return row::H264;
}

Fcodes ChannelMngr::onAutoDetection(MessageEvent& event) {
    ConfigChannelTarnevel channel(*this, *this, book);
    return channel.updateVideoSource(&event) | FC_OK;
}

Fcodes ChannelMngr::onBranchEvent(MessageEvent& event) {
    ConfigChannelTarnevel channel(*this, *this, book);
    return channel.handleTarnevelBranchEvent(&event) | FC_OK;
}

// The feeder's events carry the mediator's component in the description; the
// channel logic wants the channel row as the source.
Fcodes ChannelMngr::onFeederEvent(MessageEvent& event) {
    event.source = feederChannel(event.description);
    if (event.source.empty())
        return FC_OK;
    ConfigChannelTarnevel channel(*this, *this, book);
    return channel.handleDataStreamEvent(&event) | FC_OK;
}

Fcodes ChannelMngr::onSrtNewClient(MessageEvent& event) {
    DBG(DBG_SYS) << "doHandle: arrived event=" << event.id << " src=" << event.source << " desc=" << event.description;
    ConfigChannelTarnevel channel(*this, *this, book);
    return channel.handleDataStreamEvent(&event) | FC_OK;
}

Fcodes ChannelMngr::onIgnored(MessageEvent&) {
    return FC_OK;
}

Fcodes ChannelMngr::onKlvOverIp(MessageEvent&) {
    return reconfigureKlvIngest(value::KLV_IP);
}

Fcodes ChannelMngr::onKlvOverSdi(MessageEvent&) {
    return reconfigureKlvIngest(value::KLV_SDI_SYNC);
}

Fcodes ChannelMngr::onComPort(MessageEvent&) {
    return reconfigureKlvIngest(value::KLV_SERIAL);
}

// Once a read or a reconfiguration has failed, the merged value keeps that
// failure and no later channel of this pass is reconfigured (the reads go
// on): a device-wide KLV change that already failed once is not pushed on.
Fcodes ChannelMngr::reconfigureKlvIngest(const std::string& transport) {
    std::vector<std::string> channels;
    getInstances(ds::CHANNEL, tbl::CHANNELS, channels);
    Fcodes merged = FC_OK;
    for (const std::string& rowId : channels) {
        ScopedLock<DataHolder> guard(*this);
        std::string klv, klv2;
        merged |= getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV, klv, rowId);
        merged |= getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV2, klv2, rowId);
        if (isOk(merged) && (klv == transport || klv2 == transport))
            merged = reconfigureChannel(rowId) | FC_OK;
    }
    return merged;
}

Fcodes ChannelMngr::onDateTime(MessageEvent& event) {
    std::string zone;
    if (event.getParam(PARAM_TZ, zone) != 0) {
        DBG(DBG_SYS) << "doHandle: setenv TZ=" << zone;
        setTimeZone(zone);
    }
    return FC_OK;
}
