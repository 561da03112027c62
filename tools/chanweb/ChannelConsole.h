#pragma once

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <string>
#include <thread>

#include "ConsoleFeed.h"
#include "datacom/DataCommunicator.h"
#include "datacom/NullDataHolder.h"

// The channel manager as the console sees it: an engine on sockets of its
// own, subscribed to the manager's events (each goes to the feed as it
// arrives, as with chanctl listen); the channel status, read again after each
// event and every few seconds while channel data is loaded, with the total
// bitrate of each playing channel over the last minutes; and the console's
// buttons as commands. Requests go out one at a time under one mutex: the
// engine waits for each reply on its one send socket.
class ChannelConsole : public datacom::NullDataHolder {
public:
    static constexpr int REFRESH_MS = 2000;
    static constexpr int HISTORY_SEC = 300;

    ChannelConsole(ConsoleFeed& feed, std::string managerSocket);
    ~ChannelConsole() override;  // stops the refresher, then the engine

    // Binds the engine on /tmp/chanweb-<pid>[-send] and starts serving and refreshing.
    void start();
    void stop();
    // Called on the engine's server thread for each event of the manager.
    datacom::Fcodes handle(datacom::MessageEvent* event) override;
    // One button: "play" or "stop" of the channel `row`, "load" (LOAD_CHANNELS
    // "Default") or "store" (STORE_CHANNELS to STORE_FILE). The answer as a
    // JSON line (chanctl --json's); "" when the action or the row is not one of them.
    std::string press(const std::string& action, const std::string& row);

    static constexpr const char* STORE_FILE = "/data/settings/channels.json";

private:
    void refreshLoop();
    void refresh();  // request mutex not held
    void poke();

    ConsoleFeed& feed;
    const std::string managerSocket;
    datacom::DataCommunicator engine;
    std::mutex requests;  // one request at a time on the engine

    std::mutex mutex;  // guards the fields below
    std::condition_variable wake;
    bool poked = true;
    bool stopping = false;
    bool loaded = true;  // false: no channel data; refresh only on events or a button
    struct Sample {
        int64_t timeMs;
        double bitrate[2];  // < 0: the channel was not playing
    };
    std::deque<Sample> history;
    std::thread refresher;
};
