#include "libqra-agent/source/folder_thumb/qra_folder_thumb_source.h"

#include "tests/unit/folder_thumb/thumb_drive.h"

namespace {

bool add_answer(void* user_data, char* text) {
    static_cast<Received*>(user_data)->add(text);
    return true;
}

class FolderThumbSource : public ThumbDrive {
protected:
    FolderThumbSource() { write("fresh/new.jpg"); }

    bool request(int count, folder_thumb_source_cb cb = add_answer) {
        return source.RequestFolderThumbPath(path("fresh").c_str(), "CONTENT-IMAGE", nullptr, count, cb,
                                             &received);
    }

    bool cancel(int count) {
        return source.CancelRequestFolderThumbPath(path("fresh").c_str(), "CONTENT-IMAGE", nullptr, count,
                                                   add_answer, &received);
    }

    /// The thread takes one job after the other: with the answer to this one all before it are done with.
    void wait_for_earlier_jobs() {
        ASSERT_TRUE(source.RequestFolderThumbPath("/nowhere\xff", "CONTENT-IMAGE", nullptr, 4, add_answer,
                                                  &received));
        ASSERT_TRUE(received.wait_for(1));
    }

    CQRAFolderThumbSource source;
};

}  // namespace

TEST_F(FolderThumbSource, ARequestWithoutACallbackIsAnsweredToNobody) {
    EXPECT_TRUE(request(4, nullptr));
    EXPECT_TRUE(request(4));
    ASSERT_TRUE(engine.wait_for("start_scanner_thumb", 1));
    finish(path("fresh"), "CONTENT-IMAGE", 4);
    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(received.all().size(), 1u);
}

TEST_F(FolderThumbSource, OnlyTheSameRequestCanBeTakenBack) {
    EXPECT_FALSE(cancel(4)) << "nothing was asked for";
    EXPECT_TRUE(request(4));
    EXPECT_FALSE(cancel(5));
    EXPECT_FALSE(source.CancelRequestFolderThumbPath(path("fresh").c_str(), "CONTENT-IMAGE", nullptr, 4,
                                                     add_answer, &log));
    EXPECT_FALSE(source.CancelRequestFolderThumbPath(path("fresh").c_str(), "CONTENT-IMAGE", nullptr, 4,
                                                     nullptr, &received));
    EXPECT_EQ(engine.count("stop_scanner_thumb"), 0);
    EXPECT_TRUE(cancel(4));
    EXPECT_EQ(stopped_scans(), (std::set{scan_arguments(path("fresh"), "CONTENT-IMAGE", 4)}));
}

TEST_F(FolderThumbSource, TheSameRequestTwiceIsAnsweredTwice) {
    EXPECT_TRUE(request(4));
    EXPECT_TRUE(request(4));
    ASSERT_TRUE(engine.wait_for("start_scanner_thumb", 1));
    finish(path("fresh"), "CONTENT-IMAGE", 4);
    EXPECT_TRUE(received.wait_for(2));
}

TEST_F(FolderThumbSource, WhatKeepsTheUserDataIsLetGoOfWithTheAnswer) {
    auto data = std::make_shared<Received>();
    ASSERT_TRUE(source.RequestFolderThumbPath(path("fresh").c_str(), "CONTENT-IMAGE", nullptr, 4, add_answer,
                                              data.get(), data));
    EXPECT_GT(data.use_count(), 1);
    EXPECT_TRUE(source.CancelAllRequestFolderThumbPath());
    wait_for_earlier_jobs();
    EXPECT_EQ(data.use_count(), 1);
}

// A cancel that comes while the database is asked finds nothing to stop.
TEST_F(FolderThumbSource, AScanOfARequestThatIsTakenBackMeanwhileDoesNotStay) {
    for (int round = 0; round < 20; ++round) {
        ASSERT_TRUE(request(4));
        ASSERT_TRUE(cancel(4));
    }
    wait_for_earlier_jobs();
    int running = 0;
    for (const FakeEngine::Call& call : engine.calls()) {
        if (call.arguments == scan_arguments(path("fresh"), "CONTENT-IMAGE", 4)) {
            running = call.method == "start_scanner_thumb" ? 1 : 0;
        }
    }
    EXPECT_EQ(running, 0) << "a scan that nobody waits for runs on";
}

TEST(FolderThumbSourceEnd, TheEndStopsTheThreadAndTheScans) {
    LogCapture log;
    FakeEngine engine;
    engine.answer("start_server", {"('QRA_SERVER_START_SUCCESS',)"});
    engine.answer("start_scanner_thumb", {"(true,)"});
    engine.answer("stop_scanner_thumb", {"()"});
    Received received;
    {
        CQRAFolderThumbSource source;
        ASSERT_TRUE(source.RequestFolderThumbPath("/p", "CONTENT-IMAGE", nullptr, 4, add_answer, &received));
        ASSERT_TRUE(engine.wait_for("start_scanner_thumb", 1));
    }
    EXPECT_EQ(engine.count("stop_scanner_thumb"), 1);
    EXPECT_TRUE(log.contains("MSC-SOURCE: Exit t_Process."));
    EXPECT_TRUE(received.all().empty());
}
