#include "libqra-agent/agent/src/qra_content_page.h"

#include <gtest/gtest.h>

#include <climits>
#include <random>
#include <vector>

#include "tests/fakes/dlog_capture.h"

namespace {

constexpr unsigned long kRows = 0x11;
constexpr unsigned long kColumns = 0x21;

struct Run {
    int type;
    int start;
    int count;
    bool operator==(const Run& other) const {
        return type == other.type && start == other.start && count == other.count;
    }
};

std::ostream& operator<<(std::ostream& out, const Run& run) {
    return out << "{" << run.type << ", " << run.start << ", " << run.count << "}";
}

using Page = std::vector<Run>;

std::vector<Page> pages_of(const CQRAContentPage& page) {
    std::vector<Page> pages;
    for (const _stQRAPageInfo& info : page.GetPageInfos()) {
        Page runs;
        for (const _stQRAPageItem& item : info.Items) {
            runs.push_back({item.eType, item.nStartIndex, item.nCount});
        }
        pages.push_back(runs);
    }
    return pages;
}

/// A grid of 2 rows and 9 columns if nothing else is said.
class ContentPage : public testing::Test {
protected:
    void create(unsigned long style, int rows = 2, int columns = 9) {
        ASSERT_TRUE(page.Create(rows, columns, style));
    }

    CQRAContentPage page;
};

/// Rules that hold for every layout.
void expect_consistent(const CQRAContentPage& page) {
    const int page_size = page.GetRow() * page.GetColumn();
    int total = 0;
    const auto& infos = page.GetPageInfos();
    for (size_t p = 0; p < infos.size(); ++p) {
        EXPECT_EQ(infos[p].nPreviousPage, static_cast<int>(p) - 1);
        int count = 0;
        for (const _stQRAPageItem& item : infos[p].Items) {
            EXPECT_GT(item.nCount, 0);
            for (int i = 0; i < item.nCount; ++i) {
                EXPECT_EQ(page.GetItemType(total + count + i), item.eType);
                const bool contents = item.eType == QRA_PG_ITEM_CONTENTS;
                EXPECT_EQ(page.GetDBIndex(total + count + i), contents ? item.nStartIndex + i : -1);
            }
            count += item.nCount;
        }
        if (p + 1 < infos.size()) {
            EXPECT_EQ(count, page_size) << "page " << p;
        }
        EXPECT_LE(count, page_size);
        total += count;
    }
    EXPECT_EQ(page.GetTotalSize(), total);
}

}  // namespace

TEST_F(ContentPage, IsNothingBeforeItIsCreated) {
    EXPECT_FALSE(page.FlagCreate());
    EXPECT_FALSE(page.AddContentsItem(0, 3));
    EXPECT_FALSE(page.AddClusterItem(0, 1));
    page.FillEmptyItemsInPage();

    EXPECT_EQ(page.GetTotalSize(), 0);
    EXPECT_EQ(page.GetTotalPageCount(), 0);
    EXPECT_EQ(page.GetItemType(0), QRA_PG_ITEM_NONE);
    EXPECT_EQ(page.GetDBIndex(0), -1);
    EXPECT_EQ(page.FindClusterIndex(0), -1);
}

TEST_F(ContentPage, CreateNeedsRowsAndColumns) {
    for (const auto& [rows, columns] : std::vector<std::pair<int, int>>{{0, 9}, {2, 0}, {-1, 9}, {2, -9}, {-2, -9}}) {
        LogCapture log;
        CQRAContentPage none;

        EXPECT_FALSE(none.Create(rows, columns, kRows));

        EXPECT_TRUE(log.contains("FlagCreate fail: m_Row == 0 || m_Column == 0"));
        EXPECT_FALSE(none.FlagCreate());
        EXPECT_FALSE(none.AddContentsItem(0, 1));
    }
}

TEST_F(ContentPage, IsCreatedOnce) {
    LogCapture log;
    create(kRows);
    page.AddContentsItem(0, 3);

    EXPECT_FALSE(page.Create(1, 1, kColumns));

    EXPECT_TRUE(log.contains("FlagCreate fail"));
    EXPECT_EQ(page.GetTotalSize(), 3);
    EXPECT_EQ(page.GetRow(), 2);
}

