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
    for (int i = 0; i < kRounds; ++i) {
        round(i, [this](const std::vector<int>&) { server->tell({"goodbye"}); });
        ASSERT_TRUE(wait_until_gone());
        server->tell({"hello"});
        ASSERT_EQ(wait_for(), provider);
    }
    expect_a_working_service();
}

TEST_F(RoundsTest, LeaveNothingOpen) {
    start();
    expect_nothing_left(kRounds, 2);
}

}  // namespace
