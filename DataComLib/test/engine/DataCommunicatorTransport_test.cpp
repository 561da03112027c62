#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <sys/wait.h>

#include <cstdlib>
#include <thread>

#include "datacom/SysmgtRoot.h"
#include "datacom/WireConstants.h"
#include "engine/EngineTestSupport.h"

using namespace datacom;

namespace {

struct ReadCase {
    const char* name;
    std::string datagram;
    Fcodes expected;
    std::string expectedBody;  // "untouched" when the body must stay as it was
};

TEST(DataCommunicatorTransport, ReadMsgParsesOrRefusesEachDatagram) {
    DataCommunicator engine;
    engine.init(nullptr, "/tmp/sockA", "/tmp/sockASend", "tA");
    RawPeer peer("/tmp/sockPeer");
    const std::string ackHeader = "<HEADER ID=\"5\" Type=\"ACK\" Fcode=\"10008\" Size=\"";
    std::string nearLimit = ackHeader + "0\" >\n</HEADER>\n";
    nearLimit.resize(wire::MAX_DATAGRAM - 1, ' ');
    std::string atLimit = nearLimit + " ";
    const ReadCase cases[] = {
        {"size 0 leaves body", ackHeader + "0\" >\n</HEADER>\n<BODY>x</BODY>", FC_OK, "untouched"},
        {"body element read whole", ackHeader + "8\" >\n</HEADER>\n<BODY>\n\tabc\n</BODY>junk", FC_OK,
         "<BODY>\n\tabc\n</BODY>"},
        {"positive size without body", ackHeader + "3\" >\n</HEADER>\n", FC_BODY_ERROR, "untouched"},
        {"no header", "<BODY>x</BODY>", FC_HEADER_ERROR, "untouched"},
        {"header without Type", "<HEADER ID=\"5\" Size=\"0\" >\n</HEADER>\n", FC_HEADER_ERROR, "untouched"},
        {"one byte under the limit", nearLimit, FC_OK, "untouched"},
        {"exactly the limit", atLimit, FC_COMM_ERROR, "untouched"},
    };
    for (const ReadCase& row : cases) {
        ASSERT_TRUE(peer.sendTo("/tmp/sockA", row.datagram)) << row.name;
        MessageHeader header;
        std::string body = "untouched";
        LocalAddress from;
        Fcodes code = engine.readMsg(engine.getReceiveSocket(), header, body, from.get(), &from.length(), 2);
        EXPECT_EQ(code, row.expected) << row.name;
        EXPECT_EQ(body, row.expectedBody) << row.name;
        if (code == FC_OK) {
            EXPECT_EQ(header.Fcode, FC_NO_SUCH_NAME) << row.name;
            EXPECT_EQ(from.path(), peer.hostPath()) << row.name;
        }
    }
}

TEST(DataCommunicatorTransport, ReadMsgTimeOutConvention) {
    DataCommunicator engine;
    engine.init(nullptr, "/tmp/sockA", "/tmp/sockASend", "tA");
    MessageHeader header;
    std::string body;
    LocalAddress from;

    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(engine.readMsg(engine.getReceiveSocket(), header, body, from.get(), &from.length(), wire::NO_WAIT),
              FC_COMM_ERROR);
    EXPECT_LT(secondsSince(start), 0.5) << "polling must not wait";

    start = std::chrono::steady_clock::now();
    EXPECT_EQ(engine.readMsg(engine.getReceiveSocket(), header, body, from.get(), &from.length(), 1), FC_COMM_ERROR);
    EXPECT_GE(secondsSince(start), 0.9);

    // 0 waits until a message comes, however long that is.
    RawPeer peer("/tmp/sockPeer");
    std::thread late([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        peer.sendTo("/tmp/sockA", wireHeader(9, "EVENT", FC_OK, 0));
    });
    start = std::chrono::steady_clock::now();
    EXPECT_EQ(engine.readMsg(engine.getReceiveSocket(), header, body, from.get(), &from.length(), 0), FC_OK);
    EXPECT_GE(secondsSince(start), 0.25);
    EXPECT_EQ(header.ID, 9);
    late.join();
}

TEST(DataCommunicatorTransport, SendMessageOneDatagramAndRetriesOnFullPeer) {
    DataCommunicator engine;
    engine.init(nullptr, "/tmp/sockA", "/tmp/sockASend", "tA");
    RawPeer peer("/tmp/sockPeer");
    LocalAddress to;
    to.setLogicalPath("/tmp/sockPeer");

    MessageHeader header;
    header.ID = 7;
    header.Type = "COMMAND";
    header.Size = 4;  // not recomputed by sendMessage
    ASSERT_EQ(engine.sendMessage(engine.getSendSocket(), header, "body", to.get(), to.length(), 1, 1), FC_OK);
    std::string got;
    ASSERT_TRUE(peer.receive(got));
    EXPECT_EQ(got, "<HEADER ID=\"7\" Type=\"COMMAND\" Size=\"4\" >\n</HEADER>\nbody");

    // A peer that is gone: no retry, no sleep.
    LocalAddress gone;
    gone.setLogicalPath("/tmp/sockGone");
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(engine.sendMessage(engine.getSendSocket(), header, "", gone.get(), gone.length(), 10, 3), FC_COMM_ERROR);
    EXPECT_LT(secondsSince(start), 0.5);

    // A peer whose queue is full, from a socket whose send time-out is 100 ms
    // (the engine's own is 1 s): each try waits that long for room.
    RawPeer sender("/tmp/sockSender");
    const timeval shortWait{0, 100000};
    ASSERT_EQ(setsockopt(sender.fd, SOL_SOCKET, SO_SNDTIMEO, &shortWait, sizeof shortWait), 0);
    while (isOk(engine.sendMessage(sender.fd, header, "x", to.get(), to.length(), wire::NO_WAIT, 1))) {
    }
    // NO_WAIT: three tries, no sleep between them.
    start = std::chrono::steady_clock::now();
    EXPECT_EQ(engine.sendMessage(sender.fd, header, "x", to.get(), to.length(), wire::NO_WAIT, 3), FC_COMM_ERROR);
    EXPECT_GE(secondsSince(start), 0.25) << "each try waits for room";
    EXPECT_LT(secondsSince(start), 0.9) << "no sleep between tries";
    // A delay of 1 s: the first try times out, the peer drains its queue
    // meanwhile, and the second try, after the delay, gets through.
    std::thread drain([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(400));
        std::string queued;
        while (peer.receive(queued, 0)) {
        }
    });
    start = std::chrono::steady_clock::now();
    EXPECT_EQ(engine.sendMessage(sender.fd, header, "late", to.get(), to.length(), 1, 2), FC_OK);
    EXPECT_GE(secondsSince(start), 1.0) << "the delay was not spent";
    drain.join();
}

