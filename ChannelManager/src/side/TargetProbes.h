#pragma once

#include <string>

#include "datacom/Fcodes.h"
#include "ports/ChannelContext.h"

class ChannelRows;
class IChannelEvents;

// The reachability probes of a channel's unicast targets: one bounded thread
// per enabled target, each reporting "Target Connection OK" or "...Failed".
class TargetProbes {
public:
    TargetProbes(ChannelContext& ctx, ChannelRows& rows) : ctx(ctx), rows(rows) {}

    // Starts a bounded probe thread per enabled unicast target.
    datacom::Fcodes testConnectionToTarget(const std::string& rowId);
    // "ping -c 1", then "traceroute -I"; sends "Target Connection OK" or "...Failed".
    void traceroute(const std::string& rowId, const std::string& address);

private:
    // A probe thread outlives the operation that started it: it keeps the events only.
    static void probe(IChannelEvents& events, const std::string& rowId, const std::string& address);

    ChannelContext& ctx;
    ChannelRows& rows;
};
