#ifndef QRA_ENGINE_PLUGINS_FEED_FEED_ITEMS_H
#define QRA_ENGINE_PLUGINS_FEED_FEED_ITEMS_H

#include <string>
#include <vector>

#include "engine/plugins/feed/feed_reader.h"
#include "engine/plugins/support/item_text.h"

namespace engine {

/**
 * The media of a feed that came from `url`, in its order: one for each file that an entry names. Files that
 * are no media, or not on the web, are left out. What only a detail shows is there too, in `details`.
 */
std::vector<Item> feed_items(const FeedReader& feed, const std::string& url);

}  // namespace engine

#endif
