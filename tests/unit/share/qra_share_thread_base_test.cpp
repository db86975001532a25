#include "libqra-agent/share/src/qra_share_thread_base.h"

#include <algorithm>

#include "tests/unit/share/share_fixture.h"

namespace {

/// A job that answers for each file what the test wants; when the answers are used up, it succeeds.
class AnswerThread : public CQRAShareThreadBase, public IQRAShareThread {
public:
    explicit AnswerThread(std::vector<SHARE_RESULT_TYPE> answers) : answers_(std::move(answers)) {}
    ~AnswerThread() override { t_EndJob(); }

    qra_error_code_e Excute(qra_share_s* share, CQRAAgentHandle* list, qra_share_user_data_s* user_data,
                            CQRASendHandle** handle) override {
        return t_InitShareHandler(share, user_data, list, QRA_PROCESSOR_TYPE_DELETE, this, handle)
                   ? t_StartJob("answers")
                   : QRA_ERROR_INVALID_PARAM;
    }
    qra_error_code_e Stop(CQRASendHandle*, qra_stop_type_e) override {
        if (t_IsOwnThread()) {
            return QRA_ERROR_THREAD_FAILED;
        }
        t_EndJob();
        return QRA_ERROR_NONE;
    }
    bool init(qra_share_s* share, CQRAAgentHandle* list, qra_share_user_data_s* user_data,
              CQRASendHandle** handle) {
        return t_InitShareHandler(share, user_data, list, QRA_PROCESSOR_TYPE_DELETE, this, handle);
    }
    bool runs() { return t_GetJobStatus(); }
    static std::vector<std::string> companions(bool of_video) {
        std::vector<std::string> extensions = {"left over"};
        of_video ? t_GetVideoFileExt(extensions) : t_GetPvrFileExt(extensions);
        return extensions;
    }

protected:
    SHARE_RESULT_TYPE t_JobProcess(void* param) override {
        EXPECT_EQ(param, nullptr);
        return next_ < answers_.size() ? answers_[next_++] : SHARE_RESULT_SUCCESS;
    }

private:
    std::vector<SHARE_RESULT_TYPE> answers_;
    size_t next_ = 0;
};

/// A job that does not say what it does to a file.
class SilentThread : public AnswerThread {
public:
    SilentThread() : AnswerThread({}) {}

protected:
    SHARE_RESULT_TYPE t_JobProcess(void* param) override { return CQRAShareThreadBase::t_JobProcess(param); }
};

class ShareFrame : public ShareTest {
protected:
    void run_answers(std::vector<SHARE_RESULT_TYPE> answers) {
        run(std::make_unique<AnswerThread>(std::move(answers)));
    }
    void select_files(int count) {
        for (int i = 0; i < count; ++i) {
            select("file " + std::to_string(i), "x");
        }
    }
};

using Events = std::vector<qra_event_e>;

}  // namespace

TEST_F(ShareFrame, ReportsEachFileAndTheEnd) {
    select_files(2);
    run_answers({});
    const std::vector<BatchEvent> events = client_.events();
    ASSERT_EQ(client_.milestones(),
              (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_EQ(events[0].status.nFinishedCount, 1);
    EXPECT_STREQ(events[0].status.szFileName, "file 0");
    EXPECT_EQ(events[1].status.nFinishedCount, 2);
    EXPECT_STREQ(events[1].status.szFileName, "file 1");
    EXPECT_EQ(events[2].status.nTotalCount, 2);
    EXPECT_EQ(events[2].status.nFinishedCount, 2);
    EXPECT_EQ(events[2].status.nReserved1, 0);
    EXPECT_EQ(events[2].status.nReserved2, 0);
}

TEST_F(ShareFrame, AnEmptySelectionIsFinishedAtOnce) {
    run_answers({});
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FINISHED});
    EXPECT_EQ(client_.events()[0].status.nTotalCount, 0);
}

TEST_F(ShareFrame, AFailureEndsTheJobWithTheFilesNumber) {
    select_files(4);
    run_answers({SHARE_RESULT_SUCCESS, SHARE_RESULT_FAILED});
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FAILED}));
    EXPECT_EQ(client_.events().back().status.nFinishedCount, 1);
    EXPECT_STREQ(client_.events().back().status.szFileName, "file 1");
    EXPECT_TRUE(log_.contains("Process the [1]th file[file 1] faild!!"));
    EXPECT_EQ(script_.cursor, 1);
}

TEST_F(ShareFrame, SkipsAFileWithoutAWord) {
    select_files(3);
    run_answers({SHARE_RESULT_IGNORE, SHARE_RESULT_SUCCESS, SHARE_RESULT_IGNORE});
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_EQ(client_.events().front().status.nFinishedCount, 2);
    EXPECT_EQ(client_.events().back().status.nFinishedCount, 2);
}

TEST_F(ShareFrame, AnInnerResultCountsLikeASkippedFile) {
    select_files(3);
    run_answers({SHARE_RESULT_STOPPED, SHARE_RESULT_READ_FAILED, static_cast<SHARE_RESULT_TYPE>(17)});
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FINISHED});
    EXPECT_FALSE(log_.contains("Ignore the ["));
}

TEST_F(ShareFrame, AJobThatDoesNothingSucceedsOnEveryFile) {
    select_files(2);
    run(std::make_unique<SilentThread>());
    EXPECT_EQ(client_.count(QRA_EVENT_BATCH_FILE_DONE), 2);
    EXPECT_EQ(client_.milestones().back(), QRA_EVENT_BATCH_FINISHED);
}

