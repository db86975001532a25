// Runs the C clients on a drive with a few pictures.

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/capi/media_drive.h"

namespace {

/// Runs a program to its end; its exit status, negative for the signal that ended it.
int run(std::vector<std::string> arguments) {
    std::vector<char*> argv;
    for (std::string& argument : arguments) {
        argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    pid_t pid = 0;
    if (posix_spawn(&pid, argv[0], nullptr, nullptr, argv.data(), environ) != 0) {
        return 127;
    }
    int status = 0;
    waitpid(pid, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

TEST(CInterface, ServesAClientWrittenInC) {
    const MediaDrive drive;
    EXPECT_EQ(0, run({QRA_C_CLIENT, drive.path()}));
}

TEST(CInterface, ServesAClientThatLoadsTheLibraryTwice) {
    const MediaDrive drive;
    EXPECT_EQ(0, run({QRA_DLOPEN_CLIENT, drive.path(), QRA_LIBRARY}));
}

}  // namespace
