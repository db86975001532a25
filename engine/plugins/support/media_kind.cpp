#include "engine/plugins/support/media_kind.h"

#include <glib.h>
#include <qra/qra_types.h>

#include <algorithm>

#include "platform/media-content/host/metadata/media_types.h"

namespace engine {

namespace {

struct Kind {
    std::string_view content_type;  ///< a list's, and the first half of a MIME type
    int media_type;
};
constexpr Kind kKinds[] = {
    {"image", QRA_MEDIA_TYPE_IMAGE},
    {"video", QRA_MEDIA_TYPE_VIDEO},
    {"audio", QRA_MEDIA_TYPE_MUSIC},
};

int media_type_of(std::string_view content_type) {
    for (const Kind& kind : kKinds) {
        if (kind.content_type == content_type) {
            return kind.media_type;
        }
    }
    return 0;
}

/// "image/jpeg" of "Image/JPEG; q=1".
std::string plain_mime_type(std::string_view content_type) {
    std::string plain(content_type.substr(0, content_type.find(';')));
    while (!plain.empty() && g_ascii_isspace(plain.back())) {
        plain.pop_back();
    }
    plain.erase(0, plain.find_first_not_of(" \t\r\n"));
    std::transform(plain.begin(), plain.end(), plain.begin(), g_ascii_tolower);
    return plain;
}

int media_type_of(media_content::MediaKind kind) {
    switch (kind) {
        case media_content::MediaKind::kImage:
            return QRA_MEDIA_TYPE_IMAGE;
        case media_content::MediaKind::kVideo:
            return QRA_MEDIA_TYPE_VIDEO;
        case media_content::MediaKind::kSound:
        case media_content::MediaKind::kMusic:
            return QRA_MEDIA_TYPE_MUSIC;
        default:
            return 0;
    }
}

}  // namespace

MediaKind media_kind_of(std::string_view content_type, std::string_view file_name) {
    MediaKind kind;
    kind.mime_type = plain_mime_type(content_type);
    const size_t slash = kind.mime_type.find('/');
    if (slash != std::string::npos) {
        kind.media_type = media_type_of(std::string_view(kind.mime_type).substr(0, slash));
    }
    if (kind.media_type == 0) {
        if (const media_content::MediaType* type = media_content::find_media_type(file_name)) {
            kind.media_type = media_type_of(type->kind);
            if (kind.media_type != 0) {
                kind.mime_type = type->mime_type;
            }
        }
    }
    return kind;
}

bool is_wanted(int media_type, std::string_view content_type) {
    return media_type != 0 && (content_type.empty() || media_type_of(content_type) == media_type);
}

}  // namespace engine
