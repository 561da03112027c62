#include <string>
#include <vector>

#include "datacom/DataHolder.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "datacom/WireConstants.h"
#include "side/SideActionSupport.h"
#include "side/SideActions.h"
#include "tarnevel/ITarnevelClient.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;
using namespace tarnevel;

using namespace vocab;

// The KLV metadata branch of a channel, chosen from its "Ingest KLV" and
// "Ingest KLV2" and, for serial and IP ingest, the device manager's KLV
// settings.
//
// The rule: while the channel is "Played" or "Playing", each of its KLV
// branches that the mediator reports "STOP" is started (synchronously, 20 s)
// and the device manager's statistics of that ingest are reset, so that the
// counters describe this run. A branch already running (shared with the
// other channel: the serial, IP and asynchronous SDI branches are one per
// appliance) is left alone, statistics included. Otherwise (the channel
// stops) a branch reported "RUN" is stopped, unless the other channel plays
// and uses the same branch.

namespace {

const char* const KLV_O_SERIAL = "KLVoSerial";
const char* const RAW_KLV_O_SERIAL = "RAWKLVoSerial";
const char* const KLV_O_IP = "KLVoIP";
const char* const RAW_KLV_O_IP = "RAWKLVoIP";
const char* const KLV_O_SDI_ASYNC = "KLVoSDI Async";
const char* const KLV_O_SDI[2] = {"KLVoSDI CH0", "KLVoSDI CH1"};  // synchronous, one per channel
const char* const FORMAT_COT = "COT";
const char* const FORMAT_KLV = "KLV";
const char* const ENCAPSULATION_TS = "TS";
const char* const ENCAPSULATION_RAW = "RAW";

// The branch of one ingest setting ("" for "None" or an unknown setting) and
// the device manager's command that resets its statistics.
Fcodes klvBranchOf(DataHolder& holder, const std::string& ingest, int channel, std::string& branch,
                   const char*& resetCommand) {
    branch.clear();
    resetCommand = nullptr;
    std::string setting;
    if (ingest == value::KLV_SERIAL) {
        Fcodes read = holder.requestGetTextParam(wire::SOCK_DEV, ds::DEVICE, tbl::KLV_TABLE, prop::INPUT_DATA_FORMAT,
                                                 setting, "") |
                      FC_OK;
        if (setting == FORMAT_COT)
            branch = KLV_O_SERIAL;
        if (setting == FORMAT_KLV)
            branch = RAW_KLV_O_SERIAL;
        resetCommand = cmd::RESET_KLV_STATISTICS;
        return read;
    }
    if (ingest == value::KLV_IP) {
        Fcodes read =
            holder.requestGetTextParam(wire::SOCK_DEV, ds::DEVICE, tbl::KLV_OVER_IP, prop::ENCAPSULATION, setting, "") |
            FC_OK;
        if (setting == ENCAPSULATION_TS)
            branch = KLV_O_IP;
        if (setting == ENCAPSULATION_RAW)
            branch = RAW_KLV_O_IP;
        resetCommand = cmd::RESET_KLVOIP_STATISTICS;
        return read;
    }
    if (ingest == value::KLV_SDI_SYNC)
        branch = KLV_O_SDI[channel];
    if (ingest == value::KLV_SDI)
        branch = KLV_O_SDI_ASYNC;
    if (!branch.empty())
        resetCommand = cmd::RESET_KLVOSDI_STATISTICS;
    return FC_OK;
}

// The distinct KLV branches of a channel, with their reset commands.
Fcodes klvBranches(DataHolder& holder, const std::string& rowId, std::vector<std::string>& branches,
                   std::vector<const char*>& resets) {
    const int channel = channelIndex(rowId);
    Fcodes result = FC_OK;
    for (const char* property : {prop::INGEST_KLV, prop::INGEST_KLV2}) {
        std::string ingest, branch;
        const char* reset = nullptr;
        result |= holder.getTextParam(ds::CHANNEL, tbl::PROCESSING, property, ingest, rowId) | FC_OK;
        result |= klvBranchOf(holder, ingest, channel, branch, reset);
        bool seen = branch.empty();
        for (const std::string& known : branches)
            seen = seen || known == branch;
        if (seen)
            continue;
        branches.push_back(branch);
        resets.push_back(reset);
    }
    return result;
}

bool isPlaying(const std::string& state) {
    return state == state::PLAYING || state == state::PLAYED;
}

Fcodes deviceCommand(DataHolder& holder, const char* id) {
    MessageCommand command;
    command.setId(id);
    std::string text, result;
    command.toString(text);
    return holder.requestCommand(wire::SOCK_DEV, text, result, 10, 3) | FC_OK;
}

}  // namespace

