// The WebDAV plug-in against real servers.
#include "engine/plugins/webdav/webdav_plugin.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <utime.h>

#include <algorithm>
#include <memory>

#include "tests/fakes/plugin_answers.h"
#include "tests/fakes/webdav_servers.h"

using engine::ItemAnswer;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

namespace {

constexpr int kFolder = 1;
constexpr int kImage = 2;
constexpr int kVideo = 3;
constexpr int kMusic = 5;

OpenAccount open_webdav(const std::string& address, const std::string& user = "",
                        const std::string& password = "") {
    return OpenAccount(engine::make_webdav_plugin(), address, user, password);
}

void set_time(const std::string& file, time_t time) {
    const utimbuf times = {time, time};
    ASSERT_EQ(utime(file.c_str(), &times), 0) << file;
}

/// Each test runs against each of the servers.
template <typename Server>
class WebDav : public testing::Test {
protected:
    WebDav() {
        server_.write("a.jpg", std::string(1234, 'x'));
        server_.write("film.mp4", "v");
        server_.write("song.mp3", "s");
        server_.write("note.txt", "n");
        server_.write("Holiday 2024/K\xc3\xbcste & Meer.jpg", "k");
        server_.write("Holiday 2024/deep/under.jpg", "u");
    }

    Server server_;
};

using Servers = testing::Types<ApacheServer, RcloneServer>;

/// As part of a test's name.
struct ServerNames {
    template <typename Server>
    static std::string GetName(int) {
        return std::is_same_v<Server, ApacheServer> ? "apache" : "rclone";
    }
};
TYPED_TEST_SUITE(WebDav, Servers, ServerNames);

}  // namespace

TYPED_TEST(WebDav, ListsTheTopWithFoldersAndMedia) {
    const OpenAccount account = open_webdav(this->server_.url());

    const ListRecord list = account.list();

    EXPECT_TRUE(list.ended) << list.failure;
    EXPECT_EQ(list.broken_rules, "");
    EXPECT_THAT(list.names(), UnorderedElementsAre("Holiday 2024", "a.jpg", "film.mp4", "song.mp3"));
    EXPECT_EQ(list.folders.size(), 1U);
}

TYPED_TEST(WebDav, AnItemTellsWhatAFileTells) {
    set_time(this->server_.path("a.jpg"), 1600000000);
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.content_type = "image";

    const ListRecord list = account.list(query);

    ASSERT_EQ(list.media.size(), 1U) << list.failure;
    const Json::Value& item = list.media[0];
    EXPECT_EQ(item["MEDIA_TYPE"], kImage);
    EXPECT_EQ(item["ID_QRA"], "a.jpg");
    EXPECT_EQ(item["TITLE"], "a.jpg");
    EXPECT_EQ(item["DISPLAY_NAME"], "a.jpg");
    EXPECT_EQ(item["MIME_TYPE"], "image/jpeg");
    EXPECT_EQ(item["SIZE"].asUInt(), 1234U);
    EXPECT_EQ(item["MODIFIED_TIME"], 1600000000);
    EXPECT_EQ(item["URL"], this->server_.url() + "a.jpg");
    EXPECT_EQ(item["THUMBNAIL_PATH"], "");
}

TYPED_TEST(WebDav, AFolderIsListedByItsId) {
    const OpenAccount account = open_webdav(this->server_.url());
    const ListRecord top = account.list();
    ASSERT_EQ(top.folders.size(), 1U) << top.failure;
    EXPECT_EQ(top.folders[0]["MEDIA_TYPE"], kFolder);
    engine::ListQuery query;
    query.container = top.folders[0]["ID_QRA"].asString();

    const ListRecord list = account.list(query);

    ASSERT_THAT(list.names(), ElementsAre("deep", "K\xc3\xbcste & Meer.jpg")) << list.failure;
    EXPECT_EQ(list.media[0]["ID_QRA"], "Holiday 2024/K\xc3\xbcste & Meer.jpg");
    EXPECT_EQ(list.media[0]["URL"], this->server_.url() + "Holiday%202024/K%C3%BCste%20%26%20Meer.jpg");
    EXPECT_EQ(list.folders[0]["ID_QRA"], "Holiday 2024/deep");
}

TYPED_TEST(WebDav, AnAddressBelowTheServersTopIsTheAccountsTop) {
    const OpenAccount account = open_webdav(this->server_.url() + "Holiday%202024");

    const ListRecord list = account.list();

    ASSERT_THAT(list.names(), ElementsAre("deep", "K\xc3\xbcste & Meer.jpg")) << list.failure;
    EXPECT_EQ(list.folders[0]["ID_QRA"], "deep");
}

