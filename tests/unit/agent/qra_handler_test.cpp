#include "libqra-agent/agent/src/qra_handler.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "common/datamodel/qra_resultpool.h"
#include "libqra-agent/agent/src/qra_backup_param.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_item_builder.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "libqra-agent/share/src/qra_share_thread.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/unit/agent/fake_agent.h"
#include "tests/unit/agent/minimal_source.h"

namespace {

using Journal = std::vector<std::string>;

/// Writes down what happens to it.
class JournalSource : public MinimalSource {
public:
    JournalSource(Journal& journal, bool open) : journal_(journal), open_(open) {}
    ~JournalSource() override { journal_.push_back("source destroyed"); }

    bool IsOpen() override { return open_; }
    bool Close() override {
        journal_.push_back("source closed");
        open_ = false;
        return true;
    }

private:
    Journal& journal_;
    bool open_;
};

struct JournalParam : _stBackupParam {
    explicit JournalParam(Journal& j) : journal(j) {}
    ~JournalParam() override { journal.push_back("parameters destroyed"); }
    Journal& journal;
};

class JournalBuilder : public CQRAItemBuilder {
public:
    explicit JournalBuilder(Journal& journal) : journal_(journal) {}
    ~JournalBuilder() override { journal_.push_back("builder destroyed"); }

private:
    Journal& journal_;
};

class JournalThread : public IQRAShareThread {
public:
    explicit JournalThread(Journal& journal) : journal_(journal) {}
    ~JournalThread() override { journal_.push_back("thread destroyed"); }
    qra_error_code_e Excute(qra_share_s*, CQRAAgentHandle*, qra_share_user_data_s*,
                            CQRASendHandle**) override {
        return QRA_ERROR_NONE;
    }
    qra_error_code_e Stop(CQRASendHandle*, qra_stop_type_e) override { return QRA_ERROR_NONE; }

private:
    Journal& journal_;
};

bool list_callback(void*, CQRAAgentHandle*, qra_event_e, int, const char*) {
    return true;
}

bool share_callback(void*, CQRASendHandle*, qra_event_e, qra_share_status_info_s*) {
    return true;
}

_stAppData record_of(void* user_data) {
    _stAppData record;
    record.pUserData = user_data;
    record.cbList = list_callback;
    return record;
}

void expect_no_parts(const CQRAAgentHandle& handle) {
    EXPECT_EQ(handle.GetSelectList(), nullptr);
    EXPECT_EQ(handle.GetResultPool(), nullptr);
    EXPECT_EQ(handle.GetContentPage(), nullptr);
    EXPECT_EQ(handle.GetRequestParam(), nullptr);
    EXPECT_EQ(handle.GetAgentInstance(), nullptr);
    EXPECT_EQ(handle.GetSource(), nullptr);
    EXPECT_EQ(handle.GetGroupInfo(), nullptr);
    EXPECT_EQ(handle.GetPageParam(), nullptr);
    EXPECT_EQ(handle.GetItemBuilder(), nullptr);
}

}  // namespace

TEST(CQRAHandle, EachKindKnowsItsType) {
    EXPECT_EQ(CQRAHandleBase().GetHandleType(), QRA_HANDLE_TYPE_NONE);
    EXPECT_EQ(CQRAAgentHandle().GetHandleType(), QRA_HANDLE_TYPE_AGENT);
    EXPECT_EQ(CQRASendHandle().GetHandleType(), QRA_HANDLE_TYPE_SEND);
    EXPECT_EQ(CQRADeviceCheckHandle().GetHandleType(), QRA_HANDLE_TYPE_DEVICE_CHECK);
    EXPECT_EQ(CQRAM3UHandle().GetHandleType(), QRA_HANDLE_TYPE_M3U);
    EXPECT_EQ(CQRAFolderThumbHandle().GetHandleType(), QRA_HANDLE_TYPE_FOLDER_THUMB);
}

TEST(CQRAHandle, TypesHaveTheNumbersOfTheInterface) {
    EXPECT_EQ(QRA_HANDLE_TYPE_AGENT, 0);
    EXPECT_EQ(QRA_HANDLE_TYPE_SEND, 1);
    EXPECT_EQ(QRA_HANDLE_TYPE_DEVICE_CHECK, 2);
    EXPECT_EQ(QRA_HANDLE_TYPE_M3U, 3);
    EXPECT_EQ(QRA_HANDLE_TYPE_FOLDER_THUMB, 4);
    EXPECT_EQ(QRA_HANDLE_TYPE_NONE, 5);
}

