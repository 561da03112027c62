#include <cmath>
#include <cstdint>
#include <cstdio>

#include "datacom/DataHolder.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/WireConstants.h"
#include "pipeline/PipelineConfigurator.h"
#include "settings/IChannelEvents.h"
#include "tarnevel/ITarnevelClient.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"
#include "vocab/ValueRanges.h"

using namespace datacom;
using namespace tarnevel;

using namespace vocab;

// The transport-stream model of a channel's total bitrate: the video share
// with its per-frame and 188/184 packet overhead, the audio packetised in
// whole transport packets per audio frame, the KLV inputs and the fixed
// multiplex overhead. The 32-bit and 64-bit steps are those of the appliance,
// so that host builds and the 32-bit target compute the same figures.

namespace {

// The device manager's KLV inputs and the property that holds the bitrate of
// each ("KLV over IP" is shared with the KLV sections).
constexpr const char* COM_PORTS_TABLE = "ComPortsTable";
constexpr const char* BAUD_RATE = "Baud Rate";
constexpr const char* KLV_BITRATE = "KLV Bitrate";
constexpr const char* KLV_OVER_SDI_TABLE = "KLV over SDI";
constexpr const char* KLV_OVER_SDI_BITRATE = "Bitrate";
// The encoder parameter that makes a running encoder take its new bitrates.
constexpr const char* APPLY_ON_THE_FLY = "Apply On The Fly Bitrate";

constexpr int32_t FIXED_MUX_OVERHEAD = 74197;           // tables and PCR
constexpr int32_t FIXED_OVERHEAD_PCR_ON_VIDEO = 24064;  // PCR carried on the video PID
constexpr int32_t FRAME_OVERHEAD_BITS = 888;
constexpr int32_t FRAME_OVERHEAD_BITS_HEVC_INTERLACED = 1776;
constexpr int32_t TS_PACKET_BITS = 1504;

// Per-channel floors of the video bitrate and of the video bitrate the
// maximum must allow (the floor plus ten per cent); the two encoders differ.
constexpr int32_t MIN_VIDEO_BITRATE[2] = {100000, 23900};
constexpr int32_t MIN_MAX_VIDEO_BITRATE[2] = {110000, 26290};
constexpr int32_t CBR_MARGIN[2] = {25, 0};

bool isTransportProtocol(const std::string& protocol) {
    return protocol == value::UDP_TS || protocol == value::RTP_TS || protocol == value::PRO_MPEG ||
           protocol == value::ZIXI || protocol == value::SRT;
}

int32_t sampleRate(const std::string& sampling) {
    if (sampling == "8 KHz")
        return 8000;
    if (sampling == "16 KHz")
        return 16000;
    if (sampling == "24 KHz")
        return 24000;
    if (sampling == "32 KHz")
        return 32000;
    if (sampling == "48 KHz")
        return 48000;
    return 0;
}

int32_t packetsPerAudioFrame(int32_t bitrate) {
    if (bitrate < 56000)
        return 1;
    if (bitrate < 128000)
        return 2;
    if (bitrate < 192000)
        return 3;
    if (bitrate < 320000)
        return 4;
    return 5;
}

int32_t samplesPerAudioFrame(const std::string& format) {
    if (format == "AAC-LC" || format == "HE AAC-v1" || format == "HE AAC-v2")
        return 1024;
    if (format == "MPEG-1 Layer 2")
        return 1152;
    return 0;
}

// (video + frame term) x 188 / 184 in 64-bit arithmetic: in 32 bits the
// product wraps above about 11.4 Mbit/s of video, which the inverse formula
// could not undo. int64_t gives the same figures on the host and the 32-bit
// target.
int64_t packetisedVideo(int64_t videoAndFrames) {
    return videoAndFrames * 188 / 184;
}

// A bitrate as the integer property holds it; nothing the model computes from
// clamped inputs comes near, but stored bitrates near the limit could.
int32_t asInt(const std::string& rowId, const char* property, int64_t total) {
    if (total > INT32_MAX || total < INT32_MIN) {
        DBG(DBG_WARN) << "calcBitrates: rowId=" << rowId << " Error: param=" << property << " val=" << total
                      << " out of range, set to the nearer limit";
        return total > 0 ? INT32_MAX : INT32_MIN;
    }
    return static_cast<int32_t>(total);
}

}  // namespace

int32_t range::clampLogged(const char* op, const std::string& rowId, const IntRange& range, int64_t value) {
    if (value >= range.minimum && value <= range.maximum)
        return static_cast<int32_t>(value);
    const int32_t bound = value < range.minimum ? range.minimum : range.maximum;
    DBG(DBG_WARN) << op << ": rowId=" << rowId << " Error: param=" << range.property << " val=" << value
                  << " out of range [" << range.minimum << "," << range.maximum << "], set to " << bound;
    return bound;
}

