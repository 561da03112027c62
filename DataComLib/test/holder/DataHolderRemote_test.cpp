#include <gtest/gtest.h>

#include <future>
#include <string>

#include "datacom/MessageCommand.h"
#include "engine/EngineTestSupport.h"
#include "holder/DataHolderTestSupport.h"
#include "json/DataSetsTestSupport.h"

using namespace datacom;

namespace {

constexpr const char* kPeer = "/tmp/sockPeerHolder";
constexpr const char* kOwnSend = "/tmp/sockOwnSend";

// A served holder with a table and a JSON data set, and a client holder whose
// engine only sends.
struct HolderPair {
    HolderPair() {
        served.init("tServed");
        served.addDataSet("A", makeDataSet("A", "T", 3, 42, "239.1.1.1"));
        dstest::writeText("/etc/sysmgt/remote_test.json", dstest::kChannelDoc);
        served.loadDataSet("Chan", "/etc/sysmgt/remote_test.json");
        served.getDataCommunicator()->init(&served, kPeer, "/tmp/sockPeerHolderSend", "tPeer");
        served.getDataCommunicator()->start();
        client.init("tClient");
        client.getDataCommunicator()->init(&client, "/tmp/sockOwn", kOwnSend, "tOwn");
    }
    RecordingHolder served;
    RecordingHolder client;
};

TEST(DataHolderRemote, ParametersOfAPeerHolder) {
    HolderPair pair;
    std::string text;
    int number = 0;
    // The fixed 10 s x 3 reads, against a peer that answers at once.
    EXPECT_EQ(pair.client.requestGetTextParam(kPeer, "Chan", "ChannelsTable", "Name", text, "H.264"), FC_OK);
    EXPECT_EQ(text, "first");
    EXPECT_EQ(pair.client.requestGetIntParam(kPeer, "Chan", "ChannelsTable", "Bitrate", number, "HEVC"), FC_OK);
    EXPECT_EQ(number, 6000);
    // A peer's refusal comes back as a NACK, which the engine reports as a header mismatch.
    number = -1;
    EXPECT_EQ(pair.client.requestGetIntParam(kPeer, "Chan", "ChannelsTable", "Bitrate", number, "AV1"),
              FC_HEADER_ERROR);
    EXPECT_EQ(number, -1);

    EXPECT_EQ(pair.client.requestSetRemoteIntParam(kPeer, "Chan", "ChannelsTable", "Bitrate", 9000, "HEVC", 2, 1),
              FC_OK);
    EXPECT_EQ(pair.served.getNewIntParam("Chan", "ChannelsTable", "Bitrate", number, "HEVC"), FC_OK);
    EXPECT_EQ(number, 9000);

    EXPECT_EQ(pair.client.requestRemoteIntParam(kPeer, "T", 3, "Bitrate", number, 2, 1), FC_OK);
    EXPECT_EQ(number, 42);
    text = "kept";
    EXPECT_EQ(pair.client.requestRemoteStringParam(kPeer, "T", 4, "Host", text, 2, 1), FC_HEADER_ERROR);
    EXPECT_EQ(text, "kept");
}

TEST(DataHolderRemote, CommandsAndEventsReachThePeersWorker) {
    HolderPair pair;
    std::string reply;
    EXPECT_EQ(pair.client.requestCommand(kPeer, "<Command ID=\"Accept Changes\" >\n</Command>\n", reply, 2, 1), FC_OK);
    MessageEvent event;
    event.id = "Remote Event";
    EXPECT_EQ(pair.client.requestEvent(kPeer, event, 1, 1), FC_OK);
    // The engine hands the base execute the whole command element: not a bare "Accept Changes".
    const std::vector<std::string> record = pair.served.waitFor(2);
    ASSERT_EQ(record.size(), 2u);
    EXPECT_EQ(record[0], "command <Command ID=\"Accept Changes\" >\n</Command> No Such Name");
    EXPECT_EQ(record[1], "event Remote Event");

    // notify reaches a subscribed holder's worker through its engine.
    pair.client.getDataCommunicator()->start();
    ASSERT_EQ(pair.client.getDataCommunicator()->requestSubscribe(kPeer), FC_OK);
    MessageEvent note;
    note.id = "Notified";
    pair.served.notify(note);
    EXPECT_EQ(pair.client.waitFor(1), std::vector<std::string>{"event Notified"});
}

// A refused SET undoes only what it wrote, whether the refused item comes
// before or after the accepted ones: two earlier pending edits survive, the
// refused request's own writes are back to their earlier pending state.
TEST(DataHolderRemote, ARefusedSetUndoesOnlyItsOwnWrites) {
    HolderPair pair;
    RawPeer peer("/tmp/sockRawClient");
    auto set = [&](const std::string& element) {
        const std::string body = "<BODY>" + element + "</BODY>";
        peer.sendTo(kPeer, wireHeader(40, "SET", FC_OK, static_cast<int>(body.size())) + body);
        std::string reply;
        MessageHeader header;
        if (!peer.receive(reply) || !isOk(header.initFromString(reply)))
            return FC_COMM_ERROR;
        return header.Type == "RESPONSE" ? FC_OK : header.Fcode;
    };
    auto channels = [](const std::string& row, const std::string& items) {
        return "<DataSet ID=\"Chan\" ><Component Name=\"ChannelsTable\" ><Row ID=\"" + row + "\" >" + items +
               "</Row></Component></DataSet>";
    };
    ASSERT_EQ(set(channels("H.264", "<Item Name=\"Bitrate\" Value=\"1111\" />")), FC_OK);
    ASSERT_EQ(set(channels("HEVC", "<Item Name=\"Bitrate\" Value=\"2222\" />")), FC_OK);
    const std::string bitrate = "<Item Name=\"Bitrate\" Value=\"3333\" />";
    const std::string name = "<Item Name=\"Name\" Value=\"renamed\" />";
    const std::string refused = "<Item Name=\"Mode\" Value=\"5\" />";  // not in the enumeration
    const struct {
        const char* order;
        std::string items;
    } rows[] = {
        {"refused item last", bitrate + name + refused},
        {"refused item first", refused + name + bitrate},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(set(channels("HEVC", row.items)), FC_BAD_VALUE) << row.order;
        int number = 0;
        std::string text;
        EXPECT_EQ(pair.served.getNewIntParam("Chan", "ChannelsTable", "Bitrate", number, "H.264"), FC_OK);
        EXPECT_EQ(number, 1111) << row.order << ": another instance's pending edit";
        EXPECT_EQ(pair.served.getNewIntParam("Chan", "ChannelsTable", "Bitrate", number, "HEVC"), FC_OK);
        EXPECT_EQ(number, 2222) << row.order << ": the earlier pending value of a property it wrote";
        EXPECT_FALSE(pair.served.isChangedProperty("Chan", "ChannelsTable", "Name", "HEVC")) << row.order;
        EXPECT_EQ(pair.served.getNewTextParam("Chan", "ChannelsTable", "Name", text, "HEVC"), FC_OK);
        EXPECT_EQ(text, "second") << row.order;
    }

    // A refused table SET rolls the tabular store back: the item it wrote is
    // unchanged again (its pending copy stays, as a tabular rollback leaves it).
    EXPECT_EQ(set("<Table Name=\"T\" ><Row ID=\"3\" ><Item Name=\"Bitrate\" Value=\"7\" />"
                  "<Item Name=\"Nope\" Value=\"1\" /></Row></Table>"),
              FC_NO_SUCH_NAME);
    unsigned state = 99;
    EXPECT_EQ(pair.served.getParamState("T", 3, "Bitrate", state), FC_OK);
    EXPECT_EQ(state, 0u);
}

// The row commands carry "Tables", which an engine's server does not read: a
// peer served by the engine refuses them (a NACK: header mismatch here).
TEST(DataHolderRemote, RowCommandsSendTablesAndTakeTheReplysRow) {
    {
        HolderPair pair;
        int row = -1;
        EXPECT_EQ(pair.client.requestAddRow(kPeer, "T", 5, row, 2, 1), FC_HEADER_ERROR);
        EXPECT_EQ(pair.client.requestNextRowId(kPeer, "T", 3, row, 2, 1), FC_HEADER_ERROR);
        EXPECT_EQ(row, -1);
        EXPECT_EQ(pair.served.getRowsNum("T"), 1);
    }
    RecordingHolder client;
    client.getDataCommunicator()->init(&client, "/tmp/sockOwn", kOwnSend, "tOwn");
    RawPeer peer(kPeer);
    ASSERT_TRUE(peer.bound);
    struct Case {
        const char* commandId;
        const char* replyPayload;
        Fcodes code;
        int row;
    };
    const Case cases[] = {
        {"Add Row", "<Command ID=\"Add Row\" >\n<Parameter Name=\"Row\" Value=\"7\" />\n</Command>", FC_OK, 7},
        {"Get Next Row", "<Command ID=\"Get Next Row\" >\n<Parameter Name=\"Row\" Value=\"12\" />\n</Command>", FC_OK,
         12},
        {"Add Row", "<Command ID=\"Add Row\" >\n</Command>", FC_BODY_ERROR, -1},
    };
    for (const Case& c : cases) {
        int row = -1;
        auto request = std::async(std::launch::async, [&] {
            return std::string(c.commandId) == "Add Row" ? client.requestAddRow(kPeer, "Chans", 5, row, 2, 1)
                                                         : client.requestNextRowId(kPeer, "Chans", 5, row, 2, 1);
        });
        std::string datagram;
        ASSERT_TRUE(peer.receive(datagram)) << c.replyPayload;
        const std::string expected = std::string("<BODY>\n\t<Command ID=\"") + c.commandId +
                                     "\" >\n\t<Parameter Name=\"Row\" Value=\"5\" />\n"
                                     "\t<Parameter Name=\"Tables\" Value=\"Chans\" />\n</Command>\n\n</BODY>\n";
        EXPECT_EQ(datagram.substr(datagram.find("<BODY>")), expected);
        const std::string payload = std::string("<BODY>") + c.replyPayload + "</BODY>";
        ASSERT_TRUE(peer.sendTo(
            kOwnSend, wireHeader(wireId(datagram), "ACK", FC_OK, static_cast<int>(std::string(c.replyPayload).size())) +
                          payload));
        EXPECT_EQ(request.get(), c.code) << c.replyPayload;
        EXPECT_EQ(row, c.row) << c.replyPayload;
    }
}

}  // namespace
