// Copies to and from drives that are full, read-only, or pulled. The drives are file systems in memory.

#include <sys/mount.h>

#include "tests/fakes/own_mounts.h"
#include "tests/unit/share/faulty_calls.h"
#include "tests/unit/share/share_fixture.h"

namespace fs = std::filesystem;

namespace {

using Events = std::vector<qra_event_e>;
using Names = std::vector<std::string>;

constexpr size_t kBlock = 65536;

class ShareMount : public ShareTest {
protected:
    void SetUp() override {
        if (!have_own_mounts()) {
            GTEST_SKIP() << "this system lets nobody mount";
        }
    }
    ~ShareMount() override {
        stop();
        FaultyCalls::reset();
        for (const std::string& point : points_) {
            umount2(point.c_str(), MNT_DETACH);
        }
    }

    void plug_in(const std::string& point, const char* options) {
        ASSERT_TRUE(mount_memory(point, options)) << point;
        points_.push_back(point);
    }
    /// Pulls a drive when the job reports its first progress.
    void pull_in_the_middle(const std::string& point) {
        FaultyCalls::clock = [now = FaultyCalls::fresh_time()] {
            return now;
        };  // lets the first report through
        client_.on_event([point, pulled = false](CQRASendHandle*, const BatchEvent& event) mutable {
            if (event.event == QRA_EVENT_BATCH_PROGRESS && !pulled) {
                pulled = true;
                EXPECT_EQ(umount2(point.c_str(), MNT_DETACH), 0);
            }
        });
    }

private:
    Names points_;
};

}  // namespace

TEST_F(ShareMount, AFullDiskKeepsWhatItTookAndEndsTheJob) {
    plug_in(dest_, "size=1m");
    select("a.jpg", std::string(6 * kBlock, 'a'));
    select("b.jpg", std::string(20 * kBlock, 'b'));
    select("c.jpg", "c");
    run_copy();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FAILED}));
    EXPECT_EQ(copied(), (Names{"a.jpg", "b.jpg"}));
    EXPECT_EQ(dir_.read("dest/PHOTO/a.jpg"), std::string(6 * kBlock, 'a'));
    const std::string partial = dir_.read("dest/PHOTO/b.jpg");
    EXPECT_GE(partial.size(), 9 * kBlock);
    EXPECT_EQ(partial, std::string(partial.size(), 'b'));
    EXPECT_EQ(script_.added, Names{dest_ + "/PHOTO/a.jpg"});
    EXPECT_EQ(client_.events().back().status.llProgressedTotalSize, 6 * kBlock);
}

TEST_F(ShareMount, ADiskWithoutRoomForAFileTakesNone) {
    plug_in(dest_, "size=1m,nr_inodes=3");  // the root, the folder and one file
    select("a.jpg", "a");
    select("b.jpg", "b");
    run_copy();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FAILED}));
    EXPECT_EQ(copied(), Names{"a.jpg"});
}

TEST_F(ShareMount, AReadOnlyTargetTakesNothing) {
    for (const bool has_folder : {false, true}) {
        plug_in(dest_, "size=1m");
        if (has_folder) {
            fs::create_directories(dest_ + "/PHOTO");
        }
        ASSERT_TRUE(make_mount_read_only(dest_));
        script_.items.clear();
        select("a.jpg", "a");
        BatchClient client;
        CQRASendHandle* job = nullptr;
        ASSERT_EQ(qra_batch_process_v2(QRA_PROCESSOR_TYPE_COPY, &param_, list_, client.param(), &job),
                  QRA_ERROR_NONE);
        EXPECT_TRUE(client.wait_for_end());
        EXPECT_EQ(qra_stop_batch_process_v2(job), QRA_ERROR_NONE);
        EXPECT_EQ(client.milestones(), Events{QRA_EVENT_BATCH_FAILED}) << has_folder;
        EXPECT_TRUE(copied().empty());
        ASSERT_EQ(umount2(dest_.c_str(), MNT_DETACH), 0);
    }
}

TEST_F(ShareMount, AReadOnlySourceIsNotDeleted) {
    const std::string drive = dir_.path("source");
    plug_in(drive, "size=1m");
    select("a.jpg", "a");
    select("movie.avi", "m", QRA_MEDIA_TYPE_VIDEO);
    ASSERT_TRUE(make_mount_read_only(drive));
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_DELETE), QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for_end());
    stop();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(script_.deleted.empty());
    EXPECT_TRUE(fs::exists(drive + "/a.jpg"));
}

TEST_F(ShareMount, NothingIsReportedOrWrittenWhereAPulledTargetWas) {
    plug_in(dest_, "size=8m");
    select("a.jpg", std::string(4 * kBlock, 'a'));
    select("b.jpg", "b");
    pull_in_the_middle(dest_);
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_EQ(client_.events().back().status.nFinishedCount, 0);
    EXPECT_EQ(client_.events().back().status.llProgressedTotalSize, 0u);
    EXPECT_TRUE(script_.added.empty());
    EXPECT_TRUE(fs::is_empty(dest_));
    EXPECT_TRUE(log_.contains("The destination[" + dest_ + "] is gone."));
}

TEST_F(ShareMount, ATargetThatIsPulledBetweenTwoFilesTakesNoMore) {
    plug_in(dest_, "size=8m");
    select("a.jpg", "a");
    select("b.jpg", "b");
    client_.on_event([this](CQRASendHandle*, const BatchEvent& event) {
        if (event.event == QRA_EVENT_BATCH_FILE_DONE) {
            EXPECT_EQ(umount2(dest_.c_str(), MNT_DETACH), 0);
        }
    });
    run_copy();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FAILED}));
    EXPECT_TRUE(fs::is_empty(dest_));
}

TEST_F(ShareMount, ASourceThatIsPulledFailsTheNextFile) {
    const std::string drive = dir_.path("source");
    plug_in(drive, "size=8m");
    select("a.jpg", std::string(4 * kBlock, 'a'));
    select("b.jpg", "b");
    pull_in_the_middle(drive);
    run_copy();
    // The file that is open can be read to its end.
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FAILED}));
    EXPECT_EQ(copied(), Names{"a.jpg"});
    EXPECT_EQ(dir_.read("dest/PHOTO/a.jpg"), std::string(4 * kBlock, 'a'));
}
