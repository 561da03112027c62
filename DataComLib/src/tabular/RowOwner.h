#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "datacom/DataRow.h"
#include "datacom/DataSet.h"
#include "datacom/DataStoreConstants.h"
#include "datacom/Fcodes.h"

/// The change scans that tables (rows by id) and objects (instances by name)
/// share over their owned rows. Each runs with the owner's mutex held by the
/// caller; the owner sets its own state afterwards.
namespace datacom::rowowner {

template <typename Key>
using Rows = std::map<Key, std::unique_ptr<DataRow>>;

/// Rows marked deleted are destroyed, new and changed ones commit their values.
template <typename Key>
Fcodes acceptChanges(Rows<Key>& rows) {
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
    return result;
}

/// Changed and deleted rows only lose their marks (pending values stay);
/// rows that are merely new are destroyed, so a new row that was also edited
/// is kept.
template <typename Key>
Fcodes rollbackChanges(Rows<Key>& rows) {
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
    return result;
}

template <typename Key>
Fcodes forEachRow(Rows<Key>& rows, Fcodes (DataRow::*operation)()) {
    Fcodes result = FC_OK;
    for (const auto& row : rows)
        result |= ((*row.second).*operation)();
    return result;
}

template <typename Key>
bool anyRowMarked(const Rows<Key>& rows) {
    for (const auto& row : rows)
        if (row.second->getState() != datastate::UNCHANGED)
            return true;
    return false;
}

/// A marked owner marks its dataset changed.
inline void markDataSet(DataSet* dataSet, uint32_t now) {
    if (now != datastate::UNCHANGED && dataSet)
        dataSet->setState(datastate::CHANGED);
}

}  // namespace datacom::rowowner
