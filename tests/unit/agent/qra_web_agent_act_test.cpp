// Details, comments, likes and other acts on a remote list, and the hand-over to a player.
#include <cstring>

#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "tests/unit/agent/web_agent_fixture.h"

namespace {

class CQRAWebAgentAct : public WebAgentTest {
protected:
    void SetUp() override {
        open_list();
        ASSERT_EQ(lay_out(), QRA_ERROR_NONE);
        comment_.source = source_;
        comment_.comment = words_;
        like_.source = source_;
        like_.is_like = true;
        detail_.page_index = 3;
    }

    qra_error_code_e request_detail() {
        return qra_request_detail_v2(handle_, &detail_, &events_, take_item_event);
    }
    qra_error_code_e like(int index) {
        return qra_set_like_v2(handle_, &like_, index, &events_, take_item_event);
    }
    qra_error_code_e comment(int index) {
        return qra_upload_comment_v2(handle_, &comment_, index, &events_, take_item_event);
    }
    Json::Value detail_answer(int type, const std::string& id) {
        Json::Value answer;
        answer["qra_event_type"] = type;
        answer["qra_detail_request_times"] = id;
        answer["qra_result_detail_json"] = "{\"TITLE\":\"all of it\"}";
        return answer;
    }
    Json::Value act_answer(int type, const std::string& id) {
        Json::Value answer;
        answer["qra_event_type"] = type;
        answer["qra_act_request_times"] = id;
        answer["act_command_and_return_data"] = "returned";
        return answer;
    }
    std::string last_act_id(size_t count) {
        return json_of(calls_of("request_act", count).back())["qra_act_request_times"].asString();
    }

