#include <cmath>

#include "libqra-agent/agent/src/qra_local_agent.h"
#include "tests/fakes/fake_playlist_manager.h"
#include "tests/unit/agent/agent_fixture.h"

namespace {

class Values : public AgentTest {
protected:
    int number(const char* field, int initial = -1) {
        int value = initial;
        EXPECT_EQ(qra_get_item_value_int_v2(handle_, field, &value), QRA_ERROR_NONE);
        return value;
    }
};

TEST_F(Values, EachFormReadsItsTypeAtTheCursor) {
    script_items(2);
    script_.items[1].numbers["SIZE"] = 5000000000;
    script_.items[1].numbers["ADDED_TIME"] = 1700000000;
    script_.items[1].numbers["IS_DRM"] = 1;
    script_.items[1].reals["FNUMBER"] = 2.8;
    open_page(0x04);
    qra_move_to_index_v2(handle_, 1);

    unsigned long long size = 0;
    time_t added = 0;
    bool drm = false;
    double fnumber = 0;
    EXPECT_EQ(qra_get_item_value_lint_v2(handle_, "SIZE", &size), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_time_v2(handle_, "ADDED_TIME", &added), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_bool_v2(handle_, "IS_DRM", &drm), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_double_v2(handle_, "FNUMBER", &fnumber), QRA_ERROR_NONE);

    EXPECT_EQ(text("TITLE"), "item 1");
    EXPECT_EQ(number("MEDIA_TYPE"), QRA_MEDIA_TYPE_IMAGE);
    EXPECT_EQ(size, 5000000000u);
    EXPECT_EQ(added, 1700000000);
    EXPECT_TRUE(drm);
    EXPECT_EQ(fnumber, 2.8);
}

TEST_F(Values, AFieldThatTheSourceDoesNotKnowIsInternalAndWritesNothing) {
    script_items(1);
    open_page(0x04);
    int value = 42;

    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "NO_SUCH_FIELD", &value), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "", &value), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "TITLE", &value), QRA_ERROR_INTERNAL);

    EXPECT_EQ(value, 42);
}

TEST_F(Values, ACursorOutsideThePageIsInternal) {
    script_items(30);
    open_page(0x04);
    qra_move_to_index_v2(handle_, 29);
    script_items(2);
    request();
    source_->complete(QRA_EVENT_LIST_SUCCESS);
    set_page_style(0x04);
    int value = 0;
    const LogCapture log;

    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "MEDIA_TYPE", &value), QRA_ERROR_INTERNAL);

    EXPECT_TRUE(log.contains("Wrong ePageItemType[0]."));
}

TEST_F(Values, AnUpFolderTileHasAKindAndNothingElse) {
    open_page(0x20, "CATEGORY-FOLDER-TITLE");
    const LogCapture log;

    EXPECT_EQ(number("MEDIA_TYPE"), 13);
    EXPECT_EQ(number("WIDTH", 42), 42);

    EXPECT_TRUE(log.contains("Not support field[WIDTH]."));
}

TEST_F(Values, AnEmptyTileHasAKindAndNothingElse) {
    script_items(3);
    open_page(0xA4, "CATEGORY-FOLDER-DATE");
    qra_move_to_index_v2(handle_, 1);
    char untouched[] = "untouched";
    char* name = untouched;

    EXPECT_EQ(number("MEDIA_TYPE"), 14);
    EXPECT_EQ(qra_get_item_value_char_v2(handle_, "DISPLAY_NAME", &name), QRA_ERROR_NONE);

    EXPECT_EQ(name, untouched);
}

TEST_F(Values, AKindIsGivenInTheTypeThatIsAskedFor) {
    open_page(0x20, "CATEGORY-FOLDER-TITLE");
    unsigned long long wide = ~0ull;
    bool flag = false;
    double real = NAN;
    time_t time = -1;
    char* text = nullptr;

    EXPECT_EQ(qra_get_item_value_lint_v2(handle_, "MEDIA_TYPE", &wide), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_bool_v2(handle_, "MEDIA_TYPE", &flag), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_double_v2(handle_, "MEDIA_TYPE", &real), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_time_v2(handle_, "MEDIA_TYPE", &time), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_char_v2(handle_, "MEDIA_TYPE", &text), QRA_ERROR_INTERNAL);

    EXPECT_EQ(wide, 13u);
    EXPECT_TRUE(flag);
    EXPECT_EQ(real, 13.0);
    EXPECT_EQ(time, 13);
    EXPECT_EQ(text, nullptr);
}

