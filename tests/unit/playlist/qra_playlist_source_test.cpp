#include "libqra-agent/playlist/qra_playlist_source.h"

#include <condition_variable>
#include <mutex>
#include <thread>

#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/playlist/m3u_playlist.h"
#include "libqra-agent/playlist/qra_playlist_manager.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "tests/unit/playlist/playlist_drive.h"

namespace {

class PlaylistSource : public PlaylistDrive {
protected:
    ~PlaylistSource() override {
        if (source_.IsOpen())
            source_.Close();
    }

    static bool on_complete(qra_event_e event, void* self_pointer) {
        auto* self = static_cast<PlaylistSource*>(self_pointer);
        std::unique_lock<std::mutex> lock(self->mutex_);
        self->events_.push_back(event);
        self->changed_.notify_all();
        self->changed_.wait(lock, [self] { return !self->hold_; });
        return true;
    }

    void scan() { ASSERT_EQ(CQRAPlaylistManager::GetInstance()->Create(drive()), QRA_ERROR_NONE); }

    void execute(const std::string& name, const std::string& path = "") {
        std::string own_path = path.empty() ? drive() : path;
        std::string own_name = name;
        char type[] = "CONTENT-MUSIC";
        char category[] = "CATEGORY-TITLE";
        qra_general_s param;
        param.szPath = own_path.data();
        param.szPlayListName = own_name.data();
        param.szContentType = type;
        param.szSortCategory = category;
        EXPECT_TRUE(source_.Execute(&param));
    }

    /// Waits for as many events, and gives the last.
    int wait_for(size_t count) {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(30), [&] { return events_.size() >= count; });
        return events_.size() == count ? events_.back() : -1;
    }

    /// Opens the source and a playlist, and gives the event.
    int open(const std::string& name) {
        EXPECT_TRUE(source_.Open());
        source_.SetCallback(&on_complete, this);
        execute(name);
        return wait_for(1);
    }

    int count() {
        int count = -1;
        EXPECT_TRUE(source_.GetItemCount(&count));
        return count;
    }

    std::string text(const char* field) {
        char* value = nullptr;
        EXPECT_TRUE(source_.GetValue(field, &value)) << field;
        const std::string copy = value != nullptr ? value : "null";
        free(value);
        return copy;
    }

    template <class T>
    T number(const char* field) {
        T value = 77;
        EXPECT_TRUE(source_.GetValue(field, &value)) << field;
        return value;
    }

    CQRAPlaylistSource source_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<int> events_;
    bool hold_ = false;
};

TEST_F(PlaylistSource, ShowsTheItemsInTheirOrder) {
    write("1.m3u", "Blues", "abc");
    scan();
    EXPECT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(text("ID_QRA"), "a");
    EXPECT_TRUE(source_.MoveToIndex(2));
    EXPECT_EQ(text("ID_QRA"), "c");
    for (const int index : {-1, 3}) {
        EXPECT_FALSE(source_.MoveToIndex(index));
        EXPECT_TRUE(log_.contains("Invalid index[" + std::to_string(index) + "]."));
    }
    EXPECT_EQ(text("ID_QRA"), "c");
    EXPECT_TRUE(log_.contains("Get [3] items from playlist[Blues]."));
}

TEST_F(PlaylistSource, CountsItemsAsMusicWhateverTheyAre) {
    write("1.m3u", "Blues", "abc");
    scan();
    ASSERT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    int number = -1;
    EXPECT_TRUE(source_.GetItemCountByType(QRA_MEDIA_TYPE_MUSIC, &number));
    EXPECT_EQ(number, 3);
    EXPECT_TRUE(source_.GetItemCountByType(QRA_MEDIA_TYPE_VIDEO, &number));
    EXPECT_EQ(number, 0);
}

