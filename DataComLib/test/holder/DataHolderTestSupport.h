#pragma once

// A concrete holder for the holder's tests: it records, in the order the
// worker runs them, every command and event the worker dispatches.

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "datacom/DataColumn.h"
#include "datacom/DataHolder.h"
#include "datacom/DataItem.h"
#include "datacom/DataRow.h"
#include "datacom/DataSet.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/DataTable.h"
#include "datacom/MessageEvent.h"

class RecordingHolder : public datacom::DataHolder {
public:
    ~RecordingHolder() override { shutdown(); }

    datacom::Fcodes doHandle(datacom::MessageEvent* event) override {
        record("event " + event->id);  // borrowed: the worker destroys it
        return datacom::FC_OK;
    }
    datacom::Fcodes doExecute(const std::string& command, std::string& result) override {
        datacom::Fcodes code = datacom::DataHolder::doExecute(command, result);
        record("command " + command + " " + datacom::fcodeText(code));
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
inline datacom::DataSet* makeDataSet(const std::string& id, const std::string& table, int rowId, int bitrate,
                                     const std::string& host) {
    auto* dataSet = new datacom::DataSet(id);
    auto* made = new datacom::DataTable(table);
    auto* bitrateColumn = new datacom::DataColumn();
    bitrateColumn->init("Bitrate", datacom::colaccess::RW, datacom::coltype::INT);
    auto* hostColumn = new datacom::DataColumn();
    hostColumn->init("Host", datacom::colaccess::RW, datacom::coltype::STR);
    hostColumn->setDefVal(7);
    made->addColumns("Bitrate", bitrateColumn);
    made->addColumns("Host", hostColumn);
    datacom::DataRow* row = made->newRow(rowId, nullptr, false);
    row->getDataItem("Bitrate")->initValue(bitrate);
    row->getDataItem("Host")->initValue(host);
    dataSet->addTable(table, made);
    dataSet->acceptChanges();
    return dataSet;
}
