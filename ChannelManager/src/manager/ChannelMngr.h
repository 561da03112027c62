#pragma once

#include <pthread.h>
#include <semaphore.h>
#include <signal.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "datacom/DataHolder.h"
#include "datacom/Mutex.h"
#include "manager/PeerWatch.h"
#include "model/ChannelRunBook.h"
#include "ports/IChannelEvents.h"

namespace datacom {
class MessageCommand;
}

// The channel manager: the one application service of the daemon. A data
// holder that owns the channel, video-source and statistics datasets, serves
// "/tmp/sockChan" and turns commands, events and accepted changes into calls
// on the channel logic (ConfigChannelTarnevel), to which it also lends its
// outgoing events. A process-wide singleton, created on the first
// getInstance() (made by main before any thread exists) and never destroyed.
//
// Threads: init() runs on the main thread. execute (and so acceptChanges,
// loadChannels, initSources) runs on the engine's server thread "tChCom";
// doHandle and doExecute on the worker "tChMngr". Every channel operation
// works on a fresh ConfigChannelTarnevel made on the stack.
//
// The implementation is split by concern: manager/ChannelMngr.cpp (start-up, loading,
// change acceptance), manager/ChannelMngrCommands.cpp (execute, doExecute, deleteRow),
// manager/ChannelMngrEventDispatch.cpp (doHandle), manager/ChannelMngrBroadcast.cpp (outgoing
// events), manager/ChannelMngrTimer.cpp (the periodic source refresh), manager/ChannelMngrPeers.cpp
// (peers that come late or come back, by the rules of manager/PeerWatch.h).
class ChannelMngr : public datacom::DataHolder, public IChannelEvents {
public:
    static ChannelMngr* getInstance();
    // Stops the refresh timer and its thread, then the engine and the worker.
    ~ChannelMngr() override;

    // ---- Start-up and loading (manager/ChannelMngr.cpp) ----

    // The whole start-up: datasets, engine, subscriptions, video sources, time
    // zone. Returns once the engine serves; failures are logged, never fatal.
    void init();
    // Applies pending "ChannelAVSettings" and "Audio Source Table" changes to
    // the running channels, then commits every pending change.
    datacom::Fcodes acceptChanges() override;
    // Stops every channel, loads the file (merged with the factory defaults
    // unless it is the factory file), drops the channel data's pending edits
    // and configures both channels.
    datacom::Fcodes loadChannels(const std::string& path);
    // Refreshes every video source of "VideoSourceDataSet"; the OR of the results.
    datacom::Fcodes initSources();
    // Configures both channels from the loaded data; always "OK".
    datacom::Fcodes initChannels();

    // ---- Commands (manager/ChannelMngrCommands.cpp) ----

    // Answers a command synchronously on the calling thread; commands it does
    // not know are queued for the worker, which refuses them.
    datacom::Fcodes execute(const std::string& commandText, std::string& result) override;
    // Refuses every queued command: this service does its command work in execute.
    datacom::Fcodes doExecute(const std::string& commandText, std::string& result) override;
    // Not supported: "Unavailable".
    datacom::Fcodes deleteRow(const std::string& table, int rowId) override;

    // ---- Events (manager/ChannelMngrEventDispatch.cpp) ----

    // Worker hook for queued events. Borrows the event: the worker deletes it.
    datacom::Fcodes doHandle(datacom::MessageEvent* event) override;
    // The channel a Zixi-side event belongs to, from the feeder its
    // description names: "HEVC", "H.264", or "" when it names neither.
    static std::string feederChannel(const std::string& description);

    // ---- Outgoing events (manager/ChannelMngrBroadcast.cpp), broadcast to every subscriber ----

    // Source empty, status "None", severity "Debug", description and "File" = fileName.
    void sendCfgEvent(const std::string& eventId, const std::string& fileName, unsigned long fcode) override;
    // Source = rowId, parameter "RowID" = rowId.
    void sendEvent(const std::string& eventId, const std::string& rowId, unsigned long fcode, const std::string& status,
                   const std::string& severity, const std::string& description) override;
    // "Video Source Updated", source = input, status "OFF" when the source went away, else "ON".
    void sendSourceEvent(const std::string& input, bool off, const std::string& description) override;
    datacom::Fcodes sapStopAll() override;

    // ---- Peers that come late or come back (manager/ChannelMngrPeers.cpp) ----

    // Ends the peer watcher; idempotent. A derived manager calls it in its
    // own destructor, as stopTimer. Not with the holder lock held: the
    // watcher takes it to configure the mediator again.
    void stopPeerWatch() DATACOM_EXCLUDES(watchMutex, this);
    // How often the watcher looks at the peers' sockets (1 s unless changed).
    void setPeerWatchPeriod(std::chrono::milliseconds period) DATACOM_EXCLUDES(watchMutex);

    // ---- Periodic source refresh (manager/ChannelMngrTimer.cpp) ----

