#pragma once

#include <cstdlib>
#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "ports/Mediator.h"
#include "vocab/PeerNames.h"

// A scripted media mediator: each branch reports the states queued for it in
// `passing` once each (a branch in transition), then its settled state ("STOP"
// until started); starts and stops named in `refused` answer "Unavailable".
// Branch requests are recorded in order ("state UDP CH0", "start UDP CH0 sync
// 20", "stop ZIXI CH0 async 5"); parameters are kept as text.
class FakeMediator : public Mediator {
    using S = const std::string&;
    using Fcodes = datacom::Fcodes;

public:
    std::map<std::string, std::string> states;
    std::map<std::string, std::deque<std::string>> passing;
    std::set<std::string> refused;                  // "start BRANCH" or "stop BRANCH"
    std::map<std::string, std::string> parameters;  // "Component/Parameter", or "assembly"
    std::vector<std::string> calls;

    Fcodes setTextParam(S c, S p, S v) override { return parameters[c + "/" + p] = v, datacom::FC_OK; }
    Fcodes setIntParam(S c, S p, int v) override { return setTextParam(c, p, std::to_string(v)); }
    Fcodes getTextParam(S c, S p, std::string& v) override { return get(c + "/" + p, v); }
    Fcodes getIntParam(S c, S p, int& v) override {
        std::string text;
        const Fcodes read = getTextParam(c, p, text);
        v = datacom::isOk(read) ? std::atoi(text.c_str()) : v;
        return read;
    }
    Fcodes getAssembly(std::string& v) override { return get("assembly", v); }
    Fcodes setAssembly(S v) override { return parameters["assembly"] = v, datacom::FC_OK; }
    Fcodes branchState(S branch, std::string& state) override {
        calls.push_back("state " + branch);
        std::deque<std::string>& queue = passing[branch];
        const auto settled = states.find(branch);
        state = !queue.empty() ? queue.front() : settled != states.end() ? settled->second : vocab::state::BRANCH_STOP;
        if (!queue.empty())
            queue.pop_front();
        return datacom::FC_OK;
    }
    Fcodes startBranch(S branch, bool sync, int timeoutSec) override {
        return move("start", branch, sync, timeoutSec, vocab::state::BRANCH_RUN);
    }
    Fcodes stopBranch(S branch, bool sync, int timeoutSec) override {
        return move("stop", branch, sync, timeoutSec, vocab::state::BRANCH_STOP);
    }

private:
    Fcodes get(S key, std::string& value) {
        const auto found = parameters.find(key);
        return found == parameters.end() ? datacom::FC_NO_SUCH_NAME : (value = found->second, datacom::FC_OK);
    }
    Fcodes move(S verb, S branch, bool sync, int timeoutSec, const char* settled) {
        calls.push_back(verb + " " + branch + (sync ? " sync " : " async ") + std::to_string(timeoutSec));
        if (refused.count(verb + " " + branch) != 0)
            return datacom::FC_UNAVAILABLE;
        states[branch] = settled;
        return datacom::FC_OK;
    }
};
