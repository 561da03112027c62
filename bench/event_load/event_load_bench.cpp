// event_load_bench: channel_manager with appliance_sim while the mediator
// sends 1,000 events a second (input detections, "Data Stream" ON/OFF,
// branch events standing in for its statistics), 8 front ends are subscribed
// and an operator sends commands one after the other. Reports the command
// round trip (p50, p99) idle and under load, the events owed to the front
// ends against those they received, and the daemon's CPU time.
// Every input detection makes the daemon tell each front end ("Video Source
// Updated"), so what reaches the 8 front ends counts the detections end to end.
//
// Usage: event_load_bench [--bin DIR] [--seconds S] [--rate R]
//   --seconds S  length of the loaded phase (default 20)
//   --rate R     mediator events per second (default 1000)
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include <unistd.h>

#include "BenchAppliance.h"
#include "datacom/NullDataHolder.h"

using namespace datacom;
using namespace bench;

namespace {

using Clock = std::chrono::steady_clock;
const char* const DAEMON = "/tmp/sockChan";
const char* const MEDIATOR = "/tmp/sockTarnevelMediator";
constexpr int FRONT_ENDS = 8;

// A front end: counts the "Video Source Updated" events it receives.
class FrontEnd : public NullDataHolder {
public:
    Fcodes handle(MessageEvent* event) override {
        if (event->id == "Video Source Updated")
            ++updates;
        delete event;
        return FC_OK;
    }
    std::atomic<long> updates{0};
};

// utime + stime of a process, in seconds.
double cpuSeconds(pid_t pid) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
    std::string field;
    double ticks = 0;
    for (int i = 1; in >> field && i <= 15; ++i)
        if (i == 14 || i == 15)
            ticks += std::atof(field.c_str());
    return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

// `count` operator commands, one after the other, `gap` apart; their times in ms.
std::vector<double> operatorRun(DataCommunicator& client, int count, std::chrono::milliseconds gap, long& failed) {
    std::vector<double> times;
    const std::string text = commandText("Set DVI mode", {{"DVI_mode", "1"}});
    for (int i = 0; i < count; ++i) {
        double millis = 0;
        if (Appliance::command(client, text, millis) != FC_OK)
            ++failed;
        times.push_back(millis);
        std::this_thread::sleep_for(gap);
    }
    return times;
}

}  // namespace

