#pragma once

#include <memory>
#include <string>
#include <vector>

#include "channel/ChannelCommands.h"
#include "channel/ChannelLifecycle.h"
#include "channel/VideoSourceTracker.h"
#include "datacom/Fcodes.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"
#include "model/ChannelRows.h"
#include "pipeline/PipelineConfigurator.h"
#include "ports/ChannelContext.h"
#include "ports/HolderMediator.h"
#include "ports/HolderStore.h"
#include "side/DataStreamEvents.h"
#include "side/FrontPanelLeds.h"
#include "side/KlvBranches.h"
#include "side/SapAnnouncements.h"
#include "side/StreamStatistics.h"
#include "side/TargetProbes.h"

namespace datacom {
class DataHolder;
}
class ChannelRunBook;
class IChannelEvents;

// The channel logic as the manager calls it, for the two channels ("H.264"
// = channel 0, "HEVC" = channel 1): each operation hands over to the part
// that owns it. Below it, arrows run one way only:
//   channel/   ChannelCommands (the command entry), ChannelLifecycle (play,
//              stop, start-up, branch events), VideoSourceTracker;
//   pipeline/  PipelineConfigurator (a run and its sections, on-the-fly
//              bitrates, the encoder read-back);
//   side/      SapAnnouncements, KlvBranches, TargetProbes, FrontPanelLeds,
//              StreamStatistics, DataStreamEvents;
//   model/     the channel's data and rules: ChannelRows, ChannelSnapshot,
//              the bitrate model, the input validation, the format tables,
//              the run book;
//   ports/     what the logic talks through: ChannelStore, Mediator, their
//              holder adapters, IChannelEvents and ChannelContext.
//
// A working object: made on the stack for one operation and dropped. It makes
// each part once and lends it by reference to the parts that call it. It
// keeps no state of its own; every decision reads and writes the channel rows
// through ChannelStore, every media action goes to the mediator through
// Mediator (served by the holder, or by the caller's ports), and events go
// out through IChannelEvents. The run book is the caller's: it outlives the
// object. The manager passes itself as holder and events and lends its book;
// tests pass a holder (or in-memory ports), an event recorder and a book.
//
// Locking: playChannel, stopChannel, handleTarnevelBranchEvent and
// handleDataStreamEvent hold the rows' recursive lock for their whole run;
// execute holds it around a forced stop. Other operations rely on the stores'
// own locks. Any thread may use an object; one object is not shared between
// threads.
//
// Results are Fcodes OR-merged over every step, "OK" (0x10000) when all
// steps succeeded.
class ConfigChannelTarnevel {
public:
    // Rows and mediator both served by `holder`.
    ConfigChannelTarnevel(datacom::DataHolder& holder, IChannelEvents& events, ChannelRunBook& runBook);
    // Rows and mediator of the caller's (tests: in memory).
    ConfigChannelTarnevel(ChannelStore& store, Mediator& mediator, IChannelEvents& events, ChannelRunBook& runBook);
    ConfigChannelTarnevel(const ConfigChannelTarnevel&) = delete;
    ConfigChannelTarnevel& operator=(const ConfigChannelTarnevel&) = delete;

    // ---- Commands and the state machine (channel/) ----
    // "ACTIVATE_ROW", "Change on-the-fly", "Play", "Stop" and the two
    // statistics commands, as the manager parsed them, with "RowID" naming a
    // channel, "ALL" or "0" (a target row for the statistics commands).
    datacom::Fcodes execute(const datacom::MessageCommand& command);
    datacom::Fcodes playChannel(const std::string& rowId);
    // "Stop" on "ALL": a forced stop of every channel, then "STOP ALL SAP".
    datacom::Fcodes stopAll();
    // A second stop of a stopped or stopping channel does nothing.
    datacom::Fcodes stopChannel(const std::string& rowId);
    // Raises "Channel Error" when a playing channel's video input is gone.
    datacom::Fcodes updateChannelStatus(const std::string& rowId);
    // Start-up: configures both channels, replays those that were playing.
    datacom::Fcodes configChannels();
    datacom::Fcodes reconfigChannelFormat(const std::string& rowId);
    // Polls the branch every 5 ms; running out of time is not a failure.
    datacom::Fcodes waitWhileInTransition(const std::string& branch, const std::string& wantedState, int timeoutMs);
    // Borrows the event; checks it against the channel state, changes nothing.
    datacom::Fcodes handleTarnevelBranchEvent(datacom::MessageEvent* event);
    // Refreshes one source ("VideoSourceDataSet" row) and re-validates the
    // channels that use it.
    datacom::Fcodes updateVideoSource(const std::string& videoSource);
    // The same for an "Auto Detection Event" (Source = the source row); borrows it.
    datacom::Fcodes updateVideoSource(datacom::MessageEvent* event);
    datacom::Fcodes triggerVideoSource(const std::string& videoSource);

