// Long random days of the daemon, through what reaches it from outside only:
// the operator's commands on its socket and the mediator's events, with the
// mediator restarting or refusing a request now and then. After every step:
// a stopped channel has nothing streaming at the mediator; a playing one's
// encoder runs the video bitrate the channel shows; a channel its input
// stopped plays again once a valid input is back, unless its operator
// stopped it; every command is answered.
//
// Seeded and bounded: SYSMGT_SEQUENCE_SEED (default 1, 2, 3), each
// SYSMGT_SEQUENCE_STEPS steps long (default 40). SYSMGT_SEQUENCE_MINUTES runs
// consecutive seeds for that many minutes (the fuzz leg's long run). A failed
// check names the seed to run again and the steps the failure still needs
// (steps dropped one by one while the fault stays).
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <map>
#include <random>
#include <sstream>

#include "support/ManagerHarness.h"

using namespace datacom;
using namespace vocab;

namespace {

enum class Kind {
    Play,
    Stop,
    Profile,
    Protocol,
    Bitrate,
    Rollback,
    Activate,
    OnTheFly,
    Zixi,
    Input,
    DataStream,
    Restart,
    Refuse,
    Load
};
const char* const KIND_NAMES[] = {"Play",     "Stop", "Profile", "Protocol",   "Bitrate", "Rollback", "Activate",
                                  "OnTheFly", "Zixi", "Input",   "DataStream", "Restart", "Refuse",   "Load"};

struct Step {
    Kind kind;
    int channel;  // 0 "H.264", 1 "HEVC"
    int value;    // which value of the step's list
};

const char* const ROWS[] = {row::H264, row::HEVC};
const char* const SOURCES[] = {value::SRC_HD_SDI, value::SRC_HDMI};
const char* const FEEDERS[] = {"Zixi Feeder CH0", "Zixi Feeder CH1"};
const char* const TARGETS[] = {"H.264 Target1", "HEVC Target1"};
// Inputs per channel: the one its encoding format is made from (another
// frame rate could move its "Frame Sampling", and with it what is valid),
// one it is not made from, none.
const char* const INPUTS[2][3] = {{"1920x1080i @ 25", "2048x1080p @ 24", "None"},
                                  {"1280x720p @ 50", "2048x1080p @ 24", "None"}};
const char* const PROFILES[] = {"Broadcast - Broadband", value::PROFILE_ULL};
const char* const PROTOCOLS[] = {value::UDP_TS, value::SRT, value::ZIXI, value::RTP_TS};
const char* const REFUSED[] = {"Tarnevel Start Branch", "Tarnevel Stop Branch", "Tarnevel Get Branch State"};
const int BITRATES[] = {3000000, 5000000, 8000000};

std::string describe(const Step& s) {
    return std::string(KIND_NAMES[static_cast<int>(s.kind)]) + "(" + ROWS[s.channel] + "," + std::to_string(s.value) +
           ")";
}

std::vector<Step> generate(uint32_t seed, int count) {
    std::mt19937 random(seed);
    // Weights: commands and events often, restarts and loads now and then.
    const int weights[] = {8, 6, 4, 4, 4, 3, 4, 4, 4, 10, 4, 1, 2, 1};
    std::discrete_distribution<int> kind(std::begin(weights), std::end(weights));
    std::vector<Step> steps;
    steps.reserve(count);
    for (int i = 0; i < count; ++i)
        steps.push_back(
            {static_cast<Kind>(kind(random)), static_cast<int>(random() % 2), static_cast<int>(random() % 12)});
    return steps;
}

int envNumber(const char* name, int fallback) {
    const char* text = std::getenv(name);
    return text && *text ? std::atoi(text) : fallback;
}

// One run of a sequence against a fresh appliance; the first broken
// invariant, "" when none.
class Day {
public:
    Day() {
        h.manager.setPeerWatchPeriod(std::chrono::milliseconds(20));
        h.logLevel(DBG_WARN);
    }

