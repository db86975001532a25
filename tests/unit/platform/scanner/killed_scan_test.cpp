#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <random>
#include <thread>

#include "tests/unit/platform/scanner/scanned_drive.h"

namespace media_content {
namespace {

class KilledScan : public ScannedDrive {
protected:
    pid_t start_helper(const char* mode) {
        const std::string path = drive_path();
        const pid_t child = fork();
        if (child == 0) {
            execl(QRA_SCAN_HELPER, QRA_SCAN_HELPER, mode, path.c_str(), static_cast<char*>(nullptr));
            _exit(127);
        }
        return child;
    }

    static int wait_for(pid_t child) {
        int status = -1;
        waitpid(child, &status, 0);
        return status;
    }
};

TEST_F(KilledScan, AHundredTimesLeavesADatabaseThatTheNextScanCompletes) {
    const int count = put_many(30, 50);
    std::mt19937 random(7);  // the same in every run
    std::uniform_int_distribution<int> delay(1, 120);
    int killed = 0;
    for (int round = 0; round < 100; ++round) {
        const pid_t child = start_helper("scan");
        ASSERT_GT(child, 0);
        std::this_thread::sleep_for(std::chrono::milliseconds(delay(random)));
        kill(child, SIGKILL);
        killed += WIFSIGNALED(wait_for(child)) ? 1 : 0;
        EXPECT_EQ(text("PRAGMA integrity_check"), "ok");
        EXPECT_EQ(number("SELECT count(*) FROM pragma_foreign_key_check"), 0);
        if (round % 10 == 9) {  // begin anew, so that there is always something to be interrupted
            const int64_t top = number("SELECT id FROM folder WHERE path = ''");
            MediaWriter writer(database());
            writer.remove_folder(top);
            writer.commit();
        }
    }
    EXPECT_GT(killed, 30);
    EXPECT_EQ(wait_for(start_helper("scan")), 0);
    EXPECT_EQ(media_count(), count);
    EXPECT_EQ(storage_status(), MEDIA_SCAN_STATUS_FULLY_SCANNED);
}

TEST_F(KilledScan, ByTheEndOfItsProcessDoesNoHarm) {
    put_many(30, 50);
    for (int round = 0; round < 20; ++round) {
        const int status = wait_for(start_helper("exit"));
        EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
        EXPECT_EQ(WEXITSTATUS(status), 0);
    }
    EXPECT_EQ(text("PRAGMA integrity_check"), "ok");
}

TEST_F(KilledScan, ByACallbackThatEndsItsProcessDoesNoHarm) {
    put_many(30, 50);
    const int status = wait_for(start_helper("exit-in-callback"));
    EXPECT_TRUE(WIFEXITED(status)) << "signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_EQ(text("PRAGMA integrity_check"), "ok");
}

TEST_F(KilledScan, TwoProcessesScanOneDriveInTurn) {
    const int count = put_many(10, 50);
    const pid_t first = start_helper("scan");
    const pid_t second = start_helper("scan");
    EXPECT_EQ(wait_for(first), 0);
    EXPECT_EQ(wait_for(second), 0);
    EXPECT_EQ(media_count(), count);
}

}  // namespace
}  // namespace media_content
