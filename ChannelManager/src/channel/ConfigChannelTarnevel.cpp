#include "channel/ConfigChannelTarnevel.h"

#include "channel/ChannelCommands.h"
#include "channel/ChannelLifecycle.h"
#include "channel/VideoSourceTracker.h"
#include "pipeline/PipelineConfigurator.h"
#include "settings/BitrateModel.h"
#include "settings/ChannelRows.h"
#include "settings/ChannelSnapshot.h"
#include "settings/InputFormatValidation.h"
#include "side/SideActions.h"

using namespace datacom;

// Every operation hands over to its part; see the header for who owns what.

ConfigChannelTarnevel::ConfigChannelTarnevel(DataHolder& holder, IChannelEvents& events) : ctx{holder, events} {}

Fcodes ConfigChannelTarnevel::execute(const MessageCommand& command) {
    return ChannelCommands(ctx).execute(command);
}
Fcodes ConfigChannelTarnevel::playChannel(const std::string& rowId) {
    return ChannelLifecycle(ctx).playChannel(rowId);
}
Fcodes ConfigChannelTarnevel::stopAll() {
    return ChannelLifecycle(ctx).stopAll();
}
Fcodes ConfigChannelTarnevel::stopChannel(const std::string& rowId) {
    return ChannelLifecycle(ctx).stopChannel(rowId);
}
Fcodes ConfigChannelTarnevel::updateChannelStatus(const std::string& rowId) {
    return ChannelLifecycle(ctx).updateChannelStatus(rowId);
}
Fcodes ConfigChannelTarnevel::configChannels() {
    return ChannelLifecycle(ctx).configChannels();
}
Fcodes ConfigChannelTarnevel::reconfigChannelFormat(const std::string& rowId) {
    return ChannelLifecycle(ctx).reconfigChannelFormat(rowId);
}
Fcodes ConfigChannelTarnevel::waitWhileInTransition(const std::string& branch, const std::string& wantedState,
                                                    int timeoutMs) {
    return ChannelLifecycle(ctx).waitWhileInTransition(branch, wantedState, timeoutMs);
}
Fcodes ConfigChannelTarnevel::handleTarnevelBranchEvent(MessageEvent* event) {
    return ChannelLifecycle(ctx).handleTarnevelBranchEvent(event);
}
Fcodes ConfigChannelTarnevel::updateVideoSource(const std::string& videoSource) {
    return VideoSourceTracker(ctx).updateVideoSource(videoSource);
}
Fcodes ConfigChannelTarnevel::updateVideoSource(MessageEvent* event) {
    return VideoSourceTracker(ctx).updateVideoSource(event);
}
Fcodes ConfigChannelTarnevel::triggerVideoSource(const std::string& videoSource) {
    return VideoSourceTracker(ctx).triggerVideoSource(videoSource);
}

Fcodes ConfigChannelTarnevel::getBranch(const std::string& rowId, const std::string& protocol, std::string& branch) {
    return ChannelRows(ctx.holder).getBranch(rowId, protocol, branch);
}
Fcodes ConfigChannelTarnevel::getRowId(const std::string& branch, std::string& rowId) {
    return ChannelRows(ctx.holder).getRowId(branch, rowId);
}
Fcodes ConfigChannelTarnevel::getChildInstances(const std::string& dataSet, const std::string& component,
                                                const std::string& keyProperty, const std::string& keyValue,
                                                std::vector<std::string>& instances) {
    return ChannelRows(ctx.holder).getChildInstances(dataSet, component, keyProperty, keyValue, instances);
}
int ConfigChannelTarnevel::getFirstChildRowId(const std::string& dataSet, const std::string& component,
                                              const std::string& keyProperty, const std::string& keyValue) {
    return ChannelRows(ctx.holder).getFirstChildRowId(dataSet, component, keyProperty, keyValue);
}
int ConfigChannelTarnevel::getNextChildRowId(const std::string& dataSet, const std::string& component,
                                             const std::string& keyProperty, const std::string& keyValue, int index) {
    return ChannelRows(ctx.holder).getNextChildRowId(dataSet, component, keyProperty, keyValue, index);
}
Fcodes ConfigChannelTarnevel::restoreChannelParameters(const std::string& rowId) {
    return ChannelRows(ctx.holder).restoreChannelParameters(rowId);
}
Fcodes ConfigChannelTarnevel::clearChannelParametersBackup(const std::string& rowId) {
    return ChannelRows(ctx.holder).clearChannelParametersBackup(rowId);
}
Fcodes ConfigChannelTarnevel::validateInputFormat(const std::string& rowId) {
    return ::validateInputFormat(ctx.holder, rowId);
}

