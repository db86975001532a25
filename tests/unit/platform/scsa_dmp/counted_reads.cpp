#include "tests/unit/platform/scsa_dmp/counted_reads.h"

#include <dlfcn.h>
#include <unistd.h>

#include <atomic>

namespace {

std::atomic<uint64_t> g_bytes{0};
std::atomic<uint64_t> g_reads{0};

}  // namespace

// The shared library has to find it.
#pragma GCC visibility push(default)
extern "C" ssize_t pread(int file, void* out, size_t length, off_t offset) {
    using Read = ssize_t (*)(int, void*, size_t, off_t);
    static const auto real = reinterpret_cast<Read>(dlsym(RTLD_NEXT, "pread64"));
    const ssize_t count = real(file, out, length, offset);
    g_bytes += count > 0 ? static_cast<uint64_t>(count) : 0;
    ++g_reads;
    return count;
}
#pragma GCC visibility pop

void forget_reads() {
    g_bytes = 0;
    g_reads = 0;
}

uint64_t bytes_read() {
    return g_bytes;
}

uint64_t reads() {
    return g_reads;
}
