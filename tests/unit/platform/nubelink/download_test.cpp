#include "platform/nubelink/host/download.h"

#include <gmock/gmock.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "nubelink.h"
#include "tests/dlna/generated_bytes.h"
#include "tests/dlna/media_server.h"
#include "tests/fakes/temp_dir.h"
#include "tests/unit/platform/nubelink/worker_run.h"

namespace {

using nbl::Download;
using nbl::DownloadQuestion;
using nbl::DownloadReport;

constexpr unsigned kSize = 300'000;
constexpr unsigned kShort = 50;  // milliseconds

/// One download, from a server that misbehaves as the test wants.
struct DownloadTest : testing::Test {
    void SetUp() override {
        if (!have_own_network()) {
            GTEST_SKIP() << "no network of its own";
        }
        server = std::make_unique<MediaServer>();
        server->generate("p", "image", 1);
        server->tell({"size", "p-0", std::to_string(kSize)});
        question.uri = server->url("/res/p-0");
        question.mimetype = "image/jpeg";
        question.path = directory.path("file");
    }
    void TearDown() override { stop(); }

    void start() {
        worker.run([this] {
            download =
                std::make_unique<Download>(worker.client(), question, [this](const DownloadReport& report) {
                    if (report.state == NBL_DOWNLOAD_STATE_PROGRESS) {
                        if (report.received > 0 && ++progress_count == 2) {
                            second_progress.set_value(report);
                        }
                        return;
                    }
                    download.reset();
                    end.set_value(report);
                });
        });
    }
    void stop() {
        worker.run([this] { download.reset(); });
    }
    DownloadReport wait_for_end() {
        std::future<DownloadReport> coming = end.get_future();
        return comes(coming) ? coming.get() : DownloadReport{};
    }
    DownloadReport fetch() {
        start();
        return wait_for_end();
    }
    bool file_is_there() const { return access(question.path.c_str(), F_OK) == 0; }
    void expect_failure(int error) {
        const DownloadReport report = fetch();
        EXPECT_EQ(report.state, NBL_DOWNLOAD_STATE_FAILED);
        EXPECT_EQ(report.error, error);
        EXPECT_FALSE(file_is_there());
    }

