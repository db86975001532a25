#include "libqra-agent/source/nubelink/qra_dlna_wrapper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <set>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_nubelink.h"
#include "tests/unit/nubelink/dlna_items.h"

namespace {

using testing::ElementsAre;

/// What the callbacks of a wrapper got.
struct Gathered {
    std::vector<_stDLNAMediaItem> media;
    std::vector<_stDLNAGroupItem> groups;
};

void add_media(const _stDLNAMediaItem& item, void* gathered) {
    static_cast<Gathered*>(gathered)->media.push_back(item);
}

void add_group(const _stDLNAGroupItem& group, void* gathered) {
    static_cast<Gathered*>(gathered)->groups.push_back(group);
}

class CQRADLNAWrapperTest : public testing::Test {
protected:
    CQRADLNAWrapperTest() {
        int provider = 0;
        EXPECT_TRUE(wrapper->InitProvider(&provider, "uuid:1"));
    }

    void init(const std::string& folder, const std::string& category = "CATEGORY-FOLDER",
              const std::string& keyword = "") {
        _stDlnaParam param;
        param.strFolderId = folder;
        param.strContentType = "CONTENT-FOLDER";
        param.strSortCategory = category;
        param.strKeyword = keyword;
        param.pUserData = &gathered;
        EXPECT_TRUE(wrapper->InitParam(&param));
    }

    int list() { return wrapper->GetItemList({}, add_media, add_group); }

    _stDLNAGroupItem group_of(const FakeNubelink::Item& item) {
        _stDLNAGroupItem group;
        group.strGroupId = item.id;
        *group.pItem.Receive() = FakeNubelink::make_item(item);
        return group;
    }

    /// The places of the gathered items.
    std::set<int> places() const {
        std::set<int> all;
        for (const _stDLNAMediaItem& item : gathered.media)
            all.insert(item.nIndex);
        return all;
    }