Fcodes ConfigChannelTarnevel::configChannel(const std::string& rowId) {
    return PipelineConfigurator(ctx).configChannel(rowId);
}
Fcodes ConfigChannelTarnevel::configAVSettings(const std::string& rowId, bool pending) {
    return PipelineConfigurator(ctx).configAVSettings(rowId, pending);
}
Fcodes ConfigChannelTarnevel::configAudioGain(const std::string& audioRowId, bool pending) {
    return PipelineConfigurator(ctx).configAudioGain(audioRowId, pending);
}
// The channel's settings as they stand, then the model.
Fcodes ConfigChannelTarnevel::calcBitrates(const std::string& rowId, int& totalBitrate, int& videoBitrate,
                                           float frameRate, int& audioBitrate, int& klvBitrate, bool pcrOnVideoPid) {
    ChannelSnapshot settings;
    const Fcodes read = readChannelSnapshot(ctx.holder, rowId, settings);
    bitrate::calcBitrates(settings, totalBitrate, videoBitrate, frameRate, audioBitrate, klvBitrate, pcrOnVideoPid);
    return read;
}
Fcodes ConfigChannelTarnevel::changeBitrateOnTheFly(const std::string& rowId, int totalBitrate, int maxBitrate) {
    return PipelineConfigurator(ctx).changeBitrateOnTheFly(rowId, totalBitrate, maxBitrate);
}
Fcodes ConfigChannelTarnevel::updateChannel(const std::string& rowId) {
    return PipelineConfigurator(ctx).updateChannel(rowId);
}
Fcodes ConfigChannelTarnevel::updateAutomaticParams(const std::string& rowId) {
    return PipelineConfigurator(ctx).updateAutomaticParams(rowId);
}

Fcodes ConfigChannelTarnevel::updateZixiStatistics(const std::string& targetRowId) {
    return SideActions(ctx).updateZixiStatistics(targetRowId);
}
Fcodes ConfigChannelTarnevel::updateSrtStatistics(const std::string& targetRowId) {
    return SideActions(ctx).updateSrtStatistics(targetRowId);
}
// A Zixi bitrate request is carried out by the pipeline, under the lock the
// event's handling holds.
Fcodes ConfigChannelTarnevel::handleDataStreamEvent(MessageEvent* event) {
    PipelineConfigurator pipeline(ctx);
    return SideActions(ctx).handleDataStreamEvent(event, [&pipeline](const std::string& rowId, int total, int max) {
        return pipeline.changeBitrateOnTheFly(rowId, total, max);
    });
}
Fcodes ConfigChannelTarnevel::sapAction(const std::string& rowId) {
    return SideActions(ctx).sapAction(rowId);
}
Fcodes ConfigChannelTarnevel::klvAction(const std::string& rowId) {
    return SideActions(ctx).klvAction(rowId);
}
Fcodes ConfigChannelTarnevel::klvFollowSettings(const std::string& rowId) {
    return SideActions(ctx).klvFollowSettings(rowId);
}
Fcodes ConfigChannelTarnevel::testConnectionToTarget(const std::string& rowId) {
    return SideActions(ctx).testConnectionToTarget(rowId);
}
void ConfigChannelTarnevel::traceroute(const std::string& rowId, const std::string& address) {
    SideActions(ctx).traceroute(rowId, address);
}
Fcodes ConfigChannelTarnevel::setLed(const std::string& led, int value) {
    return SideActions(ctx).setLed(led, value);
}
Fcodes ConfigChannelTarnevel::updateStreamAndErrorLeds() {
    return SideActions(ctx).updateStreamAndErrorLeds();
}
