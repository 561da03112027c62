#pragma once

#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include "ports/ChannelStore.h"

// The channel rows in memory, each value as text under (dataset, component,
// property, row); instances in the order first set. An unset value reads
// "No Such Name"; a pending read sees the committed value. Peer requests are
// answered from the values set under the socket path as dataset; commands "OK".
class FakeStore : public ChannelStore {
    using S = const std::string&;
    using Fcodes = datacom::Fcodes;

public:
    void set(S d, S c, S p, S row, S value) {
        values[{d, c, p, row}] = value;
        std::vector<std::string>& rows = instances[{d, c}];
        if (std::find(rows.begin(), rows.end(), row) == rows.end())
            rows.push_back(row);
    }
    std::string get(S d, S c, S p, S row) const {
        const auto found = values.find({d, c, p, row});
        return found == values.end() ? "<unset>" : found->second;
    }

    Fcodes getTextParam(S d, S c, S p, std::string& v, S row) override { return read(d, c, p, row, v); }
    Fcodes getTextParam(S d, S c, S p, std::string& v, int i) override {
        return hasInstance(d, c, i) ? read(d, c, p, instances[{d, c}][i], v) : datacom::FC_NO_SUCH_NAME;
    }
    Fcodes getIntParam(S d, S c, S p, int& v, S row) override { return read(d, c, p, row, v); }
    Fcodes getBoolParam(S d, S c, S p, bool& v, S row) override { return read(d, c, p, row, v); }
    Fcodes getNewTextParam(S d, S c, S p, std::string& v, S row) override { return read(d, c, p, row, v); }
    Fcodes getNewIntParam(S d, S c, S p, int& v, S row) override { return read(d, c, p, row, v); }
    Fcodes getNewBoolParam(S d, S c, S p, bool& v, S row) override { return read(d, c, p, row, v); }
    Fcodes initTextParam(S d, S c, S p, S v, S row) override { return set(d, c, p, row, v), datacom::FC_OK; }
    Fcodes initIntParam(S d, S c, S p, int v, S row) override { return initTextParam(d, c, p, std::to_string(v), row); }
    Fcodes initInt64Param(S d, S c, S p, int64_t v, S row) override {
        return initTextParam(d, c, p, std::to_string(v), row);
    }
    Fcodes initBoolParam(S d, S c, S p, bool v, S row) override {
        return initTextParam(d, c, p, v ? "true" : "false", row);
    }
    bool hasInstance(S d, S c, S row) override {
        const std::vector<std::string>& rows = instances[{d, c}];
        return std::find(rows.begin(), rows.end(), row) != rows.end();
    }
    bool hasInstance(S d, S c, int i) override { return i >= 0 && i < static_cast<int>(instances[{d, c}].size()); }
    Fcodes getInstances(S d, S c, std::vector<std::string>& rows) override {
        rows = instances[{d, c}];
        return datacom::FC_OK;
    }
    Fcodes getInstancesByParameter(S d, S c, S p, S v, std::vector<std::string>& rows) override {
        rows.clear();
        for (const std::string& row : instances[{d, c}])
            if (get(d, c, p, row) == v)
                rows.push_back(row);
        return datacom::FC_OK;
    }
    void lock() override DATACOM_NO_THREAD_SAFETY_ANALYSIS { mutex.lock(); }
    void unlock() override DATACOM_NO_THREAD_SAFETY_ANALYSIS { mutex.unlock(); }
    Fcodes requestGetTextParam(S socket, S, S c, S p, std::string& v, S row) override {
        return read(socket, c, p, row, v);
    }
    Fcodes requestGetIntParam(S socket, S, S c, S p, int& v, S row) override { return read(socket, c, p, row, v); }
    Fcodes requestCommand(S, S, std::string&, unsigned, unsigned) override { return datacom::FC_OK; }

private:
    static void take(S text, std::string& v) { v = text; }
    static void take(S text, int& v) { v = std::stoi(text, nullptr, 0); }
    static void take(S text, bool& v) { v = text == "true"; }
    template <typename T>
    Fcodes read(S d, S c, S p, S row, T& v) {
        const auto found = values.find({d, c, p, row});
        return found == values.end() ? datacom::FC_NO_SUCH_NAME : (take(found->second, v), datacom::FC_OK);
    }

    std::map<std::tuple<std::string, std::string, std::string, std::string>, std::string> values;
    std::map<std::pair<std::string, std::string>, std::vector<std::string>> instances;
    std::recursive_mutex mutex;
};
