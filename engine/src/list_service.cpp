#include "engine/src/list_service.h"

#include <algorithm>
#include <utility>

#include "engine/src/completion.h"
#include "engine/src/engine_log.h"

namespace engine {

ListService::ListService(const EngineParts& parts, ConnectionTable& connections)
    : parts_(parts),
      connections_(connections),
      writer_(objects_),
      closed_(parts.clients, parts.setup.limits) {
    parts.methods.serve("get_partial_list", this, &ListService::get_partial_list);
    parts.methods.serve("drop_partial_list", this, &ListService::drop_partial_list);
    parts.clients.subscribe([this](const std::string& client) { closed_.drop_client(client); });
    connections.subscribe(
        [this](const Connection& connection, ConnectionTable::End end) { end_connection(connection, end); });
    const size_t removed = objects_.remove_leftovers();
    if (removed != 0) {
        ENGINE_INFO("removed %zu shared memory objects of an engine that was killed", removed);
    }
}

std::optional<std::string> ListService::item_text(uint32_t connection, size_t index) const {
    const auto found = lists_.find(connection);
    if (found == lists_.end() || !found->second.list) {
        return std::nullopt;
    }
    const ItemList& list = *found->second.list;
    if (!list.has_total() || index >= list.total() || !list.has(index, index)) {
        return std::nullopt;
    }
    return std::string(list.text(index));
}

void ListService::get_partial_list(MethodCall call) {
    uint32_t id = 0;
    Wait wait = {};
    const char* text = nullptr;
    g_variant_get(call.arguments(), "(uuu&s)", &id, &wait.first, &wait.last, &text);
    const Connection* connection = connections_.find_callers(id, call);
    if (!connection) {
        return;
    }
    const auto request = parse_list_request(text);
    call.answer();
    if (!request) {
        send_failure(*connection, 0, "The request is not understood.");
        return;
    }
    wait.section = request->section;
    wait.list = list_for(*connection, *request, wait.first);
    wait_for(*connection, std::move(wait));
}

std::shared_ptr<ItemList> ListService::list_for(const Connection& connection, const ListRequest& request,
                                                uint32_t first) {
    Lists& lists = lists_[connection.id];
    if (request.list_owner != 0 && request.list_owner != connection.id) {
        if (auto list = list_of_other(connection, request.list_owner)) {
            lists.list = std::move(list);
            lists.owner = request.list_owner;
        }
        if (lists.owner == request.list_owner) {
            return lists.list;  // also when its first owner has gone meanwhile
        }
    }
    return own_list(connection, request, first);
}

std::shared_ptr<ItemList> ListService::list_of_other(const Connection& connection, uint32_t owner) const {
    const Connection* other = connections_.find(owner);
    std::shared_ptr<ItemList> list;
    if (!other) {
        list = closed_.find(owner, connection.user);
    } else if (other->user == connection.user) {
        const auto found = lists_.find(owner);
        list = found == lists_.end() ? nullptr : found->second.list;
    }
    return list && list->state() != ItemList::State::kFailed ? list : nullptr;
}

std::shared_ptr<ItemList> ListService::own_list(const Connection& connection, const ListRequest& request,
                                                uint32_t first) {
    Lists& lists = lists_[connection.id];
    const bool is_same = lists.list && lists.owner == connection.id && lists.list->query() == request.query;
    // Who asks for the start of a list that failed tries again.
    const bool is_retry = is_same && first == 0 && lists.list->state() == ItemList::State::kFailed;
    if (!is_same || is_retry) {
        lists.list = std::make_shared<ItemList>(connection.session, request.query, parts_.setup.limits);
        lists.owner = connection.id;
        lists.list->load();
    }
    return lists.list;
}

void ListService::wait_for(const Connection& connection, Wait wait) {
    if (try_answer(connection, wait)) {
        return;
    }
    Lists& lists = lists_[connection.id];
    if (lists.waits.size() >= parts_.setup.limits.requests_of_connection) {
        send_failure(connection, wait.section, "Too many requests are under way.");
        return;
    }
    stop_idle_watches(lists);
    wait.list->watch(&lists, [this, id = connection.id] { answer_waits(id); });
    lists.watched.insert(wait.list);
    lists.waits.push_back(std::move(wait));
}

void ListService::stop_idle_watches(Lists& lists) {
    for (auto watched = lists.watched.begin(); watched != lists.watched.end();) {
        const bool is_needed = std::any_of(lists.waits.begin(), lists.waits.end(),
                                           [&](const Wait& wait) { return wait.list == *watched; });
        if (!is_needed) {
            (*watched)->unwatch(&lists);
        }
        watched = is_needed ? std::next(watched) : lists.watched.erase(watched);
    }
}

void ListService::answer_waits(uint32_t id) {
    std::list<Wait>& waits = lists_[id].waits;
    const Connection& connection = *connections_.find(id);
    for (auto wait = waits.begin(); wait != waits.end();) {
        wait = try_answer(connection, *wait) ? waits.erase(wait) : std::next(wait);
    }
}

bool ListService::try_answer(const Connection& connection, const Wait& wait) {
    ItemList& list = *wait.list;
    const bool has_ended = list.state() != ItemList::State::kLoading;
    if (list.has_total() && list.total() != 0 && wait.first < list.total()) {
        const size_t last = std::min<size_t>(wait.last, list.total() - 1);
        if (last >= wait.first && list.has(wait.first, last)) {
            send_section(connection, wait, last);
            return true;
        }
    }
    if (list.state() == ItemList::State::kFailed) {
        send_failure(connection, wait.section, list.failure());
    } else if (wait.last < wait.first) {
        send_failure(connection, wait.section, "The asked range ends before it starts.");
    } else if (has_ended && list.total() == 0) {
        parts_.signals.complete(connection.client(), list_empty(connection.id, wait.section));
    } else if (has_ended) {
        send_failure(connection, wait.section, "The asked range lies beyond the end of the list.");
    } else {
        return false;
    }
    return true;
}

void ListService::send_section(const Connection& connection, const Wait& wait, size_t last) {
    ItemList& list = *wait.list;
    list.tell_total();
    std::optional<Section> section;
    if (has_room(connection.client())) {
        section = writer_.write({static_cast<int32_t>(wait.first), static_cast<int32_t>(last), wait.section,
                                 static_cast<int32_t>(list.total()), list.groups(),
                                 [&list](int32_t index) { return list.text(static_cast<size_t>(index)); }},
                                connection.user);
    }
    if (!section) {
        send_failure(connection, wait.section, "There is not enough shared memory for the list.");
        return;
    }
    const std::string name = section->name();
    Lists& lists = lists_[connection.id];
    lists.shared_bytes += section->size();
    lists.shared_objects += section->object_count();
    lists.sections.emplace(name, std::move(*section));
    parts_.signals.complete(connection.client(), list_ready(connection.id, wait.section, name));
}

bool ListService::has_room(const std::string& client) const {
    size_t bytes = 0;
    size_t objects = 0;
    for (const uint32_t id : connections_.ids_of(client)) {
        const auto found = lists_.find(id);
        if (found != lists_.end()) {
            bytes += found->second.shared_bytes;
            objects += found->second.shared_objects;
        }
    }
    return bytes < parts_.setup.limits.shared_bytes_of_client &&
           objects < parts_.setup.limits.shared_objects_of_client;
}

void ListService::send_failure(const Connection& connection, int32_t section,
                               const std::string& reason) const {
    parts_.signals.complete(connection.client(), list_failed(connection.id, section, reason));
}

void ListService::drop_partial_list(MethodCall call) {
    uint32_t id = 0;
    const char* name = nullptr;
    g_variant_get(call.arguments(), "(u&s)", &id, &name);
    const Connection* connection = connections_.find_callers(id, call);
    if (!connection) {
        return;
    }
    Lists& lists = lists_[id];
    const auto section = lists.sections.find(name);
    if (section != lists.sections.end()) {
        lists.shared_bytes -= section->second.size();
        lists.shared_objects -= section->second.object_count();
        lists.sections.erase(section);
        parts_.signals.complete(connection->client(), plain_answer(id, Event::kDropped));
    } else {
        ENGINE_WARNING("connection %u has no list %s to drop", id, name);
    }
    call.answer();
}

void ListService::end_connection(const Connection& connection, ConnectionTable::End end) {
    const auto found = lists_.find(connection.id);
    if (found == lists_.end()) {
        return;
    }
    Lists& lists = found->second;
    lists.waits.clear();
    stop_idle_watches(lists);
    const std::shared_ptr<ItemList> list = std::move(lists.list);
    lists_.erase(found);
    if (end == ConnectionTable::End::kDisconnected && list && list->state() != ItemList::State::kFailed) {
        closed_.add(connection.id, connection.user, connection.client(), list);
    }
}

}  // namespace engine
