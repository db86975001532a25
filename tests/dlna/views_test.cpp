// The ordered views: of servers that have them, of servers that can only search, of servers that can neither.
#include <gmock/gmock.h>

#include <algorithm>

#include "tests/dlna/home_network.h"
#include "tests/dlna/media_server.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::SizeIs;
using testing::UnorderedElementsAre;

constexpr int kImages = 60;
constexpr int kSongs = 40;
constexpr int kVideos = 25;

struct ViewsTest : HomeNetworkTest {
    void start(const std::vector<std::string>& options = {}) {
        server = std::make_unique<MediaServer>(options);
        server->generate("p", "image", kImages);
        server->generate("m", "music", kSongs);
        server->generate("v", "video", kVideos);
        provider = wait_for();
        ASSERT_NE(provider, nullptr);
    }
    std::vector<Item> children(const std::string& id) {
        Reply reply;
        browse(provider, id, 0, 200, reply);
        EXPECT_EQ(reply.wait(), NBL_ERROR_NONE) << id;
        return reply.items;
    }
    std::vector<std::string> titles(const std::string& id) {
        std::vector<std::string> all;
        for (const Item& item : children(id)) {
            all.push_back(item.title());
        }
        return all;
    }
    /// All items at the lowest level, whose folders lie `levels` deep.
    std::vector<std::string> lowest(const std::string& id, int levels) {
        std::vector<std::string> ids;
        for (const Item& item : children(id)) {
            if (levels == 0) {
                ids.push_back(item.id());
                continue;
            }
            EXPECT_EQ(item.number(nbl_item_get_type), NBL_ITEM_TYPE_FOLDER);
            const std::vector<std::string> inner = lowest(item.id(), levels - 1);
            EXPECT_GT(item.number(nbl_item_get_child_count), 0);
            ids.insert(ids.end(), inner.begin(), inner.end());
        }
        return ids;
    }
    std::vector<std::string> sorted_lowest(const std::string& id, int levels) {
        std::vector<std::string> ids = lowest(id, levels);
        std::sort(ids.begin(), ids.end());
        return ids;
    }
    static std::vector<std::string> all_of(const std::string& kind, int count) {
        std::vector<std::string> ids;
        for (int i = 0; i < count; ++i) {
            ids.push_back(kind + "-" + std::to_string(i));
        }
        std::sort(ids.begin(), ids.end());
        return ids;
    }

    std::unique_ptr<MediaServer> server;
    nbl_provider_t provider = nullptr;
};