class GroupHeader : public Values {
protected:
    GroupHeader() {
        script_items(10);
        script_groups(0, {{"first", 4}, {"second", 6}});
        open_page(0x0C, "CATEGORY-DATE");
        qra_move_to_index_v2(handle_, 5);
    }
};

TEST_F(GroupHeader, AnswersItsFourFields) {
    EXPECT_EQ(number("MEDIA_TYPE"), 9);
    EXPECT_EQ(number("GROUP_ITEM_COUNT"), 6);
    EXPECT_EQ(text("DISPLAY_NAME"), "second");
    EXPECT_EQ(text("ID_QRA"), "id-1");
    EXPECT_EQ(script_.cursor, 1);
}

TEST_F(GroupHeader, TellsItsOwnGroupOnAPageOfOneGroup) {
    set_page_style(0x0C, 1);
    qra_move_to_index_v2(handle_, 0);

    EXPECT_EQ(text("DISPLAY_NAME"), "second");
    EXPECT_EQ(number("GROUP_ITEM_COUNT"), 6);
}

TEST_F(GroupHeader, LeavesTheVariableOfAnyOtherField) {
    EXPECT_EQ(number("WIDTH", 42), 42);
}

TEST_F(GroupHeader, RefusesAFieldInAnotherType) {
    int value = 42;
    char* text = nullptr;

    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "DISPLAY_NAME", &value), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "ID_QRA", &value), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_char_v2(handle_, "GROUP_ITEM_COUNT", &text), QRA_ERROR_INTERNAL);

    EXPECT_EQ(value, 42);
    EXPECT_EQ(text, nullptr);
}

TEST_F(GroupHeader, AGroupThatTheSourceLostIsInternal) {
    script_groups(0, {{"only", 10}});
    int value = 0;
    const LogCapture log;

    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "GROUP_ITEM_COUNT", &value), QRA_ERROR_INTERNAL);

    EXPECT_TRUE(log.contains("m_GetIGroupInfo() invalid nGroupIndex[1]."));
}

TEST_F(Values, TheFocusIdIsTheItemsId) {
    for (const char* source : {"SOURCE_MSC", "SOURCE_DLNA", "SOURCE_PTP"}) {
        handle_ = nullptr;
        script_items(1);
        open_page(0x04, "CATEGORY-TITLE", source);
        const LogCapture log;

        EXPECT_EQ(text("QRA_MEDIA_FOCUS_ID"), "id-0") << source;

        EXPECT_TRUE(log.contains("Get MEDIA_FOCUS_ID."));
        EXPECT_TRUE(log.contains("Get MediaId[id-0]: strSource[" + std::string(source) +
                                 "], strSortCategory[CATEGORY-TITLE]."));
        disconnect();
    }
}

TEST_F(Values, TheFocusIdOfAPlaylistSongOrAsANumberIsInternal) {
    script_items(1);
    open_page(0x04, "CATEGORY-TITLE", "SOURCE_PLAYLIST");
    char* text = nullptr;
    int number = 0;

    EXPECT_EQ(qra_get_item_value_char_v2(handle_, "QRA_MEDIA_FOCUS_ID", &text), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "QRA_MEDIA_FOCUS_ID", &number), QRA_ERROR_INTERNAL);
}

/// Two playlists and one item; the handle's mount path is that of the playlists' drive.
class PlaylistTile : public Values {
protected:
    PlaylistTile() {
        FakePlaylists::mount_path = "/media/USBDrive1";
        FakePlaylists::playlists = {{"Blues", "1.m3u", 4}, {"Rock", "2.m3u", 12}};
        script_items(1);
        open_page(0x14);
        handle_->SetMountPath("/media/USBDrive1");
        qra_set_expand_mode_v2(handle_, 0, true);
    }
};

