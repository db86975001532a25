#include "libqra-agent/source/local-source/qra_obj_manager.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

TEST(CQRAObjManager, FindsWhatWasAddedAndNotRemoved) {
    CQRAObjManager manager;
    manager.AddObj(1);
    manager.AddObj(2);
    manager.RemoveObj(1);
    EXPECT_FALSE(manager.FindObj(1));
    EXPECT_TRUE(manager.FindObj(2));
    EXPECT_FALSE(manager.FindObj(3));
}

TEST(CQRAObjManager, RemoveTakesOutEveryEntryOfAnAddress) {
    CQRAObjManager manager;
    manager.AddObj(1);
    manager.AddObj(1);
    manager.RemoveObj(1);
    EXPECT_FALSE(manager.FindObj(1));
}

TEST(CQRAObjManager, RemoveOfAnAbsentAddressChangesNothing) {
    CQRAObjManager manager;
    manager.AddObj(1);
    manager.RemoveObj(2);
    EXPECT_TRUE(manager.FindObj(1));
}

TEST(CQRAObjManager, KeepsAnAddressOfFullWidth) {
    CQRAObjManager manager;
    int object = 0;
    const auto address = reinterpret_cast<qra_handle_value_t>(&object);
    manager.AddObj(address);
    EXPECT_TRUE(manager.FindObj(address));
}

TEST(CQRAObjManager, RunsAnActionOnlyForAnAddressThatIsThere) {
    CQRAObjManager manager;
    int runs = 0;
    EXPECT_FALSE(manager.RunIfFound(1, [&] { ++runs; }));
    manager.AddObj(1);
    EXPECT_TRUE(manager.RunIfFound(1, [&] { ++runs; }));
    EXPECT_EQ(runs, 1);
}

TEST(CQRAObjManager, RemoveWaitsForAnActionThatRuns) {
    CQRAObjManager manager;
    manager.AddObj(1);
    std::atomic<bool> running{false};
    std::atomic<bool> removing{false};
    std::atomic<bool> finished{false};
    std::thread runner([&] {
        manager.RunIfFound(1, [&] {
            running = true;
            while (!removing) {
                std::this_thread::yield();
            }
            finished = true;
        });
    });
    while (!running) {
        std::this_thread::yield();
    }
    removing = true;
    manager.RemoveObj(1);
    EXPECT_TRUE(finished);
    runner.join();
}
