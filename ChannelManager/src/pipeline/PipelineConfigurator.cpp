#include "pipeline/PipelineConfigurator.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstdint>

#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "datacom/SysmgtRoot.h"
#include "datacom/WireConstants.h"
#include "model/ChannelSnapshot.h"
#include "pipeline/PipelineOutput.h"
#include "pipeline/PipelineSections.h"
#include "pipeline/RunAdjustments.h"
#include "ports/ChannelStore.h"
#include "ports/IChannelEvents.h"
#include "ports/Mediator.h"
#include "side/KlvBranches.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"
#include "vocab/MediatorNames.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

namespace {

constexpr unsigned kDeviceTimeoutSec = 2;
constexpr unsigned kDeviceTries = 2;

// Creates the directory and its parents under the root; true when it exists.
bool makeDirectories(const std::string& logical) {
    const std::string path = sysmgtPath(logical);
    for (size_t at = path.find('/', 1); at != std::string::npos; at = path.find('/', at + 1))
        mkdir(path.substr(0, at).c_str(), 0755);
    return mkdir(path.c_str(), 0755) == 0 || errno == EEXIST;
}

// A section of a run and the name it is known by.
struct Section {
    const char* name;
    void (*run)(const ChannelSnapshot&, PipelineOutput&);
};

// The sections of a run, in the order they run whatever fails: a partly
// valid configuration reaches the mediator as far as it can, and the result
// tells which kinds of failure occurred. The store adjustments of the input
// (shared input, frame sampling, format as detected) come before, in
// RunAdjustments.
constexpr Section SECTIONS[] = {
    {"input format", configInputFormat},
    {"frame rate ratio", configFrameRateRatio},
    {"video input", configVideoInput},
    {"audio input", configAudioInput},
    {"genlock", configGenlock},
    {"audio sample rate", configAudioSampleRate},
    {"test patterns", configTestPatterns},
    {"SDI output", configSdiOutput},
    {"video processing", configVideoProcessing},
    {"encoding resolution", configEncodingResolution},
    {"bitrates", configBitrates},
    {"rate control", configRateControl},
    {"GOP and coding", configGopAndCoding},
    {"crop", configCrop},
    {"audio encoding", configAudioEncoding},
    {"video switch", configVideoSwitch},
    {"KLV ingest", configKlvIngest},
    {"KLV over SDI", configKlvOverSdi},
    {"encryption", configEncryption},
    {"multiplexer", configMultiplexer},
    {"targets", configTargets},
    {"unused components", configUnusedComponents},
    {"summary", configSummary},
};

}  // namespace

Fcodes PipelineConfigurator::readAssembly(const char* operation, const std::string& rowId, std::string& assembly,
                                          bool& read) {
    const Fcodes code = ctx.mediator.getAssembly(assembly);
    read = isOk(code);
    if (read)
        return FC_OK;
    DBG(DBG_ERROR) << operation << ": rowId=" << rowId << " Error in getting Assembly fcode=0x" << std::hex
                   << static_cast<uint32_t>(code);
    return code;
}

// The assembly is read once, first; every assembly-checked write of the run
// searches this text. The adjustments come next so that the snapshot holds
// the rows as the run leaves them.
Fcodes PipelineConfigurator::configChannel(const std::string& rowId) {
    if (!isChannelRow(rowId)) {
        DBG(DBG_ERROR) << "configChannel: Unexpected rowId=" << rowId;
        return FC_BAD_VALUE;
    }
    DBG(DBG_INFO) << "configChannel: rowId=" << rowId;
    RunPrelude prelude;
    Fcodes result = FC_OK | readAssembly("configChannel", rowId, prelude.assembly, prelude.assemblyRead);
    RunAdjustments adjustments(ctx, rowId);
    result |= adjustments.apply();
    prelude.formatChanged = adjustments.formatChanged();

    ChannelSnapshot snapshot;
    result |= readChannelSnapshot(ctx.store, rowId, snapshot, &prelude);
    PipelineOutput out(snapshot);
    for (const Section& section : SECTIONS)
        section.run(snapshot, out);
    result |= out.result | apply(out);

    result |= configAVSettings(rowId);
    for (const ChannelSnapshot::Audio& a : snapshot.audio)
        result |= configAudioGain(a.id);
    return result | updateChannel(rowId);
}

