// Whatever arrives on "/tmp/sockChan", the channel manager keeps answering:
// malformed, truncated and oversized datagrams, from a sender that never
// reads a reply.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <chrono>
#include <cstring>
#include <random>

#include "DaemonProcess.h"

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
        if (sendto(sock, datagram.data(), datagram.size(), 0, reinterpret_cast<sockaddr*>(&target), sizeof target) >=
            0)
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
