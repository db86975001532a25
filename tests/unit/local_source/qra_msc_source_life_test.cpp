#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>

#include "libqra-agent/source/local-source/qra_obj_manager.h"
#include "tests/unit/local_source/msc_source_fixture.h"

namespace {

namespace faults = media_content_faults;

}  // namespace

TEST_F(CQRAMSCSourceOnDrive, AClosedSourceIsNotOpenAndKnowsNothing) {
    EXPECT_FALSE(source.IsOpen());
    ASSERT_TRUE(source.Open());
    EXPECT_TRUE(source.IsOpen());
    EXPECT_TRUE(CQRAObjManager::GetInstance()->FindObj(
        reinterpret_cast<qra_handle_value_t>(static_cast<CQRAMSCSource*>(&source))));
    EXPECT_TRUE(source.Close());
    EXPECT_FALSE(source.IsOpen());
    EXPECT_FALSE(CQRAObjManager::GetInstance()->FindObj(
        reinterpret_cast<qra_handle_value_t>(static_cast<CQRAMSCSource*>(&source))));
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(log.contains("MSC-SOURCE: Exit t_Process."));
    EXPECT_FALSE(execute({""}));
    EXPECT_FALSE(source.AddFile("/x"));
    EXPECT_FALSE(source.DeleteFile("1"));
}

TEST_F(CQRAMSCSourceOnDrive, ASourceCanBeOpenedAgain) {
    write("a.jpg");
    scan();
    for (int round = 0; round < 3; ++round) {
        open();
        EXPECT_EQ(run({""}), QRA_EVENT_LIST_SUCCESS);
        EXPECT_EQ(count(), 1);
        EXPECT_TRUE(source.Close());
    }
    EXPECT_EQ(faults::count("media_content_connect"), 3);
    EXPECT_EQ(faults::count("media_content_disconnect"), 3);
}

TEST_F(CQRAMSCSourceOnDrive, WhatACloseLeftIsNoRequestOfTheNextOpen) {
    write("a.jpg");
    scan();
    // Each wakes a thread that does not sleep, as there is none.
    for (int i = 0; i < 100; ++i) {
        source.Close();
    }
    source.SetCallback(Completions::on_complete, &completions);
    ASSERT_TRUE(source.Open());

    EXPECT_EQ(run({""}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(run({""}), QRA_EVENT_LIST_SUCCESS);

    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(source.Close());
    EXPECT_EQ(completions.count(), 2u);
}

TEST_F(CQRAMSCSourceOnDrive, ASourceWithoutADatabaseDoesNotOpen) {
    faults::fail("media_content_connect");
    EXPECT_FALSE(source.Open());
    EXPECT_FALSE(source.IsOpen());
    faults::reset();
    EXPECT_TRUE(source.Open());
}

TEST_F(CQRAMSCSourceOpen, TheCompletionComesOnTheSourcesThread) {
    ASSERT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
    EXPECT_NE(completions.last_thread(), std::this_thread::get_id());
}

TEST_F(CQRAMSCSourceOpen, WithoutACallbackACompletionIsLost) {
    EXPECT_TRUE(source.UNSetCallback());
    ASSERT_TRUE(execute({"show"}));
    EXPECT_TRUE(source.Close());
    EXPECT_EQ(completions.count(), 0u);
}

TEST_F(CQRAMSCSourceOpen, TheTransferCallbackIsIgnored) {
    source.SetCallback(qra_source_transfer_cb(nullptr), nullptr);
    EXPECT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
}

namespace {

/// A completion that lasts until it is let go.
struct SlowCallback {
    static bool on_complete(qra_event_e, void* self) {
        auto* const slow = static_cast<SlowCallback*>(self);
        std::unique_lock<std::mutex> lock(slow->mutex);
        slow->running = true;
        slow->changed.notify_all();
        slow->changed.wait(lock, [&] { return slow->may_end; });
        slow->ended = true;
        return true;
    }

    void wait_until_running() {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return running; });
    }

    void let_go() {
        const std::lock_guard<std::mutex> lock(mutex);
        may_end = true;
        changed.notify_all();
    }

    bool has_ended() {
        const std::lock_guard<std::mutex> lock(mutex);
        return ended;
    }

    std::mutex mutex;
    std::condition_variable changed;
    bool running = false;
    bool may_end = false;
    bool ended = false;
};

}  // namespace

TEST_F(CQRAMSCSourceOpen, SettingTheCallbackDoesNotWaitForOneThatRuns) {
    SlowCallback slow;
    source.SetCallback(SlowCallback::on_complete, &slow);
    ASSERT_TRUE(execute({"show"}));
    slow.wait_until_running();
    EXPECT_TRUE(source.SetCallback(Completions::on_complete, &completions));
    EXPECT_FALSE(slow.has_ended());
    slow.let_go();
    EXPECT_EQ(run({"show"}), QRA_EVENT_LIST_SUCCESS);
}

TEST_F(CQRAMSCSourceOpen, UnsettingTheCallbackWaitsForOneThatRuns) {
    SlowCallback slow;
    source.SetCallback(SlowCallback::on_complete, &slow);
    ASSERT_TRUE(execute({"show"}));
    slow.wait_until_running();
    std::thread helper([&] { slow.let_go(); });
    source.UNSetCallback();
    EXPECT_TRUE(slow.has_ended());
    helper.join();
}

