#pragma once

#include <signal.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include "system/SysmgtRoot.h"
#include "ToolCommand.h"

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

// The whole text of a host file ("" when missing).
inline std::string readText(const std::string& hostPath) {
    std::ifstream in(hostPath);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

// appliance_sim running as a real process in the test's root, writing its
// traffic to <root>/tmp/traffic.log. It ends by itself after `timeoutSec`;
// the destructor kills it by its pid and reaps it, waiting a bounded time.
class SimProcess {
public:
    static constexpr double START_LIMIT_SEC = 30;  // under qemu-arm and sanitizers too

    explicit SimProcess(int timeoutSec = 60) {
        const std::string command = "exec " + toolCommand("appliance_sim") + " --timeout " +
                                    std::to_string(timeoutSec) + " --traffic " + trafficPath() + " >/dev/null";
        pid = fork();
        if (pid == 0) {
            execl("/bin/sh", "sh", "-c", command.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
    }
    ~SimProcess() { stop(); }
    SimProcess(const SimProcess&) = delete;
    SimProcess& operator=(const SimProcess&) = delete;

    static std::string trafficPath() { return sysmgtPath("/tmp/traffic.log"); }
    std::string traffic() const { return readText(trafficPath()); }

    // True once the simulator said it is ready (its sockets bound, its data loaded).
    bool waitReady() const {
        return pid > 0 &&
               waitFor([this] { return traffic().find("appliance_sim ready") != std::string::npos; }, START_LIMIT_SEC);
    }
    // True once a traffic line holds `text`.
    bool waitTraffic(const std::string& text, double limitSec = 10) const {
        return waitFor([&] { return traffic().find(text) != std::string::npos; }, limitSec);
    }
    // Ends the simulator (SIGTERM, then SIGKILL after 10 s) and returns its
    // exit status, -1 when it did not end normally.
    int stop() {
        if (pid <= 0)
            return status;
        kill(pid, SIGTERM);
        int raw = 0;
        bool reaped = waitFor([&] { return waitpid(pid, &raw, WNOHANG) == pid; }, 10);
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
