// Batch jobs on a system whose calls fail, are slow, or are watched.

#include <atomic>
#include <cerrno>
#include <chrono>
#include <future>
#include <random>
#include <thread>

#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/share/src/qra_copy_thread.h"
#include "tests/unit/share/faulty_calls.h"
#include "tests/unit/share/share_fixture.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t kBlock = 65536;

using Events = std::vector<qra_event_e>;
using Names = std::vector<std::string>;

class ShareFault : public ShareTest {
protected:
    ShareFault() { FaultyCalls::reset(); }
    ~ShareFault() override {
        stop();
        FaultyCalls::reset();
    }

    /// Fails the `number`th call of a kind, counted from 1.
    static void fail(const std::string& kind, int number, int error) {
        FaultyCalls::before = [=, count = 0](const std::string& call, const std::string&) mutable {
            return call == kind && ++count == number ? error : 0;
        };
    }
    /// Fails a kind of call on paths that end in `suffix`.
    static void fail_on(const std::string& kind, const std::string& suffix, int error) {
        FaultyCalls::before = [=](const std::string& call, const std::string& path) {
            const bool hit = call == kind && path.size() >= suffix.size() &&
                             path.compare(path.size() - suffix.size(), suffix.size(), suffix) == 0;
            return hit ? error : 0;
        };
    }
    /// Works on the selection to its end, for a client of its own.
    void copy_for(BatchClient& client) { run_for(client, QRA_PROCESSOR_TYPE_COPY); }
    void run_for(BatchClient& client, qra_processor_type_e type) {
        CQRASendHandle* job = nullptr;
        ASSERT_EQ(qra_batch_process_v2(type, &param_, list_, client.param(), &job), QRA_ERROR_NONE);
        EXPECT_TRUE(client.wait_for_end());
        EXPECT_EQ(qra_stop_batch_process_v2(job), QRA_ERROR_NONE);
    }
    /// Notes the calls that move bytes or flush, and the events, in their order.
    void watch(BatchClient& client) {
        FaultyCalls::after = [this](const std::string& call, size_t bytes) {
            calls_.push_back(call == "fsync" ? call : call + " " + std::to_string(bytes));
        };
        client.on_event([this](CQRASendHandle*, const BatchEvent& event) {
            if (event.event == QRA_EVENT_BATCH_FILE_DONE) {
                calls_.push_back("done");
            }
        });
        script_.on_add = [this] { calls_.push_back("add"); };
    }
    static void plain_loop(Names& calls, size_t size) {
        int blocks = 0;
        for (size_t at = 0; at < size; at += kBlock) {
            const std::string bytes = std::to_string(std::min(kBlock, size - at));
            calls.push_back("read " + bytes);
            calls.push_back("write " + bytes);
            if (++blocks % 16 == 0) {
                calls.push_back("fsync");
            }
        }
        calls.push_back("fsync");
    }

    Names calls_;
};

/// A copy whose client sees whether it has been told to stop.
class WatchedCopy : public CQRACopyThread {
public:
    bool IsRunning() { return t_GetJobStatus(); }
};

/// A copy of the selection that is told to stop within its `number`th call of a kind.
class StoppedCopy {
public:
    StoppedCopy(const std::string& kind, int number, qra_stop_type_e type, int error = 0) {
        FaultyCalls::before = [=, count = 0](const std::string& call, const std::string&) mutable {
            calls_after_ += stopping_ ? 1 : 0;
            if (call != kind || ++count != number) {
                return 0;
            }
            asked_.set_value();
            while (copy_->IsRunning()) {
                std::this_thread::yield();
            }
            stopping_ = true;
            return error;
        };
        type_ = type;
    }

