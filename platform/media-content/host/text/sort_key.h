#ifndef QRA_MEDIA_CONTENT_TEXT_SORT_KEY_H
#define QRA_MEDIA_CONTENT_TEXT_SORT_KEY_H

#include <string>
#include <string_view>

namespace media_content {

/// The text with all case differences and ways of composing letters taken away: case-folded NFC. Bytes that
/// are not UTF-8 stay as they are.
std::string fold(std::string_view text);

/**
 * A key whose bytes, compared as bytes, put texts into the order in which people expect them: without regard
 * to case, with runs of digits compared by value ("IMG_2" before "IMG_10"), and bytes that are not UTF-8 by
 * value. Two texts have the same key exactly when they fold to the same text.
 */
std::string sort_key(std::string_view text);

/// What stands after the last dot of a file name, folded; empty where there is no dot.
std::string file_extension(std::string_view file_name);

}  // namespace media_content

#endif
