#ifndef QRA_MEDIA_CONTENT_TEXT_LIKE_H
#define QRA_MEDIA_CONTENT_TEXT_LIKE_H

#include <string_view>

namespace media_content {

/// Whether the whole text is what the pattern says: '%' stands for any characters, '_' for one character.
/// Both arguments are folded already.
bool matches_pattern(std::string_view folded_text, std::string_view folded_pattern);

}  // namespace media_content

#endif
