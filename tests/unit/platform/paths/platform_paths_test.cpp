#include "platform_paths.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace {

class PlatformPaths : public testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"QRA_APP_DIR", "QRA_MEDIA_ROOT", "QRA_DATA_DIR", "XDG_DATA_HOME"}) {
            unsetenv(name);
        }
        setenv("HOME", "/home/viewer", 1);
    }
};

TEST_F(PlatformPaths, TheMediaRootIsTheOneOfTheEnvironment) {
    setenv("QRA_MEDIA_ROOT", "/media/drives", 1);
    EXPECT_STREQ(platform_path_get(PLATFORM_PATH_MEDIA_ROOT), "/media/drives");
}

TEST_F(PlatformPaths, TheNumbersAreThoseOfTheContract) {
    setenv("QRA_MEDIA_ROOT", "/a", 1);
    setenv("QRA_APP_DIR", "/b", 1);
    EXPECT_STREQ(platform_path_get(43), "/a");
    EXPECT_STREQ(platform_path_get(31), "/b");
}

TEST_F(PlatformPaths, SlashesAtTheEndAreDropped) {
    setenv("QRA_APP_DIR", "/srv/app//", 1);
    EXPECT_STREQ(platform_path_get(PLATFORM_PATH_USER_APP), "/srv/app");
}

TEST_F(PlatformPaths, ARelativeOverrideIsIgnored) {
    setenv("QRA_DATA_DIR", "/data", 1);
    setenv("QRA_MEDIA_ROOT", "here", 1);
    EXPECT_STREQ(platform_path_get(PLATFORM_PATH_MEDIA_ROOT), "/data/media");
}

TEST_F(PlatformPaths, TheMediaRootLiesInTheDataDirectorySoThatAllProcessesAgree) {
    setenv("QRA_DATA_DIR", "/data", 1);
    EXPECT_STREQ(platform_path_get(PLATFORM_PATH_DATA), "/data");
    EXPECT_STREQ(platform_path_get(PLATFORM_PATH_MEDIA_ROOT), "/data/media");
}

TEST_F(PlatformPaths, TheApplicationDirectoryIsTheUsersOwn) {
    EXPECT_STREQ(platform_path_get(PLATFORM_PATH_USER_APP),
                 "/home/viewer/.local/share/qra-content-agent/apps");
}

TEST_F(PlatformPaths, XdgDataHomeMovesTheApplicationDirectory) {
    setenv("XDG_DATA_HOME", "/xdg", 1);
    EXPECT_STREQ(platform_path_get(PLATFORM_PATH_USER_APP), "/xdg/qra-content-agent/apps");
}

TEST_F(PlatformPaths, AnUnknownNumberHasNoPath) {
    EXPECT_EQ(platform_path_get(0), nullptr);
    EXPECT_EQ(platform_path_get(-1), nullptr);
}

TEST_F(PlatformPaths, AnAnswerStaysValidAfterAChange) {
    setenv("QRA_APP_DIR", "/first", 1);
    const char* first = platform_path_get(PLATFORM_PATH_USER_APP);
    setenv("QRA_APP_DIR", "/second", 1);
    EXPECT_STREQ(platform_path_get(PLATFORM_PATH_USER_APP), "/second");
    EXPECT_STREQ(first, "/first");
}

}  // namespace
