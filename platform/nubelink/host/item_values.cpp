#include "platform/nubelink/host/item_values.h"

#include <algorithm>
#include <climits>

#include "platform/media-content/host/metadata/media_types.h"
#include "platform/nubelink/host/text.h"

namespace nbl {

namespace {

using media_content::find_media_type;
using media_content::media_types;
using media_content::MediaType;

constexpr size_t kLongestExtension = 5;

std::optional<int> small_number(std::optional<uint64_t> number) {
    return number && *number <= INT_MAX ? std::optional<int>(static_cast<int>(*number)) : std::nullopt;
}

std::optional<uint64_t> number_property(const nbl_item_s& item, std::string_view name) {
    return number_of(trimmed(item.text(name)));
}

/// The part of an address, or a path, after the last dot of its last segment.
std::string suffix_of(std::string_view address) {
    address = address.substr(0, address.find_first_of("?#"));
    const std::string_view name = address.substr(std::min(address.rfind('/') + 1, address.size()));
    const size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || name.size() - dot - 1 > kLongestExtension ||
        dot + 1 == name.size()) {
        return {};
    }
    std::string suffix = lower_case(name.substr(dot + 1));
    const auto is_plain = [](char c) { return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9'); };
    return std::all_of(suffix.begin(), suffix.end(), is_plain) ? suffix : std::string();
}

/// Types that servers name otherwise than our table, or that have several extensions.
struct TypeExtension {
    std::string_view mime_type;
    std::string_view extension;
};
constexpr TypeExtension kTypeExtensions[] = {
    {"audio/flac", "flac"},      {"audio/l16", "wav"},      {"audio/mp4", "m4a"},
    {"audio/mpeg", "mp3"},       {"audio/ogg", "ogg"},      {"audio/vnd.dlna.adts", "aac"},
    {"audio/wav", "wav"},        {"audio/x-flac", "flac"},  {"audio/x-m4a", "m4a"},
    {"audio/x-wav", "wav"},      {"image/jpeg", "jpg"},     {"image/jpg", "jpg"},
    {"image/tiff", "tif"},       {"video/avi", "avi"},      {"video/mp2t", "ts"},
    {"video/mp4", "mp4"},        {"video/mpeg", "mpg"},     {"video/vnd.dlna.mpeg-tts", "ts"},
    {"video/x-matroska", "mkv"}, {"video/x-ms-asf", "asf"}, {"video/x-mkv", "mkv"},
};

std::string extension_of_type(std::string_view mime_type) {
    const std::string type = lower_case(mime_type.substr(0, mime_type.find(';')));
    for (const TypeExtension& row : kTypeExtensions) {
        if (row.mime_type == type) {
            return std::string(row.extension);
        }
    }
    const auto& rows = media_types();
    const auto found =
        std::find_if(rows.begin(), rows.end(), [&](const MediaType& row) { return row.mime_type == type; });
    return found == rows.end() ? std::string() : std::string(found->extension);
}

/// One of the numbers of "1920x1080".
std::optional<int> resolution_part(std::string_view resolution, bool second) {
    std::string_view rest = resolution;
    const std::string_view first = next_field(rest, 'x');
    return small_number(number_of(second ? rest : first));
}

}  // namespace

ProtocolInfo::ProtocolInfo(std::string_view text) {
    protocol = next_field(text, ':');
    next_field(text, ':');
    mime_type = next_field(text, ':');
    parameters = text;
}

std::string_view ProtocolInfo::parameter(std::string_view name) const {
    std::string_view rest = parameters;
    while (!rest.empty()) {
        std::string_view value = next_field(rest, ';');
        if (next_field(value, '=') == name) {
            return value;
        }
    }
    return {};
}

std::string_view mime_type_of(const nbl_item_s& item) {
    if (const auto given = item.find(property::kMimeType)) {
        return *given;
    }
    const std::string_view type = ProtocolInfo(item.text("res@protocolInfo")).mime_type;
    return type == "*" ? std::string_view() : type;
}

std::string extension_of(const nbl_item_s& item) {
    // The content of a folder, where it has any, is a playlist of what is in it: the folder is not that file.
    if (item.type() == NBL_ITEM_TYPE_FOLDER) {
        return {};
    }
    const std::string_view file_name = item.text(property::kFileName);
    std::string suffix = suffix_of(file_name.empty() ? item.text("res") : file_name);
    if (!suffix.empty() && find_media_type("a." + suffix) != nullptr) {
        return suffix;
    }
    std::string of_type = extension_of_type(mime_type_of(item));
    return of_type.empty() ? suffix : of_type;
}

std::string_view artist_of(const nbl_item_s& item) {
    for (const std::string_view name : {"upnp:artist", "dc:creator", "upnp:author"}) {
        if (const auto found = item.find(name)) {
            return *found;
        }
    }
    return {};
}

std::string_view resolution_of(const nbl_item_s& item) {
    const std::string_view resolution = trimmed(item.text("res@resolution"));
    const bool is_size = resolution_part(resolution, false) && resolution_part(resolution, true);
    return is_size ? resolution : std::string_view();
}

std::optional<int> width_of(const nbl_item_s& item) {
    return resolution_part(resolution_of(item), false);
}

std::optional<int> height_of(const nbl_item_s& item) {
    return resolution_part(resolution_of(item), true);
}

std::optional<int> child_count_of(const nbl_item_s& item) {
    return item.type() == NBL_ITEM_TYPE_FOLDER ? small_number(number_property(item, "@childCount"))
                                               : std::nullopt;
}

std::optional<int> seek_mode_of(const nbl_item_s& item) {
    const auto protocol_info = item.find("res@protocolInfo");
    if (!protocol_info) {
        return std::nullopt;
    }
    // Two flags: by time, by bytes.
    const std::string_view operations = ProtocolInfo(*protocol_info).parameter("DLNA.ORG_OP");
    const bool by_time = operations.size() == 2 && operations[0] == '1';
    const bool by_bytes = operations.size() == 2 && operations[1] == '1';
    return (by_bytes ? NBL_SEEK_MODE_BYTES : 0) | (by_time ? NBL_SEEK_MODE_TIME : 0);
}

std::optional<uint64_t> file_size_of(const nbl_item_s& item) {
    return number_property(item, "res@size");
}

std::optional<uint64_t> duration_of(const nbl_item_s& item) {
    return milliseconds_of(item.text("res@duration"));
}

std::optional<int> server_bookmark_of(const nbl_item_s& item) {
    const std::string_view position = item.text("upnp:lastPlaybackPosition");
    if (const auto milliseconds = milliseconds_of(position)) {
        return small_number(*milliseconds / 1000);
    }
    std::string_view rest = item.text("kvr:dcmInfo");
    while (!rest.empty()) {
        std::string_view value = next_field(rest, ',');
        if (next_field(value, '=') == "BM") {
            return small_number(number_of(trimmed(value)));
        }
    }
    return std::nullopt;
}

std::optional<uint64_t> milliseconds_of(std::string_view duration) {
    std::string_view rest = trimmed(duration);
    const auto hours = number_of(next_field(rest, ':'));
    const auto minutes = number_of(next_field(rest, ':'));
    const auto seconds = number_of(next_field(rest, '.'));
    constexpr uint64_t kMostHours = 1'000'000;
    if (!hours || !minutes || !seconds || *hours > kMostHours || *minutes > 59 || *seconds > 59) {
        return std::nullopt;
    }
    std::string fraction(rest.substr(0, 3));
    fraction.resize(3, '0');
    return ((*hours * 60 + *minutes) * 60 + *seconds) * 1000 + number_of(fraction).value_or(0);
}

int item_type_of(bool is_container, std::string_view upnp_class, std::string_view mime_type) {
    struct Row {
        std::string_view upnp_class;
        std::string_view mime_type;
        int type;
    };
    constexpr Row kRows[] = {
        {"object.item.imageItem", "image/", NBL_ITEM_TYPE_IMAGE},
        {"object.item.audioItem", "audio/", NBL_ITEM_TYPE_MUSIC},
        {"object.item.videoItem", "video/", NBL_ITEM_TYPE_VIDEO},
    };
    if (is_container) {
        return NBL_ITEM_TYPE_FOLDER;
    }
    for (const Row& row : kRows) {
        if (starts_with(upnp_class, row.upnp_class)) {
            return row.type;
        }
    }
    const std::string type = lower_case(mime_type);
    for (const Row& row : kRows) {
        if (starts_with(type, row.mime_type)) {
            return row.type;
        }
    }
    return NBL_ITEM_TYPE_OTHER;
}

}  // namespace nbl
