// engine_roundtrip: the round trip of a "Set DVI mode" COMMAND (about 300
// bytes out, an ACK back) between two messaging engines in two processes at
// log level 5, as a quiet daemon runs, against a raw local datagram ping-pong
// of the same sizes with no parsing. Both are measured with both processes
// pinned to cpu 0 and unpinned; median, 99th percentile and their ratios are
// printed. Sockets live under a temporary SYSMGT_ROOT, removed at the end.
//
// Usage: engine_roundtrip [round trips per measurement, default 20000]
#include <fcntl.h>
#include <ftw.h>
#include <poll.h>
#include <sched.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageTypes.h"
#include "datacom/NullDataHolder.h"
#include "engine/LocalAddress.h"

using namespace datacom;

namespace {

constexpr const char* ENGINE_SERVER = "/tmp/sockBenchSrv";
constexpr const char* ENGINE_CLIENT = "/tmp/sockBenchCli";
constexpr const char* RAW_SERVER = "/tmp/sockRawSrv";
constexpr const char* RAW_CLIENT = "/tmp/sockRawCli";
constexpr int ROUNDS = 4;  // raw and engine alternate, so that drift hits both alike
constexpr int WARM_UP = 500;

// Answers every command with "OK" and no payload, as a daemon's execute does
// for a command that needs no answer text.
class AckingHolder : public NullDataHolder {
public:
    Fcodes execute(const std::string&, std::string& result) override {
        result.clear();
        return FC_OK;
    }
};

std::string dviModeCommand() {
    MessageCommand command;
    command.setId("Set DVI mode");
    command.addParam("RowID", "HEVC");
    command.addParam("DviMode", "1920x1080p59.94");
    command.addParam("ColorSpace", "YCbCr 4:2:2");
    command.addParam("AspectRatio", "16:9");
    std::string text;
    command.toString(text);
    return text;
}

// The sizes of the engine's datagrams, for the raw ping-pong to copy.
size_t commandDatagramSize(const std::string& command) {
    MessageHeader header;
    header.ID = 10000;
    header.Type = msgtype::COMMAND;
    header.Size = static_cast<int32_t>(command.size() + 18);
    std::string text;
    header.toString(text);
    return text.size() + command.size() + 18;
}

size_t ackDatagramSize() {
    MessageHeader header;
    header.ID = 10000;
    header.Type = msgtype::ACK;
    std::string text;
    header.toString(text);
    return text.size();
}

[[noreturn]] void fail(const char* what) {
    std::perror(what);
    std::exit(1);
}

// Runs `serve` in a child process, which calls `ready()` once it serves.
pid_t spawn(const std::function<void(const std::function<void()>&)>& serve) {
    std::fflush(stdout);  // or the child would print the parent's pending lines again
    int ends[2];
    if (pipe(ends) != 0)
        fail("pipe");
    pid_t child = fork();
    if (child < 0)
        fail("fork");
    if (child == 0) {
        close(ends[0]);
        serve([&] {
            char one = 1;
            if (write(ends[1], &one, 1) != 1)
                _exit(2);
        });
        _exit(0);
    }
    close(ends[1]);
    pollfd entry{ends[0], POLLIN, 0};
    char byte = 0;
    if (poll(&entry, 1, 5000) != 1 || read(ends[0], &byte, 1) != 1) {
        kill(child, SIGKILL);
        waitpid(child, nullptr, 0);
        std::fprintf(stderr, "engine_roundtrip: server process did not start\n");
        std::exit(1);
    }
    close(ends[0]);
    return child;
}

void endChild(pid_t child) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
}

template <typename RoundTrip>
void measure(int count, RoundTrip roundTrip, std::vector<double>& micros) {
    for (int i = 0; i < WARM_UP; ++i)
        roundTrip();
    for (int i = 0; i < count; ++i) {
        auto start = std::chrono::steady_clock::now();
        roundTrip();
        micros.push_back(std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start).count());
    }
}

void timeEngine(int count, const std::string& command, std::vector<double>& micros) {
    pid_t server = spawn([](const std::function<void()>& ready) {
        AckingHolder holder;
        DataCommunicator engine;
        engine.init(&holder, ENGINE_SERVER, "/tmp/sockBenchSrvSend", "tBenchSrv");
        engine.start();
        ready();
        pause();
    });
    DataCommunicator client;
    client.init(nullptr, ENGINE_CLIENT, "/tmp/sockBenchCliSend", "tBenchCli");
    std::string reply;
    measure(
        count,
        [&] {
            if (client.requestCommand(ENGINE_SERVER, command, reply, 10, 3) != FC_OK) {
                endChild(server);
                std::fprintf(stderr, "engine_roundtrip: a command failed\n");
                std::exit(1);
            }
        },
        micros);
    endChild(server);
}