    LogCapture log;
    FakeNubelink service;
    Gathered gathered;
    std::unique_ptr<CQRADLNAWrapper> wrapper = std::make_unique<CQRADLNAWrapper>();
};

TEST_F(CQRADLNAWrapperTest, AServerNeedsTheServiceAnIdAndToBeThere) {
    CQRADLNAWrapper other;
    int provider = 0;

    EXPECT_FALSE(other.InitProvider(nullptr, "uuid:1"));
    EXPECT_FALSE(other.InitProvider(&provider, nullptr));
    service.service_state = NBL_SERVICE_STATE_DISABLED;
    EXPECT_FALSE(other.InitProvider(&provider, "uuid:1"));
    service.service_state = NBL_SERVICE_STATE_ENABLED;
    for (const char* function : {"nbl_serviceprovider_get_service_state",
                                 "nbl_serviceprovider_get_devicefinder", "nbl_devicefinder_get_device"}) {
        service.refuse = {{function, NBL_ERROR_FAILED}};
        EXPECT_FALSE(other.InitProvider(&provider, "uuid:1")) << function;
    }
    EXPECT_EQ(service.count("nbl_devicefinder_get_device 4 uuid:1"), 2);
    EXPECT_FALSE(other.InitParam(nullptr));
}

TEST_F(CQRADLNAWrapperTest, AFolderIsListedWithPlaceTypeAndExtension) {
    service.folders["7"].children = {folder("a"), picture("b")};
    init("7");

    EXPECT_EQ(list(), 0);

    ASSERT_EQ(gathered.media.size(), 2U);
    EXPECT_EQ(gathered.media[0].nIndex, 0);
    EXPECT_EQ(gathered.media[0].strContentId, "a");
    EXPECT_EQ(gathered.media[0].eType, NBL_ITEM_TYPE_FOLDER);
    EXPECT_EQ(gathered.media[0].strExtension, "");
    EXPECT_EQ(gathered.media[1].nIndex, 1);
    EXPECT_EQ(gathered.media[1].strExtension, "jpg");
    EXPECT_TRUE(gathered.media[1].pItem);
}

TEST_F(CQRADLNAWrapperTest, ASlashIsTheServersRoot) {
    service.folders["0"].children = {picture("b")};
    init("/");

    EXPECT_EQ(list(), 0);

    EXPECT_EQ(service.count("nbl_provider_browse_item 0"), 1);
    EXPECT_EQ(gathered.media.size(), 1U);
}

TEST_F(CQRADLNAWrapperTest, PagesOf200AreAskedForUntilTheTotalIsReached) {
    const std::pair<int, int> rows[] = {{0, 0}, {1, 1}, {199, 1}, {200, 1}, {201, 2}, {1000, 5}, {1001, 6}};
    for (const auto& row : rows) {
        gathered.media.clear();
        service.folders["7"].children = pictures(row.first);
        const int before = service.count("nbl_provider_browse 7");
        init("7");

        EXPECT_EQ(list(), 0);

        EXPECT_EQ(service.count("nbl_provider_browse 7") - before, row.second) << row.first;
        EXPECT_EQ(places().size(), static_cast<size_t>(row.first));
        EXPECT_EQ(gathered.media.size(), static_cast<size_t>(row.first));
    }
    EXPECT_EQ(service.count("nbl_provider_browse 7 1000 200"), 1);
}

TEST_F(CQRADLNAWrapperTest, AtMostFiveAreUnansweredAndTheSixthFollowsTheFirstAnswer) {
    service.hold = true;
    service.folders["7"].children = pictures(1001);
    init("7");
    auto listing = std::async(std::launch::async, [&] { return list(); });
    ASSERT_TRUE(service.wait_for_open(1));
    service.answer(service.open()[0]);
    ASSERT_TRUE(service.wait_for_open(5));
    EXPECT_EQ(service.count("nbl_provider_browse 7"), 5);

    service.answer(service.open()[3]);
    ASSERT_TRUE(service.wait_for_open(5));

    EXPECT_EQ(service.count("nbl_provider_browse 7 1000"), 1);
    while (!service.open().empty())
        service.answer(service.open().back());
    EXPECT_EQ(listing.get(), 0);
    EXPECT_EQ(places().size(), 1001U);
    EXPECT_EQ(*places().rbegin(), 1000);
}

TEST_F(CQRADLNAWrapperTest, AFolderThatIsGoneIsTheEvent28) {
    init("nowhere");

    EXPECT_EQ(list(), 28);

    EXPECT_TRUE(log.contains("cb_ProviderItem nbl item not exist"));
}

TEST_F(CQRADLNAWrapperTest, AnyOtherErrorOfTheFolderIsAFailure) {
    service.folders["7"].error = NBL_ERROR_TIMEOUT;
    init("7");

    EXPECT_EQ(list(), 1);

    EXPECT_TRUE(log.contains("cb_ProviderItem error"));
}

TEST_F(CQRADLNAWrapperTest, WhatTheServiceRefusesIsAFailureAndNobodyWaits) {
    service.folders["7"].children = pictures(1);
    for (const char* function : {"nbl_item_create_provider_item", "nbl_provider_browse_item",
                                 "nbl_provider_browse", "nbl_item_get_content_id"}) {
        service.refuse = {{function, 5}};
        init("7");
        EXPECT_EQ(list(), 1) << function;
    }
    EXPECT_TRUE(log.contains("DLNA-SOURCE:nbl_item_get_content_id  ERROR5"));
}

TEST_F(CQRADLNAWrapperTest, AFailedPageEndsTheListAndCancelsTheOthers) {
    service.hold = true;
    service.folders["7"].children = pictures(1000);
    init("7");
    auto listing = std::async(std::launch::async, [&] { return list(); });
    ASSERT_TRUE(service.wait_for_open(1));
    service.answer(service.open()[0]);
    ASSERT_TRUE(service.wait_for_open(5));

    service.answer(service.open()[2], NBL_ERROR_TIMEOUT);

    EXPECT_EQ(listing.get(), 1);
    EXPECT_TRUE(log.contains("m_MediaBrowse nbl_provider_browse error Quit"));
    EXPECT_EQ(service.count("nbl_provider_cancel_async_action"), 4);
}

TEST_F(CQRADLNAWrapperTest, LateAnswersOfAFailedListDoNotCountForTheNextOne) {
    service.hold = true;
    service.folders["7"].children = pictures(1000);
    service.folders["8"].children = pictures(400, 5000);
    init("7");
    auto listing = std::async(std::launch::async, [&] { return list(); });
    ASSERT_TRUE(service.wait_for_open(1));
    service.answer(service.open()[0]);
    ASSERT_TRUE(service.wait_for_open(5));
    const std::vector<FakeNubelink::Request> late = service.open();
    service.refuse["nbl_provider_cancel_async_action"] = 5;
    service.answer(late[0], NBL_ERROR_TIMEOUT);
    EXPECT_EQ(listing.get(), 1);
    init("8");
    auto next = std::async(std::launch::async, [&] { return list(); });
    ASSERT_TRUE(service.wait_for_open(5));

    for (size_t i = 1; i < late.size(); ++i)
        service.answer(late[i]);
    ASSERT_TRUE(service.wait_for_open(1));
    EXPECT_EQ(gathered.media.size(), 0U);
    service.answer(service.open()[0]);
    ASSERT_TRUE(service.wait_for_open(2));
    service.answer(service.open()[1]);
    service.answer(service.open()[0]);

    EXPECT_EQ(next.get(), 0);
    EXPECT_EQ(gathered.media.size(), 400U);
    EXPECT_EQ(gathered.media.front().strContentId, "5200");
}

TEST_F(CQRADLNAWrapperTest, PostsThatNobodyTookDoNotCountForTheNextList) {
    service.folders["7"].children = pictures(900);
    init("7");
    EXPECT_EQ(list(), 0);
    service.hold = true;
    init("7");
    auto listing = std::async(std::launch::async, [&] { return list(); });
    ASSERT_TRUE(service.wait_for_open(1));
    EXPECT_EQ(service.open()[0].kind, "item");
    EXPECT_EQ(listing.wait_for(std::chrono::seconds(0)), std::future_status::timeout);

    while (listing.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready) {
        for (const FakeNubelink::Request& request : service.open())
            service.answer(request);
    }

    EXPECT_EQ(listing.get(), 0);
    EXPECT_EQ(gathered.media.size(), 1800U);
}

TEST_F(CQRADLNAWrapperTest, AServerWithFewerItemsThanItSaidIsListedToItsEnd) {
    service.folders["7"].children = pictures(250);
    service.folders["7"].said = 2000000000;
    init("7");

    EXPECT_EQ(list(), 0);

    EXPECT_EQ(gathered.media.size(), 250U);
    EXPECT_LE(service.count("nbl_provider_browse 7"), 12);
}

TEST_F(CQRADLNAWrapperTest, AServerThatSaysLessThanNothingHasNothing) {
    service.folders["7"].children = pictures(3);
    service.folders["7"].said = -1;
    init("7");

    EXPECT_EQ(list(), 0);

    EXPECT_EQ(gathered.media.size(), 0U);
}

TEST_F(CQRADLNAWrapperTest, AGroupIsListedByItsItemAndItsChildCount) {
    service.folders["g"].children = pictures(3);
    init("/", "CATEGORY-DATE");

    EXPECT_EQ(wrapper->GetItemList(group_of(folder("g", 3)), add_media, add_group), 0);

    EXPECT_EQ(gathered.media.size(), 3U);
    EXPECT_EQ(service.count("nbl_provider_browse_item"), 0);
}

TEST_F(CQRADLNAWrapperTest, AGroupWithoutAChildCountIsAFailure) {
    init("/", "CATEGORY-DATE");

    EXPECT_EQ(wrapper->GetItemList(group_of({"g", "", NBL_ITEM_TYPE_FOLDER, {}, {}}), add_media, add_group),
              1);
}

TEST_F(CQRADLNAWrapperTest, AnEmptyPageOfAGroupIsReportedAsAnEmptyGroup) {
    service.folders["g"] = {};
    init("/", "CATEGORY-DATE");

    EXPECT_EQ(wrapper->GetItemList(group_of(folder("g", 3)), add_media, add_group), 0);

    ASSERT_EQ(gathered.groups.size(), 1U);
    EXPECT_EQ(gathered.groups[0].strGroupId, "g");
    EXPECT_EQ(gathered.groups[0].strGroupName, "");
    EXPECT_TRUE(gathered.groups[0].bLeaf);
    EXPECT_FALSE(gathered.groups[0].pItem);
    EXPECT_TRUE(log.contains("DLNA-SOURCE: cb_ProviderBrowse get item failed and skip"));
}

TEST_F(CQRADLNAWrapperTest, AnEmptyPageWithoutAGroupCallbackStillCounts) {
    service.folders["7"].said = 5;
    init("7", "CATEGORY-ARTIST");

    EXPECT_EQ(list(), 0) << "and returns";

    EXPECT_TRUE(log.contains("DLNA-SOURCE: cb_ProviderBrowse get item failed and skip"));
    EXPECT_EQ(gathered.groups.size(), 0U);
}

TEST_F(CQRADLNAWrapperTest, AnEmptyPageOfAFolderIsNoGroup) {
    service.folders["g"] = {};
    init("/", "CATEGORY-FOLDER-TITLE");

    EXPECT_EQ(wrapper->GetItemList(group_of(folder("g", 3)), add_media, add_group), 0);

    EXPECT_EQ(gathered.groups.size(), 0U);
}

TEST_F(CQRADLNAWrapperTest, TheFeatureMustNameTheFolderOfTheRequest) {
    const struct {
        std::vector<std::pair<std::string, std::vector<std::string>>> features;
        int error;
    } rows[] = {
        {{{"maker_DCM10", {"A_A", "I_N"}}}, 0},
        {{{"OTHER", {"I_N"}}, {"DCM", {"I_N"}}}, 0},
        {{{"DCM", {}}, {"DCM", {"I_N"}}}, 0},
        {{{"DCM", {"A_A"}}}, 1},
        {{{"dcm", {"I_N"}}}, 1},
        {{{"DCM", {}}}, 1},
        {{}, 1},
    };
    for (const auto& row : rows) {
        service.features = row.features;
        init("I_N", "CATEGORY-TITLE");
        EXPECT_EQ(wrapper->GetFeatureList(), row.error);
    }
    EXPECT_EQ(log.count("DLNA-SOURCE: GetFeatureList failed."), 4);
}

TEST_F(CQRADLNAWrapperTest, AFeatureListThatFailsIsAFailure) {
    service.hold = true;
    service.features = {{"DCM", {"I_N"}}};
    init("I_N", "CATEGORY-TITLE");
    auto asking = std::async(std::launch::async, [&] { return wrapper->GetFeatureList(); });
    ASSERT_TRUE(service.wait_for_open(1));

    service.answer(service.open()[0], NBL_ERROR_NOT_SUPPORTED);

    EXPECT_EQ(asking.get(), 1);
    service.refuse["nbl_provider_get_feature_list"] = 5;
    init("I_N", "CATEGORY-TITLE");
    EXPECT_EQ(wrapper->GetFeatureList(), 1);
}

TEST_F(CQRADLNAWrapperTest, GroupsOfALevelOneCategoryAreNamedLeaves) {
    service.folders["A_A"].children = {folder("a1", 4, "Abba"), folder("a2", 1, "Ann")};
    init("A_A", "CATEGORY-ARTIST");

    EXPECT_EQ(wrapper->GetGroupLevel1(add_group), 0);

    EXPECT_EQ(service.count("nbl_provider_browse A_A 0 200"), 1);
    ASSERT_EQ(gathered.groups.size(), 2U);
    EXPECT_EQ(gathered.groups[0].strGroupId, "a1");
    EXPECT_EQ(gathered.groups[0].strGroupName, "Abba");
    EXPECT_EQ(gathered.groups[0].nChildCount, 4);
    EXPECT_TRUE(gathered.groups[0].bLeaf);
    EXPECT_TRUE(gathered.groups[0].pItem);
}

TEST_F(CQRADLNAWrapperTest, GroupsOfALevelTwoCategoryGetTheParentsNameAtTheSecondLevel) {
    service.folders["I_L"].children = {folder("y", 1, "2021")};
    service.folders["y"].children = {folder("m", 3, "05")};
    init("I_L", "CATEGORY-DATE");

    EXPECT_EQ(wrapper->GetGroupLevel1(add_group), 0);
    ASSERT_EQ(gathered.groups.size(), 1U);
    const _stDLNAGroupItem year = gathered.groups[0];
    EXPECT_EQ(year.strGroupName, "");
    EXPECT_FALSE(year.bLeaf);
    EXPECT_EQ(wrapper->GetGroupLevel2(year, add_group), 0);

    ASSERT_EQ(gathered.groups.size(), 2U);
    EXPECT_EQ(gathered.groups[1].strGroupName, "2021/05");
    EXPECT_TRUE(gathered.groups[1].bLeaf);
}

TEST_F(CQRADLNAWrapperTest, ALevelHolds200GroupsAtMost) {
    for (int i = 0; i < 300; ++i)
        service.folders["A_A"].children.push_back(folder(std::to_string(i)));
    init("A_A", "CATEGORY-ARTIST");

    EXPECT_EQ(wrapper->GetGroupLevel1(add_group), 0);

    EXPECT_EQ(gathered.groups.size(), 200U);
}

TEST_F(CQRADLNAWrapperTest, GroupsWithoutAnIdOrWithoutChildrenAreSkipped) {
    service.folders["A_A"].children = {folder("", 4),
                                       folder("b", 0),
                                       folder("c", -1),
                                       {"d", "", NBL_ITEM_TYPE_FOLDER, {}, {}},
                                       folder("e", 1)};
    init("A_A", "CATEGORY-ARTIST");

    EXPECT_EQ(wrapper->GetGroupLevel1(add_group), 0);

    ASSERT_EQ(gathered.groups.size(), 1U);
    EXPECT_EQ(gathered.groups[0].strGroupId, "e");
    EXPECT_EQ(log.count("invalid content_id"), 1);
    EXPECT_EQ(log.count("null group"), 3);
    EXPECT_TRUE(log.contains("DLNA-SOURCE:Invalid Item[3]"));
}

TEST_F(CQRADLNAWrapperTest, NoGroupsAreNoFailure) {
    service.folders["A_A"] = {};
    service.folders["y"] = {};
    init("A_A", "CATEGORY-DATE");

    EXPECT_EQ(wrapper->GetGroupLevel1(add_group), 0);
    EXPECT_TRUE(log.contains("DLNA-SOURCE: cb_GetDCMGroup get item empty"));
    EXPECT_EQ(wrapper->GetGroupLevel2(group_of(folder("y", 1, "2021")), add_group), 0);
    EXPECT_TRUE(log.contains("DLNA-SOURCE: cb_GetDCMGroup get item failed and skip"));
}

TEST_F(CQRADLNAWrapperTest, GroupsThatCannotBeReadAreAFailureUntilTheNextRequest) {
    service.folders["A_A"] = {{folder("a")}, std::nullopt, NBL_ERROR_TIMEOUT};
    init("A_A", "CATEGORY-ARTIST");

    EXPECT_EQ(wrapper->GetGroupLevel1(add_group), 1);

    service.folders["A_A"].error = 0;
    init("A_A", "CATEGORY-ARTIST");
    EXPECT_EQ(wrapper->GetGroupLevel1(add_group), 0);
    EXPECT_EQ(gathered.groups.size(), 1U);
    service.refuse["nbl_item_create_provider_item"] = 5;
    EXPECT_EQ(wrapper->GetGroupLevel1(add_group), 1);
}

TEST_F(CQRADLNAWrapperTest, ASearchGathersAllItsAnswersInOrder) {
    service.finds["sun"] = {pictures(200), pictures(200, 200), pictures(7, 400)};
    init("/", "CATEGORY-KEYWORD-SEARCH", "sun");

    EXPECT_TRUE(wrapper->SearchByKeyword(add_media));

    EXPECT_EQ(service.count("nbl_provider_search sun 0 200 2 4 8"), 1);
    ASSERT_EQ(gathered.media.size(), 407U);
    EXPECT_EQ(places().size(), 407U);
    EXPECT_EQ(gathered.media[406].nIndex, 406);
}

TEST_F(CQRADLNAWrapperTest, ASearchThatFindsNothingIsNoFailure) {
    service.finds["sun"] = {{}};
    init("/", "CATEGORY-KEYWORD-SEARCH", "sun");

    EXPECT_TRUE(wrapper->SearchByKeyword(add_media));
    EXPECT_EQ(gathered.media.size(), 0U);
}

TEST_F(CQRADLNAWrapperTest, ASearchNeedsAServerAKeywordAndCriteria) {
    init("/", "CATEGORY-KEYWORD-SEARCH", "");
    EXPECT_FALSE(wrapper->SearchByKeyword(add_media));
    EXPECT_TRUE(log.contains("m_Keyword  is empty"));
    for (const char* function : {"nbl_searchcriteria_create", "nbl_searchcriteria_add_item_type"}) {
        service.refuse = {{function, 5}};
        init("/", "CATEGORY-KEYWORD-SEARCH", "sun");
        EXPECT_FALSE(wrapper->SearchByKeyword(add_media)) << function;
    }
    EXPECT_EQ(log.count("Fatal error: add_item_type fail Please check it"), 2);
    service.refuse = {{"nbl_provider_search", 5}};
    EXPECT_FALSE(wrapper->SearchByKeyword(add_media));
    CQRADLNAWrapper other;
    EXPECT_FALSE(other.SearchByKeyword(add_media));
    EXPECT_TRUE(log.contains("nbl_provider_t  is NULL"));
}

TEST_F(CQRADLNAWrapperTest, ASearchThatFailsIsAFailure) {
    service.hold = true;
    init("/", "CATEGORY-KEYWORD-SEARCH", "sun");
    auto searching = std::async(std::launch::async, [&] { return wrapper->SearchByKeyword(add_media); });
    ASSERT_TRUE(service.wait_for_open(1));

    service.answer(service.open()[0], NBL_ERROR_NOT_SUPPORTED);

    EXPECT_FALSE(searching.get());
}

TEST_F(CQRADLNAWrapperTest, ACancelLetsTheWaitingListGoInEachPhase) {
    service.hold = true;
    service.folders["7"].children = pictures(2000);
    for (int answered = 0; answered < 4; ++answered) {
        init("7");
        auto listing = std::async(std::launch::async, [&] { return list(); });
        for (int i = 0; i < answered; ++i) {
            ASSERT_TRUE(service.wait_for_open(i == 0 ? 1 : 5));
            service.answer(service.open()[0]);
        }
        ASSERT_TRUE(service.wait_for_open(1));

        EXPECT_TRUE(wrapper->CancelAsync());

        EXPECT_EQ(listing.get(), 0) << answered;
        service.run([] {});
        EXPECT_EQ(service.open().size(), 0U) << "each was cancelled and answered";
    }
}

TEST_F(CQRADLNAWrapperTest, NothingBeginsAfterACancelUntilTheNextRequest) {
    service.folders["7"].children = pictures(3);
    init("7");

    EXPECT_TRUE(wrapper->CancelAsync());

    EXPECT_EQ(list(), 0);
    EXPECT_EQ(wrapper->GetGroupLevel1(add_group), 0);
    EXPECT_EQ(wrapper->GetFeatureList(), 0);
    EXPECT_EQ(service.count("nbl_provider_"), 0);
    init("7");
    EXPECT_EQ(list(), 0);
    EXPECT_EQ(gathered.media.size(), 3U);
}

TEST_F(CQRADLNAWrapperTest, AnAnswerAfterTheCancelIsDropped) {
    service.hold = true;
    service.folders["7"].children = pictures(3);
    init("7");
    auto listing = std::async(std::launch::async, [&] { return list(); });
    ASSERT_TRUE(service.wait_for_open(1));
    service.answer(service.open()[0]);
    ASSERT_TRUE(service.wait_for_open(1));
    const FakeNubelink::Request late = service.open()[0];
    std::promise<void> go;
    service.post([&] { go.get_future().wait(); });  // its answer to the cancel stays away

    EXPECT_TRUE(wrapper->CancelAsync());
    EXPECT_EQ(listing.get(), 0);
    go.set_value();
    service.answer(late);

    EXPECT_EQ(gathered.media.size(), 0U);
}

TEST_F(CQRADLNAWrapperTest, ACancelThatFailsIsToldAndCanBeRepeated) {
    service.hold = true;
    service.folders["7"].children = pictures(300);
    init("7");
    auto listing = std::async(std::launch::async, [&] { return list(); });
    ASSERT_TRUE(service.wait_for_open(1));
    service.refuse["nbl_provider_cancel_async_action"] = 5;

    EXPECT_FALSE(wrapper->CancelAsync());

    EXPECT_TRUE(log.contains("nbl_provider_cancel_async_action error 5"));
    service.refuse.clear();
    EXPECT_TRUE(wrapper->CancelAsync());
    EXPECT_EQ(listing.get(), 0);
}

TEST_F(CQRADLNAWrapperTest, ACancelThatFailsHalfwayEndsTheListAsAFailure) {
    service.hold = true;
    service.folders["7"].children = pictures(900);
    init("7");
    auto listing = std::async(std::launch::async, [&] { return list(); });
    ASSERT_TRUE(service.wait_for_open(1));
    service.answer(service.open()[0]);
    ASSERT_TRUE(service.wait_for_open(5));
    service.on_cancel = [this](int) { service.refuse["nbl_provider_cancel_async_action"] = 5; };

    EXPECT_FALSE(wrapper->CancelAsync());

    EXPECT_EQ(listing.get(), 1);
}

TEST_F(CQRADLNAWrapperTest, AnAnswerThatComesWhileItIsCancelledIsNoFailure) {
    service.hold = true;
    service.folders["7"].children = pictures(900);
    init("7");
    auto listing = std::async(std::launch::async, [&] { return list(); });
    ASSERT_TRUE(service.wait_for_open(1));
    service.refuse["nbl_provider_cancel_async_action"] = 5;
    service.on_cancel = [this](int token) {
        for (const FakeNubelink::Request& request : service.open()) {
            if (request.token == token)
                service.answer(request, NBL_ERROR_TIMEOUT);
        }
    };

    EXPECT_TRUE(wrapper->CancelAsync());

    listing.get();
}

TEST_F(CQRADLNAWrapperTest, AnAnswerMayComeBeforeItsTokenIsKnown) {
    // The service answers as fast as it can, while the wrapper's threads are many.
    for (int round = 0; round < 50; ++round) {
        gathered.media.clear();
        service.folders["7"].children = pictures(1100);
        init("7");
        EXPECT_EQ(list(), 0);
        EXPECT_EQ(gathered.media.size(), 1100U);
    }
}

TEST_F(CQRADLNAWrapperTest, TheEndOfTheWrapperDropsItsRequests) {
    service.hold = true;
    service.folders["7"].children = pictures(3);
    wrapper->QraNblGetBookmark(
        "7", [](void*, int) { return ADD_FAILURE() << "called", true; }, nullptr);
    ASSERT_TRUE(service.wait_for_open(1));
    const FakeNubelink::Request request = service.open()[0];
    std::promise<void> go;
    service.post([&] { go.get_future().wait(); });

    wrapper.reset();

    EXPECT_EQ(service.count("nbl_provider_cancel_async_action"), 1);
    go.set_value();
    service.answer(request);
}

TEST_F(CQRADLNAWrapperTest, NoRecordIsLeftOver) {
    service.folders["7"].children = pictures(500);
    init("7");
    EXPECT_EQ(list(), 0);
    gathered = {};

    service.run([] {});

    EXPECT_EQ(FakeNubelink::items_alive, 0);
}

}  // namespace
