// daemon_bench: channel_manager as the appliance runs it, measured from the
// outside, pinned to cpu 0 (the daemon, the simulator and the raw server
// inherit it):
//   start-up: from the fork to the start file, with appliance_sim serving
//   LOAD_CHANNELS of the factory data, Play and Stop of "HEVC" (in turn): command round trips
//   "Set DVI mode" round trip to the running daemon against a raw datagram
//   ping-pong of the same sizes, alternating in four rounds
//   the daemon's resident set after LOAD_CHANNELS
// The daemon runs at -v 5 with no log collector, as a quiet daemon. Sockets
// and files live in a temporary SYSMGT_ROOT, removed at the end; every
// process it starts is ended by its pid.
//
// Usage: daemon_bench [--bin DIR] [--launch PREFIX] [--count N]
//   --bin DIR        where channel_manager and appliance_sim are (default: beside daemon_bench)
//   --launch PREFIX  put in front of the daemon's command line, e.g. "qemu-arm" for an ARM build
//   --count N        round trips of "Set DVI mode" and of the raw ping-pong (default 20000)
#include <sched.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "BenchAppliance.h"
#include "datacom/DataCommunicator.h"
#include "datacom/MessageTypes.h"
#include "engine/LocalAddress.h"

using namespace datacom;

using namespace bench;

