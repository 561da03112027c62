#include <gtest/gtest.h>

#include "datacom/Fcodes.h"
#include "datacom/TagText.h"

using namespace datacom;

TEST(Fcodes, TextsAndMerging) {
    // One bit's text stands for the table; a merged code names each of its bits.
    EXPECT_EQ(fcodeText(FC_OK), "OK");
    EXPECT_EQ(fcodeText(FC_LOS), "LOS");
    Fcodes merged = FC_OK;
    merged |= FC_NO_SUCH_NAME;
    merged |= FC_BAD_VALUE;
    EXPECT_EQ(merged, 0x10028u);
    EXPECT_FALSE(isOk(merged));
    EXPECT_EQ(fcodeText(merged), "No Such Name, Bad Value");
    EXPECT_EQ(fcodeText(static_cast<Fcodes>(0)), "Unknown Fcode 0x0");
    EXPECT_EQ(fcodeText(static_cast<Fcodes>(0x20002)), "Unknown Fcode 0x20002");
}

TEST(TagText, GetPropertyValue) {
    std::string value = "untouched";
    // Plain substring key: "ID" matches the tail of "RowID" when that comes first.
    const std::string text = "<Item RowID=\"7\" ID=\"3\" Value=\"\" Name=\"open />";
    EXPECT_EQ(getPropertyValue(text, 0, "ID", value), 14);
    EXPECT_EQ(value, "7");
    EXPECT_EQ(getPropertyValue(text, 14, "ID", value), 21);
    EXPECT_EQ(value, "3");
    // An empty value: the index of its closing quote and an empty text.
    EXPECT_EQ(getPropertyValue(text, 0, "Value", value), 30);
    EXPECT_EQ(value, "");
    // No closing quote, or no key: -1 and the value is left alone.
    value = "kept";
    EXPECT_EQ(getPropertyValue(text, 0, "Name", value), -1);
    EXPECT_EQ(getPropertyValue(text, 0, "Missing", value), -1);
    EXPECT_EQ(getPropertyValue(text, 25, "ID", value), -1);
    EXPECT_EQ(value, "kept");
}

TEST(TagText, GetSegmentWalksSiblingsWithoutNesting) {
    const std::string list =
        "<Command ID=\"x\" >\n\t<Parameter Name=\"a\" Value=\"1\" />\n"
        "\t<Parameter Name=\"b\" Value=\"2\"></Parameter>\n</Command>\n";
    std::string segment;
    int next = getSegment(list, 0, "Parameter", segment);
    EXPECT_EQ(segment, "<Parameter Name=\"a\" Value=\"1\" />");
    EXPECT_EQ(next, static_cast<int>(list.find("/>") + 2));
    next = getSegment(list, next, "Parameter", segment);
    EXPECT_EQ(segment, "<Parameter Name=\"b\" Value=\"2\"></Parameter>");
    EXPECT_EQ(getSegment(list, next, "Parameter", segment), -1);

    // The tag must be followed by a blank or '>': "Parameters" is not "Parameter".
    EXPECT_EQ(getSegment("<Parameters x=\"1\"></Parameters>", 0, "Parameter", segment), -1);
    // A bare opening tag is found when no "<tag " exists.
    EXPECT_EQ(getSegment("<BODY>abc</BODY>", 0, "BODY", segment), 16);
    EXPECT_EQ(segment, "<BODY>abc</BODY>");
    // Of several bare opening tags, the first.
    EXPECT_EQ(getSegment("<A>1</A><A>2</A>", 0, "A", segment), 8);
    EXPECT_EQ(segment, "<A>1</A>");
    // The first closing tag ends the element, even one inside a value.
    const std::string body = "<BODY><Item Value=\"</BODY>\" /></BODY>";
    EXPECT_EQ(getSegment(body, 0, "BODY", segment), 26);
    EXPECT_EQ(segment, "<BODY><Item Value=\"</BODY>");
    // Missing '>' or missing closing tag.
    EXPECT_EQ(getSegment("<Row ID=\"1\"", 0, "Row", segment), -1);
    EXPECT_EQ(getSegment("<Row ID=\"1\"><Item/>", 0, "Row", segment), -1);
}

TEST(TagText, GetTokenTreatsWhitespaceDelimitersAlike) {
    std::string token;
    // Start "\t" accepts a blank, end "\n" accepts a tab.
    EXPECT_EQ(getToken("cmd arg1\targ2", 0, "\t", "\n", token), 8);
    EXPECT_EQ(token, "arg1");
    EXPECT_EQ(getToken("key=value;rest", 0, "=", ";", token), 9);
    EXPECT_EQ(token, "value");
    EXPECT_EQ(getToken("a b", 0, " ", "\n", token), -1);
    EXPECT_EQ(getToken("nothing", 0, "=", ";", token), -1);
    EXPECT_EQ(getToken("x=1;", 5, "=", ";", token), -1);
}

TEST(TagText, NumberConversionsAreTheSameOnEveryTarget) {
    EXPECT_EQ(tagToInt("42abc"), 42);
    EXPECT_EQ(tagToInt("-7"), -7);
    EXPECT_EQ(tagToInt("abc"), 0);
    EXPECT_EQ(tagToInt("99999999999"), 2147483647);
    EXPECT_EQ(tagToInt("-99999999999"), -2147483647 - 1);
    EXPECT_EQ(tagToHex("10040"), 0x10040u);
    EXPECT_EQ(tagToHex("1ffffffff"), 0xffffffffu);
    EXPECT_EQ(tagToHex("zz"), 0u);
}