    void run(qra_share_s& param, CQRAAgentHandle* list, BatchClient& client) {
        CQRASendHandle* out = &handle_;
        ASSERT_EQ(copy_->Excute(&param, list, client.param(), &out), QRA_ERROR_NONE);
        asked_.get_future().wait();
        EXPECT_EQ(copy_->Stop(&handle_, type_), QRA_ERROR_NONE);
    }
    /// The system calls of the job since it was told.
    int calls_after() const { return calls_after_; }

private:
    qra_stop_type_e type_;
    CQRASendHandle handle_;
    WatchedCopy* const copy_ = new WatchedCopy;  ///< the handle's, once it runs
    std::promise<void> asked_;
    bool stopping_ = false;
    int calls_after_ = 0;
};

}  // namespace

TEST_F(ShareFault, AMainFileMakesTheCallsOfAPlainLoopAndIsFlushedBeforeItIsReported) {
    for (const size_t size : {size_t{0}, size_t{1}, kBlock, 16 * kBlock, 16 * kBlock + 1, 40 * kBlock + 5}) {
        script_.items.clear();
        select(std::to_string(size) + ".jpg", std::string(size, 'x'));
        calls_.clear();
        BatchClient client;
        watch(client);
        Names expected;
        plain_loop(expected, size);
        expected.push_back("add");
        expected.push_back("done");
        copy_for(client);
        EXPECT_EQ(calls_, expected) << size;
    }
}

TEST_F(ShareFault, ACompanionIsFlushedAfterEachBlock) {
    select("movie.avi", "m", QRA_MEDIA_TYPE_VIDEO);
    dir_.write("source/movie.srt", std::string(kBlock + 2, 's'));
    watch(client_);
    run_copy();
    EXPECT_EQ(calls_, (Names{"read 1", "write 1", "fsync", "read 65536", "write 65536", "fsync", "read 2",
                             "write 2", "fsync", "add", "done"}));
}

TEST_F(ShareFault, AWriteThatTakesAPartIsContinued) {
    select("a.jpg", std::string(3 * kBlock, 'x'));
    FaultyCalls::largest_write = 10000;
    run_copy();
    EXPECT_EQ(dir_.read("dest/PHOTO/a.jpg"), std::string(3 * kBlock, 'x'));
}

TEST_F(ShareFault, AFailedWriteKeepsThePartialFile) {
    select("a.jpg", "first");
    select("b.jpg", std::string(3 * kBlock, 'x'));
    select("c.jpg", "third");
    fail("write", 4, ENOSPC);
    run_copy();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FAILED}));
    EXPECT_EQ(dir_.read("dest/PHOTO/b.jpg").size(), 2 * kBlock);
    EXPECT_EQ(copied(), (Names{"a.jpg", "b.jpg"}));
    EXPECT_EQ(script_.added, Names{dest_ + "/PHOTO/a.jpg"});
    EXPECT_EQ(client_.events().back().status.llProgressedTotalSize, 5u);
    EXPECT_TRUE(log_.contains("Wite data to dest file faild."));
    EXPECT_TRUE(log_.contains("Do copy job failed, eResType[5]."));
}

TEST_F(ShareFault, AFailedFlushIsAFailedWrite) {
    for (const int flush : {1, 2, 3}) {
        script_.items.clear();
        select("a.jpg", std::string(33 * kBlock, 'x'));
        fail("fsync", flush, EIO);
        BatchClient client;
        copy_for(client);
        EXPECT_EQ(client.milestones(), Events{QRA_EVENT_BATCH_FAILED}) << flush;
    }
    EXPECT_TRUE(script_.added.empty());
    EXPECT_EQ(copied().size(), 3u);
}

TEST_F(ShareFault, AFailedReadRemovesThePartialFile) {
    select("a.jpg", std::string(3 * kBlock, 'x'));
    fail("read", 2, EIO);
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(copied().empty());
    EXPECT_TRUE(log_.contains("Read data form source file faild."));
    EXPECT_TRUE(log_.contains("Do copy job failed, eResType[4]."));
}

