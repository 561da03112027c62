#pragma once

#include <string>

#include "datacom/Fcodes.h"
#include "datacom/MessageCommand.h"
#include "ports/ChannelContext.h"

class ChannelLifecycle;
class ChannelRows;
class PipelineConfigurator;
class StreamStatistics;
class TargetProbes;

// The channel commands as the manager parsed them: "ACTIVATE_ROW", "Change
// on-the-fly", "Play", "Stop" and the two statistics commands, routed by
// command ID and "RowID" (one channel, "ALL" or "0", or a target row for the
// statistics commands) to the lifecycle, the pipeline or the side actions.
class ChannelCommands {
public:
    struct Parts {
        ChannelRows& rows;
        TargetProbes& probes;
        StreamStatistics& statistics;
        PipelineConfigurator& pipeline;
        ChannelLifecycle& lifecycle;
    };
    ChannelCommands(ChannelContext& ctx, const Parts& parts)
        : ctx(ctx),
          rows(parts.rows),
          probes(parts.probes),
          statistics(parts.statistics),
          pipeline(parts.pipeline),
          lifecycle(parts.lifecycle) {}

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
    ChannelRows& rows;
    TargetProbes& probes;
    StreamStatistics& statistics;
    PipelineConfigurator& pipeline;
    ChannelLifecycle& lifecycle;
};