// The Capped VBR margin: how far above the video bitrate the maximum lets
// the encoder go, in per cent. A maximum below the total (a "Max Bitrate" of
// 0, say) would give a negative margin, stored as a negative overhead; it is
// clamped to the overhead's range instead. `video` is not 0 here.
int32_t PipelineConfigurator::bitrateMargin(const char* op, const std::string& rowId, int64_t maxVideo, int64_t video) {
    if (video == 0)
        return 0;
    return range::clampLogged(op, rowId, range::OVERHEAD_PERCENT, maxVideo * 100 / video - 100);
}

// The KLV bitrate of one ingest setting, read from the device manager; a
// failed read leaves `bitrate` as it was.
Fcodes PipelineConfigurator::readKlvBitrate(const std::string& ingest, int& bitrate) {
    const char* component = nullptr;
    const char* property = nullptr;
    if (ingest == value::KLV_SERIAL) {
        component = COM_PORTS_TABLE;
        property = BAUD_RATE;
    } else if (ingest == value::KLV_IP) {
        component = tbl::KLV_OVER_IP;
        property = KLV_BITRATE;
    } else if (ingest == value::KLV_SDI || ingest == value::KLV_SDI_SYNC) {
        component = KLV_OVER_SDI_TABLE;
        property = KLV_OVER_SDI_BITRATE;
    } else {
        return FC_OK;
    }
    return ctx.holder.requestGetIntParam(wire::SOCK_DEV, ds::DEVICE, component, property, bitrate, "");
}

Fcodes PipelineConfigurator::calcBitrates(const std::string& rowId, int& totalBitrate, int& videoBitrate,
                                          float frameRate, int& audioBitrate, int& klvBitrate, bool pcrOnVideoPid) {
    Fcodes result = FC_OK;
    std::string rateControl, ingestKlv, ingestKlv2, encodingFormat;
    bool encodeVideo = false;
    int overheadPercent = 0;
    result |= ctx.holder.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::RATE_CONTROL, rateControl, rowId);
    result |= ctx.holder.getBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODE_VIDEO, encodeVideo, rowId);
    result |= ctx.holder.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV, ingestKlv, rowId);
    result |= ctx.holder.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV2, ingestKlv2, rowId);
    result |= ctx.holder.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODING_FORMAT, encodingFormat, rowId);
    result |= ctx.holder.getIntParam(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT,
                                     overheadPercent, rowId);
    char scan = 'x';
    std::sscanf(encodingFormat.c_str(), "%*dx%*d%c @ %*f", &scan);

    // The first target's protocol decides the model, enabled or not.
    std::string protocol;
    std::vector<std::string> targets;
    result |= rows.getChildInstances(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, rowId, targets);
    if (targets.empty()) {
        DBG(DBG_ERROR) << "calcBitrates: Couldn't find targetId in table=" << tbl::TARGET
                       << " for chan rowId=" << rowId;
        result |= FC_UNAVAILABLE;
    } else {
        result |=
            ctx.holder.getTextParam(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, protocol, targets.front());
    }

    int64_t audio = 0;  // a sum of stored bitrates: 64 bits, clamped at the end
    std::vector<std::string> audioRows;
    result |= rows.getChildInstances(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::CHANNEL_ID, rowId, audioRows);
    for (const std::string& audioRow : audioRows) {
        bool encodeAudio = false;
        int bitrate = 0;
        std::string format, sampling;
        result |=
            ctx.holder.getBoolParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::ENCODE_AUDIO, encodeAudio, audioRow);
        result |= ctx.holder.getIntParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::AUDIO_BITRATE, bitrate, audioRow);
        if (!encodeAudio || bitrate == 0)
            continue;
        result |=
            ctx.holder.getTextParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, format, audioRow);
        result |= ctx.holder.getTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SAMPLING, sampling, audioRow);
        const int32_t rate = sampleRate(sampling);
        const int32_t samples = samplesPerAudioFrame(format);
        // The transport rate of whole packets per audio frame, not the codec rate.
        audio +=
            (rate != 0 && samples != 0) ? rate * packetsPerAudioFrame(bitrate) * TS_PACKET_BITS / samples : bitrate;
    }

    int klv1 = 0;
    int klv2 = 0;
    result |= readKlvBitrate(ingestKlv, klv1);
    result |= readKlvBitrate(ingestKlv2, klv2);
    const int32_t klv = asInt(rowId, KLV_BITRATE, static_cast<int64_t>(klv1) + klv2);

    // Clamped to their ranges: (P + 100) is a divisor, and the frame term a product.
    const int64_t percent = rateControl == value::CBR
                                ? range::clampLogged("calcBitrates", rowId, range::OVERHEAD_PERCENT, overheadPercent)
                                : 0;
    const int32_t fixedOverhead = pcrOnVideoPid ? FIXED_OVERHEAD_PCR_ON_VIDEO : FIXED_MUX_OVERHEAD;
    const bool representable = std::isfinite(frameRate) && std::fabs(frameRate) < 1e9f;
    int64_t frameTerm = range::clampLogged("calcBitrates", rowId, range::FRAME_SAMPLING,
                                           representable ? static_cast<int64_t>(frameRate) : INT32_MAX);
    if (scan == 'i' && rowId == row::HEVC) {
        DBG(DBG_INFO) << "configChannel: Encoding HEVC interlaced use fps*2 to calc bitrate";
        frameTerm *= FRAME_OVERHEAD_BITS_HEVC_INTERLACED;
    } else {
        frameTerm *= FRAME_OVERHEAD_BITS;
    }

    if (isTransportProtocol(protocol)) {
        if (totalBitrate == 0) {
            const int64_t packetised = packetisedVideo(frameTerm + videoBitrate);
            const int64_t withOverhead = packetised * (percent + 100) / 100;
            totalBitrate =
                asInt(rowId, prop::TOTAL_BITRATE, static_cast<int64_t>(audio) + klv + fixedOverhead + withOverhead);
        } else if (!encodeVideo) {
            videoBitrate = 0;
        } else {
            const int64_t payload = static_cast<int64_t>(totalBitrate) - audio - klv - fixedOverhead;
            videoBitrate = asInt(rowId, prop::VIDEO_BITRATE, payload * 18400 / ((percent + 100) * 188) - frameTerm);
        }
    } else if (totalBitrate == 0) {
        totalBitrate = asInt(rowId, prop::TOTAL_BITRATE, static_cast<int64_t>(videoBitrate) + audio + klv);
    } else {
        videoBitrate =
            encodeVideo ? asInt(rowId, prop::VIDEO_BITRATE, static_cast<int64_t>(totalBitrate) - audio - klv) : 0;
    }
    audioBitrate = asInt(rowId, prop::AUDIO_BITRATE, audio);
    klvBitrate = klv;

    DBG(DBG_INFO) << "calcBitrates: videoBR=" << videoBitrate << " audioBR=" << audio << " klvBitrate=" << klv
                  << " ingestKlv1=" << ingestKlv << " ingestKlv2=" << ingestKlv2 << " klv2Bitrate=" << klv2
                  << " totalBitrate=" << totalBitrate << " rowId=" << rowId;
    return result;
}

