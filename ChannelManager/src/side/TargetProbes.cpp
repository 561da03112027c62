#include <arpa/inet.h>

#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "datacom/DbgPrintClient.h"
#include "model/ChannelRows.h"
#include "ports/ChannelStore.h"
#include "ports/IChannelEvents.h"
#include "ports/Mediator.h"
#include "side/BoundedCommand.h"
#include "side/ProbeRegistry.h"
#include "side/SideActionSupport.h"
#include "side/TargetProbes.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace datacom;

using namespace vocab;

// Reachability probes of a channel's unicast targets. Each probe runs on a
// detached thread of its own that takes no lock: it copies the row id and the
// address, pings the address once and, when that fails, traces the route,
// and reports "Target Connection OK" or "Target Connection Failed".
//
// Bounds: a probe runs "ping -c 1 <address>" for at most 3 s (a reachable
// target answers in milliseconds; a silent one is not reachable, whatever
// ping would still wait), then "traceroute -I <address>" for at most 10 s,
// whose output read so far is reported. The bound is kept by the probe
// itself (BoundedCommand kills the command's process group), so the command
// lines stay exactly these on every ping and traceroute, busybox included.
//
// Lifetime: a probe uses only its copies and the event sink; the sink must
// outlive it. The channel manager lives for the process; whoever else lends
// a sink waits for ProbeRegistry::waitIdle() before dropping it.

namespace {

const int PING_LIMIT_MS = 3000;
const int TRACEROUTE_LIMIT_MS = 10000;
const std::size_t TRACEROUTE_OUTPUT_MAX = 1023;

// 1 for an IPv4 dotted quad, 0 for no address, -1 for an address of another
// family (an IPv6 text): the cases the probe tells apart.
int addressKind(const std::string& address, in_addr& ipv4) {
    if (inet_pton(AF_INET, address.c_str(), &ipv4) == 1)
        return 1;
    in6_addr ipv6;
    if (inet_pton(AF_INET6, address.c_str(), &ipv6) == 1)
        return -1;
    return 0;
}

bool isMulticast(const in_addr& address) {
    const unsigned firstOctet = ntohl(address.s_addr) >> 24;
    return firstOctet >= 224 && firstOctet <= 239;
}

}  // namespace

Fcodes TargetProbes::testConnectionToTarget(const std::string& rowId) {
    std::vector<std::string> targets;
    Fcodes result = rows.getChildInstances(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, rowId, targets) | FC_OK;
    for (const std::string& target : targets) {
        bool enabled = false;
        std::string protocol, address;
        Fcodes read = FC_OK | ctx.store.getBoolParam(ds::CHANNEL, tbl::TARGET, prop::ENABLED, enabled, target);
        if (!isOk(read) || !enabled) {
            result |= read;
            continue;
        }
        read |= ctx.store.getTextParam(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, protocol, target) |
                ctx.store.getTextParam(ds::CHANNEL, tbl::TARGET, prop::TARGET_ADDRESS, address, target);
        result |= read;
        if (!isOk(read))
            continue;
        in_addr ipv4{};
        const int kind = addressKind(address, ipv4);
        if (kind == 0) {
            DBG(DBG_ERROR) << "testConnectionToTarget: Illegal IP Address=" << address;
            result |= FC_BAD_VALUE;
            continue;
        }
        if (kind < 0) {
            DBG(DBG_ERROR) << "testConnectionToTarget: Wrong IP family Address=" << address;
            result |= FC_BAD_VALUE;
            continue;
        }
        if (isMulticast(ipv4))
            continue;

        IChannelEvents* sink = &ctx.events;
        ProbeRegistry::instance().begin();
        try {
            std::thread([sink, rowId, address] {
                probe(*sink, rowId, address);
                ProbeRegistry::instance().end();
            }).detach();
        } catch (const std::system_error& error) {
            ProbeRegistry::instance().end();
            DBG(DBG_ERROR) << "testConnectionToTarget: no probe thread for Address=" << address << " " << error.what();
            result |= FC_UNAVAILABLE;
        }
    }
    return result;
}

// Only a valid IPv4 address reaches the shell line, so nothing but an
// address can be slipped into the commands.
void TargetProbes::traceroute(const std::string& rowId, const std::string& address) {
    probe(ctx.events, rowId, address);
}

void TargetProbes::probe(IChannelEvents& events, const std::string& rowId, const std::string& address) {
    in_addr ipv4{};
    if (addressKind(address, ipv4) != 1) {
        DBG(DBG_ERROR) << "traceroute: Illegal IP Address=" << address;
        return;
    }
    const std::string ping = "ping -c 1 " + address;
    DBG(DBG_INFO) << "traceroute: command=" << ping;
    const BoundedRun pinged = runBounded(ping, PING_LIMIT_MS, 0);
    DBG(DBG_INFO) << "traceroute: ping rc=" << pinged.status;
    if (pinged.started && pinged.status == 0) {
        events.sendEvent(ev::TARGET_CONNECTION_OK, rowId, cond::INFO, state::ALARM_NONE, state::SEVERITY_INFO,
                         "ping " + address + " OK");
        return;
    }
    const std::string trace = "traceroute -I " + address;
    DBG(DBG_INFO) << "traceroute: command=" << trace;
    const BoundedRun traced = runBounded(trace, TRACEROUTE_LIMIT_MS, TRACEROUTE_OUTPUT_MAX);
    if (!traced.started || traced.output.empty())
        return;
    // A failed probe carries "Unavailable" as its code, as a failed play does.
    events.sendEvent(ev::TARGET_CONNECTION_FAILED, rowId, FC_UNAVAILABLE, state::ALARM_NONE, state::SEVERITY_INFO,
                     traced.output);
}
