// Playlists on drives that are pulled, with the real USB service: each drive is a mount of this process's
// own.

#include <gtest/gtest.h>
#include <qra/qra_content_agent.h>
#include <sys/mount.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <set>
#include <sstream>
#include <string>
#include <thread>

#include "tests/fakes/own_mounts.h"
#include "tests/fakes/temp_dir.h"
#include "usb_device.h"

namespace {

/// What was reported of drives, each as "action path". The playlist manager is told of it before.
class Reports {
public:
    static void callback(usb_device_s* device, char* action, void* user_data) {
        auto* self = static_cast<Reports*>(user_data);
        const std::string text = std::string(action) + " " + usb_device_get_mountpath(device);
        free_usb_device_h(device);
        const std::lock_guard<std::mutex> lock(self->mutex_);
        self->texts_.insert(text);
        self->changed_.notify_all();
    }

    bool wait_for(const std::string& text) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(60), [&] { return texts_.erase(text) > 0; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::set<std::string> texts_;
};

using FileParam = std::unique_ptr<qra_playlist_file_s, qra_error_code_e (*)(qra_playlist_file_param_h)>;

FileParam file(const std::string& path, const std::string& name) {
    qra_playlist_file_param_h param = nullptr;
    qra_create_playlist_file_param(&param);
    qra_param_set_playlist_file_path(param, path.c_str());
    qra_param_set_playlist_file_name(param, name.c_str());
    qra_param_set_playlist_file_max_item_count(param, 1000000);
    return {param, &qra_destroy_playlist_file_param};
}

qra_error_code_e add(qra_playlist_handler_h playlist, const std::string& id) {
    qra_playlist_item_param_h item = nullptr;
    qra_create_playlist_item_param(&item);
    qra_param_set_playlist_item_media_id(item, id.c_str());
    qra_param_set_playlist_item_path(item, "/song.mp3");
    const qra_error_code_e code = qra_playlist_add_v2(playlist, item);
    qra_destroy_playlist_item_param(item);
    return code;
}

/// Ends without a line that a writer has not finished.
bool is_whole(const std::string& content, size_t items) {
    size_t records = 0;
    std::istringstream stream(content);
    for (std::string line; std::getline(stream, line);)
        records += line.rfind("#EXTINF:", 0) == 0 ? 1 : 0;
    return content.rfind("#EXTM3U\n", 0) == 0 && content.substr(content.size() - 2) == "\n\n" &&
           records >= items;
}

class PulledDrive : public testing::Test {
protected:
    static void SetUpTestSuite() {
        root_ = new TempDir;
        setenv("QRA_MEDIA_ROOT", root_->path().c_str(), 1);
        has_mounts_ = have_own_mounts();  // before the service's thread is there
        qra_playlist_exist_v2(file(root_->path("usb"), "none").get());  // makes the manager the first to hear
        reports_ = new Reports;
        usb_device_init();
        usb_set_connected_cb(Reports::callback, reports_);
    }
    static void TearDownTestSuite() {
        usb_set_connected_cb(nullptr, reports_);
        usb_device_fini();
        delete reports_;
        delete root_;
    }

    void SetUp() override {
        if (!has_mounts_)
            GTEST_SKIP() << "no mount namespace of our own is allowed here";
        drive_ = root_->path("USBDrive" + std::to_string(++drives_));
        mkdir(drive_.c_str(), 0700);
        plug();
    }
    void TearDown() override {
        qra_playlist_close_v2(playlist_);
        umount2(drive_.c_str(), MNT_DETACH);
    }

    /// A drive that came and went between two looks of the service would not be missed.
    void plug() const {
        ASSERT_EQ(mount(stick_.path().c_str(), drive_.c_str(), nullptr, MS_BIND, nullptr), 0);
        ASSERT_TRUE(reports_->wait_for("mounted " + drive_));
    }
    void pull() const { ASSERT_EQ(umount2(drive_.c_str(), MNT_DETACH), 0); }

    void create_and_open(const std::string& name) {
        ASSERT_EQ(qra_playlist_create_v2(file(drive_, name).get()), QRA_ERROR_NONE);
        ASSERT_EQ(qra_playlist_open_v2(file(drive_, name).get(), &playlist_), QRA_ERROR_NONE);
    }

