#include "tests/fakes/own_mounts.h"

#include <fcntl.h>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace {

void write_text(const char* path, const std::string& text) {
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    if (file >= 0) {
        static_cast<void>(!write(file, text.data(), text.size()));
        close(file);
    }
}

}  // namespace

bool have_own_mounts() {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (user != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) {
            return false;
        }
        write_text("/proc/self/setgroups", "deny");
        write_text("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
        write_text("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
    } else if (unshare(CLONE_NEWNS) != 0) {
        return false;
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

bool mount_memory(const std::string& directory, const char* options) {
    return mount("tmpfs", directory.c_str(), "tmpfs", 0, options) == 0;
}

bool make_mount_read_only(const std::string& directory) {
    return mount(nullptr, directory.c_str(), nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr) == 0;
}
