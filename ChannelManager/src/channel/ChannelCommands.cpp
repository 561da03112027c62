#include <cstdlib>
#include <mutex>

#include "vocab/ChannelVocabulary.h"
#include "channel/ConfigChannelTarnevel.h"
#include "channel/IChannelEvents.h"
#include "holder/DataHolder.h"
#include "system/DbgPrintClient.h"

using namespace vocab;

// The channel commands the manager forwards: "ACTIVATE_ROW", "Change
// on-the-fly", "Play", "Stop" and the two statistics commands, addressed by
// "RowID" to one channel or to "ALL" ("0" meaning "ALL").

namespace {

// A number as the front end writes it: decimal, "0x" hexadecimal or octal.
int toNumber(const std::string& text) {
    return static_cast<int>(std::strtol(text.c_str(), nullptr, 0));
}

}  // namespace

Fcodes ConfigChannelTarnevel::execute(const std::string& commandText, std::string&) {
    MessageCommand command;
    if (!isOk(command.initFromString(commandText))) {
        DBG(2) << "execute: Not found tags in:\n" << commandText;
        return FC_BODY_ERROR;
    }
    const std::string& name = command.getId();
    std::string rowId = row::ALL;
    command.getParam(cmd::PARAM_ROW_ID, rowId);
    if (rowId == row::ALL_NUMERIC)
        rowId = row::ALL;
    DBG(0) << "execute: RowID=" << rowId;

    // The statistics commands name a target row, not a channel.
    if (rowId != row::ALL && !isChannelRow(rowId)) {
        if (name == cmd::UPDATE_ZIXI_STATISTICS) {
            updateZixiStatistics(rowId);
            return FC_OK;
        }
        if (name == cmd::UPDATE_SRT_STATISTICS) {
            updateSrtStatistics(rowId);
            return FC_OK;
        }
        DBG(2) << "execute: Unexpected rowId=" << rowId << " in command=" << name;
        return FC_BAD_VALUE;
    }

    if (name == cmd::STOP)
        return rowId == row::ALL ? stopAll() : forcedStop(rowId);

    using Handler = Fcodes (ConfigChannelTarnevel::*)(const std::string&, const MessageCommand&);
    struct Entry {
        const char* id;
        Handler handler;
    };
    static const Entry kHandlers[] = {
        {cmd::ACTIVATE_ROW, &ConfigChannelTarnevel::activateRow},
        {cmd::CHANGE_ON_THE_FLY, &ConfigChannelTarnevel::changeOnTheFly},
        {cmd::PLAY, &ConfigChannelTarnevel::play},
    };
    for (const Entry& entry : kHandlers) {
        if (name != entry.id)
            continue;
        // "ALL" runs "ACTIVATE_ROW" and "Play" on every channel, as "Stop" does.
        if (rowId != row::ALL)
            return (this->*entry.handler)(rowId, command);
        // An on-the-fly change acts on one channel only: for any other row,
        // "ALL" (also a missing "RowID") included, it answers "OK" and does
        // nothing, as changeBitrateOnTheFly does for a row that is no channel.
        if (entry.handler == &ConfigChannelTarnevel::changeOnTheFly) {
            DBG(1) << "execute: " << name << " needs one channel, rowId=" << rowId << " ignored";
            return FC_OK;
        }
        Fcodes result = FC_OK;
        for (const std::string& channel : channelRows())
            result |= (this->*entry.handler)(channel, command);
        return result;
    }
    // Any other command on a channel has nothing to do here.
    return FC_OK;
}

std::vector<std::string> ConfigChannelTarnevel::channelRows() {
    std::vector<std::string> rows;
    holder.getInstances(ds::CHANNEL, tbl::CHANNELS, rows);
    return rows;
}

Fcodes ConfigChannelTarnevel::activateRow(const std::string& rowId, const MessageCommand&) {
    DBG(0) << "execute: ACTIVATE_ROW_CMD rowId=" << rowId;
    Fcodes result = holder.initBoolParam(ds::CHANNEL, tbl::SOURCE, prop::FORMAT_CHANGED, false, rowId);
    const Fcodes configured = configChannel(rowId);
    DBG(0) << "execute: configChannel rowId=" << rowId << " fcode=0x" << std::hex
           << static_cast<uint32_t>(configured);
    const Fcodes updated = updateChannel(rowId);
    DBG(0) << "execute: updateChannel rowId=" << rowId << " fcode=0x" << std::hex << static_cast<uint32_t>(updated);
    result |= configured | updated;
    if (!isOk(result))
        return result;
    events.sendEvent(ev::CHANNEL_CONFIGURED, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO, "");
    testConnectionToTarget(rowId);
    return FC_OK;
}

// Only a request that names both bitrates changes anything; a request equal
// to the current settings is answered without touching the encoder.
Fcodes ConfigChannelTarnevel::changeOnTheFly(const std::string& rowId, const MessageCommand& command) {
    std::string totalText, maxText;
    if (command.getParam(cmd::PARAM_TOTAL_BITRATE, totalText) == 0 ||
        command.getParam(cmd::PARAM_MAX_BITRATE, maxText) == 0 || totalText.empty() || maxText.empty())
        return FC_OK;
    const int total = toNumber(totalText);
    const int max = toNumber(maxText);
    int currentTotal = 0, currentMax = 0;
    const Fcodes reads =
        holder.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::TOTAL_BITRATE, currentTotal, rowId) |
        holder.getIntParam(ds::CHANNEL, tbl::PROCESSING, prop::MAX_BITRATE, currentMax, rowId);
    if (isOk(reads) && currentTotal == total && currentMax == max)
        return FC_OK;
    DBG(0) << "execute: req=" << command.getId() << " param=" << cmd::PARAM_TOTAL_BITRATE << " val=" << total
           << " param=" << cmd::PARAM_MAX_BITRATE << " val=" << max;
    return changeBitrateOnTheFly(rowId, total, max);
}

Fcodes ConfigChannelTarnevel::play(const std::string& rowId, const MessageCommand&) {
    const Fcodes result = playChannel(rowId) | FC_OK;
    testConnectionToTarget(rowId);
    return result;
}

Fcodes ConfigChannelTarnevel::forcedStop(const std::string& rowId) {
    std::lock_guard<DataHolder> guard(holder);
    DBG(0) << "execute: STOP_CMD: setting forced stop fcode=" << std::hex << cond::FORCED_STOP;
    Fcodes result = holder.initIntParam(ds::CHANNEL, tbl::CHANNELS, prop::FCODE, static_cast<int>(cond::FORCED_STOP), rowId);
    result |= stopChannel(rowId);
    return result | FC_OK;
}

Fcodes ConfigChannelTarnevel::stopAll() {
    Fcodes result = FC_OK;
    for (const std::string& channel : channelRows())
        result |= forcedStop(channel);
    return result | events.sapStopAll();
}
