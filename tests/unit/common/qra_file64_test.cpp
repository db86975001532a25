#include "common/util/qra_file64.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/temp_dir.h"

namespace {

std::string read_up_to(CQRAFile64& file, unsigned long count) {
    std::string text(count, '\0');
    EXPECT_TRUE(file.Read(text.data(), &count));
    text.resize(count);
    return text;
}

}  // namespace

TEST(CQRAFile64, ReadsAFileThatIsOpenedToReadOnly) {
    TempDir dir;
    CQRAFile64 file;

    ASSERT_TRUE(file.Open(dir.write("a", "hello").c_str(), 0, O_RDONLY, true));

    EXPECT_TRUE(file.IsOpened());
    EXPECT_EQ(read_up_to(file, 3), "hel");
    EXPECT_EQ(read_up_to(file, 10), "lo");
    EXPECT_EQ(read_up_to(file, 10), "");
}

TEST(CQRAFile64, WritesInModeOne) {
    TempDir dir;
    CQRAFile64 file;
    ASSERT_TRUE(file.Open(dir.write("a", "hello").c_str(), 1, 0, true));

    unsigned long count = 2;
    EXPECT_TRUE(file.Write("HE", &count));
    EXPECT_EQ(count, 2u);
    EXPECT_TRUE(file.Flush());

    EXPECT_EQ(dir.read("a"), "HEllo");
    char buffer[1];
    EXPECT_FALSE(file.Read(buffer, &count));
}

TEST(CQRAFile64, ReadsAndWritesInModeTwo) {
    TempDir dir;
    CQRAFile64 file;
    ASSERT_TRUE(file.Open(dir.write("a", "hello").c_str(), 2, O_TRUNC, true));

    unsigned long count = 3;
    EXPECT_TRUE(file.Write("new", &count));
    EXPECT_EQ(read_up_to(file, 1), "");
    EXPECT_TRUE(file.Flush());

    EXPECT_EQ(dir.read("a"), "new");
}

TEST(CQRAFile64, OpenOfAnOpenFileChangesNothing) {
    TempDir dir;
    const std::string other = dir.write("b", "other");
    CQRAFile64 file;
    ASSERT_TRUE(file.Open(dir.write("a", "hello").c_str(), 0, O_RDONLY, true));

    EXPECT_TRUE(file.Open(other.c_str(), 0, O_RDONLY, true));

    EXPECT_EQ(read_up_to(file, 5), "hello");
}

TEST(CQRAFile64, RefusesAnUnknownMode) {
    for (const int mode : {-1, 3}) {
        LogCapture log;
        TempDir dir;
        CQRAFile64 file;

        EXPECT_FALSE(file.Open(dir.write("a", "hello").c_str(), mode, 0, false));

        EXPECT_TRUE(log.contains("CQRAFile64::Open Invalid open mod[" + std::to_string(mode) + "]."))
            << log.text();
        EXPECT_FALSE(file.IsOpened());
    }
}

TEST(CQRAFile64, ReadCheckRefusesADirectoryAndAFileThatItsOwnerMayNotRead) {
    TempDir dir;
    const std::string secret = dir.write("a", "hello");
    ASSERT_EQ(chmod(secret.c_str(), 0044), 0);
    CQRAFile64 file;

    EXPECT_FALSE(file.Open(dir.path().c_str(), 0, O_RDONLY, true));
    EXPECT_FALSE(file.Open(secret.c_str(), 0, O_RDONLY, true));

    EXPECT_FALSE(file.IsOpened());
}

TEST(CQRAFile64, OpensADirectoryWithoutTheReadCheck) {
    TempDir dir;
    CQRAFile64 file;

    EXPECT_TRUE(file.Open(dir.path().c_str(), 0, O_RDONLY, false));
}

