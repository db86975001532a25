#include <qra/qra_folder_thumb.h>

#include <atomic>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include "libqra-agent/agent/src/qra_dbus_client.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "tests/unit/folder_thumb/thumb_drive.h"

namespace {

constexpr const char* kEmptyFolder =
    "{\"qra_folder_thumbnail_error_code\":0,\"qra_folder_thumbnail_type\":2}\n";
constexpr const char* kOnlyFolders =
    "{\"qra_folder_thumbnail_error_code\":0,\"qra_folder_thumbnail_type\":1}\n";
constexpr const char* kFailed = "{\"qra_folder_thumbnail_error_code\":1}\n";

bool add_answer(void* user_data, CQRAFolderThumbHandle*, const char* text) {
    static_cast<Received*>(user_data)->add(text);
    return true;
}

/// The functions of the client interface take texts that they could write to.
struct Tile {
    std::string path;
    std::string content_type = "CONTENT-IMAGE";
    int count = 4;
    CQRAFolderThumbHandle* handle = nullptr;

    qra_error_code_e request(Received& to) {
        return qra_request_folder_thumbnail_path(path.data(), content_type.data(), count, add_answer, &to,
                                                 &handle);
    }
    qra_error_code_e request(Received& to, std::string extension) {
        return qra_request_folder_thumbnail_path_v2(path.data(), content_type.data(), extension.data(), count,
                                                    add_answer, &to, &handle);
    }
    qra_error_code_e cancel() {
        return qra_cancel_request_folder_thumbnail_path(path.data(), content_type.data(), count, handle);
    }
};

class FolderThumbs : public ThumbDrive {
protected:
    FolderThumbs() { write("fresh/new.jpg"); }

    ~FolderThumbs() override { qra_cancel_all_request_folder_thumbnail_path(); }

    /// A tile of a folder that the database does not know yet.
    Tile fresh(int count = 4) const { return {path("fresh"), "CONTENT-IMAGE", count, nullptr}; }

    void wait_for_scan(int count = 1) { ASSERT_TRUE(engine.wait_for("start_scanner_thumb", count)); }

    /// Returns once the loop has taken in all signals that were sent before.
    void settle() {
        Received settled;
        CQRADBusClient::GetInstance()->SubscribeSignal(
            "qra_settled",
            [](const char*, void* user_data, char*) { static_cast<Received*>(user_data)->add(""); },
            &settled);
        std::string id;
        CQRADBusClient::GetInstance()->CheckFolderPath("check_folder_path", "{}", id);
        engine.emit("qra_settled", "('',)");
        EXPECT_TRUE(settled.wait_for(1));
        CQRADBusClient::GetInstance()->UnSubscribeSignal("qra_settled", nullptr, nullptr);
    }
};

}  // namespace

TEST_F(FolderThumbs, AScannedFolderIsAnsweredFromTheDatabaseWithoutAScan) {
    write("pictures/a.jpg");
    write("pictures/b.jpg");
    scan();
    Tile tile{path("pictures"), "CONTENT-IMAGE", 1, nullptr};
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    EXPECT_NE(tile.handle, nullptr);
    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(received.all()[0], "{\"qra_folder_thumbnail_error_code\":0,\"qra_folder_thumbnail_items\":[\"" +
                                     path("pictures/a.jpg") +
                                     "\"],\"qra_folder_thumbnail_itemstype\":[\"2\"]," +
                                     "\"qra_folder_thumbnail_type\":0}\n");
    EXPECT_EQ(engine.count("start_scanner_thumb"), 0);
    for (const char* line :
         {"start qra_request_folder_thumbnail_items...", "RequestFolderThumbItems success. Get agent[",
          "qra_request_folder_thumbnail_items eCode[0]", "m_FolderThumbRequestJobs size[1]", "pValue: [{"}) {
        EXPECT_TRUE(log.contains(line)) << line;
    }
}

TEST_F(FolderThumbs, FoldersWithoutMediaAreToldWithoutAScan) {
    write("outer/inner/empty.txt");
    scan();
    Tile outer{path("outer")};
    ASSERT_EQ(outer.request(received), QRA_ERROR_NONE);
    ASSERT_TRUE(received.wait_for(1));
    Tile inner{path("outer/inner")};
    ASSERT_EQ(inner.request(received), QRA_ERROR_NONE);
    ASSERT_TRUE(received.wait_for(2));
    EXPECT_EQ(received.all(), (std::vector<std::string>{kOnlyFolders, kEmptyFolder}));
    EXPECT_EQ(engine.count("start_scanner_thumb"), 0);
}

