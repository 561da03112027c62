#pragma once

#include <algorithm>
#include <map>
#include <mutex>
#include <string>
#include <tuple>
#include <vector>

#include "settings/ChannelStore.h"

// The channel rows in memory: every value kept as text under (dataset,
// component, property, row), instances in the order they were first set.
// An unset value reads as "No Such Name"; the pending reads see the
// committed values. Peer requests are recorded and answered "OK" (a text
// request with the value set under the peer's socket path as dataset).
class FakeStore : public ChannelStore {
public:
    void set(const std::string& dataSet, const std::string& component, const std::string& property,
             const std::string& row, const std::string& value) {
        values[{dataSet, component, property, row}] = value;
        std::vector<std::string>& rows = instances[{dataSet, component}];
        if (std::find(rows.begin(), rows.end(), row) == rows.end())
            rows.push_back(row);
    }
    // The value as text, "<unset>" without one.
    std::string get(const std::string& dataSet, const std::string& component, const std::string& property,
                    const std::string& row) const {
        const auto found = values.find({dataSet, component, property, row});
        return found == values.end() ? "<unset>" : found->second;
    }
    std::vector<std::string> requests;  // "socket command" or "socket dataSet/component/property"

    datacom::Fcodes getTextParam(const std::string& d, const std::string& c, const std::string& p, std::string& value,
                                 const std::string& row) override {
        return read(d, c, p, row, [&value](const std::string& text) { value = text; });
    }
    datacom::Fcodes getTextParam(const std::string& d, const std::string& c, const std::string& p, std::string& value,
                                 int index) override {
        const std::vector<std::string>& rows = instances[{d, c}];
        return index >= 0 && index < static_cast<int>(rows.size()) ? getTextParam(d, c, p, value, rows[index])
                                                                   : datacom::FC_NO_SUCH_NAME;
    }
    datacom::Fcodes getIntParam(const std::string& d, const std::string& c, const std::string& p, int& value,
                                const std::string& row) override {
        return read(d, c, p, row, [&value](const std::string& text) { value = std::stoi(text, nullptr, 0); });
    }
    datacom::Fcodes getBoolParam(const std::string& d, const std::string& c, const std::string& p, bool& value,
                                 const std::string& row) override {
        return read(d, c, p, row, [&value](const std::string& text) { value = text == "true"; });
    }
    datacom::Fcodes getNewTextParam(const std::string& d, const std::string& c, const std::string& p,
                                    std::string& value, const std::string& row) override {
        return getTextParam(d, c, p, value, row);
    }
    datacom::Fcodes getNewIntParam(const std::string& d, const std::string& c, const std::string& p, int& value,
                                   const std::string& row) override {
        return getIntParam(d, c, p, value, row);
    }
    datacom::Fcodes getNewBoolParam(const std::string& d, const std::string& c, const std::string& p, bool& value,
                                    const std::string& row) override {
        return getBoolParam(d, c, p, value, row);
    }
    datacom::Fcodes initTextParam(const std::string& d, const std::string& c, const std::string& p,
                                  const std::string& value, const std::string& row) override {
        set(d, c, p, row, value);
        return datacom::FC_OK;
    }
    datacom::Fcodes initIntParam(const std::string& d, const std::string& c, const std::string& p, int value,
                                 const std::string& row) override {
        return initTextParam(d, c, p, std::to_string(value), row);
    }
    datacom::Fcodes initInt64Param(const std::string& d, const std::string& c, const std::string& p, int64_t value,
                                   const std::string& row) override {
        return initTextParam(d, c, p, std::to_string(value), row);
    }
    datacom::Fcodes initBoolParam(const std::string& d, const std::string& c, const std::string& p, bool value,
                                  const std::string& row) override {
        return initTextParam(d, c, p, value ? "true" : "false", row);
    }
    bool hasInstance(const std::string& d, const std::string& c, const std::string& row) override {
        const std::vector<std::string>& rows = instances[{d, c}];
        return std::find(rows.begin(), rows.end(), row) != rows.end();
    }
    bool hasInstance(const std::string& d, const std::string& c, int index) override {
        return index >= 0 && index < static_cast<int>(instances[{d, c}].size());
    }
    datacom::Fcodes getInstances(const std::string& d, const std::string& c, std::vector<std::string>& rows) override {
        rows = instances[{d, c}];
        return datacom::FC_OK;
    }
    datacom::Fcodes getInstancesByParameter(const std::string& d, const std::string& c, const std::string& p,
                                            const std::string& value, std::vector<std::string>& rows) override {
        rows.clear();
        for (const std::string& row : instances[{d, c}])
            if (get(d, c, p, row) == value)
                rows.push_back(row);
        return datacom::FC_OK;
    }
    void lock() override DATACOM_NO_THREAD_SAFETY_ANALYSIS { mutex.lock(); }
    void unlock() override DATACOM_NO_THREAD_SAFETY_ANALYSIS { mutex.unlock(); }
    datacom::Fcodes requestGetTextParam(const std::string& socket, const std::string& d, const std::string& c,
                                        const std::string& p, std::string& value, const std::string& row) override {
        requests.push_back(socket + " " + d + "/" + c + "/" + p);
        return read(socket, c, p, row, [&value](const std::string& text) { value = text; });
    }
    datacom::Fcodes requestGetIntParam(const std::string& socket, const std::string& d, const std::string& c,
                                       const std::string& p, int& value, const std::string& row) override {
        requests.push_back(socket + " " + d + "/" + c + "/" + p);
        return read(socket, c, p, row, [&value](const std::string& text) { value = std::stoi(text, nullptr, 0); });
    }
    datacom::Fcodes requestCommand(const std::string& socket, const std::string& command, std::string&, unsigned,
                                   unsigned) override {
        requests.push_back(socket + " " + command);
        return datacom::FC_OK;
    }

private:
    template <typename Take>
    datacom::Fcodes read(const std::string& d, const std::string& c, const std::string& p, const std::string& row,
                         Take take) {
        const auto found = values.find({d, c, p, row});
        if (found == values.end())
            return datacom::FC_NO_SUCH_NAME;
        take(found->second);
        return datacom::FC_OK;
    }

    std::map<std::tuple<std::string, std::string, std::string, std::string>, std::string> values;
    std::map<std::pair<std::string, std::string>, std::vector<std::string>> instances;
    std::recursive_mutex mutex;
};