TYPED_TEST(WebDav, OddNamesComeBackAsTheyWere) {
    const std::vector<std::string> names = {
        "100%.jpg",        "a#b?c.jpg",    "plus+and=.jpg",  "%41.jpg",
        "semi;colon,.jpg", "'quote\".jpg", "~tilde [x].jpg", "\xe6\x97\xa5\xe6\x9c\xac.jpg"};
    for (const std::string& name : names) {
        this->server_.write("odd/" + name, name);
    }
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.container = "odd";

    const ListRecord list = account.list(query);

    EXPECT_EQ(list.media.size(), names.size()) << list.failure;
    for (const Json::Value& item : list.media) {
        const ItemAnswer detail = account.describe(item["ID_QRA"].asString());
        EXPECT_EQ(detail.outcome, ItemAnswer::Outcome::kDone) << item["ID_QRA"] << ": " << detail.text;
        const Json::Value described = json_of(detail.text);
        EXPECT_EQ(described["URL"], item["URL"]);
        EXPECT_EQ(described["ID_QRA"], item["ID_QRA"]);
    }
}

TYPED_TEST(WebDav, OnlyTheWantedMediaAreListedBesideTheFolders) {
    const OpenAccount account = open_webdav(this->server_.url());
    for (const auto& [content, name, type] :
         {std::tuple("image", "a.jpg", kImage), std::tuple("video", "film.mp4", kVideo),
          std::tuple("audio", "song.mp3", kMusic)}) {
        engine::ListQuery query;
        query.content_type = content;

        const ListRecord list = account.list(query);

        EXPECT_THAT(list.names(), ElementsAre("Holiday 2024", name)) << list.failure;
        EXPECT_EQ(list.media.at(0)["MEDIA_TYPE"], type);
    }
}

TYPED_TEST(WebDav, TheFilterWordLeavesOutWhatDoesNotHoldIt) {
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.filter = "hOLI";

    EXPECT_THAT(account.list(query).names(), ElementsAre("Holiday 2024"));
}

TYPED_TEST(WebDav, OrdersByTitleAndByDate) {
    this->server_.write("order/b.jpg", "");
    this->server_.write("order/A.jpg", "");
    this->server_.write("order/c.jpg", "");
    set_time(this->server_.path("order/A.jpg"), 2000);
    set_time(this->server_.path("order/b.jpg"), 3000);
    set_time(this->server_.path("order/c.jpg"), 1000);
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.container = "order";

    query.category = "CATEGORY-FOLDER-TITLE";
    EXPECT_THAT(account.list(query).names(), ElementsAre("A.jpg", "b.jpg", "c.jpg"));
    query.category = "CATEGORY-FOLDER-DATE";
    EXPECT_THAT(account.list(query).names(), ElementsAre("b.jpg", "A.jpg", "c.jpg"));
}

TYPED_TEST(WebDav, AnEmptyFolderIsAnEmptyList) {
    std::filesystem::create_directory(this->server_.path("empty"));
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.container = "empty";

    const ListRecord list = account.list(query);

    EXPECT_TRUE(list.ended) << list.failure;
    EXPECT_TRUE(list.begun);
    EXPECT_EQ(list.broken_rules, "");
    EXPECT_THAT(list.names(), IsEmpty());
}

TYPED_TEST(WebDav, TheListOfAMediumHoldsItAlone) {
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.container = "Holiday 2024/K\xc3\xbcste & Meer.jpg";

    const ListRecord list = account.list(query);

    EXPECT_EQ(list.broken_rules, "");
    ASSERT_THAT(list.names(), ElementsAre("K\xc3\xbcste & Meer.jpg")) << list.failure;
    EXPECT_THAT(list.folders, IsEmpty());
    EXPECT_EQ(list.media[0]["ID_QRA"], query.container);
    EXPECT_EQ(list.media[0]["URL"], this->server_.url() + "Holiday%202024/K%C3%BCste%20%26%20Meer.jpg");
}

TYPED_TEST(WebDav, AFolderThatIsCalledLikeAMediumIsListed) {
    this->server_.write("party.jpg/b.jpg", "b");
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.container = "party.jpg";

    const ListRecord list = account.list(query);

    ASSERT_THAT(list.names(), ElementsAre("b.jpg")) << list.failure;
    EXPECT_EQ(list.media[0]["ID_QRA"], "party.jpg/b.jpg");
    EXPECT_EQ(list.media[0]["URL"], this->server_.url() + "party.jpg/b.jpg");
}

TYPED_TEST(WebDav, AMissingMediumIsTold) {
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.container = "nothing.jpg";

    EXPECT_THAT(account.list(query).failure, HasSubstr("has nothing at this address"));
}

TYPED_TEST(WebDav, AMissingFolderIsTold) {
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.container = "no such folder";

    EXPECT_THAT(account.list(query).failure, HasSubstr("has nothing at this address"));
}