TEST(CQRAHandle, HasTheIdOfTheEngineOnceItWasGiven) {
    CQRADeviceCheckHandle handle;
    EXPECT_EQ(handle.GetHandleId(), 0u);

    handle.SetHandleId(0x7FFFFFFE);

    EXPECT_EQ(handle.GetHandleId(), 0x7FFFFFFEu);
}

TEST(CQRAHandle, ItsValueIsItsAddress) {
    CQRASendHandle handle;

    EXPECT_EQ(reinterpret_cast<CQRAHandleBase*>(handle.GetValue()), &handle);
}

TEST(CQRAAgentHandle, IsEmptyAtFirst) {
    const CQRAAgentHandle handle;

    EXPECT_EQ(handle.GetSourceName() + handle.GetSortcategory() + handle.GetMountPath(), "");
    EXPECT_EQ(handle.GetCurrentPageIndex(), 0);
    EXPECT_EQ(handle.GetWindowSize(), 0);
    EXPECT_EQ(handle.GetPrefetchNum(), 0);
    EXPECT_EQ(handle.GetNavigation(), QRA_NAVIGATION_TYPE_ALL);
    EXPECT_EQ(handle.GetPageItemType(), QRA_PG_ITEM_NONE);
    EXPECT_FALSE(handle.GetRepeatDLNA());
    EXPECT_FALSE(handle.GetRepeatMSC());
    expect_no_parts(handle);
}

TEST(CQRAAgentHandle, GivesBackWhatWasSet) {
    CQRAAgentHandle handle;

    handle.SetSourceName("SOURCE_MSC");
    handle.SetSortcategory("CATEGORY-GROUP");
    handle.SetMountPath("/mnt");
    handle.SetCurrentPageIndex(3);
    handle.SetWindowSize(4);
    handle.SetPrefetchNum(5);
    handle.SetRepeatDLNA(true);
    handle.SetRepeatMSC(true);
    handle.SetNavigation(QRA_NAVIGATION_TYPE_SELECTED);
    handle.SetPageItemType(QRA_PG_ITEM_PLAYLIST);

    EXPECT_EQ(handle.GetSourceName(), "SOURCE_MSC");
    EXPECT_EQ(handle.GetSortcategory(), "CATEGORY-GROUP");
    EXPECT_EQ(handle.GetMountPath(), "/mnt");
    EXPECT_EQ(handle.GetCurrentPageIndex(), 3);
    EXPECT_EQ(handle.GetWindowSize(), 4);
    EXPECT_EQ(handle.GetPrefetchNum(), 5);
    EXPECT_TRUE(handle.GetRepeatDLNA());
    EXPECT_TRUE(handle.GetRepeatMSC());
    EXPECT_EQ(handle.GetNavigation(), QRA_NAVIGATION_TYPE_SELECTED);
    EXPECT_EQ(handle.GetPageItemType(), QRA_PG_ITEM_PLAYLIST);
}

TEST(CQRAAgentHandle, DestroyOperationsDeleteAndNullTheirField) {
    Journal journal;
    CQRAAgentHandle handle;
    handle.SetSelectList(new CSelectList);
    handle.SetResultPool(new CResultPool(0, 0, QRA_PREFETCH_WINDOW));
    handle.SetContentPage(new CQRAContentPage);
    handle.SetRequestParam(new JournalParam(journal));
    handle.SetAgentInstance(new FakeAgent(&journal));
    handle.SetSource(new JournalSource(journal, false));
    handle.SetGroupInfo(new CQRAGroupInfo);
    handle.SetPageParam(new qra_page_style_s);
    handle.SetItemBuilder(new JournalBuilder(journal));

    for (int round = 0; round < 2; ++round) {
        handle.DestorySelectList();
        handle.DestroyResultPool();
        handle.DestroyContentPage();
        handle.DestroyRequestParam();
        handle.DestroyAgentInstance();
        handle.DestroySource();
        handle.DestroyGroupInfo();
        handle.DestroyPageParam();
        handle.DestroyItemBuilder();
    }

    expect_no_parts(handle);
    EXPECT_EQ(journal,
              (Journal{"parameters destroyed", "agent destroyed", "source destroyed", "builder destroyed"}));
}

TEST(CQRAAgentHandle, ReleasesTheAgentFirstAndTheSourceLast) {
    Journal journal;
    {
        CQRAAgentHandle handle;
        handle.SetSource(new JournalSource(journal, true));
        handle.SetRequestParam(new JournalParam(journal));
        handle.SetItemBuilder(new JournalBuilder(journal));
        handle.SetAgentInstance(new FakeAgent(&journal));
    }

    EXPECT_EQ(journal, (Journal{"agent destroyed", "builder destroyed", "parameters destroyed",
                                "source closed", "source destroyed"}));
}

