// The files and the readiness message the daemon's entry point writes.
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>

#include "TestFiles.h"
#include "TestRoot.h"
#include "daemon/DaemonFiles.h"
#include "datacom/SysmgtRoot.h"

using namespace datacom;

TEST(DaemonFiles, PidAndStartFilesUnderTheRoot) {
    TestRoot root;
    const std::string pid = std::to_string(getpid());
    // Names planted in the shared /tmp as links to a file of ours are
    // replaced, never written through.
    writeText("/data/victim", "kept");
    for (const char* name : {"/tmp/cm.pid", "/tmp/cm.start"})
        ASSERT_EQ(0, symlink(root.host("/data/victim").c_str(), root.host(name).c_str()));
    EXPECT_TRUE(writePidFile("/tmp/cm.pid"));
    EXPECT_EQ(pid + "\n", readText("/tmp/cm.pid"));
    EXPECT_TRUE(writeStartFile("/tmp/cm.start"));
    EXPECT_EQ("0:" + pid + ":0\n", readText("/tmp/cm.start"));
    // A second start truncates, never appends.
    EXPECT_TRUE(writeStartFile("/tmp/cm.start"));
    EXPECT_EQ("0:" + pid + ":0\n", readText("/tmp/cm.start"));
    EXPECT_EQ("kept", readText("/data/victim"));
    // Paths that cannot be opened are skipped, not fatal.
    EXPECT_FALSE(writePidFile("/no/such/dir/cm.pid"));
    EXPECT_FALSE(writeStartFile("/no/such/dir/cm.start"));
}

TEST(DaemonFiles, ReadinessGoesToTheServiceManagersSocket) {
    TestRoot root;
    unsetenv("NOTIFY_SOCKET");
    EXPECT_FALSE(notifyServiceManager());

    const std::string path = root.host("/tmp/notify");
    int sock = socket(AF_UNIX, SOCK_DGRAM, 0);
    ASSERT_GE(sock, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof address.sun_path);
    std::strcpy(address.sun_path, path.c_str());
    ASSERT_EQ(0, bind(sock, reinterpret_cast<sockaddr*>(&address), sizeof address));
    timeval limit{5, 0};
    setsockopt(sock, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);

    setenv("NOTIFY_SOCKET", path.c_str(), 1);
    EXPECT_TRUE(notifyServiceManager());
    char buffer[64] = {};
    ssize_t got = recv(sock, buffer, sizeof buffer, 0);
    EXPECT_EQ("READY=1", std::string(buffer, got > 0 ? static_cast<size_t>(got) : 0));

    setenv("NOTIFY_SOCKET", (path + "-gone").c_str(), 1);
    EXPECT_FALSE(notifyServiceManager());
    unsetenv("NOTIFY_SOCKET");
    close(sock);
}
