// Requests of the web agent, and what it makes of the engine's signals.
#include <cstring>

#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_selectlist_builder.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "tests/unit/agent/web_agent_fixture.h"

namespace {

class CQRAWebAgentRequest : public WebAgentTest {};
class CQRAWebAgentSignal : public WebAgentTest {};

Json::Value event(int type) {
    Json::Value answer;
    answer["qra_event_type"] = type;
    return answer;
}

TEST_F(CQRAWebAgentRequest, ConnectsAndAsksForTheFirstSection) {
    param_.szUserData = strdup("/photos");

    ASSERT_EQ(request(), QRA_ERROR_NONE);

    EXPECT_EQ(calls_of("connect", 1)[0], "('account',)");
    const std::string call = calls_of("get_partial_list", 1)[0];
    EXPECT_EQ(call.rfind("(uint32 7, uint32 0, uint32 3, ", 0), 0u) << call;
    const Json::Value json = json_of(call);
    EXPECT_EQ(json["qra_command"], "qra_requestlist");
    EXPECT_EQ(json["qra_source"][0], "CloudSource");
    EXPECT_EQ(json["qra_source_user_data"], "/photos");
    EXPECT_EQ(json["qra_startindex"], 0);
    EXPECT_EQ(json["qra_endindex"], 3);
    EXPECT_EQ(json["qra_sectionindex"], 0);
    EXPECT_EQ(json["qra_agent_handle"], kId);
    EXPECT_TRUE(log_.contains("First prefetch param["));
    EXPECT_TRUE(log_.contains("Insert agent["));
}

TEST_F(CQRAWebAgentRequest, ASectionOfNoItemsEndsBeforeItBegins) {
    param_.nPrefectchNum = 0;

    ASSERT_EQ(request(), QRA_ERROR_NONE);

    const std::string call = calls_of("get_partial_list", 1)[0];
    EXPECT_EQ(call.rfind("(uint32 7, uint32 0, uint32 4294967295, ", 0), 0u) << call;
    EXPECT_EQ(json_of(call)["qra_endindex"], -1);
}

TEST_F(CQRAWebAgentRequest, RefusesWhatItCannotAskFor) {
    free(param_.pPluginName);
    param_.pPluginName = nullptr;
    EXPECT_EQ(request(), QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log_.contains("pParam->pPluginNam == NULL"));

    param_.pPluginName = strdup("account");
    param_.nWindowSize = -1;
    EXPECT_EQ(request(), QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log_.contains("pParam->nWindowSize < QRA_UNPREFETCH_WINDOW_SIZE"));

    param_.nWindowSize = 0;
    param_.nPrefectchNum = -1;
    EXPECT_EQ(request(), QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log_.contains("pParam->nPrefectchNum < QRA_UNPREFETCH_PREFETCH_NUM"));

    EXPECT_EQ(handle_, nullptr);
    EXPECT_EQ(engine_->count("connect"), 0);
}

TEST_F(CQRAWebAgentRequest, ChecksItsArgumentsWithoutTheGateToo) {
    CQRAWebAgent agent;
    CQRAAgentHandle handle;
    CQRAAgentHandle* address = &handle;
    CQRAAgentHandle* nothing = nullptr;
    qra_general_s no_source;
    no_source.pPluginName = param_.pPluginName;

    EXPECT_EQ(agent.RequestList(&param_, nullptr, nullptr, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(agent.RequestList(&param_, nullptr, nullptr, &nothing), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(agent.RequestList(nullptr, nullptr, nullptr, &address), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(agent.RequestList(&no_source, nullptr, nullptr, &address), QRA_ERROR_INVALID_PARAM);

    EXPECT_EQ(log_.count("pAgent == NULL"), 2);
    EXPECT_TRUE(log_.contains("pParam == NULL"));
    EXPECT_TRUE(log_.contains("pParam->pSource == NULL"));
}

TEST_F(CQRAWebAgentRequest, AnEngineThatRefusesIsToldToTheClient) {
    engine_->answer("connect", {"", "('no number',)", "(uint32 4294967295,)"});

    for (int i = 1; i <= 3; ++i) {
        EXPECT_EQ(request(), QRA_ERROR_ENGINE) << i;
        EXPECT_EQ(log_.count("CQRAWebAgentDbus::Get().ConnectEngine faild."), i);
        EXPECT_EQ(handle_, nullptr);
    }

    EXPECT_EQ(engine_->count("get_partial_list"), 0);
}

TEST_F(CQRAWebAgentRequest, AHandleOfThePlayerHitsTheEnginesCache) {
    param_.pPrepareData = strdup(R"({"qra_agent_handle":4711,"qra_selectlist_shmname":""})");

    ASSERT_EQ(request(), QRA_ERROR_NONE);

    EXPECT_EQ(json_of(calls_of("get_partial_list", 1)[0])["qra_agent_handle"], 4711);
    EXPECT_TRUE(log_.contains("Use browser's uHandle[4711] to hit cache."));
}

TEST_F(CQRAWebAgentRequest, PrepareDataWithoutAHandleOrASelectionChangesNothing) {
    for (const char* data :
         {"{}", "no json", "[]", R"({"qra_agent_handle":"7"})", R"({"qra_agent_handle":-1})",
          R"({"qra_selectlist_shmname":"another_name"})", R"({"qra_selectlist_shmname":1})"}) {
        free(param_.pPrepareData);
        param_.pPrepareData = strdup(data);
        ASSERT_EQ(request(), QRA_ERROR_NONE) << data;

        EXPECT_EQ(json_of(calls_of("get_partial_list", 1).back())["qra_agent_handle"], kId) << data;
        int count = -1;
        EXPECT_EQ(qra_get_selection_count_v2(handle_, &count), QRA_ERROR_NONE);
        EXPECT_EQ(count, 0) << data;
        EXPECT_EQ(disconnect(), QRA_ERROR_NONE);
    }
}

TEST_F(CQRAWebAgentRequest, ASelectionComesBack) {
    CSelectList selection;
    selection.AddItem(2);
    selection.AddItem(9);
    Json::Value data;
    data["qra_selectlist_shmname"] = CSelectListBuilder(&selection).Build();
    param_.pPrepareData = strdup(Json::FastWriter().write(data).c_str());

    open_list();

    int count = 0;
    EXPECT_EQ(qra_get_selection_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 2);
    ASSERT_EQ(lay_out(), QRA_ERROR_NONE);
    bool selected = false;
    EXPECT_EQ(qra_get_selected_state_v2(handle_, 2, &selected), QRA_ERROR_NONE);
    EXPECT_TRUE(selected);
    EXPECT_TRUE(log_.contains("Loading selectList from shm[qra_selectedlist_"));
}

TEST_F(CQRAWebAgentRequest, ASelectionThatIsGoneEndsTheRequest) {
    param_.pPrepareData = strdup(R"({"qra_selectlist_shmname":"qra_selectedlist_none"})");

    EXPECT_EQ(request(), QRA_ERROR_INTERNAL);

    EXPECT_TRUE(log_.contains("pAgent->pSelectionList->m_Load() faild."));
    EXPECT_TRUE(log_.contains("m_InitSelectList faild. eCode[23]."));
    EXPECT_EQ(handle_, nullptr);
}

TEST_F(CQRAWebAgentRequest, CannotBeCancelledNorRepeated) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);

    EXPECT_EQ(qra_cancel_request_list_v2(handle_), QRA_ERROR_INTERNAL);
    EXPECT_EQ(request(), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log_.contains("Exist web agent"));
}

TEST_F(CQRAWebAgentRequest, ADisconnectIsToldToTheEngine) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);

    EXPECT_EQ(disconnect(), QRA_ERROR_NONE);

    EXPECT_EQ(calls_of("disconnect", 1)[0], "(uint32 7,)");
    EXPECT_TRUE(log_.contains("After disconnect agent["));
    EXPECT_TRUE(log_.contains("Handler.Size[0]."));
}

TEST_F(CQRAWebAgentSignal, EverySectionAsksForTheNextAndIsToldToTheClient) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);

    complete_section(0);
    ASSERT_TRUE(wait_for_events(1));
    complete_section(1);
    ASSERT_TRUE(wait_for_events(2));
    complete_section(2);
    ASSERT_TRUE(wait_for_events(3));

    for (const ClientEvent& told : events_) {
        EXPECT_EQ(told.handle, handle_);
        EXPECT_EQ(told.event, QRA_EVENT_LIST_SUCCESS);
        EXPECT_EQ(told.id, kId);
        EXPECT_EQ(told.text, "");
        EXPECT_EQ(told.thread, std::this_thread::get_id());
    }
    const std::vector<std::string> calls = calls_of("get_partial_list", 3);
    ASSERT_EQ(calls.size(), 3u);
    EXPECT_EQ(calls[1].rfind("(uint32 7, uint32 4, uint32 7, ", 0), 0u) << calls[1];
    EXPECT_EQ(calls[2].rfind("(uint32 7, uint32 8, uint32 11, ", 0), 0u) << calls[2];
    EXPECT_EQ(json_of(calls[2])["qra_startindex"], 8);
    EXPECT_EQ(json_of(calls[2])["qra_endindex"], 11);
    EXPECT_EQ(json_of(calls[2])["qra_sectionindex"], 2);
    EXPECT_EQ(json_of(calls[2])["qra_agent_handle"], kId);
    EXPECT_TRUE(log_.contains("Stop partial"));
    ASSERT_EQ(lay_out(), QRA_ERROR_NONE);
    EXPECT_EQ(item(9), RemoteList::item(9));
}

