#pragma once

#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "ports/ChannelContext.h"

// The KLV metadata branches of a channel: started while it plays and noted
// in its run book, stopped otherwise unless the other playing channel uses
// them.
class KlvBranches {
public:
    explicit KlvBranches(ChannelContext& ctx) : ctx(ctx) {}

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

private:
    datacom::Fcodes klvBranchesOfOther(int channel, std::vector<std::string>& used);
    datacom::Fcodes stopKlvBranches(const std::string& rowId, const std::vector<std::string>& branches);

    ChannelContext& ctx;
};
