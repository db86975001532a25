#include "apps/qra/main_loop_thread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>

TEST(MainLoopThread, RunsTheDefaultContextOnAnotherThread) {
    std::promise<std::thread::id> ran;
    const MainLoopThread loop;

    g_idle_add(
        [](gpointer promise) -> gboolean {
            static_cast<std::promise<std::thread::id>*>(promise)->set_value(std::this_thread::get_id());
            return G_SOURCE_REMOVE;
        },
        &ran);

    std::future<std::thread::id> thread = ran.get_future();
    ASSERT_EQ(thread.wait_for(std::chrono::seconds(60)), std::future_status::ready);
    EXPECT_NE(thread.get(), std::this_thread::get_id());
}

TEST(MainLoopThread, CanBeMadeAgainAtOnce) {
    for (int i = 0; i < 500; ++i) {
        const MainLoopThread loop;
    }
}
