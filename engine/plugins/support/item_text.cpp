#include "engine/plugins/support/item_text.h"

#include <json/json.h>
#include <qra/qra_types.h>

#include <algorithm>
#include <limits>

#include "engine/src/json_text.h"

namespace engine {

namespace {

/// Clients read times as numbers of 32 bits.
int narrow_time(int64_t seconds) {
    return static_cast<int>(std::clamp<int64_t>(seconds, 0, std::numeric_limits<int>::max()));
}

}  // namespace

std::string item_text(const Item& item) {
    Json::Value object(Json::objectValue);
    object["MEDIA_TYPE"] = item.media_type;
    object["ID_QRA"] = item.id;
    object["TITLE"] = item.title;
    object["DISPLAY_NAME"] = item.display_name;
    object["URL"] = item.url;
    object["THUMBNAIL_PATH"] = item.thumbnail;
    object["MODIFIED_TIME"] = narrow_time(item.modified);
    if (item.media_type != QRA_MEDIA_TYPE_FOLDER) {
        object["MIME_TYPE"] = item.mime_type;
        object["SIZE"] = Json::UInt64{item.size};
        if (item.media_type != QRA_MEDIA_TYPE_IMAGE) {
            object["DURATION"] = Json::UInt64{item.duration_ms};
        }
    }
    if (item.added > 0) {
        object["ADDED_TIME"] = Json::Int64{item.added};
    }
    for (const auto& [name, value] : item.details) {
        object[name] = value;
    }
    return to_json_text(object) + "\n";
}

}  // namespace engine