// A failed write logs "<operation>: rowId=... Error: val=... param=...
// comp=..." (with " assembly=" for an assembly-checked component) and the
// rest goes on. An assembly-checked component that the assembly does not
// hold is skipped: that build of the appliance has no such hardware.
Fcodes PipelineConfigurator::apply(const PipelineOutput& out, bool writeFailures) {
    using Kind = PipelineOutput::Kind;
    using Type = PipelineOutput::Type;
    Fcodes result = FC_OK;
    const auto write = [&](const PipelineOutput::Action& a) {
        const bool checked = PipelineOutput::assemblyChecked(a.component);
        if (checked && !out.present(a.component)) {
            DBG(DBG_INFO) << out.operation << ": rowId=" << out.rowId << " comp=" << a.component
                          << " not in assembly, param=" << a.parameter << " left alone";
            return;
        }
        const Fcodes code = a.type == Type::Text ? ctx.mediator.setTextParam(a.component, a.parameter, a.text)
                                                 : ctx.mediator.setIntParam(a.component, a.parameter, a.number);
        if (!isOk(code)) {
            DBG(DBG_ERROR) << out.operation << ": rowId=" << out.rowId << " Error: val=" << a.text
                           << " param=" << a.parameter << " comp=" << a.component
                           << (checked ? " assembly=" + out.assembly : std::string()) << " fcode=0x" << std::hex
                           << static_cast<uint32_t>(code);
            if (writeFailures)
                result |= code;
        }
    };
    for (const PipelineOutput::Action& a : out.actions()) {
        switch (a.kind) {
            case Kind::Write:
                write(a);
                break;
            case Kind::TurnOff: {
                int on = 1;
                if (isOk(ctx.mediator.getIntParam(a.component, med::PARAM_ENABLE, on)) && on == 0)
                    break;
                write(a);
                break;
            }
            case Kind::Store:
                if (a.type == Type::Text)
                    result |= ctx.store.initTextParam(ds::CHANNEL, a.component, a.parameter, a.text, a.instance);
                else if (a.type == Type::Int)
                    result |= ctx.store.initIntParam(ds::CHANNEL, a.component, a.parameter, a.number, a.instance);
                else
                    result |= ctx.store.initBoolParam(ds::CHANNEL, a.component, a.parameter, a.number != 0, a.instance);
                break;
            case Kind::Event:
                ctx.events.sendEvent(a.component, out.rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO,
                                     a.instance);
                break;
            case Kind::KlvSdiSource: {
                MessageCommand command;
                command.setId(cmd::TOGGLE_KLVOSDI_INPUT);
                command.addParam(cmd::PARAM_KLV_SOURCE, a.text);
                command.addParam(cmd::PARAM_KLV_CHANNEL_ID, out.rowId);
                std::string text, reply;
                command.toString(text);
                const Fcodes code =
                    ctx.store.requestCommand(wire::SOCK_DEV, text, reply, kDeviceTimeoutSec, kDeviceTries) | FC_OK;
                if (!isOk(code)) {
                    DBG(DBG_ERROR) << out.operation << ": rowId=" << out.rowId << " Error: val=" << a.text
                                   << " param=" << cmd::PARAM_KLV_SOURCE << " comp=" << cmd::TOGGLE_KLVOSDI_INPUT
                                   << " fcode=0x" << std::hex << static_cast<uint32_t>(code);
                    result |= code;
                }
                break;
            }
            case Kind::FollowKlv:
                result |= klv.klvFollowSettings(out.rowId);
                break;
            case Kind::MakeDirectory:
                if (!makeDirectories(a.text))
                    DBG(DBG_ERROR) << out.operation << ": rowId=" << out.rowId
                                   << " Error: cannot create dir=" << a.text;
                break;
        }
    }
    return result;
}

// The picture adjustments of the channel, applied by its own video mixer so
// that two channels on one input keep their own settings. Called by
// configChannel and, with the values being accepted, when the settings are
// accepted (before the commit).
Fcodes PipelineConfigurator::configAVSettings(const std::string& rowId, bool pending) {
    if (!isChannelRow(rowId))
        return FC_BAD_VALUE;
    PipelineOutput out(rowId, "configAVSettings", "", false);
    for (const char* p : {prop::BRIGHTNESS, prop::CONTRAST, prop::SATURATION, prop::HUE}) {
        int value = 0;
        const Fcodes read = pending ? ctx.store.getNewIntParam(ds::CHANNEL, tbl::AV_SETTINGS, p, value, rowId)
                                    : ctx.store.getIntParam(ds::CHANNEL, tbl::AV_SETTINGS, p, value, rowId);
        out.result |= read;
        if (isOk(read))
            out.put(out.comp(med::VIDEO_MIXER), p, value);
    }
    return out.result | apply(out);
}

// The gain of the analogue line input belongs to its amplifier: only a
// stream on "Unbalanced analog" has one to set ("Audio Gain" in dB, one gain
// per stream). Digital and embedded audio pass at unity; their rows are
// accepted and nothing is written. When accepting, the row's pending values
// (source, enabling and gain alike) are the ones applied.
Fcodes PipelineConfigurator::configAudioGain(const std::string& audioRowId, bool pending) {
    std::string source;
    bool enabled = false;
    int gain = 0;
    Fcodes result = FC_OK;
    if (pending) {
        result |= ctx.store.getNewTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, source, audioRowId) |
                  ctx.store.getNewBoolParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::ENABLED, enabled, audioRowId) |
                  ctx.store.getNewIntParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, gain, audioRowId);
    } else {
        result |= ctx.store.getTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, source, audioRowId) |
                  ctx.store.getBoolParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::ENABLED, enabled, audioRowId) |
                  ctx.store.getIntParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_GAIN, gain, audioRowId);
    }
    if (!isOk(result) || !enabled || source != value::AUDIO_UNBALANCED_ANALOG)
        return result;
    std::string assembly;
    bool assemblyRead = false;
    result |= readAssembly("configAudioGain", row::H264, assembly, assemblyRead);
    PipelineOutput out(row::H264, "configAudioGain", assembly, assemblyRead);
    const bool second = !audioRowId.empty() && audioRowId.back() == '2';
    out.put(med::UNBALANCED_AMPLIFIER, second ? med::PARAM_GAIN_STR1 : med::PARAM_GAIN_STR0, gain);
    return result | apply(out);
}
