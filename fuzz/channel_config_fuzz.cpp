// A channel data set as LOAD_CHANNELS meets it — a stored file, brought up to
// date against the factory defaults — then the channel operations run on what
// was loaded, against appliance_sim's mediator, device manager and SAP
// announcer served in this process (the channel tests' harness): the start-up
// configuration of every channel (with the replay of a "Playing" one), then
// per channel row its configuration and read-back, Play, the on-the-fly
// change, the statistics of its targets, the data-stream conditions, a bitrate
// request of the Zixi link, and Stop.
//
// Input: the on-the-fly "Total Bitrate" and "Max Bitrate" as two lines of text
// (as a front end forwards them), then the data set document.
//
// Each input starts from the factory data sets and peers reset to their data
// files, so a failing input fails again on replay; the holder and its threads
// are made once (threads made per input left LeakSanitizer, checking while a
// new server thread starts, reporting its receive buffer now and then). Target
// probes are never started: the document's addresses are the fuzzer's, and
// nothing may be sent off this machine. Every peer request waits one try of
// one second at most; the peers answer at once, so an input runs in well under
// the 10 s that count as a hang.
#include <cstdio>
#include <fstream>
#include <memory>

#include "FuzzSupport.h"
#include "TestPaths.h"
#include "datacom/DbgPrintClient.h"
#include "support/ChannelHarness.h"

using namespace datacom;

using namespace vocab;

namespace {

// The channel manager's holder with every peer request bounded as above.
class ShortWaitHolder : public ChannelTestHolder {
public:
    Fcodes requestCommand(const std::string& socketPath, const std::string& command, std::string& result, unsigned,
                          unsigned) override {
        return ChannelTestHolder::requestCommand(socketPath, command, result, 1, 1);
    }
    Fcodes requestGetTextParam(const std::string& socketPath, const std::string& dataSet, const std::string& component,
                               const std::string& property, std::string& value, const std::string& row) override {
        return getDataCommunicator()->requestGetParam(socketPath, dataSet, component, property, value,
                                                      ParamAccess::Read, row, 1, 1);
    }
};

// The channel tests' harness with the holder above in place of theirs.
struct FuzzHarness : ChannelHarness {
    FuzzHarness() : ChannelHarness(false) {
        holder = std::make_unique<ShortWaitHolder>();
        store = holder.get();
    }
};

struct Peers {
    Peers() {
        gDbgLevel = 5;  // nothing to capture: lines would be formatted and dropped
        readHostFile(std::string(testpaths::SIM_DATA_DIR) + "/mediator_params.json", params);
        fuzz::check(harness.ready(), "the simulated peers and the factory data sets come up");
    }
    FuzzHarness harness;
    std::string params;
};

// Every result carries "OK"'s bit; failures are further bits.
Fcodes checked(Fcodes code, const char* what) {
    fuzz::check((static_cast<uint32_t>(code) & FC_OK) == FC_OK, what);
    return code;
}

Fcodes streamEvent(ConfigChannelTarnevel& channel, const char* id, const std::string& row, const char* status,
                   const std::string& total) {
    MessageEvent event;
    event.id = id;
    event.source = row;
    event.status = status;
    event.addParam(cmd::PARAM_TOTAL_BITRATE, total);
    return channel.handleDataStreamEvent(&event);
}

void runChannel(ConfigChannelTarnevel& channel, const std::string& row, const std::string& total,
                const std::string& max) {
    checked(channel.configChannel(row), "configChannel");
    checked(channel.updateChannel(row), "updateChannel");
    checked(channel.playChannel(row), "playChannel");
    checked(channel.execute(makeCommand(
                cmd::CHANGE_ON_THE_FLY,
                {{cmd::PARAM_ROW_ID, row}, {cmd::PARAM_TOTAL_BITRATE, total}, {cmd::PARAM_MAX_BITRATE, max}})),
            "Change on-the-fly");
    std::vector<std::string> targets;
    channel.getChildInstances(ds::CHANNEL, tbl::TARGET, prop::CHANNEL_ID, row, targets);
    for (size_t i = 0; i < targets.size() && i < 4; ++i)
        for (const char* update : {cmd::UPDATE_ZIXI_STATISTICS, cmd::UPDATE_SRT_STATISTICS})
            checked(channel.execute(makeCommand(update, {{cmd::PARAM_ROW_ID, targets[i]}})), update);
    checked(streamEvent(channel, ev::DATA_STREAM, row, state::ALARM_ON, total), "Data Stream ON");
    checked(streamEvent(channel, ev::ZIXI_CHANGE_BITRATE_REQUEST, row, state::ALARM_ON, total), "Zixi bitrate");
    checked(streamEvent(channel, ev::DATA_STREAM, row, state::ALARM_OFF, total), "Data Stream OFF");
    checked(channel.execute(makeCommand(cmd::STOP, {{cmd::PARAM_ROW_ID, row}})), "Stop");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    // Made on first use and ended at exit, which removes the temporary root.
    static Peers& peers = []() -> Peers& {
        // The simulator prints every message it sees; only a finding matters here.
        fuzz::check(std::freopen("/dev/null", "w", stdout) != nullptr, "stdout to /dev/null");
        // The result-code table the simulator's threads format with is made first, so
        // that it is ended after them at exit.
        fcodeText(FC_OK);
        static Peers made;
        return made;
    }();
    ChannelHarness& h = peers.harness;
    fuzz::Input input(data, size);
    const std::string total = input.line(32), max = input.line(32);
    std::ofstream(h.root.host("/data/settings/fuzz.json"), std::ios::binary) << input.rest();

    std::string error;
    h.mediator.model().loadParams(peers.params, error);
    h.mediator.model().clearRecords();
    h.device.loadDataSetFile(std::string(testpaths::SIM_DATA_DIR) + "/device_data_set.json", error);
    h.recorder.clear();
    h.holder->rollback();
    for (const char* file : kFactoryFiles)
        h.holder->loadDataSet(std::string("/etc/sysmgt/") + file);

    // As LOAD_CHANNELS of a stored file, then merged with the factory
    // defaults; loaded as the channel data set whatever name it declares.
    if (!isOk(h.holder->loadDataSet(ds::CHANNEL, "/data/settings/fuzz.json")))
        return 0;
    h.holder->loadDataSet(ds::DEFAULT, path::FACTORY_CHANNELS);
    h.holder->updateDataSet(ds::CHANNEL, ds::DEFAULT, false, true, false);
    h.holder->deleteDataSet(ds::DEFAULT);

    ConfigChannelTarnevel channel = h.channel();
    checked(channel.configChannels(), "configChannels");
    std::vector<std::string> rows;
    h.holder->getInstances(ds::CHANNEL, tbl::CHANNELS, rows);
    for (size_t i = 0; i < rows.size() && i < 4; ++i)
        runChannel(channel, rows[i], total, max);
    return 0;
}
