// The library and the engine as they are delivered, on a bus that starts the engine (scripts/with-bus): what
// a client sees when the engine is killed, and afterwards.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <qra/qra_content_agent.h>
#include <signal.h>
#include <stdlib.h>

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "accounts.h"
#include "media_content.h"
#include "media_content_admin.h"
#include "platform/support/glib_ptr.h"
#include "tests/fakes/plugin_answers.h"
#include "tests/fakes/temp_dir.h"
#include "tests/fakes/web_server.h"
#include "tests/fakes/webdav_answers.h"
#include "tests/integration/engine_bus.h"
#include "tests/integration/engine_client.h"
#include "tests/integration/held_scans.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr int kSection = 500;  // more than one block of shared memory
constexpr int kPictures = 1000;

/// What callbacks of the library were told, on whatever thread.
class Events {
public:
    void add(int event, std::string text) {
        const std::lock_guard<std::mutex> lock(mutex_);
        events_.emplace_back(event, std::move(text));
    }
    /// The next one, waited for while the main context runs; -1 if none comes.
    std::pair<int, std::string> next() {
        std::pair<int, std::string> event(-1, "nothing came");
        run_until([&] {
            const std::lock_guard<std::mutex> lock(mutex_);
            const bool came = !events_.empty();
            if (came) {
                event = std::move(events_.front());
                events_.pop_front();
            }
            return came;
        });
        return event;
    }

private:
    std::mutex mutex_;
    std::deque<std::pair<int, std::string>> events_;
};

bool on_list(void* events, CQRAAgentHandle*, qra_event_e event, int, const char* text) {
    static_cast<Events*>(events)->add(event, text);
    return true;
}

bool on_item(void* events, CQRAAgentHandle*, int, qra_event_e event, const char* text) {
    static_cast<Events*>(events)->add(event, text);
    return true;
}

bool on_check(void* events, CQRADeviceCheckHandle*, qra_event_e event, const char* text) {
    static_cast<Events*>(events)->add(event, text);
    return true;
}

bool on_thumb(void* events, CQRAFolderThumbHandle*, const char* text) {
    static_cast<Events*>(events)->add(0, text);
    return true;
}

void on_device(void* events, int event, qra_storage_h storage) {
    static_cast<Events*>(events)->add(event, qra_storage_get_mountpath(storage));
}

/// A list of the account "cloud".
class CloudList {
public:
    CloudList() = default;
    ~CloudList() {
        if (handle != nullptr) {
            EXPECT_EQ(QRA_ERROR_NONE, qra_disconnect_v2(handle));
        }
    }
    CloudList(const CloudList&) = delete;
    CloudList& operator=(const CloudList&) = delete;

    qra_error_code_e request() {
        qra_general_param_h param = nullptr;
        qra_create_general_param(&param);
        qra_param_set_general_source(param, "CloudSource");
        qra_param_set_general_plugin(param, "cloud");
        qra_param_set_general_prefetch_num(param, kSection);
        qra_param_set_general_window_size(param, kSection);
        const qra_error_code_e code = qra_request_list_v2(param, on_list, &events, &handle);
        qra_destroy_general_param(param);
        return code;
    }
    qra_error_code_e lay_out() const {
        qra_page_param_h style = nullptr;
        qra_create_page_param(&style);
        qra_param_set_page_style_mask(style, 2);
        qra_param_set_page_style_group_index(style, -1);
        qra_param_set_page_style_row(style, 10);
        qra_param_set_page_style_column(style, 10);
        const qra_error_code_e code = qra_set_page_style_v2(handle, style);
        qra_destroy_page_param(style);
        return code;
    }
    int count() const {
        int count = -1;
        EXPECT_EQ(QRA_ERROR_NONE, qra_get_item_count_v2(handle, &count));
        return count;
    }
    /// The item's text, or the code in place of one.
    std::string item(int index) const {
        char* text = nullptr;
        const qra_error_code_e code = qra_get_item_v2(handle, index, &text);
        const std::unique_ptr<char, decltype(&free)> owner(text, &free);
        return code == QRA_ERROR_NONE ? text : "code " + std::to_string(code);
    }
    qra_error_code_e ask_detail() {
        qra_detail_param_h param = nullptr;
        qra_create_detail_param(&param);
        const qra_error_code_e code = qra_request_detail_v2(handle, param, &events, on_item);
        qra_destroy_detail_param(param);
        return code;
    }

    Events events;  // outlives the request
    qra_agent_handler_h handle = nullptr;
};

