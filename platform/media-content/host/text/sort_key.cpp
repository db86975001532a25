#include "platform/media-content/host/text/sort_key.h"

#include <utf8proc.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace media_content {

namespace {

bool is_ascii(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

char ascii_lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

const utf8proc_uint8_t* bytes(std::string_view text) {
    return reinterpret_cast<const utf8proc_uint8_t*>(text.data());
}

/// The length of the longest start of `text` that is valid UTF-8.
size_t valid_length(std::string_view text) {
    size_t at = 0;
    while (at < text.size()) {
        utf8proc_int32_t code_point = 0;
        const utf8proc_ssize_t used =
            utf8proc_iterate(bytes(text) + at, static_cast<utf8proc_ssize_t>(text.size() - at), &code_point);
        if (used <= 0) {
            break;
        }
        at += static_cast<size_t>(used);
    }
    return at;
}

void append_folded(std::string_view valid, std::string& out) {
    utf8proc_uint8_t* folded = nullptr;
    const utf8proc_ssize_t length =
        utf8proc_map(bytes(valid), static_cast<utf8proc_ssize_t>(valid.size()), &folded,
                     static_cast<utf8proc_option_t>(UTF8PROC_STABLE | UTF8PROC_COMPOSE | UTF8PROC_CASEFOLD));
    if (length < 0) {
        out.append(valid);
        return;
    }
    out.append(reinterpret_cast<const char*>(folded), static_cast<size_t>(length));
    std::free(folded);
}

/// Numbers of the same length compare as their digits do, and a longer one is larger.
void append_length(size_t length, std::string& key) {
    constexpr size_t kLongest = 254;
    key.push_back(static_cast<char>(static_cast<unsigned char>(std::min(length, kLongest + 1))));
    if (length > kLongest) {
        for (int shift = 24; shift >= 0; shift -= 8) {
            key.push_back(static_cast<char>(static_cast<uint32_t>(length) >> shift));
        }
    }
}

}  // namespace

std::string fold(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    if (is_ascii(text)) {
        std::transform(text.begin(), text.end(), std::back_inserter(out), ascii_lower);
        return out;
    }
    while (!text.empty()) {
        const size_t valid = valid_length(text);
        if (valid > 0) {
            append_folded(text.substr(0, valid), out);
        }
        text.remove_prefix(valid);
        if (!text.empty()) {
            out.push_back(text.front());
            text.remove_prefix(1);
        }
    }
    return out;
}

std::string sort_key(std::string_view text) {
    const std::string folded = fold(text);
    std::string key;
    std::string leading_zeros;  // of each run of digits; they decide only where all else is equal
    bool any_leading_zero = false;
    key.reserve(folded.size() + 8);
    for (size_t at = 0; at < folded.size();) {
        if (!is_digit(folded[at])) {
            key.push_back(folded[at++]);
            continue;
        }
        const size_t end = static_cast<size_t>(
            std::find_if_not(folded.begin() + static_cast<ptrdiff_t>(at), folded.end(), is_digit) -
            folded.begin());
        const size_t first = std::min(folded.find_first_not_of('0', at), end - 1);
        key.push_back('0');
        append_length(end - first, key);
        key.append(folded, first, end - first);
        append_length(first - at, leading_zeros);
        any_leading_zero |= first > at;
        at = end;
    }
    if (any_leading_zero) {
        key.push_back('\0');
        key += leading_zeros;
    }
    return key;
}

std::string file_extension(std::string_view file_name) {
    const size_t dot = file_name.rfind('.');
    return dot == std::string_view::npos ? std::string() : fold(file_name.substr(dot + 1));
}

}  // namespace media_content
