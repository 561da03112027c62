#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"

namespace datacom {
class DataHolder;
}
class IChannelEvents;
struct PipelineRun;

// The channel configuration logic: the state machine of the two channels
// ("H.264" = channel 0, "HEVC" = channel 1), their whole pipeline
// configuration in the mediator, bitrates, input-format validation, stream
// statistics, data-stream events, SAP, KLV, target probes, LEDs and the
// tracking of the video sources.
//
// A working object: made on the stack for one operation and dropped. It keeps
// no state of its own; every decision reads and writes the channel rows of
// the holder's JSON datasets, every media action goes to the mediator through
// ITarnevelClient on the holder's engine, and events go out through
// IChannelEvents. The manager passes itself as both; tests pass a holder and
// an event recorder of their own.
//
// Locking: playChannel, stopChannel, handleTarnevelBranchEvent and
// handleDataStreamEvent hold the holder's recursive lock for their whole run;
// execute holds it around a forced stop. Other operations rely on the stores'
// own locks. Any thread may use an object; one object is not shared between
// threads.
//
// Results are Fcodes OR-merged over every step, "OK" (0x10000) when all
// steps succeeded.
//
// The implementation is split by concern: channel/ChannelCommands.cpp (command
// entry), channel/PlayStop.cpp (play, stop, start-up, branch
// events), channel/ChannelRows.cpp (row and branch mappings, bitrate backup),
// channel/EncoderReadback.cpp (effective encoder values), channel/InputFormatValidation.cpp
// (format tables and validation), channel/Bitrates.cpp, the pipeline
// sections (pipeline/), side/StreamStatistics.cpp,
// side/DataStreamEvents.cpp, side/SapAnnouncements.cpp, side/KlvBranches.cpp,
// side/TargetProbes.cpp, side/FrontPanelLeds.cpp and
// channel/VideoSources.cpp.
class ConfigChannelTarnevel {
public:
    ConfigChannelTarnevel(datacom::DataHolder& holder, IChannelEvents& events);
    ConfigChannelTarnevel(const ConfigChannelTarnevel&) = delete;
    ConfigChannelTarnevel& operator=(const ConfigChannelTarnevel&) = delete;

    // ---- Command entry, state machine and rows (channel/ChannelCommands.cpp,
    //      channel/PlayStop.cpp, channel/ChannelRows.cpp, channel/EncoderReadback.cpp) ----

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
    // Copies the effective encoder and multiplexer values into the summary.
    datacom::Fcodes updateChannel(const std::string& rowId);
    // Reads back what the encoder chose by itself into the encoder settings.
    datacom::Fcodes updateAutomaticParams(const std::string& rowId);
    // Start-up: configures both channels, replays those that were playing.
    datacom::Fcodes configChannels();
    datacom::Fcodes reconfigChannelFormat(const std::string& rowId);
    // Polls the branch every 5 ms; running out of time is not a failure.
    datacom::Fcodes waitWhileInTransition(const std::string& branch, const std::string& wantedState, int timeoutMs);
    // Borrows the event; checks it against the channel state, changes nothing.
    datacom::Fcodes handleTarnevelBranchEvent(datacom::MessageEvent* event);
    datacom::Fcodes getBranch(const std::string& rowId, const std::string& protocol, std::string& branch);
    datacom::Fcodes getRowId(const std::string& branch, std::string& rowId);
    // Instances of a component whose `keyProperty` equals `keyValue`, in
    // document order (a channel's targets or audio rows by "Channel ID").
    datacom::Fcodes getChildInstances(const std::string& dataSet, const std::string& component,
                                      const std::string& keyProperty, const std::string& keyValue,
                                      std::vector<std::string>& instances);
    // The same search over a component whose instances are an array: the
    // first matching index at or after 0, or after `index`; -1 when none.
    int getFirstChildRowId(const std::string& dataSet, const std::string& component, const std::string& keyProperty,
                           const std::string& keyValue);
    int getNextChildRowId(const std::string& dataSet, const std::string& component, const std::string& keyProperty,
                          const std::string& keyValue, int index);
    // Writes the non-zero backup bitrates back, then clears the backup.
    datacom::Fcodes restoreChannelParameters(const std::string& rowId);
    datacom::Fcodes clearChannelParametersBackup(const std::string& rowId);

    // ---- Input format validation (channel/InputFormatValidation.cpp) ----

    // "Unavailable" when the detected input cannot feed the channel's
    // encoding format at its frame sampling, or breaks the HEVC GOP rule.
    datacom::Fcodes validateInputFormat(const std::string& rowId);

    // ---- Bitrates (channel/Bitrates.cpp) ----

