#include <cstdlib>

#include "channel/ChannelCommands.h"
#include "channel/ChannelLifecycle.h"
#include "datacom/DbgPrintClient.h"
#include "model/ChannelRows.h"
#include "pipeline/PipelineConfigurator.h"
#include "ports/ChannelStore.h"
#include "ports/IChannelEvents.h"
#include "ports/Mediator.h"
#include "side/StreamStatistics.h"
#include "side/TargetProbes.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace datacom;

using namespace vocab;

// The channel commands the manager forwards, parsed once by the manager:
// "ACTIVATE_ROW", "Change on-the-fly", "Play", "Stop" and the two statistics
// commands, addressed by "RowID" to one channel or to "ALL" ("0" meaning
// "ALL"); the statistics commands name a target row instead.

namespace {

// A number as the front end writes it: decimal, "0x" hexadecimal or octal.
int toNumber(const std::string& text) {
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 0));
}

}  // namespace

Fcodes ChannelCommands::execute(const MessageCommand& command) {
    const std::string& name = command.getId();
    std::string rowId = row::ALL;
    command.getParam(cmd::PARAM_ROW_ID, rowId);
    if (rowId == row::ALL_NUMERIC)
        rowId = row::ALL;
    DBG(DBG_INFO) << "execute: RowID=" << rowId;

    // The command table, first whole-text match wins. A row's `one` runs on
    // the named row; "ALL" runs its `all`, or without one `one` on every
    // channel. A statistics command runs on a target row only and answers
    // "OK" whatever the update gives; on a channel or "ALL" it does nothing.
    using OneRow = Fcodes (ChannelCommands::*)(const std::string&, const MessageCommand&);
    using AllRows = Fcodes (ChannelCommands::*)();
    struct Route {
        const char* id;
        bool onTarget;  // "RowID" names a target row, not a channel
        OneRow one;
        AllRows all;
    };
    static const Route kRoutes[] = {
        {cmd::ACTIVATE_ROW, false, &ChannelCommands::activateRow, nullptr},
        {cmd::CHANGE_ON_THE_FLY, false, &ChannelCommands::changeOnTheFly, &ChannelCommands::changeOnTheFlyAll},
        {cmd::PLAY, false, &ChannelCommands::play, nullptr},
        {cmd::STOP, false, &ChannelCommands::stop, &ChannelCommands::stopAll},
        {cmd::UPDATE_ZIXI_STATISTICS, true, &ChannelCommands::zixiStatistics, nullptr},
        {cmd::UPDATE_SRT_STATISTICS, true, &ChannelCommands::srtStatistics, nullptr},
    };
    const Route* route = nullptr;
    for (const Route& candidate : kRoutes)
        if (name == candidate.id) {
            route = &candidate;
            break;
        }

    if (rowId != row::ALL && !isChannelRow(rowId)) {
        if (route != nullptr && route->onTarget) {
            (this->*route->one)(rowId, command);
            return FC_OK;
        }
        DBG(DBG_ERROR) << "execute: Unexpected rowId=" << rowId << " in command=" << name;
        return FC_BAD_VALUE;
    }
    // Any other command on a channel has nothing to do here.
    if (route == nullptr || route->onTarget)
        return FC_OK;
    if (rowId != row::ALL)
        return (this->*route->one)(rowId, command);
    if (route->all != nullptr)
        return (this->*route->all)();
    Fcodes result = FC_OK;
    for (const std::string& channel : rows.channelRows())
        result |= (this->*route->one)(channel, command);
    return result;
}

Fcodes ChannelCommands::activateRow(const std::string& rowId, const MessageCommand&) {
    DBG(DBG_INFO) << "execute: ACTIVATE_ROW_CMD rowId=" << rowId;
    Fcodes result = ctx.store.initBoolParam(ds::CHANNEL, tbl::SOURCE, prop::FORMAT_CHANGED, false, rowId);
    const Fcodes configured = pipeline.configChannel(rowId);
    DBG(DBG_INFO) << "execute: configChannel rowId=" << rowId << " fcode=0x" << std::hex
                  << static_cast<uint32_t>(configured);
    const Fcodes updated = pipeline.updateChannel(rowId);
    DBG(DBG_INFO) << "execute: updateChannel rowId=" << rowId << " fcode=0x" << std::hex
                  << static_cast<uint32_t>(updated);
    result |= configured | updated;
    if (!isOk(result))
        return result;
    ctx.events.sendEvent(ev::CHANNEL_CONFIGURED, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO, "");
    probes.testConnectionToTarget(rowId);
    return FC_OK;
}

// Only a request that names both bitrates changes anything; a request equal
// to the current settings is answered without touching the encoder.
Fcodes ChannelCommands::changeOnTheFly(const std::string& rowId, const MessageCommand& command) {
    std::string totalText, maxText;
    if (command.getParam(cmd::PARAM_TOTAL_BITRATE, totalText) == 0 ||
        command.getParam(cmd::PARAM_MAX_BITRATE, maxText) == 0 || totalText.empty() || maxText.empty())
        return FC_OK;
    const int total = toNumber(totalText);
    const int max = toNumber(maxText);
    int currentTotal = 0, currentMax = 0;
    const Fcodes reads = ctx.store.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, currentTotal, rowId) |
                         ctx.store.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, currentMax, rowId);
    if (isOk(reads) && currentTotal == total && currentMax == max)
        return FC_OK;
    DBG(DBG_INFO) << "execute: req=" << command.getId() << " param=" << cmd::PARAM_TOTAL_BITRATE << " val=" << total
                  << " param=" << cmd::PARAM_MAX_BITRATE << " val=" << max;
    // The operator's change wins over a backup held for a Zixi request: what
    // the operator set is the channel's bitrate from now on, so the next stop
    // keeps it instead of restoring the values from before the Zixi request.
    // (A Zixi request after this one saves these values as its backup.)
    const Fcodes changed = pipeline.changeBitrateOnTheFly(rowId, total, max);
    return isOk(changed) ? changed | rows.clearChannelParametersBackup(rowId) : changed;
}

Fcodes ChannelCommands::play(const std::string& rowId, const MessageCommand&) {
    const Fcodes result = lifecycle.playChannel(rowId) | FC_OK;
    probes.testConnectionToTarget(rowId);
    return result;
}

// An on-the-fly change acts on one channel only: for "ALL" (also a missing
// "RowID") it answers "OK" and does nothing, as changeBitrateOnTheFly does
// for a row that is no channel.
Fcodes ChannelCommands::changeOnTheFlyAll() {
    DBG(DBG_WARN) << "execute: " << cmd::CHANGE_ON_THE_FLY << " needs one channel, rowId=" << row::ALL << " ignored";
    return FC_OK;
}

Fcodes ChannelCommands::stop(const std::string& rowId, const MessageCommand&) {
    return lifecycle.forcedStop(rowId);
}

Fcodes ChannelCommands::zixiStatistics(const std::string& targetRowId, const MessageCommand&) {
    return statistics.updateZixiStatistics(targetRowId);
}

Fcodes ChannelCommands::srtStatistics(const std::string& targetRowId, const MessageCommand&) {
    return statistics.updateSrtStatistics(targetRowId);
}

Fcodes ChannelCommands::stopAll() {
    return lifecycle.stopAll();
}
