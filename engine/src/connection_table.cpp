#include "engine/src/connection_table.h"

#include <utility>

#include "engine/src/completion.h"
#include "engine/src/engine_log.h"

namespace engine {

namespace {

/// Ids from here on are clients' own marks for "no connection".
constexpr uint32_t kFirstReservedId = 0x7FFFFFFE;

}  // namespace

ConnectionTable::ConnectionTable(const EngineParts& parts) : parts_(parts) {
    parts.methods.serve("connect", this, &ConnectionTable::connect);
    parts.methods.serve("disconnect", this, &ConnectionTable::disconnect);
    parts.clients.subscribe([this](const std::string& client) { drop_client(client); });
}

const Connection* ConnectionTable::find(uint32_t id) const {
    const auto found = connections_.find(id);
    return found == connections_.end() ? nullptr : found->second.get();
}

const Connection* ConnectionTable::find_callers(uint32_t id, MethodCall& call) const {
    const Connection* connection = find(id);
    if (connection && connection->client() == call.client()) {
        return connection;
    }
    ENGINE_WARNING("%s of %s: connection %u is %s", call.method(), call.client(), id,
                   connection ? "another client's" : "not known");
    call.refuse(G_DBUS_ERROR_ACCESS_DENIED,
                "There is no connection " + std::to_string(id) + " of this client");
    return nullptr;
}

std::vector<uint32_t> ConnectionTable::ids_of(const std::string& client) const {
    std::vector<uint32_t> ids;
    for (const auto& [id, connection] : connections_) {
        if (connection->client() == client) {
            ids.push_back(id);
        }
    }
    return ids;
}

void ConnectionTable::connect(MethodCall call) {
    const char* account = nullptr;
    g_variant_get(call.arguments(), "(&s)", &account);
    std::string reason;
    auto connection = open(call.client(), account, reason);
    if (!connection) {
        ENGINE_WARNING("connect of %s to %s: %s", call.client(), account, reason.c_str());
        call.refuse(G_DBUS_ERROR_FAILED, reason);
        return;
    }
    const uint32_t id = connection->id;
    connections_[id] = std::move(connection);
    call.answer(g_variant_new("(u)", id));
}

std::unique_ptr<Connection> ConnectionTable::open(const std::string& client, const std::string& account,
                                                  std::string& reason) {
    if (ids_of(client).size() >= parts_.setup.limits.connections_of_client) {
        reason = "This program has too many connections.";
        return nullptr;
    }
    const auto user = parts_.clients.user_of(client);
    if (!user) {
        reason = "The bus does not tell whom this program runs as.";
        return nullptr;
    }
    reason = "There is no account of that name.";
    const auto found = parts_.setup.accounts ? parts_.setup.accounts(*user, account, reason) : std::nullopt;
    if (!found) {
        return nullptr;
    }
    Plugin* plugin = parts_.setup.plugins.find(found->plugin);
    if (!plugin) {
        reason = "The engine knows no service of the kind " + found->plugin + ".";
        return nullptr;
    }
    std::shared_ptr<PluginSession> session = plugin->open(*found, reason);
    if (!session) {
        return nullptr;
    }
    return std::make_unique<Connection>(
        Connection{next_id(), parts_.clients.hold(client), *user, account, std::move(session)});
}

uint32_t ConnectionTable::next_id() {
    do {
        last_id_ = last_id_ + 1 < kFirstReservedId ? last_id_ + 1 : 1;
    } while (connections_.count(last_id_) != 0);
    return last_id_;
}

void ConnectionTable::disconnect(MethodCall call) {
    uint32_t id = 0;
    g_variant_get(call.arguments(), "(u)", &id);
    if (!find_callers(id, call)) {
        return;
    }
    const std::string client = call.client();
    drop(id, End::kDisconnected);
    call.answer();
    parts_.signals.complete(client, plain_answer(id, Event::kDisconnected));
}

void ConnectionTable::drop_client(const std::string& client) {
    for (const uint32_t id : ids_of(client)) {
        drop(id, End::kClientGone);
    }
}

void ConnectionTable::drop(uint32_t id, End end) {
    const auto node = connections_.extract(id);
    for (const Ended& ended : subscribers_) {
        ended(*node.mapped(), end);
    }
}

}  // namespace engine
