#include "apps/qra/terminal_text.h"

#include <gtest/gtest.h>

#include <cstdlib>

TEST(TerminalText, OrdinaryTextIsUnchanged) {
    EXPECT_EQ(printable_text("Sommer 2021 – Größe 'x' \\ %_.jpg"), "Sommer 2021 – Größe 'x' \\ %_.jpg");
    EXPECT_EQ(printable_text("写真 👩‍👧"), "写真 👩‍👧");
    EXPECT_EQ(printable_text(""), "");
}

TEST(TerminalText, ControlCharactersAreEscaped) {
    EXPECT_EQ(printable_text("a\nb\rc\td"), "a\\nb\\rc\\td");
    EXPECT_EQ(printable_text("\033[2J\a"), "\\x1b[2J\\x07");
    EXPECT_EQ(printable_text(std::string_view("\0x", 2)), "\\x00x");
    EXPECT_EQ(printable_text("\x7f"), "\\x7f");
    EXPECT_EQ(printable_text("\xC2\x9B"
                             "31m"),
              "\\x9b31m");
}

TEST(TerminalText, CharactersThatTurnTheTextAroundAreEscaped) {
    EXPECT_EQ(printable_text("photo\xE2\x80\xAEgpj.exe"), "photo\\u202egpj.exe");
    EXPECT_EQ(printable_text("a\xE2\x80\xA8z"), "a\\u2028z");
}

TEST(TerminalText, BytesThatAreNotUtf8AreEscapedOneByOne) {
    EXPECT_EQ(printable_text("caf\xE9.jpg"), "caf\\xe9.jpg");
    EXPECT_EQ(printable_text("\xE2\x82"), "\\xe2\\x82");
    EXPECT_EQ(printable_text("\xC0\x80"), "\\xc0\\x80");
    EXPECT_EQ(printable_text("\xED\xA0\x80"), "\\xed\\xa0\\x80");
}

TEST(TerminalText, WidthCountsTerminalCells) {
    EXPECT_EQ(cell_width("abc"), 3u);
    EXPECT_EQ(cell_width("写真"), 4u);
    EXPECT_EQ(cell_width("e\xCC\x81"), 1u);
}

TEST(TerminalText, ShortTextIsPaddedToItsCells) {
    EXPECT_EQ(fit_to_cells("ab", 4, "~"), "ab  ");
    EXPECT_EQ(fit_to_cells("写真", 5, "~"), "写真 ");
    EXPECT_EQ(fit_to_cells("abcd", 4, "~"), "abcd");
}

TEST(TerminalText, LongTextIsCutByCellsNotBytes) {
    EXPECT_EQ(fit_to_cells("abcdef", 4, "~"), "abc~");
    EXPECT_EQ(fit_to_cells("Größenordnung", 5, "…"), "Größ…");
    EXPECT_EQ(fit_to_cells("写真写真", 4, "…"), "写… ");
    EXPECT_EQ(fit_to_cells("abc", 1, "~"), "~");
    EXPECT_EQ(fit_to_cells("abc", 0, "~"), "");
}

TEST(TerminalText, SizesHaveDecimalUnitsAndTwoDigitsOrMore) {
    EXPECT_EQ(readable_size(0), "0 B");
    EXPECT_EQ(readable_size(999), "999 B");
    EXPECT_EQ(readable_size(1000), "1.0 kB");
    EXPECT_EQ(readable_size(4'210'000), "4.2 MB");
    EXPECT_EQ(readable_size(9'960'000), "10 MB");
    EXPECT_EQ(readable_size(999'499), "999 kB");
    EXPECT_EQ(readable_size(999'500), "1.0 MB");
    EXPECT_EQ(readable_size(17'000'000'000), "17 GB");
    EXPECT_EQ(readable_size(UINT64_MAX), "18 EB");
}

TEST(TerminalText, DurationsShowHoursOnlyWhereThereAreSome) {
    EXPECT_EQ(readable_duration(999), "0:00");
    EXPECT_EQ(readable_duration(7'000), "0:07");
    EXPECT_EQ(readable_duration(225'900), "3:45");
    EXPECT_EQ(readable_duration(3'723'000), "1:02:03");
}

TEST(TerminalText, TimesAreOfTheLocalZone) {
    setenv("TZ", "Europe/Kyiv", 1);
    tzset();
    EXPECT_EQ(readable_time(1'620'296'430), "2021-05-06 13:20");
    EXPECT_EQ(readable_time(0), "");
}
