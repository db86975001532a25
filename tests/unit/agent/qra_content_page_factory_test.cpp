#include "libqra-agent/agent/src/qra_content_page_factory.h"

#include <climits>

#include "libqra-agent/agent/src/qra_selectlist.h"
#include "tests/unit/agent/agent_fixture.h"
#include "tests/unit/agent/page_text.h"

namespace {

constexpr int kRows = 2;
constexpr int kColumns = 9;

/// A handle with a scripted source, built on directly.
class Factory : public AgentTest {
protected:
    void prepare(const std::string& source, const char* category, int folders,
                 const std::vector<std::pair<std::string, int>>& groups, int offset) {
        int count = offset;
        for (const auto& [name, items] : groups)
            count += items;
        script_items(count);
        script_.folder_count = folders;
        script_groups(offset, groups);
        ASSERT_EQ(request(source, category), QRA_ERROR_NONE);
        handle_->SetGroupInfo(source_->GetGroupInfo());
    }
    /// Three folders, then the groups "a" with 3 and "b" with 4 items.
    void prepare_folder(const char* category, const std::string& source = "SOURCE_MSC") {
        prepare(source, category, 3, {{"a", 3}, {"b", 4}}, 3);
    }
    /// The groups "a" with 3, "b" with 0 and "c" with 4 items.
    void prepare_list() { prepare("SOURCE_MSC", "CATEGORY-DATE", 0, {{"a", 3}, {"b", 0}, {"c", 4}}, 0); }
    void prepare_folder_view() { prepare("SOURCE_MSC", "CATEGORY-FOLDER", 3, {{"all", 5}}, 3); }

    qra_error_code_e build_folder(int mask, int group = -1, int rows = kRows, int columns = kColumns) {
        return factory_->Build(handle_, QRA_PAGE_ORDER_ROW, mask, group, 0, rows, columns);
    }
    qra_error_code_e build_list(int mask, int group = -1, int playlists = 0, bool expand = false,
                                bool folder_view = false) {
        return factory_->Build(handle_, QRA_PAGE_ORDER_ROW, mask, group, playlists, kRows, kColumns, expand,
                               folder_view);
    }
    std::string page() const { return page_text(*handle_->GetContentPage()); }

