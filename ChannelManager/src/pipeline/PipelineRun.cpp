#include "pipeline/PipelineRun.h"

#include "datacom/DataHolder.h"
#include "datacom/DbgPrintClient.h"
#include "pipeline/PipelineConfigurator.h"
#include "tarnevel/ITarnevelClient.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace datacom;
using namespace tarnevel;

using namespace vocab;

// ---- PipelineRun: the reads and writes every section shares ----

PipelineRun::PipelineRun(DataHolder& holder, const std::string& rowId, const char* operation)
    : holder(holder),
      rowId(rowId),
      operation(operation),
      channel(channelIndex(rowId) == 1 ? 1 : 0),
      suffix(channelIndex(rowId) == 1 ? "CH1" : "CH0") {}

std::string PipelineRun::text(const char* component, const char* property, const std::string& instance,
                              const std::string& fallback) {
    std::string value = fallback;
    result |= holder.getTextParam(ds::CHANNEL, component, property, value, instance);
    return value;
}

int PipelineRun::integer(const char* component, const char* property, const std::string& instance, int fallback) {
    int value = fallback;
    result |= holder.getIntParam(ds::CHANNEL, component, property, value, instance);
    return value;
}

bool PipelineRun::flag(const char* component, const char* property, const std::string& instance, bool fallback) {
    bool value = fallback;
    result |= holder.getBoolParam(ds::CHANNEL, component, property, value, instance);
    return value;
}

void PipelineRun::initText(const char* component, const char* property, const std::string& instance,
                           const std::string& v) {
    result |= holder.initTextParam(ds::CHANNEL, component, property, v, instance);
}

void PipelineRun::initInt(const char* component, const char* property, const std::string& instance, int v) {
    result |= holder.initIntParam(ds::CHANNEL, component, property, v, instance);
}

void PipelineRun::initBool(const char* component, const char* property, const std::string& instance, bool v) {
    result |= holder.initBoolParam(ds::CHANNEL, component, property, v, instance);
}

namespace {
bool assemblyChecked(const std::string& component) {
    for (const char* prefix : pipeline::ASSEMBLY_CHECKED)
        if (component.compare(0, std::char_traits<char>::length(prefix), prefix) == 0)
            return true;
    return false;
}

// Whole-name search: "Srt Sender CH0" must not match "Srt Sender CH0 2".
bool assemblyNames(const std::string& assembly, const std::string& component) {
    for (size_t at = assembly.find(component); at != std::string::npos; at = assembly.find(component, at + 1)) {
        const size_t end = at + component.size();
        const bool startsName = at == 0 || assembly[at - 1] == '\n' || assembly[at - 1] == ',' ||
                                assembly[at - 1] == ';' || assembly[at - 1] == '=' || assembly[at - 1] == '\t';
        const bool endsName = end == assembly.size() || assembly[end] == '\n' || assembly[end] == ',' ||
                              assembly[end] == ';' || assembly[end] == '\r' || assembly[end] == '\t';
        if (startsName && endsName)
            return true;
    }
    return false;
}
}  // namespace

void PipelineRun::readAssembly() {
    if (assemblyRead)
        return;
    const Fcodes code = ITarnevelClient::getTarnevelAssembly(&holder, assembly);
    assemblyRead = isOk(code);
    if (!assemblyRead) {
        DBG(DBG_ERROR) << operation << ": rowId=" << rowId << " Error in getting Assembly fcode=0x" << std::hex
                       << static_cast<uint32_t>(code);
        result |= code;
    }
}

bool PipelineRun::present(const std::string& component) const {
    return !assemblyChecked(component) || (assemblyRead && assemblyNames(assembly, component));
}

void PipelineRun::put(const std::string& component, const std::string& parameter, const std::string& value) {
    write(component, parameter, value,
          [&] { return ITarnevelClient::setTarnevelTextParam(&holder, component, parameter, value); });
}

