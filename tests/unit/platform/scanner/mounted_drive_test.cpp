#include <sys/mount.h>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/own_mounts.h"
#include "tests/unit/platform/scanner/scanned_drive.h"

namespace media_content {
namespace {

/// A drive on a file system of its own.
class MountedDrive : public TemporaryDirectories {
protected:
    void SetUp() override {
        if (!have_own_mounts()) {
            GTEST_SKIP() << "no mount namespace is to be had here";
        }
        stick_ = directory("mounted");
        ASSERT_TRUE(mount_memory(stick_, "size=16m"));
        mounted_ = true;
    }
    void TearDown() override {
        while (media_content_disconnect() == 0) {
        }
        if (mounted_) {
            umount2(stick_.c_str(), MNT_DETACH);
        }
    }

    void connect_and_attach() {
        ASSERT_EQ(media_content_connect(), 0);
        char* path = nullptr;
        ASSERT_EQ(media_content_admin_attach(stick_.c_str(), nullptr, &path), 0);
        path_ = path;
        free(path);
    }

    void put_many(int count) const {
        for (int i = 0; i < count; ++i) {
            std::filesystem::copy_file(std::string(QRA_FIXTURES) + "/pictures/photo.jpg",
                                       stick_ + "/" + std::to_string(i) + ".jpg");
        }
    }

    int scan() const { return media_content_admin_scan(path_.c_str(), true, nullptr, nullptr); }

    static int64_t media_count() {
        const auto database = connected_database();
        Database::ReadLease reader(*database);
        Query query(reader.connection(), "SELECT count(*) FROM media");
        query.step();
        return query.integer(0);
    }

    std::string stick_;
    std::string path_;
    bool mounted_ = false;
};

TEST_F(MountedDrive, ThatIsUnmountedIsAbsentAndNotEmpty) {
    connect_and_attach();
    put_many(5);
    ASSERT_EQ(scan(), 0);
    ASSERT_EQ(umount2(stick_.c_str(), 0), 0);
    mounted_ = false;
    EXPECT_EQ(scan(), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(media_count(), 5);
}

TEST_F(MountedDrive, ThatIsReplacedByAnotherOneKeepsItsRows) {
    connect_and_attach();
    put_many(5);
    ASSERT_EQ(scan(), 0);
    ASSERT_EQ(umount2(stick_.c_str(), 0), 0);
    ASSERT_TRUE(mount_memory(stick_, "size=16m"));
    scan();
    EXPECT_EQ(media_count(), 5);
}

TEST_F(MountedDrive, ScannedIntoAFullDiskFailsAndKeepsWhatWasWritten) {
    const std::string data = directory("data");
    ASSERT_TRUE(mount_memory(data, "size=1400k"));
    connect_and_attach();
    put_many(4000);
    LogCapture log;
    EXPECT_EQ(scan(), MEDIA_CONTENT_ERROR_DISK_FULL) << log.text();
    const int64_t written = media_count();
    EXPECT_GT(written, 0);
    EXPECT_LT(written, 4000);
    ASSERT_EQ(mount("tmpfs", data.c_str(), "tmpfs", MS_REMOUNT, "size=64m"), 0);
    EXPECT_EQ(scan(), 0) << log.text();
    EXPECT_EQ(media_count(), 4000);
    while (media_content_disconnect() == 0) {
    }
    umount2(data.c_str(), MNT_DETACH);
}

}  // namespace
}  // namespace media_content
