#include <qra/qra_content_agent.h>

#include <condition_variable>
#include <memory>
#include <mutex>

#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "tests/fakes/fake_usb_device.h"
#include "tests/unit/playlist/playlist_drive.h"

namespace {

using FileParam = std::unique_ptr<qra_playlist_file_s, qra_error_code_e (*)(qra_playlist_file_param_h)>;
using ItemParam = std::unique_ptr<qra_playlist_item_s, qra_error_code_e (*)(qra_playlist_item_param_h)>;

FileParam file(const std::string& path, const std::string& name, int max = 100) {
    qra_playlist_file_param_h param = nullptr;
    qra_create_playlist_file_param(&param);
    qra_param_set_playlist_file_path(param, path.c_str());
    qra_param_set_playlist_file_name(param, name.c_str());
    qra_param_set_playlist_file_max_item_count(param, max);
    return {param, &qra_destroy_playlist_file_param};
}

ItemParam item() {
    qra_playlist_item_param_h param = nullptr;
    qra_create_playlist_item_param(&param);
    return {param, &qra_destroy_playlist_item_param};
}

class PlaylistEntryPoints : public PlaylistDrive {
protected:
    ~PlaylistEntryPoints() override {
        for (const qra_playlist_handler_h handle : handles_)
            qra_playlist_close_v2(handle);
    }

    qra_error_code_e create(const std::string& path, const std::string& name, int max = 100) {
        return qra_playlist_create_v2(file(path, name, max).get());
    }

    qra_playlist_handler_h open(const std::string& path, const std::string& name) {
        qra_playlist_handler_h handle = nullptr;
        EXPECT_EQ(qra_playlist_open_v2(file(path, name).get(), &handle), QRA_ERROR_NONE);
        handles_.push_back(handle);
        return handle;
    }

    qra_error_code_e open_code(const std::string& path, const std::string& name) {
        qra_playlist_handler_h handle = nullptr;
        const qra_error_code_e code = qra_playlist_open_v2(file(path, name).get(), &handle);
        EXPECT_EQ(handle, nullptr);
        return code;
    }

    static qra_error_code_e add(qra_playlist_handler_h handle, const std::string& id) {
        const ItemParam added = item();
        qra_param_set_playlist_item_media_id(added.get(), id.c_str());
        qra_param_set_playlist_item_path(added.get(), ("/m/" + id).c_str());
        return qra_playlist_add_v2(handle, added.get());
    }

    static int count(qra_playlist_handler_h handle) {
        int count = -1;
        EXPECT_EQ(qra_playlist_get_count_v2(handle, &count), QRA_ERROR_NONE);
        return count;
    }

