// Page, cursor, values and selection of a remote list.
#include <cstring>

#include "common/datamodel/qra_resultpool.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "tests/unit/agent/web_agent_fixture.h"

namespace {

/// The first section, items 0 to 3 of ten, is there and laid out.
class CQRAWebAgentItem : public WebAgentTest {
protected:
    void SetUp() override {
        open_list();
        ASSERT_EQ(lay_out(), QRA_ERROR_NONE);
    }

    std::string text(const char* field) {
        char* value = nullptr;
        const qra_error_code_e code = qra_get_item_value_char_v2(handle_, field, &value);
        const std::string result = code == QRA_ERROR_NONE ? value : "code " + std::to_string(code);
        free(value);
        return result;
    }
};

TEST_F(CQRAWebAgentItem, GivesTheTextOfEachItemThatHasArrived) {
    EXPECT_EQ(item(0), RemoteList::item(0));
    EXPECT_EQ(item(3), RemoteList::item(3));
    EXPECT_EQ(item(4), "code 5");
    EXPECT_EQ(item(10), "code 2");
    EXPECT_EQ(item(-1), "code 2");
    EXPECT_TRUE(log_.contains("m_GetDBIndex() faild, nPageIndex[10]."));

    complete_section(1);
    ASSERT_TRUE(wait_for_events(1));

    EXPECT_EQ(item(4), RemoteList::item(4));
}

TEST_F(CQRAWebAgentItem, TheCursorWalksTheList) {
    ASSERT_EQ(qra_move_to_index_v2(handle_, 2), QRA_ERROR_NONE);
    EXPECT_EQ(text("TITLE"), "item 2");
    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_NONE);
    EXPECT_EQ(text("TITLE"), "item 3");
    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_WRITE_FAILED);
    EXPECT_EQ(text("TITLE"), "item 3");
    EXPECT_EQ(qra_move_to_previous_v2(handle_), QRA_ERROR_NONE);
    EXPECT_EQ(text("TITLE"), "item 2");
    ASSERT_EQ(qra_move_to_index_v2(handle_, 0), QRA_ERROR_NONE);
    EXPECT_EQ(qra_move_to_previous_v2(handle_), QRA_ERROR_INVALID_PARAM);
}

TEST_F(CQRAWebAgentItem, GivesTypedValues) {
    ASSERT_EQ(qra_move_to_index_v2(handle_, 1), QRA_ERROR_NONE);
    int number = 0;
    bool flag = false;
    unsigned long long size = 0;

    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "MEDIA_TYPE", &number), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_bool_v2(handle_, "LIKED", &flag), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_value_lint_v2(handle_, "SIZE", &size), QRA_ERROR_NONE);

    EXPECT_EQ(number, 2);
    EXPECT_TRUE(flag);
    EXPECT_EQ(size, 5000000001u);
    EXPECT_EQ(text("TITLE"), "item 1");
    EXPECT_EQ(text("QRA_MEDIA_FOCUS_ID"), "1");
}

TEST_F(CQRAWebAgentItem, AMissingTextIsEmptyAndAnyOtherMissingValueIsAnError) {
    ASSERT_EQ(qra_move_to_index_v2(handle_, 1), QRA_ERROR_NONE);
    int number = 42;
    bool flag = true;
    unsigned long long size = 42;

    EXPECT_EQ(text("ARTIST"), "");
    EXPECT_EQ(text("MEDIA_TYPE"), "");
    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "TITLE", &number), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_bool_v2(handle_, "ARTIST", &flag), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_lint_v2(handle_, "", &size), QRA_ERROR_INTERNAL);

    EXPECT_EQ(log_.count("m_GetDetailValue() failed."), 3);
    EXPECT_EQ(number, 42);
    EXPECT_TRUE(flag);
    EXPECT_EQ(size, 42u);
}