    char source_[4] = "a,b";
    char words_[5] = "nice";
    qra_comment_s comment_;
    qra_like_s like_;
    qra_detail_s detail_;
};

TEST_F(CQRAWebAgentAct, ADetailIsAskedForByIndexAndAnsweredOnce) {
    ASSERT_EQ(request_detail(), QRA_ERROR_NONE);
    const std::string call = calls_of("request_detail", 1)[0];
    EXPECT_EQ(call.rfind("(uint32 7, ", 0), 0u) << call;
    const Json::Value json = json_of(call);
    EXPECT_EQ(json["qra_command"], "qra_requestdetail");
    EXPECT_EQ(json["qra_item_index"], 3);
    const std::string id = json["qra_detail_request_times"].asString();
    EXPECT_EQ(id.size(), 36u);

    complete(detail_answer(3, id));
    complete(detail_answer(3, id));

    EXPECT_TRUE(wait_for_log("pHandle->PopRequestListData faild, requestId[" + id + "]."));
    ASSERT_EQ(events_.size(), 1u);
    EXPECT_EQ(events_[0].event, QRA_EVENT_DETAIL_SUCCESS);
    EXPECT_EQ(events_[0].handle, handle_);
    EXPECT_EQ(events_[0].id, kId);
    EXPECT_EQ(events_[0].text, "{\"TITLE\":\"all of it\"}");
    EXPECT_EQ(events_[0].thread, std::this_thread::get_id());
}

TEST_F(CQRAWebAgentAct, AnEmptyAndAFailedDetailAreEventsOfTheirOwn) {
    ASSERT_EQ(request_detail(), QRA_ERROR_NONE);
    ASSERT_EQ(request_detail(), QRA_ERROR_NONE);
    const std::vector<std::string> calls = calls_of("request_detail", 2);

    complete(detail_answer(4, json_of(calls[1])["qra_detail_request_times"].asString()));
    complete(detail_answer(5, json_of(calls[0])["qra_detail_request_times"].asString()));
    ASSERT_TRUE(wait_for_events(2));

    EXPECT_EQ(events_[0].event, QRA_EVENT_DETAIL_EMPTY);
    EXPECT_EQ(events_[1].event, QRA_EVENT_DETAIL_FAILED);
}

TEST_F(CQRAWebAgentAct, ADetailWithoutACallbackKeepsItsRecord) {
    ASSERT_EQ(qra_request_detail_v2(handle_, &detail_, nullptr, nullptr), QRA_ERROR_NONE);
    const std::string id = json_of(calls_of("request_detail", 1)[0])["qra_detail_request_times"].asString();

    complete(detail_answer(3, id));
    ASSERT_TRUE(wait_for_log("cb == NULL."));

    _stAppData record;
    EXPECT_TRUE(handle_->PopRequestDetailData(id, record));
}

TEST_F(CQRAWebAgentAct, ACancelForgetsAllDetails) {
    ASSERT_EQ(request_detail(), QRA_ERROR_NONE);
    const std::string id = json_of(calls_of("request_detail", 1)[0])["qra_detail_request_times"].asString();

    EXPECT_EQ(qra_cancel_detail_request_v2(handle_), QRA_ERROR_NONE);

    EXPECT_EQ(calls_of("request_cancel_detail", 1)[0], "(uint32 7,)");
    complete(detail_answer(3, id));
    EXPECT_TRUE(wait_for_log("pHandle->PopRequestListData faild, requestId[" + id + "]."));
    EXPECT_TRUE(events_.empty());
}

TEST_F(CQRAWebAgentAct, ACommentCarriesItsItem) {
    ASSERT_EQ(comment(2), QRA_ERROR_NONE);

    const std::string call = calls_of("request_act", 1)[0];
    EXPECT_EQ(call.rfind("(uint32 7, '', ", 0), 0u) << call;
    const Json::Value json = json_of(call);
    EXPECT_EQ(json["qra_command"], "qra_uploadcomment");
    EXPECT_EQ(json["qra_source"].size(), 2u);
    EXPECT_EQ(json["qra_item_content"], RemoteList::item(2));
    EXPECT_EQ(json["qra_comment"], "nice");
    EXPECT_EQ(json["qra_source_user_data"], "QRA_NULL");
}

TEST_F(CQRAWebAgentAct, ALikeCarriesItsItem) {
    ASSERT_EQ(like(1), QRA_ERROR_NONE);

    const Json::Value json = json_of(calls_of("request_act", 1)[0]);
    EXPECT_EQ(json["qra_command"], "qra_setlike");
    EXPECT_EQ(json["qra_item_content"], RemoteList::item(1));
    EXPECT_EQ(json["qra_like"], true);
}

TEST_F(CQRAWebAgentAct, AnIndexOutsideThePageIsRefusedAndNothingIsSent) {
    EXPECT_EQ(comment(10), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(comment(-1), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(like(10), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_upload_comment_v2(handle_, nullptr, 0, nullptr, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_set_like_v2(handle_, nullptr, 0, nullptr, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_request_detail_v2(handle_, nullptr, nullptr, nullptr), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log_.contains("Invalid item index: 10"));
    EXPECT_TRUE(log_.contains("Invalid item index[10]"));
    ASSERT_EQ(comment(0), QRA_ERROR_NONE);
    EXPECT_EQ(calls_of("request_act", 1).size(), 1u) << "only the comment on an item was sent";
}

TEST_F(CQRAWebAgentAct, WithoutAPageNoIndexIsValid) {
    handle_->DestroyContentPage();

    EXPECT_EQ(comment(0), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(like(0), QRA_ERROR_INVALID_HANDLE);
}

TEST_F(CQRAWebAgentAct, WithoutTheListsItemsNothingIsSent) {
    handle_->DestroyResultPool();

    EXPECT_EQ(comment(0), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(like(0), QRA_ERROR_INVALID_HANDLE);

    EXPECT_EQ(log_.count("pHandle->GetResultPool() == NULL"), 2);
    ASSERT_EQ(request_detail(), QRA_ERROR_NONE);
    calls_of("request_detail", 1);  // what was sent before it has arrived
    EXPECT_TRUE(calls_of("request_act", 0).empty());
}

TEST_F(CQRAWebAgentAct, AnItemThatHasNotArrivedIsNotReplacedByAnother) {
    ASSERT_EQ(qra_move_to_index_v2(handle_, 0), QRA_ERROR_NONE);

    ASSERT_EQ(comment(9), QRA_ERROR_NONE);
    ASSERT_EQ(like(9), QRA_ERROR_NONE);

    const std::vector<std::string> calls = calls_of("request_act", 2);
    EXPECT_EQ(json_of(calls[0])["qra_item_content"], "QRA_NULL");
    EXPECT_EQ(json_of(calls[1])["qra_item_content"], "");
}

TEST_F(CQRAWebAgentAct, AnActIsAnsweredUntilTheEngineSaysThatItIsFinished) {
    ASSERT_EQ(like(0), QRA_ERROR_NONE);
    const std::string id = last_act_id(1);
    Json::Value update = act_answer(12, id);
    update["qra_file_transfer_signal"] = 1;
    Json::Value finished = act_answer(7, id);
    finished["qra_file_transfer_signal"] = 0;

    complete(act_answer(6, id));
    complete(update);
    complete(finished);
    complete(finished);

    EXPECT_TRUE(wait_for_log("pHandle->PopRequestActData faild, requestId[" + id + "]."));
    ASSERT_EQ(events_.size(), 3u);
    EXPECT_EQ(events_[0].event, QRA_EVENT_ACT_SUCCESS);
    EXPECT_EQ(events_[0].text, "returned");
    EXPECT_EQ(events_[1].event, QRA_EVENT_ACT_UPDATE);
    EXPECT_EQ(events_[2].event, QRA_EVENT_ACT_FAILED);
    EXPECT_TRUE(log_.contains("Remove nRequestID"));
}

TEST_F(CQRAWebAgentAct, AnActWithoutACallbackIsLogged) {
    ASSERT_EQ(qra_set_like_v2(handle_, &like_, 0, nullptr, nullptr), QRA_ERROR_NONE);

    complete(act_answer(6, last_act_id(1)));

    EXPECT_TRUE(wait_for_log("cb == NULL."));
}

TEST_F(CQRAWebAgentAct, AnswersWithoutAnIdReachNobody) {
    ASSERT_EQ(like(0), QRA_ERROR_NONE);
    ASSERT_EQ(request_detail(), QRA_ERROR_NONE);

    emit(R"({"qra_handle_id":7,"qra_event_type":6})");
    emit(
        R"({"qra_handle_id":7,"qra_event_type":3,"qra_detail_request_times":5,"qra_result_detail_json":[]})");

    EXPECT_TRUE(wait_for_log("pHandle->PopRequestActData faild, requestId[]."));
    EXPECT_TRUE(wait_for_log("pHandle->PopRequestListData faild, requestId[]."));
    EXPECT_TRUE(events_.empty());
}

TEST_F(CQRAWebAgentAct, AnActOfTheClientsOwnIsSentAndEnded) {
    auto& agent = static_cast<CQRAWebAgent&>(*handle_->GetAgentInstance());
    std::string id;
    ASSERT_EQ(agent.Send(handle_, 1, R"({"file":"/a"})", &events_, take_item_event, id), QRA_ERROR_NONE);
    const Json::Value json = json_of(calls_of("request_act", 1)[0]);
    EXPECT_EQ(json["file"], "/a");
    EXPECT_EQ(json["qra_act_request_times"], id);
    complete(act_answer(12, id));
    ASSERT_TRUE(wait_for_events(1));

    CQRAAgentHandle unknown;
    EXPECT_EQ(agent.Send(&unknown, 1, "{}", nullptr, nullptr, id), QRA_ERROR_INVALID_HANDLE);
    EXPECT_TRUE(log_.contains("Invalid Handle."));
}

TEST_F(CQRAWebAgentAct, AnActWithoutAListHasAHandleOfItsOwn) {
    CQRAWebAgent agent;
    CQRAAgentHandle handle;
    std::string id;
    ASSERT_EQ(agent.Send(&handle, 0, "{}", &events_, take_item_event, id), QRA_ERROR_NONE);
    EXPECT_EQ(handle.GetHandleId(), 0x7FFFFFFEu);
    EXPECT_EQ(calls_of("request_act", 1)[0].rfind("(uint32 2147483646, '', ", 0), 0u);
    Json::Value answer = act_answer(6, id);
    answer["qra_handle_id"] = 0x7FFFFFFE;
    complete(answer);
    ASSERT_TRUE(wait_for_events(1));
    EXPECT_EQ(events_[0].handle, &handle);

    engine_->answer("stop_act", {"(uint32 5,)"});
    EXPECT_EQ(agent.Send(&handle, 1, R"({"qra_file_transfer_stop":true})", nullptr, nullptr, id),
              QRA_ERROR_WRITE_FAILED)
        << "the engine's own number";

    EXPECT_EQ(json_of(calls_of("stop_act", 1)[0])["qra_act_request_times"], id);
    EXPECT_FALSE(CQRAHandlerMgr::GetInstance()->Exists(handle.GetValue()));
    _stAppData record;
    EXPECT_FALSE(handle.PopRequestActData(id, record));
}

TEST_F(CQRAWebAgentAct, PlayDataHandsTheListAndTheSelectionOver) {
    char* text = nullptr;
    ASSERT_EQ(qra_prepare_play_data_v2(handle_, &text), QRA_ERROR_NONE);
    Json::Value json;
    ASSERT_TRUE(Json::Reader().parse(text, json));
    EXPECT_EQ(json["qra_agent_handle"], kId);
    EXPECT_EQ(json["qra_selectlist_shmname"], "");
    free(text);

    ASSERT_EQ(qra_toggle_select_v2(handle_, 2), QRA_ERROR_NONE);
    ASSERT_EQ(qra_prepare_play_data_v2(handle_, &text), QRA_ERROR_NONE);
    ASSERT_TRUE(Json::Reader().parse(text, json));
    param_.pPrepareData = text;
    CSelectList selection(json["qra_selectlist_shmname"].asString());
    ASSERT_TRUE(selection.m_Load());
    EXPECT_TRUE(selection.FindItem(2));
}

}  // namespace
