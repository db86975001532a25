// Scans that clients ask the engine for, on a bus of its own (scripts/with-bus).

#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>
#include <optional>
#include <string>

#include "media_content.h"
#include "media_content_admin.h"
#include "platform/support/glib_ptr.h"
#include "tests/fakes/temp_dir.h"
#include "tests/integration/engine_client.h"
#include "tests/integration/held_scans.h"

namespace {

using glib::VariantPtr;

/// An attached drive with pictures, and clients' calls for it. The engine is a process of its own.
class EngineScan : public testing::Test {
protected:
    EngineScan() {
        setenv("QRA_DATA_DIR", data_.path().c_str(), 1);
        setenv("QRA_MEDIA_ROOT", data_.path("media").c_str(), 1);
        for (const char* folder : {"pictures", "folders", "folders/inner", "empty"}) {
            std::filesystem::create_directory(files_.path(folder));
        }
        for (const char* name : {"a.jpg", "b.jpg", "c.jpg"}) {
            std::filesystem::copy(QRA_TEST_FIXTURES "/pictures/plain.jpg",
                                  files_.path(std::string("pictures/") + name));
        }
        EXPECT_EQ(0, media_content_connect());
        char* path = nullptr;
        EXPECT_EQ(0, media_content_admin_attach(files_.path().c_str(), nullptr, &path));
        drive_ = path;
        free(path);
    }
    ~EngineScan() override {
        release_scans();
        media_content_disconnect();
    }

    std::string path(const std::string& folder = "") const {
        return folder.empty() ? drive_ : drive_ + "/" + folder;
    }

    void hold_scans() { held_.emplace(); }
    void release_scans() { held_.reset(); }

    /// The id of a scan of a folder and all below it; 0 if it was not started.
    static unsigned start_check(EngineClient& client, const std::string& path,
                                const char* kind = "check_device") {
        const glib::VariantPtr reply =
            client.call("start_scanner", g_variant_new("(ss)", kind, path.c_str()));
        gboolean started = FALSE;
        guint32 id = 0;
        if (reply) {
            g_variant_get(reply.get(), "(bu)", &started, &id);
        }
        EXPECT_EQ(started != FALSE, id != 0);
        return id;
    }

    static GVariant* thumb(const std::string& path, const char* content, unsigned count) {
        return g_variant_new("(ssuu)", path.c_str(), content, count, static_cast<guint32>(getpid()));
    }

    static bool start_thumb(EngineClient& client, const std::string& path,
                            const char* content = "CONTENT-IMAGE", unsigned count = 2) {
        const glib::VariantPtr reply = client.call("start_scanner_thumb", thumb(path, content, count));
        gboolean started = FALSE;
        if (reply) {
            g_variant_get(reply.get(), "(b)", &started);
        }
        return started != FALSE;
    }

    static void expect_scanning(const EngineProcess& engine, int threads) {
        EXPECT_TRUE(wait_until([&] { return engine.scanning_threads() == threads; }))
            << engine.scanning_threads() << " scans instead of " << threads;
    }

    /// What a folder's thumbnail shows, by the signal that tells of it.
    static Json::Value take_thumb(EngineClient& client, const std::string& path) {
        const Json::Value answer = client.take_json("qra_folder_thumb_done");
        EXPECT_EQ(path, answer["qra_folder_thumbnail_path"].asString());
        EXPECT_EQ("CONTENT-IMAGE", answer["qra_folder_thumbnail_content_type"].asString());
        EXPECT_EQ(2, answer["qra_folder_thumbnail_request_num"].asInt());
        EXPECT_EQ(0, answer["qra_folder_thumbnail_error_code"].asInt());
        return parse_json(answer["qra_folder_thumbnail_data"].asString());
    }

    static void expect_done(EngineClient& client, unsigned id, const std::string& path) {
        const glib::VariantPtr arguments = client.take_signal("qra_scanner_done");
        ASSERT_TRUE(arguments);
        guint32 scanner = 0;
        guint32 event = 99;
        guint32 number = 99;
        const char* kind = nullptr;
        const char* place = nullptr;
        const char* text = nullptr;
        g_variant_get(arguments.get(), "(uuu&s&s&s)", &scanner, &event, &number, &kind, &place, &text);
        EXPECT_EQ(id, scanner);
        EXPECT_EQ(0U, event);
        EXPECT_EQ(0U, number);
        EXPECT_STREQ("check_device", kind);
        EXPECT_EQ(path, place);
        EXPECT_EQ(path, parse_json(text)["path"].asString());
        EXPECT_EQ(0, parse_json(text)["error"].asInt());
    }

