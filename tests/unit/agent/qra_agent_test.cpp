#include <qra/qra_content_agent.h>

#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "tests/fakes/fake_source_factory.h"
#include "tests/unit/agent/agent_fixture.h"

namespace {

/// The exported functions by name, each called with a handle and otherwise good arguments.
struct Call {
    const char* name;
    qra_error_code_e (*call)(qra_agent_handler_h);
};

int g_number;
bool g_flag;
char* g_text;
char g_id[] = "id-0";

const Call kCalls[] = {
    {"cancel_request_list", [](qra_agent_handler_h h) { return qra_cancel_request_list_v2(h); }},
    {"request_detail",
     [](qra_agent_handler_h h) { return qra_request_detail_v2(h, nullptr, nullptr, nullptr); }},
    {"cancel_detail_request", [](qra_agent_handler_h h) { return qra_cancel_detail_request_v2(h); }},
    {"set_navigation",
     [](qra_agent_handler_h h) { return qra_set_navigation_v2(h, QRA_NAVIGATION_TYPE_ALL); }},
    {"get_navigation",
     [](qra_agent_handler_h h) {
         qra_navigation_e navigation;
         return qra_get_navigation_v2(h, &navigation);
     }},
    {"move_to_next", [](qra_agent_handler_h h) { return qra_move_to_next_v2(h); }},
    {"move_to_previous", [](qra_agent_handler_h h) { return qra_move_to_previous_v2(h); }},
    {"move_to_index", [](qra_agent_handler_h h) { return qra_move_to_index_v2(h, 0); }},
    {"get_item_count", [](qra_agent_handler_h h) { return qra_get_item_count_v2(h, &g_number); }},
    {"get_item_count_by_type",
     [](qra_agent_handler_h h) { return qra_get_item_count_by_type_v2(h, QRA_MEDIA_TYPE_IMAGE, &g_number); }},
    {"get_item_value_char",
     [](qra_agent_handler_h h) { return qra_get_item_value_char_v2(h, "TITLE", &g_text); }},
    {"get_item_value_int",
     [](qra_agent_handler_h h) { return qra_get_item_value_int_v2(h, "WIDTH", &g_number); }},
    {"get_item_value_bool",
     [](qra_agent_handler_h h) { return qra_get_item_value_bool_v2(h, "IS_DRM", &g_flag); }},
    {"get_item_value_double",
     [](qra_agent_handler_h h) {
         double value;
         return qra_get_item_value_double_v2(h, "FNUMBER", &value);
     }},
    {"get_item_value_time",
     [](qra_agent_handler_h h) {
         time_t value;
         return qra_get_item_value_time_v2(h, "ADDED_TIME", &value);
     }},
    {"get_item_value_lint",
     [](qra_agent_handler_h h) {
         unsigned long long value;
         return qra_get_item_value_lint_v2(h, "SIZE", &value);
     }},
    {"set_item_value_time",
     [](qra_agent_handler_h h) { return qra_set_item_value_time_v2(h, "PLAYED_TIME", 1); }},
    {"set_item_value_int",
     [](qra_agent_handler_h h) { return qra_set_item_value_int_v2(h, "PLAYED_COUNT", 1); }},
    {"set_item_value_char",
     [](qra_agent_handler_h h) { return qra_set_item_value_char_v2(h, "TITLE", g_id); }},
    {"deselect_all", [](qra_agent_handler_h h) { return qra_deselect_all_v2(h); }},
    {"disconnect", [](qra_agent_handler_h h) { return qra_disconnect_v2(h); }},
    {"get_selected_state", [](qra_agent_handler_h h) { return qra_get_selected_state_v2(h, 0, &g_flag); }},
    {"get_selection_count", [](qra_agent_handler_h h) { return qra_get_selection_count_v2(h, &g_number); }},
    {"toggle_select", [](qra_agent_handler_h h) { return qra_toggle_select_v2(h, 0); }},
    {"upload_comment",
     [](qra_agent_handler_h h) { return qra_upload_comment_v2(h, nullptr, 0, nullptr, nullptr); }},
    {"set_like", [](qra_agent_handler_h h) { return qra_set_like_v2(h, nullptr, 0, nullptr, nullptr); }},
    {"prepare_play_data", [](qra_agent_handler_h h) { return qra_prepare_play_data_v2(h, &g_text); }},
    {"set_page_style",
     [](qra_agent_handler_h h) {
         qra_page_style_s style;
         return qra_set_page_style_v2(h, &style);
     }},
    {"get_group_count", [](qra_agent_handler_h h) { return qra_get_group_count_v2(h, &g_number); }},
    {"get_book_mark", [](qra_agent_handler_h h) { return qra_get_book_mark_v2(h, nullptr, nullptr); }},
    {"set_expand_mode", [](qra_agent_handler_h h) { return qra_set_expand_mode_v2(h, 0, true); }},
    {"get_item", [](qra_agent_handler_h h) { return qra_get_item_v2(h, 0, &g_text); }},
    {"select_group", [](qra_agent_handler_h h) { return qra_select_group_v2(h, 0); }},
    {"deselect_group", [](qra_agent_handler_h h) { return qra_deselect_group_v2(h, 0); }},
    {"get_page_index", [](qra_agent_handler_h h) { return qra_get_page_index_v2(h, g_id, &g_number); }},
    {"get_rating_info", [](qra_agent_handler_h h) { return qra_get_rating_info_v2(h, &g_text); }},
};

class EveryFunction : public testing::TestWithParam<Call> {};

TEST_P(EveryFunction, RefusesANullHandle) {
    const LogCapture log;

    EXPECT_EQ(GetParam().call(nullptr), QRA_ERROR_INVALID_HANDLE);

    EXPECT_TRUE(log.contains("CheckHandler[(nil)] faild!!")) << log.text();
}

TEST_P(EveryFunction, RefusesAnAddressThatIsNoHandleWithoutReadingIt) {
    EXPECT_EQ(GetParam().call(reinterpret_cast<qra_agent_handler_h>(8)), QRA_ERROR_INVALID_HANDLE);
}

TEST_P(EveryFunction, RefusesALiveHandleOfAnotherKind) {
    CQRADeviceCheckHandle other;
    CQRAHandlerMgr::GetInstance()->Add(other.GetValue());

    EXPECT_EQ(GetParam().call(reinterpret_cast<qra_agent_handler_h>(&other)), QRA_ERROR_INVALID_HANDLE);

    EXPECT_TRUE(CQRAHandlerMgr::GetInstance()->Exists(other.GetValue()));
    CQRAHandlerMgr::GetInstance()->Delete(other.GetValue());
}

TEST_P(EveryFunction, EndsTheProcessForALiveHandleWithoutAnAgent) {
    CQRAAgentHandle handle;
    CQRAHandlerMgr::GetInstance()->Add(handle.GetValue());

    EXPECT_DEATH(GetParam().call(&handle), "pHandle != __null && pHandle->GetAgentInstance\\(\\) != __null");
    CQRAHandlerMgr::GetInstance()->Delete(handle.GetValue());
}

INSTANTIATE_TEST_SUITE_P(QraAgent, EveryFunction, testing::ValuesIn(kCalls),
                         [](const auto& info) { return info.param.name; });

using QraAgent = AgentTest;

TEST_F(QraAgent, ARequestWithoutParametersSourceOrVariableIsRefused) {
    qra_general_s param;
    const LogCapture log;

    EXPECT_EQ(qra_request_list_v2(nullptr, nullptr, nullptr, &handle_), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_request_list_v2(&param, nullptr, nullptr, &handle_), QRA_ERROR_INVALID_PARAM);
    param.pSource = g_id;
    EXPECT_EQ(qra_request_list_v2(&param, nullptr, nullptr, nullptr), QRA_ERROR_INVALID_PARAM);

    EXPECT_EQ(log.count("Invalid param."), 3);
    EXPECT_EQ(handle_, nullptr);
}

TEST_F(QraAgent, ARequestGivesAHandleThatIsLive) {
    const LogCapture log;

    EXPECT_EQ(request(), QRA_ERROR_NONE);

    ASSERT_NE(handle_, nullptr);
    EXPECT_TRUE(CQRAHandlerMgr::GetInstance()->CheckHandler(handle_->GetValue(), QRA_HANDLE_TYPE_AGENT));
    EXPECT_TRUE(log.contains("Start to excute qra_request_list."));
    EXPECT_TRUE(log.contains("RequestList success. Get agent["));
}

TEST_F(QraAgent, AValueThatIsNoLiveHandleStartsANewRequest) {
    auto* const stale = reinterpret_cast<CQRAAgentHandle*>(8);
    handle_ = stale;

    EXPECT_EQ(request(), QRA_ERROR_NONE);

    EXPECT_NE(handle_, stale);
}

TEST_F(QraAgent, AFailedRequestLeavesTheClientsValueAlone) {
    auto* const stale = reinterpret_cast<CQRAAgentHandle*>(8);
    handle_ = stale;
    script_.execute_works = false;
    const int count = CQRAHandlerMgr::GetInstance()->GetCount();
    const LogCapture log;

    EXPECT_EQ(request(), QRA_ERROR_INVALID_PARAM);

    EXPECT_EQ(handle_, stale);
    EXPECT_TRUE(log.contains("RequestList faild.eCode[2]."));
    EXPECT_EQ(script_.calls.back(), "destroyed");
    EXPECT_EQ(CQRAHandlerMgr::GetInstance()->GetCount(), count);
}

TEST_F(QraAgent, ALiveHandleOfAnotherKindIsRefusedBeforeItIsCast) {
    CQRADeviceCheckHandle other;
    CQRAHandlerMgr::GetInstance()->Add(other.GetValue());
    handle_ = reinterpret_cast<CQRAAgentHandle*>(&other);

    EXPECT_EQ(request(), QRA_ERROR_INVALID_PARAM);

    CQRAHandlerMgr::GetInstance()->Delete(other.GetValue());
}

TEST_F(QraAgent, ASourceThatThisBuildDoesNotHaveIsRefused) {
    FakeFactory::make_source = [](const std::string&) { return nullptr; };
    const LogCapture log;

    for (const char* source : {"SOURCE_PTP", "SOURCE_DLNA", "SOURCE_PLAYLIST", "SOURCE_MSC"})
        EXPECT_EQ(request(source), QRA_ERROR_NOT_SUPPORTED) << source;

    EXPECT_TRUE(log.contains("UnKown source name[SOURCE_PTP]."));
    EXPECT_EQ(handle_, nullptr);
}

TEST_F(QraAgent, WithoutAnAgentThereIsNoHandle) {
    const LogCapture log;

    EXPECT_EQ(request("CloudSource"), QRA_ERROR_INTERNAL);

    EXPECT_TRUE(log.contains("out of memory!"));
    EXPECT_EQ(handle_, nullptr);
}

TEST_F(QraAgent, ARepeatKeepsTheHandleAndItsSource) {
    request();
    CQRAAgentHandle* const first = handle_;
    const LogCapture log;

    EXPECT_EQ(request(), QRA_ERROR_NONE);

    EXPECT_EQ(handle_, first);
    EXPECT_EQ(script_.calls, std::vector<std::string>{"Open"});
    EXPECT_TRUE(log.contains("Reuse existed Agent["));
    EXPECT_TRUE(log.contains("ReUsed agent["));
    EXPECT_TRUE(log.contains("UnKown source name[SOURCE_MSC]."));
}

TEST_F(QraAgent, PtpAndPlaylistHandlesCannotBeRepeatedAndStayAlive) {
    for (const char* source : {"SOURCE_PTP", "SOURCE_PLAYLIST"}) {
        handle_ = nullptr;
        ASSERT_EQ(request(source), QRA_ERROR_NONE);
        const LogCapture log;

        EXPECT_EQ(request(source), QRA_ERROR_NOT_SUPPORTED);

        EXPECT_TRUE(log.contains("Current source not support repeat request!!"));
        EXPECT_EQ(disconnect(), QRA_ERROR_NONE);
    }
}

TEST_F(QraAgent, ARepeatWithAnotherSourceDestroysTheHandle) {
    request();
    const LogCapture log;

    EXPECT_EQ(request("SOURCE_DLNA"), QRA_ERROR_NOT_SUPPORTED);

    EXPECT_TRUE(log.contains("Invalid request, repeat agent does not match current requst source."));
    EXPECT_EQ(script_.calls.back(), "destroyed");
    EXPECT_EQ(disconnect(), QRA_ERROR_INVALID_HANDLE);
}

TEST_F(QraAgent, AFailedRepeatLeavesADeadEntryThatIsCounted) {
    request();
    script_.execute_works = false;
    CQRAHandlerMgr* registry = CQRAHandlerMgr::GetInstance();
    const qra_handle_value_t value = handle_->GetValue();
    const int count = registry->GetCount();

    EXPECT_EQ(request(), QRA_ERROR_INVALID_PARAM);

    EXPECT_EQ(registry->GetCount(), count);
    EXPECT_FALSE(registry->Exists(value));
    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_INVALID_HANDLE);
}

