#pragma once

#include <string>

#include "datacom/Fcodes.h"

// The media mediator as the channel logic drives it: component parameters,
// the assembly, and the branches' state, start and stop. Each call is one
// request that blocks for at most its time-out; out-values are left untouched
// on a failure. The daemon sends through its holder's engine (HolderMediator);
// tests may script one in memory.
class Mediator {
public:
    virtual ~Mediator() = default;

    virtual datacom::Fcodes setTextParam(const std::string& component, const std::string& parameter,
                                         const std::string& value) = 0;
    virtual datacom::Fcodes setIntParam(const std::string& component, const std::string& parameter, int value) = 0;
    virtual datacom::Fcodes getTextParam(const std::string& component, const std::string& parameter,
                                         std::string& value) = 0;
    // The answer read as a leading decimal number.
    virtual datacom::Fcodes getIntParam(const std::string& component, const std::string& parameter, int& value) = 0;
    virtual datacom::Fcodes getAssembly(std::string& assembly) = 0;
    virtual datacom::Fcodes setAssembly(const std::string& assembly) = 0;
    // "RUN", "STOP" or a state in transition.
    virtual datacom::Fcodes branchState(const std::string& branch, std::string& state) = 0;
    // When `sync`, the mediator answers once the branch has started, within `timeoutSec`.
    virtual datacom::Fcodes startBranch(const std::string& branch, bool sync, int timeoutSec) = 0;
    // When `sync`, the mediator answers once the branch has stopped, within `timeoutSec`.
    virtual datacom::Fcodes stopBranch(const std::string& branch, bool sync, int timeoutSec) = 0;
};
