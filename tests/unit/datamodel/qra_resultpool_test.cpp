#include "common/datamodel/qra_resultpool.h"

#include <gtest/gtest.h>

#include <thread>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/result_objects.h"

namespace {

constexpr int kTotal = 100;

struct Fetch {
    int first;
    int last;
    int section;

    bool operator==(const Fetch& other) const {
        return first == other.first && last == other.last && section == other.section;
    }
};

std::ostream& operator<<(std::ostream& out, const Fetch& fetch) {
    return out << fetch.first << ".." << fetch.last << " section " << fetch.section;
}

/// Plays the engine: keeps the objects of a list of kTotal items in sections of ten, and what the pool asked
/// for.
class CResultPoolTest : public testing::Test {
protected:
    static constexpr int kSectionSize = 10;

    void connect(CResultPool& pool) { pool.SetCallBack(&on_prefetch, this, &on_drop, this); }

    CResultList* section(int number) { return section_from(number, number * kSectionSize); }

    /// A section whose items are not necessarily those of its number.
    CResultList* section_from(int number, int start) {
        ResultListObject list;
        list.start_index = start;
        list.section_index = number;
        list.total_count = kTotal;
        list.groups = {{0, 4}, {5, 99}};
        BlockObject block;
        for (int i = 0; i < kSectionSize; ++i) {
            const std::string odd =
                start == number * kSectionSize ? "" : " of section " + std::to_string(number);
            block.texts.push_back("item " + std::to_string(list.start_index + i) + odd);
            list.items.emplace_back(0, i);
        }
        files_.push_back(std::make_unique<ShmFile>(block.bytes()));
        list.block_names = {files_.back()->name()};
        files_.push_back(std::make_unique<ShmFile>(list.bytes()));
        return new CResultList(files_.back()->name());
    }

    std::vector<Fetch> fetched_;
    std::vector<std::string> dropped_;

private:
    static bool on_prefetch(void* self, int first, int last, int section) {
        static_cast<CResultPoolTest*>(self)->fetched_.push_back({first, last, section});
        return false;
    }
    static bool on_drop(void* self, const std::string& name) {
        static_cast<CResultPoolTest*>(self)->dropped_.push_back(name);
        return false;
    }

