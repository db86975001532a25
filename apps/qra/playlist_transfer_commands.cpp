#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <stdexcept>
#include <string>
#include <system_error>
#include <vector>

#include "apps/qra/browsing.h"
#include "apps/qra/chosen_items.h"
#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/directory_path.h"
#include "apps/qra/foreign_playlist.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/job_check.h"
#include "apps/qra/open_playlist.h"
#include "apps/qra/output.h"
#include "apps/qra/playlist_place.h"
#include "apps/qra/song.h"
#include "apps/qra/terminal_text.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const std::string& message) {
    throw CommandError(ExitStatus::RequestFailed, message);
}

/// Reads the values of files through lists of their folders, one list for each.
class SongReader {
public:
    SongReader(const CommandLine& line, std::string directory)
        : line_(line), directory_(std::move(directory)), drive_(existing_directory(directory_)) {}

    /// The songs of the tiles that the command's choices mean.
    std::vector<Song> chosen() {
        CommandLine request = line_;
        request.path = line_.playlist.list_path;
        Browsing browsing(request);
        std::vector<Song> songs;
        for (const JobItem& item : chosen_items(browsing.request(), request.list, line_.playlist.positions)) {
            if (is_without_content(item.media_type) || item.media_type == QRA_MEDIA_TYPE_FOLDER) {
                continue;
            }
            browsing.request().move_to(item.tile);
            songs.push_back(song_at_cursor(browsing.request().handle()));
            check_path(songs.back().path);
        }
        if (songs.empty()) {
            fail("none of these tiles can be added");
        }
        return songs;
    }

    /// @throws CommandError for a file that is no media, or that the playlist would not find again
    Song song_of(const std::string& file) {
        std::error_code error;
        const fs::path path = fs::canonical(file, error);
        if (error) {
            fail(printable_text(file) + ": " + error.message());
        }
        check_drive(path);
        const std::map<std::string, Song>& songs = folder(path.parent_path());
        const auto found = songs.find(path.filename());
        if (found == songs.end()) {
            fail(printable_text(file) + ": no media that the system knows");
        }
        check_path(found->second.path);
        return found->second;
    }

private:
    /// A file elsewhere is refused before its folder is listed, which would make that folder a drive.
    void check_drive(const fs::path& path) const {
        const fs::path below = path.lexically_relative(drive_);
        if (!line_.playlist.internal && (below.empty() || *below.begin() == "..")) {
            fail_elsewhere(path);
        }
    }

    [[noreturn]] static void fail_elsewhere(const std::string& path) {
        fail(printable_text(path) + ": on another drive than the playlist");
    }

    /// When a playlist is read again, a path has lost its colons, bars and line feeds have broken its item,
    /// and items that do not lie on the playlist's drive are looked for beside it.
    void check_path(const std::string& path) const {
        if (path.find_first_of(":|\n") != std::string::npos) {
            fail(printable_text(path) +
                 ": a path with a colon, a bar or a line feed cannot stand in a playlist");
        }
        if (!line_.playlist.internal && path.rfind(directory_ + "/", 0) != 0) {
            fail_elsewhere(path);
        }
    }

    /// The media of a folder by the names of their files.
    const std::map<std::string, Song>& folder(const std::string& path) {
        const auto known = folders_.find(path);
        if (known != folders_.end()) {
            return known->second;
        }
        CommandLine request = line_;
        request.path = path;
        request.list = ListOptions();
        request.list.extension = line_.list.extension;
        Browsing browsing(request);
        std::map<std::string, Song>& songs = folders_[path];
        for (int tile = 0; tile < browsing.request().tile_count(); ++tile) {
            if (interrupt::requested()) {
                fail("interrupted");
            }
            browsing.request().move_to(tile);
            Song song = song_at_cursor(browsing.request().handle());
            const bool is_file = !song.path.empty() && song.media_type != QRA_MEDIA_TYPE_FOLDER &&
                                 song.media_type != QRA_MEDIA_TYPE_UPFOLDER;
            if (is_file) {
                std::string name = fs::path(song.path).filename();
                songs.emplace(std::move(name), std::move(song));
            }
        }
        return songs;
    }

    const CommandLine& line_;
    const std::string directory_;  ///< the playlist's, as the media database has it
    const fs::path drive_;         ///< the same folder where it really is
    std::map<std::string, std::map<std::string, Song>> folders_;
};

void add_all(OpenPlaylist& playlist, const std::vector<Song>& songs) {
    for (const Song& song : songs) {
        playlist.add(song);
    }
    playlist.save();
}

void report_count(const CommandLine& line, const char* what, std::size_t count) {
    if (line.json) {
        print(std::string("{\"done\":\"") + what + "\",\"items\":" + std::to_string(count) + "}\n");
    } else {
        print_note(std::to_string(count) + (count == 1 ? " item" : " items"));
    }
}

