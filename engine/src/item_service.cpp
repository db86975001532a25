#include "engine/src/item_service.h"

#include <json/json.h>
#include <platform_paths.h>
#include <qra/qra_types.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "engine/src/engine_log.h"
#include "engine/src/json_text.h"

namespace engine {

namespace {

constexpr char kLike[] = "qra_setlike";
constexpr char kComment[] = "qra_uploadcomment";
constexpr int kDeepestItem = 16;

/// Below the directory that the service manager gave the engine for this; else with the platform's data.
std::string store_path() {
    const char* own = std::getenv("STATE_DIRECTORY");
    return std::string(own ? own : platform_path_get(PLATFORM_PATH_DATA)) + "/likes-and-comments.db";
}

/// What the client hears of an act that the engine kept.
std::string kept_text(const ActRequest& request) {
    Json::Value value(Json::objectValue);
    value["qra_command"] = request.command;
    value["ID_QRA"] = request.item_id;
    if (request.command == kLike) {
        value["LIKE"] = request.like;
    } else {
        value["COMMENT"] = request.comment;
    }
    return to_json_text(value);
}

Event event_of(bool is_act, ItemAnswer::Outcome outcome) {
    switch (outcome) {
        case ItemAnswer::Outcome::kDone:
            return is_act ? Event::kActDone : Event::kDetailReady;
        case ItemAnswer::Outcome::kEmpty:
            return is_act ? Event::kActDone : Event::kDetailEmpty;
        case ItemAnswer::Outcome::kUpdate:
            return Event::kActUpdate;
        case ItemAnswer::Outcome::kFailed:
            break;
    }
    return is_act ? Event::kActFailed : Event::kDetailFailed;
}

}  // namespace

ItemService::ItemService(const EngineParts& parts, ConnectionTable& connections, const ListService& lists)
    : parts_(parts), connections_(connections), lists_(lists), store_(store_path()) {
    parts.methods.serve("request_detail", this, &ItemService::request_detail);
    parts.methods.serve("request_cancel_detail", this, &ItemService::cancel_detail);
    parts.methods.serve("request_act", this, &ItemService::request_act);
    parts.methods.serve("stop_act", this, &ItemService::stop_act);
    connections.subscribe([this](const Connection& connection, ConnectionTable::End) {
        for (auto work = works_.begin(); work != works_.end();) {
            work = work->second->connection == connection.id ? works_.erase(work) : std::next(work);
        }
    });
}

void ItemService::request_detail(MethodCall call) {
    uint32_t id = 0;
    const char* text = nullptr;
    g_variant_get(call.arguments(), "(u&s)", &id, &text);
    const Connection* connection = connections_.find_callers(id, call);
    if (!connection) {
        return;
    }
    const auto request = parse_detail_request(text);
    call.answer();
    const std::string request_id = request ? request->request_id : std::string();
    const std::string item_id = request ? item_of(*connection, *request) : std::string();
    if (item_id.empty()) {
        const char* reason =
            request ? "There is no such item in the list." : "The request is not understood.";
        parts_.signals.complete(connection->client(),
                                detail_answer(id, Event::kDetailFailed, request_id, reason));
        return;
    }
    const uint64_t number =
        begin(*connection, false, request_id, {connection->user, connection->account, item_id});
    if (number == 0) {
        return;
    }
    const auto done = [this, number](const ItemAnswer& answer) { on_answer(number, answer); };
    if (!keep(number, connection->session->describe(item_id, done))) {
        finish(number, {ItemAnswer::Outcome::kFailed, "The service tells nothing of single items."});
    }
}

std::string ItemService::item_of(const Connection& connection, const DetailRequest& request) const {
    if (!request.item_id.empty() || !request.index) {
        return request.item_id;
    }
    const auto text = lists_.item_text(connection.id, *request.index);
    return text ? item_id_of(*text) : std::string();
}

void ItemService::cancel_detail(MethodCall call) {
    uint32_t id = 0;
    g_variant_get(call.arguments(), "(u)", &id);
    if (!connections_.find_callers(id, call)) {
        return;
    }
    for (auto work = works_.begin(); work != works_.end();) {
        const bool is_meant = work->second->connection == id && !work->second->is_act;
        work = is_meant ? works_.erase(work) : std::next(work);
    }
    call.answer();
}

void ItemService::request_act(MethodCall call) {
    uint32_t id = 0;
    const char* command = nullptr;
    const char* text = nullptr;
    g_variant_get(call.arguments(), "(u&s&s)", &id, &command, &text);
    const Connection* connection = connections_.find_callers(id, call);
    if (!connection) {
        return;
    }
    const auto request = parse_act_request(command, text);
    const std::string parameters = text;
    call.answer();
    if (!request || request->command.empty()) {
        send_act(*connection, Event::kActFailed, request ? request->request_id : std::string(),
                 "The request is not understood.");
        return;
    }
    const uint64_t number = begin(*connection, true, request->request_id,
                                  {connection->user, connection->account, request->item_id});
    if (number == 0) {
        return;
    }
    const auto done = [this, number](const ItemAnswer& answer) { on_answer(number, answer); };
    if (!keep(number, connection->session->act(request->command, parameters, done))) {
        works_.erase(number);
        keep_opinion(*connection, *request);
    }
}

void ItemService::keep_opinion(const Connection& connection, const ActRequest& request) {
    const ItemKey item = {connection.user, connection.account, request.item_id};
    std::string reason;
    if (request.command != kLike && request.command != kComment) {
        reason = "The service knows no act " + request.command + ".";
    } else if (request.item_id.empty()) {
        reason = "The request names no item.";
    } else if (request.command == kComment &&
               (request.comment.empty() || request.comment.size() > ActStore::kLongestComment)) {
        reason = request.comment.empty() ? "The comment is empty." : "The comment is too long.";
    } else if (!(request.command == kLike
                     ? store_.set_like(item, request.like)
                     : store_.add_comment(item, request.comment, g_get_real_time() / G_USEC_PER_SEC))) {
        reason = "The engine cannot write what it keeps.";
    }
    send_act(connection, reason.empty() ? Event::kActDone : Event::kActFailed, request.request_id,
             reason.empty() ? kept_text(request) : reason);
}

void ItemService::stop_act(MethodCall call) {
    uint32_t id = 0;
    const char* text = nullptr;
    g_variant_get(call.arguments(), "(u&s)", &id, &text);
    const Connection* connection = connections_.find(id);
    const auto request = parse_act_request({}, text);
    uint32_t result = QRA_ERROR_NOT_EXIST;
    if (!connection || connection->client() != call.client()) {
        result = QRA_ERROR_INVALID_HANDLE;
    } else if (!request) {
        result = QRA_ERROR_INVALID_PARAM;
    } else {
        const auto found = std::find_if(works_.begin(), works_.end(), [&](const auto& work) {
            return work.second->is_act && work.second->connection == id &&
                   work.second->request_id == request->request_id;
        });
        if (found != works_.end()) {
            works_.erase(found);
            result = QRA_ERROR_NONE;
        }
    }
    call.answer(g_variant_new("(u)", result));
}

uint64_t ItemService::begin(const Connection& connection, bool is_act, const std::string& request_id,
                            ItemKey item) {
    auto work = std::make_unique<Work>();
    work->connection = connection.id;
    work->client = connection.client();
    work->is_act = is_act;
    work->request_id = request_id;
    work->item = std::move(item);
    work->session = connection.session;
    const size_t under_way =
        static_cast<size_t>(std::count_if(works_.begin(), works_.end(), [&](const auto& other) {
            return other.second->connection == connection.id;
        }));
    if (under_way >= parts_.setup.limits.requests_of_connection) {
        answer(*work, {ItemAnswer::Outcome::kFailed, "Too many requests are under way."});
        return 0;
    }
    works_[++last_number_] = std::move(work);
    return last_number_;
}

bool ItemService::keep(uint64_t number, RequestPtr request) {
    const auto work = works_.find(number);
    if (work == works_.end()) {
        return true;  // answered before it was even there
    }
    if (!request) {
        return false;
    }
    work->second->request = std::move(request);
    start_deadline(number);
    return true;
}

void ItemService::start_deadline(uint64_t number) {
    works_[number]->deadline.start(parts_.setup.limits.item_answer, [this, number] {
        finish(number, {ItemAnswer::Outcome::kFailed, "The service did not answer in time."});
    });
}

void ItemService::on_answer(uint64_t number, const ItemAnswer& item_answer) {
    const auto work = works_.find(number);
    if (work == works_.end()) {
        return;
    }
    if (item_answer.outcome != ItemAnswer::Outcome::kUpdate) {
        finish(number, item_answer);
    } else if (work->second->is_act) {
        answer(*work->second, item_answer);
        start_deadline(number);
    }
}

void ItemService::finish(uint64_t number, const ItemAnswer& item_answer) {
    const auto node = works_.extract(number);
    answer(*node.mapped(), item_answer);
    done_[number] = std::move(node.mapped());
    release_.start(0, [this] { done_.clear(); });
}

void ItemService::answer(const Work& work, const ItemAnswer& item_answer) {
    Event event = event_of(work.is_act, item_answer.outcome);
    std::string text = item_answer.text;
    if (event == Event::kDetailReady) {
        bool is_item = false;
        text = with_opinion(work.item, text, is_item);
        if (!is_item) {
            event = Event::kDetailFailed;
            text = "The service's answer is not understood.";
        }
    }
    parts_.signals.complete(work.client, work.is_act
                                             ? act_answer(work.connection, event, work.request_id, text)
                                             : detail_answer(work.connection, event, work.request_id, text));
}

std::string ItemService::with_opinion(const ItemKey& item, const std::string& text, bool& is_item) {
    Json::Value value = parse_json_object(text, kDeepestItem);
    is_item = !value.isNull();
    const auto opinion = is_item ? store_.opinion(item) : std::nullopt;
    if (!opinion) {
        return text;
    }
    if (!value.isMember("LIKE")) {
        value["LIKE"] = opinion->like;
    }
    if (!value.isMember("COMMENTS")) {
        Json::Value& comments = value["COMMENTS"] = Json::Value(Json::arrayValue);
        for (const ItemOpinion::Comment& comment : opinion->comments) {
            Json::Value entry(Json::objectValue);
            entry["TIME"] = Json::Int64(comment.time);
            entry["TEXT"] = comment.text;
            comments.append(std::move(entry));
        }
    }
    return to_json_text(value);
}

void ItemService::send_act(const Connection& connection, Event event, const std::string& request_id,
                           const std::string& text) const {
    parts_.signals.complete(connection.client(), act_answer(connection.id, event, request_id, text));
}

}  // namespace engine
