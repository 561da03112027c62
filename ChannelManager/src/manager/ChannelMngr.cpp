// The channel manager's start-up, the loading of channel files, the refresh
// of the video sources and the acceptance of pending configuration changes.
#include "manager/ChannelMngr.h"

#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "channel/ConfigChannelTarnevel.h"
#include "datacom/DataCommunicator.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"
#include "datacom/WireConstants.h"
#include "vocab/ChannelWireTexts.h"
#include "vocab/PeerNames.h"

using namespace datacom;

using namespace vocab;

namespace {

// The JSON datasets loaded at start-up; the channel data comes later.
constexpr const char* VIDEO_SOURCES_FILE = "/etc/sysmgt/vsrc_data_set.json";
constexpr const char* ZIXI_STATS_FILE = "/etc/sysmgt/zixistat_data_set.json";
constexpr const char* SRT_STATS_FILE = "/etc/sysmgt/srtstat_data_set.json";
// The device manager's time zone.
constexpr const char* DATE_TIME_TABLE = "DateTimeTable";
constexpr const char* TZ = "TZ";

}  // namespace

ChannelMngr* ChannelMngr::instance = nullptr;

ChannelMngr* ChannelMngr::getInstance() {
    // No lock: main makes the first call before any thread exists.
    if (instance == nullptr)
        instance = new ChannelMngr();
    return instance;
}

void ChannelMngr::init() {
    timespec resolution{};
    const int clockResult = clock_getres(CLOCK_REALTIME, &resolution);
    std::printf("Clock ret=%d res=%lldsec:%ldnsec\n", clockResult, static_cast<long long>(resolution.tv_sec),
                static_cast<long>(resolution.tv_nsec));
    std::fflush(stdout);

    // The log's task name only: renaming the kernel thread would rename the
    // process itself, and ps, pidof and pkill would no longer find it.
    setTaskName(pthread_self(), "tChanInit");
    DataHolder::init("tChMngr");

    // The channel data itself comes later, with "LOAD_CHANNELS".
    loadDataSet(VIDEO_SOURCES_FILE);
    loadDataSet(ZIXI_STATS_FILE);
    loadDataSet(SRT_STATS_FILE);

    DataCommunicator* engine = getDataCommunicator();
    engine->init(this, wire::SOCK_CHAN, wire::SOCK_SEND_CHAN, "tChCom");
    const Fcodes mediatorSubscribed = engine->requestSubscribe(wire::SOCK_MEDIATOR);
    DBG(DBG_INFO) << "init: init Channels done.";

    initSources();
    DBG(DBG_INFO) << "init: init Sources done.";

    readDeviceTimeZone("init");
    const Fcodes deviceSubscribed = engine->requestSubscribe(wire::SOCK_DEV);

    engine->start();
    DBG(DBG_INFO) << "init: dataCommunicator started";
    // A peer that did not answer, or that restarts later, is subscribed to
    // again when it is there (manager/ChannelMngrPeers.cpp).
    startPeerWatch(mediatorSubscribed, deviceSubscribed);
}

bool ChannelMngr::readDeviceTimeZone(const char* operation) {
    std::string zone;
    if (!isOk(requestGetTextParam(wire::SOCK_DEV, ds::DEVICE, DATE_TIME_TABLE, TZ, zone, "")))
        return false;
    DBG(DBG_SYS) << operation << ": setenv TZ=" << zone;
    setTimeZone(zone);
    return true;
}

Fcodes ChannelMngr::initSources() {
    std::vector<std::string> sources;
    getInstances(ds::VIDEO_SOURCE, tbl::VIDEO_SOURCE, sources);
    Fcodes result = FC_OK;
    for (const std::string& source : sources) {
        MessageEvent event;
        event.source = source;
        ConfigChannelTarnevel channel(*this, *this, book);
        result |= channel.updateVideoSource(&event);
    }
    return result;
}

// Kept for a caller that starts without "LOAD_CHANNELS": the daemon itself
// configures the channels only when a channel file is loaded.
Fcodes ChannelMngr::initChannels() {
    ConfigChannelTarnevel channel(*this, *this, book);
    channel.configChannels();
    return FC_OK;
}

Fcodes ChannelMngr::acceptChanges() {
    if (!isChanged())
        return FC_OK;
    DBG(DBG_SYS) << "acceptChanges: dataSets_json changed.";

    Fcodes result = FC_OK;
    // Only these two components are applied to running channels; every other
    // pending value is committed as it is and takes effect at the next
    // configuration of its channel. They are applied before the commit, so
    // they apply the pending values: the ones being accepted.
    const struct {
        const char* component;
        Fcodes (ConfigChannelTarnevel::*apply)(const std::string&, bool);
    } applied[] = {{tbl::AV_SETTINGS, &ConfigChannelTarnevel::configAVSettings},
                   {tbl::AUDIO_SOURCE, &ConfigChannelTarnevel::configAudioGain}};
    for (const auto& entry : applied) {
        if (!isChangedComponent(ds::CHANNEL, entry.component))
            continue;
        std::vector<std::string> instances;
        result |= getInstances(ds::CHANNEL, entry.component, instances);
        for (const std::string& instance : instances) {
            if (!isChangedInstance(ds::CHANNEL, entry.component, instance))
                continue;
            ConfigChannelTarnevel channel(*this, *this, book);
            result |= (channel.*entry.apply)(instance, true);
        }
    }
    return result | commit();
}

Fcodes ChannelMngr::loadChannels(const std::string& path) {
    // The loaded data replaces the channels: both stop first, as a "Stop" of
    // "ALL" would stop them. The stop comes before the file is read, also for
    // a file that will be refused: a front end that asks for a load learns
    // one outcome for its channels (stopped) whatever the file holds, and no
    // channel keeps running across a load whose result it cannot know yet.
    ConfigChannelTarnevel(*this, *this, book).stopAll();

    DBG(DBG_SYS) << "loadChannels: Loading " << path;
    // A refused file (unreadable, or a value its own definitions refuse)
    // replaces nothing: the channel data, its pending edits and the channels'
    // configuration stay as they were, so the next Play runs on the old data.
    Fcodes result = loadDataSet(path);
    if (!isOk(result))
        return result;
    // Edits pending on the channel data belonged to the data just replaced:
    // committed onto the loaded (or factory) data they would be stale. The
    // store itself keeps pending values across a load; the manager drops them.
    untouchDataSet(ds::CHANNEL);

    // A stored file from an older release lacks what the factory data has
    // since gained: it is brought up to date against the factory defaults.
    if (path != path::FACTORY_CHANNELS) {
        loadDataSet(ds::DEFAULT, path::FACTORY_CHANNELS);
        updateDataSet(ds::CHANNEL, ds::DEFAULT, false, true, false);
        deleteDataSet(ds::DEFAULT);
    }

    sapStopAll();
    ConfigChannelTarnevel channel(*this, *this, book);
    return channel.configChannels() | FC_OK;
}

Fcodes ChannelMngr::reconfigureChannel(const std::string& rowId) {
    ConfigChannelTarnevel channel(*this, *this, book);
    return channel.configChannel(rowId);
}
