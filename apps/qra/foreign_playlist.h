#ifndef QRA_APPS_QRA_FOREIGN_PLAYLIST_H
#define QRA_APPS_QRA_FOREIGN_PLAYLIST_H

#include <string>
#include <vector>

/// An entry of another player's playlist.
struct ForeignEntry {
    std::string location;  ///< as the file has it: a path, of these bytes, or a URI
    std::string title;     ///< in UTF-8; empty for none
};

/// Text of any kind as UTF-8 without a byte-order mark: UTF-8 and UTF-16 by their marks, else UTF-8 where it
/// is that, else Latin-1.
std::string text_as_utf8(const std::string& bytes);

/// Reads an M3U or M3U8, a PLS or an XSPF, told apart by their content, and M3U where nothing else is said.
/// @throws std::invalid_argument for a PLS or an XSPF that cannot be read, and for what is no text
std::vector<ForeignEntry> read_foreign_playlist(const std::string& bytes);

/// The file that a location means, beside a playlist in `directory`; "" for one on the network.
/// A path that is not there in its own bytes is tried as UTF-8 text.
std::string file_of_location(const std::string& location, const std::string& directory);

/// What another player needs of an item.
struct ExportEntry {
    std::string path;  ///< relative to the playlist that is written
    std::string title;
    long long seconds = -1;  ///< -1: not known
};

/// The text of an M3U8.
std::string write_m3u8(const std::vector<ExportEntry>& entries);

#endif
