#include "BenchAppliance.h"

#include <ftw.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <thread>

#include "datacom/DbgPrintClient.h"
#include "datacom/MessageCommand.h"
#include "datacom/MessageTypes.h"

using namespace datacom;

namespace bench {

using Clock = std::chrono::steady_clock;

void fail(const std::string& what) {
    std::fprintf(stderr, "bench: %s\n", what.c_str());
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
    return percentile(std::move(values), 50);
}

double percentile(std::vector<double> values, int percent) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() * static_cast<size_t>(percent) / 100];
}

std::string commandText(const std::string& id, const MessageParams::ParamMap& params) {
    MessageCommand command;
    command.setId(id);
    command.params = params;
    std::string text;
    command.toString(text);
    return text;
}

long statusKiB(pid_t pid, const char* field) {
    std::istringstream status(readFile("/proc/" + std::to_string(pid) + "/status"));
    std::string line;
    while (std::getline(status, line))
        if (line.rfind(field, 0) == 0)
            return std::atol(line.c_str() + std::strlen(field));
    return -1;
}

namespace {

int removeEntry(const char* path, const struct stat*, int, struct FTW*) {
    return ::remove(path);
}

}  // namespace

Appliance::Appliance(const std::string& binDir, const std::string& launchPrefix) : bin(binDir), prefix(launchPrefix) {
    char rootTemplate[] = "/tmp/daemon-bench-XXXXXX";
    if (mkdtemp(rootTemplate) == nullptr)
        fail("mkdtemp");
    rootDir = rootTemplate;
    for (const char* dir : {"/tmp", "/etc", "/etc/sysmgt", "/data", "/data/settings"})
        mkdir((rootDir + dir).c_str(), 0777);
    for (const char* file :
         {"channel_data_set_vex.json", "vsrc_data_set.json", "zixistat_data_set.json", "srtstat_data_set.json"}) {
        std::ifstream in(std::string(SYSMGT_FACTORY_DIR) + "/" + file, std::ios::binary);
        std::ofstream(rootDir + "/etc/sysmgt/" + file, std::ios::binary) << in.rdbuf();
    }
    setenv("SYSMGT_ROOT", rootDir.c_str(), 1);
    gDbgLevel = 5;
    DbgPrintClient::getInstance();  // no collector: its lines are dropped, and the log stays silent anyway

    simulator = launch(bin + "/appliance_sim --timeout 3600 --traffic /dev/null >/dev/null");
    // The simulator is ready when its three sockets are bound.
    if (!waitUntil(
            [&] {
                struct stat info {};
                return stat((rootDir + "/tmp/sockSap").c_str(), &info) == 0;
            },
            30))
        fail("appliance_sim did not start");
}

Appliance::~Appliance() {
    stopDaemon();
    end(simulator);
    nftw(rootDir.c_str(), removeEntry, 16, FTW_DEPTH | FTW_PHYS);
}

pid_t Appliance::startDaemon() {
    const std::string startFile = rootDir + "/tmp/cm.start";
    unlink(startFile.c_str());
    daemonPid = launch(prefix + bin + "/channel_manager -v 5 -s /tmp/cm.start >/dev/null 2>&1");
    if (!waitUntil([&] { return !readFile(startFile).empty(); }, 60))
        fail("channel_manager did not write its start file");
    return daemonPid;
}

void Appliance::stopDaemon() {
    end(daemonPid);
    daemonPid = -1;
}

Fcodes Appliance::command(DataCommunicator& engine, const std::string& text, double& millis) {
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

}  // namespace bench
