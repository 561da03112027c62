#include <gtest/gtest.h>

#include "datacom/MessageCommand.h"
#include "datacom/MessageEvent.h"

using namespace datacom;

TEST(MessageEvent, DefaultTextAndExactLayout) {
    MessageEvent fresh;
    std::string out = "replaced";
    fresh.toString(out);
    EXPECT_EQ(out,
              "\t<Event ID=\"NULL\" Source=\"Source\" Status=\"None\" Time=\"2011-01-06  12:06:11\" "
              "Description=\"\" Severity=\"None\" >\n\t</Event>\n");
    EXPECT_EQ(fresh.fcode, FC_OK);

    MessageEvent event;
    event.id = "Channel Played";
    event.source = "ChannelManager";
    event.status = "OK";
    event.time = "22-Nov-26  10:00:00";
    event.description = "d";
    event.severity = "Info";
    event.addParam("RowID", "HEVC");
    event.addParam("Fcode", "20000");
    event.addParam("RowID", "H.264");  // overwrite
    event.toString(out);
    EXPECT_EQ(out,
              "\t<Event ID=\"Channel Played\" Source=\"ChannelManager\" Status=\"OK\" Time=\"22-Nov-26  10:00:00\" "
              "Description=\"d\" Severity=\"Info\" >\n"
              "\t\t<Parameter Name=\"Fcode\" Value=\"20000\" />\n"
              "\t\t<Parameter Name=\"RowID\" Value=\"H.264\" />\n"
              "\t</Event>\n");

    MessageEvent back;
    ASSERT_EQ(back.initFromString(out), FC_OK);
    std::string again;
    back.toString(again);
    EXPECT_EQ(again, out);

    // A user's text ends no value early and adds no parameter: '"', '<', '>' are replaced.
    MessageEvent hostile;
    hostile.description = "d\" Severity=\"Fatal";
    hostile.addParam("Name", "x\"/><Parameter Name=\"Injected\" Value=\"1");
    hostile.toString(out);
    MessageEvent parsed;
    ASSERT_EQ(parsed.initFromString(out), FC_OK);
    EXPECT_EQ(parsed.severity, "None");
    EXPECT_EQ(parsed.description, "d' Severity='Fatal");
    ASSERT_EQ(parsed.params.size(), 1u);
    EXPECT_EQ(parsed.params.at("Name"), "x'/)(Parameter Name='Injected' Value='1");
}

TEST(MessageEvent, ParsingRules) {
    MessageEvent event;
    // No Source: still OK, source keeps its default; other absences silent.
    ASSERT_EQ(event.initFromString("<Event ID=\"X\" Status=\"Warn\" >\n"
                                   "<Parameter Name=\"b\" Value=\"1\" />\n"
                                   "<Parameter Name=\"a\" Value=\"2\" />\n"
                                   "<Parameter Name=\"b\" Value=\"3\" />\n"
                                   "<Parameter Value=\"noname\" />\n"
                                   "<Parameter Name=\"novalue\" />\n</Event>"),
              FC_OK);
    EXPECT_EQ(event.id, "X");
    EXPECT_EQ(event.source, "Source");
    EXPECT_EQ(event.status, "Warn");
    EXPECT_EQ(event.severity, "None");
    std::vector<std::pair<std::string, std::string>> params(event.getParamsBegin(), event.getParamsEnd());
    std::vector<std::pair<std::string, std::string>> expected = {{"a", "2"}, {"b", "3"}};
    EXPECT_EQ(params, expected);  // sorted by name, the later duplicate wins, bad ones skipped

    // Re-parse merges: parameters are not cleared first.
    ASSERT_EQ(event.initFromString("<Event ID=\"Y\" ><Parameter Name=\"c\" Value=\"9\" /></Event>"), FC_OK);
    EXPECT_EQ(event.id, "Y");
    EXPECT_EQ(event.status, "Warn");
    EXPECT_EQ(event.params.size(), 3u);

    // No ID: a body error.
    EXPECT_EQ(event.initFromString("<Event Source=\"s\" >"), FC_BODY_ERROR);

    std::string value = "untouched";
    EXPECT_EQ(event.getParam("missing", value), 0);
    EXPECT_EQ(value, "untouched");
    EXPECT_EQ(event.getParam("c", value), 1);
    EXPECT_EQ(value, "9");
    event.removeParam("c");
    event.removeParam("never there");
    EXPECT_EQ(event.params.size(), 2u);
    event.cleanUpRelations();
    EXPECT_TRUE(event.params.empty());
}

TEST(MessageCommand, ExactLayoutAndParsing) {
    MessageCommand command;
    std::string out;
    command.toString(out);
    EXPECT_EQ(out, "<Command ID=\"NULL\" >\n</Command>\n");

    command.setId("Play");
    command.addParam("RowID", "HEVC");
    command.addParam("Mode", "x");
    command.toString(out);
    EXPECT_EQ(out,
              "<Command ID=\"Play\" >\n"
              "\t<Parameter Name=\"Mode\" Value=\"x\" />\n"
              "\t<Parameter Name=\"RowID\" Value=\"HEVC\" />\n"
              "</Command>\n");

    MessageCommand back;
    ASSERT_EQ(back.initFromString("\t" + out), FC_OK);
    EXPECT_EQ(back.getId(), "Play");
    std::string again;
    back.toString(again);
    EXPECT_EQ(again, out);

    // Second parameter without Value: skipped, the record still reads OK.
    MessageCommand partial;
    ASSERT_EQ(partial.initFromString("<Command ID=\"Stop\" >\n\t<Parameter Name=\"RowID\" Value=\"H.264\" />\n"
                                     "\t<Parameter Name=\"Force\" />\n</Command>\n"),
              FC_OK);
    EXPECT_EQ(partial.params.size(), 1u);
    EXPECT_EQ(partial.params.at("RowID"), "H.264");

    // Merge on re-parse; a missing ID is a body error that leaves the id alone.
    ASSERT_EQ(partial.initFromString("<Command ID=\"Play\" ><Parameter Name=\"Force\" Value=\"1\" /></Command>"),
              FC_OK);
    EXPECT_EQ(partial.params.size(), 2u);
    EXPECT_EQ(partial.initFromString("<Command >"), FC_BODY_ERROR);
    EXPECT_EQ(partial.getId(), "Play");
    partial.clearParams();
    EXPECT_TRUE(partial.params.empty());
}