int main(int argc, char** argv) {
    std::string bin;
    double seconds = 20, rate = 1000;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        if (option == "--bin")
            bin = argv[i + 1];
        else if (option == "--seconds")
            seconds = std::max(1.0, std::atof(argv[i + 1]));
        else if (option == "--rate")
            rate = std::max(1.0, std::atof(argv[i + 1]));
        else
            fail("unknown option " + option + " (usage: event_load_bench [--bin DIR] [--seconds S] [--rate R])");
    }
    if (bin.empty()) {
        std::string self = argv[0];
        bin = self.find('/') == std::string::npos ? "." : self.substr(0, self.rfind('/'));
    }

    Appliance appliance(bin, "");
    const pid_t daemon = appliance.startDaemon();
    DataCommunicator operatorClient;
    operatorClient.init(nullptr, "/tmp/sockOperator", "/tmp/sockOperatorSend", "tOperator");
    std::vector<std::unique_ptr<FrontEnd>> fronts;
    std::vector<std::unique_ptr<DataCommunicator>> engines;
    for (int i = 0; i < FRONT_ENDS; ++i) {
        fronts.push_back(std::make_unique<FrontEnd>());
        engines.push_back(std::make_unique<DataCommunicator>());
        const std::string name = "/tmp/sockFront" + std::to_string(i);
        engines.back()->init(fronts.back().get(), name, name + "Send", "tFront");
        engines.back()->start();
        if (engines.back()->requestSubscribe(DAEMON) != FC_OK)
            fail("front end " + std::to_string(i) + " could not subscribe");
    }
    double millis = 0;
    if (Appliance::command(operatorClient, commandText("LOAD_CHANNELS", {{"File", "Default"}}), millis) != FC_OK ||
        Appliance::command(operatorClient, commandText("Play", {{"RowID", "HEVC"}}), millis) != FC_OK)
        fail("the channels could not be loaded and played");

    long failed = 0;
    const std::vector<double> idle = operatorRun(operatorClient, 500, std::chrono::milliseconds(5), failed);

    // The mediator's events, paced to `rate`, through the simulator.
    std::atomic<bool> loading{true};
    std::atomic<long> detections{0}, others{0}, refusedEvents{0};
    std::thread mediator([&] {
        DataCommunicator client;
        client.init(nullptr, "/tmp/sockLoad", "/tmp/sockLoadSend", "tLoad");
        const auto gap = std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(1.0 / rate));
        const char* const formats[] = {"1280x720p @ 50", "1920x1080i @ 25"};
        const char* const sources[] = {"HDMI", "HD-SDI"};
        auto next = Clock::now();
        for (long n = 0; loading; ++n) {
            std::this_thread::sleep_until(next);
            next += gap;
            std::string text;
            switch (n % 4) {
                case 0:
                case 2:  // the input each channel already runs: a refresh, no format change
                    text = commandText("Sim Emit Event", {{"Event", "Auto Detection Event"},
                                                          {"Source", sources[n % 4 / 2]},
                                                          {"Status", "ON"},
                                                          {"Input Detected", formats[n % 4 / 2]}});
                    break;
                case 1:
                    text = commandText("Sim Emit Event", {{"Event", "Data Stream"},
                                                          {"Status", n % 8 == 1 ? "ON" : "OFF"},
                                                          {"Description", "Zixi Feeder CH1"}});
                    break;
                default:
                    text = commandText("Sim Emit Event", {{"Event", "Tarnevel Branch Started"}, {"Source", "UDP CH1"}});
            }
            std::string reply;
            if (client.requestCommand(MEDIATOR, text, reply, 10, 1) != FC_OK)
                ++refusedEvents;
            else
                ++(n % 4 == 0 || n % 4 == 2 ? detections : others);
        }
    });
    const auto loadStart = Clock::now();
    const double cpuBefore = cpuSeconds(daemon);
    std::vector<double> loaded;
    while (Clock::now() - loadStart < std::chrono::duration<double>(seconds)) {
        std::vector<double> part = operatorRun(operatorClient, 50, std::chrono::milliseconds(20), failed);
        loaded.insert(loaded.end(), part.begin(), part.end());
    }
    loading = false;
    mediator.join();
    const double loadSeconds = std::chrono::duration<double>(Clock::now() - loadStart).count();
    const double cpu = cpuSeconds(daemon) - cpuBefore;
    auto received = [&] {
        long sum = 0;
        for (const auto& front : fronts)
            sum += front->updates;
        return sum;
    };
    // The idle phase's refreshes are none; the load's are owed to every front end.
    const long owed = detections * FRONT_ENDS;
    waitUntil([&] { return received() >= owed; }, 10);
    for (auto& engine : engines)
        engine->stop();

    std::printf("idle: %zu commands, p50 %.3f ms, p99 %.3f ms\n", idle.size(), median(idle), percentile(idle, 99));
    std::printf("load: %zu commands, p50 %.3f ms, p99 %.3f ms (p99 / idle p50 = %.2f)\n", loaded.size(), median(loaded),
                percentile(loaded, 99), percentile(loaded, 99) / median(idle));
    std::printf("mediator events sent %ld in %.1f s (%.0f/s): %ld input detections, %ld others, %ld refused\n",
                detections + others, loadSeconds, static_cast<double>(detections + others) / loadSeconds,
                detections.load(), others.load(), refusedEvents.load());
    std::printf("front-end events owed %ld, received %ld (%d front ends)\n", owed, received(), FRONT_ENDS);
    std::printf("daemon CPU %.2f s in %.1f s (%.0f %% of one core); failed commands %ld\n", cpu, loadSeconds,
                100 * cpu / loadSeconds, failed);
    return failed == 0 && received() >= owed && refusedEvents == 0 ? 0 : 1;
}
