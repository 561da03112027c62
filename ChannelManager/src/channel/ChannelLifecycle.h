#pragma once

#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "datacom/MessageEvent.h"
#include "ports/ChannelContext.h"

class ChannelRows;
class FrontPanelLeds;
class KlvBranches;
class PipelineConfigurator;
class SapAnnouncements;

// Play, stop and the state machine of a channel ("Stopped" -> "Played" ->
// "Playing" -> "Stopping" -> "Stopped"): start-up, the forced stop, the
// branch-event check and the run book of started branches. Play, stop and
// the branch-event check hold the rows' recursive lock for their whole run.
// May call the pipeline, the side actions and the model below.
class ChannelLifecycle {
public:
    struct Parts {
        ChannelRows& rows;
        SapAnnouncements& sap;
        KlvBranches& klv;
        FrontPanelLeds& leds;
        PipelineConfigurator& pipeline;
    };
    ChannelLifecycle(ChannelContext& ctx, const Parts& parts)
        : ctx(ctx), rows(parts.rows), sap(parts.sap), klv(parts.klv), leds(parts.leds), pipeline(parts.pipeline) {}

    datacom::Fcodes playChannel(const std::string& rowId);
    // A second stop of a stopped or stopping channel does nothing.
    datacom::Fcodes stopChannel(const std::string& rowId);
    // The operator's stop: "Fcode" 0x20020, then stopChannel, under the rows' lock.
    datacom::Fcodes forcedStop(const std::string& rowId);
    // A forced stop of every channel, then "STOP ALL SAP".
    datacom::Fcodes stopAll();
    // Raises "Channel Error" when a playing channel's video input is gone.
    datacom::Fcodes updateChannelStatus(const std::string& rowId);
    // Start-up: configures both channels, replays those that were playing.
    datacom::Fcodes configChannels();
    datacom::Fcodes reconfigChannelFormat(const std::string& rowId);
    // Polls the branch every 5 ms; running out of time is not a failure.
    datacom::Fcodes waitWhileInTransition(const std::string& branch, const std::string& wantedState, int timeoutMs);
    // Borrows the event; checks it against the channel state, changes nothing.
    datacom::Fcodes handleTarnevelBranchEvent(datacom::MessageEvent* event);

private:
    // Starts the branch of every enabled target in state "STOP". On a failed
    // start: "Channel Play Error", stopChannel, and `failed` is set with the
    // start's code in `result`. Otherwise `result` holds the code of the last
    // target visited (reads and branch lookup).
    void startTargets(const std::string& rowId, const std::vector<std::string>& targets, datacom::Fcodes& result,
                      bool& failed);
    // Stops the running branches of one kind (Zixi or not) among `branches`;
    // sets `stopFailed` when a stop was refused.
    datacom::Fcodes stopTargets(const std::string& rowId, const std::vector<std::string>& branches, bool zixi,
                                bool& stopFailed);
    // The branches a stop of the channel stops: those it started, then those
    // of its enabled targets now.
    datacom::Fcodes branchesToStop(const std::string& rowId, std::vector<std::string>& branches);

    ChannelContext& ctx;
    ChannelRows& rows;
    SapAnnouncements& sap;
    KlvBranches& klv;
    FrontPanelLeds& leds;
    PipelineConfigurator& pipeline;
};
