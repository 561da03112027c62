#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

#include "FixedClock.h"
#include "LogCapture.h"
#include "TestFiles.h"
#include "datacom/DbgPrintClient.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

namespace {

// A named pipe under the test root with its read end open, so that a client's
// blocking open of the write end returns at once.
class FifoReader {
public:
    explicit FifoReader(const std::string& logicalPath) {
        const std::string path = sysmgtPath(logicalPath);
        unlink(path.c_str());
        EXPECT_EQ(mkfifo(path.c_str(), 0666), 0);
        fd = open(path.c_str(), O_RDONLY | O_NONBLOCK);
        EXPECT_GE(fd, 0);
    }
    ~FifoReader() { closeReader(); }
    void closeReader() {
        if (fd >= 0)
            close(fd);
        fd = -1;
    }
    // Whatever arrives within a short bound.
    std::string readSome() {
        std::string text;
        pollfd waitFor{fd, POLLIN, 0};
        if (poll(&waitFor, 1, 2000) > 0) {
            char buf[4096];
            ssize_t got = read(fd, buf, sizeof buf);
            if (got > 0)
                text.assign(buf, static_cast<size_t>(got));
        }
        return text;
    }
    int fd = -1;
};

// True when `text` is a log prefix of the given severity and task name:
// severity, "dd/mm/yy HH:MM:SS.mmm", a blank, the task name and "(pid)".
bool isPrefix(const std::string& text, const std::string& severity, const std::string& task) {
    const std::string shape = "dd/dd/dd dd:dd:dd.ddd ";
    if (text.compare(0, 5, severity) != 0 || text.size() < 5 + shape.size())
        return false;
    for (size_t i = 0; i < shape.size(); ++i) {
        char c = text[5 + i];
        if (shape[i] == 'd' ? !isdigit(static_cast<unsigned char>(c)) : c != shape[i])
            return false;
    }
    return text.substr(5 + shape.size()) == task + "(" + std::to_string(getpid()) + ")";
}

int evaluated = 0;
int countEvaluation() {
    return ++evaluated;
}

}  // namespace

TEST(DbgPrintClient, PrefixLayoutTaskNamesAndFifoWrite) {
    FifoReader reader("/tmp/testDbgFifo");
    DbgPrintClient client("/tmp/testDbgFifo");
    ASSERT_GE(client.sink(), 0);
    EXPECT_NE(fcntl(client.sink(), F_GETFL) & O_NONBLOCK, 0);

    client.setTaskName(pthread_self(), "tChMngr");
    client.setTaskName(pthread_self(), "tSecond");  // first registration wins
    std::ostringstream line;
    client.fillInOss(DBG_ERROR, &line);
    line << "file.cpp:12:hello\n";
    client.doReport(&line);

    const std::string got = reader.readSome();
    const std::string message = "file.cpp:12:hello\n";
    ASSERT_GT(got.size(), message.size()) << got;
    EXPECT_EQ(got.substr(got.size() - message.size()), message);
    EXPECT_TRUE(isPrefix(got.substr(0, got.size() - message.size()), "ERROR", "tChMngr")) << got;

    // A thread that never registered shows the fallback name; severities are padded to five.
    std::string other;
    std::thread([&] {
        std::ostringstream oss;
        client.fillInOss(DBG_SYS, &oss);
        other = oss.str();
    }).join();
    EXPECT_TRUE(isPrefix(other, "SYS  ", "tUnknwn")) << other;
    const std::pair<int, const char*> severities[] = {{DBG_INFO, "INFO "}, {DBG_WARN, "WARN "}, {DBG_FATAL, "FATAL"}};
    for (const auto& severity : severities) {
        std::ostringstream oss;
        client.fillInOss(severity.first, &oss);
        EXPECT_TRUE(isPrefix(oss.str(), severity.second, "tChMngr")) << oss.str();
    }

    // The stamp of a moment past 2038 (a 32-bit time_t has wrapped by then).
    FixedClock clock;
    std::ostringstream late;
    client.fillInOss(DBG_WARN, &late);
    EXPECT_EQ(late.str(), "WARN 29/02/40 12:34:56.789 tChMngr(" + std::to_string(getpid()) + ")");
}

