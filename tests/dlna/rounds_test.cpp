// Requests, transfers, cancels and ends of the service in every phase, a few times.
#include "tests/dlna/rounds.h"

namespace {

constexpr int kRounds = 6;

TEST_F(RoundsTest, EndEverythingThatIsCancelledInAnyPhase) {
    start();
    cancel_rounds(0, kRounds);
    expect_a_working_service();
}

TEST_F(RoundsTest, EndEverythingWithTheServiceInAnyPhase) {
    start();
    leave_rounds(0, kRounds);
    expect_a_working_service();
}

TEST_F(RoundsTest, EndEverythingWithTheServerInAnyPhase) {
    start();
    lose_rounds(0, kRounds);
    expect_a_working_service();
}

TEST(LoopSourcesTest, CountsTheSourcesThatAreLeft) {
    const std::unique_ptr<GMainContext, decltype(&g_main_context_unref)> context(g_main_context_new(),
                                                                                 &g_main_context_unref);
    g_main_context_push_thread_default(context.get());
    LoopSources loop;
    loop.watch();
    g_main_context_pop_thread_default(context.get());
    for (const int left : {0, 1, 2}) {
        EXPECT_EQ(loop.count(), left);
        for (const bool stays : {true, false}) {
            GSource* source = g_timeout_source_new_seconds(3600);
            g_source_attach(source, context.get());
            if (!stays) {
                g_source_destroy(source);
            }
            g_source_unref(source);
        }
    }
}

TEST_F(RoundsTest, LeaveNothingOpen) {
    start();
    expect_nothing_left({kRounds, 2, 1}, {kRounds, 2, 1});
}

}  // namespace
