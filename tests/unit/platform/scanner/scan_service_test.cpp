#include "platform/media-content/host/scanner/scan_service.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <future>
#include <optional>

#include "platform/media-content/host/scanner/scan_lock.h"
#include "tests/fakes/last_act.h"
#include "tests/unit/platform/scanner/scanned_drive.h"

namespace media_content {
namespace {

/// Can keep scans of the whole drive waiting, as one in another process does.
class ScanServiceTest : public ScannedDrive {
protected:
    ScanServiceTest() { put("a.jpg"); }

    void hold_scans() {
        lock_.emplace(database().path() + ".scan-lock");
        ASSERT_TRUE(lock_->take(drive().id + "*", never_));
    }
    void release_scans() { lock_.reset(); }

    int start(ScanAnswer& answer, bool recursive = true) {
        return media_content_scan_folder_v2(drive_path().c_str(), recursive, ScanAnswer::on_report, &answer);
    }
    int cancel() { return media_content_cancel_scan_folder(drive_path().c_str()); }

    const std::atomic<bool> never_{false};
    std::optional<ScanLock> lock_;
};

TEST_F(ScanServiceTest, AnswersOnceOnAThreadOfItsOwn) {
    struct Report {
        std::mutex caller;  // held by the caller during the call, as the agent does
        ScanAnswer answer;
        std::thread::id thread;
    } report;
    {
        const std::lock_guard<std::mutex> lock(report.caller);
        ASSERT_EQ(media_content_scan_folder_v2(
                      drive_path().c_str(), true,
                      [](int error, int phase, void* data) {
                          auto* at = static_cast<Report*>(data);
                          const std::lock_guard<std::mutex> held(at->caller);
                          at->thread = std::this_thread::get_id();
                          ScanAnswer::on_report(error, phase, &at->answer);
                      },
                      &report),
                  0);
    }
    EXPECT_EQ(report.answer.wait(), 0);
    EXPECT_TRUE(report.answer.wait_for_phase(MEDIA_SCAN_PHASE_STARTED));
    EXPECT_TRUE(report.answer.wait_for_phase(MEDIA_SCAN_PHASE_PROGRESS));
    const std::lock_guard<std::mutex> lock(report.caller);
    EXPECT_NE(report.thread, std::this_thread::get_id());
    EXPECT_EQ(report.answer.finals(), 1);
}

TEST_F(ScanServiceTest, NeedsNoCallback) {
    EXPECT_EQ(media_content_scan_folder_v2(drive_path().c_str(), true, nullptr, nullptr), 0);
    ScanAnswer joined;
    EXPECT_EQ(start(joined), 0);
    EXPECT_EQ(joined.wait(), 0);
}

TEST_F(ScanServiceTest, RefusesWhatItCannotStart) {
    ScanAnswer answer;
    EXPECT_EQ(media_content_scan_folder_v2(nullptr, true, ScanAnswer::on_report, &answer),
              MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(media_content_scan_folder_v2("/nowhere", true, ScanAnswer::on_report, &answer),
              MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(media_content_scan_folder_v2("", true, ScanAnswer::on_report, &answer),
              MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(
        media_content_scan_folder_v2(std::string(4000, 'x').c_str(), true, ScanAnswer::on_report, &answer),
        MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(media_content_admin_scan(nullptr, true, nullptr, nullptr),
              MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(media_content_admin_scan("/nowhere", true, nullptr, nullptr), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(answer.finals(), 0);
}

TEST_F(ScanServiceTest, AnswersWithAnErrorForAPathThatIsNoFolder) {
    EXPECT_EQ(scan("/none"), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(scan("/a.jpg"), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(scan("/" + std::string(300, 'x')), MEDIA_CONTENT_ERROR_NOT_FOUND);
}

TEST_F(ScanServiceTest, TakesTheAttachedDirectoryItselfToo) {
    ScanAnswer answer;
    ASSERT_EQ(media_content_scan_folder_v2(files().c_str(), true, ScanAnswer::on_report, &answer), 0);
    EXPECT_EQ(answer.wait(), 0);
    EXPECT_EQ(media_count(), 1);
}

TEST_F(ScanServiceTest, ScansOnePlaceOnceForAllWhoAsk) {
    hold_scans();
    ScanAnswer first, second;
    ASSERT_EQ(start(first), 0);
    const auto run = ScanService::instance().start(drive_path(), true, {});
    ASSERT_EQ(start(second), 0);
    EXPECT_EQ(ScanService::instance().start(files(), true, {}), run);
    EXPECT_NE(ScanService::instance().start(drive_path(), false, {}), run);
    release_scans();
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(second.wait(), 0);
    EXPECT_EQ(first.finals() + second.finals(), 2);
}

TEST_F(ScanServiceTest, WaitsForTheScanOfAnotherProcess) {
    hold_scans();
    ScanAnswer answer;
    ASSERT_EQ(start(answer), 0);
    ASSERT_TRUE(answer.wait_for_phase(MEDIA_SCAN_PHASE_STARTED));
    EXPECT_EQ(answer.finals(), 0);
    EXPECT_EQ(media_count(), 0);
    release_scans();
    EXPECT_EQ(answer.wait(), 0);
    EXPECT_EQ(media_count(), 1);
}

TEST_F(ScanServiceTest, ACancelledScanAnswersWithAnErrorAtOnce) {
    put_many(60, 40);
    ScanAnswer answer;
    answer.hold(true);
    ASSERT_EQ(start(answer), 0);
    ASSERT_TRUE(answer.wait_for_phase(MEDIA_SCAN_PHASE_PROGRESS));
    const int64_t written = media_count();
    ASSERT_EQ(cancel(), 0);
    answer.hold(false);
    EXPECT_EQ(answer.wait(), MEDIA_CONTENT_ERROR_CANCELLED);
    EXPECT_EQ(answer.reports(MEDIA_SCAN_PHASE_PROGRESS), 1);
    EXPECT_EQ(media_count(), written);
    EXPECT_EQ(answer.finals(), 1);
    EXPECT_NE(storage_status(), MEDIA_SCAN_STATUS_FULLY_SCANNED);
    EXPECT_EQ(scan(), 0);
    EXPECT_EQ(media_count(), 60 * 40 + 1);
    EXPECT_EQ(storage_status(), MEDIA_SCAN_STATUS_FULLY_SCANNED);
}

TEST_F(ScanServiceTest, AScanThatWaitsCanBeCancelled) {
    hold_scans();
    ScanAnswer answer;
    ASSERT_EQ(start(answer), 0);
    ASSERT_EQ(cancel(), 0);
    EXPECT_EQ(answer.wait(), MEDIA_CONTENT_ERROR_CANCELLED);
}

TEST_F(ScanServiceTest, AScanThatSomebodyStillWantsGoesOn) {
    hold_scans();
    ScanAnswer first, second;
    ASSERT_EQ(start(first), 0);
    ASSERT_EQ(start(second), 0);
    EXPECT_EQ(cancel(), 0);
    release_scans();
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(second.wait(), 0);
    EXPECT_EQ(media_count(), 1);
}

TEST_F(ScanServiceTest, AScanThatNobodyWantsAnyMoreStops) {
    hold_scans();
    ScanAnswer first, second;
    ASSERT_EQ(start(first), 0);
    ASSERT_EQ(start(second), 0);
    EXPECT_EQ(cancel(), 0);
    EXPECT_EQ(cancel(), 0);
    EXPECT_EQ(cancel(), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(first.wait(), MEDIA_CONTENT_ERROR_CANCELLED);
    EXPECT_EQ(second.wait(), MEDIA_CONTENT_ERROR_CANCELLED);
}

TEST_F(ScanServiceTest, ARequestAfterACancelGetsAScanOfItsOwn) {
    hold_scans();
    ScanAnswer first, second;
    ASSERT_EQ(start(first), 0);
    EXPECT_EQ(cancel(), 0);
    ASSERT_EQ(start(second), 0);
    release_scans();
    EXPECT_EQ(first.wait(), MEDIA_CONTENT_ERROR_CANCELLED);
    EXPECT_EQ(second.wait(), 0);
}

TEST_F(ScanServiceTest, WithoutAScanThereIsNothingToCancel) {
    EXPECT_EQ(cancel(), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(media_content_admin_cancel_scan("/nowhere"), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(media_content_cancel_scan_folder(nullptr), MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
    ASSERT_EQ(scan(), 0);
    EXPECT_EQ(cancel(), MEDIA_CONTENT_ERROR_NOT_FOUND);
}

TEST_F(ScanServiceTest, ACallbackMayScanAndCancel) {
    struct Chain {
        std::string path;
        ScanAnswer first, second;
    } chain{drive_path(), {}, {}};
    ASSERT_EQ(media_content_scan_folder_v2(
                  drive_path().c_str(), true,
                  [](int error, int phase, void* data) {
                      auto* at = static_cast<Chain*>(data);
                      if (phase == MEDIA_SCAN_PHASE_FINISHED) {
                          media_content_scan_folder_v2(at->path.c_str(), false, ScanAnswer::on_report,
                                                       &at->second);
                          media_content_cancel_scan_folder("/nowhere");
                      }
                      ScanAnswer::on_report(error, phase, &at->first);
                  },
                  &chain),
              0);
    EXPECT_EQ(chain.first.wait(), 0);
    EXPECT_EQ(chain.second.wait(), 0);
}

TEST_F(ScanServiceTest, GoesOnAfterTheLastDisconnect) {
    hold_scans();
    ScanAnswer answer;
    ASSERT_EQ(start(answer), 0);
    ASSERT_EQ(media_content_disconnect(), 0);
    ScanAnswer refused;
    EXPECT_EQ(start(refused), MEDIA_CONTENT_ERROR_NOT_CONNECTED);
    release_scans();
    EXPECT_EQ(answer.wait(), 0);
    EXPECT_EQ(media_count(), 1);
}

TEST_F(ScanServiceTest, ShowsProgressOnTheCallersThreadAndOnceAtTheEnd) {
    struct Shown {
        std::thread::id thread = std::this_thread::get_id();
        int wrong_thread = 0;
        size_t last_seen = 0, last_done = 0;
        std::string path;
    } shown;
    put_many(4, 10);
    ASSERT_EQ(media_content_admin_scan(
                  drive_path().c_str(), true,
                  [](const media_content_scan_progress_s* progress, void* data) {
                      auto* at = static_cast<Shown*>(data);
                      at->wrong_thread += at->thread == std::this_thread::get_id() ? 0 : 1;
                      at->last_seen = progress->files_seen;
                      at->last_done = progress->files_done;
                      at->path = progress->current_path;
                      return true;
                  },
                  &shown),
              0);
    EXPECT_EQ(shown.wrong_thread, 0);
    EXPECT_EQ(shown.last_seen, 41U);
    EXPECT_EQ(shown.last_done, 41U);
    EXPECT_EQ(shown.path.find(drive_path() + "/folder"), 0U);
}

TEST_F(ScanServiceTest, AProgressCallbackCanCancel) {
    hold_scans();
    EXPECT_EQ(media_content_admin_scan(
                  drive_path().c_str(), true,
                  [](const media_content_scan_progress_s*, void*) { return false; }, nullptr),
              MEDIA_CONTENT_ERROR_CANCELLED);
    release_scans();
    EXPECT_EQ(scan(), 0);
}

TEST_F(ScanServiceTest, ManyRequestsAndCancelsAreAnsweredOnceEach) {
    put_many(4, 10);
    constexpr int kRounds = 60;
    std::vector<std::unique_ptr<ScanAnswer>> answers;
    for (int i = 0; i < kRounds; ++i) {
        answers.push_back(std::make_unique<ScanAnswer>());
        ASSERT_EQ(start(*answers.back(), i % 3 != 0), 0);
        if (i % 4 == 0) {
            cancel();
        }
    }
    for (const auto& answer : answers) {
        const int error = answer->wait();
        EXPECT_TRUE(error == 0 || error == MEDIA_CONTENT_ERROR_CANCELLED) << error;
    }
    for (const auto& answer : answers) {
        EXPECT_EQ(answer->finals(), 1);
    }
    EXPECT_EQ(scan(), 0);
    EXPECT_EQ(media_count(), 41);
}

TEST_F(ScanServiceTest, ScansOfTheSameFilesAtTheSameTimeAgree) {
    put_many(10, 20);
    std::vector<std::future<int>> scans;
    for (int i = 0; i < 8; ++i) {
        const std::string place = i < 4 ? "" : "/folder" + std::to_string(i);
        scans.push_back(std::async(std::launch::async, [this, place, i] { return scan(place, i % 2 == 0); }));
    }
    for (auto& one : scans) {
        EXPECT_EQ(one.get(), 0);
    }
    EXPECT_EQ(media_count(), 201);
    EXPECT_EQ(number("SELECT count(DISTINCT folder || '/' || name) FROM media"), 201);
}

using ScanServiceDeathTest = ScanServiceTest;

TEST_F(ScanServiceDeathTest, AScanStillWritesWhileTheProcessEnds) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    ASSERT_EQ(scan(), 0);
    std::function<void()> scan_again = [this] {
        put("b.jpg");
        const int error = scan();
        std::filesystem::remove_all(root());
        end_at_once(error == 0 ? 0 : 2);
    };

    EXPECT_EXIT(
        {
            g_last_act = &scan_again;
            std::exit(1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace media_content
