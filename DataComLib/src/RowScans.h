#pragma once

#include "DataRow.h"
#include "DataStoreConstants.h"
#include "Fcodes.h"

// Change scans shared by tables (rows by id) and objects (instances by name).
// The caller holds the owner's lock.

// Rows marked deleted are destroyed; new and changed rows commit their values.
template <typename RowMap>
Fcodes acceptRows(RowMap& rows) {
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

// Changed and deleted rows only lose their marks (pending values stay); rows
// that are merely new are destroyed, so a new row that was also edited is kept.
template <typename RowMap>
Fcodes rollbackRows(RowMap& rows) {
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

// True when any row carries a mark.
template <typename RowMap>
bool anyRowChanged(const RowMap& rows) {
    for (const auto& row : rows)
        if (row.second->getState() != datastate::UNCHANGED)
            return true;
    return false;
}

// Every row touched or untouched; the or of their codes.
template <typename RowMap>
Fcodes touchRows(RowMap& rows, bool touch) {
    Fcodes result = FC_OK;
    for (const auto& row : rows)
        result |= touch ? row.second->touch() : row.second->untouch();
    return result;
}
