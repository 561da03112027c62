#pragma once

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "support/ChannelHarness.h"

// Helpers of the pipeline tests: change a channel's rows, run configChannel
// and compare its mediator writes with a data file.
class PipelineBench {
public:
    explicit PipelineBench(ChannelHarness& h) : h(h) {}

    // Changes a channel's rows before a run; `ok` turns false on a refusal.
    PipelineBench& text(const char* component, const char* property, const std::string& instance,
                        const std::string& value) {
        ok &= h.set({{component, property, instance, value}});
        return *this;
    }
    PipelineBench& integer(const char* component, const char* property, const std::string& instance, int value) {
        ok &= h.set({{component, property, instance, value}});
        return *this;
    }
    PipelineBench& flag(const char* component, const char* property, const std::string& instance, bool value) {
        ok &= h.set({{component, property, instance, value}});
        return *this;
    }
    // A value of the channel's summary row.
    std::string summary(const char* property, const std::string& rowId) {
        return h.text(vocab::ds::CHANNEL, vocab::tbl::CHANNELS, property, rowId);
    }
    bool summaryFlag(const char* property, const std::string& rowId) {
        return h.flag(vocab::ds::CHANNEL, vocab::tbl::CHANNELS, property, rowId);
    }

    // Runs configChannel with the recorded writes cleared first.
    datacom::Fcodes configure(const std::string& rowId) {
        h.mediator.model().clearRecords();
        return h.channel().configChannel(rowId);
    }
    // The writes of the last run to components starting with one of `prefixes`, sorted, one per line.
    std::string writes(const std::vector<std::string>& prefixes = {}) const {
        std::vector<std::string> got = h.writes(prefixes);
        std::sort(got.begin(), got.end());
        std::string out;
        for (const std::string& w : got)
            out += w + "\n";
        return out;
    }
    bool wrote(const std::string& prefix) const { return !h.writes({prefix}).empty(); }

    bool ok = true;

private:
    ChannelHarness& h;
};

// The lines of a file in pipeline/data, one per line without comments:
// the whole file, or the lines under "## `section`" up to the next section.
inline std::string expectedWrites(const std::string& file, const std::string& section = "") {
    std::ifstream in(std::string(testpaths::PIPELINE_DATA_DIR) + "/" + file);
    std::string line, out;
    bool inside = section.empty();
    while (std::getline(in, line)) {
        if (line.rfind("## ", 0) == 0)
            inside = line.substr(3) == section;
        else if (inside && !line.empty() && line[0] != '#')
            out += line + "\n";
    }
    return out;
}

// The failures a refused or misaddressed write leaves in a result; the
// operations of other concerns that are still pending may add theirs.
inline bool noWriteFailed(datacom::Fcodes code) {
    const uint32_t failures = datacom::FC_NO_SUCH_NAME | datacom::FC_BODY_ERROR | datacom::FC_COMM_ERROR |
                              datacom::FC_WRONG_TYPE | datacom::FC_BAD_VALUE;
    return (code & failures & ~static_cast<uint32_t>(datacom::FC_OK)) == 0;
}
