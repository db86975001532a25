#include "libqra-agent/playlist/qra_playlist_manager.h"

#include <unistd.h>

#include <fstream>

#include "libqra-agent/playlist/m3u_playlist.h"
#include "tests/fakes/fake_usb_device.h"
#include "tests/unit/playlist/playlist_drive.h"

namespace {

class PlaylistManager : public PlaylistDrive {
protected:
    int count() {
        int count = -1;
        EXPECT_EQ(manager_.GetCount(drive(), &count), QRA_ERROR_NONE);
        return count;
    }

    /// The drive's display names in their order, each with a bar behind it.
    std::string names() {
        std::string names;
        std::shared_ptr<M3UPlaylist> playlist;
        for (int i = 0; manager_.GetPlayList(drive(), i, &playlist) == QRA_ERROR_NONE; ++i)
            names += playlist->GetName() + "|";
        return names;
    }

    std::shared_ptr<M3UPlaylist> get(const std::string& name) {
        std::shared_ptr<M3UPlaylist> playlist;
        EXPECT_EQ(manager_.GetPlayList(drive(), name, &playlist), QRA_ERROR_NONE);
        return playlist;
    }

    CQRAPlaylistManager manager_;
};

TEST_F(PlaylistManager, ADriveThatWasNotScannedHasNothing) {
    write("1.m3u", "Blues");
    int number = 42;
    std::shared_ptr<M3UPlaylist> playlist;

    EXPECT_EQ(manager_.GetCount(drive(), &number), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager_.GetPlayList(drive(), 0, &playlist), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager_.GetPlayList(drive(), "Blues", &playlist), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager_.GetDBIndex(drive(), "Blues", number), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager_.Exist(drive(), "Blues"), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager_.Delete(drive(), 0), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager_.Delete(drive(), "Blues"), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager_.Rename(drive(), "Blues", "Rock"), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager_.Destroy(drive()), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager_.AddIfScanned(drive(), "Rock", 1), QRA_ERROR_NOT_EXIST);

    EXPECT_EQ(number, 42);
    EXPECT_EQ(playlist, nullptr);
    EXPECT_EQ(count_files(drive()), 1);
    EXPECT_TRUE(log_.contains("Not exists, path[" + drive() + "]!!"));
    EXPECT_TRUE(log_.contains("Can not find cached playlist file in path[" + drive() + "]."));
}

TEST_F(PlaylistManager, AddingToADriveThatWasNotScannedEndsTheProcess) {
    EXPECT_DEATH(manager_.Add(drive(), "Rock", 1), "it != m_MapAllDevicePlayLists.end\\(\\)");
}

TEST_F(PlaylistManager, AScanFindsTheFilesOfTheTopDirectory) {
    write("1.m3u", "Rock");
    write(".bgm.m3u", ".bgm");
    write("old.m3u", "Blues");
    write("4.M3U", "Upper");
    write("5.m3u8", "Eight");
    root_.write("media/USBDriveA/6.m3u", "no name");
    std::filesystem::create_directories(drive() + "/dir.m3u");
    std::filesystem::create_directories(drive() + "/sub");
    write("sub/7.m3u", "Below");

    EXPECT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);

    EXPECT_EQ(names(), "|.bgm|Blues|Rock|");
    EXPECT_EQ(count(), 4);
    EXPECT_TRUE(log_.contains("Load [dir.m3u] failed."));
    EXPECT_TRUE(log_.contains("Get[4] playlist file for path[" + drive() + "]."));
}

TEST_F(PlaylistManager, ALinkOutOfTheDriveIsNoPlaylist) {
    write("1.m3u", "Inside");
    root_.write("flash/x.m3u", "#EXT-X-NAME:Outside\n");
    ASSERT_EQ(symlink((flash() + "/x.m3u").c_str(), (drive() + "/out.m3u").c_str()), 0);
    ASSERT_EQ(symlink("1.m3u", (drive() + "/in.m3u").c_str()), 0);
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    EXPECT_EQ(names(), "Inside|");
    EXPECT_TRUE(log_.contains("Load [out.m3u] failed."));
}

TEST_F(PlaylistManager, OfTwoFilesWithOneNameOneIsKnown) {
    write("1.m3u", "Blues", "a");
    write("2.m3u", "Blues", "ab");
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    EXPECT_EQ(names(), "Blues|");
}

