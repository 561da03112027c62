#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "datacom/MessageEvent.h"
#include "settings/ChannelContext.h"
#include "settings/ChannelRows.h"

// The actions beside a channel's pipeline: SAP announcements, the KLV
// branches, the target probes, the front-panel LEDs, the stream statistics
// and the mediator's data-stream events. Each reads the channel rows and
// acts on the mediator, the device manager or the SAP announcer; none plays,
// stops or configures a channel. May call the settings below it only.
class SideActions {
public:
    // How a data-stream event asks for a bitrate change on the fly (a Zixi
    // link's request): rowId, total, max; the pipeline above carries it out.
    using BitrateChange = std::function<datacom::Fcodes(const std::string&, int, int)>;

    explicit SideActions(ChannelContext& ctx) : ctx(ctx), rows(ctx.holder) {}

    // Announce ("START_SAP") while the channel plays, withdraw ("STOP_SAP") otherwise.
    datacom::Fcodes sapAction(const std::string& rowId);
    // Starts the channel's KLV branches while it plays, noting them in its
    // run book; otherwise stops those of the book and those it names now.
    datacom::Fcodes klvAction(const std::string& rowId);
    // A stopped channel's second stop: the KLV branches of its run book that
    // an earlier stop could not stop are tried again.
    datacom::Fcodes klvStopLeftOver(const std::string& rowId);
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

    // `targetRowId` is a target row ("HEVC Target1" ... "H.264 Target2").
    datacom::Fcodes updateZixiStatistics(const std::string& targetRowId);
    datacom::Fcodes updateSrtStatistics(const std::string& targetRowId);
    // The number in front of `key` in a comma-separated statistics text; 0 without.
    static uint64_t parseZixiStat(const std::string& text, const std::string& key);
    // "Data Stream", "Zixi Connection Failed", "Zixi Change Bitrate Request"
    // (carried out through `changeBitrate`, under the holder lock),
    // "Srt New Client Request"; borrows the event.
    datacom::Fcodes handleDataStreamEvent(datacom::MessageEvent* event, const BitrateChange& changeBitrate);

private:
    datacom::Fcodes klvBranchesOfOther(int channel, std::vector<std::string>& used);
    datacom::Fcodes stopKlvBranches(const std::string& rowId, const std::vector<std::string>& branches);
    datacom::Fcodes zixiChangeBitrate(const datacom::MessageEvent& event, const BitrateChange& changeBitrate);
    datacom::Fcodes srtNewClient();

    ChannelContext& ctx;
    ChannelRows rows;
};
