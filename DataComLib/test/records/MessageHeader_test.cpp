#include <gtest/gtest.h>

#include "datacom/MessageHeader.h"

using namespace datacom;

TEST(MessageHeader, ExactTextCarriesFcodeOnlyForRepliesAndEvents) {
    struct Row {
        const char* type;
        const char* expected;
    } rows[] = {
        {"COMMAND", "<HEADER ID=\"100\" Type=\"COMMAND\" Size=\"12\" >\n</HEADER>\n"},
        {"GET", "<HEADER ID=\"100\" Type=\"GET\" Size=\"12\" >\n</HEADER>\n"},
        {"SET", "<HEADER ID=\"100\" Type=\"SET\" Size=\"12\" >\n</HEADER>\n"},
        {"NO_REPLY", "<HEADER ID=\"100\" Type=\"NO_REPLY\" Size=\"12\" >\n</HEADER>\n"},
        {"ACK", "<HEADER ID=\"100\" Type=\"ACK\" Fcode=\"10040\" Size=\"12\" >\n</HEADER>\n"},
        {"NACK", "<HEADER ID=\"100\" Type=\"NACK\" Fcode=\"10040\" Size=\"12\" >\n</HEADER>\n"},
        {"RESPONSE", "<HEADER ID=\"100\" Type=\"RESPONSE\" Fcode=\"10040\" Size=\"12\" >\n</HEADER>\n"},
        {"EVENT", "<HEADER ID=\"100\" Type=\"EVENT\" Fcode=\"10040\" Size=\"12\" >\n</HEADER>\n"},
        {"ack", "<HEADER ID=\"100\" Type=\"ack\" Size=\"12\" >\n</HEADER>\n"},
    };
    for (const Row& row : rows) {
        MessageHeader header;
        header.ID = 100;
        header.Type = row.type;
        header.Fcode = FC_COMM_ERROR;
        header.Size = 12;
        std::string out = "prefix:";
        header.toString(out);  // appends
        EXPECT_EQ(out, std::string("prefix:") + row.expected) << row.type;
    }

    MessageHeader lower;
    lower.Type = "NACK";
    lower.Fcode = static_cast<Fcodes>(0x1abcd);
    lower.ID = -5;
    std::string out;
    lower.toString(out);
    EXPECT_EQ(out, "<HEADER ID=\"-5\" Type=\"NACK\" Fcode=\"1abcd\" Size=\"0\" >\n</HEADER>\n");
}

TEST(MessageHeader, ParsesBackAndKeepsFcodeWhenAbsent) {
    MessageHeader sent;
    sent.ID = 77;
    sent.Type = "RESPONSE";
    sent.Fcode = FC_NO_SUCH_NAME;
    sent.Size = 321;
    std::string text;
    sent.toString(text);

    MessageHeader read;
    ASSERT_EQ(read.initFromString(text), FC_OK);
    EXPECT_EQ(read.ID, 77);
    EXPECT_EQ(read.Type, "RESPONSE");
    EXPECT_EQ(read.Fcode, FC_NO_SUCH_NAME);
    EXPECT_EQ(read.Size, 321);

    // No Fcode attribute: the previous value stays.
    ASSERT_EQ(read.initFromString("<HEADER ID=\"3\" Type=\"COMMAND\" Size=\"0\" >\n</HEADER>\n"), FC_OK);
    EXPECT_EQ(read.Fcode, FC_NO_SUCH_NAME);
    MessageHeader fresh;
    ASSERT_EQ(fresh.initFromString("<HEADER ID=\"3x\" Type=\"COMMAND\" Size=\"junk\" >"), FC_OK);
    EXPECT_EQ(fresh.Fcode, FC_OK);
    EXPECT_EQ(fresh.ID, 3);
    EXPECT_EQ(fresh.Size, 0);
}

TEST(MessageHeader, MissingRequiredAttributeIsAHeaderError) {
    MessageHeader header;
    EXPECT_EQ(header.initFromString("<HEADER Type=\"ACK\" Size=\"0\" >"), FC_HEADER_ERROR);
    EXPECT_EQ(header.initFromString("<HEADER ID=\"9\" Size=\"0\" >"), FC_HEADER_ERROR);
    EXPECT_EQ(header.ID, 9);  // fields read before the failure keep their values
    EXPECT_EQ(header.initFromString("<HEADER ID=\"10\" Type=\"ACK\" Fcode=\"10008\" >"), FC_HEADER_ERROR);
    EXPECT_EQ(header.ID, 10);
    EXPECT_EQ(header.Type, "ACK");
    EXPECT_EQ(header.Fcode, FC_NO_SUCH_NAME);
    EXPECT_EQ(header.initFromString(""), FC_HEADER_ERROR);
}
