#ifndef QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_ITEM_H
#define QRA_ENGINE_PLUGINS_WEBDAV_WEBDAV_ITEM_H

#include <string>

#include "engine/plugins/support/item_text.h"
#include "engine/plugins/support/media_kind.h"
#include "engine/plugins/webdav/multistatus_reader.h"

namespace engine {

/// Where a server's resource stands: its name in bytes, the id of the folder around it, and its URL.
struct WebDavPlace {
    std::string name;
    std::string folder_id;
    std::string url;
};

/// What a list shows of a resource: a folder or a medium; "MEDIA_TYPE" 0 for anything else.
Item webdav_item(const WebDavEntry& entry, const WebDavPlace& place);

/// The same with all else that the server told.
Item webdav_detail(const WebDavEntry& entry, const WebDavPlace& place);

/// The kind alone, which `webdav_item` gives too.
MediaKind webdav_kind(const WebDavEntry& entry, const std::string& name);

/// The title alone.
std::string webdav_title(const WebDavEntry& entry, const std::string& name);

}  // namespace engine

#endif
