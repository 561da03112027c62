#include <string>
#include <vector>

#include "channel/ChannelLifecycle.h"
#include "channel/VideoSourceTracker.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/Mutex.h"
#include "model/ChannelRunBook.h"
#include "model/InputFormatValidation.h"
#include "ports/ChannelStore.h"
#include "ports/IChannelEvents.h"
#include "ports/Mediator.h"
#include "side/FrontPanelLeds.h"
#include "side/SideActionSupport.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

// Tracking of the video inputs. Each row of "VideoSourceDataSet" (a video
// source) is fed by a receiver of the mediator whose "Video Format" is the
// format it detects. A refresh writes the source's "Input Detected" ("None"
// without a signal) and "Connected", makes every channel on that source
// follow it, and tells the subscribers ("Video Source Updated", "OFF" when
// the input went away, the detected format as description).
//
// "Auto Detection Event" as accepted here: Source = the video source row,
// parameter "Input Detected" = the detected format ("None" or "No signal"
// for no signal). Without the parameter, the receiver is asked, so an event
// naming only the source (start-up, "Update Source") refreshes it.
//
// How a channel follows its input (triggerVideoSource), under the rows'
// lock. The format a channel runs with is its "Input Resolution" of
// "ChannelSourceTable" (written by play):
// - input lost while "Playing": the condition 0x20002 is added to its
//   "Fcode" and updateChannelStatus raises "Channel Error"; the channel keeps
//   playing, so that the stream resumes with the signal;
// - input back while "Playing" after such a loss: 0x20002 is cleared, "Status"
//   back to "OK", "Close Alarms" sent. A loss is recognised by the channel's
//   "Status" "ERROR" (only a lost input sets it) as well as by the bit: a
//   play during the loss writes its own code, and a "Data Stream" event
//   clears the bits, so the bit alone misses both;
// - another format while "Playing": "Format Changed" becomes true. With
//   "Format as Detected" the channel is stopped (0x20010), reconfigured for
//   the new input and played again when the format validates. Otherwise a
//   format that fails validateInputFormat stops the channel with 0x20010 (it
//   stays "Stopping"), and a valid one becomes the running format;
// - a channel stopped by the system for its format (0x20010, "Stopping")
//   is noted in the run book as stopped by its input. Once its input is back
//   with a valid format it is configured again (so that the mediator gets the
//   channel's current parameters, the bitrates a stop restored included)
//   and played again, "Format Changed" false: the system resumes what the
//   system stopped. The note, not the "Fcode", decides: a data-stream "OFF"
//   clears every condition bit but not that fact. A channel stopped by its
//   user (0x20020) is never played by an input change: its stop clears the
//   note. A lost input does not stop a channel (see above), so it sets no
//   note; one that goes away while the channel stands stopped for its
//   format changes nothing.

namespace {

bool isNoSignal(const std::string& format) {
    return format.empty() || format == state::INPUT_NONE || format == state::NO_SIGNAL;
}

// The code without one channel condition: 0x10000 when no other condition
// is left.
uint32_t withoutCondition(uint32_t fcode, uint32_t condition) {
    const uint32_t conditionBits = 0x3E;
    const uint32_t remaining = fcode & conditionBits & ~(condition & conditionBits);
    return remaining == 0 ? uint32_t{FC_OK} : ((fcode & FC_OK) | cond::INFO | remaining);
}

}  // namespace

Fcodes VideoSourceTracker::updateVideoSource(const std::string& videoSource) {
    if (videoSource.empty()) {
        DBG(DBG_ERROR) << "updateVideoSource: Error: Empty src=" << videoSource;
        return FC_BAD_VALUE;
    }
    const char* receiver = med::receiverOf(videoSource);
    if (receiver == nullptr || !ctx.store.hasInstance(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, videoSource)) {
        DBG(DBG_ERROR) << "updateVideoSource: Couldn't find either a row of videoSource=" << videoSource;
        return FC_NO_SUCH_NAME;
    }
    std::string format;
    Fcodes read = ctx.mediator.getTextParam(receiver, med::VIDEO_FORMAT, format);
    if (!isOk(read)) {
        // The previous detected state stays: an unanswered question is no lost input.
        DBG(DBG_ERROR) << "updateVideoSource: Error: param=" << med::VIDEO_FORMAT << " comp=" << receiver << " fcode=0x"
                       << std::hex << static_cast<uint32_t>(read);
        return read;
    }
    return applyDetectedInput(videoSource, format);
}

Fcodes VideoSourceTracker::updateVideoSource(MessageEvent* event) {
    if (event == nullptr)
        return FC_BAD_VALUE;
    std::string format;
    if (event->getParam(ev::PARAM_INPUT_DETECTED, format) == 0)
        return updateVideoSource(event->source);
    if (event->source.empty()) {
        DBG(DBG_ERROR) << "updateVideoSource: Error: Empty src=" << event->source;
        return FC_BAD_VALUE;
    }
    if (!ctx.store.hasInstance(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, event->source)) {
        DBG(DBG_ERROR) << "updateVideoSource: Couldn't find either a row of videoSource=" << event->source;
        return FC_NO_SUCH_NAME;
    }
    return applyDetectedInput(event->source, format);
}

