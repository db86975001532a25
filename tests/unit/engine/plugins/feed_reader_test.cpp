#include "engine/plugins/feed/feed_reader.h"

#include <gtest/gtest.h>

#include "engine/plugins/feed/feed_items.h"
#include "engine/plugins/support/time_text.h"

using namespace engine;

namespace {

constexpr char kUrl[] = "https://example.org/talk/feed.xml";

std::vector<Item> items_of(const std::string& text) {
    FeedReader reader;
    EXPECT_TRUE(reader.read(text.data(), text.size()) && reader.finish()) << reader.reason();
    return feed_items(reader, kUrl);
}

std::vector<Item> items_of_channel(const std::string& content) {
    return items_of(R"(<rss xmlns:itunes="http://www.itunes.com/dtds/podcast-1.0.dtd" )"
                    R"(xmlns:media="http://search.yahoo.com/mrss/"><channel>)" +
                    content + "</channel></rss>");
}

constexpr char kSound[] = R"(<enclosure url="a.mp3" length="5" type="audio/mpeg"/>)";

}  // namespace

TEST(FeedReader, ReadsAtom) {
    const auto items = items_of(R"(<feed xmlns="http://www.w3.org/2005/Atom"><logo>l.png</logo><entry>
        <title type="xhtml"><div xmlns="http://www.w3.org/1999/xhtml">A <b>bold</b> one</div></title>
        <id>urn:1</id><updated>2020-09-13T14:26:40+02:00</updated><summary>S</summary>
        <link rel="enclosure" href="b.mp4" type="video/mp4" length="7"/><link href="page"/>
        <author><name>N</name></author></entry></feed>)");

    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].title, "A bold one");
    EXPECT_EQ(items[0].id, "urn:1");
    EXPECT_EQ(items[0].modified, 1600000000);
    EXPECT_EQ(items[0].url, "https://example.org/talk/b.mp4");
    EXPECT_EQ(items[0].media_type, 3);
    EXPECT_EQ(items[0].size, 7U);
    EXPECT_EQ(items[0].thumbnail, "https://example.org/talk/l.png");
}

TEST(FeedReader, AnEntrysOwnPictureComesBeforeThatOfTheFeed) {
    const auto items = items_of_channel(std::string("<image><url>c.png</url></image><item>") + kSound +
                                        R"(<itunes:image href="/i.png"/></item><item>)" + kSound + "</item>");

    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].thumbnail, "https://example.org/i.png");
    EXPECT_EQ(items[1].thumbnail, "https://example.org/talk/c.png");
}

TEST(FeedReader, EachFileOfAnEntryIsAnItem) {
    const auto items = items_of_channel(
        std::string("<item><guid>g</guid>") + kSound +
        R"(<media:content url="b.jpg" fileSize="3"/><media:content url="a.mp3"/><media:content url="c.txt"/></item>)");

    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].id, "g");
    EXPECT_EQ(items[1].id, "g#2");
    EXPECT_EQ(items[1].media_type, 2);
    EXPECT_EQ(items[1].mime_type, "image/jpeg");
    EXPECT_EQ(items[1].size, 3U);
}

TEST(FeedReader, WithoutIdAndTitleTheFileGivesBoth) {
    const auto items = items_of_channel(R"(<item><enclosure url="x%20y.mp3?t=1" type=""/></item>)");

    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0].title, "x y.mp3");
    EXPECT_EQ(items[0].id, "https://example.org/talk/x%20y.mp3?t=1");
    EXPECT_EQ(items[0].mime_type, "audio/mpeg");
}

TEST(FeedReader, FilesThatAreNotOnTheWebAreLeftOut) {
    for (const char* url :
         {"file:///etc/passwd.mp3", "javascript:a.mp3", "data:audio/mpeg,a", "ftp://h/a.mp3"}) {
        EXPECT_TRUE(
            items_of_channel(std::string("<item><enclosure type=\"audio/mpeg\" url=\"") + url + "\"/></item>")
                .empty())
            << url;
    }
}

TEST(FeedReader, AnEntryIsReadByItself) {
    const auto items =
        items_of_channel(std::string("<item><title>A</title><itunes:duration>5</itunes:duration>") + kSound +
                         "</item><item>" + kSound + "</item>");

    ASSERT_EQ(items.size(), 2U);
    EXPECT_EQ(items[0].duration_ms, 5000U);
    EXPECT_EQ(items[1].duration_ms, 0U);
    EXPECT_EQ(items[1].title, "a.mp3");
}

TEST(FeedReader, LongTextsAreCutBetweenCharacters) {
    std::string title = "x";
    for (int i = 0; i < 20'000; ++i) {
        title += "\xc3\xbc";
    }
    const auto items = items_of_channel("<item><title>" + title + "</title>" + kSound + "</item>");

    ASSERT_EQ(items.size(), 1U);
    EXPECT_LT(items[0].title.size(), 20'000U);
    EXPECT_EQ(items[0].title.size() % 2, 1U);
}

TEST(FeedReader, AFeedOfTooManyEntriesIsRefused) {
    std::string text = "<rss><channel>";
    for (size_t i = 0; i <= FeedReader::kMostEntries; ++i) {
        text += std::string("<item>") + kSound + "</item>";
    }
    FeedReader reader;

    EXPECT_FALSE(reader.read(text.data(), text.size()));

    EXPECT_EQ(reader.reason(), "it has more entries than can be shown");
}

TEST(TimeText, ReadsDurations) {
    EXPECT_EQ(milliseconds_of_duration("754"), 754'000U);
    EXPECT_EQ(milliseconds_of_duration("45:10"), 2'710'000U);
    EXPECT_EQ(milliseconds_of_duration("1:02:03"), 3'723'000U);
    for (const char* wrong : {"", ":", "1:", "x", "-1", "1:2:3:4", "1.5", "9999999999", "999999999:59:59"}) {
        EXPECT_EQ(milliseconds_of_duration(wrong), 0U) << wrong;
    }
}

TEST(TimeText, ReadsTimesWithTheirZones) {
    EXPECT_EQ(seconds_of_mail_time("Sun, 13 Sep 2020 12:26:40 GMT"), 1600000000);
    EXPECT_EQ(seconds_of_mail_time("Sun, 13 Sep 2020 14:26:40 +0200"), 1600000000);
    EXPECT_EQ(seconds_of_iso_time("2020-09-13T12:26:40Z"), 1600000000);
    EXPECT_EQ(seconds_of_iso_time("2020-09-13T12:26:40"), 1600000000);
    EXPECT_EQ(seconds_of_mail_time("yesterday"), 0);
    EXPECT_EQ(seconds_of_iso_time("yesterday"), 0);
}
