#ifndef QRA_APPS_QRA_TERMINAL_TEXT_H
#define QRA_APPS_QRA_TERMINAL_TEXT_H

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

/// The text as it may be sent to a terminal: control characters, characters that change the direction of
/// writing, and bytes that are not UTF-8 are shown as escapes ("\n", "\x1b", "\u202e"), all else is
/// unchanged.
std::string printable_text(std::string_view bytes);

/// A path for messages: printable, and short enough for a line or two.
std::string shown_path(const std::string& path);

/// Number of terminal cells that printable UTF-8 takes: 2 for a wide character, 0 for a combining one.
std::size_t cell_width(std::string_view text);

/// The text in exactly `cells` terminal cells: padded with blanks, or cut with "ellipsis" (of one cell) at
/// its end.
std::string fit_to_cells(std::string_view text, std::size_t cells, std::string_view ellipsis);

/// Printable text as a column of that many terminal cells, with the two blanks that part it from the next
/// one.
std::string padded(const std::string& text, std::size_t width);

/// "0 B", "999 B", "1.0 kB", "4.2 MB", "17 GB": decimal units, two digits or more.
std::string readable_size(std::uint64_t bytes);

/// "0:07", "3:45", "1:02:03" of milliseconds.
std::string readable_duration(std::uint64_t milliseconds);

/// "2021-05-06 10:20" in the local zone; empty for 0 and for times that no calendar holds.
std::string readable_time(std::time_t time);

#endif
