#include "ChannelConsole.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <memory>

#include <json/json.h>

#include "ChanctlCommands.h"
#include "ChanctlJson.h"
#include "datacom/MessageEvent.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

constexpr unsigned READ_TIMEOUT_SEC = 3;
constexpr unsigned COMMAND_TIMEOUT_SEC = 60;  // a play waits for its branches to start
constexpr int SUBSCRIBE_EVERY_MS = 10000;      // a restarted manager forgets its subscribers

std::string withoutNewline(std::string text) {
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

int64_t nowMs() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::system_clock::now().time_since_epoch())
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

void ChannelConsole::start() {
    const std::string receive = "/tmp/chanweb-" + std::to_string(getpid());
    engine.init(this, receive, receive + "-send", "tChanweb");
    engine.start();
    refresher = std::thread([this] { refreshLoop(); });
}

void ChannelConsole::stop() {
    {
        std::lock_guard<std::mutex> guard(mutex);
        stopping = true;
    }
    wake.notify_all();
    if (refresher.joinable())
        refresher.join();
    engine.stop();
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

std::string ChannelConsole::press(const std::string& action, const std::string& row) {
    std::string id;
    std::vector<std::pair<std::string, std::string>> params;
    if ((action == "play" || action == "stop") && (row == "H.264" || row == "HEVC")) {
        id = action == "play" ? "Play" : "Stop";
        params = {{"RowID", row}};
    } else if (action == "load") {
        id = "LOAD_CHANNELS";
        params = {{"File", "Default"}};
    } else if (action == "store") {
        id = "STORE_CHANNELS";
        params = {{"File", STORE_FILE}};
    } else {
        return "";
    }
    std::string replyBody;
    Fcodes code;
    {
        std::lock_guard<std::mutex> guard(requests);
        code = sendServiceCommand(engine, managerSocket, id, params, replyBody, COMMAND_TIMEOUT_SEC);
    }
    {
        std::lock_guard<std::mutex> guard(mutex);
        loaded = loaded || action == "load";
    }
    poke();
    return commandJson(id, code, replyBody);
}

void ChannelConsole::refreshLoop() {
    auto lastSubscribe = std::chrono::steady_clock::time_point();
    auto lastRefresh = std::chrono::steady_clock::time_point();
    std::unique_lock<std::mutex> lock(mutex);
    while (!stopping) {
        const auto now = std::chrono::steady_clock::now();
        const bool subscribeDue = now - lastSubscribe >= std::chrono::milliseconds(SUBSCRIBE_EVERY_MS);
        const bool refreshDue = poked || (loaded && now - lastRefresh >= std::chrono::milliseconds(REFRESH_MS));
        if (subscribeDue || refreshDue) {
            poked = false;
            lock.unlock();
            if (subscribeDue) {
                std::lock_guard<std::mutex> guard(requests);
                engine.requestSubscribe(managerSocket);
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
    {
        std::lock_guard<std::mutex> guard(requests);
        view = readStatus(engine, managerSocket, READ_TIMEOUT_SEC);
    }
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
                if (cell(view, i, "State") == "Playing")
                    sample.bitrate[i] = std::atof(cell(view, i, "Total Bit Rate").c_str());
            history.push_back(sample);
        }
        while (!history.empty() && history.front().timeMs < now - HISTORY_SEC * 1000)
            history.pop_front();
        Json::Value times(Json::arrayValue), first(Json::arrayValue), second(Json::arrayValue);
        for (const Sample& sample : history) {
            times.append(static_cast<Json::Int64>(sample.timeMs));
            first.append(sample.bitrate[0] < 0 ? Json::Value() : Json::Value(sample.bitrate[0]));
            second.append(sample.bitrate[1] < 0 ? Json::Value() : Json::Value(sample.bitrate[1]));
        }
        chart["t"] = times;
        chart["H.264"] = first;
        chart["HEVC"] = second;
    }
    status["chart"] = chart;
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["emitUTF8"] = true;
    feed.publish("status", Json::writeString(builder, status));
}
