#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "datacom/DataSetsFactory.h"
#include "json/DataSetsTestSupport.h"

using namespace datacom;

using dstest::kChan;
using dstest::kSet;

// A writer commits the same even value to both channels under lock()/unlock()
// while a reader checks, under the same lock, that both channels always agree
// and, without it, that every value read is one that was written.
TEST(DataSetsThreads, ReaderAndWriterAreSerialised) {
    DataSetsFactory factory;
    std::unique_ptr<IDataSets> store(factory.createDataSets());
    ASSERT_TRUE(dstest::loadChannelDoc(static_cast<DataSets&>(*store)));
    ASSERT_EQ(store->initIntParam(kSet, kChan, "Bitrate", 0, "H.264"), FC_OK);
    ASSERT_EQ(store->initIntParam(kSet, kChan, "Bitrate", 0, "HEVC"), FC_OK);

    constexpr int kRounds = 400;
    std::atomic<bool> done{false};
    std::atomic<int> mismatches{0}, odd{0}, failures{0};

    std::thread writer([&] {
        for (int i = 1; i <= kRounds; ++i) {
            store->lock();
            Fcodes code = store->setIntParam(kSet, kChan, "Bitrate", 2 * i, "H.264");
            code |= store->setIntParam(kSet, kChan, "Bitrate", 2 * i, "HEVC");
            code |= store->commit();
            store->unlock();
            code |= store->setIntParam(kSet, kChan, "Bitrate", 1, "HEVC");
            code |= store->rollback();
            if (i % 100 == 0)
                code |= store->storeDataSet(kSet, "/data/settings/threads.json");
            if (code != FC_OK)
                failures++;
        }
        done = true;
    });
    std::thread reader([&] {
        std::vector<std::string> keys;
        while (!done) {
            int first = -1, second = -2, latest = 0;
            store->lock();
            Fcodes code = store->getIntParam(kSet, kChan, "Bitrate", first, "H.264");
            code |= store->getIntParam(kSet, kChan, "Bitrate", second, "HEVC");
            store->unlock();
            if (first != second)
                mismatches++;
            code |= store->getNewIntParam(kSet, kChan, "Bitrate", latest, "H.264");
            code |= store->getInstances(kSet, kChan, keys);
            if (latest % 2 != 0)
                odd++;
            if (code != FC_OK)
                failures++;
        }
    });
    writer.join();
    reader.join();
    EXPECT_EQ(mismatches.load(), 0);
    EXPECT_EQ(odd.load(), 0) << "H.264 never gets an odd pending value";
    EXPECT_EQ(failures.load(), 0);
    int final = 0;
    EXPECT_EQ(store->getIntParam(kSet, kChan, "Bitrate", final, "HEVC"), FC_OK);
    EXPECT_EQ(final, 2 * kRounds);
}
