#include <gtest/gtest.h>

#include "common/datamodel/qra_resultpool.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_content_page_factory.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/result_objects.h"
#include "tests/unit/agent/page_text.h"

namespace {

/// A handle whose pool holds a whole list of ten items in the groups 0 to 3 and 4 to 9.
class WebBuild : public testing::Test {
protected:
    WebBuild() {
        ResultListObject list;
        list.total_count = 10;
        list.groups = {{0, 3}, {4, 9}};
        list.items.assign(10, {0, 0});
        push(list);
        handle_.SetSelectList(new CSelectList);
    }

    void push(const ResultListObject& list) {
        handle_.DestroyResultPool();
        handle_.SetResultPool(new CResultPool(0, 0, QRA_PREFETCH_AUTO));
        handle_.GetResultPool()->SetCallBack([](void*, int, int, int) { return true; }, nullptr,
                                             [](void*, const std::string&) { return true; }, nullptr);
        const ShmFile file(list.bytes());
        handle_.GetResultPool()->Push(new CResultList(file.name()));
    }
    qra_error_code_e build(int mask, int group = -1, qra_page_order_e order = QRA_PAGE_ORDER_ROW,
                           int rows = 2, int columns = 9) {
        handle_.DestroyContentPage();
        return CQRAContentPageFactory::GetInstance()->Build(&handle_, order, mask, group, rows, columns,
                                                            false);
    }
    std::string page() const { return page_text(*handle_.GetContentPage()); }

