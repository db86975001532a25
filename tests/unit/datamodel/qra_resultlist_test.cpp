#include "common/datamodel/qra_resultlist.h"

#include <gtest/gtest.h>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/result_objects.h"

namespace {

/// A section of the items 10 to 13 on two blocks.
class TwoBlocks {
public:
    TwoBlocks() : first_(block({"a", "b"}).bytes()), second_(block({"c", "d"}).bytes()) {
        list_.start_index = 10;
        list_.section_index = 1;
        list_.total_count = 40;
        list_.groups = {{0, 9}, {10, 39}};
        list_.items = {{0, 0}, {0, 1}, {1, 1}, {1, 0}};
        list_.block_names = {first_.name(), second_.name()};
    }

    std::string bytes() const { return list_.bytes(); }
    const ShmFile& first() const { return first_; }

    static constexpr size_t kIndexTable = 36 + 2 * 8;

private:
    static BlockObject block(std::vector<std::string> texts) {
        BlockObject object;
        object.texts = std::move(texts);
        return object;
    }

    ShmFile first_;
    ShmFile second_;
    ResultListObject list_;
};

TEST(CResultList, ReadsHeaderGroupsAndBlockNames) {
    const TwoBlocks objects;
    const ShmFile file(objects.bytes());
    const CResultList list(file.name());

    EXPECT_EQ(list.StartIndex(), 10);
    EXPECT_EQ(list.EndIndex(), 13);
    EXPECT_EQ(list.SectionIndex(), 1);
    EXPECT_EQ(list.GetItemCount(), 4);
    EXPECT_EQ(list.GetTotalCount(), 40);
    EXPECT_EQ(list.GetGroupCount(), 2);
    EXPECT_EQ(list.GetBlockCount(), 2);
    EXPECT_FALSE(list.IsValidIndex(9));
    EXPECT_TRUE(list.IsValidIndex(10));
    EXPECT_TRUE(list.IsValidIndex(13));
    EXPECT_FALSE(list.IsValidIndex(14));
    int begin = 0;
    int end = 0;
    EXPECT_TRUE(list.GetGroup(1, begin, end));
    EXPECT_EQ(begin, 10);
    EXPECT_EQ(end, 39);
    std::string name;
    EXPECT_TRUE(list.GetBlockName(0, name));
    EXPECT_EQ(name.size(), 128u);
    EXPECT_EQ(std::string(name.c_str()), objects.first().name());
}

TEST(CResultList, FindsEachItemInItsBlock) {
    const TwoBlocks objects;
    const ShmFile file(objects.bytes());
    CResultList list(file.name());
    std::string text;
    std::string block_name;
    int block_item = -1;

    ASSERT_TRUE(list.GetItem(12, text, block_name, block_item));

    EXPECT_EQ(text, "d");
    EXPECT_EQ(block_item, 1);
    EXPECT_EQ(block_name.size(), 128u);
    ASSERT_TRUE(list.GetItem(10, text, block_name, block_item));
    EXPECT_EQ(text, "a");
    EXPECT_EQ(std::string(block_name.c_str()), objects.first().name());
}

TEST(CResultList, OpensABlockOnce) {
    const TwoBlocks objects;
    const ShmFile file(objects.bytes());
    CResultList list(file.name());
    std::string text;
    std::string block_name;
    int block_item = -1;
    const LogCapture log;

    list.GetItem(10, text, block_name, block_item);
    list.GetItem(11, text, block_name, block_item);

    EXPECT_EQ(text, "b");
    EXPECT_EQ(block_name.size(), 128u);
    EXPECT_EQ(log.count("get shmname[" + objects.first().name() + "]."), 1);
}

TEST(CResultList, AnUnloadedListAnswersNeutrally) {
    CResultList list("qra_test_no_such_list");

    EXPECT_EQ(list.StartIndex(), 0);
    EXPECT_EQ(list.EndIndex(), -1);
    EXPECT_EQ(list.SectionIndex(), -1);
    EXPECT_EQ(list.GetItemCount(), 0);
    EXPECT_EQ(list.GetTotalCount(), 0);
    EXPECT_EQ(list.GetGroupCount(), 0);
    EXPECT_EQ(list.GetBlockCount(), 0);
    EXPECT_FALSE(list.IsValidIndex(0));
    int number = 0;
    EXPECT_FALSE(list.GetGroup(0, number, number));
    std::string text;
    std::string name;
    EXPECT_FALSE(list.GetBlockName(0, name));
    EXPECT_FALSE(list.GetItem(0, text, name, number));
}

TEST(CResultList, NamesAndGroupsThatDoNotExistAreFalse) {
    const TwoBlocks objects;
    const ShmFile file(objects.bytes());
    const CResultList list(file.name());
    std::string name = "untouched";
    int number = 5;

    EXPECT_FALSE(list.GetBlockName(-1, name));
    EXPECT_FALSE(list.GetBlockName(2, name));
    EXPECT_FALSE(list.GetGroup(-1, number, number));
    EXPECT_FALSE(list.GetGroup(2, number, number));

    EXPECT_EQ(name, "untouched");
    EXPECT_EQ(number, 5);
}

TEST(CResultList, ABlockThatDoesNotExistIsFalse) {
    ResultListObject object;
    object.items = {{0, 0}};
    object.block_names = {"qra_test_no_such_block"};
    const ShmFile file(object.bytes());
    CResultList list(file.name());
    std::string text;
    std::string block_name;
    int block_item = -1;
    const LogCapture log;

    EXPECT_FALSE(list.GetItem(0, text, block_name, block_item));

    EXPECT_TRUE(log.contains("shm_open failed, m_strShmName[qra_test_no_such_block]."));
}

TEST(CResultListDeathTest, AListIndexOutsideTheSectionIsAnAssertion) {
    const TwoBlocks objects;
    const ShmFile file(objects.bytes());
    CResultList list(file.name());
    std::string text;
    int number = 0;
    const char* condition = "nListIndex >= pHeader->nStartIndex && nListIndex <= pHeader->nEndIndex";

    EXPECT_DEATH(list.GetItem(9, text, text, number), condition);
    EXPECT_DEATH(list.GetItem(14, text, text, number), condition);
}

TEST(CResultListDeathTest, ABlockNumberOutsideTheTableIsAnAssertion) {
    const TwoBlocks objects;
    const ShmFile file(with_word(objects.bytes(), TwoBlocks::kIndexTable, 2));
    CResultList list(file.name());
    std::string text;
    int number = 0;

    EXPECT_DEATH(list.GetItem(10, text, text, number), "nBlock >= 0");
}

TEST(CResultList, OfAWriterThatIsNotTrustedNothingEndsTheProcess) {
    const ShmFile too_short("short");
    CResultList empty(too_short.name(), EQRAWriter::Untrusted);
    EXPECT_EQ(empty.SectionIndex(), -1);
    const TwoBlocks objects;
    std::string text;
    std::string name;
    int number = 0;
    for (const int32_t lie : {INT32_MIN, -1, 2, INT32_MAX}) {
        const ShmFile block_lie(with_word(objects.bytes(), TwoBlocks::kIndexTable, lie));
        CResultList list(block_lie.name(), EQRAWriter::Untrusted);
        EXPECT_FALSE(list.GetItem(10, text, name, number)) << "block " << lie;
        EXPECT_TRUE(list.GetItem(12, text, name, number)) << "its neighbour";
        const ShmFile item_lie(with_word(objects.bytes(), TwoBlocks::kIndexTable + 4, lie));
        CResultList other(item_lie.name(), EQRAWriter::Untrusted);
        EXPECT_FALSE(other.GetItem(10, text, name, number)) << "item " << lie;
    }
}

TEST(CResultList, ABlockThatIsTooShortIsFalseWhereItsWriterIsNotTrusted) {
    const ShmFile too_short("short");
    ResultListObject object;
    object.items = {{0, 0}};
    object.block_names = {too_short.name()};
    const ShmFile file(object.bytes());
    CResultList list(file.name(), EQRAWriter::Untrusted);
    std::string text;
    int number = 0;

    EXPECT_FALSE(list.GetItem(0, text, text, number));
}

struct BrokenWord {
    const char* what;
    size_t offset;
    int32_t value;
};

class BrokenList : public testing::TestWithParam<BrokenWord> {};

TEST_P(BrokenList, StaysUnloadedWithALogLine) {
    const TwoBlocks objects;
    const ShmFile file(with_word(objects.bytes(), GetParam().offset, GetParam().value));
    const LogCapture log;

    const CResultList list(file.name());

    EXPECT_EQ(list.SectionIndex(), -1);
    EXPECT_EQ(list.GetItemCount(), 0);
    EXPECT_EQ(log.count(file.name()), 1) << log.text();
}

INSTANTIATE_TEST_SUITE_P(
    CResultList, BrokenList,
    testing::Values(BrokenWord{"BlockNamesBelowZero", 0, -1},
                    BrokenWord{"BlockNamesBeyondTheEnd", 0, 1 << 20},
                    BrokenWord{"IndexTableBelowZero", 4, INT32_MIN},
                    BrokenWord{"IndexTableBeyondTheEnd", 4, INT32_MAX}, BrokenWord{"StartBelowZero", 8, -1},
                    BrokenWord{"StartBeyondEnd", 8, 15}, BrokenWord{"EndTooLarge", 12, INT32_MAX},
                    BrokenWord{"EndBelowZero", 12, INT32_MIN}, BrokenWord{"SectionBelowZero", 16, -1},
                    BrokenWord{"TotalCountBelowZero", 20, -1}, BrokenWord{"GroupsBelowZero", 24, -1},
                    BrokenWord{"TooManyGroups", 24, INT32_MAX}, BrokenWord{"BlocksBelowZero", 28, -1},
                    BrokenWord{"TooManyBlocks", 28, 3}, BrokenWord{"SizeZero", 32, 0},
                    BrokenWord{"SizeTooLarge", 32, INT32_MAX}),
    [](const auto& info) { return info.param.what; });

TEST(CResultList, AnEmptySectionIsLoaded) {
    ResultListObject object;
    object.section_index = 3;
    const ShmFile file(object.bytes());

    const CResultList list(file.name());

    EXPECT_EQ(list.SectionIndex(), 3);
    EXPECT_EQ(list.GetItemCount(), 0);
}

TEST(CResultList, AnItemOfTheLargestNumberIsBroken) {
    ResultListObject object;
    object.start_index = INT32_MAX - 1;
    object.total_count = INT32_MAX;
    object.items = {{0, 0}};
    const ShmFile largest(object.bytes());
    object.items = {{0, 0}, {0, 1}};
    const ShmFile too_large(object.bytes());
    object.start_index = INT32_MAX;
    object.items = {};
    const ShmFile empty_behind_all(object.bytes());

    EXPECT_EQ(CResultList(largest.name()).GetItemCount(), 1);
    EXPECT_EQ(CResultList(too_large.name()).GetItemCount(), 0);
    EXPECT_EQ(CResultList(empty_behind_all.name()).StartIndex(), 0);
}

TEST(CResultList, AListShortenedAfterLoadingIsFalse) {
    const TwoBlocks objects;
    const ShmFile file(objects.bytes());
    CResultList list(file.name());

    file.truncate(40);

    std::string text;
    int number = 0;
    EXPECT_FALSE(list.GetItem(10, text, text, number));
}

}  // namespace
