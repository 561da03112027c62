#include <cstdint>
#include <cstdlib>
#include <string>

#include "datacom/DbgPrintClient.h"
#include "ports/ChannelStore.h"
#include "ports/Mediator.h"
#include "side/SideActionSupport.h"
#include "side/StreamStatistics.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// Zixi and SRT link statistics: the sender components of the mediator are
// told to refresh ("Update Stats" = 1), their statistics texts are read and
// the numbers published in "ZixiStatDataSet" and "SrtStatDataSet" (instance =
// the target row). A failed read leaves the previously published values; a
// failed write is OR-ed into the result.

namespace {

// The sender of a target row: index 0/1 = channel, second = the channel's
// second target.
struct TargetSender {
    const char* target;
    const char* zixiFeeder;
    const char* srtSender;
};

const TargetSender kTargetSenders[] = {
    {"HEVC Target1", med::ZIXI_FEEDER[1], med::SRT_SENDER[1]},
    {"HEVC Target2", med::ZIXI_FEEDER_2[1], med::SRT_SENDER_2[1]},
    {"H.264 Target1", med::ZIXI_FEEDER[0], med::SRT_SENDER[0]},
    {"H.264 Target2", med::ZIXI_FEEDER_2[0], med::SRT_SENDER_2[0]},
};

const TargetSender* senderOf(const std::string& targetRow) {
    for (const TargetSender& entry : kTargetSenders)
        if (targetRow == entry.target)
            return &entry;
    return nullptr;
}

// The keys published from a Zixi feeder's statistics texts.

struct ZixiKey {
    const char* key;
    const char* component;
    const char* property;
};

const ZixiKey kNetworkKeys[] = {
    {" packets", tbl::ZIXI_QOS, prop::TOTAL_PACKETS},
    {" packet_rate", tbl::ZIXI_QOS, prop::PACKET_RATE},
    {" dropped", tbl::ZIXI_QOS, prop::DROPPED_PACKETS},
    {" bitrate", tbl::ZIXI_NETWORK, prop::TOTAL_BITRATE},
    {" available", tbl::ZIXI_NETWORK, prop::AVAILABLE_BITRATE},
    {" rtt", tbl::ZIXI_NETWORK, prop::ROUND_TRIP_TIME},
    {" jitter", tbl::ZIXI_NETWORK, prop::JITTER},
    {" latency", tbl::ZIXI_NETWORK, prop::ZIXI_LATENCY},
};

// SRT sender text parameters and where they are published.
struct SrtStat {
    const char* parameter;
    const char* component;
    const char* property;
};

const SrtStat kSrtStats[] = {
    {med::PARAM_STAT_RTT, tbl::SRT_NETWORK, prop::ROUND_TRIP_TIME},
    {med::PARAM_STAT_PACKETS, tbl::SRT_QOS, prop::TOTAL_PACKETS},
    {med::PARAM_STAT_LOST_PACKETS, tbl::SRT_QOS, prop::PACKET_LOSS},
    {med::PARAM_STAT_DROPPED_PACKETS, tbl::SRT_QOS, prop::DROPPED_PACKETS},
    {med::PARAM_STAT_RETRANSMITTED_PACKETS, tbl::SRT_QOS, prop::RECOVERED_PACKETS},
};

void logFailure(const char* prefix, const std::string& rowId, const std::string& value, const char* parameter,
                const std::string& component, Fcodes code) {
    DBG(DBG_ERROR) << prefix << "rowId=" << rowId << " Error: val=" << value << " param=" << parameter
                   << " comp=" << component << " fcode=0x" << std::hex << static_cast<uint32_t>(code);
}

// Asks the sender to refresh its figures; the reads that follow see them.
Fcodes requestUpdate(Mediator& mediator, const char* operation, const std::string& rowId,
                     const std::string& component) {
    Fcodes code = mediator.setIntParam(component, med::PARAM_UPDATE_STATS, 1);
    if (!isOk(code))
        logFailure(operation, rowId, "1", med::PARAM_UPDATE_STATS, component, code);
    return code;
}

// A statistics text of the sender; the read's failure is logged with the
// prefix shared with the configuration messages.
Fcodes readStatText(Mediator& mediator, const std::string& rowId, const std::string& component, const char* parameter,
                    std::string& text) {
    Fcodes code = mediator.getTextParam(component, parameter, text);
    if (!isOk(code))
        logFailure("configChannel: ", rowId, text, parameter, component, code);
    return code;
}

// Counters are published as 64-bit integers on every build: a busy target
// passes 2^31 packets within days, and a 32-bit figure would freeze there.
Fcodes publish(ChannelStore& store, const char* dataSet, const char* component, const char* property, uint64_t value,
               const std::string& rowId) {
    const int64_t published = value > static_cast<uint64_t>(INT64_MAX) ? INT64_MAX : static_cast<int64_t>(value);
    return store.initInt64Param(dataSet, component, property, published, rowId) | FC_OK;
}

}  // namespace

