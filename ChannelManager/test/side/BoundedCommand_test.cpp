#include <gtest/gtest.h>

#include <chrono>

#include "side/BoundedCommand.h"

TEST(BoundedCommand, OutputStatusAndTheBound) {
    BoundedRun run = runBounded("echo hello; exit 3", 5000, 1023);
    EXPECT_TRUE(run.started && !run.timedOut);
    EXPECT_EQ(run.status, 3);
    EXPECT_EQ(run.output, "hello\n");
    // Output beyond the limit is drained and dropped; the command ends normally.
    run = runBounded("i=0; while [ $i -lt 300 ]; do echo 0123456789; i=$((i+1)); done", 5000, 1023);
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.output.size(), 1023u);
    // A command that outlives its bound is killed with its children; what it printed is kept.
    const auto start = std::chrono::steady_clock::now();
    run = runBounded("echo partial; sleep 30 & wait", 300, 1023);
    EXPECT_TRUE(run.timedOut);
    EXPECT_EQ(run.output, "partial\n");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}
