#ifndef QRA_ENGINE_CONNECTION_TABLE_H
#define QRA_ENGINE_CONNECTION_TABLE_H

#include <sys/types.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/src/client_table.h"
#include "engine/src/engine_parts.h"
#include "engine/src/plugin.h"

namespace engine {

/// A client's connection to an account.
struct Connection {
    uint32_t id;
    ClientHold hold;
    uid_t user;           ///< whom the client runs as
    std::string account;  ///< its name
    std::shared_ptr<PluginSession> session;

    const std::string& client() const { return hold.client(); }
};

/**
 * Serves "connect" and "disconnect", and knows the connections by their ids, which count from 1 on.
 *
 * A connection belongs to the client that made it. It ends when that client disconnects it or leaves the bus.
 */
class ConnectionTable {
public:
    enum class End { kDisconnected, kClientGone };
    using Ended = std::function<void(const Connection& connection, End end)>;

    explicit ConnectionTable(const EngineParts& parts);

    /// Each area that keeps something for a connection subscribes once.
    void subscribe(Ended ended) { subscribers_.push_back(std::move(ended)); }

    /// The connection of that id; null if there is none.
    const Connection* find(uint32_t id) const;
    /// The caller's connection of that id. Null, and the call is refused with a log line, if it has none.
    const Connection* find_callers(uint32_t id, MethodCall& call) const;
    /// A client's connections.
    std::vector<uint32_t> ids_of(const std::string& client) const;

private:
    void connect(MethodCall call);
    void disconnect(MethodCall call);
    void drop_client(const std::string& client);
    void drop(uint32_t id, End end);
    /// Null, with a reason for a person, if the client cannot have a connection.
    std::unique_ptr<Connection> open(const std::string& client, const std::string& account,
                                     std::string& reason);
    uint32_t next_id();

    const EngineParts& parts_;
    std::vector<Ended> subscribers_;
    std::map<uint32_t, std::unique_ptr<Connection>> connections_;
    uint32_t last_id_ = 0;
};

}  // namespace engine

#endif
