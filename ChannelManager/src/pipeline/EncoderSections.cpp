#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "datacom/DbgPrintClient.h"
#include "model/BitrateModel.h"
#include "pipeline/PipelineSections.h"
#include "pipeline/TextTables.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The video encoder sections of a pipeline run: resolution, bitrates, rate
// control, GOP and coding tools.

namespace {
bool inList(const std::vector<const char*>& list, const std::string& text) {
    for (const char* item : list)
        if (text == item)
            return true;
    return false;
}
}  // namespace

// Section 14. The encoder scales to the configured size ("Custom").
void configEncodingResolution(const ChannelSnapshot& s, PipelineOutput& out) {
    const std::string encoder = med::VIDEO_ENCODER[s.channel];
    int w = 0, h = 0;
    char scan = 'x';
    float fr = static_cast<float>(s.frameSampling);
    const int parsed = std::sscanf(s.encodingFormat.c_str(), "%dx%d%c @ %f", &w, &h, &scan, &fr);
    DBG(DBG_INFO) << "configChannel: rowId=" << s.rowId << " encodingFormat=" << s.encodingFormat << " w=" << w
                  << " h=" << h << " fr=" << fr;
    if (parsed < 3 || (scan != 'p' && scan != 'i')) {
        out.unknown("Encoding Format", s.encodingFormat);
    } else {
        out.put(encoder, med::PARAM_ENCODING_RESOLUTION, med::CUSTOM);
        out.put(encoder, med::PARAM_ENCODING_WIDTH, w);
        out.put(encoder, med::PARAM_ENCODING_HEIGHT, h);
        out.put(encoder, med::PARAM_INTERLACED_PROGRESSIVE, scan == 'i' ? "Interlaced" : "Progressive");
        out.put(encoder, prop::FRAME_SAMPLING, s.frameSampling);
    }
    if (s.aspectRatio == "Same as Input") {
        out.put(encoder, prop::ASPECT_RATIO, "Same As Input");
    } else if (const char* ratio = pipeline::lookup(pipeline::ASPECT_RATIO, s.aspectRatio)) {
        int x = 0, y = 0;
        std::sscanf(ratio, "%d:%d", &x, &y);
        out.put(encoder, prop::ASPECT_RATIO, med::CUSTOM);
        out.put(encoder, med::PARAM_ASPECT_RATIO_X, x);
        out.put(encoder, med::PARAM_ASPECT_RATIO_Y, y);
    } else {
        // The appliance's own text, trailing blank included, kept letter for letter.
        out.unknown("Aspect Ratio or Aspect Ratio ", s.aspectRatio);
    }
    if (s.level == "Auto" || inList(pipeline::LEVELS, s.level))
        out.put(encoder, prop::LEVEL, s.level);
    else
        // The appliance's own text, kept letter for letter.
        out.unknown("Level or Level", s.level);
}

// Section 15: the video bitrate that fits the configured total, with the
// same per-channel floors as an on-the-fly change. The bitrates settled here
// are those of the later sections.
void configBitrates(const ChannelSnapshot& s, PipelineOutput& out) {
    const float rate = static_cast<float>(s.frameSampling);
    int total = s.totalBitrate, video = 0, audio = 0, klv = 0;
    bitrate::calcBitrates(s, total, video, rate, audio, klv, s.pcrOnVideoPid());
    if (s.encodeVideo) {
        bool totalRaised = false, maxRaised = false;
        bitrate::applyBitrateFloors("configChannel", s, rate, s.pcrOnVideoPid(), video, out.bitrates.total,
                                    out.bitrates.max, totalRaised, maxRaised);
        if (totalRaised)
            out.store(tbl::PROCESSING, prop::TOTAL_BITRATE, s.rowId, out.bitrates.total);
        if (maxRaised) {
            out.store(tbl::PROCESSING, prop::MAX_BITRATE, s.rowId, out.bitrates.max);
            out.event(ev::BITRATE_RECALCULATED,
                      "prev: " + std::to_string(s.maxBitrate) + " new: " + std::to_string(out.bitrates.max));
        }
    }
    out.bitrates.video = video;
    out.store(tbl::PROCESSING, prop::VIDEO_BITRATE, s.rowId, video);
    out.put(med::VIDEO_ENCODER[s.channel], med::PARAM_BITRATE, video);
}

// Section 16. A transport stream needs a bounded rate, so "VBR" becomes
// "Capped VBR" when any enabled target carries one; an elementary stream
// ("RTP ES", "RTMP") may use plain VBR. The margin is that of an on-the-fly
// change (encoderMargin).
void configRateControl(const ChannelSnapshot& s, PipelineOutput& out) {
    const std::string encoder = med::VIDEO_ENCODER[s.channel];
    bool transport = false;
    for (const ChannelSnapshot::Target& t : s.targets)
        for (const char* p : pipeline::TS_PROTOCOLS)
            transport |= t.enabled && t.protocol == p;
    const char* mode = pipeline::lookup(pipeline::ENCODER_RATE_CONTROL, s.rateControl);
    if (!mode)
        out.unknown("Rate Control", s.rateControl);
    else
        out.put(encoder, med::PARAM_RATE_CONTROL_MODE,
                transport && s.rateControl == value::VBR ? value::CAPPED_VBR : mode);

    const int margin = bitrate::encoderMargin("configChannel", s, out.bitrates.video, out.bitrates.max,
                                              static_cast<float>(s.frameSampling), s.pcrOnVideoPid());
    if (s.rateControl == value::CAPPED_VBR && s.encodeVideo && out.bitrates.video != 0) {
        out.bitrates.overheadPercent = margin;
        out.store(tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, s.rowId, margin);
    }
    out.put(encoder, med::PARAM_BITRATE_MARGIN, margin);
}

