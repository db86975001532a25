// A remote list in the life of its process: main loops, other threads, engines that go away.
#include <atomic>
#include <condition_variable>
#include <filesystem>
#include <iterator>
#include <mutex>

#include "common/util/qra_handover.h"
#include "tests/unit/agent/web_agent_fixture.h"

namespace {

class CQRAWebAgentLife : public WebAgentTest {};

/// Runs a main loop of its own, which is its thread's default, for as long as it lives. What is done through
/// run() subscribes for this loop.
class LoopThread {
public:
    LoopThread() : context_(g_main_context_new()), loop_(g_main_loop_new(context_, FALSE)) {
        thread_ = std::thread([this] {
            g_main_context_push_thread_default(context_);
            g_main_loop_run(loop_);
            g_main_context_pop_thread_default(context_);
        });
    }
    ~LoopThread() {
        run([this] { g_main_loop_quit(loop_); });
        thread_.join();
        g_main_loop_unref(loop_);
        g_main_context_unref(context_);
    }

    std::thread::id id() const { return thread_.get_id(); }

    /// Runs a function on the loop's thread, and waits for it.
    void run(std::function<void()> function) {
        Job job{std::move(function), {}, false};
        GSource* const source = g_idle_source_new();
        g_source_set_callback(source, do_job, &job, nullptr);
        qra_hand_over(&job);
        g_source_attach(source, context_);
        g_source_unref(source);
        std::unique_lock<std::mutex> lock(job.mutex);
        job.ended.wait(lock, [&job] { return job.done; });
    }

private:
    struct Job {
        std::function<void()> function;
        std::mutex mutex;
        bool done;
        std::condition_variable ended{};
    };

    static gboolean do_job(gpointer data) {
        auto* const job = static_cast<Job*>(data);
        qra_take_over(job);
        job->function();
        const std::lock_guard<std::mutex> lock(job->mutex);
        job->done = true;
        job->ended.notify_all();
        return G_SOURCE_REMOVE;
    }

    GMainContext* context_;
    GMainLoop* loop_;
    std::thread thread_;
};

size_t open_descriptors() {
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return static_cast<size_t>(std::distance(begin(descriptors), end(descriptors)));
}

/// Counts list events, of any thread.
bool count_event(void* count, CQRAAgentHandle*, qra_event_e, int, const char*) {
    ++*static_cast<std::atomic<int>*>(count);
    return true;
}

TEST_F(CQRAWebAgentLife, AListCompletesWithALoopThatStartsLate) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    complete_section(0);
    EXPECT_TRUE(events_.empty());

    ASSERT_TRUE(wait_for_events(1));
    complete_section(1);
    complete_section(2);
    ASSERT_TRUE(wait_for_events(3));

    ASSERT_EQ(lay_out(), QRA_ERROR_NONE);
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(item(i), RemoteList::item(i));
}