TEST_F(FolderThumbs, AFolderThatIsNotScannedIsScannedByTheEngineAndAnsweredByItsSignal) {
    Tile tile = fresh();
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    wait_for_scan();
    EXPECT_EQ(arguments_of("start_scanner_thumb"), scan_arguments(tile.path, "CONTENT-IMAGE", 4));
    EXPECT_TRUE(log.contains("start xxx m_ScanFolderThumb"));

    finish(tile.path, "CONTENT-IMAGE", 4, kEmptyFolder);

    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(received.all(), std::vector<std::string>{kEmptyFolder});
    EXPECT_TRUE(log.contains("Received Signal : qra_folder_thumb_done, process it ... "));
}

TEST_F(FolderThumbs, TenTilesOfOneFolderGetOneScanAndTenAnswers) {
    std::vector<Tile> tiles(10, fresh());
    for (Tile& tile : tiles) {
        ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    }
    wait_for_scan();
    finish(tiles[0].path, "CONTENT-IMAGE", 4);
    ASSERT_TRUE(received.wait_for(10));
    settle();
    EXPECT_EQ(received.all().size(), 10u);
    EXPECT_EQ(engine.count("start_scanner_thumb"), 1);
}

TEST_F(FolderThumbs, AnotherCountOrContentTypeIsAQuestionOfItsOwn) {
    Tile four = fresh(4);
    Tile five = fresh(5);
    Tile music = fresh(4);
    music.content_type = "CONTENT-MUSIC";
    Received others;
    ASSERT_EQ(four.request(received), QRA_ERROR_NONE);
    ASSERT_EQ(five.request(others), QRA_ERROR_NONE);
    ASSERT_EQ(music.request(others), QRA_ERROR_NONE);
    wait_for_scan(3);
    finish(four.path, "CONTENT-IMAGE", 4);
    ASSERT_TRUE(received.wait_for(1));
    settle();
    EXPECT_TRUE(others.all().empty());
}

TEST_F(FolderThumbs, TilesWithDifferentExtensionsShareTheFirstOnesQuestion) {
    write("pictures/a.jpg");
    write("pictures/b.odd");
    scan();
    const std::string odd = R"({"param_media_extension_image":["odd"]})";
    // The thread that answers waits for the engine until both have asked.
    Tile elsewhere{path("elsewhere")};
    Received other;
    engine.hold("start_scanner_thumb");
    ASSERT_EQ(elsewhere.request(other), QRA_ERROR_NONE);
    wait_for_scan();
    Tile first = fresh();
    Tile second = fresh();
    ASSERT_EQ(first.request(received, odd), QRA_ERROR_NONE);
    ASSERT_EQ(second.request(received), QRA_ERROR_NONE);
    engine.release();
    ASSERT_TRUE(received.wait_for(2));
    EXPECT_EQ(received.all()[0], received.all()[1]);
    EXPECT_TRUE(log.contains("extension[" + odd + "]"));
    EXPECT_EQ(log.count("path[" + first.path + "]"), 1);
}

TEST_F(FolderThumbs, ExtensionsOfTheClientDecideWhatIsAPicture) {
    write("pictures/a.jpg");
    write("pictures/b.png");
    scan();
    Tile tile{path("pictures")};
    ASSERT_EQ(tile.request(received, R"({"param_media_extension_image":["png"]})"), QRA_ERROR_NONE);
    ASSERT_TRUE(received.wait_for(1));
    EXPECT_NE(received.all()[0].find("b.png"), std::string::npos) << received.all()[0];
    EXPECT_EQ(received.all()[0].find("a.jpg"), std::string::npos) << received.all()[0];
}

TEST_F(FolderThumbs, AScanThatTheEngineRefusesIsAnsweredWithAnErrorCode) {
    engine.answer("start_scanner_thumb", {"(false,)"});
    Tile tile = fresh();
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(received.all(), std::vector<std::string>{kFailed});
    EXPECT_TRUE(log.contains("StartScanThumb() failed."));
    EXPECT_TRUE(log.contains("m_ScanFolderThumb failed..."));
}

TEST_F(FolderThumbs, APathThatIsNoUtf8IsAnsweredWithAnErrorCode) {
    Tile tile{path("fresh\xff")};
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(received.all(), std::vector<std::string>{kFailed});
    EXPECT_EQ(engine.count("start_scanner_thumb"), 0);
}

