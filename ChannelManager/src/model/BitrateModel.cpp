#include "model/BitrateModel.h"

#include <cmath>
#include <cstdio>

#include "datacom/DbgPrintClient.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"
#include "vocab/PeerNames.h"
#include "vocab/ValueRanges.h"

using namespace datacom;

using namespace vocab;

// The 32-bit and 64-bit steps are those of the appliance, so that host
// builds and the 32-bit target compute the same figures.

namespace {

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

// A maximum below the total (a "Max Bitrate" of 0, say) would give a negative
// margin, stored as a negative overhead; it is clamped to the overhead's range
// instead.
int32_t bitrate::bitrateMargin(const char* op, const std::string& rowId, int64_t maxVideo, int64_t video) {
    if (video == 0)
        return 0;
    return range::clampLogged(op, rowId, range::OVERHEAD_PERCENT, maxVideo * 100 / video - 100);
}

void bitrate::calcBitrates(const ChannelSnapshot& s, int& totalBitrate, int& videoBitrate, float frameRate,
                           int& audioBitrate, int& klvBitrate, bool pcrOnVideoPid) {
    const std::string& rowId = s.rowId;
    char scan = 'x';
    std::sscanf(s.encodingFormat.c_str(), "%*dx%*d%c @ %*f", &scan);

    int64_t audio = 0;  // a sum of stored bitrates: 64 bits, clamped at the end
    for (const ChannelSnapshot::Audio& a : s.audio) {
        if (!a.encodeSetting || a.bitrate == 0)
            continue;
        const int32_t rate = sampleRate(a.sampling);
        const int32_t samples = samplesPerAudioFrame(a.format);
        // The transport rate of whole packets per audio frame, not the codec rate.
        audio +=
            (rate != 0 && samples != 0) ? rate * packetsPerAudioFrame(a.bitrate) * TS_PACKET_BITS / samples : a.bitrate;
    }
    const int32_t klv = asInt(rowId, prop::KLV_BITRATE, static_cast<int64_t>(s.klvBitrate1) + s.klvBitrate2);

    // Clamped to their ranges: (P + 100) is a divisor, and the frame term a product.
    const int64_t percent = s.rateControl == value::CBR
                                ? range::clampLogged("calcBitrates", rowId, range::OVERHEAD_PERCENT, s.overheadPercent)
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

    if (isTransportProtocol(s.protocol())) {
        if (totalBitrate == 0) {
            const int64_t packetised = packetisedVideo(frameTerm + videoBitrate);
            const int64_t withOverhead = packetised * (percent + 100) / 100;
            totalBitrate =
                asInt(rowId, prop::TOTAL_BITRATE, static_cast<int64_t>(audio) + klv + fixedOverhead + withOverhead);
        } else if (!s.encodeVideo) {
            videoBitrate = 0;
        } else {
            const int64_t payload = static_cast<int64_t>(totalBitrate) - audio - klv - fixedOverhead;
            videoBitrate = asInt(rowId, prop::VIDEO_BITRATE, payload * 18400 / ((percent + 100) * 188) - frameTerm);
        }
    } else if (totalBitrate == 0) {
        totalBitrate = asInt(rowId, prop::TOTAL_BITRATE, static_cast<int64_t>(videoBitrate) + audio + klv);
    } else {
        videoBitrate =
            s.encodeVideo ? asInt(rowId, prop::VIDEO_BITRATE, static_cast<int64_t>(totalBitrate) - audio - klv) : 0;
    }
    audioBitrate = asInt(rowId, prop::AUDIO_BITRATE, audio);
    klvBitrate = klv;

    DBG(DBG_INFO) << "calcBitrates: videoBR=" << videoBitrate << " audioBR=" << audio << " klvBitrate=" << klv
                  << " ingestKlv1=" << s.ingestKlv << " ingestKlv2=" << s.ingestKlv2 << " klv2Bitrate=" << s.klvBitrate2
                  << " totalBitrate=" << totalBitrate << " rowId=" << rowId;
}

void bitrate::applyBitrateFloors(const char* operation, const ChannelSnapshot& s, float frameRate, bool pcrOnVideoPid,
                                 int& video, int& total, int& max, bool& totalRaised, bool& maxRaised) {
    totalRaised = maxRaised = false;
    const int channel = channelIndex(s.rowId);
    if (channel < 0 || video >= MIN_VIDEO_BITRATE[channel])
        return;
    if (channel == 1)
        DBG(DBG_WARN) << operation << ": Video BR=" << video << ". Reset to min=" << MIN_VIDEO_BITRATE[channel]
                      << " inst=" << s.rowId;
    else
        // "Reseting" is the appliance's own text, kept letter for letter.
        DBG(DBG_WARN) << operation << ": Video BR=" << video << ". Reseting to min=" << MIN_VIDEO_BITRATE[channel]
                      << " inst=" << s.rowId;
    int audio = 0, klv = 0;
    video = MIN_VIDEO_BITRATE[channel];
    total = 0;
    calcBitrates(s, total, video, frameRate, audio, klv, pcrOnVideoPid);
    totalRaised = true;

    int floorTotal = 0;
    int floorVideo = MIN_MAX_VIDEO_BITRATE[channel];
    calcBitrates(s, floorTotal, floorVideo, frameRate, audio, klv, pcrOnVideoPid);
    if (max < floorTotal) {
        DBG(DBG_WARN) << operation << ": Recalculated prop=" << prop::MAX_BITRATE << " val=" << floorTotal
                      << " is greater than prev=" << max << " inst=" << s.rowId;
        max = floorTotal;
        maxRaised = true;
    }
}

int bitrate::encoderMargin(const char* operation, const ChannelSnapshot& s, int video, int max, float frameRate,
                           bool pcrOnVideoPid) {
    const int channel = channelIndex(s.rowId);
    if (channel < 0 || !s.encodeVideo || video == 0)
        return 0;
    if (s.rateControl == value::CBR)
        return CBR_MARGIN[channel];
    int maxTotal = max, maxVideo = 0, audio = 0, klv = 0;
    calcBitrates(s, maxTotal, maxVideo, frameRate, audio, klv, pcrOnVideoPid);
    const int margin = bitrateMargin(operation, s.rowId, maxVideo, video);
    DBG(DBG_INFO) << operation << ": rowId=" << s.rowId << " maxBitrate=" << max << " maxVideoBitrate=" << maxVideo
                  << " rateControl=" << s.rateControl << " margin=" << margin;
    return margin;
}
