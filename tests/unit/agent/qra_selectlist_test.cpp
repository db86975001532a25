#include "libqra-agent/agent/src/qra_selectlist.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/fakes/dlog_capture.h"

namespace {

/// A shared memory object made of 32-bit words, as another process may have left it.
class SharedWords {
public:
    explicit SharedWords(const std::vector<int32_t>& words, const std::string& prefix = kSelectListShmPrefix)
        : name_(prefix + "test_" + std::to_string(getpid())) {
        const int fd = shm_open(name_.c_str(), O_CREAT | O_RDWR | O_TRUNC, 0600);
        const size_t size = words.size() * sizeof(int32_t);
        EXPECT_EQ(write(fd, words.data(), size), static_cast<ssize_t>(size));
        close(fd);
    }
    ~SharedWords() { shm_unlink(name_.c_str()); }

    const std::string& name() const { return name_; }
    bool exists() const {
        const int fd = shm_open(name_.c_str(), O_RDONLY, 0);
        if (fd >= 0) {
            close(fd);
        }
        return fd >= 0;
    }

private:
    std::string name_;
};

void select(CSelectList& list, const std::vector<int>& indices) {
    for (const int index : indices) {
        list.AddItem(index);
    }
}

}  // namespace

TEST(CSelectList, IsEmptyAtFirst) {
    CSelectList list;

    EXPECT_EQ(list.GetItemCount(), 0);
    EXPECT_EQ(list.m_ePageItemType, QRA_PG_ITEM_NONE);
    EXPECT_FALSE(list.FindItem(0));
    EXPECT_EQ(list.GetCurrentDBIndex(), -1);
}

TEST(CSelectList, HoldsEachItemOnce) {
    CSelectList list;

    select(list, {7, 7, 3});
    EXPECT_EQ(list.GetItemCount(), 2);
    EXPECT_TRUE(list.FindItem(7));

    list.RemoveItem(7);
    list.RemoveItem(7);
    EXPECT_EQ(list.GetItemCount(), 1);
    EXPECT_FALSE(list.FindItem(7));
}

TEST(CSelectList, RanksItemsByDbIndexWhateverTheOrderOfSelection) {
    CSelectList list;
    select(list, {30, 10, 20});

    EXPECT_EQ(list.GetDBIndexByPageIndex(0), 10);
    EXPECT_EQ(list.GetDBIndexByPageIndex(1), 20);
    EXPECT_EQ(list.GetDBIndexByPageIndex(2), 30);
    EXPECT_EQ(list.GetDBIndexByPageIndex(0), 10);
}

TEST(CSelectList, RanksFollowEveryChange) {
    CSelectList list;
    select(list, {10, 20, 30});
    EXPECT_EQ(list.GetDBIndexByPageIndex(2), 30);

    list.RemoveItem(10);
    EXPECT_EQ(list.GetDBIndexByPageIndex(1), 30);
    list.AddItem(5);
    EXPECT_EQ(list.GetDBIndexByPageIndex(1), 20);
    list.RemoveAll();
    EXPECT_EQ(list.GetDBIndexByPageIndex(0), -1);
    list.AddItem(1);
    EXPECT_EQ(list.GetDBIndexByPageIndex(0), 1);
}

TEST(CSelectList, ARankOutOfRangeIsLogged) {
    LogCapture log;
    CSelectList list;
    select(list, {10});

    EXPECT_EQ(list.GetDBIndexByPageIndex(-1), -1);
    EXPECT_EQ(list.GetDBIndexByPageIndex(1), -1);

    EXPECT_TRUE(log.contains("GetDBIndex() faild. nListIndex[-1]."));
    EXPECT_TRUE(log.contains("GetDBIndex() faild. nListIndex[1]."));
}

