#include "tests/fakes/heap_watch.h"

#include <atomic>
#include <cerrno>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define QRA_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define QRA_TEST_SANITIZED 1
#endif
#endif

namespace {

std::atomic<size_t> g_bytes{0};
std::atomic<size_t> g_blocks{0};

void count(size_t size) {
    g_bytes.fetch_add(size, std::memory_order_relaxed);
    g_blocks.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

#ifdef QRA_TEST_SANITIZED

extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*on_malloc)(const volatile void*, size_t),
                                                         void (*on_free)(const volatile void*));

namespace {

const int g_installed = __sanitizer_install_malloc_and_free_hooks(
    [](const volatile void*, size_t size) { count(size); }, [](const volatile void*) {});

}  // namespace

#else

extern "C" {

void* __libc_malloc(size_t size);
void* __libc_calloc(size_t number, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);

void* malloc(size_t size) {
    count(size);
    return __libc_malloc(size);
}

void* calloc(size_t number, size_t size) {
    count(number * size);
    return __libc_calloc(number, size);
}

void* realloc(void* block, size_t size) {
    count(size);
    return __libc_realloc(block, size);
}

void* memalign(size_t alignment, size_t size) {
    count(size);
    return __libc_memalign(alignment, size);
}

void* aligned_alloc(size_t alignment, size_t size) {
    return memalign(alignment, size);
}

int posix_memalign(void** block, size_t alignment, size_t size) {
    *block = memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}
}

#endif

namespace heap_watch {

Count::Count() : bytes_before_(g_bytes.load()), blocks_before_(g_blocks.load()) {}

size_t Count::bytes() const {
    return g_bytes.load() - bytes_before_;
}

size_t Count::blocks() const {
    return g_blocks.load() - blocks_before_;
}

}  // namespace heap_watch
