#pragma once

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "support/ChannelHarness.h"

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
        static const std::string prefix = "\"Tarnevel ";
        std::vector<std::string> out;
        for (const std::string& request : requests()) {
            if (request.compare(0, prefix.size(), prefix) != 0)
                continue;
            const std::string id = request.substr(prefix.size(), request.find('"', 1) - prefix.size());
            if (id != "Get Branch State" && id != "Start Branch" && id != "Stop Branch")
                continue;
            std::string line = id + " " + param(request, "Branch");
            if (param(request, "Sync") == "true")
                line += " sync=" + param(request, "Timeout sec");
            out.push_back(line);
        }
        return out;
    }

private:
    // The value of ` name="value"` in a request line; "" without it.
    static std::string param(const std::string& request, const std::string& name) {
        const std::string key = " " + name + "=\"";
        const size_t start = request.find(key);
        if (start == std::string::npos)
            return "";
        const size_t from = start + key.size();
        return request.substr(from, request.find('"', from) - from);
    }

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