TEST_F(ContentPage, DestroyForgetsEverythingAndAllowsACreate) {
    create(kRows);
    page.SetPageMask(0x26);
    page.AddClusterItem(0, 1);
    page.AddContentsItem(0, 3);
    page.AddUpFolderItem(-1, 1);
    page.AddEmptyItem(-1, 1);

    page.Destroy();

    EXPECT_FALSE(page.FlagCreate());
    EXPECT_EQ(page.GetTotalSize(), 0);
    EXPECT_EQ(page.GetTotalPageCount(), 0);
    EXPECT_EQ(page.GetEmptyItemCount(), 0);
    EXPECT_EQ(page.GetUpFolderItemCount(), 0);
    EXPECT_EQ(page.GetPageMask(), 0);
    EXPECT_EQ(page.GetPageManagerIndexByClusterIndex(0), -1);
    EXPECT_EQ(page.GetPageIndexByDBIndex(0, QRA_PG_ITEM_CONTENTS), -1);
    EXPECT_TRUE(page.Create(1, 1, kRows));
}

TEST_F(ContentPage, SplitsARunOverPages) {
    create(kColumns);

    EXPECT_TRUE(page.AddContentsItem(0, 40));

    EXPECT_EQ(pages_of(page), (std::vector<Page>{{{2, 0, 18}}, {{2, 18, 18}}, {{2, 36, 4}}}));
    EXPECT_EQ(page.GetDBIndex(17), 17);
    EXPECT_EQ(page.GetDBIndex(18), 18);
    EXPECT_EQ(page.GetDBIndex(20), 20);
    EXPECT_EQ(page.GetTotalSize(), 40);
    EXPECT_EQ(page.GetTotalPageCount(), 3);
    expect_consistent(page);
}

TEST_F(ContentPage, AnUpFolderEntryShiftsTheContents) {
    create(kColumns);

    EXPECT_TRUE(page.AddUpFolderItem(-1, 1));
    EXPECT_TRUE(page.AddContentsItem(0, 18));

    EXPECT_EQ(pages_of(page), (std::vector<Page>{{{5, -1, 1}, {2, 0, 17}}, {{2, 17, 1}}}));
    EXPECT_EQ(page.GetDBIndex(0), -1);
    EXPECT_EQ(page.GetItemType(0), QRA_PG_ITEM_UPFOLDER);
    EXPECT_EQ(page.GetDBIndex(1), 0);
    EXPECT_EQ(page.GetUpFolderItemCount(), 1);
    expect_consistent(page);
}

TEST_F(ContentPage, HasNothingOutsideOfTheList) {
    create(kColumns);
    page.AddContentsItem(0, 20);

    for (const int index : {-1, 20, 35, 36, INT_MAX, INT_MIN}) {
        EXPECT_EQ(page.GetItemType(index), QRA_PG_ITEM_NONE) << index;
        EXPECT_EQ(page.GetDBIndex(index), -1) << index;
    }
}

TEST_F(ContentPage, AddsNothingForACountBelowOne) {
    create(kColumns | 0x700);
    page.AddClusterItem(0, 1);

    EXPECT_FALSE(page.AddContentsItem(0, 0));
    EXPECT_FALSE(page.AddContentsItem(0, -5));
    EXPECT_FALSE(page.AddPlayListContentsItem(0, 0));
    EXPECT_FALSE(page.AddUpFolderItem(-1, 0));
    EXPECT_FALSE(page.AddEmptyItem(-1, -1));
    EXPECT_FALSE(page.AddClusterItem(1, 0));

    EXPECT_EQ(page.GetTotalSize(), 1);
    EXPECT_EQ(page.GetPageManagerIndexByClusterIndex(1), -1);
}

