#include <climits>

#include "common/util/qra_util.h"
#include "tests/fakes/fake_playlist_manager.h"
#include "tests/unit/agent/agent_fixture.h"
#include "tests/unit/agent/page_text.h"

namespace {

class Page : public AgentTest {
protected:
    std::string page() const { return page_text(*handle_->GetContentPage()); }
    int count(qra_media_type_e type, int initial = -1) {
        int value = initial;
        EXPECT_EQ(qra_get_item_count_by_type_v2(handle_, type, &value), QRA_ERROR_NONE);
        return value;
    }
};

struct CategoryRow {
    const char* name;
    const char* category;
    const char* page;  ///< of the mask 0x26 on one folder and two items
};

class Category : public Page, public testing::WithParamInterface<CategoryRow> {};

TEST_P(Category, IsLaidOutByItsBuild) {
    script_items(3);
    script_.folder_count = 1;
    script_groups(1, {{"all", 2}});

    open_page(0x26, GetParam().category);

    EXPECT_EQ(page(), GetParam().page);
}

INSTANTIATE_TEST_SUITE_P(
    Page, Category,
    testing::Values(
        CategoryRow{"FolderTitle", "CATEGORY-FOLDER-TITLE", "upfolder -1+1, contents 0+1, contents 1+2"},
        CategoryRow{"FolderDate", "CATEGORY-FOLDER-DATE", "upfolder -1+1, contents 1+2, contents 0+1"},
        CategoryRow{"FolderChannelName", "CATEGORY-FOLDER-CHANNEL_NAME",
                    "upfolder -1+1, contents 1+2, contents 0+1"},
        CategoryRow{"FolderChannelNum", "CATEGORY-FOLDER-CHANNEL_NUM",
                    "upfolder -1+1, contents 1+2, contents 0+1"},
        CategoryRow{"UhdFolderWithUpFolder", "CATEGORY-UHD-FOLDER-WITHUPFOLDER",
                    "upfolder -1+1, contents 0+1, contents 1+2"},
        CategoryRow{"Folder", "CATEGORY-FOLDER", "contents 0+1, contents 1+2"},
        CategoryRow{"UhdFolder", "CATEGORY-UHD-FOLDER", "contents 0+1, contents 1+2"},
        CategoryRow{"Title", "CATEGORY-TITLE", "contents 1+2"},
        CategoryRow{"Date", "CATEGORY-DATE", "contents 1+2"},
        CategoryRow{"Keyword", "CATEGORY-KEYWORD-SEARCH", "contents 1+2"},
        CategoryRow{"Unknown", "CATEGORY-OF-NO-KIND", "contents 1+2"}),
    [](const auto& info) { return info.param.name; });

TEST_F(Page, AStyleChangeReplacesPageGroupsAndStyle) {
    script_items(5);
    open_page(0x04, "CATEGORY-DATE");
    qra_move_to_index_v2(handle_, 3);
    script_groups(0, {{"a", 2}, {"b", 3}});
    const LogCapture log;

    EXPECT_EQ(set_page_style(0x0C, 1, 3, 4), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "cluster 1+1, contents 2+3");
    EXPECT_EQ(handle_->GetPageParam()->row, 3);
    EXPECT_EQ(handle_->GetCurrentPageIndex(), 0);
    for (const char* text : {"ePageOrder[0].", "ePageStyle [12].", "nRow[3].", "nColumn[4].",
                             "nGroupIndex[1].", "nPlayListCount[0].", "bIsFolderView[0].",
                             "srotCategory[CATEGORY-DATE].", "Build page success. PageSize[4]."})
        EXPECT_TRUE(log.contains(text)) << text;
}

TEST_F(Page, AFolderPageTellsItsSizes) {
    script_items(3);
    const LogCapture log;

    open_page(0xA4, "CATEGORY-FOLDER-DATE");

    EXPECT_TRUE(log.contains("Start to excute qra_set_page_style for agent["));
    EXPECT_TRUE(log.contains("Build page success. Total PageSize[6], UpfolderSize[1], EmptySize[2]."));
}

TEST_F(Page, ARefusedStyleGivesTheBuildsCode) {
    script_items(3);
    open_page(0x04);
    const LogCapture log;

    EXPECT_EQ(set_page_style(0x44), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(set_page_style(0x04, -1, 0, 9), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(set_page_style(0x04, -1, 2, INT_MIN), QRA_ERROR_INTERNAL);

    EXPECT_EQ(log.count("Build page faild, eCode[2]."), 2);
    EXPECT_EQ(log.count("Build page faild, eCode[23]."), 1);
}

TEST_F(Page, ASourceWithoutGroupsCannotBeLaidOut) {
    script_.groups.reset();
    request();
    source_->complete(QRA_EVENT_LIST_SUCCESS);

    EXPECT_EQ(set_page_style(0x04), QRA_ERROR_INVALID_HANDLE);
}

TEST_F(Page, ExpandModeShowsTheExpandedGroupsAndKeepsTheCursor) {
    script_items(5);
    script_groups(0, {{"a", 2}, {"b", 3}});
    open_page(0x08, "CATEGORY-DATE", "SOURCE_DLNA");
    qra_move_to_index_v2(handle_, 1);

    EXPECT_EQ(qra_set_expand_mode_v2(handle_, 1, true), QRA_ERROR_NONE);
    EXPECT_EQ(page(), "cluster 0+1, cluster 1+1, contents 2+3");
    EXPECT_EQ(handle_->GetCurrentPageIndex(), 1);

    EXPECT_EQ(qra_set_expand_mode_v2(handle_, 1, false), QRA_ERROR_NONE);
    EXPECT_EQ(page(), "cluster 0+1, cluster 1+1");
}

TEST_F(Page, ExpandModeOnADriveNeedsItsPlaylists) {
    script_items(5);
    open_page(0x18, "CATEGORY-DATE");
    EXPECT_EQ(page(), "cluster 0+1") << "a page style counts no playlists";
    const LogCapture log;

    // No request sets the mount path that the playlists are asked for.
    FakePlaylists::mount_path = "/media/USBDrive1";
    FakePlaylists::playlists = {{"Blues", "1.m3u", 4}};

    EXPECT_EQ(qra_set_expand_mode_v2(handle_, 0, true), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(handle_->GetContentPage(), nullptr);
    EXPECT_TRUE(log.contains("Get playlist count faild."));

    FakePlaylists::playlists = {{"Blues", "1.m3u", 4}};
    FakePlaylists::mount_path = "";
    EXPECT_EQ(qra_set_expand_mode_v2(handle_, 0, true), QRA_ERROR_NONE);
    EXPECT_EQ(page(), "playlist 0+1, cluster 0+1, contents 0+5");
}

TEST_F(Page, ExpandModeFailsWithTheBuild) {
    script_items(5);
    open_page(0x04, "CATEGORY-DATE", "SOURCE_DLNA");
    EXPECT_EQ(set_page_style(0x44), QRA_ERROR_INVALID_PARAM);
    const LogCapture log;

    EXPECT_EQ(qra_set_expand_mode_v2(handle_, 0, true), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log.contains("CQRALocalAgent::SetExpandMode() faild, eCode[2]."));
}

TEST_F(Page, CountsByTypeComeFromSourcePageAndPlaylists) {
    script_items(3);
    script_.counts = {
        {QRA_MEDIA_TYPE_FOLDER, 1}, {QRA_MEDIA_TYPE_IMAGE, 2},     {QRA_MEDIA_TYPE_VIDEO, 3},
        {QRA_MEDIA_TYPE_MUSIC, 4},  {QRA_MEDIA_TYPE_PVR, 5},       {QRA_MEDIA_TYPE_UHD, 6},
        {QRA_MEDIA_TYPE_SCSA, 7},   {QRA_MEDIA_TYPE_IMAGE_EXT, 8}, {QRA_MEDIA_TYPE_VIDEO_EXT, 9}};
    open_page(0xA4, "CATEGORY-FOLDER-DATE");

    for (const auto& [type, expected] : script_.counts)
        EXPECT_EQ(count(type), expected) << type;
    EXPECT_EQ(count(QRA_MEDIA_TYPE_UPFOLDER), 1);
    EXPECT_EQ(count(QRA_MEDIA_TYPE_EMPTY), 2);
    EXPECT_EQ(count(QRA_MEDIA_TYPE_GROUP, 42), 42);

    const LogCapture log;
    EXPECT_EQ(count(QRA_MEDIA_TYPE_PLAYLIST), 0);
    EXPECT_TRUE(log.contains("Get playlist count faild, return count = 0."));
    EXPECT_TRUE(log.contains("GetItemCount By Type: eMediaType[7], ItemCount[0]."));
    FakePlaylists::mount_path = "";
    FakePlaylists::playlists = {{"Blues", "1.m3u", 4}, {"Rock", "2.m3u", 12}};
    EXPECT_EQ(count(QRA_MEDIA_TYPE_PLAYLIST), 2);
}

TEST_F(Page, OtherSourcesHaveNoRecordingsUhdScsaAndPlaylists) {
    script_items(3);
    script_.counts = {{QRA_MEDIA_TYPE_PVR, 5}, {QRA_MEDIA_TYPE_UHD, 6}, {QRA_MEDIA_TYPE_SCSA, 7}};
    open_page(0x04, "CATEGORY-TITLE", "SOURCE_PTP");

    EXPECT_EQ(count(QRA_MEDIA_TYPE_PVR), 0);
    EXPECT_EQ(count(QRA_MEDIA_TYPE_UHD), 0);
    EXPECT_EQ(count(QRA_MEDIA_TYPE_SCSA), 0);
    EXPECT_EQ(count(QRA_MEDIA_TYPE_PLAYLIST), 0);
}

TEST_F(Page, AGroupCountIsTheItemCountInTheGroupCategory) {
    script_items(3);
    open_page(0x04, "CATEGORY-GROUP");

    EXPECT_EQ(count(QRA_MEDIA_TYPE_GROUP), 3);
}

TEST_F(Page, AnUnknownTypeLeavesTheVariable) {
    script_items(3);
    open_page(0x04);
    const LogCapture log;

    EXPECT_EQ(count(static_cast<qra_media_type_e>(4), 42), 42);

    EXPECT_TRUE(log.contains("UnKown eMediaType[4]."));
}

TEST_F(Page, CountsByTypeFailWithTheSourceAndInTheSelection) {
    script_items(3);
    open_page(0x04, "CATEGORY-GROUP");
    script_.count_works = false;
    int value = 42;

    EXPECT_EQ(qra_get_item_count_by_type_v2(handle_, QRA_MEDIA_TYPE_IMAGE, &value), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_count_by_type_v2(handle_, QRA_MEDIA_TYPE_PVR, &value), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_count_by_type_v2(handle_, QRA_MEDIA_TYPE_GROUP, &value), QRA_ERROR_INTERNAL);
    qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_SELECTED);
    const LogCapture log;
    EXPECT_EQ(qra_get_item_count_by_type_v2(handle_, QRA_MEDIA_TYPE_IMAGE, &value), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log.contains("Only support all mode"));
    EXPECT_EQ(value, 42);
}

class PageIndex : public Page {
protected:
    PageIndex() {
        script_items(10);
        script_groups(0, {{"a", 4}, {"b", 6}});
        open_page(0x0C, "CATEGORY-DATE");
    }
    qra_error_code_e find(std::string id) { return qra_get_page_index_v2(handle_, id.data(), &index_); }

    int index_ = -42;
};

TEST_F(PageIndex, IsTheWayBackFromAMediaId) {
    const LogCapture log;

    EXPECT_EQ(find("id-0"), QRA_ERROR_NONE);
    EXPECT_EQ(index_, 1);
    EXPECT_EQ(find("id-5"), QRA_ERROR_NONE);
    EXPECT_EQ(index_, 7);

    EXPECT_TRUE(log.contains("Start to excute qra_get_page_index for agent["));
    EXPECT_TRUE(log.contains("GetPageIndex for normal contents in QRA_NAVIGATION_TYPE_ALL, pnPageIndex[7]."));
}

TEST_F(PageIndex, AnUnknownOrHiddenItemIsInvalid) {
    const LogCapture log;

    EXPECT_EQ(find("no such id"), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(find(""), QRA_ERROR_INVALID_PARAM);
    set_page_style(0x0C, 0);
    EXPECT_EQ(find("id-5"), QRA_ERROR_INVALID_PARAM);

    EXPECT_EQ(index_, -42);
    EXPECT_TRUE(log.contains("pHandle->GetSource()->GetDBIndex() faild,  pMediaId[no such id]."));
    EXPECT_TRUE(log.contains("pHandle->GetContentPage()->GetPageIndexByDBIndex faild,  nDBIndex[5]."));
}

TEST_F(PageIndex, IsZeroInTheSelectionAndOnASelectedPage) {
    qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_SELECTED);
    const LogCapture log;
    EXPECT_EQ(find("no such id"), QRA_ERROR_NONE);
    EXPECT_EQ(index_, 0);
    EXPECT_TRUE(log.contains("GetPageIndex In QRA_NAVIGATION_TYPE_SELECTED, pnPageIndex[0]."));

    qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_ALL);
    set_page_style(0x40);
    index_ = -42;
    EXPECT_EQ(find("no such id"), QRA_ERROR_NONE);
    EXPECT_EQ(index_, 0);
}

// Only the mask that shows the selection and nothing else makes a selected page.
TEST_F(PageIndex, IsTheItemsOwnWhereTheMaskHasMoreThanTheSelection) {
    qra_toggle_select_v2(handle_, 7);
    ASSERT_EQ(set_page_style(0xC0), QRA_ERROR_NONE);

    EXPECT_EQ(find("no such id"), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(find("id-5"), QRA_ERROR_NONE);
    EXPECT_EQ(index_, 0);
}

TEST_F(PageIndex, APathOnADriveIsAPlaylist) {
    const std::string drive = CQRAUtil::GetStoragePath("/USBDrive1");
    FakePlaylists::mount_path = drive;
    FakePlaylists::playlists = {{"Blues", "1.m3u", 4}, {"Rock", "2.m3u", 12}};
    handle_->SetMountPath(drive);
    handle_->GetPageParam()->mask = 0x1C;
    ASSERT_EQ(qra_set_expand_mode_v2(handle_, 0, true), QRA_ERROR_NONE);
    const LogCapture log;

    EXPECT_EQ(find(drive + "/Rock"), QRA_ERROR_NONE);
    EXPECT_EQ(index_, 1);
    EXPECT_TRUE(log.contains("GetPageIndex for playlist in QRA_NAVIGATION_TYPE_ALL, pnPageIndex[1]."));
    EXPECT_EQ(find(drive + "/Jazz"), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(find(CQRAUtil::GetStoragePath("/usb/sda1/Rock")), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(log.count("Get DB index from CQRAPlaylistManager faild!!"), 2);
}

}  // namespace
