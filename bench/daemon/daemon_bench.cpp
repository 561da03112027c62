// daemon_bench: channel_manager as the appliance runs it, measured from the
// outside, pinned to cpu 0 (the daemon, the simulator and the raw server
// inherit it):
//   start-up: from the fork to the start file, with appliance_sim serving
//   LOAD_CHANNELS of the factory data, Play and Stop of "HEVC": command round trips
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
#include <ftw.h>
#include <sched.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "engine/DataCommunicator.h"
#include "engine/LocalAddress.h"
#include "records/MessageCommand.h"
#include "records/MessageTypes.h"
#include "system/DbgPrintClient.h"
#include "system/SysmgtRoot.h"

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void fail(const std::string& what) {
    std::fprintf(stderr, "daemon_bench: %s\n", what.c_str());
    std::exit(1);
}

std::string readFile(const std::string& hostPath) {
    std::ifstream in(hostPath);
    std::stringstream text;
    text << in.rdbuf();
    return text.str();
}

bool waitUntil(const std::function<bool()>& ready, double limitSec) {
    const auto limit = Clock::now() + std::chrono::duration<double>(limitSec);
    while (!ready()) {
        if (Clock::now() > limit)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    return true;
}

pid_t launch(const std::string& command) {
    const std::string line = "exec " + command;
    pid_t pid = fork();
    if (pid == 0) {
        execl("/bin/sh", "sh", "-c", line.c_str(), static_cast<char*>(nullptr));
        _exit(127);
    }
    return pid;
}

void end(pid_t pid) {
    if (pid <= 0)
        return;
    kill(pid, SIGTERM);
    int raw = 0;
    if (!waitUntil([&] { return waitpid(pid, &raw, WNOHANG) == pid; }, 10)) {
        kill(pid, SIGKILL);
        waitpid(pid, &raw, 0);
    }
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

double percentile99(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() * 99 / 100];
}

std::string commandText(const std::string& id, const MessageParams::ParamMap& params) {
    MessageCommand command;
    command.setId(id);
    command.params = params;
    std::string text;
    command.toString(text);
    return text;
}

// One command to the daemon: its verdict (the ACK's or NACK's Fcode) and the time it took.
Fcodes timedCommand(DataCommunicator& engine, const std::string& text, double& millis) {
    const std::string body = "<BODY>\n\t" + text + "\n</BODY>\n";
    MessageHeader header, reply;
    header.ID = 100;
    header.Type = msgtype::COMMAND;
    header.Size = static_cast<int32_t>(body.size());
    std::string replyBody;
    const auto start = Clock::now();
    Fcodes code = engine.sendRequest("/tmp/sockChan", header, body, reply, replyBody, 60, 1);
    millis = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    return isOk(code) ? reply.Fcode : code;
}

long residentKiB(pid_t pid, const char* field) {
    std::istringstream status(readFile("/proc/" + std::to_string(pid) + "/status"));
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(field, 0) == 0)
            return std::atol(line.c_str() + std::strlen(field));
    return -1;
}

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

