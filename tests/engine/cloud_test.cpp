// The engine as it is delivered, with a real WebDAV server behind it: from the account that the user's tool
// stored to the texts in shared memory.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include <cstdlib>
#include <memory>

#include "accounts.h"
#include "tests/engine/protocol_client.h"
#include "tests/fakes/webdav_servers.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class Cloud : public testing::Test {
protected:
    Cloud() {
        setenv("QRA_ACCOUNTS", data_.path("own/accounts").c_str(), 1);
        setenv("QRA_LOG", "off", 1);
    }
    ~Cloud() override {
        if (engine_ != nullptr) {
            g_subprocess_send_signal(engine_, SIGTERM);
            EXPECT_TRUE(g_subprocess_wait_check(engine_, nullptr, nullptr)) << "the engine ended badly";
            g_object_unref(engine_);
        }
    }

    void start_engine() {
        GError* error = nullptr;
        engine_ = g_subprocess_new(G_SUBPROCESS_FLAGS_NONE, &error, QRA_TEST_REAL_ENGINE, nullptr);
        ASSERT_NE(engine_, nullptr) << error->message;
        ASSERT_TRUE(client_.wait_for_engine());
    }

    static void add_account(const char* name, const std::string& address, const char* user = "",
                            const char* password = "") {
        const account_s account = {name, "webdav", address.c_str(), user, password};
        ASSERT_EQ(account_add(&account), ACCOUNT_OK);
    }

    /// What a section of a completion holds, by a field of its items.
    static std::vector<std::string> values(const Json::Value& completion, const char* field) {
        std::vector<std::string> found;
        for (const std::string& text : read_section(list_name(completion)).texts) {
            found.push_back(json_of(text)[field].asString());
        }
        return found;
    }

    Json::Value list(uint32_t id, const std::string& folder) {
        Json::Value request = list_request(id, 0);
        if (!folder.empty()) {
            request["qra_source_user_data"] = folder;
        }
        client_.get_range(id, 0, 199, request);
        return client_.next();
    }

    DataDirectory data_;
    ApacheServer server_{"anna", "secret"};
    ProtocolClient client_;
    GSubprocess* engine_ = nullptr;
};

}  // namespace

TEST_F(Cloud, AFolderIsBrowsedFromItsTopIntoASubFolderAndDescribed) {
    server_.write("Holiday/beach.jpg", "1234");
    server_.write("song.mp3", "");
    add_account("cloud", server_.url(), "anna", "secret");
    start_engine();
    const uint32_t id = client_.connect("cloud");
    ASSERT_NE(id, 0U) << client_.error();

    const Json::Value top = list(id, "");
    ASSERT_EQ(top["qra_event_type"], 0) << top;
    EXPECT_THAT(values(top, "DISPLAY_NAME"), ElementsAre("Holiday", "song.mp3"));
    EXPECT_THAT(read_section(list_name(top)).groups, ElementsAre(std::pair(0, 0), std::pair(1, 1)));
    const std::string folder = values(top, "ID_QRA").at(0);
    const Json::Value inside = list(id, folder);
    ASSERT_EQ(inside["qra_event_type"], 0) << inside;
    EXPECT_THAT(values(inside, "ID_QRA"), ElementsAre("Holiday/beach.jpg"));
    Json::Value request(Json::objectValue);
    request["qra_source_user_data"] = "Holiday/beach.jpg";
    request["qra_detail_request_times"] = "d";
    client_.call("request_detail", g_variant_new("(us)", id, request.toStyledString().c_str()));
    const Json::Value answer = client_.next();
    const Json::Value detail = json_of(answer["qra_result_detail_json"].asString());
    EXPECT_EQ(detail["SIZE"].asUInt(), 4U) << answer;
    EXPECT_EQ(detail["MIME_TYPE"], "image/jpeg");
}

TEST_F(Cloud, ALargeFolderComesInSections) {
    for (int i = 0; i < 1000; ++i) {
        server_.write(std::to_string(i) + ".jpg", "");
    }
    add_account("cloud", server_.url(), "anna", "secret");
    start_engine();
    const uint32_t id = client_.connect("cloud");

    size_t items = 0;
    for (int section = 0; section < 5; ++section) {
        const auto first = static_cast<uint32_t>(section * 200);
        const Json::Value answer = client_.ask_range(id, first, first + 199, section);
        ASSERT_EQ(answer["qra_event_type"], 0) << answer;
        const SectionTexts texts = read_section(list_name(answer));
        EXPECT_EQ(texts.total, 1000);
        items += texts.texts.size();
    }

    EXPECT_EQ(items, 1000U);
}

TEST_F(Cloud, AnEngineThatHasNothingToDoIsSmall) {
    server_.write("song.mp3", "");
    add_account("cloud", server_.url(), "anna", "secret");
    start_engine();
    client_.call("get_usb_storages", g_variant_new("(u)", 0));
    const uint32_t id = client_.connect("cloud");
    ASSERT_EQ(list(id, "")["qra_event_type"], 0);
    client_.disconnect(id);
    client_.next();

    const size_t dirty = private_dirty_kb_of(std::atoi(g_subprocess_get_identifier(engine_)));

    RecordProperty("private_dirty_kb", static_cast<int>(dirty));
    if (kIsMemoryOurs) {
        EXPECT_LT(dirty, 12 * 1024u);
    }
}

TEST_F(Cloud, AWrongPasswordIsAFailedList) {
    add_account("cloud", server_.url(), "anna", "wrong");
    start_engine();
    const uint32_t id = client_.connect("cloud");

    EXPECT_EQ(list(id, "")["qra_event_type"], 2);
}

TEST_F(Cloud, AnEmptyFolderIsAnEmptyList) {
    add_account("cloud", server_.url(), "anna", "secret");
    start_engine();
    const uint32_t id = client_.connect("cloud");

    EXPECT_EQ(list(id, "")["qra_event_type"], 1);
}

TEST_F(Cloud, AnAccountThatNobodyAddedIsRefusedByName) {
    start_engine();

    EXPECT_EQ(client_.connect("cloud"), 0U);
    EXPECT_THAT(client_.error(), HasSubstr("no account cloud"));
}