    std::vector<qra_playlist_handler_h> handles_;
};

TEST_F(PlaylistEntryPoints, NullRecordsAreRefused) {
    qra_playlist_handler_h handle = nullptr;
    qra_playlist_file_param_h empty = nullptr;
    qra_create_playlist_file_param(&empty);
    for (const qra_playlist_file_param_h param : {qra_playlist_file_param_h{}, empty}) {
        EXPECT_EQ(qra_playlist_exist_v2(param), QRA_ERROR_INVALID_PARAM);
        EXPECT_EQ(qra_playlist_create_v2(param), QRA_ERROR_INVALID_PARAM);
        EXPECT_EQ(qra_playlist_open_v2(param, &handle), QRA_ERROR_INVALID_PARAM);
    }
    qra_param_set_playlist_file_path(empty, drive().c_str());
    EXPECT_EQ(qra_playlist_create_v2(empty), QRA_ERROR_INVALID_PARAM);
    qra_destroy_playlist_file_param(empty);
    EXPECT_EQ(qra_playlist_open_v2(file(drive(), "a").get(), nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log_.count("Invalid param."), 5);
    EXPECT_EQ(log_.count("Invalid param!"), 3);
}

TEST_F(PlaylistEntryPoints, ADriveIsReadByCreateAndOpenButNotByExist) {
    write("1.m3u", "Blues");
    EXPECT_EQ(qra_playlist_exist_v2(file(drive(), "Blues").get()), QRA_ERROR_NOT_EXIST);
    EXPECT_TRUE(log_.contains("playlist: path[" + drive() + "], name[Blues] not exits."));
    EXPECT_EQ(open_code(drive(), "Soul"), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(qra_playlist_exist_v2(file(drive(), "Blues").get()), QRA_ERROR_NONE);
    EXPECT_TRUE(log_.contains("playlist: path[" + drive() + "], name[Blues] exits."));
    EXPECT_TRUE(log_.contains("Init palylist, mount path[" + drive() + "]."));
}

TEST_F(PlaylistEntryPoints, CreateReadsTheDriveFirst) {
    write("1.m3u", "Blues");
    write("2.m3u", "Jazz");
    write("3.m3u", "Soul");
    write("4.m3u", "Swing");
    EXPECT_EQ(create(drive(), "Blues"), QRA_ERROR_ALREADY_EXIST);
    EXPECT_EQ(create(drive(), "a/b"), QRA_ERROR_CREATE_FAILED);
    EXPECT_EQ(create(drive(), "Rock"), QRA_ERROR_NONE);
    EXPECT_EQ(create(drive(), "Pop"), QRA_ERROR_PLAYLIST_MAX);
    EXPECT_EQ(count_files(drive()), 5);
}

TEST_F(PlaylistEntryPoints, ADriveThatIsNotThereHasNoPlaylists) {
    const std::string gone = root_.path("media/USBDriveZ");
    EXPECT_EQ(create(gone, "a"), QRA_ERROR_INTERNAL);
    EXPECT_EQ(open_code(gone, "a"), QRA_ERROR_NOT_EXIST);
}

TEST_F(PlaylistEntryPoints, APlaylistOnADriveLiesInItsTopDirectory) {
    std::filesystem::create_directories(drive() + "/sub");
    EXPECT_EQ(create(drive() + "/sub", "a"), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(count_files(drive() + "/sub"), 0);
}

TEST_F(PlaylistEntryPoints, SlashesAtTheEndOfAPathDoNotCount) {
    EXPECT_EQ(create(drive() + "//", "a"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_playlist_exist_v2(file(drive() + "/", "a").get()), QRA_ERROR_NONE);
    EXPECT_EQ(count(open(drive() + "/", "a")), 0);
    std::filesystem::create_directories(root_.path("media/usb"));
    EXPECT_EQ(create(root_.path("media/usb/"), "b"), QRA_ERROR_NONE);
}

TEST_F(PlaylistEntryPoints, OnInternalStorageOnlyOneNameIsFoundAgain) {
    EXPECT_EQ(create(flash(), ".bgm"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_playlist_exist_v2(file(flash(), ".bgm").get()), QRA_ERROR_NONE);
    EXPECT_EQ(count(open(flash(), ".bgm")), 0);
    EXPECT_EQ(create(flash(), ".bgm"), QRA_ERROR_INTERNAL);

    EXPECT_EQ(create(flash(), "Blues"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_playlist_exist_v2(file(flash(), "Blues").get()), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(open_code(flash(), "Blues"), QRA_ERROR_INTERNAL);
    EXPECT_EQ(count_files(flash()), 2);
}

TEST_F(PlaylistEntryPoints, HandlesOfADrivesPlaylistShareIt) {
    ASSERT_EQ(create(drive(), "a"), QRA_ERROR_NONE);
    const qra_playlist_handler_h first = open(drive(), "a");
    const qra_playlist_handler_h second = open(drive(), "a");
    EXPECT_EQ(add(first, "1"), QRA_ERROR_NONE);
    EXPECT_EQ(count(second), 1);
}

TEST_F(PlaylistEntryPoints, HandlesOnInternalStorageHaveACopyEach) {
    ASSERT_EQ(create(flash(), ".bgm"), QRA_ERROR_NONE);
    const qra_playlist_handler_h first = open(flash(), ".bgm");
    const qra_playlist_handler_h second = open(flash(), ".bgm");
    EXPECT_EQ(add(first, "1"), QRA_ERROR_NONE);
    EXPECT_EQ(count(second), 0);
}

TEST_F(PlaylistEntryPoints, WhatIsNoOpenPlaylistIsRefusedEverywhere) {
    ASSERT_EQ(create(drive(), "a"), QRA_ERROR_NONE);
    qra_playlist_handler_h closed = nullptr;
    ASSERT_EQ(qra_playlist_open_v2(file(drive(), "a").get(), &closed), QRA_ERROR_NONE);
    ASSERT_EQ(qra_playlist_close_v2(closed), QRA_ERROR_NONE);
    CQRADeviceCheckHandle other;
    CQRAHandlerMgr::GetInstance()->Add(other.GetValue());
    int number = 0;
    const ItemParam any = item();
    for (const qra_playlist_handler_h handle :
         {qra_playlist_handler_h{}, closed, reinterpret_cast<qra_playlist_handler_h>(&other)}) {
        EXPECT_EQ(qra_playlist_close_v2(handle), QRA_ERROR_INVALID_HANDLE);
        EXPECT_EQ(qra_playlist_remove_v2(handle), QRA_ERROR_INVALID_HANDLE);
        EXPECT_EQ(qra_playlist_rename_v2(handle, "b"), QRA_ERROR_INVALID_HANDLE);
        EXPECT_EQ(qra_playlist_add_v2(handle, any.get()), QRA_ERROR_INVALID_HANDLE);
        EXPECT_EQ(qra_playlist_delete_v2(handle, 0), QRA_ERROR_INVALID_HANDLE);
        EXPECT_EQ(qra_playlist_get_count_v2(handle, &number), QRA_ERROR_INVALID_HANDLE);
        EXPECT_EQ(qra_playlist_get_item_v2(handle, 0, any.get()), QRA_ERROR_INVALID_HANDLE);
        EXPECT_EQ(qra_playlist_flush_v2(handle), QRA_ERROR_INVALID_HANDLE);
    }
    CQRAHandlerMgr::GetInstance()->Delete(other.GetValue());
    EXPECT_TRUE(log_.contains("] faild!!"));
}

TEST_F(PlaylistEntryPoints, AHandleWithoutAPlaylistEndsTheProcess) {
    CQRAM3UHandle empty;
    CQRAHandlerMgr::GetInstance()->Add(empty.GetValue());
    EXPECT_DEATH(qra_playlist_flush_v2(&empty),
                 "pHandle != __null && pHandle->GetM3U\\(\\) != __null && pHandle->GetM3U\\(\\).get\\(\\) != "
                 "__null");
    CQRAHandlerMgr::GetInstance()->Delete(empty.GetValue());
}

TEST_F(PlaylistEntryPoints, AnItemComesBackAsItWent) {
    ASSERT_EQ(create(drive(), "a"), QRA_ERROR_NONE);
    const qra_playlist_handler_h handle = open(drive(), "a");
    const ItemParam in = item();
    qra_param_set_playlist_item_media_id(in.get(), "42");
    qra_param_set_playlist_item_path(in.get(), "/m/a.mp3");
    qra_param_set_playlist_item_name(in.get(), "a.mp3");
    qra_param_set_playlist_item_year(in.get(), "2015");
    qra_param_set_playlist_item_duration(in.get(), 215000);
    qra_param_set_playlist_item_size(in.get(), 1ULL << 40);
    qra_param_set_playlist_item_addtime(in.get(), 1500000000);
    qra_param_set_playlist_item_modtime(in.get(), 1500000001);
    qra_param_set_playlist_item_bit_rate(in.get(), 320);
    qra_param_set_playlist_item_drm(in.get(), true);
    ASSERT_EQ(qra_playlist_add_v2(handle, in.get()), QRA_ERROR_NONE);

    const ItemParam out = item();
    ASSERT_EQ(qra_playlist_get_item_v2(handle, 0, out.get()), QRA_ERROR_NONE);
    const auto text = [&](qra_error_code_e (*get)(qra_playlist_item_param_h, char**)) {
        char* value = nullptr;
        EXPECT_EQ(get(out.get(), &value), QRA_ERROR_NONE);
        const std::string copy = value != nullptr ? value : "null";
        free(value);
        return copy;
    };
    EXPECT_EQ(text(&qra_param_get_playlist_item_media_id), "42");
    EXPECT_EQ(text(&qra_param_get_playlist_item_path), "/m/a.mp3");
    EXPECT_EQ(text(&qra_param_get_playlist_item_name), "a.mp3");
    EXPECT_EQ(text(&qra_param_get_playlist_item_year), "2015");
    EXPECT_EQ(text(&qra_param_get_playlist_item_title), "");
    unsigned long long wide = 0;
    time_t time = 0;
    int number = 0;
    bool flag = false;
    qra_param_get_playlist_item_duration(out.get(), &wide);
    EXPECT_EQ(wide, 215000U);
    qra_param_get_playlist_item_size(out.get(), &wide);
    EXPECT_EQ(wide, 1ULL << 40);
    qra_param_get_playlist_item_addtime(out.get(), &time);
    EXPECT_EQ(time, 1500000000);
    qra_param_get_playlist_item_modtime(out.get(), &time);
    EXPECT_EQ(time, 1500000001);
    qra_param_get_playlist_item_bit_rate(out.get(), &number);
    EXPECT_EQ(number, 320);
    qra_param_get_playlist_item_drm(out.get(), &flag);
    EXPECT_TRUE(flag);
}

TEST_F(PlaylistEntryPoints, AnItemNeedsAnIdAndAPath) {
    ASSERT_EQ(create(drive(), "a", 1), QRA_ERROR_NONE);
    const qra_playlist_handler_h handle = open(drive(), "a");
    const ItemParam without_path = item();
    qra_param_set_playlist_item_media_id(without_path.get(), "1");
    const ItemParam without_id = item();
    qra_param_set_playlist_item_path(without_id.get(), "/m/1");
    EXPECT_EQ(qra_playlist_add_v2(handle, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_playlist_add_v2(handle, without_path.get()), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_playlist_add_v2(handle, without_id.get()), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log_.count("Invalid param!!"), 3);
    EXPECT_EQ(add(handle, "1"), QRA_ERROR_NONE);
    EXPECT_EQ(add(handle, "2"), QRA_ERROR_INTERNAL) << "full";
}

TEST_F(PlaylistEntryPoints, BadPositionsHaveTheirCodes) {
    ASSERT_EQ(create(drive(), "a"), QRA_ERROR_NONE);
    const qra_playlist_handler_h handle = open(drive(), "a");
    const ItemParam out = item();
    EXPECT_EQ(qra_playlist_get_item_v2(handle, 0, nullptr), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_playlist_get_item_v2(handle, -1, out.get()), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_playlist_delete_v2(handle, 0), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_playlist_get_count_v2(handle, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_playlist_rename_v2(handle, nullptr), QRA_ERROR_INVALID_PARAM);
    ASSERT_EQ(add(handle, "1"), QRA_ERROR_NONE);
    EXPECT_EQ(qra_playlist_get_item_v2(handle, 0, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log_.contains("szItem == NULL"));
    EXPECT_TRUE(log_.contains("szCount == NULL"));
}

TEST_F(PlaylistEntryPoints, OnlyAFlushSaves) {
    ASSERT_EQ(create(flash(), ".bgm"), QRA_ERROR_NONE);
    const qra_playlist_handler_h writer = open(flash(), ".bgm");
    ASSERT_EQ(add(writer, "1"), QRA_ERROR_NONE);
    EXPECT_EQ(count(open(flash(), ".bgm")), 0);
    ASSERT_EQ(qra_playlist_flush_v2(writer), QRA_ERROR_NONE);
    EXPECT_EQ(count(open(flash(), ".bgm")), 1);
    ASSERT_EQ(qra_playlist_delete_v2(writer, 0), QRA_ERROR_NONE);
    EXPECT_EQ(count(open(flash(), ".bgm")), 1);
}

TEST_F(PlaylistEntryPoints, RenameAndRemoveGoThroughTheDrive) {
    ASSERT_EQ(create(drive(), "a"), QRA_ERROR_NONE);
    write("2.m3u", "unseen");
    const qra_playlist_handler_h handle = open(drive(), "a");
    EXPECT_EQ(qra_playlist_rename_v2(handle, "a"), QRA_ERROR_ALREADY_EXIST);
    EXPECT_EQ(qra_playlist_rename_v2(handle, "b/c"), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_playlist_rename_v2(handle, "b"), QRA_ERROR_NONE);
    EXPECT_EQ(open_code(drive(), "a"), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(count(open(drive(), "b")), 0);
    EXPECT_EQ(qra_playlist_remove_v2(handle), QRA_ERROR_NONE);
    EXPECT_EQ(qra_playlist_remove_v2(handle), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(qra_playlist_flush_v2(handle), QRA_ERROR_INTERNAL);
    EXPECT_EQ(count_files(drive()), 1);
}

TEST_F(PlaylistEntryPoints, RenameAndRemoveWorkOnInternalStorage) {
    ASSERT_EQ(create(flash(), ".bgm"), QRA_ERROR_NONE);
    const qra_playlist_handler_h handle = open(flash(), ".bgm");
    EXPECT_EQ(qra_playlist_rename_v2(handle, "b"), QRA_ERROR_NONE);
    EXPECT_NE(root_.read("flash/.bgm.m3u").find("#EXT-X-NAME:b\n"), std::string::npos);
    EXPECT_EQ(qra_playlist_remove_v2(handle), QRA_ERROR_NONE);
    EXPECT_EQ(count_files(flash()), 0);
    EXPECT_EQ(qra_playlist_remove_v2(handle), QRA_ERROR_NONE);
}

TEST_F(PlaylistEntryPoints, APulledDriveLeavesTheHandleAlive) {
    ASSERT_EQ(create(drive(), "a"), QRA_ERROR_NONE);
    const qra_playlist_handler_h handle = open(drive(), "a");
    ASSERT_EQ(add(handle, "1"), QRA_ERROR_NONE);
    std::filesystem::remove_all(drive());
    FakeUsbDevice::send("unmounted", drive().c_str());
    EXPECT_EQ(count(handle), 1);
    EXPECT_EQ(qra_playlist_flush_v2(handle), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_playlist_rename_v2(handle, "b"), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(qra_playlist_remove_v2(handle), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(open_code(drive(), "a"), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(create(drive(), "a"), QRA_ERROR_INTERNAL);
}

TEST_F(PlaylistEntryPoints, ADriveThatMovedShowsItsItemsUnderTheNewPath) {
    ASSERT_EQ(create(drive(), "a"), QRA_ERROR_NONE);
    const qra_playlist_handler_h handle = open(drive(), "a");
    const ItemParam in = item();
    qra_param_set_playlist_item_media_id(in.get(), "1");
    qra_param_set_playlist_item_path(in.get(), (drive() + "/song.mp3").c_str());
    ASSERT_EQ(qra_playlist_add_v2(handle, in.get()), QRA_ERROR_NONE);
    ASSERT_EQ(qra_playlist_flush_v2(handle), QRA_ERROR_NONE);
    const std::string moved = root_.path("media/USBDriveB");
    std::filesystem::rename(drive(), moved);
    FakeUsbDevice::send("unmounted", drive().c_str());

    const ItemParam out = item();
    ASSERT_EQ(qra_playlist_get_item_v2(open(moved, "a"), 0, out.get()), QRA_ERROR_NONE);
    char* path = nullptr;
    qra_param_get_playlist_item_path(out.get(), &path);
    EXPECT_EQ(std::string(path), moved + "/song.mp3");
    free(path);
}

TEST_F(PlaylistEntryPoints, TheMountPathOfADriveEndsAtTheFirstSlashBehindItsName) {
    std::string mount_path;
    const auto cut = [&](const std::string& path) {
        CQRALocalAgent::m_InitAllPlayList(root_.path("media") + path, mount_path);
        return mount_path.substr(root_.path("media").size());
    };
    EXPECT_EQ(cut("/USBDriveA"), "/USBDriveA");
    EXPECT_EQ(cut("/USBDriveA/music/x"), "/USBDriveA");
    EXPECT_EQ(cut("/usb/a"), "/usb/a");
    EXPECT_EQ(cut("/usb/abc/d"), "/usb/abc");
    EXPECT_EQ(cut("/1234567/8"), "/1234567");
    EXPECT_EQ(cut("/123456/8"), "/123456");
    EXPECT_EQ(cut("/12345/8/9"), "/12345/8");
}

/// A list request for a playlist's songs through the client interface.
class PlaylistRequest : public PlaylistEntryPoints {
protected:
    ~PlaylistRequest() override { qra_disconnect_v2(agent_); }

    static bool on_list(void* self_pointer, CQRAAgentHandle*, qra_event_e event, int, const char*) {
        auto* self = static_cast<PlaylistRequest*>(self_pointer);
        const std::lock_guard<std::mutex> lock(self->mutex_);
        self->event_ = event;
        self->changed_.notify_all();
        return true;
    }

    qra_error_code_e request(const std::string& path, const std::string& name,
                             const char* type = "CONTENT-MUSIC", const char* category = "CATEGORY-TITLE") {
        qra_general_param_h param = nullptr;
        qra_create_general_param(&param);
        qra_param_set_general_source(param, "SOURCE_PLAYLIST");
        qra_param_set_general_path(param, path.c_str());
        qra_param_set_general_playlist_name(param, name.c_str());
        qra_param_set_general_content_type(param, type);
        qra_param_set_general_sort_category(param, category);
        const qra_error_code_e code = qra_request_list_v2(param, &on_list, this, &agent_);
        qra_destroy_general_param(param);
        return code;
    }

    int event() {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(30), [this] { return event_ >= 0; });
        return event_;
    }

    void show() {
        qra_page_param_h style = nullptr;
        qra_create_page_param(&style);
        qra_param_set_page_style_mask(style, 0x04);
        qra_param_set_page_style_group_index(style, -1);
        EXPECT_EQ(qra_set_page_style_v2(agent_, style), QRA_ERROR_NONE);
        qra_destroy_page_param(style);
    }

    qra_agent_handler_h agent_ = nullptr;
    std::mutex mutex_;
    std::condition_variable changed_;
    int event_ = -1;
};

TEST_F(PlaylistRequest, ShowsTheSongsAsTiles) {
    write("1.m3u", "Blues", "abc");
    ASSERT_EQ(request(drive() + "/", "Blues"), QRA_ERROR_NONE);
    ASSERT_EQ(event(), QRA_EVENT_LIST_SUCCESS);
    show();
    int number = 0;
    EXPECT_EQ(qra_get_item_count_v2(agent_, &number), QRA_ERROR_NONE);
    EXPECT_EQ(number, 3);
    EXPECT_EQ(qra_get_item_count_by_type_v2(agent_, QRA_MEDIA_TYPE_MUSIC, &number), QRA_ERROR_NONE);
    EXPECT_EQ(number, 3);
    char* text = nullptr;
    ASSERT_EQ(qra_get_item_v2(agent_, 1, &text), QRA_ERROR_NONE);
    EXPECT_NE(std::string(text).find("\"ID_QRA\":\"b\""), std::string::npos) << text;
    free(text);
    text = nullptr;
    EXPECT_EQ(qra_get_item_value_char_v2(agent_, "QRA_MEDIA_FOCUS_ID", &text), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_get_page_index_v2(agent_, const_cast<char*>("c"), &number), QRA_ERROR_NONE);
    EXPECT_EQ(number, 2);
}

TEST_F(PlaylistRequest, APlaylistWithoutSongsOrOfNoSuchNameFails) {
    write("1.m3u", "Empty");
    ASSERT_EQ(request(drive(), "Empty"), QRA_ERROR_NONE);
    EXPECT_EQ(event(), QRA_EVENT_LIST_FAILED);
    qra_disconnect_v2(agent_);
    agent_ = nullptr;
    event_ = -1;
    ASSERT_EQ(request(drive(), "Soul"), QRA_ERROR_NONE);
    EXPECT_EQ(event(), QRA_EVENT_LIST_FAILED);
}

TEST_F(PlaylistRequest, NeedsItsFourTexts) {
    EXPECT_EQ(request(drive(), "Blues", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(request(drive(), "Blues", "CONTENT-MUSIC", nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(request("", "Blues"), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(request(drive(), ""), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(agent_, nullptr);
}

TEST_F(PlaylistRequest, AnOpenListOutlivesItsDrive) {
    write("1.m3u", "Blues", "abc");
    ASSERT_EQ(request(drive(), "Blues"), QRA_ERROR_NONE);
    ASSERT_EQ(event(), QRA_EVENT_LIST_SUCCESS);
    show();
    EXPECT_EQ(qra_playlist_remove_v2(open(drive(), "Blues")), QRA_ERROR_NONE);
    FakeUsbDevice::send("unmounted", drive().c_str());
    char* text = nullptr;
    ASSERT_EQ(qra_move_to_index_v2(agent_, 2), QRA_ERROR_NONE);
    ASSERT_EQ(qra_get_item_value_char_v2(agent_, "FILE_PATH", &text), QRA_ERROR_NONE);
    EXPECT_EQ(std::string(text), drive() + "/c.mp3");
    free(text);
}

}  // namespace