TEST(CQRAAgentHandle, SetDestroysNothing) {
    Journal journal;
    JournalSource first(journal, false);
    CQRAAgentHandle handle;
    handle.SetSource(&first);

    handle.SetSource(nullptr);

    EXPECT_TRUE(journal.empty());
}

TEST(CQRAAgentHandle, TakesTheFirstPageStyleAndCopiesTheNext) {
    CQRAAgentHandle handle;
    auto* first = new qra_page_style_s;
    handle.SetPageParam(first);
    EXPECT_EQ(handle.GetPageParam(), first);

    qra_page_style_s second;
    second.mask = 0x26;
    second.order = QRA_PAGE_ORDER_COLUMN;
    second.group_index = -1;
    second.row = 3;
    second.column = 4;
    second.padding = true;
    handle.SetPageParam(&second);

    EXPECT_EQ(handle.GetPageParam(), first);
    EXPECT_EQ(first->mask, 0x26);
    EXPECT_EQ(first->order, QRA_PAGE_ORDER_COLUMN);
    EXPECT_EQ(first->group_index, -1);
    EXPECT_EQ(first->row, 3);
    EXPECT_EQ(first->column, 4);
    EXPECT_TRUE(first->padding);
}

TEST(CQRAAgentHandle, APopLeavesTheRecordForTheNextAnswer) {
    CQRAAgentHandle handle;
    int user_data = 0;
    handle.PushRequestListData("qra_request_list", record_of(&user_data));

    for (int round = 0; round < 2; ++round) {
        _stAppData record;
        EXPECT_TRUE(handle.PopRequestListData("qra_request_list", record));
        EXPECT_EQ(record.pUserData, &user_data);
        EXPECT_EQ(record.cbList, list_callback);
        EXPECT_EQ(record.cbDetail, nullptr);
        EXPECT_EQ(record.cbAct, nullptr);
        EXPECT_EQ(record.cbSend, nullptr);
    }
}

TEST(CQRAAgentHandle, APushKeepsTheRecordThatIsThere) {
    CQRAAgentHandle handle;
    int first = 0;
    int second = 0;
    handle.PushRequestDetailData("key", record_of(&first));
    handle.PushRequestDetailData("key", record_of(&second));

    _stAppData record;
    EXPECT_TRUE(handle.PopRequestDetailData("key", record));
    EXPECT_EQ(record.pUserData, &first);
}

TEST(CQRAAgentHandle, APopOfAnUnknownKeyTellsItsMap) {
    LogCapture log;
    CQRAAgentHandle handle;
    int user_data = 0;
    _stAppData record = record_of(&user_data);

    EXPECT_FALSE(handle.PopRequestListData("absent", record));
    EXPECT_FALSE(handle.PopRequestDetailData("absent", record));
    EXPECT_FALSE(handle.PopRequestActData("absent", record));

    EXPECT_EQ(log.count("it == m_stRequestListData.end()"), 1);
    EXPECT_EQ(log.count("it == m_stDetailData.end()"), 1);
    EXPECT_EQ(log.count("it == m_stActData.end()"), 1);
    EXPECT_EQ(record.pUserData, &user_data);
}

TEST(CQRAAgentHandle, EraseAndClearRemoveRecordsOfTheirMapOnly) {
    CQRAAgentHandle handle;
    const _stAppData record = record_of(nullptr);
    for (const char* key : {"a", "b"}) {
        handle.PushRequestListData(key, record);
        handle.PushRequestDetailData(key, record);
        handle.PushRequestActData(key, record);
    }
    _stAppData out;

    handle.EraseRequestDetailData("a");
    EXPECT_FALSE(handle.PopRequestDetailData("a", out));
    EXPECT_TRUE(handle.PopRequestDetailData("b", out));
    EXPECT_TRUE(handle.PopRequestActData("a", out));

    handle.EraseRequestActData("a");
    EXPECT_FALSE(handle.PopRequestActData("a", out));

    handle.ClearRequestDetailData();
    EXPECT_FALSE(handle.PopRequestDetailData("b", out));
    EXPECT_TRUE(handle.PopRequestActData("b", out));
    handle.ClearRequestActData();
    EXPECT_FALSE(handle.PopRequestActData("b", out));
    EXPECT_TRUE(handle.PopRequestListData("b", out));
    handle.ClearRequestListData();
    EXPECT_FALSE(handle.PopRequestListData("b", out));
}

