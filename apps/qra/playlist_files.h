#ifndef QRA_APPS_QRA_PLAYLIST_FILES_H
#define QRA_APPS_QRA_PLAYLIST_FILES_H

#include <string>
#include <vector>

/// A playlist as its file tells it.
struct PlaylistFile {
    std::string file;  ///< in its directory
    std::string name;  ///< the display name, by which it is opened
    int items = 0;
};

/// The playlists in a directory, by their names' bytes; of two files with one name the first in the
/// directory's order. A directory that cannot be read has none.
std::vector<PlaylistFile> playlists_in(const std::string& directory);

#endif
