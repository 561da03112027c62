// A store cut short at any moment by the death of its process (SIGKILL, as
// near to a power cut as a test gets) must leave the old file or the new one,
// whole; and the next successful store must clear what the dead one left.
// A child process stores two versions of a data set in turn, for ever; the
// test kills it at a random moment, then reads the file.
#include <dirent.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <sstream>
#include <vector>

#include "TestFiles.h"
#include "datacom/DataSet.h"
#include "datacom/DataSetsFactory.h"
#include "datacom/IDataSets.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

constexpr int KILLS = 100;
constexpr const char* DIRECTORY = "/data/settings";

// Names in the settings directory other than the stored files themselves.
std::vector<std::string> leftovers() {
    std::vector<std::string> names;
    if (DIR* dir = opendir(sysmgtPath(DIRECTORY).c_str())) {
        while (dirent* entry = readdir(dir)) {
            const std::string name = entry->d_name;
            if (name.find(".tmp") != std::string::npos)
                names.push_back(name);
        }
        closedir(dir);
    }
    return names;
}

// One kind of data set file: how to store version 0 or 1 of it, and how to
// read a file of it back.
struct Kind {
    std::string name;
    std::string file;
    std::function<void(int version)> store;
    std::function<bool(const std::string& file)> parses;
};

// Version 1 is several times larger than version 0, so a torn write could
// not pass for either.
std::string tabularText(int version) {
    std::string text =
        "<DataSet ID=\"Channels\" Version=\"" + std::to_string(version) + "\">\n\t<Table Name=\"Targets\">\n";
    text += "\t\t<Columns>\n\t\t\t<Column Name=\"Host\" Access=\"RW\" Type=\"str\" Value=\"0\" />\n\t\t</Columns>\n";
    for (int row = 1; row <= 50 + 350 * version; ++row)
        text += "\t\t\t<Row ID=\"" + std::to_string(row) + "\" >\n\t\t\t<Item Name=\"Host\" Value=\"239.0." +
                std::to_string(version) + "." + std::to_string(row % 250) + "\" />\n\t\t\t</Row>\n";
    return text + "\t</Table>\n</DataSet>\n";
}

std::string jsonText(int version) {
    std::string text =
        "{\"dataset\": \"Channels\", \"components\": {\"Targets\": {\"properties\": "
        "{\"Address\": {\"type\": \"string\", \"default\": \"239.1.1.1\"}}, \"instances\": [";
    for (int row = 0; row < 50 + 350 * version; ++row)
        text += std::string(row ? "," : "") + "{\"Address\": \"239.1." + std::to_string(version) + "." +
                std::to_string(row % 250) + "\"}";
    return text + "]}}}";
}

Kind tabularKind() {
    auto versions = std::make_shared<std::vector<std::unique_ptr<DataSet>>>();
    for (int version = 0; version < 2; ++version) {
        versions->emplace_back(new DataSet());
        versions->back()->initFromString(tabularText(version));
    }
    const std::string file = std::string(DIRECTORY) + "/channels.xml";
    return {"tabular", file, [versions, file](int version) { (*versions)[version]->store(file); },
            [](const std::string& path) { return isOk(DataSet().load(path)); }};
}

Kind jsonKind() {
    std::shared_ptr<IDataSets> store(DataSetsFactory().createDataSets());
    for (int version = 0; version < 2; ++version) {
        const std::string source = "/tmp/version" + std::to_string(version) + ".json";
        std::ofstream(sysmgtPath(source)) << jsonText(version);
        store->loadDataSet("V" + std::to_string(version), source);
    }
    const std::string file = std::string(DIRECTORY) + "/channels.json";
    return {"JSON", file, [store, file](int version) { store->storeDataSet("V" + std::to_string(version), file); },
            [](const std::string& path) {
                std::unique_ptr<IDataSets> reader(DataSetsFactory().createDataSets());
                return isOk(reader->loadDataSet("read", path));
            }};
}

// Forks a child that stores versions 1, 0, 1, ... until it is killed; it
// writes one byte to `ready` once its first store is done, so that the kills
// fall among stores however slowly a child gets going (sanitizers, emulator).
pid_t startStoring(const Kind& kind, int ready) {
    pid_t child = fork();
    if (child == 0) {
        kind.store(1);
        char byte = 1;
        if (write(ready, &byte, 1) != 1)
            _exit(1);
        for (int version = 0;; version ^= 1)
            kind.store(version);
    }
    return child;
}

void cutPowerWhileStoring(const Kind& kind) {
    kind.store(1);
    const std::string newer = readText(kind.file);
    kind.store(0);
    const std::string older = readText(kind.file);
    ASSERT_NE(older, newer);
    ASSERT_TRUE(kind.parses(kind.file)) << kind.name;

    // The kills are spread over three stores' time after the child started.
    const auto timing = std::chrono::steady_clock::now();
    for (int store = 0; store < 4; ++store)
        kind.store(store % 2);
    const auto storeMicros =
        std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - timing).count() / 4;
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    std::uniform_int_distribution<long> delay(0, 3 * storeMicros + 1);

    int caughtMidStore = 0;
    for (int kill = 0; kill < KILLS; ++kill) {
        const long micros = delay(random);
        const std::string row = kind.name + " kill " + std::to_string(kill) + " after " + std::to_string(micros) +
                                " us (store " + std::to_string(storeMicros) + " us, seed " + std::to_string(seed) + ")";
        int ready[2];
        ASSERT_EQ(pipe(ready), 0) << row;
        const pid_t child = startStoring(kind, ready[1]);
        ASSERT_GT(child, 0) << row;
        pollfd entry{ready[0], POLLIN, 0};
        const bool started = poll(&entry, 1, 10000) == 1;
        if (started)
            usleep(static_cast<useconds_t>(micros));
        ::kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        close(ready[0]);
        close(ready[1]);
        ASSERT_TRUE(started) << row << ": the child never started";
        ASSERT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL) << row << ": the child ended by itself";

        const std::string onDisk = readText(kind.file);
        ASSERT_TRUE(onDisk == older || onDisk == newer)
            << row << ": the file is neither version (" << onDisk.size() << " bytes; versions " << older.size()
            << " and " << newer.size() << ")";
        ASSERT_TRUE(kind.parses(kind.file)) << row << ": the file does not load";
        if (!leftovers().empty())
            ++caughtMidStore;

        kind.store(kill % 2);
        const std::vector<std::string> left = leftovers();
        ASSERT_TRUE(left.empty()) << row << ": after the next store, " << left.front() << " is left behind";
    }
    // Kills that all fell between stores would prove nothing.
    EXPECT_GE(caughtMidStore, KILLS / 10)
        << kind.name << ": only " << caughtMidStore << " of " << KILLS << " kills caught a store under way";
}

TEST(PowerCut, KilledStoreLeavesOldOrNewFileAndNextStoreClearsItsLeftovers) {
    for (const Kind& kind : {tabularKind(), jsonKind()}) {
        SCOPED_TRACE(kind.name);
        cutPowerWhileStoring(kind);
    }
}

}  // namespace