TEST_F(ContentPage, RefusesARunBeyondTheLargestIndex) {
    create(kColumns, INT_MAX, INT_MAX);

    EXPECT_FALSE(page.AddContentsItem(INT_MAX, 1));
    EXPECT_TRUE(page.AddContentsItem(0, INT_MAX - 1));
    EXPECT_FALSE(page.AddContentsItem(0, 2));
    EXPECT_TRUE(page.AddEmptyItem(-1, 1));

    EXPECT_EQ(page.GetTotalSize(), INT_MAX);
    EXPECT_EQ(page.GetTotalPageCount(), 1);
    EXPECT_EQ(page.GetDBIndex(INT_MAX - 2), INT_MAX - 2);
    EXPECT_EQ(page.GetItemType(INT_MAX - 1), QRA_PG_ITEM_EMPTY);
}

TEST_F(ContentPage, APageLargerThanAnyListTakesItAll) {
    create(kRows, 65536, 65536);

    EXPECT_TRUE(page.AddContentsItem(0, 1000000));
    page.FillEmptyItemsInPage();

    EXPECT_EQ(page.GetTotalPageCount(), 1);
    EXPECT_EQ(page.GetTotalSize(), INT_MAX);
    EXPECT_EQ(page.GetDBIndex(999999), 999999);
}

TEST_F(ContentPage, LogsTheCountsOfEachAdd) {
    LogCapture log;
    create(kColumns);

    page.AddClusterItem(0, 1);
    page.AddPlayListContentsItem(0, 2);
    page.AddUpFolderItem(-1, 1);
    page.AddEmptyItem(-1, 3);

    EXPECT_TRUE(log.contains("AddClusterItem Count = 1, Total = 1, m_TotalItemSize = 1."));
    EXPECT_TRUE(log.contains("m_AddPlayListContentsItem Count = 2, Total = 2, m_TotalItemSize = 3."));
    EXPECT_TRUE(log.contains("AddUpFolderItem nCount = 1, Total = 1, m_TotalItemSize = 4."));
    EXPECT_TRUE(log.contains("AddEmptyItem nCount = 3, Total = 3, m_TotalItemSize = 7."));
    EXPECT_EQ(page.GetEmptyItemCount(), 3);
    EXPECT_EQ(page.GetUpFolderItemCount(), 1);
}

TEST_F(ContentPage, FindsTheListIndexOfADbIndex) {
    create(kColumns);
    page.AddUpFolderItem(-1, 1);
    page.AddContentsItem(100, 30);
    page.AddPlayListContentsItem(0, 4);
    page.AddContentsItem(50, 2);

    EXPECT_EQ(page.GetPageIndexByDBIndex(100, QRA_PG_ITEM_CONTENTS), 1);
    EXPECT_EQ(page.GetPageIndexByDBIndex(129, QRA_PG_ITEM_CONTENTS), 30);
    EXPECT_EQ(page.GetPageIndexByDBIndex(3, QRA_PG_ITEM_PLAYLIST), 34);
    EXPECT_EQ(page.GetPageIndexByDBIndex(51, QRA_PG_ITEM_CONTENTS), 36);
}

TEST_F(ContentPage, ADbIndexIsNotFoundInARunOfAnotherType) {
    LogCapture log;
    create(kColumns);
    page.AddContentsItem(0, 10);
    page.AddPlayListContentsItem(20, 2);

    EXPECT_EQ(page.GetPageIndexByDBIndex(20, QRA_PG_ITEM_CONTENTS), -1);
    EXPECT_EQ(page.GetPageIndexByDBIndex(5, QRA_PG_ITEM_CLUSTER), -1);
    EXPECT_EQ(page.GetPageIndexByDBIndex(10, QRA_PG_ITEM_CONTENTS), -1);
    EXPECT_EQ(page.GetPageIndexByDBIndex(-1, QRA_PG_ITEM_CONTENTS), -1);
    EXPECT_EQ(page.GetPageIndexByDBIndex(INT_MAX, QRA_PG_ITEM_CONTENTS), -1);
    EXPECT_EQ(page.GetPageIndexByDBIndex(INT_MIN, QRA_PG_ITEM_CONTENTS), -1);

    EXPECT_TRUE(log.contains("There is no nDBIndex[20]."));
}