TEST_F(PlaylistManager, ADriveWithoutPlaylistsIsScannedAllTheSame) {
    EXPECT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    EXPECT_EQ(count(), 0);
    std::shared_ptr<M3UPlaylist> playlist;
    for (const int index : {-1, 0}) {
        EXPECT_EQ(manager_.GetPlayList(drive(), index, &playlist), QRA_ERROR_INVALID_PARAM);
        EXPECT_EQ(manager_.Delete(drive(), index), QRA_ERROR_INVALID_PARAM);
        EXPECT_EQ(log_.count("Invalid index[" + std::to_string(index) + "], total count[0]."), 2);
    }
}

TEST_F(PlaylistManager, ADirectoryThatCannotBeReadStaysUnscanned) {
    EXPECT_EQ(manager_.Create(drive() + "/no"), QRA_ERROR_INTERNAL);
    EXPECT_TRUE(log_.contains("opendir() failed."));
    EXPECT_TRUE(log_.contains("scan playlist faild."));
    std::filesystem::create_directories(drive() + "/no");
    EXPECT_EQ(manager_.Create(drive() + "/no"), QRA_ERROR_NONE);
}

TEST_F(PlaylistManager, ASecondScanSeesNothingNewBeforeTheDriveLeft) {
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    write("1.m3u", "Blues");
    EXPECT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(manager_.Destroy(drive()), QRA_ERROR_NONE);
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    EXPECT_EQ(count(), 1);
}

TEST_F(PlaylistManager, MountPathsAreComparedByteForByte) {
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    int number = 0;
    EXPECT_EQ(manager_.GetCount(drive() + "/", &number), QRA_ERROR_NOT_EXIST);
}

TEST_F(PlaylistManager, AnAddedPlaylistHasAFileAndAPlace) {
    write("1.m3u", "Blues");
    write("3.m3u", "Rock");
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    EXPECT_EQ(manager_.Add(drive(), "Jazz", 7), QRA_ERROR_NONE);
    EXPECT_EQ(names(), "Blues|Jazz|Rock|");
    EXPECT_EQ(manager_.Exist(drive(), "Jazz"), QRA_ERROR_NONE);
    EXPECT_EQ(get("Jazz")->GetMaxItemCount(), 7);
    EXPECT_TRUE(std::filesystem::exists(get("Jazz")->GetFullPath()));
    int index = -1;
    EXPECT_EQ(manager_.GetDBIndex(drive(), "Rock", index), QRA_ERROR_NONE);
    EXPECT_EQ(index, 2);
    EXPECT_EQ(manager_.GetDBIndex(drive(), "Soul", index), QRA_ERROR_NOT_EXIST);
    EXPECT_TRUE(log_.contains("Not exists, path[" + drive() + "], playlist[Soul]"));
}

TEST_F(PlaylistManager, ADriveHasRoomForFive) {
    for (const char* number : {"1", "2", "3", "4", "5"})
        write(std::string(number) + ".m3u", number);
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    EXPECT_EQ(manager_.Add(drive(), "6", 1), QRA_ERROR_PLAYLIST_MAX);
    EXPECT_TRUE(log_.contains("Exceed max num[5] of playlists!!"));
    EXPECT_EQ(manager_.Add(drive(), "5", 1), QRA_ERROR_ALREADY_EXIST);
    EXPECT_EQ(count_files(drive()), 5);
    EXPECT_EQ(manager_.Delete(drive(), "5"), QRA_ERROR_NONE);
    EXPECT_EQ(manager_.Add(drive(), "6", 1), QRA_ERROR_NONE);
    EXPECT_EQ(count_files(drive()), 5);
}

TEST_F(PlaylistManager, ANameThatIsRefusedMakesNoPlaylist) {
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    EXPECT_EQ(manager_.Add(drive(), "a/b", 1), QRA_ERROR_CREATE_FAILED);
    EXPECT_TRUE(log_.contains("Create PlayList [a/b] failed."));
    EXPECT_EQ(count(), 0);
}

TEST_F(PlaylistManager, ADeletedPlaylistLeavesItsHoldersAnObjectWithoutAFile) {
    write("1.m3u", "Blues", "ab");
    write("2.m3u", "Rock");
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    const std::shared_ptr<M3UPlaylist> blues = get("Blues");
    EXPECT_EQ(manager_.Delete(drive(), "Blues"), QRA_ERROR_NONE);
    EXPECT_EQ(names(), "Rock|");
    EXPECT_FALSE(blues->Flush());
    EXPECT_EQ(manager_.Delete(drive(), 0), QRA_ERROR_NONE);
    EXPECT_EQ(count_files(drive()), 0);
    EXPECT_EQ(manager_.Delete(drive(), "Blues"), QRA_ERROR_NOT_EXIST);
    EXPECT_TRUE(log_.contains("Not exists: PlayList [Blues], path[" + drive() + "]."));
}

