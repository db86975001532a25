#include "platform/nubelink/host/text.h"

#include <algorithm>
#include <charconv>
#include <cstring>

#include "platform/support/glib_ptr.h"

namespace nbl {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

bool is_continuation(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

/// Bytes of the character that begins the text, 0 if it is none that XML may hold.
size_t character_length(std::string_view text) {
    const auto first = static_cast<unsigned char>(text[0]);
    if (first < 0x80) {
        return first >= 0x20 || first == '\t' || first == '\n' || first == '\r' ? 1 : 0;
    }
    const gunichar character = g_utf8_get_char_validated(text.data(), static_cast<gssize>(text.size()));
    if (character > 0x10FFFF || character == 0xFFFE || character == 0xFFFF) {
        return 0;
    }
    return static_cast<size_t>(g_unichar_to_utf8(character, nullptr));
}

/// Whether eight bytes are ASCII without control characters: most of most texts.
bool are_plain(const char* bytes) {
    constexpr uint64_t kEach = 0x0101010101010101;
    uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    // Taking 0x20 off each byte borrows from a higher one only where this one gets its highest bit.
    return ((word | (word - 0x20 * kEach)) & 0x80 * kEach) == 0;
}

/// Where the first character stands that XML may not hold; the text's size if there is none.
size_t find_broken(std::string_view text) {
    constexpr size_t kAtOnce = sizeof(uint64_t);
    size_t at = 0;
    while (at < text.size()) {
        if (text.size() - at >= kAtOnce && are_plain(text.data() + at)) {
            at += kAtOnce;
            continue;
        }
        const size_t length = character_length(text.substr(at));
        if (length == 0) {
            break;
        }
        at += length;
    }
    return at;
}

/// What XML gives a meaning, and how a text names it.
struct Entity {
    std::string_view reference;
    char character;
};
constexpr Entity kEntities[] = {
    {"&lt;", '<'}, {"&gt;", '>'}, {"&quot;", '"'}, {"&amp;", '&'}, {"&apos;", '\''}};

/// The entity whose reference a text begins with; null for none.
const Entity* entity_at(std::string_view text) {
    for (const Entity& entity : kEntities) {
        if (starts_with(text, entity.reference)) {
            return &entity;
        }
    }
    return nullptr;
}

/// Whether a text that begins with an ampersand begins with a reference to a character or a known entity.
bool is_reference(std::string_view text) {
    if (entity_at(text) != nullptr) {
        return true;
    }
    text.remove_prefix(1);
    constexpr size_t kLongestNumber = 9;
    return starts_with(text, "#") && text.substr(0, kLongestNumber).find(';') != std::string_view::npos;
}

/// The encoding that an XML declaration names; empty for none.
std::string declared_encoding(std::string_view document) {
    if (!starts_with(document, "<?xml")) {
        return {};
    }
    const std::string_view declaration = document.substr(0, std::min(document.find("?>"), size_t{200}));
    size_t at = declaration.find("encoding");
    at = at == std::string_view::npos ? at : declaration.find_first_of("\"'", at);
    if (at == std::string_view::npos) {
        return {};
    }
    const std::string_view rest = declaration.substr(at + 1);
    return std::string(rest.substr(0, rest.find(declaration[at])));
}

}  // namespace

void repair_text(std::string& text) {
    size_t broken = find_broken(text);
    if (broken == text.size()) {
        return;
    }
    std::string repaired;
    repaired.reserve(text.size() + text.size() / 8);
    std::string_view rest = text;
    while (broken < rest.size()) {
        repaired += rest.substr(0, broken);
        repaired += kReplacement;
        rest.remove_prefix(broken + 1);
        broken = find_broken(rest);
    }
    repaired += rest;
    text = std::move(repaired);
}

void mend_document(std::string& document) {
    const std::string encoding = declared_encoding(document);
    if (!encoding.empty() && g_ascii_strcasecmp(encoding.c_str(), "utf-8") != 0) {
        size_t size = 0;
        const glib::TextPtr converted(g_convert(document.data(), static_cast<gssize>(document.size()),
                                                "UTF-8", encoding.c_str(), nullptr, &size, nullptr));
        if (converted != nullptr) {
            document.assign(converted.get(), size);
        }
    }
    mend_xml(document);
}

void escape_loose_ampersands(std::string& document) {
    std::string escaped;
    std::string_view rest = document;
    size_t from = 0;
    for (size_t at = rest.find('&'); at != std::string_view::npos; at = rest.find('&', from)) {
        from = at + 1;
        if (!is_reference(rest.substr(at))) {
            escaped += rest.substr(0, at);
            escaped += "&amp;";
            rest.remove_prefix(from);
            from = 0;
        }
    }
    if (!escaped.empty()) {
        escaped += rest;
        document = std::move(escaped);
    }
}

void mend_xml(std::string& document) {
    repair_text(document);
    // What stands in a CDATA section is no reference anyway.
    if (document.find("<![CDATA[") == std::string::npos) {
        escape_loose_ampersands(document);
    }
}

std::string without_entities(std::string_view text) {
    std::string plain;
    plain.reserve(text.size());
    for (size_t at = text.find('&'); at != std::string_view::npos; at = text.find('&')) {
        const Entity* entity = entity_at(text.substr(at));
        plain += text.substr(0, at);
        plain += entity != nullptr ? entity->character : '&';
        text.remove_prefix(at + (entity != nullptr ? entity->reference.size() : 1));
    }
    plain += text;
    return plain;
}

size_t cut_at_character(std::string_view text, size_t most) {
    if (text.size() <= most) {
        return text.size();
    }
    while (most > 0 && is_continuation(text[most])) {
        --most;
    }
    return most;
}

std::string xml_escaped(std::string_view text) {
    std::string escaped;
    escaped.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += c;
        }
    }
    return escaped;
}

std::string printable(std::string_view text) {
    std::string shown(text.substr(0, cut_at_character(text, 200)));
    repair_text(shown);
    std::replace_if(
        shown.begin(), shown.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; },
        ' ');
    return shown;
}

std::optional<uint64_t> number_of(std::string_view text) {
    uint64_t number = 0;
    const char* end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (text.empty() || error != std::errc() || stopped != end) {
        return std::nullopt;
    }
    return number;
}

std::string_view next_field(std::string_view& rest, char separator) {
    const size_t end = std::min(rest.find(separator), rest.size());
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return field;
}

std::string_view trimmed(std::string_view text) {
    const size_t first = text.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(" \t\r\n") - first + 1);
}

std::string lower_case(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), g_ascii_tolower);
    return lower;
}

bool starts_with(std::string_view text, std::string_view beginning) {
    return text.substr(0, beginning.size()) == beginning;
}

}  // namespace nbl
