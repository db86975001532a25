#include "libqra-agent/share/src/qra_delete_thread.h"

#include "tests/unit/share/share_fixture.h"

namespace fs = std::filesystem;

namespace {

using Events = std::vector<qra_event_e>;
using Names = std::vector<std::string>;

class DeleteJob : public ShareTest {
protected:
    void run_delete() {
        ASSERT_EQ(start(QRA_PROCESSOR_TYPE_DELETE), QRA_ERROR_NONE);
        EXPECT_TRUE(client_.wait_for_end());
        stop();
    }
    std::string select_recording(const std::string& stem, bool finished) {
        dir_.write("source/" + stem + ".inf",
                   std::string("[recording]\nfinished=") + (finished ? "true" : "false") + "\n");
        return select(stem + ".srf", "stream", QRA_MEDIA_TYPE_PVR);
    }
    bool is_there(const std::string& name) const { return fs::exists(dir_.path("source/" + name)); }
};

}  // namespace

TEST_F(DeleteJob, RemovesFilesAndTheirRows) {
    select("a.jpg", "x");
    select("b.mp3", "y", QRA_MEDIA_TYPE_MUSIC);
    run_delete();
    EXPECT_EQ(client_.milestones(),
              (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_FALSE(is_there("a.jpg"));
    EXPECT_FALSE(is_there("b.mp3"));
    EXPECT_EQ(script_.deleted, (Names{"id of a.jpg", "id of b.mp3"}));
    EXPECT_EQ(client_.events().back().status.llProgressedTotalSize, 0u);
}

TEST_F(DeleteJob, AFileThatIsGoneEndsTheJob) {
    const std::string path = select("a.jpg", "x");
    fs::remove(path);
    select("b.jpg", "y");
    run_delete();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("file [" + path + "] not exists."));
    EXPECT_TRUE(is_there("b.jpg"));
    EXPECT_TRUE(script_.deleted.empty());
}

TEST_F(DeleteJob, ADirectoryIsNotRemoved) {
    select("a.jpg", "x");
    script_.items.back().texts["FILE_PATH"] = dir_.path("source");
    run_delete();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(is_there("a.jpg"));
}

TEST_F(DeleteJob, ADatabaseThatFailsDoesNotFailTheJob) {
    select("a.jpg", "x");
    select("b.avi", "x", QRA_MEDIA_TYPE_VIDEO);
    script_.delete_works = false;
    run_delete();
    EXPECT_EQ(client_.milestones().back(), QRA_EVENT_BATCH_FINISHED);
    EXPECT_EQ(log_.count("m_DeleteFromDB failed."), 2);
    EXPECT_FALSE(is_there("a.jpg"));
}

TEST_F(DeleteJob, AVideoTakesItsCompanionsAlong) {
    for (const int type : {QRA_MEDIA_TYPE_VIDEO, QRA_MEDIA_TYPE_VIDEO_EXT}) {
        const std::string stem = std::to_string(type);
        select(stem + ".avi", "x", type);
        for (const char* extension : {".smi", ".srt", ".ttxt", ".jpg"}) {
            dir_.write("source/" + stem + extension, "x");
        }
    }
    run_delete();
    EXPECT_EQ(client_.milestones().back(), QRA_EVENT_BATCH_FINISHED);
    for (const char* extension : {".avi", ".smi", ".srt", ".ttxt"}) {
        EXPECT_FALSE(is_there(std::string("3") + extension)) << extension;
        EXPECT_FALSE(is_there(std::string("16") + extension)) << extension;
    }
    EXPECT_TRUE(is_there("3.jpg"));
}

TEST_F(DeleteJob, AVideoThatIsGoneStillLosesItsCompanions) {
    fs::remove(select("movie.avi", "x", QRA_MEDIA_TYPE_VIDEO));
    dir_.write("source/movie.srt", "x");
    run_delete();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_FALSE(is_there("movie.srt"));
    EXPECT_TRUE(script_.deleted.empty());
}

TEST_F(DeleteJob, RemovesARecordingWithItsCompanions) {
    select_recording("news", true);
    for (const char* extension : {".ss", ".mdb", ".mta", ".cip"}) {
        dir_.write(std::string("source/news") + extension, "x");
    }
    run_delete();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_TRUE(fs::is_empty(dir_.path("source")));
    EXPECT_EQ(script_.deleted, Names{"id of news.srf"});
}

TEST_F(DeleteJob, SkipsARecordingInProgressAndGoesOn) {
    const std::string path = select_recording("news", false);
    select("a.jpg", "x");
    run_delete();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_TRUE(is_there("news.srf"));
    EXPECT_FALSE(is_there("a.jpg"));
    EXPECT_TRUE(log_.contains("File [" + path + "] is recording, can not be delete !"));
    EXPECT_TRUE(log_.contains("Igore file[" + path + "]."));
}

TEST_F(DeleteJob, ARecordingThatTheServiceDoesNotKnowEndsTheJob) {
    const std::string path = select("news.srf", "stream", QRA_MEDIA_TYPE_PVR);
    run_delete();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("Get pvr file info failed."));
    EXPECT_TRUE(log_.contains("delete File[" + path + "] faild!!"));
    EXPECT_TRUE(is_there("news.srf"));
}

TEST_F(DeleteJob, ARecordingThatIsGoneLosesItsRow) {
    fs::remove(select_recording("news", true));
    run_delete();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_EQ(script_.deleted, Names{"id of news.srf"});
}
