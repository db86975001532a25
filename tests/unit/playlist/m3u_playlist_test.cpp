#include "libqra-agent/playlist/m3u_playlist.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/temp_dir.h"

namespace {

CQRAPlayListItem item(const std::string& id) {
    CQRAPlayListItem item;
    item.m_strMediaId = id;
    item.m_strPath = "/m/" + id + ".mp3";
    return item;
}

CQRAPlayListItem full_item() {
    CQRAPlayListItem item;
    item.m_strMediaId = "42";
    item.m_strName = "a.mp3";
    item.m_strTitle = "Hey";
    item.m_strPath = "/m/a.mp3";
    item.m_strMimeType = "audio/mpeg";
    item.m_strArtist = "Band";
    item.m_strAlbum = "Disc";
    item.m_strGenre = "Pop";
    item.m_strYear = "2015";
    item.m_strThumbnailPath = "/t.jpg";
    item.m_strLocationTag = "loc";
    item.m_strFormat = "mp3";
    item.m_nDuration = 215000;
    item.m_nAddTime = 1500000000;
    item.m_nModTime = 1500000001;
    item.m_nSize = 4096;
    item.m_nPlayCount = 3;
    item.m_nSampleRate = 44100;
    item.m_nBitResolution = 16;
    item.m_nBitRate = 320;
    item.m_nMediaType = 3;
    return item;
}

std::string ids(const M3UPlaylist& playlist) {
    std::string text;
    for (int i = 0; i < playlist.GetItemCount(); ++i)
        text += playlist.GetItem(i)->m_strMediaId;
    return text;
}

class Playlist : public testing::Test {
protected:
    /// A list with these single letters as media ids, not flushed.
    void make(const std::string& letters, int max = 100) {
        ASSERT_TRUE(playlist_.CreateNew(dir_.path(), "a", max));
        for (const char letter : letters)
            ASSERT_TRUE(add(letter));
    }

    bool add(char letter) {
        const CQRAPlayListItem added = item(std::string(1, letter));
        return playlist_.AddItem(&added);
    }

    std::string on_disk() const { return dir_.read(playlist_.GetFile()); }

    /// The media ids that the file holds.
    std::string ids_on_disk() const {
        M3UPlaylist read;
        EXPECT_TRUE(read.Load(dir_.path(), playlist_.GetFile()));
        return ids(read);
    }