TEST_F(PlaylistManager, ARenamedPlaylistIsTheSameInAnotherPlace) {
    write("1.m3u", "Blues");
    write("2.m3u", "Rock");
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    const std::shared_ptr<M3UPlaylist> blues = get("Blues");
    EXPECT_EQ(manager_.Rename(drive(), "Blues", "Swing"), QRA_ERROR_NONE);
    EXPECT_EQ(names(), "Rock|Swing|");
    EXPECT_EQ(get("Swing"), blues);
    EXPECT_NE(root_.read("media/USBDriveA/1.m3u").find("#EXT-X-NAME:Swing\n"), std::string::npos);
}

TEST_F(PlaylistManager, ARenameNeedsAnOldNameAndAFreeNewOne) {
    write("1.m3u", "Blues");
    write("2.m3u", "Rock");
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    EXPECT_EQ(manager_.Rename(drive(), "Soul", "Swing"), QRA_ERROR_NOT_EXIST);
    EXPECT_TRUE(log_.contains("Not exist, old name playlist[Soul]"));
    EXPECT_EQ(manager_.Rename(drive(), "Blues", "Rock"), QRA_ERROR_ALREADY_EXIST);
    EXPECT_EQ(manager_.Rename(drive(), "Blues", "Blues"), QRA_ERROR_ALREADY_EXIST);
    EXPECT_TRUE(log_.contains("Already exist, new name playlist[Blues]"));
    std::filesystem::remove(drive() + "/1.m3u");
    EXPECT_EQ(manager_.Rename(drive(), "Blues", "Swing"), QRA_ERROR_INTERNAL);
    EXPECT_TRUE(log_.contains("Rename [Blues] to [Swing] failed."));
    EXPECT_EQ(names(), "Blues|Rock|");
}

TEST_F(PlaylistManager, AnUnmountedDriveIsForgotten) {
    write("1.m3u", "Blues", "a");
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    const std::shared_ptr<M3UPlaylist> blues = get("Blues");
    FakeUsbDevice::send("mounted", drive().c_str());
    EXPECT_EQ(count(), 1);
    FakeUsbDevice::send("unmounted", (drive() + "x").c_str());
    FakeUsbDevice::send("unmounted", drive().c_str());
    FakeUsbDevice::send("unmounted", drive().c_str());
    int number = 0;
    EXPECT_EQ(manager_.GetCount(drive(), &number), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(blues->GetItemCount(), 1);
    EXPECT_EQ(FakeUsbDevice::devices, 0);
    EXPECT_EQ(log_.count("USB UNMOUNTED : " + drive()), 3);
    EXPECT_EQ(log_.count("Delete playlist file from path[" + drive() + "]."), 1);
    EXPECT_TRUE(log_.contains("After Delete, Total cached [0] device's playlist file."));
}

TEST_F(PlaylistManager, OddEventsChangeNothingAndLeakNothing) {
    ASSERT_EQ(manager_.Create(drive()), QRA_ERROR_NONE);
    FakeUsbDevice::send_nothing();
    FakeUsbDevice::send(nullptr, drive().c_str());
    FakeUsbDevice::send("unmounted", drive().c_str(), 3);
    FakeUsbDevice::send("unmounted", nullptr);
    EXPECT_EQ(count(), 0);
    EXPECT_EQ(FakeUsbDevice::devices, 0);
    for (const char* line :
         {"usb_device == NULL", "action == NULL", "usb_device is not storage", "mount_path == NULL"})
        EXPECT_EQ(log_.count(line), 1) << line;
}

TEST_F(PlaylistManager, TakesTheUsbServiceAndGivesItBack) {
    EXPECT_EQ(FakeUsbDevice::users, 1);
    {
        const CQRAPlaylistManager second;
        EXPECT_EQ(FakeUsbDevice::users, 2);
        EXPECT_TRUE(FakeUsbDevice::has_callback());
    }
    EXPECT_EQ(FakeUsbDevice::users, 1);
    EXPECT_FALSE(FakeUsbDevice::has_callback());
}

}  // namespace
