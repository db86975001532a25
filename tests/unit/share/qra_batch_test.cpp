#include <qra/qra_batch.h>

#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/share/src/qra_share_thread_factory.h"
#include "tests/unit/agent/fake_agent.h"
#include "tests/unit/share/share_fixture.h"

namespace {

class Batch : public ShareTest {};

bool is_known(CQRASendHandle* handle) {
    return CQRAHandlerMgr::GetInstance()->Exists(reinterpret_cast<qra_handle_value_t>(handle));
}

}  // namespace

TEST_F(Batch, ServesCopyAndDeleteAndNothingElse) {
    for (int type = -1; type <= 64; ++type) {
        const int before = log_.count("Unkown share type.");
        const std::unique_ptr<IQRAShareThread> thread(
            CQRAShareThreadFactory::GetInstance()->GetShareThread(static_cast<qra_processor_type_e>(type)));
        const bool silent = type == 1 || type == 2 || type == 4 || type == 16 || type == 32;
        EXPECT_EQ(thread != nullptr, type == 1 || type == 2) << type;
        EXPECT_EQ(log_.count("Unkown share type.") - before, silent ? 0 : 1) << type;
    }
}

TEST_F(Batch, RefusesAKindThatHasNoJob) {
    for (const int type : {0, 4, 16, 32, 48, 49, 50}) {
        EXPECT_EQ(start(static_cast<qra_processor_type_e>(type)), QRA_ERROR_INVALID_PARAM) << type;
        EXPECT_TRUE(log_.contains("UnKown eShareType[" + std::to_string(type) + "]."));
    }
    EXPECT_EQ(job_, nullptr);
}

TEST_F(Batch, RefusesAListThatIsNone) {
    EXPECT_EQ(qra_batch_process_v2(QRA_PROCESSOR_TYPE_COPY, &param_, nullptr, client_.param(), &job_),
              QRA_ERROR_INVALID_HANDLE);
    CQRAAgentHandle stranger;
    EXPECT_EQ(qra_batch_process_v2(QRA_PROCESSOR_TYPE_COPY, &param_, &stranger, client_.param(), &job_),
              QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(log_.count("faild!!"), 2) << log_.text();
}

TEST_F(Batch, LeavesNothingBehindWhenAJobCannotBeStarted) {
    const int entries = CQRAHandlerMgr::GetInstance()->GetCount();
    for (const qra_processor_type_e type : {QRA_PROCESSOR_TYPE_COPY, QRA_PROCESSOR_TYPE_DELETE}) {
        auto* const before = reinterpret_cast<CQRASendHandle*>(1);
        CQRASendHandle* job = before;
        qra_share_user_data_s without_callback;
        EXPECT_EQ(qra_batch_process_v2(type, nullptr, list_, client_.param(), &job), QRA_ERROR_INVALID_PARAM);
        EXPECT_EQ(job, nullptr);
        EXPECT_EQ(qra_batch_process_v2(type, &param_, list_, nullptr, &job), QRA_ERROR_INVALID_PARAM);
        EXPECT_EQ(qra_batch_process_v2(type, &param_, list_, &without_callback, &job),
                  QRA_ERROR_INVALID_PARAM);
        EXPECT_EQ(qra_batch_process_v2(type, &param_, list_, client_.param(), nullptr),
                  QRA_ERROR_INVALID_PARAM);
    }
    EXPECT_TRUE(log_.contains("pShareThread->Excute faild. eCode[2]."));
    EXPECT_EQ(CQRAHandlerMgr::GetInstance()->GetCount(), entries);
}

TEST_F(Batch, LeavesNothingBehindWhenTheHandleOwnsTheJobAlready) {
    param_.dest_dev_path = const_cast<char*>("/nonexistent/destination");
    EXPECT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(job_, nullptr);
    EXPECT_TRUE(log_.contains("Invalid dest dev path !!"));
}

TEST_F(Batch, RefusesAListOfTheEngine) {
    list_->DestroyAgentInstance();
    list_->SetAgentInstance(new FakeAgent);
    for (const qra_processor_type_e type : {QRA_PROCESSOR_TYPE_COPY, QRA_PROCESSOR_TYPE_DELETE}) {
        EXPECT_EQ(start(type), QRA_ERROR_INVALID_PARAM);
        EXPECT_EQ(job_, nullptr);
    }
    EXPECT_EQ(log_.count("Invalid agent handle recevied!!"), 2);
}

TEST_F(Batch, KnowsAJobUntilItIsStopped) {
    select("a.jpg", "x");
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_NONE);
    EXPECT_TRUE(is_known(job_));
    EXPECT_TRUE(client_.wait_for_end());

    EXPECT_EQ(qra_stop_batch_process_v2(job_), QRA_ERROR_NONE);

    EXPECT_FALSE(is_known(job_));
    for (const char* text :
         {"Start to excute qra_send, nAgent[", "pShareThread->Excute success, Get pShareHandler[",
          "After insert share handle[", "pShareHandler->pThread->Stop success for nShareHandler[",
          "After remove nShareHandler["})
        EXPECT_TRUE(log_.contains(text)) << text;
    EXPECT_EQ(qra_stop_batch_process_v2(job_), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_stop_batch_process_v3(job_, QRA_STOP_TYPE_KEEP), QRA_ERROR_INVALID_HANDLE);
    job_ = nullptr;
}

