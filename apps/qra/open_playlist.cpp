#include "apps/qra/open_playlist.h"

#include <memory>

#include "apps/qra/exit_status.h"
#include "apps/qra/terminal_text.h"

namespace {

struct CodeText {
    qra_error_code_e code;
    const char* text;
};

constexpr CodeText kCodeTexts[] = {
    {QRA_ERROR_NOT_EXIST, "no such playlist, or its drive has gone"},
    {QRA_ERROR_ALREADY_EXIST, "there is a playlist of this name"},
    {QRA_ERROR_PLAYLIST_MAX, "the drive has as many playlists as it may have (5)"},
    {QRA_ERROR_CREATE_FAILED,
     "the name is refused (at most 256 bytes, no /), or the drive cannot be written"},
    {QRA_ERROR_INVALID_PARAM, "refused"},
    {QRA_ERROR_INTERNAL, "its file cannot be read or written"},
};

constexpr char kNotSaved[] =
    "it cannot be saved; look for it, as a drive that is full has lost the playlist now";

void check_code(const std::string& name, qra_error_code_e code, const char* internal_error = nullptr) {
    if (code == QRA_ERROR_NONE) {
        return;
    }
    std::string text = "error " + std::to_string(code);
    for (const CodeText& entry : kCodeTexts) {
        if (entry.code == code) {
            text = code == QRA_ERROR_INTERNAL && internal_error != nullptr ? internal_error : entry.text;
        }
    }
    throw CommandError(ExitStatus::RequestFailed, "playlist " + printable_text(name) + ": " + text);
}

using FileOwner = std::unique_ptr<qra_playlist_file_s, qra_error_code_e (*)(qra_playlist_file_param_h)>;

FileOwner make_file(const PlaylistPlace& place, int max_items) {
    qra_playlist_file_param_h file = nullptr;
    qra_create_playlist_file_param(&file);
    qra_param_set_playlist_file_path(file, place.directory.c_str());
    qra_param_set_playlist_file_name(file, place.name.c_str());
    qra_param_set_playlist_file_max_item_count(file, max_items);
    return {file, &qra_destroy_playlist_file_param};
}

}  // namespace

void create_playlist(const PlaylistPlace& place, int max_items) {
    check_code(place.name, qra_playlist_create_v2(make_file(place, max_items).get()));
}

OpenPlaylist::OpenPlaylist(const PlaylistPlace& place) : name_(place.name) {
    check(qra_playlist_open_v2(make_file(place, 0).get(), &handle_));
}

OpenPlaylist::~OpenPlaylist() {
    qra_playlist_close_v2(handle_);
}

void OpenPlaylist::check(qra_error_code_e code, const char* internal_error) const {
    check_code(name_, code, internal_error);
}

std::vector<Song> OpenPlaylist::songs() const {
    int count = 0;
    check(qra_playlist_get_count_v2(handle_, &count));
    std::vector<Song> songs(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        check(get_song(handle_, i, songs[static_cast<std::size_t>(i)]));
    }
    return songs;
}

void OpenPlaylist::add(const Song& song) {
    check(add_song(handle_, song), "it is full");
}

void OpenPlaylist::remove_item(int index) {
    check(qra_playlist_delete_v2(handle_, index));
}

void OpenPlaylist::save() {
    check(qra_playlist_flush_v2(handle_), kNotSaved);
}

void OpenPlaylist::rename(const std::string& name) {
    constexpr std::size_t kLongestName = 256;
    if (name.size() > kLongestName || name.find('/') != std::string::npos) {
        check(QRA_ERROR_INTERNAL, "the new name is refused (at most 256 bytes, no /)");
    }
    check(qra_playlist_rename_v2(handle_, name.c_str()), kNotSaved);
}

void OpenPlaylist::remove() {
    check(qra_playlist_remove_v2(handle_));
}
