#ifndef QRA_TESTS_FAKES_PRIVATE_MOUNTS_H
#define QRA_TESTS_FAKES_PRIVATE_MOUNTS_H

#include <sched.h>
#include <sys/mount.h>

/**
 * Gives the calling process a mount namespace of its own, in which tests mount what they need and which goes
 * with the process. False where that is not allowed. To be called before any thread is made.
 */
inline bool enter_private_mounts() {
    if (unshare(CLONE_NEWNS) != 0 && unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
        return false;
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

#endif
