#include "platform/media-content/host/metadata/number_text.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>

namespace media_content {
namespace {

TEST(ExposureText, IsWrittenAsPhotographersDo) {
    EXPECT_EQ(exposure_text(1, 60), "1/60");
    EXPECT_EQ(exposure_text(10, 600), "1/60");
    EXPECT_EQ(exposure_text(10, 333), "1/33");
    EXPECT_EQ(exposure_text(1, 4), "1/4");
    EXPECT_EQ(exposure_text(1, 2), "1/2");
    EXPECT_EQ(exposure_text(4, 10), "0.4");
    EXPECT_EQ(exposure_text(30, 1), "30");
    EXPECT_EQ(exposure_text(60, 2), "30");
    EXPECT_EQ(exposure_text(5, 2), "2.5");
    EXPECT_EQ(exposure_text(1, 4294967295U), "1/4294967295");
    EXPECT_EQ(exposure_text(4294967295U, 1), "4294967295");
}

TEST(ExposureText, NoTimeIsEmpty) {
    EXPECT_EQ(exposure_text(0, 60), "");
    EXPECT_EQ(exposure_text(1, 0), "");
    EXPECT_EQ(exposure_text(0, 0), "");
}

TEST(LocationText, HasDegreesWithSixDigits) {
    EXPECT_EQ(location_text(37.5665, -126.978), "37.566500 -126.978000");
}

TEST(LocationText, DoesNotDependOnTheLocale) {
    for (const char* locale : {"de_DE.UTF-8", "fr_FR.UTF-8", ""}) {
        setlocale(LC_ALL, locale);
        EXPECT_EQ(location_text(1.5, 2.25), "1.500000 2.250000");
        EXPECT_EQ(exposure_text(5, 2), "2.5");
    }
    setlocale(LC_ALL, "C");
}

TEST(IsPosition, TakesPlacesOnEarthOnly) {
    EXPECT_TRUE(is_position(90, -180));
    EXPECT_FALSE(is_position(90.1, 0));
    EXPECT_FALSE(is_position(0, 180.1));
    EXPECT_FALSE(is_position(NAN, 0));
    EXPECT_FALSE(is_position(0, INFINITY));
}

TEST(IsExifDate, TakesTheFormThatExifPrescribes) {
    EXPECT_TRUE(is_exif_date("2021:05:06 10:20:30"));
    EXPECT_FALSE(is_exif_date("2021-05-06 10:20:30"));
    EXPECT_FALSE(is_exif_date("2021:05:06"));
    EXPECT_FALSE(is_exif_date("0000:00:00 00:00:00"));
    EXPECT_FALSE(is_exif_date("    :  :     :  :  "));
    EXPECT_FALSE(is_exif_date(""));
}

TEST(Trimmed, DropsBlanksAndNulsAtBothEnds) {
    EXPECT_EQ(trimmed(std::string_view(" a b\0\0", 6)), "a b");
    EXPECT_EQ(trimmed("\r\n\t "), "");
    EXPECT_EQ(trimmed(""), "");
}

}  // namespace
}  // namespace media_content
