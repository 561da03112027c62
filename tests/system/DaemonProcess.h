#pragma once

#include <grp.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <fstream>
#include <functional>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "TestFiles.h"
#include "TestPaths.h"
#include "TestRoot.h"
#include "ToolCommand.h"
#include "datacom/DataCommunicator.h"
#include "datacom/IEngineHooks.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"
#include "datacom/SysmgtRoot.h"

// The processes of the system tests and the test's own peer: every wait is
// bounded, every process ends by its pid.

// chanctl's options that aim it at the simulated mediator's socket.
inline const std::string AT_MEDIATOR = "--socket /tmp/sockTarnevelMediator ";

// Polls `ready` every 20 ms until it holds or `limitSec` passed; its last answer.
template <typename Condition>
bool waitFor(Condition ready, double limitSec) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::duration<double>(limitSec);
    while (!ready()) {
        if (std::chrono::steady_clock::now() >= limit)
            return ready();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

// The test user's own group: what the service's "-g sysmgt" becomes on a machine without that group.
inline std::string ownGroupName() {
    const group* own = getgrgid(getegid());
    return own ? own->gr_name : std::to_string(getegid());
}

inline bool fileExists(const std::string& logicalPath) {
    struct stat info {};
    return stat(datacom::sysmgtPath(logicalPath).c_str(), &info) == 0;
}

// A process started through the shell (`command` is exec'd, so the pid is the
// tool's own). The destructor ends it by its pid: SIGTERM, then SIGKILL after
// a bounded wait.
class ChildProcess {
public:
    ChildProcess() = default;
    explicit ChildProcess(const std::string& command) { start(command); }
    ~ChildProcess() { stop(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    void start(const std::string& command) {
        const std::string line = "exec " + command;
        pid = fork();
        if (pid == 0) {
            execl("/bin/sh", "sh", "-c", line.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
    }
    pid_t id() const { return pid; }
    // True while the process has not ended (it is reaped when it has).
    bool running() {
        if (pid <= 0)
            return false;
        int raw = 0;
        if (waitpid(pid, &raw, WNOHANG) != pid)
            return true;
        status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        pid = -1;
        return false;
    }
    // Waits a bounded time for the process to end by itself; its exit status, -1 otherwise.
    int wait(double limitSec) {
        waitFor([this] { return !running(); }, limitSec);
        return pid > 0 ? -1 : status;
    }
    // Ends the process (SIGTERM, then SIGKILL after 10 s); its exit status, -1 when it did not end normally.
    int stop() {
        if (pid <= 0)
            return status;
        kill(pid, SIGTERM);
        int raw = 0;
        const bool reaped = waitFor([&] { return waitpid(pid, &raw, WNOHANG) == pid; }, 10);
        if (!reaped) {
            kill(pid, SIGKILL);
            waitpid(pid, &raw, 0);
        }
        status = reaped && WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
        pid = -1;
        return status;
    }

private:
    pid_t pid = -1;
    int status = -1;
};

// appliance_sim as a real process in the current root, writing its traffic
// to /tmp/traffic.log. It ends by itself after `timeoutSec`.
class SimProcess : public ChildProcess {
public:
    static constexpr double START_LIMIT_SEC = 30;  // under qemu-arm and sanitizers too

    explicit SimProcess(int timeoutSec = 60)
        : ChildProcess(toolCommand("appliance_sim") + " --timeout " + std::to_string(timeoutSec) + " --traffic " +
                       datacom::sysmgtPath("/tmp/traffic.log") + " >/dev/null") {}
    std::string traffic() const { return readText("/tmp/traffic.log"); }
    // True once the simulator said it is ready (its sockets bound, its data loaded).
    bool waitReady() const { return waitTraffic("appliance_sim ready", START_LIMIT_SEC); }
    // True once a traffic line holds `text`.
    bool waitTraffic(const std::string& text, double limitSec = 10) const {
        return waitFor([&] { return traffic().find(text) != std::string::npos; }, limitSec);
    }
};

// A run of chanctl to its end: standard output and error together, exit status.
struct ToolRun {
    std::string output;
    int status = -1;
};

// chanctl with `args` (quoted for the shell), started; read it with finishTool.
inline FILE* startChanctl(const std::string& args) {
    return popen((toolCommand("chanctl") + " " + args + " 2>&1").c_str(), "r");
}

inline ToolRun finishTool(FILE* pipe) {
    ToolRun run;
    if (pipe == nullptr)
        return run;
    char buffer[512];
    while (fgets(buffer, sizeof buffer, pipe) != nullptr)
        run.output += buffer;
    int raw = pclose(pipe);
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return run;
}

inline ToolRun chanctl(const std::string& args, int timeoutSec = 20) {
    return finishTool(startChanctl("--timeout " + std::to_string(timeoutSec) + " " + args));
}

// Copies the factory datasets of etc/sysmgt into the root's /etc/sysmgt.
inline bool installFactoryData() {
    bool copied = true;
    for (const char* file :
         {"channel_data_set_vex.json", "vsrc_data_set.json", "zixistat_data_set.json", "srtstat_data_set.json"}) {
        std::ifstream in(std::string(testpaths::FACTORY_DIR) + "/" + file, std::ios::binary);
        std::ofstream out(datacom::sysmgtPath(std::string("/etc/sysmgt/") + file), std::ios::binary);
        out << in.rdbuf();
        copied = copied && in.good() && out.good();
    }
    return copied;
}

// The channel manager as the appliance runs it, in a fresh root of its own: the log
// collector (its lines in /tmp/dbg.log), the simulated peers, and the daemon
// (its standard output and error in /tmp/daemon.out) with its start file
// /tmp/cm.start. The destructor ends the three by pid.
class DaemonSession {
public:
    static constexpr double START_LIMIT_SEC = 60;  // under qemu-arm and sanitizers too
    static constexpr const char* START_FILE = "/tmp/cm.start";

    // `startFile`: the one the daemon is told to write and the session waits
    // for; empty: no daemon (the test starts its own).
    explicit DaemonSession(const std::string& daemonOptions = "", int simTimeoutSec = 120,
                           const std::string& startFile = START_FILE)
        : simulator(simTimeoutSec), startFile(startFile) {
        factoryInstalled = installFactoryData();
        logger.start(toolCommand("dbglog") + " --timeout " + std::to_string(simTimeoutSec) + " > " +
                     datacom::sysmgtPath("/tmp/dbg.log"));
        loggerReady = waitFor([] { return fileExists("/tmp/sockDbg"); }, START_LIMIT_SEC);
        simulatorReady = simulator.waitReady();
        if (loggerReady && simulatorReady && !startFile.empty())
            startDaemon(daemonOptions);
    }
    ~DaemonSession() {
        daemon.stop();
        simulator.stop();
        logger.stop();
    }

    void startDaemon(const std::string& options = "") {
        unlink(datacom::sysmgtPath(startFile).c_str());
        daemon.start(toolCommand("channel_manager") + " -s " + startFile + " " + options + " > " +
                     datacom::sysmgtPath("/tmp/daemon.out") + " 2>&1");
        daemonReady = waitFor([this] { return !readText(startFile).empty(); }, START_LIMIT_SEC);
    }
    // Ends the daemon only, as a power cut would (SIGKILL, no clean-up).
    void killDaemon() {
        if (daemon.id() > 0)
            kill(daemon.id(), SIGKILL);
        daemon.wait(10);
    }
    bool ready() const {
        return factoryInstalled && loggerReady && simulatorReady && (daemonReady || startFile.empty());
    }

    std::string log() const { return readText("/tmp/dbg.log"); }
    std::string daemonOutput() const { return readText("/tmp/daemon.out"); }
    bool waitLog(const std::string& text, double limitSec = 20) const {
        return waitFor([&] { return log().find(text) != std::string::npos; }, limitSec);
    }
    // Everything the daemon, its peers and the log said, for a failure message.
    std::string everything() const {
        return "--- daemon output\n" + daemonOutput() + "--- traffic\n" + simulator.traffic() + "--- log\n" + log();
    }

    TestRoot root;  // made first, removed last
    ChildProcess logger;
    SimProcess simulator;
    ChildProcess daemon;

private:
    std::string startFile;
    bool factoryInstalled = false;
    bool loggerReady = false;
    bool simulatorReady = false;
    bool daemonReady = false;
};

// The test's own peer, as the front end or any other service would be: an
// engine on sockets of its own that keeps every event it receives. Make it
// inside the root of the processes it talks to. Events arrive on the engine's
// server thread; the test reads them under the same mutex.
class PeerClient : public datacom::IEngineHooks {
public:
    explicit PeerClient(const std::string& socket = "/tmp/sockFrontEnd") : socket(socket) {
        engine.init(this, socket, socket + "Send", "tPeerClient");
        engine.start();
    }
    ~PeerClient() override { engine.stop(); }

    datacom::Fcodes handle(datacom::MessageEvent* event) override {
        std::unique_ptr<datacom::MessageEvent> owned(event);
        std::lock_guard<std::mutex> guard(mutex);
        events.push_back(*owned);
        arrived.notify_all();
        return datacom::FC_OK;
    }
    // Subscribes to the events of `peer`.
    datacom::Fcodes subscribe(const std::string& peer = "/tmp/sockChan") {
        return command(peer, "SUBSCRIBE", {{"SockName", socket}});
    }

    // Sends a command (one try) and returns the peer's verdict: the Fcode of its
    // ACK or of its NACK, the type of which is kept in `lastReplyType` (the
    // engine's own requestCommand would turn a NACK into "Message Header Error").
    datacom::Fcodes command(const std::string& peer, const std::string& id,
                            const datacom::MessageParams::ParamMap& params = {}, unsigned timeoutSec = 30) {
        datacom::MessageCommand request;
        request.setId(id);
        request.params = params;
        std::string text, replyBody;
        request.toString(text);
        const std::string body = "<BODY>\n\t" + text + "\n</BODY>\n";
        datacom::MessageHeader header, reply;
        header.ID = 100;
        header.Type = "COMMAND";
        header.Size = static_cast<int32_t>(body.size());
        lastReplyType.clear();
        const datacom::Fcodes code = engine.sendRequest(peer, header, body, reply, replyBody, timeoutSec, 1);
        if (!datacom::isOk(code))
            return code;
        lastReplyType = reply.Type;
        return reply.Type == "ACK" || reply.Type == "NACK" ? reply.Fcode : datacom::FC_HEADER_ERROR;
    }
    // The same to the channel manager.
    datacom::Fcodes command(const std::string& id, const datacom::MessageParams::ParamMap& params = {},
                            unsigned timeoutSec = 30) {
        return command("/tmp/sockChan", id, params, timeoutSec);
    }

    // Waits a bounded time for an event that `match` accepts; true with it in `found`.
    bool waitEvent(const std::function<bool(const datacom::MessageEvent&)>& match, datacom::MessageEvent& found,
                   int limitSec = 30) {
        std::unique_lock<std::mutex> lock(mutex);
        return arrived.wait_for(lock, std::chrono::seconds(limitSec), [&] {
            for (const datacom::MessageEvent& event : events)
                if (match(event)) {
                    found = event;
                    return true;
                }
            return false;
        });
    }
    bool waitEvent(const std::string& id, datacom::MessageEvent& found, int limitSec = 30) {
        return waitEvent([&](const datacom::MessageEvent& event) { return event.id == id; }, found, limitSec);
    }
    // A configuration event ("Channels Loaded", "Channels Stored") naming `file`.
    bool waitFileEvent(const std::string& id, const std::string& file, datacom::MessageEvent& found,
                       int limitSec = 30) {
        return waitEvent(
            [&](const datacom::MessageEvent& event) {
                std::string named;
                return event.id == id && event.getParam("File", named) && named == file;
            },
            found, limitSec);
    }
    std::vector<std::string> ids() {
        std::lock_guard<std::mutex> guard(mutex);
        std::vector<std::string> out;
        for (const datacom::MessageEvent& event : events)
            out.push_back(event.id);
        return out;
    }

    datacom::DataCommunicator engine;
    std::string lastReplyType;

private:
    std::string socket;
    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<datacom::MessageEvent> events;
};

// FrontEnd is the front end's side of a daemon session.
using FrontEnd = PeerClient;
