#include "platform/nubelink/host/didl_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "nubelink.h"
#include "platform/nubelink/host/text.h"
#include "platform/nubelink/host/xml.h"

using namespace nbl;
using testing::ElementsAre;

namespace {

constexpr char kHead[] =
    "<DIDL-Lite xmlns:dc=\"http://purl.org/dc/elements/1.1/\" "
    "xmlns:upnp=\"urn:schemas-upnp-org:metadata-1-0/upnp/\" "
    "xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\" "
    "xmlns:dlna=\"urn:schemas-dlna-org:metadata-1-0/\">";

/// Reads as an answer is read: mended, then parsed.
std::vector<ItemPtr> read(std::string document, bool* whole = nullptr) {
    mend_xml(document);
    std::vector<ItemPtr> items;
    const bool good = read_didl(document, nullptr, items);
    if (whole != nullptr) {
        *whole = good;
    }
    return items;
}

std::vector<ItemPtr> read_objects(const std::string& objects) {
    return read(kHead + objects + "</DIDL-Lite>");
}

std::vector<std::string> titles(const std::vector<ItemPtr>& items) {
    std::vector<std::string> titles;
    for (const ItemPtr& item : items) {
        titles.emplace_back(item->text("dc:title"));
    }
    return titles;
}

std::string titled(const std::string& title) {
    return "<item id=\"" + title + "\"><dc:title>" + title + "</dc:title></item>";
}

TEST(DidlReader, ReadsFoldersAndItemsInTheirOrder) {
    const auto items = read_objects(
        "<container id=\"1\" childCount=\"7\"><dc:title>Music</dc:title>"
        "<upnp:class>object.container.storageFolder</upnp:class></container>"
        "<item "
        "id=\"2\"><dc:title>Song</dc:title><upnp:class>object.item.audioItem.musicTrack</upnp:class></item>"
        "<item id=\"3\"><dc:title>Film</dc:title><upnp:class>object.item.videoItem</upnp:class></item>"
        "<item id=\"4\"><dc:title>Photo</dc:title><upnp:class>object.item.imageItem.photo</upnp:class></item>"
        "<item id=\"5\"><dc:title>Text</dc:title><upnp:class>object.item.textItem</upnp:class></item>");
    EXPECT_THAT(titles(items), ElementsAre("Music", "Song", "Film", "Photo", "Text"));
    std::vector<int> types;
    for (const ItemPtr& item : items) {
        types.push_back(item->type());
    }
    EXPECT_THAT(types, ElementsAre(NBL_ITEM_TYPE_FOLDER, NBL_ITEM_TYPE_MUSIC, NBL_ITEM_TYPE_VIDEO,
                                   NBL_ITEM_TYPE_IMAGE, NBL_ITEM_TYPE_OTHER));
    EXPECT_EQ(items[0]->text("@childCount"), "7");
}

TEST(DidlReader, KeepsEveryPropertyByItsName) {
    const auto items = read_objects(
        "<item id=\"1\" parentID=\"0\" "
        "restricted=\"1\"><dc:title>T</dc:title><upnp:playbackCount>12</upnp:playbackCount>"
        "<kvr:dcmInfo xmlns:kvr=\"http://example/\">CREATIONDATE=1234,OTHER=1</kvr:dcmInfo>"
        "<upnp:genre>Jazz</upnp:genre><upnp:genre>Blues</upnp:genre>"
        "<res protocolInfo=\"http-get:*:audio/mpeg:*\" bitrate=\"16000\">http://a/b.mp3</res></item>");
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0]->text("@parentID"), "0");
    EXPECT_EQ(items[0]->text("upnp:playbackCount"), "12");
    EXPECT_EQ(items[0]->text("kvr:dcmInfo"), "CREATIONDATE=1234,OTHER=1");
    EXPECT_EQ(items[0]->text("upnp:genre"), "Jazz") << "the first of several";
    EXPECT_EQ(items[0]->text("res@bitrate"), "16000");
    EXPECT_FALSE(items[0]->find("dc:date"));
}