TEST_F(ShareFrame, AnItemThatCannotBeReadEndsTheJob) {
    select_files(3);
    script_.items[1].texts.erase("FILE_PATH");
    run_answers({SHARE_RESULT_IGNORE});
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_EQ(client_.events().back().status.nFinishedCount, 1);
    EXPECT_TRUE(log_.contains("Process type[1]:Get the [1]th fileinfo faild!!")) << log_.text();
}

TEST_F(ShareFrame, AnItemThatCannotBeReachedEndsTheJob) {
    select_files(1);
    script_.count = 2;
    run_answers({});
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FAILED}));
}

TEST_F(ShareFrame, SaysNothingWithoutACountOfTheSelection) {
    select_files(1);
    script_.count_works = false;
    AnswerThread* job = new AnswerThread({});
    CQRASendHandle handle;  // owns the job once it is started
    CQRASendHandle* out = &handle;
    ASSERT_EQ(job->Excute(&param_, list_, client_.param(), &out), QRA_ERROR_NONE);

    EXPECT_EQ(job->Destroy(), nullptr);  // waits for the thread without stopping the job

    EXPECT_FALSE(job->runs());
    EXPECT_TRUE(client_.events().empty());
    EXPECT_TRUE(log_.contains("Get select count faild!!"));
}

TEST_F(ShareFrame, ANameThatIsTooLongLeavesTheOneBeforeIt) {
    select_files(4);
    script_.items[1].texts["DISPLAY_NAME"] = std::string(4096, 'n');
    script_.items[2].texts["DISPLAY_NAME"] = std::string(4095, 'm');
    script_.items[3].texts["DISPLAY_NAME"] = "";
    run_answers({});
    const std::vector<BatchEvent> events = client_.events();
    ASSERT_EQ(events.size(), 5u);
    EXPECT_STREQ(events[1].status.szFileName, "file 0");
    EXPECT_EQ(events[2].status.szFileName, std::string(4095, 'm'));
    EXPECT_EQ(events[3].status.szFileName, std::string(4095, 'm'));
}

TEST_F(ShareFrame, AStopBetweenTwoFilesSendsNothingMore) {
    select_files(3);
    std::mutex mutex;
    std::condition_variable changed;
    bool in_callback = false;
    bool stopping = false;
    client_.on_event([&](CQRASendHandle*, const BatchEvent&) {
        std::unique_lock<std::mutex> lock(mutex);
        in_callback = true;
        changed.notify_all();
        changed.wait(lock, [&] { return stopping; });
    });
    // t_EndJob() tells the thread to end and then waits for it; only then may the callback go on.
    class StoppedThread : public AnswerThread {
    public:
        StoppedThread() : AnswerThread({}) {}
        void end() { t_SetJobStatus(false); }
    };
    auto* job = new StoppedThread;
    CQRASendHandle handle;
    CQRASendHandle* out = &handle;
    ASSERT_EQ(job->Excute(&param_, list_, client_.param(), &out), QRA_ERROR_NONE);
    {
        std::unique_lock<std::mutex> lock(mutex);
        changed.wait(lock, [&] { return in_callback; });
        job->end();
        stopping = true;
        changed.notify_all();
    }
    EXPECT_EQ(job->Stop(&handle, QRA_STOP_TYPE_REMOVE), QRA_ERROR_NONE);
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FILE_DONE});
    EXPECT_TRUE(log_.contains("Batch process was stoped!"));
    EXPECT_EQ(script_.cursor, 0);
}

TEST_F(ShareFrame, NeedsEveryParameter) {
    CQRASendHandle handle;
    CQRASendHandle* out = &handle;
    CQRASendHandle* none = nullptr;
    qra_share_user_data_s without_callback;
    AnswerThread job({});
    EXPECT_FALSE(job.init(nullptr, list_, client_.param(), &out));
    EXPECT_FALSE(job.init(&param_, nullptr, client_.param(), &out));
    EXPECT_FALSE(job.init(&param_, list_, nullptr, &out));
    EXPECT_FALSE(job.init(&param_, list_, &without_callback, &out));
    EXPECT_FALSE(job.init(&param_, list_, client_.param(), nullptr));
    EXPECT_FALSE(job.init(&param_, list_, client_.param(), &none));
    EXPECT_EQ(log_.count("CQRAShareThreadBase::InitShareHandler Invalide param !!"), 6);
    EXPECT_EQ(handle.GetShareThread(), nullptr);
}

TEST_F(ShareFrame, FillsTheSendHandle) {
    CQRASendHandle handle;
    CQRASendHandle* out = &handle;
    auto* job = new AnswerThread({});
    ASSERT_TRUE(job->init(&param_, list_, client_.param(), &out));
    EXPECT_EQ(handle.GetShareThread(), job);
    EXPECT_EQ(handle.GetUserData(), client_.param()->udata);
    EXPECT_EQ(handle.GetCallBack(), client_.param()->cb);
}

TEST_F(ShareFrame, KnowsTheCompanionsOfVideosAndRecordings) {
    EXPECT_EQ(AnswerThread::companions(true), (std::vector<std::string>{".smi", ".srt", ".ttxt"}));
    EXPECT_EQ(AnswerThread::companions(false),
              (std::vector<std::string>{".inf", ".ss", ".mdb", ".mta", ".cip"}));
}
