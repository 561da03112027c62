// soak_bench: channel_manager with appliance_sim under a long run of what a
// front end and the mediator send it, measured from the outside:
//   every request answered (none lost or timed out), its verdict as expected;
//   every event the daemon owes a subscriber that keeps up received;
//   the daemon's resident set after warm-up and how it grows from there.
// One cycle is 18 requests and 3 mediator events: data GETs, a pending SET
// accepted and one rolled back, the statistics updates of two targets, Play
// and Stop of "HEVC", an on-the-fly change, "Set DVI mode", "Update Source",
// and, from the mediator (appliance_sim's "Sim Emit Event"), "Data Stream" ON
// and OFF and a Zixi bitrate request; every 50th cycle also STORE_CHANNELS and
// LOAD_CHANNELS of the stored file. Requests go one at a time, each after the
// previous answer, as a front end's do, paced to at most --rate per second.
// The daemon runs at -v 5; every process is ended by its pid, the root removed.
//
// Usage: soak_bench [--bin DIR] [--launch PREFIX] [--count N] [--rate R]
//   --launch PREFIX  put in front of the daemon's command line (a heap profiler, qemu-arm)
//   --count N  requests and mediator events in all (default 100000)
//   --rate R   requests per second at most, mediator events included (default 200)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "BenchAppliance.h"
#include "datacom/NullDataHolder.h"

using namespace datacom;

using namespace bench;

namespace {

using Clock = std::chrono::steady_clock;

// A subscriber that keeps up: counts each event by ID on the engine's thread.
class EventCounter : public NullDataHolder {
public:
    Fcodes handle(MessageEvent* event) override {
        std::lock_guard<std::mutex> guard(mutex);
        ++counts[event->id];
        delete event;
        return FC_OK;
    }
    std::map<std::string, long> snapshot() {
        std::lock_guard<std::mutex> guard(mutex);
        return counts;
    }

private:
    std::mutex mutex;
    std::map<std::string, long> counts;
};

const char* const daemonSocket = "/tmp/sockChan";

struct Soak {
    DataCommunicator client;
    long sent = 0, unanswered = 0, refused = 0, mediatorEvents = 0;
    std::map<std::string, long> refusals;  // "request verdict" of each request not answered "OK"
    std::map<std::string, long> expected;  // events owed to the subscriber, by ID
    Clock::time_point next = Clock::now();
    Clock::duration gap;

    void pace() {
        std::this_thread::sleep_until(next);
        next = std::max(next + gap, Clock::now() - 10 * gap);
    }
    // A command whose verdict must be "OK".
    void command(const std::string& id, const MessageParams::ParamMap& params, const char* peer = daemonSocket) {
        pace();
        ++(peer == daemonSocket ? sent : mediatorEvents);
        std::string reply;
        verdict(id, client.requestCommand(peer, commandText(id, params), reply, 10, 1));
    }
    void get(const char* component, const char* property, const char* row) {
        access(component, property, row, ParamAccess::Read, "");
    }
    void access(const char* component, const char* property, const char* row, ParamAccess how, std::string value) {
        pace();
        ++sent;
        verdict(how == ParamAccess::Read ? "GET" : "SET",
                client.requestGetParam(daemonSocket, "ChannelDataSet", component, property, value, how, row, 10, 1));
    }
    // The engine's own time-out is the one "Communication Error" alone.
    void verdict(const std::string& request, Fcodes code) {
        if (code == FC_COMM_ERROR)
            ++unanswered;
        else if (code != FC_OK)
            ++refused;
        if (code != FC_OK)
            ++refusals[request + " " + fcodeText(code)];
    }
    // A mediator event through the simulator (counted as an event, not a request).
    void mediatorEvent(const MessageParams::ParamMap& params) {
        command("Sim Emit Event", params, "/tmp/sockTarnevelMediator");
    }

    void cycle(long n) {
        const std::string total = std::to_string(5000000 + (n % 7) * 100000);
        get("ChannelsTable", "State", "HEVC");
        get("ChannelProcessingTable", "Total Bitrate", "HEVC");
        command("Update Zixi Statistics", {{"RowID", "HEVC Target1"}});
        command("Update Srt Statistics", {{"RowID", "HEVC Target2"}});
        command("Play", {{"RowID", "HEVC"}});
        expected["Channel Played"]++;
        expected["Close Alarms"]++;
        access("ChannelAVSettings", "Brightness", "HEVC", ParamAccess::Write, std::to_string(40 + n % 20));
        command("Accept Changes", {});
        mediatorEvent({{"Event", "Data Stream"}, {"Status", "ON"}, {"Description", "Zixi Feeder CH1"}});
        get("ChannelsTable", "Fcode", "HEVC");
        mediatorEvent({{"Event", "Data Stream"}, {"Status", "OFF"}, {"Description", "Zixi Feeder CH1"}});
        command("Change on-the-fly", {{"RowID", "HEVC"}, {"Total Bitrate", total}, {"Max Bitrate", "9000000"}});
        expected["Bitrate Recalculated"]++;
        // A total the channel does not have: forwarded, then recalculated.
        mediatorEvent({{"Event", "Zixi Change Bitrate Request"},
                       {"Description", "Zixi Feeder CH1"},
                       {"Total Bitrate", std::to_string(4000000 + (n % 5) * 10000)}});
        expected["Zixi Change Bitrate Request"]++;
        expected["Bitrate Recalculated"]++;
        command("Set DVI mode", {{"DVI_mode", "1"}});
        get("ChannelsTable", "State", "H.264");
        access("ChannelsTable", "Channel Name", "H.264", ParamAccess::Write, "soak " + std::to_string(n));
        command("Rollback Changes", {});
        command("Stop", {{"RowID", "HEVC"}});
        expected["Channel Stopped"]++;
        expected["Close Alarms"]++;
        command("Update Source", {{"Video Source", "All"}});
        expected["Video Source Updated"] += 4;  // one per source of the factory data
        get("ChannelProcessingTable", "Total Bitrate", "HEVC");
        if (n % 50 == 49) {
            command("STORE_CHANNELS", {{"File", "/tmp/soak_channels.json"}});
            expected["Channels Stored"]++;
            command("LOAD_CHANNELS", {{"File", "/tmp/soak_channels.json"}});
            expected["Channels Loaded"]++;
            expected["Channel Configured"] += 2;
        }
    }
};

}  // namespace

