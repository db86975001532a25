#include "apps/qra/tile_choice.h"

#include <gmock/gmock.h>

#include <climits>
#include <stdexcept>

namespace {

/// The choices in short, one after another.
std::string read(const std::string& text) {
    struct Writer {
        std::string operator()(const IndexChoice& choice) const {
            return std::to_string(choice.first) + ".." +
                   (choice.last == INT_MAX ? "end" : std::to_string(choice.last));
        }
        std::string operator()(const GroupChoice& choice) const {
            return "group " + std::to_string(choice.group);
        }
        std::string operator()(const FieldChoice& choice) const {
            return choice.field + " is " + choice.pattern;
        }
    };
    std::string all;
    for (const TileChoice& choice : parse_tile_choices(text)) {
        all += (all.empty() ? "" : ", ") + std::visit(Writer(), choice);
    }
    return all;
}

TEST(TileChoice, ReadsIndicesAndRanges) {
    EXPECT_EQ(read("3"), "3..3");
    EXPECT_EQ(read("3-7,12"), "3..7, 12..12");
    EXPECT_EQ(read("0-0,5-"), "0..0, 5..end");
    EXPECT_EQ(read("all"), "0..end");
}

TEST(TileChoice, ReadsGroupsAndFields) {
    EXPECT_EQ(read("group:2,0"), "group 2, 0..0");
    EXPECT_EQ(read("TITLE=IMG*"), "TITLE is IMG*");
    EXPECT_EQ(read("GENRE=a=b,MEDIA_TYPE=2"), "GENRE is a=b, MEDIA_TYPE is 2");
    EXPECT_EQ(read("ARTIST="), "ARTIST is ");
}

TEST(TileChoice, CommaBehindABackslashBelongsToThePattern) {
    EXPECT_EQ(read("TITLE=a\\,b,1"), "TITLE is a\\,b, 1..1");
    EXPECT_EQ(read("TITLE=a\\\\,1"), "TITLE is a\\\\, 1..1");
}

TEST(TileChoice, WhatCannotBeReadIsTold) {
    for (const char* text : {"",         ",",       "3,",          "-3",      "7-3",
                             "3--7",     "3-7-9",   "x",           "ALL",     "group:",
                             "group:-1", "group:x", "=x",          "title=x", "+3",
                             " 3",       "3 ",      "99999999999", "0x3",     "3-99999999999",
                             "TITLE"}) {
        EXPECT_THROW(parse_tile_choices(text), std::invalid_argument) << text;
    }
    try {
        parse_tile_choices("1,two,3");
        FAIL() << "read what is no choice";
    } catch (const std::invalid_argument& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("'two'"));
    }
}

TEST(TileChoice, PatternsAreThoseOfTheShell) {
    EXPECT_TRUE(matches({"TITLE", "IMG*"}, "IMG_2.png"));
    EXPECT_TRUE(matches({"TITLE", "IMG_?.png"}, "IMG_2.png"));
    EXPECT_TRUE(matches({"TITLE", "[A-Z]*"}, "IMG_2.png"));
    EXPECT_TRUE(matches({"TITLE", "a\\,b"}, "a,b"));
    EXPECT_TRUE(matches({"TITLE", "a\\*b"}, "a*b"));
    EXPECT_TRUE(matches({"TITLE", ""}, ""));
    EXPECT_TRUE(matches({"FILE_PATH", "*.srf"}, "/a/b/c.srf"));
    EXPECT_FALSE(matches({"TITLE", "IMG"}, "IMG_2.png"));
    EXPECT_FALSE(matches({"TITLE", "img*"}, "IMG_2.png"));
    EXPECT_FALSE(matches({"TITLE", "a\\*b"}, "axb"));
}

}  // namespace
