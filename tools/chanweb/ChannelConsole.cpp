#include "ChannelConsole.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <memory>

#include <json/json.h>

#include "ChanctlCommands.h"
#include "ChanctlJson.h"
#include "ToolSocket.h"
#include "datacom/MessageEvent.h"
#include "datacom/SysmgtRoot.h"
#include "datacom/WireConstants.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/DatasetNames.h"

using namespace datacom;
using namespace vocab;

namespace {

// Short bounds: a console that waits a minute for a frozen manager is frozen
// too. A play that takes longer than this still happens; its result then
// shows in the status and the events rather than in the press's answer.
constexpr unsigned READ_TIMEOUT_SEC = 2;
constexpr unsigned COMMAND_TIMEOUT_SEC = 4;
constexpr int SUBSCRIBE_EVERY_MS = 10000;  // a restarted manager forgets its subscribers
constexpr int LOCK_SLICE_MS = 50;

std::string oneLine(const Json::Value& value) {
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    return Json::writeString(builder, value);
}

std::string withoutNewline(std::string text) {
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

int64_t nowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::system_clock::now().time_since_epoch())
        .count();
}

// The cell of `label` in a channel of the view; "" when absent.
std::string cell(const StatusView& view, size_t channel, const std::string& label) {
    for (size_t i = 0; i < view.labels.size(); ++i)
        if (view.labels[i] == label && i < view.channels[channel].cells.size())
            return view.channels[channel].cells[i];
    return "";
}

}  // namespace

ChannelConsole::ChannelConsole(ConsoleFeed& feed, std::string managerSocket)
    : feed(feed), managerSocket(std::move(managerSocket)) {}

ChannelConsole::~ChannelConsole() {
    stop();
}

void ChannelConsole::start(const std::string& name) {
    socketName = name;
    engine.init(this, socketName, sendSocketName(socketName), "tChanweb");
    engine.start();
    refresher = std::thread([this] { refreshLoop(); });
    watcher = std::thread([this] { watchLoop(); });
}

void ChannelConsole::stop() {
    {
        std::lock_guard<std::mutex> guard(mutex);
        stopping = true;
    }
    wake.notify_all();
    if (refresher.joinable())
        refresher.join();
    if (watcher.joinable())
        watcher.join();
    engine.stop();
    if (!socketName.empty()) {
        unlink(sysmgtPath(socketName).c_str());
        unlink(sysmgtPath(sendSocketName(socketName)).c_str());
        socketName.clear();  // a second stop must not remove a later owner's
    }
}

Fcodes ChannelConsole::handle(MessageEvent* event) {
    std::unique_ptr<MessageEvent> owned(event);
    feed.publish("log", withoutNewline(eventJson(*owned)));
    poke();
    return FC_OK;
}

void ChannelConsole::poke() {
    {
        std::lock_guard<std::mutex> guard(mutex);
        poked = true;
    }
    wake.notify_all();
}

bool ChannelConsole::ask(const std::function<bool()>& request, bool onlyWhileAnswering) {
    // The gate is waited for in slices: a press must not sit behind a
    // refresher that is itself waiting for a manager that does not answer.
    {
        std::unique_lock<std::mutex> gate(requestGate);
        for (;;) {
            if (onlyWhileAnswering && !answering())
                return false;
            if (!requestBusy)
                break;
            requestDone.wait_for(gate, std::chrono::milliseconds(LOCK_SLICE_MS));
        }
        requestBusy = true;
    }
    struct Release {  // the gate opens again however the request ends
        ChannelConsole& console;
        ~Release() {
            {
                std::lock_guard<std::mutex> gate(console.requestGate);
                console.requestBusy = false;
            }
            console.requestDone.notify_all();
        }
    } release{*this};
    pendingSinceMs = nowMs();
    unanswered = !request();
    pendingSinceMs = 0;
    return true;
}

bool ChannelConsole::answering() const {
    const int64_t since = pendingSinceMs;
    return !unanswered && (since == 0 || nowMs() - since < STALL_MS);
}

// Publishes each change of answering() as a "daemon" message, within a
// quarter of a second: the refresher itself may be the one waiting.
void ChannelConsole::watchLoop() {
    bool published = true;
    std::unique_lock<std::mutex> lock(mutex);
    while (!stopping) {
        wake.wait_for(lock, std::chrono::milliseconds(250));
        const bool now = answering();
        if (now == published)
            continue;
        published = now;
        lock.unlock();
        feed.publish("daemon", now ? "{\"daemon\":\"answering\"}" : "{\"daemon\":\"not answering\"}");
        lock.lock();
    }
}

