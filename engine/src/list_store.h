#ifndef QRA_ENGINE_LIST_STORE_H
#define QRA_ENGINE_LIST_STORE_H

#include <sys/types.h>

#include <cstdint>
#include <list>
#include <memory>
#include <string>

#include "engine/src/client_table.h"
#include "engine/src/engine_limits.h"
#include "engine/src/item_list.h"
#include "engine/src/timer.h"

namespace engine {

/**
 * The lists of connections that were closed, for a while, so that a program to which a client handed its list
 * over still finds it. Bounded: the one that was closed first makes room. None outlives its client.
 */
class ListStore {
public:
    ListStore(ClientTable& clients, const EngineLimits& limits) : clients_(clients), limits_(limits) {}

    void add(uint32_t id, uid_t user, const std::string& client, std::shared_ptr<ItemList> list);
    /// The list that the connection `id` had, if it was the same user's; else null.
    std::shared_ptr<ItemList> find(uint32_t id, uid_t user) const;
    void drop_client(const std::string& client);
    size_t size() const { return entries_.size(); }

private:
    struct Entry {
        uint32_t id;
        uid_t user;
        ClientHold hold;
        std::shared_ptr<ItemList> list;
        gint64 end;  ///< monotonic time, microseconds
    };

    void drop_old();

    ClientTable& clients_;
    const EngineLimits& limits_;
    std::list<Entry> entries_;  ///< closed first first
    Timer timer_;
};

}  // namespace engine

#endif
