// Downloads, uploads and bookmarks as a client asks for them.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <thread>

#include "tests/dlna/generated_bytes.h"
#include "tests/dlna/home_network.h"
#include "tests/dlna/media_server.h"

namespace {

constexpr int kSize = 200'000;

std::string content_of(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool is_there(const std::string& path) {
    return access(path.c_str(), F_OK) == 0;
}

struct TransfersTest : HomeNetworkTest {
    void start(const std::vector<std::string>& options = {}) {
        server = std::make_unique<MediaServer>(options);
        server->generate("v", "video", 3);
        server->tell({"size", "v-0", std::to_string(kSize)});
        provider = wait_for();
        ASSERT_NE(provider, nullptr);
    }
    void download(const std::string& uri, const std::string& path, TransferReply& reply) {
        EXPECT_EQ(nbl_provider_download(uri.c_str(), "video/mp4", path.c_str(), 1000,
                                        &TransferReply::on_download, &reply, &reply.token),
                  NBL_ERROR_NONE);
    }
    void upload(nbl_item_t item, TransferReply& reply) {
        EXPECT_EQ(nbl_provider_receive(provider, item, &TransferReply::kUpload, &reply, &reply.token),
                  NBL_ERROR_NONE);
        nbl_item_free(item);
    }
    nbl_item_t local_content(const std::string& content) {
        nbl_item_t item = nullptr;
        EXPECT_EQ(
            nbl_item_get_local_content(directory.write("clip.mp4", content).c_str(), "video/mp4", &item),
            NBL_ERROR_NONE);
        return item;
    }
    std::string arrived(const std::string& title) {
        return content_of(server->tell({"noted", "import:" + title}));
    }

    std::unique_ptr<MediaServer> server;
    nbl_provider_t provider = nullptr;
    const std::string path = directory.path("download");
};

TEST_F(TransfersTest, WritesAFileForOneDownloadAtATime) {
    start();
    server->set("GET.hold");
    TransferReply first;
    TransferReply second;
    download(server->url("/res/v-0"), path, first);
    server->await("GET", 1);
    EXPECT_EQ(nbl_provider_download(server->url("/res/v-0").c_str(), "video/mp4",
                                    (directory.path() + "/./download").c_str(), 1000,
                                    &TransferReply::on_download, &second, &second.token),
              NBL_ERROR_FILE);
    server->clear();
    server->release();

    EXPECT_EQ(first.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(content_of(path), generated_bytes(kSize));
    TransferReply again;
    download(server->url("/res/v-0"), path, again);
    EXPECT_EQ(again.wait(), NBL_ERROR_NONE);
}

TEST_F(TransfersTest, WritesTheFileOfACancelledDownloadAnew) {
    start();
    server->set("GET.hold", "", 1);
    TransferReply first;
    TransferReply second;
    download(server->url("/res/v-0"), path, first);
    server->await("GET", 1);
    EXPECT_EQ(nbl_provider_cancel_download(first.token), NBL_ERROR_NONE);
    download(server->url("/res/v-0"), path, second);

    EXPECT_EQ(first.wait(), NBL_ERROR_CANCELLED);
    EXPECT_EQ(second.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(content_of(path), generated_bytes(kSize));
}

TEST_F(TransfersTest, DownloadAnItemsFile) {
    start();
    TransferReply reply;
    download(item_of(provider, "v-0").uri(), path, reply);

    EXPECT_EQ(reply.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(reply.state, NBL_DOWNLOAD_STATE_COMPLETE);
    EXPECT_EQ(reply.received, static_cast<unsigned long long>(kSize));
    EXPECT_EQ(reply.total, static_cast<unsigned long long>(kSize));
    EXPECT_EQ(content_of(path), generated_bytes(kSize));
}

TEST_F(TransfersTest, CancelADownloadAndItsFileIsGone) {
    start();
    server->set("GET.silent", "1000");
    TransferReply reply;
    download(server->url("/res/v-0"), path, reply);
    server->await("GET", 1);
    EXPECT_EQ(nbl_provider_cancel_download(reply.token), NBL_ERROR_NONE);

    EXPECT_EQ(reply.wait(), NBL_ERROR_CANCELLED);
    EXPECT_EQ(reply.state, NBL_DOWNLOAD_STATE_CANCELLED);
    EXPECT_FALSE(is_there(path));
    EXPECT_EQ(nbl_provider_cancel_download(reply.token), NBL_ERROR_NONE);
    EXPECT_EQ(nbl_provider_cancel_download(reply.token + 1000), NBL_ERROR_INVALID_PARAMETER);
}

TEST_F(TransfersTest, EndADownloadWithTheService) {
    start();
    server->set("GET.silent", "1000");
    TransferReply reply;
    download(server->url("/res/v-0"), path, reply);
    server->await("GET", 1);
    disconnect();

    EXPECT_EQ(reply.wait(), NBL_ERROR_NOT_CONNECTED);
    EXPECT_EQ(reply.state, NBL_DOWNLOAD_STATE_FAILED);
    EXPECT_FALSE(is_there(path));
}

TEST_F(TransfersTest, RefuseAddressesThatAreNotOfTheWeb) {
    start();
    int token = 0;
    for (const char* uri :
         {"", "file:///etc/passwd", "ftp://127.0.0.1/x", "/etc/passwd", "http://", "nonsense"}) {
        EXPECT_EQ(nbl_provider_download(uri, nullptr, path.c_str(), 1000, &TransferReply::on_download,
                                        nullptr, &token),
                  NBL_ERROR_INVALID_PARAMETER)
            << uri;
    }
    const std::string good = server->url("/res/v-0");
    EXPECT_EQ(
        nbl_provider_download(good.c_str(), nullptr, "", 1000, &TransferReply::on_download, nullptr, &token),
        NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_provider_download(good.c_str(), nullptr, path.c_str(), -1, &TransferReply::on_download,
                                    nullptr, &token),
              NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(nbl_provider_download(good.c_str(), nullptr, path.c_str(), 1000, nullptr, nullptr, &token),
              NBL_ERROR_INVALID_PARAMETER);
    EXPECT_FALSE(is_there(path));
}

TEST_F(TransfersTest, DownloadSeveralFilesAtOnce) {
    start();
    constexpr int kCount = 12;
    std::vector<std::unique_ptr<TransferReply>> replies;
    for (int i = 0; i < kCount; ++i) {
        replies.push_back(std::make_unique<TransferReply>());
        download(server->url("/res/v-0"), path + std::to_string(i), *replies.back());
    }
    for (int i = 0; i < kCount; ++i) {
        EXPECT_EQ(replies[static_cast<size_t>(i)]->wait(), NBL_ERROR_NONE);
        EXPECT_EQ(content_of(path + std::to_string(i)).size(), static_cast<size_t>(kSize));
    }
}

TEST_F(TransfersTest, UploadAFile) {
    start();
    const std::string content = generated_bytes(kSize);
    TransferReply reply;
    upload(local_content(content), reply);

    EXPECT_EQ(reply.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(reply.started, 1);
    EXPECT_EQ(arrived("clip"), content);
    // And it can be fetched back.
    TransferReply back;
    download(item_of(provider, "upload-0").uri(), path, back);
    EXPECT_EQ(back.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(content_of(path), content);
}

TEST_F(TransfersTest, UploadWhatComesThroughAFifoUnderTheFilesName) {
    start();
    const std::string content = generated_bytes(kSize);
    const std::string fifo = directory.path("fifo");
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    nbl_item_t item = nullptr;
    ASSERT_EQ(nbl_item_get_live_content("DSC_0042.JPG", "image/jpg", fifo.c_str(), &item), NBL_ERROR_NONE);
    TransferReply reply;
    upload(item, reply);
    std::thread writer([&] { std::ofstream(fifo, std::ios::binary) << content; });

    EXPECT_EQ(reply.wait(), NBL_ERROR_NONE);
    writer.join();
    EXPECT_EQ(arrived("DSC_0042"), content);
}

TEST_F(TransfersTest, TakeAwayWhatAServerMadeForAFileThatDidNotArrive) {
    start();
    server->set("POST.hold");
    TransferReply reply;
    upload(local_content("some content"), reply);
    server->await("POST", 1);
    EXPECT_EQ(nbl_provider_cancel_receive(provider, reply.token, nullptr, nullptr), NBL_ERROR_NONE);

    EXPECT_EQ(reply.wait(), NBL_ERROR_CANCELLED);
    server->await("DestroyObject", 1);
    Reply gone;
    browse_item(provider, "upload-0", gone);
    EXPECT_EQ(gone.wait(), NBL_ERROR_ITEM_NOT_EXIST);
}

TEST_F(TransfersTest, TellOfACancelAfterTheUploadsEnd) {
    start();
    server->set("POST.hold");
    TransferReply reply;
    upload(local_content("some content"), reply);
    server->await("POST", 1);
    struct Told {
        TransferReply* reply;
        Signal signal;
        int ends = -1;
        bool done = false;
    } told{&reply, {}, -1, false};
    const auto on_cancelled = [](int, int, void* data) {
        auto* seen = static_cast<Told*>(data);
        seen->signal.change([&] {
            seen->ends = seen->reply->ends;
            seen->done = true;
        });
    };
    EXPECT_EQ(nbl_provider_cancel_receive(provider, reply.token, on_cancelled, &told), NBL_ERROR_NONE);

    EXPECT_TRUE(told.signal.wait([&] { return told.done; }));
    EXPECT_EQ(told.ends, 1);
    EXPECT_EQ(nbl_provider_cancel_receive(provider, reply.token + 1000, on_cancelled, &told),
              NBL_ERROR_INVALID_PARAMETER);
}

TEST_F(TransfersTest, TellThatAServerTakesNoFiles) {
    start({"--no-upload"});
    TransferReply reply;
    upload(local_content("some content"), reply);

    EXPECT_EQ(reply.wait(), NBL_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(reply.started, 0);
}

TEST_F(TransfersTest, TellThatTheServerOfAnUploadHasGone) {
    start();
    server->set("POST.hold");
    TransferReply reply;
    upload(local_content("some content"), reply);
    server->await("POST", 1);
    server->tell({"goodbye"});
    EXPECT_EQ(reply.wait(), NBL_ERROR_DEVICE_GONE);

    TransferReply later;
    upload(local_content("some content"), later);
    EXPECT_EQ(later.wait(), NBL_ERROR_DEVICE_GONE);
}

TEST_F(TransfersTest, SendNothingThatIsNoContentToBeSent) {
    start();
    const Item item = item_of(provider, "v-0");
    int id = 0;
    EXPECT_EQ(nbl_provider_receive(provider, item.get(), &TransferReply::kUpload, nullptr, &id),
              NBL_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(id, -1);
}

struct BookmarkTest : TransfersTest {
    int bookmark() { return item_of(provider, "v-1").number(nbl_item_get_bookmark); }
    int set(int seconds) { return set_bookmark(provider, item_of(provider, "v-1").get(), seconds); }
};

TEST_F(BookmarkTest, IsKeptHereWhereTheServerKeepsNone) {
    start();
    EXPECT_EQ(bookmark(), 0);
    EXPECT_EQ(set(75), NBL_ERROR_NONE);

    EXPECT_EQ(bookmark(), 75);
    EXPECT_EQ(item_of(provider, "v-2").number(nbl_item_get_bookmark), 0);
    EXPECT_EQ(server->tell({"position", "v-1"}), "-1");
    EXPECT_EQ(set(0), NBL_ERROR_NONE);
    EXPECT_EQ(bookmark(), 0);
}

TEST_F(BookmarkTest, IsKeptByTheServerThatAnnouncesAnActionForIt) {
    start({"--bookmark=action"});
    EXPECT_EQ(set(75), NBL_ERROR_NONE);

    EXPECT_EQ(server->tell({"position", "v-1"}), "75");
    EXPECT_EQ(bookmark(), 75);
}

TEST_F(BookmarkTest, IsKeptByTheServerThatLetsItsPositionsBeUpdated) {
    start({"--bookmark=position"});
    EXPECT_EQ(set(3675), NBL_ERROR_NONE);
    EXPECT_EQ(server->tell({"position", "v-1"}), "3675");
    EXPECT_EQ(bookmark(), 3675);

    EXPECT_EQ(set(12), NBL_ERROR_NONE);
    EXPECT_EQ(server->tell({"position", "v-1"}), "12");
    EXPECT_EQ(bookmark(), 12);
}

TEST_F(BookmarkTest, IsKeptHereWhereTheServerRefusesAfterAll) {
    start({"--bookmark=action"});
    server->set("X_SetBookmark.error", "501");
    EXPECT_EQ(set(75), NBL_ERROR_NONE);
    EXPECT_EQ(bookmark(), 75);
}

TEST_F(BookmarkTest, IsRefusedForAnItemThatTheServerNoLongerHas) {
    start({"--bookmark=action"});
    const Item item = item_of(provider, "v-1");
    server->tell({"remove", "v-1"});
    EXPECT_EQ(set_bookmark(provider, item.get(), 75), NBL_ERROR_ITEM_NOT_EXIST);
}

TEST_F(BookmarkTest, IsKeptForAServerThatHasGone) {
    start();
    const Item item = item_of(provider, "v-1");
    server->tell({"goodbye"});
    ASSERT_TRUE(wait_until_gone());
    EXPECT_EQ(set_bookmark(provider, item.get(), 75), NBL_ERROR_NONE);

    server->tell({"hello"});
    wait_for();
    EXPECT_EQ(bookmark(), 75);
}

TEST_F(BookmarkTest, IsKeptWhereTheServerGoesBeforeItAnswers) {
    start({"--bookmark=action"});
    const Item item = item_of(provider, "v-1");
    server->set("X_SetBookmark.hold");
    EXPECT_EQ(nbl_provider_set_bookmark(provider, item.get(), 75, nullptr, 65535), NBL_ERROR_NONE);
    server->await("X_SetBookmark", 1);
    server->tell({"goodbye"});
    ASSERT_TRUE(wait_for_event(NBL_DEVICE_EVENT_REMOVED, kFirstId));

    EXPECT_EQ(item.number(nbl_item_get_bookmark), 75);
}

TEST_F(BookmarkTest, IsKeptWhereTheServiceEndsBeforeTheServerAnswers) {
    start({"--bookmark=action"});
    const Item item = item_of(provider, "v-1");
    server->set("X_SetBookmark.hold");
    EXPECT_EQ(nbl_provider_set_bookmark(provider, item.get(), 75, nullptr, 65535), NBL_ERROR_NONE);
    server->await("X_SetBookmark", 1);
    disconnect();

    EXPECT_EQ(item.number(nbl_item_get_bookmark), 75);
    connect();
}

TEST_F(BookmarkTest, TakesNoPositionBeforeTheStart) {
    start();
    EXPECT_EQ(nbl_provider_set_bookmark(provider, item_of(provider, "v-1").get(), -1, nullptr, 65535),
              NBL_ERROR_INVALID_PARAMETER);
}

}  // namespace