int boundSocket(const char* logicalPath) {
    int sock = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    LocalAddress address;
    address.setLogicalPath(logicalPath);
    unlink(address.path().c_str());
    if (sock < 0 || bind(sock, address.get(), address.length()) != 0)
        fail("raw socket");
    return sock;
}

void timeRaw(int count, size_t outSize, size_t backSize, std::vector<double>& micros) {
    pid_t server = spawn([backSize](const std::function<void()>& ready) {
        prctl(PR_SET_NAME, "rawServer", 0, 0, 0);  // tells the two servers apart in a profile
        int sock = boundSocket(RAW_SERVER);
        std::vector<char> buffer(70000), answer(backSize, 'a');
        ready();
        for (;;) {
            LocalAddress from;
            if (recvfrom(sock, buffer.data(), buffer.size(), 0, from.get(), &from.length()) > 0)
                sendto(sock, answer.data(), answer.size(), 0, from.get(), from.length());
        }
    });
    int sock = boundSocket(RAW_CLIENT);
    LocalAddress to;
    to.setLogicalPath(RAW_SERVER);
    std::vector<char> out(outSize, 'c'), buffer(70000);
    measure(
        count,
        [&] {
            if (sendto(sock, out.data(), out.size(), 0, to.get(), to.length()) < 0 ||
                recv(sock, buffer.data(), buffer.size(), 0) <= 0) {
                endChild(server);
                fail("raw ping-pong");
            }
        },
        micros);
    close(sock);
    endChild(server);
}

struct Figures {
    double median;
    double p99;
};

Figures summarise(std::vector<double>& micros) {
    std::sort(micros.begin(), micros.end());
    return {micros[micros.size() / 2], micros[micros.size() * 99 / 100]};
}

void setAffinity(bool pinned) {
    cpu_set_t cpus;
    CPU_ZERO(&cpus);
    const long online = sysconf(_SC_NPROCESSORS_ONLN);
    for (long cpu = 0; cpu < (pinned ? 1 : online); ++cpu)
        CPU_SET(static_cast<int>(cpu), &cpus);
    if (sched_setaffinity(0, sizeof cpus, &cpus) != 0)
        fail("sched_setaffinity");
}

void run(const char* label, bool pinned, int count, const std::string& command) {
    setAffinity(pinned);  // inherited by the server processes
    const size_t outSize = commandDatagramSize(command), backSize = ackDatagramSize();
    std::vector<double> raw, engine;
    for (int round = 0; round < ROUNDS; ++round) {
        timeRaw(count / ROUNDS, outSize, backSize, raw);
        timeEngine(count / ROUNDS, command, engine);
    }
    Figures r = summarise(raw), e = summarise(engine);
    std::printf(
        "%-9s raw median %6.2f us  p99 %6.2f us | engine median %6.2f us  p99 %6.2f us | "
        "ratio median %.2f  p99 %.2f\n",
        label, r.median, r.p99, e.median, e.p99, e.median / r.median, e.p99 / r.p99);
}

int removeEntry(const char* path, const struct stat*, int, struct FTW*) {
    return ::remove(path);
}

}  // namespace

int main(int argc, char** argv) {
    const int count = argc > 1 ? std::max(ROUNDS, std::atoi(argv[1])) : 20000;
    char root[] = "/tmp/engine-bench-XXXXXX";
    if (mkdtemp(root) == nullptr)
        fail("mkdtemp");
    mkdir((std::string(root) + "/tmp").c_str(), 0777);
    setenv("SYSMGT_ROOT", root, 1);
    gDbgLevel = 5;
    // Made here once, so that the server processes inherit it: there is no
    // log collector in the temporary root, and the log stays silent anyway.
    DbgPrintClient::getInstance();

    const std::string command = dviModeCommand();
    std::printf("engine_roundtrip: COMMAND %zu bytes out, ACK %zu bytes back, %d round trips each, log level %d\n",
                commandDatagramSize(command), ackDatagramSize(), count, gDbgLevel.load());
    run("pinned", true, count, command);
    run("unpinned", false, count, command);

    nftw(root, removeEntry, 16, FTW_DEPTH | FTW_PHYS);
    return 0;
}
