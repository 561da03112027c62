#pragma once

// What the daemon benchmarks share: a temporary SYSMGT_ROOT with the factory
// data sets, appliance_sim and channel_manager started in it as processes,
// commands to the daemon, and its resident set. Every process it starts is
// ended by its pid; the root is removed at the end. Single-threaded use.

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "datacom/DataCommunicator.h"
#include "datacom/MessageParams.h"

namespace bench {

[[noreturn]] void fail(const std::string& what);
std::string readFile(const std::string& hostPath);
// Polls `ready` every 200 us until it holds (true) or `limitSec` passed (false).
bool waitUntil(const std::function<bool()>& ready, double limitSec);
// Runs `command` through /bin/sh (exec'd, so the pid is the command's).
pid_t launch(const std::string& command);
// SIGTERM, then SIGKILL after 10 s; reaps it.
void end(pid_t pid);
double median(std::vector<double> values);
double percentile(std::vector<double> values, int percent);
std::string commandText(const std::string& id, const datacom::MessageParams::ParamMap& params);
// A field of /proc/<pid>/status in KiB ("VmRSS:", "RssAnon:", "VmHWM:"); -1 without.
long statusKiB(pid_t pid, const char* field);

// The appliance on this machine: root, simulator, daemon.
class Appliance {
public:
    // Makes the root (SYSMGT_ROOT is set for this process too) and starts
    // appliance_sim from `bin`; the daemon is started by startDaemon.
    Appliance(const std::string& bin, const std::string& launchPrefix);
    ~Appliance();
    Appliance(const Appliance&) = delete;
    Appliance& operator=(const Appliance&) = delete;

    // Starts channel_manager at -v 5 and waits for its start file; its pid.
    pid_t startDaemon();
    void stopDaemon();
    pid_t daemon() const { return daemonPid; }
    const std::string& root() const { return rootDir; }

    // One command to the daemon through `engine`: its verdict (the ACK's or
    // NACK's Fcode) and the time it took.
    static datacom::Fcodes command(datacom::DataCommunicator& engine, const std::string& text, double& millis);

private:
    std::string bin, prefix, rootDir;
    pid_t simulator = -1, daemonPid = -1;
};

}  // namespace bench