/// The engine that the bus starts has the test's own accounts, media database and drive. The server of the
/// account answers as the test says.
class EngineDeath : public testing::Test {
protected:
    EngineDeath() {
        set("QRA_DATA_DIR", directory_.path("data"));
        set("QRA_MEDIA_ROOT", directory_.path("media"));
        set("QRA_ACCOUNTS", directory_.path("accounts/file"));
        tell_the_bus();
        const std::string address = server_.url("/dav/");
        const account_s account = {"cloud", "webdav", address.c_str(), "", ""};
        EXPECT_EQ(ACCOUNT_OK, account_add(&account));
        std::filesystem::create_directories(directory_.path("stick/folder"));
        std::filesystem::copy(QRA_TEST_FIXTURES "/pictures/plain.jpg", directory_.path("stick/folder/a.jpg"));
        EXPECT_EQ(0, media_content_connect());
        drive_ = attach("stick");
    }
    ~EngineDeath() override { media_content_disconnect(); }

    std::string attach(const std::string& folder) const {
        char* path = nullptr;
        EXPECT_EQ(0, media_content_admin_attach(directory_.path(folder).c_str(), nullptr, &path));
        const std::unique_ptr<char, decltype(&free)> owner(path, &free);
        return path;
    }

    pid_t engine_pid() const {
        const Answer answer =
            bus_.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                      "GetConnectionUnixProcessID", g_variant_new("(s)", kEngineName));
        const glib::VariantPtr number(
            g_variant_parse(G_VARIANT_TYPE("(u)"), answer.text.c_str(), nullptr, nullptr, nullptr));
        guint32 pid = 0;
        if (number) {
            g_variant_get(number.get(), "(u)", &pid);
        }
        return static_cast<pid_t>(pid);
    }
    /// Ends the engine without any warning.
    void kill_engine() const {
        const pid_t engine = engine_pid();
        ASSERT_GT(engine, 1);
        ASSERT_EQ(0, kill(engine, SIGKILL));
        ASSERT_TRUE(run_until([this] { return !bus_.owner().error.empty(); }));
    }
    /// Waits until the engine scans a folder, and whoever asked for that has its answer.
    void wait_for_scan() const {
        ASSERT_TRUE(run_until([this] { return scanning_threads_of(engine_pid()) == 1; }));
        ASSERT_EQ(kUp, bus_.start_server());
    }

    /// The server tells how many pictures there are, but falls silent after some of them.
    void stop_in_the_middle(size_t told) {
        server_.on("/dav/", [this, told](SoupServerMessage* message) {
            if (is_question_for_items(message)) {
                fall_silent(message, 207, kWebDavHead + pictures(0, told));
                ++silent_;
            } else {
                reply(message, 207, answer_of(pictures(0, kPictures)));
            }
        });
    }
    void answer_well() {
        server_.on("/dav/", [](SoupServerMessage* message) {
            reply(message, 207, answer_of(pictures(0, kPictures)));
        });
    }
    static bool is_question_for_items(SoupServerMessage* message) {
        const SoupMessageBody* body = soup_server_message_get_request_body(message);
        const std::string_view question(body->data, static_cast<size_t>(body->length));
        return question.find("getlastmodified") != std::string_view::npos;
    }

    static void expect_whole_list() {
        CloudList list;
        ASSERT_EQ(QRA_ERROR_NONE, list.request());
        for (int section = 0; section < kPictures / kSection; ++section) {
            ASSERT_EQ(QRA_EVENT_LIST_SUCCESS, list.events.next().first);
        }
        ASSERT_EQ(QRA_ERROR_NONE, list.lay_out());
        EXPECT_EQ(kPictures, list.count());
        EXPECT_THAT(list.item(kPictures - 1), HasSubstr("999.jpg"));
    }

    const Bus bus_;
    const TempDir directory_;
    WebServer server_;
    std::string drive_;
    int silent_ = 0;

private:
    void set(const char* name, const std::string& value) {
        setenv(name, value.c_str(), 1);
        variables_.emplace_back(name, value);
    }
    void tell_the_bus() const {
        GVariantBuilder variables;
        g_variant_builder_init(&variables, G_VARIANT_TYPE("a{ss}"));
        for (const auto& [name, value] : variables_) {
            g_variant_builder_add(&variables, "{ss}", name.c_str(), value.c_str());
        }
        const Answer answer =
            bus_.call("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                      "UpdateActivationEnvironment", g_variant_new("(a{ss})", &variables));
        EXPECT_EQ("", answer.error) << answer.text;
    }

    std::vector<std::pair<std::string, std::string>> variables_;
};

