// Whatever arrives on "/tmp/sockChan", the channel manager keeps answering:
// malformed, truncated and oversized datagrams, from a sender that never
// reads a reply, and commands naming files that are no dataset files.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <random>

#include "DaemonProcess.h"

using namespace datacom;

namespace {

// The text of a header, as the engine writes it.
std::string header(const char* type, int id, long size) {
    return "<HEADER ID=\"" + std::to_string(id) + "\" Type=\"" + type + "\" Size=\"" + std::to_string(size) +
           "\" >\n</HEADER>\n";
}

// Datagram number `n` of the run: one kind of damage after another.
std::string malformed(int n, std::mt19937& random) {
    const std::string command =
        "<BODY>\n\t<Command ID=\"Set DVI mode\" >\n\t\t<Parameter Name=\"DVI_mode\" Value=\"1\" />\n\t</Command>\n"
        "</BODY>\n";
    switch (n % 10) {
        case 0: {  // noise
            std::string noise(1 + random() % 512, '\0');
            for (char& c : noise)
                c = static_cast<char>(random());
            return noise;
        }
        case 1:  // a header announcing a body that is not there
            return header("COMMAND", n, 500);
        case 2:  // a command cut short anywhere
            return (header("COMMAND", n, static_cast<long>(command.size())) + command)
                .substr(0, random() % (command.size() + 40));
        case 3:  // a body without its command
            return header("COMMAND", n, 20) + "<BODY>\n</BODY>\n";
        case 4:  // an event without an ID
            return header("EVENT", n, 40) + "<BODY><Event Source=\"x\" /></BODY>";
        case 5:  // an unknown message type
            return header("WHATEVER", n, static_cast<long>(command.size())) + command;
        case 6:  // a data request for nothing that exists
            return header("GET", n, 60) + "<BODY><DataSet ID=\"No\" ><Component Name=\"No\" /></DataSet></BODY>";
        case 7:  // an absurd size and a negative ID
            return header("COMMAND", -n, 2147483647L) + command;
        case 8:  // a command the worker refuses
            return header("COMMAND", n, 80) + "<BODY><Command ID=\"set dvi mode\" ></Command></BODY>";
        default:  // oversized: the transport's limit and beyond, now and then
            return n % 500 == 9 ? std::string(70000 + random() % 30000, 'A') : header("ACK", n, 0);
    }
}

}  // namespace

TEST(ChannelManagerRobustness, TenThousandMalformedDatagramsLeaveItAnswering) {
    DaemonSession session;
    ASSERT_TRUE(session.ready()) << session.everything();

    int sock = socket(AF_UNIX, SOCK_DGRAM, 0);
    ASSERT_GE(sock, 0);
    const int bigBuffer = 256 * 1024;
    setsockopt(sock, SOL_SOCKET, SO_SNDBUF, &bigBuffer, sizeof bigBuffer);
    timeval limit{5, 0};
    setsockopt(sock, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof limit);
    sockaddr_un target{};
    target.sun_family = AF_UNIX;
    const std::string path = sysmgtPath("/tmp/sockChan");
    ASSERT_LT(path.size(), sizeof target.sun_path);
    std::strcpy(target.sun_path, path.c_str());

    std::mt19937 random(20261123);
    int sent = 0;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(240);
    for (int n = 0; n < 10000 && std::chrono::steady_clock::now() < deadline; ++n) {
        const std::string datagram = malformed(n, random);
        if (sendto(sock, datagram.data(), datagram.size(), 0, reinterpret_cast<sockaddr*>(&target), sizeof target) >= 0)
            ++sent;
    }
    close(sock);
    // Everything but the oversized ones gets through a socket that is served.
    EXPECT_GE(sent, 9900);

    ToolRun answer = chanctl("--timeout 60 command 'Set DVI mode' DVI_mode=1");
    EXPECT_EQ(0, answer.status) << answer.output;
    EXPECT_TRUE(session.daemon.running());
    EXPECT_TRUE(session.waitLog("doExecute: NOT SUPPORTED command=set dvi mode"));
    EXPECT_EQ(std::string::npos, session.log().find("FATAL"));
    EXPECT_EQ(std::string::npos, session.daemonOutput().find("FATAL"));
}

// One command each that could hang the server thread, exhaust memory or
// replace what is not a file: refused at once with its code and log line, and
// the next command is answered.
TEST(ChannelManagerRobustness, OneBadCommandLeavesItAnswering) {
    DaemonSession session;
    ASSERT_TRUE(session.ready()) << session.everything();
    ASSERT_EQ(0, symlink("/dev/zero", sysmgtPath("/tmp/zero.json").c_str()));
    ASSERT_EQ(0, mkfifo(sysmgtPath("/tmp/pipe.json").c_str(), 0600));  // no writer
    ASSERT_EQ(0, mkdir(sysmgtPath("/tmp/dir.json").c_str(), 0700));
    ASSERT_EQ(0, std::system(("truncate -s 600M " + sysmgtPath("/tmp/huge.json")).c_str()));  // sparse
    const struct {
        const char* args;
        int status;
        const char* output;   // part of what chanctl prints
        const char* logLine;  // "" for none
    } rows[] = {
        {"--timeout 60 command LOAD_CHANNELS File=Default", 0, "", "loadChannels: Loading"},
        {"command LOAD_CHANNELS File=/tmp/zero.json", 1, "Bad Value", "loadDataSet: Not a regular file=/tmp/zero.json"},
        {"command LOAD_CHANNELS File=/tmp/pipe.json", 1, "Bad Value", "loadDataSet: Not a regular file=/tmp/pipe.json"},
        {"command LOAD_CHANNELS File=/tmp/sockDbg", 1, "Bad Value", "loadDataSet: Not a regular file=/tmp/sockDbg"},
        {"command LOAD_CHANNELS File=/tmp/dir.json", 1, "Bad Value", "loadDataSet: Not a regular file=/tmp/dir.json"},
        {"command LOAD_CHANNELS File=/tmp/huge.json", 1, "Bad Value", "loadDataSet: File too large=/tmp/huge.json"},
        {"--timeout 60 command LOAD_CHANNELS File=Default", 0, "", ""},
        {"command STORE_CHANNELS File=/tmp/pipe.json", 1, "Bad Value",
         "storeDataSet: Not a regular file=/tmp/pipe.json"},
        {"command STORE_CHANNELS File=/tmp/zero.json", 1, "Bad Value",
         "storeDataSet: Not a regular file=/tmp/zero.json"},
        {"command STORE_CHANNELS File=/tmp/dir.json", 1, "Bad Value", "storeDataSet: Not a regular file=/tmp/dir.json"},
    };
    for (const auto& row : rows) {
        ToolRun run = chanctl(row.args);
        EXPECT_EQ(row.status, run.status) << row.args << ": " << run.output;
        EXPECT_NE(std::string::npos, run.output.find(row.output)) << row.args << ": " << run.output;
        if (*row.logLine) {
            EXPECT_TRUE(session.waitLog(row.logLine)) << row.args;
        }
        ToolRun next = chanctl("command 'Set DVI mode' DVI_mode=1");
        EXPECT_EQ(0, next.status) << "after " << row.args << ": " << next.output;
    }
    struct stat info {};
    EXPECT_TRUE(lstat(sysmgtPath("/tmp/zero.json").c_str(), &info) == 0 && S_ISLNK(info.st_mode));
    EXPECT_TRUE(stat(sysmgtPath("/tmp/pipe.json").c_str(), &info) == 0 && S_ISFIFO(info.st_mode));
    EXPECT_TRUE(session.daemon.running());
}
