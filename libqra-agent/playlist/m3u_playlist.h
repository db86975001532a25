#ifndef QRA_AGENT_PLAYLIST_M3U_PLAYLIST_H
#define QRA_AGENT_PLAYLIST_M3U_PLAYLIST_H

#include <string>

/// One playlist file, as those see it that show it as a tile. What reads and writes the file is not in this
/// build.
class M3UPlaylist {
public:
    virtual ~M3UPlaylist() = default;

    /// Number of songs.
    virtual int GetItemCount() const = 0;
    /// The directory that holds the file; on a USB drive, its mount path.
    virtual std::string GetDir() const = 0;
    /// The name for display.
    virtual std::string GetName() const = 0;
    /// The file with its directory.
    virtual std::string GetFullPath() const = 0;
};

#endif