// Sets one encoder parameter; a refusal is logged and the change goes on.
void PipelineConfigurator::setEncoderOnTheFly(const std::string& rowId, const std::string& component,
                                              const std::string& parameter, int value) {
    const Fcodes set = ITarnevelClient::setTarnevelIntParam(&ctx.holder, component, parameter, value);
    if (!isOk(set))
        DBG(DBG_ERROR) << "changeBitrateOnTheFly: rowId=" << rowId << " Error: val=" << value << " param=" << parameter
                       << " comp=" << component << " fcode=0x" << std::hex << static_cast<uint32_t>(set);
}

// The floors a channel's video bitrate keeps, wherever a total is turned
// into a video bitrate (a configuration and an on-the-fly change alike): a
// video bitrate below the channel's minimum is raised to it and the total
// recomputed from it; the maximum is raised to the total that the minimum
// plus ten per cent needs. The caller writes what was raised.
Fcodes PipelineConfigurator::applyBitrateFloors(const char* operation, const std::string& rowId, float frameRate,
                                                bool pcrOnVideoPid, int& video, int& total, int& max, bool& totalRaised,
                                                bool& maxRaised) {
    totalRaised = maxRaised = false;
    const int channel = channelIndex(rowId);
    if (channel < 0 || video >= MIN_VIDEO_BITRATE[channel])
        return FC_OK;
    if (channel == 1)
        DBG(DBG_WARN) << operation << ": Video BR=" << video << ". Reset to min=" << MIN_VIDEO_BITRATE[channel]
                      << " inst=" << rowId;
    else
        DBG(DBG_WARN) << operation << ": Video BR=" << video << ". Reseting to min=" << MIN_VIDEO_BITRATE[channel]
                      << " inst=" << rowId;
    int audio = 0, klv = 0;
    video = MIN_VIDEO_BITRATE[channel];
    total = 0;
    Fcodes result = calcBitrates(rowId, total, video, frameRate, audio, klv, pcrOnVideoPid);
    totalRaised = true;

    int floorTotal = 0;
    int floorVideo = MIN_MAX_VIDEO_BITRATE[channel];
    result |= calcBitrates(rowId, floorTotal, floorVideo, frameRate, audio, klv, pcrOnVideoPid);
    if (max < floorTotal) {
        DBG(DBG_WARN) << operation << ": Recalculated prop=" << prop::MAX_BITRATE << " val=" << floorTotal
                      << " is greater than prev=" << max << " inst=" << rowId;
        max = floorTotal;
        maxRaised = true;
    }
    return result;
}