int removeEntry(const char* path, const struct stat*, int, struct FTW*) {
    return ::remove(path);
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

    char rootTemplate[] = "/tmp/daemon-bench-XXXXXX";
    if (mkdtemp(rootTemplate) == nullptr)
        fail("mkdtemp");
    const std::string root = rootTemplate;
    for (const char* dir : {"/tmp", "/etc", "/etc/sysmgt", "/data", "/data/settings"})
        mkdir((root + dir).c_str(), 0777);
    for (const char* file :
         {"channel_data_set_vex.json", "vsrc_data_set.json", "zixistat_data_set.json", "srtstat_data_set.json"}) {
        std::ifstream in(std::string(SYSMGT_FACTORY_DIR) + "/" + file, std::ios::binary);
        std::ofstream(root + "/etc/sysmgt/" + file, std::ios::binary) << in.rdbuf();
    }
    setenv("SYSMGT_ROOT", root.c_str(), 1);
    gDbgLevel = 5;
    DbgPrintClient::getInstance();  // no collector: its lines are dropped, and the log stays silent anyway

    const pid_t simulator = launch(bin + "/appliance_sim --timeout 900 --traffic " + root + "/tmp/traffic.log >/dev/null");
    if (!waitUntil([&] { return readFile(root + "/tmp/traffic.log").find("appliance_sim ready") != std::string::npos; },
                   30))
        fail("appliance_sim did not start");
    const std::string daemonLine = prefix + bin + "/channel_manager -v 5 -s /tmp/cm.start >/dev/null 2>&1";
    auto started = [&] { return !readFile(root + "/tmp/cm.start").empty(); };

    // Start-up to start file.
    std::vector<double> startups;
    for (int run = 0; run < 10; ++run) {
        unlink((root + "/tmp/cm.start").c_str());
        const auto start = Clock::now();
        pid_t daemon = launch(daemonLine);
        if (!waitUntil(started, 60))
            fail("channel_manager did not write its start file");
        startups.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
        end(daemon);
    }
    std::printf("start-up to start file: median %.1f ms, min %.1f ms, max %.1f ms (10 starts)\n", median(startups),
                *std::min_element(startups.begin(), startups.end()),
                *std::max_element(startups.begin(), startups.end()));

    unlink((root + "/tmp/cm.start").c_str());
    pid_t daemon = launch(daemonLine);
    if (!waitUntil(started, 60))
        fail("channel_manager did not start");
    DataCommunicator engine;
    engine.init(nullptr, "/tmp/sockBenchCli", "/tmp/sockBenchCliSend", "tBench");
    std::printf("RSS after start-up: %ld KiB (anonymous %ld KiB, files %ld KiB)\n", residentKiB(daemon, "VmRSS:"),
                residentKiB(daemon, "RssAnon:"), residentKiB(daemon, "RssFile:"));

    const struct {
        const char* label;
        std::string text;
    } steps[] = {
        {"LOAD_CHANNELS Default", commandText("LOAD_CHANNELS", {{"File", "Default"}})},
        {"Play HEVC", commandText("Play", {{"RowID", "HEVC"}})},
        {"Stop HEVC", commandText("Stop", {{"RowID", "HEVC"}})},
    };
    for (const auto& step : steps) {
        std::vector<double> millis;
        Fcodes last = FC_OK;
        for (int run = 0; run < 10; ++run) {
            double took = 0;
            last = timedCommand(engine, step.text, took);
            millis.push_back(took);
            if (std::string(step.label) == "LOAD_CHANNELS Default") {
                timedCommand(engine, commandText("Stop", {{"RowID", "ALL"}}), took);
            }
        }
        std::printf("%-22s median %8.2f ms, max %8.2f ms (10 runs, answer %s)\n", step.label, median(millis),
                    *std::max_element(millis.begin(), millis.end()), fcodeText(last).c_str());
        if (std::string(step.label) == "LOAD_CHANNELS Default")
            std::printf("RSS after LOAD_CHANNELS: %ld KiB (peak %ld KiB; anonymous %ld KiB, files %ld KiB)\n",
                        residentKiB(daemon, "VmRSS:"), residentKiB(daemon, "VmHWM:"),
                        residentKiB(daemon, "RssAnon:"), residentKiB(daemon, "RssFile:"));
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
    std::printf("  raw     median %6.2f us  p99 %6.2f us\n", median(rawMicros), percentile99(rawMicros));
    std::printf("  daemon  median %6.2f us  p99 %6.2f us\n", median(daemonMicros), percentile99(daemonMicros));
    std::printf("  ratio   median %.2f  p99 %.2f\n", median(daemonMicros) / median(rawMicros),
                percentile99(daemonMicros) / percentile99(rawMicros));

    end(daemon);
    end(simulator);
    nftw(root.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
    return 0;
}
