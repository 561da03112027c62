#include "model/ChannelSnapshot.h"

#include <cstdio>

#include "datacom/DbgPrintClient.h"
#include "datacom/WireConstants.h"
#include "model/ChannelRowReader.h"
#include "ports/ChannelStore.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

namespace {

// The reads of one snapshot: the channel rows, and the device manager's
// KLV inputs.
struct RowReader : ChannelRowReader {
    // A text of the device manager's dataset (instance ""); a failure logs
    // the device-read error line and leaves the text empty.
    std::string deviceText(const std::string& rowId, const char* table, const char* property) {
        std::string value;
        const Fcodes code = store.requestGetTextParam(wire::SOCK_DEV, ds::DEVICE, table, property, value, "");
        if (!isOk(code)) {
            DBG(DBG_ERROR) << "configChannel: rowId=" << rowId << " Error: param=" << property << " table=" << table
                           << " fcode=0x" << std::hex << static_cast<uint32_t>(code);
            result |= code;
        }
        return value;
    }
    // The KLV bitrate of one ingest setting; a failed read leaves 0.
    int klvBitrate(const std::string& ingest) {
        const DeviceKlvInput* input = deviceKlvInput(ingest);
        int bitrate = 0;
        if (input)
            result |= store.requestGetIntParam(wire::SOCK_DEV, ds::DEVICE, input->table, input->bitrate, bitrate, "");
        return bitrate;
    }
};

void readTarget(RowReader& r, ChannelSnapshot::Target& t) {
    const std::string& id = t.id;
    t.enabled = r.flag(tbl::TARGET, prop::ENABLED, id);
    t.protocol = r.text(tbl::TARGET, prop::STREAMING_PROTOCOL, id);
    t.name = r.text(tbl::TARGET, prop::CHANNEL_NAME, id);
    t.interface = r.text(tbl::TARGET, prop::NETWORK_INTERFACE, id);
    t.address = r.text(tbl::TARGET, prop::TARGET_ADDRESS, id);
    t.shaping = r.text(tbl::TARGET, prop::TRAFFIC_SHAPING, id);
    t.port = r.integer(tbl::TARGET, prop::TARGET_PORT, id);
    t.ttl = r.integer(tbl::TARGET, prop::TTL, id);
    t.packetSize = r.integer(tbl::TARGET, prop::UDP_PACKET_SIZE, id);
    if (!t.enabled)
        return;
    const char* f = tbl::FEC_SETTINGS;
    t.fecMode = r.text(f, prop::MODE, id);
    t.fecColumns = r.integer(f, prop::COLUMNS, id);
    t.fecRows = r.integer(f, prop::ROWS, id);
    t.fecPort1d = r.integer(f, prop::PORT_1D, id);
    t.fecPort2d = r.integer(f, prop::PORT_2D, id);
    if (t.protocol == value::ZIXI) {
        const char* z = tbl::ZIXI_FEEDER;
        t.zixiDynamic = r.flag(z, prop::ENABLE_DYNAMIC_BITRATE, id);
        t.zixiMinPercent = r.integer(z, prop::MIN_BITRATE_PERCENTS, id);
        t.zixiMaxPercent = r.integer(z, prop::MAX_BITRATE_PERCENTS, id);
        t.zixiMinBitrate = r.integer(z, prop::MIN_BITRATE, id);
        t.zixiMaxBitrate = r.integer(z, prop::MAX_BITRATE_ZIXI, id);
        t.zixiStreamId = r.text(z, prop::STREAM_ID, id);
        t.zixiPassword = r.text(z, prop::PASSWORD, id);
        t.zixiLatency = r.integer(z, prop::LATENCY, id);
        t.zixiFailover = r.flag(z, prop::ENABLE_FAILOVER, id);
        t.zixiFailoverAddress = r.text(z, prop::FAILOVER_ADDRESS, id);
        t.zixiFailoverPort = r.integer(z, prop::FAILOVER_PORT, id);
    } else if (t.protocol == value::SRT) {
        const char* s = tbl::SRT_SETTINGS;
        t.srtMode = r.text(s, prop::MODE, id);
        t.srtLatency = r.integer(s, prop::LATENCY, id);
        t.srtAesMode = r.text(s, prop::AES_MODE, id);
        t.srtAesKey = r.text(s, prop::AES_KEY, id);
        t.srtStreamId = r.text(s, prop::STREAM_ID, id);
        t.srtFec = r.flag(s, prop::SRT_FEC, id);
        t.srtColumns = r.integer(s, prop::COLUMNS, id);
        t.srtRows = r.integer(s, prop::ROWS, id);
    } else if (t.protocol == value::RTMP) {
        const char* m = tbl::RTMP_SETTINGS;
        t.rtmpUrl = r.text(m, prop::RTMP_SERVER_URL, id);
        t.rtmpStreamName = r.text(m, prop::STREAM_NAME, id);
        t.rtmpUsername = r.text(m, prop::USERNAME, id);
        t.rtmpPassword = r.text(m, prop::PASSWORD, id);
    }
}

void readAudio(RowReader& r, ChannelSnapshot::Audio& a) {
    const std::string& id = a.id;
    a.enabled = r.flag(tbl::AUDIO_SOURCE, prop::ENABLED, id);
    a.source = r.text(tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, id);
    a.track = r.text(tbl::AUDIO_SOURCE, prop::AUDIO_TRACK, id);
    a.sampling = r.text(tbl::AUDIO_SOURCE, prop::AUDIO_SAMPLING, id);
    a.gain = r.integer(tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, id);
    a.encodeSetting = r.flag(tbl::AUDIO_PROCESSING, prop::ENCODE_AUDIO, id);
    a.encode = a.encodeSetting && a.enabled;
    a.bitrate = r.integer(tbl::AUDIO_PROCESSING, prop::AUDIO_BITRATE, id);
    a.format = r.text(tbl::AUDIO_PROCESSING, prop::AUDIO_ENCODING_FORMAT, id);
    a.channelMode = r.text(tbl::AUDIO_PROCESSING, prop::CHANNEL_MODE, id);
    a.pid = r.integer(tbl::AUDIO_PROCESSING, prop::AUDIO_PID, id);
}

void readEncoder(RowReader& r, ChannelSnapshot& s) {
    const char* enc = s.channel == 1 ? tbl::HEVC_ENCODER : tbl::H264_ENCODER;
    s.aspectRatio = r.text(enc, prop::ASPECT_RATIO, "");
    s.level = r.text(enc, prop::LEVEL, "");
    s.gopStructure = r.text(enc, prop::GOP_STRUCTURE, "");
    s.gopSize = r.integer(enc, prop::GOP_SIZE, "");
    s.closedGop = r.flag(enc, prop::CLOSED_GOP, "");
    s.auDelimiters = r.flag(enc, prop::INSERT_AU_DELIMITERS, "");
    s.timestamps = r.flag(enc, prop::TIMESTAMPS, "");
    s.latencyMeasurement = r.flag(enc, prop::LATENCY_MEASUREMENT, "");
    if (s.channel == 0) {
        s.pictureCoding = r.text(enc, prop::PICTURE_CODING, "");
        s.vlcMode = r.text(enc, prop::VLC_MODE, "");
        s.spsPpsPerPicture = r.flag(enc, prop::SPS_PPS_PER_PICTURE, "");
        s.autoAdapt = r.flag(enc, prop::AUTO_ADAPT_BITRATES, "");
        s.qpBase = r.integer(enc, prop::QP_BASE, "");
        s.qpRangeMin = r.integer(enc, prop::QP_RANGE_MIN, "");
        s.qpMax = r.integer(enc, prop::QP_MAX, "");
        s.cropX = r.integer(enc, prop::CROP_X, "");
        s.cropY = r.integer(enc, prop::CROP_Y, "");
        s.cropWidth = r.integer(enc, prop::CROP_WIDTH, "");
        s.cropHeight = r.integer(enc, prop::CROP_HEIGHT, "");
    } else {
        s.fixedGopSize = r.flag(enc, prop::FIXED_GOP_SIZE, "");
        s.errorResilience = r.text(enc, prop::ERROR_RESILIENCE, "");
        s.closedCaption = r.flag(enc, prop::CLOSED_CAPTION, "");
    }
    // The multiplexer's delays are H.264 encoder settings for both channels.
    s.initialDelay = r.integer(tbl::H264_ENCODER, prop::INITIAL_DELAY, "");
    s.maximumDelay = r.integer(tbl::H264_ENCODER, prop::MAXIMUM_DELAY, "");
}

void readProcessing(RowReader& r, ChannelSnapshot& s) {
    const std::string& id = s.rowId;
    const char* p = tbl::PROCESSING;
    s.streamProfile = r.text(p, prop::STREAM_PROFILE, id);
    s.rateControl = r.text(p, prop::RATE_CONTROL, id);
    s.encodeVideo = r.flag(p, prop::ENCODE_VIDEO, id, true);
    s.encodingFormat = r.text(p, prop::ENCODING_FORMAT, id);
    s.frameSampling = r.integer(p, prop::FRAME_SAMPLING, id);
    s.totalBitrate = r.integer(p, prop::TOTAL_BITRATE, id);
    s.maxBitrate = r.integer(p, prop::MAX_BITRATE, id);
    s.formatAsDetected = r.flag(p, prop::FORMAT_AS_DETECTED, id);
    s.cropEnable = r.flag(p, prop::CROP_ENABLE, id);
    s.lowLatency = r.flag(p, prop::LOW_LATENCY, id);
    s.videoCodecProfile = r.text(p, prop::VIDEO_CODEC_PROFILE, id);
    s.ingestKlv = r.text(p, prop::INGEST_KLV, id, value::KLV_NONE);
    s.ingestKlv2 = r.text(p, prop::INGEST_KLV2, id, value::KLV_NONE);
    s.encryption = r.flag(p, prop::ENCRYPTION, id);
    s.frameRateRatio = r.text(p, prop::FRAME_RATE_RATIO, id);
    s.videoFilter = r.flag(p, prop::VIDEO_FILTER_ENABLED, id);
    s.videoFilterStrength = r.integer(p, prop::VIDEO_FILTER_STRENGTH, id);
    for (const char* row : {row::H264, row::HEVC})
        s.halfRate[channelIndex(row)] = r.text(p, prop::FRAME_RATE_RATIO, row) == value::HALF_OF_INPUT;

    const char* ts = tbl::TRANSPORT_STREAM;
    s.pmtPid = r.integer(ts, prop::PMT_PID, id);
    s.videoPid = r.integer(ts, prop::VIDEO_PID, id);
    s.pcrPid = r.integer(ts, prop::PCR_PID, id);
    s.klvPid = r.integer(ts, prop::KLV_PID, id);
    s.klv2Pid = r.integer(ts, prop::KLV2_PID, id);
    s.klvDecimation = r.integer(ts, prop::KLV_DECIMATION, id);
    s.dvbMode = r.flag(ts, prop::DVB_MODE, id);
    s.rtspPort = r.integer(ts, prop::RTSP_SERVER_PORT, id);
    s.aesMode = r.text(ts, prop::AES_MODE, id);
    s.aesKey = r.text(ts, prop::AES_KEY, id);
    s.overheadPercent = r.integer(ts, prop::MUXRATE_OVERHEAD_PERCENT, id);
}

}  // namespace