TEST_F(ContentPage, TheFirstOfTwoRunsWithOneDbIndexIsFound) {
    create(kColumns);
    page.AddContentsItem(5, 3);
    page.AddContentsItem(0, 10);

    EXPECT_EQ(page.GetPageIndexByDBIndex(6, QRA_PG_ITEM_CONTENTS), 1);
    EXPECT_EQ(page.GetPageIndexByDBIndex(0, QRA_PG_ITEM_CONTENTS), 3);
}

TEST_F(ContentPage, CountsPlaylistsFromTheRunThatStartsAtZero) {
    LogCapture log;
    create(kColumns);
    page.AddUpFolderItem(-1, 1);
    page.AddPlayListContentsItem(7, 2);
    EXPECT_EQ(page.GetPlayListIndexByPageIndex(1), -1);
    EXPECT_TRUE(log.contains("Can not get playlist index of DbIndex:[1]."));

    page.AddPlayListContentsItem(0, 30);

    EXPECT_EQ(page.GetPlayListIndexByPageIndex(3), 0);
    EXPECT_EQ(page.GetPlayListIndexByPageIndex(25), 22);
    EXPECT_EQ(page.GetPlayListIndexByPageIndex(0), -3);
}

TEST_F(ContentPage, ARunOfPlaylistsFromZeroIsFoundBehindOneThatEndsThere) {
    create(kColumns);
    page.AddPlayListContentsItem(-2, 2);
    page.AddPlayListContentsItem(0, 3);

    EXPECT_EQ(page.GetPlayListIndexByPageIndex(2), 0);
}

TEST_F(ContentPage, KnowsTheGroupOfAPosition) {
    create(kColumns);
    page.AddUpFolderItem(-1, 1);
    page.AddClusterItem(0, 1);
    page.AddContentsItem(0, 30);
    page.AddClusterItem(1, 1);
    page.AddContentsItem(30, 2);

    EXPECT_EQ(page.FindClusterIndex(-1), -1);
    EXPECT_EQ(page.GetClusterIndex(0), -1);
    EXPECT_EQ(page.GetClusterIndex(1), 0);
    EXPECT_EQ(page.GetClusterIndex(31), 0);
    EXPECT_EQ(page.GetClusterIndex(32), 1);
    EXPECT_EQ(page.GetClusterIndex(1000), 1);
    EXPECT_EQ(page.GetPageManagerIndexByClusterIndex(0), 1);
    EXPECT_EQ(page.GetPageManagerIndexByClusterIndex(1), 32);
    EXPECT_EQ(page.GetPageManagerIndexByClusterIndex(2), -1);
    EXPECT_EQ(page.GetPageManagerIndexByClusterIndex(-1), -1);
    EXPECT_EQ(page.GetItemType(32), QRA_PG_ITEM_CLUSTER);
    EXPECT_EQ(page.GetDBIndex(32), -1);
}

TEST(CQRAContentPage, AHeaderKnowsItsGroupOnAPageOfOneGroup) {
    CQRAContentPage page;
    page.Create(2, 9, kColumns);
    page.AddClusterItem(5, 1);
    page.AddContentsItem(40, 3);

    EXPECT_EQ(page.GetClusterIndex(0), 5);
    EXPECT_EQ(page.FindClusterIndex(0), 0);
}

TEST_F(ContentPage, FillsAShortListUpToThePage) {
    create(kColumns);
    page.AddContentsItem(0, 5);
    page.AddEmptyItem(-1, 2);

    page.FillEmptyItemsInPage();

    EXPECT_EQ(pages_of(page), (std::vector<Page>{{{2, 0, 5}, {1, -1, 2}, {1, -2, 11}}}));
    EXPECT_EQ(page.GetTotalSize(), 18);
    EXPECT_EQ(page.GetEmptyItemCount(), 11) << "set, not increased";
}

