#include "libqra-agent/playlist/qra_playlist_manager.h"

#include "common/util/qra_log.h"

namespace {

qra_error_code_e NotScanned(const std::string& strMountPath) {
    QRA_LOG_WARNING(QRA_TAG_COMMON, "Not exists, path[%s]!!", strMountPath.c_str());
    return QRA_ERROR_NOT_EXIST;
}

}  // namespace

qra_error_code_e CQRAPlaylistManager::GetCount(const std::string& strMountPath, int*) {
    return NotScanned(strMountPath);
}

qra_error_code_e CQRAPlaylistManager::GetPlayList(const std::string& strMountPath, int,
                                                  std::shared_ptr<M3UPlaylist>*) {
    return NotScanned(strMountPath);
}

qra_error_code_e CQRAPlaylistManager::GetDBIndex(const std::string& strMountPath, const std::string&, int&) {
    return NotScanned(strMountPath);
}