bool ChannelSnapshot::ultraLowLatency() const {
    return streamProfile == value::PROFILE_ULL;
}

Fcodes readChannelSnapshot(ChannelStore& store, const std::string& rowId, ChannelSnapshot& s,
                           const RunPrelude* prelude) {
    s = ChannelSnapshot();
    s.rowId = rowId;
    s.channel = channelIndex(rowId) == 1 ? 1 : 0;
    s.suffix = s.channel == 1 ? "CH1" : "CH0";
    RowReader r{{store}};

    s.status = r.text(tbl::CHANNELS, prop::STATUS, rowId, state::STATUS_OK);
    s.state = r.text(tbl::CHANNELS, prop::STATE, rowId);
    s.fcode = r.integer(tbl::CHANNELS, prop::FCODE, rowId);
    s.source = r.text(tbl::SOURCE, prop::SOURCE, rowId);
    s.inputDetected = state::INPUT_NONE;
    r.result |=
        store.getTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, s.inputDetected, s.source);
    if (s.inputDetected != state::INPUT_NONE && s.inputDetected != state::NO_SIGNAL)
        s.inputParsed = std::sscanf(s.inputDetected.c_str(), "%dx%d%c @ %f", &s.inputWidth, &s.inputHeight,
                                    &s.inputScan, &s.inputRate) == 4;
    r.text(tbl::SOURCE, prop::INPUT_DETECTION, rowId);
    s.inputResolution = r.text(tbl::SOURCE, prop::INPUT_RESOLUTION, rowId, state::INPUT_NONE);
    s.forceColorBar = r.flag(tbl::SOURCE, prop::FORCE_COLOR_BAR, rowId);
    s.sdiOutPreview = r.flag(tbl::SOURCE, prop::SDI_OUT_PREVIEW, rowId);
    readProcessing(r, s);
    readEncoder(r, s);

    std::vector<std::string> ids;
    r.result |= store.getInstancesByParameter(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, rowId, ids);
    for (const std::string& id : ids) {
        s.targets.emplace_back();
        s.targets.back().id = id;
        readTarget(r, s.targets.back());
    }
    ids.clear();
    r.result |= store.getInstancesByParameter(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::CHANNEL_ID, rowId, ids);
    for (const std::string& id : ids) {
        s.audio.emplace_back();
        s.audio.back().id = id;
        readAudio(r, s.audio.back());
    }

    const std::string other = row::otherChannel(s.channel);
    s.otherSdiOutPreview = r.flag(tbl::SOURCE, prop::SDI_OUT_PREVIEW, other);
    s.otherIngestKlv = r.text(tbl::PROCESSING, prop::INGEST_KLV, other, value::KLV_NONE);
    s.otherIngestKlv2 = r.text(tbl::PROCESSING, prop::INGEST_KLV2, other, value::KLV_NONE);

    if (s.targets.empty()) {
        DBG(DBG_ERROR) << "calcBitrates: Couldn't find targetId in table=" << tbl::TARGET
                       << " for chan rowId=" << rowId;
        r.result |= FC_UNAVAILABLE;
    }
    s.klvBitrate1 = r.klvBitrate(s.ingestKlv);
    s.klvBitrate2 = r.klvBitrate(s.ingestKlv2);
    if (prelude) {
        for (const std::string& ingest : {s.ingestKlv, s.ingestKlv2}) {
            if (ingest == value::KLV_SERIAL && s.klvSerialFormat.empty())
                s.klvSerialFormat = r.deviceText(rowId, tbl::KLV_TABLE, prop::INPUT_DATA_FORMAT);
            else if (ingest == value::KLV_IP && s.klvIpEncapsulation.empty())
                s.klvIpEncapsulation = r.deviceText(rowId, tbl::KLV_OVER_IP, prop::ENCAPSULATION);
        }
        s.assembly = prelude->assembly;
        s.assemblyRead = prelude->assemblyRead;
        s.formatChanged = prelude->formatChanged;
    }
    return r.result;
}
