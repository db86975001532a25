#ifndef QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_PLUGIN_H
#define QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_PLUGIN_H

#include <memory>

#include "engine/plugins/http/http_session.h"
#include "engine/src/plugin.h"

namespace engine {

/// Folders and media of WebDAV servers. An account's address is the URL of its topmost folder.
std::unique_ptr<Plugin> make_webdav_plugin(const HttpLimits& limits = {});

}  // namespace engine

#endif