void PipelineRun::put(const std::string& component, const std::string& parameter, int value) {
    write(component, parameter, std::to_string(value),
          [&] { return ITarnevelClient::setTarnevelIntParam(&holder, component, parameter, value); });
}

void PipelineRun::write(const std::string& component, const std::string& parameter, const std::string& shown,
                        const std::function<Fcodes()>& send) {
    const bool checked = assemblyChecked(component);
    if (checked && !present(component)) {
        DBG(DBG_INFO) << operation << ": rowId=" << rowId << " comp=" << component
                      << " not in assembly, param=" << parameter << " left alone";
        return;
    }
    const Fcodes code = send();
    if (!isOk(code)) {
        DBG(DBG_ERROR) << operation << ": rowId=" << rowId << " Error: val=" << shown << " param=" << parameter
                       << " comp=" << component << (checked ? " assembly=" + assembly : std::string()) << " fcode=0x"
                       << std::hex << static_cast<uint32_t>(code);
        result |= code;
    }
}

void PipelineRun::enable(const std::string& component) {
    put(component, "Enable", true);
    enabled.insert(component);
}

void PipelineRun::unknown(const char* what, const std::string& value) const {
    DBG(DBG_ERROR) << operation << ": rowId=" << rowId << " Unknown " << what << "=" << value;
}

bool PipelineRun::ultraLowLatency() const {
    return streamProfile == value::PROFILE_ULL;
}

// What the bitrate model needs, taken from what the run has already read.
ChannelSettings PipelineRun::bitrateSettings() const {
    ChannelSettings s;
    s.rowId = rowId;
    s.rateControl = rateControl;
    s.encodingFormat = encodingFormat;
    s.ingestKlv = ingestKlv;
    s.ingestKlv2 = ingestKlv2;
    s.encodeVideo = encodeVideo;
    s.frameSampling = frameSampling;
    s.totalBitrate = totalBitrate;
    s.maxBitrate = maxBitrate;
    s.overheadPercent = muxOverheadPercent;
    s.videoPid = videoPid;
    s.pcrPid = pcrPid;
    s.hasTarget = !targets.empty();
    if (s.hasTarget)
        s.protocol = targets.front().protocol;
    for (const Audio& a : audio)
        s.audio.push_back({a.encodeSetting, a.bitrate, a.format, a.sampling});
    return s;
}

// ---- configChannel ----

// The sections run in this order whatever fails: a partly valid
// configuration reaches the mediator as far as it can, and the result tells
// which kinds of failure occurred.
Fcodes PipelineConfigurator::configChannel(const std::string& rowId) {
    if (!isChannelRow(rowId)) {
        DBG(DBG_ERROR) << "configChannel: Unexpected rowId=" << rowId;
        return FC_BAD_VALUE;
    }
    PipelineRun run(ctx.holder, rowId);
    configPrologue(run);
    configInputFormat(run);
    configSharedInput(run);
    readAudioRows(run);
    configFrameRateRatio(run);
    configVideoInput(run);
    configAudioInput(run);
    readProcessingSettings(run);
    configFormatChange(run);
    configGenlock(run);
    configAudioSampleRate(run);
    configTestPatterns(run);
    configSdiOutput(run);
    configVideoProcessing(run);
    configEncodingResolution(run);
    configBitrates(run);
    configRateControl(run);
    configGopAndCoding(run);
    configCrop(run);
    configAudioEncoding(run);
    configVideoSwitch(run);
    configKlvIngest(run);
    configKlvOverSdi(run);
    configEncryption(run);
    configMultiplexer(run);
    configTargets(run);
    configUnusedComponents(run);
    configSummary(run);
    return run.result;
}