TEST_F(ShareFault, AFailedReadKeepsThePartialFileOfAStopThatKeepsIt) {
    select("a.jpg", std::string(3 * kBlock, 'x'));
    StoppedCopy copy("read", 2, QRA_STOP_TYPE_KEEP, EIO);
    copy.run(param_, list_, client_);
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_EQ(copied(), Names{"a.jpg"});
    EXPECT_EQ(fs::file_size(dest_ + "/PHOTO/a.jpg"), kBlock);
    EXPECT_TRUE(log_.contains("Do copy job failed, eResType[4]."));
}

TEST_F(ShareFault, AFailedReadRemovesThePartialFileOfAStopThatDoesNot) {
    select("a.jpg", std::string(3 * kBlock, 'x'));
    StoppedCopy copy("read", 2, QRA_STOP_TYPE_REMOVE, EIO);
    copy.run(param_, list_, client_);
    EXPECT_TRUE(copied().empty());
}

TEST_F(ShareFault, AStopWithinALargeFileIsObeyedBeforeTheNextBlock) {
    select("a.jpg", std::string(64 * kBlock, 'x'));
    StoppedCopy copy("write", 5, QRA_STOP_TYPE_KEEP);
    copy.run(param_, list_, client_);
    EXPECT_EQ(fs::file_size(dest_ + "/PHOTO/a.jpg"), 5 * kBlock);
    EXPECT_EQ(copy.calls_after(), 1) << "more than the flush of what was copied";
    EXPECT_TRUE(log_.contains("Do copy job failed, eResType[3]."));
}

TEST_F(ShareFault, APartialFileThatCannotBeRemovedIsLogged) {
    select("a.jpg", std::string(kBlock, 'x'));
    FaultyCalls::before = [](const std::string& call, const std::string&) {
        return call == "read" || call == "unlink" ? EIO : 0;
    };
    run_copy();
    EXPECT_EQ(copied(), Names{"a.jpg"});
    EXPECT_TRUE(log_.contains("CQRAFile64::Remove error!"));
}

TEST_F(ShareFault, AReadOnlyTargetFailsTheFile) {
    select("a.jpg", "x");
    fail_on("open", "/dest/PHOTO/a.jpg", EROFS);
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(copied().empty());
}

TEST_F(ShareFault, AFolderThatAnotherJobMakesAtTheSameTimeIsTaken) {
    select("a.jpg", "x");
    FaultyCalls::before = [](const std::string& call, const std::string& path) {
        if (call == "mkdir") {
            fs::create_directory(path);
        }
        return 0;
    };
    run_copy();
    EXPECT_EQ(copied(), Names{"a.jpg"});
    EXPECT_FALSE(fs::exists(dest_ + "/PHOTO001"));
}

TEST_F(ShareFault, ACompanionThatFailsDoesNotFailItsVideo) {
    for (const char* call : {"read", "write", "fsync"}) {
        script_.items.clear();
        script_.added.clear();
        select("movie.avi", "m", QRA_MEDIA_TYPE_VIDEO);
        dir_.write("source/movie.smi", "one");
        dir_.write("source/movie.srt", "two");
        fail(call, 2, EIO);
        BatchClient client;
        copy_for(client);
        EXPECT_EQ(client.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED})) << call;
        EXPECT_EQ(script_.added.size(), 1u) << call;
    }
}

TEST_F(ShareFault, ACompanionThatCannotBeRemovedFailsTheDeleteOfItsVideo) {
    select("movie.avi", "m", QRA_MEDIA_TYPE_VIDEO);
    select("a.jpg", "x");
    for (const char* extension : {".smi", ".srt", ".ttxt"}) {
        dir_.write(std::string("source/movie") + extension, "x");
    }
    fail_on("unlink", ".smi", EACCES);
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_DELETE), QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for_end());
    stop();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_EQ(script_.deleted, Names{"id of movie.avi"});
    EXPECT_TRUE(fs::exists(dir_.path("source/movie.smi")));
    EXPECT_FALSE(fs::exists(dir_.path("source/movie.srt")));
    EXPECT_TRUE(fs::exists(dir_.path("source/a.jpg")));
}

