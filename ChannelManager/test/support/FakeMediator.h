#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "settings/Mediator.h"
#include "vocab/PeerNames.h"

// A scripted media mediator: branch states kept per branch ("STOP" until set
// or started), a queue of states a branch reports before settling (a branch
// in transition), starts and stops refused on request, parameters kept as
// text. Every call is recorded as a line: "state UDP CH0",
// "start UDP CH0 sync 20", "stop ZIXI CH0 async 5", "set Device/Error LED=0".
class FakeMediator : public Mediator {
public:
    std::map<std::string, std::string> states;               // branch -> its settled state
    std::map<std::string, std::deque<std::string>> passing;  // branch -> states reported once each, first
    std::set<std::string> refused;                           // "start BRANCH" / "stop BRANCH": answered Unavailable
    std::map<std::string, std::string> parameters;           // "Component/Parameter" -> value
    std::vector<std::string> calls;

    // The recorded lines that start with `prefix`.
    std::vector<std::string> callsOf(const std::string& prefix) const {
        std::vector<std::string> out;
        for (const std::string& call : calls)
            if (call.compare(0, prefix.size(), prefix) == 0)
                out.push_back(call);
        return out;
    }

    datacom::Fcodes setTextParam(const std::string& component, const std::string& parameter,
                                 const std::string& value) override {
        calls.push_back("set " + component + "/" + parameter + "=" + value);
        parameters[component + "/" + parameter] = value;
        return datacom::FC_OK;
    }
    datacom::Fcodes setIntParam(const std::string& component, const std::string& parameter, int value) override {
        return setTextParam(component, parameter, std::to_string(value));
    }
    datacom::Fcodes getTextParam(const std::string& component, const std::string& parameter,
                                 std::string& value) override {
        calls.push_back("get " + component + "/" + parameter);
        const auto found = parameters.find(component + "/" + parameter);
        if (found == parameters.end())
            return datacom::FC_NO_SUCH_NAME;
        value = found->second;
        return datacom::FC_OK;
    }
    datacom::Fcodes getIntParam(const std::string& component, const std::string& parameter, int& value) override {
        std::string text;
        const datacom::Fcodes read = getTextParam(component, parameter, text);
        if (datacom::isOk(read))
            value = std::atoi(text.c_str());
        return read;
    }
    datacom::Fcodes getAssembly(std::string& assembly) override {
        calls.push_back("get assembly");
        assembly = parameters["assembly"];
        return datacom::FC_OK;
    }
    datacom::Fcodes setAssembly(const std::string& assembly) override {
        calls.push_back("set assembly " + assembly);
        parameters["assembly"] = assembly;
        return datacom::FC_OK;
    }
    datacom::Fcodes branchState(const std::string& branch, std::string& state) override {
        calls.push_back("state " + branch);
        std::deque<std::string>& queue = passing[branch];
        if (!queue.empty()) {
            state = queue.front();
            queue.pop_front();
            return datacom::FC_OK;
        }
        const auto found = states.find(branch);
        state = found == states.end() ? vocab::state::BRANCH_STOP : found->second;
        return datacom::FC_OK;
    }
    datacom::Fcodes startBranch(const std::string& branch, bool sync, int timeoutSec) override {
        return move("start", branch, sync, timeoutSec, vocab::state::BRANCH_RUN);
    }
    datacom::Fcodes stopBranch(const std::string& branch, bool sync, int timeoutSec) override {
        return move("stop", branch, sync, timeoutSec, vocab::state::BRANCH_STOP);
    }

private:
    datacom::Fcodes move(const std::string& verb, const std::string& branch, bool sync, int timeoutSec,
                         const char* settled) {
        calls.push_back(verb + " " + branch + (sync ? " sync " : " async ") + std::to_string(timeoutSec));
        if (refused.count(verb + " " + branch) != 0)
            return datacom::FC_UNAVAILABLE;
        states[branch] = settled;
        return datacom::FC_OK;
    }
};
