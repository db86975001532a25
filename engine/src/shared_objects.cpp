#include "engine/src/shared_objects.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/acl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <sys/uio.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>

#include "engine/src/engine_log.h"

namespace engine {

namespace {

constexpr char kPrefix[] = "qra_engine_";
constexpr char kLiveMark[] = "live";
constexpr size_t kInstanceDigits = 16;
constexpr int kMostMarks = 8;  // a fresh mark can be taken for a dead one at each attempt

/// Where the system shows shared memory objects as files.
constexpr char kShmDirectory[] = "/dev/shm";

/// 64 random bits as hexadecimal digits; empty, after a log line, if the system gives none.
std::string random_digits() {
    uint64_t number = 0;
    if (getrandom(&number, sizeof(number), 0) != sizeof(number)) {
        ENGINE_WARNING("getrandom: %s", g_strerror(errno));
        return {};
    }
    std::array<char, kInstanceDigits + 1> text;
    std::snprintf(text.data(), text.size(), "%016llx", static_cast<unsigned long long>(number));
    return text.data();
}

struct AclRelease {
    void operator()(void* acl) const { acl_free(acl); }
};

bool let_read_by_list(int fd, uid_t reader) {
    const std::string text = "u::rw-,u:" + std::to_string(reader) + ":r--,g::---,m::r--,o::---";
    const std::unique_ptr<void, AclRelease> acl(acl_from_text(text.c_str()));
    return acl && acl_set_fd(fd, static_cast<acl_t>(acl.get())) == 0;
}

bool let_read(int fd, uid_t reader) {
    if (reader == geteuid() || reader == 0) {
        return true;
    }
    if (let_read_by_list(fd, reader)) {
        return true;
    }
    const int reason = errno;
    if (geteuid() == 0 && fchmod(fd, 0400) == 0 && fchown(fd, reader, static_cast<gid_t>(-1)) == 0) {
        return true;
    }
    ENGINE_WARNING("cannot let user %u read a shared memory object: %s", static_cast<unsigned>(reader),
                   g_strerror(reason));
    return false;
}

/// By write, not through a mapping: where memory is short that is an error and not a signal.
bool write_all(int fd, std::vector<iovec> pieces) {
    size_t next = 0;
    while (next < pieces.size()) {
        const ssize_t written = writev(fd, &pieces[next], std::min<int>(pieces.size() - next, IOV_MAX));
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            ENGINE_WARNING("cannot write shared memory: %s", g_strerror(errno));
            return false;
        }
        size_t rest = static_cast<size_t>(written);
        while (next < pieces.size() && rest >= pieces[next].iov_len) {
            rest -= pieces[next++].iov_len;
        }
        if (next < pieces.size()) {
            pieces[next].iov_base = static_cast<char*>(pieces[next].iov_base) + rest;
            pieces[next].iov_len -= rest;
        }
    }
    return true;
}

/// Opens a new mark of life and locks it. None if that fails, or if another engine took it for dead
/// meanwhile.
files::Descriptor make_mark(const std::string& name) {
    files::Descriptor mark(shm_open(name.c_str(), O_CREAT | O_EXCL | O_RDWR, 0600));
    struct stat info = {};
    if (mark && flock(mark.get(), LOCK_EX | LOCK_NB) == 0 && fstat(mark.get(), &info) == 0 &&
        info.st_nlink != 0) {
        return mark;
    }
    if (mark) {
        shm_unlink(name.c_str());
    }
    return files::Descriptor();
}

/// The part of an object's name that tells its engine, with the underscore; empty for a name of others.
std::string instance_of(const std::string& name) {
    const size_t length = sizeof(kPrefix) - 1 + kInstanceDigits + 1;
    const bool is_ours =
        name.compare(0, sizeof(kPrefix) - 1, kPrefix) == 0 && name.size() > length && name[length - 1] == '_';
    return is_ours ? name.substr(0, length) : std::string();
}

bool is_own_file(const std::string& path) {
    struct stat info = {};
    return lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) &&
           (info.st_uid == geteuid() || geteuid() == 0);
}

/// The lock of an engine that has died, so that nobody else takes it for dead at the same time; none if it
/// lives or is another user's.
files::Descriptor lock_if_dead(const std::string& mark) {
    files::Descriptor fd(shm_open(("/" + mark).c_str(), O_RDWR, 0));
    struct stat info = {};
    const bool is_dead = fd && fstat(fd.get(), &info) == 0 && S_ISREG(info.st_mode) &&
                         info.st_uid == geteuid() && flock(fd.get(), LOCK_EX | LOCK_NB) == 0;
    return is_dead ? std::move(fd) : files::Descriptor();
}

std::set<std::string> object_names() {
    std::set<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(kShmDirectory, error)) {
        const std::string name = entry.path().filename();
        if (!instance_of(name).empty()) {
            names.insert(name);
        }
    }
    return names;
}

}  // namespace

SharedObject::~SharedObject() {
    if (!name_.empty() && shm_unlink(name_.c_str()) != 0 && errno != ENOENT) {
        ENGINE_WARNING("shm_unlink %s: %s", name_.c_str(), g_strerror(errno));
    }
}

SharedObjects::SharedObjects() {
    for (int attempt = 0; attempt < kMostMarks && !live_; ++attempt) {
        instance_ = kPrefix + random_digits() + "_";
        live_ = make_mark("/" + instance_ + kLiveMark);
    }
    if (!live_) {
        ENGINE_WARNING("cannot make shared memory: %s", g_strerror(errno));
    }
}

SharedObjects::~SharedObjects() {
    if (live_) {
        shm_unlink(("/" + instance_ + kLiveMark).c_str());
    }
}

std::optional<SharedObject> SharedObjects::create(const std::vector<std::string_view>& pieces,
                                                  uid_t reader) const {
    const std::string high = live_ ? random_digits() : std::string();
    const std::string low = random_digits();
    if (high.empty() || low.empty()) {
        return std::nullopt;
    }
    const std::string name = "/" + instance_ + high + low;
    const files::Descriptor fd(shm_open(name.c_str(), O_CREAT | O_EXCL | O_RDWR, 0600));
    if (!fd) {
        ENGINE_WARNING("shm_open %s: %s", name.c_str(), g_strerror(errno));
        return std::nullopt;
    }
    std::vector<iovec> buffers;
    buffers.reserve(pieces.size());
    size_t size = 0;
    for (const std::string_view piece : pieces) {
        buffers.push_back({const_cast<char*>(piece.data()), piece.size()});
        size += piece.size();
    }
    SharedObject object(name, size);
    if (!write_all(fd.get(), std::move(buffers)) || !let_read(fd.get(), reader)) {
        return std::nullopt;
    }
    return object;
}

size_t SharedObjects::remove_leftovers() const {
    const std::set<std::string> names = object_names();
    size_t removed = 0;
    for (const std::string& mark : names) {
        const std::string instance = instance_of(mark);
        if (mark != instance + kLiveMark || instance == instance_) {
            continue;
        }
        const files::Descriptor dead = lock_if_dead(mark);
        if (!dead) {
            continue;
        }
        // The mark is the last of its engine's names, so that an engine that is killed here leaves it.
        for (auto name = names.lower_bound(instance); name != names.end() && instance_of(*name) == instance;
             ++name) {
            if (*name != mark && is_own_file(std::string(kShmDirectory) + "/" + *name) &&
                shm_unlink(("/" + *name).c_str()) == 0) {
                ++removed;
            }
        }
        shm_unlink(("/" + mark).c_str());
        ++removed;
    }
    return removed;
}

}  // namespace engine