    // totalBitrate 0 on entry: the total from videoBitrate; otherwise the
    // video bitrate from the total. audioBitrate and klvBitrate are outputs.
    datacom::Fcodes calcBitrates(const std::string& rowId, int& totalBitrate, int& videoBitrate, float frameRate,
                                 int& audioBitrate, int& klvBitrate, bool pcrOnVideoPid);
    datacom::Fcodes changeBitrateOnTheFly(const std::string& rowId, int totalBitrate, int maxBitrate);
    // The Capped VBR "Bitrate Margin" in per cent, clamped to the overhead's
    // range with a log line under `op`; 0 when `video` is 0.
    static int32_t bitrateMargin(const char* op, const std::string& rowId, int64_t maxVideo, int64_t video);

    // ---- Pipeline configuration (pipeline/) ----

    // The channel's rows turned into the parameters of its mediator components.
    datacom::Fcodes configChannel(const std::string& rowId);
    // "Brightness", "Contrast", "Saturation", "Hue" of "ChannelAVSettings".
    // `pending`: apply the values being accepted (the store's pending
    // values, else the committed ones) instead of the committed values.
    datacom::Fcodes configAVSettings(const std::string& rowId, bool pending = false);
    // "Audio Gain" of an audio row ("H.264 Audio1" ...); `pending` as above.
    datacom::Fcodes configAudioGain(const std::string& audioRowId, bool pending = false);

    // ---- Stream statistics (side/StreamStatistics.cpp) and data-stream events (side/DataStreamEvents.cpp) ----

    // `targetRowId` is a target row ("HEVC Target1" ... "H.264 Target2").
    datacom::Fcodes updateZixiStatistics(const std::string& targetRowId);
    datacom::Fcodes updateSrtStatistics(const std::string& targetRowId);
    // The number in front of `key` in a comma-separated statistics text; 0 without.
    static uint64_t parseZixiStat(const std::string& text, const std::string& key);
    // "Data Stream", "Zixi Connection Failed", "Zixi Change Bitrate Request",
    // "Srt New Client Request"; borrows the event.
    datacom::Fcodes handleDataStreamEvent(datacom::MessageEvent* event);

    // ---- SAP, KLV, target probes and LEDs (side/SapAnnouncements.cpp, side/KlvBranches.cpp,
    //      side/TargetProbes.cpp, side/FrontPanelLeds.cpp) ----

    // Announce ("START_SAP") while the channel plays, withdraw ("STOP_SAP") otherwise.
    datacom::Fcodes sapAction(const std::string& rowId);
    // Starts the channel's KLV branch while it plays, stops it otherwise.
    datacom::Fcodes klvAction(const std::string& rowId);
    // While the channel plays: stops its KLV branches that run but that its
    // settings no longer name (unless the other playing channel uses them),
    // then starts the named ones as klvAction does. Run by configChannel.
    datacom::Fcodes klvFollowSettings(const std::string& rowId);
    // Starts a bounded probe thread per enabled unicast target.
    datacom::Fcodes testConnectionToTarget(const std::string& rowId);
    // "ping -c 1", then "traceroute -I"; sends "Target Connection OK" or "...Failed".
    void traceroute(const std::string& rowId, const std::string& address);
    // Sets the integer LED parameter `led` of the mediator's "Device".
    datacom::Fcodes setLed(const std::string& led, int value);
    datacom::Fcodes updateStreamAndErrorLeds();

    // ---- Video sources (channel/VideoSources.cpp) ----

