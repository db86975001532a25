#include "libqra-agent/source/nubelink/qra_dlna_source.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <future>
#include <memory>

#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/source/nubelink/qra_dlna_mgr.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_nubelink.h"
#include "tests/fakes/received.h"
#include "tests/unit/nubelink/dlna_items.h"

namespace {

using testing::ElementsAre;

bool add_event(qra_event_e event, void* received) {
    static_cast<Received*>(received)->add(std::to_string(event));
    return true;
}

class CQRADLNASourceTest : public testing::Test {
protected:
    CQRADLNASourceTest() {
        CQRADlnaMgr::GetInstance()->SetServiceProvide(this);
        std::string id = "uuid:1";
        EXPECT_TRUE(source->Open(id.data()));
        source->SetCallback(add_event, &events);
    }
    ~CQRADLNASourceTest() override {
        service.hold = false;
        service.refuse.clear();
        EXPECT_TRUE(source->Close());
    }

    bool execute(const std::string& folder, const std::string& category = "CATEGORY-FOLDER",
                 const std::string& content = "CONTENT-FOLDER", const char* keyword = nullptr,
                 const char* extension = nullptr) {
        std::string texts[] = {"uuid:1",
                               folder,
                               category,
                               content,
                               keyword != nullptr ? keyword : "",
                               extension != nullptr ? extension : ""};
        qra_general_s param;
        param.szPath = texts[0].data();
        param.szFolderId = texts[1].data();
        param.szSortCategory = texts[2].data();
        param.szContentType = texts[3].data();
        param.szKeyWord = keyword != nullptr ? texts[4].data() : nullptr;
        param.szExtension = extension != nullptr ? texts[5].data() : nullptr;
        return source->Execute(&param);
    }

    /// The event that a request is answered with.
    template <class... Texts>
    std::string request(const Texts&... texts) {
        const size_t before = events.all().size();
        EXPECT_TRUE(execute(texts...));
        EXPECT_TRUE(events.wait_for(before + 1));
        return events.all().back();
    }

    std::string text(const std::string& field) {
        char* value = nullptr;
        source->GetValue(field, &value);
        const std::string copy = value != nullptr ? value : "(none)";
        free(value);
        return copy;
    }

    std::vector<std::string> ids() {
        std::vector<std::string> all;
        for (int i = 0; i < count(); ++i) {
            EXPECT_TRUE(source->MoveToIndex(i));
            all.push_back(text("ID_QRA"));
        }
        return all;
    }

    int count() {
        int number = -1;
        EXPECT_TRUE(source->GetItemCount(&number));
        return number;
    }

    int count_of(qra_media_type_e type) {
        int number = -1;
        EXPECT_TRUE(source->GetItemCountByType(type, &number));
        return number;
    }

    /// The groups as "name:start+count#id".
    std::vector<std::string> groups() {
        const std::unique_ptr<CQRAGroupInfo> info(source->GetGroupInfo());
        std::vector<std::string> all;
        for (int i = 0; i < info->GetGroupCount(); ++i) {
            int start = 0;
            int size = 0;
            std::string name;
            info->GetGroup(i, start, size, name);
            all.push_back(name + ":" + std::to_string(start) + "+" + std::to_string(size) + "#" +
                          info->GetGroupId(i));
        }
        return all;
    }

    void serve_artists() {
        service.features = {{"DCM10", {"A_A", "A_M", "I_L", "I_N"}}};
        service.folders["A_A"].children = {folder("a1", 2, "Abba"), folder("a2", 1, "Ann")};
        service.folders["a1"].children = {file("s1", NBL_ITEM_TYPE_MUSIC, "mp3"),
                                          file("s2", NBL_ITEM_TYPE_MUSIC, "mp3")};
        service.folders["a2"].children = {file("s3", NBL_ITEM_TYPE_MUSIC, "mp3")};
    }

    void serve_dates() {
        service.features = {{"DCM10", {"I_L", "I_N"}}};
        service.folders["I_L"].children = {folder("y1", 1, "2020"), folder("y2", 2, "2021")};
        service.folders["y1"].children = {folder("m1", 2, "05")};
        service.folders["y2"].children = {folder("m2", 1, "01"), folder("m3", 3, "02")};
        service.folders["m1"].children = pictures(2, 10);
        service.folders["m2"].children = pictures(1, 20);
        service.folders["m3"].children = pictures(3, 30);
    }