TEST_F(PlaylistTile, AnswersItsFields) {
    ASSERT_EQ(qra_move_to_index_v2(handle_, 1), QRA_ERROR_NONE);

    EXPECT_EQ(number("MEDIA_TYPE"), 7);
    EXPECT_EQ(number("SONGS_COUNT"), 12);
    EXPECT_EQ(text("DISPLAY_NAME"), "Rock");
    EXPECT_EQ(text("FILE_PATH"), "/media/USBDrive1/2.m3u");
    EXPECT_EQ(text("ID_QRA"), "/media/USBDrive1/Rock");
    EXPECT_EQ(number("WIDTH", 42), 42);
}

TEST_F(PlaylistTile, ASelectedPlaylistIsFoundByItsOrdinal) {
    ASSERT_EQ(qra_toggle_select_v2(handle_, 1), QRA_ERROR_NONE);
    qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_SELECTED);
    ASSERT_EQ(qra_move_to_index_v2(handle_, 0), QRA_ERROR_NONE);

    EXPECT_EQ(text("DISPLAY_NAME"), "Rock");
}

TEST_F(PlaylistTile, APlaylistThatWentGivesTheManagersCode) {
    ASSERT_EQ(qra_move_to_index_v2(handle_, 1), QRA_ERROR_NONE);
    FakePlaylists::playlists.pop_back();
    int value = 0;
    const LogCapture log;

    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "SONGS_COUNT", &value), QRA_ERROR_INVALID_PARAM);
    FakePlaylists::playlists.clear();
    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "SONGS_COUNT", &value), QRA_ERROR_NOT_EXIST);

    EXPECT_EQ(log.count("GetPlaylist faild."), 2);
}

TEST_F(Values, SettersGoToTheSourceInTheirType) {
    script_items(1);
    open_page(0x04);
    script_.calls.clear();
    char name[] = "new name";
    char empty[] = "";

    EXPECT_EQ(qra_set_item_value_time_v2(handle_, "PLAYED_TIME", 1700000000), QRA_ERROR_NONE);
    EXPECT_EQ(qra_set_item_value_int_v2(handle_, "PLAYED_COUNT", 3), QRA_ERROR_NONE);
    EXPECT_EQ(qra_set_item_value_char_v2(handle_, "TITLE", name), QRA_ERROR_NONE);
    EXPECT_EQ(script_.calls,
              (std::vector<std::string>{"SetValue time PLAYED_TIME=1700000000", "SetValue int PLAYED_COUNT=3",
                                        "SetValue text TITLE=new name"}));

    EXPECT_EQ(qra_set_item_value_time_v2(handle_, "PLAYED_TIME", 0), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_set_item_value_int_v2(handle_, "PLAYED_COUNT", -1), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_set_item_value_char_v2(handle_, "TITLE", empty), QRA_ERROR_INTERNAL);
}

TEST_F(Values, SettersIgnoreTheTileAtTheCursor) {
    open_page(0x20, "CATEGORY-FOLDER-TITLE");

    EXPECT_EQ(qra_set_item_value_int_v2(handle_, "PLAYED_COUNT", 3), QRA_ERROR_NONE);
}

TEST_F(Values, BookmarkAndRatingComeFromTheSource) {
    open_page(0x20, "CATEGORY-FOLDER-TITLE");
    script_.bookmark = 90;
    script_.rating = "PG";
    int bookmark = 0;
    char* rating = nullptr;

    EXPECT_EQ(qra_get_book_mark_v2(
                  handle_,
                  [](void* out, int value) {
                      *static_cast<int*>(out) = value;
                      return true;
                  },
                  &bookmark),
              QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_rating_info_v2(handle_, &rating), QRA_ERROR_NONE);

    EXPECT_EQ(bookmark, 90);
    EXPECT_STREQ(rating, "PG");
    free(rating);
}

TEST_F(Values, ASourceWithoutBookmarkAndRatingIsInternal) {
    open_page(0x20, "CATEGORY-FOLDER-TITLE");
    char* rating = nullptr;
    const LogCapture log;

    EXPECT_EQ(qra_get_book_mark_v2(handle_, nullptr, nullptr), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_rating_info_v2(handle_, &rating), QRA_ERROR_INTERNAL);

    EXPECT_EQ(rating, nullptr);
    EXPECT_TRUE(log.contains("pHandle->GetSource()->GetBookMark() faild!"));
    EXPECT_TRUE(log.contains("pHandle->GetSource()->GetRatingInfo() faild."));
}

}  // namespace