// Section 1. The assembly is read here once; every assembly-checked write of
// the run searches this text.
void PipelineConfigurator::configPrologue(PipelineRun& run) {
    run.status = run.text(tbl::CHANNELS, prop::STATUS, run.rowId, state::STATUS_OK);
    run.integer(tbl::CHANNELS, prop::FCODE, run.rowId);
    DBG(DBG_INFO) << "configChannel: rowId=" << run.rowId;
    run.readAssembly();
    // The channel's targets, in document order ("...Target1" first).
    std::vector<std::string> ids;
    run.result |= rows.getChildInstances(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, run.rowId, ids);
    for (const std::string& id : ids) {
        PipelineRun::Target t;
        t.id = id;
        t.enabled = run.flag(tbl::TARGET, prop::ENABLED, id);
        t.protocol = run.text(tbl::TARGET, prop::STREAMING_PROTOCOL, id);
        t.name = run.text(tbl::TARGET, prop::CHANNEL_NAME, id);
        t.interface = run.text(tbl::TARGET, prop::NETWORK_INTERFACE, id);
        t.address = run.text(tbl::TARGET, prop::TARGET_ADDRESS, id);
        t.shaping = run.text(tbl::TARGET, prop::TRAFFIC_SHAPING, id);
        t.port = run.integer(tbl::TARGET, prop::TARGET_PORT, id);
        t.ttl = run.integer(tbl::TARGET, prop::TTL, id);
        t.packetSize = run.integer(tbl::TARGET, prop::UDP_PACKET_SIZE, id);
        run.targets.push_back(t);
    }
}

// The channel's audio streams, in document order ("...Audio1" before
// "...Audio2"), read after section 3: where the input is shared, the H.264
// rows are then the copies of the HEVC rows, and sections 6, 10, 11, 12 and
// 19/20 send what the rows hold.
void PipelineConfigurator::readAudioRows(PipelineRun& run) {
    std::vector<std::string> ids;
    run.result |= rows.getChildInstances(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::CHANNEL_ID, run.rowId, ids);
    for (const std::string& id : ids) {
        PipelineRun::Audio a;
        a.id = id;
        a.enabled = run.flag(tbl::AUDIO_SOURCE, prop::ENABLED, id);
        a.source = run.text(tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, id);
        a.track = run.text(tbl::AUDIO_SOURCE, prop::AUDIO_TRACK, id);
        a.sampling = run.text(tbl::AUDIO_SOURCE, prop::AUDIO_SAMPLING, id);
        a.gain = run.integer(tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, id);
        a.encodeSetting = run.flag(tbl::AUDIO_PROCESSING, prop::ENCODE_AUDIO, id);
        a.encode = a.encodeSetting && a.enabled;
        a.bitrate = run.integer(tbl::AUDIO_PROCESSING, prop::AUDIO_BITRATE, id);
        a.format = run.text(tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, id);
        a.channelMode = run.text(tbl::AUDIO_PROCESSING, prop::CHANNEL_MODE, id);
        a.pid = run.integer(tbl::AUDIO_PROCESSING, prop::AUDIO_PID, id);
        run.audio.push_back(a);
    }
}

