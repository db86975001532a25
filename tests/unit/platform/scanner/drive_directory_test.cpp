#include "platform/media-content/host/scanner/drive_directory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {
namespace {

namespace fs = std::filesystem;

class DriveDirectoryTest : public TemporaryDirectories {
protected:
    DriveDirectoryTest() : drive_(directory("drive")) {
        directory("outside");
        write_file("outside/secret.jpg", "x");
    }

    std::shared_ptr<const DriveDirectory> open_drive(const std::string& relative = "") const {
        const auto root = DriveDirectory::open_root(drive_);
        return root ? DriveDirectory::open_path(root, relative) : nullptr;
    }

    /// Names of what is listed, folders with a slash behind.
    std::vector<std::string> list(const std::string& relative = "") const {
        std::vector<std::string> names;
        Listing listing;
        const auto directory = open_drive(relative);
        EXPECT_TRUE(directory && directory->list(stop_, listing)) << relative;
        for (const ListedFile& file : listing.files) {
            names.push_back(file.facts.name);
        }
        for (const ListedFolder& folder : listing.folders) {
            names.push_back(folder.name + "/");
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    void link(const std::string& name, const std::string& target) const {
        fs::create_symlink(target, drive_ + "/" + name);
    }

    std::string drive_;
    std::atomic<bool> stop_{false};
};

using Names = std::vector<std::string>;

TEST_F(DriveDirectoryTest, ListsMediaFilesAndFolders) {
    write_file("drive/b.jpg", "12345");
    write_file("drive/note.txt");
    write_file("drive/.hidden.jpg");
    write_file("drive/._b.jpg");
    directory("drive/sub");
    directory("drive/$RECYCLE.BIN");
    directory("drive/folder.jpg");
    EXPECT_EQ(list(), (Names{"b.jpg", "folder.jpg/", "sub/"}));
}

TEST_F(DriveDirectoryTest, TellsSizeAndTime) {
    write_file("drive/b.jpg", "12345");
    const timespec times[2] = {{0, 0}, {1234567890, 987654321}};
    ASSERT_EQ(utimensat(AT_FDCWD, (drive_ + "/b.jpg").c_str(), times, 0), 0);
    Listing listing;
    ASSERT_TRUE(open_drive()->list(stop_, listing));
    ASSERT_EQ(listing.files.size(), 1U);
    EXPECT_EQ(listing.files[0].facts.size, 5);
    EXPECT_EQ(listing.files[0].facts.modified_ns, 1234567890987654321);
}

TEST_F(DriveDirectoryTest, NothingButFilesAndFoldersIsListed) {
    ASSERT_EQ(mkfifo((drive_ + "/pipe.jpg").c_str(), 0600), 0);
    EXPECT_EQ(list(), Names());
    EXPECT_TRUE(open_drive()->open_file("pipe.jpg", false));  // does not block
}

TEST_F(DriveDirectoryTest, LinksThatStayInsideAreListed) {
    write_file("drive/sub/b.jpg");
    link("relative", "sub");
    link("absolute", drive_ + "/sub");
    link("file.jpg", "sub/b.jpg");
    EXPECT_EQ(list(), (Names{"absolute/", "file.jpg", "relative/", "sub/"}));
    EXPECT_EQ(list("/relative"), Names{"b.jpg"});
    EXPECT_EQ(list("/absolute"), Names{"b.jpg"});
    EXPECT_TRUE(open_drive()->open_file("file.jpg", true));
}

TEST_F(DriveDirectoryTest, LinksThatLeadOutAreNot) {
    link("out", "../outside");
    link("out_absolute", root() + "/outside");
    link("secret.jpg", "../outside/secret.jpg");
    link("dangling.jpg", "nowhere.jpg");
    link("chain.jpg", "secret.jpg");
    link("neighbour", drive_ + "2");
    fs::create_directory(drive_ + "2");
    EXPECT_EQ(list(), Names());
    EXPECT_EQ(open_drive("/out"), nullptr);
    EXPECT_EQ(errno, EXDEV);
    EXPECT_EQ(open_drive("/out_absolute"), nullptr);
    EXPECT_EQ(open_drive("/.."), nullptr);
    EXPECT_EQ(open_drive("/../outside"), nullptr);
    EXPECT_FALSE(open_drive()->open_file("secret.jpg", true));
    EXPECT_FALSE(open_drive()->open_file("secret.jpg", false));
}

TEST_F(DriveDirectoryTest, LinksToWhatTheyLieInAreNotListed) {
    directory("drive/a/b");
    link("a/b/self", ".");
    link("a/b/up", "..");
    link("a/b/top", drive_);
    EXPECT_EQ(list("/a/b"), Names());
    EXPECT_EQ(open_drive("/a/b/up"), nullptr);
}

TEST_F(DriveDirectoryTest, BehindALinkNoFurtherLinksToFoldersAreListed) {
    write_file("drive/a/a.jpg");
    write_file("drive/b/b.jpg");
    link("a/to_b", "../b");
    link("b/to_a", "../a");
    link("b/file.jpg", "../a/a.jpg");
    EXPECT_EQ(list("/a"), (Names{"a.jpg", "to_b/"}));
    EXPECT_EQ(list("/a/to_b"), (Names{"b.jpg", "file.jpg"}));
}

TEST_F(DriveDirectoryTest, AStopEndsAListing) {
    write_file("drive/b.jpg");
    stop_ = true;
    Listing listing;
    EXPECT_FALSE(open_drive()->list(stop_, listing));
    EXPECT_EQ(errno, ECANCELED);
}

TEST_F(DriveDirectoryTest, CanBeListedTwice) {
    write_file("drive/b.jpg");
    const auto directory = open_drive();
    for (int i = 0; i < 2; ++i) {
        Listing listing;
        EXPECT_TRUE(directory->list(stop_, listing));
        EXPECT_EQ(listing.files.size(), 1U);
    }
}

}  // namespace
}  // namespace media_content