TEST_F(ShareFault, AFileThatCannotBeRemovedKeepsItsRow) {
    select("a.jpg", "x");
    select("movie.avi", "m", QRA_MEDIA_TYPE_VIDEO);
    fail_on("unlink", "", EROFS);
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_DELETE), QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for_end());
    stop();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(script_.deleted.empty());
}

TEST_F(ShareFault, AThreadThatCannotBeMadeLeavesNothingBehind) {
    FaultyCalls::no_threads = true;
    const int entries = CQRAHandlerMgr::GetInstance()->GetCount();
    for (const qra_processor_type_e type : {QRA_PROCESSOR_TYPE_COPY, QRA_PROCESSOR_TYPE_DELETE}) {
        EXPECT_EQ(start(type), QRA_ERROR_THREAD_FAILED);
        EXPECT_EQ(job_, nullptr);
    }
    EXPECT_TRUE(log_.contains("Create share thread[share_copy_thread] faild!!"));
    EXPECT_TRUE(log_.contains("create thread[share_delete_thread] faild!!"));
    EXPECT_EQ(CQRAHandlerMgr::GetInstance()->GetCount(), entries);
}

TEST_F(ShareFault, ProgressComesAtMostOnceInThreeHundredMilliseconds) {
    // Each block takes 100 ms of a clock that the test moves: blocks 1, 4, 7 and 10 are reported.
    select("a.jpg", std::string(10 * kBlock, 'x'));
    std::atomic<long long> now{FaultyCalls::fresh_time()};
    FaultyCalls::clock = [&] { return now.fetch_add(100000); };
    run_copy();
    std::vector<unsigned long long> reported;
    for (const BatchEvent& event : client_.events()) {
        if (event.event == QRA_EVENT_BATCH_PROGRESS) {
            reported.push_back(event.status.llProgressedFileSize / kBlock);
        }
    }
    EXPECT_EQ(reported, (std::vector<unsigned long long>{1, 4, 7, 10}));
}

TEST_F(ShareFault, TwoJobsShareTheirProgressReports) {
    ShareScript other_script;
    CQRAAgentHandle other;
    other.SetAgentInstance(new ScriptedAgent(other_script));
    CQRAHandlerMgr::GetInstance()->Add(other.GetValue());
    BatchClient other_client;
    CQRASendHandle* other_job = nullptr;
    for (int i = 0; i < 20; ++i) {
        select("a.jpg", "x");
    }
    other_script.items = script_.items;
    FaultyCalls::clock = [now = FaultyCalls::fresh_time()] { return now; };  // no time passes

    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_NONE);
    ASSERT_EQ(
        qra_batch_process_v2(QRA_PROCESSOR_TYPE_COPY, &param_, &other, other_client.param(), &other_job),
        QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for_end());
    EXPECT_TRUE(other_client.wait_for_end());
    EXPECT_EQ(qra_stop_batch_process_v2(other_job), QRA_ERROR_NONE);
    CQRAHandlerMgr::GetInstance()->Delete(other.GetValue());

    EXPECT_EQ(client_.count(QRA_EVENT_BATCH_PROGRESS) + other_client.count(QRA_EVENT_BATCH_PROGRESS), 1);
    EXPECT_EQ(client_.count(QRA_EVENT_BATCH_FILE_DONE), 20);
    EXPECT_EQ(other_client.count(QRA_EVENT_BATCH_FILE_DONE), 20);
}

TEST_F(ShareFault, AShrunkSourceIsReadWithPauses) {
    select("a.jpg", "x");
    script_.items.back().numbers["SIZE"] = 2;
    std::atomic<int> reads{0};
    std::atomic<int> pauses{0};
    FaultyCalls::before = [&](const std::string& call, const std::string&) {
        reads += call == "read" ? 1 : 0;
        return 0;
    };
    std::mutex mutex;
    std::condition_variable changed;
    FaultyCalls::on_pause = [&] {
        const std::lock_guard<std::mutex> lock(mutex);
        ++pauses;
        changed.notify_all();
    };
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_NONE);
    {
        std::unique_lock<std::mutex> lock(mutex);
        EXPECT_TRUE(changed.wait_for(lock, std::chrono::seconds(60), [&] { return pauses >= 5; }));
    }
    stop();
    EXPECT_EQ(reads, 1 + pauses);  // the one that gave the byte, and one before each pause
}