    TempDir dir_;
    M3UPlaylist playlist_;
    LogCapture log_;
};

TEST_F(Playlist, ANewListIsThreeLines) {
    ASSERT_TRUE(playlist_.CreateNew(dir_.path(), "My songs", 100));
    EXPECT_EQ(on_disk(), "#EXTM3U\n#EXT-X-COUNT:100\n#EXT-X-NAME:My songs\n");
    EXPECT_EQ(playlist_.GetName(), "My songs");
    EXPECT_EQ(playlist_.GetDir(), dir_.path());
    EXPECT_EQ(playlist_.GetFullPath(), dir_.path(playlist_.GetFile()));
    EXPECT_EQ(playlist_.GetItemCount(), 0);
}

TEST_F(Playlist, AnItemIsTwoLines) {
    make("");
    const CQRAPlayListItem added = full_item();
    ASSERT_TRUE(playlist_.AddItem(&added));
    EXPECT_EQ(on_disk(), "#EXTM3U\n#EXT-X-COUNT:100\n#EXT-X-NAME:a\n") << "written before the flush";
    ASSERT_TRUE(playlist_.Flush());
    EXPECT_EQ(on_disk(),
              "#EXTM3U\n#EXT-X-COUNT:100\n#EXT-X-NAME:a\n"
              "#EXTINF:215000.|Hey|Band|Disc|Pop|2015|4096|mp3|/t.jpg|320|44100|42|/m/a.mp3|1500000000|a.mp3|"
              "audio/mpeg|loc|1500000001|3|16|3|0\n\n");
}

TEST_F(Playlist, FilesAreNumbersButForOneName) {
    make("");
    const std::string number = playlist_.GetFile().substr(0, playlist_.GetFile().size() - 4);
    EXPECT_EQ(playlist_.GetFile(), number + ".m3u");
    EXPECT_EQ(number.find_first_not_of("0123456789"), std::string::npos) << number;
    EXPECT_EQ(std::to_string(static_cast<uint32_t>(std::stoull(number))), number);

    M3UPlaylist background;
    ASSERT_TRUE(background.CreateNew(dir_.path(), ".bgm", 10));
    EXPECT_EQ(background.GetFile(), ".bgm.m3u");
}

TEST_F(Playlist, NamesHaveALengthAndNoSlash) {
    for (const std::string& name : {std::string(257, 'n'), std::string("a/b"), std::string("/")}) {
        M3UPlaylist playlist;
        EXPECT_FALSE(playlist.CreateNew(dir_.path(), name, 1)) << name;
        EXPECT_TRUE(log_.contains("Invalid strName[" + name + "]."));
    }
    EXPECT_TRUE(std::filesystem::is_empty(dir_.path()));
    EXPECT_TRUE(playlist_.CreateNew(dir_.path(), "", 1));
    EXPECT_TRUE(playlist_.Rename(std::string(256, 'n')));
    EXPECT_FALSE(playlist_.Rename(std::string(257, 'n')));
    EXPECT_FALSE(playlist_.Rename("a/b"));
    EXPECT_TRUE(log_.contains("M3U-PLAYLIST: Invalid name[a/b]."));
}

TEST_F(Playlist, NothingIsMadeInADirectoryThatIsNotThere) {
    EXPECT_FALSE(playlist_.CreateNew(dir_.path("no"), "a", 1));
    EXPECT_TRUE(log_.contains("Dir [" + dir_.path("no") + "] not exist!!!"));
}

TEST_F(Playlist, ALinkThatLeadsNowhereKeepsItsName) {
    ASSERT_EQ(symlink(dir_.path("elsewhere").c_str(), dir_.path(".bgm.m3u").c_str()), 0);
    EXPECT_FALSE(playlist_.CreateNew(dir_.path(), ".bgm", 1));
    EXPECT_TRUE(log_.contains("Already exist m3u file.path[" + dir_.path(".bgm.m3u") + "], name[.bgm]."));
    EXPECT_NE(access(dir_.path("elsewhere").c_str(), F_OK), 0);
}

TEST_F(Playlist, AFileThatIsThereIsNotMadeAgain) {
    dir_.write(".bgm.m3u", "mine");
    EXPECT_FALSE(playlist_.CreateNew(dir_.path(), ".bgm", 1));
    EXPECT_TRUE(log_.contains("Already exist m3u file.path[" + dir_.path(".bgm.m3u") + "], name[.bgm]."));
    EXPECT_EQ(dir_.read(".bgm.m3u"), "mine");
}

TEST_F(Playlist, AFileThatCannotBeMadeIsAFailure) {
    mkdir(dir_.path(".bgm.m3u").c_str(), 0700);
    EXPECT_FALSE(playlist_.CreateNew(dir_.path(), ".bgm", 1));
    EXPECT_TRUE(log_.contains("Create m3u file [" + dir_.path(".bgm.m3u") + "] faild."));
}

TEST_F(Playlist, MisuseEndsTheProcess) {
    const CQRAPlayListItem added = item("a");
    EXPECT_DEATH(playlist_.AddItem(&added), "m_pM3U");
    make("");
    const CQRAPlayListItem* none = nullptr;
    EXPECT_DEATH(playlist_.AddItem(none), "pDataItem");
    EXPECT_DEATH(playlist_.CreateNew(dir_.path(), "a", 1), "m_pM3U");
}

TEST_F(Playlist, AFullListTakesNothing) {
    make("ab", 2);
    EXPECT_FALSE(add('c'));
    EXPECT_TRUE(log_.contains("M3U-PLAYLIST: count[2] >= 2."));
    EXPECT_EQ(ids(playlist_), "ab");
    ASSERT_TRUE(playlist_.Flush());
    EXPECT_EQ(ids_on_disk(), "ab");
}

TEST_F(Playlist, SeveralItemsAreAddedWhereAllFit) {
    make("a", 3);
    EXPECT_FALSE(playlist_.AddItem(std::vector<CQRAPlayListItem>{item("b"), item("c"), item("d")}));
    EXPECT_TRUE(log_.contains("M3U-PLAYLIST: count[1] + 3 >= 3."));
    EXPECT_EQ(ids(playlist_), "a");
    EXPECT_TRUE(playlist_.AddItem(std::vector<CQRAPlayListItem>{item("b"), item("c")}));
    EXPECT_TRUE(playlist_.AddItem(std::vector<CQRAPlayListItem>{}));
    EXPECT_EQ(ids(playlist_), "abc");
}

TEST_F(Playlist, AListWithoutRoomTakesNothing) {
    for (const int max : {0, -1}) {
        M3UPlaylist playlist;
        ASSERT_TRUE(playlist.CreateNew(dir_.path(), max == 0 ? ".bgm" : "b", max));
        const CQRAPlayListItem added = item("a");
        EXPECT_FALSE(playlist.AddItem(&added));
    }
}

TEST_F(Playlist, ItemsAreDeletedByTheirPosition) {
    make("abc");
    for (const int index : {-1, 3}) {
        EXPECT_FALSE(playlist_.DeleteItem(index));
        EXPECT_EQ(playlist_.GetItem(index), nullptr);
        EXPECT_EQ(log_.count("M3U-PLAYLIST: Invalid index[" + std::to_string(index) + "], count[3]."), 2);
    }
    EXPECT_TRUE(playlist_.DeleteItem(0));
    ASSERT_TRUE(playlist_.Flush());
    EXPECT_EQ(ids(playlist_), "bc");
    EXPECT_EQ(ids_on_disk(), "bc");
    EXPECT_NE(on_disk().find("#EXT-X-COUNT:100\n"), std::string::npos);
}

TEST_F(Playlist, ItemsAreDeletedByTheirId) {
    make("abca");
    EXPECT_TRUE(playlist_.DeleteItem(std::string("a")));
    EXPECT_FALSE(playlist_.DeleteItem(std::string("x")));
    EXPECT_TRUE(log_.contains("DeleteSegments[x] failed."));
    ASSERT_TRUE(playlist_.Flush());
    EXPECT_EQ(ids(playlist_), "bca");
    EXPECT_EQ(ids_on_disk(), "bca");
}

TEST_F(Playlist, SeveralItemsAreDeletedAtOnce) {
    make("abcdef");
    EXPECT_TRUE(playlist_.DeleteItem(std::vector<int>{5, 0, 3}));
    ASSERT_TRUE(playlist_.Flush());
    EXPECT_EQ(ids(playlist_), "bce");
    EXPECT_EQ(ids_on_disk(), "bce");
}

TEST_F(Playlist, BadPositionsDeleteNothing) {
    make("abc");
    EXPECT_FALSE(playlist_.DeleteItem(std::vector<int>{}));
    EXPECT_TRUE(log_.contains("M3U-PLAYLIST: Empty input."));
    EXPECT_FALSE(playlist_.DeleteItem(std::vector<int>{-1, 0}));
    EXPECT_FALSE(playlist_.DeleteItem(std::vector<int>{0, 3}));
    EXPECT_EQ(log_.count("M3U-PLAYLIST: Exist invalid index, count[3]."), 2);
    EXPECT_FALSE(playlist_.DeleteItem(std::vector<int>{1, 1}));
    EXPECT_TRUE(log_.contains("M3U-PLAYLIST: DeleteSegments failed."));
    ASSERT_TRUE(playlist_.Flush());
    EXPECT_EQ(ids(playlist_), "abc");
    EXPECT_EQ(ids_on_disk(), "abc");
}

TEST_F(Playlist, ASharedItemOutlivesTheList) {
    make("a");
    const std::shared_ptr<const CQRAPlayListItem> shared = playlist_.GetSharedItem(0);
    EXPECT_TRUE(playlist_.Remove());
    EXPECT_EQ(shared->m_strMediaId, "a");
    EXPECT_EQ(playlist_.GetSharedItem(0), nullptr);
}

TEST_F(Playlist, ARenameWritesTheNameAndKeepsTheFile) {
    make("a");
    const std::string file = playlist_.GetFile();
    EXPECT_TRUE(playlist_.Rename("Summer"));
    EXPECT_EQ(playlist_.GetName(), "Summer");
    EXPECT_EQ(playlist_.GetFile(), file);
    EXPECT_NE(on_disk().find("#EXT-X-NAME:Summer\n"), std::string::npos);
    EXPECT_EQ(ids_on_disk(), "a");
}

TEST_F(Playlist, AFileThatWentIsNotMadeAnew) {
    make("a");
    std::filesystem::remove(playlist_.GetFullPath());
    EXPECT_FALSE(playlist_.Flush());
    EXPECT_TRUE(log_.contains("m3u[" + playlist_.GetFullPath() + "] not exists!!"));
    EXPECT_FALSE(playlist_.Rename("b"));
    EXPECT_TRUE(log_.contains("M3U-PLAYLIST: m_Write failed."));
    EXPECT_EQ(playlist_.GetName(), "a");
    EXPECT_TRUE(std::filesystem::is_empty(dir_.path()));
    EXPECT_TRUE(playlist_.Remove());
    EXPECT_EQ(playlist_.GetItemCount(), 0);
}

TEST_F(Playlist, WithoutAFileThereIsNothingToRename) {
    EXPECT_FALSE(playlist_.Rename("a"));
    EXPECT_TRUE(log_.contains("M3U-PLAYLIST: m_pM3U is NULL."));
}

TEST_F(Playlist, RemoveTakesFileAndItems) {
    make("ab");
    EXPECT_TRUE(playlist_.Remove());
    EXPECT_TRUE(log_.contains("Remove m3u file [" + playlist_.GetFullPath() + "]."));
    EXPECT_TRUE(std::filesystem::is_empty(dir_.path()));
    EXPECT_EQ(playlist_.GetItemCount(), 0);
}

/// No file of this process grows beyond a size, while this lives.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t size) {
        signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{size, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &before_); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before_{};
};

