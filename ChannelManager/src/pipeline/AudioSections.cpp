#include <cstdlib>
#include <string>

#include "datacom/DataHolder.h"
#include "datacom/DbgPrintClient.h"
#include "pipeline/PipelineConfigurator.h"
#include "pipeline/PipelineRun.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The audio sections of configChannel: input multiplexers, sample rates,
// test generators, the SDI output's embedding, the audio encoders; and
// configAudioGain. Stream 0 is a channel's "...Audio1" row, stream 1 its
// "...Audio2" row.

namespace {
// "Pair 3" -> 3; 0 when the text is no pair or beyond `pairs`.
int pairNumber(const std::string& track, int pairs) {
    if (track.size() < 6 || track.compare(0, 5, "Pair ") != 0)
        return 0;
    const int n = std::atoi(track.c_str() + 5);
    return n >= 1 && n <= pairs ? n : 0;
}

int embeddedPairs(const std::string& source) {
    if (source == value::AUDIO_SDI_EMBEDDED)
        return 8;
    if (source == value::AUDIO_HDMI_EMBEDDED)
        return 4;
    return 0;
}

// The mediator text of a source, completed by the pair for embedded audio;
// "" when the source or its track is unknown.
std::string sourceText(const pipeline::TextTable& table, const PipelineRun::Audio& a) {
    const char* base = pipeline::lookup(table, a.source);
    if (!base)
        return "";
    const int pairs = embeddedPairs(a.source);
    if (pairs == 0)
        return base;
    const int pair = pairNumber(a.track, pairs);
    return pair ? base + std::to_string(pair) : "";
}

std::string stream(size_t index) {
    return index == 0 ? "Str0" : "Str1";
}
}  // namespace

// Section 6.
void PipelineConfigurator::configAudioInput(PipelineRun& run) {
    for (size_t i = 0; i < run.audio.size() && i < 2; ++i) {
        const PipelineRun::Audio& a = run.audio[i];
        if (!a.enabled)
            continue;
        const std::string input = sourceText(pipeline::AUDIO_INPUT, a);
        if (input.empty()) {
            run.unknown("Audio Source", a.source + " " + a.track);
            continue;
        }
        run.put(std::string(i == 0 ? "AUDIO_MUX_STR0_" : "AUDIO_MUX_STR1_") + run.suffix, "Input", input);
    }
}

// Section 10.
void PipelineConfigurator::configAudioSampleRate(PipelineRun& run) {
    for (size_t i = 0; i < run.audio.size() && i < 2; ++i) {
        const PipelineRun::Audio& a = run.audio[i];
        if (!a.enabled)
            continue;
        const char* rate = pipeline::lookup(pipeline::AUDIO_SAMPLE_RATE, a.sampling);
        if (!rate) {
            run.unknown("Audio Sampling", a.sampling);
            continue;
        }
        run.put("Audio Capture " + stream(i) + " " + run.suffix, "Audio Sample Rate", rate);
    }
}

// Section 11. "Force Color Bar" puts bars on the video and a tone on both
// sides of every encoded stream; otherwise the generators stand by
// ("Automatic") and fill a lost input with bars and silence. A mono stream
// leaves the side it does not carry disabled.
void PipelineConfigurator::configTestPatterns(PipelineRun& run) {
    const bool bars = run.flag(tbl::SOURCE, prop::FORCE_COLOR_BAR, run.rowId);
    run.put(run.comp("VFW_"), "State", bars ? "Enable" : "Automatic");
    run.put(run.comp("VFW_"), "Type", "Color Bar");
    for (size_t i = 0; i < run.audio.size() && i < 2; ++i) {
        const PipelineRun::Audio& a = run.audio[i];
        if (!a.encode)
            continue;
        const std::string afw = (i == 0 ? "AFW_" : "AFW_STR1_") + run.suffix;
        const char* on = bars ? "Enable" : "Automatic";
        run.put(afw, "Left Enable", a.channelMode == "Mono Right" ? "Disable" : on);
        run.put(afw, "Right Enable", a.channelMode == "Mono Left" ? "Disable" : on);
        run.put(afw, "Left Mode", bars ? "Sinus" : "Silence");
        run.put(afw, "Right Mode", bars ? "Sinus" : "Silence");
    }
}

