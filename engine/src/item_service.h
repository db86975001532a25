#ifndef QRA_ENGINE_ITEM_SERVICE_H
#define QRA_ENGINE_ITEM_SERVICE_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "engine/src/act_store.h"
#include "engine/src/client_request.h"
#include "engine/src/completion.h"
#include "engine/src/connection_table.h"
#include "engine/src/engine_parts.h"
#include "engine/src/list_service.h"
#include "engine/src/timer.h"

namespace engine {

/**
 * Serves "request_detail", "request_cancel_detail", "request_act" and "stop_act".
 *
 * An act goes to the plug-in. The acts "qra_setlike" and "qra_uploadcomment", where the service has none, the
 * engine keeps itself, and tells them with the item's detail. Every request is answered or, when the service
 * does not, failed after a while; one that was cancelled is not answered any more.
 */
class ItemService {
public:
    ItemService(const EngineParts& parts, ConnectionTable& connections, const ListService& lists);

private:
    /// A detail or an act that the plug-in works on.
    struct Work {
        uint32_t connection;
        std::string client;
        bool is_act;
        std::string request_id;
        ItemKey item;
        std::shared_ptr<PluginSession> session;
        RequestPtr request;  ///< ends before the session
        Timer deadline{G_PRIORITY_LOW};
    };

    void request_detail(MethodCall call);
    void cancel_detail(MethodCall call);
    void request_act(MethodCall call);
    void stop_act(MethodCall call);

    /// The id of the item that is asked for; empty if there is none.
    std::string item_of(const Connection& connection, const DetailRequest& request) const;
    /// Notes a request that goes to the plug-in, for its answers; its number. 0, and the client is told, if
    /// there are too many.
    uint64_t begin(const Connection& connection, bool is_act, const std::string& request_id, ItemKey item);
    /// Keeps what the plug-in gave for the number. False if it gave nothing.
    bool keep(uint64_t number, RequestPtr request);
    void start_deadline(uint64_t number);
    void on_answer(uint64_t number, const ItemAnswer& answer);
    void finish(uint64_t number, const ItemAnswer& answer);
    void keep_opinion(const Connection& connection, const ActRequest& request);
    std::string with_opinion(const ItemKey& item, const std::string& text, bool& is_item);
    void answer(const Work& work, const ItemAnswer& answer);
    void send_act(const Connection& connection, Event event, const std::string& request_id,
                  const std::string& text) const;

    const EngineParts& parts_;
    ConnectionTable& connections_;
    const ListService& lists_;
    ActStore store_;
    std::map<uint64_t, std::unique_ptr<Work>> works_;
    std::map<uint64_t, std::unique_ptr<Work>> done_;  ///< to be ended, not from within their own calls
    Timer release_;
    uint64_t last_number_ = 0;
};

}  // namespace engine

#endif
