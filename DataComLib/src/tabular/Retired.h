#pragma once

#include <algorithm>
#include <memory>
#include <vector>

namespace datacom {

/// Parts of the store that were unregistered but are left alive, because a
/// caller may still hold a pointer to them (removed tables and columns,
/// replaced columns, items taken out with their column). The owner keeps them
/// here and frees them when it is cleaned up or destroyed. Not locked: the
/// owner's lock covers it.
template <typename T>
class Retired {
public:
    void keep(std::unique_ptr<T> part) {
        if (part)
            parts.push_back(std::move(part));
    }
    /// A part registered again leaves the list; its new holder owns it.
    void reclaim(const T* part) {
        forget([part](const T& held) { return &held == part; });
    }
    /// Gives up, without freeing, every part that matches.
    template <typename Predicate>
    void forget(Predicate matches) {
        for (auto& held : parts)
            if (held && matches(*held))
                static_cast<void>(held.release());  // the owner frees it, not this list
        parts.erase(std::remove(parts.begin(), parts.end(), nullptr), parts.end());
    }
    void clear() { parts.clear(); }

private:
    std::vector<std::unique_ptr<T>> parts;
};

}  // namespace datacom
