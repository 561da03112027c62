#include <cmath>
#include <cstdlib>
#include <string>

#include "datacom/DbgPrintClient.h"
#include "datacom/Mutex.h"
#include "ports/ChannelStore.h"
#include "ports/IChannelEvents.h"
#include "ports/Mediator.h"
#include "side/DataStreamEvents.h"
#include "side/SideActionSupport.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The mediator's data-stream events of a channel. They change the channel's
// "Fcode" (read by the stop to decide between "Stopped" and "Stopping") and
// never its state; a bitrate request of the Zixi link changes the bitrates on
// the fly (through the change the caller passes in); a new SRT client re-divides what the SRT senders may still send.

namespace {

// "Data Stream" and "Zixi Connection Failed": "ON" adds the condition to
// what the channel holds, anything else clears every condition. A channel
// stopped by its user (0x20020 held completely) keeps that code.
Fcodes applyCondition(ChannelStore& store, const MessageEvent& event, uint32_t condition, const char* tag) {
    const std::string& rowId = event.source;
    int fcode = 0;
    Fcodes result = store.getIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, fcode, rowId) | FC_OK;
    if (!isOk(result))
        return result;
    const uint32_t old = static_cast<uint32_t>(fcode);
    if ((old & cond::FORCED_STOP) == cond::FORCED_STOP)
        return result;
    const uint32_t updated = event.status == state::ALARM_ON ? (old | condition) : uint32_t{FC_OK};
    DBG(DBG_INFO) << "handleDataStreamEvent: " << tag << " rowId=" << rowId << " status=" << event.status
                  << " setting fcode=0x" << std::hex << static_cast<uint32_t>(updated);
    return result | store.initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, static_cast<int>(updated), rowId);
}

}  // namespace

Fcodes DataStreamEvents::handleDataStreamEvent(MessageEvent* event, const BitrateChange& changeBitrate) {
    if (event == nullptr)
        return FC_BAD_VALUE;
    ScopedLock<ChannelStore> guard(ctx.store);
    const std::string& name = event->id;
    if (name == ev::DATA_STREAM)
        return applyCondition(ctx.store, *event, cond::DATA_STREAM, "TARNEVEL_DATA_STREAM_EVENT");
    if (name == ev::ZIXI_CONNECTION_FAILED)
        return applyCondition(ctx.store, *event, cond::ZIXI_CONNECTION, "TARNEVEL_ZIXI_CONNECTION_FAILED_EVENT");
    if (name == ev::ZIXI_CHANGE_BITRATE_REQUEST)
        return zixiChangeBitrate(*event, changeBitrate);
    if (name == ev::SRT_NEW_CLIENT_REQUEST)
        return srtNewClient();
    return FC_OK;
}

// The Zixi link asks for another total bitrate. The configured bitrates are
// saved once, before the first change, and only when no backup is held yet:
// a series of requests thus still returns to the configured values at the
// next stop, not to those of an earlier request.
Fcodes DataStreamEvents::zixiChangeBitrate(const MessageEvent& event, const BitrateChange& changeBitrate) {
    const std::string& rowId = event.source;
    std::string text;
    if (event.getParam(cmd::PARAM_TOTAL_BITRATE, text) == 0 || text.empty()) {
        DBG(DBG_ERROR) << "handleDataStreamEvent: no Total Bitrate in event=" << event.id << " rowId=" << rowId;
        return FC_BODY_ERROR;
    }
    const int requested = static_cast<int>(std::strtol(text.c_str(), nullptr, 0));
    const char* ds = ds::CHANNEL;
    const char* processing = tbl::PROCESSING;
    int total = 0, maximum = 0, video = 0;
    Fcodes result = FC_OK | ctx.store.getIntParam(ds, processing, prop::TOTAL_BITRATE, total, rowId) |
                    ctx.store.getIntParam(ds, processing, prop::MAX_BITRATE, maximum, rowId) |
                    ctx.store.getIntParam(ds, processing, prop::VIDEO_BITRATE, video, rowId);
    if (!isOk(result))
        return result;
    if (requested == total)
        return result;

    DBG(DBG_INFO) << "handleDataStreamEvent: arrived event=" << event.id << " src=" << rowId
                  << " desc=" << event.description << " param=Total Bitrate val=" << requested;
    ctx.events.sendEvent(event.id, rowId, event.fcode, event.status, event.severity,
                         "bitrate: " + std::to_string(requested) + " bps");

    const char* backup = tbl::PROCESSING_BACKUP;
    int saved = 0;
    result |= ctx.store.getIntParam(ds, backup, prop::TOTAL_BITRATE, saved, rowId) | FC_OK;
    if (isOk(result) && saved == 0) {
        result |= ctx.store.initIntParam(ds, backup, prop::TOTAL_BITRATE, total, rowId) |
                  ctx.store.initIntParam(ds, backup, prop::MAX_BITRATE, maximum, rowId) |
                  ctx.store.initIntParam(ds, backup, prop::VIDEO_BITRATE, video, rowId);
    }
    return result | changeBitrate(rowId, requested, maximum);
}

// A new SRT client joined. Each SRT sender is told how much it may still
// send: its channel's "Total Bitrate" minus what the sender already sends
// ("Stat: Bitrate (mbps)" in bit/s), never below 0. A sender whose figure
// cannot be read counts as sending nothing, so it is offered the whole
// channel bitrate.
Fcodes DataStreamEvents::srtNewClient() {
    const char* channels[] = {row::H264, row::HEVC};
    int totals[2] = {0, 0};
    Fcodes result = FC_OK;
    for (int channel = 0; channel < 2; ++channel)
        result |= ctx.store.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, totals[channel],
                                        channels[channel]) |
                  FC_OK;
    DBG(DBG_INFO) << "handleDataStreamEvent: Srt total bitrate: " << channels[0] << "=" << totals[0] << " "
                  << channels[1] << "=" << totals[1];

    for (int channel = 0; channel < 2; ++channel) {
        for (const char* sender : {med::SRT_SENDER[channel], med::SRT_SENDER_2[channel]}) {
            std::string mbps;
            long long sending = 0;
            if (isOk(ctx.mediator.getTextParam(sender, med::PARAM_STAT_BITRATE_MBPS, mbps)))
                sending = std::llround(std::strtod(mbps.c_str(), nullptr) * 1000000.0);
            long long remaining = static_cast<long long>(totals[channel]) - sending;
            if (remaining < 0)
                remaining = 0;
            const int value = side::clampToInt(static_cast<unsigned long long>(remaining));
            Fcodes set = ctx.mediator.setIntParam(sender, med::PARAM_REMAINING_OUTPUT_BITRATE, value);
            if (!isOk(set))
                DBG(DBG_ERROR) << "SrtMaxBitrateSettings: rowId=" << channels[channel] << " Error: val=" << value
                               << " param=" << med::PARAM_REMAINING_OUTPUT_BITRATE << " comp=" << sender << " fcode=0x"
                               << std::hex << static_cast<uint32_t>(set);
            result |= set;
        }
    }
    return result;
}