ChannelConsole::Press ChannelConsole::press(const std::string& action, const std::string& row, std::string& answer) {
    std::string id;
    std::vector<std::pair<std::string, std::string>> params;
    if ((action == "play" || action == "stop") && isChannelRow(row)) {
        id = action == "play" ? cmd::PLAY : cmd::STOP;
        params = {{cmd::PARAM_ROW_ID, row}};
    } else if (action == "load") {
        id = cmd::LOAD_CHANNELS;
        params = {{cmd::PARAM_FILE, cmd::FILE_DEFAULT}};
    } else if (action == "store") {
        id = cmd::STORE_CHANNELS;
        params = {{cmd::PARAM_FILE, STORE_FILE}};
    } else {
        return Press::Unknown;
    }
    if (pressing.exchange(true))
        return Press::Busy;
    // A manager known not to answer is not sent the command: the press is
    // answered at once rather than after COMMAND_TIMEOUT_SEC, and a manager
    // that wakes later does not carry out a command its user saw fail.
    std::string replyBody;
    Fcodes code = FC_COMM_ERROR;
    const bool sent = ask(
        [&] {
            bool replied = false;
            code = sendServiceCommand(engine, managerSocket, id, params, replyBody, COMMAND_TIMEOUT_SEC, &replied);
            return replied;  // a Play's "Communication Error" may be the mediator's, not the manager's silence
        },
        true);
    pressing = false;
    if (!sent) {
        Json::Value refused;
        Json::Reader().parse(commandJson(id, code, ""), refused);
        refused["daemon"] = "not answering";
        answer = oneLine(refused) + "\n";
        return Press::NotAnswering;
    }
    {
        std::lock_guard<std::mutex> guard(mutex);
        loaded = loaded || action == "load";
    }
    poke();
    answer = commandJson(id, code, replyBody);
    return Press::Done;
}

void ChannelConsole::refreshLoop() {
    auto lastSubscribe = std::chrono::steady_clock::time_point();
    auto lastRefresh = std::chrono::steady_clock::time_point();
    std::unique_lock<std::mutex> lock(mutex);
    while (!stopping) {
        const auto now = std::chrono::steady_clock::now();
        const bool subscribeDue = now - lastSubscribe >= std::chrono::milliseconds(SUBSCRIBE_EVERY_MS);
        // Not answering: asked again every RETRY_MS rather than REFRESH_MS,
        // so that its first answer is seen at once.
        const bool refreshDue = poked || (unanswered && now - lastRefresh >= std::chrono::milliseconds(RETRY_MS)) ||
                                (loaded && now - lastRefresh >= std::chrono::milliseconds(REFRESH_MS));
        if (subscribeDue || refreshDue) {
            poked = false;
            lock.unlock();
            if (subscribeDue) {
                // The engine's own subscribe waits 10 s three times; this one is bounded like the rest.
                std::string reply;
                ask(
                    [&] {
                        bool replied = false;
                        sendServiceCommand(engine, managerSocket, wire::CMD_SUBSCRIBE,
                                           {{wire::PARAM_SOCK_NAME, socketName}}, reply, READ_TIMEOUT_SEC, &replied);
                        return replied;
                    },
                    false);
                lastSubscribe = now;
            }
            if (refreshDue) {
                refresh();
                lastRefresh = std::chrono::steady_clock::now();
            }
            lock.lock();
            continue;
        }
        wake.wait_for(lock, std::chrono::milliseconds(250));
    }
}

void ChannelConsole::refresh() {
    StatusView view;
    ask(
        [&] {
            view = readStatus(engine, managerSocket, READ_TIMEOUT_SEC);
            return (view.code & FC_COMM_ERROR) != FC_COMM_ERROR;
        },
        false);
    Json::Value status = statusValue(view);
    status["socket"] = managerSocket;
    Json::Value chart(Json::objectValue);
    {
        std::lock_guard<std::mutex> guard(mutex);
        loaded = view.loaded;
        const int64_t now = nowMs();
        if (view.loaded && view.channels.size() == 2) {
            Sample sample{now, {-1, -1}};
            for (size_t i = 0; i < 2; ++i)
                if (cell(view, i, prop::STATE) == state::PLAYING)
                    sample.bitrate[i] = std::atof(cell(view, i, prop::TOTAL_BIT_RATE).c_str());
            history.push_back(sample);
        }
        while (!history.empty() && history.front().timeMs < now - int64_t{HISTORY_SEC} * 1000)
            history.pop_front();
        Json::Value times(Json::arrayValue), first(Json::arrayValue), second(Json::arrayValue);
        for (const Sample& sample : history) {
            times.append(static_cast<Json::Int64>(sample.timeMs));
            first.append(sample.bitrate[0] < 0 ? Json::Value() : Json::Value(sample.bitrate[0]));
            second.append(sample.bitrate[1] < 0 ? Json::Value() : Json::Value(sample.bitrate[1]));
        }
        chart["t"] = times;
        chart[row::H264] = first;
        chart[row::HEVC] = second;
    }
    status["chart"] = chart;
    // A manager that stays away is asked every RETRY_MS: the same status is not sent again each time.
    const std::string text = oneLine(status);
    if (text != feed.status())
        feed.publish("status", text);
}
