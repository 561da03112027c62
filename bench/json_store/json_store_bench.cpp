// Throughput of the JSON dataset store on a realistic channel dataset (two
// channels, four targets, four audio rows, encoders, transport settings):
// committed and pending reads, pending writes, commits, and two threads
// reading while one writes. Usage: json_store [dataset.json]
#include <stdlib.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "json/DataSets.h"

using namespace datacom;

namespace {

const std::string kSet = "ChannelDataSet";
const char* const kChannels[] = {"H.264", "HEVC"};

using Clock = std::chrono::steady_clock;

// Runs `body` `rounds` times (each doing `opsPerRound` operations) and prints ops/s.
template <typename Body>
double measure(const char* what, int rounds, int opsPerRound, Body&& body) {
    Fcodes merged = FC_OK;
    auto start = Clock::now();
    for (int i = 0; i < rounds; ++i)
        merged |= body(i);
    double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    double rate = rounds * static_cast<double>(opsPerRound) / seconds;
    std::printf("%-44s %12.0f /s%s\n", what, rate, isOk(merged) ? "" : "   (FAILED)");
    return rate;
}

// The reads of a channel configuration pass: 18 values of one channel.
Fcodes readChannel(IDataSets& s, int channel, bool pending) {
    const std::string key = kChannels[channel];
    int number = 0;
    bool flag = false;
    std::string text;
    Fcodes r = FC_OK;
    auto getInt = [&](const char* comp, const char* prop, const std::string& k) {
        r |= pending ? s.getNewIntParam(kSet, comp, prop, number, k) : s.getIntParam(kSet, comp, prop, number, k);
    };
    auto getText = [&](const char* comp, const char* prop, const std::string& k) {
        r |= pending ? s.getNewTextParam(kSet, comp, prop, text, k) : s.getTextParam(kSet, comp, prop, text, k);
    };
    getText("ChannelsTable", "State", key);
    getText("ChannelsTable", "Video Source", key);
    r |= s.getBoolParam(kSet, "ChannelsTable", "Enabled", flag, key);
    getInt("Video Encoder", "Bitrate", key);
    getInt("Video Encoder", "GOP", key);
    getText("Video Encoder", "Profile", key);
    getInt("Video Encoder", "Bit Depth", key);
    getInt("TS Multiplexer", "Video PID", key);
    getInt("TS Multiplexer", "Audio PID", key);
    getText("TS Multiplexer", "Service Name", key);
    getText("ChannelProcessingTable", "Ingest KLV", key);
    for (int t = 0; t < 4; ++t) {
        r |= pending ? s.getNewIntParam(kSet, "Targets", "Port", number, t)
                     : s.getIntParam(kSet, "Targets", "Port", number, t);
        r |= s.getTextParam(kSet, "Targets", "Address", text, t);
    }
    getText("Device", "Label", "");
    return r;
}

// The writes of a configuration change: 10 values.
Fcodes writeChannel(IDataSets& s, int channel, int round) {
    const std::string key = kChannels[channel];
    Fcodes r = s.setIntParam(kSet, "Video Encoder", "Bitrate", 2000 + round % 6000, key);
    r |= s.setIntParam(kSet, "Video Encoder", "GOP", 30 + round % 30, key);
    r |= s.setTextParam(kSet, "Video Encoder", "Profile", round % 2 ? "Main" : "High", key);
    r |= s.setTextParam(kSet, "ChannelsTable", "State", round % 2 ? "Played" : "Stopped", key);
    r |= s.setBoolParam(kSet, "ChannelsTable", "Auto Start", round % 2 == 0, key);
    r |= s.setIntParam(kSet, "TS Multiplexer", "Mux Rate", round % 20000, key);
    for (int t = 0; t < 4; ++t)
        r |= s.setIntParam(kSet, "Targets", "Port", 1234 + (round + t) % 1000, t);
    return r;
}

}  // namespace

int main(int argc, char** argv) {
    const std::string file = argc > 1 ? argv[1] : JSON_STORE_BENCH_DATASET;
    DataSets store;
    gDbgLevel = 5;  // the log pipe is not part of what is measured
    if (store.loadDataSet(file) != FC_OK) {
        std::fprintf(stderr, "json_store: cannot load %s\n", file.c_str());
        return 1;
    }
    constexpr int kRounds = 20000;
    std::printf("dataset %s\n", file.c_str());
    measure("committed reads (18 per pass)", kRounds, 18, [&](int i) { return readChannel(store, i % 2, false); });
    measure("pending reads, nothing pending", kRounds, 18, [&](int i) { return readChannel(store, i % 2, true); });
    writeChannel(store, 0, 1);
    writeChannel(store, 1, 1);
    measure("pending reads, values pending", kRounds, 18, [&](int i) { return readChannel(store, i % 2, true); });
    store.rollback();
    measure("pending writes (10 per change)", kRounds, 10, [&](int i) { return writeChannel(store, i % 2, i); });
    store.rollback();
    measure("commits of a 10-value change", kRounds / 4, 1,
            [&](int i) { return writeChannel(store, i % 2, i) | store.commit(); });

    char dir[] = "/tmp/json_store_benchXXXXXX";
    if (mkdtemp(dir)) {
        const std::string target = std::string(dir) + "/channels.json";
        measure("stores (atomic, fsync)", 50, 1, [&](int) { return store.storeDataSet(kSet, target); });
        unlink(target.c_str());
        rmdir(dir);
    }

    // Two readers (the worker and the messaging thread) and a writer at once.
    std::vector<std::thread> readers;
    readers.reserve(2);
    constexpr int readsPerThread = kRounds / 2;
    auto start = Clock::now();
    for (int t = 0; t < 2; ++t)
        readers.emplace_back([&store, t] {
            for (int i = 0; i < readsPerThread; ++i)
                readChannel(store, (i + t) % 2, true);
        });
    for (int i = 0; i < kRounds / 8; ++i)
        writeChannel(store, i % 2, i), store.commit();
    for (auto& reader : readers)
        reader.join();
    double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    std::printf("%-44s %12.0f /s\n", "2 threads reading, 1 writing: reads", 2.0 * readsPerThread * 18 / seconds);
    return 0;
}