TEST(DataCommunicatorTransport, InitReplacesStaleFilesAndOpensSocketsToAll) {
    const std::string stale = sysmgtPath("/tmp/sockA");
    unlink(stale.c_str());
    FILE* file = fopen(stale.c_str(), "w");
    ASSERT_NE(file, nullptr);
    fclose(file);
    DataCommunicator engine;
    engine.init(nullptr, "/tmp/sockA", "/tmp/sockASend", "tA");
    for (const char* path : {"/tmp/sockA", "/tmp/sockASend"}) {
        struct stat info {};
        ASSERT_EQ(stat(sysmgtPath(path).c_str(), &info), 0) << path;
        EXPECT_TRUE(S_ISSOCK(info.st_mode)) << path;
        EXPECT_EQ(info.st_mode & 0777, 0777u) << path;
    }
    EXPECT_EQ(engine.getSockName(), "/tmp/sockA");  // the logical path is kept
}

TEST(DataCommunicatorTransport, InitEndsTheProcessWithStatusZeroWithoutItsSockets) {
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        setenv("SYSMGT_ROOT", "/nonexistent-sysmgt-root", 1);
        DataCommunicator engine;
        engine.init(nullptr, "/tmp/sockA", "/tmp/sockASend", "tA");
        _exit(3);  // init returned: wrong
    }
    int status = -1;
    for (int waited = 0; waited < 500 && waitpid(child, &status, WNOHANG) == 0; ++waited)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    ASSERT_TRUE(WIFEXITED(status)) << "child did not end; status " << status;
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST(DataCommunicatorTransport, ReadlineStopsAtNewline) {
    DataCommunicator engine;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    ASSERT_EQ(write(ends[1], "abc\nde", 6), 6);
    std::string line;
    EXPECT_EQ(engine.readline(ends[0], line, 1), FC_OK);
    EXPECT_EQ(line, "abc");
    close(ends[1]);
    line.clear();
    EXPECT_EQ(engine.readline(ends[0], line, 1), FC_COMM_ERROR) << "end of stream before a newline";
    EXPECT_EQ(line, "de");
    close(ends[0]);
}

}  // namespace
