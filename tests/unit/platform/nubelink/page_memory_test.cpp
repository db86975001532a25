#include "platform/nubelink/host/page_memory.h"

#include <gtest/gtest.h>

using namespace nbl;

namespace {

std::vector<ItemPtr> page_of(const std::vector<std::string>& ids) {
    std::vector<ItemPtr> items;
    for (const std::string& id : ids) {
        ItemBuilder builder;
        builder.add("@id", id);
        items.push_back(builder.build(0));
    }
    return items;
}

TEST(PageMemory, KnowsAPageThatCameForAnotherPlace) {
    PageMemory memory;
    EXPECT_FALSE(memory.is_repeated("f", 0, page_of({"a", "b"})));
    EXPECT_TRUE(memory.is_repeated("f", 200, page_of({"a", "b"})));
    EXPECT_FALSE(memory.is_repeated("f", 400, page_of({"a", "c"})));
    EXPECT_FALSE(memory.is_repeated("f", 400, page_of({"b", "a"}))) << "the order counts";
    EXPECT_FALSE(memory.is_repeated("g", 200, page_of({"a", "b"}))) << "another folder";
}

TEST(PageMemory, TakesTheSamePageForTheSamePlaceAgain) {
    PageMemory memory;
    EXPECT_FALSE(memory.is_repeated("f", 200, page_of({"a"})));
    EXPECT_FALSE(memory.is_repeated("f", 200, page_of({"a"})));
}

TEST(PageMemory, ForgetsAFolderThatIsReadFromItsBeginning) {
    PageMemory memory;
    EXPECT_FALSE(memory.is_repeated("f", 0, page_of({"a"})));
    memory.on_question("f", 200);
    EXPECT_TRUE(memory.is_repeated("f", 200, page_of({"a"})));
    memory.on_question("f", 0);
    EXPECT_FALSE(memory.is_repeated("f", 200, page_of({"a"})));
}

TEST(PageMemory, TakesEmptyPagesForNothing) {
    PageMemory memory;
    EXPECT_FALSE(memory.is_repeated("f", 0, {}));
    EXPECT_FALSE(memory.is_repeated("f", 200, {}));
}

TEST(PageMemory, HoldsAFewFoldersOnly) {
    PageMemory memory;
    memory.is_repeated("first", 0, page_of({"a"}));
    for (size_t i = 0; i < PageMemory::kFolders; ++i) {
        memory.is_repeated("f" + std::to_string(i), 0, page_of({"a"}));
    }
    EXPECT_FALSE(memory.is_repeated("first", 200, page_of({"a"})));
}

}  // namespace