// Section 12. The SDI output previews the channel's source with its two
// audio streams embedded: mux 0 carries stream 0, mux 1 stream 1. A side is
// muted when its stream is disabled or mono on the other side. A non-SDI
// source goes through the frame buffer to be re-timed to the SDI clock.
void PipelineConfigurator::configSdiOutput(PipelineRun& run) {
    if (!run.flag(tbl::SOURCE, prop::SDI_OUT_PREVIEW, run.rowId))
        return;
    const char* receiver = med::receiverOf(run.source);
    if (receiver)
        run.put("VIDEO_MIXER_SDI_TX", "Input", receiver);
    else
        run.unknown("source", run.source);
    bool anyAudio = false;
    for (size_t i = 0; i < 2; ++i) {
        const std::string mux = "SDI_TX_AUDIO_MUX_" + std::to_string(i);
        const std::string side = "Mute Channel " + std::to_string(i);
        const bool on = i < run.audio.size() && run.audio[i].enabled;
        if (on) {
            anyAudio = true;
            const std::string input = sourceText(pipeline::SDI_TX_AUDIO, run.audio[i]);
            if (input.empty())
                run.unknown("Audio Source", run.audio[i].source + " " + run.audio[i].track);
            else
                run.put(mux, "Input", input);
        }
        const std::string mode = on ? run.audio[i].channelMode : "";
        run.put(mux, side + " Left", !on || mode == "Mono Right");
        run.put(mux, side + " Right", !on || mode == "Mono Left");
    }
    run.put("SDI_TRANSMITTER", "Video Source", "VIDEO_MIXER_SDI_TX");
    run.put("SDI_TRANSMITTER", "Frame Buffer", run.source != value::SRC_HD_SDI);
    run.put("SDI_TRANSMITTER", "Audio Embedder", anyAudio);
    run.enable("SDI_TRANSMITTER");
}

// Sections 19 (HEVC) and 20 (H.264). On HEVC with "Ultra Low Latency - LAN",
// stream 0 takes the low-delay path: its own capture, a capture buffer of
// one codec frame ("AAC-ELD" 480 samples, "PCM" 240), and the low-delay AAC
// encoder or PCM converter, selected by the stream's audio switch.
void PipelineConfigurator::configAudioEncoding(PipelineRun& run) {
    const bool lowDelay = run.channel == 1 && run.ultraLowLatency();
    for (size_t i = 0; i < run.audio.size() && i < 2; ++i) {
        const PipelineRun::Audio& a = run.audio[i];
        const std::string s = stream(i) + " " + run.suffix;
        const std::string encoder = "Audio Encoder " + s;
        // The normal capture stands aside only when the low-delay path carries
        // the stream: any other codec goes through the normal encoder, ULL or not.
        const bool lowDelayStream = lowDelay && i == 0 && a.encode && (a.format == "AAC-ELD" || a.format == "PCM");
        run.put("Audio Capture " + s, "Enable", a.encode && !lowDelayStream);
        if (!a.encode)
            continue;
        if (lowDelayStream) {
            const bool eld = a.format == "AAC-ELD";
            run.enable("Audio Capture Str0 CH1 Low Delay");
            run.put("Audio Capture Buffer Str0 CH1", "Samples per Frame", eld ? 480 : 240);
            run.enable(eld ? "AAC Encoder Str0 CH1 Low Delay" : "PCM Converter Str0 CH1 Low Delay");
            run.put("Audio Switch " + s, "Input",
                    eld ? "AAC Encoder Str0 CH1 Low Delay" : "PCM Converter Str0 CH1 Low Delay");
            if (eld)
                run.put("AAC Encoder Str0 CH1 Low Delay", "Bitrate", a.bitrate);
            continue;
        }
        run.put("Audio Switch " + s, "Input", encoder);
        if (run.channel == 0) {
            const char* codec = pipeline::lookup(pipeline::AUDIO_CODEC, a.format);
            if (!codec) {
                run.unknown("Audio Encoding Format", a.format);
                continue;
            }
            run.put(encoder, "Audio Codec", codec);
        }
        const char* object = pipeline::lookup(pipeline::AUDIO_OBJECT_TYPE, a.format);
        if (object)
            run.put(encoder, "Object Type", object);
        else if (run.channel == 1)
            run.unknown("Audio Encoding Format", a.format);
        run.put(encoder, "Bitrate", a.bitrate);
        if (a.channelMode == "Mono Left" || a.channelMode == "Mono Right" || a.channelMode == "Stereo")
            run.put(encoder, "Channel Mode", a.channelMode);
        else
            run.unknown("Channel Mode", a.channelMode);
    }
}

// The gain of the analogue line input belongs to its amplifier: only a
// stream on "Unbalanced analog" has one to set ("Audio Gain" in dB, one gain
// per stream). Digital and embedded audio pass at unity; their rows are
// accepted and nothing is written. When accepting, the row's pending values
// (source, enabling and gain alike) are the ones applied.
Fcodes PipelineConfigurator::configAudioGain(const std::string& audioRowId, bool pending) {
    PipelineRun run(ctx.holder, row::H264, "configAudioGain");
    std::string source;
    bool enabled = false;
    int gain = 0;
    if (pending) {
        run.result |=
            ctx.holder.getNewTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, source, audioRowId) |
            ctx.holder.getNewBoolParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::ENABLED, enabled, audioRowId) |
            ctx.holder.getNewIntParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, gain, audioRowId);
    } else {
        source = run.text(tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, audioRowId);
        enabled = run.flag(tbl::AUDIO_SOURCE, prop::ENABLED, audioRowId);
        gain = run.integer(tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, audioRowId);
    }
    if (!isOk(run.result) || !enabled || source != "Unbalanced analog")
        return run.result;
    run.readAssembly();
    const bool second = !audioRowId.empty() && audioRowId.back() == '2';
    run.put("UNBALANCED_AMPLIFIER", second ? "Gain Str1" : "Gain Str0", gain);
    return run.result;
}