TEST_F(ContentPage, FillsALongListUpToTheLine) {
    create(kRows);
    page.AddContentsItem(0, 20);

    page.FillEmptyItemsInPage();

    EXPECT_EQ(page.GetTotalSize(), 27);
    EXPECT_EQ(page.GetEmptyItemCount(), 7);
    page.FillEmptyItemsInPage();
    EXPECT_EQ(page.GetTotalSize(), 27);
    EXPECT_EQ(page.GetEmptyItemCount(), 0);
    expect_consistent(page);
}

TEST_F(ContentPage, LeavesAnEmptyListEmpty) {
    create(kColumns);

    page.FillEmptyItemsInPage();

    EXPECT_EQ(page.GetTotalSize(), 0);
    EXPECT_EQ(page.GetEmptyItemCount(), 0);
}

TEST_F(ContentPage, ALineEndsAtItsLength) {
    _stQRAPageInfo info = {false, -1, {{QRA_PG_ITEM_CONTENTS, 0, 9}}};
    EXPECT_EQ(CQRAContentPage::m_GetItemCountInLastLine(info, 9), 9);
    info.Items.push_back({QRA_PG_ITEM_CONTENTS, 9, 2});
    EXPECT_EQ(CQRAContentPage::m_GetItemCountInLastLine(info, 9), 2);
    info.Items.clear();
    EXPECT_EQ(CQRAContentPage::m_GetItemCountInLastLine(info, 9), 9);
}

TEST_F(ContentPage, NotesTheOrderOfEachPage) {
    create(kRows);
    page.AddContentsItem(0, 19);
    EXPECT_TRUE(page.GetPageInfos()[0].bFlag);
    EXPECT_TRUE(page.GetPageInfos()[1].bFlag);

    CQRAContentPage columns;
    columns.Create(2, 9, kColumns);
    columns.AddContentsItem(0, 1);
    EXPECT_FALSE(columns.GetPageInfos()[0].bFlag);
}

TEST_F(ContentPage, KnowsTheSlotOfARowAndAColumn) {
    create(kRows);
    int slot = -1;
    EXPECT_TRUE(page.m_GetSlotId(1, 3, slot));
    EXPECT_EQ(slot, 12);

    CQRAContentPage columns;
    columns.Create(2, 9, kColumns);
    EXPECT_TRUE(columns.m_GetSlotId(1, 3, slot));
    EXPECT_EQ(slot, 7);

    CQRAContentPage neither;
    neither.Create(2, 9, 0x01);
    EXPECT_FALSE(neither.m_GetSlotId(1, 3, slot));
}

TEST_F(ContentPage, AStyleNeedsAnOrder) {
    LogCapture log;

    EXPECT_TRUE(CQRAContentPage::m_ValidStyle(0x11));
    EXPECT_TRUE(CQRAContentPage::m_ValidStyle(0x21));
    EXPECT_EQ(log.count("m_ValidStyle success"), 2);
    EXPECT_FALSE(CQRAContentPage::m_ValidStyle(0x1701));
    EXPECT_EQ(log.count("m_ValidStyle fail"), 1);
}

TEST_F(ContentPage, FindsThePageWhoseLastRunReachesAnIndex) {
    create(kColumns);
    page.AddClusterItem(0, 1);
    page.AddContentsItem(0, 40);

    EXPECT_EQ(page.m_GetPage(16, QRA_PG_ITEM_CONTENTS), 0);
    EXPECT_EQ(page.m_GetPage(17, QRA_PG_ITEM_CONTENTS), 1);
    EXPECT_EQ(page.m_GetPage(39, QRA_PG_ITEM_CONTENTS), 2);
    EXPECT_EQ(page.m_GetPage(40, QRA_PG_ITEM_CONTENTS), -1);
    EXPECT_EQ(page.m_GetPage(0, QRA_PG_ITEM_CLUSTER), 0);
    EXPECT_EQ(page.m_GetPage(0, QRA_PG_ITEM_PLAYLIST), -1);
}