TEST_F(Playlist, AFailedWriteLeavesNoFile) {
    make("ab");
    bool flushed = true;
    {
        const FileSizeLimit limit(60);
        flushed = playlist_.Flush();
    }
    EXPECT_FALSE(flushed);
    EXPECT_TRUE(log_.contains("fwrite failed."));
    EXPECT_TRUE(std::filesystem::is_empty(dir_.path()));
    EXPECT_EQ(ids(playlist_), "ab");
}

class LoadedPlaylist : public Playlist {
protected:
    bool load(const std::string& content) {
        dir_.write("1.m3u", content);
        return playlist_.Load(dir_.path(), "1.m3u");
    }
};

TEST_F(LoadedPlaylist, HasWhatTheFileHas) {
    const CQRAPlayListItem added = full_item();
    M3UPlaylist written;
    ASSERT_TRUE(written.CreateNew(dir_.path(), "mine", 7));
    ASSERT_TRUE(written.AddItem(&added) && written.Flush());

    ASSERT_TRUE(playlist_.Load(dir_.path(), written.GetFile()));
    EXPECT_EQ(playlist_.GetName(), "mine");
    EXPECT_EQ(playlist_.GetMaxItemCount(), 7);
    ASSERT_EQ(playlist_.GetItemCount(), 1);
    const CQRAPlayListItem& read = *playlist_.GetItem(0);
    EXPECT_EQ(read.m_strMediaId, "42");
    EXPECT_EQ(read.m_strName, "a.mp3");
    EXPECT_EQ(read.m_strTitle, "Hey");
    EXPECT_EQ(read.m_strPath, "/m/a.mp3");
    EXPECT_EQ(read.m_strMimeType, "audio/mpeg");
    EXPECT_EQ(read.m_strArtist, "Band");
    EXPECT_EQ(read.m_strAlbum, "Disc");
    EXPECT_EQ(read.m_strGenre, "Pop");
    EXPECT_EQ(read.m_strYear, "\xDF");
    EXPECT_EQ(read.m_strThumbnailPath, "/t.jpg");
    EXPECT_EQ(read.m_strLocationTag, "loc");
    EXPECT_EQ(read.m_strFormat, "mp3");
    EXPECT_EQ(read.m_nDuration, 215000U);
    EXPECT_EQ(read.m_nAddTime, 1500000000);
    EXPECT_EQ(read.m_nModTime, 1500000001);
    EXPECT_EQ(read.m_nSize, 4096);
    EXPECT_EQ(read.m_nPlayCount, 3);
    EXPECT_EQ(read.m_nSampleRate, 44100);
    EXPECT_EQ(read.m_nBitResolution, 16);
    EXPECT_EQ(read.m_nBitRate, 320);
    EXPECT_EQ(read.m_nMediaType, 3);
    EXPECT_FALSE(read.m_bDrm);
}

