#include "ports/HolderMediator.h"

#include "tarnevel/ITarnevelClient.h"

using namespace datacom;
using tarnevel::ITarnevelClient;

Fcodes HolderMediator::setTextParam(const std::string& component, const std::string& parameter,
                                    const std::string& value) {
    return ITarnevelClient::setTarnevelTextParam(&holder, component, parameter, value);
}
Fcodes HolderMediator::setIntParam(const std::string& component, const std::string& parameter, int value) {
    return ITarnevelClient::setTarnevelIntParam(&holder, component, parameter, value);
}
Fcodes HolderMediator::getTextParam(const std::string& component, const std::string& parameter, std::string& value) {
    return ITarnevelClient::getTarnevelTextParam(&holder, component, parameter, value);
}
Fcodes HolderMediator::getIntParam(const std::string& component, const std::string& parameter, int& value) {
    return ITarnevelClient::getTarnevelIntParam(&holder, component, parameter, &value);
}
Fcodes HolderMediator::getAssembly(std::string& assembly) {
    return ITarnevelClient::getTarnevelAssembly(&holder, assembly);
}
Fcodes HolderMediator::setAssembly(const std::string& assembly) {
    return ITarnevelClient::setTarnevelAssembly(&holder, assembly);
}
Fcodes HolderMediator::branchState(const std::string& branch, std::string& state) {
    return ITarnevelClient::getTarnevelBranchState(&holder, branch, state);
}
Fcodes HolderMediator::startBranch(const std::string& branch, bool sync, int timeoutSec) {
    return ITarnevelClient::startTarnevelBranch(&holder, branch, sync, timeoutSec);
}
Fcodes HolderMediator::stopBranch(const std::string& branch, bool sync, int timeoutSec) {
    return ITarnevelClient::stopTarnevelBranch(&holder, branch, sync, timeoutSec);
}