TEST_F(CQRAWebAgentSignal, AnEmptyAndAFailedListAreEventsOfTheirOwn) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    Json::Value failed = event(2);

    complete(event(1));
    complete(failed);
    failed["qra_error_text"] = "the server refuses the password";
    complete(failed);
    ASSERT_TRUE(wait_for_events(3));

    EXPECT_EQ(events_[0].event, QRA_EVENT_LIST_EMPTY);
    EXPECT_EQ(events_[0].text, "");
    EXPECT_EQ(events_[1].event, QRA_EVENT_LIST_FAILED);
    EXPECT_EQ(events_[1].text, "");
    EXPECT_EQ(events_[2].event, QRA_EVENT_LIST_FAILED);
    EXPECT_EQ(events_[2].text, "the server refuses the password");
}

TEST_F(CQRAWebAgentSignal, AListWithoutACallbackArrivesAllTheSame) {
    ASSERT_EQ(qra_request_list_v2(&param_, nullptr, nullptr, &handle_), QRA_ERROR_NONE);

    complete_section(0);
    ASSERT_TRUE(wait_for_log("Load_resultlist"));

    EXPECT_TRUE(log_.contains("cb == NULL"));
    ASSERT_EQ(lay_out(), QRA_ERROR_NONE);
    EXPECT_EQ(item(3), RemoteList::item(3));
}

