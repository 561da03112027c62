#pragma once

// The documents the fuzz targets work against, and a real data holder with
// both stores loaded from them, as a channel service holds its data.

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <string>

#include "datacom/DataHolder.h"

namespace fuzz {

// A tabular data set: channel and target tables with int, enum and str columns.
extern const char* const kTabularDoc;
// The JSON channel document of the store tests (TestDocuments.h).
extern const char* const kJsonDoc;

// A DataHolder whose worker counts what it runs, so that a target can wait
// until everything one input queued has been run: each input then starts
// from the same, idle holder. Commands go through the base hook ("Accept
// Changes", "Rollback Changes"); events are dropped after counting.
class FuzzHolder : public datacom::DataHolder {
public:
    ~FuzzHolder() override { shutdown(); }

    datacom::Fcodes handle(datacom::MessageEvent* event) override;
    datacom::Fcodes execute(const std::string& command, std::string& result) override;
    datacom::Fcodes doHandle(datacom::MessageEvent* event) override;
    datacom::Fcodes doExecute(const std::string& command, std::string& result) override;
    // Waits (at most 10 s) until the worker has run all that was queued; false on a hang.
    bool drain();

private:
    void ran();

    std::atomic<unsigned long> queued{0};
    unsigned long done = 0;
    std::mutex doneMutex;
    std::condition_variable doneChanged;
};

// The holder, made on first use with the tabular set "Channels" (tables
// "ChannelsTable" and "Targets") and the JSON set "ChannelDataSet" loaded
// from files in the private root. Lives until the process ends.
FuzzHolder& servedHolder();

}  // namespace fuzz