Fcodes VideoSourceTracker::applyDetectedInput(const std::string& videoSource, const std::string& format) {
    const bool connected = !isNoSignal(format);
    const std::string detected = connected ? format : std::string(state::INPUT_NONE);
    DBG(DBG_INFO) << "updateVideoSource: src=" << videoSource << " " << prop::INPUT_DETECTED << "=" << detected;
    Fcodes result =
        FC_OK |
        ctx.store.initTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, detected, videoSource) |
        ctx.store.initBoolParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::CONNECTED, connected, videoSource);
    result |= triggerVideoSource(videoSource);
    ctx.events.sendSourceEvent(videoSource, !connected, detected);
    return result;
}

Fcodes VideoSourceTracker::triggerVideoSource(const std::string& videoSource) {
    std::vector<std::string> channels;
    Fcodes result =
        FC_OK | ctx.store.getInstancesByParameter(ds::CHANNEL, tbl::SOURCE, prop::SOURCE, videoSource, channels);
    for (const std::string& rowId : channels) {
        if (!isChannelRow(rowId))
            continue;
        ScopedLock<ChannelStore> guard(ctx.store);
        result |= followInput(rowId, videoSource);
    }
    return result;
}

// One channel on the source follows its input; caller holds the rows' lock.
Fcodes VideoSourceTracker::followInput(const std::string& rowId, const std::string& videoSource) {
    const char* ds = ds::CHANNEL;
    std::string detected, state, running, status;
    bool connected = false, asDetected = false;
    int fcodeValue = 0;
    Fcodes result =
        FC_OK |
        ctx.store.getTextParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::INPUT_DETECTED, detected, videoSource) |
        ctx.store.getBoolParam(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, prop::CONNECTED, connected, videoSource) |
        ctx.store.getTextParam(ds, tbl::CHANNELS, prop::STATE, state, rowId) |
        ctx.store.getTextParam(ds, tbl::CHANNELS, prop::STATUS, status, rowId) |
        ctx.store.getIntParam(ds, tbl::CHANNELS, prop::FCODE, fcodeValue, rowId) |
        ctx.store.getTextParam(ds, tbl::SOURCE, prop::INPUT_RESOLUTION, running, rowId) |
        ctx.store.getBoolParam(ds, tbl::PROCESSING, prop::FORMAT_AS_DETECTED, asDetected, rowId);
    if (!isOk(result))
        return result;
    const uint32_t fcode = static_cast<uint32_t>(fcodeValue);
    auto setFcode = [&](uint32_t code) {
        return ctx.store.initIntParam(ds, tbl::CHANNELS, prop::FCODE, static_cast<int>(code), rowId);
    };
    auto setFormatChanged = [&](bool changed) {
        return ctx.store.initBoolParam(ds, tbl::SOURCE, prop::FORMAT_CHANGED, changed, rowId);
    };

    if (!connected || isNoSignal(detected)) {
        if (state != state::PLAYING)
            return result;
        DBG(DBG_WARN) << "updateVideoSource: input lost rowId=" << rowId << " src=" << videoSource;
        result |= setFcode(fcode | cond::CHANNEL_ERROR);
        result |= lifecycle.updateChannelStatus(rowId);
        return result | leds.updateStreamAndErrorLeds();
    }

    if (state == state::PLAYING) {
        if (status == state::STATUS_ERROR || holds(fcode, cond::CHANNEL_ERROR)) {
            DBG(DBG_INFO) << "updateVideoSource: input back rowId=" << rowId << " src=" << videoSource;
            result |= setFcode(withoutCondition(fcode, cond::CHANNEL_ERROR));
            result |= ctx.store.initTextParam(ds, tbl::CHANNELS, prop::STATUS, state::STATUS_OK, rowId);
            ctx.events.sendEvent(ev::CLOSE_ALARMS, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO, "");
            result |= leds.updateStreamAndErrorLeds();
        }
        if (detected == running)
            return result;
        DBG(DBG_WARN) << "updateVideoSource: format changed rowId=" << rowId << " from=" << running
                      << " to=" << detected;
        result |= setFormatChanged(true);
        if (asDetected) {
            result |= setFcode(cond::FORMAT_CHANGED);
            result |= lifecycle.stopChannel(rowId);
            ctx.runBook.setStoppedByInput(rowId, true);
            result |= lifecycle.reconfigChannelFormat(rowId);
            if (isOk(validateInputFormat(ctx.store, rowId)))
                result |= lifecycle.playChannel(rowId);
            return result;
        }
        if (isOk(validateInputFormat(ctx.store, rowId))) {
            // The channel can be made from the new format: it becomes the running one.
            result |= ctx.store.initTextParam(ds, tbl::SOURCE, prop::INPUT_RESOLUTION, detected, rowId);
            return result | ctx.store.initTextParam(ds, tbl::CHANNELS, prop::INPUT_RESOLUTION, detected, rowId);
        }
        result |= setFcode(cond::FORMAT_CHANGED);
        result |= lifecycle.stopChannel(rowId);
        ctx.runBook.setStoppedByInput(rowId, true);
        return result;
    }

    if ((state == state::STOPPING || state == state::STOPPED) && ctx.runBook.stoppedByInput(rowId)) {
        // A format that follows the input is set before the validation;
        // otherwise only a channel about to play is configured again.
        if (asDetected)
            result |= lifecycle.reconfigChannelFormat(rowId);
        if (!isOk(validateInputFormat(ctx.store, rowId)))
            return result;
        if (!asDetected)
            result |= lifecycle.reconfigChannelFormat(rowId);
        DBG(DBG_INFO) << "updateVideoSource: valid input back, replaying rowId=" << rowId << " format=" << detected;
        result |= setFormatChanged(false);
        result |= lifecycle.playChannel(rowId);
    }
    return result;
}
