#ifndef QRA_ENGINE_PLUGINS_SUPPORT_ITEM_TEXT_H
#define QRA_ENGINE_PLUGINS_SUPPORT_ITEM_TEXT_H

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace engine {

/// What is known of a remote item. All texts are UTF-8.
struct Item {
    int media_type = 0;
    std::string id;
    std::string title;
    std::string display_name;
    std::string mime_type;
    std::string url;
    std::string thumbnail;
    uint64_t size = 0;     ///< bytes
    int64_t modified = 0;  ///< seconds since 1970
    int64_t added = 0;     ///< seconds since 1970; 0: not told, and not written
    uint64_t duration_ms = 0;
    std::vector<std::pair<std::string, std::string>> details;  ///< further fields, in a detail
};

/// The item as a client reads it: one line of JSON with a line end. A folder has no size, type or duration.
std::string item_text(const Item& item);

}  // namespace engine

#endif
