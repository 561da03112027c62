// The simulator's models: mediator branches, parameters and writes; SAP
// streams; device commands; failure rules; the traffic line.
#include <gtest/gtest.h>

#include "FailureRules.h"
#include "MediatorModel.h"
#include "PeerModels.h"
#include "SimVocabulary.h"
#include "TrafficLog.h"
#include "tarnevel/TarnevelWire.h"

using namespace datacom;

namespace {

MessageCommand makeCommand(const std::string& id, const MessageParams::ParamMap& params) {
    MessageCommand command;
    command.setId(id);
    command.params = params;
    return command;
}

const char* const PARAMS_JSON = R"({
  "SDI_RECEIVER": {"Video Format": "1920x1080p @ 60"},
  "Video Encoder CH0": {"QP Base": 26, "Low Delay": true, "Level": "4.1"},
  "Device": {"Error LED": 0}
})";

}  // namespace

TEST(MediatorModel, ParametersAreReadAsTextOrIntegerAndWritesAreRecorded) {
    MediatorModel model;
    std::string error;
    ASSERT_EQ(FC_OK, model.loadParams(PARAMS_JSON, error)) << error;
    EXPECT_EQ("Device\nSDI_RECEIVER\nVideo Encoder CH0\n", model.assembly());

    struct Row {
        const char* component;
        const char* parameter;
        const char* answerName;
        Fcodes code;
        const char* answer;
    } rows[] = {
        {"SDI_RECEIVER", "Video Format", "TextValue", FC_OK, "1920x1080p @ 60"},
        {"Video Encoder CH0", "QP Base", "IntValue", FC_OK, "26"},
        {"Video Encoder CH0", "Low Delay", "TextValue", FC_OK, "true"},
        {"Video Encoder CH0", "Level", "IntValue", FC_OK, "4"},  // leading-number conversion
        {"Video Encoder CH0", "Missing", "TextValue", FC_NO_SUCH_NAME, nullptr},
        {"No Such Component", "QP Base", "TextValue", FC_NO_SUCH_NAME, nullptr},
    };
    for (const Row& row : rows) {
        MessageCommand answer;
        std::vector<MessageEvent> events;
        Fcodes code =
            model.serve(makeCommand(tarnevel::CMD_GET_PARAM,
                                    {{"Component", row.component}, {"Parameter", row.parameter}, {row.answerName, ""}}),
                        answer, events);
        EXPECT_EQ(row.code, code) << row.component << "/" << row.parameter;
        std::string value;
        EXPECT_EQ(row.answer != nullptr, answer.getParam(row.answerName, value) == 1 && !value.empty())
            << row.component << "/" << row.parameter;
        if (row.answer != nullptr) {
            EXPECT_EQ(row.answer, value) << row.component << "/" << row.parameter;
        }
        EXPECT_TRUE(events.empty());
    }

    MessageCommand answer;
    std::vector<MessageEvent> events;
    EXPECT_EQ(FC_OK, model.serve(makeCommand(tarnevel::CMD_PUT_PARAM,
                                             {{"Component", "Device"}, {"Parameter", "Error LED"}, {"IntValue", "1"}}),
                                 answer, events));
    EXPECT_EQ(FC_BODY_ERROR,
              model.serve(makeCommand(tarnevel::CMD_PUT_PARAM, {{"Component", "Device"}, {"Parameter", "Error LED"}}),
                          answer, events));
    EXPECT_EQ(FC_NO_SUCH_NAME,
              model.serve(makeCommand(tarnevel::CMD_PUT_PARAM,
                                      {{"Component", "Devise"}, {"Parameter", "Error LED"}, {"IntValue", "1"}}),
                          answer, events))
        << "a component the mediator lacks is refused";
    EXPECT_EQ(FC_OK, model.serve(makeCommand(tarnevel::CMD_GET_PARAM,
                                             {{"Component", "Device"}, {"Parameter", "Error LED"}, {"TextValue", ""}}),
                                 answer, events));
    std::string value;
    answer.getParam("TextValue", value);
    EXPECT_EQ("1", value);
    EXPECT_EQ(std::vector<std::string>{"Device/Error LED=1"}, model.writes());

    EXPECT_EQ(FC_BAD_VALUE, model.loadParams("[1, 2]", error));
    EXPECT_EQ(FC_BAD_VALUE, model.loadParams(R"({"A": {"B": [1]}})", error));
    EXPECT_EQ(FC_BAD_VALUE, model.loadParams("{", error));
    EXPECT_EQ("Device\nSDI_RECEIVER\nVideo Encoder CH0\n", model.assembly()) << "a failed load keeps the table";
}

