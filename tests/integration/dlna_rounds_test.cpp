// Lists of a media server that are asked for and left at any moment, many times, with the connection too.

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/dlna/media_server.h"
#include "tests/fakes/process_resources.h"
#include "tests/integration/server_lists.h"

namespace {

constexpr char kServer[] = "uuid:5f0c7a10-0000-4000-8000-000000000001";
constexpr int kFilms = 450;

/// Which actions the server holds back or breaks off, and so the phase that a round is in when it ends.
const std::vector<std::vector<std::string>> kPhases = {
    {},
    {"Browse.hold", "Search.hold", "GetSystemUpdateID.hold"},
    {"X_GetFeatureList.hold", "Browse.delay"},
    {"GetSearchCapabilities.hold", "Search.delay"},
    {"Browse.cut", "Search.cut"},
};

const std::vector<ServerListRequest> kLists = {
    {"CATEGORY-FOLDER", "CONTENT-FOLDER", "films"},   {"CATEGORY-ARTIST", "CONTENT-MUSIC", "/"},
    {"CATEGORY-TITLE", "CONTENT-VIDEO", "/"},         {"CATEGORY-KEYWORD-SEARCH", "CONTENT-FOLDER", "/", "a"},
    {"CATEGORY-FOLDER", "CONTENT-FOLDER", "nowhere"},
};

class ServerListRounds : public HomeNetworkClient {
protected:
    /// Each list in each phase.
    static constexpr int kOfOneEnd = 25;

    void SetUp() override {
        HomeNetworkClient::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        server_ = std::make_unique<MediaServer>();
        server_->generate("films", "video", kFilms);
        server_->generate("songs", "music", 20);
        ASSERT_TRUE(wait_for_server(kServer));
    }

    void round(int number) {
        const auto at = static_cast<size_t>(number);
        for (const std::string& fault : kPhases[at % kPhases.size()]) {
            server_->set(fault, "2");
        }
        const long seen = asked();
        ServerList list(kServer, kLists[at / kPhases.size() % kLists.size()]);
        if (number % 2 == 1) {
            wait_until_asked(seen, list);
        }
        end(list, number);
        server_->clear();
        server_->release();
    }
    void end(ServerList& list, int number) {
        // Finding the server anew takes its time: fewer rounds end so.
        const int how = number / kOfOneEnd % 20;
        if (how == 19 && number % 2 == 0) {
            leave(list);
            return;
        }
        switch (how % 4) {
            case 0:
                list.disconnect();
                break;
            case 1:
                answer_all();
                EXPECT_GE(list.wait(kFoldersAndMedia), 0);
                EXPECT_EQ(list.answers(), 1);
                break;
            case 2: {
                list.cancel();
                const int answers = list.answers();
                answer_all();
                list.disconnect();
                EXPECT_EQ(list.answers(), answers) << "a list that was cancelled is answered";
                break;
            }
            default:
                list.repeat(kLists[0]);
                answer_all();
                EXPECT_GE(list.wait(kFoldersAndMedia), 0);
                break;
        }
    }
    void leave(ServerList& list) {
        disconnect();
        list.disconnect();
        connect();
        ASSERT_TRUE(wait_for_server(kServer));
    }
    void answer_all() {
        server_->clear();
        server_->release();
    }
    void expect_a_whole_list() {
        ServerList list(kServer, kLists[0]);
        ASSERT_EQ(list.wait(kFoldersAndMedia), QRA_EVENT_LIST_SUCCESS);
        EXPECT_THAT(list.texts("ID_QRA"), testing::SizeIs(kFilms));
    }

private:
    /// How often the server was asked for something.
    long asked() {
        long count = 0;
        for (const char* action : {"Browse", "Search", "X_GetFeatureList", "GetSearchCapabilities"}) {
            count += server_->count(action);
        }
        return count;
    }
    void wait_until_asked(long seen, ServerList& list) {
        while (asked() <= seen && list.event() < 0) {
            std::this_thread::yield();
        }
    }

    std::unique_ptr<MediaServer> server_;
};

TEST_F(ServerListRounds, LeaveNothingBehind) {
    constexpr int kRounds = 1000;
    for (int i = 475; i < 525 && !HasFatalFailure(); ++i) {
        round(i);  // Of those that leave, and of others.
    }
    disconnect();
    const ProcessResources before(loop_);
    connect();
    ASSERT_TRUE(wait_for_server(kServer));
    for (int i = 0; i < kRounds && !HasFatalFailure(); ++i) {
        SCOPED_TRACE(i);
        round(i);
    }
    expect_a_whole_list();
    disconnect();
    EXPECT_TRUE(settles_at(before, loop_)) << ProcessResources(loop_) << "; at first " << before;
    connect();
}

}  // namespace