    // Refreshes one source ("VideoSourceDataSet" row) and re-validates the
    // channels that use it.
    datacom::Fcodes updateVideoSource(const std::string& videoSource);
    // The same for an "Auto Detection Event" (Source = the source row); borrows it.
    datacom::Fcodes updateVideoSource(datacom::MessageEvent* event);
    datacom::Fcodes triggerVideoSource(const std::string& videoSource);

private:
    // ---- configChannel's sections, in the order they run ----
    // pipeline/PipelineRun.cpp
    void configPrologue(PipelineRun& run);          // 1: status, assembly, targets
    void readAudioRows(PipelineRun& run);           // after 3: the audio rows as it left them
    void readProcessingSettings(PipelineRun& run);  // 7
    // pipeline/VideoSections.cpp
    void configInputFormat(PipelineRun& run);      // 2
    void configSharedInput(PipelineRun& run);      // 3
    void configFrameRateRatio(PipelineRun& run);   // 4
    void configVideoInput(PipelineRun& run);       // 5
    void configGenlock(PipelineRun& run);          // 9
    void configVideoProcessing(PipelineRun& run);  // 13
    void configCrop(PipelineRun& run);             // 18
    void configVideoSwitch(PipelineRun& run);      // 21
    // pipeline/FormatFollowsInput.cpp
    void configFormatChange(PipelineRun& run);  // 8
    // pipeline/AudioSections.cpp
    void configAudioInput(PipelineRun& run);       // 6
    void configAudioSampleRate(PipelineRun& run);  // 10
    void configTestPatterns(PipelineRun& run);     // 11
    void configSdiOutput(PipelineRun& run);        // 12
    void configAudioEncoding(PipelineRun& run);    // 19 (HEVC) and 20 (H.264)
    // pipeline/EncoderSections.cpp
    void configEncodingResolution(PipelineRun& run);  // 14
    void configBitrates(PipelineRun& run);            // 15
    void configRateControl(PipelineRun& run);         // 16
    void configGopAndCoding(PipelineRun& run);        // 17
    void configCodingH264(PipelineRun& run);
    void configCodingHevc(PipelineRun& run);
    // pipeline/KlvSections.cpp
    void configKlvIngest(PipelineRun& run);   // 22
    void configKlvOverSdi(PipelineRun& run);  // 23
    void configEncryption(PipelineRun& run);  // 24
    // pipeline/MuxSection.cpp
    void configMultiplexer(PipelineRun& run);  // 25
    // pipeline/TargetSenders.cpp
    void configTargets(PipelineRun& run);  // 26
    void configUdpSender(PipelineRun& run, size_t target);
    void configRtspServer(PipelineRun& run, size_t target);
    void configZixiFeeder(PipelineRun& run, size_t target);
    void configSrtSender(PipelineRun& run, size_t target);
    void configRtmpServer(PipelineRun& run, size_t target);
    // pipeline/UnusedComponents.cpp
    void configUnusedComponents(PipelineRun& run);  // after 26: what this run does not use, off
    // pipeline/SummarySection.cpp
    void configSummary(PipelineRun& run);  // 27

    // ---- Side-action helpers (side/DataStreamEvents.cpp, channel/VideoSources.cpp) ----
    datacom::Fcodes zixiChangeBitrate(const datacom::MessageEvent& event);
    datacom::Fcodes srtNewClient();
    // Writes a source's detected format, makes its channels follow, tells the subscribers.
    datacom::Fcodes applyDetectedInput(const std::string& videoSource, const std::string& format);
    // One channel on the source follows its input; caller holds the holder lock.
    datacom::Fcodes followInput(const std::string& rowId, const std::string& videoSource);

    // ---- Command entry (channel/ChannelCommands.cpp) ----

    // One command on one channel row; "ALL" is expanded by execute.
    datacom::Fcodes activateRow(const std::string& rowId, const datacom::MessageCommand& command);
    datacom::Fcodes changeOnTheFly(const std::string& rowId, const datacom::MessageCommand& command);
    datacom::Fcodes changeOnTheFlyAll();
    datacom::Fcodes play(const std::string& rowId, const datacom::MessageCommand& command);
    datacom::Fcodes stop(const std::string& rowId, const datacom::MessageCommand& command);
    // The statistics commands on one target row.
    datacom::Fcodes zixiStatistics(const std::string& targetRowId, const datacom::MessageCommand& command);
    datacom::Fcodes srtStatistics(const std::string& targetRowId, const datacom::MessageCommand& command);
    // The forced stop: "Fcode" 0x20020, then stopChannel, under the holder lock.
    datacom::Fcodes forcedStop(const std::string& rowId);
    // The instances of "ChannelsTable": the rows "ALL" stands for.
    std::vector<std::string> channelRows();

    // ---- State machine helpers (channel/PlayStop.cpp) ----

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

    // ---- Read-back (channel/EncoderReadback.cpp) ----

    // The effective encoder and multiplexer values into the encoder settings.
    datacom::Fcodes writeBackEncoderSettings(const std::string& rowId);

    // ---- Bitrates (channel/Bitrates.cpp) ----

    datacom::Fcodes readKlvBitrate(const std::string& ingest, int& bitrate);
    // The per-channel floors of the video bitrate and of the maximum, shared
    // by a configuration and an on-the-fly change; logs under `operation`.
    datacom::Fcodes applyBitrateFloors(const char* operation, const std::string& rowId, float frameRate,
                                       bool pcrOnVideoPid, int& video, int& total, int& max, bool& totalRaised,
                                       bool& maxRaised);
    // The encoder's "Bitrate Margin" for a video bitrate and a maximum.
    datacom::Fcodes encoderMargin(const char* operation, const std::string& rowId, const std::string& rateControl,
                                  bool encodeVideo, int video, int max, float frameRate, bool pcrOnVideoPid,
                                  int& margin);
    void setEncoderOnTheFly(const std::string& rowId, const std::string& component, const std::string& parameter,
                            int value);

    datacom::DataHolder& holder;
    IChannelEvents& events;
};