TEST_F(LoadedPlaylist, APlainListHasItemsWithoutFields) {
    ASSERT_TRUE(load("#EXTM3U\n#EXTINF:10,Song\nsong.mp3\nother.mp3\n"));
    ASSERT_EQ(playlist_.GetItemCount(), 1);
    EXPECT_EQ(playlist_.GetItem(0)->m_strTitle, "");
    EXPECT_EQ(playlist_.GetItem(0)->m_strPath, "");
}

TEST_F(LoadedPlaylist, WithoutACountTakesNothingMore) {
    ASSERT_TRUE(load("#EXTINF:1|t|\n\n#EXTINF:2|t|\n\n"));
    EXPECT_EQ(playlist_.GetName(), "");
    EXPECT_EQ(playlist_.GetMaxItemCount(), 0);
    EXPECT_EQ(playlist_.GetItemCount(), 2);
    EXPECT_FALSE(add('a'));
    EXPECT_TRUE(playlist_.AddItem(std::vector<CQRAPlayListItem>{}));
}

TEST_F(LoadedPlaylist, IsNotThereWithoutARegularFile) {
    mkdir(dir_.path("d.m3u").c_str(), 0700);
    ASSERT_EQ(mkfifo(dir_.path("f.m3u").c_str(), 0600), 0);
    ASSERT_EQ(symlink("nowhere", dir_.path("l.m3u").c_str()), 0);
    for (const char* file : {"none.m3u", "d.m3u", "f.m3u", "l.m3u"}) {
        M3UPlaylist playlist;
        EXPECT_FALSE(playlist.Load(dir_.path(), file)) << file;
    }
    EXPECT_EQ(log_.count("Load error."), 4);
}

