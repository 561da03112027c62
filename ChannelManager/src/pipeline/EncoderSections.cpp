#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "datacom/DbgPrintClient.h"
#include "pipeline/PipelineConfigurator.h"
#include "pipeline/PipelineRun.h"
#include "settings/BitrateModel.h"
#include "settings/ChannelSettings.h"
#include "settings/IChannelEvents.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The video encoder sections of configChannel: resolution, bitrates, rate
// control, GOP and coding tools.

namespace {
// "VBR" runs as "Capped VBR" when the stream goes out as a transport stream.
constexpr const char* VBR = "VBR";

bool inList(const std::vector<const char*>& list, const std::string& text) {
    for (const char* item : list)
        if (text == item)
            return true;
    return false;
}
}  // namespace

// Section 14. The encoder scales to the configured size ("Custom").
void PipelineConfigurator::configEncodingResolution(PipelineRun& run) {
    const std::string encoder = med::VIDEO_ENCODER[run.channel];
    int w = 0, h = 0;
    char scan = 'x';
    float fr = static_cast<float>(run.frameSampling);
    const int parsed = std::sscanf(run.encodingFormat.c_str(), "%dx%d%c @ %f", &w, &h, &scan, &fr);
    DBG(DBG_INFO) << "configChannel: rowId=" << run.rowId << " encodingFormat=" << run.encodingFormat << " w=" << w
                  << " h=" << h << " fr=" << fr;
    if (parsed < 3 || (scan != 'p' && scan != 'i')) {
        run.unknown("Encoding Format", run.encodingFormat);
    } else {
        run.put(encoder, "Encoding Resolution", "Custom");
        run.put(encoder, "Encoding Width", w);
        run.put(encoder, "Encoding Height", h);
        run.put(encoder, "Interlaced/Progressive", scan == 'i' ? "Interlaced" : "Progressive");
        run.put(encoder, prop::FRAME_SAMPLING, run.frameSampling);
    }
    if (run.aspectRatio == "Same as Input") {
        run.put(encoder, prop::ASPECT_RATIO, "Same As Input");
    } else if (const char* ratio = pipeline::lookup(pipeline::ASPECT_RATIO, run.aspectRatio)) {
        int x = 0, y = 0;
        std::sscanf(ratio, "%d:%d", &x, &y);
        run.put(encoder, prop::ASPECT_RATIO, "Custom");
        run.put(encoder, "Aspect Ratio X", x);
        run.put(encoder, "Aspect Ratio Y", y);
    } else {
        // The appliance's own text, trailing blank included, kept letter for letter.
        run.unknown("Aspect Ratio or Aspect Ratio ", run.aspectRatio);
    }
    if (run.level == "Auto" || inList(pipeline::LEVELS, run.level))
        run.put(encoder, prop::LEVEL, run.level);
    else
        // The appliance's own text, kept letter for letter.
        run.unknown("Level or Level", run.level);
}

// Section 15: the video bitrate that fits the configured total, with the
// same per-channel floors as an on-the-fly change, from the settings the run
// read (the device manager asked once for the KLV bitrates).
void PipelineConfigurator::configBitrates(PipelineRun& run) {
    run.bitrates = run.bitrateSettings();
    run.result |= finishChannelSettings(ctx.holder, run.bitrates);
    const bool pcrOnVideo = run.pcrPid == run.videoPid;
    const float rate = static_cast<float>(run.frameSampling);
    int total = run.totalBitrate, video = 0, audio = 0, klv = 0;
    bitrate::calcBitrates(run.bitrates, total, video, rate, audio, klv, pcrOnVideo);
    if (run.encodeVideo) {
        const int previousMax = run.maxBitrate;
        bool totalRaised = false, maxRaised = false;
        bitrate::applyBitrateFloors("configChannel", run.bitrates, rate, pcrOnVideo, video, run.totalBitrate,
                                    run.maxBitrate, totalRaised, maxRaised);
        if (totalRaised)
            run.initInt(tbl::PROCESSING, prop::TOTAL_BITRATE, run.rowId, run.totalBitrate);
        if (maxRaised) {
            run.initInt(tbl::PROCESSING, prop::MAX_BITRATE, run.rowId, run.maxBitrate);
            ctx.events.sendEvent(ev::BITRATE_RECALCULATED, run.rowId, cond::INFO, state::ALARM_NONE,
                                 state::SEVERITY_INFO,
                                 "prev: " + std::to_string(previousMax) + " new: " + std::to_string(run.maxBitrate));
        }
    }
    run.videoBitrate = video;
    run.initInt(tbl::PROCESSING, prop::VIDEO_BITRATE, run.rowId, video);
    run.put(med::VIDEO_ENCODER[run.channel], med::PARAM_BITRATE, video);
}

