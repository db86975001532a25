#include "tests/fakes/file_faults.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <mutex>

namespace {

struct Faults {
    std::mutex mutex;
    bool counting = false;
    int failing_call = 0;
    std::vector<std::string> calls;
};

Faults& faults() {
    static Faults* const the_faults = new Faults;
    return *the_faults;
}

bool is_to_fail(const char* call) {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    if (!faults().counting) {
        return false;
    }
    faults().calls.emplace_back(call);
    return static_cast<int>(faults().calls.size()) == faults().failing_call;
}

template <class Result, class... Arguments>
Result forward(const char* symbol, const char* call, Arguments... arguments) {
    if (is_to_fail(call)) {
        errno = ENOSPC;
        return -1;
    }
    return reinterpret_cast<Result (*)(Arguments...)>(dlsym(RTLD_NEXT, symbol))(arguments...);
}

}  // namespace

namespace file_faults {

void fail_call(int n) {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    faults().counting = true;
    faults().failing_call = n;
    faults().calls.clear();
}

std::vector<std::string> stop() {
    const std::lock_guard<std::mutex> lock(faults().mutex);
    faults().counting = false;
    return faults().calls;
}

}  // namespace file_faults

// The shared libraries have to find these.
#pragma GCC visibility push(default)
extern "C" {

int open64(const char* path, int flags, ...) {
    mode_t mode = 0;
    if ((flags & O_CREAT) != 0) {
        va_list arguments;
        va_start(arguments, flags);
        mode = va_arg(arguments, mode_t);
        va_end(arguments);
    }
    return forward<int>("open64", "open", path, flags, mode);
}

ssize_t write(int descriptor, const void* bytes, size_t count) {
    return forward<ssize_t>("write", "write", descriptor, bytes, count);
}

int fsync(int descriptor) {
    return forward<int>("fsync", "fsync", descriptor);
}

int rename(const char* from, const char* to) noexcept {
    return forward<int>("rename", "rename", from, to);
}

}  // extern "C"
#pragma GCC visibility pop