TEST_F(LoadedPlaylist, IsNotThereWithoutTheRightToRead) {
    dir_.write("1.m3u", "#EXTM3U\n");
    chmod(dir_.path("1.m3u").c_str(), 0);
    if (access(dir_.path("1.m3u").c_str(), R_OK) == 0)
        GTEST_SKIP() << "this user may read everything";
    EXPECT_FALSE(playlist_.Load(dir_.path(), "1.m3u"));
    EXPECT_TRUE(log_.contains("Load err!! m3u [" + dir_.path("1.m3u") + "]."));
}

TEST_F(LoadedPlaylist, AnyBytesAreAList) {
    EXPECT_TRUE(load(std::string("#\0E\0X\0T\0I\0N\0F\0\n\0", 16))) << "UTF-16";
    const std::string field(1 << 20, 'x');
    std::string record = "#EXTINF:" + field;
    for (int i = 1; i < 22; ++i)
        record += "|" + field;
    M3UPlaylist large;
    dir_.write("2.m3u", record + "\r\n\r\n");
    ASSERT_TRUE(large.Load(dir_.path(), "2.m3u"));
    EXPECT_EQ(large.GetItem(0)->m_strTitle, field);
    M3UPlaylist old_mac;
    dir_.write("3.m3u", "#EXTM3U\r#EXT-X-NAME:a\r#EXTINF:1|t|\r\r");
    ASSERT_TRUE(old_mac.Load(dir_.path(), "3.m3u"));
    EXPECT_EQ(old_mac.GetItemCount(), 0);
}

