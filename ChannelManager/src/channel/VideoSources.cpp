#include <string>
#include <utility>
#include <vector>

#include "vocab/ChannelVocabulary.h"
#include "channel/ConfigChannelTarnevel.h"
#include "channel/IChannelEvents.h"
#include "ITarnevelClient.h"
#include "side/SideActionSupport.h"
#include "holder/DataHolder.h"
#include "system/DbgPrintClient.h"

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
// How a channel follows its input (triggerVideoSource), under the holder
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
//   whose input is back with a valid format is played again, "Format
//   Changed" false: the system resumes what the system stopped. A channel
//   stopped by its user (0x20020) is never played by an input change.

namespace {

const std::pair<const char*, const char*> kReceivers[] = {
    {vocab::value::SRC_HD_SDI, vocab::med::SDI_RECEIVER},
    {vocab::value::SRC_COMPOSITE, vocab::med::CVBS_RECEIVER},
    {vocab::value::SRC_DVI_D, vocab::med::DVI_RECEIVER},
    {vocab::value::SRC_HDMI, vocab::med::HDMI_RECEIVER},
};

const char* receiverOf(const std::string& source) {
    for (const auto& [row, receiver] : kReceivers)
        if (source == row)
            return receiver;
    return nullptr;
}

bool isNoSignal(const std::string& format) {
    return format.empty() || format == vocab::state::INPUT_NONE || format == vocab::state::NO_SIGNAL;
}

bool holds(uint32_t fcode, uint32_t condition) {
    return (fcode & condition) == condition;
}

// The code without one channel condition: 0x10000 when no other condition
// is left.
uint32_t withoutCondition(uint32_t fcode, uint32_t condition) {
    const uint32_t conditionBits = 0x3E;
    const uint32_t remaining = fcode & conditionBits & ~(condition & conditionBits);
    return remaining == 0 ? uint32_t{FC_OK} : ((fcode & FC_OK) | vocab::cond::INFO | remaining);
}

}  // namespace

Fcodes ConfigChannelTarnevel::updateVideoSource(const std::string& videoSource) {
    if (videoSource.empty()) {
        DBG(2) << "updateVideoSource: Error: Empty src=" << videoSource;
        return FC_BAD_VALUE;
    }
    const char* receiver = receiverOf(videoSource);
    if (receiver == nullptr || !holder.hasInstance(vocab::ds::VIDEO_SOURCE, vocab::tbl::VIDEO_SOURCE, videoSource)) {
        DBG(2) << "updateVideoSource: Couldn't find either a row of videoSource=" << videoSource;
        return FC_NO_SUCH_NAME;
    }
    std::string format;
    Fcodes read = ITarnevelClient::getTarnevelTextParam(&holder, receiver, vocab::med::VIDEO_FORMAT, format);
    if (!isOk(read)) {
        // The previous detected state stays: an unanswered question is no lost input.
        DBG(2) << "updateVideoSource: Error: param=" << vocab::med::VIDEO_FORMAT << " comp=" << receiver << " fcode=0x"
               << side::hexCode(read);
        return read;
    }
    return applyDetectedInput(videoSource, format);
}

Fcodes ConfigChannelTarnevel::updateVideoSource(MessageEvent* event) {
    if (event == nullptr)
        return FC_BAD_VALUE;
    std::string format;
    if (event->getParam(vocab::ev::PARAM_INPUT_DETECTED, format) == 0)
        return updateVideoSource(event->source);
    if (event->source.empty()) {
        DBG(2) << "updateVideoSource: Error: Empty src=" << event->source;
        return FC_BAD_VALUE;
    }
    if (!holder.hasInstance(vocab::ds::VIDEO_SOURCE, vocab::tbl::VIDEO_SOURCE, event->source)) {
        DBG(2) << "updateVideoSource: Couldn't find either a row of videoSource=" << event->source;
        return FC_NO_SUCH_NAME;
    }
    return applyDetectedInput(event->source, format);
}

Fcodes ConfigChannelTarnevel::applyDetectedInput(const std::string& videoSource, const std::string& format) {
    const bool connected = !isNoSignal(format);
    const std::string detected = connected ? format : std::string(vocab::state::INPUT_NONE);
    DBG(0) << "updateVideoSource: src=" << videoSource << " " << vocab::prop::INPUT_DETECTED << "=" << detected;
    Fcodes result = FC_OK |
                    holder.initTextParam(vocab::ds::VIDEO_SOURCE, vocab::tbl::VIDEO_SOURCE, vocab::prop::INPUT_DETECTED,
                                         detected, videoSource) |
                    holder.initBoolParam(vocab::ds::VIDEO_SOURCE, vocab::tbl::VIDEO_SOURCE, vocab::prop::CONNECTED,
                                         connected, videoSource);
    result |= triggerVideoSource(videoSource);
    events.sendSourceEvent(videoSource, !connected, detected);
    return result;
}

