#include "apps/qra/directory_path.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "apps/qra/exit_status.h"
#include "tests/fakes/temp_dir.h"
#include "tests/fakes/without_roots_rights.h"

namespace {

/// What refuses a path; empty if nothing does.
std::string refusal_of(std::string (*check)(const std::string&), const std::string& path) {
    try {
        check(path);
    } catch (const CommandError& error) {
        return error.what();
    }
    return "";
}

TEST(DirectoryPath, HasNoLinksAndRelativeParts) {
    const TempDir directory;
    const std::string root = std::filesystem::canonical(directory.path());
    std::filesystem::create_directory(directory.path("folder"));
    std::filesystem::create_symlink("folder", directory.path("link"));
    for (const char* path : {"folder", "link", "folder/../link/."}) {
        EXPECT_EQ(existing_directory(directory.path(path)), root + "/folder");
        EXPECT_EQ(readable_directory(directory.path(path)), root + "/folder");
    }
}

TEST(DirectoryPath, SaysWhyItIsRefused) {
    const TempDir directory;
    directory.write("file", "");
    for (const auto check : {existing_directory, readable_directory}) {
        EXPECT_EQ(refusal_of(check, directory.path("missing")),
                  directory.path("missing") + ": No such file or directory");
        EXPECT_EQ(refusal_of(check, directory.path("file")), directory.path("file") + ": Not a directory");
        EXPECT_THAT(refusal_of(check, ""), testing::StartsWith("''"));
    }
}

TEST(DirectoryPath, FolderThatMayNotBeSeenIsRefusedForReadingOnly) {
    const TempDir directory;
    const std::string folder = directory.path("folder");
    std::filesystem::create_directory(folder);
    ASSERT_EQ(chmod(directory.path().c_str(), 0755), 0);
    ASSERT_EQ(chmod(folder.c_str(), 0311), 0);
    const WithoutRootsRights rights;
    if (!WithoutRootsRights::are_usual_in(directory.path())) {
        GTEST_SKIP() << "there is no user without root's rights here, or the test's directory is not for it";
    }
    EXPECT_EQ(refusal_of(existing_directory, folder), "");
    EXPECT_EQ(refusal_of(readable_directory, folder), folder + ": Permission denied");
}

}  // namespace
