// Lists of a media server by the exported functions, through the real service, from a server of this machine.

#include <gmock/gmock.h>

#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/dlna/media_server.h"
#include "tests/integration/server_lists.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr char kServer[] = "uuid:5f0c7a10-0000-4000-8000-000000000001";

/// A client that is connected to the home network, which has one server.
class MediaServerLists : public HomeNetworkClient {
protected:
    void SetUp() override {
        HomeNetworkClient::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        server_.emplace();
        ASSERT_TRUE(wait_for_server(kServer));
    }

    MediaServer& server() { return *server_; }

private:
    std::optional<MediaServer> server_;
};

TEST_F(MediaServerLists, ShowAFolderOfSeveralPagesInTheServersOrder) {
    server().generate("films", "video", 450);
    ServerList list(kServer, {"CATEGORY-FOLDER", "CONTENT-FOLDER", "films"});
    ASSERT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
    const std::vector<std::string> ids = list.texts("ID_QRA");
    ASSERT_EQ(ids.size(), 450u);
    EXPECT_EQ(ids.front(), "films-0");
    EXPECT_EQ(ids[200], "films-200");
    EXPECT_EQ(ids.back(), "films-449");
    EXPECT_THAT(list.numbers("MEDIA_TYPE"), Each(QRA_MEDIA_TYPE_VIDEO));
    EXPECT_THAT(list.texts("TITLE"), Each(Not(IsEmpty())));
}

TEST_F(MediaServerLists, ShowAWholeFolderOfAServerThatSaysNothingTrueOfItsCounts) {
    server().generate("films", "video", 1250);
    server().set("Browse.child-count", "7");
    server().set("Browse.total", "0");
    ServerList list(kServer, {"CATEGORY-FOLDER", "CONTENT-FOLDER", "films"});
    ASSERT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
    const std::vector<std::string> ids = list.texts("ID_QRA");
    ASSERT_EQ(ids.size(), 1250u);
    EXPECT_EQ(ids[200], "films-200");
    EXPECT_EQ(ids.back(), "films-1249");
    // The folder with its first child, the search for its end, and the pages with the empty one behind each
    // end.
    EXPECT_LE(server().count("Browse"), 2 + 20 + 7 + 1);
}

TEST_F(MediaServerLists, ShowTheArtistsOfAServerWithTheCountsOfTheirSongs) {
    server().generate("songs", "music", 3);
    for (const auto& [song, artist] :
         {std::pair("songs-0", "Ada"), std::pair("songs-1", "Bo"), std::pair("songs-2", "Ada")}) {
        server().tell({"change", song, "artist", artist});
    }
    ServerList list(kServer, {"CATEGORY-ARTIST", "CONTENT-MUSIC", "/"});
    ASSERT_EQ(list.wait(kGroups), QRA_EVENT_LIST_SUCCESS);
    EXPECT_THAT(list.texts("DISPLAY_NAME"), ElementsAre("Ada", "Bo"));
    EXPECT_THAT(list.numbers("GROUP_ITEM_COUNT"), ElementsAre(2, 1));
}

TEST_F(MediaServerLists, ShowTitlesUnderTheirFirstTwoLetters) {
    server().generate("films", "video", 3);
    for (const auto& [film, title] :
         {std::pair("films-0", "Sea"), std::pair("films-1", "Moon"), std::pair("films-2", "Sand")}) {
        server().tell({"change", film, "title", title});
    }
    ServerList list(kServer, {"CATEGORY-TITLE", "CONTENT-VIDEO", "/"});
    ASSERT_EQ(list.wait(kGroupsAndMedia), QRA_EVENT_LIST_SUCCESS);
    EXPECT_THAT(list.texts("DISPLAY_NAME"),
                ElementsAre("M/Mo", "Moon.mp4", "S/Sa", "Sand.mp4", "S/Se", "Sea.mp4"));
}

TEST_F(MediaServerLists, FailForAFolderThatIsNotThere) {
    ServerList list(kServer, {"CATEGORY-FOLDER", "CONTENT-FOLDER", "nowhere"});
    EXPECT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_DLNA_ITEM_NOT_EXIST);
}

/// A misbehaviour of each answer to a browse, and what becomes of a folder of 250 films then.
struct Misbehaviour {
    const char* fault;
    const char* value;
    int event;
    int items;
};

void PrintTo(const Misbehaviour& how, std::ostream* out) {
    *out << how.fault << " " << how.value;
}

struct ListsOfAMisbehavingServer : MediaServerLists, testing::WithParamInterface<Misbehaviour> {};