Fcodes ConfigChannelTarnevel::triggerVideoSource(const std::string& videoSource) {
    std::vector<std::string> channels;
    Fcodes result = FC_OK | holder.getInstancesByParameter(vocab::ds::CHANNEL, vocab::tbl::SOURCE, vocab::prop::SOURCE,
                                                           videoSource, channels);
    for (const std::string& rowId : channels) {
        if (!vocab::isChannelRow(rowId))
            continue;
        side::HolderLock lock(holder);
        result |= followInput(rowId, videoSource);
    }
    return result;
}

// One channel on the source follows its input; caller holds the holder lock.
Fcodes ConfigChannelTarnevel::followInput(const std::string& rowId, const std::string& videoSource) {
    const char* ds = vocab::ds::CHANNEL;
    std::string detected, state, running, status;
    bool connected = false, asDetected = false;
    int fcodeValue = 0;
    Fcodes result = FC_OK |
                    holder.getTextParam(vocab::ds::VIDEO_SOURCE, vocab::tbl::VIDEO_SOURCE, vocab::prop::INPUT_DETECTED,
                                        detected, videoSource) |
                    holder.getBoolParam(vocab::ds::VIDEO_SOURCE, vocab::tbl::VIDEO_SOURCE, vocab::prop::CONNECTED,
                                        connected, videoSource) |
                    holder.getTextParam(ds, vocab::tbl::CHANNELS, vocab::prop::STATE, state, rowId) |
                    holder.getTextParam(ds, vocab::tbl::CHANNELS, vocab::prop::STATUS, status, rowId) |
                    holder.getIntParam(ds, vocab::tbl::CHANNELS, vocab::prop::FCODE, fcodeValue, rowId) |
                    holder.getTextParam(ds, vocab::tbl::SOURCE, vocab::prop::INPUT_RESOLUTION, running, rowId) |
                    holder.getBoolParam(ds, vocab::tbl::PROCESSING, vocab::prop::FORMAT_AS_DETECTED, asDetected, rowId);
    if (!isOk(result))
        return result;
    const uint32_t fcode = static_cast<uint32_t>(fcodeValue);
    auto setFcode = [&](uint32_t code) {
        return holder.initIntParam(ds, vocab::tbl::CHANNELS, vocab::prop::FCODE, static_cast<int>(code), rowId);
    };
    auto setFormatChanged = [&](bool changed) {
        return holder.initBoolParam(ds, vocab::tbl::SOURCE, vocab::prop::FORMAT_CHANGED, changed, rowId);
    };

    if (!connected || isNoSignal(detected)) {
        if (state != vocab::state::PLAYING)
            return result;
        DBG(1) << "updateVideoSource: input lost rowId=" << rowId << " src=" << videoSource;
        result |= setFcode(fcode | vocab::cond::CHANNEL_ERROR);
        result |= updateChannelStatus(rowId);
        return result | updateStreamAndErrorLeds();
    }

    if (state == vocab::state::PLAYING) {
        if (status == vocab::state::STATUS_ERROR || holds(fcode, vocab::cond::CHANNEL_ERROR)) {
            DBG(0) << "updateVideoSource: input back rowId=" << rowId << " src=" << videoSource;
            result |= setFcode(withoutCondition(fcode, vocab::cond::CHANNEL_ERROR));
            result |=
                holder.initTextParam(ds, vocab::tbl::CHANNELS, vocab::prop::STATUS, vocab::state::STATUS_OK, rowId);
            events.sendEvent(vocab::ev::CLOSE_ALARMS, rowId, vocab::cond::INFO, vocab::state::ALARM_NONE,
                             vocab::state::SEVERITY_INFO, "");
            result |= updateStreamAndErrorLeds();
        }
        if (detected == running)
            return result;
        DBG(1) << "updateVideoSource: format changed rowId=" << rowId << " from=" << running << " to=" << detected;
        result |= setFormatChanged(true);
        if (asDetected) {
            result |= setFcode(vocab::cond::FORMAT_CHANGED);
            result |= stopChannel(rowId);
            result |= reconfigChannelFormat(rowId);
            if (isOk(validateInputFormat(rowId)))
                result |= playChannel(rowId);
            return result;
        }
        if (isOk(validateInputFormat(rowId))) {
            // The channel can be made from the new format: it becomes the running one.
            result |= holder.initTextParam(ds, vocab::tbl::SOURCE, vocab::prop::INPUT_RESOLUTION, detected, rowId);
            return result |
                   holder.initTextParam(ds, vocab::tbl::CHANNELS, vocab::prop::INPUT_RESOLUTION, detected, rowId);
        }
        result |= setFcode(vocab::cond::FORMAT_CHANGED);
        return result | stopChannel(rowId);
    }

    if (state == vocab::state::STOPPING && holds(fcode, vocab::cond::FORMAT_CHANGED) &&
        !holds(fcode, vocab::cond::FORCED_STOP)) {
        if (asDetected)
            result |= reconfigChannelFormat(rowId);
        if (!isOk(validateInputFormat(rowId)))
            return result;
        DBG(0) << "updateVideoSource: valid input back, replaying rowId=" << rowId << " format=" << detected;
        result |= setFormatChanged(false);
        result |= playChannel(rowId);
    }
    return result;
}