    // Arms a one-shot 30-second timer on SIGRTMIN; each expiry refreshes every
    // video source and re-arms it. Not started at start-up. 0 when armed, -1
    // (errno set) otherwise.
    int startTimer();
    // Deletes the timer and ends the refresh thread; idempotent. A derived
    // manager calls it in its own destructor, before its members go, since a
    // refresh may be running through its overrides. Not with the holder lock
    // held: a refresh takes it.
    void stopTimer() DATACOM_EXCLUDES(this);
    // The SIGRTMIN handler. Runs in signal context, so it only wakes the
    // refresh thread (an async-signal-safe semaphore post).
    static void timerTicked(int signo, siginfo_t* info, void* context);
    void* getTimer() const { return timer; }
    void setTimer(void* newTimer) { timer = newTimer; }

protected:
    // Made by getInstance(); tests derive a manager of their own.
    ChannelMngr() = default;
    // The KLV-ingest reconfiguration's action on one channel: configChannel.
    // A seam, so that tests can watch which channels are reconfigured.
    virtual datacom::Fcodes reconfigureChannel(const std::string& rowId) DATACOM_REQUIRES(this);
    // Period of the source refresh timer.
    std::chrono::milliseconds timerPeriod{30000};

private:
    // The holder's own init(name) is a step of init(), not to be called alone.
    using datacom::DataHolder::init;
    using CommandHandler = datacom::Fcodes (ChannelMngr::*)(const datacom::MessageCommand&, const std::string&,
                                                            std::string&);
    // The ID's length is known when the table is made, so a route of another
    // length is passed over without comparing texts.
    struct CommandRoute {
        std::string_view id;
        CommandHandler run;
    };
    using EventHandler = datacom::Fcodes (ChannelMngr::*)(datacom::MessageEvent&);
    struct EventRoute {
        const char* id;
        EventHandler run;
    };
    static const CommandRoute commandRoutes[];
    static const EventRoute eventRoutes[];

    datacom::Fcodes runAcceptChanges(const datacom::MessageCommand& command, const std::string& text,
                                     std::string& result);
    datacom::Fcodes runRollbackChanges(const datacom::MessageCommand& command, const std::string& text,
                                       std::string& result);
    datacom::Fcodes runLoadChannels(const datacom::MessageCommand& command, const std::string& text,
                                    std::string& result);
    datacom::Fcodes runStoreChannels(const datacom::MessageCommand& command, const std::string& text,
                                     std::string& result);
    datacom::Fcodes runChannelCommand(const datacom::MessageCommand& command, const std::string& text,
                                      std::string& result);
    datacom::Fcodes runUpdateSource(const datacom::MessageCommand& command, const std::string& text,
                                    std::string& result);
    datacom::Fcodes runSetDviMode(const datacom::MessageCommand& command, const std::string& text, std::string& result);
    datacom::Fcodes runSetAnalogFormat(const datacom::MessageCommand& command, const std::string& text,
                                       std::string& result);
    datacom::Fcodes runStatistics(const datacom::MessageCommand& command, const std::string& text, std::string& result);
    // "Set DVI mode" and "Set Analog Format": the parameter is required, never applied.
    datacom::Fcodes acceptIgnoredParameter(const datacom::MessageCommand& command, const std::string& text,
                                           const char* parameter);

    datacom::Fcodes onAutoDetection(datacom::MessageEvent& event);
    datacom::Fcodes onBranchEvent(datacom::MessageEvent& event);
    datacom::Fcodes onFeederEvent(datacom::MessageEvent& event);
    datacom::Fcodes onSrtNewClient(datacom::MessageEvent& event);
    datacom::Fcodes onIgnored(datacom::MessageEvent& event);
    datacom::Fcodes onKlvOverIp(datacom::MessageEvent& event);
    datacom::Fcodes onKlvOverSdi(datacom::MessageEvent& event);
    datacom::Fcodes onComPort(datacom::MessageEvent& event);
    datacom::Fcodes onDateTime(datacom::MessageEvent& event);
    // Reconfigures, one by one under the holder lock, the channels whose
    // "Ingest KLV" or "Ingest KLV2" is `transport`.
    datacom::Fcodes reconfigureKlvIngest(const std::string& transport);

    // One peer the daemon needs the events of.
    struct WatchedPeer {
        const char* socket;
        void (ChannelMngr::*afterReturn)();  // what a new process behind the socket needs from us
        PeerWatch watch;
    };
    // Started by init with the results of its two subscriptions.
    void startPeerWatch(datacom::Fcodes mediatorSubscribed, datacom::Fcodes deviceSubscribed);
    void peerWatchLoop() DATACOM_EXCLUDES(watchMutex);
    // Sleeps one watch period; false once the watch is to stop.
    bool awaitPeerWatchTurn() DATACOM_EXCLUDES(watchMutex);
    void watchPeer(WatchedPeer& peer);
    datacom::Fcodes subscribeTo(const char* peer);
    void configureMediatorAgain();
    // A restarted device manager's time zone, asked for as at start-up.
    void readTimeZoneAgain();
    // Asks the device manager for its time zone and sets "TZ" when it
    // answers, logged under `operation`; a failure keeps the zone in force.
    bool readDeviceTimeZone(const char* operation);

    static void* refreshWork(void* self);
    void refreshLoop();
    int armTimer();

    static ChannelMngr* instance;
    void* timer = nullptr;   // the POSIX timer, once startTimer made it
    bool timerMade = false;  // the first timer's id is 0: `timer` alone cannot tell
    sem_t ticks{};           // posted by timerTicked, taken by the refresh thread
    pthread_t refreshThread{};
    bool refreshRunning = false;
    std::atomic<bool> refreshStopping{false};

    ChannelRunBook book;             // lent to every channel operation: it outlives them
    std::vector<WatchedPeer> peers;  // the watcher's alone once it runs
    std::thread watchThread;
    datacom::Mutex watchMutex;
    std::condition_variable watchWake;
    bool watchStopping DATACOM_GUARDED_BY(watchMutex) = false;
    std::chrono::milliseconds peerWatchPeriod DATACOM_GUARDED_BY(watchMutex){1000};
};