TEST(DidlReader, KnowsTheStandardsNamesUnderAnyPrefix) {
    const auto items = read(
        "<d:DIDL-Lite xmlns:d=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\" "
        "xmlns:x=\"http://purl.org/dc/elements/1.1/\" xmlns:y=\"urn:schemas-upnp-org:metadata-1-0/upnp/\">"
        "<d:item id=\"1\"><x:title>T</x:title><y:album>A</y:album></d:item></d:DIDL-Lite>");
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0]->text("dc:title"), "T");
    EXPECT_EQ(items[0]->text("upnp:album"), "A");
}

TEST(DidlReader, TakesPrefixesThatNobodyDeclared) {
    const auto items = read("<DIDL-Lite><item id=\"1\"><dc:title>T</dc:title></item></DIDL-Lite>");
    EXPECT_THAT(titles(items), ElementsAre("T"));
}

TEST(DidlReader, ReadsNothingFromAnEmptyDocument) {
    for (const char* empty : {"", " \n", "<DIDL-Lite/>", "<DIDL-Lite></DIDL-Lite>"}) {
        bool whole = false;
        EXPECT_TRUE(read(empty, &whole).empty()) << empty;
        EXPECT_TRUE(whole) << empty;
    }
}

TEST(DidlReader, ListsAnItemWithBrokenBytesAndItsNeighboursUnharmed) {
    const auto items = read_objects(titled("Käse") + titled("B\xE4r") + titled("Übung"));
    EXPECT_THAT(titles(items), ElementsAre("Käse", "B\xEF\xBF\xBDr", "Übung"));
}

TEST(DidlReader, ReadsTextsWithLooseAmpersands) {
    const auto items = read_objects(
        "<item id=\"1\"><dc:title>Tom & Jerry</dc:title>"
        "<res protocolInfo=\"http-get:*:video/mp4:*\">http://a/?x=1&y=2</res></item>");
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0]->text("dc:title"), "Tom & Jerry");
    EXPECT_EQ(items[0]->text("res"), "http://a/?x=1&y=2");
}

TEST(DidlReader, KeepsWhatCameBeforeTheBreak) {
    bool whole = true;
    const auto items = read(kHead + titled("a") + titled("b") + "<item id=\"c\"><dc:tit", &whole);
    EXPECT_THAT(titles(items), ElementsAre("a", "b"));
    EXPECT_FALSE(whole);
}

TEST(DidlReader, ReadsOnAfterAnElementThatEndsWrong) {
    const auto items =
        read_objects(titled("a") + "<item id=\"b\"><dc:title>b</dc:titel></item>" + titled("c"));
    EXPECT_THAT(titles(items), testing::Contains("a"));
    EXPECT_THAT(titles(items), testing::Contains("c"));
}

TEST(DidlReader, ReadsNothingThatIsNoXml) {
    bool whole = true;
    EXPECT_TRUE(read("no XML at all", &whole).empty());
    EXPECT_FALSE(whole);
}

TEST(DidlReader, ExpandsNoEntities) {
    bool whole = true;
    const auto items = read(
        "<!DOCTYPE d [<!ENTITY a \"aaaa\"><!ENTITY f SYSTEM \"file:///etc/passwd\">]>"
        "<DIDL-Lite><item id=\"1\"><title>&a;&f;</title></item></DIDL-Lite>",
        &whole);
    EXPECT_TRUE(items.empty());
    EXPECT_FALSE(whole);
}

TEST(DidlReader, StopsWhereElementsLieTooDeep) {
    std::string deep = kHead + titled("a") + "<item id=\"b\">";
    for (int i = 0; i < 10'000; ++i) {
        deep += "<x>";
    }
    bool whole = true;
    EXPECT_THAT(titles(read(deep, &whole)), ElementsAre("a"));
    EXPECT_FALSE(whole);
}

std::string attributes(int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += " a" + std::to_string(i) + "=\"x=y>z\"";
    }
    return text;
}

TEST(DidlReader, StopsAtATagWithMoreAttributesThanAnyHas) {
    constexpr int kMost = static_cast<int>(kMostXmlAttributes);
    bool whole = true;
    const auto items =
        read(kHead + titled("a") + "<item" + attributes(kMost) + "><dc:title>b</dc:title></item><item" +
                 attributes(kMost + 1) + "><dc:title>c</dc:title></item>" + titled("d") + "</DIDL-Lite>",
             &whole);
    EXPECT_THAT(titles(items), ElementsAre("a", "b"));
    EXPECT_FALSE(whole);
}

