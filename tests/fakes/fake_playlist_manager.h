#ifndef QRA_TESTS_FAKES_FAKE_PLAYLIST_MANAGER_H
#define QRA_TESTS_FAKES_FAKE_PLAYLIST_MANAGER_H

#include <string>
#include <vector>

/// Takes the place of the playlist manager in a test program: one drive with these playlists. An empty list
/// is a drive that was not scanned.
struct FakePlaylists {
    struct Playlist {
        std::string name;
        std::string file;
        int songs;
    };

    static std::string mount_path;
    static std::vector<Playlist> playlists;
    static std::vector<std::string> scanned;  ///< the mount paths that a scan was asked for
};

#endif