TEST_F(FolderThumbs, SignalsThatCannotBeReadAreDropped) {
    Tile tile = fresh();
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    wait_for_scan();
    const std::string good = done_text(tile.path, "CONTENT-IMAGE", 4, "{}");
    const char* const keys[] = {"qra_folder_thumbnail_error_code", "qra_folder_thumbnail_path",
                                "qra_folder_thumbnail_content_type", "qra_folder_thumbnail_request_num",
                                "qra_folder_thumbnail_data"};
    for (const char* key : keys) {
        CJsonValue missing(good);
        missing.Remove(key);
        signal(missing.ToString());
        CJsonValue other_type = missing;
        other_type.Set(key, std::vector<std::string>{"x"});
        signal(other_type.ToString());
    }
    for (const char* text : {"", "no json", "[]", "7", "{"}) {
        signal(text);
    }
    settle();
    EXPECT_TRUE(received.all().empty());
    EXPECT_EQ(log.count("Invalid Signal received from dbus server ..."), 15);
    EXPECT_EQ(log.count("] failed..."), 7);

    signal(good);
    EXPECT_TRUE(received.wait_for(1));
}

TEST_F(FolderThumbs, ASignalOfAnotherFolderIsDropped) {
    Tile tile = fresh();
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    wait_for_scan();
    finish(path("other"), "CONTENT-IMAGE", 4);
    finish(tile.path, "CONTENT-IMAGE", -4);
    finish(tile.path, "CONTENT-VIDEO", 4);
    settle();
    EXPECT_TRUE(received.all().empty());
}

TEST_F(FolderThumbs, TheLastCancelOfAFolderStopsItsScan) {
    Tile first = fresh();
    Tile second = fresh();
    ASSERT_EQ(first.request(received), QRA_ERROR_NONE);
    ASSERT_EQ(second.request(received), QRA_ERROR_NONE);
    wait_for_scan();
    EXPECT_EQ(first.cancel(), QRA_ERROR_NONE);
    EXPECT_EQ(engine.count("stop_scanner_thumb"), 0);
    EXPECT_EQ(second.cancel(), QRA_ERROR_NONE);
    EXPECT_EQ(stopped_scans(), (std::set{scan_arguments(first.path, "CONTENT-IMAGE", 4)}));
    EXPECT_TRUE(log.contains("qra_cancel_request_folder_thumbnail_items eCode[0]"));

    finish(first.path, "CONTENT-IMAGE", 4);
    settle();

    EXPECT_TRUE(received.all().empty()) << "the signal finds no job";
}

TEST_F(FolderThumbs, OneCancelledTileLeavesTheOthersTheirAnswer) {
    Received other;
    Tile first = fresh();
    Tile second = fresh();
    ASSERT_EQ(first.request(other), QRA_ERROR_NONE);
    ASSERT_EQ(second.request(received), QRA_ERROR_NONE);
    wait_for_scan();
    EXPECT_EQ(first.cancel(), QRA_ERROR_NONE);
    finish(first.path, "CONTENT-IMAGE", 4);
    ASSERT_TRUE(received.wait_for(1));
    settle();
    EXPECT_TRUE(other.all().empty());
}

TEST_F(FolderThumbs, AFolderCanBeAskedForAgainAfterItsCancel) {
    Tile tile = fresh();
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    wait_for_scan();
    ASSERT_EQ(tile.cancel(), QRA_ERROR_NONE);
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    wait_for_scan(2);
    finish(tile.path, "CONTENT-IMAGE", 4);
    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(received.all().size(), 1u);
}

