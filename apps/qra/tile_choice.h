#ifndef QRA_APPS_QRA_TILE_CHOICE_H
#define QRA_APPS_QRA_TILE_CHOICE_H

#include <string>
#include <variant>
#include <vector>

/// Tiles by their list index, from the first to the last of them.
struct IndexChoice {
    int first;
    int last;  ///< INT_MAX: to the end of the list
};

/// The tiles of a group, by its number from 0.
struct GroupChoice {
    int group;
};

/// The tiles whose field has a text that matches a pattern of the shell.
struct FieldChoice {
    std::string field;
    std::string pattern;
};

using TileChoice = std::variant<IndexChoice, GroupChoice, FieldChoice>;

/// Reads what chooses tiles, parts with commas between them: "3", "3-7", "3-" to the end, "all", "group:2",
/// and "TITLE=IMG*", where a backslash takes the meaning from the sign behind it.
/// @throws std::invalid_argument which tells the part that cannot be read
std::vector<TileChoice> parse_tile_choices(const std::string& text);

/// Whether a field's text is one that was chosen.
bool matches(const FieldChoice& choice, const std::string& text);

#endif
