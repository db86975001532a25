#include "libqra-agent/share/src/qra_lock_thread.h"

#include "svc_pvr.h"
#include "tests/unit/share/share_fixture.h"

namespace {

using Events = std::vector<qra_event_e>;
using Settings = std::vector<std::pair<std::string, int>>;

class LockJob : public ShareTest {
protected:
    std::string select_recording(const std::string& stem, bool locked) {
        dir_.write("source/" + stem + ".inf",
                   std::string("[recording]\nprogram_title=The News\nfinished=true\ncontent_lock=") +
                       (locked ? "true" : "false") + "\nunknown=kept\n");
        return select(stem + ".srf", "stream", QRA_MEDIA_TYPE_PVR);
    }
    void run_lock(bool lock) {
        param_.lock = lock;
        run(std::make_unique<CQRALockUnLockThread>());
    }
    std::string info_of(const std::string& stem) const { return dir_.read("source/" + stem + ".inf"); }
};

}  // namespace

TEST_F(LockJob, LocksInTheInfoFileAndInTheDatabase) {
    select_recording("news", false);
    run_lock(true);
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_NE(info_of("news").find("content_lock=true"), std::string::npos) << info_of("news");
    EXPECT_NE(info_of("news").find("program_title=The News"), std::string::npos);
    EXPECT_NE(info_of("news").find("unknown=kept"), std::string::npos);
    EXPECT_EQ(script_.set, (Settings{{"CONTENT_LOCK", 1}}));
    EXPECT_TRUE(log_.contains("Lock status: original[0], wanted[1]."));
    EXPECT_TRUE(log_.contains("Origin pvr[" + dir_.path("source/news.srf") + "]."));
}

TEST_F(LockJob, Unlocks) {
    select_recording("news", true);
    run_lock(false);
    EXPECT_NE(info_of("news").find("content_lock=false"), std::string::npos) << info_of("news");
    EXPECT_EQ(script_.set, (Settings{{"CONTENT_LOCK", 0}}));
}

TEST_F(LockJob, ChangesNothingWhereTheLockStandsSoAlready) {
    select_recording("news", true);
    const std::string before = info_of("news");
    run_lock(true);
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_EQ(info_of("news"), before);
    EXPECT_TRUE(script_.set.empty());
    EXPECT_TRUE(log_.contains("Need not do lock/unlock operation!!"));
}

TEST_F(LockJob, LocksInTheDatabaseWhereThereIsNoInfoFile) {
    const std::string path = select("news.srf", "stream", QRA_MEDIA_TYPE_PVR);
    script_.items.back().texts["TITLE"] = std::string(300, 't');
    script_.items.back().numbers["DURATION"] = 1000;
    run_lock(true);
    EXPECT_EQ(client_.milestones().back(), QRA_EVENT_BATCH_FINISHED);
    EXPECT_EQ(script_.set, (Settings{{"CONTENT_LOCK", 1}}));
    EXPECT_TRUE(log_.contains("pvr info file[" + dir_.path("source/news.inf") + "] not exists."));
    EXPECT_FALSE(std::filesystem::exists(dir_.path("source/news.inf")));
}

TEST_F(LockJob, TrustsTheDatabaseWhereThereIsNoInfoFile) {
    select("news.srf", "stream", QRA_MEDIA_TYPE_PVR);
    script_.items.back().numbers["CONTENT_LOCK"] = 1;
    run_lock(true);
    EXPECT_TRUE(log_.contains("Need not do lock/unlock operation!!"));
    EXPECT_TRUE(script_.set.empty());
}

TEST_F(LockJob, ADatabaseThatRefusesTheLockEndsTheJob) {
    const std::string path = select_recording("news", false);
    script_.set_works = false;
    run_lock(true);
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("Set pvr info in db failed"));
    EXPECT_TRUE(log_.contains("m_UpdateFileLock [" + path + "] failed."));
    EXPECT_TRUE(log_.contains("m_AddLockUnlockFile() faild!!"));
}

TEST_F(LockJob, AnInfoFileThatCannotBeReadEndsTheJob) {
    select("news.srf", "stream", QRA_MEDIA_TYPE_PVR);
    dir_.write("source/news.inf", "not a key file");
    run_lock(true);
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("Get pvr file info failed."));
    EXPECT_TRUE(script_.set.empty());
    EXPECT_EQ(info_of("news"), "not a key file");
}

TEST_F(LockJob, NeedsAListOfThisProcess) {
    CQRASendHandle handle;
    CQRASendHandle* out = &handle;
    CQRALockUnLockThread job;
    EXPECT_EQ(job.Excute(nullptr, list_, client_.param(), &out), QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log_.contains("InitShareHandler() faild."));
}