TEST_F(CQRAWebAgentLife, WithoutALoopEveryCallIsAnswered) {
    ASSERT_EQ(request(), QRA_ERROR_NONE);
    complete_section(0);
    ASSERT_TRUE(engine_->wait_for("get_partial_list"));

    EXPECT_EQ(lay_out(0x06), QRA_ERROR_NONE);
    int count = -1;
    EXPECT_EQ(qra_get_item_count_v2(handle_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(item(0), "code 2");
    EXPECT_EQ(qra_move_to_next_v2(handle_), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_request_detail_v2(handle_, std::make_unique<qra_detail_s>().get(), nullptr, nullptr),
              QRA_ERROR_NONE);
    EXPECT_EQ(disconnect(), QRA_ERROR_NONE);
    EXPECT_TRUE(events_.empty());
}

TEST_F(CQRAWebAgentLife, CallbacksComeOnTheLoopOfTheSubscriber) {
    LoopThread loop;
    std::thread::id thread;
    std::atomic<bool> told{false};
    struct Told {
        std::thread::id& thread;
        std::atomic<bool>& done;
    } data{thread, told};
    const on_list_complete_cb take_thread = [](void* user_data, CQRAAgentHandle*, qra_event_e, int,
                                               const char*) {
        auto* const out = static_cast<Told*>(user_data);
        out->thread = std::this_thread::get_id();
        out->done = true;
        return true;
    };
    loop.run([&] { EXPECT_EQ(qra_request_list_v2(&param_, take_thread, &data, &handle_), QRA_ERROR_NONE); });

    complete_section(0);

    ASSERT_TRUE(run_loop_until([&] { return told.load(); }));
    EXPECT_EQ(thread, loop.id());
    EXPECT_EQ(disconnect(), QRA_ERROR_NONE);
}

TEST_F(CQRAWebAgentLife, AnEngineThatGoesBetweenSectionsLeavesAListThatAnswers) {
    open_list();
    ASSERT_EQ(lay_out(), QRA_ERROR_NONE);
    complete_section(1);
    ASSERT_TRUE(wait_for_events(1));

    engine_.reset();

    EXPECT_EQ(item(7), RemoteList::item(7));
    EXPECT_EQ(item(8), "code 5");
    qra_like_s like;
    EXPECT_EQ(qra_set_like_v2(handle_, &like, 0, &events_, take_item_event), QRA_ERROR_NONE);
    CQRAAgentHandle* other = nullptr;
    EXPECT_EQ(qra_request_list_v2(&param_, take_list_event, &events_, &other), QRA_ERROR_ENGINE);
    EXPECT_EQ(other, nullptr);
}

TEST_F(CQRAWebAgentLife, ARequestWorksWhenTheEngineIsBackBesideAListOfTheEngineBefore) {
    open_list();
    CQRAAgentHandle* const before = handle_;
    engine_.reset();
    handle_ = nullptr;
    start_engine();

    open_list();

    ASSERT_EQ(lay_out(), QRA_ERROR_NONE);
    EXPECT_EQ(item(3), RemoteList::item(3));
    EXPECT_EQ(qra_disconnect_v2(before), QRA_ERROR_NONE);
    complete_section(1);
    EXPECT_TRUE(wait_for_events(1));
    EXPECT_EQ(item(4), RemoteList::item(4));
}

TEST_F(CQRAWebAgentLife, ListsThatWereReadLeaveNoDescriptorBehind) {
    constexpr int kRounds = 100;
    size_t descriptors = 0;
    for (int i = 0; i < kRounds; ++i) {
        open_list();
        ASSERT_EQ(lay_out(), QRA_ERROR_NONE) << i;
        ASSERT_EQ(item(3), RemoteList::item(3)) << i;
        ASSERT_EQ(disconnect(), QRA_ERROR_NONE) << i;
        if (i == 0)
            descriptors = open_descriptors();
    }
    EXPECT_EQ(open_descriptors(), descriptors);
}

TEST_F(CQRAWebAgentLife, RequestsAndDisconnectsMeetSignalsInFlight) {
    constexpr int kRounds = 500;
    LoopThread loop;
    std::atomic<int> count{0};
    Json::Value answer;
    answer["qra_event_type"] = 0;
    answer["qra_result_list_block_name"] = list_.write(0);
    // The first request of the process is the subscription.
    loop.run([&] { EXPECT_EQ(qra_request_list_v2(&param_, count_event, &count, &handle_), QRA_ERROR_NONE); });
    EXPECT_EQ(disconnect(), QRA_ERROR_NONE);

    for (int i = 0; i < kRounds; ++i) {
        ASSERT_EQ(qra_request_list_v2(&param_, count_event, &count, &handle_), QRA_ERROR_NONE) << i;
        complete(answer);
        if (i % 2 == 0) {
            lay_out();
            item(0);
        }
        ASSERT_EQ(disconnect(), QRA_ERROR_NONE) << i;
    }

    // The signals before this one were all delivered when this one is.
    ASSERT_EQ(qra_request_list_v2(&param_, count_event, &count, &handle_), QRA_ERROR_NONE);
    const int before = count;
    Json::Value empty;
    empty["qra_event_type"] = 8;
    complete(empty);
    EXPECT_TRUE(wait_for_log("Disconnect from engine success ... "));
    EXPECT_LE(before, kRounds);
    EXPECT_EQ(disconnect(), QRA_ERROR_NONE);
}

}  // namespace
