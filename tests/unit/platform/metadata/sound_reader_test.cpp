#include <gtest/gtest.h>

#include "tests/unit/platform/metadata/fixtures.h"

namespace media_content {
namespace {

class TaggedSound : public testing::TestWithParam<const char*> {};

TEST_P(TaggedSound, HasItsTagsAndProperties) {
    const ReadResult result = read_fixture(std::string("music/song.") + GetParam());
    EXPECT_EQ(result.problem, nullptr);
    EXPECT_EQ(result.record.kind, MediaKind::kMusic);
    EXPECT_EQ(result.record.title, "A Song");
    const AudioMetadata& audio = result.record.audio;
    EXPECT_EQ(audio.artist, "The Band");
    EXPECT_EQ(audio.album, "First");
    EXPECT_EQ(audio.genre, "Jazz");
    EXPECT_EQ(audio.composer, "A. Writer");
    EXPECT_EQ(audio.year, "1999");
    EXPECT_EQ(audio.recorded_date, "1999");
    EXPECT_EQ(audio.track_number, "3");
    EXPECT_EQ(audio.copyright, "2000 Label");
    EXPECT_NEAR(static_cast<double>(audio.duration_ms), 500, 250);
    EXPECT_GE(audio.channels, 1);
    EXPECT_GT(audio.bit_rate, 1000);
    EXPECT_GE(audio.sample_rate, 8000);
}

INSTANTIATE_TEST_SUITE_P(Formats, TaggedSound,
                         testing::Values("mp3", "flac", "ogg", "opus", "m4a", "aif", "wma"));

TEST(Sound, OfAWaveFileHasWhatItsInfoChunkTells) {
    const MediaRecord record = read_fixture("music/song.wav").record;
    EXPECT_EQ(record.title, "A Song");
    EXPECT_EQ(record.audio.artist, "The Band");
    EXPECT_EQ(record.audio.duration_ms, 500);
    EXPECT_EQ(record.audio.sample_rate, 8000);
    EXPECT_EQ(record.audio.bit_rate, 128000);
    EXPECT_EQ(record.audio.channels, 1);
}

TEST(Sound, HasBitsInASampleWhereItsCodingHas) {
    EXPECT_EQ(read_fixture("music/song.wav").record.audio.bits_per_sample, 16);
    EXPECT_EQ(read_fixture("music/song.flac").record.audio.bits_per_sample, 16);
    EXPECT_EQ(read_fixture("music/song.aif").record.audio.bits_per_sample, 16);
    EXPECT_EQ(read_fixture("music/song.mp3").record.audio.bits_per_sample, 0);
    EXPECT_EQ(read_fixture("music/song.m4a").record.audio.bits_per_sample, 0);
    EXPECT_EQ(read_fixture("music/song.ogg").record.audio.bits_per_sample, 0);
}

TEST(Sound, WithoutTagsHasItsProperties) {
    const ReadResult result = read_fixture("music/song.aac");
    EXPECT_EQ(result.problem, nullptr);
    EXPECT_EQ(result.record.audio.sample_rate, 8000);
    EXPECT_EQ(result.record.audio.channels, 1);
    EXPECT_GT(result.record.audio.duration_ms, 0);
}

TEST(Sound, InAVideoContainerHasItsTags) {
    const ReadResult result = read_fixture("music/song.mka");
    EXPECT_EQ(result.problem, nullptr);
    EXPECT_EQ(result.record.title, "A Song");
    EXPECT_EQ(result.record.audio.artist, "The Band");
    EXPECT_NEAR(static_cast<double>(result.record.audio.duration_ms), 500, 50);
}

}  // namespace
}  // namespace media_content