    const TempDir data_;
    const TempDir files_;
    std::string drive_;
    std::optional<HeldScans> held_;
};

TEST_F(EngineScan, ScansADriveAndTellsTheClientThatAsked) {
    EngineProcess engine;
    EngineClient client;
    EngineClient other;
    const unsigned id = start_check(client, path());
    ASSERT_NE(0U, id);
    expect_done(client, id, path());
    EXPECT_EQ(0U, other.signals_left());
    int count = 0;
    EXPECT_EQ(0, media_folder_get_folder_count_from_db(nullptr, &count));
    EXPECT_EQ(5, count) << "the drive itself and its four folders";
}

TEST_F(EngineScan, TellsWhatAFolderShows) {
    EngineProcess engine;
    EngineClient client;
    ASSERT_TRUE(start_thumb(client, path("pictures")));
    const Json::Value pictures = take_thumb(client, path("pictures"));
    EXPECT_EQ(0, pictures["qra_folder_thumbnail_error_code"].asInt());
    EXPECT_EQ(0, pictures["qra_folder_thumbnail_type"].asInt());
    ASSERT_EQ(2U, pictures["qra_folder_thumbnail_items"].size()) << "as many as were asked for";
    for (const Json::Value& item : pictures["qra_folder_thumbnail_items"]) {
        EXPECT_EQ(path("pictures"), std::filesystem::path(item.asString()).parent_path());
    }
    EXPECT_EQ("2", pictures["qra_folder_thumbnail_itemstype"][0].asString());

    ASSERT_TRUE(start_thumb(client, path("folders")));
    EXPECT_EQ(1, take_thumb(client, path("folders"))["qra_folder_thumbnail_type"].asInt());
    ASSERT_TRUE(start_thumb(client, path("empty")));
    EXPECT_EQ(2, take_thumb(client, path("empty"))["qra_folder_thumbnail_type"].asInt());
}

TEST_F(EngineScan, TellsOfAFolderWithoutMediaOfTheKind) {
    EngineProcess engine;
    EngineClient client;
    ASSERT_TRUE(start_thumb(client, path("pictures"), "CONTENT-MUSIC"));
    const Json::Value answer = client.take_json("qra_folder_thumb_done");
    const Json::Value data = parse_json(answer["qra_folder_thumbnail_data"].asString());
    EXPECT_EQ(2, data["qra_folder_thumbnail_type"].asInt());
}

TEST_F(EngineScan, RefusesWhatCannotBeScanned) {
    EngineProcess engine;
    EngineClient client;
    const TempDir elsewhere;
    for (const std::string& wrong : {path("missing"), elsewhere.path(), std::string("pictures"),
                                     std::string(), path("pictures/a.jpg")}) {
        EXPECT_EQ(0U, start_check(client, wrong)) << wrong;
        EXPECT_FALSE(start_thumb(client, wrong)) << wrong;
    }
    EXPECT_EQ(0U, start_check(client, path(), "format_device"));
    EXPECT_FALSE(start_thumb(client, path("pictures"), "CONTENT-IMAGE", 0));
    EXPECT_EQ(0U, client.signals_left());
}

TEST_F(EngineScan, TellsAllClientsOfOneScanOfOneFolder) {
    EngineProcess engine;
    EngineClient first;
    EngineClient second;
    hold_scans();
    ASSERT_TRUE(start_thumb(first, path("pictures")));
    ASSERT_TRUE(start_thumb(first, path("pictures"))) << "asked twice";
    ASSERT_TRUE(start_thumb(second, path("pictures")));
    expect_scanning(engine, 1);
    release_scans();
    EXPECT_EQ(0, take_thumb(first, path("pictures"))["qra_folder_thumbnail_type"].asInt());
    EXPECT_EQ(0, take_thumb(second, path("pictures"))["qra_folder_thumbnail_type"].asInt());
    EXPECT_EQ(0U, first.signals_left()) << "one answer to each client";
}

TEST_F(EngineScan, EndsAScanWhenTheLastClientStopsIt) {
    EngineProcess engine;
    EngineClient first;
    EngineClient second;
    hold_scans();
    const unsigned first_id = start_check(first, path());
    const unsigned second_id = start_check(second, path());
    ASSERT_NE(first_id, second_id);
    expect_scanning(engine, 1);
    first.call("stop_scanner", g_variant_new("(u)", second_id));
    first.call("stop_scanner", g_variant_new("(u)", first_id));
    EXPECT_EQ(1, engine.scanning_threads()) << "nobody stops another client's scan";
    const gint64 begin = g_get_monotonic_time();
    second.call("stop_scanner", g_variant_new("(u)", second_id));
    expect_scanning(engine, 0);
    RecordProperty("microseconds_to_the_end", std::to_string(g_get_monotonic_time() - begin));
    EXPECT_EQ(0U, first.signals_left() + second.signals_left());
}

TEST_F(EngineScan, StopsAThumbnailScanButNotTheDriveScanOfTheSameFolder) {
    EngineProcess engine;
    EngineClient client;
    hold_scans();
    const unsigned id = start_check(client, path("pictures"));
    ASSERT_TRUE(start_thumb(client, path("pictures")));
    expect_scanning(engine, 2);
    client.call("stop_scanner_thumb", thumb(path("pictures"), "CONTENT-IMAGE", 2));
    expect_scanning(engine, 1);
    release_scans();
    expect_done(client, id, path("pictures"));
    EXPECT_EQ(0U, client.signals_left());
}

TEST_F(EngineScan, ScansMoreFoldersThanRunAtOnce) {
    constexpr int kFolders = 20;
    EngineProcess engine;
    EngineClient client;
    hold_scans();
    for (int i = 0; i < kFolders; ++i) {
        const std::string folder = "folders/" + std::to_string(i);
        std::filesystem::create_directory(files_.path(folder));
        ASSERT_TRUE(start_thumb(client, path(folder)));
    }
    EXPECT_LT(engine.scanning_threads(), kFolders);
    release_scans();
    for (int i = 0; i < kFolders; ++i) {
        EXPECT_EQ(0, client.take_json("qra_folder_thumb_done")["qra_folder_thumbnail_error_code"].asInt());
    }
}

TEST_F(EngineScan, EndsTheScansOfAClientThatLeaves) {
    EngineProcess engine;
    EngineClient client;
    hold_scans();
    ASSERT_NE(0U, start_check(client, path()));
    ASSERT_TRUE(start_thumb(client, path("pictures")));
    expect_scanning(engine, 2);
    client.leave();
    expect_scanning(engine, 0);
}

TEST_F(EngineScan, KeepsTheEngineUpUntilItIsDone) {
    EngineClient client;
    hold_scans();
    const auto engine = client.use_impatient_engine(
        "start_scanner_thumb", [this] { return thumb(path("pictures"), "CONTENT-IMAGE", 2); });
    const gint64 begin = g_get_monotonic_time();
    EXPECT_TRUE(wait_until([&] { return g_get_monotonic_time() - begin > G_USEC_PER_SEC / 2; }));
    EXPECT_FALSE(engine->has_ended());
    release_scans();
    take_thumb(client, path("pictures"));
    EXPECT_TRUE(wait_until([&] { return engine->has_ended(); })) << "nobody uses it any more";
}

TEST_F(EngineScan, WorksAgainAfterTheEngineWasKilled) {
    EngineClient client;
    {
        EngineProcess engine;
        hold_scans();
        ASSERT_NE(0U, start_check(client, path()));
        engine.kill();
    }
    release_scans();
    EngineProcess engine;
    const unsigned id = start_check(client, path());
    ASSERT_NE(0U, id);
    expect_done(client, id, path());
}

TEST_F(EngineScan, EndsWellInTheMiddleOfAScan) {
    EngineProcess engine;
    EngineClient client;
    hold_scans();
    ASSERT_NE(0U, start_check(client, path()));
    // The engine's end is in its destructor, which checks how it went.
}

}  // namespace
