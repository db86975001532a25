#include "libqra-agent/share/src/qra_playlist_threads.h"

#include <cstdlib>
#include <filesystem>

#include "libqra-agent/playlist/m3u_playlist.h"
#include "libqra-agent/playlist/qra_playlist_manager.h"
#include "tests/unit/share/share_fixture.h"

namespace {

using Events = std::vector<qra_event_e>;

/// A drive with the playlist "Blues", which has room for three items, and the playlist "Rock".
class PlaylistJob : public ShareTest {
protected:
    PlaylistJob() {
        setenv("QRA_MEDIA_ROOT", dir_.path().c_str(), 1);
        std::filesystem::create_directories(drive_);
        dir_.write("USBDriveA/1.m3u", "#EXT-X-COUNT:3\n#EXT-X-NAME:Blues\n");
        dir_.write("USBDriveA/2.m3u", "#EXT-X-NAME:Rock\n");
        EXPECT_EQ(manager_->Create(drive_), QRA_ERROR_NONE);
        param_.mount_path = drive_.data();
        param_.playlist_name = name_.data();
    }

    std::shared_ptr<M3UPlaylist> blues() {
        std::shared_ptr<M3UPlaylist> playlist;
        EXPECT_EQ(manager_->GetPlayList(drive_, "Blues", &playlist), QRA_ERROR_NONE);
        return playlist;
    }

    /// What Excute() says of a job that cannot start.
    template <class Job>
    qra_error_code_e refused() {
        Job job;
        CQRASendHandle handle;
        CQRASendHandle* out = &handle;
        const qra_error_code_e code = job.Excute(&param_, list_, client_.param(), &out);
        handle.SetShareThread(nullptr);
        EXPECT_FALSE(job.FlagCreate()) << "a thread was started";
        return code;
    }

    CQRAPlaylistManager* manager_ = CQRAPlaylistManager::GetInstance();
    std::string drive_ = dir_.path("USBDriveA");
    std::string name_ = "Blues";
};

TEST_F(PlaylistJob, AddsTheSelectedItemsWithTheirValues) {
    const std::string path = select("a.mp3", "music", QRA_MEDIA_TYPE_MUSIC);
    script_.items.back().texts["ARTIST"] = "Band";
    script_.items.back().numbers["DURATION"] = 215000;
    select("b.mp3", "more", QRA_MEDIA_TYPE_MUSIC);
    run(std::make_unique<CQRAPlayListItemAddThread>());
    EXPECT_EQ(client_.milestones(),
              (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    ASSERT_EQ(blues()->GetItemCount(), 2);
    const CQRAPlayListItem& item = *blues()->GetItem(0);
    EXPECT_EQ(item.m_strMediaId, "id of a.mp3");
    EXPECT_EQ(item.m_strPath, path);
    EXPECT_EQ(item.m_strName, "a.mp3");
    EXPECT_EQ(item.m_strArtist, "Band");
    EXPECT_EQ(item.m_nDuration, 215000U);
    EXPECT_EQ(item.m_nSize, 5);
    EXPECT_EQ(item.m_nMediaType, QRA_MEDIA_TYPE_MUSIC);
    EXPECT_EQ(dir_.read("USBDriveA/1.m3u"), "#EXT-X-COUNT:3\n#EXT-X-NAME:Blues\n") << "saved by the job";
}

TEST_F(PlaylistJob, AFullPlaylistEndsTheJob) {
    for (const char* name : {"a", "b", "c", "d", "e"})
        select(name, "x", QRA_MEDIA_TYPE_MUSIC);
    run(std::make_unique<CQRAPlayListItemAddThread>());
    EXPECT_EQ(client_.milestones().back(), QRA_EVENT_BATCH_FAILED);
    EXPECT_EQ(client_.count(QRA_EVENT_BATCH_FILE_DONE), 3);
    EXPECT_EQ(blues()->GetItemCount(), 3);
    EXPECT_TRUE(log_.contains("Add item[" + dir_.path("source/d") + "] to playlist faild!!"));
}

TEST_F(PlaylistJob, DeletesTheSelectedItemsByTheirIds) {
    for (const char* name : {"a", "b", "c"})
        select(name, "x", QRA_MEDIA_TYPE_MUSIC);
    run(std::make_unique<CQRAPlayListItemAddThread>());
    script_.items.erase(script_.items.begin() + 1);
    BatchClient second;
    CQRASendHandle handle;
    CQRASendHandle* out = &handle;
    auto job = std::make_unique<CQRAPlayListItemDeleteThread>();
    ASSERT_EQ(job->Excute(&param_, list_, second.param(), &out), QRA_ERROR_NONE);
    job.release();  // the handle's from here on
    EXPECT_TRUE(second.wait_for(QRA_EVENT_BATCH_FINISHED));
    ASSERT_EQ(blues()->GetItemCount(), 1);
    EXPECT_EQ(blues()->GetItem(0)->m_strMediaId, "id of b");
}

TEST_F(PlaylistJob, AnItemThatThePlaylistDoesNotHaveEndsTheJob) {
    const std::string path = select("a", "x", QRA_MEDIA_TYPE_MUSIC);
    run(std::make_unique<CQRAPlayListItemDeleteThread>());
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("Delete item[" + path + "] from playlist faild!!"));
}

TEST_F(PlaylistJob, DeletesTheSelectedPlaylists) {
    select("Rock", "", QRA_MEDIA_TYPE_PLAYLIST);
    drive_ += "/";
    param_.mount_path = drive_.data();
    run(std::make_unique<CQRAPlayListDeleteThread>());
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_FALSE(std::filesystem::exists(dir_.path("USBDriveA/2.m3u")));
    EXPECT_TRUE(std::filesystem::exists(dir_.path("USBDriveA/1.m3u")));
}

TEST_F(PlaylistJob, APlaylistThatIsNotThereEndsTheJob) {
    select("Soul", "", QRA_MEDIA_TYPE_PLAYLIST);
    run(std::make_unique<CQRAPlayListDeleteThread>());
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("Delete playlist file[Soul] from path[" + drive_ + "] faild!!"));
}

TEST_F(PlaylistJob, WhatTheManagerCannotFindStartsNoThread) {
    name_ = "Soul";
    param_.playlist_name = name_.data();
    EXPECT_EQ(refused<CQRAPlayListItemAddThread>(), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(refused<CQRAPlayListItemDeleteThread>(), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log_.count("Get playlist[Soul] from path[" + drive_ + "] faild!!"), 2);
    param_.playlist_name = nullptr;
    EXPECT_EQ(refused<CQRAPlayListItemAddThread>(), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(refused<CQRAPlayListItemDeleteThread>(), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log_.count("playlist name NULL!"), 2);
    param_.mount_path = nullptr;
    EXPECT_EQ(refused<CQRAPlayListDeleteThread>(), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(refused<CQRAPlayListItemAddThread>(), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(refused<CQRAPlayListItemDeleteThread>(), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log_.count("MountPath NULL!"), 3);
}

}  // namespace
