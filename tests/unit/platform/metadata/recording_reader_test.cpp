#include <gtest/gtest.h>

#include "tests/unit/platform/metadata/fixtures.h"

namespace media_content {
namespace {

TEST(Recording, HasWhatItsInfoFileTells) {
    const ReadResult result = read_fixture("recordings/news.srf");
    EXPECT_EQ(result.problem, nullptr);
    EXPECT_EQ(result.record.kind, MediaKind::kRecording);
    const RecordingMetadata& recording = result.record.recording;
    EXPECT_EQ(recording.program_title, "Evening News; with Sport");
    EXPECT_EQ(recording.channel_name, "Channel Été");
    EXPECT_EQ(recording.channel_num, "11-2");
    EXPECT_EQ(recording.synopsis, "All that matters.\nAnd the weather.");
    EXPECT_EQ(recording.genre, "News");
    EXPECT_EQ(recording.language, "eng");
    EXPECT_EQ(recording.major, 11);
    EXPECT_EQ(recording.minor, 2);
    EXPECT_EQ(recording.start_time, 1620288000);
    EXPECT_EQ(recording.program_start_time, 1620288060);
    EXPECT_EQ(recording.program_end_time, 1620289800);
    EXPECT_EQ(recording.program_date, 1620259200);
    EXPECT_EQ(recording.duration, 1740000);
    EXPECT_EQ(recording.hd, 1);
    EXPECT_TRUE(recording.subtitle);
    EXPECT_TRUE(recording.content_lock);
    EXPECT_TRUE(recording.timer_record);
    EXPECT_FALSE(recording.content_watch);
    EXPECT_FALSE(recording.series_record);
}

TEST(Recording, WithoutAnInfoFileIsTitledByItsName) {
    const ReadResult result = read_fixture("recordings/without_info.srf");
    EXPECT_NE(result.problem, nullptr);
    EXPECT_EQ(result.record.recording.program_title, "without_info");
    EXPECT_EQ(result.record.recording.duration, 0);
}

TEST(Recording, WithABrokenInfoFileIsTitledByItsName) {
    const ReadResult result = read_fixture("recordings/broken_info.srf");
    EXPECT_NE(result.problem, nullptr);
    EXPECT_EQ(result.record.recording.program_title, "broken_info");
}

}  // namespace
}  // namespace media_content
