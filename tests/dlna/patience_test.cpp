// How long the service waits for servers that take their time.
#include <gmock/gmock.h>

#include "tests/dlna/home_network.h"
#include "tests/dlna/media_server.h"

namespace {

using testing::SizeIs;

using PatienceTest = HomeNetworkTest;

TEST_F(PatienceTest, WaitsFiveSecondsForAnAnswer) {
    MediaServer server;
    server.generate("p", "image", 3);
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    server.set("Browse.delay", "5000");
    server.set("Search.delay", "5000");
    Reply children;
    Reply found;
    browse(provider, "p", 0, 200, children);
    search(provider, "", {NBL_ITEM_TYPE_IMAGE}, 200, found);

    EXPECT_EQ(children.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(children.items, SizeIs(3));
    EXPECT_EQ(found.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(found.items, SizeIs(3));
}

TEST_F(PatienceTest, WaitsForEachOfManyPages) {
    MediaServer server;
    server.generate("p", "image", 40);
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    server.set("Browse.at-most", "10");
    server.set("Browse.delay", "4500");
    Reply children;
    browse(provider, "p", 0, 200, children);

    EXPECT_EQ(children.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(children.items, SizeIs(40));
}

TEST_F(PatienceTest, TakesSilenceBehindATotalForTheEnd) {
    MediaServer server;
    server.generate("uncounted", "image", 3);
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    server.set("Browse.hold", "", -1, 1);
    Reply children;
    browse(provider, "uncounted", 0, 200, children);

    EXPECT_EQ(children.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(children.items, SizeIs(3));
    EXPECT_EQ(server.count("Browse"), 2);
}

TEST_F(PatienceTest, SaysHowManyChildrenThereMayBeWhereTheServerTakesTooLongToShowTheEnd) {
    MediaServer server;
    server.generate("p", "image", 30);
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    server.set("Browse.child-count", "7");
    server.set("Browse.total", "0");
    server.set("Browse.delay", "6000");
    Reply folder;
    browse_item(provider, "p", folder);

    EXPECT_EQ(folder.wait(), NBL_ERROR_NONE);
    ASSERT_THAT(folder.items, SizeIs(1));
    EXPECT_EQ(folder.items[0].number(nbl_item_get_child_count), 1'000'000);
}

TEST_F(PatienceTest, EndsEverythingThatAServerNeverAnswers) {
    MediaServer server;
    server.generate("p", "image", 3);
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    for (const char* action : {"Browse", "Search", "X_GetFeatureList", "GET", "CreateObject"}) {
        server.set(std::string(action) + ".hold");
    }
    Reply children;
    Reply item;
    Reply found;
    Reply told;
    Reply view;
    TransferReply download;
    TransferReply upload;
    browse(provider, "p", 0, 200, children);
    browse_item(provider, "p", item);
    search(provider, "", {NBL_ITEM_TYPE_IMAGE}, 200, found);
    features(provider, told);
    browse(provider, "I_N", 0, 200, view);
    const std::string path = directory.path("file");
    ASSERT_EQ(nbl_provider_download(server.url("/res/p-0").c_str(), nullptr, path.c_str(), 1000,
                                    &TransferReply::on_download, &download, &download.token),
              NBL_ERROR_NONE);
    nbl_item_t content = nullptr;
    nbl_item_get_local_content(directory.write("up.jpg", "up").c_str(), "image/jpeg", &content);
    ASSERT_EQ(nbl_provider_receive(provider, content, &TransferReply::kUpload, &upload, &upload.token),
              NBL_ERROR_NONE);
    nbl_item_free(content);

    for (Reply* reply : {&children, &item, &found, &told, &view}) {
        EXPECT_EQ(reply->wait(), NBL_ERROR_TIMEOUT);
        EXPECT_EQ(reply->answers, 1);
    }
    EXPECT_EQ(download.wait(), NBL_ERROR_TIMEOUT);
    EXPECT_EQ(upload.wait(), NBL_ERROR_TIMEOUT);
}

TEST_F(PatienceTest, TakesAServerAwayWhoseAnnouncementHasRunOut) {
    MediaServer server({"--max-age=5"});
    ASSERT_NE(wait_for(), nullptr);
    server.kill();

    EXPECT_TRUE(wait_for_event(NBL_DEVICE_EVENT_REMOVED, kFirstId));
    EXPECT_THAT(devices(), SizeIs(0));
}

TEST_F(PatienceTest, BelievesAServerThatAnswersAfterItsGoodbyeWhenItHasSearchedAgain) {
    MediaServer server;
    ASSERT_NE(wait_for(), nullptr);
    ASSERT_EQ(nbl_devicefinder_refresh(finder), NBL_ERROR_NONE);
    server.await("M-SEARCH", 1);
    server.tell({"goodbye"});
    ASSERT_TRUE(wait_for_event(NBL_DEVICE_EVENT_REMOVED, kFirstId));
    const long searches = server.count("M-SEARCH");

    EXPECT_TRUE(comes_true([&] {
        server.tell({"answer"});
        return !devices().empty();
    }));
    EXPECT_GT(server.count("M-SEARCH"), searches);
}

}  // namespace