    static TempDir* root_;
    static Reports* reports_;
    static bool has_mounts_;
    static int drives_;
    TempDir stick_;  ///< what is on the drive, wherever it is mounted
    std::string drive_;
    qra_playlist_handler_h playlist_ = nullptr;
};

TempDir* PulledDrive::root_ = nullptr;
Reports* PulledDrive::reports_ = nullptr;
bool PulledDrive::has_mounts_ = false;
int PulledDrive::drives_ = 0;

TEST_F(PulledDrive, IsForgottenAndReadAgainWhenItIsBack) {
    create_and_open("Blues");
    ASSERT_EQ(qra_playlist_exist_v2(file(drive_, "Blues").get()), QRA_ERROR_NONE);
    pull();
    ASSERT_TRUE(reports_->wait_for("unmounted " + drive_));
    EXPECT_EQ(qra_playlist_exist_v2(file(drive_, "Blues").get()), QRA_ERROR_NOT_EXIST);

    stick_.write("1.m3u", "#EXTM3U\n#EXT-X-NAME:Jazz\n");
    plug();
    qra_playlist_handler_h jazz = nullptr;
    EXPECT_EQ(qra_playlist_open_v2(file(drive_, "Jazz").get(), &jazz), QRA_ERROR_NONE);
    EXPECT_EQ(qra_playlist_close_v2(jazz), QRA_ERROR_NONE);
}

TEST_F(PulledDrive, LeavesAnOpenPlaylistThatAnswersWithCodes) {
    create_and_open("Blues");
    ASSERT_EQ(add(playlist_, "1"), QRA_ERROR_NONE);
    ASSERT_EQ(qra_playlist_flush_v2(playlist_), QRA_ERROR_NONE);
    pull();
    ASSERT_TRUE(reports_->wait_for("unmounted " + drive_));
    int count = 0;
    EXPECT_EQ(add(playlist_, "2"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_playlist_get_count_v2(playlist_, &count), QRA_ERROR_NONE);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(qra_playlist_flush_v2(playlist_), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_playlist_rename_v2(playlist_, "Soul"), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(qra_playlist_remove_v2(playlist_), QRA_ERROR_NOT_EXIST);
    EXPECT_TRUE(std::filesystem::is_empty(drive_)) << "the mount point is no place for a playlist";
}

TEST_F(PulledDrive, HoldsAWholePlaylistWhenItIsPulledDuringSaves) {
    create_and_open("Blues");
    constexpr int kSaves = 50;
    std::atomic<int> saves{0};
    std::thread writer([&] {
        while (add(playlist_, "1") == QRA_ERROR_NONE && qra_playlist_flush_v2(playlist_) == QRA_ERROR_NONE)
            ++saves;
    });
    while (saves < kSaves)
        std::this_thread::yield();
    pull();
    writer.join();
    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(stick_.path())) {
        const std::string content = stick_.read(entry.path().filename());
        EXPECT_TRUE(is_whole(content, kSaves)) << content.substr(content.size() - 100);
        ++files;
    }
    EXPECT_EQ(files, 1);
    EXPECT_TRUE(std::filesystem::is_empty(drive_)) << "the mount point is no place for a playlist";
}

TEST_F(PulledDrive, MayBePulledWhileItsPlaylistsAreRead) {
    std::string content = "#EXTM3U\n#EXT-X-NAME:";
    for (int number = 0; number < 5; ++number) {
        std::string list = content + std::to_string(number) + "\n";
        for (int i = 0; i < 2000; ++i)
            list += "#EXTINF:1.|t|a|b|g|2015|9|f|n|1|1|i|/song.mp3|1|n|m|l|1|1|1|5|0\n\n";
        stick_.write(std::to_string(number) + ".m3u", list);
    }
    std::atomic<bool> begun{false};
    qra_error_code_e code = QRA_ERROR_NONE;
    std::thread reader([&] {
        begun = true;
        code = qra_playlist_open_v2(file(drive_, "4").get(), &playlist_);
    });
    while (!begun)
        std::this_thread::yield();
    pull();
    reader.join();
    EXPECT_EQ(code, playlist_ != nullptr ? QRA_ERROR_NONE : QRA_ERROR_NOT_EXIST);
    ASSERT_TRUE(reports_->wait_for("unmounted " + drive_));
    EXPECT_EQ(qra_playlist_exist_v2(file(drive_, "4").get()), QRA_ERROR_NOT_EXIST);
}

}  // namespace
