#include "model/ChannelRunBook.h"

#include <algorithm>

using datacom::Mutex;
using datacom::ScopedLock;

void ChannelRunBook::addBranch(const std::string& rowId, const std::string& branch, Kind kind) {
    ScopedLock<Mutex> guard(mutex);
    std::vector<std::string>& list = started[{rowId, kind}];
    if (std::find(list.begin(), list.end(), branch) == list.end())
        list.push_back(branch);
}

void ChannelRunBook::removeBranch(const std::string& rowId, const std::string& branch, Kind kind) {
    ScopedLock<Mutex> guard(mutex);
    std::vector<std::string>& list = started[{rowId, kind}];
    list.erase(std::remove(list.begin(), list.end(), branch), list.end());
}

std::vector<std::string> ChannelRunBook::branches(const std::string& rowId, Kind kind) const {
    ScopedLock<Mutex> guard(mutex);
    const auto found = started.find({rowId, kind});
    return found == started.end() ? std::vector<std::string>() : found->second;
}

void ChannelRunBook::forgetBranches() {
    ScopedLock<Mutex> guard(mutex);
    started.clear();
}

void ChannelRunBook::setStoppedByInput(const std::string& rowId, bool stopped) {
    ScopedLock<Mutex> guard(mutex);
    inputStopped[rowId] = stopped;
}

bool ChannelRunBook::stoppedByInput(const std::string& rowId) const {
    ScopedLock<Mutex> guard(mutex);
    const auto found = inputStopped.find(rowId);
    return found != inputStopped.end() && found->second;
}
