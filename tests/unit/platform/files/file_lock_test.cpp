#include "platform/files/file_lock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <thread>
#include <vector>

#include "tests/fakes/temp_dir.h"

namespace {

using files::FileLock;

/// Whether somebody else could have the lock on a file or directory now.
bool is_free(const std::string& path) {
    const files::Descriptor other(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    return flock(other.get(), LOCK_EX | LOCK_NB) == 0;
}

TEST(FileLock, IsHeldUntilItsEnd) {
    const TempDir directory;
    const std::string path = directory.path("lock");
    {
        const FileLock lock = FileLock::on_file(path);
        EXPECT_TRUE(lock.held());
        EXPECT_FALSE(is_free(path));
    }
    EXPECT_TRUE(is_free(path));
}

TEST(FileLock, FileThatItMakesIsForItsOwnerAlone) {
    const TempDir directory;

    const FileLock lock = FileLock::on_file(directory.path("lock"));

    struct stat status {};
    ASSERT_EQ(stat(directory.path("lock").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600U);
}

TEST(FileLock, OnADirectoryLeavesNothingBehind) {
    const TempDir directory;
    {
        const FileLock lock = FileLock::on_directory(directory.path());
        EXPECT_TRUE(lock.held());
        EXPECT_FALSE(is_free(directory.path()));
    }
    EXPECT_TRUE(is_free(directory.path()));
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST(FileLock, WithoutAPlaceIsNotHeld) {
    const TempDir directory;

    EXPECT_FALSE(FileLock::on_file(directory.path("missing/lock")).held());
    EXPECT_FALSE(FileLock::on_directory(directory.path("missing")).held());
    EXPECT_FALSE(FileLock::on_directory(directory.write("file", "")).held());
}

TEST(FileLock, OneThreadAtATimeHasIt) {
    const TempDir directory;
    const std::string path = directory.path("lock");
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 100; ++i) {
                const FileLock lock = FileLock::on_file(path);
                most = std::max(most.load(), ++inside);
                std::this_thread::yield();
                --inside;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(most, 1);
}

}  // namespace
