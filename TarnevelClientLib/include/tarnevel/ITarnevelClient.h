#pragma once

#include "tarnevel/Export.h"

#include <string>

#include "datacom/Fcodes.h"

namespace datacom {
class IDataHolder;
}

namespace tarnevel {

/// The typed requests through which the channel logic drives the media
/// mediator ("/tmp/sockTarnevelMediator"): component parameters, the assembly,
/// branch state, start and stop. Each operation sends one COMMAND through the
/// caller's holder (IDataHolder::requestCommand) and blocks the calling thread
/// for at most time-out times tries seconds. Stateless: any thread may call.
/// Results: the engine's code, the mediator's Fcode from its ACK, or "Message
/// Body Error" for an answer without the expected parameter. Out-values are
/// left untouched on every failure.
class TARNEVEL_API ITarnevelClient {
public:
    static datacom::Fcodes getTarnevelTextParam(datacom::IDataHolder* holder, const std::string& component,
                                                const std::string& parameter, std::string& value);
    /// The answer read as a leading decimal number (a non-number gives 0).
    static datacom::Fcodes getTarnevelIntParam(datacom::IDataHolder* holder, const std::string& component,
                                               const std::string& parameter, int* value);
    static datacom::Fcodes setTarnevelTextParam(datacom::IDataHolder* holder, const std::string& component,
                                                const std::string& parameter, const std::string& value);
    static datacom::Fcodes setTarnevelIntParam(datacom::IDataHolder* holder, const std::string& component,
                                               const std::string& parameter, int value);
    static datacom::Fcodes getTarnevelAssembly(datacom::IDataHolder* holder, std::string& assembly);
    static datacom::Fcodes setTarnevelAssembly(datacom::IDataHolder* holder, const std::string& assembly);
    static datacom::Fcodes getTarnevelBranchState(datacom::IDataHolder* holder, const std::string& branch,
                                                  std::string& state);
    static datacom::Fcodes storeTarnevelState(datacom::IDataHolder* holder);
    /// Waits `timeoutSec` for the reply; when `sync`, the mediator is asked to
    /// answer only once the branch stopped, within that time-out.
    static datacom::Fcodes stopTarnevelBranch(datacom::IDataHolder* holder, const std::string& branch, bool sync,
                                              int timeoutSec);
    /// Always waits 120 s for the reply, whatever `timeoutSec` it passes on
    /// (when `sync`) to the mediator: starting a branch can outlast the
    /// mediator's own time-out.
    static datacom::Fcodes startTarnevelBranch(datacom::IDataHolder* holder, const std::string& branch, bool sync,
                                               int timeoutSec);
};

}  // namespace tarnevel