struct LoggedType {
    int type;
    const char* text;
};

class CQRAWebAgentLoggedType : public WebAgentTest, public testing::WithParamInterface<LoggedType> {};

TEST_P(CQRAWebAgentLoggedType, IsLoggedOnly) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);

    complete(event(GetParam().type));

    EXPECT_TRUE(wait_for_log(GetParam().text));
    EXPECT_TRUE(events_.empty());
}

constexpr const char* kUnknown = "Unkown operating type recevied from engine ...";

INSTANTIATE_TEST_SUITE_P(CQRAWebAgent, CQRAWebAgentLoggedType,
                         testing::Values(LoggedType{8, "Disconnect from engine success ... "},
                                         LoggedType{9, "Disconnect from engine fail ... "},
                                         LoggedType{10, "Drop partial list success."},
                                         LoggedType{11, kUnknown}, LoggedType{13, kUnknown},
                                         LoggedType{-1, kUnknown}, LoggedType{INT32_MAX, kUnknown}),
                         [](const auto& info) { return "Number" + std::to_string(info.index); });

TEST_F(CQRAWebAgentSignal, WhatIsNoAnswerIsDropped) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    const std::vector<std::string> payloads = {
        "",
        "no json",
        "[]",
        "null",
        "{}",
        R"({"qra_event_type":0})",
        R"({"qra_event_type":0,"qra_handle_id":8})",
        R"({"qra_event_type":0,"qra_handle_id":0})",
        R"({"qra_event_type":0,"qra_handle_id":-1})",
        R"({"qra_event_type":0,"qra_handle_id":"7"})",
        R"({"qra_event_type":0,"qra_handle_id":4294967303})",
        std::string(2000, '['),
    };

    for (const std::string& payload : payloads)
        emit(payload);

    EXPECT_TRUE(run_loop_until(
        [&] { return log_.count("Can't found agent handle[") == static_cast<int>(payloads.size()); }));
    EXPECT_TRUE(events_.empty());
}

