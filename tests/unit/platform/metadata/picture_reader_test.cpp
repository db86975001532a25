#include <gtest/gtest.h>

#include <clocale>
#include <ostream>

#include "tests/unit/platform/metadata/fixtures.h"

namespace media_content {
namespace {

struct SizeCase {
    const char* name;
    int width;
    int height;
};

void PrintTo(const SizeCase& size, std::ostream* out) {
    *out << size.name;
}

class PictureSize : public testing::TestWithParam<SizeCase> {};

TEST_P(PictureSize, IsThatOfTheFilesOwnHeader) {
    const ReadResult result = read_fixture(std::string("pictures/") + GetParam().name);
    EXPECT_EQ(result.problem, nullptr);
    EXPECT_EQ(result.record.kind, MediaKind::kImage);
    EXPECT_EQ(result.record.image.width, GetParam().width);
    EXPECT_EQ(result.record.image.height, GetParam().height);
}

INSTANTIATE_TEST_SUITE_P(Formats, PictureSize,
                         testing::Values(SizeCase{"plain.jpg", 48, 32}, SizeCase{"photo.jpg", 48, 32},
                                         SizeCase{"drawing.png", 40, 30}, SizeCase{"anim.gif", 34, 22},
                                         SizeCase{"paint.bmp", 32, 18}, SizeCase{"scan.tif", 30, 20},
                                         SizeCase{"lossy.webp", 50, 34}, SizeCase{"lossless.webp", 52, 36},
                                         SizeCase{"extended.webp", 50, 34}, SizeCase{"picture.avif", 64, 48},
                                         SizeCase{"phone.heic", 48, 32}));

void expect_photo(const MediaRecord& record) {
    EXPECT_EQ(record.image.date_taken, "2021:05:06 10:20:30");
    EXPECT_EQ(record.image.exposure_time, "1/60");
    EXPECT_DOUBLE_EQ(record.image.f_number, 2.8);
    EXPECT_EQ(record.image.iso, 200);
    EXPECT_EQ(record.image.model, "Camera 7");
    EXPECT_EQ(record.image.orientation, 6);
    EXPECT_NEAR(record.latitude.value_or(0), 37.5665, 1e-9);
    EXPECT_NEAR(record.longitude.value_or(0), -126.978, 1e-9);
    EXPECT_NEAR(record.altitude.value_or(0), 38.5, 1e-9);
    EXPECT_EQ(record.location_tag, "37.566500 -126.978000");
}

TEST(PictureExif, OfAJpegIsRead) {
    expect_photo(read_fixture("pictures/photo.jpg").record);
}

TEST(PictureExif, OfAHeicIsRead) {
    expect_photo(read_fixture("pictures/phone.heic").record);
}

TEST(PictureExif, DoesNotDependOnTheLocale) {
    setlocale(LC_ALL, "de_DE.UTF-8");
    expect_photo(read_fixture("pictures/photo.jpg").record);
    setlocale(LC_ALL, "C");
}

TEST(PictureExif, OfAWebpAndATiffIsRead) {
    for (const char* name : {"pictures/extended.webp", "pictures/scan.tif"}) {
        const MediaRecord record = read_fixture(name).record;
        EXPECT_EQ(record.image.date_taken, "2019:12:31 23:59:58") << name;
        EXPECT_EQ(record.image.model, "Scanner 3") << name;
    }
}

TEST(PictureExif, ThatIsNotThereLeavesEverythingUnknown) {
    const MediaRecord record = read_fixture("pictures/plain.jpg").record;
    EXPECT_EQ(record.image.date_taken, "");
    EXPECT_EQ(record.image.exposure_time, "");
    EXPECT_EQ(record.image.f_number, 0);
    EXPECT_EQ(record.image.iso, 0);
    EXPECT_EQ(record.image.orientation, 0);
    EXPECT_EQ(record.location_tag, "");
    EXPECT_FALSE(record.latitude);
    EXPECT_FALSE(record.is_360);
}

TEST(PictureXmp, WithAProjectionIsA360DegreePicture) {
    for (const char* name : {"pictures/sphere.jpg", "pictures/sphere_elements.jpg"}) {
        const MediaRecord record = read_fixture(name).record;
        EXPECT_TRUE(record.is_360) << name;
        EXPECT_EQ(record.stitch_type, StitchType::kStitched) << name;
    }
}

TEST(PictureXmp, WithTheNamespaceAloneIsNoSuchPicture) {
    const MediaRecord record = read_fixture("pictures/namespace_only.jpg").record;
    EXPECT_FALSE(record.is_360);
    EXPECT_EQ(record.stitch_type, StitchType::kNone);
    EXPECT_EQ(record.rating, 4);
}

TEST(PictureXmp, ThatWantsNoViewerIsNoSuchPicture) {
    EXPECT_FALSE(read_fixture("pictures/flat_sphere.jpg").record.is_360);
}

TEST(PictureXmp, NamesTheBurst) {
    EXPECT_EQ(read_fixture("pictures/burst.jpg").record.image.burst_id, "b-17");
}

TEST(PictureXmp, WithEntitiesIsNotBelieved) {
    const ReadResult result = read_fixture("broken/entities.jpg");
    EXPECT_EQ(result.problem, nullptr);
    EXPECT_EQ(result.record.image.width, 48);
    EXPECT_FALSE(result.record.is_360);
}

}  // namespace
}  // namespace media_content
