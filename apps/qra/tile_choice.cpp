#include "apps/qra/tile_choice.h"

#include <fnmatch.h>

#include <charconv>
#include <climits>
#include <optional>
#include <stdexcept>
#include <string_view>

namespace {

constexpr std::string_view kAll = "all";
constexpr std::string_view kGroup = "group:";
constexpr std::string_view kSignsOfFields = "ABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_";

std::optional<int> whole_number(std::string_view text) {
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    const bool valid = error == std::errc() && rest == end && number >= 0;
    return valid ? std::optional<int>(number) : std::nullopt;
}

std::optional<TileChoice> index_choice(std::string_view part) {
    if (part == kAll) {
        return IndexChoice{0, INT_MAX};
    }
    const std::size_t dash = part.find('-');
    const auto first = whole_number(part.substr(0, dash));
    const auto last = dash == std::string_view::npos ? first
                      : dash + 1 == part.size()      ? std::optional<int>(INT_MAX)
                                                     : whole_number(part.substr(dash + 1));
    if (!first || !last || *first > *last) {
        return std::nullopt;
    }
    return IndexChoice{*first, *last};
}

std::optional<TileChoice> group_choice(std::string_view part) {
    if (part.rfind(kGroup, 0) != 0) {
        return std::nullopt;
    }
    const auto group = whole_number(part.substr(kGroup.size()));
    return group ? std::optional<TileChoice>(GroupChoice{*group}) : std::nullopt;
}

std::optional<TileChoice> field_choice(std::string_view part) {
    const std::size_t equals = part.find('=');
    if (equals == std::string_view::npos || equals == 0 ||
        part.substr(0, equals).find_first_not_of(kSignsOfFields) != std::string_view::npos) {
        return std::nullopt;
    }
    return FieldChoice{std::string(part.substr(0, equals)), std::string(part.substr(equals + 1))};
}

/// The end of the part that begins at `from`: a comma without a backslash before it, or the end of the text.
std::size_t end_of_part(std::string_view text, std::size_t from) {
    for (std::size_t at = from; at < text.size(); ++at) {
        if (text[at] == '\\') {
            ++at;
        } else if (text[at] == ',') {
            return at;
        }
    }
    return text.size();
}

}  // namespace

std::vector<TileChoice> parse_tile_choices(const std::string& text) {
    std::vector<TileChoice> choices;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t end = end_of_part(text, from);
        const std::string_view part = std::string_view(text).substr(from, end - from);
        bool read = false;
        for (const auto parse : {index_choice, group_choice, field_choice}) {
            const auto choice = read ? std::nullopt : parse(part);
            if (choice) {
                choices.push_back(*choice);
                read = true;
            }
        }
        if (!read) {
            throw std::invalid_argument("'" + std::string(part) +
                                        "' chooses nothing: write 3, 3-7, 3-, all, group:2 or FIELD=text");
        }
        from = end + 1;
    }
    return choices;
}

bool matches(const FieldChoice& choice, const std::string& text) {
    return fnmatch(choice.pattern.c_str(), text.c_str(), 0) == 0;
}