// "Bitrate Margin" of the encoder: 0 without video; the channel's own margin
// with "CBR"; otherwise the headroom, in per cent, that the maximum leaves
// over the video bitrate.
Fcodes PipelineConfigurator::encoderMargin(const char* operation, const std::string& rowId,
                                           const std::string& rateControl, bool encodeVideo, int video, int max,
                                           float frameRate, bool pcrOnVideoPid, int& margin) {
    margin = 0;
    const int channel = channelIndex(rowId);
    if (channel < 0 || !encodeVideo || video == 0)
        return FC_OK;
    if (rateControl == value::CBR) {
        margin = CBR_MARGIN[channel];
        return FC_OK;
    }
    int maxTotal = max, maxVideo = 0, audio = 0, klv = 0;
    const Fcodes result = calcBitrates(rowId, maxTotal, maxVideo, frameRate, audio, klv, pcrOnVideoPid);
    margin = bitrateMargin(operation, rowId, maxVideo, video);
    DBG(DBG_INFO) << operation << ": rowId=" << rowId << " maxBitrate=" << max << " maxVideoBitrate=" << maxVideo
                  << " rateControl=" << rateControl << " margin=" << margin;
    return result;
}

Fcodes PipelineConfigurator::changeBitrateOnTheFly(const std::string& rowId, int totalBitrate, int maxBitrate) {
    const int channel = channelIndex(rowId);
    if (channel < 0)
        return FC_OK;
    const std::string encoder = med::VIDEO_ENCODER[channel];

    Fcodes result = FC_OK;
    bool encodeVideo = false;
    int frameSampling = 0, previousTotal = 0, currentMax = 0, overheadPercent = 0, videoPid = 0, pcrPid = 0;
    std::string rateControl;
    result |= ctx.holder.getBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODE_VIDEO, encodeVideo, rowId);
    result |= ctx.holder.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::FRAME_SAMPLING, frameSampling, rowId);
    result |= ctx.holder.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, previousTotal, rowId);
    result |= ctx.holder.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, currentMax, rowId);
    result |= ctx.holder.getTextParam(ds::CHANNEL, tbl::PROCESSING, prop::RATE_CONTROL, rateControl, rowId);
    result |= ctx.holder.getIntParam(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT,
                                     overheadPercent, rowId);
    result |= ctx.holder.getIntParam(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::VIDEO_PID, videoPid, rowId);
    result |= ctx.holder.getIntParam(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::PCR_PID, pcrPid, rowId);
    const bool pcrOnVideoPid = pcrPid == videoPid;
    const float frameRate = static_cast<float>(frameSampling);

    int audio = 0, klv = 0, video = 0;
    result |= calcBitrates(rowId, totalBitrate, video, frameRate, audio, klv, pcrOnVideoPid);

    if (encodeVideo) {
        bool totalRaised = false, maxRaised = false;
        result |= applyBitrateFloors("changeBitrateOnTheFly", rowId, frameRate, pcrOnVideoPid, video, totalBitrate,
                                     maxBitrate, totalRaised, maxRaised);
        if (totalRaised)
            result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, totalBitrate, rowId);
        if (maxRaised)
            result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, maxBitrate, rowId);
    }

    result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, video, rowId);
    setEncoderOnTheFly(rowId, encoder, med::PARAM_BITRATE, video);

    int margin = 0;
    result |= encoderMargin("changeBitrateOnTheFly", rowId, rateControl, encodeVideo, video, maxBitrate, frameRate,
                            pcrOnVideoPid, margin);
    if (encodeVideo && video != 0 && rateControl != value::CBR) {
        if (rateControl == value::CAPPED_VBR)
            overheadPercent = margin;
        result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT,
                                          overheadPercent, rowId);
    }
    setEncoderOnTheFly(rowId, encoder, med::PARAM_BITRATE_MARGIN, margin);
    if (channel == 1)
        setEncoderOnTheFly(rowId, encoder, APPLY_ON_THE_FLY, 1);

    result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, totalBitrate, rowId);
    result |= ctx.holder.initIntParam(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, maxBitrate, rowId);
    result |= updateChannel(rowId);
    ctx.events.sendEvent(ev::BITRATE_RECALCULATED, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO,
                         "prev: " + std::to_string(previousTotal) + " new: " + std::to_string(totalBitrate));
    return result;
}
