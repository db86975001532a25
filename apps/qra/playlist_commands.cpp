#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <climits>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/confirmation.h"
#include "apps/qra/json_text.h"
#include "apps/qra/open_playlist.h"
#include "apps/qra/output.h"
#include "apps/qra/playlist_files.h"
#include "apps/qra/playlist_place.h"
#include "apps/qra/song.h"
#include "apps/qra/terminal_text.h"

namespace {

/// What a command did, for programs.
void report(const CommandLine& line, const char* what, const PlaylistPlace& place) {
    if (line.json) {
        Json::Value object(Json::objectValue);
        object["done"] = what;
        object["playlist"] = printable_text(place.name);
        print_json(object, JsonCharacters::Utf8);
    }
}

std::string shown_title(const Song& song) {
    const std::string& title = song.title.empty() ? song.name : song.title;
    return printable_text(song.artist.empty() ? title : song.artist + " - " + title);
}

/// The positions that were named, the last one first.
std::vector<int> positions(const CommandLine& line, int count) {
    std::set<int, std::greater<>> positions;
    for (const TileChoice& choice : line.playlist.positions) {
        const auto* range = std::get_if<IndexChoice>(&choice);
        if (range == nullptr) {
            throw CommandError(ExitStatus::Usage, "items are named by their positions, such as 0,3-5");
        }
        const int last = range->last == INT_MAX ? std::max(range->first, count - 1) : range->last;
        if (last >= count) {
            throw CommandError(ExitStatus::RequestFailed, "there is no item " + std::to_string(last) +
                                                              ": the playlist has " + std::to_string(count));
        }
        for (int position = range->first; position <= last; ++position) {
            positions.insert(position);
        }
    }
    return {positions.begin(), positions.end()};
}

struct Finding {
    int index;
    std::string what;  ///< "missing" or "double"
    std::string path;
};

std::vector<Finding> findings_in(const std::vector<Song>& songs) {
    std::vector<Finding> findings;
    std::set<std::string> seen;
    for (int index = 0; index < static_cast<int>(songs.size()); ++index) {
        const std::string& path = songs[static_cast<std::size_t>(index)].path;
        std::error_code error;
        if (!std::filesystem::is_regular_file(path, error)) {
            findings.push_back({index, "missing", path});
        }
        if (!seen.insert(path).second) {
            findings.push_back({index, "double", path});
        }
    }
    return findings;
}

}  // namespace

void run_playlist_list(const CommandLine& line) {
    const std::string directory = playlist_directory(line);
    for (const PlaylistFile& playlist : playlists_in(directory)) {
        if (line.playlist.internal && playlist.file != kInternalFile) {
            continue;
        }
        if (line.json) {
            Json::Value object(Json::objectValue);
            object["DISPLAY_NAME"] = printable_text(playlist.name);
            object["FILE_PATH"] = printable_text(directory + "/" + playlist.file);
            object["SONGS_COUNT"] = playlist.items;
            print_json(object, JsonCharacters::Utf8);
        } else {
            print((playlist.name.empty() ? "(no name)" : printable_text(playlist.name)) + "  " +
                  std::to_string(playlist.items) + (playlist.items == 1 ? " item\n" : " items\n"));
        }
    }
}

void run_playlist_new(const CommandLine& line) {
    const PlaylistPlace place = playlist_place(line);
    create_playlist(place, line.playlist.max_items);
    tell_other_name(line.playlist.name, place.name);
    report(line, "new", place);
}

void run_playlist_show(const CommandLine& line) {
    const std::vector<Song> songs = OpenPlaylist(playlist_place(line)).songs();
    const std::size_t width = std::to_string(songs.size()).size();
    for (int index = 0; index < static_cast<int>(songs.size()); ++index) {
        const Song& song = songs[static_cast<std::size_t>(index)];
        if (line.json) {
            print(json_of(song, index));
        } else {
            print(padded(std::to_string(index), width) + padded(shown_title(song), 40) +
                  padded(song.duration > 0 ? readable_duration(song.duration) : "", 8) +
                  printable_text(song.path) + "\n");
        }
    }
}

void run_playlist_remove(const CommandLine& line) {
    const PlaylistPlace place = playlist_place(line);
    OpenPlaylist playlist(place);
    for (const int position : positions(line, static_cast<int>(playlist.songs().size()))) {
        playlist.remove_item(position);
    }
    playlist.save();
    report(line, "remove", place);
}

void run_playlist_rename(const CommandLine& line) {
    if (line.playlist.internal) {
        throw CommandError(ExitStatus::Usage,
                           "on internal storage the name has to stay: it is also the file's");
    }
    const PlaylistPlace place = playlist_place(line);
    const std::string new_name = kept_name(line.playlist.new_name);
    OpenPlaylist(place).rename(new_name);
    tell_other_name(line.playlist.new_name, new_name);
    report(line, "rename", {place.directory, new_name});
}

void run_playlist_delete(const CommandLine& line) {
    if (!line.playlist.yes) {
        require_someone_to_ask();
    }
    const PlaylistPlace place = playlist_place(line);
    OpenPlaylist playlist(place);
    if (!line.playlist.yes && !confirmed("Delete the playlist " + printable_text(place.name) + "?")) {
        throw CommandError(ExitStatus::RequestFailed, "nothing was deleted");
    }
    playlist.remove();
    report(line, "delete", place);
}

void run_playlist_check(const CommandLine& line) {
    const std::vector<Finding> findings = findings_in(OpenPlaylist(playlist_place(line)).songs());
    for (const Finding& finding : findings) {
        if (line.json) {
            Json::Value object(Json::objectValue);
            object["INDEX"] = finding.index;
            object["problem"] = finding.what;
            object["FILE_PATH"] = printable_text(finding.path);
            print_json(object, JsonCharacters::Utf8);
        } else {
            print(std::to_string(finding.index) + "  " + finding.what + "  " + printable_text(finding.path) +
                  "\n");
        }
    }
    if (!findings.empty()) {
        throw CommandError(ExitStatus::RequestFailed, std::to_string(findings.size()) +
                                                          (findings.size() == 1 ? " problem" : " problems"));
    }
}