// Naive by design: the first occurrence of the key decides, and the number
// is whatever stands between the last comma before it and the key.
uint64_t StreamStatistics::parseZixiStat(const std::string& text, const std::string& key) {
    const std::string::size_type position = text.find(key);
    if (position == std::string::npos || key.empty())
        return 0;
    const std::string::size_type comma = position == 0 ? std::string::npos : text.rfind(',', position - 1);
    const std::string::size_type start = comma == std::string::npos ? 0 : comma + 1;
    const std::string item = text.substr(start, position - start);
    return std::strtoull(item.c_str(), nullptr, 0);  // 64 bits also where long is 32
}

// "Packet Loss" is the share of dropped packets in percent, rounded to the
// nearest whole percent (0 while no packet was sent): the figure an operator
// compares against the link's tolerated loss. 64-bit maths, so that counters
// near the 32-bit limit do not overflow.
static uint64_t packetLossPercent(uint64_t dropped, uint64_t total) {
    if (total == 0)
        return 0;
    if (dropped >= total)
        return 100;
    return (dropped * 100 + total / 2) / total;
}

Fcodes StreamStatistics::updateZixiStatistics(const std::string& targetRowId) {
    const TargetSender* sender = senderOf(targetRowId);
    if (sender == nullptr) {
        DBG(DBG_ERROR) << "updateZixiStatistics: no Zixi feeder for rowId=" << targetRowId;
        return FC_NO_SUCH_NAME;
    }
    const std::string feeder = sender->zixiFeeder;
    const char* dataSet = ds::ZIXI_STAT;
    Fcodes result = FC_OK | requestUpdate(ctx.mediator, "updateZixiStatistics: ", targetRowId, feeder);

    std::string text;
    Fcodes read = readStatText(ctx.mediator, targetRowId, feeder, med::PARAM_NETWORK_STATS, text);
    result |= read;
    if (isOk(read)) {
        for (const ZixiKey& key : kNetworkKeys)
            result |=
                publish(ctx.store, dataSet, key.component, key.property, parseZixiStat(text, key.key), targetRowId);
        result |=
            publish(ctx.store, dataSet, tbl::ZIXI_QOS, prop::PACKET_LOSS,
                    packetLossPercent(parseZixiStat(text, " dropped"), parseZixiStat(text, " packets")), targetRowId);
    }

    text.clear();
    read = readStatText(ctx.mediator, targetRowId, feeder, med::PARAM_ERROR_CORRECTION_STATS, text);
    result |= read;
    if (isOk(read)) {
        const uint64_t recovered = parseZixiStat(text, " arq_recovered") + parseZixiStat(text, " fec_recovered");
        result |= publish(ctx.store, dataSet, tbl::ZIXI_QOS, prop::RECOVERED_PACKETS, recovered, targetRowId);
        result |= publish(ctx.store, dataSet, tbl::ZIXI_QOS, prop::NON_RECOVERED_PACKETS,
                          parseZixiStat(text, " not_recovered"), targetRowId);
    }

    text.clear();
    read = readStatText(ctx.mediator, targetRowId, feeder, med::PARAM_CONNECTION_STATS, text);
    result |= read;
    if (isOk(read))
        result |= publish(ctx.store, dataSet, tbl::ZIXI_NETWORK, prop::RECONNECTION,
                          parseZixiStat(text, " reconnections"), targetRowId);
    return result;
}

// The sender reports its bitrate in Mbit/s with decimals ("8.5"); it is
// published in kbit/s (factor 1000), rounded to the nearest unit.
static uint64_t mbpsToKbps(const std::string& text) {
    const double kbps = std::strtod(text.c_str(), nullptr) * 1000.0 + 0.5;
    return kbps >= 1 ? (kbps < 9e18 ? static_cast<uint64_t>(kbps) : UINT64_MAX) : 0;
}

Fcodes StreamStatistics::updateSrtStatistics(const std::string& targetRowId) {
    const TargetSender* sender = senderOf(targetRowId);
    if (sender == nullptr) {
        DBG(DBG_ERROR) << "updateSrtStatistics: no SRT sender for rowId=" << targetRowId;
        return FC_NO_SUCH_NAME;
    }
    const std::string component = sender->srtSender;
    const char* dataSet = ds::SRT_STAT;
    Fcodes result = FC_OK | requestUpdate(ctx.mediator, "updateSrtStatistics: ", targetRowId, component);

    std::string text;
    Fcodes read = readStatText(ctx.mediator, targetRowId, component, med::PARAM_STAT_BITRATE_MBPS, text);
    result |= read;
    if (isOk(read))
        result |= publish(ctx.store, dataSet, tbl::SRT_NETWORK, prop::TOTAL_BITRATE, mbpsToKbps(text), targetRowId);
    for (const SrtStat& stat : kSrtStats) {
        text.clear();
        read = readStatText(ctx.mediator, targetRowId, component, stat.parameter, text);
        result |= read;
        if (isOk(read))
            result |= publish(ctx.store, dataSet, stat.component, stat.property,
                              std::strtoull(text.c_str(), nullptr, 0), targetRowId);
    }

    int latency = 0;
    read = ctx.store.getIntParam(ds::CHANNEL, tbl::SRT_SETTINGS, prop::LATENCY, latency, targetRowId) | FC_OK;
    result |= read;
    if (isOk(read))
        result |= ctx.store.initIntParam(dataSet, tbl::SRT_NETWORK, prop::SRT_LATENCY, latency, targetRowId) | FC_OK;
    return result;
}
