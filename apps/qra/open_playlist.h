#ifndef QRA_APPS_QRA_OPEN_PLAYLIST_H
#define QRA_APPS_QRA_OPEN_PLAYLIST_H

#include <qra/qra_content_agent.h>

#include <string>
#include <vector>

#include "apps/qra/song.h"

/// Where a playlist lies.
struct PlaylistPlace {
    std::string directory;  ///< a drive's mount path, or a directory of internal storage
    std::string name;
};

/// Makes an empty playlist. @throws CommandError
void create_playlist(const PlaylistPlace& place, int max_items);

/// An open playlist, closed at its end without being saved. All operations throw CommandError.
class OpenPlaylist {
public:
    explicit OpenPlaylist(const PlaylistPlace& place);
    ~OpenPlaylist();
    OpenPlaylist(const OpenPlaylist&) = delete;
    OpenPlaylist& operator=(const OpenPlaylist&) = delete;

    std::vector<Song> songs() const;
    void add(const Song& song);
    void remove_item(int index);
    /// A save that fails may have cost the playlist its file.
    void save();
    void rename(const std::string& name);
    void remove();

private:
    /// @param internal_error  what QRA_ERROR_INTERNAL means for the call; null for what it means elsewhere
    void check(qra_error_code_e code, const char* internal_error = nullptr) const;

    const std::string name_;
    qra_playlist_handler_h handle_ = nullptr;
};

#endif
