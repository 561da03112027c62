#pragma once

#include <string>

#include "records/Fcodes.h"

class IDataHolder;

// The typed requests through which the channel logic drives the media
// mediator ("/tmp/sockTarnevelMediator"): component parameters, the assembly,
// branch state, start and stop. Each operation sends one COMMAND through the
// caller's holder (IDataHolder::requestCommand) and blocks the calling thread
// for at most time-out times tries seconds. Stateless: any thread may call.
// Results: the engine's code, the mediator's Fcode from its ACK, or "Message
// Body Error" for an answer without the expected parameter. Out-values are
// left untouched on every failure.
class ITarnevelClient {
public:
    static Fcodes getTarnevelTextParam(IDataHolder* holder, const std::string& component, const std::string& parameter,
                                       std::string& value);
    // The answer read as a leading decimal number (a non-number gives 0).
    static Fcodes getTarnevelIntParam(IDataHolder* holder, const std::string& component, const std::string& parameter,
                                      int* value);
    static Fcodes setTarnevelTextParam(IDataHolder* holder, const std::string& component, const std::string& parameter,
                                       const std::string& value);
    static Fcodes setTarnevelIntParam(IDataHolder* holder, const std::string& component, const std::string& parameter,
                                      int value);
    static Fcodes getTarnevelAssembly(IDataHolder* holder, std::string& assembly);
    static Fcodes setTarnevelAssembly(IDataHolder* holder, const std::string& assembly);
    static Fcodes getTarnevelBranchState(IDataHolder* holder, const std::string& branch, std::string& state);
    static Fcodes storeTarnevelState(IDataHolder* holder);
    // Waits `timeoutSec` for the reply; when `sync`, the mediator is asked to
    // answer only once the branch stopped, within that time-out.
    static Fcodes stopTarnevelBranch(IDataHolder* holder, const std::string& branch, bool sync, int timeoutSec);
    // Always waits 120 s for the reply, whatever `timeoutSec` it passes on
    // (when `sync`) to the mediator: starting a branch can outlast the
    // mediator's own time-out.
    static Fcodes startTarnevelBranch(IDataHolder* holder, const std::string& branch, bool sync, int timeoutSec);
};
