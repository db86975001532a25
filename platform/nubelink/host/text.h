#ifndef QRA_NUBELINK_TEXT_H
#define QRA_NUBELINK_TEXT_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nbl {

/// Makes a text from a stranger one that XML may hold: bytes that are not UTF-8, and characters that XML
/// forbids, become U+FFFD each; all others stay. Costs nothing where there are none.
void repair_text(std::string& text);

/// Escapes what looks like the beginning of a reference in XML and is none: "Tom & Jerry", "?a=1&b=2".
void escape_loose_ampersands(std::string& document);

/// Makes XML from a stranger, decoded already, what a parser can read: both of the above.
void mend_xml(std::string& document);

/// Makes a document from a stranger, as it came, what a parser can read: as UTF-8, converted where its XML
/// declaration names another encoding, and mended.
void mend_document(std::string& document);

/// The text with XML's own five entities in place of the references to them. Other references stay.
std::string without_entities(std::string_view text);

/// The length of the longest beginning of `text` that has at most `most` bytes and ends between two
/// characters.
size_t cut_at_character(std::string_view text, size_t most);

/// The text with what XML gives a meaning escaped, for element content and attribute values.
std::string xml_escaped(std::string_view text);

/// A text of a server as a log line may show it: one line, no control characters, at most 200 bytes.
std::string printable(std::string_view text);

/// The whole text as a decimal number; none for anything else, or one that does not fit.
std::optional<uint64_t> number_of(std::string_view text);

/// What lies before the first `separator`, which goes too; everything if there is none.
std::string_view next_field(std::string_view& rest, char separator);

/// Without white space at both ends.
std::string_view trimmed(std::string_view text);

/// The same text with ASCII capitals folded.
std::string lower_case(std::string_view text);

bool starts_with(std::string_view text, std::string_view beginning);

}  // namespace nbl

#endif
