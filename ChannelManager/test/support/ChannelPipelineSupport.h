#pragma once

#include <algorithm>
#include <set>
#include <string>
#include <vector>

#include "support/ChannelHarness.h"

// Helpers of the pipeline tests: change a channel's rows before a run, and
// read back the mediator writes the run caused.
class PipelineBench {
public:
    explicit PipelineBench(ChannelHarness& h) : h(h) {}

    PipelineBench& text(const char* component, const char* property, const std::string& instance,
                        const std::string& value) {
        ok &= isOk(h.holder->initTextParam(vocab::ds::CHANNEL, component, property, value, instance));
        return *this;
    }
    PipelineBench& integer(const char* component, const char* property, const std::string& instance, int value) {
        ok &= isOk(h.holder->initIntParam(vocab::ds::CHANNEL, component, property, value, instance));
        return *this;
    }
    PipelineBench& flag(const char* component, const char* property, const std::string& instance, bool value) {
        ok &= isOk(h.holder->initBoolParam(vocab::ds::CHANNEL, component, property, value, instance));
        return *this;
    }
    std::string summary(const char* property, const std::string& rowId) {
        std::string value;
        h.holder->getTextParam(vocab::ds::CHANNEL, vocab::tbl::CHANNELS, property, value, rowId);
        return value;
    }

    bool summaryFlag(const char* property, const std::string& rowId) {
        bool value = false;
        h.holder->getBoolParam(vocab::ds::CHANNEL, vocab::tbl::CHANNELS, property, value, rowId);
        return value;
    }

    // Runs configChannel with the recorded writes cleared first.
    Fcodes configure(const std::string& rowId) {
        h.mediator.model().clearRecords();
        return h.channel().configChannel(rowId);
    }
    // The writes of the last run to components whose name starts with one of
    // `prefixes` (all when empty), as "Component/Parameter=value", sorted.
    std::vector<std::string> writes(const std::vector<std::string>& prefixes = {}) const {
        std::vector<std::string> out;
        for (const std::string& w : h.mediator.model().writes())
            if (prefixes.empty() || std::any_of(prefixes.begin(), prefixes.end(),
                                                [&w](const std::string& p) { return w.compare(0, p.size(), p) == 0; }))
                out.push_back(w);
        std::sort(out.begin(), out.end());
        return out;
    }

    bool ok = true;

private:
    ChannelHarness& h;
};

// The failures a refused or misaddressed write leaves in a result; the
// operations of other concerns that are still pending may add theirs.
inline bool noWriteFailed(Fcodes code) {
    const uint32_t failures = FC_NO_SUCH_NAME | FC_BODY_ERROR | FC_COMM_ERROR | FC_WRONG_TYPE | FC_BAD_VALUE;
    return (code & failures & ~static_cast<uint32_t>(FC_OK)) == 0;
}
