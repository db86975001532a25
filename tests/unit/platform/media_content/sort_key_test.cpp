#include "platform/media-content/host/text/sort_key.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/media-content/host/text/like.h"

namespace media_content {
namespace {

std::vector<std::string> sorted(std::vector<std::string> names) {
    std::sort(names.begin(), names.end(),
              [](const std::string& a, const std::string& b) { return sort_key(a) < sort_key(b); });
    return names;
}

TEST(Fold, TakesCaseDifferencesAwayInAllOfUnicode) {
    EXPECT_EQ(fold("STRASSE"), fold("Stra\u00dfe"));
    EXPECT_EQ(fold("\u00c4RGER"), fold("\u00e4rger"));
    EXPECT_EQ(fold("\u0416\u0423\u041a"), "\u0436\u0443\u043a");
    EXPECT_EQ(fold("Photo.JPG"), "photo.jpg");
}

TEST(Fold, MakesComposedAndDecomposedLettersEqual) {
    EXPECT_EQ(fold("e\u0301t\u00e9"), fold("\u00c9te\u0301"));
}

TEST(Fold, LeavesBytesThatAreNotUtf8) {
    EXPECT_EQ(fold("A\xffZ\xc3"), "a\xffz\xc3");
    EXPECT_EQ(fold("\xed\xa0\x80"), "\xed\xa0\x80");
}

TEST(Fold, OfNothingIsNothing) {
    EXPECT_EQ(fold(""), "");
}

TEST(SortKey, ComparesRunsOfDigitsByValue) {
    const std::vector<std::string> expected = {"IMG_1", "img_2", "IMG_10", "IMG_10a", "IMG_100"};
    EXPECT_EQ(sorted({"IMG_100", "IMG_10a", "IMG_10", "img_2", "IMG_1"}), expected);
}

TEST(SortKey, ComparesNumbersOfAnyLengthByValue) {
    const std::string long_number(300, '9');
    const std::string longer_number = "1" + std::string(300, '0');
    EXPECT_LT(sort_key("a" + long_number), sort_key("a" + longer_number));
    EXPECT_LT(sort_key("a" + std::string(254, '9')), sort_key("a1" + std::string(254, '0')));
    EXPECT_LT(sort_key("a12"), sort_key("a" + long_number));
}

TEST(SortKey, PutsLeadingZerosBehindTheSameNumberWithoutThem) {
    const std::vector<std::string> expected = {"a0", "a00", "a1", "a01", "a001", "a1b", "a2"};
    EXPECT_EQ(sorted({"a2", "a1b", "a001", "a01", "a1", "a00", "a0"}), expected);
}

TEST(SortKey, IsTheSameOnlyForTextsThatFoldToTheSame) {
    EXPECT_EQ(sort_key("Track 07.MP3"), sort_key("track 07.mp3"));
    EXPECT_NE(sort_key("track 07.mp3"), sort_key("track 7.mp3"));
    EXPECT_NE(sort_key("0a00"), sort_key("00a0"));
}

TEST(SortKey, IgnoresCaseInAllOfUnicode) {
    const std::vector<std::string> expected = {"a", "B", "\u00e4", "\u00d6", "\u0436", "\u0423"};
    const std::vector<std::string> folded = sorted({"\u0423", "\u0436", "\u00d6", "B", "a", "\u00e4"});
    EXPECT_EQ(folded, expected);
}

TEST(SortKey, SortsBytesThatAreNotUtf8ByValue) {
    const std::vector<std::string> expected = {"a\x81", "a\xc3\xa4", "a\xff"};
    EXPECT_EQ(sorted({"a\xff", "a\xc3\xa4", "a\x81"}), expected);
}

TEST(SortKey, PutsAShorterNameFirst) {
    EXPECT_LT(sort_key("a"), sort_key("a b"));
    EXPECT_LT(sort_key("a01"), sort_key("a01 b"));
}

TEST(FileExtension, IsFoldedAndFollowsTheLastDot) {
    EXPECT_EQ(file_extension("IMG_0001.JPG"), "jpg");
    EXPECT_EQ(file_extension("archive.tar.GZ"), "gz");
    EXPECT_EQ(file_extension("none"), "");
    EXPECT_EQ(file_extension("dot."), "");
}

TEST(MatchesPattern, PercentStandsForAnyCharacters) {
    EXPECT_TRUE(matches_pattern("holiday.jpg", "%.jpg"));
    EXPECT_TRUE(matches_pattern("a-b-c", "%b%"));
    EXPECT_TRUE(matches_pattern("", "%"));
    EXPECT_TRUE(matches_pattern("abcabc", "%abc"));
    EXPECT_FALSE(matches_pattern("holiday.jpeg", "%.jpg"));
    EXPECT_FALSE(matches_pattern("b", "%a%"));
}

TEST(MatchesPattern, UnderscoreStandsForOneCharacterOfAnyLength) {
    EXPECT_TRUE(matches_pattern("abc", "a_c"));
    EXPECT_TRUE(matches_pattern("a\u00e4c", "a_c"));
    EXPECT_TRUE(
        matches_pattern("a\xff"
                        "c",
                        "a_c"));
    EXPECT_FALSE(matches_pattern("ac", "a_c"));
    EXPECT_FALSE(matches_pattern("abbc", "a_c"));
}

TEST(MatchesPattern, NothingButNothingIsTheEmptyPattern) {
    EXPECT_TRUE(matches_pattern("", ""));
    EXPECT_FALSE(matches_pattern("a", ""));
    EXPECT_FALSE(matches_pattern("", "_"));
}

}  // namespace
}  // namespace media_content