TEST(DidlReader, ReadsNoMoreObjectsThanAreWanted) {
    const std::string document = kHead + titled("a") + titled("b") + titled("c") + "</DIDL-Lite>";
    std::vector<ItemPtr> items;
    EXPECT_TRUE(read_didl(document, nullptr, items, 2));
    EXPECT_THAT(titles(items), ElementsAre("a", "b"));
}

TEST(DidlReader, LeavesOutObjectsInsideObjects) {
    const auto items =
        read_objects("<container id=\"1\"><dc:title>outer</dc:title>" + titled("inner") + "</container>");
    EXPECT_THAT(titles(items), ElementsAre("outer"));
}

TEST(DidlReader, NamesAnObjectWithoutTitleByItsId) {
    EXPECT_THAT(titles(read_objects("<item id=\"64$1\"/>")), ElementsAre("64$1"));
}

TEST(DidlReader, PrefersTheOriginalThatCanBeFetched) {
    const auto items = read_objects(
        "<item id=\"1\"><dc:title>T</dc:title>"
        "<res protocolInfo=\"rtsp-rtp-udp:*:video/mp4:*\">rtsp://a/1</res>"
        "<res protocolInfo=\"http-get:*:video/mpeg:DLNA.ORG_OP=10;DLNA.ORG_CI=1\" size=\"1\">http://a/2</res>"
        "<res protocolInfo=\"http-get:*:video/mp4:DLNA.ORG_OP=01\" size=\"2\">http://a/3</res></item>");
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0]->text("res"), "http://a/3");
    EXPECT_EQ(items[0]->text("res@size"), "2");
}

TEST(DidlReader, PrefersTheLargestPictureAndKeepsTheSmallOneAsThumbnail) {
    const auto items = read_objects(
        "<item id=\"1\"><dc:title>T</dc:title><upnp:class>object.item.imageItem</upnp:class>"
        "<res protocolInfo=\"http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_TN\" "
        "resolution=\"160x120\">http://a/t</res>"
        "<res protocolInfo=\"http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_MED\" "
        "resolution=\"800x600\">http://a/m</res>"
        "<res protocolInfo=\"http-get:*:image/jpeg:*\" resolution=\"4000x3000\">http://a/l</res></item>");
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0]->text("res"), "http://a/l");
    EXPECT_EQ(items[0]->text(property::kThumbnail), "http://a/t");
}

TEST(DidlReader, KeepsSubtitlesApart) {
    const auto items = read_objects(
        "<item id=\"1\"><dc:title>T</dc:title>"
        "<res protocolInfo=\"http-get:*:text/srt:*\">http://a/s.srt</res>"
        "<res protocolInfo=\"http-get:*:video/mp4:*\">http://a/v.mp4</res></item>");
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0]->text("res"), "http://a/v.mp4");
    EXPECT_EQ(items[0]->text(property::kSubtitle), "http://a/s.srt");
}

TEST(DidlReader, BoundsWhatAServerCanMakeItHold) {
    std::string object = "<item id=\"1\"><dc:title>" + std::string(10'000'000, 'x') + "</dc:title>";
    for (int i = 0; i < 2000; ++i) {
        object += "<p" + std::to_string(i) + ">" + std::string(100, 'y') + "</p" + std::to_string(i) + ">";
    }
    const auto items = read_objects(object + "</item>");
    ASSERT_EQ(items.size(), 1U);
    EXPECT_EQ(items[0]->text("dc:title").size(), ItemBuilder::kLargestValue);
    EXPECT_LE(items[0]->bytes().size(), ItemBuilder::kLargestRecord);
}

TEST(DidlReader, NamesAnObjectThatDrownsInOtherProperties) {
    std::string object = "<item id=\"7\">";
    for (int i = 0; i < 20'000; ++i) {
        object += "<a" + std::to_string(i) + ">x</a" + std::to_string(i) + ">";
    }
    const auto items = read_objects(object + "<dc:title>late</dc:title><res>http://a/b</res></item>");
    EXPECT_THAT(titles(items), ElementsAre("7"));
    EXPECT_EQ(items[0]->text("res"), "http://a/b");
}

}  // namespace