TEST(CSelectList, TheFirstMoveToNextLandsOnTheFirstItem) {
    LogCapture log;
    CSelectList list;
    select(list, {20, 10});
    EXPECT_EQ(list.GetCurrentDBIndex(), -1);
    EXPECT_TRUE(log.contains("GetCurrentDBIndex() faild. m_nCurrentListIndex[-1]."));

    EXPECT_EQ(list.MoveToNext(), QRA_ERROR_NONE);
    EXPECT_EQ(list.GetCurrentDBIndex(), 10);
    EXPECT_TRUE(log.contains("Selected shm name[], TotalItem[2], Current item[0]."));
    EXPECT_EQ(list.MoveToNext(), QRA_ERROR_NONE);
    EXPECT_EQ(list.GetCurrentDBIndex(), 20);
    EXPECT_EQ(list.MoveToPrevious(), QRA_ERROR_NONE);
    EXPECT_EQ(list.GetCurrentDBIndex(), 10);
    EXPECT_EQ(list.MoveToIndex(1), QRA_ERROR_NONE);
    EXPECT_EQ(list.GetCurrentDBIndex(), 20);
}

TEST(CSelectList, AMoveBeyondTheEndsLeavesTheCursor) {
    LogCapture log;
    CSelectList list;
    select(list, {10, 20});

    EXPECT_EQ(list.MoveToPrevious(), QRA_ERROR_INVALID_INDEX);
    EXPECT_TRUE(log.contains("MoveToPrevious.nListIndex[-2]."));
    list.MoveToIndex(1);
    EXPECT_EQ(list.MoveToNext(), QRA_ERROR_INVALID_INDEX);
    EXPECT_TRUE(log.contains("MoveToNext().nListIndex."));
    EXPECT_EQ(list.MoveToIndex(2), QRA_ERROR_INVALID_INDEX);
    EXPECT_EQ(list.MoveToIndex(-1), QRA_ERROR_INVALID_INDEX);
    EXPECT_TRUE(log.contains("MoveToIndex() faild.nListIndex[2]."));
    EXPECT_TRUE(log.contains("MoveToIndex() faild.nListIndex[-1]."));

    EXPECT_EQ(list.GetCurrentDBIndex(), 20);
}

TEST(CSelectList, RemoveAllLeavesTheCursor) {
    CSelectList list;
    select(list, {10, 20});
    list.MoveToIndex(1);

    list.RemoveAll();
    EXPECT_EQ(list.GetItemCount(), 0);
    EXPECT_EQ(list.GetCurrentDBIndex(), -1);
    select(list, {1, 2});

    EXPECT_EQ(list.GetCurrentDBIndex(), 2);
}

TEST(CSelectList, LoadsItemsAndTypeFromSharedMemory) {
    const SharedWords shared({2, 16, 24, QRA_PG_ITEM_CONTENTS, -5, 9});
    CSelectList list(shared.name());

    ASSERT_TRUE(list.m_Load());

    EXPECT_EQ(list.GetItemCount(), 2);
    EXPECT_EQ(list.GetDBIndexByPageIndex(0), -5);
    EXPECT_EQ(list.GetDBIndexByPageIndex(1), 9);
    EXPECT_EQ(list.m_ePageItemType, QRA_PG_ITEM_CONTENTS);
    EXPECT_TRUE(list.m_Load()) << "a second load finds the first one";
}

TEST(CSelectList, LoadsItemsThatDoNotFollowTheHeadAtOnce) {
    const SharedWords shared({1, 20, 24, QRA_PG_ITEM_CONTENTS, 0x5a5a5a5a, 9});
    CSelectList list(shared.name());

    ASSERT_TRUE(list.m_Load());

    EXPECT_EQ(list.GetDBIndexByPageIndex(0), 9);
}