TEST_P(ListsOfAMisbehavingServer, EndWithWhatThereIsOrAnError) {
    server().generate("films", "video", 250);
    server().set(std::string("Browse.") + GetParam().fault, GetParam().value);
    ServerList list(kServer, {"CATEGORY-FOLDER", "CONTENT-FOLDER", "films"});
    EXPECT_EQ(list.wait(kFoldersAndMedia), GetParam().event);
    EXPECT_EQ(list.texts("ID_QRA").size(), static_cast<size_t>(GetParam().items));
    EXPECT_EQ(list.answers(), 1);
    // The same handle is as good as new for a server that has come to its senses.
    server().clear();
    list.repeat({"CATEGORY-FOLDER", "CONTENT-FOLDER", "films"});
    EXPECT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(list.texts("ID_QRA").size(), 250u);
}

INSTANTIATE_TEST_SUITE_P(Faults, ListsOfAMisbehavingServer,
                         testing::Values(Misbehaviour{"error", "401", QRA_EVENT_LIST_FAILED, 0},
                                         Misbehaviour{"error", "501", QRA_EVENT_LIST_FAILED, 0},
                                         Misbehaviour{"error", "709", QRA_EVENT_LIST_FAILED, 0},
                                         Misbehaviour{"error", "701", QRA_EVENT_DLNA_ITEM_NOT_EXIST, 0},
                                         Misbehaviour{"cut", "", QRA_EVENT_LIST_FAILED, 0},
                                         Misbehaviour{"endless", "", QRA_EVENT_LIST_FAILED, 0},
                                         Misbehaviour{"broken-soap", "", QRA_EVENT_LIST_FAILED, 0},
                                         Misbehaviour{"at-most", "30", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"none-from", "200", QRA_EVENT_LIST_SUCCESS, 200},
                                         Misbehaviour{"total", "0", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"total", "5000", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"total", "3", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"total-of-page", "", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"grow", "1000", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"shrink", "40", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"same-page", "", QRA_EVENT_LIST_SUCCESS, 200},
                                         Misbehaviour{"duplicate-ids", "", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"child-count", "0", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"child-count", "9", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"not-utf8", "3", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"broken-didl", "", QRA_EVENT_LIST_SUCCESS, 250},
                                         Misbehaviour{"empty-didl", "", QRA_EVENT_LIST_FAILED, 0}));

TEST_F(MediaServerLists, HoldAllThatAServerGivesInShortPagesWithTheirSizeAsTheTotal) {
    server().generate("films", "video", 250);
    for (const char* action : {"Browse.", "Search."}) {
        server().set(std::string(action) + "at-most", "30");
        server().set(std::string(action) + "total-of-page");
    }
    ServerList list(kServer, {"CATEGORY-FOLDER", "CONTENT-FOLDER", "films"});
    EXPECT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(list.texts("ID_QRA").size(), 250u);
    ServerList view(kServer, {"CATEGORY-TITLE", "CONTENT-VIDEO", "/"});
    EXPECT_EQ(view.wait(kGroupsAndMedia), QRA_EVENT_LIST_SUCCESS);
    // A group's tile has the id of its first film.
    const std::vector<std::string> ids = view.texts("ID_QRA");
    EXPECT_EQ(std::set<std::string>(ids.begin(), ids.end()).size(), 250u);
}

TEST_F(MediaServerLists, ShowAFolderThatHoldsItself) {
    server().tell({"tree", "t", "2", "2"});
    server().tell({"cycle", "t"});
    ServerList list(kServer, {"CATEGORY-FOLDER", "CONTENT-FOLDER", "t"});
    ASSERT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
    EXPECT_THAT(list.texts("ID_QRA"), ElementsAre("t.0", "t.1", "t", "0", "t-item"));
    list.repeat({"CATEGORY-FOLDER", "CONTENT-FOLDER", "t"});
    EXPECT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
}

TEST_F(MediaServerLists, EndWhileTheServerIsSilentAndAreNotAnswered) {
    server().generate("films", "video", 5);
    server().set("Browse.hold");
    ServerList silent(kServer, {"CATEGORY-FOLDER", "CONTENT-FOLDER", "films"});
    server().await("Browse", 1);
    silent.disconnect();
    EXPECT_EQ(silent.event(), -1);
    server().clear();
    server().release();
    ServerList list(kServer, {"CATEGORY-FOLDER", "CONTENT-FOLDER", "films"});
    EXPECT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(list.texts("ID_QRA").size(), 5u);
    EXPECT_EQ(silent.event(), -1);
}

}  // namespace
