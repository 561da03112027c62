#pragma once

#include "ports/ChannelStore.h"

namespace datacom {
class DataHolder;
}

// The channel rows served by a holder's JSON datasets, its recursive lock and
// its engine's peer requests: each call is the holder's own, unchanged.
class HolderStore : public ChannelStore {
public:
    explicit HolderStore(datacom::DataHolder& holder) : holder(holder) {}

    datacom::Fcodes getTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 std::string& value, const std::string& row) override;
    datacom::Fcodes getTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 std::string& value, int index) override;
    datacom::Fcodes getIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                int& value, const std::string& row) override;
    datacom::Fcodes getBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 bool& value, const std::string& row) override;
    datacom::Fcodes getNewTextParam(const std::string& dataSet, const std::string& component,
                                    const std::string& property, std::string& value, const std::string& row) override;
    datacom::Fcodes getNewIntParam(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int& value, const std::string& row) override;
    datacom::Fcodes getNewBoolParam(const std::string& dataSet, const std::string& component,
                                    const std::string& property, bool& value, const std::string& row) override;
    datacom::Fcodes initTextParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                  const std::string& value, const std::string& row) override;
    datacom::Fcodes initIntParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                 int value, const std::string& row) override;
    datacom::Fcodes initInt64Param(const std::string& dataSet, const std::string& component,
                                   const std::string& property, int64_t value, const std::string& row) override;
    datacom::Fcodes initBoolParam(const std::string& dataSet, const std::string& component, const std::string& property,
                                  bool value, const std::string& row) override;
    bool hasInstance(const std::string& dataSet, const std::string& component, const std::string& row) override;
    bool hasInstance(const std::string& dataSet, const std::string& component, int index) override;
    datacom::Fcodes getInstances(const std::string& dataSet, const std::string& component,
                                 std::vector<std::string>& rows) override;
    datacom::Fcodes getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                            const std::string& property, const std::string& value,
                                            std::vector<std::string>& rows) override;
    void lock() override DATACOM_ACQUIRE() DATACOM_NO_THREAD_SAFETY_ANALYSIS;
    void unlock() override DATACOM_RELEASE() DATACOM_NO_THREAD_SAFETY_ANALYSIS;
    datacom::Fcodes requestGetTextParam(const std::string& socketPath, const std::string& dataSet,
                                        const std::string& component, const std::string& property, std::string& value,
                                        const std::string& row) override;
    datacom::Fcodes requestGetIntParam(const std::string& socketPath, const std::string& dataSet,
                                       const std::string& component, const std::string& property, int& value,
                                       const std::string& row) override;
    datacom::Fcodes requestCommand(const std::string& socketPath, const std::string& command, std::string& result,
                                   unsigned timeoutSec, unsigned tries) override;

private:
    datacom::DataHolder& holder;
};
