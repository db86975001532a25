#include "platform/nubelink/host/upload.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <thread>

#include "nubelink.h"
#include "tests/dlna/generated_bytes.h"
#include "tests/dlna/media_server.h"
#include "tests/fakes/temp_dir.h"
#include "tests/unit/platform/nubelink/worker_run.h"

namespace {

using nbl::Upload;
using nbl::UploadQuestion;
using nbl::UploadReports;

constexpr unsigned kShort = 50;  // milliseconds
const std::string kContent = generated_bytes(500'000);

/// One upload, to a server that misbehaves as the test wants.
struct UploadTest : testing::Test {
    void SetUp() override {
        if (!have_own_network()) {
            GTEST_SKIP() << "no network of its own";
        }
        server = std::make_unique<MediaServer>();
        question.directory = {"urn:schemas-upnp-org:service:ContentDirectory:1",
                              server->url("/ContentDirectory/control"), ""};
        question.title = "a <title> & more";
        question.mimetype = "image/jpeg";
        question.path = directory.write("file", kContent);
    }
    void TearDown() override { stop(); }

    void start() {
        UploadReports reports;
        reports.started = [this] { ++started; };
        reports.progress = [this](uint64_t, uint64_t total) {
            if (++progress_count == 1) {
                first_progress.set_value(total);
            }
        };
        reports.left_behind = [this](const std::string& id) { left_behind = id; };
        reports.completed = [this](int error) {
            upload.reset();
            end.set_value(error);
        };
        worker.run([&] { upload = std::make_unique<Upload>(worker.client(), question, reports); });
    }
    void stop() {
        worker.run([this] { upload.reset(); });
    }
    int wait_for_end() {
        std::future<int> coming = end.get_future();
        return comes(coming) ? coming.get() : -1;
    }
    int send() {
        start();
        return wait_for_end();
    }
    /// What has arrived under that title.
    std::string arrived(const std::string& title) {
        std::ifstream file(server->tell({"noted", "import:" + title}), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    void make_fifo() {
        question.path = directory.path("fifo");
        question.live = true;
        ASSERT_EQ(mkfifo(question.path.c_str(), 0600), 0);
    }

    TempDir directory;
    std::unique_ptr<MediaServer> server;
    UploadQuestion question;
    int started = 0;  ///< this and the next two: of the worker
    int progress_count = 0;
    std::string left_behind;
    std::promise<uint64_t> first_progress;
    std::promise<int> end;
    WorkerRun worker;
    std::unique_ptr<Upload> upload;
};

void write_whole(const std::string& path, const std::string& content) {
    const int file = open(path.c_str(), O_WRONLY | O_CLOEXEC);
    size_t done = 0;
    while (done < content.size()) {
        const ssize_t written = write(file, content.data() + done, content.size() - done);
        if (written <= 0) {
            break;
        }
        done += static_cast<size_t>(written);
    }
    close(file);
}

TEST_F(UploadTest, SendsAFileUnderItsTitle) {
    EXPECT_EQ(send(), NBL_ERROR_NONE);
    EXPECT_EQ(started, 1);
    EXPECT_EQ(left_behind, "");
    EXPECT_EQ(arrived(question.title), kContent);
}

TEST_F(UploadTest, SendsAnEmptyFile) {
    question.path = directory.write("empty", "");
    EXPECT_EQ(send(), NBL_ERROR_NONE);
    EXPECT_EQ(server->count("import"), 1);
}

TEST_F(UploadTest, SendsWhatComesThroughAFifo) {
    make_fifo();
    std::thread writer(write_whole, question.path, kContent);

    EXPECT_EQ(send(), NBL_ERROR_NONE);
    writer.join();
    EXPECT_EQ(arrived(question.title), kContent);
}

TEST_F(UploadTest, WaitsForTheWriterOfAFifo) {
    make_fifo();
    start();
    server->await("CreateObject", 1);
    std::thread writer(write_whole, question.path, kContent);

    EXPECT_EQ(wait_for_end(), NBL_ERROR_NONE);
    writer.join();
    EXPECT_EQ(arrived(question.title), kContent);
}

TEST_F(UploadTest, GivesUpOnAFifoThatNobodyWritesTo) {
    make_fifo();
    question.patience = kShort;
    EXPECT_EQ(send(), NBL_ERROR_TIMEOUT);
    EXPECT_EQ(left_behind, "upload-0");
}

TEST_F(UploadTest, SendsNoFifoAsAFileAndNoFileAsAFifo) {
    question.live = true;
    EXPECT_EQ(send(), NBL_ERROR_FILE);

    end = {};
    make_fifo();
    question.live = false;
    EXPECT_EQ(send(), NBL_ERROR_FILE);
    EXPECT_EQ(server->count("CreateObject"), 0);
}

TEST_F(UploadTest, FailsWithoutTheFile) {
    question.path = directory.path("nothing");
    EXPECT_EQ(send(), NBL_ERROR_FILE);
    EXPECT_EQ(started, 0);
}

TEST_F(UploadTest, TellsProgressWhileTheServerTakesItsTime) {
    server->set("POST.hold");
    question.interval = 10;
    start();
    std::future<uint64_t> progress = first_progress.get_future();
    ASSERT_TRUE(comes(progress));
    EXPECT_EQ(progress.get(), kContent.size());
    server->await("POST", 1);
    server->release();
    EXPECT_EQ(wait_for_end(), NBL_ERROR_NONE);
}

TEST_F(UploadTest, AsksForTheRootWhereTheServerChoosesNoPlace) {
    server->set("CreateObject.error", "710", 1);
    // This server takes nothing in its root either.
    EXPECT_EQ(send(), NBL_ERROR_REFUSED);
    EXPECT_EQ(server->count("CreateObject"), 2);
    EXPECT_EQ(started, 0);
}

TEST_F(UploadTest, FailsWhereTheServerTakesNothing) {
    server->set("CreateObject.error", "401");
    EXPECT_EQ(send(), NBL_ERROR_NOT_SUPPORTED);
    EXPECT_EQ(server->count("CreateObject"), 1);
}

TEST_F(UploadTest, FailsWhereTheServerWantsNoBytes) {
    server->set("POST.status", "500");
    EXPECT_EQ(send(), NBL_ERROR_REFUSED);
    EXPECT_EQ(started, 1);
    EXPECT_EQ(left_behind, "upload-0");
}

TEST_F(UploadTest, FailsWhereTheAnswerIsSaidToComeAgainAndAgain) {
    server->set("POST.preliminary", "100");
    EXPECT_EQ(send(), NBL_ERROR_NETWORK);
}

TEST_F(UploadTest, FailsWhereTheConnectionBreaks) {
    server->set("POST.cut");
    EXPECT_EQ(send(), NBL_ERROR_NETWORK);
    EXPECT_EQ(left_behind, "upload-0");
}

TEST_F(UploadTest, FailsWhereTheServerIsSilent) {
    server->set("POST.hold");
    question.patience = kShort;
    EXPECT_EQ(send(), NBL_ERROR_TIMEOUT);
    EXPECT_EQ(left_behind, "upload-0");
}

TEST_F(UploadTest, ThatIsEndedTellsWhatItLeavesBehindAndNothingElse) {
    server->set("POST.hold");
    start();
    server->await("POST", 1);

    stop();

    EXPECT_EQ(left_behind, "upload-0");
    std::future<int> coming = end.get_future();
    server->release();
    worker.run([] {});
    EXPECT_EQ(coming.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
}

TEST(ImportAddress, IsTheFirstOneOfTheWeb) {
    const auto didl = [](const std::string& resources) {
        return "<DIDL-Lite xmlns=\"urn:schemas-upnp-org:metadata-1-0/DIDL-Lite/\"><item id=\"1\">" +
               resources + "</item></DIDL-Lite>";
    };
    const std::string file = "<res importUri=\"file:///etc/passwd\"/>";
    const std::string web = "<res importUri=\"http://10.0.0.1/i\"/>";

    EXPECT_EQ(nbl::import_address_of(didl("<res/>" + file + web)), "http://10.0.0.1/i");
    EXPECT_EQ(nbl::import_address_of(didl(file)), "");
    EXPECT_EQ(nbl::import_address_of("<DIDL-Lite><item><res importUri="), "");
    EXPECT_EQ(nbl::import_address_of(""), "");
}

TEST(UploadDidl, DescribesTheContent) {
    UploadQuestion question;
    question.title = "<a> & \"b\"";
    question.mimetype = "video/mp4";

    const std::string didl = nbl::upload_didl(question, "0", 7);

    EXPECT_THAT(didl, testing::HasSubstr("parentID=\"0\""));
    EXPECT_THAT(didl, testing::HasSubstr("&lt;a&gt; &amp;"));
    EXPECT_THAT(didl, testing::HasSubstr("<upnp:class>object.item.videoItem</upnp:class>"));
    EXPECT_THAT(didl, testing::HasSubstr("http-get:*:video/mp4:*\" size=\"7\""));
    EXPECT_THAT(nbl::upload_didl(question, "0", -1), testing::Not(testing::HasSubstr("size=")));
}

}  // namespace