TEST_F(Batch, RefusesToStopWhatIsNoJob) {
    EXPECT_EQ(qra_stop_batch_process_v2(nullptr), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_stop_batch_process_v2(reinterpret_cast<CQRASendHandle*>(list_)), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_stop_batch_process_v3(reinterpret_cast<CQRASendHandle*>(1), QRA_STOP_TYPE_REMOVE),
              QRA_ERROR_INVALID_HANDLE);
    EXPECT_TRUE(log_.contains("Start to excute qra_stop_send, nShareHandler[(nil)]."));
    EXPECT_TRUE(log_.contains("Start to excute qra_stop_batch_process_v3, nShareHandler[0x1], type[0]."));
}

TEST_F(Batch, AHandleWithoutAJobStaysWhenItIsStopped) {
    CQRASendHandle handle;
    CQRAHandlerMgr::GetInstance()->Add(handle.GetValue());
    EXPECT_EQ(qra_stop_batch_process_v2(&handle), QRA_ERROR_NONE);
    EXPECT_TRUE(is_known(&handle));
    CQRAHandlerMgr::GetInstance()->Delete(handle.GetValue());
}

TEST_F(Batch, RefusesToStopAJobFromItsOwnCallback) {
    select("a.jpg", "x");
    select("b.jpg", "y");
    std::vector<qra_error_code_e> codes;
    client_.on_event([&](CQRASendHandle* job, const BatchEvent&) {
        codes.push_back(qra_stop_batch_process_v2(job));
        codes.push_back(qra_stop_batch_process_v3(job, QRA_STOP_TYPE_KEEP));
        codes.push_back(job->GetShareThread()->Stop(job, QRA_STOP_TYPE_REMOVE));
    });
    run_copy();
    ASSERT_FALSE(codes.empty());
    for (const qra_error_code_e code : codes) {
        EXPECT_EQ(code, QRA_ERROR_THREAD_FAILED);
    }
    EXPECT_TRUE(log_.contains("A job cannot be stopped from its own callback"));
    EXPECT_EQ(client_.milestones().back(), QRA_EVENT_BATCH_FINISHED);
    EXPECT_EQ(copied(), (std::vector<std::string>{"a.jpg", "b.jpg"}));
}

TEST_F(Batch, GivesTheCallbackTheHandleThatTheClientGot) {
    std::vector<CQRASendHandle*> seen;
    client_.on_event([&](CQRASendHandle* job, const BatchEvent&) { seen.push_back(job); });
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_DELETE), QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for_end());
    EXPECT_EQ(seen, std::vector<CQRASendHandle*>{job_});
}

TEST_F(Batch, AHandleAtTheAddressOfAStoppedOneKeepsItsRegistration) {
    // Whatever is made at the address while the old handle goes enters the registry before the old entry
    // leaves.
    class Successor : public IQRAShareThread {
    public:
        explicit Successor(qra_handle_value_t handle) : handle_(handle) {}
        ~Successor() override { CQRAHandlerMgr::GetInstance()->Add(handle_); }
        qra_error_code_e Excute(qra_share_s*, CQRAAgentHandle*, qra_share_user_data_s*,
                                CQRASendHandle**) override {
            return QRA_ERROR_NONE;
        }
        qra_error_code_e Stop(CQRASendHandle*, qra_stop_type_e) override { return QRA_ERROR_NONE; }

    private:
        const qra_handle_value_t handle_;
    };
    auto* handle = new CQRASendHandle;
    const qra_handle_value_t value = handle->GetValue();
    handle->SetShareThread(new Successor(value));
    CQRAHandlerMgr::GetInstance()->Add(value);

    EXPECT_EQ(qra_stop_batch_process_v2(handle), QRA_ERROR_NONE);

    EXPECT_TRUE(CQRAHandlerMgr::GetInstance()->Exists(value));
    CQRAHandlerMgr::GetInstance()->Delete(value);
}

TEST_F(Batch, AJobThatRefusesToStopStays) {
    class Stubborn : public IQRAShareThread {
    public:
        qra_error_code_e Excute(qra_share_s*, CQRAAgentHandle*, qra_share_user_data_s*,
                                CQRASendHandle**) override {
            return QRA_ERROR_NONE;
        }
        qra_error_code_e Stop(CQRASendHandle*, qra_stop_type_e type) override {
            asked = type;
            return QRA_ERROR_INTERNAL;
        }
        qra_stop_type_e asked = QRA_STOP_TYPE_REMOVE;
    };
    CQRASendHandle handle;
    auto* job = new Stubborn;
    handle.SetShareThread(job);
    CQRAHandlerMgr::GetInstance()->Add(handle.GetValue());
    EXPECT_EQ(qra_stop_batch_process_v3(&handle, QRA_STOP_TYPE_KEEP), QRA_ERROR_INTERNAL);
    EXPECT_EQ(job->asked, QRA_STOP_TYPE_KEEP);
    EXPECT_EQ(qra_stop_batch_process_v2(&handle), QRA_ERROR_INTERNAL);
    EXPECT_EQ(job->asked, QRA_STOP_TYPE_REMOVE);
    EXPECT_TRUE(is_known(&handle));
    EXPECT_TRUE(log_.contains("eCode[0x17].")) << log_.text();
    CQRAHandlerMgr::GetInstance()->Delete(handle.GetValue());
}