TEST_F(CQRAWebAgentItem, NullFieldsAndOutVariablesAreRefused) {
    int number = 0;
    IQRAAgentBase& agent = *handle_->GetAgentInstance();

    EXPECT_EQ(qra_get_item_value_int_v2(handle_, nullptr, &number), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "SIZE", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log_.contains("NULL == pField"));
    EXPECT_TRUE(log_.contains("NULL == pValue"));
    EXPECT_EQ(qra_get_item_value_char_v2(handle_, "SIZE", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_bool_v2(handle_, "SIZE", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_lint_v2(handle_, "SIZE", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_v2(handle_, 0, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_count_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_group_count_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_navigation_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log_.contains("peNavigation == NULL"));
    EXPECT_EQ(qra_get_selection_count_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_selected_state_v2(handle_, 0, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_page_index_v2(handle_, nullptr, &number), QRA_ERROR_INVALID_PARAM);
    char id[] = "1";
    EXPECT_EQ(qra_get_page_index_v2(handle_, id, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_set_page_style_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(agent.PreparePlayData(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
}

TEST_F(CQRAWebAgentItem, ServesNoOtherOperation) {
    double real = 0;
    time_t time = 0;
    char text[] = "text";
    char* out = nullptr;
    IQRAAgentBase& agent = *handle_->GetAgentInstance();

    EXPECT_EQ(qra_cancel_request_list_v2(handle_), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_double_v2(handle_, "SIZE", &real), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_item_value_time_v2(handle_, "SIZE", &time), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_set_item_value_time_v2(handle_, "SIZE", 1), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_set_item_value_int_v2(handle_, "SIZE", 1), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_set_item_value_char_v2(handle_, "SIZE", text), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_book_mark_v2(handle_, nullptr, nullptr), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_set_expand_mode_v2(handle_, 0, true), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_select_group_v2(handle_, 0), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_deselect_group_v2(handle_, 0), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_rating_info_v2(handle_, &out), QRA_ERROR_INTERNAL);
    EXPECT_EQ(agent.GetStorageId(text, &out), QRA_ERROR_INTERNAL);
}

TEST_F(CQRAWebAgentItem, CountsTheTilesOfThePageAndNothingByKind) {
    int count = 0;
    EXPECT_EQ(qra_get_item_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 10);
    count = 42;
    EXPECT_EQ(qra_get_item_count_by_type_v2(handle_, QRA_MEDIA_TYPE_IMAGE, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 42);
}

TEST_F(CQRAWebAgentItem, ANewPageStyleReplacesThePage) {
    qra_page_style_s style;
    style.mask = 0x02;
    style.row = 0;
    EXPECT_EQ(qra_set_page_style_v2(handle_, &style), QRA_ERROR_INVALID_PARAM);
    int count = 0;
    EXPECT_EQ(qra_get_item_count_v2(handle_, &count), QRA_ERROR_INVALID_HANDLE);

    EXPECT_EQ(lay_out(), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_item_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(handle_->GetContentPage()->GetRow(), 2);
    EXPECT_EQ(handle_->GetContentPage()->GetColumn(), 9);
}

TEST_F(CQRAWebAgentItem, GroupsAreThePoolsGroups) {
    int count = -1;
    EXPECT_EQ(qra_get_group_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 0);

    complete_section(1);
    ASSERT_TRUE(wait_for_events(1));

    EXPECT_EQ(qra_get_group_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 1);
}

TEST_F(CQRAWebAgentItem, AnIdLeadsBackToItsTile) {
    int index = -1;
    char three[] = "3";
    char beyond[] = "10";
    char none[] = "-1";

    EXPECT_EQ(qra_get_page_index_v2(handle_, three, &index), QRA_ERROR_NONE);
    EXPECT_EQ(index, 3);
    EXPECT_EQ(qra_get_page_index_v2(handle_, beyond, &index), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_page_index_v2(handle_, none, &index), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(index, 3);
}

TEST_F(CQRAWebAgentItem, OnASelectionEveryIdIsTheFirstTile) {
    char id[] = "9";
    int index = -1;
    EXPECT_EQ(qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_SELECTED), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_page_index_v2(handle_, id, &index), QRA_ERROR_NONE);
    EXPECT_EQ(index, 0);
    EXPECT_TRUE(log_.contains("GetPageIndex In QRA_NAVIGATION_TYPE_SELECTED, pnPageIndex[0]."));

    index = -1;
    EXPECT_EQ(qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_ALL), QRA_ERROR_NONE);
    ASSERT_EQ(qra_toggle_select_v2(handle_, 1), QRA_ERROR_NONE);
    ASSERT_EQ(lay_out(0x40), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_page_index_v2(handle_, id, &index), QRA_ERROR_NONE);
    EXPECT_EQ(index, 0);
}

TEST_F(CQRAWebAgentItem, TilesAreSelectedByTheirDbIndex) {
    bool selected = true;
    int count = -1;
    EXPECT_EQ(qra_get_selected_state_v2(handle_, 3, &selected), QRA_ERROR_NONE);
    EXPECT_FALSE(selected);

    EXPECT_EQ(qra_toggle_select_v2(handle_, 3), QRA_ERROR_NONE);
    EXPECT_EQ(qra_toggle_select_v2(handle_, 1), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_selected_state_v2(handle_, 3, &selected), QRA_ERROR_NONE);
    EXPECT_TRUE(selected);
    EXPECT_EQ(qra_get_selection_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(qra_toggle_select_v2(handle_, 3), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_selected_state_v2(handle_, 3, &selected), QRA_ERROR_NONE);
    EXPECT_FALSE(selected);
    EXPECT_EQ(qra_toggle_select_v2(handle_, 10), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_selected_state_v2(handle_, -1, &selected), QRA_ERROR_INVALID_PARAM);

    EXPECT_EQ(qra_deselect_all_v2(handle_), QRA_ERROR_NONE);
    EXPECT_EQ(qra_get_selection_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 0);
}

TEST_F(CQRAWebAgentItem, TheCursorWalksTheSelection) {
    ASSERT_EQ(qra_toggle_select_v2(handle_, 1), QRA_ERROR_NONE);
    ASSERT_EQ(qra_toggle_select_v2(handle_, 3), QRA_ERROR_NONE);
    ASSERT_EQ(qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_SELECTED), QRA_ERROR_NONE);
    qra_navigation_e navigation = QRA_NAVIGATION_TYPE_ALL;
    EXPECT_EQ(qra_get_navigation_v2(handle_, &navigation), QRA_ERROR_NONE);
    EXPECT_EQ(navigation, QRA_NAVIGATION_TYPE_SELECTED);
    int count = 0;
    EXPECT_EQ(qra_get_item_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 2);

    EXPECT_EQ(item(1), RemoteList::item(3));
    EXPECT_EQ(item(0), RemoteList::item(1));
    EXPECT_EQ(item(2), RemoteList::item(1)) << "a rank that is not there leaves the cursor where it is";
    EXPECT_TRUE(log_.contains("m_MoveOnSelectList faild. nPageIndex[2]."));
}

TEST_F(CQRAWebAgentItem, ASelectionThatWasNotEnteredHasNoItem) {
    ASSERT_EQ(qra_set_navigation_v2(handle_, QRA_NAVIGATION_TYPE_SELECTED), QRA_ERROR_NONE);

    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(item(0), "code 2");
}

TEST_F(CQRAWebAgentItem, BeforeAPageStyleEveryMoveLeadsToTheSecondItem) {
    handle_->DestroyContentPage();

    EXPECT_EQ(qra_move_to_index_v2(handle_, 3), QRA_ERROR_NONE);
    EXPECT_EQ(text("TITLE"), "item 1");

    int count = 0;
    char id[] = "1";
    bool selected = false;
    EXPECT_EQ(qra_get_item_count_v2(handle_, &count), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_get_page_index_v2(handle_, id, &count), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_toggle_select_v2(handle_, 0), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_get_selected_state_v2(handle_, 0, &selected), QRA_ERROR_INVALID_HANDLE);
}

TEST_F(CQRAWebAgentItem, WithoutItsPartsAHandleIsInvalid) {
    handle_->DestroyResultPool();
    handle_->DestorySelectList();
    int number = 0;
    char* out = nullptr;
    bool selected = false;

    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(item(0), "code 1");
    EXPECT_EQ(qra_get_group_count_v2(handle_, &number), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "SIZE", &number), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_get_selection_count_v2(handle_, &number), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_deselect_all_v2(handle_), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_toggle_select_v2(handle_, 0), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_get_selected_state_v2(handle_, 0, &selected), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_prepare_play_data_v2(handle_, &out), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(lay_out(), QRA_ERROR_INVALID_HANDLE);
    Json::Value answer;
    answer["qra_event_type"] = 0;
    answer["qra_result_list_block_name"] = "qra_test_none";
    complete(answer);
    EXPECT_TRUE(wait_for_log("pHandle->GetResultPool() == NULL"));
    EXPECT_TRUE(events_.empty());
}

TEST(CQRAWebAgentDeathTest, ANullHandleIsAnAssertion) {
    CQRAWebAgent agent;
    std::string id;
    char* text = nullptr;
    int number = 0;

    EXPECT_DEATH(agent.MoveToNext(nullptr), "pHandle != __null");
    EXPECT_DEATH(agent.GetItem(nullptr, 0, &text), "pHandle != __null");
    EXPECT_DEATH(agent.GetItemCount(nullptr, &number), "pHandle != __null");
    EXPECT_DEATH(agent.SetPageStyle(nullptr, nullptr), "pHandle != __null");
    EXPECT_DEATH(agent.Disconnect(nullptr), "pHandle != __null");
    EXPECT_DEATH(agent.RequestDetail(nullptr, nullptr, nullptr, nullptr), "pHandle != __null");
    EXPECT_DEATH(agent.Send(nullptr, 1, "{}", nullptr, nullptr, id), "pHandle != __null");
}

}  // namespace
