#include <algorithm>
#include <string>
#include <vector>

#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "datacom/WireConstants.h"
#include "model/ChannelRunBook.h"
#include "ports/ChannelStore.h"
#include "ports/IChannelEvents.h"
#include "ports/Mediator.h"
#include "side/KlvBranches.h"
#include "side/SideActionSupport.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

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
// appliance) is left alone, statistics included. Both kinds go into the
// channel's run book. Otherwise (the channel stops) the branches of the run
// book and those the settings name now that the mediator reports "RUN" are
// stopped, unless the other channel plays and uses the same branch: an
// ingest or device setting changed while the channel played does not leave
// the branch of the play running.

namespace {

const char* const FORMAT_COT = "COT";
const char* const FORMAT_KLV = "KLV";
const char* const ENCAPSULATION_TS = "TS";
const char* const ENCAPSULATION_RAW = "RAW";
constexpr ChannelRunBook::Kind KLV = ChannelRunBook::Kind::Klv;

// The branch of one ingest setting ("" for "None" or an unknown setting) and
// the device manager's command that resets its statistics.
Fcodes klvBranchOf(ChannelStore& store, const std::string& ingest, int channel, std::string& branch,
                   const char*& resetCommand) {
    branch.clear();
    resetCommand = nullptr;
    std::string setting;
    if (ingest == value::KLV_SERIAL) {
        Fcodes read = store.requestGetTextParam(wire::SOCK_DEV, ds::DEVICE, tbl::KLV_TABLE, prop::INPUT_DATA_FORMAT,
                                                setting, "") |
                      FC_OK;
        if (setting == FORMAT_COT)
            branch = med::KLV_O_SERIAL;
        if (setting == FORMAT_KLV)
            branch = med::RAW_KLV_O_SERIAL;
        resetCommand = cmd::RESET_KLV_STATISTICS;
        return read;
    }
    if (ingest == value::KLV_IP) {
        Fcodes read =
            store.requestGetTextParam(wire::SOCK_DEV, ds::DEVICE, tbl::KLV_OVER_IP, prop::ENCAPSULATION, setting, "") |
            FC_OK;
        if (setting == ENCAPSULATION_TS)
            branch = med::KLV_O_IP;
        if (setting == ENCAPSULATION_RAW)
            branch = med::RAW_KLV_O_IP;
        resetCommand = cmd::RESET_KLVOIP_STATISTICS;
        return read;
    }
    if (ingest == value::KLV_SDI_SYNC)
        branch = med::KLV_O_SDI[channel];
    if (ingest == value::KLV_SDI)
        branch = med::KLV_O_SDI_ASYNC;
    if (!branch.empty())
        resetCommand = cmd::RESET_KLVOSDI_STATISTICS;
    return FC_OK;
}

// The distinct KLV branches of a channel, with their reset commands.
Fcodes klvBranches(ChannelStore& store, const std::string& rowId, std::vector<std::string>& branches,
                   std::vector<const char*>& resets) {
    const int channel = channelIndex(rowId);
    Fcodes result = FC_OK;
    for (const char* property : {prop::INGEST_KLV, prop::INGEST_KLV2}) {
        std::string ingest, branch;
        const char* reset = nullptr;
        result |= store.getTextParam(ds::CHANNEL, tbl::PROCESSING, property, ingest, rowId) | FC_OK;
        result |= klvBranchOf(store, ingest, channel, branch, reset);
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

bool contains(const std::vector<std::string>& list, const std::string& item) {
    return std::find(list.begin(), list.end(), item) != list.end();
}

Fcodes deviceCommand(ChannelStore& store, const char* id) {
    MessageCommand command;
    command.setId(id);
    std::string text, result;
    command.toString(text);
    return store.requestCommand(wire::SOCK_DEV, text, result, peer::REQUEST_TIMEOUT_SEC, peer::REQUEST_TRIES) | FC_OK;
}

}  // namespace

// The KLV branches the other channel uses while it plays: those its settings
// name and those in its run book; none when it does not play.
Fcodes KlvBranches::klvBranchesOfOther(int channel, std::vector<std::string>& used) {
    const std::string other = row::otherChannel(channel);
    std::string otherState;
    if (!isOk(ctx.store.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, otherState, other)) ||
        !isPlaying(otherState))
        return FC_OK;
    std::vector<const char*> unused;
    const Fcodes result = klvBranches(ctx.store, other, used, unused);
    for (const std::string& booked : ctx.runBook.branches(other, KLV))
        if (!contains(used, booked))
            used.push_back(booked);
    return result;
}

// Stops those of `branches` that run, except the ones the other playing
// channel uses: those pass to its run book, so that its stop stops them.
// A branch leaves this channel's book once it is known not to run; one whose
// state is unknown or whose stop was refused is kept (added if need be), and
// the channel's next stop tries it again.
Fcodes KlvBranches::stopKlvBranches(const std::string& rowId, const std::vector<std::string>& branches) {
    ChannelRunBook& book = ctx.runBook;
    std::vector<std::string> otherUses;
    Fcodes result = FC_OK | klvBranchesOfOther(channelIndex(rowId), otherUses);
    for (const std::string& branch : branches) {
        if (contains(otherUses, branch)) {
            book.removeBranch(rowId, branch, KLV);
            book.addBranch(row::otherChannel(channelIndex(rowId)), branch, KLV);
            continue;
        }
        std::string branchState;
        const Fcodes read = ctx.mediator.branchState(branch, branchState);
        result |= read;
        if (!isOk(read))
            continue;
        if (branchState != state::BRANCH_RUN) {
            book.removeBranch(rowId, branch, KLV);
            continue;
        }
        const Fcodes stopped = ctx.mediator.stopBranch(branch, true, med::STOP_TIMEOUT_SEC);
        if (isOk(stopped)) {
            DBG(DBG_INFO) << "klvAction: called stopTarnevelBranch branch=" << branch;
            book.removeBranch(rowId, branch, KLV);
        } else {
            DBG(DBG_ERROR) << "klvAction: Failed stopTarnevelBranch branch=" << branch << " fcode=0x" << std::hex
                           << static_cast<uint32_t>(stopped);
            book.addBranch(rowId, branch, KLV);
        }
        result |= stopped;
    }
    return result;
}

Fcodes KlvBranches::klvAction(const std::string& rowId) {
    const int channel = channelIndex(rowId);
    if (channel < 0)
        return FC_BAD_VALUE;
    std::string state;
    Fcodes result = FC_OK | ctx.store.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state, rowId);
    if (!isOk(result))
        return result;
    std::vector<std::string> branches;
    std::vector<const char*> resets;
    result |= klvBranches(ctx.store, rowId, branches, resets);

