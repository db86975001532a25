#include "platform/nubelink/host/item_memory.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <string>
#include <vector>

#include "platform/nubelink/host/item_record.h"

namespace nbl {
namespace {

size_t resident_bytes() {
    size_t all = 0;
    size_t resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * static_cast<size_t>(sysconf(_SC_PAGESIZE));
}

std::vector<ItemPtr> records(size_t megabytes) {
    std::vector<ItemPtr> items;
    for (size_t i = 0; i < megabytes * 256; ++i) {
        ItemBuilder builder;
        builder.add("title", std::string(4096, 'x'));
        items.push_back(builder.build(NBL_ITEM_TYPE_VIDEO));
    }
    return items;
}

TEST(ItemMemoryTest, CountsWhatIsHeld) {
    const size_t before = ItemMemory::bytes();
    std::vector<ItemPtr> items = records(2);
    EXPECT_GE(ItemMemory::bytes(), before + 2'000'000);
    items.clear();
    EXPECT_EQ(ItemMemory::bytes(), before);
}

TEST(ItemMemoryTest, GivesTheMemoryOfManyRecordsBackToTheSystem) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer has an allocator of its own";
#endif
    const size_t before = resident_bytes();
    std::vector<ItemPtr> items = records(96);
    const std::vector<ItemPtr> later = records(1);
    items.clear();
    EXPECT_LT(resident_bytes(), before + 48'000'000);
}

}  // namespace
}  // namespace nbl