    CQRAAgentHandle handle_;
};

struct WebRow {
    const char* name;
    const char* source;
    int mask;
    int group;
    const char* page;
};

class WebMask : public WebBuild, public testing::WithParamInterface<WebRow> {};

TEST_P(WebMask, LaysOutItsRuns) {
    handle_.SetSourceName(GetParam().source);

    ASSERT_EQ(build(GetParam().mask, GetParam().group), QRA_ERROR_NONE);

    EXPECT_EQ(page(), GetParam().page);
    EXPECT_EQ(handle_.GetContentPage()->GetPageMask(), GetParam().mask);
}

INSTANTIATE_TEST_SUITE_P(
    WebBuild, WebMask,
    testing::Values(WebRow{"CloudFolders", "CloudSource", 0x02, -1, "contents 0+10"},
                    WebRow{"CloudMediaIsTheSecondGroup", "CloudSource", 0x04, -1, "contents 4+6"},
                    WebRow{"CloudFoldersAndMedia", "CloudSource", 0x06, -1, "contents 0+10"},
                    WebRow{"CloudWithoutBits", "CloudSource", 0x00, -1, "contents 0+1"},
                    WebRow{"RemoteAccessLeavesTheLastItemOut", "qra_ra_source", 0x02, -1, "contents 0+9"},
                    WebRow{"HeadersAndMedia", "Other", 0x0C, -1,
                           "cluster 0+1, contents 0+4, cluster 1+1, contents 4+6"},
                    WebRow{"Headers", "Other", 0x08, -1, "cluster 0+1, cluster 1+1"},
                    WebRow{"HeaderAndMediaOfOneGroup", "Other", 0x0C, 1, "cluster 1+1, contents 4+6"},
                    WebRow{"HeaderOfAGroupThatIsNotThere", "Other", 0x0C, 7, "cluster 7+1"},
                    WebRow{"Media", "Other", 0x04, -1, "contents 0+10"},
                    WebRow{"MediaOfOneGroup", "Other", 0x04, 0, "contents 0+4"},
                    WebRow{"MediaOfAGroupThatIsNone", "Other", 0x04, -2, ""},
                    WebRow{"Nothing", "Other", 0x00, -1, ""}),
    [](const auto& info) { return info.param.name; });

TEST_F(WebBuild, AGroupWithoutItemsIsAnEmptyRun) {
    ResultListObject list;
    list.total_count = 10;
    list.items.assign(10, {0, 0});
    handle_.SetSourceName("CloudSource");
    const LogCapture log;

    list.groups = {{0, -1}, {0, 9}};
    push(list);
    ASSERT_EQ(build(0x04), QRA_ERROR_NONE);
    EXPECT_EQ(page(), "contents 0+10");

    list.groups = {{0, 9}, {10, 9}};
    push(list);
    ASSERT_EQ(build(0x04), QRA_ERROR_NONE);
    EXPECT_EQ(page(), "");
    EXPECT_FALSE(log.contains("Invalid range"));
}

TEST_F(WebBuild, ACloudPageWithoutBitsHasATileForAnEmptyListToo) {
    ResultListObject list;
    push(list);
    handle_.SetSourceName("CloudSource");

    ASSERT_EQ(build(0x00), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "contents 0+1");
}

TEST_F(WebBuild, OtherSourcesKnowNoFolders) {
    handle_.SetSourceName("Other");

    EXPECT_DEATH(build(0x02), "bFolder == false");
}

TEST_F(WebBuild, HonoursThePageOrder) {
    int slot = 0;
    ASSERT_EQ(build(0x04, -1, QRA_PAGE_ORDER_ROW), QRA_ERROR_NONE);
    EXPECT_TRUE(handle_.GetContentPage()->m_GetSlotId(1, 2, slot));
    EXPECT_EQ(slot, 11);

    ASSERT_EQ(build(0x04, -1, QRA_PAGE_ORDER_COLUMN), QRA_ERROR_NONE);
    EXPECT_TRUE(handle_.GetContentPage()->m_GetSlotId(1, 2, slot));
    EXPECT_EQ(slot, 5);

    const LogCapture log;
    EXPECT_EQ(build(0x04, -1, static_cast<qra_page_order_e>(2)), QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log.contains("Invalid page order[2]."));
}

TEST_F(WebBuild, ShowsSelectedItems) {
    handle_.GetSelectList()->AddItem(6);
    handle_.GetSelectList()->AddItem(1);

    ASSERT_EQ(build(0x40), QRA_ERROR_NONE);

    EXPECT_EQ(page(), "contents 1+1, contents 6+1");
    EXPECT_EQ(handle_.GetSelectList()->GetItemCount(), 0);
}

TEST_F(WebBuild, RefusesMasks) {
    const LogCapture log;

    for (const int mask : {0x42, 0x44, 0x48, 0x50, 0x60, 0x0A})
        EXPECT_EQ(build(mask), QRA_ERROR_INVALID_PARAM) << mask;

    EXPECT_EQ(log.count("Invalid ePageStyle["), 6);
}

TEST_F(WebBuild, RefusesWhatItNeeds) {
    const LogCapture log;

    EXPECT_EQ(build(0x04, -1, QRA_PAGE_ORDER_ROW, 0, 9), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(build(0x04, -1, QRA_PAGE_ORDER_ROW, 2, 0), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(build(0x04, -1, QRA_PAGE_ORDER_ROW, -2, 9), QRA_ERROR_INTERNAL);
    handle_.DestorySelectList();
    EXPECT_EQ(build(0x04), QRA_ERROR_INVALID_HANDLE);
    handle_.DestroyResultPool();
    EXPECT_EQ(build(0x04), QRA_ERROR_INVALID_HANDLE);

    EXPECT_TRUE(log.contains("nRow == 0"));
    EXPECT_TRUE(log.contains("nCol == 0"));
    EXPECT_TRUE(log.contains("Create page failed."));
    EXPECT_TRUE(log.contains("pHandle->GetSelectList()== NULL"));
    EXPECT_TRUE(log.contains("pHandle->GetResultPool()== NULL"));
}

TEST_F(WebBuild, AGroupThatDoesNotLieInTheListIsNotLaidOut) {
    handle_.SetSourceName("Other");
    for (const auto& [first, last] :
         IndexPairs{{-1, 3}, {5, 4}, {0, 10}, {INT32_MIN, INT32_MAX}, {INT32_MAX, INT32_MIN}}) {
        ResultListObject list;
        list.total_count = 10;
        list.groups = {{first, last}};
        list.items.assign(10, {0, 0});
        push(list);

        ASSERT_EQ(build(0x04, 0), QRA_ERROR_NONE);

        EXPECT_EQ(page(), "") << first << ".." << last;
    }
}

TEST_F(WebBuild, ATotalThatNoListHasIsNotLaidOut) {
    ResultListObject list;
    list.total_count = INT32_MAX;
    list.groups = {{0, 3}, {0, INT32_MAX - 1}};
    list.items.assign(10, {0, 0});
    push(list);
    for (const char* source : {"CloudSource", "qra_ra_source", "another_source"}) {
        handle_.SetSourceName(source);
        const LogCapture log;
        EXPECT_EQ(build(0x04), QRA_ERROR_NONE) << source;
        EXPECT_EQ(handle_.GetContentPage()->GetTotalSize(), 0) << source;
        EXPECT_TRUE(log.contains("Invalid total count[2147483647].")) << source;
    }
}

}  // namespace
