#include <algorithm>
#include <chrono>
#include <thread>

#include "channel/ChannelLifecycle.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/Mutex.h"
#include "model/ChannelRows.h"
#include "model/ChannelRunBook.h"
#include "model/InputFormatValidation.h"
#include "pipeline/PipelineConfigurator.h"
#include "ports/ChannelStore.h"
#include "ports/IChannelEvents.h"
#include "ports/Mediator.h"
#include "side/FrontPanelLeds.h"
#include "side/KlvBranches.h"
#include "side/SapAnnouncements.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// The channel state machine: "Stopped" -> "Played" -> "Playing" ->
// "Stopping" -> "Stopped" (or left "Stopping" after a condition), driven by
// the start and stop of the mediator branches of the channel's enabled
// targets. Play, stop and the branch-event check hold the rows' recursive
// lock for their whole run; a stop may run inside a play or a forced stop.
//
// A play notes in the run book every branch it started or found running
// (its KLV branches too, through klvAction); a stop stops those and the
// branches of the channel's current targets, so that a profile, protocol or
// KLV ingest accepted (or activated) while the channel played cannot leave
// the branch it used before running. A branch leaves the book once the
// mediator reports it stopped; one whose stop was refused stays, and the
// next stop tries it again, also on a channel already stopped.

namespace {

constexpr int POLL_MS = 5;
const std::string ZIXI_PREFIX = "ZIXI ";  // the Zixi branches, "ZIXI CH0" ...
constexpr ChannelRunBook::Kind TARGET = ChannelRunBook::Kind::Target;

}  // namespace

void ChannelLifecycle::startTargets(const std::string& rowId, const std::vector<std::string>& targets, Fcodes& result,
                                    bool& failed) {
    failed = false;
    for (const std::string& target : targets) {
        // Deliberately only the last target's code survives the loop.
        result = FC_OK;
        bool enabled = false;
        std::string protocol;
        result |= ctx.store.getBoolParam(ds::CHANNEL, tbl::TARGET, prop::ENABLED, enabled, target);
        result |= ctx.store.getTextParam(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, protocol, target);
        if (!enabled)
            continue;
        std::string branch, branchState;
        const Fcodes lookup = rows.getBranch(rowId, protocol, branch);
        result |= lookup;
        // A target without a branch has nothing to ask the mediator about.
        if (!isOk(lookup))
            continue;
        const Fcodes stateRead = ctx.mediator.branchState(branch, branchState);
        result |= stateRead;
        if (isOk(stateRead) && branchState == state::BRANCH_RUN)
            ctx.runBook.addBranch(rowId, branch, TARGET);  // running for this channel: its stop stops it
        if (!isOk(stateRead) || branchState != state::BRANCH_STOP)
            continue;
        const Fcodes started = ctx.mediator.startBranch(branch, true, med::START_TIMEOUT_SEC);
        if (isOk(started))
            ctx.runBook.addBranch(rowId, branch, TARGET);
        if (!isOk(started)) {
            DBG(DBG_ERROR) << "playChannel: Failed startTarnevelBranch branch=" << branch << " fcode=0x" << std::hex
                           << static_cast<uint32_t>(started) << std::dec << " rowId=" << rowId;
            ctx.events.sendEvent(ev::CHANNEL_PLAY_ERROR, rowId, FC_UNAVAILABLE, state::ALARM_NONE, state::SEVERITY_INFO,
                                 "");
            stopChannel(rowId);
            result = started;
            failed = true;
            return;
        }
    }
}

