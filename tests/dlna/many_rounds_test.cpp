// Requests, transfers, cancels and ends of the service in every phase, a thousand times.
#include "tests/dlna/rounds.h"

namespace {

using ManyRoundsTest = RoundsTest;

TEST_F(ManyRoundsTest, LeaveNothingOpen) {
    start();
    // After a leave or a loss the server has to be found anew, which takes its time.
    expect_nothing_left({24, 4, 4}, {950, 25, 25});
}

}  // namespace
