// Play and Stop of the "H.264" channel with both of its targets enabled as
// "UDP TS", through the channel command entry, against the simulated
// mediator, device manager and SAP announcer served in this process over
// their real sockets in a temporary root. Prints the mediator requests of
// each operation (by command) and the wall time of each over many rounds.
//
//   build/bin/channel_play_stop [rounds, default 200]

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <string>
#include <vector>

#include "datacom/DbgPrintClient.h"
#include "support/ChannelHarness.h"
#include "support/MediatorTranscript.h"

using namespace datacom;

using namespace vocab;

namespace {

// The command as the manager hands it on, parsed.
MessageCommand command(const char* id) {
    return makeCommand(id, {{cmd::PARAM_ROW_ID, row::H264}});
}

struct Stats {
    std::vector<double> micros;
    std::vector<std::string> requests;  // of the last round
};

void report(const char* name, Stats& stats) {
    std::sort(stats.micros.begin(), stats.micros.end());
    const size_t n = stats.micros.size();
    std::map<std::string, int> byCommand;
    for (const std::string& request : stats.requests)
        byCommand[request.substr(0, request.find('"', 1) + 1)]++;
    std::fprintf(stderr, "%s: %zu mediator requests;", name, stats.requests.size());
    for (const auto& [id, count] : byCommand)
        std::fprintf(stderr, " %s x%d", id.c_str(), count);
    std::fprintf(stderr, "\n  wall time over %zu rounds: min %.0f us, median %.0f us, p90 %.0f us, max %.0f us\n", n,
                 stats.micros[0], stats.micros[n / 2], stats.micros[n * 9 / 10], stats.micros[n - 1]);
}

int run(int argc, char** argv) {
    const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 200;
    gDbgLevel = 5;  // the log pipe has no collector here
    // The simulator prints every message on stdout; only the figures matter.
    if (std::freopen("/dev/null", "w", stdout) == nullptr)
        return 1;
    ChannelHarness h;
    MediatorTranscript transcript(h);
    if (!h.ready() || !transcript.ready()) {
        std::fprintf(stderr, "channel_play_stop: the simulator or the datasets did not come up\n");
        return 1;
    }
    h.holder->initBoolParam(ds::CHANNEL, tbl::TARGET, prop::ENABLED, true, "H.264 Target2");
    h.holder->initTextParam(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, value::UDP_TS, "H.264 Target2");

    const MessageCommand play = command(cmd::PLAY), stop = command(cmd::STOP);
    Stats played, stopped;
    for (int round = 0; round < rounds; ++round) {
        for (auto [request, stats] : {std::make_pair(&play, &played), std::make_pair(&stop, &stopped)}) {
            transcript.mark();
            const auto start = std::chrono::steady_clock::now();
            const Fcodes code = h.channel().execute(*request);
            const auto end = std::chrono::steady_clock::now();
            stats->micros.push_back(std::chrono::duration<double, std::micro>(end - start).count());
            if (round == rounds - 1) {
                stats->requests = transcript.requests();
                std::fprintf(stderr, "%s answered 0x%x\n", request == &play ? "Play" : "Stop",
                             static_cast<unsigned>(code));
            }
        }
    }
    report("Play", played);
    report("Stop", stopped);
    return 0;
}

}  // namespace

// Setting up may throw (memory, the temporary root): that ends with a line, not std::terminate.
int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "channel_play_stop: %s\n", e.what());
        return 1;
    }
}
