#pragma once

#include <algorithm>
#include <fstream>
#include <regex>
#include <string>
#include <vector>

#include "ChannelHarness.h"

// A command's text as the manager forwards it, e.g. commandText("Play", {{"RowID", "HEVC"}}).
inline std::string commandText(const std::string& id, const std::vector<std::pair<std::string, std::string>>& params) {
    MessageCommand command;
    command.setId(id);
    for (const auto& [name, value] : params)
        command.addParam(name, value);
    std::string text;
    command.toString(text);
    return text;
}

// The requests the simulated mediator received, read back from the traffic
// file of a harness. Lines are read after the request was answered, so a
// transcript taken after an operation returned holds all its requests.
class MediatorTranscript {
public:
    explicit MediatorTranscript(ChannelHarness& h) : path(h.root.host("/tmp/mediator_traffic.log")) {
        opened = h.traffic.openFile(path);
    }
    bool ready() const { return opened; }
    // Forget what came so far: later calls see only newer requests.
    void mark() { skip = allRequests().size(); }

    // Every mediator request since the mark, as `"ID" Name="value" ...`.
    std::vector<std::string> requests() const {
        std::vector<std::string> all = allRequests();
        return std::vector<std::string>(all.begin() + static_cast<long>(std::min(skip, all.size())), all.end());
    }

    // The branch requests since the mark: "Get Branch State UDP CH0",
    // "Start Branch UDP CH0 sync=20", "Stop Branch ZIXI CH0" (asynchronous).
    std::vector<std::string> branchCommands() const {
        static const std::regex id("^\"Tarnevel (Get Branch State|Start Branch|Stop Branch)\"");
        static const std::regex branch(" Branch=\"([^\"]*)\"");
        static const std::regex timeout(" Timeout sec=\"([^\"]*)\"");
        std::vector<std::string> out;
        for (const std::string& request : requests()) {
            std::smatch idMatch, branchMatch, timeoutMatch;
            if (!std::regex_search(request, idMatch, id))
                continue;
            std::regex_search(request, branchMatch, branch);
            std::string line = idMatch[1].str() + " " + (branchMatch.empty() ? "?" : branchMatch[1].str());
            if (request.find(" Sync=\"true\"") != std::string::npos &&
                std::regex_search(request, timeoutMatch, timeout))
                line += " sync=" + timeoutMatch[1].str();
            out.push_back(line);
        }
        return out;
    }

private:
    std::vector<std::string> allRequests() const {
        static const std::string prefix = "IN  mediator COMMAND #";
        std::vector<std::string> out;
        std::ifstream in(path);
        std::string line;
        while (std::getline(in, line)) {
            if (line.compare(0, prefix.size(), prefix) != 0)
                continue;
            const size_t quote = line.find('"');
            if (quote != std::string::npos)
                out.push_back(line.substr(quote));
        }
        return out;
    }

    std::string path;
    bool opened = false;
    size_t skip = 0;
};