TEST_F(PlaylistSource, AnswersEveryField) {
    root_.write("media/USBDriveA/1.m3u",
                "#EXT-X-NAME:Blues\n#EXTINF:215000.|Hey|Band|Disc|Pop|2015|4096|mp3|/t.jpg|320|44100|42|" +
                    drive() + "/a.mp3|1500000000|a.mp3|audio/mpeg|loc|1500000001|3|16|5|1\n\n");
    scan();
    ASSERT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(number<int>("MEDIA_TYPE"), 5);
    EXPECT_EQ(number<int>("PLAYED_COUNT"), 3);
    EXPECT_EQ(number<int>("SAMPLERATE"), 44100);
    EXPECT_EQ(number<int>("BIT_RESOLUTION"), 16);
    EXPECT_EQ(number<int>("BITRATE"), 320);
    EXPECT_EQ(number<long>("MODIFIED_TIME"), 1500000001);
    EXPECT_EQ(number<unsigned long long>("DURATION"), 215000U);
    EXPECT_EQ(number<unsigned long long>("SIZE"), 4096U);
    EXPECT_EQ(number<long>("ADDED_TIME"), 1500000000);
    EXPECT_TRUE(number<bool>("IS_DRM"));
    EXPECT_EQ(text("ID_QRA"), "42");
    EXPECT_EQ(text("TITLE"), "Hey");
    EXPECT_EQ(text("DISPLAY_NAME"), "a.mp3");
    EXPECT_EQ(text("FILE_PATH"), drive() + "/a.mp3");
    EXPECT_EQ(text("MIME_TYPE"), "audio/mpeg");
    EXPECT_EQ(text("ARTIST"), "Band");
    EXPECT_EQ(text("ALBUM"), "Disc");
    EXPECT_EQ(text("GENRE"), "Pop");
    EXPECT_EQ(text("YEAR"), "\xDF");
    EXPECT_EQ(text("THUMBNAIL_PATH"), "/t.jpg");
    EXPECT_EQ(text("LOCATION_TAG"), "loc");
    EXPECT_EQ(text("FORMAT"), "mp3");
}

TEST_F(PlaylistSource, ANumberComesInTheWidthThatIsAskedFor) {
    root_.write("media/USBDriveA/1.m3u",
                "#EXT-X-NAME:Blues\n#EXTINF:1e19|t|a|b|g|1|-5|f|t|1|1|i|p|1|n|m|l|1|1|1|5|0\n\n");
    scan();
    ASSERT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(number<unsigned long long>("DURATION"), 9999999980506447872U);
    EXPECT_EQ(number<int>("DURATION"), 2147483647);
    EXPECT_EQ(number<long>("SIZE"), -5);
    EXPECT_EQ(number<unsigned long long>("SIZE"), 0U);
    EXPECT_TRUE(number<bool>("SIZE"));
}

TEST_F(PlaylistSource, OtherFormsAndFieldsLeaveTheValue) {
    write("1.m3u", "Blues", "a");
    scan();
    ASSERT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    int value = 77;
    char* text = nullptr;
    double real = 7.5;
    EXPECT_FALSE(source_.GetValue("TITLE", &value));
    EXPECT_FALSE(source_.GetValue("SIZE", &text));
    EXPECT_FALSE(source_.GetValue("COLOUR", &value));
    EXPECT_TRUE(log_.contains("Unkown field[COLOUR]."));
    EXPECT_TRUE(source_.GetValue("DURATION", &real));
    EXPECT_FALSE(source_.GetValue("SIZE", static_cast<int*>(nullptr)));
    EXPECT_FALSE(source_.GetValue("TITLE", static_cast<char**>(nullptr)));
    EXPECT_EQ(log_.count("Invalid param."), 2);
    EXPECT_EQ(value, 77);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(real, 7.5);
}

TEST_F(PlaylistSource, WhatDoesNothingAnswersTrue) {
    EXPECT_TRUE(source_.MoveToPrevious());
    EXPECT_TRUE(source_.MoveToNext());
    EXPECT_TRUE(source_.SetValue("TITLE", "x"));
    EXPECT_TRUE(source_.SetValue("PLAYED_COUNT", 1));
    EXPECT_TRUE(source_.SetValue("ADDED_TIME", 1L));
    EXPECT_TRUE(source_.UNSetCallback());
    EXPECT_TRUE(source_.SetCallback(static_cast<qra_source_transfer_cb>(nullptr), nullptr));
}

TEST_F(PlaylistSource, AnIdIsFoundAtItsFirstPosition) {
    write("1.m3u", "Blues", "aba");
    scan();
    ASSERT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(count(), 3);
    char known[] = "a";
    char unknown[] = "x";
    int index = -1;
    EXPECT_TRUE(source_.GetDBIndex(known, &index));
    EXPECT_EQ(index, 0);
    EXPECT_FALSE(source_.GetDBIndex(unknown, &index));
    EXPECT_TRUE(log_.contains("Can't find mediaId[x]."));
    EXPECT_FALSE(source_.GetDBIndex(nullptr, &index));
    EXPECT_FALSE(source_.GetDBIndex(known, nullptr));
}