TEST_F(ViewsTest, AreMadeFromTheSearchOfAServerThatHasNone) {
    start();
    Reply told;
    features(provider, told);

    ASSERT_EQ(told.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(told.source, NBL_FEATURE_SOURCE_SERVICE);
    EXPECT_THAT(told.containers,
                UnorderedElementsAre("I_N", "I_L", "V_T", "V_L", "A_M", "A_A", "A_L", "A_G"));
    EXPECT_EQ(sorted_lowest("I_N", 2), all_of("p", kImages));
    EXPECT_EQ(sorted_lowest("I_L", 2), all_of("p", kImages));
    EXPECT_EQ(sorted_lowest("V_T", 2), all_of("v", kVideos));
    EXPECT_EQ(sorted_lowest("V_L", 2), all_of("v", kVideos));
    EXPECT_EQ(sorted_lowest("A_M", 1), all_of("m", kSongs));
    EXPECT_EQ(sorted_lowest("A_A", 1), all_of("m", kSongs));
    EXPECT_EQ(sorted_lowest("A_L", 1), all_of("m", kSongs));
    EXPECT_EQ(sorted_lowest("A_G", 1), all_of("m", kSongs));
    EXPECT_THAT(titles("A_G"), ElementsAre("Genre 00", "Genre 01", "Genre 02"));
    EXPECT_THAT(titles("A_A"), SizeIs(7));
}

TEST_F(ViewsTest, CostOnePassForEachKind) {
    start();
    Reply told;
    features(provider, told);
    told.wait();
    for (const char* view : {"I_N", "I_L", "A_A", "A_L", "A_G", "A_M"}) {
        lowest(view, 1);
    }
    const long passes = server->count("Search");
    EXPECT_GT(passes, 0);
    EXPECT_LE(passes, 4);

    for (const char* view : {"I_N", "A_A"}) {
        lowest(view, 1);
    }
    EXPECT_EQ(server->count("Search"), passes);
}

TEST_F(ViewsTest, AreMadeAnewWhenTheServersContentHasChanged) {
    start();
    EXPECT_THAT(titles("A_A"), SizeIs(7));
    server->tell({"change", "m-0", "artist", "Another"});
    EXPECT_THAT(titles("A_A"), SizeIs(7));

    server->tell({"changed"});
    EXPECT_THAT(titles("A_A"), Contains("Another"));
}

TEST_F(ViewsTest, GiveAPageOfAContainerAndTheContainerItself) {
    start();
    Reply page;
    browse(provider, "A_A", 5, 10, page);
    ASSERT_EQ(page.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(page.titles(), ElementsAre("Artist 05", "Artist 06"));
    EXPECT_EQ(page.total, 7);
    Reply beyond;
    browse(provider, "A_A", 7, 10, beyond);
    EXPECT_EQ(beyond.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(beyond.items, IsEmpty());

    const Item artist = item_of(provider, page.items[0].id());
    EXPECT_EQ(artist.title(), "Artist 05");
    EXPECT_EQ(artist.number(nbl_item_get_child_count), 5);
}

TEST_F(ViewsTest, CanBeEnteredAtOnceByAClientThatKnowsTheId) {
    start();
    Reply told;
    features(provider, told);
    told.wait();
    const std::string id = children("A_A")[2].id();
    disconnect();
    connect();
    ASSERT_EQ(wait_for(), provider);

    EXPECT_EQ(item_of(provider, id).title(), "Artist 02");
    EXPECT_THAT(children(id), SizeIs(6));
}

TEST_F(ViewsTest, TellThatAContainerIsNotThere) {
    start();
    Reply reply;
    browse(provider, "A_A/nobody", 0, 200, reply);
    EXPECT_EQ(reply.wait(), NBL_ERROR_ITEM_NOT_EXIST);
    Reply item;
    browse_item(provider, "A_A/nobody", item);
    EXPECT_EQ(item.wait(), NBL_ERROR_ITEM_NOT_EXIST);
}

TEST_F(ViewsTest, AreTheServersWhereItHasThem) {
    start({"--feature-list"});
    server->tell({"views"});
    Reply told;
    features(provider, told);

    ASSERT_EQ(told.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(told.source, NBL_FEATURE_SOURCE_SERVER);
    EXPECT_THAT(told.containers, IsSupersetOf({"I_N", "I_L", "V_T", "V_L", "A_M", "A_A", "A_L", "A_G"}));
    EXPECT_THAT(lowest("A_A", 1), Contains("A_A:m-3"));
    EXPECT_EQ(server->count("Search"), 0);
}

TEST_F(ViewsTest, AreTheServersForAClientThatDidNotAskForItsFeatures) {
    start({"--feature-list"});
    server->tell({"views"});

    EXPECT_THAT(lowest("A_A", 1), Contains("A_A:m-3"));
    EXPECT_EQ(server->count("Search"), 0);
}

TEST_F(ViewsTest, AreNobodysWhereTheServerCannotSearch) {
    start({"--no-search"});
    Reply told;
    features(provider, told);

    EXPECT_EQ(told.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(told.source, NBL_FEATURE_SOURCE_NONE);
    EXPECT_THAT(told.containers, IsEmpty());
    Reply reply;
    browse(provider, "A_A", 0, 200, reply);
    EXPECT_EQ(reply.wait(), NBL_ERROR_ITEM_NOT_EXIST);
}

TEST_F(ViewsTest, AreMadeOfAllItemsHoweverFewTheServerGivesAtOnce) {
    start();
    server->set("Search.at-most", "7");
    server->set("Search.total", "0");
    EXPECT_EQ(sorted_lowest("I_N", 2), all_of("p", kImages));
}

TEST_F(ViewsTest, AreMadeOfWhatComesFromAServerThatGoesInACircle) {
    start();
    server->set("Search.at-most", "7");
    server->set("Search.same-page");
    EXPECT_THAT(lowest("I_N", 2), SizeIs(7));
    EXPECT_LE(server->count("Search"), 4);
}

TEST_F(ViewsTest, FailWithTheServersError) {
    start();
    server->set("Search.error", "720");
    Reply reply;
    browse(provider, "I_N", 0, 200, reply);
    EXPECT_EQ(reply.wait(), NBL_ERROR_REFUSED);

    server->clear();
    EXPECT_EQ(sorted_lowest("I_N", 2), all_of("p", kImages));
}

TEST_F(ViewsTest, SurviveFeaturesThatCannotBeUnderstood) {
    start({"--feature-list"});
    for (const char* text : {"", "<Features", "no XML", "<Features><Feature name=\"DCM\"/></Features>"}) {
        server->set("X_GetFeatureList.text", text);
        Reply told;
        features(provider, told);
        EXPECT_EQ(told.wait(), NBL_ERROR_NONE) << text;
        EXPECT_EQ(told.source, NBL_FEATURE_SOURCE_SERVICE) << text;
    }
}

TEST_F(ViewsTest, AnswerAllWhoWaitForTheSamePass) {
    start();
    Reply told;
    features(provider, told);
    told.wait();
    server->set("Search.hold");
    Reply artists;
    Reply albums;
    Reply cancelled;
    browse(provider, "A_A", 0, 200, artists);
    browse(provider, "A_L", 0, 200, albums);
    browse(provider, "A_G", 0, 200, cancelled);
    server->await("Search", 1);
    nbl_provider_cancel_async_action(cancelled.token);
    EXPECT_EQ(cancelled.wait(), NBL_ERROR_CANCELLED);
    server->clear();
    server->release();

    EXPECT_EQ(artists.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(albums.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(artists.items, SizeIs(7));
    EXPECT_THAT(albums.items, SizeIs(11));
    // One page, and what may lie behind it.
    EXPECT_EQ(server->count("Search"), 2);
}

TEST_F(ViewsTest, StopSearchingWhenNobodyWaitsAnyMore) {
    start();
    server->set("Search.hold");
    Reply reply;
    browse(provider, "A_A", 0, 200, reply);
    server->await("Search", 1);
    nbl_provider_cancel_async_action(reply.token);
    EXPECT_EQ(reply.wait(), NBL_ERROR_CANCELLED);

    server->clear();
    EXPECT_THAT(titles("A_A"), SizeIs(7));
}

TEST_F(ViewsTest, EndWithTheServer) {
    start();
    server->set("Search.hold");
    Reply reply;
    browse(provider, "A_A", 0, 200, reply);
    server->await("Search", 1);
    server->tell({"goodbye"});
    EXPECT_EQ(reply.wait(), NBL_ERROR_DEVICE_GONE);
}

}  // namespace
