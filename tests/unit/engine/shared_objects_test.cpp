#include "engine/src/shared_objects.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>

namespace {

using engine::SharedObject;
using engine::SharedObjects;

constexpr uid_t kOtherUser = 12345;
constexpr uid_t kThirdUser = 12346;

std::string path_of(const std::string& name) {
    return "/dev/shm" + name;
}

/// Runs a function in a process of that user; whether it gave true.
template <class Function>
bool as_user(uid_t user, Function function) {
    const pid_t pid = fork();
    if (pid == 0) {
        _exit(setgid(user) == 0 && setuid(user) == 0 && function() ? 0 : 1);
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool can_open(const std::string& name, int flags) {
    const int fd = shm_open(name.c_str(), flags, 0);
    if (fd >= 0) {
        close(fd);
    }
    return fd >= 0;
}

/// What an engine leaves that is killed with one object; the object's name.
std::string leave_an_object() {
    int ends[2];
    EXPECT_EQ(0, pipe(ends));
    const pid_t pid = fork();
    if (pid == 0) {
        const SharedObjects objects;
        const auto object = objects.create({"text"}, geteuid());
        const bool told = object && write(ends[1], object->name().data(), object->name().size()) > 0;
        raise(told ? SIGKILL : SIGTERM);
    }
    close(ends[1]);
    char name[128] = {};
    EXPECT_GT(read(ends[0], name, sizeof(name) - 1), 0);
    close(ends[0]);
    waitpid(pid, nullptr, 0);
    return name;
}

std::string mark_of(const std::string& name) {
    return name.substr(0, name.rfind('_') + 1) + "live";
}

TEST(SharedObjects, WritesAllPieces) {
    const SharedObjects objects;
    const std::string large(300000, 'x');
    const auto object = objects.create({"a", "", large, "b"}, geteuid());
    ASSERT_TRUE(object);
    EXPECT_EQ(300002u, object->size());
    struct stat info = {};
    ASSERT_EQ(0, stat(path_of(object->name()).c_str(), &info));
    EXPECT_EQ(300002, info.st_size);
    EXPECT_EQ(0600u, info.st_mode & 07777u);
}

TEST(SharedObjects, NamesAreLongRandomNumbersAndFitTheFormat) {
    const SharedObjects objects;
    std::set<std::string> names;
    std::vector<SharedObject> kept;
    for (int i = 0; i < 100; ++i) {
        auto object = objects.create({"x"}, geteuid());
        ASSERT_TRUE(object);
        EXPECT_EQ('/', object->name()[0]);
        EXPECT_LT(object->name().size(), 128u);
        names.insert(object->name().substr(object->name().size() - 32));
        kept.push_back(std::move(*object));
    }
    EXPECT_EQ(100u, names.size());
}

TEST(SharedObjects, UnlinksAnObjectAtItsEnd) {
    const SharedObjects objects;
    std::string name;
    {
        const auto object = objects.create({"x"}, geteuid());
        ASSERT_TRUE(object);
        name = object->name();
        EXPECT_TRUE(can_open(name, O_RDONLY));
    }
    EXPECT_FALSE(can_open(name, O_RDONLY));
}

TEST(SharedObjects, LetsTheReaderReadAndNobodyElse) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to be several users";
    }
    const SharedObjects objects;
    const auto object = objects.create({"text"}, kOtherUser);
    ASSERT_TRUE(object);
    EXPECT_TRUE(as_user(kOtherUser, [&] { return can_open(object->name(), O_RDONLY); }));
    EXPECT_FALSE(as_user(kOtherUser, [&] { return can_open(object->name(), O_RDWR); }));
    EXPECT_FALSE(as_user(kThirdUser, [&] { return can_open(object->name(), O_RDONLY); }));
}

TEST(SharedObjects, AnEngineThatIsNotRootLetsAnotherUserRead) {
    if (geteuid() != 0) {
        GTEST_SKIP() << "needs root to be several users";
    }
    int ends[2];
    ASSERT_EQ(0, pipe(ends));
    int release[2];
    ASSERT_EQ(0, pipe(release));
    const pid_t pid = fork();
    if (pid == 0) {
        close(release[1]);
        bool is_good = setgid(kThirdUser) == 0 && setuid(kThirdUser) == 0;
        {
            const SharedObjects objects;
            const auto object = objects.create({"text"}, kOtherUser);
            const std::string name = object ? object->name() : "none";
            char end = 0;
            is_good =
                is_good && write(ends[1], name.data(), name.size()) > 0 && read(release[0], &end, 1) == 0;
        }
        _exit(is_good ? 0 : 1);
    }
    char name[128] = {};
    ASSERT_GT(read(ends[0], name, sizeof(name) - 1), 0);
    EXPECT_TRUE(as_user(kOtherUser, [&] { return can_open(name, O_RDONLY); })) << name;
    EXPECT_FALSE(as_user(kOtherUser + 7, [&] { return can_open(name, O_RDONLY); })) << name;
    close(release[0]);
    close(release[1]);
    int status = 0;
    waitpid(pid, &status, 0);
    EXPECT_EQ(0, status);
}

TEST(SharedObjects, RemovesWhatAKilledEngineLeft) {
    const std::string name = leave_an_object();
    // From here on any engine that starts removes them.
    const SharedObjects objects;
    objects.remove_leftovers();
    EXPECT_FALSE(can_open(name, O_RDONLY));
    EXPECT_FALSE(can_open(mark_of(name), O_RDONLY));
}

TEST(SharedObjects, LeavesTheObjectsOfALivingEngineAlone) {
    const SharedObjects living;
    const auto object = living.create({"text"}, geteuid());
    ASSERT_TRUE(object);
    const SharedObjects other;
    other.remove_leftovers();
    EXPECT_TRUE(can_open(object->name(), O_RDONLY));
    living.remove_leftovers();
    EXPECT_TRUE(can_open(object->name(), O_RDONLY));
}

TEST(SharedObjects, LeavesObjectsOfOtherNamesAndUsersAlone) {
    const std::string names[] = {"/qra_selectedlist_test_" + std::to_string(getpid()),
                                 "/qra_engine_live_" + std::to_string(getpid()),
                                 "/qra_engine_" + std::to_string(getpid())};
    for (const std::string& name : names) {
        close(shm_open(name.c_str(), O_CREAT | O_EXCL | O_RDWR, 0600));
    }
    const std::string number = std::to_string(getpid());
    const std::string foreign = "/qra_engine_" + std::string(16 - number.size(), '0') + number + "_live";
    if (geteuid() == 0) {
        close(shm_open(foreign.c_str(), O_CREAT | O_RDWR, 0600));
        ASSERT_EQ(0, chown(path_of(foreign).c_str(), kOtherUser, kOtherUser));
    }
    const SharedObjects objects;
    objects.remove_leftovers();
    for (const std::string& name : names) {
        EXPECT_TRUE(can_open(name, O_RDONLY)) << name;
        shm_unlink(name.c_str());
    }
    if (geteuid() == 0) {
        EXPECT_TRUE(can_open(foreign, O_RDONLY)) << "another user's engine";
        shm_unlink(foreign.c_str());
    }
}

TEST(SharedObjects, LeavesNoMarkBehindAtItsEnd) {
    std::string mark;
    {
        const SharedObjects objects;
        const auto object = objects.create({"text"}, geteuid());
        ASSERT_TRUE(object);
        mark = mark_of(object->name());
        EXPECT_TRUE(can_open(mark, O_RDONLY));
    }
    EXPECT_FALSE(can_open(mark, O_RDONLY));
}

}  // namespace