static void configCodingH264(const ChannelSnapshot& s, PipelineOutput& out) {
    const std::string encoder = med::VIDEO_ENCODER[0];
    if (const char* profile = pipeline::lookup(pipeline::H264_PROFILE, s.videoCodecProfile))
        out.put(encoder, prop::VIDEO_CODEC_PROFILE, profile);
    else
        out.unknown("Video Codec Profile", s.videoCodecProfile);
    if (const char* entropy = pipeline::lookup(pipeline::ENTROPY_CODING, s.vlcMode))
        out.put(encoder, med::PARAM_ENTROPY_CODING, entropy);
    else
        out.unknown("VLC Mode", s.vlcMode);
    if (const char* gop = pipeline::lookup(pipeline::H264_GOP, s.gopStructure))
        out.put(encoder, prop::GOP_STRUCTURE, gop);
    else
        out.unknown("GOP Structure", s.gopStructure);
    out.put(encoder, prop::GOP_SIZE, s.gopSize);
    if (const char* coding = pipeline::lookup(pipeline::PICTURE_CODING, s.pictureCoding))
        out.put(encoder, prop::PICTURE_CODING, coding);
    else
        out.unknown("Picture Coding", s.pictureCoding);
    out.put(encoder, med::PARAM_SEI_PICTURE_TIMING, s.timestamps);
    out.put(encoder, med::PARAM_SEI_USER_DATA_UNREGISTRED, s.latencyMeasurement);
    // Every IDR carries its parameter sets so a receiver can join at any GOP.
    out.put(encoder, med::PARAM_SPS_PPS_PER_IDR, true);
    out.put(encoder, med::PARAM_SPS_PER_PICTURE, s.spsPpsPerPicture);
    out.put(encoder, med::PARAM_QP_MODE, s.autoAdapt ? "Auto" : "Manual");
    out.put(encoder, prop::QP_BASE, s.qpBase);
    out.put(encoder, prop::QP_RANGE_MIN, s.qpRangeMin);
    out.put(encoder, prop::QP_RANGE_MAX, s.qpMax);
    out.put(encoder, prop::INITIAL_DELAY, s.initialDelay);
    out.put(encoder, prop::MAXIMUM_DELAY, s.maximumDelay);
}

static void configCodingHevc(const ChannelSnapshot& s, PipelineOutput& out) {
    const std::string encoder = med::VIDEO_ENCODER[1];
    const char* chroma = pipeline::lookup(pipeline::HEVC_CHROMA, s.videoCodecProfile);
    const char* depth = pipeline::lookup(pipeline::HEVC_BIT_DEPTH, s.videoCodecProfile);
    if (chroma && depth) {
        out.put(encoder, med::PARAM_CHROMA_FORMAT, chroma);
        out.put(encoder, med::PARAM_BIT_DEPTH, std::atoi(depth));
    } else {
        out.unknown("Video Codec Profile", s.videoCodecProfile);
    }
    if (const char* sub = pipeline::lookup(pipeline::HEVC_GOP_SUB_SIZE, s.gopStructure)) {
        DBG(DBG_INFO) << "configChannel: rowId=" << s.rowId << " gopStruct=" << s.gopStructure
                      << " gopSize=" << s.gopSize;
        out.put(encoder, prop::GOP_STRUCTURE, s.gopStructure);
        out.put(encoder, med::PARAM_SUB_GOP_SIZE, std::atoi(sub));
    } else {
        out.unknown("GOP Structure", s.gopStructure);
    }
    out.put(encoder, prop::GOP_SIZE, s.gopSize);
    out.put(encoder, prop::FIXED_GOP_SIZE, s.fixedGopSize);
    if (const char* resilience = pipeline::lookup(pipeline::ERROR_RESILIENCE, s.errorResilience))
        out.put(encoder, prop::ERROR_RESILIENCE, resilience);
    else
        out.unknown("Error Resilience", s.errorResilience);
    out.put(encoder, med::PARAM_SEI_TIMECODE, s.timestamps);
}

// Section 17. The timestamp generator of the channel inserts the MISB
// timestamps that "Timestamps" asks for.
void configGopAndCoding(const ChannelSnapshot& s, PipelineOutput& out) {
    const std::string encoder = med::VIDEO_ENCODER[s.channel];
    out.put(encoder, prop::CLOSED_GOP, s.closedGop);
    out.put(encoder, prop::INSERT_AU_DELIMITERS, s.auDelimiters);
    if (s.channel == 0)
        configCodingH264(s, out);
    else
        configCodingHevc(s, out);
    out.put(med::TIMESTAMP_GENERATOR + std::to_string(s.channel), med::PARAM_MISB_TIMESTAMPS, s.timestamps);
}
