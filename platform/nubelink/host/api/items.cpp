// Values of items.
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "nubelink.h"
#include "platform/nubelink/host/bookmark_request.h"
#include "platform/nubelink/host/item_record.h"
#include "platform/nubelink/host/item_values.h"

namespace {

int give_text(std::string_view value, char** text) {
    *text = nullptr;
    if (value.empty()) {
        return NBL_ERROR_NO_DATA;
    }
    *text = static_cast<char*>(std::malloc(value.size() + 1));
    if (*text == nullptr) {
        return NBL_ERROR_OUT_OF_MEMORY;
    }
    std::memcpy(*text, value.data(), value.size());
    (*text)[value.size()] = '\0';
    return NBL_ERROR_NONE;
}

/// Gives what `read` makes of the item.
template <typename Read>
int give_text_of(nbl_item_t item, char** text, Read read) {
    if (text == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *text = nullptr;
    return item == nullptr ? NBL_ERROR_INVALID_PARAMETER : give_text(read(*item), text);
}

int give_property(nbl_item_t item, std::string_view name, char** text) {
    return give_text_of(item, text, [name](const nbl_item_s& record) { return record.text(name); });
}

template <typename Number, typename Read>
int give_number_of(nbl_item_t item, Number* number, Read read) {
    if (item == nullptr || number == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    const auto value = read(*item);
    if (!value) {
        return NBL_ERROR_NO_DATA;
    }
    *number = *value;
    return NBL_ERROR_NONE;
}

std::string_view thumbnail_of(const nbl_item_s& item) {
    const auto own = item.find(nbl::property::kThumbnail);
    return own ? *own : item.text("upnp:albumArtURI");
}

std::string_view file_name_of(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

/// An item that is to be sent: `place` is where it comes from.
int make_content(std::string_view file_name, const char* mimetype, std::string_view place_property,
                 const char* place, nbl_item_t* item) {
    const size_t dot = file_name.rfind('.');
    const bool has_extension = dot != std::string_view::npos && dot > 0;
    nbl::ItemBuilder builder;
    builder.add("dc:title", has_extension ? file_name.substr(0, dot) : file_name);
    builder.add(nbl::property::kFileName, file_name);
    builder.add(nbl::property::kMimeType, mimetype);
    builder.add(place_property, place);
    *item = builder.build(nbl::item_type_of(false, {}, mimetype)).release();
    return NBL_ERROR_NONE;
}

bool is_missing(const char* text) {
    return text == nullptr || *text == '\0';
}

}  // namespace

int nbl_item_copy(nbl_item_t item, nbl_item_t* copy) {
    if (item == nullptr || copy == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    item->take();
    *copy = item;
    return NBL_ERROR_NONE;
}

void nbl_item_free(nbl_item_t item) {
    if (item != nullptr) {
        item->give_back();
    }
}

int nbl_item_get_local_content(const char* path, const char* mimetype, nbl_item_t* item) {
    if (is_missing(path) || is_missing(mimetype) || item == nullptr || file_name_of(path).empty()) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    return make_content(file_name_of(path), mimetype, nbl::property::kPath, path, item);
}

int nbl_item_get_live_content(const char* name, const char* mimetype, const char* fifo, nbl_item_t* item) {
    if (is_missing(name) || is_missing(mimetype) || is_missing(fifo) || item == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    return make_content(name, mimetype, nbl::property::kFifo, fifo, item);
}

int nbl_item_get_title(nbl_item_t item, char** text) {
    return give_property(item, "dc:title", text);
}

int nbl_item_get_content_id(nbl_item_t item, char** text) {
    return give_property(item, "@id", text);
}

int nbl_item_get_extension(nbl_item_t item, char** text) {
    return give_text_of(item, text, nbl::extension_of);
}

int nbl_item_get_uri(nbl_item_t item, char** text) {
    return give_property(item, "res", text);
}

int nbl_item_get_mta_uri(nbl_item_t item, char** text) {
    return give_property(item, "kvr:mtaUri", text);
}

int nbl_item_get_mimetype(nbl_item_t item, char** text) {
    return give_text_of(item, text, nbl::mime_type_of);
}

int nbl_item_get_album_title(nbl_item_t item, char** text) {
    return give_property(item, "upnp:album", text);
}

int nbl_item_get_artist(nbl_item_t item, char** text) {
    return give_text_of(item, text, nbl::artist_of);
}

int nbl_item_get_date(nbl_item_t item, char** text) {
    return give_property(item, "dc:date", text);
}

int nbl_item_get_genre(nbl_item_t item, char** text) {
    return give_property(item, "upnp:genre", text);
}

int nbl_item_get_location(nbl_item_t item, char** text) {
    return give_text_of(item, text, [](const nbl_item_s& record) {
        const auto own = record.find("kvr:location");
        return own ? *own : record.text("upnp:region");
    });
}

int nbl_item_get_resolution(nbl_item_t item, char** text) {
    return give_text_of(item, text, nbl::resolution_of);
}

int nbl_item_get_subtitle(nbl_item_t item, char** text) {
    return give_property(item, nbl::property::kSubtitle, text);
}

int nbl_item_get_thumbnail(nbl_item_t item, char** text) {
    return give_text_of(item, text, thumbnail_of);
}

int nbl_item_get_property_value_by_name(nbl_item_t item, const char* name, char** text) {
    if (text != nullptr && is_missing(name)) {
        *text = nullptr;
        return NBL_ERROR_INVALID_PARAMETER;
    }
    return give_property(item, name, text);
}

int nbl_item_get_type(nbl_item_t item, int* number) {
    if (item == nullptr || number == nullptr) {
        return NBL_ERROR_INVALID_PARAMETER;
    }
    *number = item->type();
    return NBL_ERROR_NONE;
}

int nbl_item_get_child_count(nbl_item_t item, int* number) {
    return give_number_of(item, number, nbl::child_count_of);
}

int nbl_item_get_width(nbl_item_t item, int* number) {
    return give_number_of(item, number, nbl::width_of);
}

int nbl_item_get_height(nbl_item_t item, int* number) {
    return give_number_of(item, number, nbl::height_of);
}

int nbl_item_get_seek_mode(nbl_item_t item, int* number) {
    return give_number_of(item, number, nbl::seek_mode_of);
}

int nbl_item_get_file_size(nbl_item_t item, unsigned long long* number) {
    return give_number_of(item, number, nbl::file_size_of);
}

int nbl_item_get_duration(nbl_item_t item, unsigned long long* number) {
    return give_number_of(item, number, nbl::duration_of);
}

int nbl_item_get_bookmark(nbl_item_t item, int* number) {
    return give_number_of(item, number, [](const nbl_item_s& record) {
        const auto position = nbl::server_bookmark_of(record);
        const bool is_of_server = record.provider() != nullptr;
        return position || !is_of_server ? position : std::optional<int>(nbl::kept_position_of(record));
    });
}
