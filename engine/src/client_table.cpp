#include "engine/src/client_table.h"

#include <utility>

#include "engine/src/bus_call.h"
#include "engine/src/engine_log.h"
#include "platform/support/glib_ptr.h"

namespace engine {

ClientHold::ClientHold(ClientTable& table, std::string client) : table_(&table), client_(std::move(client)) {
    table_->add_hold(client_);
}

ClientHold::~ClientHold() {
    if (table_) {
        table_->drop_hold(client_);
    }
}

ClientTable::~ClientTable() {
    for (const auto& [client, watched] : watched_) {
        g_bus_unwatch_name(watched.watch);
    }
}

void ClientTable::add_hold(const std::string& client) {
    Watched& watched = watched_[client];
    if (watched.holds++ == 0) {
        watched.watch = g_bus_watch_name_on_connection(bus_, client.c_str(), G_BUS_NAME_WATCHER_FLAGS_NONE,
                                                       nullptr, &on_vanished, this, nullptr);
    }
}

void ClientTable::drop_hold(const std::string& client) {
    const auto watched = watched_.find(client);
    if (--watched->second.holds == 0) {
        g_bus_unwatch_name(watched->second.watch);
        watched_.erase(watched);
    }
}

void ClientTable::on_vanished(GDBusConnection*, const char* client, void* self) {
    auto* table = static_cast<ClientTable*>(self);
    // The holds of this client, and the text that is handed in, end in the course of this.
    const std::string name = client;
    ENGINE_INFO("client %s is gone", client);
    for (const Gone& gone : table->subscribers_) {
        gone(name);
    }
}

std::optional<uid_t> ClientTable::user_of(const std::string& client) {
    if (client == last_asked_) {
        return last_user_;
    }
    glib::ErrorOut error;
    const auto user = ask_bus(bus_, "GetConnectionUnixUser", g_variant_new("(s)", client.c_str()), error);
    if (!user) {
        ENGINE_INFO("cannot tell the user of %s: %s", client.c_str(), error.message());
        return std::nullopt;
    }
    last_user_ = *user;
    last_asked_ = client;
    return last_user_;
}

}  // namespace engine