TEST_F(CQRAWebAgentSignal, AnEventTypeOfAnotherTypeIsUnknown) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);

    for (const char* type : {"\"0\"", "0.5", "null", "[0]", "4294967296"})
        emit(std::string(R"({"qra_handle_id":7,"qra_event_type":)") + type + "}");

    EXPECT_TRUE(run_loop_until([&] { return log_.count(kUnknown) == 5; }));
    EXPECT_TRUE(events_.empty());
}

TEST_F(CQRAWebAgentSignal, NullsAreLogged) {
    char payload[] = "{}";

    CQRAWebAgent::m_ProcessDbusSignal(nullptr, nullptr, payload);
    CQRAWebAgent::m_ProcessDbusSignal("qra_request_normal_complete", nullptr, nullptr);

    EXPECT_EQ(log_.count("Invalid Signal received from dbus server."), 1);
    EXPECT_EQ(log_.count("Invalid content data received from dbus server."), 1);
}

TEST_F(CQRAWebAgentSignal, ASectionThatCannotBeReadIsAnEmptyOne) {
    const ShmFile shorter("short");
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    std::vector<std::string> names = {"qra_test_no_such_object", "", "/../x", std::string(300, 'n'),
                                      shorter.name()};

    for (const std::string& name : names) {
        Json::Value answer = event(0);
        answer["qra_result_list_block_name"] = name;
        complete(answer);
    }
    Json::Value nameless = event(0);
    nameless["qra_result_list_block_name"] = 5;
    complete(nameless);

    ASSERT_TRUE(wait_for_events(names.size() + 1));
    EXPECT_EQ(lay_out(0x06), QRA_ERROR_NONE);
    EXPECT_EQ(item(0), "code 2");
    EXPECT_EQ(calls_of("get_partial_list", 1).size(), 1u);
}

TEST_F(CQRAWebAgentSignal, ForADisconnectedHandleIsIgnored) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    ASSERT_EQ(disconnect(), QRA_ERROR_NONE);

    complete_section(0);

    EXPECT_TRUE(wait_for_log("Can't found agent handle["));
    EXPECT_TRUE(events_.empty());
}

TEST_F(CQRAWebAgentSignal, DoesNotReachAHandleThatNoEngineKnows) {
    CQRAAgentHandle local;
    CQRAHandlerMgr::GetInstance()->Add(local.GetValue());
    _stAppData record;
    record.pUserData = &events_;
    record.cbList = take_list_event;
    local.PushRequestListData("qra_request_list", record);
    ASSERT_EQ(request(), QRA_ERROR_NONE);

    emit(R"({"qra_event_type":1,"qra_handle_id":0})");

    EXPECT_TRUE(wait_for_log("Can't found agent handle["));
    EXPECT_TRUE(events_.empty());
    CQRAHandlerMgr::GetInstance()->Delete(local.GetValue());
}

TEST_F(CQRAWebAgentSignal, ReachesTheHandleOfItsId) {
    engine_->answer("connect", {"(uint32 7,)", "(uint32 8,)"});
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    CQRAAgentHandle* other = nullptr;
    ClientEvents other_events;
    ASSERT_EQ(qra_request_list_v2(&param_, take_list_event, &other_events, &other), QRA_ERROR_NONE);
    Json::Value answer = event(1);
    answer["qra_handle_id"] = 8;

    complete(answer);
    ASSERT_TRUE(run_loop_until([&] { return !other_events.empty(); }));

    EXPECT_EQ(other_events[0].handle, other);
    EXPECT_EQ(other_events[0].id, 8);
    EXPECT_TRUE(events_.empty());
    EXPECT_EQ(qra_disconnect_v2(other), QRA_ERROR_NONE);
}

TEST_F(CQRAWebAgentSignal, AnIdThatIsGivenOutAgainIsTheNewHandles) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    CQRAAgentHandle* other = nullptr;
    ClientEvents other_events;
    ASSERT_EQ(qra_request_list_v2(&param_, take_list_event, &other_events, &other), QRA_ERROR_NONE);

    complete(event(1));
    ASSERT_TRUE(run_loop_until([&] { return !other_events.empty() || !events_.empty(); }));

    EXPECT_EQ(other_events.size(), 1u);
    EXPECT_TRUE(events_.empty());
    EXPECT_EQ(qra_disconnect_v2(other), QRA_ERROR_NONE);
    EXPECT_EQ(disconnect(), QRA_ERROR_NONE);
    EXPECT_EQ(calls_of("disconnect", 2), (std::vector<std::string>{"(uint32 7,)", "(uint32 0,)"}));
}

}  // namespace