    std::string run(const std::vector<Step>& steps) {
        if (!h.ready())
            return "harness not ready";
        std::string broken = send(cmd::LOAD_CHANNELS, {{"File", "Default"}});
        for (int c = 0; c < 2 && broken.empty(); ++c)
            input(c, 0);
        for (size_t i = 0; i < steps.size() && broken.empty(); ++i) {
            broken = apply(steps[i]);
            if (broken.empty())
                broken = check();
            if (!broken.empty())
                broken = "step " + std::to_string(i) + " " + describe(steps[i]) + ": " + broken;
            h.takeLog();
        }
        return broken;
    }

private:
    // The operator's command, through the daemon's socket; "" once answered.
    std::string send(const std::string& id, const Params& params) {
        std::string reply;
        const Fcodes code = h.sap.requestCommand(wire::SOCK_CHAN, commandText(id, params), reply, 30, 1);
        return code == FC_COMM_ERROR ? id + " unanswered" : "";
    }
    std::string sendRow(const std::string& id, int c, Params more = {}) {
        more.insert(more.begin(), {cmd::PARAM_ROW_ID, ROWS[c]});
        return send(id, more);
    }
    // A mediator event, as the worker takes it from the queue.
    void event(const std::string& id, const std::string& source, const std::string& status,
               const std::string& description, const Params& params = {}) {
        MessageEvent e = mediatorEvent(id, source, status, params);
        e.description = description;
        h.manager.doHandle(&e);
    }
    void input(int c, int v) {
        current[c] = v % 3;
        event(ev::AUTO_DETECTION, SOURCES[c], "ON", "", {{"Input Detected", INPUTS[c][current[c]]}});
    }
    std::string edit(const char* component, const char* property, int c, const std::string& text, bool accept) {
        const std::string instance = std::string(component) == tbl::TARGET ? TARGETS[c] : ROWS[c];
        const Fcodes set = std::string(property) == prop::TOTAL_BITRATE
                               ? h.manager.setIntParam(ds::CHANNEL, component, property, std::stoi(text), instance)
                               : h.manager.setTextParam(ds::CHANNEL, component, property, text, instance);
        if (!isOk(set))
            return "edit refused";
        return send(accept ? cmd::ACCEPT_CHANGES : cmd::ROLLBACK_CHANGES, {});
    }
    std::string state(int c) { return h.text(ds::CHANNEL, tbl::CHANNELS, prop::STATE, ROWS[c]); }
    bool armedAndTaken() {
        if (armed.empty())
            return false;
        std::string result;
        h.mediator.execute(commandText("Sim Report"), result);
        if (result.find(armed + ":") != std::string::npos)
            return false;
        armed.clear();
        return true;
    }

    std::string apply(const Step& s) {
        const int c = s.channel;
        const std::string before = state(c);
        std::string broken;
        switch (s.kind) {
            case Kind::Play:
            case Kind::Stop:
                inputStopped[c] = false;
                broken = sendRow(s.kind == Kind::Play ? cmd::PLAY : cmd::STOP, c);
                break;
            case Kind::Profile:
                broken = edit(tbl::PROCESSING, prop::STREAM_PROFILE, c, PROFILES[s.value % 2], true);
                break;
            case Kind::Protocol:
                broken = edit(tbl::TARGET, prop::STREAMING_PROTOCOL, c, PROTOCOLS[s.value % 4], true);
                break;
            case Kind::Bitrate:
                broken = edit(tbl::PROCESSING, prop::TOTAL_BITRATE, c, std::to_string(BITRATES[s.value % 3]), true);
                break;
            case Kind::Rollback:
                broken = edit(tbl::PROCESSING, prop::STREAM_PROFILE, c, PROFILES[s.value % 2], false);
                break;
            case Kind::Activate:
                broken = sendRow(cmd::ACTIVATE_ROW, c);
                break;
            case Kind::OnTheFly: {
                const int total = BITRATES[s.value % 3] - 500000;
                broken = sendRow(
                    cmd::CHANGE_ON_THE_FLY, c,
                    {{"Total Bitrate", std::to_string(total)}, {"Max Bitrate", std::to_string(total + 1000000)}});
                break;
            }
            case Kind::Zixi:
                event(ev::ZIXI_CHANGE_BITRATE_REQUEST, "", "ON", FEEDERS[c],
                      {{"Total Bitrate", std::to_string(BITRATES[s.value % 3] - 1000000)}});
                break;
            case Kind::Input:
                input(c, s.value);
                if (before == state::PLAYING && state(c) != state::PLAYING)
                    inputStopped[c] = true;
                break;
            case Kind::DataStream:
                event(ev::DATA_STREAM, "", s.value % 2 ? "ON" : "OFF", FEEDERS[c]);
                break;
            case Kind::Restart: {
                h.logLevel(DBG_INFO);
                const bool restarted = h.mediator.restart();
                const bool replayed = h.waitLog("peerWatch: mediator restarted:", 10);
                h.logLevel(DBG_WARN);
                if (!restarted || !replayed)
                    broken = "the restarted mediator was not configured again";
                break;
            }
            case Kind::Refuse:  // one refusal at a time
                if (armed.empty() && isOk(h.failNext(REFUSED[s.value % 3])))
                    armed = REFUSED[s.value % 3];
                break;
            case Kind::Load:
                inputStopped[0] = inputStopped[1] = false;
                broken = send(cmd::LOAD_CHANNELS, {{"File", "Default"}});
                break;
        }
        if (armedAndTaken())
            refusalTaken();
        return broken;
    }

