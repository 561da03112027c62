// The channel manager's start-up, the loading of channel files, the refresh
// of the video sources and the acceptance of pending configuration changes.
#include "manager/ChannelMngr.h"

#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

#include "vocab/ChannelVocabulary.h"
#include "channel/ConfigChannelTarnevel.h"
#include "records/MessageCommand.h"
#include "records/WireConstants.h"
#include "system/DbgPrintClient.h"
#include "system/SysmgtRoot.h"

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
    std::printf("Clock ret=%d res=%ldsec:%ldnsec\n", clockResult, static_cast<long>(resolution.tv_sec),
                static_cast<long>(resolution.tv_nsec));
    std::fflush(stdout);

    // The log's task name only: renaming the kernel thread would rename the
    // process itself, and ps, pidof and pkill would no longer find it.
    setTaskName(pthread_self(), "tChanInit");
    DataHolder::init("tChMngr");

    // The channel data itself comes later, with "LOAD_CHANNELS".
    loadDataSet(vocab::path::VIDEO_SOURCES);
    loadDataSet(vocab::path::ZIXI_STATS);
    loadDataSet(vocab::path::SRT_STATS);

    DataCommunicator* engine = getDataCommunicator();
    engine->init(this, wire::SOCK_CHAN, wire::SOCK_SEND_CHAN, "tChCom");
    engine->requestSubscribe(wire::SOCK_MEDIATOR);
    DBG(DBG_INFO) << "init: init Channels done.";

    initSources();
    DBG(DBG_INFO) << "init: init Sources done.";

    std::string zone;
    if (isOk(requestGetTextParam(wire::SOCK_DEV, vocab::ds::DEVICE, vocab::tbl::DATE_TIME, vocab::prop::TZ, zone,
                                 ""))) {
        DBG(DBG_SYS) << "init: setenv TZ=" << zone;
        setTimeZone(zone);
    }
    engine->requestSubscribe(wire::SOCK_DEV);

    engine->start();
    DBG(DBG_INFO) << "init: dataCommunicator started";
}

Fcodes ChannelMngr::initSources() {
    std::vector<std::string> sources;
    getInstances(vocab::ds::VIDEO_SOURCE, vocab::tbl::VIDEO_SOURCE, sources);
    Fcodes result = FC_OK;
    for (const std::string& source : sources) {
        MessageEvent event;
        event.source = source;
        ConfigChannelTarnevel channel(*this, *this);
        result |= channel.updateVideoSource(&event);
    }
    return result;
}

// Kept for a caller that starts without "LOAD_CHANNELS": the daemon itself
// configures the channels only when a channel file is loaded.
Fcodes ChannelMngr::initChannels() {
    ConfigChannelTarnevel channel(*this, *this);
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
    } applied[] = {{vocab::tbl::AV_SETTINGS, &ConfigChannelTarnevel::configAVSettings},
                   {vocab::tbl::AUDIO_SOURCE, &ConfigChannelTarnevel::configAudioGain}};
    for (const auto& entry : applied) {
        if (!isChangedComponent(vocab::ds::CHANNEL, entry.component))
            continue;
        std::vector<std::string> instances;
        result |= getInstances(vocab::ds::CHANNEL, entry.component, instances);
        for (const std::string& instance : instances) {
            if (!isChangedInstance(vocab::ds::CHANNEL, entry.component, instance))
                continue;
            ConfigChannelTarnevel channel(*this, *this);
            result |= (channel.*entry.apply)(instance, true);
        }
    }
    return result | commit();
}

Fcodes ChannelMngr::loadChannels(const std::string& path) {
    MessageCommand stop;
    stop.setId(vocab::cmd::STOP);
    stop.addParam(vocab::cmd::PARAM_ROW_ID, vocab::row::ALL);
    std::string stopText, response;
    stop.toString(stopText);
    {
        ConfigChannelTarnevel channel(*this, *this);
        channel.execute(stopText, response);
    }

    DBG(DBG_SYS) << "loadChannels: Loading " << path;
    Fcodes result = loadDataSet(path);
    if (!isOk(result))
        return result;
    // Edits pending on the channel data belonged to the data just replaced:
    // committed onto the loaded (or factory) data they would be stale. The
    // store itself keeps pending values across a load; the manager drops them.
    untouchDataSet(vocab::ds::CHANNEL);

    // A stored file from an older release lacks what the factory data has
    // since gained: it is brought up to date against the factory defaults.
    if (path != vocab::path::FACTORY_CHANNELS) {
        loadDataSet(vocab::ds::DEFAULT, vocab::path::FACTORY_CHANNELS);
        updateDataSet(vocab::ds::CHANNEL, vocab::ds::DEFAULT, false, true, false);
        deleteDataSet(vocab::ds::DEFAULT);
    }

    sapStopAll();
    ConfigChannelTarnevel channel(*this, *this);
    return channel.configChannels() | FC_OK;
}

Fcodes ChannelMngr::reconfigureChannel(const std::string& rowId) {
    ConfigChannelTarnevel channel(*this, *this);
    return channel.configChannel(rowId);
}
