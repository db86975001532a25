#include "apps/qra/foreign_playlist.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "tests/fakes/temp_dir.h"

namespace {

/// The entries as "location=title" with a bar behind each.
std::string entries(const std::string& bytes) {
    std::string text;
    for (const ForeignEntry& entry : read_foreign_playlist(bytes))
        text += entry.location + "=" + entry.title + "|";
    return text;
}

TEST(ForeignPlaylist, TextsOfAllEncodingsAreToldApart) {
    EXPECT_EQ(text_as_utf8("caf\xC3\xA9"), "café");
    EXPECT_EQ(text_as_utf8("\xEF\xBB\xBF"
                           "caf\xC3\xA9"),
              "café");
    EXPECT_EQ(text_as_utf8("caf\xE9"), "café");
    EXPECT_EQ(text_as_utf8(std::string("\xFF\xFE"
                                       "a\0\xE9\0",
                                       6)),
              "aé");
    EXPECT_EQ(text_as_utf8(std::string("\xFE\xFF\0a\0\xE9", 6)), "aé");
    EXPECT_EQ(text_as_utf8(""), "");
}

TEST(ForeignPlaylist, AnM3uHasPathsAndTheTitlesBeforeThem) {
    EXPECT_EQ(entries("#EXTM3U\r\n#EXTINF:12,Band - Song\r\nsub/a b.mp3\r\n# remark\n\nb.mp3\n"),
              "sub/a b.mp3=Band - Song|b.mp3=|");
    EXPECT_EQ(entries("a.mp3\rb.mp3\r"), "a.mp3=|b.mp3=|");
    EXPECT_EQ(entries("\xEF\xBB\xBF#EXTM3U\na.mp3\n"), "a.mp3=|");
    EXPECT_EQ(entries("#EXTINF:1,caf\xE9\ncaf\xE9.mp3\n"), "caf\xE9.mp3=café|") << "a path is bytes";
    EXPECT_EQ(entries(""), "");
}

TEST(ForeignPlaylist, APlsHasNumberedEntries) {
    EXPECT_EQ(entries("[playlist]\nNumberOfEntries=7\nFile1=a.mp3\nTitle1=One\nFile2=/m/b.mp3\nVersion=2\n"),
              "a.mp3=One|/m/b.mp3=|");
    EXPECT_EQ(entries("[playlist]\nFile1=caf\xE9.mp3\n"), "café.mp3=|");
    EXPECT_EQ(entries("[other]\nFile1=a.mp3\n"), "");
    EXPECT_THROW(entries("[playlist\nFile1"), std::invalid_argument);
}

TEST(ForeignPlaylist, AnXspfHasTracks) {
    EXPECT_EQ(entries("<?xml version='1.0' encoding='ISO-8859-1'?><playlist xmlns='http://xspf.org/ns/0/'>"
                      "<title>x</title><trackList><track><title>caf\xE9</title>"
                      "<location> file:///m/a%20b.mp3 </location><location>other</location></track>"
                      "<track><title>nowhere</title></track></trackList></playlist>"),
              "file:///m/a%20b.mp3=café|");
    EXPECT_THROW(entries("<playlist>"), std::invalid_argument);
    EXPECT_THROW(entries("<html></html>"), std::invalid_argument);
    EXPECT_EQ(entries("<!DOCTYPE p [<!ENTITY x SYSTEM '/etc/passwd'>]><playlist><trackList><track>"
                      "<location>&x;</location></track></trackList></playlist>"),
              "");
}

TEST(ForeignPlaylist, ALocationIsAFileBesideThePlaylistOrAUriOfOne) {
    const TempDir dir;
    const auto file = [&](const std::string& location) { return file_of_location(location, dir.path()); };
    EXPECT_EQ(file("a.mp3"), dir.path("a.mp3"));
    EXPECT_EQ(file("./x/../a.mp3"), dir.path("a.mp3"));
    EXPECT_EQ(file("/m/a.mp3"), "/m/a.mp3");
    EXPECT_EQ(file("file:///m/a%20b.mp3"), "/m/a b.mp3");
    EXPECT_EQ(file("http://example.org/a.mp3"), "");
    EXPECT_EQ(file("C:\\a.mp3"), dir.path("C:\\a.mp3"));
    dir.write("a b.mp3", "");
    dir.write("café.mp3", "");
    EXPECT_EQ(file("a%20b.mp3"), dir.path("a b.mp3"));
    EXPECT_EQ(file("caf\xE9.mp3"), dir.path("café.mp3"));
    dir.write("a%20b.mp3", "");
    EXPECT_EQ(file("a%20b.mp3"), dir.path("a%20b.mp3"));
}

TEST(ForeignPlaylist, WhatIsNoTextIsNoPlaylist) {
    using namespace std::string_literals;
    EXPECT_THROW(entries("a.mp3\n\0b.mp3\n"s), std::invalid_argument);
    EXPECT_EQ(entries("\xFF\xFE\x61\0\n\0"s), "a=|");
}

TEST(ForeignPlaylist, WhatIsWrittenCanBeReadAgain) {
    const std::string text = write_m3u8({{"sub/a.mp3", "Band - Song", 215}, {"#1.mp3", "caf\xE9\nx", -1}});
    EXPECT_EQ(text, "#EXTM3U\n#EXTINF:215,Band - Song\nsub/a.mp3\n#EXTINF:-1,café x\n./#1.mp3\n");
    EXPECT_EQ(entries(text), "sub/a.mp3=Band - Song|./#1.mp3=café x|");
}

}  // namespace