TEST_F(CQRAMSCSourceOnDrive, ACloseDuringAScanCancelsItAndCallsNobody) {
    write("show/a.jpg");
    faults::hold_scans();
    open();
    ASSERT_TRUE(execute({"show"}));
    ASSERT_TRUE(faults::wait_for_scan());
    EXPECT_TRUE(source.Close());
    EXPECT_EQ(faults::count("media_content_cancel_scan_folder"), 1);
    EXPECT_EQ(completions.count(), 0u);
    EXPECT_TRUE(log.contains("MSC-SOURCE: There is no registered callback."));
    faults::answer_scan(0, MEDIA_SCAN_PHASE_FINISHED);
    EXPECT_TRUE(log.contains("MCF-Wrapper: Current MCF Wrapper Obj does not exist!"));
}

TEST_F(CQRAMSCSourceOnDrive, ACloseRightAfterARequestEndsInEveryOrder) {
    write("show/a.jpg");
    for (int round = 0; round < 100; ++round) {
        open();
        ASSERT_TRUE(execute({"show"}));
        if (round % 3 == 0) {
            std::this_thread::yield();
        }
        EXPECT_TRUE(source.Close());
    }
}

TEST_F(CQRAMSCSourceOnDrive, RequestsOnManySourcesRunAtOnce) {
    write("show/a.jpg");
    write("show/b.jpg");
    std::vector<std::unique_ptr<CQRAMSCSource>> sources;
    std::vector<std::unique_ptr<Completions>> all;
    std::string root = path("show");
    char category[] = "CATEGORY-FOLDER-TITLE";
    char content[] = "CONTENT-IMAGE";
    qra_general_s param;
    param.szPath = root.data();
    param.szSortCategory = category;
    param.szContentType = content;
    for (int i = 0; i < 4; ++i) {
        sources.push_back(std::make_unique<CQRAMSCSource>());
        all.push_back(std::make_unique<Completions>());
        ASSERT_TRUE(sources[i]->Open());
        sources[i]->SetCallback(Completions::on_complete, all[i].get());
        ASSERT_TRUE(sources[i]->Execute(&param));
    }
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(all[i]->wait(), QRA_EVENT_LIST_SUCCESS);
        int items = 0;
        EXPECT_TRUE(sources[i]->GetItemCount(&items));
        EXPECT_EQ(items, 2);
        EXPECT_TRUE(sources[i]->Close());
    }
}

TEST(CQRAMSCSourceDeathTest, NullArgumentsEndTheProcess) {
    CQRAMSCSource source;
    int count = 0;
    char name[] = "x";
    qra_general_s param;
    EXPECT_DEATH(source.Execute(&param), "pParam->szPath != __null");
    EXPECT_DEATH(source.SetCallback(qra_source_complete_cb(nullptr), &count), "cb != __null");
    EXPECT_DEATH(source.AddFile(nullptr), "szPath != __null");
    EXPECT_DEATH(source.DeleteFile(nullptr), "szMediaId != __null");
    EXPECT_DEATH(source.GetItemCount(nullptr), "pnItemCount != __null");
    EXPECT_DEATH(source.GetItemCountByType(QRA_MEDIA_TYPE_IMAGE, nullptr), "pnItemCount != __null");
    EXPECT_DEATH(source.GetItemCountOfGroup(nullptr, &count), "szGroupName != __null");
    EXPECT_DEATH(source.GetItemCountOfGroup(name, nullptr), "pnItemCount != __null");
    EXPECT_DEATH(source.GetDBIndex(nullptr, &count), "szMediaId != __null");
    EXPECT_DEATH(source.GetDBIndex(name, nullptr), "pnIndex != __null");
    EXPECT_DEATH(source.GetValue("TITLE", static_cast<char**>(nullptr)), "ppValue != __null");
    EXPECT_DEATH(source.GetValue("SIZE", static_cast<int*>(nullptr)), "pValue != __null");
    EXPECT_DEATH(source.GetValue("SIZE", static_cast<unsigned long long*>(nullptr)), "pValue != __null");
    EXPECT_DEATH(source.GetValue("SIZE", static_cast<long*>(nullptr)), "pValue != __null");
    EXPECT_DEATH(source.GetValue("SIZE", static_cast<bool*>(nullptr)), "pValue != __null");
    EXPECT_DEATH(source.GetValue("SIZE", static_cast<double*>(nullptr)), "pValue != __null");
    EXPECT_DEATH(source.SetValue(nullptr, 1), "szField != __null");
    EXPECT_DEATH(source.SetValue(nullptr, 1L), "szField != __null");
    EXPECT_DEATH(source.SetValue(nullptr, "x"), "szField != __null");
    EXPECT_DEATH(source.SetValue("TITLE", static_cast<const char*>(nullptr)), "szValue != __null");
}

TEST(CQRAMSCSourceDeathTest, AnOpenSourceMustNotBeDestroyed) {
    class Open : public SampleDrive {
    public:
        void TestBody() override {}
    };
    EXPECT_DEATH(
        {
            Open drive;
            auto* const source = new CQRAMSCSource;
            source->Open();
            delete source;
        },
        "m_bIsOpen == false");
}