Fcodes ChannelLifecycle::playChannel(const std::string& rowId) {
    ScopedLock<ChannelStore> guard(ctx.store);
    // Whoever plays the channel, it no longer stands stopped for its input.
    ctx.runBook.setStoppedByInput(rowId, false);
    Fcodes result = ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::PLAYED, rowId);

    std::vector<std::string> targets;
    result |= rows.getChildInstances(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, rowId, targets);
    Fcodes lastTarget = FC_OK;
    bool failed = false;
    startTargets(rowId, targets, lastTarget, failed);
    if (failed)
        return lastTarget;
    result |= lastTarget;

    result |= sap.sapAction(rowId);
    result |= klv.klvAction(rowId);
    result |= pipeline.updateAutomaticParams(rowId);

    result |= ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::PLAYING, rowId);
    result |= ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, state::STATUS_OK, rowId);
    result |= ctx.store.initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, FC_OK, rowId);
    ctx.events.sendEvent(ev::CHANNEL_PLAYED, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO, "");
    ctx.events.sendEvent(ev::CLOSE_ALARMS, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO, "");

    // The running format ("Input Resolution") is recorded once the branches
    // are started, whatever the side actions answered: it is what the encoder
    // runs, and a later detection of the same format must not look like a
    // change because SAP or KLV failed.
    std::string source, inputDetected;
    Fcodes inputRead = ctx.store.getTextParam(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, source, rowId);
    inputRead |=
        ctx.store.getTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, inputDetected, source);
    result |= inputRead;
    if (isOk(inputRead))
        result |= ctx.store.initTextParam(ds::CHANNEL, tbl::SOURCE, prop::INPUT_RESOLUTION, inputDetected, rowId);
    if (isOk(result)) {
        result |= updateChannelStatus(rowId);
        result |= leds.updateStreamAndErrorLeds();
    }
    return result;
}

Fcodes ChannelLifecycle::stopTargets(const std::string& rowId, const std::vector<std::string>& branches, bool zixi,
                                     bool& stopFailed) {
    Fcodes result = FC_OK;
    for (const std::string& branch : branches) {
        if ((branch.compare(0, ZIXI_PREFIX.size(), ZIXI_PREFIX) == 0) != zixi)
            continue;
        std::string branchState;
        const Fcodes stateRead = ctx.mediator.branchState(branch, branchState);
        result |= stateRead;
        if (branchState != state::BRANCH_RUN) {
            DBG(DBG_INFO) << "stopChannel: branch=" << branch << " is not RUN fcode=0x" << std::hex
                          << static_cast<uint32_t>(stateRead) << std::dec << " rowId=" << rowId;
            // Unread, it may still run: kept for the next stop.
            if (isOk(stateRead))
                ctx.runBook.removeBranch(rowId, branch, TARGET);
            continue;
        }
        const Fcodes stopped = zixi ? ctx.mediator.stopBranch(branch, false, med::ZIXI_STOP_TIMEOUT_SEC)
                                    : ctx.mediator.stopBranch(branch, true, med::STOP_TIMEOUT_SEC);
        result |= stopped;
        if (isOk(stopped)) {
            ctx.runBook.removeBranch(rowId, branch, TARGET);
        } else {
            DBG(DBG_ERROR) << "stopChannel: Failed stopTarnevelBranch branch=" << branch << " fcode=0x" << std::hex
                           << static_cast<uint32_t>(stopped) << std::dec << " rowId=" << rowId;
            stopFailed = true;
        }
    }
    return result;
}

// What a stop stops: the branches the channel started, then those of its
// enabled targets as its configuration names them now (a branch left
// running by an earlier run of the daemon), each once.
Fcodes ChannelLifecycle::branchesToStop(const std::string& rowId, std::vector<std::string>& branches) {
    branches = ctx.runBook.branches(rowId, TARGET);
    std::vector<std::string> targets;
    Fcodes result = rows.getChildInstances(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, rowId, targets);
    for (const std::string& target : targets) {
        bool enabled = false;
        std::string protocol, branch;
        result |= ctx.store.getBoolParam(ds::CHANNEL, tbl::TARGET, prop::ENABLED, enabled, target);
        result |= ctx.store.getTextParam(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, protocol, target);
        if (!enabled)
            continue;
        const Fcodes lookup = rows.getBranch(rowId, protocol, branch);
        result |= lookup;
        if (isOk(lookup) && std::find(branches.begin(), branches.end(), branch) == branches.end())
            branches.push_back(branch);
    }
    return result;
}

