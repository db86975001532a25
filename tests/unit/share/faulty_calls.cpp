#include "tests/unit/share/faulty_calls.h"

#include <glib.h>
#include <sys/types.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdarg>
#include <limits>

std::function<int(const std::string&, const std::string&)> FaultyCalls::before;
std::function<void(const std::string&, size_t)> FaultyCalls::after;
size_t FaultyCalls::largest_write = std::numeric_limits<size_t>::max();
bool FaultyCalls::real_fsync = true;
std::function<long long()> FaultyCalls::clock;
std::function<void()> FaultyCalls::on_pause;
bool FaultyCalls::no_threads = false;

long long FaultyCalls::fresh_time() {
    static std::chrono::hours ahead{0};
    const auto time = std::chrono::steady_clock::now().time_since_epoch() + ++ahead;
    return std::chrono::duration_cast<std::chrono::microseconds>(time).count();
}

void FaultyCalls::reset() {
    before = nullptr;
    after = nullptr;
    largest_write = std::numeric_limits<size_t>::max();
    real_fsync = true;
    clock = nullptr;
    on_pause = nullptr;
    no_threads = false;
}

namespace {

bool fails(const char* call, const char* path = "") {
    const int error = FaultyCalls::before ? FaultyCalls::before(call, path) : 0;
    errno = error;
    return error != 0;
}

void done(const char* call, ssize_t bytes) {
    if (FaultyCalls::after && bytes >= 0) {
        const int error = errno;
        FaultyCalls::after(call, static_cast<size_t>(bytes));
        errno = error;
    }
}

}  // namespace

// The linker wants to see them where a shared library uses the same function.
#pragma GCC visibility push(default)
extern "C" {

int __real_open64(const char* path, int flags, ...);
ssize_t __real_read(int fd, void* buffer, size_t count);
ssize_t __real_write(int fd, const void* buffer, size_t count);
int __real_fsync(int fd);
int __real_unlink(const char* path);
int __real_mkdir(const char* path, mode_t mode);
gint64 __real_g_get_monotonic_time();
void __real_g_usleep(gulong microseconds);
GThread* __real_g_thread_try_new(const gchar* name, GThreadFunc function, gpointer data, GError** error);

int __wrap_open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return fails("open", path) ? -1 : __real_open64(path, flags, mode);
}

ssize_t __wrap_read(int fd, void* buffer, size_t count) {
    if (fails("read")) {
        return -1;
    }
    const ssize_t bytes = __real_read(fd, buffer, count);
    done("read", bytes);
    return bytes;
}

ssize_t __wrap_write(int fd, const void* buffer, size_t count) {
    if (fails("write")) {
        return -1;
    }
    const ssize_t bytes = __real_write(fd, buffer, std::min(count, FaultyCalls::largest_write));
    done("write", bytes);
    return bytes;
}

int __wrap_fsync(int fd) {
    if (fails("fsync")) {
        return -1;
    }
    const int result = FaultyCalls::real_fsync ? __real_fsync(fd) : 0;
    done("fsync", result);
    return result;
}

int __wrap_unlink(const char* path) {
    return fails("unlink", path) ? -1 : __real_unlink(path);
}

int __wrap_mkdir(const char* path, mode_t mode) {
    return fails("mkdir", path) ? -1 : __real_mkdir(path, mode);
}

gint64 __wrap_g_get_monotonic_time() {
    return FaultyCalls::clock ? FaultyCalls::clock() : __real_g_get_monotonic_time();
}

void __wrap_g_usleep(gulong microseconds) {
    if (FaultyCalls::on_pause) {
        FaultyCalls::on_pause();
    }
    __real_g_usleep(microseconds);
}

GThread* __wrap_g_thread_try_new(const gchar* name, GThreadFunc function, gpointer data, GError** error) {
    if (FaultyCalls::no_threads) {
        g_set_error(error, G_THREAD_ERROR, G_THREAD_ERROR_AGAIN, "no thread for %s", name);
        return nullptr;
    }
    return __real_g_thread_try_new(name, function, data, error);
}

}  // extern "C"
#pragma GCC visibility pop