    TempDir directory;
    std::unique_ptr<MediaServer> server;
    DownloadQuestion question;
    int progress_count = 0;  ///< of the worker; reports of bytes that have come
    std::promise<DownloadReport> second_progress;
    std::promise<DownloadReport> end;
    WorkerRun worker;
    std::unique_ptr<Download> download;
};

TEST_F(DownloadTest, FetchesAFileAsItIs) {
    const DownloadReport report = fetch();

    EXPECT_EQ(report.state, NBL_DOWNLOAD_STATE_COMPLETE);
    EXPECT_EQ(report.error, NBL_ERROR_NONE);
    EXPECT_EQ(report.received, kSize);
    EXPECT_EQ(report.total, kSize);
    EXPECT_EQ(directory.read("file"), generated_bytes(kSize));
}

TEST_F(DownloadTest, FetchesAFileWhoseSizeNobodyTells) {
    server->set("GET.no-length");

    const DownloadReport report = fetch();

    EXPECT_EQ(report.state, NBL_DOWNLOAD_STATE_COMPLETE);
    EXPECT_EQ(report.received, kSize);
    EXPECT_EQ(report.total, 0U);
    EXPECT_EQ(directory.read("file"), generated_bytes(kSize));
}

TEST_F(DownloadTest, FetchesAnEmptyFile) {
    server->tell({"size", "p-0", "0"});

    const DownloadReport report = fetch();

    EXPECT_EQ(report.state, NBL_DOWNLOAD_STATE_COMPLETE);
    EXPECT_EQ(report.total, 0U);
    EXPECT_TRUE(file_is_there());
    EXPECT_EQ(directory.read("file"), "");
}

TEST_F(DownloadTest, ReplacesAFileThatIsThere) {
    directory.write("file", std::string(2 * kSize, 'x'));

    EXPECT_EQ(fetch().state, NBL_DOWNLOAD_STATE_COMPLETE);
    EXPECT_EQ(directory.read("file"), generated_bytes(kSize));
}

TEST_F(DownloadTest, TellsProgressAgainAndAgain) {
    server->set("GET.silent", "1000");
    question.interval = 10;

    start();
    std::future<DownloadReport> progress = second_progress.get_future();
    ASSERT_TRUE(comes(progress));
    server->release();
    const DownloadReport report = wait_for_end();

    EXPECT_EQ(progress.get().error, NBL_ERROR_NONE);
    EXPECT_EQ(report.state, NBL_DOWNLOAD_STATE_COMPLETE);
    EXPECT_EQ(directory.read("file"), generated_bytes(kSize));
}

TEST_F(DownloadTest, FailsWhereTheFileIsSaidToComeAgainAndAgain) {
    server->set("GET.preliminary", "100");
    expect_failure(NBL_ERROR_NETWORK);
}

TEST_F(DownloadTest, FailsWhereTheConnectionBreaks) {
    server->set("GET.cut", "1000");
    expect_failure(NBL_ERROR_NETWORK);
}

TEST_F(DownloadTest, FailsWhereNobodyListens) {
    server->kill();
    expect_failure(NBL_ERROR_NETWORK);
}

TEST_F(DownloadTest, FailsWhereTheServerIsSilentFromTheStart) {
    server->set("GET.hold");
    question.patience = kShort;
    expect_failure(NBL_ERROR_TIMEOUT);
}

TEST_F(DownloadTest, FailsWhereTheServerFallsSilent) {
    server->set("GET.silent", "1000");
    question.patience = kShort;
    expect_failure(NBL_ERROR_TIMEOUT);
}

TEST_F(DownloadTest, FailsWhereTheItemIsGone) {
    question.uri = server->url("/res/nothing");
    expect_failure(NBL_ERROR_ITEM_NOT_EXIST);
}

TEST_F(DownloadTest, FailsWhereTheServerRefuses) {
    server->set("GET.status", "503");
    expect_failure(NBL_ERROR_REFUSED);
}

TEST_F(DownloadTest, TakesNoPageForAPicture) {
    server->set("GET.type", "text/html");
    expect_failure(NBL_ERROR_BAD_ANSWER);
}

TEST_F(DownloadTest, TakesAPageWhereThatIsWantedOrNothingIsKnown) {
    server->set("GET.type", "text/html; charset=utf-8");
    question.mimetype = "";
    EXPECT_EQ(fetch().state, NBL_DOWNLOAD_STATE_COMPLETE);
}

TEST_F(DownloadTest, FollowsARedirect) {
    server->set("GET.redirect", server->url("#"), 1);
    EXPECT_EQ(fetch().state, NBL_DOWNLOAD_STATE_COMPLETE);
    EXPECT_EQ(directory.read("file"), generated_bytes(kSize));
}

TEST_F(DownloadTest, FollowsARedirectToAPathOfTheSameServer) {
    server->set("GET.redirect", "#", 1);
    EXPECT_EQ(fetch().state, NBL_DOWNLOAD_STATE_COMPLETE);
}

TEST_F(DownloadTest, FollowsNoRedirectIntoFiles) {
    server->set("GET.redirect", "file://" + directory.write("secret", "secret"));
    expect_failure(NBL_ERROR_BAD_ANSWER);
}

TEST_F(DownloadTest, FollowsNoRedirectToOtherProtocols) {
    server->set("GET.redirect", "ftp://127.0.0.1/file");
    expect_failure(NBL_ERROR_BAD_ANSWER);
}

TEST_F(DownloadTest, GivesUpOnRedirectsInACircle) {
    server->set("GET.redirect", "#");
    expect_failure(NBL_ERROR_BAD_ANSWER);
    EXPECT_LE(server->count("GET"), 10);
}

TEST_F(DownloadTest, WritesNothingWhereItCannot) {
    question.path = directory.path("no/such/place");
    const DownloadReport report = fetch();
    EXPECT_EQ(report.error, NBL_ERROR_FILE);
    EXPECT_EQ(server->count("GET"), 0);
}

TEST_F(DownloadTest, WritesThroughNoLinkAndIntoNoFifo) {
    directory.write("target", "stays");
    ASSERT_EQ(symlink(directory.path("target").c_str(), question.path.c_str()), 0);
    EXPECT_EQ(fetch().error, NBL_ERROR_FILE);
    EXPECT_EQ(directory.read("target"), "stays");

    end = {};
    question.path = directory.path("fifo");
    ASSERT_EQ(mkfifo(question.path.c_str(), 0600), 0);
    EXPECT_EQ(fetch().error, NBL_ERROR_FILE);
    EXPECT_TRUE(file_is_there());
}

/// Lets nobody in this process write more than so many bytes to a file.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit = {bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before_);
        signal(SIGXFSZ, handler_);
    }

private:
    rlimit before_{};
    const sighandler_t handler_;
};

TEST_F(DownloadTest, FailsWhereThereIsNoRoomForTheWholeFile) {
    const FileSizeLimit limit(kSize / 2);
    expect_failure(NBL_ERROR_FILE);
}

TEST_F(DownloadTest, ReplacesNothingThatIsNoRegularFile) {
    question.path = "/dev/null";
    EXPECT_EQ(fetch().error, NBL_ERROR_FILE);
    EXPECT_TRUE(file_is_there());
}

TEST_F(DownloadTest, ThatIsEndedLeavesNoFileAndReportsNothing) {
    server->set("GET.silent", "1000");
    start();
    server->await("GET", 1);

    stop();
    EXPECT_FALSE(file_is_there());

    server->release();
    std::future<DownloadReport> coming = end.get_future();
    worker.run([] {});
    EXPECT_EQ(coming.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
}

}  // namespace
