// Requests, transfers, cancels and ends of the service in every phase, hundreds of times.
#include "tests/dlna/rounds.h"

namespace {

using ManyRoundsTest = RoundsTest;

// Each twice; after a leave the server has to be found anew, which takes its time.
constexpr int kCancels = 250;
constexpr int kLeaves = 25;

TEST_F(ManyRoundsTest, LeaveNothingOpen) {
    start();
    expect_nothing_left(kCancels, kLeaves);
}

}  // namespace
