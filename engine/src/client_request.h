#ifndef QRA_ENGINE_CLIENT_REQUEST_H
#define QRA_ENGINE_CLIENT_REQUEST_H

#include <cstdint>
#include <optional>
#include <string>

#include "engine/src/plugin.h"

namespace engine {

// The JSON texts of a client's requests. A text that is left out reads as empty, and so does "QRA_NULL",
// which clients send for it. What is no JSON object, or is longer than any honest request, reads as nothing.

/// The argument of "get_partial_list".
struct ListRequest {
    ListQuery query;
    uint32_t list_owner = 0;  ///< the connection whose list is asked for; 0 if it does not say
    int32_t section = 0;      ///< not negative
};
std::optional<ListRequest> parse_list_request(const std::string& text);

/// The argument of "request_detail".
struct DetailRequest {
    std::string request_id;
    std::string item_id;  ///< empty: the item at `index`
    std::optional<size_t> index;
};
std::optional<DetailRequest> parse_detail_request(const std::string& text);

/// The arguments of "request_act" and "stop_act".
struct ActRequest {
    std::string command;  ///< the method's own argument or, where that is empty, what the JSON says
    std::string request_id;
    std::string item_id;  ///< of the item whose text the JSON holds
    bool like = false;
    std::string comment;
};
std::optional<ActRequest> parse_act_request(const std::string& command, const std::string& text);

/// "ID_QRA" of an item text; empty if it has none.
std::string item_id_of(const std::string& item_text);

}  // namespace engine

#endif
