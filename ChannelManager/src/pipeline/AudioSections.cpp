#include <cstdlib>
#include <string>

#include "datacom/DbgPrintClient.h"
#include "pipeline/PipelineSections.h"
#include "pipeline/TextTables.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The audio sections of a pipeline run: input multiplexers, sample rates,
// test generators, the SDI output's embedding, the audio encoders. Stream 0 is a channel's "...Audio1" row, stream 1
// its
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
std::string sourceText(const pipeline::TextTable& table, const ChannelSnapshot::Audio& a) {
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
void configAudioInput(const ChannelSnapshot& s, PipelineOutput& out) {
    for (size_t i = 0; i < s.audio.size() && i < 2; ++i) {
        const ChannelSnapshot::Audio& a = s.audio[i];
        if (!a.enabled)
            continue;
        const std::string input = sourceText(pipeline::AUDIO_INPUT, a);
        if (input.empty()) {
            out.unknown("Audio Source", a.source + " " + a.track);
            continue;
        }
        out.put(std::string(i == 0 ? med::AUDIO_MUX_STR0 : med::AUDIO_MUX_STR1) + s.suffix, med::PARAM_INPUT, input);
    }
}

// Section 10.
void configAudioSampleRate(const ChannelSnapshot& s, PipelineOutput& out) {
    for (size_t i = 0; i < s.audio.size() && i < 2; ++i) {
        const ChannelSnapshot::Audio& a = s.audio[i];
        if (!a.enabled)
            continue;
        const char* rate = pipeline::lookup(pipeline::AUDIO_SAMPLE_RATE, a.sampling);
        if (!rate) {
            out.unknown("Audio Sampling", a.sampling);
            continue;
        }
        out.put(med::AUDIO_CAPTURE + stream(i) + " " + s.suffix, med::PARAM_AUDIO_SAMPLE_RATE, rate);
    }
}

// Section 11. "Force Color Bar" puts bars on the video and a tone on both
// sides of every encoded stream; otherwise the generators stand by
// ("Automatic") and fill a lost input with bars and silence. A mono stream
// leaves the side it does not carry disabled.
void configTestPatterns(const ChannelSnapshot& s, PipelineOutput& out) {
    const bool bars = s.forceColorBar;
    out.put(out.comp(med::VFW), med::PARAM_STATE, bars ? med::STATE_ENABLE : med::STATE_AUTOMATIC);
    out.put(out.comp(med::VFW), med::PARAM_TYPE, "Color Bar");
    for (size_t i = 0; i < s.audio.size() && i < 2; ++i) {
        const ChannelSnapshot::Audio& a = s.audio[i];
        if (!a.encode)
            continue;
        const std::string afw = (i == 0 ? med::AFW : med::AFW_STR1) + s.suffix;
        const char* on = bars ? med::STATE_ENABLE : med::STATE_AUTOMATIC;
        out.put(afw, med::PARAM_LEFT_ENABLE, a.channelMode == value::MONO_RIGHT ? med::STATE_DISABLE : on);
        out.put(afw, med::PARAM_RIGHT_ENABLE, a.channelMode == value::MONO_LEFT ? med::STATE_DISABLE : on);
        out.put(afw, med::PARAM_LEFT_MODE, bars ? "Sinus" : "Silence");
        out.put(afw, med::PARAM_RIGHT_MODE, bars ? "Sinus" : "Silence");
    }
}

// Section 12. The SDI output previews the channel's source with its two
// audio streams embedded: mux 0 carries stream 0, mux 1 stream 1. A side is
// muted when its stream is disabled or mono on the other side. A non-SDI
// source goes through the frame buffer to be re-timed to the SDI clock.
void configSdiOutput(const ChannelSnapshot& s, PipelineOutput& out) {
    if (!s.sdiOutPreview)
        return;
    const char* receiver = med::receiverOf(s.source);
    if (receiver)
        out.put(med::VIDEO_MIXER_SDI_TX, med::PARAM_INPUT, receiver);
    else
        out.unknown("source", s.source);
    bool anyAudio = false;
    for (size_t i = 0; i < 2; ++i) {
        const std::string mux = med::SDI_TX_AUDIO_MUX + std::to_string(i);
        const std::string side = med::PARAM_MUTE_CHANNEL + std::to_string(i);
        const bool on = i < s.audio.size() && s.audio[i].enabled;
        if (on) {
            anyAudio = true;
            const std::string input = sourceText(pipeline::SDI_TX_AUDIO, s.audio[i]);
            if (input.empty())
                out.unknown("Audio Source", s.audio[i].source + " " + s.audio[i].track);
            else
                out.put(mux, med::PARAM_INPUT, input);
        }
        const std::string mode = on ? s.audio[i].channelMode : "";
        out.put(mux, side + med::PARAM_MUTE_LEFT, !on || mode == value::MONO_RIGHT);
        out.put(mux, side + med::PARAM_MUTE_RIGHT, !on || mode == value::MONO_LEFT);
    }
    out.put(med::SDI_TRANSMITTER, med::PARAM_VIDEO_SOURCE, med::VIDEO_MIXER_SDI_TX);
    out.put(med::SDI_TRANSMITTER, med::PARAM_FRAME_BUFFER, s.source != value::SRC_HD_SDI);
    out.put(med::SDI_TRANSMITTER, med::PARAM_AUDIO_EMBEDDER, anyAudio);
    out.enable(med::SDI_TRANSMITTER);
}

// Sections 19 (HEVC) and 20 (H.264). On HEVC with "Ultra Low Latency - LAN",
// stream 0 takes the low-delay path: its own capture, a capture buffer of
// one codec frame ("AAC-ELD" 480 samples, "PCM" 240), and the low-delay AAC
// encoder or PCM converter, selected by the stream's audio switch.
void configAudioEncoding(const ChannelSnapshot& s, PipelineOutput& out) {
    const bool lowDelay = s.channel == 1 && s.ultraLowLatency();
    for (size_t i = 0; i < s.audio.size() && i < 2; ++i) {
        const ChannelSnapshot::Audio& a = s.audio[i];
        const std::string str = stream(i) + " " + s.suffix;
        const std::string encoder = med::AUDIO_ENCODER + str;
        // The normal capture stands aside only when the low-delay path carries
        // the stream: any other codec goes through the normal encoder, ULL or not.
        const bool lowDelayStream =
            lowDelay && i == 0 && a.encode && (a.format == value::AUDIO_AAC_ELD || a.format == value::AUDIO_PCM);
        out.put(med::AUDIO_CAPTURE + str, med::PARAM_ENABLE, a.encode && !lowDelayStream);
        if (!a.encode)
            continue;
        if (lowDelayStream) {
            const bool eld = a.format == value::AUDIO_AAC_ELD;
            out.enable(med::AUDIO_CAPTURE_STR0_CH1_LOW_DELAY);
            out.put(med::AUDIO_CAPTURE_BUFFER_STR0_CH1, med::PARAM_SAMPLES_PER_FRAME, eld ? 480 : 240);
            out.enable(eld ? med::AAC_ENCODER_STR0_CH1_LOW_DELAY : med::PCM_CONVERTER_STR0_CH1_LOW_DELAY);
            out.put(med::AUDIO_SWITCH + str, med::PARAM_INPUT,
                    eld ? med::AAC_ENCODER_STR0_CH1_LOW_DELAY : med::PCM_CONVERTER_STR0_CH1_LOW_DELAY);
            if (eld)
                out.put(med::AAC_ENCODER_STR0_CH1_LOW_DELAY, med::PARAM_BITRATE, a.bitrate);
            continue;
        }
        out.put(med::AUDIO_SWITCH + str, med::PARAM_INPUT, encoder);
        if (s.channel == 0) {
            const char* codec = pipeline::lookup(pipeline::AUDIO_CODEC, a.format);
            if (!codec) {
                out.unknown("Audio Encoding Format", a.format);
                continue;
            }
            out.put(encoder, med::PARAM_AUDIO_CODEC, codec);
        }
        const char* object = pipeline::lookup(pipeline::AUDIO_OBJECT_TYPE, a.format);
        if (object)
            out.put(encoder, med::PARAM_OBJECT_TYPE, object);
        else if (s.channel == 1)
            out.unknown("Audio Encoding Format", a.format);
        out.put(encoder, med::PARAM_BITRATE, a.bitrate);
        if (a.channelMode == value::MONO_LEFT || a.channelMode == value::MONO_RIGHT || a.channelMode == value::STEREO)
            out.put(encoder, med::PARAM_CHANNEL_MODE, a.channelMode);
        else
            out.unknown("Channel Mode", a.channelMode);
    }
}
