#include "tests/fakes/fake_playlist_manager.h"

#include "libqra-agent/playlist/m3u_playlist.h"
#include "libqra-agent/playlist/qra_playlist_manager.h"

std::string FakePlaylists::mount_path;
std::vector<FakePlaylists::Playlist> FakePlaylists::playlists;
std::vector<std::string> FakePlaylists::scanned;

namespace {

class FakePlaylist : public M3UPlaylist {
public:
    explicit FakePlaylist(const FakePlaylists::Playlist& playlist) : playlist_(playlist) {}

    int GetItemCount() const override { return playlist_.songs; }
    std::string GetDir() const override { return FakePlaylists::mount_path; }
    std::string GetName() const override { return playlist_.name; }
    std::string GetFullPath() const override { return GetDir() + "/" + playlist_.file; }

private:
    FakePlaylists::Playlist playlist_;
};

bool is_scanned(const std::string& mount_path) {
    return !FakePlaylists::playlists.empty() && mount_path == FakePlaylists::mount_path;
}

}  // namespace

CQRAPlaylistManager::CQRAPlaylistManager() = default;

CQRAPlaylistManager::~CQRAPlaylistManager() = default;

qra_error_code_e CQRAPlaylistManager::Create(const std::string& mount_path) {
    FakePlaylists::scanned.push_back(mount_path);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAPlaylistManager::GetCount(const std::string& mount_path, int* count) {
    if (!is_scanned(mount_path))
        return QRA_ERROR_NOT_EXIST;
    *count = static_cast<int>(FakePlaylists::playlists.size());
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAPlaylistManager::GetPlayList(const std::string& mount_path, int index,
                                                  std::shared_ptr<M3UPlaylist>* playlist) {
    if (!is_scanned(mount_path))
        return QRA_ERROR_NOT_EXIST;
    if (index < 0 || index >= static_cast<int>(FakePlaylists::playlists.size()))
        return QRA_ERROR_INVALID_PARAM;
    *playlist = std::make_shared<FakePlaylist>(FakePlaylists::playlists[index]);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAPlaylistManager::GetDBIndex(const std::string& mount_path, const std::string& name,
                                                 int& index) {
    if (!is_scanned(mount_path))
        return QRA_ERROR_NOT_EXIST;
    for (size_t i = 0; i < FakePlaylists::playlists.size(); ++i) {
        if (FakePlaylists::playlists[i].name == name) {
            index = static_cast<int>(i);
            return QRA_ERROR_NONE;
        }
    }
    return QRA_ERROR_NOT_EXIST;
}
