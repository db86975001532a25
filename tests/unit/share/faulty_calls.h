#ifndef QRA_TESTS_UNIT_SHARE_FAULTY_CALLS_H
#define QRA_TESTS_UNIT_SHARE_FAULTY_CALLS_H

#include <cstddef>
#include <functional>
#include <string>

/**
 * Stands between the agent and the system calls of a copy, in a program that is linked with
 * QRA_FAULTY_CALLS. Without hooks every call goes on to the system.
 *
 * Hooks are set while no job runs; they are called on the jobs' threads.
 */
struct FaultyCalls {
    /// Asked before each call: "open", "read", "write", "fsync", "unlink" or "mkdir", with its path if it
    /// has one. An errno other than 0 fails the call.
    static std::function<int(const std::string& call, const std::string& path)> before;
    /// Told of each read and write that moved something, and of each fsync.
    static std::function<void(const std::string& call, size_t bytes)> after;
    /// The most that one write takes.
    static size_t largest_write;
    /// False makes fsync succeed without a disk.
    static bool real_fsync;
    /// The clock of the jobs, in microseconds.
    static std::function<long long()> clock;
    /// Told of each pause.
    static std::function<void()> on_pause;
    /// No thread can be made.
    static bool no_threads;

    /// A time for the clock, long after everything that the process has seen.
    static long long fresh_time();

    static void reset();
};

#endif
