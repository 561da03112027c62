// chanctl's --json output: the objects scripts read, checked by parsing them back.
#include <gtest/gtest.h>
#include <json/json.h>

#include <sstream>

#include "ChanctlArgs.h"
#include "ChanctlJson.h"
#include "datacom/MessageEvent.h"

using namespace datacom;

namespace {

// Parses one output line; a null value when it is not exactly one JSON object line.
Json::Value parsed(const std::string& text) {
    Json::Value value;
    std::string errors;
    Json::CharReaderBuilder builder;
    std::istringstream in(text);
    if (text.empty() || text.back() != '\n' || text.find('\n') != text.size() - 1 ||
        !Json::parseFromStream(builder, in, &value, &errors) || !value.isObject())
        return Json::Value();
    return value;
}

}  // namespace

TEST(ChanctlJson, OneObjectPerAnswerAndPerEvent) {
    MessageEvent event;
    event.id = "Channel Played";
    event.fcode = static_cast<Fcodes>(0x20000);
    event.source = "HEVC";
    event.description = "two\nlines \\ and a tab\t";
    event.addParam("RowID", "HEVC");
    Json::Value e = parsed(eventJson(event));
    ASSERT_TRUE(e.isObject()) << eventJson(event);
    EXPECT_EQ("Channel Played", e["id"].asString());
    EXPECT_EQ(0x20000u, e["fcode"].asUInt());
    EXPECT_EQ("two\nlines \\ and a tab\t", e["description"].asString());
    EXPECT_EQ("HEVC", e["params"]["RowID"].asString());

    Json::Value c = parsed(commandJson(
        "Tarnevel Get Branch State", FC_OK,
        "<BODY><Command ID=\"A\" >\n\t<Parameter Name=\"Branch State\" Value=\"RUN\" />\n</Command>\n</BODY>"));
    ASSERT_TRUE(c.isObject());
    EXPECT_EQ("OK", c["result"].asString());
    EXPECT_EQ(0x10000u, c["fcode"].asUInt());
    EXPECT_EQ("RUN", c["reply"]["Branch State"].asString());
    Json::Value refused = parsed(commandJson("Play", FC_BODY_ERROR, ""));
    EXPECT_EQ("Message Body Error", refused["result"].asString());
    EXPECT_TRUE(refused["reply"].isObject() && refused["reply"].empty());
    EXPECT_EQ("done", parsed(commandJson("X", FC_OK, "<BODY>\n done \n</BODY>"))["reply"]["text"].asString());

    const struct {
        std::vector<std::string> words;
        bool set;
        const char* instance;
    } values[] = {
        {{"DS", "C", "P"}, false, ""},
        {{"DS", "C", "P", "HEVC"}, false, "HEVC"},
        {{"DS", "C", "P", "v"}, true, ""},
        {{"DS", "C", "P", "v", "HEVC"}, true, "HEVC"},
    };
    for (const auto& row : values) {
        Json::Value v = parsed(valueJson(row.words, row.set, FC_OK, "42"));
        EXPECT_EQ(row.instance, v["instance"].asString()) << row.words.size() << " set=" << row.set;
        EXPECT_EQ("42", v["value"].asString());
        EXPECT_EQ("P", v["property"].asString());
    }
    EXPECT_FALSE(parsed(valueJson({"DS", "C", "P"}, false, FC_NO_SUCH_NAME, "")).isMember("value"));

    StatusView view;
    view.labels = {"State", "Target 1"};
    view.channels = {{"HEVC", "HEVC (CH1)", {"Playing", "UDP TS 239.1.1.2:5000"}, true, 0x3000a}};
    Json::Value s = parsed(statusJson(view));
    ASSERT_EQ(1u, s["channels"].size());
    EXPECT_TRUE(s["loaded"].asBool());
    EXPECT_EQ("Playing", s["channels"][0]["State"].asString());
    EXPECT_EQ("UDP TS 239.1.1.2:5000", s["channels"][0]["Target 1"].asString());
    EXPECT_EQ("HEVC", s["channels"][0]["row"].asString());
    // The condition as number and names.
    const Json::Value& condition = s["channels"][0]["condition"];
    EXPECT_EQ(0x3000au, condition["fcode"].asUInt());
    ASSERT_EQ(2u, condition["names"].size());
    EXPECT_EQ("input lost", condition["names"][0].asString());
    EXPECT_EQ("data stream condition", condition["names"][1].asString());
    view.loaded = false;
    view.channels.clear();
    Json::Value unloaded = parsed(statusJson(view));
    EXPECT_FALSE(unloaded["loaded"].asBool());
    EXPECT_EQ(0u, unloaded["channels"].size());
    EXPECT_NE(std::string::npos, unloaded["hint"].asString().find("LOAD_CHANNELS File=Default"));

    EXPECT_EQ("off", targetCell("false", "UDP TS", "239.1.1.1", "5000"));
    EXPECT_EQ("SRT 127.0.0.1:9000", targetCell("true", "SRT", "127.0.0.1", "9000"));

    ChanctlOptions options;
    EXPECT_EQ("", parseChanctlArgs({"--json", "status"}, options));
    EXPECT_TRUE(options.json);
    ChanctlOptions refusedOptions;
    EXPECT_EQ("--json takes no value", parseChanctlArgs({"--json=yes", "status"}, refusedOptions));
}
