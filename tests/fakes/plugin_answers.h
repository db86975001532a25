#ifndef QRA_TESTS_FAKES_PLUGIN_ANSWERS_H
#define QRA_TESTS_FAKES_PLUGIN_ANSWERS_H

#include <glib.h>
#include <json/json.h>

#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

#include "engine/src/plugin.h"

/// Runs the main context until the condition holds; false if it does not for that long.
inline bool run_until(const std::function<bool()>& condition, gint64 microseconds = 60 * G_USEC_PER_SEC) {
    const gint64 deadline = g_get_monotonic_time() + microseconds;
    // Wakes the context up, so that the deadline is looked at.
    const guint timer = g_timeout_add(
        200, [](void*) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    while (!condition() && g_get_monotonic_time() < deadline) {
        g_main_context_iteration(nullptr, TRUE);
    }
    g_source_remove(timer);
    return condition();
}

inline Json::Value json_of(const std::string& text) {
    Json::Value value;
    std::istringstream stream(text);
    std::string error;
    Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, &error);
    return value;
}

/// Keeps what a plug-in answers to a list request, and what it does against the rules.
class ListRecord : public engine::ListAnswer {
public:
    void begin(size_t folder_count, size_t medium_count) override {
        broken_rules += begun || ended ? "begin twice or after the end; " : "";
        begun = true;
        announced_folders = folder_count;
        announced_media = medium_count;
        call(on_begin);
    }
    void add_folder(std::string text) override {
        folders.push_back(json_of(text));
        check_item(folders.size(), announced_folders, text);
        call(on_item);
    }
    void add_medium(std::string text) override {
        media.push_back(json_of(text));
        check_item(media.size(), announced_media, text);
        call(on_item);
    }
    void end() override {
        broken_rules += !begun || ended || failed() ? "end at the wrong time; " : "";
        broken_rules +=
            folders.size() != announced_folders || media.size() != announced_media ? "not all; " : "";
        ended = true;
    }
    void fail(std::string reason) override {
        broken_rules += ended || failed() ? "failed after the end; " : "";
        broken_rules += reason.empty() ? "no reason; " : "";
        failure = reason;
    }

    bool failed() const { return !failure.empty(); }
    bool is_over() const { return ended || failed(); }
    bool wait() {
        return run_until([this] { return is_over(); });
    }
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto* group : {&folders, &media}) {
            for (const Json::Value& item : *group) {
                all.push_back(item["DISPLAY_NAME"].asString());
            }
        }
        return all;
    }

    bool begun = false;
    bool ended = false;
    std::string failure;
    size_t announced_folders = 0;
    size_t announced_media = 0;
    std::vector<Json::Value> folders;
    std::vector<Json::Value> media;
    std::string broken_rules;
    std::function<void()> on_begin;
    std::function<void()> on_item;

private:
    void check_item(size_t number, size_t announced, const std::string& text) {
        broken_rules += !begun || is_over() ? "item at the wrong time; " : "";
        broken_rules += number > announced ? "more than announced; " : "";
        broken_rules +=
            text.empty() || text.back() != '\n' || text.find('\n') != text.size() - 1 ? "no line; " : "";
    }
    static void call(const std::function<void()>& function) {
        if (function) {
            const std::function<void()> copy = function;
            copy();
        }
    }
};

/// An account opened with a plug-in.
struct OpenAccount {
    OpenAccount(std::unique_ptr<engine::Plugin> kind, const std::string& address,
                const std::string& user = "", const std::string& password = "")
        : plugin(std::move(kind)) {
        session = plugin->open({"test", plugin->name(), address, user, password}, reason);
    }

    /// Lists to the end.
    ListRecord list(const engine::ListQuery& query = {}) const {
        ListRecord record;
        const engine::RequestPtr request = session->list(query, record);
        record.broken_rules += record.begun || record.is_over() ? "answered from inside the call; " : "";
        if (!record.wait()) {
            record.failure = "no answer within a minute";
        }
        return record;
    }

    engine::ItemAnswer describe(const std::string& id) const {
        std::optional<engine::ItemAnswer> answer;
        const engine::RequestPtr request =
            session->describe(id, [&answer](const engine::ItemAnswer& given) { answer = given; });
        run_until([&answer] { return answer.has_value(); });
        return answer.value_or(
            engine::ItemAnswer{engine::ItemAnswer::Outcome::kFailed, "no answer within a minute"});
    }

    std::string reason;
    std::unique_ptr<engine::Plugin> plugin;
    std::unique_ptr<engine::PluginSession> session;
};

#endif
