// The servers that people have at home, as Debian packages them.
#include "tests/dlna/foreign_servers.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>

#include "tests/dlna/home_network.h"

namespace {

using testing::Contains;
using testing::Ge;
using testing::SizeIs;

std::string content_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

struct ForeignServersTest : HomeNetworkTest {
    /// The only server that comes.
    nbl_provider_t first_provider() {
        const gint64 deadline = g_get_monotonic_time() + 60 * G_USEC_PER_SEC;
        while (devices().empty() && g_get_monotonic_time() < deadline) {
            nbl_devicefinder_refresh(finder);
            g_usleep(20000);
        }
        const std::vector<std::string> ids = devices();
        return ids.empty() ? nullptr : wait_for(ids[0]);
    }
    /// What the server's search finds; nothing where it does not answer yet.
    std::vector<Item> found(const std::string& keyword, int type) {
        Reply reply;
        search(provider, keyword, {type}, 200, reply);
        reply.wait();
        std::vector<Item> complete;
        for (const Item& item : reply.items) {
            if (item.uri().rfind("http", 0) == 0) {
                complete.push_back(item);
            }
        }
        return complete;
    }
    /// Servers look at their files after they have started, and may find nothing while they still do: waits
    /// until the search finds so many.
    std::vector<Item> wait_until_found(const std::string& keyword, int type, size_t count) {
        const gint64 deadline = g_get_monotonic_time() + 60 * G_USEC_PER_SEC;
        std::vector<Item> items = found(keyword, type);
        while (items.size() < count && g_get_monotonic_time() < deadline) {
            g_usleep(50000);
            std::vector<Item> again = found(keyword, type);
            items.swap(again);
        }
        return items;
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
    void expect_views(size_t expected_pictures) {
        Reply told;
        features(provider, told);
        EXPECT_EQ(told.wait(), NBL_ERROR_NONE);
        EXPECT_EQ(told.source, NBL_FEATURE_SOURCE_SERVICE);
        size_t pictures = 0;
        for (const Item& letter : children("I_N")) {
            for (const Item& letters : children(letter.id())) {
                pictures += children(letters.id()).size();
            }
        }
        EXPECT_EQ(pictures, expected_pictures);
        for (const char* view : {"I_L", "A_M", "A_A", "A_L", "A_G"}) {
            EXPECT_THAT(children(view), SizeIs(Ge(1U))) << view;
        }
    }
    void expect_download(const Item& item, const std::string& original) {
        TransferReply reply;
        const std::string path = directory.path("download");
        EXPECT_EQ(
            nbl_provider_download(item.uri().c_str(), item.text(nbl_item_get_mimetype).c_str(), path.c_str(),
                                  1000, &TransferReply::on_download, &reply, &reply.token),
            NBL_ERROR_NONE);
        EXPECT_EQ(reply.wait(), NBL_ERROR_NONE);
        EXPECT_EQ(content_of(path), content_of(original));
    }

    nbl_provider_t provider = nullptr;
};

struct ReadyMediaTest : ForeignServersTest {
    void SetUp() override {
        ForeignServersTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        server = std::make_unique<ReadyMedia>();
        provider = wait_for(ReadyMedia::kId);
        ASSERT_NE(provider, nullptr);
        // It takes no notice of the other picture's format.
        ASSERT_THAT(wait_until_found("", NBL_ITEM_TYPE_IMAGE, 2), SizeIs(2));
        ASSERT_THAT(wait_until_found("", NBL_ITEM_TYPE_MUSIC, 3), SizeIs(3));
    }
    std::unique_ptr<ReadyMedia> server;
};

TEST_F(ReadyMediaTest, IsBrowsedAndShowsItsItemsInTheOrderedViews) {
    EXPECT_THAT(titles("0"), Contains("Music"));
    expect_views(2);
}

TEST_F(ReadyMediaTest, GivesAFileAndHasItsPositionKept) {
    const std::vector<Item> photos = wait_until_found("photo", NBL_ITEM_TYPE_IMAGE, 1);
    ASSERT_THAT(photos, SizeIs(1));
    expect_download(photos[0], server->path("pictures/photo.jpg"));

    const std::vector<Item> songs = wait_until_found("", NBL_ITEM_TYPE_MUSIC, 3);
    ASSERT_THAT(songs, SizeIs(3));
    const Item& song = songs[0];
    EXPECT_EQ(set_bookmark(provider, song.get(), 42), NBL_ERROR_NONE);
    EXPECT_EQ(item_of(provider, song.id()).number(nbl_item_get_bookmark), 42);
}

TEST_F(ReadyMediaTest, TakesNoFile) {
    nbl_item_t item = nullptr;
    nbl_item_get_local_content(server->path("pictures/photo.jpg").c_str(), "image/jpeg", &item);
    TransferReply reply;
    EXPECT_EQ(nbl_provider_receive(provider, item, &TransferReply::kUpload, &reply, &reply.token),
              NBL_ERROR_NONE);
    nbl_item_free(item);
    EXPECT_EQ(reply.wait(), NBL_ERROR_NOT_SUPPORTED);
}

struct RygelTest : ForeignServersTest {
    void SetUp() override {
        ForeignServersTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) {
            return;
        }
        server = std::make_unique<Rygel>();
        provider = first_provider();
        ASSERT_NE(provider, nullptr);
        ASSERT_THAT(wait_until_found("", NBL_ITEM_TYPE_IMAGE, 3), SizeIs(3));
        ASSERT_THAT(wait_until_found("", NBL_ITEM_TYPE_MUSIC, 3), SizeIs(3));
    }
    std::unique_ptr<Rygel> server;
};

TEST_F(RygelTest, IsBrowsedAndShowsItsItemsInTheOrderedViews) {
    EXPECT_THAT(titles("0"), Contains("Files & Folders"));
    expect_views(3);
}

TEST_F(RygelTest, TakesAFileAndGivesItBack) {
    const std::string original =
        directory.write("upload.jpg", content_of(server->path("pictures/photo.jpg")));
    nbl_item_t item = nullptr;
    nbl_item_get_local_content(original.c_str(), "image/jpeg", &item);
    TransferReply reply;
    EXPECT_EQ(nbl_provider_receive(provider, item, &TransferReply::kUpload, &reply, &reply.token),
              NBL_ERROR_NONE);
    nbl_item_free(item);
    ASSERT_EQ(reply.wait(), NBL_ERROR_NONE);

    const std::vector<Item> photos = wait_until_found("upload", NBL_ITEM_TYPE_IMAGE, 1);
    ASSERT_THAT(photos, SizeIs(1));
    expect_download(photos[0], original);
    expect_views(4);
}

}  // namespace
