#include <gtest/gtest.h>

#include <algorithm>

#include "engine/EngineTestSupport.h"

using namespace datacom;

namespace {

// Two engines over a holder with a table "Chan" and a JSON data set "vsrc"
// whose components have a single instance ("Video"), an array of instances
// ("Targets") and instances by key ("Keyed", one of the keys being "0").
struct DataEngines : EnginePair {
    DataEngines() {
        holder.addCell("Chan", 1, "Name", "HEVC");
        holder.addCell("Chan", 1, "Bitrate", "5000");
        holder.addCell("Chan", 2, "Name", "H.264");
        holder.setJson("vsrc", "Video", "", "Format", "1080p");
        holder.setJson("vsrc", "Video", "", "Enabled", "true", true);
        holder.setJson("vsrc", "Targets", "#0", "Address", "239.1.1.1");
        holder.setJson("vsrc", "Targets", "#1", "Address", "239.1.1.2");
        holder.setJson("vsrc", "Keyed", "main", "Port", "5000");
        holder.setJson("vsrc", "Keyed", "0", "Port", "6000");
    }
    Fcodes get(const std::string& component, const std::string& item, const std::string& row, std::string& value,
               const std::string& dataSet = "vsrc") {
        return client.requestGetParam(SERVER, dataSet, component, item, value, ParamAccess::Read, row, 2, 1);
    }
    size_t callsOf(const std::string& name) const {
        auto calls = holder.calls();
        return static_cast<size_t>(std::count(calls.begin(), calls.end(), name));
    }
    // Sends a data request from a bare peer and returns the reply's text.
    std::string ask(const char* type, const std::string& body) {
        peer.sendTo(SERVER, wireHeader(31, type, FC_OK, static_cast<int>(body.size())) + body);
        std::string reply;
        peer.receive(reply);
        return reply;
    }
    RawPeer peer{"/tmp/sockPeer"};
};

std::string nack(Fcodes code) {
    return wireHeader(31, "NACK", code, 0);
}

std::string response(const std::string& body) {
    return wireHeader(31, "RESPONSE", FC_OK, static_cast<int>(body.size())) + body;
}

TEST(DataCommunicatorData, DataSetGetAndSetThroughTwoEngines) {
    DataEngines engines;
    const struct {
        const char* component;
        const char* item;
        const char* row;
        const char* expected;
    } reads[] = {
        {"Video", "Format", "", "1080p"},         {"Video", "Enabled", "", "true"},  // boolean read in its own type
        {"Targets", "Address", "1", "239.1.1.2"}, {"Keyed", "Port", "main", "5000"},
        {"Keyed", "Port", "0", "6000"},  // a key that looks like an index
    };
    for (const auto& row : reads) {
        std::string value;
        EXPECT_EQ(engines.get(row.component, row.item, row.row, value), FC_OK) << row.component << "/" << row.item;
        EXPECT_EQ(value, row.expected) << row.component << "/" << row.item << " row " << row.row;
    }

    std::string value = "239.1.1.9";
    ASSERT_EQ(engines.client.requestGetParam(EnginePair::SERVER, "vsrc", "Targets", "Address", value,
                                             ParamAccess::Write, "1", 2, 1),
              FC_OK);
    EXPECT_EQ(value, "239.1.1.9") << "the value now pending";
    EXPECT_EQ(engines.get("Targets", "Address", "1", value), FC_OK);
    EXPECT_EQ(value, "239.1.1.2") << "GET reads the committed value until Accept Changes";

    // Unknown names: the peer refuses, the client sees the NACK as a mismatch.
    for (const char* unknown : {"dataset", "component", "row", "item"}) {
        const std::string which = unknown;
        value = "kept";
        Fcodes code = engines.get(which == "component" ? "Nope" : "Targets", which == "item" ? "Nope" : "Address",
                                  which == "row" ? "7" : "0", value, which == "dataset" ? "other" : "vsrc");
        EXPECT_EQ(code, FC_HEADER_ERROR) << unknown;
        EXPECT_EQ(value, "kept") << unknown;
    }
    EXPECT_EQ(engines.ask("GET",
                          "<BODY><DataSet ID=\"vsrc\" ><Component Name=\"Targets\" ><Row ID=\"7\" >"
                          "<Item Name=\"Address\" /></Row></Component></DataSet></BODY>"),
              nack(FC_NO_SUCH_NAME));
    EXPECT_EQ(engines.callsOf("rollbackChanges"), 0u) << "a failed GET rolls nothing back";
}

TEST(DataCommunicatorData, TableGetAndSetThroughTwoEngines) {
    DataEngines engines;
    std::string value;
    EXPECT_EQ(engines.client.requestDataItem(EnginePair::SERVER, "Chan", 2, "Name", value, 2, 1), FC_OK);
    EXPECT_EQ(value, "H.264");
    EXPECT_EQ(engines.client.requestSetDataItem(EnginePair::SERVER, "Chan", 1, "Bitrate", "6000", 2, 1), FC_OK);
    EXPECT_EQ(engines.client.requestDataItem(EnginePair::SERVER, "Chan", 1, "Bitrate", value, 2, 1), FC_OK);
    EXPECT_EQ(value, "5000");

    value = "kept";
    EXPECT_EQ(engines.client.requestDataItem(EnginePair::SERVER, "Chan", 9, "Name", value, 2, 1), FC_HEADER_ERROR);
    EXPECT_EQ(value, "kept");
    EXPECT_EQ(engines.client.requestSetDataItem(EnginePair::SERVER, "Chan", 1, "Bitrate", "!bad", 2, 1),
              FC_HEADER_ERROR);
    EXPECT_EQ(engines.callsOf("rollbackChanges"), 1u);
    EXPECT_EQ(engines.ask("SET",
                          "<BODY><Table Name=\"Chan\" ><Row ID=\"1\" ><Item Name=\"Bitrate\" Value=\"!\" />"
                          "</Row></Table></BODY>"),
              nack(FC_BAD_VALUE));
}

TEST(DataCommunicatorData, RepliesRepeatTheRequestByteForByte) {
    DataEngines engines;
    // A DataSet without ID: each component's data set is found by its name.
    EXPECT_EQ(engines.ask("GET",
                          "<BODY><DataSet ID=\"\" ><Component Name=\"Keyed\" ><Row ID=\"main\" >"
                          "<Item Name=\"Port\" /></Row><Row ID=\"0\" ><Item Name=\"Port\" /></Row></Component>"
                          "<Component Name=\"Video\" ><Item Name=\"Enabled\" /><Item Name=\"Format\" />"
                          "</Component></DataSet></BODY>"),
              response("<BODY>\n\t<DataSet ID=\"\" >\n\t<Component Name=\"Keyed\" >\n"
                       "\t\t<Row ID=\"main\" >\n\t\t<Item Name=\"Port\" Value=\"5000\" />\n\t\t</Row>\n"
                       "\t\t<Row ID=\"0\" >\n\t\t<Item Name=\"Port\" Value=\"6000\" />\n\t\t</Row>\n\t</Component>\n"
                       "\t<Component Name=\"Video\" >\n\t\t<Item Name=\"Enabled\" Value=\"true\" />\n"
                       "\t\t<Item Name=\"Format\" Value=\"1080p\" />\n\t</Component>\n</DataSet>\n</BODY>\n"));
    EXPECT_EQ(engines.ask("SET",
                          "<BODY><Table Name=\"Chan\" ><Row ID=\"1\" ><Item Name=\"Name\" Value=\"X\" />"
                          "<Item Name=\"Bitrate\" Value=\"7\" /></Row><Row ID=\"2\" >"
                          "<Item Name=\"Name\" Value=\"Y\" /></Row></Table></BODY>"),
              response("<BODY>\n\t<Table Name=\"Chan\" >\n\t\t<Row ID=\"1\" >\n\t\t<Item Name=\"Name\" Value=\"X\" />\n"
                       "\t\t<Item Name=\"Bitrate\" Value=\"7\" />\n\t\t</Row>\n\t\t<Row ID=\"2\" >\n"
                       "\t\t<Item Name=\"Name\" Value=\"Y\" />\n\t\t</Row>\n\t</Table>\n</BODY>\n"));
    // Malformed bodies.
    EXPECT_EQ(engines.ask("GET", "<BODY><Other /></BODY>"), nack(FC_BODY_ERROR));
    EXPECT_EQ(engines.ask("SET",
                          "<BODY><Table Name=\"Chan\" ><Row ID=\"1\" ><Item Name=\"Name\" /></Row></Table>"
                          "</BODY>"),
              nack(FC_BODY_ERROR));
    // A value the wire cannot carry is refused on every path with the bare NACK: stored (GET of a
    // component or a table), sent (a SET, leaving nothing pending), or a name the reply echoes.
    const std::pair<const char*, std::string> refused[] = {
        {"GET", "<DataSet ID=\"vsrc\" ><Component Name=\"Video\" ><Item Name=\"Format\" /></Component></DataSet>"},
        {"GET", "<Table Name=\"Chan\" ><Row ID=\"2\" ><Item Name=\"Name\" /></Row></Table>"},
        {"SET", "<Table Name=\"Chan\" ><Row ID=\"1\" ><Item Name=\"Name\" Value=\"a<b\" /></Row></Table>"},
        {"SET",
         "<DataSet ID=\"\" ><Component Name=\"Video\" ><Item Name=\"Format\" Value=\"a<b\" /></Component></DataSet>"},
        {"GET", "<Table Name=\"Chan\" ><Row ID=\"1<x\" ><Item Name=\"Name\" /></Row></Table>"},
        {"GET", "<Table Name=\"Ch<an\" ><Row ID=\"1\" ></Row></Table>"},
        {"GET", "<DataSet ID=\"vs<rc\" ></DataSet>"}};
    std::string before, after;  // the table's pending value
    engines.holder.getNewStringParam("Chan", 1, "Name", before);
    for (const char* stored : {"say \"hi\"", "a<b", "1080p>"}) {
        engines.holder.setJson("vsrc", "Video", "", "Format", stored);
        engines.holder.addCell("Chan", 2, "Name", stored);
        for (const auto& [type, body] : refused)
            EXPECT_EQ(engines.ask(type, "<BODY>" + body + "</BODY>"), nack(FC_BAD_VALUE)) << stored << " " << body;
        std::string value = stored;
        EXPECT_EQ(engines.client.requestSetDataItem(EnginePair::SERVER, "Chan", 1, "Name", stored, 2, 1), FC_BAD_VALUE);
        EXPECT_EQ(engines.client.requestGetParam(EnginePair::SERVER, "vsrc", "Video", "Format", value,
                                                 ParamAccess::Write, "", 2, 1),
                  FC_BAD_VALUE);
    }
    EXPECT_EQ(engines.holder.getNewStringParam("Chan", 1, "Name", after), FC_OK);
    EXPECT_EQ(after, before);
}

}  // namespace
