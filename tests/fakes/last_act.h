#ifndef QRA_TESTS_FAKES_LAST_ACT_H
#define QRA_TESTS_FAKES_LAST_ACT_H

#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>

/// What the process does last, after all static objects of the program have gone: what a thread of the
/// library may still do then. For the child of a death test, which sets it before it calls exit(). It has to
/// end the process with end_at_once().
inline std::function<void()>* g_last_act = nullptr;

/// Ends the process without what sanitizers do at the end, such as to ask who joins the threads.
inline void end_at_once(int status) {
    syscall(SYS_exit_group, status);
}

namespace {

/// Registered before anything else, the act comes after everything else.
__attribute__((constructor(101))) void register_last_act() {
    std::atexit([] {
        if (g_last_act != nullptr) {
            (*g_last_act)();
        }
    });
}

}  // namespace

#endif
