#ifndef QRA_TESTS_CAPI_CLIENT_PROGRAMS_H
#define QRA_TESTS_CAPI_CLIENT_PROGRAMS_H

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>
#include <vector>

/// Runs a program to its end; its exit status, negative for the signal that ended it.
inline int run(std::vector<std::string> arguments) {
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

#endif
