#include "apps/qra/terminal_text.h"

#include <utf8proc.h>

#include <array>
#include <cstdarg>
#include <cstdio>

namespace {

struct Character {
    utf8proc_int32_t code_point;  // negative: not UTF-8
    std::size_t length;
};

Character next_character(std::string_view bytes) {
    utf8proc_int32_t code_point = -1;
    const auto* data = reinterpret_cast<const utf8proc_uint8_t*>(bytes.data());
    const utf8proc_ssize_t length =
        utf8proc_iterate(data, static_cast<utf8proc_ssize_t>(bytes.size()), &code_point);
    if (length <= 0) {
        return {-1, 1};
    }
    return {code_point, static_cast<std::size_t>(length)};
}

/// Formatting characters of Unicode are invisible or turn the text around; those that build emoji and join
/// letters (zero-width joiner and non-joiner) belong to names and stay.
bool may_be_shown(utf8proc_int32_t code_point) {
    switch (utf8proc_category(code_point)) {
        case UTF8PROC_CATEGORY_CC:
        case UTF8PROC_CATEGORY_ZL:
        case UTF8PROC_CATEGORY_ZP:
            return false;
        case UTF8PROC_CATEGORY_CF:
            return code_point == 0x200C || code_point == 0x200D || code_point == 0x00AD;
        default:
            return true;
    }
}

__attribute__((format(printf, 1, 2))) std::string formatted(const char* format, ...) {
    std::array<char, 64> buffer{};
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    va_end(arguments);
    return buffer.data();
}

std::string escape_of(utf8proc_int32_t code_point) {
    switch (code_point) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            return code_point < 0x100 ? formatted("\\x%02x", static_cast<unsigned>(code_point))
                                      : formatted("\\u%04x", static_cast<unsigned>(code_point));
    }
}

}  // namespace

std::string printable_text(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const auto [code_point, length] = next_character(bytes);
        if (code_point < 0) {
            text += formatted("\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(bytes.front())));
        } else if (may_be_shown(code_point)) {
            text += bytes.substr(0, length);
        } else {
            text += escape_of(code_point);
        }
        bytes.remove_prefix(length);
    }
    return text;
}

std::string shown_path(const std::string& path) {
    constexpr std::size_t kMostCharacters = 200;
    if (path.empty()) {
        return "''";
    }
    const std::string text = printable_text(path.substr(0, kMostCharacters));
    return path.size() > kMostCharacters ? text + "..." : text;
}

std::size_t cell_width(std::string_view text) {
    std::size_t cells = 0;
    while (!text.empty()) {
        const auto [code_point, length] = next_character(text);
        cells += code_point < 0 ? 1 : static_cast<std::size_t>(utf8proc_charwidth(code_point));
        text.remove_prefix(length);
    }
    return cells;
}

std::string padded(const std::string& text, std::size_t width) {
    return text + std::string(width - std::min(width, cell_width(text)) + 2, ' ');
}

std::string fit_to_cells(std::string_view text, std::size_t cells, std::string_view ellipsis) {
    const std::size_t width = cell_width(text);
    if (width <= cells) {
        return std::string(text) + std::string(cells - width, ' ');
    }
    if (cells == 0) {
        return {};
    }
    std::string cut;
    std::size_t used = 0;
    while (!text.empty()) {
        const auto [code_point, length] = next_character(text);
        const std::size_t next =
            code_point < 0 ? 1 : static_cast<std::size_t>(utf8proc_charwidth(code_point));
        if (used + next > cells - 1) {
            break;
        }
        cut += text.substr(0, length);
        used += next;
        text.remove_prefix(length);
    }
    return cut + std::string(ellipsis) + std::string(cells - 1 - used, ' ');
}

std::string readable_size(std::uint64_t bytes) {
    if (bytes < 1000) {
        return std::to_string(bytes) + " B";
    }
    constexpr std::string_view kUnits = "kMGTPE";
    double value = static_cast<double>(bytes) / 1000;
    std::size_t unit = 0;
    while (value >= 999.5 && unit + 1 < kUnits.size()) {
        value /= 1000;
        ++unit;
    }
    return formatted("%.*f %cB", value < 9.95 ? 1 : 0, value, kUnits[unit]);
}

std::string readable_duration(std::uint64_t milliseconds) {
    const unsigned long long seconds = milliseconds / 1000;
    if (seconds < 3600) {
        return formatted("%llu:%02llu", seconds / 60, seconds % 60);
    }
    return formatted("%llu:%02llu:%02llu", seconds / 3600, seconds / 60 % 60, seconds % 60);
}

std::string readable_time(std::time_t time) {
    std::tm calendar{};
    if (time == 0 || localtime_r(&time, &calendar) == nullptr) {
        return {};
    }
    std::array<char, 64> buffer{};
    return std::string(buffer.data(),
                       std::strftime(buffer.data(), buffer.size(), "%Y-%m-%d %H:%M", &calendar));
}