namespace {

/// Checks at every event that the status agrees with the events before it.
class StatusCheck {
public:
    StatusCheck(int total, unsigned seed) : total_(total), seed_(seed) {}

    void see(const BatchEvent& event) {
        const qra_share_status_info_s& status = event.status;
        SCOPED_TRACE("seed " + std::to_string(seed_) + ", event " + std::to_string(event.event));
        EXPECT_FALSE(over_);
        EXPECT_EQ(status.nTotalCount, total_);
        EXPECT_LE(status.llProgressedFileSize, status.llCurFileSize);
        if (event.event == QRA_EVENT_BATCH_FILE_DONE) {
            ++done_;
            bytes_ += status.llCurFileSize;
            EXPECT_EQ(status.llProgressedFileSize, status.llCurFileSize);
        }
        EXPECT_EQ(status.nFinishedCount, done_);
        const bool within = event.event == QRA_EVENT_BATCH_PROGRESS;
        EXPECT_EQ(status.llProgressedTotalSize, bytes_ + (within ? status.llProgressedFileSize : 0));
        over_ = event.event == QRA_EVENT_BATCH_FAILED || event.event == QRA_EVENT_BATCH_FINISHED;
        if (event.event == QRA_EVENT_BATCH_FINISHED) {
            EXPECT_EQ(done_, total_);
        }
    }
    int done() const { return done_; }

private:
    const int total_;
    const unsigned seed_;
    int done_ = 0;
    unsigned long long bytes_ = 0;
    bool over_ = false;
};

}  // namespace

TEST_F(ShareFault, TheStatusAddsUpAtEveryEventWhateverFails) {
    constexpr int kTypes[] = {QRA_MEDIA_TYPE_IMAGE, QRA_MEDIA_TYPE_VIDEO, QRA_MEDIA_TYPE_MUSIC};
    const char* const kCalls[] = {"nothing", "open", "read", "write", "fsync"};
    FaultyCalls::real_fsync = false;
    std::atomic<long long> now{FaultyCalls::fresh_time()};
    FaultyCalls::clock = [&] { return now.fetch_add(400000); };  // every progress event gets through
    int failed = 0;
    for (unsigned seed = 1; seed <= 80; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
        script_.items.clear();
        script_.added.clear();
        const unsigned files = below(7);
        for (unsigned i = 0; i < files; ++i) {
            const std::string stem = std::to_string(seed) + "-" + std::to_string(i);
            select(stem + ".bin", std::string(below(3) == 0 ? below(10) : below(300000), 'x'),
                   kTypes[below(3)]);
            if (below(2) == 0) {
                dir_.write("source/" + stem + ".srt", std::string(below(1000), 's'));
            }
        }
        fail(kCalls[below(5)], 1 + static_cast<int>(below(20)), EIO);
        StatusCheck check(static_cast<int>(files), seed);
        BatchClient client;
        client.on_event([&](CQRASendHandle*, const BatchEvent& event) { check.see(event); });
        copy_for(client);
        EXPECT_EQ(script_.added.size(), static_cast<size_t>(check.done())) << seed;
        for (const std::string& path : script_.added) {
            const std::string name = fs::path(path).filename().string();
            EXPECT_EQ(fs::file_size(path), fs::file_size(dir_.path("source/" + name))) << seed << " " << name;
        }
        failed += check.done() < static_cast<int>(files) ? 1 : 0;
    }
    EXPECT_GT(failed, 10);
    EXPECT_LT(failed, 70);
}

