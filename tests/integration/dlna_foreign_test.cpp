// Lists of the media servers that people have at home, by the exported functions.

#include <gmock/gmock.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/dlna/foreign_servers.h"
#include "tests/integration/server_lists.h"

using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;
using testing::SizeIs;
using testing::UnorderedElementsAre;

namespace {

class ForeignLists : public HomeNetworkClient {
protected:
    /// Servers look at their files after they have started: the list as soon as it has so many tiles.
    std::vector<std::string> names(const ServerListRequest& request, int mask, size_t at_least) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (true) {
            ServerList list(id, request);
            const int event = list.wait(mask);
            std::vector<std::string> names = list.texts("DISPLAY_NAME");
            if (names.size() >= at_least || std::chrono::steady_clock::now() > end) {
                EXPECT_EQ(event, QRA_EVENT_LIST_SUCCESS);
                return names;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        }
    }
    /// The id of a tile of a folder; empty if there is none of that name.
    std::string id_in(const std::string& folder, const std::string& name) {
        ServerList list(id, {"CATEGORY-FOLDER", "CONTENT-FOLDER", folder.c_str()});
        EXPECT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS) << folder;
        const std::vector<std::string> names = list.texts("DISPLAY_NAME");
        const auto found = std::find(names.begin(), names.end(), name);
        return found == names.end() ? std::string()
                                    : list.texts("ID_QRA")[static_cast<size_t>(found - names.begin())];
    }
    void expect_music_and_pictures(size_t pictures) {
        EXPECT_THAT(names({"CATEGORY-TRACK", "CONTENT-MUSIC", "/"}, 0x04, 3), SizeIs(3));
        EXPECT_THAT(names({"CATEGORY-ARTIST", "CONTENT-MUSIC", "/"}, kGroups, 1), ElementsAre("The Band"));
        EXPECT_THAT(names({"CATEGORY-ALBUM", "CONTENT-MUSIC", "/"}, kGroups, 1), ElementsAre("First"));
        EXPECT_THAT(names({"CATEGORY-GENRE", "CONTENT-MUSIC", "/"}, kGroups, 1), ElementsAre("Jazz"));
        const std::vector<std::string> titles =
            names({"CATEGORY-TITLE", "CONTENT-IMAGE", "/"}, kGroupsAndMedia, 2 * pictures);
        EXPECT_THAT(titles, SizeIs(2 * pictures));
        EXPECT_THAT(titles, IsSupersetOf({"B/Bu", "burst.jpg", "P/Ph", "photo.jpg"}));
        EXPECT_THAT(names({"CATEGORY-DATE", "CONTENT-IMAGE", "/"}, 0x04, pictures), SizeIs(pictures));
        EXPECT_THAT(names({"CATEGORY-KEYWORD-SEARCH", "CONTENT-FOLDER", "/", "photo"}, 0x04, 1),
                    ElementsAre("photo.jpg"));
    }

    std::string id;
};

TEST_F(ForeignLists, ShowReadyMediasFoldersAndViews) {
    const ReadyMedia server;
    id = ReadyMedia::kId;
    ASSERT_TRUE(wait_for_server(id));
    expect_music_and_pictures(2);
    EXPECT_THAT(names({"CATEGORY-FOLDER", "CONTENT-FOLDER", "/"}, kFoldersAndMedia, 4),
                UnorderedElementsAre("Browse Folders", "Music", "Pictures", "Video"));
    const std::string by_folder = id_in("/", "Browse Folders");
    const std::string pictures = id_in(by_folder, "pictures");
    ASSERT_THAT(pictures, Not(IsEmpty()));
    EXPECT_THAT(names({"CATEGORY-FOLDER", "CONTENT-FOLDER", pictures.c_str()}, kFoldersAndMedia, 2),
                UnorderedElementsAre("burst.jpg", "photo.jpg"));
}

TEST_F(ForeignLists, ShowRygelsFoldersAndViews) {
    const Rygel server;
    id = wait_for_any_server();
    ASSERT_THAT(id, Not(IsEmpty()));
    expect_music_and_pictures(3);
    EXPECT_THAT(names({"CATEGORY-FOLDER", "CONTENT-FOLDER", "/"}, kFoldersAndMedia, 3),
                IsSupersetOf({"Files & Folders", "Music", "Pictures"}));
    const std::string top = id_in("/", "Files & Folders");
    ASSERT_THAT(top, Not(IsEmpty()));
    ServerList list(id, {"CATEGORY-FOLDER", "CONTENT-FOLDER", top.c_str()});
    ASSERT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
    const std::string served = list.texts("ID_QRA").at(0);
    const std::string pictures = id_in(served, "pictures");
    ASSERT_THAT(pictures, Not(IsEmpty()));
    EXPECT_THAT(names({"CATEGORY-FOLDER", "CONTENT-FOLDER", pictures.c_str()}, kFoldersAndMedia, 3),
                UnorderedElementsAre("burst.jpg", "drawing.png", "photo.jpg"));
}

}  // namespace
