#include "platform/nubelink/host/item_memory.h"

#include <malloc.h>

#include <atomic>
#include <cstdlib>

#include "platform/nubelink/host/text.h"

namespace nbl {

namespace {

constexpr size_t kMegabyte = size_t{1} << 20U;

/// So much is worth the walk through all of the process's memory.
constexpr size_t kMany = 32 * kMegabyte;
constexpr size_t kPartLeft = 4;  ///< a quarter of the records at most is left then

std::atomic<size_t> held{0};
std::atomic<size_t> peak{0};  ///< of `held` since memory was given back, by the megabyte
std::atomic<size_t> limit{ItemMemory::kMostMegabytes * kMegabyte};

}  // namespace

void ItemMemory::add(size_t bytes) {
    const size_t now = held.fetch_add(bytes, std::memory_order_relaxed) + bytes;
    size_t most = peak.load(std::memory_order_relaxed);
    while (now > most + kMegabyte && !peak.compare_exchange_weak(most, now, std::memory_order_relaxed)) {
    }
}

void ItemMemory::remove(size_t bytes) {
    const size_t left = held.fetch_sub(bytes, std::memory_order_relaxed) - bytes;
    size_t most = peak.load(std::memory_order_relaxed);
    if (most > kMany && left < most / kPartLeft &&
        peak.compare_exchange_strong(most, left, std::memory_order_relaxed)) {
        malloc_trim(0);
    }
}

size_t ItemMemory::bytes() {
    return held.load(std::memory_order_relaxed);
}

bool ItemMemory::is_full() {
    return bytes() > limit.load(std::memory_order_relaxed);
}

void ItemMemory::read_limit() {
    constexpr uint64_t kMost = 1U << 20U;
    const char* text = std::getenv("QRA_DLNA_MEMORY");
    const auto megabytes = number_of(text != nullptr ? text : "");
    const bool is_limit = megabytes && *megabytes > 0 && *megabytes <= kMost;
    limit = (is_limit ? static_cast<size_t>(*megabytes) : kMostMegabytes) * kMegabyte;
}

}  // namespace nbl
