#include <cstdlib>

#include "libqra-agent/agent/src/qra_selectlist.h"
#include "tests/unit/agent/agent_fixture.h"

namespace {

/// An up-folder tile, then the groups "first" (4 items) and "second" (6 items) without headers.
class Selection : public AgentTest {
protected:
    Selection() {
        script_items(10);
        script_groups(0, {{"first", 4}, {"second", 6}});
        open_page(0x24, "CATEGORY-FOLDER-TITLE");
    }

    int count() {
        int value = -1;
        EXPECT_EQ(qra_get_selection_count_v2(handle_, &value), QRA_ERROR_NONE);
        return value;
    }
    bool selected(int index) {
        bool value = false;
        EXPECT_EQ(qra_get_selected_state_v2(handle_, index, &value), QRA_ERROR_NONE);
        return value;
    }
};

TEST_F(Selection, ToggleSelectsAndDeselectsByDbIndex) {
    const LogCapture log;

    EXPECT_EQ(qra_toggle_select_v2(handle_, 3), QRA_ERROR_NONE);
    EXPECT_TRUE(selected(3));
    EXPECT_FALSE(selected(4));
    EXPECT_EQ(count(), 1);
    EXPECT_EQ(handle_->GetSelectList()->GetItems(), std::set<int>{2});

    EXPECT_EQ(qra_toggle_select_v2(handle_, 3), QRA_ERROR_NONE);
    EXPECT_FALSE(selected(3));
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(handle_->GetSelectList()->m_ePageItemType, QRA_PG_ITEM_NONE);
    EXPECT_TRUE(log.contains("AddItem pageIndex[3], dbIndex[2], nSelectCount[1]"));
    EXPECT_TRUE(log.contains("RemoveItem[2], nSelectCount[0]"));
}

TEST_F(Selection, UpFolderAndEmptyTilesCannotBeSelected) {
    set_page_style(0xA4);
    const LogCapture log;

    EXPECT_EQ(qra_toggle_select_v2(handle_, 0), QRA_ERROR_NOT_SUPPORTED);

    EXPECT_TRUE(log.contains("Empty or Upfolder item can not be selected!!"));
    EXPECT_EQ(count(), 0);
}

TEST_F(Selection, APositionOutsideThePageIsInvalid) {
    const LogCapture log;

    EXPECT_EQ(qra_toggle_select_v2(handle_, 11), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_toggle_select_v2(handle_, -1), QRA_ERROR_INVALID_PARAM);
    bool state = true;
    EXPECT_EQ(qra_get_selected_state_v2(handle_, 11, &state), QRA_ERROR_NONE);

    EXPECT_FALSE(state);
    EXPECT_TRUE(log.contains("m_GetDBIndex for nPageIndex[11] faild."));
}

TEST_F(Selection, AGroupHeaderTakesTheListsKindAlthoughNothingIsSelected) {
    request("SOURCE_MSC", "CATEGORY-DATE");
    source_->complete(QRA_EVENT_LIST_SUCCESS);
    ASSERT_EQ(set_page_style(0x0C), QRA_ERROR_NONE);
    const LogCapture log;

    EXPECT_EQ(qra_toggle_select_v2(handle_, 0), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_toggle_select_v2(handle_, 1), QRA_ERROR_NOT_SUPPORTED);

    EXPECT_EQ(handle_->GetSelectList()->m_ePageItemType, QRA_PG_ITEM_CLUSTER);
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(
        log.contains("Selectlist contains items of page[3], can not add items of page[2] to seleclist!!"));
    bool state = true;
    EXPECT_EQ(qra_get_selected_state_v2(handle_, 0, &state), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_deselect_all_v2(handle_), QRA_ERROR_NONE);
    EXPECT_EQ(qra_toggle_select_v2(handle_, 1), QRA_ERROR_NONE);
}

TEST_F(Selection, ATileOfAnotherKindThanTheSelectionIsNotSelected) {
    request("SOURCE_MSC", "CATEGORY-DATE");
    source_->complete(QRA_EVENT_LIST_SUCCESS);
    ASSERT_EQ(set_page_style(0x0C), QRA_ERROR_NONE);
    ASSERT_EQ(qra_toggle_select_v2(handle_, 1), QRA_ERROR_NONE);

    EXPECT_TRUE(selected(1));
    EXPECT_FALSE(selected(0)) << "the header of the group";
}

TEST_F(Selection, AGroupIsSelectedAndDeselectedWhole) {
    qra_toggle_select_v2(handle_, 6);

    EXPECT_EQ(qra_select_group_v2(handle_, 1), QRA_ERROR_NONE);
    EXPECT_EQ(count(), 6);
    EXPECT_FALSE(selected(4));
    EXPECT_TRUE(selected(5));
    EXPECT_TRUE(selected(10));

    EXPECT_EQ(qra_select_group_v2(handle_, 0), QRA_ERROR_NONE);
    EXPECT_EQ(count(), 10);
    EXPECT_EQ(qra_deselect_group_v2(handle_, 1), QRA_ERROR_NONE);
    EXPECT_EQ(count(), 4);
    EXPECT_EQ(qra_deselect_group_v2(handle_, 0), QRA_ERROR_NONE);
    EXPECT_EQ(handle_->GetSelectList()->m_ePageItemType, QRA_PG_ITEM_NONE);
}

TEST_F(Selection, AGroupIsRefusedBesideItemsOfAnotherKind) {
    handle_->GetSelectList()->m_ePageItemType = QRA_PG_ITEM_PLAYLIST;
    handle_->GetSelectList()->AddItem(0);
    const LogCapture log;

    EXPECT_EQ(qra_select_group_v2(handle_, 0), QRA_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(qra_deselect_group_v2(handle_, 0), QRA_ERROR_NOT_SUPPORTED);

    EXPECT_TRUE(log.contains(
        "Other page type[4] of item in select list, please clear select list before you select group."));
    EXPECT_TRUE(log.contains("Wrong page type[4] of item in select list."));
    EXPECT_EQ(count(), 1);
}

TEST_F(Selection, DeselectingAGroupOfAnEmptySelectionIsRefused) {
    EXPECT_EQ(qra_deselect_group_v2(handle_, 0), QRA_ERROR_NOT_SUPPORTED);
}

TEST_F(Selection, AGroupIndexOutsideTheListEndsTheProcess) {
    EXPECT_DEATH(qra_select_group_v2(handle_, 2), "nIndex >= 0 && nIndex < \\(int\\)m_GroupInfos.size\\(\\)");
    EXPECT_DEATH(qra_set_expand_mode_v2(handle_, -1, true), "nIndex >= 0");
}

TEST_F(Selection, DeselectAllEmptiesTheListAndItsKind) {
    qra_toggle_select_v2(handle_, 3);
    qra_toggle_select_v2(handle_, 4);

    EXPECT_EQ(qra_deselect_all_v2(handle_), QRA_ERROR_NONE);

    EXPECT_EQ(count(), 0);
    EXPECT_EQ(handle_->GetSelectList()->m_ePageItemType, QRA_PG_ITEM_NONE);
}

TEST_F(Selection, PlayDataOfAnEmptySelectionNamesNoObject) {
    char* data = nullptr;
    const LogCapture log;

    EXPECT_EQ(qra_prepare_play_data_v2(handle_, &data), QRA_ERROR_NONE);

    EXPECT_STREQ(data, "{\"qra_has_selected_item\":false}\n");
    EXPECT_TRUE(log.contains("Start to excute qra_prepare_play_data for agent["));
    EXPECT_TRUE(log.contains("pPrepareData[{\"qra_has_selected_item\":false}"));
    EXPECT_FALSE(log.contains("Build share memory for select item."));
    free(data);
}

TEST_F(Selection, PlayDataNamesAnObjectThatHoldsTheSelection) {
    qra_toggle_select_v2(handle_, 9);
    qra_toggle_select_v2(handle_, 2);
    char* data = nullptr;

    EXPECT_EQ(qra_prepare_play_data_v2(handle_, &data), QRA_ERROR_NONE);

    const std::string text = data;
    free(data);
    const std::string head = "{\"qra_has_selected_item\":true,\"qra_selectlist_shmname\":\"";
    ASSERT_EQ(text.substr(0, head.size()), head);
    CSelectList list(text.substr(head.size(), text.rfind('"') - head.size()));
    EXPECT_TRUE(list.m_Load());
    EXPECT_EQ(list.GetItems(), (std::set<int>{1, 8}));
    EXPECT_EQ(list.m_ePageItemType, QRA_PG_ITEM_CONTENTS);
}

}  // namespace
