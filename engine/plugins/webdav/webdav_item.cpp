#include "engine/plugins/webdav/webdav_item.h"

#include <qra/qra_types.h>

#include "engine/plugins/webdav/webdav_path.h"

namespace engine {

namespace {

// A tile's picture; the preview service scales it.
constexpr char kPreviewSize[] = "&x=512&y=512&a=1";

/// The server's own small picture of a file. The service stands beside the road that ends in "remote.php".
std::string preview_url(const WebDavEntry& entry, const std::string& url) {
    const size_t road = url.find("/remote.php/");
    const bool numbered =
        !entry.file_id.empty() && entry.file_id.find_first_not_of("0123456789") == std::string::npos;
    if (!entry.has_preview || !numbered || road == std::string::npos) {
        return {};
    }
    return url.substr(0, road) + "/index.php/core/preview?fileId=" + entry.file_id + kPreviewSize;
}

}  // namespace

std::string webdav_title(const WebDavEntry& entry, const std::string& name) {
    return entry.display_name.empty() ? id_of_name(name) : entry.display_name;
}

MediaKind webdav_kind(const WebDavEntry& entry, const std::string& name) {
    return entry.folder ? MediaKind{QRA_MEDIA_TYPE_FOLDER, {}} : media_kind_of(entry.content_type, name);
}

Item webdav_item(const WebDavEntry& entry, const WebDavPlace& place) {
    MediaKind kind = webdav_kind(entry, place.name);
    Item item;
    item.media_type = kind.media_type;
    item.mime_type = std::move(kind.mime_type);
    item.display_name = id_of_name(place.name);
    item.title = entry.display_name.empty() ? item.display_name : entry.display_name;
    item.id = (place.folder_id.empty() ? "" : place.folder_id + "/") + item.display_name;
    item.url = place.url;
    item.thumbnail = preview_url(entry, place.url);
    item.size = entry.size;
    item.modified = entry.modified;
    return item;
}

Item webdav_detail(const WebDavEntry& entry, const WebDavPlace& place) {
    Item item = webdav_item(entry, place);
    if (!entry.etag.empty()) {
        item.details.emplace_back("ETAG", entry.etag);
    }
    if (entry.created > 0) {
        item.added = entry.created;
    }
    // The server's own words, under names that no field of the agent has.
    item.details.insert(item.details.end(), entry.others.begin(), entry.others.end());
    return item;
}

}  // namespace engine