Fcodes ChannelLifecycle::stopChannel(const std::string& rowId) {
    ScopedLock<ChannelStore> guard(ctx.store);
    std::string chanState;
    int fcode = 0;
    const Fcodes reads = ctx.store.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, chanState, rowId) |
                         ctx.store.getIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, fcode, rowId);
    if (!isOk(reads))
        return reads;
    if (chanState == state::STOPPING || chanState == state::STOPPED) {
        // Stopped already; only a branch whose stop was refused is tried again.
        const std::vector<std::string> left = ctx.runBook.branches(rowId, TARGET);
        bool stopFailed = false;
        Fcodes retried = reads | klv.klvStopLeftOver(rowId);
        if (!left.empty()) {
            retried |= stopTargets(rowId, left, true, stopFailed);
            retried |= stopTargets(rowId, left, false, stopFailed);
        }
        return retried;
    }

    DBG(DBG_INFO) << "stopChannel: setting chanState=Stopping";
    Fcodes result = ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::STOPPING, rowId);
    result |= klv.klvAction(rowId);
    result |= sap.sapAction(rowId);

    // Zixi first and without waiting, so that the feeder is released before
    // the waited stops of the other branches.
    std::vector<std::string> branches;
    result |= branchesToStop(rowId, branches);
    bool stopFailed = false;
    result |= stopTargets(rowId, branches, true, stopFailed);
    result |= stopTargets(rowId, branches, false, stopFailed);

    // A channel stopped by a data-stream condition or a format change stays
    // "Stopping" until it is played again.
    if (!holds(fcode, cond::ZIXI_CONNECTION) && !holds(fcode, cond::DATA_STREAM) && !holds(fcode, cond::FORMAT_CHANGED))
        result |= ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::STOPPED, rowId);
    result |= ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, state::STATUS_OK, rowId);
    result |= leds.updateStreamAndErrorLeds();
    result |= rows.restoreChannelParameters(rowId);

    ctx.events.sendEvent(ev::CHANNEL_STOPPED, rowId, stopFailed ? FC_UNAVAILABLE : cond::INFO, state::ALARM_NONE,
                         state::SEVERITY_INFO, "");
    ctx.events.sendEvent(ev::CLOSE_ALARMS, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO, "");
    return result;
}

Fcodes ChannelLifecycle::updateChannelStatus(const std::string& rowId) {
    std::string source;
    bool encodeVideo = false;
    Fcodes result = ctx.store.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::SOURCE, source, rowId);
    result |= ctx.store.getBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCODE_VIDEO, encodeVideo, rowId);

    bool embeddedAudio = false;
    std::vector<std::string> audioRows;
    result |= rows.getChildInstances(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::CHANNEL_ID, rowId, audioRows);
    for (const std::string& audioRow : audioRows) {
        bool enabled = false;
        std::string audioSource;
        result |= ctx.store.getBoolParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::ENABLED, enabled, audioRow);
        result |= ctx.store.getTextParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::AUDIO_SOURCE, audioSource, audioRow);
        if (enabled && (audioSource == value::AUDIO_SDI_EMBEDDED || audioSource == value::AUDIO_HDMI_EMBEDDED))
            embeddedAudio = true;
    }
    if (!isOk(result) || !(encodeVideo || embeddedAudio))
        return result;

    std::string chanState;
    bool connected = false;
    result |= ctx.store.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, chanState, rowId);
    result |= ctx.store.getBoolParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::CONNECTED, connected, source);
    if (!connected && chanState == state::PLAYING) {
        result |= ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, state::STATUS_ERROR, rowId);
        ctx.events.sendEvent(ev::CHANNEL_ERROR, rowId, cond::CHANNEL_ERROR, state::ALARM_ON, state::SEVERITY_INFO, "");
    }
    return result;
}

