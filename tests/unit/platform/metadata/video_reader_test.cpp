#include <gtest/gtest.h>

#include "tests/unit/platform/metadata/fixtures.h"

namespace media_content {
namespace {

class Video : public testing::TestWithParam<const char*> {};

TEST_P(Video, HasItsSizeLengthAndRate) {
    const ReadResult result = read_fixture(std::string("video/clip.") + GetParam());
    EXPECT_EQ(result.problem, nullptr);
    EXPECT_EQ(result.record.kind, MediaKind::kVideo);
    EXPECT_EQ(result.record.video.width, 64);
    EXPECT_EQ(result.record.video.height, 48);
    EXPECT_NEAR(static_cast<double>(result.record.video.duration_ms), 1000, 300);
    EXPECT_GT(result.record.video.bit_rate, 10000);
    EXPECT_FALSE(result.record.is_360);
}

INSTANTIATE_TEST_SUITE_P(Containers, Video,
                         testing::Values("mp4", "mov", "mkv", "webm", "avi", "ts", "mpg", "wmv", "flv"));

TEST(VideoTags, TellTitleAndPlace) {
    const MediaRecord record = read_fixture("video/clip.mp4").record;
    EXPECT_EQ(record.title, "A Clip");
    EXPECT_EQ(record.location_tag, "37.566500 -126.978000");
    EXPECT_FALSE(record.altitude);
}

TEST(SphericalVideo, IsToldByItsXml) {
    const MediaRecord record = read_fixture("video/sphere.mp4").record;
    EXPECT_TRUE(record.is_360);
    EXPECT_EQ(record.stitch_type, StitchType::kStitched);
    EXPECT_EQ(record.video.width, 64);
}

TEST(SphericalVideo, ThatIsNotStitchedSaysSo) {
    const MediaRecord record = read_fixture("video/sphere_unstitched.mp4").record;
    EXPECT_TRUE(record.is_360);
    EXPECT_EQ(record.stitch_type, StitchType::kUnstitched);
}

TEST(SphericalVideo, IsToldByItsBoxesAndItsProjection) {
    for (const char* name : {"video/sphere_boxes.mp4", "video/sphere.mkv"}) {
        const MediaRecord record = read_fixture(name).record;
        EXPECT_TRUE(record.is_360) << name;
        EXPECT_EQ(record.stitch_type, StitchType::kStitched) << name;
    }
}

TEST(Uhd, HasItsTitleFromTheFile) {
    for (const char* name : {"uhd/film.um4", "uhd/film.km4", "uhd/film.sum4"}) {
        const ReadResult result = read_fixture(name);
        EXPECT_EQ(result.problem, nullptr) << name;
        EXPECT_EQ(result.record.kind, MediaKind::kUhd) << name;
        EXPECT_EQ(result.record.uhd.content_title, "A Clip") << name;
        EXPECT_EQ(result.record.uhd.content_id, "film") << name;
        EXPECT_EQ(result.record.uhd.sub_type, -1) << name;
    }
}

TEST(Scsa, IsLeftToThoseWhoCanOpenIt) {
    for (const char* name : {"scsa/film.uvu", "scsa/film.uva", "scsa/film.uvt", "scsa/film.scsa"}) {
        const ReadResult result = read_fixture(name);
        EXPECT_EQ(result.problem, nullptr) << name;
        EXPECT_EQ(result.record.kind, MediaKind::kScsa) << name;
    }
}

}  // namespace
}  // namespace media_content