    if (!isPlaying(state)) {
        // What the play started, whatever the settings name now, then what they name.
        std::vector<std::string> toStop = ctx.runBook.branches(rowId, KLV);
        for (const std::string& branch : branches)
            if (!contains(toStop, branch))
                toStop.push_back(branch);
        return result | stopKlvBranches(rowId, toStop);
    }

    for (size_t i = 0; i < branches.size(); ++i) {
        const std::string& branch = branches[i];
        std::string branchState;
        Fcodes read = ctx.mediator.branchState(branch, branchState);
        result |= read;
        if (!isOk(read))
            continue;
        // Found running, it is this channel's to stop too (unless the other
        // channel still uses it then).
        if (branchState == state::BRANCH_RUN)
            ctx.runBook.addBranch(rowId, branch, KLV);
        if (branchState != state::BRANCH_STOP)
            continue;
        Fcodes started = ctx.mediator.startBranch(branch, true, med::START_TIMEOUT_SEC);
        if (isOk(started)) {
            DBG(DBG_INFO) << "klvAction: called startTarnevelBranch branch=" << branch;
            ctx.runBook.addBranch(rowId, branch, KLV);
            result |= deviceCommand(ctx.store, resets[i]);
        } else {
            DBG(DBG_ERROR) << "klvAction: Failed startTarnevelBranch branch=" << branch << " fcode=0x" << std::hex
                           << static_cast<uint32_t>(started);
        }
        result |= started;
    }
    return result;
}

Fcodes KlvBranches::klvStopLeftOver(const std::string& rowId) {
    const std::vector<std::string> left = ctx.runBook.branches(rowId, KLV);
    return left.empty() ? FC_OK : stopKlvBranches(rowId, left);
}

// The ingest of a playing channel changed (its configuration ran while
// "Playing" or "Played"): the branch started for the old setting would run
// on until the channel stops. So each KLV branch this channel can start that
// runs but is no longer named is stopped here, unless the other playing
// channel uses it; then the named ones are started as a play starts them.
Fcodes KlvBranches::klvFollowSettings(const std::string& rowId) {
    const int channel = channelIndex(rowId);
    std::string state;
    if (channel < 0 || !isOk(ctx.store.getTextParam(ds::CHANNEL, tbl::CHANNELS, prop::STATE, state, rowId)) ||
        !isPlaying(state))
        return FC_OK;
    std::vector<std::string> named;
    std::vector<const char*> resets;
    Fcodes result = FC_OK | klvBranches(ctx.store, rowId, named, resets);
    std::vector<std::string> unnamed;
    for (const char* branch : {med::KLV_O_SERIAL, med::RAW_KLV_O_SERIAL, med::KLV_O_IP, med::RAW_KLV_O_IP,
                               med::KLV_O_SDI[channel], med::KLV_O_SDI_ASYNC})
        if (!contains(named, branch))
            unnamed.push_back(branch);
    result |= stopKlvBranches(rowId, unnamed);
    return result | klvAction(rowId);
}