TEST_F(PlaylistSource, HasOneGroupOrNone) {
    write("1.m3u", "Blues", "abc");
    write("2.m3u", "Empty");
    scan();
    ASSERT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    std::unique_ptr<CQRAGroupInfo> groups(source_.GetGroupInfo());
    ASSERT_EQ(groups->GetGroupCount(), 1);
    EXPECT_EQ(groups->GetGroupName(0), "PlayList Group");
    EXPECT_EQ(groups->GetItemCount(), 3);

    execute("Empty");
    EXPECT_EQ(wait_for(2), QRA_EVENT_LIST_EMPTY);
    groups.reset(source_.GetGroupInfo());
    EXPECT_EQ(groups->GetGroupCount(), 0);
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(log_.contains("Get 0 items from playlist[Empty]."));
}

TEST_F(PlaylistSource, APlaylistThatTheManagerDoesNotKnowIsAFailure) {
    write("1.m3u", "Blues", "abc");
    EXPECT_EQ(open("Blues"), QRA_EVENT_LIST_FAILED) << "not scanned";
    scan();
    execute("Soul");
    EXPECT_EQ(wait_for(2), QRA_EVENT_LIST_FAILED);
    EXPECT_EQ(count(), 0);
    EXPECT_TRUE(log_.contains("Get playlist[Soul] from[" + drive() + "] faild, eCode[18]."));
}

TEST_F(PlaylistSource, SlashesAtTheEndOfThePathDoNotCount) {
    write("1.m3u", "Blues", "abc");
    scan();
    ASSERT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    execute("Blues", drive() + "//");
    EXPECT_EQ(wait_for(2), QRA_EVENT_LIST_SUCCESS);
}

TEST_F(PlaylistSource, ItsItemsOutliveThePlaylist) {
    write("1.m3u", "Blues", "abc");
    scan();
    ASSERT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    std::shared_ptr<M3UPlaylist> playlist;
    CQRAPlaylistManager* manager = CQRAPlaylistManager::GetInstance();
    ASSERT_EQ(manager->GetPlayList(drive(), "Blues", &playlist), QRA_ERROR_NONE);
    EXPECT_TRUE(playlist->DeleteItem(0));
    EXPECT_EQ(manager->Delete(drive(), "Blues"), QRA_ERROR_NONE);
    playlist.reset();
    EXPECT_EQ(manager->Destroy(drive()), QRA_ERROR_NONE);
    EXPECT_EQ(count(), 3);
    EXPECT_EQ(text("FILE_PATH"), drive() + "/a.mp3");
}

TEST_F(PlaylistSource, MisuseEndsTheProcess) {
    qra_general_s param;
    EXPECT_DEATH(source_.Execute(&param), "szPath != __null");
    EXPECT_DEATH(source_.GetItemCount(nullptr), "pnCount != __null");
    int value = 0;
    EXPECT_DEATH(source_.GetValue("SIZE", &value), "pItem != __null");
}

TEST_F(PlaylistSource, NoCallbackComesOnceItIsClosed) {
    write("1.m3u", "Blues", std::string(200, 'a'));
    scan();
    for (int round = 0; round < 50; ++round) {
        ASSERT_TRUE(source_.Open());
        source_.SetCallback(&on_complete, this);
        execute("Blues");
        source_.Close();
        const std::lock_guard<std::mutex> lock(mutex_);
        events_.clear();
    }
    EXPECT_FALSE(source_.IsOpen());
    const std::lock_guard<std::mutex> lock(mutex_);
    EXPECT_TRUE(events_.empty());
}

TEST_F(PlaylistSource, CloseWaitsForACallbackThatRuns) {
    write("1.m3u", "Blues", "a");
    scan();
    hold_ = true;
    ASSERT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    std::thread closer([this] { source_.Close(); });
    EXPECT_TRUE(source_.IsOpen());
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        hold_ = false;
        changed_.notify_all();
    }
    closer.join();
    EXPECT_FALSE(source_.IsOpen());
}

TEST_F(PlaylistSource, CanBeOpenedAgain) {
    write("1.m3u", "Blues", "ab");
    scan();
    ASSERT_EQ(open("Blues"), QRA_EVENT_LIST_SUCCESS);
    source_.Close();
    ASSERT_TRUE(source_.Open());
    execute("Blues");
    EXPECT_EQ(wait_for(2), QRA_EVENT_LIST_SUCCESS);
}

}  // namespace
