// The functions of the contract that need no service.
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "nubelink.h"
#include "platform/nubelink/host/item_record.h"

namespace {

using TextGetter = int (*)(nbl_item_t, char**);

std::string take(char* text) {
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return text != nullptr ? text : "";
}

std::string text_of(nbl_item_t item, TextGetter getter) {
    char* text = nullptr;
    EXPECT_EQ(getter(item, &text), NBL_ERROR_NONE);
    return take(text);
}

constexpr TextGetter kTextGetters[] = {
    nbl_item_get_title,    nbl_item_get_content_id, nbl_item_get_extension,   nbl_item_get_uri,
    nbl_item_get_mta_uri,  nbl_item_get_mimetype,   nbl_item_get_album_title, nbl_item_get_artist,
    nbl_item_get_date,     nbl_item_get_genre,      nbl_item_get_location,    nbl_item_get_resolution,
    nbl_item_get_subtitle, nbl_item_get_thumbnail,
};

TEST(NblItems, GiveTheTextsOfTheirProperties) {
    nbl::ItemBuilder builder;
    builder.add("@id", "64$1");
    builder.add("dc:title", "Song");
    builder.add("upnp:album", "Album");
    builder.add("upnp:genre", "Jazz");
    builder.add("dc:date", "2021-05-06");
    builder.add("upnp:albumArtURI", "http://a/art.jpg");
    builder.add("res", "http://a/1.mp3");
    builder.add("res@protocolInfo", "http-get:*:audio/mpeg:DLNA.ORG_OP=01");
    builder.add("res@size", "5000000000");
    builder.add("res@duration", "0:00:10");
    builder.add("upnp:playbackCount", "3");
    const nbl::ItemPtr item = builder.build(NBL_ITEM_TYPE_MUSIC);
    EXPECT_EQ(text_of(item.get(), nbl_item_get_content_id), "64$1");
    EXPECT_EQ(text_of(item.get(), nbl_item_get_title), "Song");
    EXPECT_EQ(text_of(item.get(), nbl_item_get_album_title), "Album");
    EXPECT_EQ(text_of(item.get(), nbl_item_get_genre), "Jazz");
    EXPECT_EQ(text_of(item.get(), nbl_item_get_date), "2021-05-06");
    EXPECT_EQ(text_of(item.get(), nbl_item_get_thumbnail), "http://a/art.jpg");
    EXPECT_EQ(text_of(item.get(), nbl_item_get_uri), "http://a/1.mp3");
    EXPECT_EQ(text_of(item.get(), nbl_item_get_mimetype), "audio/mpeg");
    EXPECT_EQ(text_of(item.get(), nbl_item_get_extension), "mp3");
    unsigned long long large = 0;
    EXPECT_EQ(nbl_item_get_file_size(item.get(), &large), NBL_ERROR_NONE);
    EXPECT_EQ(large, 5'000'000'000ULL);
    EXPECT_EQ(nbl_item_get_duration(item.get(), &large), NBL_ERROR_NONE);
    EXPECT_EQ(large, 10'000ULL);
    char* count = nullptr;
    EXPECT_EQ(nbl_item_get_property_value_by_name(item.get(), "upnp:playbackCount", &count), NBL_ERROR_NONE);
    EXPECT_EQ(take(count), "3");
}

TEST(NblItems, SayWhereTheyHaveNoValue) {
    const nbl::ItemPtr item = nbl::ItemBuilder().build(NBL_ITEM_TYPE_OTHER);
    char marker = 'x';
    for (const TextGetter getter : kTextGetters) {
        char* text = &marker;
        EXPECT_EQ(getter(item.get(), &text), NBL_ERROR_NO_DATA);
        EXPECT_EQ(text, nullptr);
    }
    int number = 5;
    EXPECT_EQ(nbl_item_get_child_count(item.get(), &number), NBL_ERROR_NO_DATA);
    EXPECT_EQ(nbl_item_get_width(item.get(), &number), NBL_ERROR_NO_DATA);
    EXPECT_EQ(number, 5) << "a number is left alone";
}

TEST(NblItems, RefuseNullArguments) {
    char* text = nullptr;
    const nbl::ItemPtr item = nbl::ItemBuilder().build(NBL_ITEM_TYPE_OTHER);
    for (const TextGetter getter : kTextGetters) {
        EXPECT_EQ(getter(nullptr, &text), NBL_ERROR_INVALID_PARAMETER);
        EXPECT_EQ(getter(item.get(), nullptr), NBL_ERROR_INVALID_PARAMETER);
    }
    int number = 0;
    EXPECT_EQ(nbl_item_get_type(nullptr, &number), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_item_get_type(item.get(), nullptr), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_item_get_property_value_by_name(item.get(), nullptr, &text), NBL_ERROR_INVALID_PARAMETER);
    nbl_item_t made = nullptr;
    EXPECT_EQ(nbl_item_copy(nullptr, &made), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_item_create_provider_item(nullptr, &made), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_item_create_provider_item("", &made), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_item_get_local_content(nullptr, "image/png", &made), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_item_get_local_content("dir/", "image/png", &made), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_item_get_live_content("a", "image/png", nullptr, &made), NBL_ERROR_INVALID_PARAMETER);
    nbl_item_free(nullptr);
}

TEST(NblItems, ACopyIsAnotherReferenceToTheSameRecord) {
    nbl_item_t item = nullptr;
    nbl_item_t copy = nullptr;
    ASSERT_EQ(nbl_item_create_provider_item("64", &item), NBL_ERROR_NONE);
    ASSERT_EQ(nbl_item_copy(item, &copy), NBL_ERROR_NONE);
    nbl_item_free(item);
    EXPECT_EQ(text_of(copy, nbl_item_get_content_id), "64");
    int type = 0;
    EXPECT_EQ(nbl_item_get_type(copy, &type), NBL_ERROR_NONE);
    EXPECT_EQ(type, NBL_ITEM_TYPE_FOLDER);
    nbl_item_free(copy);
}

TEST(NblItems, OfAFileHaveItsNameAndType) {
    nbl_item_t item = nullptr;
    ASSERT_EQ(nbl_item_get_local_content("/a/b.c/My film.mkv", "video/x-matroska", &item), NBL_ERROR_NONE);
    EXPECT_EQ(text_of(item, nbl_item_get_title), "My film");
    EXPECT_EQ(text_of(item, nbl_item_get_mimetype), "video/x-matroska");
    EXPECT_EQ(text_of(item, nbl_item_get_extension), "mkv");
    int type = 0;
    EXPECT_EQ(nbl_item_get_type(item, &type), NBL_ERROR_NONE);
    EXPECT_EQ(type, NBL_ITEM_TYPE_VIDEO);
    nbl_item_free(item);
}

TEST(NblItems, OfAFifoHaveTheNameThatTheyAreGiven) {
    nbl_item_t item = nullptr;
    ASSERT_EQ(nbl_item_get_live_content("DSC_0001.JPG", "image/jpg", "/tmp/fifo", &item), NBL_ERROR_NONE);
    EXPECT_EQ(text_of(item, nbl_item_get_title), "DSC_0001");
    EXPECT_EQ(item->text(nbl::property::kFifo), "/tmp/fifo");
    EXPECT_EQ(item->text(nbl::property::kFileName), "DSC_0001.JPG");
    nbl_item_free(item);
}

TEST(NblRequests, RefuseWrongArgumentsAndWaitForAConnection) {
    int token = 7;
    EXPECT_EQ(nbl_provider_browse(nullptr, nullptr, 0, 1, nullptr, nullptr, &token),
              NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_provider_cancel_async_action(0), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_provider_cancel_async_action(1), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_serviceconnector_connect(nullptr, nullptr), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_serviceconnector_disconnect(nullptr, nullptr), NBL_ERROR_FAILED);
    nbl_searchcriteria_t criteria = nullptr;
    ASSERT_EQ(nbl_searchcriteria_create("word", &criteria), NBL_ERROR_NONE);
    EXPECT_EQ(nbl_searchcriteria_add_item_type(criteria, NBL_ITEM_TYPE_FOLDER), NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_searchcriteria_add_item_type(criteria, NBL_ITEM_TYPE_VIDEO), NBL_ERROR_NONE);
    nbl_searchcriteria_free(criteria);
    EXPECT_EQ(token, 7);
}

}  // namespace
