#include "common/util/qra_thread.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/resource.h>

#include <atomic>
#include <string>

#include "tests/fakes/dlog_capture.h"

namespace {

/// Counts its runs; each run waits to be let go.
class Worker : public CQRAThread {
public:
    ~Worker() override {
        go.Give();
        Destroy();
    }

    CQRASemphore go;
    CQRASemphore running;
    std::atomic<int> runs{0};
    std::string name;

protected:
    void t_Process() override {
        char text[16] = {};
        pthread_getname_np(pthread_self(), text, sizeof text);
        name = text;
        running.Give();
        go.Take();
        ++runs;
    }
};

GThread* const kNoThread = reinterpret_cast<GThread*>(-1);

}  // namespace

TEST(CQRASemphore, TakesWhatWasGivenBefore) {
    CQRASemphore semaphore;

    semaphore.Give();
    semaphore.Give();

    semaphore.Take();
    semaphore.Take();
}

TEST(CQRASemphore, WakesOneTakerForEachGive) {
    class Taker : public CQRAThread {
    public:
        explicit Taker(CQRASemphore& s) : semaphore(s) {}
        ~Taker() override { Destroy(); }
        CQRASemphore& semaphore;

    protected:
        void t_Process() override { semaphore.Take(); }
    };
    CQRASemphore semaphore;
    Taker first(semaphore);
    Taker second(semaphore);
    ASSERT_TRUE(first.Create("first"));
    ASSERT_TRUE(second.Create("second"));

    semaphore.Give();
    semaphore.Give();

    first.Destroy();
    second.Destroy();
    EXPECT_FALSE(first.FlagCreate());
    EXPECT_FALSE(second.FlagCreate());
}

TEST(CQRAThread, HasNoThreadBeforeItIsCreated) {
    Worker worker;

    EXPECT_FALSE(worker.FlagCreate());
    EXPECT_EQ(worker.Thread_id(), kNoThread);
    EXPECT_EQ(worker.Thread_join(), nullptr);
}

TEST(CQRAThread, RunsTheBodyUnderTheGivenName) {
    Worker worker;

    ASSERT_TRUE(worker.Create("qra-test"));

    EXPECT_TRUE(worker.FlagCreate());
    EXPECT_NE(worker.Thread_id(), kNoThread);
    worker.running.Take();
    EXPECT_EQ(worker.name, "qra-test");
}

TEST(CQRAThread, DestroyWaitsForTheBodyToEnd) {
    Worker worker;
    ASSERT_TRUE(worker.Create("qra-test"));

    worker.go.Give();
    EXPECT_EQ(worker.Destroy(), nullptr);

    EXPECT_EQ(worker.runs, 1);
    EXPECT_FALSE(worker.FlagCreate());
    EXPECT_EQ(worker.Thread_id(), kNoThread);
}

TEST(CQRAThread, DestroyReturnsAtOnceWithoutAThread) {
    CQRAThread never_created;
    EXPECT_EQ(never_created.Destroy(), nullptr);

    CQRAThread destroyed_twice;
    ASSERT_TRUE(destroyed_twice.Create("qra-test"));
    EXPECT_EQ(destroyed_twice.Destroy(), nullptr);
    EXPECT_EQ(destroyed_twice.Destroy(), nullptr);
}

TEST(CQRAThread, EndsByItselfWithTheDefaultBody) {
    CQRAThread thread;
    ASSERT_TRUE(thread.Create("qra-test"));

    EXPECT_EQ(thread.Destroy(), nullptr);

    EXPECT_FALSE(thread.FlagCreate());
}

TEST(CQRAThread, CanBeCreatedAgainAfterDestroy) {
    Worker worker;
    for (int run = 1; run <= 3; ++run) {
        ASSERT_TRUE(worker.Create("qra-test"));
        worker.go.Give();
        worker.Destroy();
        EXPECT_EQ(worker.runs, run);
    }
}

TEST(CQRAThread, RefusesANullName) {
    CQRAThread thread;

    EXPECT_FALSE(thread.Create(nullptr));
    EXPECT_FALSE(thread.FlagCreate());
}

TEST(CQRAThread, RefusesASecondThreadBesideTheFirst) {
    Worker worker;
    ASSERT_TRUE(worker.Create("qra-test"));
    GThread* const first = worker.Thread_id();

    EXPECT_FALSE(worker.Create("qra-test"));

    EXPECT_EQ(worker.Thread_id(), first);
}

TEST(CQRAThread, CanBeJoinedBeforeItIsDestroyed) {
    CQRAThread thread;
    ASSERT_TRUE(thread.Create("qra-test"));

    EXPECT_EQ(thread.Thread_join(), nullptr);

    EXPECT_TRUE(thread.FlagCreate());
    EXPECT_EQ(thread.Destroy(), nullptr);
    EXPECT_FALSE(thread.FlagCreate());
}

TEST(CQRAThread, DestructorWaitsForAThreadThatNobodyDestroyed) {
    static std::atomic<bool> ended{false};
    class Forgotten : public CQRAThread {
    public:
        explicit Forgotten(CQRASemphore& s) : running(s) {}
        CQRASemphore& running;

    protected:
        void t_Process() override {
            running.Give();
            g_usleep(1000);
            ended = true;
        }
    };
    CQRASemphore running;
    {
        Forgotten thread(running);
        ASSERT_TRUE(thread.Create("qra-test"));
        running.Take();
    }
    EXPECT_TRUE(ended);
}
