#include "channel/ConfigChannelTarnevel.h"

#include "datacom/DataHolder.h"
#include "model/BitrateModel.h"
#include "model/ChannelSnapshot.h"
#include "model/InputFormatValidation.h"

using namespace datacom;

// Every operation hands over to its part; see the header for who owns what.

ConfigChannelTarnevel::ConfigChannelTarnevel(DataHolder& holder, IChannelEvents& events, ChannelRunBook& runBook)
    : ConfigChannelTarnevel(std::make_unique<HolderStore>(holder), std::make_unique<HolderMediator>(holder), nullptr,
                            nullptr, events, runBook) {}

ConfigChannelTarnevel::ConfigChannelTarnevel(ChannelStore& store, Mediator& mediator, IChannelEvents& events,
                                             ChannelRunBook& runBook)
    : ConfigChannelTarnevel(nullptr, nullptr, &store, &mediator, events, runBook) {}

ConfigChannelTarnevel::ConfigChannelTarnevel(std::unique_ptr<HolderStore> ownStore,
                                             std::unique_ptr<HolderMediator> ownMediator, ChannelStore* store,
                                             Mediator* mediator, IChannelEvents& events, ChannelRunBook& runBook)
    : holderStore(std::move(ownStore)),
      holderMediator(std::move(ownMediator)),
      ctx{store != nullptr ? *store : *holderStore, mediator != nullptr ? *mediator : *holderMediator, events, runBook},
      rows(ctx.store, ctx.mediator),
      sap(ctx, rows),
      klv(ctx),
      probes(ctx, rows),
      leds(ctx),
      statistics(ctx),
      dataStreams(ctx),
      pipeline(ctx, klv),
      lifecycle(ctx, {rows, sap, klv, leds, pipeline}),
      sources(ctx, lifecycle, leds),
      commands(ctx, {rows, probes, statistics, pipeline, lifecycle}) {}

Fcodes ConfigChannelTarnevel::execute(const MessageCommand& command) {
    return commands.execute(command);
}
Fcodes ConfigChannelTarnevel::playChannel(const std::string& rowId) {
    return lifecycle.playChannel(rowId);
}
Fcodes ConfigChannelTarnevel::stopAll() {
    return lifecycle.stopAll();
}
Fcodes ConfigChannelTarnevel::stopChannel(const std::string& rowId) {
    return lifecycle.stopChannel(rowId);
}
Fcodes ConfigChannelTarnevel::updateChannelStatus(const std::string& rowId) {
    return lifecycle.updateChannelStatus(rowId);
}
Fcodes ConfigChannelTarnevel::configChannels() {
    return lifecycle.configChannels();
}
Fcodes ConfigChannelTarnevel::reconfigChannelFormat(const std::string& rowId) {
    return lifecycle.reconfigChannelFormat(rowId);
}
Fcodes ConfigChannelTarnevel::waitWhileInTransition(const std::string& branch, const std::string& wantedState,
                                                    int timeoutMs) {
    return lifecycle.waitWhileInTransition(branch, wantedState, timeoutMs);
}
Fcodes ConfigChannelTarnevel::handleTarnevelBranchEvent(MessageEvent* event) {
    return lifecycle.handleTarnevelBranchEvent(event);
}
Fcodes ConfigChannelTarnevel::updateVideoSource(const std::string& videoSource) {
    return sources.updateVideoSource(videoSource);
}
Fcodes ConfigChannelTarnevel::updateVideoSource(MessageEvent* event) {
    return sources.updateVideoSource(event);
}
Fcodes ConfigChannelTarnevel::triggerVideoSource(const std::string& videoSource) {
    return sources.triggerVideoSource(videoSource);
}