TEST(CQRAAgentHandle, PendingCallbacksComeAndGoOnManyThreads) {
    CQRAAgentHandle handle;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&handle, t] {
            const std::string key = std::to_string(t);
            for (int i = 0; i < 200; ++i) {
                handle.PushRequestActData(key, record_of(nullptr));
                handle.PushRequestDetailData(key, record_of(nullptr));
                _stAppData record;
                EXPECT_TRUE(handle.PopRequestActData(key, record));
                EXPECT_TRUE(handle.PopRequestDetailData(key, record));
                handle.EraseRequestActData(key);
                handle.EraseRequestDetailData(key);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(CQRAAgentHandle, IsItsOwnInstance) {
    CQRAAgentHandle handle;

    EXPECT_EQ(CQRAAgentHandle::GetInstance(&handle), &handle);
    EXPECT_EQ(CQRAAgentHandle::GetInstance(nullptr), nullptr);
}

TEST(CQRAAgentHandle, TellsWhichAgentItHas) {
    CQRAAgentHandle local;
    CQRAAgentHandle web;
    auto* local_agent = new CQRALocalAgent;
    auto* web_agent = new CQRAWebAgent;
    local.SetAgentInstance(local_agent);
    web.SetAgentInstance(web_agent);

    EXPECT_EQ(CQRAAgentHandle::GetLocalAgent(&local), local_agent);
    EXPECT_EQ(CQRAAgentHandle::GetWebAgent(&local), nullptr);
    EXPECT_EQ(CQRAAgentHandle::GetLocalAgent(&web), nullptr);
    EXPECT_EQ(CQRAAgentHandle::GetWebAgent(&web), web_agent);
}

TEST(CQRAAgentHandle, HasNoAgentOfEitherKindBeforeItWasGivenOne) {
    LogCapture log;
    CQRAAgentHandle handle;

    EXPECT_EQ(CQRAAgentHandle::GetLocalAgent(&handle), nullptr);
    EXPECT_EQ(CQRAAgentHandle::GetLocalAgent(nullptr), nullptr);
    EXPECT_EQ(CQRAAgentHandle::GetWebAgent(&handle), nullptr);
    EXPECT_EQ(CQRAAgentHandle::GetWebAgent(nullptr), nullptr);

    EXPECT_EQ(log.count("Invalid agent handler recevied!!"), 4);
}

TEST(CQRASendHandle, OwnsItsThread) {
    Journal journal;
    {
        CQRASendHandle handle;
        EXPECT_EQ(handle.GetShareThread(), nullptr);
        EXPECT_EQ(handle.GetUserData(), nullptr);
        EXPECT_EQ(handle.GetCallBack(), nullptr);

        auto* thread = new JournalThread(journal);
        handle.SetShareThread(thread);
        handle.SetUserData(&journal);
        handle.SetCallBack(share_callback);

        EXPECT_EQ(handle.GetShareThread(), thread);
        EXPECT_EQ(handle.GetUserData(), &journal);
        EXPECT_EQ(handle.GetCallBack(), share_callback);
        EXPECT_EQ(CQRASendHandle::GetInstance(&handle), &handle);
    }
    EXPECT_EQ(journal, Journal{"thread destroyed"});
}

TEST(CQRADeviceCheckHandle, GivesBackWhatWasSet) {
    CQRADeviceCheckHandle handle;
    int user_data = 0;
    const qra_device_check_cb callback = [](void*, CQRADeviceCheckHandle*, qra_event_e, const char*) {
        return true;
    };

    handle.SetPath("/mnt");
    handle.SetDeviceId("id");
    handle.SetUserData(&user_data);
    handle.SetCallBack(callback);

    EXPECT_EQ(handle.GetPath(), "/mnt");
    EXPECT_EQ(handle.GetDeviceId(), "id");
    EXPECT_EQ(handle.GetUserData(), &user_data);
    EXPECT_EQ(handle.GetCallBack(), callback);
    EXPECT_EQ(CQRADeviceCheckHandle::GetInstance(&handle), &handle);
}

TEST(CQRAFolderThumbHandle, GivesBackWhatWasSet) {
    CQRAFolderThumbHandle handle;
    int user_data = 0;
    const qra_folder_thumb_cb callback = [](void*, CQRAFolderThumbHandle*, const char*) { return true; };

    handle.SetUserData(&user_data);
    handle.SetCallBack(callback);

    EXPECT_EQ(handle.GetUserData(), &user_data);
    EXPECT_EQ(handle.GetCallBack(), callback);
}
