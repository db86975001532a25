#ifndef QRA_ENGINE_PLUGINS_FEED_FEED_PLUGIN_H
#define QRA_ENGINE_PLUGINS_FEED_FEED_PLUGIN_H

#include <memory>

#include "engine/plugins/http/http_session.h"
#include "engine/src/plugin.h"

namespace engine {

/// What a feed may cost at most: less than a folder, since all of it is held at once.
HttpLimits feed_limits();

/// The pictures, videos and sounds that a feed (RSS 2.0, Atom: podcasts) names. An account's address is the
/// URL of one feed; its only container is the top.
std::unique_ptr<Plugin> make_feed_plugin(const HttpLimits& limits = feed_limits());

}  // namespace engine

#endif
