#include "libqra-agent/agent/src/qra_item_builder.h"

#include <json/json.h>

#include <clocale>

#include "tests/fakes/fake_playlist_manager.h"
#include "tests/fakes/fake_svc_pvr.h"
#include "tests/unit/agent/agent_fixture.h"

namespace {

class ItemBuilder : public AgentTest {
protected:
    ~ItemBuilder() override {
        FakeRecording::known = true;
        FakeRecording::content_version = 0;
        FakeRecording::incomplete_reason = 0;
    }
    void show(int type, const std::string& source = "SOURCE_MSC") {
        script_.items = {SourceScript::Item()};
        script_.items[0].numbers["MEDIA_TYPE"] = type;
        script_groups(0, {{"all", 1}});
        open_page(0x04, "CATEGORY-TITLE", source);
    }
    Json::Value json(int index = 0) {
        Json::Value value;
        Json::CharReaderBuilder builder;
        std::istringstream text(item(index));
        std::string errors;
        EXPECT_TRUE(Json::parseFromStream(builder, text, &value, &errors)) << errors;
        return value;
    }
    SourceScript::Item& scripted() { return script_.items[0]; }
};

// An item of which nothing is known, for each kind: the whole text.

struct KindRow {
    const char* name;
    int type;
    const char* source;
    const char* text;
};

class UnknownItem : public ItemBuilder, public testing::WithParamInterface<KindRow> {};

TEST_P(UnknownItem, StillHasAllKeysOfItsKind) {
    show(GetParam().type, GetParam().source);

    EXPECT_EQ(item(0), std::string(GetParam().text) + "\n");
}

INSTANTIATE_TEST_SUITE_P(
    ItemBuilder, UnknownItem,
    testing::Values(
        KindRow{
            "Folder", 1, "SOURCE_MSC",
            R"({"DISPLAY_NAME":"","FILE_PATH":"","ID_QRA":"","MEDIA_TYPE":1,"MODIFIED_TIME":0,"TITLE":""})"},
        KindRow{"FolderOfAServer", 1, "SOURCE_DLNA",
                R"({"DISPLAY_NAME":"","ID_QRA":"","MEDIA_TYPE":1,"TITLE":""})"},
        KindRow{
            "Image", 2, "SOURCE_MSC",
            R"({"ADDED_TIME":0,"DATE_TAKEN":"","DISPLAY_NAME":"","EXPOSURE_TIME":"","FILE_PATH":"","FNUMBER":"",)"
            R"("FORMAT":"","HEIGHT":0,"ID_QRA":"","ISO":"","IS_360":false,"IS_DRM":false,"LOCATION_TAG":"",)"
            R"("MEDIA_TYPE":2,"MIME_TYPE":"","MODEL":"","MODIFIED_TIME":0,"ORIENTATION":0,"PLAYED_COUNT":0,)"
            R"("SIZE":0,"STITCH_TYPE":0,"THUMBNAIL_PATH":"","TITLE":"","WIDTH":0})"},
        KindRow{
            "Image360", 15, "SOURCE_MSC",
            R"({"ADDED_TIME":0,"DATE_TAKEN":"","DISPLAY_NAME":"","EXPOSURE_TIME":"","FILE_PATH":"","FNUMBER":"",)"
            R"("FORMAT":"","HEIGHT":0,"ID_QRA":"","ISO":"","IS_360":false,"IS_DRM":false,"LOCATION_TAG":"",)"
            R"("MEDIA_TYPE":15,"MIME_TYPE":"","MODEL":"","MODIFIED_TIME":0,"ORIENTATION":0,"PLAYED_COUNT":0,)"
            R"("SIZE":0,"STITCH_TYPE":0,"THUMBNAIL_PATH":"","TITLE":"","WIDTH":0})"},
        KindRow{
            "ImageOfAServer", 2, "SOURCE_DLNA",
            R"({"ADDED_TIME":0,"DATE_TAKEN":"","DISPLAY_NAME":"","EXPOSURE_TIME":"","FILE_PATH":"","FNUMBER":"",)"
            R"("FORMAT":"","HEIGHT":0,"ID_QRA":"","ISO":"","IS_360":false,"IS_DRM":false,"LOCATION_TAG":"",)"
            R"("MEDIA_TYPE":2,"MIME_TYPE":"","MODEL":"","MODIFIED_TIME":0,"ORIENTATION":0,"PLAYED_COUNT":0,)"
            R"("RESOLUTION_DLNA":"","SIZE":0,"STITCH_TYPE":0,"THUMBNAIL_PATH":"","TITLE":"","URL":"","WIDTH":0})"},
        KindRow{
            "Video", 3, "SOURCE_MSC",
            R"({"ADDED_TIME":0,"DISPLAY_NAME":"","DURATION":0,"FILE_PATH":"","FORMAT":"","HEIGHT":0,"ID_QRA":"",)"
            R"("IS_360":false,"IS_DRM":false,"LOCATION_TAG":"","MEDIA_TYPE":3,"MIME_TYPE":"","MODIFIED_TIME":0,)"
            R"("PLAYED_COUNT":0,"SIZE":0,"STITCH_TYPE":0,"THUMBNAIL_PATH":"","TITLE":"","WIDTH":0})"},
        KindRow{
            "Video360", 16, "SOURCE_MSC",
            R"({"ADDED_TIME":0,"DISPLAY_NAME":"","DURATION":0,"FILE_PATH":"","FORMAT":"","HEIGHT":0,"ID_QRA":"",)"
            R"("IS_360":false,"IS_DRM":false,"LOCATION_TAG":"","MEDIA_TYPE":16,"MIME_TYPE":"","MODIFIED_TIME":0,)"
            R"("PLAYED_COUNT":0,"SIZE":0,"STITCH_TYPE":0,"THUMBNAIL_PATH":"","TITLE":"","WIDTH":0})"},
        KindRow{
            "VideoOfAServer", 3, "SOURCE_DLNA",
            R"({"ADDED_TIME":0,"DATE_TAKEN":"","DISPLAY_NAME":"","DURATION":0,"FILE_PATH":"","FORMAT":"",)"
            R"("HEIGHT":0,"ID_QRA":"","IS_360":false,"IS_DRM":false,"LOCATION_TAG":"","MEDIA_TYPE":3,)"
            R"("MIME_TYPE":"","MODIFIED_TIME":0,"PLAYED_COUNT":0,"RESOLUTION_DLNA":"","SIZE":0,"STITCH_TYPE":0,)"
            R"("THUMBNAIL_PATH":"","TITLE":"","URL":"","WIDTH":0})"},
        KindRow{
            "Music", 5, "SOURCE_MSC",
            R"({"ADDED_TIME":0,"ALBUM":"","ARTIST":"","BITRATE":0,"BIT_RESOLUTION":0,"DISPLAY_NAME":"",)"
            R"("DURATION":0,"FILE_PATH":"","FORMAT":"","GENRE":"","ID_QRA":"","IS_DRM":false,"LOCATION_TAG":"",)"
            R"("MEDIA_TYPE":5,"MIME_TYPE":"","MODIFIED_TIME":0,"PLAYED_COUNT":0,"SAMPLERATE":0,"SIZE":0,)"
            R"("THUMBNAIL_PATH":"","TITLE":"","YEAR":""})"},
        KindRow{
            "MusicOfAServer", 5, "SOURCE_DLNA",
            R"({"ADDED_TIME":0,"ALBUM":"","ARTIST":"","BITRATE":0,"BIT_RESOLUTION":0,"DATE_TAKEN":"",)"
            R"("DISPLAY_NAME":"","DURATION":0,"FILE_PATH":"","FORMAT":"","GENRE":"","ID_QRA":"","IS_DRM":false,)"
            R"("LOCATION_TAG":"","MEDIA_TYPE":5,"MIME_TYPE":"","MODIFIED_TIME":0,"PLAYED_COUNT":0,)"
            R"("RESOLUTION_DLNA":"","SAMPLERATE":0,"SIZE":0,"THUMBNAIL_PATH":"","TITLE":"","URL":"","YEAR":""})"},
        KindRow{
            "Recording", 6, "SOURCE_MSC",
            R"({"AD":false,"ASPECTRATIO":0,"CHANNEL_NAME":"","CHANNEL_NUM":"","CHANNEL_TYPE":0,)"
            R"("CONTENT_LOCK":false,"CONTENT_VERSION":0,"CONTENT_WATCH":false,"DATA_SERVICE":false,"DURATION":0,)"
            R"("EMBARGO_TIME":0,"EXPIRY_TIME":0,"FILE_PATH":"","GENRE":"","GUIDANCE":"","GUIDANCE_LENGTH":0,)"
            R"("HARD_OF_HEARING_RADIO":false,"HAS_AUDIO_ONLY":false,"HD":0,"ID_QRA":"","INCOMPLETE_REASON":0,)"
            R"("IS_LOCAL_RECORD":false,"LANGUAGE":"","MAJOR":0,"MEDIA_TYPE":6,"MINOR":0,"MODIFIED_MONTH":"",)"
            R"("PARENTAL_RATING":0,"PLAY_COUNT":0,"PRIVATE_DATA":"","PROGRAM_CRID":"","PROGRAM_DATE":0,)"
            R"("PROGRAM_END_TIME":0,"PROGRAM_NUM":0,"PROGRAM_START_TIME":0,"PROGRAM_TITLE":"","PTC":0,)"
            R"("RESOLUTION":0,"SERIES_RECORD":false,"SIZE":0,"SPORTS_TYPE":0,"START_TIME":0,"SUBTITLE":false,)"
            R"("SYNOPSIS":"","TIMER_RECORD":false,"TIMEZONE":0,"TTX":false,"TVMODE":0})"},
        KindRow{
            "Uhd", 10, "SOURCE_MSC",
            R"({"DATE_TAKEN":"","DISPLAY_NAME":"","FILE_PATH":"","FORMAT":"","ID_QRA":"","MEDIA_TYPE":10,)"
            R"("MODIFIED_TIME":0,"PLAYED_COUNT":0,"SIZE":0,"TITLE":"","UHD_SERVER_ID":""})"},
        KindRow{
            "Scsa", 11, "SOURCE_MSC",
            R"({"ADULT_CONTENT":"","CONTENT_ID":"","COUNTRY":"","DESC_LANGUAGE":"","ENCODING":"","FILE_PATH":"",)"
            R"("FORMAT":"","HEIGHT":0,"ID_QRA":"","INDEX":0,"MEDIA_TYPE":11,"PROFILE":"","PUBLISHER":"",)"
            R"("RATING_DESC":"","RATING_VALUE":"","RUNLENGTH":"","STREAM_NAME":"","SUMMARY_190":"",)"
            R"("SUMMARY_400":"","SUMMARY_4000":"","SYSTEM":"","TITLE_19":"","TITLE_60":"","TITLE_SORT":"",)"
            R"("TITLE_UNLIMITED":"","TRACK_REFERENCE":"","WIDTH":0})"},
        KindRow{"AnyOtherKind", 4, "SOURCE_MSC", R"({"MEDIA_TYPE":4})"}),
    [](const auto& info) { return info.param.name; });

TEST_F(ItemBuilder, TilesWithoutAnItemHoldTheirKindAlone) {
    script_items(1);
    open_page(0xA4, "CATEGORY-FOLDER-DATE");

    EXPECT_EQ(item(0), "{\"MEDIA_TYPE\":13}\n");
    EXPECT_EQ(item(1), "{\"MEDIA_TYPE\":14}\n");
}

TEST_F(ItemBuilder, AGroupHeaderTellsItsGroup) {
    script_items(3);
    open_page(0x0C, "CATEGORY-DATE");

    EXPECT_EQ(item(0),
              "{\"DISPLAY_NAME\":\"all\",\"GROUP_ITEM_COUNT\":3,\"ID_QRA\":\"id-0\",\"MEDIA_TYPE\":9}\n");
}

TEST_F(ItemBuilder, APlaylistTellsItsSongs) {
    FakePlaylists::mount_path = "";
    FakePlaylists::playlists = {{"Blues", "1.m3u", 4}};
    script_items(1);
    open_page(0x14);
    qra_set_expand_mode_v2(handle_, 0, true);

    EXPECT_EQ(item(0),
              "{\"DISPLAY_NAME\":\"Blues\",\"FILE_PATH\":\"/1.m3u\",\"ID_QRA\":\"/Blues\",\"MEDIA_TYPE\":7,"
              "\"SONGS_COUNT\":4}\n");
}

TEST_F(ItemBuilder, AnImageShowsItsExposureAsAViewerReadsIt) {
    show(QRA_MEDIA_TYPE_IMAGE);
    scripted().texts = {{"EXPOSURE_TIME", "1/60"}};
    scripted().numbers["ISO"] = 100;
    scripted().reals["FNUMBER"] = 2.8;

    const Json::Value value = json();

    EXPECT_EQ(value["EXPOSURE_TIME"].asString(), "1/60s");
    EXPECT_EQ(value["ISO"].asString(), "ISO100");
    EXPECT_EQ(value["FNUMBER"].asString(), "f/2.8");
}

TEST_F(ItemBuilder, AnImageWithoutExposureShowsNone) {
    show(QRA_MEDIA_TYPE_IMAGE);
    scripted().texts = {{"EXPOSURE_TIME", ""}};
    scripted().numbers["ISO"] = 0;
    scripted().reals["FNUMBER"] = 0.0;

    const Json::Value value = json();

    EXPECT_EQ(value["EXPOSURE_TIME"].asString(), "");
    EXPECT_EQ(value["ISO"].asString(), "");
    EXPECT_EQ(value["FNUMBER"].asString(), "");
}

TEST_F(ItemBuilder, NumbersKeepTheirWidth) {
    show(QRA_MEDIA_TYPE_VIDEO);
    scripted().numbers["SIZE"] = 9000000000000;
    scripted().numbers["MODIFIED_TIME"] = 1700000000;
    scripted().numbers["IS_360"] = 1;

    const Json::Value value = json();

    EXPECT_EQ(value["SIZE"].asUInt64(), 9000000000000u);
    EXPECT_EQ(value["MODIFIED_TIME"].asInt(), 1700000000);
    EXPECT_TRUE(value["IS_360"].asBool());
}

TEST_F(ItemBuilder, ANameThatIsNotUtf8LeavesValidJsonAndItsNeighbours) {
    show(QRA_MEDIA_TYPE_IMAGE);
    scripted().texts = {{"DISPLAY_NAME", "broken\xff\xc3.jpg"},
                        {"FILE_PATH", "/m/\xe9t\xe9.jpg"},
                        {"TITLE", "\xc3\xa9t\xc3\xa9 \"1\"\n"}};

    const Json::Value value = json();

    EXPECT_EQ(value["TITLE"].asString(), "\xc3\xa9t\xc3\xa9 \"1\"\n");
    EXPECT_NE(value["DISPLAY_NAME"].asString().find("broken"), std::string::npos);
    EXPECT_NE(value["FILE_PATH"].asString().find("/m/"), std::string::npos);
}

TEST_F(ItemBuilder, ARecordingsFileTellsVersionAndReason) {
    FakeRecording::content_version = 3;
    FakeRecording::incomplete_reason = 7;
    show(QRA_MEDIA_TYPE_PVR);
    scripted().texts = {{"FILE_PATH", "/m/a.srf"}};
    const LogCapture log;

    const Json::Value value = json();

    EXPECT_EQ(FakeRecording::asked_path, "/m/a.srf");
    EXPECT_EQ(value["CONTENT_VERSION"].asInt(), 3);
    EXPECT_EQ(value["INCOMPLETE_REASON"].asInt(), 7);
    EXPECT_TRUE(log.contains("Get pvr file info steat"));
    EXPECT_TRUE(log.contains("content_version [3] ,incomplete_reason [7]"));
}

TEST_F(ItemBuilder, ARecordingWithoutAReadableFileHasNeither) {
    FakeRecording::known = false;
    FakeRecording::content_version = 3;
    show(QRA_MEDIA_TYPE_PVR);
    const LogCapture log;

    const Json::Value value = json();

    EXPECT_EQ(value["CONTENT_VERSION"].asInt(), 0);
    EXPECT_EQ(value["INCOMPLETE_REASON"].asInt(), 0);
    EXPECT_TRUE(log.contains("Get pvr file info failed."));
}

TEST_F(ItemBuilder, ABuildMovesBothCursors) {
    script_items(30);
    open_page(0x04);

    item(23);

    EXPECT_EQ(handle_->GetCurrentPageIndex(), 23);
    EXPECT_EQ(script_.cursor, 23);
    EXPECT_EQ(text("TITLE"), "item 23");
}

TEST_F(ItemBuilder, AnIndexBeyondTheEndIsInvalidAndTheCursorStays) {
    script_items(3);
    open_page(0x04);
    qra_move_to_index_v2(handle_, 2);
    char* value = nullptr;
    const LogCapture log;

    EXPECT_EQ(qra_get_item_v2(handle_, 3, &value), QRA_ERROR_INVALID_PARAM);

    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(handle_->GetCurrentPageIndex(), 2);
    EXPECT_TRUE(log.contains("CQRAItemBuilder::BuildItem::m_MoveCursor faild, nPageIndex[3]."));
}

TEST_F(ItemBuilder, AnItemWithoutAKindIsInternal) {
    show(QRA_MEDIA_TYPE_IMAGE);
    scripted().numbers.clear();
    char* value = nullptr;
    const LogCapture log;

    EXPECT_EQ(qra_get_item_v2(handle_, 0, &value), QRA_ERROR_INTERNAL);

    EXPECT_EQ(value, nullptr);
    EXPECT_TRUE(log.contains("CQRAItemBuilder::BuildItem::GetItemValue faild."));
}

TEST_F(ItemBuilder, RefusesWhatItNeeds) {
    CQRAItemBuilder builder;
    CQRAAgentHandle without_agent;
    char* value = nullptr;
    const LogCapture log;

    EXPECT_EQ(builder.BuildItem(&without_agent, 0, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(builder.BuildItem(nullptr, 0, &value), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(builder.BuildItem(&without_agent, 0, &value), QRA_ERROR_INVALID_HANDLE);

    EXPECT_TRUE(log.contains("ppItem == NULL"));
    EXPECT_TRUE(log.contains("pHandle == NULL"));
    EXPECT_TRUE(log.contains("pAgent == NULL"));
    EXPECT_TRUE(log.contains("Invalid agent handler recevied!!"));
}

}  // namespace
