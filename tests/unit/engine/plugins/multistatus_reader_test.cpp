#include "engine/plugins/webdav/multistatus_reader.h"

#include <gtest/gtest.h>

#include <cstring>

#include <string>
#include <vector>

#include "engine/plugins/webdav/webdav_item.h"

using namespace engine;

namespace {

std::vector<WebDavEntry> entries_of(const std::string& responses, bool keep_all = false) {
    const std::string answer = R"(<D:multistatus xmlns:D="DAV:" xmlns:o="http://owncloud.org/ns" )"
                               R"(xmlns:n="http://nextcloud.org/ns">)" +
                               responses + "</D:multistatus>";
    std::vector<WebDavEntry> entries;
    MultistatusReader reader([&entries](WebDavEntry& entry) { entries.push_back(entry); }, keep_all);
    EXPECT_TRUE(reader.read(answer.data(), answer.size()) && reader.finish()) << reader.reason();
    return entries;
}

std::string propstat(const std::string& properties, const std::string& status = "HTTP/1.1 200 OK") {
    return "<D:propstat><D:prop>" + properties + "</D:prop><D:status>" + status + "</D:status></D:propstat>";
}

std::string response(const std::string& parts) {
    return "<D:response><D:href>/a</D:href>" + parts + "</D:response>";
}

}  // namespace

TEST(MultistatusReader, ReadsTheKnownProperties) {
    const auto entries =
        entries_of(response(propstat("<D:resourcetype/><D:getcontenttype> image/jpeg "
                                     "</D:getcontenttype><D:displayname>A &amp; B</D:displayname>"
                                     "<D:getcontentlength>12</D:getcontentlength><D:getetag>\"e\"</D:getetag>"
                                     "<D:getlastmodified>Sat, 21 Nov 2026 22:16:45 GMT</D:getlastmodified>"
                                     "<D:creationdate>2020-09-13T12:26:40Z</D:creationdate>"
                                     "<o:fileid>17</o:fileid><n:has-preview>true</n:has-preview>")));

    ASSERT_EQ(entries.size(), 1U);
    const WebDavEntry& entry = entries[0];
    EXPECT_EQ(entry.href, "/a");
    EXPECT_FALSE(entry.folder);
    EXPECT_EQ(entry.content_type, "image/jpeg");
    EXPECT_EQ(entry.display_name, "A & B");
    EXPECT_EQ(entry.size, 12U);
    EXPECT_EQ(entry.etag, "\"e\"");
    EXPECT_EQ(entry.modified, 1795299405);
    EXPECT_EQ(entry.created, 1600000000);
    EXPECT_EQ(entry.file_id, "17");
    EXPECT_TRUE(entry.has_preview);
}

TEST(MultistatusReader, ACollectionIsAFolder) {
    const auto entries = entries_of(response(propstat("<D:resourcetype><D:collection/></D:resourcetype>")));

    ASSERT_EQ(entries.size(), 1U);
    EXPECT_TRUE(entries[0].folder);
}

TEST(MultistatusReader, PropertiesThatTheServerDoesNotHaveDoNotCount) {
    const auto entries = entries_of(response(
        propstat("<D:getcontentlength>5</D:getcontentlength><D:resourcetype><D:collection/></D:resourcetype>",
                 "HTTP/1.1 404 Not Found") +
        propstat("<D:displayname>B</D:displayname>")));

    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].size, 0U);
    EXPECT_FALSE(entries[0].folder);
    EXPECT_EQ(entries[0].display_name, "B");
}

TEST(MultistatusReader, NothingIsLeftOverFromTheResourceBefore) {
    const auto entries =
        entries_of(response(propstat("<D:displayname>B</D:displayname>")) + response(propstat("")));

    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[1].display_name, "");
}

TEST(MultistatusReader, AResourceWithoutAddressOrWithAFailureIsLeftOut) {
    EXPECT_TRUE(entries_of("<D:response/><D:response><D:href/></D:response>" +
                           response("<D:status>HTTP/1.1 403 Forbidden</D:status>"))
                    .empty());
}

TEST(MultistatusReader, NumbersAndTimesThatAreNoneAreNotKnown) {
    const auto entries = entries_of(response(propstat(
        "<D:getcontentlength>-5</D:getcontentlength><D:getlastmodified>yesterday</D:getlastmodified>")));

    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries[0].size, 0U);
    EXPECT_EQ(entries[0].modified, 0);
}

TEST(MultistatusReader, AnAddressThatIsTooLongIsNone) {
    EXPECT_TRUE(
        entries_of("<D:response><D:href>/" + std::string(100'000, 'a') + "</D:href></D:response>").empty());
}

TEST(MultistatusReader, KeepsFurtherPropertiesIfAsked) {
    const std::string text = response(propstat("<x:rating xmlns:x=\"urn:x\">5</x:rating>"));

    EXPECT_TRUE(entries_of(text).at(0).others.empty());
    const auto entries = entries_of(text, true);
    ASSERT_EQ(entries.at(0).others.size(), 1U);
    EXPECT_EQ(entries[0].others[0].first, "urn:x rating");
    EXPECT_EQ(entries[0].others[0].second, "5");
}

TEST(MultistatusReader, KeepsTheFirstOfAFurtherPropertyThatComesTwice) {
    const std::string rating = "<x:rating xmlns:x=\"urn:x\">";
    const std::string twice =
        propstat(rating + "5</x:rating>" + rating + "6</x:rating>") + propstat(rating + "7</x:rating>");

    const auto entries = entries_of(response(twice), true);

    ASSERT_EQ(entries.at(0).others.size(), 1U);
    EXPECT_EQ(entries[0].others[0].second, "5");
}

TEST(MultistatusReader, RefusesOtherDocuments) {
    for (const char* other : {"<html/>", "<multistatus/>", R"(<m xmlns="DAV:"/>)"}) {
        MultistatusReader reader([](WebDavEntry&) { ADD_FAILURE(); });
        EXPECT_FALSE(reader.read(other, std::strlen(other)) && reader.finish()) << other;
        EXPECT_EQ(reader.reason(), "it is not the answer of a WebDAV server");
    }
}

TEST(WebDavItem, APreviewOfTheServerIsTheThumbnail) {
    WebDavEntry entry;
    entry.content_type = "image/jpeg";
    entry.file_id = "17";
    entry.has_preview = true;

    const Item item = webdav_item(entry, {"a.jpg", "", "https://host/cloud/remote.php/dav/files/anna/a.jpg"});

    EXPECT_EQ(item.thumbnail, "https://host/cloud/index.php/core/preview?fileId=17&x=512&y=512&a=1");
}

TEST(WebDavItem, WithoutAPreviewThereIsNoThumbnail) {
    const std::string url = "https://host/remote.php/dav/files/anna/a.jpg";
    WebDavEntry entry;
    entry.file_id = "17";
    EXPECT_EQ(webdav_item(entry, {"a.jpg", "", url}).thumbnail, "");
    entry.has_preview = true;
    EXPECT_EQ(webdav_item(entry, {"a.jpg", "", "https://host/dav/a.jpg"}).thumbnail, "");
    entry.file_id = "17&x=";
    EXPECT_EQ(webdav_item(entry, {"a.jpg", "", url}).thumbnail, "");
}