    LogCapture log;
    FakeNubelink service;
    Received events;
    std::unique_ptr<CQRADLNASource> source = std::make_unique<CQRADLNASource>();
};

TEST_F(CQRADLNASourceTest, AFolderIsListedInTheServersOrderWithFoldersFirst) {
    service.folders["7"].children = {picture("a"), folder("b"), picture("c"), folder("d")};

    EXPECT_EQ(request("7"), "0");

    EXPECT_THAT(ids(), ElementsAre("b", "d", "a", "c"));
    EXPECT_EQ(source->GetFolderCount(), 2);
}

TEST_F(CQRADLNASourceTest, AnswersOutOfOrderAreBroughtIntoOrder) {
    service.hold = true;
    service.folders["7"].children = pictures(598);
    service.folders["7"].children.insert(service.folders["7"].children.begin() + 300, folder("f"));
    EXPECT_TRUE(execute("7"));
    ASSERT_TRUE(service.wait_for_open(1));
    service.answer(service.open()[0]);
    ASSERT_TRUE(service.wait_for_open(3));
    for (int i = 2; i >= 0; --i)
        service.answer(service.open()[static_cast<size_t>(i)]);
    ASSERT_TRUE(events.wait_for(1));

    std::vector<std::string> expected{"f"};
    for (int i = 0; i < 598; ++i)
        expected.push_back(std::to_string(i));
    EXPECT_EQ(ids(), expected);
}

TEST_F(CQRADLNASourceTest, EachTypeIsCountedAndGoesOnCounting) {
    service.folders["7"].children = {picture("a"), folder("b"), file("c", NBL_ITEM_TYPE_VIDEO, "mkv"),
                                     file("d", NBL_ITEM_TYPE_MUSIC, "mp3"), picture("e")};
    request("7");
    EXPECT_EQ(count_of(QRA_MEDIA_TYPE_FOLDER), 1);
    EXPECT_EQ(count_of(QRA_MEDIA_TYPE_IMAGE), 2);
    EXPECT_EQ(count_of(QRA_MEDIA_TYPE_VIDEO), 1);
    EXPECT_EQ(count_of(QRA_MEDIA_TYPE_MUSIC), 1);
    EXPECT_EQ(count_of(QRA_MEDIA_TYPE_PVR), 0);

    request("7");

    EXPECT_EQ(count(), 5);
    EXPECT_EQ(count_of(QRA_MEDIA_TYPE_IMAGE), 4);
    EXPECT_EQ(source->GetFolderCount(), 2);
}

TEST_F(CQRADLNASourceTest, TheExtensionDecidesTheTypeAndFilters) {
    service.folders["7"].children = {file("a", NBL_ITEM_TYPE_IMAGE, "MKV"),
                                     file("b", NBL_ITEM_TYPE_VIDEO, "jpg"),
                                     file("c", NBL_ITEM_TYPE_OTHER, "txt"),
                                     {"d", "no extension", NBL_ITEM_TYPE_MUSIC, {}, {}}};
    request("7");
    EXPECT_THAT(ids(), ElementsAre("a", "b", "d"));
    EXPECT_TRUE(log.contains("DLNA-SOURCE:filter extension [txt]"));
    int type = 0;
    EXPECT_TRUE(source->MoveToIndex(0) && source->GetValue("MEDIA_TYPE", &type));
    EXPECT_EQ(type, QRA_MEDIA_TYPE_VIDEO);

    request("7", "CATEGORY-FOLDER", "CONTENT-VIDEO");
    EXPECT_THAT(ids(), ElementsAre("a", "d"));
    request("7", "CATEGORY-FOLDER", "CONTENT-IMAGE");
    EXPECT_THAT(ids(), ElementsAre("b", "d"));
    execute("7", "CATEGORY-FOLDER", "CONTENT-FOLDER", nullptr, R"({"param_media_extension_image":["txt"]})");
    ASSERT_TRUE(events.wait_for(4));
    EXPECT_THAT(ids(), ElementsAre("c", "d"));
}

TEST_F(CQRADLNASourceTest, AnItemOfNoKnownTypeIsKeptUncounted) {
    service.folders["7"].children = {{"d", "no extension", NBL_ITEM_TYPE_OTHER, {}, {}}};

    request("7");

    EXPECT_EQ(count(), 1);
    EXPECT_TRUE(log.contains("DLNA-SOURCE: unexpected type."));
}

TEST_F(CQRADLNASourceTest, FolderTitleIsTheSameAsFolder) {
    service.folders["0"].children = {folder("b"), picture("a")};

    EXPECT_EQ(request("/", "CATEGORY-FOLDER-TITLE"), "0");

    EXPECT_THAT(ids(), ElementsAre("b", "a"));
    EXPECT_TRUE(source->MoveToIndex(0));
    EXPECT_EQ(text("DISPLAY_NAME"), "title b");
    EXPECT_EQ(groups().size(), 0U);
}

TEST_F(CQRADLNASourceTest, AFolderOfAnotherCategoryIsListedByItsId) {
    serve_artists();

    EXPECT_EQ(request("a1", "CATEGORY-ARTIST", "CONTENT-MUSIC"), "0");

    EXPECT_THAT(ids(), ElementsAre("s1", "s2"));
    EXPECT_EQ(service.count("nbl_provider_get_feature_list"), 0);
}

TEST_F(CQRADLNASourceTest, EachSortedViewHasItsFolder) {
    const char* const rows[][3] = {
        {"CONTENT-IMAGE", "CATEGORY-TITLE", "I_N"}, {"CONTENT-IMAGE", "CATEGORY-DATE", "I_L"},
        {"CONTENT-VIDEO", "CATEGORY-TITLE", "V_T"}, {"CONTENT-VIDEO", "CATEGORY-DATE", "V_L"},
        {"CONTENT-MUSIC", "CATEGORY-TRACK", "A_M"}, {"CONTENT-MUSIC", "CATEGORY-ARTIST", "A_A"},
        {"CONTENT-MUSIC", "CATEGORY-ALBUM", "A_L"}, {"CONTENT-MUSIC", "CATEGORY-GENRE", "A_G"}};
    for (const auto& row : rows) {
        service.features = {{"DCM10", {row[2]}}};
        service.folders[row[2]] = {};
        EXPECT_EQ(request("/", row[1], row[0]), "0") << row[2];
        EXPECT_EQ(service.count(std::string("nbl_provider_browse ") + row[2]), 1) << row[2];
    }
    EXPECT_FALSE(execute("/", "CATEGORY-ARTIST", "CONTENT-IMAGE"));
    EXPECT_FALSE(execute("/", "CATEGORY-TITLE", "CONTENT-MUSIC"));
    EXPECT_FALSE(execute("/", "CATEGORY-TITLE", "CONTENT-FOLDER"));
    EXPECT_EQ(log.count("DLNA-SOURCE: Invalid m_Folderid"), 3);
}

TEST_F(CQRADLNASourceTest, ArtistsAreGroupsWithoutItems) {
    serve_artists();

    EXPECT_EQ(request("/", "CATEGORY-ARTIST", "CONTENT-MUSIC"), "0");

    EXPECT_EQ(count(), 0);
    EXPECT_THAT(groups(), ElementsAre("Abba:0+2#a1", "Ann:2+1#a2"));
    int size = -1;
    std::string group = "a1";
    EXPECT_TRUE(source->GetItemCountOfGroup(group.data(), &size));
    EXPECT_EQ(size, 0);
    EXPECT_TRUE(log.contains("DLNA-SOURCE:Get  Grouplist Complete"));
}

TEST_F(CQRADLNASourceTest, DatesListAllItemsInTheirGroups) {
    serve_dates();

    EXPECT_EQ(request("/", "CATEGORY-DATE", "CONTENT-IMAGE"), "0");

    EXPECT_THAT(ids(), ElementsAre("10", "11", "20", "30", "31", "32"));
    EXPECT_THAT(groups(), ElementsAre("2020/05:0+2#m1", "2021/01:2+1#m2", "2021/02:3+3#m3"));
    int size = -1;
    std::string group = "m3";
    EXPECT_TRUE(source->GetItemCountOfGroup(group.data(), &size));
    EXPECT_EQ(size, 3);
    EXPECT_TRUE(log.contains("DLNA-SOURCE: go on get group from next level."));
    EXPECT_TRUE(log.contains("reset group is [2021/02],size [3]"));
}

TEST_F(CQRADLNASourceTest, TracksAreOneLevelWithItems) {
    service.features = {{"DCM10", {"A_M"}}};
    service.folders["A_M"].children = {folder("ta", 2, "A")};
    service.folders["ta"].children = {file("s1", NBL_ITEM_TYPE_MUSIC, "mp3"),
                                      file("s2", NBL_ITEM_TYPE_MUSIC, "wav")};

    EXPECT_EQ(request("/", "CATEGORY-TRACK", "CONTENT-MUSIC"), "0");

    EXPECT_THAT(ids(), ElementsAre("s1", "s2"));
    EXPECT_THAT(groups(), ElementsAre("A:0+2#ta"));
}

TEST_F(CQRADLNASourceTest, GroupsGetTheCountsOfWhatTheListHas) {
    serve_dates();
    service.folders["m3"].children = {picture("31"), file("x", NBL_ITEM_TYPE_VIDEO, "mkv")};

    request("/", "CATEGORY-DATE", "CONTENT-IMAGE");

    EXPECT_THAT(groups(), ElementsAre("2020/05:0+2#m1", "2021/01:2+1#m2", "2021/02:3+1#m3"));
    EXPECT_EQ(count(), 4);
}

TEST_F(CQRADLNASourceTest, AGroupThatTurnsOutEmptyIsListedOnceMoreWithoutAName) {
    serve_dates();
    service.folders["m2"].children = {};

    EXPECT_EQ(request("/", "CATEGORY-DATE", "CONTENT-IMAGE"), "0");

    EXPECT_THAT(groups(), ElementsAre("2020/05:0+2#m1", "2021/01:2+0#m2", "2021/02:2+3#m3", ":5+0#m2"));
    EXPECT_TRUE(log.contains("DLNA-SOURCE: empty group from dlna server"));
}

TEST_F(CQRADLNASourceTest, GroupsWithTheSameIdHaveTheItemsTwice) {
    serve_dates();
    service.folders["y2"].children = {folder("m3", 3, "01"), folder("m3", 3, "02")};

    EXPECT_EQ(request("/", "CATEGORY-DATE", "CONTENT-IMAGE"), "0");

    EXPECT_THAT(groups(), ElementsAre("2020/05:0+2#m1", "2021/01:2+3#m3", "2021/02:5+3#m3"));
    EXPECT_EQ(count(), 8);
}

TEST_F(CQRADLNASourceTest, GroupsOfAnEarlierRequestAreGone) {
    serve_artists();
    request("/", "CATEGORY-ARTIST", "CONTENT-MUSIC");

    request("/", "CATEGORY-ARTIST", "CONTENT-MUSIC");

    EXPECT_THAT(groups(), ElementsAre("Abba:0+2#a1", "Ann:2+1#a2"));
}

TEST_F(CQRADLNASourceTest, ASortedViewWithoutTheFeatureFails) {
    EXPECT_EQ(request("/", "CATEGORY-TITLE", "CONTENT-IMAGE"), "1");

    EXPECT_EQ(service.count("nbl_provider_browse"), 0);
}

TEST_F(CQRADLNASourceTest, AFolderThatIsGoneIsTheEvent28) {
    EXPECT_EQ(request("nowhere"), "28");
    EXPECT_EQ(count(), 0);
}

TEST_F(CQRADLNASourceTest, AFailureInTheMiddleOfTheGroupsEndsTheRequest) {
    serve_dates();
    service.folders["y1"].error = NBL_ERROR_TIMEOUT;
    EXPECT_EQ(request("/", "CATEGORY-DATE", "CONTENT-IMAGE"), "1");
    EXPECT_TRUE(log.contains("quit loop of  GetGroupLevel2 "));

    service.folders["y1"].error = 0;
    service.folders["m2"].error = NBL_ERROR_TIMEOUT;
    EXPECT_EQ(request("/", "CATEGORY-DATE", "CONTENT-IMAGE"), "1");
    EXPECT_TRUE(log.contains("quit loop of  m_GetAllItemList"));

    service.folders["m2"].error = 0;
    EXPECT_EQ(request("/", "CATEGORY-DATE", "CONTENT-IMAGE"), "0");
    EXPECT_EQ(count(), 6);
}

TEST_F(CQRADLNASourceTest, ASearchIsOneGroup) {
    service.finds["sun"] = {{picture("a"), file("b", NBL_ITEM_TYPE_MUSIC, "mp3")}};

    EXPECT_EQ(request("/", "CATEGORY-KEYWORD-SEARCH", "CONTENT-FOLDER", "sun"), "0");
    EXPECT_EQ(request("/", "CATEGORY-KEYWORD-SEARCH", "CONTENT-FOLDER", "sun"), "0");

    EXPECT_THAT(ids(), ElementsAre("a", "b"));
    EXPECT_THAT(groups(), ElementsAre("search:0+2#"));
}

TEST_F(CQRADLNASourceTest, ASearchNeedsAKeyword) {
    EXPECT_FALSE(execute("/", "CATEGORY-KEYWORD-SEARCH"));
    EXPECT_TRUE(log.contains("DLNA-SOURCE: Invalid keyword"));

    EXPECT_EQ(request("/", "CATEGORY-KEYWORD-SEARCH", "CONTENT-FOLDER", ""), "1");
}

TEST_F(CQRADLNASourceTest, RequestsThatMakeNoSenseAreRefused) {
    qra_general_s param;
    std::string text = "x";
    EXPECT_FALSE(source->Execute(nullptr));
    EXPECT_FALSE(source->Execute(&param));
    param.szPath = text.data();
    EXPECT_FALSE(source->Execute(&param));
    param.szFolderId = text.data();
    EXPECT_FALSE(source->Execute(&param));
    EXPECT_FALSE(execute("7", "CATEGORY-FOLDER", "CONTENT-PVR"));
    EXPECT_FALSE(execute("7", "CATEGORY-GROUP"));

    for (const char* line :
         {"DLNA-SOURCE: pParam is null", "DLNA-SOURCE: Deviceid is null", "DLNA-SOURCE: pFolderId is null",
          "DLNA-SOURCE: Invalid ContentType", "DLNA-SOURCE: Invalid SortCategory"})
        EXPECT_TRUE(log.contains(line)) << line;
    EXPECT_EQ(events.all().size(), 0U);
}

TEST_F(CQRADLNASourceTest, ARefusedRequestLeavesTheListAsItWas) {
    service.folders["7"].children = pictures(3);
    request("7");

    EXPECT_FALSE(execute("7", "CATEGORY-GROUP"));

    EXPECT_EQ(count(), 3);
}

TEST_F(CQRADLNASourceTest, AGroupThatWasListedIsReusedWithoutTheServerAndEndsEmpty) {
    serve_artists();
    request("/", "CATEGORY-ARTIST", "CONTENT-MUSIC");
    request("a1", "CATEGORY-ARTIST", "CONTENT-MUSIC");
    EXPECT_EQ(count(), 2);
    int size = -1;
    std::string group = "a1";
    EXPECT_TRUE(source->GetItemCountOfGroup(group.data(), &size));
    EXPECT_EQ(size, 2);
    const int browses = service.count("nbl_provider_browse");

    EXPECT_EQ(request("a1", "CATEGORY-ARTIST", "CONTENT-MUSIC"), "0");

    EXPECT_EQ(service.count("nbl_provider_browse"), browses);
    EXPECT_TRUE(log.contains("DLNA Source Reused Request Media in Group"));
    EXPECT_TRUE(log.contains("DLNA Source Reused callback to app"));
    EXPECT_EQ(count(), 0) << "the list of a reuse ends empty";
}

TEST_F(CQRADLNASourceTest, OnlyTheSameViewOfAFolderIsReused) {
    serve_artists();
    request("/", "CATEGORY-ARTIST", "CONTENT-MUSIC");
    request("a1", "CATEGORY-ARTIST", "CONTENT-MUSIC");
    request("a2", "CATEGORY-ARTIST", "CONTENT-MUSIC");
    EXPECT_EQ(count(), 1);

    request("a1", "CATEGORY-ALBUM", "CONTENT-MUSIC");
    EXPECT_EQ(count(), 2);
    request("a1", "CATEGORY-ALBUM", "CONTENT-FOLDER");
    EXPECT_EQ(count(), 2);
    request("a1", "CATEGORY-TRACK", "CONTENT-MUSIC");
    request("a1", "CATEGORY-TRACK", "CONTENT-MUSIC");

    EXPECT_EQ(count(), 2);
    EXPECT_FALSE(log.contains("DLNA Source Reused callback to app"));
}

TEST_F(CQRADLNASourceTest, TheCursorWalksTheList) {
    service.folders["7"].children = pictures(2);
    request("7");
    EXPECT_FALSE(source->MoveToNext());
    EXPECT_FALSE(source->MoveToPrevious());
    EXPECT_FALSE(source->MoveToIndex(-1));
    EXPECT_FALSE(source->MoveToIndex(2));
    EXPECT_EQ(text("TITLE"), "(none)");
    EXPECT_TRUE(log.contains("DLNA-SOURCE: Index set failed"));
    EXPECT_TRUE(log.contains("DLNA-SOURCE: nIndex is not in [0,len], nIndex = 2"));

    EXPECT_TRUE(source->MoveToIndex(0));
    EXPECT_TRUE(source->MoveToNext());
    EXPECT_EQ(text("ID_QRA"), "1");
    EXPECT_TRUE(source->MoveToNext()) << "one past the last item";
    EXPECT_EQ(text("ID_QRA"), "(none)");
    EXPECT_FALSE(source->MoveToNext());
    EXPECT_TRUE(log.contains("DLNA-SOURCE: m_nIndex > vector.size()"));
}

TEST_F(CQRADLNASourceTest, BeforeTheFirstItemTheCursorStaysWhereItFell) {
    service.folders["7"].children = pictures(2);
    request("7");
    EXPECT_TRUE(source->MoveToIndex(0));

    EXPECT_FALSE(source->MoveToPrevious());
    EXPECT_FALSE(source->MoveToPrevious());
    EXPECT_TRUE(log.contains("DLNA-SOURCE: m_nIndex < 0"));
    EXPECT_EQ(text("ID_QRA"), "(none)");
    EXPECT_TRUE(source->MoveToNext());
    EXPECT_EQ(text("ID_QRA"), "(none)") << "at -1";
    EXPECT_TRUE(source->MoveToNext());
    EXPECT_EQ(text("ID_QRA"), "0");
}

TEST_F(CQRADLNASourceTest, ANewListTakesTheCursorAway) {
    service.folders["7"].children = pictures(2);
    request("7");
    EXPECT_TRUE(source->MoveToIndex(1));

    request("7");

    EXPECT_EQ(text("ID_QRA"), "(none)");
}

TEST_F(CQRADLNASourceTest, SomeValuesAreTrueAndNeverWritten) {
    long time = 5;
    bool flag = true;
    double number = 1.5;

    EXPECT_TRUE(source->GetValue("MODIFIED_TIME", &time));
    EXPECT_TRUE(source->GetValue("IS_DRM", &flag));
    EXPECT_TRUE(source->GetValue("FNUMBER", &number));
    EXPECT_TRUE(source->SetValue("PLAYED_POSITION", 5L));
    EXPECT_TRUE(source->SetValue("TITLE", "x"));
    EXPECT_TRUE(source->SetValue("TITLE", 1, 2));
    EXPECT_TRUE(source->SetValue("TITLE", 1, 2, "x"));

    EXPECT_EQ(time, 5);
    EXPECT_TRUE(flag);
    EXPECT_EQ(number, 1.5);
}

TEST_F(CQRADLNASourceTest, TheOperationsThatAServerDoesNotHaveAnswerAsTold) {
    std::string text = "x";
    std::string id;
    int number = 7;

    EXPECT_TRUE(source->Open());
    EXPECT_TRUE(source->Open(text.data())) << "open already";
    EXPECT_TRUE(source->IndexSearch(text.data(), &number, &number));
    EXPECT_TRUE(source->GetBrowseIndex(0, text.data(), &number));
    EXPECT_TRUE(source->UpLoad(text.data(), text.data(), text.data()));
    IQRASourceBase* base = source.get();
    EXPECT_FALSE(base->Download(text.data(), text.data(), text.data()));
    EXPECT_FALSE(base->Stop(text.data()));
    EXPECT_FALSE(base->CancelAsync());
    EXPECT_FALSE(base->GetGroupId(0, id));
    EXPECT_EQ(base->GetFolderVectorSize(), 0);
    EXPECT_EQ(number, 7);
}

TEST_F(CQRADLNASourceTest, AnItemIsFoundByItsId) {
    service.folders["7"].children = {picture("a"), picture("b"), picture("b")};
    request("7");
    int index = -1;
    std::string id = "b";
    std::string wrong = "z";

    EXPECT_TRUE(source->GetDBIndex(id.data(), &index));
    EXPECT_EQ(index, 1);
    EXPECT_FALSE(source->GetDBIndex(wrong.data(), &index));
    EXPECT_TRUE(log.contains("DLNA-SOURCE: Invalid media[z]."));
    EXPECT_FALSE(source->GetDBIndex(nullptr, &index));
    EXPECT_EQ(index, 1);
}

TEST_F(CQRADLNASourceTest, AnUnknownGroupLeavesTheCountAlone) {
    int size = 9;
    std::string group = "nowhere";

    EXPECT_TRUE(source->GetItemCountOfGroup(group.data(), &size));
    EXPECT_EQ(size, 9);
    EXPECT_FALSE(source->GetItemCountOfGroup(nullptr, &size));
    EXPECT_FALSE(source->GetItemCountOfGroup(group.data(), nullptr));
    EXPECT_EQ(log.count("DLNA-SOURCE: GroupName or ItemCount is null"), 2);
}

TEST_F(CQRADLNASourceTest, ThePositionIsABookmarkOfTheItemAtTheCursor) {
    service.folders["7"].children = pictures(2);
    request("7");
    EXPECT_FALSE(source->SetValue("PLAYED_POSITION", 95)) << "no cursor yet";
    EXPECT_TRUE(source->MoveToIndex(1));

    EXPECT_TRUE(source->SetValue("PLAYED_POSITION", 95));
    EXPECT_FALSE(source->SetValue("PLAYED_POSITION_", 95));
    EXPECT_FALSE(source->SetValue("PLAYED", 95));
    EXPECT_FALSE(source->SetValue(static_cast<const char*>(nullptr), 95));

    EXPECT_EQ(service.count("nbl_provider_set_bookmark 1 95 65535"), 1);
    EXPECT_EQ(service.count("nbl_provider_set_bookmark"), 1);
}

TEST_F(CQRADLNASourceTest, ABookmarkIsAskedForByTheIdAtTheCursor) {
    service.folders["7"].children = pictures(2);
    request("7");
    Received received;
    const auto add = [](void* data, int seconds) {
        static_cast<Received*>(data)->add(std::to_string(seconds));
        return true;
    };
    EXPECT_FALSE(source->GetBookMark(add, &received));
    EXPECT_TRUE(source->MoveToIndex(1));

    EXPECT_TRUE(source->GetBookMark(add, &received));

    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(service.count("nbl_provider_browse_item 1"), 1);
}

TEST_F(CQRADLNASourceTest, TransfersAreToldAsEvents) {
    Received received;
    source->SetCallback(
        [](int, qra_event_e event, char* id, double, double, double, double, void* data) {
            static_cast<Received*>(data)->add(std::to_string(event) + " " + id);
            return true;
        },
        &received);
    std::string uri = "http://a/1", mime = "video/mp4", path = "/nowhere/film";
    char id[40];
    EXPECT_TRUE(source->Download(uri.data(), mime.data(), path.data(), id));
    const FakeNubelink::Transfer transfer = service.last_transfer();
    EXPECT_THAT(transfer.arguments, ElementsAre(uri, mime, path, "1000"));
    for (const int state :
         {NBL_DOWNLOAD_STATE_PROGRESS, NBL_DOWNLOAD_STATE_FAILED, NBL_DOWNLOAD_STATE_COMPLETE}) {
        service.run([&] {
            nbl_transfer_info info{state, 0, 1, 2};
            transfer.cb(transfer.token, &info, transfer.user_data);
        });
    }

    const std::string name = id;
    EXPECT_THAT(received.all(), ElementsAre("9 " + name, "8 " + name, "7 " + name));
    EXPECT_FALSE(source->Download(uri.data(), mime.data(), path.data(), nullptr));
}

TEST_F(CQRADLNASourceTest, ATransferIsStoppedByItsKind) {
    std::string src = "/a/b.jpg";
    char id[40];
    EXPECT_TRUE(source->UpLoad(src.data(), id));

    EXPECT_EQ(source->Stop(id, 2), -1);
    EXPECT_EQ(source->Stop(nullptr, 0), -1);
    EXPECT_EQ(source->Stop(id, 1), 0) << "no such download";
    EXPECT_EQ(service.count("nbl_provider_cancel_receive"), 0);
    EXPECT_EQ(source->Stop(id, 0), 0);

    EXPECT_EQ(service.count("nbl_provider_cancel_receive"), 1);
    EXPECT_TRUE(log.contains("DLNA-SOURCE: stop parameter error"));
    EXPECT_FALSE(source->UpLoad(nullptr, id));
    EXPECT_TRUE(log.contains("DLNA-SOURCE: upload parameter error"));
}

TEST_F(CQRADLNASourceTest, AClosedSourceTransfersNothing) {
    CQRADLNASource closed;
    std::string src = "/a/b.jpg";
    char id[40];

    EXPECT_FALSE(closed.IsOpen());
    EXPECT_FALSE(closed.UpLoad(src.data(), id));
    EXPECT_TRUE(log.contains("DLNA-SOURCE: Upload m_InitDLNAEnv failed"));
    EXPECT_FALSE(closed.Download(src.data(), src.data(), src.data(), id));
    EXPECT_EQ(closed.Stop(id, 0), -1);
    EXPECT_TRUE(closed.Close());
}

TEST_F(CQRADLNASourceTest, AServerThatIsNotThereIsNotOpened) {
    CQRADLNASource other;
    std::string id = "uuid:2";
    service.refuse["nbl_devicefinder_get_device"] = NBL_ERROR_DEVICE_GONE;

    EXPECT_FALSE(other.Open(id.data()));
    EXPECT_FALSE(other.Open(nullptr));

    EXPECT_FALSE(other.IsOpen());
    EXPECT_EQ(log.count("m_InitProvider failed."), 2);
}

TEST_F(CQRADLNASourceTest, ASourceCanBeOpenedAgain) {
    service.folders["7"].children = pictures(2);
    request("7");
    EXPECT_TRUE(source->Close());
    EXPECT_FALSE(source->IsOpen());
    std::string id = "uuid:1";

    EXPECT_TRUE(source->Open(id.data()));
    source->SetCallback(add_event, &events);

    EXPECT_EQ(request("7"), "0");
}

TEST_F(CQRADLNASourceTest, ClosingEndsARequestInEachPhaseWithoutCompletingIt) {
    serve_dates();
    for (size_t answered = 0; answered < 8; ++answered) {
        service.hold = true;
        EXPECT_TRUE(execute("/", "CATEGORY-DATE", "CONTENT-IMAGE"));
        for (size_t i = 0; i < answered; ++i) {
            ASSERT_TRUE(service.wait_for_open(1));
            service.answer(service.open()[0]);
        }

        EXPECT_TRUE(source->Close()) << answered;

        service.hold = false;
        std::string id = "uuid:1";
        EXPECT_TRUE(source->Open(id.data()));
        service.run([] {});
    }
    EXPECT_THAT(events.all(), testing::Each("0"));
    EXPECT_LE(events.all().size(), 1U) << "the last phase is the request's end";
}

TEST_F(CQRADLNASourceTest, AnUnhookedCallbackIsNotCalled) {
    service.folders["7"].children = pictures(2);
    service.hold = true;
    execute("7");
    ASSERT_TRUE(service.wait_for_open(1));

    EXPECT_TRUE(source->UNSetCallback());
    service.answer(service.open()[0]);
    ASSERT_TRUE(service.wait_for_open(1));
    service.answer(service.open()[0]);
    EXPECT_TRUE(source->Close());

    EXPECT_EQ(events.all().size(), 0U);
}

TEST_F(CQRADLNASourceTest, ACloseThatCannotCancelLeavesTheSourceOpenAndMayBeRepeated) {
    service.hold = true;
    execute("7");
    ASSERT_TRUE(service.wait_for_open(1));
    service.refuse["nbl_provider_cancel_async_action"] = 5;

    EXPECT_FALSE(source->Close());
    EXPECT_TRUE(source->IsOpen());
    EXPECT_FALSE(source->Close());

    service.refuse.clear();
    EXPECT_TRUE(source->Close());
    EXPECT_FALSE(source->IsOpen());
}

TEST_F(CQRADLNASourceTest, ASourceWhoseCloseFailedServesTheNextRequest) {
    service.folders["7"].children = pictures(2);
    service.hold = true;
    execute("7");
    ASSERT_TRUE(service.wait_for_open(1));
    service.refuse["nbl_provider_cancel_async_action"] = 5;
    EXPECT_FALSE(source->Close());
    service.refuse.clear();
    source->SetCallback(add_event, &events);
    service.answer(service.open()[0], NBL_ERROR_TIMEOUT);
    ASSERT_TRUE(events.wait_for(1));
    service.hold = false;

    EXPECT_TRUE(execute("7"));

    ASSERT_TRUE(events.wait_for(2));
    EXPECT_EQ(count(), 2);
}

TEST_F(CQRADLNASourceTest, LateAnswersOfAFailedRequestAreNotCounted) {
    service.folders["7"].children = pictures(1000);
    service.hold = true;
    execute("7");
    ASSERT_TRUE(service.wait_for_open(1));
    service.answer(service.open()[0]);
    ASSERT_TRUE(service.wait_for_open(5));
    service.refuse["nbl_provider_cancel_async_action"] = 5;
    service.answer(service.open()[0], NBL_ERROR_TIMEOUT);
    ASSERT_TRUE(events.wait_for(1));
    ASSERT_TRUE(service.wait_for_open(4));

    while (!service.open().empty())
        service.answer(service.open()[0]);
    service.run([] {});

    EXPECT_THAT(events.all(), ElementsAre("1"));
    EXPECT_EQ(count_of(QRA_MEDIA_TYPE_IMAGE), 0);
}

TEST_F(CQRADLNASourceTest, ARepeatDoesNotWaitForACompletionThatRuns) {
    struct Slow {
        std::promise<void> begun, go;
    } slow;
    service.folders["7"].children = pictures(2);
    source->SetCallback(
        [](qra_event_e, void* data) {
            auto* running = static_cast<Slow*>(data);
            running->begun.set_value();
            running->go.get_future().wait();
            return true;
        },
        &slow);
    execute("7");
    slow.begun.get_future().wait();

    EXPECT_TRUE(source->SetCallback(add_event, &events));
    EXPECT_TRUE(execute("7"));

    slow.go.set_value();
    ASSERT_TRUE(events.wait_for(1));
    EXPECT_THAT(events.all(), ElementsAre("0"));
    EXPECT_EQ(count(), 2);
}

TEST_F(CQRADLNASourceTest, ANewRequestSupersedesTheOneThatRuns) {
    service.folders["7"].children = pictures(1000);
    service.folders["8"].children = pictures(3, 5000);
    service.hold = true;
    execute("7");
    ASSERT_TRUE(service.wait_for_open(1));
    service.answer(service.open()[0]);
    ASSERT_TRUE(service.wait_for_open(5));
    EXPECT_FALSE(execute("8", "CATEGORY-GROUP")) << "nonsense supersedes nothing";
    service.hold = false;

    EXPECT_TRUE(execute("8"));

    ASSERT_TRUE(events.wait_for(1));
    EXPECT_THAT(ids(), ElementsAre("5000", "5001", "5002"));
    EXPECT_THAT(events.all(), ElementsAre("0"));
}

TEST_F(CQRADLNASourceTest, TheLatestOfManyRequestsIsTheOneThatIsAnswered) {
    for (int i = 0; i < 20; ++i)
        service.folders[std::to_string(i)].children = pictures(i + 1, i * 100);
    for (int i = 0; i < 20; ++i)
        EXPECT_TRUE(execute(std::to_string(i)));

    // Each was answered or superseded; the last one is answered.
    for (size_t answers = 1; count() != 20; ++answers)
        ASSERT_TRUE(events.wait_for(answers));

    EXPECT_EQ(ids().front(), "1900");
}

TEST_F(CQRADLNASourceTest, AMillionItemsMoreOrLessAreNotTheServersToSay) {
    service.folders["7"].children = pictures(5);
    service.folders["7"].said = 5000;

    EXPECT_EQ(request("7"), "0");

    EXPECT_EQ(count(), 5);
}

using CQRADLNASourceDeathTest = CQRADLNASourceTest;

TEST_F(CQRADLNASourceDeathTest, AnOpenSourceMustNotGo) {
    EXPECT_DEATH(source.reset(), "m_bIsOpen == false");
}

}  // namespace
