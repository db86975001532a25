#include "apps/qra/job_progress.h"

#include <gmock/gmock.h>

#include "apps/qra/status_line.h"
#include "apps/qra/terminal_text.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr RateMeter::Time kStart{};

JobProgress half_done() {
    JobProgress progress;
    progress.files_done = 12;
    progress.files = 40;
    progress.bytes_done = 500'000'000;
    progress.bytes = 1'000'000'000;
    progress.name = "IMG_13.jpg";
    return progress;
}

TEST(RateMeter, SaysNothingBeforeASecondHasPassed) {
    RateMeter meter;
    EXPECT_FALSE(meter.bytes_per_second());
    meter.add(kStart, 0);
    EXPECT_FALSE(meter.bytes_per_second());
    meter.add(kStart + milliseconds(999), 1000);
    EXPECT_FALSE(meter.bytes_per_second());
    meter.add(kStart + seconds(2), 1000);
    EXPECT_DOUBLE_EQ(*meter.bytes_per_second(), 500);
}

TEST(RateMeter, ForgetsWhatIsLongAgo) {
    RateMeter meter;
    meter.add(kStart, 0);
    for (int second = 1; second <= 10; ++second) {
        meter.add(kStart + seconds(second), 1'000'000);
    }
    for (int second = 11; second <= 25; ++second) {
        meter.add(kStart + seconds(second), 1'000'000 + 100 * (second - 10));
    }
    EXPECT_DOUBLE_EQ(*meter.bytes_per_second(), 100);
}

TEST(RateMeter, FileThatTakesItsBytesBackIsNoNegativeRate) {
    RateMeter meter;
    meter.add(kStart, 5000);
    meter.add(kStart + seconds(2), 1000);
    EXPECT_DOUBLE_EQ(*meter.bytes_per_second(), 0);
}

TEST(JobProgress, RestTimeFollowsTheRate) {
    JobProgress progress = half_done();
    EXPECT_FALSE(seconds_left(progress));
    progress.bytes_per_second = 50'000'000;
    EXPECT_EQ(seconds_left(progress), 10U);
    progress.bytes_per_second = 0;
    EXPECT_FALSE(seconds_left(progress));
    progress.bytes_per_second = 1;
    EXPECT_FALSE(seconds_left(progress)) << "years are no answer";
    progress.bytes_done = progress.bytes + 1;
    EXPECT_FALSE(seconds_left(progress)) << "a file that grew";
}

TEST(JobProgress, LineHasBarFilesBytesRateRestAndName) {
    JobProgress progress = half_done();
    EXPECT_EQ(job_status_text(progress, 67),
              "[##########..........] 12 of 40 files  500 MB of 1.0 GB  IMG_13.jpg");
    progress.bytes_per_second = 50'000'000;
    EXPECT_THAT(job_status_text(progress, 100), testing::HasSubstr("  50 MB/s  0:10 left  IMG_13.jpg"));
}

TEST(JobProgress, JobWithoutBytesCountsFiles) {
    JobProgress progress;
    progress.files_done = 1;
    progress.files = 2;
    EXPECT_THAT(job_status_text(progress, 60), testing::StartsWith("[##########..........] 1 of 2 files  "));
}

TEST(JobProgress, LineIsAsWideAsTheTerminalAndPrintable) {
    JobProgress progress = half_done();
    progress.name = "\033[2J" + std::string(500, 'x');
    const std::string text = job_status_text(progress, 90);
    EXPECT_EQ(cell_width(text), 90U);
    EXPECT_THAT(text, testing::HasSubstr("\\x1b[2J"));
    EXPECT_EQ(cell_width(job_status_text(progress, 0)), 1U);
}

TEST(JobProgress, FilesAreCountedInWords) {
    EXPECT_EQ(files_text(0, 0), "0 files");
    EXPECT_EQ(files_text(1, 0), "1 file");
    EXPECT_EQ(files_text(3, 4200000), "3 files (4.2 MB)");
}

TEST(ProgressBar, FollowsTheShare) {
    EXPECT_EQ(progress_bar(0, 0), "[....................]");
    EXPECT_EQ(progress_bar(1, 2), "[##########..........]");
    EXPECT_EQ(progress_bar(3, 2), "[####################]");
    EXPECT_EQ(progress_bar(UINT64_MAX / 2, UINT64_MAX), "[##########..........]");
}

}  // namespace
