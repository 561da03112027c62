#pragma once

#include <string>

#include "datacom/Fcodes.h"
#include "ports/ChannelStore.h"
#include "vocab/DatasetNames.h"

// Reads of "ChannelDataSet" values that go on past a failure: each failed
// read is OR-ed into `result` and its value keeps the fallback. A snapshot
// and the run's adjustments read the channel rows this way.
struct ChannelRowReader {
    ChannelStore& store;
    datacom::Fcodes result = datacom::FC_OK;

    std::string text(const char* component, const char* property, const std::string& instance,
                     const std::string& fallback = "") {
        std::string value = fallback;
        result |= store.getTextParam(vocab::ds::CHANNEL, component, property, value, instance);
        return value;
    }
    int integer(const char* component, const char* property, const std::string& instance, int fallback = 0) {
        int value = fallback;
        result |= store.getIntParam(vocab::ds::CHANNEL, component, property, value, instance);
        return value;
    }
    bool flag(const char* component, const char* property, const std::string& instance, bool fallback = false) {
        bool value = fallback;
        result |= store.getBoolParam(vocab::ds::CHANNEL, component, property, value, instance);
        return value;
    }
};