    std::vector<std::unique_ptr<ShmFile>> files_;
};

class AutoPool : public CResultPoolTest {
protected:
    AutoPool() : pool_(4, kSectionSize, QRA_PREFETCH_AUTO) { connect(pool_); }
    CResultPool pool_;
};

/// A window of 20 items (five times four): from 10 before the cursor to 9 behind it.
class WindowPool : public CResultPoolTest {
protected:
    WindowPool() : pool_(4, kSectionSize, QRA_PREFETCH_WINDOW) { connect(pool_); }
    CResultPool pool_;
};

TEST_F(AutoPool, EachSectionAsksForTheNextUntilTheLast) {
    const LogCapture log;
    for (int i = 0; i < kTotal / kSectionSize; ++i)
        pool_.Push(section(i));

    ASSERT_EQ(fetched_.size(), 9u);
    EXPECT_EQ(fetched_.front(), (Fetch{10, 19, 1}));
    EXPECT_EQ(fetched_.back(), (Fetch{90, 99, 9}));
    EXPECT_EQ(log.count("Stop partial"), 1);
    EXPECT_TRUE(dropped_.empty());
}

TEST_F(AutoPool, ASectionBeingFetchedIsNotAskedForAgain) {
    pool_.Push(section(0));
    pool_.Push(section(0));

    EXPECT_EQ(fetched_.size(), 1u);
}

TEST_F(AutoPool, ASectionOfNoItemsStopsTheStream) {
    const LogCapture log;

    pool_.Push(new CResultList("qra_test_no_such_list"));

    EXPECT_TRUE(fetched_.empty());
    EXPECT_EQ(log.count("Stop partial"), 1);
    EXPECT_EQ(pool_.GetTotalCount(), 0);
}

TEST_F(CResultPoolTest, AnAutomaticPoolWithoutSectionSizeStillAsks) {
    CResultPool pool(4, 0, QRA_PREFETCH_AUTO);
    connect(pool);

    pool.Push(section(0));

    ASSERT_EQ(fetched_.size(), 1u);
    EXPECT_EQ(fetched_[0], (Fetch{0, -1, 1}));
}

TEST_F(AutoPool, MovesOverSectionsAndReadsItems) {
    pool_.Push(section(0));
    pool_.Push(section(1));

    EXPECT_EQ(pool_.MoveToIndex(9), QRA_ERROR_NONE);
    EXPECT_EQ(pool_.GetCursor()->strItem, "item 9");
    EXPECT_EQ(pool_.MoveToNext(), QRA_ERROR_NONE);
    EXPECT_EQ(pool_.GetCursor()->nListIndex, 10);
    EXPECT_EQ(pool_.GetCursor()->strItem, "item 10");
    EXPECT_EQ(pool_.GetCursor()->nBlockItem, 0);
    EXPECT_EQ(pool_.MoveToPrevious(), QRA_ERROR_NONE);
    EXPECT_EQ(pool_.GetCursor()->strItem, "item 9");
    EXPECT_EQ(pool_.MoveToPrevious(), QRA_ERROR_NONE);
    EXPECT_EQ(pool_.GetCursor()->strItem, "item 8");
}

TEST_F(AutoPool, FindsSectionsThatCameInAnyOrder) {
    for (const int number : {3, 0, 9, 1})
        pool_.Push(section(number));

    for (const int index : {5, 35, 0, 99, 19, 30}) {
        EXPECT_EQ(pool_.MoveToIndex(index), QRA_ERROR_NONE) << index;
        EXPECT_EQ(pool_.GetCursor()->strItem, "item " + std::to_string(index));
    }
    for (const int index : {20, 29, 40, 89})
        EXPECT_EQ(pool_.MoveToIndex(index), QRA_ERROR_WRITE_FAILED) << index;
}

TEST_F(AutoPool, OfSectionsThatHoldOneItemTheFirstWins) {
    pool_.Push(section_from(5, 0));
    pool_.Push(section(1));
    pool_.Push(section_from(2, 5));

    ASSERT_EQ(pool_.MoveToIndex(12), QRA_ERROR_NONE);
    EXPECT_EQ(pool_.GetCursor()->strItem, "item 12");
    ASSERT_EQ(pool_.MoveToIndex(7), QRA_ERROR_NONE);
    EXPECT_EQ(pool_.GetCursor()->strItem, "item 7 of section 2");
    ASSERT_EQ(pool_.MoveToIndex(3), QRA_ERROR_NONE);
    EXPECT_EQ(pool_.GetCursor()->strItem, "item 3 of section 5");
}

TEST_F(AutoPool, TheFirstMoveToNextLandsOnTheFirstItem) {
    pool_.Push(section(0));

    EXPECT_EQ(pool_.MoveToNext(), QRA_ERROR_NONE);

    EXPECT_EQ(pool_.GetCursor()->nListIndex, 0);
}

TEST_F(AutoPool, AnIndexOutsideTheListIsInvalid) {
    pool_.Push(section(0));
    pool_.MoveToIndex(0);
    const LogCapture log;

    EXPECT_EQ(pool_.MoveToPrevious(), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(pool_.MoveToIndex(kTotal), QRA_ERROR_INVALID_PARAM);

    EXPECT_TRUE(log.contains("Invalid index[-1], m_nTotalCount[100]."));
    EXPECT_TRUE(log.contains("Invalid index[100], m_nTotalCount[100]."));
    EXPECT_EQ(pool_.GetCursor()->nListIndex, 0);
}

TEST_F(AutoPool, AnItemThatHasNotArrivedAnswersWriteFailedUntilItsSectionCame) {
    pool_.Push(section(0));
    pool_.MoveToIndex(3);

    EXPECT_EQ(pool_.MoveToIndex(25), QRA_ERROR_WRITE_FAILED);
    EXPECT_EQ(pool_.GetCursor()->nListIndex, 3);

    pool_.Push(section(2));
    EXPECT_EQ(pool_.MoveToIndex(25), QRA_ERROR_NONE);
    EXPECT_EQ(pool_.GetCursor()->strItem, "item 25");
}

TEST_F(AutoPool, WithoutASectionNothingIsThere) {
    const LogCapture log;

    EXPECT_EQ(pool_.MoveToIndex(0), QRA_ERROR_INVALID_PARAM);
    pool_.ResetCursor();
    EXPECT_EQ(pool_.GetGroupCount(), 0);
    int begin = 5;
    int end = 6;
    EXPECT_FALSE(pool_.GetGroup(0, begin, end));
    const CResultPool::Cursor* cursor = pool_.GetCursor();

    EXPECT_EQ(cursor->nListIndex, -1);
    EXPECT_EQ(cursor->strItem, "");
    EXPECT_EQ(cursor->nBlockItem, -1);
    EXPECT_EQ(begin, 5);
    EXPECT_EQ(log.count("There is no result list."), 2);
    EXPECT_EQ(log.count("m_InternalCursor is invalid."), 1);
}

TEST_F(AutoPool, ResetCursorGoesToTheFirstItemThatIsHeld) {
    pool_.Push(section(2));
    pool_.Push(section(1));
    pool_.MoveToIndex(25);

    pool_.ResetCursor();

    EXPECT_EQ(pool_.GetCursor()->nListIndex, 10);
    EXPECT_EQ(pool_.GetCursor()->strItem, "item 10");
}

TEST_F(AutoPool, ResetCursorOnAnEmptyListShowsNoItem) {
    ResultListObject list;
    const ShmFile file(list.bytes());
    pool_.Push(new CResultList(file.name()));

    pool_.ResetCursor();

    EXPECT_EQ(pool_.GetCursor()->nListIndex, 0);
    EXPECT_EQ(pool_.GetCursor()->strItem, "");
    EXPECT_EQ(pool_.GetCursor()->nBlockItem, -1);
}

TEST_F(AutoPool, AskingTwiceAtTheSameIndexReadsTheItemOnce) {
    pool_.Push(section(0));
    pool_.MoveToIndex(0);
    const LogCapture log;

    const CResultPool::Cursor* first = pool_.GetCursor();
    const CResultPool::Cursor* second = pool_.GetCursor();

    EXPECT_EQ(first, second);
    EXPECT_EQ(log.count("get shmname"), 1);
}

TEST_F(AutoPool, OneSectionPassesGroupsOn) {
    pool_.Push(section(0));
    int begin = 0;
    int end = 0;

    EXPECT_EQ(pool_.GetGroupCount(), 2);
    EXPECT_TRUE(pool_.GetGroup(1, begin, end));
    EXPECT_EQ(begin, 5);
    EXPECT_EQ(end, 99);
    EXPECT_FALSE(pool_.GetGroup(2, begin, end));
}

TEST_F(AutoPool, SeveralSectionsAreOneGroupWhateverIsAskedFor) {
    pool_.Push(section(0));
    pool_.Push(section(1));
    const LogCapture log;
    int begin = -1;
    int end = -1;

    EXPECT_EQ(pool_.GetGroupCount(), 1);
    EXPECT_TRUE(pool_.GetGroup(17, begin, end));

    EXPECT_EQ(begin, 0);
    EXPECT_EQ(end, 99);
    EXPECT_TRUE(log.contains("Partial request only 1 group."));
}

TEST_F(WindowPool, KeepsSectionsThatTheWindowTouchesAndDropsOthersAtOnce) {
    CResultList* far = section(5);
    const std::string far_name = far->Name();
    pool_.Push(section(0));
    const LogCapture log;

    pool_.Push(far);

    EXPECT_EQ(dropped_, std::vector<std::string>{far_name});
    EXPECT_TRUE(log.contains("Section[5] is out of actived window. drop it"));
    EXPECT_EQ(pool_.MoveToIndex(50), QRA_ERROR_WRITE_FAILED);
}

TEST_F(WindowPool, MovingOnAsksForTheSectionsThatTheWindowReaches) {
    pool_.Push(section(0));

    pool_.MoveToIndex(0);
    EXPECT_TRUE(fetched_.empty());

    pool_.MoveToNext();
    ASSERT_EQ(fetched_.size(), 1u);
    EXPECT_EQ(fetched_[0], (Fetch{10, 19, 1}));

    pool_.MoveToNext();
    EXPECT_EQ(fetched_.size(), 1u);
}

TEST_F(WindowPool, MovingOnDropsWhatTheWindowLeft) {
    CResultList* first = section(0);
    const std::string first_name = first->Name();
    pool_.Push(first);
    pool_.MoveToIndex(9);
    pool_.Push(section(1));
    pool_.MoveToIndex(19);
    EXPECT_TRUE(dropped_.empty());
    pool_.Push(section(2));

    pool_.MoveToIndex(20);

    EXPECT_EQ(dropped_, std::vector<std::string>{first_name});
    EXPECT_EQ(pool_.MoveToIndex(0), QRA_ERROR_WRITE_FAILED);
}

TEST_F(WindowPool, MovingBackAsksForSectionsBeforeTheFirst) {
    pool_.Push(section(0));
    pool_.MoveToIndex(9);
    pool_.Push(section(1));
    pool_.MoveToIndex(15);
    pool_.Push(section(2));
    pool_.MoveToIndex(25);
    pool_.MoveToIndex(21);
    fetched_.clear();

    pool_.MoveToPrevious();
    EXPECT_TRUE(fetched_.empty());
    pool_.MoveToIndex(19);

    ASSERT_EQ(fetched_.size(), 1u);
    EXPECT_EQ(fetched_[0], (Fetch{0, 9, 0}));
}

TEST_F(CResultPoolTest, MovingBackDropsWhatLiesBehindTheWindow) {
    CResultPool pool(1, kSectionSize, QRA_PREFETCH_WINDOW);  // a window of five items
    connect(pool);
    CResultList* second = section(1);
    const std::string second_name = second->Name();
    pool.Push(section(0));
    pool.MoveToIndex(9);
    pool.Push(second);
    pool.MoveToIndex(10);
    dropped_.clear();

    pool.MoveToIndex(7);

    EXPECT_EQ(dropped_, std::vector<std::string>{second_name});
}

TEST_F(CResultPoolTest, WithoutAWindowNothingIsFetchedOrDropped) {
    CResultPool pool(0, kSectionSize, QRA_PREFETCH_WINDOW);
    connect(pool);
    pool.Push(section(0));
    pool.Push(section(7));

    EXPECT_EQ(pool.MoveToIndex(0), QRA_ERROR_NONE);
    EXPECT_EQ(pool.MoveToNext(), QRA_ERROR_NONE);
    EXPECT_EQ(pool.MoveToIndex(70), QRA_ERROR_NONE);

    EXPECT_TRUE(fetched_.empty());
    EXPECT_TRUE(dropped_.empty());
}

TEST_F(CResultPoolTest, TheLargestNumbersDoNotOverflow) {
    ResultListObject list;
    list.total_count = INT32_MAX;
    list.section_index = INT32_MAX;
    list.items = {{0, 0}, {0, 1}};
    const ShmFile file(list.bytes());
    CResultPool pool(INT32_MAX, INT32_MAX, QRA_PREFETCH_AUTO);
    connect(pool);

    pool.Push(new CResultList(file.name()));

    EXPECT_EQ(pool.MoveToIndex(1), QRA_ERROR_NONE);
    EXPECT_EQ(fetched_.size(), 1u);
}

TEST_F(CResultPoolTest, DestructionTellsTheEngineNothing) {
    {
        CResultPool pool(4, kSectionSize, QRA_PREFETCH_WINDOW);
        connect(pool);
        pool.Push(section(0));
    }

    EXPECT_TRUE(dropped_.empty());
}

TEST_F(AutoPool, SectionsMayArriveWhileTheClientReads) {
    pool_.Push(section(0));
    std::vector<CResultList*> rest;
    for (int i = 1; i < 10; ++i)
        rest.push_back(section(i));

    std::thread signals([&] {
        for (CResultList* list : rest)
            pool_.Push(list);
    });
    for (int i = 0; i < 10; ++i) {
        EXPECT_EQ(pool_.MoveToIndex(i), QRA_ERROR_NONE);
        EXPECT_EQ(pool_.GetCursor()->strItem, "item " + std::to_string(i));
    }
    signals.join();

    EXPECT_EQ(pool_.MoveToIndex(99), QRA_ERROR_NONE);
}

TEST_F(AutoPool, BothCallbacksAndEveryListAreRequired) {
    EXPECT_DEATH(pool_.SetCallBack(
                     nullptr, nullptr, [](void*, const std::string&) { return true; }, nullptr),
                 "func_prefetch != __null");
    EXPECT_DEATH(pool_.SetCallBack([](void*, int, int, int) { return true; }, nullptr, nullptr, nullptr),
                 "func_drop != __null");
    EXPECT_DEATH(pool_.Push(nullptr), "pList != __null");
}

TEST_F(CResultPoolTest, ADirectionWithoutASectionBeforeTheFirstIsAnAssertion) {
    ResultListObject list;
    list.start_index = 50;
    list.section_index = 0;
    list.total_count = kTotal;
    list.items.assign(20, {0, 0});
    const ShmFile file(list.bytes());
    CResultPool pool(40, kSectionSize, QRA_PREFETCH_WINDOW);
    connect(pool);
    pool.Push(new CResultList(file.name()));
    pool.MoveToIndex(60);

    EXPECT_DEATH(pool.MoveToIndex(55), "nStartSectionIndex >= 0 && nSectionCount > 0");
}

}  // namespace