// Branch starts and stops as the channel tests see them (state, events) run
// against this model too; here what they never send.
TEST(MediatorModel, BranchRequestsItRefusesAndTheAssembly) {
    MediatorModel model;
    MessageCommand answer;
    std::vector<MessageEvent> events;
    EXPECT_EQ(FC_OK, model.serve(makeCommand(tarnevel::CMD_STOP_BRANCH, {{"Branch", "UDP CH0"}}), answer, events));
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ("Tarnevel Branch Stopped UDP CH0", events[0].id + " " + events[0].source);
    events.clear();
    EXPECT_EQ(FC_BODY_ERROR, model.serve(makeCommand(tarnevel::CMD_START_BRANCH, {}), answer, events));
    EXPECT_EQ(FC_NO_SUCH_NAME, model.serve(makeCommand("Tarnevel Start Branch ", {{"Branch", "b"}}), answer, events));
    EXPECT_EQ(FC_OK, model.serve(makeCommand(tarnevel::CMD_PUT_ASSEMBLY, {{"Assembly", "A\nB\n"}}), answer, events));
    EXPECT_EQ("A\nB\n", model.assembly());
    EXPECT_EQ(FC_OK, model.serve(makeCommand(tarnevel::CMD_STORE_STATE, {}), answer, events));
    EXPECT_TRUE(events.empty());
}

TEST(MediatorModel, ReceiverInputChangesRaiseAutoDetection) {
    MediatorModel model;
    std::string error, detected;
    ASSERT_EQ(FC_OK, model.loadParams(PARAMS_JSON, error)) << error;
    std::vector<MessageEvent> events;
    ASSERT_EQ(FC_OK, model.setInput("HD-SDI", "None", events));
    ASSERT_EQ(1u, events.size());
    EXPECT_EQ("Auto Detection Event HD-SDI", events[0].id + " " + events[0].source);
    EXPECT_EQ(1, events[0].getParam("Input Detected", detected));
    EXPECT_EQ("None", detected);
    EXPECT_EQ(FC_NO_SUCH_NAME, model.setInput("SDI 2", "None", events));
}

// What the SAP tests of the channel do not send: repeats, refusals and the
// withdrawal of every stream at once.
TEST(SapModel, RepeatsAreHarmlessAndRefusalsNameTheirCause) {
    SapModel model;
    const MessageParams::ParamMap stream = {
        {"ChannelName", "Channel 1"}, {"DestinationIp", "239.1.1.1"}, {"DestinationPort", "5002"}};
    EXPECT_EQ(FC_OK, model.serve(makeCommand(sim::CMD_START_SAP, stream)));
    EXPECT_EQ(FC_OK, model.serve(makeCommand(sim::CMD_START_SAP, stream)));
    EXPECT_EQ("announced Channel 1 239.1.1.1:5002\n", model.report());
    EXPECT_EQ(FC_BODY_ERROR, model.serve(makeCommand(sim::CMD_START_SAP, {{"ChannelName", "x"}})));
    EXPECT_EQ(FC_NO_SUCH_NAME, model.serve(makeCommand("STOP ALL SAP ", {})));
    EXPECT_EQ(FC_OK, model.serve(makeCommand(sim::CMD_STOP_SAP, stream)));
    EXPECT_EQ(FC_OK, model.serve(makeCommand(sim::CMD_STOP_SAP, stream)));
    EXPECT_TRUE(model.streams().empty());
    EXPECT_EQ(FC_OK, model.serve(makeCommand(sim::CMD_START_SAP, stream)));
    EXPECT_EQ(FC_OK, model.serve(makeCommand(sim::CMD_STOP_ALL_SAP, {})));
    EXPECT_TRUE(model.streams().empty());
}

TEST(DeviceCommandModel, KnownCommandsAreAnsweredAndRecorded) {
    DeviceCommandModel model;
    EXPECT_EQ(FC_OK, model.serve(makeCommand("Toggle KLVoSDI Input", {{"KLV Source", "true"}, {"ChannelID", "1"}})));
    EXPECT_EQ(FC_BODY_ERROR, model.serve(makeCommand("Toggle KLVoSDI Input", {{"ChannelID", "1"}})));
    EXPECT_EQ(FC_OK, model.serve(makeCommand("Reset KLVoSDI Statistics", {})));
    EXPECT_EQ(FC_OK, model.serve(makeCommand("Reset KLVoIP Statistics", {})));
    EXPECT_EQ(FC_OK, model.serve(makeCommand("Reset KLV Statistics", {})));
    EXPECT_EQ(FC_NO_SUCH_NAME, model.serve(makeCommand("Reset Everything", {})));
    EXPECT_EQ((std::vector<std::string>{"Toggle KLVoSDI Input ChannelID=1 KLV Source=true", "Reset KLVoSDI Statistics",
                                        "Reset KLVoIP Statistics", "Reset KLV Statistics"}),
              model.commands());
}

