// The events the channel manager reacts to, from the mediator and the device
// manager: an ordered table of event IDs, first whole-text match wins; any
// other event is ignored. Runs on the worker thread, one event at a time.
#include <cstdlib>
#include <ctime>
#include <mutex>
#include <vector>

#include "manager/ChannelMngr.h"
#include "vocab/ChannelVocabulary.h"
#include "channel/ConfigChannelTarnevel.h"
#include "system/DbgPrintClient.h"
#include "system/SysmgtRoot.h"

const ChannelMngr::EventRoute ChannelMngr::eventRoutes[] = {
    {vocab::ev::AUTO_DETECTION, &ChannelMngr::onAutoDetection},
    {vocab::ev::BRANCH_STARTED, &ChannelMngr::onBranchEvent},
    {vocab::ev::BRANCH_STOPPED, &ChannelMngr::onBranchEvent},
    {vocab::ev::ZIXI_CONNECTION_FAILED, &ChannelMngr::onFeederEvent},
    {vocab::ev::DATA_STREAM, &ChannelMngr::onFeederEvent},
    {vocab::ev::ZIXI_CHANGE_BITRATE_REQUEST, &ChannelMngr::onFeederEvent},
    {vocab::ev::SRT_NEW_CLIENT_REQUEST, &ChannelMngr::onSrtNewClient},
    {vocab::ev::DATA_CRITICAL_ERROR, &ChannelMngr::onIgnored},
    {vocab::ev::KLVOIP_UPDATED, &ChannelMngr::onKlvOverIp},
    {vocab::ev::KLVOSDI_UPDATED, &ChannelMngr::onKlvOverSdi},
    {vocab::ev::COM_PORT_UPDATED, &ChannelMngr::onComPort},
    {vocab::ev::DATE_TIME_UPDATED, &ChannelMngr::onDateTime},
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
    if (names(vocab::med::ZIXI_FEEDER[1]) || names(vocab::med::ZIXI_FEEDER_2[1]))
        return vocab::row::HEVC;
    if (!names(vocab::med::ZIXI_FEEDER[0]) && !names(vocab::med::ZIXI_FEEDER_2[0]))
        return "";
    return vocab::row::H264;
}

Fcodes ChannelMngr::onAutoDetection(MessageEvent& event) {
    ConfigChannelTarnevel channel(*this, *this);
    return channel.updateVideoSource(&event) | FC_OK;
}

Fcodes ChannelMngr::onBranchEvent(MessageEvent& event) {
    ConfigChannelTarnevel channel(*this, *this);
    return channel.handleTarnevelBranchEvent(&event) | FC_OK;
}

// The feeder's events carry the mediator's component in the description; the
// channel logic wants the channel row as the source.
Fcodes ChannelMngr::onFeederEvent(MessageEvent& event) {
    event.source = feederChannel(event.description);
    if (event.source.empty())
        return FC_OK;
    ConfigChannelTarnevel channel(*this, *this);
    return channel.handleDataStreamEvent(&event) | FC_OK;
}

Fcodes ChannelMngr::onSrtNewClient(MessageEvent& event) {
    DBG(DBG_SYS) << "doHandle: arrived event=" << event.id << " src=" << event.source
                 << " desc=" << event.description;
    ConfigChannelTarnevel channel(*this, *this);
    return channel.handleDataStreamEvent(&event) | FC_OK;
}

Fcodes ChannelMngr::onIgnored(MessageEvent&) {
    return FC_OK;
}

Fcodes ChannelMngr::onKlvOverIp(MessageEvent&) {
    return reconfigureKlvIngest(vocab::value::KLV_IP);
}

Fcodes ChannelMngr::onKlvOverSdi(MessageEvent&) {
    return reconfigureKlvIngest(vocab::value::KLV_SDI_SYNC);
}

Fcodes ChannelMngr::onComPort(MessageEvent&) {
    return reconfigureKlvIngest(vocab::value::KLV_SERIAL);
}

// Once a read or a reconfiguration has failed, the merged value keeps that
// failure and no later channel of this pass is reconfigured (the reads go
// on): a device-wide KLV change that already failed once is not pushed on.
Fcodes ChannelMngr::reconfigureKlvIngest(const std::string& transport) {
    std::vector<std::string> channels;
    getInstances(vocab::ds::CHANNEL, vocab::tbl::CHANNELS, channels);
    Fcodes merged = FC_OK;
    for (const std::string& rowId : channels) {
        std::lock_guard<DataHolder> guard(*this);
        std::string klv, klv2;
        merged |= getTextParam(vocab::ds::CHANNEL, vocab::tbl::PROCESSING, vocab::prop::INGEST_KLV, klv, rowId);
        merged |= getTextParam(vocab::ds::CHANNEL, vocab::tbl::PROCESSING, vocab::prop::INGEST_KLV2, klv2, rowId);
        if (isOk(merged) && (klv == transport || klv2 == transport))
            merged = reconfigureChannel(rowId) | FC_OK;
    }
    return merged;
}

Fcodes ChannelMngr::onDateTime(MessageEvent& event) {
    std::string zone;
    if (event.getParam(vocab::cmd::PARAM_TZ, zone) != 0) {
        DBG(DBG_SYS) << "doHandle: setenv TZ=" << zone;
        setTimeZone(zone);
    }
    return FC_OK;
}
