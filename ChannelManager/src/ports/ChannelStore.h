#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "datacom/Fcodes.h"
#include "datacom/ThreadSafety.h"

// The channel rows as the channel logic reads and writes them: the typed
// reads (committed, or the values being accepted), the writes that commit at
// once, the instance searches and the recursive lock that a play, a stop or
// an event's handling holds for its whole run. The requests to the device
// manager and the SAP announcer are here too: they go through the same
// engine as the rows, and the channel logic needs no more than these three.
// The daemon serves it from its holder (HolderStore); tests may use a map.
class DATACOM_CAPABILITY("mutex") ChannelStore {
public:
    virtual ~ChannelStore() = default;

    // `row` is an instance key ("HEVC", "H.264 Target1", "" for the single instance).
    virtual datacom::Fcodes getTextParam(const std::string& dataSet, const std::string& component,
                                         const std::string& property, std::string& value, const std::string& row) = 0;
    // The same by position, for components whose instances form an array.
    virtual datacom::Fcodes getTextParam(const std::string& dataSet, const std::string& component,
                                         const std::string& property, std::string& value, int index) = 0;
    virtual datacom::Fcodes getIntParam(const std::string& dataSet, const std::string& component,
                                        const std::string& property, int& value, const std::string& row) = 0;
    virtual datacom::Fcodes getBoolParam(const std::string& dataSet, const std::string& component,
                                         const std::string& property, bool& value, const std::string& row) = 0;
    // The value being accepted when a change is pending, else the committed one.
    virtual datacom::Fcodes getNewTextParam(const std::string& dataSet, const std::string& component,
                                            const std::string& property, std::string& value,
                                            const std::string& row) = 0;
    virtual datacom::Fcodes getNewIntParam(const std::string& dataSet, const std::string& component,
                                           const std::string& property, int& value, const std::string& row) = 0;
    virtual datacom::Fcodes getNewBoolParam(const std::string& dataSet, const std::string& component,
                                            const std::string& property, bool& value, const std::string& row) = 0;
    virtual datacom::Fcodes initTextParam(const std::string& dataSet, const std::string& component,
                                          const std::string& property, const std::string& value,
                                          const std::string& row) = 0;
    virtual datacom::Fcodes initIntParam(const std::string& dataSet, const std::string& component,
                                         const std::string& property, int value, const std::string& row) = 0;
    virtual datacom::Fcodes initInt64Param(const std::string& dataSet, const std::string& component,
                                           const std::string& property, int64_t value, const std::string& row) = 0;
    virtual datacom::Fcodes initBoolParam(const std::string& dataSet, const std::string& component,
                                          const std::string& property, bool value, const std::string& row) = 0;

    virtual bool hasInstance(const std::string& dataSet, const std::string& component, const std::string& row) = 0;
    virtual bool hasInstance(const std::string& dataSet, const std::string& component, int index) = 0;
    // Instance keys in document order.
    virtual datacom::Fcodes getInstances(const std::string& dataSet, const std::string& component,
                                         std::vector<std::string>& rows) = 0;
    // Those whose `property` equals `value`, in document order.
    virtual datacom::Fcodes getInstancesByParameter(const std::string& dataSet, const std::string& component,
                                                    const std::string& property, const std::string& value,
                                                    std::vector<std::string>& rows) = 0;

    // Recursive: a stop may run inside a play that holds it.
    virtual void lock() DATACOM_ACQUIRE() = 0;
    virtual void unlock() DATACOM_RELEASE() = 0;

    // A value of a peer's dataset, asked over `socketPath` ("/tmp/sockDev").
    virtual datacom::Fcodes requestGetTextParam(const std::string& socketPath, const std::string& dataSet,
                                                const std::string& component, const std::string& property,
                                                std::string& value, const std::string& row) = 0;
    virtual datacom::Fcodes requestGetIntParam(const std::string& socketPath, const std::string& dataSet,
                                               const std::string& component, const std::string& property, int& value,
                                               const std::string& row) = 0;
    // A command text to a peer; `result` is its answer.
    virtual datacom::Fcodes requestCommand(const std::string& socketPath, const std::string& command,
                                           std::string& result, unsigned timeoutSec, unsigned tries) = 0;
};
