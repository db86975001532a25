#include "apps/qra/playlist_place.h"

#include "apps/qra/command_line.h"
#include "apps/qra/exit_status.h"
#include "apps/qra/media_drives.h"
#include "apps/qra/media_path.h"

std::string playlist_directory(const CommandLine& line) {
    if (line.playlist.internal) {
        return existing_directory(line.path);
    }
    MediaDrives drives;
    return drives.drive_of(media_path(drives, line.path)).link_path;
}

PlaylistPlace playlist_place(const CommandLine& line) {
    if (line.playlist.name.empty()) {
        throw CommandError(ExitStatus::Usage, "a playlist needs a name");
    }
    if (line.playlist.internal && line.playlist.name != kInternalName) {
        throw CommandError(ExitStatus::Usage,
                           "internal storage has one playlist that can be opened again: .bgm");
    }
    return {playlist_directory(line), line.playlist.name};
}
