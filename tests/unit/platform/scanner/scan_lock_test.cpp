#include "platform/media-content/host/scanner/scan_lock.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <future>

#include "platform/media-content/host/error.h"
#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {
namespace {

class ScanLockTest : public TemporaryDirectories {
protected:
    std::string file() const { return root() + "/lock"; }
    /// Tries once.
    bool is_free(const std::string& place) const {
        const std::atomic<bool> stop{true};
        return ScanLock(file()).take(place, stop);
    }
    std::atomic<bool> never_{false};
};

TEST_F(ScanLockTest, IsHadByOneAtATimeInOneProcess) {
    ScanLock first(file());
    EXPECT_TRUE(first.take("place", never_));
    EXPECT_FALSE(is_free("place"));
    EXPECT_TRUE(is_free("another place"));
}

TEST_F(ScanLockTest, EndsWithItsObject) {
    { EXPECT_TRUE(ScanLock(file()).take("place", never_)); }
    EXPECT_TRUE(is_free("place"));
}

TEST_F(ScanLockTest, IsHadByOneAtATimeAmongProcessesAndEndsWithAKilledOne) {
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        ScanLock lock(file());
        const bool taken = lock.take("place", never_);
        _exit(write(ready[1], &taken, 1) == 1 && pause());
    }
    char taken = 0;
    ASSERT_EQ(read(ready[0], &taken, 1), 1);
    EXPECT_FALSE(is_free("place"));
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    EXPECT_TRUE(is_free("place"));
}

TEST_F(ScanLockTest, IsWaitedFor) {
    auto first = std::make_unique<ScanLock>(file());
    ASSERT_TRUE(first->take("place", never_));
    auto second = std::async(std::launch::async, [this] { return ScanLock(file()).take("place", never_); });
    EXPECT_EQ(second.wait_for(std::chrono::milliseconds(60)), std::future_status::timeout);
    first.reset();
    EXPECT_TRUE(second.get());
}

TEST_F(ScanLockTest, AFileThatCannotBeMadeIsAnError) {
    EXPECT_THROW(ScanLock(root() + "/none/lock"), MediaError);
}

}  // namespace
}  // namespace media_content