TEST_F(ContentPage, AClusterStartsANewLineWithStyle200) {
    create(kRows | 0x200);
    page.AddContentsItem(0, 4);

    page.AddClusterItem(0, 1);
    page.AddContentsItem(4, 8);
    page.AddClusterItem(1, 1);

    EXPECT_EQ(pages_of(page),
              (std::vector<Page>{{{2, 0, 4}, {1, -2, 5}, {3, 0, 1}, {2, 4, 8}}, {{3, 1, 1}}}));
    EXPECT_EQ(page.GetPageManagerIndexByClusterIndex(0), 9);
    EXPECT_EQ(page.GetPageManagerIndexByClusterIndex(1), 18);
    EXPECT_EQ(page.GetEmptyItemCount(), 0) << "fillers are not counted";
    expect_consistent(page);
}

TEST_F(ContentPage, AClusterHasItsLineToItselfWithStyle500) {
    create(kColumns | 0x500, 3, 4);

    page.AddClusterItem(0, 1);
    page.AddContentsItem(0, 4);
    page.AddClusterItem(1, 1);
    page.AddPlayListContentsItem(0, 1);

    // Lines of a page in column order are as long as it has rows.
    EXPECT_EQ(pages_of(page),
              (std::vector<Page>{{{3, 0, 1}, {1, -2, 2}, {2, 0, 4}, {3, 1, 1}, {1, -2, 1}, {4, 0, 1}}}));
    expect_consistent(page);
}

TEST_F(ContentPage, TheFillersBeforeUpFolderAndEmptyTilesCountAsTheirs) {
    create(kColumns | 0x500, 3, 4);

    page.AddClusterItem(0, 1);
    page.AddUpFolderItem(-1, 1);
    page.AddClusterItem(1, 1);
    page.AddEmptyItem(-1, 2);

    EXPECT_EQ(pages_of(page),
              (std::vector<Page>{{{3, 0, 1}, {1, -2, 2}, {5, -1, 1}, {3, 1, 1}, {1, -2, 1}, {1, -1, 2}}}));
    EXPECT_EQ(page.GetUpFolderItemCount(), 3);
    EXPECT_EQ(page.GetEmptyItemCount(), 3);
}

TEST_F(ContentPage, ANewPageRepeatsTheClusterWithStyle1100) {
    create(kRows | 0x1100, 2, 3);

    page.AddClusterItem(4, 1);
    page.AddContentsItem(0, 12);

    EXPECT_EQ(pages_of(page),
              (std::vector<Page>{{{3, 4, 1}, {2, 0, 5}}, {{3, 4, 1}, {2, 5, 5}}, {{3, 4, 1}, {2, 10, 2}}}));
    EXPECT_EQ(page.GetTotalSize(), 15);
    EXPECT_EQ(page.GetPageIndexByDBIndex(5, QRA_PG_ITEM_CONTENTS), 7);
    EXPECT_EQ(page.GetPageIndexByDBIndex(10, QRA_PG_ITEM_CONTENTS), 13);
    EXPECT_EQ(page.GetClusterIndex(7), 0);
    expect_consistent(page);
}

TEST_F(ContentPage, ARepeatedClusterHasItsLineToItselfWithStyle1500) {
    create(kRows | 0x1500, 2, 3);

    page.AddClusterItem(4, 1);
    page.AddContentsItem(0, 5);

    EXPECT_EQ(pages_of(page),
              (std::vector<Page>{{{3, 4, 1}, {1, -2, 2}, {2, 0, 3}}, {{3, 4, 1}, {1, -2, 2}, {2, 3, 2}}}));
    expect_consistent(page);
}

TEST_F(ContentPage, AClusterThatStartsAPageRepeatsNone) {
    create(kRows | 0x1100, 1, 3);
    page.AddClusterItem(0, 1);
    page.AddContentsItem(0, 2);

    page.AddClusterItem(1, 1);

    EXPECT_EQ(pages_of(page), (std::vector<Page>{{{3, 0, 1}, {2, 0, 2}}, {{3, 1, 1}}}));
}

