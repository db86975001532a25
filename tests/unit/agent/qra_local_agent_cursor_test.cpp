#include "tests/unit/agent/agent_fixture.h"

namespace {

/// A folder view of three items behind an up-folder tile.
class FolderCursor : public AgentTest {
protected:
    FolderCursor() {
        script_items(3);
        open_page(0x24, "CATEGORY-FOLDER-TITLE");
        script_.calls.clear();
    }
};

/// A flat list of 30 items.
class ListCursor : public AgentTest {
protected:
    ListCursor() {
        script_items(30);
        open_page(0x04);
        script_.calls.clear();
    }

    int cursor() const { return handle_->GetCurrentPageIndex(); }
};

TEST_F(ListCursor, MovesPageAndSourceInStep) {
    EXPECT_EQ(qra_move_to_index_v2(handle_, 20), QRA_ERROR_NONE);
    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_NONE);
    EXPECT_EQ(qra_move_to_previous_v2(handle_), QRA_ERROR_NONE);
    EXPECT_EQ(qra_move_to_previous_v2(handle_), QRA_ERROR_NONE);

    EXPECT_EQ(cursor(), 19);
    EXPECT_EQ(script_.cursor, 19);
    EXPECT_EQ(script_.calls,
              (std::vector<std::string>{"MoveToIndex 20", "MoveToNext", "MoveToPrevious", "MoveToPrevious"}));
}

TEST_F(ListCursor, AMoveThatTheSourceRefusesLeavesTheCursor) {
    qra_move_to_index_v2(handle_, 29);
    const LogCapture log;

    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_INTERNAL);

    EXPECT_EQ(cursor(), 29);
    EXPECT_TRUE(log.contains("m_MoveOnResultList faild, nPageIndex[0]."));
}

TEST_F(ListCursor, APositionOutsideThePageIsInternal) {
    const LogCapture log;

    EXPECT_EQ(qra_move_to_index_v2(handle_, 30), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_move_to_index_v2(handle_, -1), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_move_to_index_v2(handle_, INT32_MAX), QRA_ERROR_INTERNAL);

    EXPECT_EQ(log.count("Wrong ePageItemType[0]."), 3);
    EXPECT_EQ(cursor(), 0);
    EXPECT_TRUE(script_.calls.empty());
}

TEST_F(FolderCursor, ATileThatTheSourceDoesNotKnowMovesThePageCursorAlone) {
    qra_move_to_index_v2(handle_, 2);
    script_.calls.clear();

    EXPECT_EQ(qra_move_to_index_v2(handle_, 0), QRA_ERROR_NONE);

    EXPECT_EQ(handle_->GetCurrentPageIndex(), 0);
    EXPECT_TRUE(script_.calls.empty());
    EXPECT_EQ(script_.cursor, 1);
}

TEST_F(FolderCursor, AnUpFolderTileAtTheTopKeepsTheSourceWhereItIsOnNextAndPrevious) {
    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_NONE);
    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_NONE);
    EXPECT_EQ(qra_move_to_previous_v2(handle_), QRA_ERROR_NONE);

    EXPECT_EQ(handle_->GetCurrentPageIndex(), 1);
    EXPECT_TRUE(script_.calls.empty());
}

TEST_F(FolderCursor, ThePageCursorStaysOnThePage) {
    const LogCapture log;

    EXPECT_EQ(qra_move_to_previous_v2(handle_), QRA_ERROR_INVALID_PARAM);
    qra_move_to_index_v2(handle_, 3);
    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log.contains("m_CheckListIndex faild. nPageIndex[-1]."));
    EXPECT_TRUE(log.contains("m_CheckListIndex faild. nPageIndex[4]."));
    EXPECT_EQ(handle_->GetCurrentPageIndex(), 3);
}

TEST_F(ListCursor, NavigationIsKeptAndCountsFollowIt) {
    qra_navigation_e navigation = QRA_NAVIGATION_TYPE_SELECTED;
    EXPECT_EQ(qra_get_navigation_v2(handle_, &navigation), QRA_ERROR_NONE);
    EXPECT_EQ(navigation, QRA_NAVIGATION_TYPE_ALL);
    int count = 0;
    EXPECT_EQ(qra_get_item_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 30);
    qra_toggle_select_v2(handle_, 7);
    const LogCapture log;

    EXPECT_EQ(qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_SELECTED), QRA_ERROR_NONE);

    EXPECT_EQ(qra_get_navigation_v2(handle_, &navigation), QRA_ERROR_NONE);
    EXPECT_EQ(navigation, QRA_NAVIGATION_TYPE_SELECTED);
    EXPECT_EQ(qra_get_item_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 1);
    EXPECT_TRUE(log.contains("Start to excute qra_set_navigation, agent["));
    EXPECT_TRUE(log.contains("GetItemCount in QRA_NAVIGATION_TYPE_SELECTED"));
}

TEST_F(ListCursor, MoveToIndexInTheSelectionLandsOnTheSelectedItem) {
    for (const int index : {25, 11, 3})
        qra_toggle_select_v2(handle_, index);
    qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_SELECTED);

    EXPECT_EQ(qra_move_to_index_v2(handle_, 1), QRA_ERROR_NONE);

    EXPECT_EQ(script_.cursor, 11);
    EXPECT_EQ(text("TITLE"), "item 11");
}

TEST_F(ListCursor, NextInTheSelectionMovesTheSourceByOne) {
    for (const int index : {3, 25})
        qra_toggle_select_v2(handle_, index);
    qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_SELECTED);
    qra_move_to_index_v2(handle_, 0);

    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_NONE);

    EXPECT_EQ(script_.cursor, 4);
}

TEST_F(ListCursor, TheEndsOfTheSelectionAreInvalidIndices) {
    qra_toggle_select_v2(handle_, 3);
    qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_SELECTED);
    const LogCapture log;

    EXPECT_EQ(qra_move_to_previous_v2(handle_), QRA_ERROR_INVALID_INDEX);
    EXPECT_EQ(qra_move_to_index_v2(handle_, 1), QRA_ERROR_INVALID_INDEX);
    EXPECT_EQ(qra_move_to_index_v2(handle_, 0), QRA_ERROR_NONE);
    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_INVALID_INDEX);

    EXPECT_TRUE(log.contains("m_MoveOnSelectList faild. nPageIndex[0]."));
    EXPECT_TRUE(log.contains("m_MoveOnSelectList faild. nPageIndex[1]."));
}

}  // namespace
