#ifndef QRA_NUBELINK_ITEM_VALUES_H
#define QRA_NUBELINK_ITEM_VALUES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/nubelink/host/item_record.h"

namespace nbl {

// Values that are worked out of an item's properties when they are asked for. None and an empty text: the
// item does not have it.

/// The fields of a protocol info: "http-get:*:image/jpeg:DLNA.ORG_PN=JPEG_LRG;DLNA.ORG_OP=01".
struct ProtocolInfo {
    explicit ProtocolInfo(std::string_view text);
    /// The value of one of the DLNA parameters, as "DLNA.ORG_OP"; empty for none.
    std::string_view parameter(std::string_view name) const;

    std::string_view protocol;
    std::string_view mime_type;
    std::string_view parameters;
};

std::string_view mime_type_of(const nbl_item_s& item);
std::string extension_of(const nbl_item_s& item);
std::string_view artist_of(const nbl_item_s& item);
/// "1920x1080", only if it is of that form.
std::string_view resolution_of(const nbl_item_s& item);
std::optional<int> width_of(const nbl_item_s& item);
std::optional<int> height_of(const nbl_item_s& item);
std::optional<int> child_count_of(const nbl_item_s& item);
std::optional<int> seek_mode_of(const nbl_item_s& item);
std::optional<uint64_t> file_size_of(const nbl_item_s& item);
std::optional<uint64_t> duration_of(const nbl_item_s& item);
/// The position that the server keeps, in seconds.
std::optional<int> server_bookmark_of(const nbl_item_s& item);

/// "H+:MM:SS", with or without a fraction of a second, in milliseconds.
std::optional<uint64_t> milliseconds_of(std::string_view duration);

/// The type that an object's class and mime type make it, an nbl_item_type_e.
int item_type_of(bool is_container, std::string_view upnp_class, std::string_view mime_type);

}  // namespace nbl

#endif