TEST_F(FolderThumbs, EveryArgumentOfARequestIsRequired) {
    char path[] = "/p";
    char type[] = "CONTENT-IMAGE";
    CQRAFolderThumbHandle* handle = nullptr;
    const auto request = qra_request_folder_thumbnail_path;
    EXPECT_EQ(request(nullptr, type, 4, add_answer, &received, &handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(request(path, nullptr, 4, add_answer, &received, &handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(request(path, type, 0, add_answer, &received, &handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(request(path, type, -1, add_answer, &received, &handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(request(path, type, 4, nullptr, &received, &handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(request(path, type, 4, add_answer, nullptr, &handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(request(path, type, 4, add_answer, &received, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(log.count("] RequestFolderThumbItems param error"), 7);
    EXPECT_EQ(log.count("RequestFolderThumbItems faild.eCode[2]."), 7);
    EXPECT_EQ(CQRAHandlerMgr::GetInstance()->GetCount(), 0);
}

TEST_F(FolderThumbs, ACancelWithMissingArgumentsLeavesTheRequest) {
    Tile tile = fresh();
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    wait_for_scan();
    const auto cancel = qra_cancel_request_folder_thumbnail_path;
    char* const path = tile.path.data();
    char* const type = tile.content_type.data();
    EXPECT_EQ(cancel(path, type, 4, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log.contains("qra_cancel_request_folder_thumbnail_items handle is null"));
    EXPECT_EQ(cancel(nullptr, type, 4, tile.handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(cancel(path, nullptr, 4, tile.handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(cancel(path, type, 0, tile.handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log.count("CancelRequestFolderThumbItems param error"), 3);
    EXPECT_EQ(tile.cancel(), QRA_ERROR_NONE);
}

TEST_F(FolderThumbs, AnEndedRequestCannotBeCancelled) {
    Tile tile = fresh();
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    ASSERT_EQ(tile.cancel(), QRA_ERROR_NONE);
    EXPECT_EQ(tile.cancel(), QRA_ERROR_INVALID_HANDLE);
    int local = 0;
    tile.handle = reinterpret_cast<CQRAFolderThumbHandle*>(&local);
    EXPECT_EQ(tile.cancel(), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(log.count("] faild!!"), 2);
}

TEST_F(FolderThumbs, ACancelWithOtherValuesEndsTheCallbackAndKeepsTheHandleForItsJob) {
    Tile tile = fresh();
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    wait_for_scan();
    const std::weak_ptr<CQRAFolderThumbHandle> handle = CQRAFolderThumbHandle::FindOpen(tile.handle);
    tile.count = 5;
    EXPECT_EQ(tile.cancel(), QRA_ERROR_INTERNAL);
    EXPECT_TRUE(log.contains("CancelRequestFolderThumb param error"));
    EXPECT_FALSE(handle.expired()) << "a job still names it";
    EXPECT_EQ(engine.count("stop_scanner_thumb"), 0);

    finish(tile.path, "CONTENT-IMAGE", 4);
    settle();

    EXPECT_TRUE(received.all().empty());
    EXPECT_TRUE(log.contains("has been disconnected!"));
    EXPECT_TRUE(handle.expired());
}

TEST_F(FolderThumbs, ACancelWithOtherExtensionsFindsNoRequest) {
    Tile tile = fresh();
    ASSERT_EQ(tile.request(received, R"({"param_media_extension_image":["png"]})"), QRA_ERROR_NONE);
    EXPECT_EQ(tile.cancel(), QRA_ERROR_INTERNAL);
}

TEST_F(FolderThumbs, HandlesAreFreedWhenNothingRefersToThem) {
    Tile answered = fresh();
    Tile cancelled = fresh(5);
    Tile all = fresh(6);
    ASSERT_EQ(answered.request(received), QRA_ERROR_NONE);
    ASSERT_EQ(cancelled.request(received), QRA_ERROR_NONE);
    ASSERT_EQ(all.request(received), QRA_ERROR_NONE);
    wait_for_scan(3);
    // The thread that asks the engine lets go of a request once it has taken the next.
    Tile next = fresh(7);
    ASSERT_EQ(next.request(received), QRA_ERROR_NONE);
    wait_for_scan(4);
    std::vector<std::weak_ptr<CQRAFolderThumbHandle>> handles;
    for (const Tile* tile : {&answered, &cancelled, &all}) {
        handles.push_back(CQRAFolderThumbHandle::FindOpen(tile->handle));
        ASSERT_FALSE(handles.back().expired());
    }
    finish(answered.path, "CONTENT-IMAGE", 4);
    ASSERT_TRUE(received.wait_for(1));
    settle();
    EXPECT_TRUE(handles[0].expired());
    ASSERT_EQ(cancelled.cancel(), QRA_ERROR_NONE);
    EXPECT_TRUE(handles[1].expired());
    ASSERT_EQ(qra_cancel_all_request_folder_thumbnail_path(), QRA_ERROR_NONE);
    EXPECT_TRUE(handles[2].expired());
    EXPECT_EQ(CQRAHandlerMgr::GetInstance()->GetCount(), 0);
}

TEST_F(FolderThumbs, CancelAllWithoutRequestsSucceedsWithoutAnEngine) {
    EXPECT_EQ(qra_cancel_all_request_folder_thumbnail_path(), QRA_ERROR_NONE);
    EXPECT_EQ(engine.calls().size(), 0u);
    EXPECT_TRUE(log.contains("qra_cancel_all_request_folder_thumbnail_path eCode[0]"));
}

TEST_F(FolderThumbs, CancelAllStopsEveryScanAndLeavesOtherHandles) {
    CQRASendHandle other;
    CQRAHandlerMgr::GetInstance()->Add(other.GetValue());
    Tile first = fresh();
    Tile second = fresh(5);
    ASSERT_EQ(first.request(received), QRA_ERROR_NONE);
    ASSERT_EQ(second.request(received), QRA_ERROR_NONE);
    wait_for_scan(2);
    EXPECT_EQ(qra_cancel_all_request_folder_thumbnail_path(), QRA_ERROR_NONE);
    EXPECT_EQ(stopped_scans(), (std::set{scan_arguments(first.path, "CONTENT-IMAGE", 4),
                                         scan_arguments(first.path, "CONTENT-IMAGE", 5)}));
    EXPECT_EQ(CQRAHandlerMgr::GetInstance()->GetCount(), 1);
    EXPECT_EQ(first.cancel(), QRA_ERROR_INVALID_HANDLE);

    finish(first.path, "CONTENT-IMAGE", 4);
    finish(first.path, "CONTENT-IMAGE", 5);
    settle();

    EXPECT_TRUE(received.all().empty());
    CQRAHandlerMgr::GetInstance()->Delete(other.GetValue());
}

TEST_F(FolderThumbs, CancelAllThatCannotStopAScanEndsTheRequestsAllTheSame) {
    Tile tile = fresh();
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    wait_for_scan();
    engine.answer("stop_scanner_thumb", {""});
    EXPECT_EQ(qra_cancel_all_request_folder_thumbnail_path(), QRA_ERROR_INTERNAL);
    EXPECT_TRUE(log.contains("StopScanThumb() failed."));
    EXPECT_TRUE(log.contains("CancelAllRequestFolderThumbPath failed"));
    EXPECT_EQ(tile.cancel(), QRA_ERROR_INVALID_HANDLE);
}

TEST_F(FolderThumbs, TheSourceCallsNoHandleThatItDoesNotKnow) {
    char text[] = "{}";
    EXPECT_FALSE(CQRAFolderThumbHandle::cb_request_folder_thumb_path(nullptr, text));
    EXPECT_TRUE(log.contains("pThis == NULL"));
    CQRAFolderThumbHandle handle;
    EXPECT_FALSE(CQRAFolderThumbHandle::cb_request_folder_thumb_path(&handle, text));
    EXPECT_TRUE(log.contains("] has been disconnected!"));
    CQRAHandlerMgr::GetInstance()->Add(handle.GetValue());
    EXPECT_FALSE(CQRAFolderThumbHandle::cb_request_folder_thumb_path(&handle, text));
    EXPECT_TRUE(log.contains("m_cb or m_pUserData is NULL"));
    CQRAHandlerMgr::GetInstance()->Delete(handle.GetValue());
}

// A client frees what its callback uses as soon as the cancel has returned; the sanitizers see a late answer.
TEST_F(FolderThumbs, NoAnswerReachesAClientAfterItsCancelInFiveHundredRounds) {
    std::atomic<bool> done{false};
    Tile first = fresh();
    ASSERT_EQ(first.request(received), QRA_ERROR_NONE);
    wait_for_scan();
    std::thread sender([&] {
        while (!done) {
            finish(first.path, "CONTENT-IMAGE", 4);
        }
    });
    int answered = 0;
    for (int round = 0; round < 500; ++round) {
        auto client = std::make_unique<Received>();
        Tile tile = fresh();
        ASSERT_EQ(tile.request(*client), QRA_ERROR_NONE);
        if (round % 10 == 0) {
            ASSERT_TRUE(client->wait_for(1));
        }
        const qra_error_code_e code = tile.cancel();
        const size_t answers = client->all().size();
        answered += static_cast<int>(answers);
        EXPECT_LE(answers, 1u);
        // INTERNAL: an answer came while the cancel was under way, before or after the client was let go of.
        EXPECT_TRUE(code == QRA_ERROR_INTERNAL || answers == (code == QRA_ERROR_NONE ? 0U : 1U))
            << code << ", " << answers;
    }
    done = true;
    sender.join();
    EXPECT_GE(answered, 50);
}

TEST(FolderThumbsWithoutABus, AFolderThatIsNotScannedIsAnsweredWithAnErrorCode) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/socket", 1);
    LogCapture log;
    Received received;
    Tile tile{"/nowhere"};
    ASSERT_EQ(tile.request(received), QRA_ERROR_NONE);
    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(received.all(), std::vector<std::string>{kFailed});
    EXPECT_TRUE(log.contains("] ConnectDbus() failed."));
}
