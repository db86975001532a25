#include "common/cache/cache_reader.h"

#include <gtest/gtest.h>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/result_objects.h"

namespace {

BlockObject three_items() {
    BlockObject block;
    block.start_index = 20;
    block.total_count = 500;
    block.texts = {"{\"a\":1}", "", "{\"c\":3}"};
    block.groups = {{20, 21}, {22, 22}};
    return block;
}

TEST(CCacheReader, ReadsHeaderItemsAndGroups) {
    const ShmFile file(three_items().bytes());
    const CCacheReader reader(file.name());

    EXPECT_EQ(reader.StartIndex(), 20);
    EXPECT_EQ(reader.EndIndex(), 22);
    EXPECT_EQ(reader.GetItemCount(), 3);
    EXPECT_EQ(reader.GetTotalCount(), 500);
    EXPECT_EQ(reader.GetGroupCount(), 2);
    std::string text;
    EXPECT_TRUE(reader.GetItem(0, text));
    EXPECT_EQ(text, "{\"a\":1}");
    EXPECT_TRUE(reader.GetItem(1, text));
    EXPECT_EQ(text, "");
    EXPECT_TRUE(reader.GetItem(2, text));
    EXPECT_EQ(text, "{\"c\":3}");
    int begin = 0;
    int end = 0;
    EXPECT_TRUE(reader.GetGroup(1, begin, end));
    EXPECT_EQ(begin, 22);
    EXPECT_EQ(end, 22);
}

TEST(CCacheReader, AGroupThatDoesNotExistIsFalse) {
    const ShmFile file(three_items().bytes());
    const CCacheReader reader(file.name());
    int begin = 7;
    int end = 8;

    EXPECT_FALSE(reader.GetGroup(-1, begin, end));
    EXPECT_FALSE(reader.GetGroup(2, begin, end));

    EXPECT_EQ(begin, 7);
    EXPECT_EQ(end, 8);
}

TEST(CCacheReader, AnUnloadedBlockAnswersNeutrally) {
    const CCacheReader reader("qra_test_no_such_block");

    EXPECT_EQ(reader.StartIndex(), 0);
    EXPECT_EQ(reader.EndIndex(), -1);
    EXPECT_EQ(reader.GetItemCount(), 0);
    EXPECT_EQ(reader.GetTotalCount(), 0);
    EXPECT_EQ(reader.GetGroupCount(), 0);
    std::string text = "untouched";
    EXPECT_FALSE(reader.GetItem(0, text));
    int begin = 0;
    int end = 0;
    EXPECT_FALSE(reader.GetGroup(0, begin, end));
    EXPECT_EQ(text, "untouched");
}

TEST(CCacheReaderDeathTest, AnItemNumberOutsideTheBlockIsAnAssertion) {
    const ShmFile file(three_items().bytes());
    const CCacheReader reader(file.name());
    std::string text;

    EXPECT_DEATH(reader.GetItem(-1, text), "nIndex >= 0 && nIndex < nItemCount");
    EXPECT_DEATH(reader.GetItem(3, text), "nIndex >= 0 && nIndex < nItemCount");
}

struct BrokenWord {
    const char* what;
    size_t offset;
    int32_t value;
};

class BrokenBlock : public testing::TestWithParam<BrokenWord> {};

TEST_P(BrokenBlock, StaysUnloadedWithALogLine) {
    const ShmFile file(with_word(three_items().bytes(), GetParam().offset, GetParam().value));
    const LogCapture log;

    const CCacheReader reader(file.name());

    EXPECT_EQ(reader.GetItemCount(), 0);
    EXPECT_EQ(reader.GetGroupCount(), 0);
    EXPECT_EQ(log.count(file.name()), 1) << log.text();
}

INSTANTIATE_TEST_SUITE_P(
    CCacheReader, BrokenBlock,
    testing::Values(BrokenWord{"GroupTableBelowZero", 0, -8},
                    BrokenWord{"GroupTableBeyondTheEnd", 0, 1 << 20}, BrokenWord{"ItemTableBelowZero", 4, -4},
                    BrokenWord{"ItemTableBeyondTheEnd", 4, INT32_MAX},
                    BrokenWord{"StartBelowZero", 8, INT32_MIN}, BrokenWord{"StartBeyondEnd", 8, 24},
                    BrokenWord{"EndTooLarge", 12, INT32_MAX}, BrokenWord{"EndBelowZero", 12, INT32_MIN},
                    BrokenWord{"TotalCountBelowZero", 16, -1}, BrokenWord{"GroupsBelowZero", 20, -1},
                    BrokenWord{"TooManyGroups", 20, INT32_MAX}, BrokenWord{"SizeZero", 24, 0},
                    BrokenWord{"SizeBelowZero", 24, -1}, BrokenWord{"SizeTooLarge", 24, INT32_MAX}),
    [](const auto& info) { return info.param.what; });

class BrokenItemOffset : public testing::TestWithParam<BrokenWord> {};

TEST_P(BrokenItemOffset, IsFalseAndWritesNothing) {
    const ShmFile file(with_word(three_items().bytes(), GetParam().offset, GetParam().value));
    const CCacheReader reader(file.name());
    std::string text = "untouched";
    const LogCapture log;

    EXPECT_FALSE(reader.GetItem(0, text));

    EXPECT_EQ(text, "untouched");
    EXPECT_TRUE(log.contains("do not lie in the object")) << log.text();
}

INSTANTIATE_TEST_SUITE_P(CCacheReader, BrokenItemOffset,
                         testing::Values(BrokenWord{"OwnBelowZero", 28, -1},
                                         BrokenWord{"OwnBeyondTheEnd", 28, INT32_MAX},
                                         BrokenWord{"OwnSmallest", 28, INT32_MIN},
                                         BrokenWord{"NextBeforeOwn", 32, 3},
                                         BrokenWord{"NextBeyondTheEnd", 32, INT32_MAX}),
                         [](const auto& info) { return info.param.what; });

TEST(CCacheReader, ABlockShortenedAfterLoadingIsFalse) {
    BlockObject block;
    block.texts = {std::string(5000, 'a'), std::string(5000, 'b')};
    const ShmFile file(block.bytes());
    const CCacheReader reader(file.name());

    file.truncate(5000);

    std::string text;
    EXPECT_FALSE(reader.GetItem(1, text));
}

}  // namespace
