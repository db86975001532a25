#include "libqra-agent/source/local-source/qra_mcf_folder_cache.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <cstdlib>
#include <memory>
#include <sstream>
#include <vector>

#include "common/util/qra_log.h"
#include "libqra-agent/source/local-source/qra_mcf_wrapper.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_engine.h"
#include "tests/unit/local_source/sample_drive.h"

namespace {

namespace faults = media_content_faults;

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

namespace {

/// Keeps the address of the launcher's bus, which a sample drive takes away.
class LaunchersBus {
protected:
    const std::string bus_ = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
};

/// Lists a folder of a drive that was never scanned, with an engine that can be asked for folders.
class CQRAMCFWrapperWithEngine : private LaunchersBus, public SampleDrive {
protected:
    CQRAMCFWrapperWithEngine() {
        setenv("DBUS_SYSTEM_BUS_ADDRESS", bus_.c_str(), 1);
        engine = std::make_unique<FakeEngine>();
        engine->answer("start_server", {"('QRA_SERVER_START_SUCCESS',)"});
        engine->answer("check_folder_path", {"('AddFolderMap',)"});
        write("show/one.jpg");
        write("show/deep/two.jpg");
        EXPECT_TRUE(wrapper.ConnectMCF());
    }

    /// The names of the rows.
    std::vector<std::string> list() {
        _SMCFParam param;
        param.strRootPath = path("show");
        param.strContentType = "CONTENT-IMAGE";
        param.strCategory = "CATEGORY-FOLDER-TITLE";
        names_.clear();
        faults::reset();
        EXPECT_TRUE(wrapper.InitParam(&param));
        EXPECT_TRUE(wrapper.RequestMCFMedia(nullptr, add_name, this));
        return names_;
    }

    /// The id of the folder that the engine was told last.
    std::string told_id() const {
        const std::string arguments = engine->calls().back().arguments;
        const std::string key = "\"FOLDER_ID\" : \"";
        const size_t begin = arguments.find(key) + key.size();
        return arguments.substr(begin, arguments.find('"', begin) - begin);
    }

    std::unique_ptr<FakeEngine> engine;
    CQRAMCFWrapper wrapper;

private:
    static bool add_name(const std::string&, CMedia& media, void* test) {
        static_cast<CQRAMCFWrapperWithEngine*>(test)->names_.push_back(media.GetName());
        return true;
    }

    std::vector<std::string> names_;
};

}  // namespace

TEST_F(CQRAMCFWrapperWithEngine, AFolderThatTheEngineKnowsIsNeitherScannedNorSearched) {
    const std::vector<std::string> names = {"deep", "one.jpg"};
    EXPECT_EQ(list(), names);
    EXPECT_EQ(faults::count("media_content_scan_folder_v2"), 1);
    EXPECT_EQ(faults::count("media_folder_foreach_folder_from_db"), 2);
    EXPECT_EQ(engine->count("check_folder_path"), 1);

    engine->answer("check_folder_path", {"('" + told_id() + "',)"});

    EXPECT_EQ(list(), names);
    EXPECT_EQ(faults::count("media_content_scan_folder_v2"), 0);
    EXPECT_EQ(faults::count("media_storage_get_scan_status"), 0);
    EXPECT_EQ(faults::count("media_folder_foreach_folder_from_db"), 1);
}
