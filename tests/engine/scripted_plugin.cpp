#include "tests/engine/scripted_plugin.h"

#include <glib.h>
#include <json/json.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <utility>

#include "engine/src/json_text.h"
#include "engine/src/timer.h"

namespace {

constexpr unsigned kGatePoll = 2;  // milliseconds

std::string item_text(const Json::Value& script, const std::string& kind, int number,
                      const std::string& query) {
    Json::Value item(Json::objectValue);
    item["MEDIA_TYPE"] = kind == "folder" ? 1 : 2;
    item["ID_QRA"] = "/" + kind + "-" + std::to_string(number);
    item["TITLE"] = kind + " " + std::to_string(number);
    if (!query.empty()) {
        item["QUERY"] = query;
    }
    const size_t length = script.get("text_bytes", 0).asUInt();
    const size_t bare = engine::to_json_text(item).size() + sizeof(R"(,"PAD":"")");
    if (length > bare) {
        item["PAD"] = std::string(length - bare, 'x');
    }
    return engine::to_json_text(item);
}

class ListRun : public engine::Request {
public:
    ListRun(Json::Value script, const engine::ListQuery& query, engine::ListAnswer& answer)
        : script_(std::move(script)),
          query_(query.container + query.content_type + query.category + query.filter),
          answer_(answer) {
        timer_.start(0, [this] { start(); });
    }

private:
    int number(const char* key, int other) const { return script_.get(key, other).asInt(); }

    void start() {
        if (script_.get("announce", true).asBool()) {
            answer_.begin(static_cast<size_t>(number("announced_folders", number("folders", 0))),
                          static_cast<size_t>(number("announced_media", number("media", 0))));
        }
        go_on();
    }

    void go_on() {
        const int folders = number("folders", 0);
        const int total = folders + number("media", 0);
        for (int step = number("step", 50); step > 0 && sent_ < total; --step) {
            if (sent_ == number("silent_at", -1)) {
                return;
            }
            if (sent_ == number("fail_at", -1)) {
                answer_.fail("The script says so.");
                return;
            }
            if (sent_ == number("hold_at", -1) && access(script_["gate"].asCString(), F_OK) != 0) {
                timer_.start(kGatePoll, [this] { go_on(); });
                return;
            }
            if (sent_ < folders) {
                answer_.add_folder(item_text(script_, "folder", sent_, query_));
            } else {
                answer_.add_medium(item_text(script_, "medium", sent_ - folders, query_));
            }
            ++sent_;
        }
        if (sent_ < total || sent_ == number("silent_at", -1)) {
            timer_.start(0, [this] { go_on(); });
        } else if (sent_ == number("fail_at", -1)) {
            answer_.fail("The script says so.");
        } else {
            answer_.end();
        }
    }

    const Json::Value script_;
    const std::string query_;
    engine::ListAnswer& answer_;
    int sent_ = 0;
    engine::Timer timer_;
};

/// Answers with each of `answers` in turn, then says nothing more.
class ItemRun : public engine::Request {
public:
    ItemRun(std::vector<engine::ItemAnswer> answers, engine::ItemDone done)
        : answers_(std::move(answers)), done_(std::move(done)) {
        go_on();
    }

private:
    void go_on() {
        if (next_ < answers_.size()) {
            timer_.start(0, [this] {
                const size_t now = next_++;
                go_on();
                done_(answers_[now]);
            });
        }
    }

    const std::vector<engine::ItemAnswer> answers_;
    const engine::ItemDone done_;
    size_t next_ = 0;
    engine::Timer timer_;
};

class ScriptedSession : public engine::PluginSession {
public:
    explicit ScriptedSession(Json::Value script) : script_(std::move(script)) {}

    engine::RequestPtr list(const engine::ListQuery& query, engine::ListAnswer& answer) override {
        return std::make_unique<ListRun>(script_, query, answer);
    }

    engine::RequestPtr describe(const std::string& item_id, engine::ItemDone done) override {
        using Outcome = engine::ItemAnswer::Outcome;
        const std::string kind = script_.get("detail", "item").asString();
        if (kind == "none") {
            return nullptr;
        }
        std::vector<engine::ItemAnswer> answers;
        if (kind == "item") {
            Json::Value item(Json::objectValue);
            item["ID_QRA"] = item_id;
            item["DETAIL"] = true;
            answers = {{Outcome::kDone, engine::to_json_text(item)}};
        } else if (kind == "empty") {
            answers = {{Outcome::kEmpty, ""}};
        } else if (kind == "fail") {
            answers = {{Outcome::kFailed, "The script says so."}};
        } else if (kind == "garbage") {
            answers = {{Outcome::kDone, "[not an object"}};
        }
        return std::make_unique<ItemRun>(std::move(answers), std::move(done));
    }

    engine::RequestPtr act(const std::string& command, const std::string& parameters,
                           engine::ItemDone done) override {
        using Outcome = engine::ItemAnswer::Outcome;
        const Json::Value& acts = script_["acts"];
        if (std::find(acts.begin(), acts.end(), Json::Value(command)) == acts.end()) {
            return nullptr;
        }
        std::vector<engine::ItemAnswer> answers;
        if (command == "count") {
            answers = {{Outcome::kUpdate, "1"}, {Outcome::kUpdate, "2"}, {Outcome::kUpdate, "3"}};
        }
        if (command == "fail") {
            answers.push_back({Outcome::kFailed, "The script says so."});
        } else if (command != "silent") {
            answers.push_back({Outcome::kDone, parameters});
        }
        return std::make_unique<ItemRun>(std::move(answers), std::move(done));
    }

private:
    const Json::Value script_;
};

class ScriptedPlugin : public engine::Plugin {
public:
    const char* name() const override { return "scripted"; }

    std::unique_ptr<engine::PluginSession> open(const engine::Account& account,
                                                std::string& reason) override {
        Json::Value script = engine::parse_json_object(account.address, 8);
        if (!script.get("open", true).asBool()) {
            reason = "The script says so.";
            return nullptr;
        }
        return std::make_unique<ScriptedSession>(std::move(script));
    }
};

}  // namespace

std::unique_ptr<engine::Plugin> make_scripted_plugin() {
    return std::make_unique<ScriptedPlugin>();
}