Fcodes ConfigChannelTarnevel::getBranch(const std::string& rowId, const std::string& protocol, std::string& branch) {
    return rows.getBranch(rowId, protocol, branch);
}
Fcodes ConfigChannelTarnevel::getRowId(const std::string& branch, std::string& rowId) {
    return rows.getRowId(branch, rowId);
}
Fcodes ConfigChannelTarnevel::getChildInstances(const std::string& dataSet, const std::string& component,
                                                const std::string& keyProperty, const std::string& keyValue,
                                                std::vector<std::string>& instances) {
    return rows.getChildInstances(dataSet, component, keyProperty, keyValue, instances);
}
int ConfigChannelTarnevel::getFirstChildRowId(const std::string& dataSet, const std::string& component,
                                              const std::string& keyProperty, const std::string& keyValue) {
    return rows.getFirstChildRowId(dataSet, component, keyProperty, keyValue);
}
int ConfigChannelTarnevel::getNextChildRowId(const std::string& dataSet, const std::string& component,
                                             const std::string& keyProperty, const std::string& keyValue, int index) {
    return rows.getNextChildRowId(dataSet, component, keyProperty, keyValue, index);
}
Fcodes ConfigChannelTarnevel::restoreChannelParameters(const std::string& rowId) {
    return rows.restoreChannelParameters(rowId);
}
Fcodes ConfigChannelTarnevel::clearChannelParametersBackup(const std::string& rowId) {
    return rows.clearChannelParametersBackup(rowId);
}
Fcodes ConfigChannelTarnevel::validateInputFormat(const std::string& rowId) {
    return ::validateInputFormat(ctx.store, rowId);
}

Fcodes ConfigChannelTarnevel::configChannel(const std::string& rowId) {
    return pipeline.configChannel(rowId);
}
Fcodes ConfigChannelTarnevel::configAVSettings(const std::string& rowId, bool pending) {
    return pipeline.configAVSettings(rowId, pending);
}
Fcodes ConfigChannelTarnevel::configAudioGain(const std::string& audioRowId, bool pending) {
    return pipeline.configAudioGain(audioRowId, pending);
}
// The channel's settings as they stand, then the model.
Fcodes ConfigChannelTarnevel::calcBitrates(const std::string& rowId, int& totalBitrate, int& videoBitrate,
                                           float frameRate, int& audioBitrate, int& klvBitrate, bool pcrOnVideoPid) {
    ChannelSnapshot settings;
    const Fcodes read = readChannelSnapshot(ctx.store, rowId, settings);
    bitrate::calcBitrates(settings, totalBitrate, videoBitrate, frameRate, audioBitrate, klvBitrate, pcrOnVideoPid);
    return read;
}
Fcodes ConfigChannelTarnevel::changeBitrateOnTheFly(const std::string& rowId, int totalBitrate, int maxBitrate) {
    return pipeline.changeBitrateOnTheFly(rowId, totalBitrate, maxBitrate);
}
Fcodes ConfigChannelTarnevel::updateChannel(const std::string& rowId) {
    return pipeline.updateChannel(rowId);
}
Fcodes ConfigChannelTarnevel::updateAutomaticParams(const std::string& rowId) {
    return pipeline.updateAutomaticParams(rowId);
}

Fcodes ConfigChannelTarnevel::updateZixiStatistics(const std::string& targetRowId) {
    return statistics.updateZixiStatistics(targetRowId);
}
Fcodes ConfigChannelTarnevel::updateSrtStatistics(const std::string& targetRowId) {
    return statistics.updateSrtStatistics(targetRowId);
}
// A Zixi bitrate request is carried out by the pipeline, under the lock the
// event's handling holds.
Fcodes ConfigChannelTarnevel::handleDataStreamEvent(MessageEvent* event) {
    return dataStreams.handleDataStreamEvent(event, [this](const std::string& rowId, int total, int max) {
        return pipeline.changeBitrateOnTheFly(rowId, total, max);
    });
}
Fcodes ConfigChannelTarnevel::sapAction(const std::string& rowId) {
    return sap.sapAction(rowId);
}
Fcodes ConfigChannelTarnevel::klvAction(const std::string& rowId) {
    return klv.klvAction(rowId);
}
Fcodes ConfigChannelTarnevel::klvFollowSettings(const std::string& rowId) {
    return klv.klvFollowSettings(rowId);
}
Fcodes ConfigChannelTarnevel::testConnectionToTarget(const std::string& rowId) {
    return probes.testConnectionToTarget(rowId);
}
void ConfigChannelTarnevel::traceroute(const std::string& rowId, const std::string& address) {
    probes.traceroute(rowId, address);
}
Fcodes ConfigChannelTarnevel::setLed(const std::string& led, int value) {
    return leds.setLed(led, value);
}
Fcodes ConfigChannelTarnevel::updateStreamAndErrorLeds() {
    return leds.updateStreamAndErrorLeds();
}