namespace {

using Clock = std::chrono::steady_clock;

int boundSocket(const char* logicalPath) {
    int sock = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    LocalAddress address;
    address.setLogicalPath(logicalPath);
    unlink(address.path().c_str());
    if (sock < 0 || bind(sock, address.get(), address.length()) != 0)
        fail("cannot bind a raw socket");
    return sock;
}

// The raw ping-pong: a child answering every datagram with `backSize` bytes.
pid_t rawServer(size_t backSize) {
    int sock = boundSocket("/tmp/sockRawSrv");
    pid_t pid = fork();
    if (pid == 0) {
        std::vector<char> buffer(70000), answer(backSize, 'a');
        for (;;) {
            LocalAddress from;
            if (recvfrom(sock, buffer.data(), buffer.size(), 0, from.get(), &from.length()) > 0)
                sendto(sock, answer.data(), answer.size(), 0, from.get(), from.length());
        }
    }
    close(sock);
    return pid;
}

void timeRaw(int count, size_t outSize, std::vector<double>& micros) {
    int sock = boundSocket("/tmp/sockRawCli");
    LocalAddress to;
    to.setLogicalPath("/tmp/sockRawSrv");
    std::vector<char> out(outSize, 'c'), buffer(70000);
    for (int i = -500; i < count; ++i) {
        const auto start = Clock::now();
        if (sendto(sock, out.data(), out.size(), 0, to.get(), to.length()) < 0 ||
            recv(sock, buffer.data(), buffer.size(), 0) <= 0)
            fail("raw ping-pong failed");
        if (i >= 0)
            micros.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
    close(sock);
}

void timeDaemon(DataCommunicator& engine, int count, const std::string& text, std::vector<double>& micros) {
    std::string reply;
    for (int i = -500; i < count; ++i) {
        const auto start = Clock::now();
        if (engine.requestCommand("/tmp/sockChan", text, reply, 10, 1) != FC_OK)
            fail("\"Set DVI mode\" failed");
        if (i >= 0)
            micros.push_back(std::chrono::duration<double, std::micro>(Clock::now() - start).count());
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::string bin, prefix;
    int count = 20000;
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string option = argv[i];
        if (option == "--bin")
            bin = argv[i + 1];
        else if (option == "--launch")
            prefix = std::string(argv[i + 1]) + " ";
        else if (option == "--count")
            count = std::max(4, std::atoi(argv[i + 1]));
        else
            fail("unknown option " + option + " (usage: daemon_bench [--bin DIR] [--launch PREFIX] [--count N])");
    }
    if (bin.empty()) {
        std::string self = argv[0];
        bin = self.find('/') == std::string::npos ? "." : self.substr(0, self.rfind('/'));
    }

    cpu_set_t cpus;
    CPU_ZERO(&cpus);
    CPU_SET(0, &cpus);
    if (sched_setaffinity(0, sizeof cpus, &cpus) != 0)
        fail("cannot pin to cpu 0");

    Appliance appliance(bin, prefix);

    // Start-up to start file.
    std::vector<double> startups;
    for (int run = 0; run < 10; ++run) {
        const auto start = Clock::now();
        appliance.startDaemon();
        startups.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        appliance.stopDaemon();
    }
    std::printf("start-up to start file: median %.1f ms, min %.1f ms, max %.1f ms (10 starts)\n", median(startups),
                *std::min_element(startups.begin(), startups.end()),
                *std::max_element(startups.begin(), startups.end()));

    const pid_t daemon = appliance.startDaemon();
    DataCommunicator engine;
    engine.init(nullptr, "/tmp/sockBenchCli", "/tmp/sockBenchCliSend", "tBench");
    std::printf("RSS after start-up: %ld KiB (anonymous %ld KiB, files %ld KiB)\n", statusKiB(daemon, "VmRSS:"),
                statusKiB(daemon, "RssAnon:"), statusKiB(daemon, "RssFile:"));

    // LOAD_CHANNELS from stopped channels, as after a restart; then Play and
    // Stop in turn, each from the other's end state.
    const struct {
        const char* label;
        std::string text;
        std::string before;  // untimed, before each run
    } steps[] = {
        {"LOAD_CHANNELS Default", commandText("LOAD_CHANNELS", {{"File", "Default"}}),
         commandText("Stop", {{"RowID", "ALL"}})},
        {"Play HEVC", commandText("Play", {{"RowID", "HEVC"}}), commandText("Stop", {{"RowID", "HEVC"}})},
        {"Stop HEVC", commandText("Stop", {{"RowID", "HEVC"}}), commandText("Play", {{"RowID", "HEVC"}})},
    };
    for (const auto& step : steps) {
        std::vector<double> millis;
        Fcodes last = FC_OK;
        for (int run = 0; run < 20; ++run) {
            double took = 0;
            Appliance::command(engine, step.before, took);
            last = Appliance::command(engine, step.text, took);
            millis.push_back(took);
        }
        std::printf("%-22s median %8.2f ms, max %8.2f ms (20 runs, answer %s)\n", step.label, median(millis),
                    *std::max_element(millis.begin(), millis.end()), fcodeText(last).c_str());
        if (&step == &steps[0])
            std::printf("RSS after LOAD_CHANNELS: %ld KiB (peak %ld KiB; anonymous %ld KiB, files %ld KiB)\n",
                        statusKiB(daemon, "VmRSS:"), statusKiB(daemon, "VmHWM:"), statusKiB(daemon, "RssAnon:"),
                        statusKiB(daemon, "RssFile:"));
    }

    // "Set DVI mode" against the raw ping-pong of the same sizes.
    const std::string dvi = commandText("Set DVI mode", {{"DVI_mode", "1"}});
    MessageHeader header;
    header.ID = 10000;
    header.Type = msgtype::COMMAND;
    header.Size = static_cast<int32_t>(dvi.size() + 18);
    std::string headerText, ackText;
    header.toString(headerText);
    const size_t outSize = headerText.size() + dvi.size() + 18;
    header.Type = msgtype::ACK;
    header.Size = 0;
    header.toString(ackText);
    const pid_t raw = rawServer(ackText.size());
    std::vector<double> rawMicros, daemonMicros;
    for (int round = 0; round < 4; ++round) {
        timeRaw(count / 4, outSize, rawMicros);
        timeDaemon(engine, count / 4, dvi, daemonMicros);
    }
    end(raw);
    std::printf("round trip, %zu bytes out, %zu back, %d each, pinned to cpu 0:\n", outSize, ackText.size(), count);
    std::printf("  raw     median %6.2f us  p99 %6.2f us\n", median(rawMicros), percentile(rawMicros, 99));
    std::printf("  daemon  median %6.2f us  p99 %6.2f us\n", median(daemonMicros), percentile(daemonMicros, 99));
    std::printf("  ratio   median %.2f  p99 %.2f\n", median(daemonMicros) / median(rawMicros),
                percentile(daemonMicros, 99) / percentile(rawMicros, 99));

    return 0;
}
