#include <gtest/gtest.h>

#include <functional>

#include "engine/EngineTestSupport.h"

using namespace datacom;

namespace {

// A client engine and a bare peer that sees exactly what it sends.
struct ClientAndPeer {
    ClientAndPeer() { client.init(nullptr, "/tmp/sockCli", "/tmp/sockCliSend", "tCli"); }
    Fcodes exchange(const std::function<Fcodes()>& request, std::string& received,
                    const std::function<std::string(int)>& reply) {
        return ::exchange(peer, "/tmp/sockCliSend", request, received, reply);
    }
    DataCommunicator client;
    RawPeer peer{PEER};
};

std::string withBody(int id, const char* type, const std::string& body) {
    return wireHeader(id, type, FC_OK, static_cast<int>(body.size())) + body;
}

TEST(DataCommunicatorClient, RequestsWriteTheirExactText) {
    ClientAndPeer side;
    auto nack = [](int id) { return wireHeader(id, "NACK", FC_NO_SUCH_NAME, 0); };
    std::string value = "7";
    const struct {
        const char* name;
        std::function<Fcodes()> request;
        const char* type;
        std::string body;
    } cases[] = {
        {"requestCommand",
         [&] { return side.client.requestCommand(PEER, "<Command ID=\"X\" >\n</Command>\n", value, 1, 1); }, "COMMAND",
         "<BODY>\n\t<Command ID=\"X\" >\n</Command>\n\n</BODY>\n"},
        {"requestSubscribe", [&] { return side.client.requestSubscribe(PEER); }, "COMMAND",
         "<BODY>\n\t\t<Command ID=\"SUBSCRIBE\" >\n\t\t<Parameter Name=\"SockName\" Value=\"/tmp/sockCli\" />\n"
         "\t</Command>\n\n</BODY>\n"},
        {"requestDataItem", [&] { return side.client.requestDataItem(PEER, "T", 3, "Col", value, 1, 1); }, "GET",
         "<BODY>\n\t<Table Name=\"T\" >\n\t\t<Row ID=\"3\" >\n\t\t<Item Name=\"Col\" />\n\t\t</Row>\n\t</Table>\n"
         "</BODY>\n"},
        {"requestSetDataItem", [&] { return side.client.requestSetDataItem(PEER, "T", 3, "Col", "v", 1, 1); }, "SET",
         "<BODY>\n\t<Table Name=\"T\" >\n\t\t<Row ID=\"3\" >\n\t\t<Item Name=\"Col\" Value=\"v\" />\n\t\t</Row>\n"
         "\t</Table>\n</BODY>\n"},
        {"requestGetParam single",
         [&] { return side.client.requestGetParam(PEER, "ds", "C", "P", value, ParamAccess::Read, "", 1, 1); }, "GET",
         "<BODY>\n\t<DataSet ID=\"ds\" >\n\t<Component Name=\"C\" >\n\t\t<Item Name=\"P\" />\n\t</Component>\n"
         "</DataSet>\n</BODY>\n"},
        {"requestGetParam set row",
         [&] { return side.client.requestGetParam(PEER, "ds", "C", "P", value, ParamAccess::Write, "k", 1, 1); }, "SET",
         "<BODY>\n\t<DataSet ID=\"ds\" >\n\t<Component Name=\"C\" >\n\t\t<Row ID=\"k\" >\n"
         "\t\t<Item Name=\"P\" Value=\"7\" />\n\t\t</Row>\n\t</Component>\n</DataSet>\n</BODY>\n"},
    };
    for (const auto& row : cases) {
        const int id = static_cast<int>(DataCommunicator::peekNextRequestId());
        std::string received;
        // A NACK answers every request: a header mismatch for each of them.
        EXPECT_EQ(side.exchange(row.request, received, nack), FC_HEADER_ERROR) << row.name;
        EXPECT_EQ(received, withBody(id, row.type, row.body)) << row.name;
    }
    EXPECT_EQ(value, "7") << "a refused request leaves the value untouched";

    MessageEvent event;
    event.id = "E";
    event.fcode = FC_LOS;
    ASSERT_EQ(side.client.requestEvent(PEER, event, 1, 1), FC_OK);
    std::string received, eventText;
    ASSERT_TRUE(side.peer.receive(received));
    event.toString(eventText);
    EXPECT_EQ(received, wireHeader(100, "EVENT", FC_LOS, static_cast<int>(eventText.size() + 15)) + "<BODY>\n" +
                            eventText + "</BODY>\n");
}

TEST(DataCommunicatorClient, DataReplyChecks) {
    ClientAndPeer side;
    const struct {
        const char* name;
        std::string body;  // of the RESPONSE; "" sends Size 0
        Fcodes expected;
    } cases[] = {
        {"good", "<BODY>\n\t\t<Item Name=\"Col\" Value=\"42\" />\n</BODY>\n", FC_OK},
        {"empty body", "", FC_BODY_ERROR},
        {"no Item", "<BODY>\n\t<Row ID=\"3\" />\n</BODY>\n", FC_BODY_ERROR},
        {"no Name", "<BODY>\n\t\t<Item Value=\"1\" />\n</BODY>\n", FC_BODY_ERROR},
        {"other Name", "<BODY>\n\t\t<Item Name=\"Other\" Value=\"1\" />\n</BODY>\n", FC_BODY_ERROR},
        {"no Value", "<BODY>\n\t\t<Item Name=\"Col\" />\n</BODY>\n", FC_BODY_ERROR},
    };
    for (const auto& row : cases) {
        std::string value = "before", received;
        auto respond = [&](int id) { return withBody(id, "RESPONSE", row.body); };
        Fcodes code = side.exchange([&] { return side.client.requestDataItem(PEER, "T", 3, "Col", value, 1, 1); },
                                    received, respond);
        EXPECT_EQ(code, row.expected) << row.name;
        EXPECT_EQ(value, row.expected == FC_OK ? "42" : "before") << row.name;
    }
}

}  // namespace