Fcodes SideActions::klvAction(const std::string& rowId) {
    const int channel = channelIndex(rowId);
    if (channel < 0)
        return FC_BAD_VALUE;
    std::string state;
    Fcodes result = FC_OK | ctx.holder.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state, rowId);
    if (!isOk(result))
        return result;
    std::vector<std::string> branches;
    std::vector<const char*> resets;
    result |= klvBranches(ctx.holder, rowId, branches, resets);

    // The other channel's branches, to keep shared branches running for it.
    const std::string other = row::otherChannel(channel);
    std::string otherState;
    std::vector<std::string> otherBranches;
    std::vector<const char*> unused;
    if (!isPlaying(state) &&
        isOk(ctx.holder.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, otherState, other)) &&
        isPlaying(otherState))
        result |= klvBranches(ctx.holder, other, otherBranches, unused);

    for (size_t i = 0; i < branches.size(); ++i) {
        const std::string& branch = branches[i];
        std::string branchState;
        Fcodes read = ITarnevelClient::getTarnevelBranchState(&ctx.holder, branch, branchState);
        result |= read;
        if (!isOk(read))
            continue;
        if (isPlaying(state)) {
            if (branchState != state::BRANCH_STOP)
                continue;
            Fcodes started = ITarnevelClient::startTarnevelBranch(&ctx.holder, branch, true, 20);
            if (isOk(started)) {
                DBG(DBG_INFO) << "klvAction: called startTarnevelBranch branch=" << branch;
                result |= deviceCommand(ctx.holder, resets[i]);
            } else {
                DBG(DBG_ERROR) << "klvAction: Failed startTarnevelBranch branch=" << branch << " fcode=0x" << std::hex
                               << static_cast<uint32_t>(started);
            }
            result |= started;
            continue;
        }
        bool shared = false;
        for (const std::string& used : otherBranches)
            shared = shared || used == branch;
        if (shared || branchState != state::BRANCH_RUN)
            continue;
        Fcodes stopped = ITarnevelClient::stopTarnevelBranch(&ctx.holder, branch, true, 20);
        if (isOk(stopped))
            DBG(DBG_INFO) << "klvAction: called stopTarnevelBranch branch=" << branch;
        else
            DBG(DBG_ERROR) << "klvAction: Failed stopTarnevelBranch branch=" << branch << " fcode=0x" << std::hex
                           << static_cast<uint32_t>(stopped);
        result |= stopped;
    }
    return result;
}

// The ingest of a playing channel changed (its configuration ran while
// "Playing" or "Played"): the branch started for the old setting would run
// on, and a later stop only looks at the branches the new setting names. So
// each KLV branch this channel can start that runs but is no longer named is
// stopped here, unless the other playing channel uses it; then the named
// ones are started as a play starts them.
Fcodes SideActions::klvFollowSettings(const std::string& rowId) {
    const int channel = channelIndex(rowId);
    std::string state;
    if (channel < 0 || !isOk(ctx.holder.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state, rowId)) ||
        !isPlaying(state))
        return FC_OK;
    std::vector<std::string> named, otherNamed;
    std::vector<const char*> resets;
    Fcodes result = FC_OK | klvBranches(ctx.holder, rowId, named, resets);
    const std::string other = row::otherChannel(channel);
    std::string otherState;
    if (isOk(ctx.holder.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, otherState, other)) &&
        isPlaying(otherState))
        result |= klvBranches(ctx.holder, other, otherNamed, resets);

    const std::string candidates[] = {KLV_O_SERIAL, RAW_KLV_O_SERIAL,   KLV_O_IP,
                                      RAW_KLV_O_IP, KLV_O_SDI[channel], KLV_O_SDI_ASYNC};
    for (const std::string& branch : candidates) {
        bool used = false;
        for (const std::string& b : named)
            used = used || b == branch;
        for (const std::string& b : otherNamed)
            used = used || b == branch;
        std::string branchState;
        if (used || !isOk(ITarnevelClient::getTarnevelBranchState(&ctx.holder, branch, branchState)) ||
            branchState != state::BRANCH_RUN)
            continue;
        Fcodes stopped = ITarnevelClient::stopTarnevelBranch(&ctx.holder, branch, true, 20);
        if (isOk(stopped))
            DBG(DBG_INFO) << "klvAction: called stopTarnevelBranch branch=" << branch;
        else
            DBG(DBG_ERROR) << "klvAction: Failed stopTarnevelBranch branch=" << branch << " fcode=0x" << std::hex
                           << static_cast<uint32_t>(stopped);
        result |= stopped;
    }
    return result | klvAction(rowId);
}
