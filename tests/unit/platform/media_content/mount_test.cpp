#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>

#include "platform/media-content/host/storage/filesystem_identity.h"
#include "tests/unit/platform/media_content/contract.h"
#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {
namespace {

void write_text(const char* path, const std::string& text) {
    std::ofstream(path) << text;
}

/// Makes a mount namespace of the process's own, where it may mount. False where the system does not allow
/// that.
bool enter_mount_namespace() {
    const uid_t user = getuid();
    const gid_t group = getgid();
    if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        return false;
    }
    write_text("/proc/self/setgroups", "deny");
    write_text("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
    write_text("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

class Mounts : public TemporaryDirectories {
protected:
    void SetUp() override {
        if (!enter_mount_namespace()) {
            GTEST_SKIP() << "this system lets nobody mount";
        }
        ASSERT_EQ(media_content_connect(), 0);
        point_ = directory("stick");
    }
    ~Mounts() override {
        if (point_.empty()) {
            return;
        }
        media_content_disconnect();
        while (umount2(point_.c_str(), MNT_DETACH) == 0) {
        }
    }

    bool plug_in() { return mount("tmpfs", point_.c_str(), "tmpfs", 0, "size=64k") == 0; }
    void pull_out() { umount2(point_.c_str(), MNT_DETACH); }

    StoragePath attach_point() { return attach(*connected_database(), point_, ""); }
    int status_of(const std::string& id) {
        int status = -1;
        media_storage_get_scan_status(id.c_str(), &status);
        return status;
    }

    std::string point_;
};

TEST_F(Mounts, AStickThatIsPulledOutIsAbsentAndNotEmpty) {
    ASSERT_TRUE(plug_in());
    const Storage stick = attach_point().storage;
    {
        MediaWriter writer(*connected_database());
        writer.put_file(writer.ensure_folder(stick.key, "", 0), FileFacts{"a.jpg", 1, 0}, MediaRecord{});
        writer.commit();
    }
    EXPECT_EQ(status_of(stick.id), MEDIA_SCAN_STATUS_NONE);
    pull_out();
    EXPECT_FALSE(is_mounted(stick));
    EXPECT_EQ(status_of(stick.id), MEDIA_SCAN_STATUS_INVALID);
    EXPECT_EQ(storage_names(nullptr), Names{});
    EXPECT_EQ(media_names(TestFilter(stick.id)), Names{"a.jpg"});
}

TEST_F(Mounts, AnotherStickInTheSamePlaceIsAnotherDrive) {
    ASSERT_TRUE(plug_in());
    const Storage first = attach_point().storage;
    pull_out();
    ASSERT_TRUE(plug_in());
    const Storage second = attach_point().storage;
    EXPECT_NE(first.id, second.id);
    EXPECT_TRUE(is_mounted(second));
    EXPECT_EQ(storage_names(nullptr), Names{second.name()});
    EXPECT_EQ(status_of(first.id), MEDIA_SCAN_STATUS_INVALID);
}

TEST_F(Mounts, AFolderHasItsIdWhereverItIsMounted) {
    const std::string folder = directory("some where");
    const std::string elsewhere = directory("else where");
    ASSERT_EQ(mount(folder.c_str(), elsewhere.c_str(), nullptr, MS_BIND, nullptr), 0);
    EXPECT_EQ(directory_id(elsewhere), directory_id(folder));
    std::filesystem::create_directories(folder + "/deep");
    EXPECT_EQ(directory_id(elsewhere + "/deep"), directory_id(folder + "/deep"));
    EXPECT_NE(directory_id(elsewhere + "/deep"), directory_id(folder));
    umount2(elsewhere.c_str(), MNT_DETACH);
}

TEST_F(Mounts, AnInsertIsRefusedAsSoonAsItsStickIsNotTheAttachedOne) {
    const auto insert = [this] {
        media_info_h media = nullptr;
        const int result = media_info_insert_to_db((point_ + "/a.jpg").c_str(), &media);
        media_info_destroy(media);
        return result;
    };
    ASSERT_TRUE(plug_in());
    write_text((point_ + "/a.jpg").c_str(), "picture");
    attach_point();
    EXPECT_EQ(insert(), MEDIA_CONTENT_ERROR_NONE);
    EXPECT_EQ(insert(), MEDIA_CONTENT_ERROR_NONE);
    pull_out();
    write_text((point_ + "/a.jpg").c_str(), "in the empty mount point");
    EXPECT_EQ(insert(), MEDIA_CONTENT_ERROR_NOT_FOUND);
    ASSERT_TRUE(plug_in());
    write_text((point_ + "/a.jpg").c_str(), "on another stick");
    EXPECT_EQ(insert(), MEDIA_CONTENT_ERROR_NOT_FOUND);
    attach_point();
    EXPECT_EQ(insert(), MEDIA_CONTENT_ERROR_NONE);
}

TEST_F(Mounts, AKnownIdIsTheIdWhateverIsMountedAndUnmounted) {
    const std::vector<std::string> places = {point_, directory("a"), directory("a/b"), directory("c")};
    std::vector<std::string> mounted;
    std::mt19937 random(7);
    const auto any_place = [&] { return places[random() % places.size()]; };
    for (int step = 0; step < 120; ++step) {
        switch (random() % 4) {
            case 0:
                mounted.push_back(any_place());
                ASSERT_EQ(mount("tmpfs", mounted.back().c_str(), "tmpfs", 0, "size=64k"), 0) << step;
                break;
            case 1:
                mounted.push_back(any_place());
                ASSERT_EQ(mount(any_place().c_str(), mounted.back().c_str(), nullptr, MS_BIND, nullptr), 0);
                break;
            case 2:
                umount2(any_place().c_str(), MNT_DETACH);
                break;
            default:
                break;  // asked again without a change
        }
        std::filesystem::create_directories(places[2]);  // what was mounted above it hides it
        for (const std::string& place : places) {
            ASSERT_EQ(known_directory_id(place), directory_id(place)) << step << " " << place;
        }
    }
    for (const std::string& place : mounted) {
        umount2(place.c_str(), MNT_DETACH);
    }
}

TEST_F(Mounts, AKnownIdIsRightAgainAfterOthersAskedDuringAChange) {
    const auto empty = directory_id(point_);
    std::atomic<bool> over{false};
    std::vector<std::thread> askers;
    for (int i = 0; i < 3; ++i) {
        askers.emplace_back([&] {
            while (!over) {
                known_directory_id(point_);
            }
        });
    }
    for (int round = 0; round < 30; ++round) {
        EXPECT_TRUE(plug_in());
        EXPECT_NE(known_directory_id(point_), empty) << round;
        pull_out();
        EXPECT_EQ(known_directory_id(point_), empty) << round;
    }
    over = true;
    for (std::thread& asker : askers) {
        asker.join();
    }
}

/// The device file of a directory's file system; empty if there is none.
std::string device_file_of(const std::string& directory) {
    struct stat status {};
    stat(directory.c_str(), &status);
    for (const auto& entry : std::filesystem::directory_iterator("/dev")) {
        struct stat device {};
        if (stat(entry.path().c_str(), &device) == 0 && S_ISBLK(device.st_mode) &&
            device.st_rdev == status.st_dev) {
            return entry.path().filename();
        }
    }
    return {};
}

TEST_F(Mounts, AKnownIdFollowsTheDeviceDatabase) {
    const std::string folder = directory("folder");
    const std::string device = device_file_of(folder);
    if (device.empty()) {
        GTEST_SKIP() << folder << " is on no device";
    }
    const std::string devices = directory("devices");
    if (mount("/dev", devices.c_str(), nullptr, MS_BIND | MS_REC, nullptr) != 0 ||
        mount("tmpfs", "/dev", "tmpfs", 0, "size=64k") != 0) {
        GTEST_SKIP() << "this system lets nobody mount over /dev";
    }
    const std::string name = "/dev/disk/by-uuid/1234-5678";
    const auto without_database = known_directory_id(folder);
    std::filesystem::create_directories("/dev/disk/by-uuid");
    std::filesystem::create_symlink(devices + "/" + device, name);
    const auto with_name = known_directory_id(folder);
    EXPECT_NE(with_name, without_database);
    EXPECT_EQ(with_name, directory_id(folder));
    EXPECT_EQ(known_directory_id(folder), with_name);
    std::filesystem::remove_all("/dev/disk");
    EXPECT_EQ(known_directory_id(folder), without_database);
    umount2("/dev", MNT_DETACH);
    umount2(devices.c_str(), MNT_DETACH);
}

}  // namespace
}  // namespace media_content
