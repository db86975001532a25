#include "platform/media-content/host/text/like.h"

#include <cstddef>

namespace media_content {

namespace {

/// Where the character that starts at `at` ends. A byte that starts no character counts as one.
size_t character_end(std::string_view text, size_t at) {
    const auto continues = [&](size_t i) { return (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80; };
    const bool leads = static_cast<unsigned char>(text[at]) >= 0xC0;
    ++at;
    while (leads && at < text.size() && continues(at)) {
        ++at;
    }
    return at;
}

}  // namespace

bool matches_pattern(std::string_view text, std::string_view pattern) {
    constexpr size_t kNone = std::string_view::npos;
    size_t t = 0;
    size_t p = 0;
    size_t after_percent = kNone;  // where to go on in the pattern when a trial fails
    size_t retry = 0;              // and from where in the text
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '%') {
            after_percent = ++p;
            retry = t;
        } else if (p < pattern.size() && pattern[p] == '_') {
            t = character_end(text, t);
            ++p;
        } else if (p < pattern.size() && pattern[p] == text[t]) {
            ++t;
            ++p;
        } else if (after_percent != kNone) {
            retry = character_end(text, retry);
            t = retry;
            p = after_percent;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('%', p) == kNone;
}

}  // namespace media_content
