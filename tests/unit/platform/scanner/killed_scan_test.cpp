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

    void forget_drive_content() {
        MediaWriter writer(database());
        writer.remove_folder(number("SELECT id FROM folder WHERE path = ''"));
        writer.commit();
    }

    /// How long the helper needs for the whole drive on this machine, its start included.
    std::chrono::microseconds duration_of_a_scan() {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(wait_for(start_helper("scan")), 0);
        const auto end = std::chrono::steady_clock::now();
        forget_drive_content();
        return std::chrono::duration_cast<std::chrono::microseconds>(end - start);
    }
};

TEST_F(KilledScan, AHundredTimesLeavesADatabaseThatTheNextScanCompletes) {
    const int count = put_many(30, 50);
    const std::chrono::microseconds whole_scan = duration_of_a_scan();
    std::mt19937 random(7);  // the same in every run
    std::uniform_int_distribution<int64_t> delay(0, whole_scan.count());
    int killed = 0;
    for (int round = 0; round < 100; ++round) {
        const pid_t child = start_helper("scan");
        ASSERT_GT(child, 0);
        std::this_thread::sleep_for(std::chrono::microseconds(delay(random)));
        kill(child, SIGKILL);
        const bool interrupted = WIFSIGNALED(wait_for(child));
        killed += interrupted ? 1 : 0;
        ASSERT_EQ(text("PRAGMA integrity_check"), "ok");
        ASSERT_EQ(number("SELECT count(*) FROM pragma_foreign_key_check"), 0);
        if (!interrupted ||
            round % 10 == 9) {  // begin anew, so that there is always something to be interrupted
            forget_drive_content();
        }
    }
    EXPECT_GT(killed, 0) << "no scan was interrupted; one takes " << whole_scan.count() << " us";
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
