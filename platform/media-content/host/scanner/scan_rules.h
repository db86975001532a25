#ifndef QRA_MEDIA_CONTENT_SCANNER_SCAN_RULES_H
#define QRA_MEDIA_CONTENT_SCANNER_SCAN_RULES_H

#include <string_view>

namespace media_content {

/// Whether a file or folder of this name is never listed: hidden ones, trash, and what systems keep for
/// themselves.
bool is_unlisted_name(std::string_view name);

}  // namespace media_content

#endif