// Section 16. A transport stream needs a bounded rate, so "VBR" becomes
// "Capped VBR" when any enabled target carries one; an elementary stream
// ("RTP ES", "RTMP") may use plain VBR. The margin is that of an on-the-fly
// change (encoderMargin).
void PipelineConfigurator::configRateControl(PipelineRun& run) {
    const std::string encoder = med::VIDEO_ENCODER[run.channel];
    bool transport = false;
    for (const PipelineRun::Target& t : run.targets)
        for (const char* p : pipeline::TS_PROTOCOLS)
            transport |= t.enabled && t.protocol == p;
    const char* mode = pipeline::lookup(pipeline::ENCODER_RATE_CONTROL, run.rateControl);
    if (!mode)
        run.unknown("Rate Control", run.rateControl);
    else
        run.put(encoder, "Rate Control Mode", transport && run.rateControl == VBR ? value::CAPPED_VBR : mode);

    const int margin = bitrate::encoderMargin("configChannel", run.bitrates, run.videoBitrate, run.maxBitrate,
                                              static_cast<float>(run.frameSampling), run.pcrPid == run.videoPid);
    if (run.rateControl == value::CAPPED_VBR && run.encodeVideo && run.videoBitrate != 0) {
        run.muxOverheadPercent = margin;
        run.initInt(tbl::TRANSPORT_STREAM, prop::MUXRATE_OVERHEAD_PERCENT, run.rowId, margin);
    }
    run.put(encoder, med::PARAM_BITRATE_MARGIN, margin);
}

// Section 17. The timestamp generator of the channel inserts the MISB
// timestamps that "Timestamps" asks for.
void PipelineConfigurator::configGopAndCoding(PipelineRun& run) {
    const std::string encoder = med::VIDEO_ENCODER[run.channel];
    run.put(encoder, prop::CLOSED_GOP, run.closedGop);
    run.put(encoder, prop::INSERT_AU_DELIMITERS, run.auDelimiters);
    if (run.channel == 0)
        configCodingH264(run);
    else
        configCodingHevc(run);
    run.put("TIMESTAMP_GENERATOR_" + std::to_string(run.channel), "MISB Timestamps", run.timestamps);
}

void PipelineConfigurator::configCodingH264(PipelineRun& run) {
    const std::string encoder = med::VIDEO_ENCODER[0];
    if (const char* profile = pipeline::lookup(pipeline::H264_PROFILE, run.videoCodecProfile))
        run.put(encoder, prop::VIDEO_CODEC_PROFILE, profile);
    else
        run.unknown("Video Codec Profile", run.videoCodecProfile);
    if (const char* entropy = pipeline::lookup(pipeline::ENTROPY_CODING, run.vlcMode))
        run.put(encoder, "Entropy Coding", entropy);
    else
        run.unknown("VLC Mode", run.vlcMode);
    if (const char* gop = pipeline::lookup(pipeline::H264_GOP, run.gopStructure))
        run.put(encoder, prop::GOP_STRUCTURE, gop);
    else
        run.unknown("GOP Structure", run.gopStructure);
    run.put(encoder, prop::GOP_SIZE, run.gopSize);
    if (const char* coding = pipeline::lookup(pipeline::PICTURE_CODING, run.pictureCoding))
        run.put(encoder, prop::PICTURE_CODING, coding);
    else
        run.unknown("Picture Coding", run.pictureCoding);
    run.put(encoder, "SEI Picture Timing", run.timestamps);
    run.put(encoder, "SEI User Data Unregistred", run.latencyMeasurement);
    // Every IDR carries its parameter sets so a receiver can join at any GOP.
    run.put(encoder, "SPS/PPS per IDR", true);
    run.put(encoder, "SPS per Picture", run.spsPpsPerPicture);
    run.put(encoder, "QP Mode", run.autoAdapt ? "Auto" : "Manual");
    run.put(encoder, prop::QP_BASE, run.qpBase);
    run.put(encoder, prop::QP_RANGE_MIN, run.qpRangeMin);
    run.put(encoder, prop::QP_RANGE_MAX, run.qpMax);
    run.put(encoder, prop::INITIAL_DELAY, run.initialDelay);
    run.put(encoder, prop::MAXIMUM_DELAY, run.maximumDelay);
}

void PipelineConfigurator::configCodingHevc(PipelineRun& run) {
    const std::string encoder = med::VIDEO_ENCODER[1];
    const char* chroma = pipeline::lookup(pipeline::HEVC_CHROMA, run.videoCodecProfile);
    const char* depth = pipeline::lookup(pipeline::HEVC_BIT_DEPTH, run.videoCodecProfile);
    if (chroma && depth) {
        run.put(encoder, "Chroma Format", chroma);
        run.put(encoder, "Bit Depth", std::atoi(depth));
    } else {
        run.unknown("Video Codec Profile", run.videoCodecProfile);
    }
    if (const char* sub = pipeline::lookup(pipeline::HEVC_GOP_SUB_SIZE, run.gopStructure)) {
        DBG(DBG_INFO) << "configChannel: rowId=" << run.rowId << " gopStruct=" << run.gopStructure
                      << " gopSize=" << run.gopSize;
        run.put(encoder, prop::GOP_STRUCTURE, run.gopStructure);
        run.put(encoder, "Sub-GOP Size", std::atoi(sub));
    } else {
        run.unknown("GOP Structure", run.gopStructure);
    }
    run.put(encoder, prop::GOP_SIZE, run.gopSize);
    run.put(encoder, prop::FIXED_GOP_SIZE, run.fixedGopSize);
    if (const char* resilience = pipeline::lookup(pipeline::ERROR_RESILIENCE, run.errorResilience))
        run.put(encoder, prop::ERROR_RESILIENCE, resilience);
    else
        run.unknown("Error Resilience", run.errorResilience);
    run.put(encoder, "SEI Timecode", run.timestamps);
}
