#ifndef QRA_ENGINE_PLUGINS_SUPPORT_MEDIA_KIND_H
#define QRA_ENGINE_PLUGINS_SUPPORT_MEDIA_KIND_H

#include <string>
#include <string_view>

namespace engine {

/// What a remote file is, as far as its name and its server tell.
struct MediaKind {
    int media_type = 0;     ///< the item field "MEDIA_TYPE"; 0: no medium
    std::string mime_type;  ///< without parameters; empty: not known
};

/// A server's word that it is a picture, a video or sound is believed; else the name's extension decides.
MediaKind media_kind_of(std::string_view content_type, std::string_view file_name);

/// Whether a list of that content type ("image", "video", "audio", empty for all) shows media of that type.
bool is_wanted(int media_type, std::string_view content_type);

}  // namespace engine

#endif
