#pragma once

#include <string>

#include "channel/ChannelLifecycle.h"
#include "datacom/Fcodes.h"
#include "datacom/MessageCommand.h"
#include "pipeline/PipelineConfigurator.h"
#include "settings/ChannelContext.h"
#include "settings/ChannelRows.h"
#include "side/SideActions.h"

// The channel commands as the manager parsed them: "ACTIVATE_ROW", "Change
// on-the-fly", "Play", "Stop" and the two statistics commands, routed by
// command ID and "RowID" (one channel, "ALL" or "0", or a target row for the
// statistics commands) to the lifecycle, the pipeline or the side actions.
class ChannelCommands {
public:
    explicit ChannelCommands(ChannelContext& ctx)
        : ctx(ctx), rows(ctx.holder), side(ctx), pipeline(ctx), lifecycle(ctx) {}

    datacom::Fcodes execute(const datacom::MessageCommand& command);

private:
    // One command on one channel row; "ALL" is expanded by execute.
    datacom::Fcodes activateRow(const std::string& rowId, const datacom::MessageCommand& command);
    datacom::Fcodes changeOnTheFly(const std::string& rowId, const datacom::MessageCommand& command);
    datacom::Fcodes changeOnTheFlyAll();
    datacom::Fcodes play(const std::string& rowId, const datacom::MessageCommand& command);
    datacom::Fcodes stop(const std::string& rowId, const datacom::MessageCommand& command);
    datacom::Fcodes stopAll();
    // The statistics commands on one target row.
    datacom::Fcodes zixiStatistics(const std::string& targetRowId, const datacom::MessageCommand& command);
    datacom::Fcodes srtStatistics(const std::string& targetRowId, const datacom::MessageCommand& command);

    ChannelContext& ctx;
    ChannelRows rows;
    SideActions side;
    PipelineConfigurator pipeline;
    ChannelLifecycle lifecycle;
};
