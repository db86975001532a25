// Lists of a media server by the exported functions, through the real service, from a server of this machine.

#include <gmock/gmock.h>
#include <qra/qra_content_agent.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/dlna/media_server.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

namespace {

constexpr std::chrono::seconds kPatience(60);
constexpr char kServer[] = "uuid:5f0c7a10-0000-4000-8000-000000000001";
constexpr int kFoldersAndMedia = 0x06;
constexpr int kGroups = 0x08;
constexpr int kGroupsAndMedia = 0x0C;

/// What a thread of the library tells and a test waits for.
class Told {
public:
    void change(const std::function<void()>& change) {
        const std::lock_guard<std::mutex> lock(mutex_);
        change();
        changed_.notify_all();
    }
    bool wait(const std::function<bool()>& holds) {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, kPatience, holds);
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
};

/// A list of the server, as a client has it.
class ServerList {
public:
    ServerList(const char* sort, const char* content, const char* folder) {
        qra_general_param_h param = nullptr;
        qra_create_general_param(&param);
        qra_param_set_general_source(param, "SOURCE_DLNA");
        qra_param_set_general_path(param, kServer);
        qra_param_set_general_sort_category(param, sort);
        qra_param_set_general_content_type(param, content);
        qra_param_set_general_folder_id(param, folder);
        EXPECT_EQ(qra_request_list_v2(param, &on_list, this, &handle_), QRA_ERROR_NONE);
        qra_destroy_general_param(param);
    }
    ~ServerList() { disconnect(); }
    ServerList(const ServerList&) = delete;
    ServerList& operator=(const ServerList&) = delete;

    void disconnect() {
        if (handle_ != nullptr) {
            qra_disconnect_v2(handle_);
            handle_ = nullptr;
        }
    }

    /// The answer, or -1 if none comes; lays out a page.
    int wait(int mask) {
        told_.wait([this] { return event_ >= 0; });
        qra_page_param_h style = nullptr;
        qra_create_page_param(&style);
        qra_param_set_page_style_mask(style, mask);
        qra_param_set_page_style_group_index(style, -1);
        qra_set_page_style_v2(handle_, style);
        qra_destroy_page_param(style);
        return event_;
    }
    /// To be looked at after wait() or disconnect().
    int event() const { return event_; }

    std::vector<std::string> texts(const char* field) const {
        std::vector<std::string> texts;
        for (int tile = 0; tile < count(); ++tile) {
            char* text = nullptr;
            qra_move_to_index_v2(handle_, tile);
            qra_get_item_value_char_v2(handle_, field, &text);
            const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
            texts.emplace_back(text != nullptr ? text : "");
        }
        return texts;
    }
    std::vector<int> numbers(const char* field) const {
        std::vector<int> numbers;
        for (int tile = 0; tile < count(); ++tile) {
            int number = -1;
            qra_move_to_index_v2(handle_, tile);
            qra_get_item_value_int_v2(handle_, field, &number);
            numbers.push_back(number);
        }
        return numbers;
    }

private:
    static bool on_list(void* self, CQRAAgentHandle*, qra_event_e event, int, const char*) {
        auto* list = static_cast<ServerList*>(self);
        list->told_.change([&] { list->event_ = event; });
        return true;
    }
    int count() const {
        int count = -1;
        qra_get_item_count_v2(handle_, &count);
        return count;
    }

    qra_agent_handler_h handle_ = nullptr;
    Told told_;
    int event_ = -1;
};

/// A client that is connected to the home network, which has one server.
class MediaServerLists : public testing::Test {
protected:
    void SetUp() override {
        if (!have_own_network()) {
            GTEST_SKIP() << "the system gives no network of its own";
        }
        ASSERT_EQ(qra_Init_dlna_service(&on_state, this), QRA_ERROR_NONE);
        ASSERT_TRUE(wait_for_state(QRA_NBL_SERVICECONNECTOR_ENABLED));
        ASSERT_EQ(qra_set_dlna_callback(&on_server, this), QRA_ERROR_NONE);
        server_.emplace();
        ASSERT_TRUE(told_.wait([this] { return here_.count(kServer) == 1; }));
    }
    void TearDown() override {
        if (state_ == QRA_NBL_SERVICECONNECTOR_ENABLED) {
            qra_unset_dlna_callback();
            EXPECT_EQ(qra_finalize_dlna_service(&on_state, this), QRA_ERROR_NONE);
            EXPECT_TRUE(wait_for_state(QRA_NBL_SERVICECONNECTOR_DISABLED));
        }
    }

