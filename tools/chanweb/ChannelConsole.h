#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
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
// engine waits for each reply on its one send socket. Every request has a
// bound of a few seconds, one button press is served at a time (another is
// refused at once, not queued), and a manager that stops answering is
// published as the "daemon" message instead of holding the console: once it
// is known not to answer, a press is answered at once without being sent,
// and the refresher asks the manager again every RETRY_MS until it answers.
class ChannelConsole : public datacom::NullDataHolder {
public:
    static constexpr int REFRESH_MS = 2000;
    static constexpr int HISTORY_SEC = 300;
    // A request unanswered this long (or one that went unanswered) makes the
    // manager "not answering" until the next answer.
    static constexpr int STALL_MS = 1500;
    // How soon the refresher asks a manager that did not answer again.
    static constexpr int RETRY_MS = 250;

    enum class Press { Done, Unknown, Busy, NotAnswering };

    ChannelConsole(ConsoleFeed& feed, std::string managerSocket);
    ~ChannelConsole() override;  // stops the refresher, then the engine

    // Binds the engine on `socketName` and its send socket (sendSocketName)
    // and starts serving and refreshing.
    void start(const std::string& socketName);
    // Ends the threads and the engine and removes the sockets start made.
    void stop();
    // Called on the engine's server thread for each event of the manager.
    datacom::Fcodes handle(datacom::MessageEvent* event) override;
    // One button: "play" or "stop" of the channel `row`, "load" (LOAD_CHANNELS
    // "Default") or "store" (STORE_CHANNELS to STORE_FILE). `answer` gets the
    // manager's answer as a JSON line (chanctl --json's). Unknown: the action
    // or the row is not one of them; Busy: another press is still waiting;
    // NotAnswering: the manager is known not to answer (before the press or
    // while it waited for another request), so nothing was sent; `answer` is
    // then that line with "daemon":"not answering".
    Press press(const std::string& action, const std::string& row, std::string& answer);
    // False while the manager does not answer (see STALL_MS).
    bool answering() const;

    static constexpr const char* STORE_FILE = "/data/settings/channels.json";

private:
    void refreshLoop();
    void refresh();  // request mutex not held
    void poke();
    void watchLoop();
    // One request to the manager under the request mutex, timed for
    // answering(); `request` tells whether the manager answered. With
    // `onlyWhileAnswering`, false (nothing sent) once the manager is known not
    // to answer, before or while waiting for the mutex.
    bool ask(const std::function<bool()>& request, bool onlyWhileAnswering);

    ConsoleFeed& feed;
    const std::string managerSocket;
    datacom::DataCommunicator engine;
    std::string socketName;
    // One request at a time on the engine: `requestBusy` under `requestGate`
    // rather than a timed mutex, whose timed lock the thread sanitizer does not see.
    std::mutex requestGate;
    std::condition_variable requestDone;
    bool requestBusy = false;
    std::atomic<bool> pressing{false};
    std::atomic<int64_t> pendingSinceMs{0};  // 0: no request waiting for the manager
    std::atomic<bool> unanswered{false};     // the last request went unanswered

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
    std::thread watcher;
};
