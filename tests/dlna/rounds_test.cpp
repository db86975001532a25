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

TEST_F(RoundsTest, LeaveNothingOpen) {
    start();
    expect_nothing_left(kRounds, 2);
}

}  // namespace