    MediaServer& server() { return *server_; }

private:
    static void on_state(qra_nbl_serviceconnector_state_e state, void* self) {
        auto* test = static_cast<MediaServerLists*>(self);
        test->told_.change([&] { test->state_ = state; });
    }
    static void on_server(void* self, int event, qra_storage_h storage) {
        auto* test = static_cast<MediaServerLists*>(self);
        test->told_.change([&] {
            if (event == QRA_STORAGE_EVENT_ATTACHED) {
                test->here_.insert(qra_storage_get_id(storage));
            }
        });
    }
    bool wait_for_state(int state) {
        return told_.wait([this, state] { return state_ == state; });
    }

    Told told_;
    int state_ = -1;
    std::set<std::string> here_;
    std::optional<MediaServer> server_;
};

TEST_F(MediaServerLists, ShowAFolderOfSeveralPagesInTheServersOrder) {
    server().generate("films", "video", 450);
    ServerList list("CATEGORY-FOLDER", "CONTENT-FOLDER", "films");
    ASSERT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
    const std::vector<std::string> ids = list.texts("ID_QRA");
    ASSERT_EQ(ids.size(), 450u);
    EXPECT_EQ(ids.front(), "films-0");
    EXPECT_EQ(ids[200], "films-200");
    EXPECT_EQ(ids.back(), "films-449");
    EXPECT_THAT(list.numbers("MEDIA_TYPE"), Each(QRA_MEDIA_TYPE_VIDEO));
    EXPECT_THAT(list.texts("TITLE"), Each(Not(IsEmpty())));
}

TEST_F(MediaServerLists, ShowTheArtistsOfAServerWithTheCountsOfTheirSongs) {
    server().generate("songs", "music", 3);
    for (const auto& [song, artist] :
         {std::pair("songs-0", "Ada"), std::pair("songs-1", "Bo"), std::pair("songs-2", "Ada")}) {
        server().tell({"change", song, "artist", artist});
    }
    ServerList list("CATEGORY-ARTIST", "CONTENT-MUSIC", "/");
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
    ServerList list("CATEGORY-TITLE", "CONTENT-VIDEO", "/");
    ASSERT_EQ(list.wait(kGroupsAndMedia), QRA_EVENT_LIST_SUCCESS);
    EXPECT_THAT(list.texts("DISPLAY_NAME"),
                ElementsAre("M/Mo", "Moon.mp4", "S/Sa", "Sand.mp4", "S/Se", "Sea.mp4"));
}

TEST_F(MediaServerLists, FailForAFolderThatIsNotThere) {
    ServerList list("CATEGORY-FOLDER", "CONTENT-FOLDER", "nowhere");
    EXPECT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_DLNA_ITEM_NOT_EXIST);
}

TEST_F(MediaServerLists, EndWhileTheServerIsSilentAndAreNotAnswered) {
    server().generate("films", "video", 5);
    server().set("Browse.hold");
    ServerList silent("CATEGORY-FOLDER", "CONTENT-FOLDER", "films");
    server().await("Browse", 1);
    silent.disconnect();
    EXPECT_EQ(silent.event(), -1);
    server().clear();
    server().release();
    ServerList list("CATEGORY-FOLDER", "CONTENT-FOLDER", "films");
    EXPECT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
    EXPECT_EQ(list.texts("ID_QRA").size(), 5u);
    EXPECT_EQ(silent.event(), -1);
}

}  // namespace