    CQRAContentPageFactory* factory_ = CQRAContentPageFactory::GetInstance();
};

// The list build.

struct MaskRow {
    const char* name;
    int mask;
    int group;
    const char* page;
};

class ListMask : public Factory, public testing::WithParamInterface<MaskRow> {};

TEST_P(ListMask, LaysOutItsRuns) {
    prepare_list();

    ASSERT_EQ(build_list(GetParam().mask, GetParam().group), QRA_ERROR_NONE);

    EXPECT_EQ(page(), GetParam().page);
    EXPECT_EQ(handle_->GetContentPage()->GetPageMask(), GetParam().mask);
}

INSTANTIATE_TEST_SUITE_P(
    Factory, ListMask,
    testing::Values(MaskRow{"Nothing", 0x00, -1, ""}, MaskRow{"Folders", 0x02, -1, ""},
                    MaskRow{"Media", 0x04, -1, "contents 0+3, contents 3+4"},
                    MaskRow{"FoldersAndMedia", 0x06, -1, "contents 0+3, contents 3+4"},
                    MaskRow{"Headers", 0x08, -1, "cluster 0+1, cluster 1+1, cluster 2+1"},
                    MaskRow{"HeadersAndMedia", 0x0C, -1,
                            "cluster 0+1, contents 0+3, cluster 1+1, cluster 2+1, contents 3+4"},
                    MaskRow{"HeaderAndMediaOfAnEmptyGroup", 0x0C, 1, "cluster 1+1"},
                    MaskRow{"HeaderAndMediaOfOneGroup", 0x0C, 2, "cluster 2+1, contents 3+4"},
                    MaskRow{"MediaOfOneGroup", 0x04, 0, "contents 0+3"},
                    MaskRow{"MediaOfAnEmptyGroup", 0x04, 1, ""}, MaskRow{"Upfolder", 0x20, -1, ""},
                    MaskRow{"Fillers", 0x84, -1, "contents 0+3, contents 3+4"},
                    MaskRow{"NoPlaylists", 0x14, -1, "contents 0+3, contents 3+4"},
                    MaskRow{"NothingSelected", 0x40, -1, ""}),
    [](const auto& info) { return info.param.name; });

TEST_F(Factory, TheListBuildPutsPlaylistsBeforeTheGroups) {
    prepare_list();

    ASSERT_EQ(build_list(0x14, 0, 2), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "playlist 0+2, contents 0+3");
}

TEST_F(Factory, AFolderViewShowsFoldersPlaylistsAndMedia) {
    prepare_folder_view();

    ASSERT_EQ(build_list(0x16, 0, 2, false, true), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "contents 0+3, playlist 0+2, contents 3+5");
}

TEST_F(Factory, AFolderViewOfFoldersAndMediaIsTwoRuns) {
    prepare_folder_view();

    ASSERT_EQ(build_list(0x06, 0, 0, false, true), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "contents 0+3, contents 3+5");
}

TEST_F(Factory, AFolderViewKnowsNoGroups) {
    prepare_folder_view();

    ASSERT_EQ(build_list(0x0C, -1, 0, false, true), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "contents 3+5");
}

TEST_F(Factory, AListWithoutGroupsIsOneRunForAnyGroupIndexButANegativeOne) {
    prepare("SOURCE_MSC", "CATEGORY-DATE", 0, {}, 5);

    ASSERT_EQ(build_list(0x0C, 4), QRA_ERROR_NONE);
    EXPECT_EQ(page(), "cluster 4+1, contents 0+5");
    handle_->DestroyContentPage();

    ASSERT_EQ(build_list(0x04, -1), QRA_ERROR_NONE);
    EXPECT_EQ(page(), "");
}

TEST_F(Factory, AnEmptyListWithoutGroupsCannotBeLaidOutForOneGroup) {
    prepare("SOURCE_MSC", "CATEGORY-DATE", 0, {}, 0);
    const LogCapture log;

    EXPECT_EQ(build_list(0x04, 0), QRA_ERROR_INTERNAL);

    EXPECT_TRUE(log.contains("Build page failed."));
    EXPECT_EQ(handle_->GetContentPage(), nullptr);
}

TEST_F(Factory, TheFirstBuildExpandsTheGroupsThatShowMedia) {
    prepare_list();
    ASSERT_EQ(build_list(0x0C), QRA_ERROR_NONE);
    EXPECT_TRUE(handle_->GetGroupInfo()->IsExpanded(0));
    EXPECT_TRUE(handle_->GetGroupInfo()->IsExpanded(1));
    handle_->DestroyContentPage();

    ASSERT_EQ(build_list(0x08, 0), QRA_ERROR_NONE);

    EXPECT_FALSE(handle_->GetGroupInfo()->IsExpanded(0));
    EXPECT_TRUE(handle_->GetGroupInfo()->IsExpanded(1));
}

TEST_F(Factory, AnExpandModeBuildShowsWhatIsExpandedWhateverTheMask) {
    prepare_list();
    handle_->GetGroupInfo()->ExpandGroup(2, true);

    ASSERT_EQ(build_list(0x08, -1, 0, true), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "cluster 0+1, cluster 1+1, cluster 2+1, contents 3+4");
}

TEST_F(Factory, AGroupIndexOutsideTheListEndsTheProcess) {
    prepare_list();

    EXPECT_DEATH(build_list(0x04, 3), "nIndex >= 0 && nIndex <");
}

class RefusedListMask : public Factory, public testing::WithParamInterface<int> {};

TEST_P(RefusedListMask, GivesInvalidParam) {
    prepare_list();
    const LogCapture log;

    EXPECT_EQ(build_list(GetParam()), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log.contains("Invalid ePageStyle[" + std::to_string(GetParam()) + "]."));
    handle_->DestroyContentPage();
}

INSTANTIATE_TEST_SUITE_P(Factory, RefusedListMask,
                         testing::Values(0x42, 0x44, 0x48, 0x50, 0x60, 0x0A, 0x0E, 0x7E));

TEST_F(Factory, ThreeSelectedItemsBecomeThreeRunsAndTheSelectionIsEmpty) {
    prepare_list();
    for (const int db_index : {5, 1, 3})
        handle_->GetSelectList()->AddItem(db_index);
    const LogCapture log;

    ASSERT_EQ(build_list(0x40), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "contents 1+1, contents 3+1, contents 5+1");
    EXPECT_EQ(handle_->GetSelectList()->GetItemCount(), 0);
    EXPECT_TRUE(log.contains("Build selected[3] items to page."));
    EXPECT_TRUE(log.contains("Reset selectlist."));
}

TEST_F(Factory, TheListBuildNamesTheMissingPart) {
    prepare_list();
    const LogCapture log;
    CQRAGroupInfo* groups = handle_->GetGroupInfo();
    handle_->SetGroupInfo(nullptr);
    EXPECT_EQ(build_list(0x04), QRA_ERROR_INVALID_HANDLE);
    handle_->SetGroupInfo(groups);
    CSelectList* selection = handle_->GetSelectList();
    handle_->SetSelectList(nullptr);
    EXPECT_EQ(build_list(0x04), QRA_ERROR_INVALID_HANDLE);
    handle_->SetSelectList(selection);
    IQRASourceBase* source = handle_->GetSource();
    handle_->SetSource(nullptr);
    EXPECT_EQ(build_list(0x04), QRA_ERROR_INVALID_HANDLE);
    handle_->SetSource(source);

    EXPECT_TRUE(log.contains("pHandle->GetGroupInfo()== NULL"));
    EXPECT_TRUE(log.contains("pHandle->GetSelectList()== NULL"));
    EXPECT_TRUE(log.contains("pHandle->GetSource()== NULL"));
}

TEST_F(Factory, TheListBuildNeedsRowsAndColumns) {
    prepare_list();
    const LogCapture log;

    EXPECT_EQ(factory_->Build(handle_, QRA_PAGE_ORDER_ROW, 0x04, -1, 0, 0, 9, false, false),
              QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(factory_->Build(handle_, QRA_PAGE_ORDER_ROW, 0x04, -1, 0, 2, 0, false, false),
              QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(factory_->Build(handle_, QRA_PAGE_ORDER_ROW, 0x04, -1, 0, -2, 9, false, false),
              QRA_ERROR_INTERNAL);

    EXPECT_TRUE(log.contains("nRow == 0"));
    EXPECT_TRUE(log.contains("nCol == 0"));
    EXPECT_TRUE(log.contains("Create page failed."));
    EXPECT_EQ(handle_->GetContentPage(), nullptr);
}

// The folder build.

class FolderFirstMask : public Factory, public testing::WithParamInterface<MaskRow> {};

TEST_P(FolderFirstMask, LaysOutItsRuns) {
    prepare_folder("CATEGORY-FOLDER-TITLE");

    ASSERT_EQ(build_folder(GetParam().mask, GetParam().group), QRA_ERROR_NONE);

    EXPECT_EQ(page(), GetParam().page);
}

INSTANTIATE_TEST_SUITE_P(
    Factory, FolderFirstMask,
    testing::Values(MaskRow{"Nothing", 0x00, -1, ""}, MaskRow{"Folders", 0x02, -1, "contents 0+3"},
                    MaskRow{"Media", 0x04, -1, "contents 3+3, contents 6+4"},
                    MaskRow{"FoldersAndMedia", 0x06, -1, "contents 0+3, contents 3+3, contents 6+4"},
                    MaskRow{"Headers", 0x08, -1, "cluster 0+1, cluster 1+1"},
                    MaskRow{"FoldersAndHeaders", 0x0A, -1, "contents 0+3, cluster 0+1, cluster 1+1"},
                    MaskRow{"Upfolder", 0x20, -1, "upfolder -1+1"},
                    MaskRow{"All", 0x26, -1, "upfolder -1+1, contents 0+3, contents 3+3, contents 6+4"},
                    MaskRow{"NoFillersInThisView", 0xA6, -1,
                            "upfolder -1+1, contents 0+3, contents 3+3, contents 6+4"},
                    MaskRow{"OneGroup", 0x26, 1, "upfolder -1+1, contents 0+3, contents 6+4"},
                    MaskRow{"OneHeader", 0x08, 0, "cluster 0+1"},
                    MaskRow{"AGroupThatIsNotThere", 0x26, 2, "upfolder -1+1, contents 0+3"},
                    MaskRow{"NoPlaylists", 0x10, -1, ""}, MaskRow{"NothingSelected", 0x40, -1, ""}),
    [](const auto& info) { return info.param.name; });

class FolderLastMask : public Factory, public testing::WithParamInterface<MaskRow> {};

TEST_P(FolderLastMask, LaysOutItsRunsInEveryCategoryOfItsKind) {
    for (const char* category :
         {"CATEGORY-FOLDER-DATE", "CATEGORY-FOLDER-CHANNEL_NAME", "CATEGORY-FOLDER-CHANNEL_NUM"}) {
        handle_ = nullptr;
        prepare_folder(category);

        ASSERT_EQ(build_folder(GetParam().mask, GetParam().group), QRA_ERROR_NONE);

        EXPECT_EQ(page(), GetParam().page) << category;
        disconnect();
    }
}

INSTANTIATE_TEST_SUITE_P(
    Factory, FolderLastMask,
    testing::Values(
        MaskRow{"Nothing", 0x00, -1, ""}, MaskRow{"Folders", 0x02, -1, "contents 0+3"},
        MaskRow{"Media", 0x04, -1, "contents 3+3, contents 6+4"},
        MaskRow{"MediaAndFolders", 0x06, -1, "contents 3+3, contents 6+4, contents 0+3"},
        MaskRow{"Headers", 0x08, -1, "cluster 0+1, cluster 1+1"},
        MaskRow{"HeadersAndFolders", 0x0A, -1, "cluster 0+1, cluster 1+1, contents 0+3"},
        MaskRow{"All", 0x26, -1, "upfolder -1+1, contents 3+3, contents 6+4, contents 0+3"},
        MaskRow{"Fillers", 0xA4, -1, "upfolder -1+1, empty -1+1, contents 3+3, empty -1+1, contents 6+4"},
        MaskRow{"FillersWithoutUpfolder", 0x84, -1, "contents 3+3, empty -1+1, contents 6+4"},
        MaskRow{"FillersAndHeaders", 0xA8, -1, "upfolder -1+1, empty -1+1, cluster 0+1, cluster 1+1"},
        MaskRow{"OneGroup", 0x26, 0, "upfolder -1+1, contents 3+3, contents 0+3"},
        MaskRow{"AGroupThatIsNotThere", 0x26, 2, "upfolder -1+1, contents 0+3"}),
    [](const auto& info) { return info.param.name; });

TEST_F(Factory, TheUpFolderTileHasNoColumnOfItsOwnWithoutMediaOrWithOneRow) {
    prepare("SOURCE_MSC", "CATEGORY-FOLDER-DATE", 3, {}, 3);
    ASSERT_EQ(build_folder(0xA6), QRA_ERROR_NONE);
    EXPECT_EQ(page(), "upfolder -1+1, contents 0+3");
    disconnect();

    handle_ = nullptr;
    prepare_folder("CATEGORY-FOLDER-DATE");
    ASSERT_EQ(build_folder(0xA4, -1, 1, 9), QRA_ERROR_NONE);
    EXPECT_EQ(page(), "upfolder -1+1, contents 3+3, contents 6+4");
}

// A number of rows that no screen has costs neither time nor memory.
TEST_F(Factory, FillersOfAVeryLongColumnAreOneRun) {
    prepare_folder("CATEGORY-FOLDER-DATE");

    ASSERT_EQ(build_folder(0xA4, -1, 1000000, 9), QRA_ERROR_NONE);

    EXPECT_EQ(page(),
              "upfolder -1+1, empty -1+999999, contents 3+3, empty -1+999997, contents 6+4, empty -1+999996");
    EXPECT_EQ(handle_->GetContentPage()->GetEmptyItemCount(), 999999 + 999997 + 999996);
}

TEST_F(Factory, AColumnThatIsAsLongAsAListCanBeLeavesNoRoomForItsItems) {
    prepare_folder("CATEGORY-FOLDER-DATE");

    EXPECT_EQ(build_folder(0xA4, -1, INT_MAX, 1), QRA_ERROR_INTERNAL);

    EXPECT_EQ(handle_->GetContentPage(), nullptr);
}

TEST_F(Factory, AGroupThatCannotBeAddedFailsTheBuildWhateverFollows) {
    prepare_folder("CATEGORY-FOLDER-TITLE");
    CQRAGroupInfo& groups = *handle_->GetGroupInfo();
    groups.Reset();
    groups.AddGroup("more than there is room for beside the up-folder tile", INT_MAX);
    groups.AddGroup("less than none", -10);
    groups.AddGroup("five", 5);
    const LogCapture log;

    EXPECT_EQ(build_folder(0x24), QRA_ERROR_INTERNAL);

    EXPECT_TRUE(log.contains("Build page failed."));
    EXPECT_EQ(handle_->GetContentPage(), nullptr);
}

TEST_F(Factory, AnUhdFolderWithUpFolderShowsFoldersFirst) {
    prepare_folder("CATEGORY-UHD-FOLDER-WITHUPFOLDER");

    ASSERT_EQ(build_folder(0x26), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "upfolder -1+1, contents 0+3, contents 3+3, contents 6+4");
}

TEST_F(Factory, ServersAndCamerasShowTheirMediaFlatByTitle) {
    for (const char* source : {"SOURCE_DLNA", "SOURCE_PTP"}) {
        handle_ = nullptr;
        prepare_folder("CATEGORY-FOLDER-TITLE", source);

        ASSERT_EQ(build_folder(0x26, 0), QRA_ERROR_NONE);

        EXPECT_EQ(page(), "upfolder -1+1, contents 0+3, contents 3+7") << source;
        disconnect();
    }
}

TEST_F(Factory, AnEmptyFolderOfAServerKeepsItsUpFolderTile) {
    prepare("SOURCE_DLNA", "CATEGORY-FOLDER-TITLE", 0, {}, 0);

    ASSERT_EQ(build_folder(0x26), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "upfolder -1+1");
}

class RefusedFolderMask : public Factory, public testing::WithParamInterface<int> {};

TEST_P(RefusedFolderMask, GivesInvalidParam) {
    prepare_folder("CATEGORY-FOLDER-TITLE");
    const LogCapture log;

    EXPECT_EQ(build_folder(GetParam()), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log.contains("Invalid ePageStyle[" + std::to_string(GetParam()) + "]."));
    handle_->DestroyContentPage();
}

INSTANTIATE_TEST_SUITE_P(Factory, RefusedFolderMask,
                         testing::Values(0x42, 0x44, 0x48, 0x50, 0x60, 0xC0, 0x0C, 0x2E));

TEST_F(Factory, TheFolderBuildShowsSelectedItems) {
    prepare_folder("CATEGORY-FOLDER-TITLE");
    handle_->GetSelectList()->AddItem(8);
    handle_->GetSelectList()->AddItem(2);

    ASSERT_EQ(build_folder(0x40), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "contents 2+1, contents 8+1");
    EXPECT_EQ(handle_->GetSelectList()->GetItemCount(), 0);
}

TEST_F(Factory, AGroupIndexThatIsTooLargeIsLoggedAndIgnored) {
    prepare_folder("CATEGORY-FOLDER-TITLE");
    const LogCapture log;

    EXPECT_EQ(build_folder(0x04, INT_MAX), QRA_ERROR_NONE);

    EXPECT_TRUE(log.contains("nGroupIndex:2147483647 >= nBuildGroupCount:2"));
    EXPECT_EQ(handle_->GetContentPage()->GetTotalSize(), 0);
}

TEST_F(Factory, TheFolderBuildRefusesWhatItNeeds) {
    prepare_folder("CATEGORY-FOLDER-TITLE");
    const LogCapture log;

    EXPECT_EQ(factory_->Build(nullptr, QRA_PAGE_ORDER_ROW, 0x04, -1, 0, 2, 9), QRA_ERROR_INVALID_HANDLE);
    CSelectList* selection = handle_->GetSelectList();
    handle_->SetSelectList(nullptr);
    EXPECT_EQ(build_folder(0x04), QRA_ERROR_INVALID_HANDLE);
    handle_->SetSelectList(selection);
    EXPECT_EQ(log.count("Invalid handle."), 2);

    EXPECT_EQ(build_folder(0x04, -1, 0, 9), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(build_folder(0x04, -1, 2, 0), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log.count("Invalid param."), 2);
    EXPECT_EQ(build_folder(0x04, -1, -1, 9), QRA_ERROR_INTERNAL);
    EXPECT_TRUE(log.contains("Create page failed."));
}

TEST_F(Factory, EveryLocalPageIsLaidOutInColumns) {
    prepare_list();

    ASSERT_EQ(build_list(0x04), QRA_ERROR_NONE);

    int slot = 0;
    EXPECT_TRUE(handle_->GetContentPage()->m_GetSlotId(1, 2, slot));
    EXPECT_EQ(slot, 2 * kRows + 1);
}

}  // namespace
