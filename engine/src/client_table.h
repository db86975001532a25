#ifndef QRA_ENGINE_CLIENT_TABLE_H
#define QRA_ENGINE_CLIENT_TABLE_H

#include <gio/gio.h>
#include <sys/types.h>

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace engine {

class ClientTable;

/// Says that the engine keeps something for a client. Ends before the table.
class ClientHold {
public:
    ClientHold(ClientTable& table, std::string client);
    ~ClientHold();
    ClientHold(ClientHold&& other) noexcept : table_(other.table_), client_(std::move(other.client_)) {
        other.table_ = nullptr;
    }
    ClientHold(const ClientHold&) = delete;
    ClientHold& operator=(const ClientHold&) = delete;

    const std::string& client() const { return client_; }

private:
    ClientTable* table_;
    std::string client_;
};

/**
 * The clients, by their unique names on the bus: who they are, and when they go.
 *
 * An area that keeps something for a client takes a hold and lets go of it, with all that it kept, when it is
 * told that the client has left the bus. While anything is held the engine is in use. For one thread, that of
 * the main context that was its default at construction.
 */
class ClientTable {
public:
    /// Told the name of a client that has left the bus, or that was gone before it could be watched.
    using Gone = std::function<void(const std::string& client)>;

    explicit ClientTable(GDBusConnection* bus) : bus_(bus) {}
    ~ClientTable();
    ClientTable(const ClientTable&) = delete;
    ClientTable& operator=(const ClientTable&) = delete;

    /// Each area subscribes once and lives as long as the table is used. It is told of clients that somebody
    /// holds, whether or not it does so itself.
    void subscribe(Gone gone) { subscribers_.push_back(std::move(gone)); }

    /// The hold lasts as long as the result.
    [[nodiscard]] ClientHold hold(const std::string& client) { return ClientHold(*this, client); }

    /// The user that the client runs as; nothing, with a log line, if the bus does not know.
    std::optional<uid_t> user_of(const std::string& client);

    /// True while something is held for anybody.
    bool in_use() const { return !watched_.empty(); }

private:
    friend class ClientHold;

    struct Watched {
        unsigned watch = 0;
        size_t holds = 0;
    };

    void add_hold(const std::string& client);
    void drop_hold(const std::string& client);
    static void on_vanished(GDBusConnection* bus, const char* client, void* self);

    GDBusConnection* bus_;
    std::vector<Gone> subscribers_;
    std::map<std::string, Watched> watched_;
    std::string last_asked_;  ///< who `last_user_` is; a bus never gives a client's name to another one
    uid_t last_user_ = 0;
};

}  // namespace engine

#endif