TEST(FailureRules, RulesAreParsedUsedUpInOrderAndRefusedWhenMalformed) {
    FailureRules rules;
    EXPECT_EQ(FC_OK, rules.addFromCommand(makeCommand(
                         sim::CMD_SIM_FAIL, {{"Command", "START_SAP"}, {"Count", "2"}, {"Fcode", "0x10008"}})));
    EXPECT_EQ(FC_OK,
              rules.addFromCommand(makeCommand(sim::CMD_SIM_FAIL, {{"Command", "START_SAP"}, {"Mode", "Silent"}})));
    EXPECT_EQ(FC_OK, rules.addFromCommand(
                         makeCommand(sim::CMD_SIM_FAIL, {{"Command", "GET"}, {"Mode", "NACK"}, {"Fcode", "32"}})));
    EXPECT_EQ("GET: 1 x NACK 0x10020\nSTART_SAP: 2 x Fcode 0x10008\nSTART_SAP: 1 x Silent 0x10100\n", rules.describe());

    struct Expected {
        const char* command;
        bool fails;
        FailureRules::Mode mode;
        Fcodes code;
    } sequence[] = {
        {"STOP_SAP", false, FailureRules::Mode::Fcode, FC_OK},
        {"START_SAP", true, FailureRules::Mode::Fcode, FC_NO_SUCH_NAME},
        {"START_SAP", true, FailureRules::Mode::Fcode, FC_NO_SUCH_NAME},
        {"START_SAP", true, FailureRules::Mode::Silent, FC_UNAVAILABLE},
        {"START_SAP", false, FailureRules::Mode::Fcode, FC_OK},
        {"GET", true, FailureRules::Mode::Nack, FC_BAD_VALUE},
        {"GET", false, FailureRules::Mode::Fcode, FC_OK},
    };
    int step = 0;
    for (const Expected& expected : sequence) {
        FailureRules::Failure failure;
        const bool fails = rules.take(expected.command, failure);
        EXPECT_EQ(expected.fails, fails) << "step " << step;
        if (fails && expected.fails) {
            EXPECT_EQ(expected.mode, failure.mode) << "step " << step;
            EXPECT_EQ(expected.code, failure.code) << "step " << step;
        }
        ++step;
    }
    EXPECT_EQ("", rules.describe());

    const MessageParams::ParamMap refused[] = {
        {{"Count", "1"}},
        {{"Command", ""}},
        {{"Command", "X"}, {"Count", "0"}},
        {{"Command", "X"}, {"Count", "2x"}},
        {{"Command", "X"}, {"Mode", "nack"}},
        {{"Command", "X"}, {"Fcode", "0x10000"}},
        {{"Command", "X"}, {"Fcode", "zero"}},
    };
    for (const auto& params : refused)
        EXPECT_EQ(FC_BODY_ERROR, rules.addFromCommand(makeCommand(sim::CMD_SIM_FAIL, params)))
            << paramsText(makeCommand(sim::CMD_SIM_FAIL, params));
    EXPECT_EQ("", rules.describe());
}

TEST(TrafficLog, OneLinePerMessageNamesDirectionServiceTypeIdAndCode) {
    struct Row {
        const char* direction;
        const char* service;
        const char* type;
        Fcodes code;
        const char* body;
        std::string expected;
    } rows[] = {
        {"IN", "mediator", "COMMAND", FC_OK,
         "<BODY>\n\t<Command ID=\"Tarnevel Start Branch\" >\n\t<Parameter Name=\"Sync\" Value=\"true\" />\n"
         "\t<Parameter Name=\"Branch\" Value=\"UDP CH0\" />\n</Command>\n</BODY>\n",
         "IN  mediator COMMAND #7 \"Tarnevel Start Branch\" Branch=\"UDP CH0\" Sync=\"true\""},
        // Line breaks of values are shown, not printed.
        {"OUT", "sap", "ACK", FC_OK,
         "<BODY><Command ID=\"Sim Report\" >\n\t<Parameter Name=\"Report\" Value=\"a\nb\n\" />\n</Command></BODY>",
         "OUT sap ACK #7 \"Sim Report\" Report=\"a\\nb\\n\" Fcode=0x10000 (OK)"},
        {"OUT", "sap", "NACK", FC_NO_SUCH_NAME, "",
         "OUT sap NACK #7 Fcode=0x10008 (" + fcodeText(FC_NO_SUCH_NAME) + ")"},
        {"OUT", "mediator", "EVENT", FC_OK,
         "<BODY>\n<Event ID=\"Data Stream\" Source=\"H.264\" >\n\t<Parameter Name=\"Bitrate\" Value=\"5\" />\n"
         "</Event>\n</BODY>\n",
         "OUT mediator EVENT #7 \"Data Stream\" Source=\"H.264\" Status=\"None\" Bitrate=\"5\" Fcode=0x10000 (OK)"},
        {"IN", "device", "GET", FC_OK,
         "<BODY>\n\t<DataSet ID=\"DeviceDataSet\" >\n\t\t<Item Name=\"TZ\" />\n</DataSet>\n</BODY>\n",
         "IN  device GET #7 <DataSet ID=\"DeviceDataSet\" ><Item Name=\"TZ\" /></DataSet>"},
    };
    for (const Row& row : rows) {
        MessageHeader header;
        header.Type = row.type;
        header.ID = 7;
        header.Fcode = row.code;
        EXPECT_EQ(row.expected, TrafficLog::formatLine(row.direction, row.service, header, row.body)) << row.type;
    }
}