TEST_F(ContentPage, APageWithoutAClusterRepeatsNone) {
    create(kRows | 0x1100, 1, 3);

    page.AddContentsItem(0, 4);

    EXPECT_EQ(pages_of(page), (std::vector<Page>{{{2, 0, 3}}, {{2, 3, 1}}}));
}

TEST_F(ContentPage, APageThatARepeatedClusterWouldFillTakesNone) {
    create(kRows | 0x1500, 1, 3);

    page.AddClusterItem(0, 1);
    page.AddContentsItem(0, 7);

    EXPECT_EQ(pages_of(page),
              (std::vector<Page>{{{3, 0, 1}, {1, -2, 2}}, {{2, 0, 3}}, {{2, 3, 3}}, {{2, 6, 1}}}));
    expect_consistent(page);
}

TEST_F(ContentPage, EveryStyleComesToAnEndAndIsConsistent) {
    const unsigned long bits[] = {0x10, 0x20, 0x100, 0x200, 0x400, 0x1000};
    for (unsigned int combination = 0; combination < 64; ++combination) {
        unsigned long style = 0x01;
        for (unsigned int bit = 0; bit < 6; ++bit) {
            style |= (combination >> bit & 1) != 0 ? bits[bit] : 0;
        }
        for (const auto& [rows, columns] : std::vector<std::pair<int, int>>{{1, 1}, {1, 4}, {4, 1}, {2, 3}}) {
            SCOPED_TRACE(testing::Message() << std::hex << style << ": " << rows << " x " << columns);
            CQRAContentPage laid_out;
            ASSERT_TRUE(laid_out.Create(rows, columns, style));
            int db_index = 0;
            for (int group = 0; group < 4; ++group) {
                EXPECT_TRUE(laid_out.AddClusterItem(group, 1 + group % 2));
                EXPECT_TRUE(laid_out.AddContentsItem(db_index, 5));
                db_index += 5;
            }
            laid_out.FillEmptyItemsInPage();
            expect_consistent(laid_out);
            for (int i = 0; i < db_index; ++i) {
                const int list_index = laid_out.GetPageIndexByDBIndex(i, QRA_PG_ITEM_CONTENTS);
                EXPECT_EQ(laid_out.GetDBIndex(list_index), i);
            }
        }
    }
}

TEST_F(ContentPage, AWalkOverThePagesFindsTheSameListIndices) {
    std::mt19937 random(7);
    create(kColumns, 2, 3);
    for (int i = 0; i < 60; ++i) {
        const int start = static_cast<int>(random() % 40);
        const int count = 1 + static_cast<int>(random() % 9);
        random() % 4 == 0 ? page.AddPlayListContentsItem(start, count) : page.AddContentsItem(start, count);
    }
    const auto walk = [this](int db_index, qra_page_item_type_e type) {
        int position = 0;
        for (const _stQRAPageInfo& info : page.GetPageInfos()) {
            for (const _stQRAPageItem& item : info.Items) {
                const bool covers = item.nStartIndex <= db_index && db_index < item.nStartIndex + item.nCount;
                if (item.eType == type && covers) {
                    return position + db_index - item.nStartIndex;
                }
                position += item.nCount;
            }
        }
        return -1;
    };

    for (int db_index = -1; db_index < 60; ++db_index) {
        for (const qra_page_item_type_e type : {QRA_PG_ITEM_CONTENTS, QRA_PG_ITEM_PLAYLIST}) {
            EXPECT_EQ(page.GetPageIndexByDBIndex(db_index, type), walk(db_index, type)) << db_index;
        }
    }
}

TEST(ContentPageDeathTest, APageIsNotFoundByEmptyTilesOrNone) {
    CQRAContentPage page;
    page.Create(2, 9, kRows);
    const char* condition = "eItemType != QRA_PG_ITEM_NONE && eItemType != QRA_PG_ITEM_EMPTY";

    EXPECT_DEATH(page.m_GetPage(0, QRA_PG_ITEM_NONE), condition);
    EXPECT_DEATH(page.m_GetPage(0, QRA_PG_ITEM_EMPTY), condition);
}