namespace {

/// Checks at every event of a delete that the status agrees with what became of the items.
class DeleteCheck {
public:
    DeleteCheck(const ShareScript& script, std::vector<bool> skipped, unsigned seed)
        : script_(script), skipped_(std::move(skipped)), seed_(seed) {}

    void see(const BatchEvent& event) {
        const qra_share_status_info_s& status = event.status;
        SCOPED_TRACE("seed " + std::to_string(seed_) + ", event " + std::to_string(event.event));
        EXPECT_FALSE(over_);
        EXPECT_EQ(status.nTotalCount, static_cast<int>(skipped_.size()));
        EXPECT_EQ(status.llProgressedTotalSize, 0u);
        switch (event.event) {
            case QRA_EVENT_BATCH_FILE_DONE:
                skip_to(status.nFinishedCount - 1);
                finished_ = status.nFinishedCount;
                EXPECT_FALSE(is_there(next_));
                EXPECT_EQ(script_.deleted.back(), script_.items[next_].texts.at("ID_QRA"));
                ++next_;
                break;
            case QRA_EVENT_BATCH_FAILED:
                skip_to(status.nFinishedCount);
                expect_untouched(next_ + 1);
                over_ = failed_ = true;
                break;
            default:
                EXPECT_EQ(event.event, QRA_EVENT_BATCH_FINISHED);
                EXPECT_EQ(status.nFinishedCount, finished_);
                skip_to(status.nTotalCount);
                over_ = true;
        }
    }
    bool failed() const { return failed_; }

private:
    bool is_there(size_t item) const { return fs::exists(script_.items[item].texts.at("FILE_PATH")); }
    /// The items up to that one were left out without a word.
    void skip_to(int item) {
        ASSERT_LE(next_, static_cast<size_t>(item));
        ASSERT_LE(static_cast<size_t>(item), skipped_.size());
        for (; next_ < static_cast<size_t>(item); ++next_) {
            EXPECT_TRUE(skipped_[next_] && is_there(next_)) << next_;
        }
    }
    void expect_untouched(size_t first) const {
        for (size_t item = first; item < skipped_.size(); ++item) {
            EXPECT_TRUE(is_there(item)) << item;
        }
    }

    const ShareScript& script_;
    const std::vector<bool> skipped_;
    const unsigned seed_;
    size_t next_ = 0;
    int finished_ = 0;
    bool over_ = false;
    bool failed_ = false;
};

}  // namespace

TEST_F(ShareFault, TheStatusOfADeleteAddsUpAtEveryEventWhateverFails) {
    int failed = 0;
    for (unsigned seed = 1; seed <= 60; ++seed) {
        std::mt19937 random(seed);
        const auto below = [&](unsigned limit) { return static_cast<unsigned>(random() % limit); };
        script_.items.clear();
        script_.deleted.clear();
        std::vector<bool> skipped;
        const unsigned files = below(7);
        for (unsigned i = 0; i < files; ++i) {
            const std::string stem = std::to_string(seed) + "-" + std::to_string(i);
            const unsigned kind = below(4);
            if (kind == 0) {
                select(stem + ".jpg", "x");
            } else if (kind == 1) {
                select(stem + ".avi", "x", QRA_MEDIA_TYPE_VIDEO);
                dir_.write("source/" + stem + ".srt", "s");
            } else {
                dir_.write("source/" + stem + ".inf",
                           std::string("[recording]\nfinished=") + (kind == 2 ? "true" : "false") + "\n");
                select(stem + ".srf", "x", QRA_MEDIA_TYPE_PVR);
            }
            skipped.push_back(kind == 3);
        }
        fail("unlink", 1 + static_cast<int>(below(8)), EACCES);
        DeleteCheck check(script_, skipped, seed);
        BatchClient client;
        client.on_event([&](CQRASendHandle*, const BatchEvent& event) { check.see(event); });
        run_for(client, QRA_PROCESSOR_TYPE_DELETE);
        failed += check.failed() ? 1 : 0;
    }
    EXPECT_GT(failed, 5);
    EXPECT_LT(failed, 55);
}
