// configChannel of one fully featured H.264 channel (two targets, Pro-MPEG
// 2-D FEC and SRT with FEC, two encoded audio streams, two KLV ingests,
// encryption and the SDI preview) against appliance_sim's mediator, device
// manager and SAP announcer served in this process on their sockets, in a
// temporary SYSMGT_ROOT. Prints the mediator requests of one run, the median
// and p90 time of a run, the time per request, and the median round trip of
// one mediator COMMAND ("Tarnevel Get Branch State") through the same
// engines; and whether any mediator parameter was read twice in one run.
//
//   build/bin/channel_config [runs, default 200]
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <map>
#include <vector>

#include "datacom/DbgPrintClient.h"
#include "support/ChannelHarness.h"
#include "tarnevel/ITarnevelClient.h"

using namespace datacom;
using namespace tarnevel;

using namespace vocab;
using Clock = std::chrono::steady_clock;

namespace {

constexpr int kRoundTripsPerRun = 50;

double micros(Clock::duration d) {
    return std::chrono::duration<double, std::micro>(d).count();
}

double percentile(std::vector<double> values, double p) {
    std::sort(values.begin(), values.end());
    return values[static_cast<size_t>(p * static_cast<double>(values.size() - 1))];
}

void featureChannel(ChannelTestHolder& holder) {
    const std::string t1 = "H.264 Target1", t2 = "H.264 Target2", a2 = "H.264 Audio2";
    holder.initTextParam(ds::CHANNEL, tbl::TARGET, prop::STREAMING_PROTOCOL, "Pro-MPEG", t1);
    holder.initTextParam(ds::CHANNEL, tbl::FEC_SETTINGS, prop::MODE, "2-D", t1);
    holder.initTextParam(ds::CHANNEL, tbl::TARGET, prop::TRAFFIC_SHAPING, "LINUX HTB", t1);
    holder.initBoolParam(ds::CHANNEL, tbl::TARGET, prop::ENABLED, true, t2);
    holder.initBoolParam(ds::CHANNEL, tbl::SRT_SETTINGS, prop::SRT_FEC, true, t2);
    holder.initBoolParam(ds::CHANNEL, tbl::AUDIO_SOURCE, prop::ENABLED, true, a2);
    holder.initBoolParam(ds::CHANNEL, tbl::AUDIO_PROCESSING, prop::ENCODE_AUDIO, true, a2);
    holder.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV, "IP", row::H264);
    holder.initTextParam(ds::CHANNEL, tbl::PROCESSING, prop::INGEST_KLV2, "Serial", row::H264);
    holder.initBoolParam(ds::CHANNEL, tbl::PROCESSING, prop::ENCRYPTION, true, row::H264);
    holder.initTextParam(ds::CHANNEL, tbl::TRANSPORT_STREAM, prop::AES_KEY, "00112233445566778899aabbccddeeff",
                         row::H264);
    holder.initBoolParam(ds::CHANNEL, tbl::SOURCE, prop::SDI_OUT_PREVIEW, true, row::H264);
}

int run(int argc, char** argv) {
    const int runs = argc > 1 ? std::max(10, std::atoi(argv[1])) : 200;
    gDbgLevel = 5;  // log silenced, as in engine_roundtrip
    // The simulator prints its traffic to stdout: send it away while measuring.
    fflush(stdout);
    const int console = dup(STDOUT_FILENO);
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, STDOUT_FILENO);

    std::vector<double> runTimes, roundTrips;
    size_t requests = 0, writes = 0, reads = 0, repeatedReads = 0;
    Fcodes result = FC_OK;
    bool ready = false;
    {
        ChannelHarness h;
        ready = h.ready();
        if (ready) {
            featureChannel(*h.holder);
            ConfigChannelTarnevel channel = h.channel();
            channel.configChannel(row::H264);  // warm-up
            // Runs and round trips alternate, so that the load of the machine
            // weighs on both alike.
            for (int i = 0; i < runs; ++i) {
                h.mediator.model().clearRecords();
                const Clock::time_point start = Clock::now();
                result = channel.configChannel(row::H264);
                runTimes.push_back(micros(Clock::now() - start));
                for (int k = 0; k < kRoundTripsPerRun; ++k) {
                    std::string state;
                    const Clock::time_point sent = Clock::now();
                    ITarnevelClient::getTarnevelBranchState(h.holder.get(), "UDP CH0", state);
                    roundTrips.push_back(micros(Clock::now() - sent));
                }
            }
            writes = h.mediator.model().writes().size();
            const std::vector<std::string> readList = h.mediator.model().reads();
            reads = readList.size();
            std::map<std::string, int> seen;
            for (const std::string& r : readList)
                repeatedReads += ++seen[r] > 1;
            requests = writes + reads + 1;  // and the assembly
        }
    }
    fflush(stdout);
    dup2(console, STDOUT_FILENO);
    close(null);
    close(console);
    if (!ready) {
        std::fprintf(stderr, "channel_config: the simulator or the datasets did not come up\n");
        return 1;
    }
    const double runMedian = percentile(runTimes, 0.5);
    const double perRequest = runMedian / static_cast<double>(requests);
    const double roundTrip = percentile(roundTrips, 0.5);
    std::printf("configChannel H.264, fully featured, %d runs (result 0x%x)\n", runs, static_cast<unsigned>(result));
    std::printf("  mediator requests per run: %zu (%zu writes, %zu reads, 1 assembly)\n", requests, writes, reads);
    std::printf("  parameters read more than once in a run: %zu\n", repeatedReads);
    std::printf("  run time: median %.0f us, p90 %.0f us\n", runMedian, percentile(runTimes, 0.9));
    std::printf("  per mediator request: %.1f us\n", perRequest);
    std::printf("  COMMAND round trip: median %.1f us, p90 %.1f us\n", roundTrip, percentile(roundTrips, 0.9));
    std::printf("  ratio per request / round trip: %.2f (goal <= 1.5)\n", perRequest / roundTrip);
    return 0;
}

}  // namespace

// Setting up may throw (memory, the temporary root): that ends with a line, not std::terminate.
int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& e) {
        std::fprintf(stderr, "channel_config: %s\n", e.what());
        return 1;
    }
}