TEST(DbgPrintClient, FullPipeDropsLinesAndAVanishedReaderIsHarmless) {
    FifoReader reader("/tmp/testDbgFull");
    DbgPrintClient client("/tmp/testDbgFull");
    ASSERT_GE(client.sink(), 0);
    const std::string payload(200, 'x');
    // Far more than a pipe holds; with a blocking descriptor this would hang.
    for (int i = 0; i < 2000; ++i) {
        std::ostringstream line;
        line << payload << '\n';
        client.doReport(&line);
    }
    EXPECT_EQ(reader.readSome().substr(0, 200), payload);

    reader.closeReader();  // the collector goes away: no SIGPIPE death, nothing reported
    std::ostringstream line;
    line << "after the reader left\n";
    client.doReport(&line);
}

TEST(DbgPrintClient, MissingOrPlantedFifoIsRefusedAndLoggingStaysHarmless) {
    // In the shared /tmp a neighbour may plant the name as a link (ELOOP) or
    // a file (ENXIO) of ours: refused as a missing pipe is, nothing written.
    writeText("/tmp/victim", "kept");
    ASSERT_EQ(0, symlink(sysmgtPath("/tmp/victim").c_str(), sysmgtPath("/tmp/linkedFifo").c_str()));
    ASSERT_EQ(0, link(sysmgtPath("/tmp/victim").c_str(), sysmgtPath("/tmp/fileFifo").c_str()));
    for (const auto& row :
         {std::make_pair("/tmp/noSuchFifo", ENOENT), {"/tmp/linkedFifo", ELOOP}, {"/tmp/fileFifo", ENXIO}}) {
        testing::internal::CaptureStdout();
        DbgPrintClient client(row.first);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), std::string("DbgPrintClient: Couldn't open a fifo ") +
                                                              row.first + " errno=" + std::to_string(row.second) +
                                                              "\n");
        EXPECT_EQ(client.sink(), -1) << row.first;
        std::ostringstream line;
        client.fillInOss(DBG_ERROR, &line);
        line << "lost\n";
        client.doReport(&line);
    }
    EXPECT_EQ("kept", readText("/tmp/victim"));
}

TEST(DbgPrintClient, LevelFiltersBeforeFormatting) {
    LogCapture capture;
    const int32_t savedLevel = gDbgLevel;

    gDbgLevel = 3;
    evaluated = 0;
    DBG(DBG_INFO) << "info " << countEvaluation();
    DBG(DBG_WARN) << "warn " << countEvaluation();
    DBG(DBG_ERROR) << "error " << countEvaluation();
    EXPECT_EQ(evaluated, 0);  // filtered lines are not even formatted
    DBG(DBG_FATAL) << "fatal " << countEvaluation();
    DBG(DBG_SYS) << "sys " << countEvaluation();
    EXPECT_EQ(evaluated, 2);

    gDbgLevel = 5;
    DBG(DBG_SYS) << "silenced " << countEvaluation();
    EXPECT_EQ(evaluated, 2);
    gDbgLevel = savedLevel;

    const std::string text = capture.take();
    const std::string pid = "(" + std::to_string(getpid()) + ")";
    const size_t firstEnd = text.find('\n');
    ASSERT_NE(firstEnd, std::string::npos) << text;
    const std::string first = text.substr(0, firstEnd + 1), second = text.substr(firstEnd + 1);
    EXPECT_EQ(first.substr(0, 5), "FATAL");
    EXPECT_EQ(second.substr(0, 5), "SYS  ");
    const std::string fileAt = pid + __FILE__ + ":";
    for (const std::string* line : {&first, &second}) {
        const size_t at = line->find(fileAt);
        ASSERT_NE(at, std::string::npos) << *line;
        const size_t lineNumberEnd = line->find(':', at + fileAt.size());
        ASSERT_NE(lineNumberEnd, std::string::npos) << *line;
        EXPECT_GT(std::stoi(line->substr(at + fileAt.size())), 0) << *line;
        EXPECT_EQ(line->substr(lineNumberEnd + 1), line == &first ? "fatal 1\n" : "sys 2\n");
    }
}
