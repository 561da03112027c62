// appliance_sim: the appliance's peer services on one machine, for work and
// tests on the channel manager and its tools without the appliance. It serves
// the media mediator, the device manager and the SAP announcer on their
// sockets, prints every message it sees, and takes control commands that
// inject failures, set parameters and emit events.
#include <getopt.h>
#include <signal.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

#include "SimServices.h"
#include "SimVocabulary.h"
#include "TrafficLog.h"
#include "datacom/WireConstants.h"

using namespace datacom;

namespace {

const char* const USAGE =
    "Usage: appliance_sim [--traffic FILE] [--params FILE] [--device FILE] [--timeout S]\n"
    "Serves the appliance's peer services under SYSMGT_ROOT (or /):\n"
    "  /tmp/sockTarnevelMediator  media mediator: SUBSCRIBE, the \"Tarnevel ...\" commands,\n"
    "                             events \"Tarnevel Branch Started\"/\"Stopped\" (Source = branch)\n"
    "  /tmp/sockDev               device manager: SUBSCRIBE, GET/SET of \"DeviceDataSet\",\n"
    "                             \"Toggle KLVoSDI Input\", \"Reset KLVoSDI Statistics\",\n"
    "                             \"Reset KLVoIP Statistics\", \"Reset KLV Statistics\"\n"
    "  /tmp/sockSap               SAP announcer: START_SAP, STOP_SAP, STOP ALL SAP\n"
    "Each message in and out is printed on one line.\n"
    "\n"
    "Options:\n"
    "  --traffic FILE  also write the traffic lines to FILE\n"
    "  --params FILE   the mediator's parameters (JSON: component -> parameter -> value)\n"
    "  --device FILE   the device manager's \"DeviceDataSet\" (JSON data set)\n"
    "  --timeout S     end by itself after S seconds (default: run until SIGINT/SIGTERM)\n"
    "  --help          this text\n"
    "\n"
    "Control commands, served on every socket (send them with chanctl command --socket):\n"
    "  \"Sim Fail\" Command=ID [Count=N] [Mode=Fcode|NACK|Silent] [Fcode=CODE]\n"
    "      the next N (1) requests of command ID (or GET, SET) answer an ACK with\n"
    "      CODE (default 0x10100), a NACK with CODE, or nothing at all\n"
    "  \"Sim Emit Event\" Event=ID [Source=S] [Status=S] [Description=D] [Severity=S]\n"
    "      [Fcode=CODE] [NAME=VALUE...]  sends the event to the socket's subscribers\n"
    "  \"Sim Set Param\" Component=C Parameter=P Value=V  (mediator) sets a parameter\n"
    "  \"Sim Set Input\" Source=ROW \"Input Detected=FORMAT\"  (mediator) the receiver of\n"
    "      the video source ROW (HD-SDI, Composite, DVI-D, HDMI) detects FORMAT (None:\n"
    "      no signal) and \"Auto Detection Event\" goes to the subscribers\n"
    "  A Zixi feeder's or SRT sender's \"Update Stats\" = 1 advances its statistics\n"
    "  \"Sim Report\"  answers Report = branches, writes, commands, streams and the\n"
    "      failures still pending, one a line\n";

struct Options {
    std::string traffic;
    std::string params = std::string(APPLIANCE_SIM_DATA_DIR) + "/mediator_params.json";
    std::string device = std::string(APPLIANCE_SIM_DATA_DIR) + "/device_data_set.json";
    long timeoutSec = 0;
};

// 0 to run, 1 for a usage error, 2 after --help.
int parseOptions(int argc, char** argv, Options& options) {
    static const option LONG_OPTIONS[] = {
        {"help", no_argument, nullptr, 'h'},          {"traffic", required_argument, nullptr, 't'},
        {"params", required_argument, nullptr, 'p'},  {"device", required_argument, nullptr, 'd'},
        {"timeout", required_argument, nullptr, 'T'}, {nullptr, 0, nullptr, 0}};
    int option;
    while ((option = getopt_long(argc, argv, "", LONG_OPTIONS, nullptr)) != -1) {
        switch (option) {
            case 'h':
                fputs(USAGE, stdout);
                return 2;
            case 't':
                options.traffic = optarg;
                break;
            case 'p':
                options.params = optarg;
                break;
            case 'd':
                options.device = optarg;
                break;
            case 'T': {
                char* end = nullptr;
                errno = 0;
                options.timeoutSec = strtol(optarg, &end, 10);
                if (*optarg == '\0' || *end != '\0' || errno != 0 || options.timeoutSec <= 0) {
                    fprintf(stderr, "appliance_sim: --timeout needs a positive number of seconds\n");
                    return 1;
                }
                break;
            }
            default:
                fputs(USAGE, stderr);
                return 1;
        }
    }
    if (optind < argc) {
        fprintf(stderr, "appliance_sim: unexpected argument '%s'\n", argv[optind]);
        return 1;
    }
    return 0;
}

// Waits for SIGINT or SIGTERM (blocked in every thread), or the time-out.
void waitForEnd(const sigset_t& endSignals, long timeoutSec) {
    if (timeoutSec <= 0) {
        int signal = 0;
        sigwait(&endSignals, &signal);
        return;
    }
    timespec limit{};
    clock_gettime(CLOCK_MONOTONIC, &limit);
    limit.tv_sec += timeoutSec;
    for (;;) {
        timespec now{};
        clock_gettime(CLOCK_MONOTONIC, &now);
        if (now.tv_sec > limit.tv_sec || (now.tv_sec == limit.tv_sec && now.tv_nsec >= limit.tv_nsec))
            return;
        timespec left{limit.tv_sec - now.tv_sec, limit.tv_nsec - now.tv_nsec};
        if (left.tv_nsec < 0) {
            left.tv_sec -= 1;
            left.tv_nsec += 1000000000L;
        }
        if (sigtimedwait(&endSignals, nullptr, &left) >= 0 || errno != EINTR)
            return;
    }
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (int parsed = parseOptions(argc, argv, options))
        return parsed == 2 ? 0 : 1;

    TrafficLog traffic;
    if (!options.traffic.empty() && !traffic.openFile(options.traffic)) {
        fprintf(stderr, "appliance_sim: cannot write the traffic file %s\n", options.traffic.c_str());
        return 1;
    }
    // Blocked before any thread starts, so that every thread inherits it and
    // only waitForEnd takes the signals.
    sigset_t endSignals;
    sigemptyset(&endSignals);
    sigaddset(&endSignals, SIGINT);
    sigaddset(&endSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &endSignals, nullptr);
    // A subscriber that went away must not end the simulator.
    signal(SIGPIPE, SIG_IGN);

    MediatorService mediator(traffic);
    DeviceService device(traffic);
    SapService sap(traffic);
    std::string paramsText, error;
    if (!readHostFile(options.params, paramsText)) {
        fprintf(stderr, "appliance_sim: cannot read the parameter file %s\n", options.params.c_str());
        return 1;
    }
    if (!isOk(mediator.model().loadParams(paramsText, error))) {
        fprintf(stderr, "appliance_sim: %s: %s\n", options.params.c_str(), error.c_str());
        return 1;
    }
    if (!mediator.start(wire::SOCK_MEDIATOR, sim::SOCK_SEND_MEDIATOR) ||
        !device.start(wire::SOCK_DEV, sim::SOCK_SEND_DEV) || !sap.start(wire::SOCK_SAP, sim::SOCK_SEND_SAP)) {
        fprintf(stderr, "appliance_sim: cannot start a serving thread\n");
        return 1;
    }
    if (!isOk(device.loadDataSetFile(options.device, error))) {
        fprintf(stderr, "appliance_sim: %s\n", error.c_str());
        return 1;
    }
    traffic.note("appliance_sim ready");
    waitForEnd(endSignals, options.timeoutSec);
    traffic.note("appliance_sim ends");
    return 0;
}
