#pragma once

#include "ports/Mediator.h"

namespace datacom {
class IDataHolder;
}

// The mediator reached through a holder's engine: each call is the matching
// ITarnevelClient request, unchanged.
class HolderMediator : public Mediator {
public:
    explicit HolderMediator(datacom::IDataHolder& holder) : holder(holder) {}

    datacom::Fcodes setTextParam(const std::string& component, const std::string& parameter,
                                 const std::string& value) override;
    datacom::Fcodes setIntParam(const std::string& component, const std::string& parameter, int value) override;
    datacom::Fcodes getTextParam(const std::string& component, const std::string& parameter,
                                 std::string& value) override;
    datacom::Fcodes getIntParam(const std::string& component, const std::string& parameter, int& value) override;
    datacom::Fcodes getAssembly(std::string& assembly) override;
    datacom::Fcodes setAssembly(const std::string& assembly) override;
    datacom::Fcodes branchState(const std::string& branch, std::string& state) override;
    datacom::Fcodes startBranch(const std::string& branch, bool sync, int timeoutSec) override;
    datacom::Fcodes stopBranch(const std::string& branch, bool sync, int timeoutSec) override;

private:
    datacom::IDataHolder& holder;
};
