#include "apps/qra/playlist_files.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <string_view>

namespace {

bool starts_with(std::string_view text, std::string_view prefix) {
    return text.substr(0, prefix.size()) == prefix;
}

std::string_view trimmed(std::string_view line) {
    constexpr std::string_view blanks = " \t\n\v\f\r";
    const size_t begin = line.find_first_not_of(blanks);
    return begin == std::string_view::npos ? std::string_view()
                                           : line.substr(begin, line.find_last_not_of(blanks) - begin + 1);
}

/// docs/playlist-format.md tells the rules.
PlaylistFile read_file(const std::filesystem::path& path) {
    constexpr std::string_view name_tag = "#EXT-X-NAME:";
    PlaylistFile playlist;
    playlist.file = path.filename().string();
    std::ifstream stream(path, std::ios::binary);
    bool is_of_item = false;
    bool is_of_stream = false;
    for (std::string bytes; std::getline(stream, bytes);) {
        const std::string_view line = trimmed(bytes);
        if (is_of_item || is_of_stream) {
            playlist.items += is_of_item ? 1 : 0;
            is_of_item = is_of_stream = false;
        } else if (starts_with(line, name_tag)) {
            playlist.name = line.substr(name_tag.size());
            playlist.name.erase(std::remove(playlist.name.begin(), playlist.name.end(), ':'),
                                playlist.name.end());
        } else if (line == name_tag.substr(0, name_tag.size() - 1)) {
            playlist.name.clear();
        } else {
            is_of_item = starts_with(line, "#EXTINF");
            is_of_stream = starts_with(line, "#EXT-X-STREAM-INF");
        }
    }
    return playlist;
}

}  // namespace

std::vector<PlaylistFile> playlists_in(const std::string& directory) {
    std::map<std::string, PlaylistFile> by_name;
    std::error_code error;
    const std::string inside = std::filesystem::canonical(directory, error).string() + "/";
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        const std::string file = entry.path().filename().string();
        const size_t dot = file.rfind('.');
        const std::string target = std::filesystem::canonical(entry.path(), error).string();
        if (dot == std::string::npos || file.substr(dot) != ".m3u" || !entry.is_regular_file(error) ||
            !starts_with(target, inside)) {
            continue;
        }
        PlaylistFile playlist = read_file(entry.path());
        by_name.emplace(playlist.name, playlist);
    }
    std::vector<PlaylistFile> playlists;
    for (auto& [name, playlist] : by_name) {
        playlists.push_back(std::move(playlist));
    }
    return playlists;
}