TEST(CQRAFile64, OpenOfAnAbsentFileFailsWithItsName) {
    LogCapture log;
    TempDir dir;
    const std::string absent = dir.path("absent");
    CQRAFile64 file;

    EXPECT_FALSE(file.Open(absent.c_str(), 0, O_RDONLY, true));

    EXPECT_TRUE(log.contains("CQRAFile64::Open open [" + absent + "] failed.")) << log.text();
    EXPECT_FALSE(file.IsOpened());
}

TEST(CQRAFile64, OpensADescriptorThatAChildProgramDoesNotInherit) {
    TempDir dir;
    CQRAFile64 file;
    ASSERT_TRUE(file.Open(dir.write("a", "x").c_str(), 0, O_RDONLY, true));

    // The lowest free descriptor tells which one the file took before it.
    const int next = dup(0);
    const int taken = next - 1;
    EXPECT_EQ(fcntl(taken, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
    close(next);
}

TEST(CQRAFile64, ReadAndWriteNeedAnOpenFile) {
    LogCapture log;
    CQRAFile64 file;
    char byte = 0;
    unsigned long count = 1;

    EXPECT_FALSE(file.Read(&byte, &count));
    EXPECT_FALSE(file.Write(&byte, &count));

    EXPECT_EQ(log.count("IsOpened() != true"), 2);
}

TEST(CQRAFile64, AClosedFileLooksAtNoArgument) {
    CQRAFile64 file;

    EXPECT_FALSE(file.Read(nullptr, nullptr));
    EXPECT_FALSE(file.Write(nullptr, nullptr));
}

TEST(CQRAFile64, FailedTransfersCountNothingAndTellTheError) {
    LogCapture log;
    TempDir dir;
    CQRAFile64 file;
    ASSERT_TRUE(file.Open(dir.write("a", "x").c_str(), 0, O_RDONLY, true));
    unsigned long count = 1;

    EXPECT_FALSE(file.Write("y", &count));

    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(log.contains("CQRAFile64::Write() failed."));
    EXPECT_TRUE(log.contains("System error. errno[9], errno msg[Bad file descriptor]."));
}

TEST(CQRAFile64, FailedReadCountsNothing) {
    LogCapture log;
    TempDir dir;
    CQRAFile64 file;
    ASSERT_TRUE(file.Open(dir.path().c_str(), 0, O_RDONLY, false));
    char byte = 0;
    unsigned long count = 1;

    EXPECT_FALSE(file.Read(&byte, &count));

    EXPECT_EQ(count, 0u);
    EXPECT_TRUE(log.contains("CQRAFile64::Read() failed."));
    EXPECT_TRUE(log.contains("System error. errno[21], errno msg[Is a directory]."));
}

TEST(CQRAFile64, FlushHasNothingToDoInModeZero) {
    TempDir dir;
    CQRAFile64 file;
    ASSERT_TRUE(file.Open(dir.write("a", "x").c_str(), 0, O_RDONLY, true));

    EXPECT_TRUE(file.Flush());
}

TEST(CQRAFile64, FlushTellsWhatCannotBeSynced) {
    LogCapture log;
    CQRAFile64 file;
    ASSERT_TRUE(file.Open("/dev/null", 1, 0, false));

    EXPECT_FALSE(file.Flush());

    EXPECT_TRUE(log.contains("System error. errno[22]")) << log.text();
}

TEST(CQRAFile64, DestroyClosesTheDescriptorInEveryMode) {
    TempDir dir;
    const std::string path = dir.write("a", "x");
    const int before = dup(0);
    close(before);

    for (int mode = 0; mode <= 2; ++mode) {
        CQRAFile64 file;
        ASSERT_TRUE(file.Open(path.c_str(), mode, 0, true));
        file.Destroy();
        EXPECT_FALSE(file.IsOpened());
    }

    const int after = dup(0);
    EXPECT_EQ(after, before);
    close(after);
}

TEST(CQRAFile64, DestroyOfAClosedFileLogsAndHarmsNoOtherDescriptor) {
    LogCapture log;
    CQRAFile64 file;

    file.Destroy();

    EXPECT_TRUE(log.contains("CQRAFile64::Destroy file already destroyed."));
    EXPECT_GE(fcntl(0, F_GETFD), 0) << "standard input was closed";
}

TEST(CQRAFile64, OpensAgainAfterDestroy) {
    TempDir dir;
    const std::string path = dir.write("a", "hello");
    CQRAFile64 file;
    ASSERT_TRUE(file.Open(path.c_str(), 1, 0, true));
    file.Destroy();

    ASSERT_TRUE(file.Open(path.c_str(), 0, O_RDONLY, true));

    EXPECT_EQ(read_up_to(file, 5), "hello");
}

TEST(CQRAFile64, ChangeOpenStatusRefusesTheStateThatStands) {
    CQRAFile64 file;

    EXPECT_FALSE(file.ChangeOpenStatus(false));
    EXPECT_TRUE(file.ChangeOpenStatus(true));
    EXPECT_FALSE(file.ChangeOpenStatus(true));
    EXPECT_TRUE(file.ChangeOpenStatus(false));
}

TEST(CQRAFile64, CreateMakesAnEmptyFileAndKeepsOneThatIsThere) {
    TempDir dir;

    EXPECT_TRUE(CQRAFile64::Create(dir.path("new").c_str()));
    EXPECT_TRUE(CQRAFile64::Create(dir.write("old", "kept").c_str()));

    EXPECT_TRUE(CQRAFile64::FileExists(dir.path("new").c_str()));
    EXPECT_EQ(dir.read("old"), "kept");
}

TEST(CQRAFile64, CreateLogsWhatFailsButARefusedPermission) {
    LogCapture log;
    TempDir dir;

    EXPECT_FALSE(CQRAFile64::Create(dir.path("no/such").c_str()));

    EXPECT_TRUE(log.contains("System error. errno[2]"));
}

TEST(CQRAFile64, RemoveUnlinksAFile) {
    TempDir dir;
    const std::string path = dir.write("a", "x");

    EXPECT_TRUE(CQRAFile64::Remove(path.c_str()));
    EXPECT_FALSE(CQRAFile64::FileExists(path.c_str()));
    EXPECT_FALSE(CQRAFile64::Remove(path.c_str()));
}

TEST(CQRAFile64, ExistsAndHasASizeOnlyAsARegularFile) {
    TempDir dir;
    long long size = -1;

    EXPECT_TRUE(CQRAFile64::FileExists(dir.write("a", "hello").c_str()));
    EXPECT_TRUE(CQRAFile64::FileSize(dir.path("a").c_str(), &size));
    EXPECT_EQ(size, 5);

    size = -1;
    EXPECT_FALSE(CQRAFile64::FileExists(dir.path().c_str()));
    EXPECT_FALSE(CQRAFile64::FileSize(dir.path().c_str(), &size));
    EXPECT_FALSE(CQRAFile64::FileSize(dir.path("absent").c_str(), &size));
    EXPECT_EQ(size, -1);
}

TEST(CQRAFile64, KnowsSizesBeyondFourGigabytes) {
    TempDir dir;
    ASSERT_EQ(truncate(dir.write("big", "").c_str(), 5LL << 30), 0);
    long long size = 0;

    EXPECT_TRUE(CQRAFile64::FileSize(dir.path("big").c_str(), &size));

    EXPECT_EQ(size, 5LL << 30);
}

TEST(CQRAFile64DeathTest, NullArgumentsEndTheProcess) {
    CQRAFile64 file;
    char byte = 0;
    unsigned long count = 1;

    EXPECT_DEATH(file.Open(nullptr, 0, 0, false), "filename != __null");
    ASSERT_TRUE(file.Open("/dev/null", 2, 0, false));
    EXPECT_DEATH(file.Read(nullptr, &count), "buffer != __null");
    EXPECT_DEATH(file.Read(&byte, nullptr), "count != __null");
    EXPECT_DEATH(file.Write(nullptr, &count), "buffer != __null");
    EXPECT_DEATH(file.Write(&byte, nullptr), "count != __null");
}
