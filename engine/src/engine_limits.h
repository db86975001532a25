#ifndef QRA_ENGINE_ENGINE_LIMITS_H
#define QRA_ENGINE_ENGINE_LIMITS_H

#include <cstddef>

namespace engine {

/// How much and how long of everything. Times are milliseconds.
struct EngineLimits {
    unsigned list_silence = 60 * 1000;      ///< from one item of a list to the next
    unsigned list_whole = 30 * 60 * 1000;   ///< from a list's request to its end
    unsigned item_answer = 60 * 1000;       ///< a detail or an act, to its next word
    unsigned closed_list = 5 * 60 * 1000;   ///< a list is kept so long after its connection was closed
    size_t closed_lists = 16;               ///< and so many of them are
    size_t list_items = 1000 * 1000;        ///< of one list
    size_t list_bytes = 512 * 1024 * 1024;  ///< of its item texts
    size_t connections_of_client = 256;
    size_t requests_of_connection = 256;  ///< under way: ranges, and details and acts
    size_t shared_bytes_of_client = 512 * 1024 * 1024;
    size_t shared_objects_of_client = 128 * 1024;
};

}  // namespace engine

#endif
