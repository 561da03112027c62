#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "LogFilter.h"
#include "ToolCommand.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

TEST(LogFilter, SplitsChunksAndKeepsContinuationsWithTheirLine) {
    LogFilter filter(DBG_WARN);
    // A line split across reads, a filtered line with a continuation, a kept one with a continuation.
    auto lines = filter.feed("WARN 01/01/26 00:00:00.000 t(1)a.cpp:1:first par");
    EXPECT_TRUE(lines.empty());
    lines = filter.feed("t\nINFO 01/01/26 00:00:00.000 t(1)a.cpp:2:hidden in:\n<HEADER ID=\"1\"\n");
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0], "WARN 01/01/26 00:00:00.000 t(1)a.cpp:1:first part\n");
    lines = filter.feed("ERROR01/01/26 00:00:00.000 t(1)a.cpp:3:shown in:\n<BODY>\nSYS  x\npartial");
    std::vector<std::string> expected = {"ERROR01/01/26 00:00:00.000 t(1)a.cpp:3:shown in:\n", "<BODY>\n", "SYS  x\n"};
    EXPECT_EQ(lines, expected);
    EXPECT_EQ(filter.flush(), "partial");  // continues the SYS line, which passed
    EXPECT_EQ(filter.flush(), "");

    const std::pair<const char*, int> severities[] = {{"INFO", 0}, {"warn", 1}, {"Error", 2}, {"FATAL", 3},
                                                      {"sys", 4},  {"3", 3},    {"5", -1},    {"LOUD", -1}};
    for (const auto& row : severities)
        EXPECT_EQ(LogFilter::parseSeverity(row.first), row.second) << row.first;
}

TEST(Dbglog, CreatesThePipeAndPrintsLinesAtOrAboveTheSeverity) {
    FILE* reader = popen((toolCommand("dbglog") + " --severity WARN --count 1 --timeout 10").c_str(), "r");
    ASSERT_NE(reader, nullptr);
    // Bounded wait for the reader to have made its pipe.
    const std::string pipePath = sysmgtPath("/tmp/sockDbg");
    struct stat made {};
    for (int i = 0; i < 500 && stat(pipePath.c_str(), &made) != 0; ++i)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_TRUE(S_ISFIFO(made.st_mode));

    DbgPrintClient client("/tmp/sockDbg");
    ASSERT_GE(client.sink(), 0);
    for (int severity : {DBG_INFO, DBG_WARN}) {
        std::ostringstream line;
        client.fillInOss(severity, &line);
        line << "test.cpp:1:severity " << severity << "\n";
        client.doReport(&line);
    }
    char buf[512] = {};
    ASSERT_NE(fgets(buf, sizeof buf, reader), nullptr);
    const std::string printed = buf;
    EXPECT_EQ(printed.substr(0, 5), "WARN ");
    EXPECT_EQ(printed.substr(printed.size() - 22), "test.cpp:1:severity 1\n");
    EXPECT_EQ(fgets(buf, sizeof buf, reader), nullptr);  // --count 1: it stops
    EXPECT_EQ(pclose(reader), 0);
}
