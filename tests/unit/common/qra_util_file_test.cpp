#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "common/util/qra_util.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/temp_dir.h"

namespace {

/// Takes a lock on a whole file in another process, and holds it as long as it lives.
class ForeignLock {
public:
    ForeignLock(const std::string& path, short type) {
        int ready[2];
        EXPECT_EQ(pipe(ready), 0);
        child_ = fork();
        if (child_ == 0) {
            const int fd = open(path.c_str(), O_RDWR);
            struct flock region = {};
            region.l_type = type;
            const char ok = fcntl(fd, F_SETLK, &region) == 0 ? 1 : 0;
            if (write(ready[1], &ok, 1) == 1) {
                pause();
            }
            _exit(0);
        }
        char ok = 0;
        EXPECT_EQ(read(ready[0], &ok, 1), 1);
        EXPECT_EQ(ok, 1);
        close(ready[0]);
        close(ready[1]);
    }
    ~ForeignLock() {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }

private:
    pid_t child_;
};

/// A shared memory object with these bytes, gone with this object if nobody removed it before.
class SharedBytes {
public:
    explicit SharedBytes(const std::string& bytes) : name_("qra_util_file_test_" + std::to_string(getpid())) {
        const int fd = shm_open(name_.c_str(), O_CREAT | O_RDWR | O_TRUNC, 0600);
        EXPECT_EQ(write(fd, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        close(fd);
    }
    ~SharedBytes() { shm_unlink(name_.c_str()); }

    const char* name() const { return name_.c_str(); }
    bool exists() const {
        const int fd = shm_open(name_.c_str(), O_RDONLY, 0);
        if (fd >= 0) {
            close(fd);
        }
        return fd >= 0;
    }

private:
    std::string name_;
};

std::string blob(int32_t length, const std::string& content) {
    std::string bytes(sizeof length, '\0');
    memcpy(bytes.data(), &length, sizeof length);
    return bytes + content;
}

class WholeFile : public testing::TestWithParam<bool> {
protected:
    bool Read(const std::string& path, char** content, long long* size) {
        return GetParam() ? CQRAUtil::ReadFile(path, content, size) : CQRAUtil::LoadFile(path, content, size);
    }
};

}  // namespace

TEST_P(WholeFile, IsReadWithAZeroBehindIt) {
    TempDir dir;
    const std::string bytes("a\0b\xff", 4);
    char* content = nullptr;
    long long size = 0;

    ASSERT_TRUE(Read(dir.write("f", bytes), &content, &size));

    EXPECT_EQ(size, 4);
    EXPECT_EQ(std::string(content, 5), bytes + '\0');
    free(content);
}

TEST_P(WholeFile, EmptyIsAFailureWithItsSize) {
    LogCapture log;
    TempDir dir;
    char* content = nullptr;
    long long size = -1;

    EXPECT_FALSE(Read(dir.write("f", ""), &content, &size));

    EXPECT_TRUE(log.contains("UUID file size is 0"));
    EXPECT_EQ(content, nullptr);
    EXPECT_EQ(size, -1);
}

TEST_P(WholeFile, HasToBeARegularFileThatIsThere) {
    TempDir dir;
    char* content = nullptr;
    long long size = 0;

    ASSERT_EQ(mkfifo(dir.path("pipe").c_str(), 0600), 0);

    EXPECT_FALSE(Read(dir.path("absent"), &content, &size));
    EXPECT_FALSE(Read(dir.path(), &content, &size));
    EXPECT_FALSE(Read(dir.path("pipe"), &content, &size));

    EXPECT_EQ(content, nullptr);
}

INSTANTIATE_TEST_SUITE_P(LoadAndRead, WholeFile, testing::Bool());

TEST(CQRAUtilFile, ReadsAFileIntoAString) {
    TempDir dir;
    std::string content = "before";

    EXPECT_TRUE(CQRAUtil::ReadFile(dir.write("f", std::string("x\0y", 3)), content));

    EXPECT_EQ(content, std::string("x\0y", 3));
}

TEST(CQRAUtilFile, AStringStaysAsItWasWhenTheFileCannotBeRead) {
    LogCapture log;
    TempDir dir;
    std::string content = "before";
    const std::string absent = dir.path("absent");

    EXPECT_FALSE(CQRAUtil::ReadFile(absent, content));

    EXPECT_EQ(content, "before");
    EXPECT_TRUE(log.contains("FAILED TO LOAD FILE!, " + absent));
}

TEST(CQRAUtilFile, ReadHonoursAWriteLockThatLoadDoesNotLookAt) {
    TempDir dir;
    const std::string path = dir.write("f", "x");
    const ForeignLock lock(path, F_WRLCK);
    char* content = nullptr;
    long long size = 0;

    EXPECT_FALSE(CQRAUtil::ReadFile(path, &content, &size));
    EXPECT_TRUE(CQRAUtil::LoadFile(path, &content, &size));
    free(content);
}

TEST(CQRAUtilFile, ReadSharesAReadLock) {
    TempDir dir;
    const std::string path = dir.write("f", "x");
    const ForeignLock lock(path, F_RDLCK);
    std::string content;

    EXPECT_TRUE(CQRAUtil::ReadFile(path, content));
}

TEST(CQRAUtilFile, SavesOnlyTheNewBytesOverALongerFile) {
    TempDir dir;
    const std::string path = dir.write("f", "a longer text");

    EXPECT_TRUE(CQRAUtil::SaveAsFile("new", 3, path));
    EXPECT_EQ(dir.read("f"), "new");

    EXPECT_TRUE(CQRAUtil::SaveAsFile(nullptr, 0, path));
    EXPECT_EQ(dir.read("f"), "");
}

TEST(CQRAUtilFile, SaveNeedsItsDirectory) {
    LogCapture log;
    TempDir dir;

    EXPECT_FALSE(CQRAUtil::SaveAsFile("x", 1, dir.path("no/such")));

    EXPECT_TRUE(log.contains("System error. errno[2]"));
}

TEST(CQRAUtilFile, SaveNeedsTheLock) {
    LogCapture log;
    TempDir dir;
    const std::string path = dir.write("f", "x");
    const ForeignLock lock(path, F_RDLCK);

    EXPECT_FALSE(CQRAUtil::SaveAsFile("new", 3, path));

    EXPECT_TRUE(log.contains("FAILED TO mWriteLock " + path + ", ")) << log.text();
}

TEST(CQRAUtilFile, SaveToAFullDiskFails) {
    EXPECT_FALSE(CQRAUtil::SaveAsFile("new", 3, "/dev/full"));
}

TEST(CQRAUtilFile, SaveWhereNothingCanBeSyncedStillCounts) {
    LogCapture log;

    EXPECT_TRUE(CQRAUtil::SaveAsFile("new", 3, "/dev/null"));

    EXPECT_TRUE(log.contains("CQRAUtil::SaveAsFile : fsync() failed errno == 22\n."));
}

TEST(CQRAUtilFile, ExistsWhenItCanBeRead) {
    TempDir dir;

    EXPECT_TRUE(CQRAUtil::IsFileExist(dir.write("f", "").c_str()));
    EXPECT_TRUE(CQRAUtil::IsFileExist(dir.path().c_str()));
    EXPECT_FALSE(CQRAUtil::IsFileExist(dir.path("absent").c_str()));
}

TEST(CQRAUtilFileDeathTest, ExistenceNeedsAPath) {
    EXPECT_DEATH(CQRAUtil::IsFileExist(nullptr), "path != __null");
}

TEST(CQRAUtilFile, RemoveTellsWhatItCouldNotRemove) {
    LogCapture log;
    TempDir dir;
    const std::string path = dir.write("f", "");

    EXPECT_TRUE(CQRAUtil::RemoveFile(path.c_str()));
    EXPECT_FALSE(CQRAUtil::RemoveFile(path.c_str()));

    EXPECT_EQ(log.count("CQRAUtil: remove [" + path + "] failed."), 1);
}

TEST(CQRAUtilFile, MovesASharedObjectToAFile) {
    TempDir dir;
    const SharedBytes shared(blob(5, "hello, and what nobody asked for"));

    EXPECT_TRUE(CQRAUtil::WriteFile(dir.path("f").c_str(), shared.name()));

    EXPECT_EQ(dir.read("f"), "hello");
    EXPECT_FALSE(shared.exists());
}

TEST(CQRAUtilFile, ASharedObjectWithoutContentWritesNothing) {
    for (const int32_t length : {0, -1}) {
        LogCapture log;
        TempDir dir;
        const SharedBytes shared(blob(length, "x"));

        EXPECT_FALSE(CQRAUtil::WriteFile(dir.path("f").c_str(), shared.name()));

        EXPECT_TRUE(log.contains("szContext == NULL."));
        EXPECT_FALSE(CQRAUtil::IsFileExist(dir.path("f").c_str()));
        EXPECT_FALSE(shared.exists());
    }
}

TEST(CQRAUtilFile, TheSharedObjectGoesAlsoWhenTheFileCannotBeWritten) {
    TempDir dir;
    const SharedBytes shared(blob(1, "x"));

    EXPECT_FALSE(CQRAUtil::WriteFile(dir.path("no/such").c_str(), shared.name()));

    EXPECT_FALSE(shared.exists());
}

TEST(CQRAUtilFile, AnIncompleteFileIsRemoved) {
    LogCapture log;
    TempDir dir;
    // A link to the device that is always full: the removal takes the link.
    ASSERT_EQ(symlink("/dev/full", dir.path("f").c_str()), 0);
    const SharedBytes shared(blob(1, "x"));

    EXPECT_FALSE(CQRAUtil::WriteFile(dir.path("f").c_str(), shared.name()));

    EXPECT_TRUE(log.contains("CQRAUtil: fwrite failed."));
    struct stat info;
    EXPECT_NE(lstat(dir.path("f").c_str(), &info), 0);
}

TEST(CQRAUtilFile, AnUnknownSharedObjectIsAFailure) {
    TempDir dir;

    EXPECT_FALSE(CQRAUtil::WriteFile(dir.path("f").c_str(), "qra_util_file_test_absent"));

    EXPECT_FALSE(CQRAUtil::IsFileExist(dir.path("f").c_str()));
}

TEST(CQRAUtilFileDeathTest, ASharedObjectThatIsAPipeIsNotWaitedFor) {
    TempDir dir;
    const std::string path = dir.path("f");
    const std::string name = "qra_util_file_test_pipe_" + std::to_string(getpid());
    ASSERT_EQ(mkfifo(("/dev/shm/" + name).c_str(), 0600), 0);

    EXPECT_DEATH(CQRAUtil::WriteFile(path.c_str(), name.c_str()), "Assertion");

    shm_unlink(name.c_str());
}

TEST(CQRAUtilFileDeathTest, ASharedObjectThatIsShorterThanItSaysEndsTheProcess) {
    TempDir dir;
    const std::string path = dir.path("f");
    for (const std::string& bytes : {std::string("ab"), blob(2, "x"), blob(2147483647, "x")}) {
        const SharedBytes shared(bytes);
        EXPECT_DEATH(CQRAUtil::WriteFile(path.c_str(), shared.name()), "Assertion");
    }
}
