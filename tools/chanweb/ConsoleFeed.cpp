#include "ConsoleFeed.h"

#include <algorithm>

void ConsoleFeed::publish(const std::string& kind, const std::string& json) {
    {
        std::lock_guard<std::mutex> guard(mutex);
        if (kind == "status")
            entries.erase(std::remove_if(entries.begin(), entries.end(),
                                         [](const Entry& entry) { return entry.kind == "status"; }),
                          entries.end());
        entries.push_back({++lastSeq, kind, json});
        size_t logs = 0;
        for (const Entry& entry : entries)
            logs += entry.kind != "status";
        for (auto it = entries.begin(); logs > LOG_LIMIT && it != entries.end();) {
            if (it->kind != "status") {
                droppedSeq = it->seq;
                it = entries.erase(it);
                --logs;
            } else {
                ++it;
            }
        }
    }
    changed.notify_all();
}

std::string ConsoleFeed::next(uint64_t& cursor, std::chrono::milliseconds limit) {
    std::unique_lock<std::mutex> lock(mutex);
    const bool restarted = cursor > lastSeq;  // an id of an earlier run of chanweb
    if (restarted)
        cursor = 0;
    changed.wait_for(lock, limit, [&] { return isClosed || lastSeq > cursor; });
    if (isClosed)
        return "";
    std::string out;
    if (restarted || (cursor != 0 && cursor < droppedSeq))
        out += std::string("event: gap\ndata: {\"reason\":\"") + (restarted ? "restarted" : "dropped") + "\"}\n\n";
    for (const Entry& entry : entries)
        if (entry.seq > cursor)
            out += "id: " + std::to_string(entry.seq) + "\nevent: " + entry.kind + "\ndata: " + entry.json + "\n\n";
    cursor = lastSeq;
    return out;
}

std::string ConsoleFeed::status() const {
    std::lock_guard<std::mutex> guard(mutex);
    for (const Entry& entry : entries)
        if (entry.kind == "status")
            return entry.json;
    return "";
}

void ConsoleFeed::close() {
    {
        std::lock_guard<std::mutex> guard(mutex);
        isClosed = true;
    }
    changed.notify_all();
}

bool ConsoleFeed::closed() const {
    std::lock_guard<std::mutex> guard(mutex);
    return isClosed;
}
