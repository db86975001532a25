#include "common/util/qra_singleton.h"

#include <gtest/gtest.h>

#include <atomic>
#include <set>
#include <thread>
#include <vector>

namespace {

std::atomic<int> g_made{0};

class Single : public CQRASingleton<Single> {
public:
    Single() { ++g_made; }
};

}  // namespace

TEST(CQRASingleton, IsMadeOnceWhenThreadsRaceForTheFirstUse) {
    constexpr int kThreads = 8;
    std::atomic<int> ready{0};
    std::vector<Single*> seen(kThreads);
    std::vector<std::thread> threads;

    for (int i = 0; i < kThreads; ++i) {
        threads.emplace_back([&, i] {
            ++ready;
            while (ready < kThreads) {
                std::this_thread::yield();
            }
            seen[static_cast<size_t>(i)] = Single::GetInstance();
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(g_made, 1);
    EXPECT_EQ(std::set<Single*>(seen.begin(), seen.end()).size(), 1u);
}
