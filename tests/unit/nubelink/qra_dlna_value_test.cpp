#include "libqra-agent/source/nubelink/qra_dlna_value.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "libqra-agent/source/nubelink/qra_dlna_wrapper.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_nubelink.h"
#include "tests/unit/nubelink/dlna_items.h"

namespace {

class DlnaValue : public testing::Test {
protected:
    std::string text(const _stDLNAMediaItem& item, const std::string& field, bool folder_view = false) {
        char* value = nullptr;
        const bool read = qra_dlna_get_text(item, field, folder_view, &value);
        const std::string copy = read ? value : "(none)";
        EXPECT_EQ(read, value != nullptr);
        free(value);
        return copy;
    }

    int number(const _stDLNAMediaItem& item, const std::string& field, bool folder_view = false) {
        int value = -1;
        EXPECT_TRUE(qra_dlna_get_int(item, field, folder_view, &value)) << field;
        return value;
    }

    LogCapture log;
    FakeNubelink service;
};

TEST_F(DlnaValue, TextsComeFromTheItem) {
    FakeNubelink::Item item{"64$1", "Sunset", NBL_ITEM_TYPE_IMAGE, {}, {}};
    item.texts = {{"uri", "http://a/1"},     {"mta_uri", "http://a/2"},  {"mimetype", "image/jpeg"},
                  {"album_title", "Sea"},    {"artist", "Ann"},          {"date", "2021-05-06"},
                  {"extension", "jpg"},      {"genre", "Nature"},        {"location", "Brest"},
                  {"resolution", "640x480"}, {"subtitle", "http://a/3"}, {"thumbnail", "http://a/4"}};
    const _stDLNAMediaItem media = make_media(item);
    const std::pair<const char*, const char*> rows[] = {{"ID_QRA", "64$1"},
                                                        {"TITLE", "Sunset"},
                                                        {"URL", "http://a/1"},
                                                        {"MTA_URL", "http://a/2"},
                                                        {"MIME_TYPE", "image/jpeg"},
                                                        {"FORMAT", "jpeg"},
                                                        {"ALBUM", "Sea"},
                                                        {"ARTIST", "Ann"},
                                                        {"DATE_TAKEN", "2021-05-06"},
                                                        {"EXTENSION", "jpg"},
                                                        {"GENRE", "Nature"},
                                                        {"LOCATION_TAG", "Brest"},
                                                        {"RESOLUTION", "640x480"},
                                                        {"SUBTITLE", "http://a/3"},
                                                        {"RESOLUTION_DLNA", "640x480"},
                                                        {"THUMBNAIL_PATH", "http://a/4"},
                                                        {"DISPLAY_NAME", "Sunset.jpg"}};

    for (const auto& row : rows)
        EXPECT_EQ(text(media, row.first), row.second) << row.first;
}

TEST_F(DlnaValue, AFolderIsShownWithoutAnExtensionInAFolderViewOnly) {
    FakeNubelink::Item item{"1", "Holiday", NBL_ITEM_TYPE_FOLDER, {{"extension", "dir"}}, {}};

    EXPECT_EQ(text(make_media(item), "DISPLAY_NAME", true), "Holiday");
    EXPECT_EQ(text(make_media(item), "DISPLAY_NAME", false), "Holiday.dir");
}

TEST_F(DlnaValue, ATitleWithoutAnExtensionStaysAsItIs) {
    EXPECT_EQ(text(make_media({"1", "Song", NBL_ITEM_TYPE_MUSIC, {}, {}}), "DISPLAY_NAME"), "Song");
}

TEST_F(DlnaValue, TheFormatIsWhatFollowsTheLastSlashOfEitherKind) {
    const std::pair<const char*, const char*> rows[] = {
        {"image/jpeg", "jpeg"}, {"a/b\\c", "c"}, {"a\\b/c", "c"}, {"plain", "plain"}, {"end/", ""}};
    for (const auto& row : rows) {
        const FakeNubelink::Item item{"1", "", NBL_ITEM_TYPE_IMAGE, {{"mimetype", row.first}}, {}};
        EXPECT_EQ(text(make_media(item), "FORMAT"), row.second) << row.first;
    }
}

TEST_F(DlnaValue, ATextThatIsNotThereAndAnUnknownFieldAreFalse) {
    const _stDLNAMediaItem media = make_media({"1", "", NBL_ITEM_TYPE_IMAGE, {}, {}});

    EXPECT_EQ(text(media, "ALBUM"), "(none)");
    EXPECT_EQ(text(media, "FILE_PATH"), "(none)");
    EXPECT_TRUE(log.contains("DLNA-SOURCE: do not support get field: FILE_PATH"));
}

TEST_F(DlnaValue, AnItemWithoutARecordHasNoValues) {
    const _stDLNAMediaItem none;
    int number = 0;
    unsigned long long size = 0;

    EXPECT_EQ(text(none, "TITLE"), "(none)");
    EXPECT_FALSE(qra_dlna_get_int(none, "MEDIA_TYPE", true, &number));
    EXPECT_FALSE(qra_dlna_get_number(none, "SIZE", &size));
    EXPECT_EQ(log.count("DLNA-SOURCE: Null nbl_item_t"), 3);
}

TEST_F(DlnaValue, NumbersComeFromTheItem) {
    const _stDLNAMediaItem media = make_media({"1",
                                               "",
                                               NBL_ITEM_TYPE_VIDEO,
                                               {{"upnp:playbackCount", "17"}},
                                               {{"width", 640},
                                                {"height", 480},
                                                {"seek_mode", 3},
                                                {"file_size", 5000000000},
                                                {"duration", 61000}}});
    unsigned long long size = 0;
    unsigned long long duration = 0;

    EXPECT_EQ(number(media, "WIDTH"), 640);
    EXPECT_EQ(number(media, "HEIGHT"), 480);
    EXPECT_EQ(number(media, "SEEK_MODE"), 3);
    EXPECT_EQ(number(media, "PLAYED_COUNT"), 17);
    EXPECT_TRUE(qra_dlna_get_number(media, "SIZE", &size));
    EXPECT_EQ(size, 5000000000ULL);
    EXPECT_TRUE(qra_dlna_get_number(media, "DURATION", &duration));
    EXPECT_EQ(duration, 61000ULL);
}

TEST_F(DlnaValue, NumbersThatAreNotThereAreFalse) {
    const _stDLNAMediaItem media = make_media({"1", "", NBL_ITEM_TYPE_VIDEO, {}, {}});
    int number = 7;
    unsigned long long size = 8;
    for (const char* field : {"WIDTH", "HEIGHT", "SEEK_MODE", "PLAYED_COUNT", "BITRATE"})
        EXPECT_FALSE(qra_dlna_get_int(media, field, false, &number)) << field;
    for (const char* field : {"SIZE", "DURATION", "ADDED_TIME", "WEIGHT"})
        EXPECT_FALSE(qra_dlna_get_number(media, field, &size)) << field;

    EXPECT_EQ(number, 7);
    EXPECT_EQ(size, 8U);
    EXPECT_TRUE(log.contains("DLNA-SOURCE: fail get dlna file size"));
    EXPECT_TRUE(log.contains("DLNA-SOURCE: fail get dlna duration"));
    EXPECT_TRUE(log.contains("DLNA-SOURCE: do not support get field: WEIGHT"));
}

TEST_F(DlnaValue, TheMediaTypeFollowsTheItemType) {
    const std::pair<int, int> rows[] = {
        {NBL_ITEM_TYPE_IMAGE, 2}, {NBL_ITEM_TYPE_VIDEO, 3}, {NBL_ITEM_TYPE_MUSIC, 5}};
    for (const auto& row : rows) {
        const _stDLNAMediaItem media = make_media({"1", "", row.first, {}, {}});
        EXPECT_EQ(number(media, "MEDIA_TYPE", true), row.second);
        EXPECT_EQ(number(media, "MEDIA_TYPE", false), row.second);
    }
    EXPECT_EQ(number(make_media({"1", "", NBL_ITEM_TYPE_FOLDER, {}, {}}), "MEDIA_TYPE", true), 1);
}

TEST_F(DlnaValue, AnotherTypeIsZeroAndInAFolderViewLeavesTheValueAlone) {
    const _stDLNAMediaItem other = make_media({"1", "", NBL_ITEM_TYPE_OTHER, {}, {}});

    EXPECT_EQ(number(make_media({"1", "", NBL_ITEM_TYPE_FOLDER, {}, {}}), "MEDIA_TYPE", false), 0);
    EXPECT_EQ(number(other, "MEDIA_TYPE", false), 0);
    EXPECT_EQ(number(other, "MEDIA_TYPE", true), -1) << "true without a value";
}

TEST_F(DlnaValue, TheTypeIsTheOneThatTheListGaveTheItem) {
    _stDLNAMediaItem media = make_media({"1", "", NBL_ITEM_TYPE_IMAGE, {}, {}});
    media.eType = NBL_ITEM_TYPE_VIDEO;

    EXPECT_EQ(number(media, "MEDIA_TYPE"), 3);
}

TEST_F(DlnaValue, TheAddedTimeStandsInAPropertyOfTheServer) {
    const std::pair<const char*, unsigned long long> rows[] = {
        {"CREATIONDATE=1234,OTHER=1", 1234}, {"CREATIONDATE=1234", 1234}, {"A=1,CREATIONDATE=99,B=2", 99}};
    for (const auto& row : rows) {
        unsigned long long time = 0;
        const FakeNubelink::Item item{"1", "", NBL_ITEM_TYPE_IMAGE, {{"kvr:dcmInfo", row.first}}, {}};
        EXPECT_TRUE(qra_dlna_get_number(make_media(item), "ADDED_TIME", &time)) << row.first;
        EXPECT_EQ(time, row.second) << row.first;
    }
    for (const char* info : {"OTHER=1", "", "CREATIONDATE=", "CREATIONDATE=soon"}) {
        unsigned long long time = 5;
        const FakeNubelink::Item item{"1", "", NBL_ITEM_TYPE_IMAGE, {{"kvr:dcmInfo", info}}, {}};
        EXPECT_FALSE(qra_dlna_get_number(make_media(item), "ADDED_TIME", &time)) << info;
        EXPECT_EQ(time, 5U);
    }
}

TEST_F(DlnaValue, ACopyIsAReferenceAndTheLastOneGivesTheRecordBack) {
    {
        const _stDLNAMediaItem media = make_media({"1", "", NBL_ITEM_TYPE_IMAGE, {}, {}});
        _stDLNAMediaItem copy = media;
        const _stDLNAMediaItem moved = std::move(copy);
        EXPECT_EQ(moved.pItem.Get(), media.pItem.Get());
        EXPECT_EQ(FakeNubelink::items_alive, 1);
    }
    EXPECT_EQ(FakeNubelink::items_alive, 0);
}

TEST_F(DlnaValue, EachCategoryHasItsGroupLevels) {
    const std::pair<const char*, int> rows[] = {
        {"CATEGORY-DATE", 2},  {"CATEGORY-TITLE", 2}, {"CATEGORY-TRACK", 1},  {"CATEGORY-ARTIST", 1},
        {"CATEGORY-ALBUM", 1}, {"CATEGORY-GENRE", 1}, {"CATEGORY-FOLDER", 0}, {"", 0}};
    for (const auto& row : rows)
        EXPECT_EQ(CQRADLNAWrapper::GetGrouplevel(row.first), row.second) << row.first;
}

}  // namespace
