#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "datacom/Mutex.h"

// What the channel logic must remember between its working objects, because
// the channel rows cannot tell it: the mediator branches each channel
// started (or found running and took over), under the profile, protocol and
// KLV ingest of that moment, and whether the system stopped the channel for
// its input. A row's configuration may change while it plays; a stop then
// still stops what the play started. Kept in memory only: a restarted daemon
// finds no branch of its own, and a restarted mediator none at all
// (forgetBranches). Owned by the channel manager (lent through
// IChannelEvents); thread-safe.
class ChannelRunBook {
public:
    // A channel's target branches and its KLV branches are kept apart: a KLV
    // branch may serve both channels, so its stop asks the other channel first.
    enum class Kind { Target, Klv };

    void addBranch(const std::string& rowId, const std::string& branch, Kind kind);
    void removeBranch(const std::string& rowId, const std::string& branch, Kind kind);
    // In the order they were started.
    std::vector<std::string> branches(const std::string& rowId, Kind kind) const;
    // Every channel's: the mediator that ran them is gone.
    void forgetBranches();

    // "Stopped by its input": set when the system stops a channel because its
    // input cannot be encoded; cleared only when a valid input resumes the
    // channel or its operator stops or plays it. The channel's "Fcode" is
    // not where this lives: a data-stream "OFF" clears every bit of it.
    void setStoppedByInput(const std::string& rowId, bool stopped);
    bool stoppedByInput(const std::string& rowId) const;

private:
    mutable datacom::Mutex mutex;
    std::map<std::pair<std::string, Kind>, std::vector<std::string>> started DATACOM_GUARDED_BY(mutex);
    std::map<std::string, bool> inputStopped DATACOM_GUARDED_BY(mutex);
};
