#include "manager/PeerWatch.h"

#include <gtest/gtest.h>

using Change = PeerWatch::Change;
using std::chrono::seconds;

// A restarting peer binds its new socket, then sets its mode, moving the
// change time between two looks: one restart, acted on (and subscribed to)
// once it held, neither at once nor twice (a second replay raced an
// operator's Stop). Unanswered SUBSCRIBEs wait 1, 2, 4, then 8 s at most; a
// restart starts again at once and at 1; the return work is due once acknowledged.
TEST(PeerWatch, ANewSocketIsActedOnOnceSettledAndSubscribedWithABackOff) {
    const SocketIdentity old{1, 10, 100}, bound{1, 11, 200}, moded{1, 11, 201}, next{1, 12, 300};
    auto at = PeerWatch::Clock::time_point{};
    PeerWatch watch(old, false, at);  // start-up's SUBSCRIBE went unanswered
    std::vector<Change> changes;
    std::vector<bool> due;
    for (const SocketIdentity& seen : {old, bound, moded, moded, moded}) {
        changes.push_back(watch.look(seen, at));
        due.push_back(watch.subscribeDue(at));
    }
    EXPECT_EQ((std::vector<Change>{Change::None, Change::None, Change::None, Change::Restarted, Change::None}),
              changes);
    EXPECT_EQ((std::vector<bool>{true, false, false, true, true}), due);

    for (int expected : {1, 2, 4, 8, 8}) {
        ASSERT_TRUE(watch.subscribeDue(at));
        watch.subscribeAnswered(false, at);
        EXPECT_EQ(expected, watch.backoffSec());
        EXPECT_FALSE(watch.subscribeDue(at + seconds(expected) - std::chrono::milliseconds(1))) << expected;
        at += seconds(expected);
    }
    watch.subscribeAnswered(false, at);
    watch.look(next, at);
    watch.look(next, at);
    ASSERT_TRUE(watch.subscribeDue(at));
    watch.subscribeAnswered(false, at);
    EXPECT_EQ(1, watch.backoffSec());
    EXPECT_FALSE(watch.takeReturnWork()) << "before the subscription";
    watch.subscribeAnswered(true, at + seconds(1));
    EXPECT_EQ(0, watch.backoffSec());
    EXPECT_TRUE(watch.takeReturnWork());
    EXPECT_FALSE(watch.takeReturnWork() || watch.subscribeDue(at + seconds(60)));
}
