#pragma once

#include <string>
#include <type_traits>

#include <gtest/gtest.h>

#include "LogCapture.h"
#include "TestDocuments.h"
#include "TestFiles.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"
#include "json/DataSets.h"

// Shared by the JSON store tests: the channel document, file helpers and
// the debug log capture.
namespace dstest {

using ::readText;
using ::writeText;
using testdoc::kChannelDoc;

// The channel document's dataset and its channel table.
inline const std::string kSet = "ChannelDataSet";
inline const std::string kChan = "ChannelsTable";

// Writes the channel document and loads it; true on "OK".
inline bool loadChannelDoc(datacom::DataSets& store, const std::string& path = "/etc/sysmgt/channel_test.json") {
    writeText(path, kChannelDoc);
    return store.loadDataSet(path) == datacom::FC_OK;
}

// The committed (or, with `pending`, the newest) value of a parameter of
// "ChannelDataSet"; a failed read fails the test, naming the parameter.
template <typename T, typename Selector>
T valueAt(datacom::DataSets& s, const std::string& comp, const std::string& prop, Selector sel, bool pending = false) {
    const std::string set = "ChannelDataSet";
    T value{};
    datacom::Fcodes code;
    if constexpr (std::is_same_v<T, int>)
        code = pending ? s.getNewIntParam(set, comp, prop, value, sel) : s.getIntParam(set, comp, prop, value, sel);
    else if constexpr (std::is_same_v<T, bool>)
        code = pending ? s.getNewBoolParam(set, comp, prop, value, sel) : s.getBoolParam(set, comp, prop, value, sel);
    else
        code = pending ? s.getNewTextParam(set, comp, prop, value, sel) : s.getTextParam(set, comp, prop, value, sel);
    EXPECT_EQ(code, datacom::FC_OK) << comp << "/" << prop << (pending ? " (pending)" : "");
    return value;
}

using ::LogCapture;

}  // namespace dstest
