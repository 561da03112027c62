#pragma once

#include "datacom/Export.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

#include "datacom/DataRow.h"
#include "datacom/DataSet.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/Fcodes.h"

namespace datacom {

/// What tables (rows by id) and objects (instances by name) share: the owned
/// rows, a recursive mutex, the change state that marks the dataset, and the
/// change scans over the rows. The scans hold the mutex; isChanged and the
/// state accessors do not.
template <typename Key>
class DATACOM_API RowOwner {
public:
    using Rows = std::map<Key, std::unique_ptr<DataRow>>;

    RowOwner() = default;
    RowOwner(const RowOwner&) = delete;
    RowOwner& operator=(const RowOwner&) = delete;
    virtual ~RowOwner() = default;

    /// Rows marked deleted are destroyed, new and changed ones commit their values; state 0.
    virtual Fcodes acceptChanges() {
        Guard guard(mutex);
        Fcodes result = FC_OK;
        for (auto at = rows.begin(); at != rows.end();) {
            const uint32_t rowState = at->second->getState();
            if (rowState & datastate::DELETED) {
                at = rows.erase(at);
                continue;
            }
            if (rowState & (datastate::CHANGED | datastate::NEW))
                result |= at->second->acceptChanges();
            ++at;
        }
        state = datastate::UNCHANGED;
        return result;
    }
    /// Every row touched; the owner and its dataset marked changed.
    virtual Fcodes touch() {
        Guard guard(mutex);
        const Fcodes result = forEachRow(&DataRow::touch);
        setState(datastate::CHANGED);
        return result;
    }
    /// Every row untouched; state 0.
    virtual Fcodes untouch() {
        Guard guard(mutex);
        const Fcodes result = forEachRow(&DataRow::untouch);
        state = datastate::UNCHANGED;
        return result;
    }
    /// Changed and deleted rows only lose their marks (pending values stay);
    /// rows that are merely new are destroyed, so a new row that was also
    /// edited is kept. State 0.
    Fcodes rollbackChanges() {
        Guard guard(mutex);
        Fcodes result = FC_OK;
        for (auto at = rows.begin(); at != rows.end();) {
            const uint32_t rowState = at->second->getState();
            if (rowState & (datastate::CHANGED | datastate::DELETED)) {
                result |= at->second->rollbackChanges();
                ++at;
            } else if (rowState & datastate::NEW) {
                at = rows.erase(at);
            } else {
                ++at;
            }
        }
        state = datastate::UNCHANGED;
        return result;
    }
    /// True when the owner or any row is marked; a marked row marks the owner.
    bool isChanged() {
        if (state != datastate::UNCHANGED)
            return true;
        for (const auto& row : rows) {
            if (row.second->getState() != datastate::UNCHANGED) {
                addState(datastate::CHANGED);
                return true;
            }
        }
        return false;
    }

    uint32_t getState() const { return state; }
    /// Both mark the dataset changed when the new state is non-zero.
    void setState(uint32_t bits) {
        state = bits;
        markDataSet(bits);
    }
    void addState(uint32_t bits) { markDataSet(state |= bits); }
    DataSet* getDataSet() const { return dataSet; }
    void setDataSet(DataSet* owner) { dataSet = owner; }

    /// The recursive mutex, for callers bracketing multi-step work.
    void lock() { mutex.lock(); }
    void unlock() { mutex.unlock(); }

protected:
    using Guard = std::lock_guard<std::recursive_mutex>;

    Fcodes forEachRow(Fcodes (DataRow::*operation)()) {
        Fcodes result = FC_OK;
        for (const auto& row : rows)
            result |= ((*row.second).*operation)();
        return result;
    }
    void markDataSet(uint32_t now) {
        if (now != datastate::UNCHANGED && dataSet)
            dataSet->setState(datastate::CHANGED);
    }

    std::recursive_mutex mutex;
    std::atomic<uint32_t> state{datastate::NEW};
    Rows rows;
    DataSet* dataSet = nullptr;
};

}  // namespace datacom