TYPED_TEST(WebDav, AnIdNeverLeadsOutOfTheAccount) {
    const OpenAccount account = open_webdav(this->server_.url() + "Holiday%202024/");
    for (const char* id : {"..", "../a.jpg", "deep/../../a.jpg", "%2e%2e/a.jpg", ".", "deep/%00"}) {
        engine::ListQuery query;
        query.container = id;

        EXPECT_THAT(account.list(query).failure, HasSubstr("no such folder")) << id;
        EXPECT_EQ(account.describe(id).outcome, ItemAnswer::Outcome::kFailed) << id;
    }
}

TYPED_TEST(WebDav, ADetailTellsAllThatTheServerKnows) {
    const OpenAccount account = open_webdav(this->server_.url());

    const ItemAnswer answer = account.describe("a.jpg");

    ASSERT_EQ(answer.outcome, ItemAnswer::Outcome::kDone) << answer.text;
    const Json::Value detail = json_of(answer.text);
    EXPECT_EQ(detail["DISPLAY_NAME"], "a.jpg");
    EXPECT_EQ(detail["SIZE"].asUInt(), 1234U);
    EXPECT_NE(detail["ETAG"].asString(), "");
}

TYPED_TEST(WebDav, AFolderHasADetailToo) {
    const OpenAccount account = open_webdav(this->server_.url());

    const ItemAnswer answer = account.describe("Holiday 2024/deep");

    ASSERT_EQ(answer.outcome, ItemAnswer::Outcome::kDone) << answer.text;
    const Json::Value detail = json_of(answer.text);
    EXPECT_EQ(detail["MEDIA_TYPE"], kFolder);
    EXPECT_EQ(detail["ID_QRA"], "Holiday 2024/deep");
    EXPECT_EQ(detail["URL"], this->server_.url() + "Holiday%202024/deep/");
}

TYPED_TEST(WebDav, AMissingItemIsTold) {
    const OpenAccount account = open_webdav(this->server_.url());

    const ItemAnswer answer = account.describe("nothing.jpg");

    EXPECT_EQ(answer.outcome, ItemAnswer::Outcome::kFailed);
    EXPECT_THAT(answer.text, HasSubstr("has nothing at this address"));
}

TYPED_TEST(WebDav, ALargeFolderIsToldBeforeItIsReadToItsEnd) {
    constexpr size_t kFiles = 3000;
    for (size_t i = 0; i < kFiles; ++i) {
        this->server_.write("many/" + std::to_string(i) + (i % 10 == 0 ? ".txt" : ".jpg"), "");
    }
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.container = "many";

    const ListRecord list = account.list(query);

    EXPECT_TRUE(list.ended) << list.failure;
    EXPECT_EQ(list.broken_rules, "");
    EXPECT_EQ(list.announced_media, kFiles / 10 * 9);
    EXPECT_EQ(list.media.size(), kFiles / 10 * 9);
}

TYPED_TEST(WebDav, NothingIsAnsweredAfterACancel) {
    constexpr int kFiles = 1000;
    for (int i = 0; i < kFiles; ++i) {
        this->server_.write("many/" + std::to_string(i) + ".jpg", "");
    }
    const OpenAccount account = open_webdav(this->server_.url());
    engine::ListQuery query;
    query.container = "many";
    for (const size_t enough : {0, 1, 450, 999}) {
        ListRecord cancelled;
        engine::RequestPtr request = account.session->list(query, cancelled);
        const auto cancel_at = [&] {
            if (cancelled.media.size() >= enough) {
                request.reset();
            }
        };
        cancelled.on_begin = cancelled.on_item = cancel_at;
        ASSERT_TRUE(run_until([&request] { return request == nullptr; }));
        const size_t items = cancelled.media.size();

        const ListRecord whole = account.list(query);

        EXPECT_EQ(whole.media.size(), static_cast<size_t>(kFiles)) << whole.failure;
        EXPECT_EQ(cancelled.media.size(), items);
        EXPECT_FALSE(cancelled.is_over());
    }
}

TEST(WebDavLogin, TheRightPasswordOpensTheFolder) {
    const ApacheServer server("anna", "s\xc3\xa9 cret:1");
    server.write("a.jpg", "");
    const OpenAccount account = open_webdav(server.url(), "anna", "s\xc3\xa9 cret:1");

    const ListRecord list = account.list();

    ASSERT_THAT(list.names(), ElementsAre("a.jpg")) << list.failure;
    EXPECT_EQ(list.media[0]["URL"], server.url() + "a.jpg");
}

TEST(WebDavLogin, AWrongPasswordIsTold) {
    const ApacheServer server("anna", "secret");
    const OpenAccount account = open_webdav(server.url(), "anna", "wrong");

    EXPECT_THAT(account.list().failure, HasSubstr("does not accept the user name or the password"));
    EXPECT_THAT(account.describe("a.jpg").text, HasSubstr("does not accept the user name or the password"));
}

TEST(WebDavLogin, AMissingPasswordIsTold) {
    const ApacheServer server("anna", "secret");
    const OpenAccount account = open_webdav(server.url());

    EXPECT_THAT(account.list().failure, HasSubstr("wants a user name and a password"));
}
