#pragma once

// A concrete holder for the holder's tests: it records, in the order the
// worker runs them, every command and event the worker dispatches.

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "tabular/DataColumn.h"
#include "holder/DataHolder.h"
#include "tabular/DataItem.h"
#include "tabular/DataRow.h"
#include "tabular/DataSet.h"
#include "tabular/DataStoreConstants.h"
#include "tabular/DataTable.h"
#include "records/MessageEvent.h"

class RecordingHolder : public DataHolder {
public:
    ~RecordingHolder() override { shutdown(); }

    Fcodes doHandle(MessageEvent* event) override {
        record("event " + event->id);  // borrowed: the worker destroys it
        return FC_OK;
    }
    Fcodes doExecute(const std::string& command, std::string& result) override {
        Fcodes code = DataHolder::doExecute(command, result);
        record("command " + command + " " + fcodeText(code));
        return code;
    }
    // Waits (bounded) until `count` items have been dispatched; a copy of the record.
    std::vector<std::string> waitFor(size_t count, std::chrono::seconds bound = std::chrono::seconds(10)) {
        std::unique_lock<std::mutex> guard(recordMutex);
        seen.wait_for(guard, bound, [&] { return dispatched.size() >= count; });
        return dispatched;
    }

private:
    void record(const std::string& line) {
        std::lock_guard<std::mutex> guard(recordMutex);
        dispatched.push_back(line);
        seen.notify_all();
    }

    std::mutex recordMutex;
    std::condition_variable seen;
    std::vector<std::string> dispatched;
};

// A data set with one table `table` of an int column "Bitrate" and a string
// column "Host" (default 7), and one row `rowId` holding the given values.
inline DataSet* makeDataSet(const std::string& id, const std::string& table, int rowId, int bitrate,
                            const std::string& host) {
    auto* dataSet = new DataSet(id);
    auto* made = new DataTable(table);
    auto* bitrateColumn = new DataColumn();
    bitrateColumn->init("Bitrate", colaccess::RW, coltype::INT);
    auto* hostColumn = new DataColumn();
    hostColumn->init("Host", colaccess::RW, coltype::STR);
    hostColumn->setDefVal(7);
    made->addColumns("Bitrate", bitrateColumn);
    made->addColumns("Host", hostColumn);
    DataRow* row = made->newRow(rowId, nullptr, false);
    row->getDataItem("Bitrate")->initValue(bitrate);
    row->getDataItem("Host")->initValue(host);
    dataSet->addTable(table, made);
    dataSet->acceptChanges();
    return dataSet;
}