    // ---- Rows and validation (model/) ----
    datacom::Fcodes getBranch(const std::string& rowId, const std::string& protocol, std::string& branch);
    datacom::Fcodes getRowId(const std::string& branch, std::string& rowId);
    datacom::Fcodes getChildInstances(const std::string& dataSet, const std::string& component,
                                      const std::string& keyProperty, const std::string& keyValue,
                                      std::vector<std::string>& instances);
    int getFirstChildRowId(const std::string& dataSet, const std::string& component, const std::string& keyProperty,
                           const std::string& keyValue);
    int getNextChildRowId(const std::string& dataSet, const std::string& component, const std::string& keyProperty,
                          const std::string& keyValue, int index);
    datacom::Fcodes restoreChannelParameters(const std::string& rowId);
    datacom::Fcodes clearChannelParametersBackup(const std::string& rowId);
    datacom::Fcodes validateInputFormat(const std::string& rowId);

    // ---- Pipeline configuration and bitrates (pipeline/) ----
    datacom::Fcodes configChannel(const std::string& rowId);
    datacom::Fcodes configAVSettings(const std::string& rowId, bool pending = false);
    datacom::Fcodes configAudioGain(const std::string& audioRowId, bool pending = false);
    datacom::Fcodes calcBitrates(const std::string& rowId, int& totalBitrate, int& videoBitrate, float frameRate,
                                 int& audioBitrate, int& klvBitrate, bool pcrOnVideoPid);
    datacom::Fcodes changeBitrateOnTheFly(const std::string& rowId, int totalBitrate, int maxBitrate);
    datacom::Fcodes updateChannel(const std::string& rowId);
    datacom::Fcodes updateAutomaticParams(const std::string& rowId);

    // ---- Side actions (side/) ----
    datacom::Fcodes updateZixiStatistics(const std::string& targetRowId);
    datacom::Fcodes updateSrtStatistics(const std::string& targetRowId);
    // "Data Stream", "Zixi Connection Failed", "Zixi Change Bitrate Request"
    // (an on-the-fly change), "Srt New Client Request"; borrows the event.
    datacom::Fcodes handleDataStreamEvent(datacom::MessageEvent* event);
    datacom::Fcodes sapAction(const std::string& rowId);
    datacom::Fcodes klvAction(const std::string& rowId);
    datacom::Fcodes klvFollowSettings(const std::string& rowId);
    datacom::Fcodes testConnectionToTarget(const std::string& rowId);
    void traceroute(const std::string& rowId, const std::string& address);
    datacom::Fcodes setLed(const std::string& led, int value);
    datacom::Fcodes updateStreamAndErrorLeds();

private:
    // `store` and `mediator` when the caller's, otherwise the owned adapters.
    ConfigChannelTarnevel(std::unique_ptr<HolderStore> ownStore, std::unique_ptr<HolderMediator> ownMediator,
                          ChannelStore* store, Mediator* mediator, IChannelEvents& events, ChannelRunBook& runBook);

    // In the order they are made: each part is lent only parts made before it.
    // The holder's adapters when the daemon's holder serves the ports.
    std::unique_ptr<HolderStore> holderStore;
    std::unique_ptr<HolderMediator> holderMediator;
    ChannelContext ctx;
    ChannelRows rows;
    SapAnnouncements sap;
    KlvBranches klv;
    TargetProbes probes;
    FrontPanelLeds leds;
    StreamStatistics statistics;
    DataStreamEvents dataStreams;
    PipelineConfigurator pipeline;
    ChannelLifecycle lifecycle;
    VideoSourceTracker sources;
    ChannelCommands commands;
};
