#include "libqra-agent/source/local-source/qra_mcf_folder_cache.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <sstream>

#include "common/util/qra_log.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_engine.h"

namespace {

class CQRAMCFFolderCacheWithEngine : public ::testing::Test {
protected:
    CQRAMCFFolderCacheWithEngine() { engine.answer("start_server", {"('QRA_SERVER_START_SUCCESS',)"}); }

    /// The JSON text of the last "check_folder_path".
    Json::Value last_request() {
        GVariant* const arguments = g_variant_ref_sink(
            g_variant_parse(nullptr, engine.calls().back().arguments.c_str(), nullptr, nullptr, nullptr));
        const char* text = nullptr;
        g_variant_get(arguments, "(&s)", &text);
        text_ = text;
        std::istringstream stream(text_);
        Json::Value value;
        stream >> value;
        g_variant_unref(arguments);
        return value;
    }

    LogCapture log;
    FakeEngine engine;
    std::string text_;
    std::string id;
};

}  // namespace

TEST_F(CQRAMCFFolderCacheWithEngine, FindsTheIdThatTheEngineKnows) {
    engine.answer("check_folder_path", {"('12',)"});
    EXPECT_TRUE(CQRAMCFFolderCache::Find("/media/USBDrive1/Fotos \u00e4", "storage", id));
    EXPECT_EQ(id, "12");
    const Json::Value request = last_request();
    EXPECT_EQ(request["OPERATION_TYPE"].asInt(), 1);
    EXPECT_EQ(request["FOLDER_PATH"].asString(), "/media/USBDrive1/Fotos \u00e4/storage");
    EXPECT_EQ(request.size(), 2u);
    EXPECT_EQ(text_, request.toStyledString());
}

TEST_F(CQRAMCFFolderCacheWithEngine, AFolderThatTheEngineDoesNotKnowIsLogged) {
    engine.answer("check_folder_path", {"('',)", ""});
    id = "old";
    EXPECT_FALSE(CQRAMCFFolderCache::Find("/media/USBDrive1", "storage", id));
    EXPECT_FALSE(CQRAMCFFolderCache::Find("/media/USBDrive1", "storage", id));
    EXPECT_EQ(id, "old");
    EXPECT_EQ(log.count("MCF-Wrapper: m_FindFolderCache failed."), 2);
}

TEST_F(CQRAMCFFolderCacheWithEngine, AddsAnId) {
    engine.answer("check_folder_path", {"('AddFolderMap',)"});
    EXPECT_TRUE(CQRAMCFFolderCache::Add("/media/USBDrive1", "storage", "12"));
    const Json::Value request = last_request();
    EXPECT_EQ(request["OPERATION_TYPE"].asInt(), 0);
    EXPECT_EQ(request["FOLDER_PATH"].asString(), "/media/USBDrive1/storage");
    EXPECT_EQ(request["FOLDER_ID"].asString(), "12");
}

TEST_F(CQRAMCFFolderCacheWithEngine, NothingIsAskedWithoutAllItsTexts) {
    EXPECT_FALSE(CQRAMCFFolderCache::Find("", "storage", id));
    EXPECT_FALSE(CQRAMCFFolderCache::Find("/media", "", id));
    EXPECT_FALSE(CQRAMCFFolderCache::Add("", "storage", "1"));
    EXPECT_FALSE(CQRAMCFFolderCache::Add("/media", "", "1"));
    EXPECT_FALSE(CQRAMCFFolderCache::Add("/media", "storage", ""));
    EXPECT_TRUE(engine.calls().empty());
}

TEST_F(CQRAMCFFolderCacheWithEngine, PathsThatAreNotUtf8AreNotMixedUp) {
    EXPECT_FALSE(CQRAMCFFolderCache::Find("/media/\xff", "storage", id));
    EXPECT_FALSE(CQRAMCFFolderCache::Add("/media/\xfe", "storage", "1"));
    EXPECT_TRUE(engine.calls().empty());
}