    // The operator's answer to a refusal ("Channel Stopped" or "Channel Play
    // Error" with 0x10100): a stopped channel whose branch still runs is
    // stopped again. A refused resume ends the channel's stop for its input:
    // it reported its play error and waits for its operator.
    void refusalTaken() {
        for (int c = 0; c < 2; ++c) {
            const std::string now = state(c);
            if (now != state::PLAYING)
                inputStopped[c] = false;
            if ((now == state::STOPPED || now == state::STOPPING) && !running(c).empty()) {
                inputStopped[c] = false;
                sendRow(cmd::STOP, c);
            }
        }
    }

    std::string running(int c) {
        static const char* const names[2][8] = {{"UDP CH0", "RTP RTSP CH0", "RTMP CH0", "ZIXI CH0", "SRT CH0", nullptr},
                                                {"UDP CH1", "UDP CH1 ULL", "RTP RTSP CH1", "RTP RTSP CH1 ULL",
                                                 "RTMP CH1", "ZIXI CH1", "ZIXI CH1 ULL", "SRT CH1"}};
        std::string list;
        for (const char* branch : names[c])
            if (branch && h.mediator.model().branchState(branch) == state::BRANCH_RUN)
                list += std::string(" ") + branch;
        if (c == 1 && h.mediator.model().branchState("SRT CH1 ULL") == state::BRANCH_RUN)
            list += " SRT CH1 ULL";
        return list;
    }

    std::string check() {
        for (int c = 0; c < 2; ++c) {
            const std::string now = state(c);
            if ((now == state::STOPPED || now == state::STOPPING) && !running(c).empty())
                return std::string(ROWS[c]) + " is " + now + " but the mediator runs" + running(c);
            if (now == state::PLAYING) {
                const std::string prefix = std::string(c ? "Video Encoder CH1" : "Video Encoder CH0") + "/Bitrate=";
                const std::vector<std::string> writes = h.writes({prefix});
                const std::string runs = writes.empty() ? "" : writes.back().substr(prefix.size());
                const int shows = h.number(ds::CHANNEL, tbl::PROCESSING, prop::VIDEO_BITRATE, ROWS[c]);
                if (runs != std::to_string(shows))
                    return std::string(ROWS[c]) + " shows video bitrate " + std::to_string(shows) +
                           ", the encoder runs " + runs;
            }
            if (inputStopped[c] && current[c] == 0 && now != state::PLAYING)
                return std::string(ROWS[c]) + " stopped for its input stays " + now + " with a valid input back";
        }
        return "";
    }

    ManagerHarness h;
    int current[2] = {0, 0};
    bool inputStopped[2] = {false, false};
    std::string armed;  // the request the mediator will refuse, until it did
};

// Drops chunks of steps while the run still fails, within `budget` runs and
// two minutes.
std::vector<Step> shrink(std::vector<Step> steps, int budget) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
    auto more = [&] { return budget > 0 && std::chrono::steady_clock::now() < end; };
    for (size_t chunk = steps.size() / 2; chunk >= 1 && more(); chunk /= 2)
        for (size_t at = 0; at + chunk <= steps.size() && more(); --budget) {
            std::vector<Step> shorter(steps);
            shorter.erase(shorter.begin() + static_cast<long>(at), shorter.begin() + static_cast<long>(at + chunk));
            if (!Day().run(shorter).empty())
                steps.swap(shorter);
            else
                at += chunk;
        }
    return steps;
}

}  // namespace

TEST(RandomSequence, InvariantsHoldThroughRandomDays) {
    const int stepCount = envNumber("SYSMGT_SEQUENCE_STEPS", 40);
    const int minutes = envNumber("SYSMGT_SEQUENCE_MINUTES", 0);
    const char* seedText = std::getenv("SYSMGT_SEQUENCE_SEED");
    std::vector<uint32_t> seeds = seedText && *seedText
                                      ? std::vector<uint32_t>{static_cast<uint32_t>(std::atoi(seedText))}
                                      : std::vector<uint32_t>{1, 2, 3};
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(minutes);
    long totalSteps = 0;
    for (size_t i = 0; i < seeds.size(); ++i) {
        const std::vector<Step> steps = generate(seeds[i], stepCount);
        const std::string broken = Day().run(steps);
        totalSteps += stepCount;
        if (!broken.empty()) {
            std::ostringstream reduced;
            for (const Step& s : shrink(steps, 60))
                reduced << " " << describe(s);
            FAIL() << "seed " << seeds[i] << ": " << broken << "\nreduced steps:" << reduced.str();
        }
        if (minutes > 0 && i + 1 == seeds.size() && std::chrono::steady_clock::now() < end)
            seeds.push_back(seeds.back() + 1);
    }
    std::printf("random days: %zu seeds (%u..%u), %ld steps\n", seeds.size(), seeds.front(), seeds.back(), totalSteps);
}
