#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <fstream>

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

}  // namespace
}  // namespace media_content
