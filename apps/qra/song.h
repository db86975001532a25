#ifndef QRA_APPS_QRA_SONG_H
#define QRA_APPS_QRA_SONG_H

#include <qra/qra_content_agent.h>

#include <ctime>
#include <string>

/// An item of a playlist, or a tile that is to be one. Texts are the bytes that the library gives.
struct Song {
    std::string media_id;
    std::string title;
    std::string path;
    std::string mime_type;
    std::string artist;
    std::string album;
    std::string genre;
    std::string year;
    std::string thumbnail_path;
    std::string location_tag;
    std::string format;
    std::string name;
    unsigned long long duration = 0;  ///< milliseconds
    unsigned long long size = 0;
    std::time_t added_time = 0;
    std::time_t modified_time = 0;
    int played_count = 0;
    int sample_rate = 0;
    int bit_resolution = 0;
    int bit_rate = 0;
    int media_type = 0;
    bool is_drm = false;
};

/// The tile at the cursor of a list.
Song song_at_cursor(qra_agent_handler_h list);

/// Adds a song to an open playlist. Bars and line feeds of its texts, which the playlist's file cannot hold,
/// become slashes and blanks.
qra_error_code_e add_song(qra_playlist_handler_h playlist, const Song& song);

/// Reads an item of an open playlist.
qra_error_code_e get_song(qra_playlist_handler_h playlist, int index, Song& song);

/// One JSON object on a line, with the names that tiles have for the values; bytes that are not UTF-8 are
/// replaced.
std::string json_of(const Song& song, int index);

#endif
