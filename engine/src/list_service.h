#ifndef QRA_ENGINE_LIST_SERVICE_H
#define QRA_ENGINE_LIST_SERVICE_H

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>

#include "engine/src/client_request.h"
#include "engine/src/connection_table.h"
#include "engine/src/engine_parts.h"
#include "engine/src/item_list.h"
#include "engine/src/list_store.h"
#include "engine/src/section_writer.h"
#include "engine/src/shared_objects.h"

namespace engine {

/**
 * Serves "get_partial_list" and "drop_partial_list": each asked range of a list as a section in shared
 * memory, as soon as all of it is there.
 */
class ListService {
public:
    /// Removes what an engine that was killed left in shared memory.
    ListService(const EngineParts& parts, ConnectionTable& connections);

    /// The text of an item of the connection's list; nothing if there is no such item, or not yet.
    std::optional<std::string> item_text(uint32_t connection, size_t index) const;

private:
    /// A range that was asked for and is not there yet.
    struct Wait {
        uint32_t first;
        uint32_t last;  ///< beyond the end of the list: to the end
        int32_t section;
        std::shared_ptr<ItemList> list;
    };
    /// What there is for one connection.
    struct Lists {
        std::shared_ptr<ItemList> list;  ///< the latest one that it asked for
        uint32_t owner = 0;              ///< of that list: the connection's own id or another's
        std::list<Wait> waits;
        std::set<std::shared_ptr<ItemList>> watched;  ///< those of the waits, and maybe earlier ones
        std::map<std::string, Section> sections;      ///< by the name of the result list
        size_t shared_bytes = 0;                      ///< of the sections
        size_t shared_objects = 0;
    };

    void get_partial_list(MethodCall call);
    void drop_partial_list(MethodCall call);
    void end_connection(const Connection& connection, ConnectionTable::End end);

    std::shared_ptr<ItemList> list_for(const Connection& connection, const ListRequest& request,
                                       uint32_t first);
    std::shared_ptr<ItemList> list_of_other(const Connection& connection, uint32_t owner) const;
    std::shared_ptr<ItemList> own_list(const Connection& connection, const ListRequest& request,
                                       uint32_t first);
    void wait_for(const Connection& connection, Wait wait);
    static void stop_idle_watches(Lists& lists);
    void answer_waits(uint32_t id);
    /// False if the range is not there yet.
    bool try_answer(const Connection& connection, const Wait& wait);
    void send_section(const Connection& connection, const Wait& wait, size_t last);
    void send_failure(const Connection& connection, int32_t section, const std::string& reason) const;
    bool has_room(const std::string& client) const;

    const EngineParts& parts_;
    ConnectionTable& connections_;
    SharedObjects objects_;
    SectionWriter writer_;
    std::map<uint32_t, Lists> lists_;  ///< by the connection's id
    ListStore closed_;
};

}  // namespace engine

#endif