int main(int argc, char** argv) {
    std::string bin, prefix;
    long count = 100000;
    double rate = 200;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        if (option == "--bin")
            bin = argv[i + 1];
        else if (option == "--launch")
            prefix = std::string(argv[i + 1]) + " ";
        else if (option == "--count")
            count = std::max(1000L, std::atol(argv[i + 1]));
        else if (option == "--rate")
            rate = std::max(1.0, std::atof(argv[i + 1]));
        else
            fail("unknown option " + option +
                 " (usage: soak_bench [--bin DIR] [--launch PREFIX] [--count N] [--rate R])");
    }
    if (bin.empty()) {
        std::string self = argv[0];
        bin = self.find('/') == std::string::npos ? "." : self.substr(0, self.rfind('/'));
    }

    Appliance appliance(bin, prefix);
    const pid_t daemon = appliance.startDaemon();
    EventCounter counter;
    DataCommunicator subscriber;
    subscriber.init(&counter, "/tmp/sockSoakSub", "/tmp/sockSoakSubSend", "tSoakSub");
    subscriber.start();
    Soak soak;
    soak.gap = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1.0 / rate));
    soak.client.init(nullptr, "/tmp/sockSoakCli", "/tmp/sockSoakCliSend", "tSoak");
    if (subscriber.requestSubscribe("/tmp/sockChan") != FC_OK)
        fail("the subscription to the daemon failed");
    soak.command("LOAD_CHANNELS", {{"File", "Default"}});
    soak.expected["Channels Loaded"]++;
    soak.expected["Channel Configured"] += 2;

    // Warm-up: a tenth of the run, then the resident set every tenth.
    const auto start = Clock::now();
    long cycles = 0, warmRss = 0, warmAnon = 0, tenth = 0;
    std::printf("%10s %10s %12s %12s\n", "requests", "seconds", "VmRSS KiB", "RssAnon KiB");
    while (soak.sent + soak.mediatorEvents < count) {
        soak.cycle(cycles++);
        if ((soak.sent + soak.mediatorEvents) * 10 / count > tenth) {
            tenth = (soak.sent + soak.mediatorEvents) * 10 / count;
            const long rss = statusKiB(daemon, "VmRSS:"), anon = statusKiB(daemon, "RssAnon:");
            if (tenth == 1) {
                warmRss = rss;
                warmAnon = anon;
            }
            std::printf("%10ld %10.1f %12ld %12ld\n", soak.sent + soak.mediatorEvents,
                        std::chrono::duration<double>(Clock::now() - start).count(), rss, anon);
            std::fflush(stdout);
        }
    }
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    const long endRss = statusKiB(daemon, "VmRSS:"), endAnon = statusKiB(daemon, "RssAnon:");

    // The last events may still be on their way: wait for them, bounded.
    auto missing = [&] {
        long lost = 0;
        const auto got = counter.snapshot();
        for (const auto& [id, owed] : soak.expected) {
            auto found = got.find(id);
            lost += std::max(0L, owed - (found == got.end() ? 0 : found->second));
        }
        return lost;
    };
    waitUntil([&] { return missing() == 0; }, 10);

    std::printf("\n%ld requests and %ld mediator events (through the simulator) in %.1f s, %ld cycles\n", soak.sent,
                soak.mediatorEvents, seconds, cycles);
    std::printf("unanswered %ld, refused %ld\n", soak.unanswered, soak.refused);
    for (const auto& [request, times] : soak.refusals)
        std::printf("  %s: %ld\n", request.c_str(), times);
    std::printf("RSS growth after warm-up: VmRSS %+ld KiB (%ld -> %ld), RssAnon %+ld KiB (%ld -> %ld)\n",
                endRss - warmRss, warmRss, endRss, endAnon - warmAnon, warmAnon, endAnon);
    const auto got = counter.snapshot();
    std::printf("events owed / received:\n");
    for (const auto& [id, owed] : soak.expected) {
        auto found = got.find(id);
        std::printf("  %-30s %8ld %8ld\n", id.c_str(), owed, found == got.end() ? 0 : found->second);
    }
    for (const auto& [id, received] : got)
        if (soak.expected.count(id) == 0)
            std::printf("  %-30s %8s %8ld\n", id.c_str(), "-", received);
    subscriber.stop();
    return soak.unanswered == 0 && soak.refused == 0 && missing() == 0 ? 0 : 1;
}
