#include "libqra-agent/agent/src/qra_local_agent.h"

#include <atomic>
#include <cstdlib>
#include <future>
#include <thread>

#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "tests/fakes/last_act.h"
#include "tests/unit/agent/agent_fixture.h"

namespace {

using LocalAgent = AgentTest;

TEST_F(LocalAgent, AFirstRequestPreparesTheHandle) {
    ASSERT_EQ(request("SOURCE_MSC", "CATEGORY-DATE"), QRA_ERROR_NONE);

    EXPECT_EQ(handle_->GetSourceName(), "SOURCE_MSC");
    EXPECT_EQ(handle_->GetSortcategory(), "CATEGORY-DATE");
    EXPECT_NE(handle_->GetSelectList(), nullptr);
    EXPECT_NE(handle_->GetItemBuilder(), nullptr);
    EXPECT_EQ(handle_->GetContentPage(), nullptr);
    const qra_page_style_s& style = *handle_->GetPageParam();
    EXPECT_EQ(style.mask, 0);
    EXPECT_EQ(style.order, QRA_PAGE_ORDER_ROW);
    EXPECT_EQ(style.group_index, 0);
    EXPECT_EQ(style.row, 2);
    EXPECT_EQ(style.column, 9);
    EXPECT_FALSE(style.padding);
    EXPECT_EQ(script_.paths, std::vector<std::string>{"/media/USBDrive1"});
}

TEST_F(LocalAgent, AMassStorageRequestNeedsAPath) {
    const LogCapture log;

    EXPECT_EQ(request("SOURCE_MSC", "CATEGORY-DATE", nullptr), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log.contains("szPath == NULL"));
    EXPECT_TRUE(log.contains("m_InitHandler() faild."));
}

TEST_F(LocalAgent, OtherSourcesNeedNoPath) {
    EXPECT_EQ(request("SOURCE_PTP", "CATEGORY-DATE", nullptr), QRA_ERROR_NONE);

    EXPECT_EQ(script_.paths, std::vector<std::string>{"(null)"});
}

TEST_F(LocalAgent, ADlnaSourceIsOpenedWithThePath) {
    EXPECT_EQ(request("SOURCE_DLNA", nullptr, "uuid:server"), QRA_ERROR_NONE);

    EXPECT_EQ(script_.calls, std::vector<std::string>{"Open uuid:server"});
}

TEST_F(LocalAgent, ASourceThatDoesNotOpenFailsTheRequest) {
    script_.open_works = false;
    const LogCapture log;

    EXPECT_EQ(request(), QRA_ERROR_INTERNAL);

    EXPECT_TRUE(log.contains("m_OpenSource() faild."));
}

TEST_F(LocalAgent, ASourceThatRefusesTheRequestFailsIt) {
    script_.execute_works = false;
    const LogCapture log;

    EXPECT_EQ(request(), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log.contains("pHandle->GetSource()->Execute() faild!!"));
}

TEST_F(LocalAgent, ANullHandleAddressIsRefusedByTheAgentItself) {
    qra_general_s param;
    CQRALocalAgent agent;
    const LogCapture log;

    EXPECT_EQ(agent.RequestList(&param, nullptr, nullptr, nullptr), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log.contains("Invalid handle address."));
    CQRAAgentHandle* none = nullptr;
    EXPECT_DEATH(agent.RequestList(&param, nullptr, nullptr, &none), "\\*ppHandle != __null");
}

TEST_F(LocalAgent, ARepeatWithoutAPathListsTheLastOneAgain) {
    request("SOURCE_MSC", "CATEGORY-TITLE", "/media/USBDrive1/a");
    request("SOURCE_MSC", "CATEGORY-TITLE", "/media/USBDrive1/b");

    EXPECT_EQ(request("SOURCE_MSC", nullptr, nullptr), QRA_ERROR_NONE);

    EXPECT_EQ(script_.paths,
              (std::vector<std::string>{"/media/USBDrive1/a", "/media/USBDrive1/b", "/media/USBDrive1/b"}));
    EXPECT_EQ(handle_->GetSortcategory(), "CATEGORY-TITLE");
    EXPECT_EQ(script_.calls, std::vector<std::string>{"Open"});
}

TEST_F(LocalAgent, ARepeatIsAnsweredToTheCallbackThatCameWithIt) {
    request();
    int answers = 0;
    qra_general_s repeat;
    char source[] = "SOURCE_MSC";
    repeat.pSource = source;
    const on_list_complete_cb count_answer = [](void* user_data, CQRAAgentHandle*, qra_event_e, int,
                                                const char*) {
        ++*static_cast<int*>(user_data);
        return true;
    };
    ASSERT_EQ(qra_request_list_v2(&repeat, count_answer, &answers, &handle_), QRA_ERROR_NONE);

    source_->complete(QRA_EVENT_LIST_SUCCESS);

    EXPECT_EQ(answers, 1);
    EXPECT_TRUE(answers_.empty());
}

TEST_F(LocalAgent, ARepeatStartsWithoutPageSelectionAndStyle) {
    script_items(30);
    open_page(0x04);
    qra_toggle_select_v2(handle_, 3);
    qra_move_to_index_v2(handle_, 7);

    ASSERT_EQ(request(), QRA_ERROR_NONE);

    EXPECT_EQ(handle_->GetContentPage(), nullptr);
    EXPECT_EQ(handle_->GetSelectList()->GetItemCount(), 0);
    EXPECT_EQ(handle_->GetPageParam()->mask, 0);
    EXPECT_EQ(handle_->GetCurrentPageIndex(), 7);
    source_->complete(QRA_EVENT_LIST_SUCCESS);
    set_page_style(0x04);
    EXPECT_EQ(handle_->GetCurrentPageIndex(), 7);
    set_page_style(0x04);
    EXPECT_EQ(handle_->GetCurrentPageIndex(), 0);
}

struct EventRow {
    const char* name;
    qra_event_e event;
    qra_event_e client_event;
    const char* log;
};

class Event : public AgentTest, public testing::WithParamInterface<EventRow> {};

TEST_P(Event, ReachesTheClient) {
    request();
    const LogCapture log;

    EXPECT_TRUE(source_->complete(GetParam().event));

    ASSERT_EQ(answers_.size(), 1u);
    EXPECT_EQ(answers_[0].event, GetParam().client_event);
    EXPECT_EQ(answers_[0].value, 1);
    EXPECT_EQ(answers_[0].data, "");
    EXPECT_EQ(answers_[0].handle, handle_);
    EXPECT_TRUE(log.contains(GetParam().log)) << log.text();
}

INSTANTIATE_TEST_SUITE_P(
    LocalAgent, Event,
    testing::Values(
        EventRow{"ListSuccess", QRA_EVENT_LIST_SUCCESS, QRA_EVENT_LIST_SUCCESS, "RequestList success."},
        EventRow{"ListUpdate", QRA_EVENT_LIST_UPDATE, QRA_EVENT_LIST_UPDATE, "RequestList update."},
        EventRow{"MetadataSuccess", QRA_EVENT_METADATA_SUCCESS, QRA_EVENT_METADATA_SUCCESS,
                 "Request metadata success."},
        EventRow{"MetadataFailed", QRA_EVENT_METADATA_FAILED, QRA_EVENT_METADATA_FAILED,
                 "Request metadata failed."},
        EventRow{"MetadataLatest", QRA_EVENT_METADATA_LATEST, QRA_EVENT_METADATA_LATEST,
                 "Request metadata latest."},
        EventRow{"DlnaItemNotExist", QRA_EVENT_DLNA_ITEM_NOT_EXIST, QRA_EVENT_DLNA_ITEM_NOT_EXIST,
                 "Request dlna item not exist."},
        EventRow{"ListFailed", QRA_EVENT_LIST_FAILED, QRA_EVENT_LIST_FAILED, "RequestList failed."},
        EventRow{"AnEventOfAnotherKind", QRA_EVENT_BATCH_FINISHED, QRA_EVENT_LIST_FAILED,
                 "RequestList failed."},
        EventRow{"AnUnknownValue", static_cast<qra_event_e>(15), QRA_EVENT_LIST_FAILED,
                 "RequestList failed."}),
    [](const auto& info) { return info.param.name; });

TEST_F(LocalAgent, EachUpdateReachesTheClient) {
    request();

    source_->complete(QRA_EVENT_LIST_SUCCESS);
    source_->complete(QRA_EVENT_LIST_UPDATE);
    source_->complete(QRA_EVENT_LIST_UPDATE);

    EXPECT_EQ(answers_.size(), 3u);
}

TEST_F(LocalAgent, ARequestWithoutACallbackIsAnsweredToNobody) {
    qra_general_s param;
    param.pSource = const_cast<char*>("SOURCE_PTP");
    ASSERT_EQ(qra_request_list_v2(&param, nullptr, nullptr, &handle_), QRA_ERROR_NONE);
    const LogCapture log;

    EXPECT_FALSE(source_->complete(QRA_EVENT_LIST_SUCCESS));

    EXPECT_TRUE(log.contains("cb == NULL"));
}

TEST_F(LocalAgent, AnAnswerAfterThePendingRecordsWereClearedIsDropped) {
    request();
    handle_->ClearRequestListData();
    const LogCapture log;

    EXPECT_FALSE(source_->complete(QRA_EVENT_LIST_SUCCESS));

    EXPECT_TRUE(log.contains("ret == false"));
    EXPECT_TRUE(answers_.empty());
}

TEST_F(LocalAgent, AnAnswerOfADisconnectedHandleDoesNotReachTheClient) {
    request();
    CQRAHandlerMgr::GetInstance()->Delete(handle_->GetValue());
    const LogCapture log;

    EXPECT_FALSE(source_->complete(QRA_EVENT_LIST_SUCCESS));

    EXPECT_TRUE(log.contains("has been disconnected!"));
    EXPECT_TRUE(answers_.empty());
    CQRAHandlerMgr::GetInstance()->Add(handle_->GetValue());
}

TEST_F(LocalAgent, CancelWithoutOneInTheSourceIsRefusedAndNoCallbackComes) {
    request();
    const LogCapture log;

    EXPECT_EQ(qra_cancel_request_list_v2(handle_), QRA_ERROR_INTERNAL);

    EXPECT_TRUE(log.contains("pHandle->GetSource()->CancelAsync() faild!!"));
    EXPECT_FALSE(source_->complete(QRA_EVENT_LIST_SUCCESS));
    EXPECT_TRUE(answers_.empty());
}

TEST_F(LocalAgent, CancelIsPassedToTheSource) {
    request();
    script_.cancel_works = true;

    EXPECT_EQ(qra_cancel_request_list_v2(handle_), QRA_ERROR_NONE);
}

TEST_F(LocalAgent, PrepareDataBringsTheSelectionBack) {
    script_items(30);
    open_page(0x04);
    for (const int index : {9, 4, 17})
        qra_toggle_select_v2(handle_, index);
    char* prepare_data = nullptr;
    ASSERT_EQ(qra_prepare_play_data_v2(handle_, &prepare_data), QRA_ERROR_NONE);
    const LogCapture log;

    ASSERT_EQ(request("SOURCE_MSC", nullptr, nullptr, prepare_data), QRA_ERROR_NONE);

    free(prepare_data);
    EXPECT_EQ(handle_->GetSelectList()->GetItems(), (std::set<int>{4, 9, 17}));
    EXPECT_EQ(handle_->GetSelectList()->m_ePageItemType, QRA_PG_ITEM_CONTENTS);
    EXPECT_TRUE(log.contains("Loading selectList from shm[qra_selectedlist_"));
}

TEST_F(LocalAgent, PrepareDataWithoutASelectionGivesAnEmptyList) {
    for (const char* data : {"", "no json", "[]", "{}", "{\"qra_has_selected_item\":false}",
                             "{\"qra_has_selected_item\":1}", "{\"qra_has_selected_item\":\"true\"}"}) {
        handle_ = nullptr;
        EXPECT_EQ(request("SOURCE_MSC", nullptr, "/media", data), QRA_ERROR_NONE) << data;
        EXPECT_EQ(handle_->GetSelectList()->GetItemCount(), 0) << data;
        disconnect();
    }
}

TEST_F(LocalAgent, ASelectionThatCannotBeLoadedFailsTheRequest) {
    const LogCapture log;

    EXPECT_EQ(
        request("SOURCE_MSC", nullptr, "/media",
                "{\"qra_has_selected_item\":true,\"qra_selectlist_shmname\":\"qra_selectedlist_none\"}"),
        QRA_ERROR_INTERNAL);
    EXPECT_EQ(request("SOURCE_MSC", nullptr, "/media", "{\"qra_has_selected_item\":true}"),
              QRA_ERROR_INTERNAL);

    EXPECT_EQ(log.count("pAgent->pSelectionList->m_Load() faild."), 2);
    EXPECT_EQ(log.count("m_InitSelectList faild. eCode[23]."), 2);
}

TEST_F(LocalAgent, FilesAreAddedToMassStorageOnly) {
    request();
    CQRALocalAgent* agent = CQRAAgentHandle::GetLocalAgent(handle_);
    const LogCapture log;

    EXPECT_EQ(agent->AddFile("/media/a.jpg"), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(agent->DeleteFile("/media/a.jpg"), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(CQRALocalAgent().AddFile("/media/a.jpg"), QRA_ERROR_INVALID_HANDLE);

    EXPECT_EQ(log.count("pMSCSource == NULL"), 2);
}

// Threads.

TEST_F(LocalAgent, TheCallbackComesOnTheSourcesThreadAfterTheRequestHasFinished) {
    script_.answers_by_itself = true;
    std::promise<void> answered;
    std::thread::id thread;
    bool registered = false;
    in_callback_ = [&] {
        thread = std::this_thread::get_id();
        registered = CQRAHandlerMgr::GetInstance()->Exists(answers_.back().handle->GetValue());
        answered.set_value();
    };

    ASSERT_EQ(request(), QRA_ERROR_NONE);
    answered.get_future().wait();

    EXPECT_NE(thread, std::this_thread::get_id());
    EXPECT_TRUE(registered);
}

TEST_F(LocalAgent, DisconnectWaitsForACallbackThatIsRunning) {
    script_.answers_by_itself = true;
    std::promise<void> entered;
    std::promise<void> leave;
    std::atomic<bool> left{false};
    in_callback_ = [&] {
        entered.set_value();
        leave.get_future().wait();
        left = true;
    };
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    entered.get_future().wait();

    std::thread client([&] { EXPECT_EQ(disconnect(), QRA_ERROR_NONE); });
    leave.set_value();
    client.join();

    EXPECT_TRUE(left);
}

TEST_F(LocalAgent, ValuesCanBeReadInTheCallback) {
    script_items(5);
    script_.answers_by_itself = true;
    std::promise<std::string> title;
    in_callback_ = [&] {
        handle_ = answers_.back().handle;
        set_page_style(0x04);
        qra_move_to_index_v2(handle_, 4);
        title.set_value(text("TITLE"));
    };
    CQRAAgentHandle* handle = nullptr;
    qra_general_s param;
    param.pSource = const_cast<char*>("SOURCE_PTP");

    ASSERT_EQ(qra_request_list_v2(&param, &on_list, this, &handle), QRA_ERROR_NONE);

    EXPECT_EQ(title.get_future().get(), "item 4");
}

TEST_F(LocalAgent, FiveHundredRoundsOfRequestAndDisconnectWithACallbackInFlight) {
    const int count = CQRAHandlerMgr::GetInstance()->GetCount();
    script_.answers_by_itself = true;
    for (int i = 0; i < 500; ++i) {
        handle_ = nullptr;
        ASSERT_EQ(request(), QRA_ERROR_NONE);
        ASSERT_EQ(disconnect(), QRA_ERROR_NONE);
        script_.calls.clear();
    }

    EXPECT_EQ(CQRAHandlerMgr::GetInstance()->GetCount(), count);
    EXPECT_LE(answers_.size(), 500u);
}

TEST_F(LocalAgent, RepeatsWithACallbackInFlightEndInAnAnswerEach) {
    constexpr size_t kRequests = 100;
    script_.answers_by_itself = true;
    std::promise<void> all_answered;
    in_callback_ = [&] {
        if (answers_.size() == kRequests)
            all_answered.set_value();
    };

    for (size_t i = 0; i < kRequests; ++i)
        ASSERT_EQ(request(), QRA_ERROR_NONE);

    all_answered.get_future().wait();
}

TEST_F(LocalAgent, AFailedRepeatWaitsForTheCallbackBeforeTheAgentGoes) {
    script_.answers_by_itself = true;
    for (int i = 0; i < 50; ++i) {
        handle_ = nullptr;
        script_.execute_works = true;
        ASSERT_EQ(request(), QRA_ERROR_NONE);
        script_.execute_works = false;
        ASSERT_EQ(request(), QRA_ERROR_INVALID_PARAM);
    }
}

// The end of the process.

using LocalAgentDeathTest = LocalAgent;

TEST_F(LocalAgentDeathTest, AnAnswerStillReachesTheClientWhileTheProcessEnds) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    std::function<void()> answer = [&] {
        source_->complete(QRA_EVENT_LIST_SUCCESS);
        end_at_once(answers_.size() == 1 ? 0 : 2);
    };

    EXPECT_EXIT(
        {
            g_last_act = &answer;
            std::exit(1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