// A channel whose input no longer fits its encoding stays stopped after a
// restart. The validation decides the replay only: a misfit input is the
// channel's condition, not a failure of the start-up, so its code is not in
// the result.
Fcodes ChannelLifecycle::configChannels() {
    Fcodes result = FC_OK;
    std::vector<std::string> replay;
    for (const std::string& rowId : rows.channelRows()) {
        std::string previous;
        result |= ctx.store.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, previous, rowId);
        result |= ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state::STOPPED, rowId);
        result |= ctx.store.initTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, state::STATUS_OK, rowId);
        result |= ctx.store.initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, FC_OK, rowId);
        result |= ctx.store.initBoolParam(ds::CHANNEL, tbl::SOURCE, prop::FORMAT_CHANGED, false, rowId);
        DBG(DBG_INFO) << "configChannels: configuring channel=" << rowId;
        const Fcodes configured = pipeline.configChannel(rowId) | pipeline.updateChannel(rowId);
        if (isOk(configured))
            ctx.events.sendEvent(ev::CHANNEL_CONFIGURED, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO,
                                 "");
        else
            ctx.events.sendEvent(ev::CHANNEL_CONFIG_ERROR, rowId, configured, state::ALARM_NONE, state::SEVERITY_INFO,
                                 "");
        result |= configured;
        if (previous == state::PLAYING && isOk(validateInputFormat(ctx.store, rowId)))
            replay.push_back(rowId);
    }
    for (const std::string& rowId : replay)
        result |= playChannel(rowId);
    return result;
}

Fcodes ChannelLifecycle::reconfigChannelFormat(const std::string& rowId) {
    return pipeline.configChannel(rowId) | FC_OK;
}

Fcodes ChannelLifecycle::waitWhileInTransition(const std::string& branch, const std::string& wantedState,
                                               int timeoutMs) {
    std::string branchState;
    Fcodes result = FC_OK | ctx.mediator.branchState(branch, branchState);
    int remaining = timeoutMs;
    int mismatches = 0;
    while (branchState != wantedState && remaining >= 1) {
        ++mismatches;
        std::this_thread::sleep_for(std::chrono::milliseconds(POLL_MS));
        remaining -= POLL_MS;
        result |= ctx.mediator.branchState(branch, branchState);
    }
    DBG(DBG_INFO) << "waitWhileInTransition: branch=" << branch << " state=" << branchState
                  << " transitiontime(ms)=" << POLL_MS * mismatches;
    return result;
}

Fcodes ChannelLifecycle::handleTarnevelBranchEvent(MessageEvent* event) {
    if (event == nullptr)
        return FC_BAD_VALUE;
    ScopedLock<ChannelStore> guard(ctx.store);
    const std::string& name = event->id;
    const std::string& branch = event->source;
    DBG(DBG_INFO) << "handleTarnevelBranchEvent: ev=" << name << " branch=" << branch;
    std::string rowId;
    const Fcodes found = rows.getRowId(branch, rowId);
    if (!isOk(found))
        return found;

    std::string chanState, status;
    int fcode = 0;
    bool formatAsDetected = false;
    Fcodes result = ctx.store.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, chanState, rowId);
    result |= ctx.store.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATUS, status, rowId);
    result |= ctx.store.getIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, fcode, rowId);
    result |= ctx.store.getBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::FORMAT_AS_DETECTED, formatAsDetected, rowId);
    // Only the two contradictions are worth a line; nothing is changed.
    if (name == ev::BRANCH_STOPPED && chanState == state::PLAYED)
        DBG(DBG_ERROR) << "handleTarnevelBranchEvent: chan is in stopped state after being played rowId=" << rowId;
    else if (name == ev::BRANCH_STARTED && chanState == state::STOPPING)
        DBG(DBG_ERROR) << "handleTarnevelBranchEvent: chan is in playing state after stop rowId=" << rowId;
    return result;
}

Fcodes ChannelLifecycle::forcedStop(const std::string& rowId) {
    ScopedLock<ChannelStore> guard(ctx.store);
    // The operator's stop: a valid input coming back no longer resumes it.
    ctx.runBook.setStoppedByInput(rowId, false);
    DBG(DBG_INFO) << "execute: STOP_CMD: setting forced stop fcode=" << std::hex << cond::FORCED_STOP;
    Fcodes result =
        ctx.store.initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, static_cast<int>(cond::FORCED_STOP), rowId);
    result |= stopChannel(rowId);
    return result | FC_OK;
}

Fcodes ChannelLifecycle::stopAll() {
    Fcodes result = FC_OK;
    for (const std::string& channel : rows.channelRows())
        result |= forcedStop(channel);
    return result | ctx.events.sapStopAll();
}