TEST_F(LoadedPlaylist, ALineMayBeAsLongAsTheFile) {
    std::ofstream(dir_.path("1.m3u")) << "#EXTINF:1|t|";
    std::filesystem::resize_file(dir_.path("1.m3u"), 16 << 20);
    ASSERT_TRUE(playlist_.Load(dir_.path(), "1.m3u"));
    EXPECT_EQ(playlist_.GetItemCount(), 0);
}

/// A drive below a media root of the test's own.
class DrivePlaylist : public testing::Test {
protected:
    DrivePlaylist() {
        setenv("QRA_MEDIA_ROOT", root_.path().c_str(), 1);
        for (const char* drive : {"USBDriveA", "USBDriveB", "usb2", "disk"})
            mkdir(root_.path(drive).c_str(), 0700);
    }
    ~DrivePlaylist() override { unsetenv("QRA_MEDIA_ROOT"); }

    /// The path that the one item of a list has on a drive, where the file says `path`.
    std::string path_on(const std::string& drive, const std::string& path) {
        root_.write(drive + "/1.m3u", "#EXTINF:1|t|a|b|g|1|1|f|t|1|1|id|" + path + "|\n\n");
        M3UPlaylist playlist;
        EXPECT_TRUE(playlist.Load(root_.path(drive), "1.m3u"));
        return playlist.GetItemCount() == 1 ? playlist.GetItem(0)->m_strPath : "no item";
    }

    TempDir root_;
};

TEST_F(DrivePlaylist, ItemsOfAnotherMountPathLieBesideTheList) {
    EXPECT_EQ(path_on("USBDriveB", "/old/USBDriveA/music/a.mp3"), root_.path("USBDriveB/a.mp3"));
    EXPECT_EQ(path_on("usb2", "a.mp3"), root_.path("usb2/a.mp3"));
    EXPECT_EQ(path_on("USBDriveB", ""), "");
}

TEST_F(DrivePlaylist, ItemsOfThisMountPathStay) {
    EXPECT_EQ(path_on("USBDriveB", root_.path("USBDriveB/music/a.mp3")), root_.path("USBDriveB/music/a.mp3"));
    EXPECT_EQ(path_on("USBDriveB", "/x" + root_.path("USBDriveB") + "/a.mp3"),
              "/x" + root_.path("USBDriveB") + "/a.mp3");
}

TEST_F(DrivePlaylist, ItemsOfAListOnInternalStorageStay) {
    EXPECT_EQ(path_on("disk", "/old/USBDriveA/a.mp3"), "/old/USBDriveA/a.mp3");
}

TEST_F(DrivePlaylist, TheFileKeepsItsPaths) {
    path_on("USBDriveB", "/old/USBDriveA/a.mp3");
    M3UPlaylist playlist;
    ASSERT_TRUE(playlist.Load(root_.path("USBDriveB"), "1.m3u") && playlist.Flush());
    const std::string content = root_.read("USBDriveB/1.m3u");
    EXPECT_NE(content.find("|/old/USBDriveA/a.mp3|"), std::string::npos) << content;
}

}  // namespace
