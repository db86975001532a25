#include "platform/nubelink/host/item_memory.h"

#include <atomic>
#include <cstdlib>

#include "platform/nubelink/host/text.h"

namespace nbl {

namespace {

constexpr size_t kMegabyte = size_t{1} << 20U;

std::atomic<size_t> held{0};
std::atomic<size_t> limit{ItemMemory::kMostMegabytes * kMegabyte};

}  // namespace

void ItemMemory::add(size_t bytes) {
    held.fetch_add(bytes, std::memory_order_relaxed);
}

void ItemMemory::remove(size_t bytes) {
    held.fetch_sub(bytes, std::memory_order_relaxed);
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