std::string read_file(const std::string& path) {
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        fail(shown_path(path) + ": " + (error ? error.message() : "no regular file"));
    }
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        fail(printable_text(path) + ": " + std::generic_category().message(errno));
    }
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<ForeignEntry> read_entries(const std::string& path) {
    try {
        return read_foreign_playlist(read_file(path));
    } catch (const std::invalid_argument& error) {
        fail(printable_text(path) + ": " + error.what());
    }
}

/// The songs of another player's list; what cannot be had is told and counted.
std::vector<Song> songs_of(const std::string& path, SongReader& reader, std::size_t& left_out) {
    const std::string directory = fs::absolute(path).parent_path();
    std::vector<Song> songs;
    for (const ForeignEntry& entry : read_entries(path)) {
        try {
            const std::string file = file_of_location(entry.location, directory);
            if (file.empty()) {
                fail(printable_text(entry.location) + ": no file of this machine");
            }
            Song song = reader.song_of(file);
            if (!entry.title.empty()) {
                song.title = entry.title;
            }
            songs.push_back(std::move(song));
        } catch (const CommandError& error) {
            if (error.status() != ExitStatus::RequestFailed || interrupt::requested()) {
                throw;
            }
            print_note(error.what());
            ++left_out;
        }
    }
    return songs;
}

ExportEntry export_entry(const Song& song, const fs::path& directory) {
    // The playlist shows the drive's path; other players shall find the file from where theirs lies.
    std::error_code error;
    const fs::path file = fs::weakly_canonical(song.path, error);
    const std::string title = song.title.empty() ? song.name : song.title;
    return {(error ? fs::path(song.path) : file).lexically_relative(directory),
            song.artist.empty() ? title : song.artist + " - " + title,
            song.duration > 0 ? static_cast<long long>((song.duration + 500) / 1000) : -1};
}

}  // namespace

void run_playlist_add(const CommandLine& line) {
    const PlaylistPlace place = playlist_place(line);
    if (line.playlist.files.empty() == line.playlist.list_path.empty()) {
        throw CommandError(ExitStatus::Usage, "add takes files, or tiles of a list with --from and --select");
    }
    OpenPlaylist playlist(place);
    SongReader reader(line, place.directory);
    std::vector<Song> songs;
    if (!line.playlist.list_path.empty()) {
        songs = reader.chosen();
    }
    for (const std::string& file : line.playlist.files) {
        songs.push_back(reader.song_of(file));
    }
    add_all(playlist, songs);
    report_count(line, "add", songs.size());
}

void run_playlist_export(const CommandLine& line) {
    const std::vector<Song> songs = OpenPlaylist(playlist_place(line)).songs();
    const bool to_stdout = line.playlist.file == "-";
    const fs::path target = to_stdout ? fs::path(line.path) / "x" : fs::path(line.playlist.file);
    const fs::path directory = existing_directory(fs::absolute(target).parent_path());
    std::vector<ExportEntry> entries;
    for (const Song& song : songs) {
        if (song.path.find_first_of("\r\n") == std::string::npos) {
            entries.push_back(export_entry(song, directory));
        } else {
            print_note(printable_text(song.path) + ": no such name can stand in an M3U8");
        }
    }
    const std::string text = write_m3u8(entries);
    if (to_stdout) {
        print(text);
        return;
    }
    std::ofstream stream(target, std::ios::binary | std::ios::trunc);
    stream << text << std::flush;
    if (!stream) {
        fail(printable_text(target.string()) + ": cannot be written");
    }
    report_count(line, "export", entries.size());
}

void run_playlist_import(const CommandLine& line) {
    CommandLine named = line;
    if (named.playlist.name.empty()) {
        named.playlist.name =
            line.playlist.internal ? kInternalName : fs::path(line.playlist.file).stem().string();
    }
    const PlaylistPlace place = playlist_place(named);
    SongReader reader(line, place.directory);
    std::size_t left_out = 0;
    const std::vector<Song> songs = songs_of(line.playlist.file, reader, left_out);
    if (songs.empty() && left_out > 0) {
        fail("no playlist was made: none of its entries can be taken");
    }
    create_playlist(place, std::max(line.playlist.max_items, static_cast<int>(songs.size())));
    tell_other_name(named.playlist.name, place.name);
    OpenPlaylist playlist(place);
    try {
        add_all(playlist, songs);
    } catch (const CommandError&) {
        playlist.remove();
        throw;
    }
    report_count(line, "import", songs.size());
    if (left_out > 0) {
        fail(std::to_string(left_out) + (left_out == 1 ? " entry was" : " entries were") + " left out");
    }
}
