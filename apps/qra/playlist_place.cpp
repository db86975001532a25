#include "apps/qra/playlist_place.h"

#include <algorithm>

#include "apps/qra/command_line.h"
#include "apps/qra/directory_path.h"
#include "apps/qra/exit_status.h"
#include "apps/qra/media_drives.h"
#include "apps/qra/media_path.h"
#include "apps/qra/output.h"
#include "apps/qra/terminal_text.h"

std::string playlist_directory(const CommandLine& line) {
    if (line.playlist.internal) {
        return existing_directory(line.path);
    }
    MediaDrives drives;
    return drives.drive_of(media_path(drives, line.path)).link_path;
}

std::string kept_name(const std::string& name) {
    std::string kept = name;
    kept.erase(std::remove(kept.begin(), kept.end(), ':'), kept.end());
    std::replace(kept.begin(), kept.end(), '\n', ' ');
    kept.erase(kept.find_last_not_of(" \t\v\f\r") + 1);
    if (kept.empty()) {
        throw CommandError(ExitStatus::Usage, "a playlist needs a name");
    }
    return kept;
}

void tell_other_name(const std::string& asked, const std::string& kept) {
    if (asked != kept) {
        print_note("the playlist is called " + printable_text(kept) + ": its file keeps no more of the name");
    }
}

PlaylistPlace playlist_place(const CommandLine& line) {
    const std::string name = kept_name(line.playlist.name);
    if (line.playlist.internal && name != kInternalName) {
        throw CommandError(ExitStatus::Usage,
                           "internal storage has one playlist that can be opened again: .bgm");
    }
    return {playlist_directory(line), name};
}