// Section 7: the processing, encoder and transport settings the later
// sections need, read once.
void PipelineConfigurator::readProcessingSettings(PipelineRun& run) {
    const std::string& r = run.rowId;
    run.streamProfile = run.text(tbl::PROCESSING, prop::STREAM_PROFILE, r);
    run.rateControl = run.text(tbl::PROCESSING, prop::RATE_CONTROL, r);
    run.encodeVideo = run.flag(tbl::PROCESSING, prop::ENCODE_VIDEO, r, true);
    run.encodingFormat = run.text(tbl::PROCESSING, prop::ENCODING_FORMAT, r);
    run.frameSampling = run.integer(tbl::PROCESSING, prop::FRAME_SAMPLING, r);
    run.totalBitrate = run.integer(tbl::PROCESSING, prop::TOTAL_BITRATE, r);
    run.maxBitrate = run.integer(tbl::PROCESSING, prop::MAX_BITRATE, r);
    run.formatAsDetected = run.flag(tbl::PROCESSING, prop::FORMAT_AS_DETECTED, r);
    run.cropEnable = run.flag(tbl::PROCESSING, prop::CROP_ENABLE, r);
    run.lowLatency = run.flag(tbl::PROCESSING, prop::LOW_LATENCY, r);
    run.videoCodecProfile = run.text(tbl::PROCESSING, prop::VIDEO_CODEC_PROFILE, r);
    run.ingestKlv = run.text(tbl::PROCESSING, prop::INGEST_KLV, r, value::KLV_NONE);
    run.ingestKlv2 = run.text(tbl::PROCESSING, prop::INGEST_KLV2, r, value::KLV_NONE);
    run.encryption = run.flag(tbl::PROCESSING, prop::ENCRYPTION, r);

    const char* enc = run.channel == 1 ? tbl::HEVC_ENCODER : tbl::H264_ENCODER;
    run.aspectRatio = run.text(enc, prop::ASPECT_RATIO, "");
    run.level = run.text(enc, prop::LEVEL, "");
    run.gopStructure = run.text(enc, prop::GOP_STRUCTURE, "");
    run.gopSize = run.integer(enc, prop::GOP_SIZE, "");
    run.closedGop = run.flag(enc, prop::CLOSED_GOP, "");
    run.auDelimiters = run.flag(enc, prop::INSERT_AU_DELIMITERS, "");
    run.timestamps = run.flag(enc, prop::TIMESTAMPS, "");
    run.latencyMeasurement = run.flag(enc, prop::LATENCY_MEASUREMENT, "");
    if (run.channel == 0) {
        run.pictureCoding = run.text(enc, prop::PICTURE_CODING, "");
        run.vlcMode = run.text(enc, prop::VLC_MODE, "");
        run.spsPpsPerPicture = run.flag(enc, prop::SPS_PPS_PER_PICTURE, "");
        run.autoAdapt = run.flag(enc, prop::AUTO_ADAPT_BITRATES, "");
        run.qpBase = run.integer(enc, prop::QP_BASE, "");
        run.qpRangeMin = run.integer(enc, prop::QP_RANGE_MIN, "");
        run.qpMax = run.integer(enc, prop::QP_MAX, "");
        run.cropX = run.integer(enc, prop::CROP_X, "");
        run.cropY = run.integer(enc, prop::CROP_Y, "");
        run.cropWidth = run.integer(enc, prop::CROP_WIDTH, "");
        run.cropHeight = run.integer(enc, prop::CROP_HEIGHT, "");
    } else {
        run.fixedGopSize = run.flag(enc, prop::FIXED_GOP_SIZE, "");
        run.errorResilience = run.text(enc, prop::ERROR_RESILIENCE, "");
        run.closedCaption = run.flag(enc, prop::CLOSED_CAPTION, "");
    }
    // The multiplexer's delays are H.264 encoder settings for both channels.
    run.initialDelay = run.integer(tbl::H264_ENCODER, prop::INITIAL_DELAY, "");
    run.maximumDelay = run.integer(tbl::H264_ENCODER, prop::MAXIMUM_DELAY, "");

    const char* ts = tbl::TRANSPORT_STREAM;
    run.pmtPid = run.integer(ts, prop::PMT_PID, r);
    run.videoPid = run.integer(ts, prop::VIDEO_PID, r);
    run.pcrPid = run.integer(ts, prop::PCR_PID, r);
    run.klvPid = run.integer(ts, prop::KLV_PID, r);
    run.klv2Pid = run.integer(ts, prop::KLV2_PID, r);
    run.klvDecimation = run.integer(ts, prop::KLV_DECIMATION, r);
    run.dvbMode = run.flag(ts, prop::DVB_MODE, r);
    run.rtspPort = run.integer(ts, prop::RTSP_SERVER_PORT, r);
    run.aesMode = run.text(ts, prop::AES_MODE, r);
    run.aesKey = run.text(ts, prop::AES_KEY, r);
    run.muxOverheadPercent = run.integer(ts, prop::MUXRATE_OVERHEAD_PERCENT, r);
}