TEST(CSelectList, RemovesTheObjectThatItLoaded) {
    const SharedWords shared({0, 16, 16, 0});
    {
        CSelectList list(shared.name());
        EXPECT_TRUE(list.m_Load());
        EXPECT_TRUE(shared.exists());
    }
    EXPECT_FALSE(shared.exists());

    LogCapture log;
    {
        CSelectList again(shared.name());
        EXPECT_FALSE(again.m_Load());
    }
    EXPECT_TRUE(log.contains("shm_open() faild."));
    EXPECT_TRUE(log.contains("unlink selected share mem failed."));
}

TEST(CSelectList, NeverRemovesAnObjectThatIsNoSelectList) {
    const SharedWords shared({0, 16, 16, 0}, "somebody_elses_");
    {
        CSelectList list(shared.name());
        list.m_Load();
    }
    EXPECT_TRUE(shared.exists());
}

TEST(CSelectList, AListMadeInMemoryHasNothingToLoad) {
    LogCapture log;
    CSelectList list;

    EXPECT_FALSE(list.m_Load());

    EXPECT_TRUE(log.contains("shm_open() faild."));
}

TEST(CSelectList, AnObjectShorterThanItsHeadIsNotLoaded) {
    LogCapture log;
    const SharedWords shared({1, 16, 20});
    CSelectList list(shared.name());

    EXPECT_FALSE(list.m_Load());
    EXPECT_FALSE(list.m_Load());

    EXPECT_EQ(log.count("fread() faild."), 1);
    EXPECT_EQ(list.GetItemCount(), 0);
}

TEST(CSelectList, ANameThatIsAPipeIsNotWaitedFor) {
    LogCapture log;
    const std::string name = kSelectListShmPrefix + std::string("test_pipe_") + std::to_string(getpid());
    ASSERT_EQ(mkfifo(("/dev/shm/" + name).c_str(), 0600), 0);
    CSelectList list(name);

    EXPECT_FALSE(list.m_Load());

    EXPECT_TRUE(log.contains("fread() faild."));
}

TEST(CSelectList, BelievesNoNumberThatTheObjectsSizeDoesNotBearOut) {
    const std::vector<std::vector<int32_t>> broken = {
        {2, 16, 24, 2, 1},                   // longer than the object
        {3, 16, 24, 2, 1, 2},                // more items than the length has room for
        {-1, 16, 24, 2, 1, 2},               // a negative count
        {0x40000000, 16, 24, 2, 1, 2},       // a count whose bytes overflow
        {0x7fffffff, 16, 0x7fffffff, 2, 1},  // all as large as can be
        {1, 0, 24, 2, 1, 2},                 // items in the head
        {1, -4, 24, 2, 1, 2},                // items before the object
        {1, 24, 24, 2, 1, 2},                // items behind the end
        {1, 0x7fffffff, 24, 2, 1, 2},        // items far behind the end
        {0, 16, 15, 2, 1, 2},                // shorter than the head
        {0, 16, -1, 2, 1, 2},                // a negative length
        {1, 16, 24, 6, 1, 2},                // no kind of tile
        {1, 16, 24, -1, 1, 2},               // no kind of tile
    };
    for (size_t i = 0; i < broken.size(); ++i) {
        LogCapture log;
        const SharedWords shared(broken[i]);
        CSelectList list(shared.name());

        EXPECT_FALSE(list.m_Load()) << i;

        EXPECT_TRUE(log.contains("Broken select list: shm name[" + shared.name() + "]")) << i << log.text();
        EXPECT_EQ(list.GetItemCount(), 0) << i;
        EXPECT_EQ(list.m_ePageItemType, QRA_PG_ITEM_NONE) << i;
    }
}

TEST(CSelectList, WalksManySelectedItemsOneStepAtATime) {
    constexpr int kItems = 200000;
    CSelectList list;
    for (int i = 0; i < kItems; ++i) {
        list.AddItem(2 * i);
    }

    int wrong = 0;
    for (int i = 0; i < kItems; ++i) {
        wrong += list.GetDBIndexByPageIndex(i) != 2 * i;
    }

    EXPECT_EQ(wrong, 0);
}