TEST_F(QraAgent, DisconnectTwiceIsRefusedTheSecondTime) {
    request();
    const LogCapture log;

    EXPECT_EQ(disconnect(), QRA_ERROR_NONE);
    EXPECT_EQ(disconnect(), QRA_ERROR_INVALID_HANDLE);

    EXPECT_TRUE(log.contains("Start to excute qra_disconnect of agent["));
    EXPECT_TRUE(log.contains("success!"));
    EXPECT_EQ(script_.calls, (std::vector<std::string>{"Open", "Close", "destroyed"}));
}

TEST_F(QraAgent, ADisconnectThatFailsLeavesTheHandleAlive) {
    request();
    script_.close_works = false;
    const LogCapture log;

    EXPECT_EQ(disconnect(), QRA_ERROR_INTERNAL);

    EXPECT_TRUE(log.contains("pHandle->GetSource()->Close(), strSourceName[SOURCE_MSC] faild."));
    EXPECT_TRUE(log.contains("faild, eCode[23]."));
    script_.close_works = true;
    EXPECT_EQ(disconnect(), QRA_ERROR_NONE);
}

/// An agent of the engine's, of which only its kind counts here.
class OtherAgent : public IQRAAgentBase {
public:
    qra_error_code_e RequestList(qra_general_s*, on_list_complete_cb, void*,
                                 CQRAAgentHandle** handle) override {
        CQRAHandlerMgr::GetInstance()->Add((*handle)->GetValue());
        return QRA_ERROR_NONE;
    }
    qra_error_code_e Disconnect(CQRAAgentHandle* handle) override {
        CQRAHandlerMgr::GetInstance()->Delete(handle->GetValue());
        return QRA_ERROR_NONE;
    }
    qra_error_code_e CancelRequestList(CQRAAgentHandle*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e RequestDetail(CQRAAgentHandle*, qra_detail_s*, void*, on_detail_complete_cb) override {
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e CancelDetailRequest(CQRAAgentHandle*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e SetNavigation(CQRAAgentHandle*, qra_navigation_e) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetNavigation(CQRAAgentHandle*, qra_navigation_e*) override {
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e MoveToNext(CQRAAgentHandle*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e MoveToPrevious(CQRAAgentHandle*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e MoveToIndex(CQRAAgentHandle*, int) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetItemCount(CQRAAgentHandle*, int*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetItemCount(CQRAAgentHandle*, qra_media_type_e, int*) override {
        return QRA_ERROR_INTERNAL;
    }
    // A text getter that writes before it fails.
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char*, char** value) override {
        *value = strdup("written too early");
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char*, int*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char*, bool*) override {
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char*, double*) override {
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char*, long*) override {
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e GetItemValue(CQRAAgentHandle*, const char*, unsigned long long*) override {
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e SetItemValue(CQRAAgentHandle*, const char*, long) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e SetItemValue(CQRAAgentHandle*, const char*, int) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e SetItemValue(CQRAAgentHandle*, const char*, char*) override {
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e DeselectAll(CQRAAgentHandle*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetSelectedState(CQRAAgentHandle*, int, bool*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetSelectionCount(CQRAAgentHandle*, int*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e ToggleSelect(CQRAAgentHandle*, int) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e UploadComment(CQRAAgentHandle*, qra_comment_s*, int, void*,
                                   on_detail_complete_cb) override {
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e SetLike(CQRAAgentHandle*, qra_like_s*, int, void*, on_detail_complete_cb) override {
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e PreparePlayData(CQRAAgentHandle*, char**) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e SetPageStyle(CQRAAgentHandle*, qra_page_style_s*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetGroupCount(CQRAAgentHandle*, int*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetItemBookMark(CQRAAgentHandle*, on_get_dlna_bookmark_cb, void*) override {
        return QRA_ERROR_INTERNAL;
    }
    qra_error_code_e SetExpandMode(CQRAAgentHandle*, int, bool) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetItem(CQRAAgentHandle*, int, char**) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e SelectGroup(CQRAAgentHandle*, int) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e DeselectGroup(CQRAAgentHandle*, int) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetPageIndex(CQRAAgentHandle*, char*, int*) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetRatingInfo(CQRAAgentHandle*, char**) override { return QRA_ERROR_INTERNAL; }
    qra_error_code_e GetStorageId(char*, char**) override { return QRA_ERROR_INTERNAL; }
};

TEST_F(QraAgent, AnyOtherSourceNameGoesToTheOtherAgent) {
    FakeFactory::make_other_agent = [] { return std::make_unique<OtherAgent>(); };

    EXPECT_EQ(request("qra_ra_source"), QRA_ERROR_NONE);

    EXPECT_NE(dynamic_cast<OtherAgent*>(handle_->GetAgentInstance()), nullptr);
}

TEST_F(QraAgent, AHandleOfTheOtherAgentCannotBeRepeated) {
    FakeFactory::make_other_agent = [] { return std::make_unique<OtherAgent>(); };
    request("CloudSource");
    const LogCapture log;

    EXPECT_EQ(request("CloudSource"), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log.contains("Exist web agent"));
    EXPECT_EQ(disconnect(), QRA_ERROR_NONE);
}

TEST_F(QraAgent, ATextIsHandedOutOnSuccessOnly) {
    FakeFactory::make_other_agent = [] { return std::make_unique<OtherAgent>(); };
    request("CloudSource");
    char untouched[] = "untouched";
    char* value = untouched;

    EXPECT_EQ(qra_get_item_value_char_v2(handle_, "TITLE", &value), QRA_ERROR_INTERNAL);

    EXPECT_EQ(value, untouched);
}

TEST_F(QraAgent, NullOutVariablesAreRefused) {
    script_items(1);
    open_page(0x04);

    EXPECT_EQ(qra_get_navigation_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_count_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_count_by_type_v2(handle_, QRA_MEDIA_TYPE_IMAGE, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_char_v2(handle_, "TITLE", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "WIDTH", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_bool_v2(handle_, "IS_DRM", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_double_v2(handle_, "FNUMBER", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_time_v2(handle_, "ADDED_TIME", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_lint_v2(handle_, "SIZE", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_selected_state_v2(handle_, 0, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_selection_count_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_prepare_play_data_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_set_page_style_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_v2(handle_, 0, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_page_index_v2(handle_, g_id, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_page_index_v2(handle_, nullptr, &g_number), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_rating_info_v2(handle_, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_char_v2(handle_, nullptr, &g_text), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_set_item_value_int_v2(handle_, nullptr, 1), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_set_item_value_char_v2(handle_, "TITLE", nullptr), QRA_ERROR_INVALID_PARAM);
}

TEST_F(QraAgent, NullArgumentsWithoutARequestAreRefused) {
    EXPECT_EQ(qra_get_storage_id_v2(nullptr, &g_text), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_storage_id_v2(g_id, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_set_item_value_int_mcf(nullptr, "PLAYED_COUNT", 1), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_set_item_value_int_mcf("id", nullptr, 1), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_int_mcf(nullptr, "PLAYED_COUNT", &g_number), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_int_mcf("id", nullptr, &g_number), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_get_item_value_int_mcf("id", "PLAYED_COUNT", nullptr), QRA_ERROR_INVALID_PARAM);
}

TEST_F(QraAgent, ALocalAgentAnswersWhatItDoesNotServe) {
    request();
    int count = 7;

    EXPECT_EQ(qra_request_detail_v2(handle_, nullptr, nullptr, nullptr), QRA_ERROR_NONE);
    EXPECT_EQ(qra_cancel_detail_request_v2(handle_), QRA_ERROR_NONE);
    EXPECT_EQ(qra_upload_comment_v2(handle_, nullptr, 0, nullptr, nullptr), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_set_like_v2(handle_, nullptr, 0, nullptr, nullptr), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_group_count_v2(handle_, &count), QRA_ERROR_INTERNAL);

    EXPECT_EQ(count, 7);
}

TEST_F(QraAgent, BeforeAPageStyleCountsMovesAndTilesAreRefused) {
    request();
    source_->complete(QRA_EVENT_LIST_SUCCESS);

    EXPECT_EQ(qra_get_item_count_v2(handle_, &g_number), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_move_to_index_v2(handle_, 0), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_get_item_value_int_v2(handle_, "WIDTH", &g_number), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_get_item_v2(handle_, 0, &g_text), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_toggle_select_v2(handle_, 0), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_set_expand_mode_v2(handle_, 0, true), QRA_ERROR_INVALID_HANDLE);
}

}  // namespace
