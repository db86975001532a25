#include "engine/src/devices/mount_table.h"

#include <gtest/gtest.h>

using engine::is_within;

namespace {

TEST(IsWithin, TakesWholeNamesOnly) {
    EXPECT_TRUE(is_within("/media/stick", "/media/stick"));
    EXPECT_TRUE(is_within("/media/stick/a", "/media/stick"));
    EXPECT_TRUE(is_within("/media/stick", "/"));
    EXPECT_FALSE(is_within("/media/sticky", "/media/stick"));
    EXPECT_FALSE(is_within("/media", "/media/stick"));
}

TEST(MountOf, IsTheNearestMountAboveADirectory) {
    const engine::Mount processes = engine::mount_of("/proc/self");
    EXPECT_EQ("/proc", processes.point);
    EXPECT_EQ("proc", processes.file_system);
    EXPECT_EQ("/", engine::mount_of("/").point);
}

TEST(MountPointOf, IsEmptyForWhatIsNotMounted) {
    EXPECT_EQ("", engine::mount_point_of("/dev/no-such-device"));
    EXPECT_EQ("", engine::mount_point_of(""));
}

TEST(IsSystemPath, KnowsTheSystemsOwnMounts) {
    EXPECT_TRUE(engine::is_system_path("/"));
    EXPECT_TRUE(engine::is_system_path("/boot"));
    EXPECT_FALSE(engine::is_system_path("/media/stick"));
}

}  // namespace