TEST_F(EngineDeath, InTheMiddleOfAListLeavesAListThatAnswersAndTheNextOneIsWhole) {
    stop_in_the_middle(100);
    CloudList list;
    ASSERT_EQ(QRA_ERROR_NONE, list.request());
    ASSERT_TRUE(run_until([this] { return silent_ == 1; }));

    kill_engine();

    EXPECT_EQ(QRA_ERROR_NONE, list.lay_out());
    EXPECT_EQ(0, list.count());
    EXPECT_EQ("code 2", list.item(0));
    EXPECT_EQ(QRA_ERROR_INVALID_PARAM, qra_move_to_next_v2(list.handle));
    EXPECT_EQ(QRA_ERROR_INTERNAL, qra_cancel_request_list_v2(list.handle));
    EXPECT_EQ(QRA_ERROR_NONE, list.ask_detail());
    answer_well();
    expect_whole_list();
}

TEST_F(EngineDeath, BetweenSectionsLeavesWhatHasComeAndTheNextListIsWhole) {
    stop_in_the_middle(700);
    CloudList list;
    ASSERT_EQ(QRA_ERROR_NONE, list.request());
    ASSERT_EQ(QRA_EVENT_LIST_SUCCESS, list.events.next().first);
    ASSERT_EQ(QRA_ERROR_NONE, list.lay_out());
    ASSERT_THAT(list.item(0), HasSubstr("0.jpg"));

    kill_engine();

    EXPECT_EQ(kPictures, list.count());
    EXPECT_THAT(list.item(1), HasSubstr("1.jpg"));
    EXPECT_EQ("code 5", list.item(kSection)) << "has not arrived";
    answer_well();
    expect_whole_list();
    EXPECT_THAT(list.item(2), HasSubstr("2.jpg"));
    EXPECT_EQ("", list.item(kSection - 1))
        << "of a block that the new engine removed before it was looked at";
    EXPECT_EQ("code 5", list.item(kSection));
}

TEST_F(EngineDeath, DuringAScanLeavesACheckThatCanBeStoppedAndTheNextOneEnds) {
    Events events;
    CQRADeviceCheckHandle* check = nullptr;
    {
        const HeldScans held;
        ASSERT_EQ(QRA_ERROR_NONE, qra_check_device_v2(drive_.c_str(), on_check, &events, &check));
        wait_for_scan();

        kill_engine();

        EXPECT_EQ(QRA_ERROR_NONE, qra_stop_checking_device_v2(check));
        EXPECT_EQ(QRA_ERROR_INVALID_HANDLE, qra_stop_checking_device_v2(check));
    }
    ASSERT_EQ(QRA_ERROR_NONE, qra_check_device_v2(drive_.c_str(), on_check, &events, &check));
    const auto [event, text] = events.next();
    EXPECT_EQ(QRA_EVENT_LIST_SUCCESS, event) << text;
    EXPECT_EQ(QRA_ERROR_NONE, qra_stop_checking_device_v2(check));
}

TEST_F(EngineDeath, DuringAScanForAFolderThatIsAskedForAgainAfterACancelIsNotNoticed) {
    Events events;
    std::string folder = drive_ + "/folder";
    char content[] = "CONTENT-IMAGE";
    CQRAFolderThumbHandle* thumb = nullptr;
    {
        const HeldScans held;
        ASSERT_EQ(QRA_ERROR_NONE,
                  qra_request_folder_thumbnail_path(folder.data(), content, 4, on_thumb, &events, &thumb));
        wait_for_scan();

        kill_engine();

        EXPECT_EQ(QRA_ERROR_NONE, qra_cancel_request_folder_thumbnail_path(folder.data(), content, 4, thumb));
    }
    ASSERT_EQ(QRA_ERROR_NONE,
              qra_request_folder_thumbnail_path(folder.data(), content, 4, on_thumb, &events, &thumb));
    EXPECT_THAT(events.next().second, HasSubstr(folder + "/a.jpg"));
}

TEST_F(EngineDeath, EndsABindingThatIsMadeAnew) {
    Events events;
    ASSERT_EQ(QRA_ERROR_NONE, qra_set_usb_callback(on_device, &events));

    kill_engine();

    qra_storage_list_h list = nullptr;
    ASSERT_EQ(QRA_ERROR_NONE, qra_get_usb_list(QRA_STORAGE_DEVICE_MSC, &list));
    EXPECT_EQ(1, qra_storage_get_list_count(list));
    qra_storage_list_destory(list);
    ASSERT_EQ(QRA_ERROR_NONE, qra_set_usb_callback(on_device, &events));
    std::filesystem::create_directory(directory_.path("other"));
    const std::string other = attach("other");
    EXPECT_EQ(std::pair(static_cast<int>(QRA_STORAGE_EVENT_ATTACHED), other), events.next());
    EXPECT_EQ(QRA_ERROR_NONE, qra_unset_usb_callback());
}

}  // namespace
