#include <gmock/gmock.h>
#include <sys/mount.h>

#include <fstream>

#include "tests/fakes/own_mounts.h"
#include "tests/fakes/recording_maker.h"
#include "tests/unit/platform/recording/recording_fixture.h"

namespace {

using testing::ElementsAre;

/// Recordings on a drive of one mebibyte.
class RecordingDrive : public RecordingTest {
protected:
    void SetUp() override {
        if (!have_own_mounts()) {
            GTEST_SKIP() << "no mount namespace is to be had here";
        }
        ASSERT_TRUE(mount_memory(directory_.path(), "size=1m"));
        mounted_ = true;
        ASSERT_TRUE(make_recording(path("news.srf"), {}));
    }
    void TearDown() override {
        if (mounted_) {
            umount2(directory_.path().c_str(), MNT_DETACH);
        }
    }

    void fill() const { std::ofstream(path("fill")) << std::string(2 << 20, 'x'); }

    bool mounted_ = false;
};

TEST_F(RecordingDrive, FullOneKeepsTheOldInfoFile) {
    const std::string before = directory_.read("news.inf");
    fill();

    EXPECT_EQ(lock(path("news.srf"), true), SVC_PVR_ERROR_WRITE_FAILED);

    EXPECT_EQ(directory_.read("news.inf"), before);
    EXPECT_THAT(names(), ElementsAre("fill", "news.inf", "news.srf"));
}

TEST_F(RecordingDrive, FullOneLetsRecordingsBeDeleted) {
    fill();
    int out = -1;

    EXPECT_EQ(svc_pvr_delete_record_file(path("news.srf").c_str(), &out), SVC_PVR_ERROR_NONE);

    EXPECT_THAT(names(), ElementsAre("fill"));
}

TEST_F(RecordingDrive, ReadOnlyOneRefusesEveryChange) {
    const std::string before = directory_.read("news.inf");
    ASSERT_TRUE(make_mount_read_only(directory_.path()));
    int out = -1;

    EXPECT_EQ(lock(path("news.srf"), true), SVC_PVR_ERROR_WRITE_FAILED);
    EXPECT_EQ(svc_pvr_delete_record_file(path("news.srf").c_str(), &out), SVC_PVR_ERROR_WRITE_FAILED);

    EXPECT_EQ(out, SVC_PVR_DELETE_NOTHING);
    EXPECT_EQ(directory_.read("news.inf"), before);
    EXPECT_THAT(names(), ElementsAre("news.inf", "news.srf"));
}

TEST_F(RecordingDrive, ReadOnlyOneTakesARecordThatChangesNothing) {
    ASSERT_TRUE(make_mount_read_only(directory_.path()));

    EXPECT_EQ(lock(path("news.srf"), false), SVC_PVR_ERROR_NONE);
}

}  // namespace
