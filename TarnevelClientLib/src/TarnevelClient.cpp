#include <string>

#include "datacom/DbgPrintClient.h"
#include "datacom/IDataHolder.h"
#include "datacom/MessageCommand.h"
#include "datacom/TagText.h"
#include "datacom/WireConstants.h"
#include "tarnevel/ITarnevelClient.h"
#include "tarnevel/TarnevelWire.h"

using namespace datacom;

namespace tarnevel {

namespace {

using Params = MessageParams::ParamMap;

// Sends one mediator command; the reply body goes to `replyBody`.
Fcodes send(IDataHolder* holder, const char* id, const Params& params, std::string& replyBody, unsigned timeoutSec,
            unsigned tries) {
    MessageCommand command;
    command.setId(id);
    command.params = params;
    std::string text;
    command.toString(text);
    return holder->requestCommand(wire::SOCK_MEDIATOR, text, replyBody, timeoutSec, tries) | FC_OK;
}

// A writing command: the reply body is not examined.
Fcodes put(IDataHolder* holder, const char* id, const Params& params, unsigned timeoutSec, unsigned tries) {
    std::string replyBody;
    return send(holder, id, params, replyBody, timeoutSec, tries);
}

// A reading command: the answer is parameter `answer` of the reply's Command
// element. `op` names the log lines. `value` is set on success only.
Fcodes query(IDataHolder* holder, const char* op, const char* id, const Params& params, const char* answer,
             std::string& value) {
    std::string replyBody;
    Fcodes code = send(holder, id, params, replyBody, tarnevel::TIMEOUT_SEC, tarnevel::TRIES);
    if (!isOk(code))
        return code;
    std::string segment;
    if (getSegment(replyBody, 0, wire::TAG_COMMAND, segment) < 0) {
        DBG(DBG_ERROR) << op << ": Not Found tag Command in response:\n" << replyBody;
        return FC_BODY_ERROR;
    }
    MessageCommand reply;
    if (!isOk(reply.initFromString(segment))) {
        DBG(DBG_ERROR) << op << ": Error in command:\n" << segment;
        return FC_BODY_ERROR;
    }
    if (!reply.getParam(answer, value)) {
        DBG(DBG_ERROR) << op << ": Not found param=" << answer << " in response:\n" << segment;
        return FC_BODY_ERROR;
    }
    return FC_OK;
}

// The parameters of a branch start or stop; an asynchronous one names only the branch.
Params branchParams(const std::string& branch, bool sync, int timeoutSec) {
    Params params{{tarnevel::PARAM_BRANCH, branch}};
    if (sync) {
        params[tarnevel::PARAM_SYNC] = tarnevel::SYNC_TRUE;
        params[tarnevel::PARAM_TIMEOUT_SEC] = std::to_string(timeoutSec);
    }
    return params;
}

Fcodes putParam(IDataHolder* holder, const char* op, const std::string& component, const std::string& parameter,
                const char* kind, const std::string& value) {
    DBG(DBG_INFO) << op << ": set comp=\"" << component << "\" param=\"" << parameter << "\" value=\"" << value << "\"";
    return put(holder, tarnevel::CMD_PUT_PARAM,
               {{tarnevel::PARAM_COMPONENT, component}, {tarnevel::PARAM_PARAMETER, parameter}, {kind, value}},
               tarnevel::TIMEOUT_SEC, tarnevel::TRIES);
}

}  // namespace

Fcodes ITarnevelClient::getTarnevelTextParam(IDataHolder* holder, const std::string& component,
                                             const std::string& parameter, std::string& value) {
    return query(holder, "getTarnevelTextParam", tarnevel::CMD_GET_PARAM,
                 {{tarnevel::PARAM_COMPONENT, component},
                  {tarnevel::PARAM_PARAMETER, parameter},
                  {tarnevel::PARAM_TEXT_VALUE, ""}},
                 tarnevel::PARAM_TEXT_VALUE, value);
}

Fcodes ITarnevelClient::getTarnevelIntParam(IDataHolder* holder, const std::string& component,
                                            const std::string& parameter, int* value) {
    std::string text;
    Fcodes code = query(holder, "getTarnevelIntParam", tarnevel::CMD_GET_PARAM,
                        {{tarnevel::PARAM_COMPONENT, component},
                         {tarnevel::PARAM_PARAMETER, parameter},
                         {tarnevel::PARAM_INT_VALUE, ""}},
                        tarnevel::PARAM_INT_VALUE, text);
    if (isOk(code))
        *value = tagToInt(text);
    return code;
}

Fcodes ITarnevelClient::setTarnevelTextParam(IDataHolder* holder, const std::string& component,
                                             const std::string& parameter, const std::string& value) {
    return putParam(holder, "setTarnevelTextParam", component, parameter, tarnevel::PARAM_TEXT_VALUE, value);
}

Fcodes ITarnevelClient::setTarnevelIntParam(IDataHolder* holder, const std::string& component,
                                            const std::string& parameter, int value) {
    return putParam(holder, "setTarnevelIntParam", component, parameter, tarnevel::PARAM_INT_VALUE,
                    std::to_string(value));
}

Fcodes ITarnevelClient::getTarnevelAssembly(IDataHolder* holder, std::string& assembly) {
    return query(holder, "getTarnevelAssembly", tarnevel::CMD_GET_ASSEMBLY, {}, tarnevel::PARAM_ASSEMBLY, assembly);
}

Fcodes ITarnevelClient::setTarnevelAssembly(IDataHolder* holder, const std::string& assembly) {
    DBG(DBG_INFO) << "setTarnevelAssembly: set assembly=" << assembly;
    return put(holder, tarnevel::CMD_PUT_ASSEMBLY, {{tarnevel::PARAM_ASSEMBLY, assembly}},
               tarnevel::ASSEMBLY_PUT_TIMEOUT_SEC, tarnevel::ASSEMBLY_PUT_TRIES);
}

Fcodes ITarnevelClient::getTarnevelBranchState(IDataHolder* holder, const std::string& branch, std::string& state) {
    return query(holder, "getTarnevelBranchState", tarnevel::CMD_GET_BRANCH_STATE, {{tarnevel::PARAM_BRANCH, branch}},
                 tarnevel::PARAM_BRANCH_STATE, state);
}

Fcodes ITarnevelClient::storeTarnevelState(IDataHolder* holder) {
    return put(holder, tarnevel::CMD_STORE_STATE, {}, tarnevel::TIMEOUT_SEC, tarnevel::TRIES);
}

Fcodes ITarnevelClient::stopTarnevelBranch(IDataHolder* holder, const std::string& branch, bool sync, int timeoutSec) {
    DBG(DBG_INFO) << "stopTarnevelBranch: Stop branch=" << branch;
    // The caller's time-out goes to the engine unchanged (-1 is its NO_WAIT).
    return put(holder, tarnevel::CMD_STOP_BRANCH, branchParams(branch, sync, timeoutSec),
               static_cast<unsigned>(timeoutSec), tarnevel::BRANCH_TRIES);
}

Fcodes ITarnevelClient::startTarnevelBranch(IDataHolder* holder, const std::string& branch, bool sync, int timeoutSec) {
    DBG(DBG_INFO) << "startTarnevelBranch: Start branch=" << branch;
    return put(holder, tarnevel::CMD_START_BRANCH, branchParams(branch, sync, timeoutSec), tarnevel::START_WAIT_SEC,
               tarnevel::BRANCH_TRIES);
}

}  // namespace tarnevel
