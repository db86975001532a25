#include "libqra-agent/playlist/qra_playlist_manager.h"

#include <dirent.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <utility>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/playlist/m3u_playlist.h"

namespace {

struct CloseDir {
    void operator()(DIR* pDir) const { closedir(pDir); }
};

struct FreeDevice {
    void operator()(usb_device_s* pDevice) const { free_usb_device_h(pDevice); }
};

struct FreeText {
    void operator()(char* pText) const { free(pText); }
};

std::string RealPath(const std::string& strPath) {
    const std::unique_ptr<char, FreeText> path(realpath(strPath.c_str(), nullptr));
    return CQRAUtil::CharToString(path.get());
}

/// A link to a file elsewhere: what is saved to it would destroy something that is no part of the drive.
bool LeadsOutOf(const std::string& strMountPath, const std::string& strFile) {
    struct stat info {};
    const std::string strPath = strMountPath + "/" + strFile;
    if (lstat(strPath.c_str(), &info) != 0 || !S_ISLNK(info.st_mode))
        return false;
    const std::string strInside = RealPath(strMountPath) + "/";
    return RealPath(strPath).compare(0, strInside.size(), strInside) != 0;
}

qra_error_code_e NotScanned(const std::string& strMountPath) {
    QRA_LOG_WARNING(QRA_TAG_COMMON, "Not exists, path[%s]!!", strMountPath.c_str());
    return QRA_ERROR_NOT_EXIST;
}

}  // namespace

CQRAPlaylistManager::CQRAPlaylistManager() {
    usb_device_init();
    usb_set_connected_cb(m_DealUsbEvent, this);
}

CQRAPlaylistManager::~CQRAPlaylistManager() {
    // Without it an event that is under way could come to an object that is gone.
    usb_set_connected_cb(nullptr, this);
    usb_device_fini();
}

qra_error_code_e CQRAPlaylistManager::Create(const std::string& strMountPath) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    if (m_CheckScaned(strMountPath))
        return QRA_ERROR_NONE;
    QRA_LOG_INFO(QRA_TAG_COMMON, "Create playlist[%s] begin.", strMountPath.c_str());
    PlayLists playLists;
    if (!m_Scan(strMountPath, playLists)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "scan playlist faild.");
        return QRA_ERROR_INTERNAL;
    }
    m_AddPlayList(strMountPath, std::move(playLists));
    QRA_LOG_INFO(QRA_TAG_COMMON, "Create playlist[%s] end.", strMountPath.c_str());
    return QRA_ERROR_NONE;
}

bool CQRAPlaylistManager::m_Scan(const std::string& strMountPath, PlayLists& playLists) {
    QRA_LOG_INFO(QRA_TAG_COMMON, "Start to scan playlist file from path[%s].", strMountPath.c_str());
    const std::unique_ptr<DIR, CloseDir> dir(opendir(strMountPath.c_str()));
    if (dir == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "opendir() failed.");
        return false;
    }
    while (const dirent* pEntry = readdir(dir.get())) {
        const std::string strFile = pEntry->d_name;
        if (CQRAUtil::GetFileExtension(strFile.c_str()) != "m3u")
            continue;
        auto playList = std::make_shared<M3UPlaylist>();
        if (LeadsOutOf(strMountPath, strFile) || !playList->Load(strMountPath, strFile)) {
            QRA_LOG_WARNING(QRA_TAG_COMMON, "Load [%s] failed.", strFile.c_str());
            continue;
        }
        playLists.emplace(playList->GetName(), std::move(playList));
    }
    QRA_LOG_INFO(QRA_TAG_COMMON, "End to scan playlist file from path[%s].", strMountPath.c_str());
    return true;
}

void CQRAPlaylistManager::m_AddPlayList(const std::string& strMountPath, PlayLists playLists) {
    QRA_LOG_INFO(QRA_TAG_COMMON, "Get[%zu] playlist file for path[%s].", playLists.size(),
                 strMountPath.c_str());
    m_MapAllDevicePlayLists.emplace(strMountPath, std::move(playLists));
}

qra_error_code_e CQRAPlaylistManager::Destroy(const std::string& strMountPath) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    if (m_MapAllDevicePlayLists.erase(strMountPath) == 0) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Can not find cached playlist file in path[%s].",
                        strMountPath.c_str());
        return QRA_ERROR_NOT_EXIST;
    }
    return QRA_ERROR_NONE;
}

bool CQRAPlaylistManager::m_CheckScaned(const std::string& strMountPath) const {
    return m_MapAllDevicePlayLists.count(strMountPath) > 0;
}

bool CQRAPlaylistManager::m_CheckExist(const std::string& strMountPath,
                                       const std::string& strPlayListName) const {
    const auto it = m_MapAllDevicePlayLists.find(strMountPath);
    return it != m_MapAllDevicePlayLists.end() && it->second.count(strPlayListName) > 0;
}

bool CQRAPlaylistManager::m_CheckCount(const std::string& strMountPath) const {
    const auto it = m_MapAllDevicePlayLists.find(strMountPath);
    return it == m_MapAllDevicePlayLists.end() || it->second.size() < kMaxPlayLists;
}

qra_error_code_e CQRAPlaylistManager::Exist(const std::string& strMountPath,
                                            const std::string& strPlayListName) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    return m_CheckExist(strMountPath, strPlayListName) ? QRA_ERROR_NONE : QRA_ERROR_NOT_EXIST;
}

qra_error_code_e CQRAPlaylistManager::GetCount(const std::string& strMountPath, int* pnCount) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    const auto it = m_MapAllDevicePlayLists.find(strMountPath);
    if (it == m_MapAllDevicePlayLists.end())
        return NotScanned(strMountPath);
    *pnCount = static_cast<int>(it->second.size());
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAPlaylistManager::m_FindByIndex(const std::string& strMountPath, int nIndex,
                                                    PlayLists::iterator& it) {
    const auto itDevice = m_MapAllDevicePlayLists.find(strMountPath);
    if (itDevice == m_MapAllDevicePlayLists.end())
        return NotScanned(strMountPath);
    PlayLists& playLists = itDevice->second;
    if (nIndex < 0 || static_cast<size_t>(nIndex) >= playLists.size()) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Invalid index[%d], total count[%zu].", nIndex, playLists.size());
        return QRA_ERROR_INVALID_PARAM;
    }
    it = std::next(playLists.begin(), nIndex);
    const PlayLists::const_iterator itc = it;
    QRA_ASSERT(itc->second != NULL && itc->second.get() != NULL);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAPlaylistManager::GetPlayList(const std::string& strMountPath, int nIndex,
                                                  std::shared_ptr<M3UPlaylist>* pPlayList) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    PlayLists::iterator it;
    const qra_error_code_e eCode = m_FindByIndex(strMountPath, nIndex, it);
    if (eCode == QRA_ERROR_NONE)
        *pPlayList = it->second;
    return eCode;
}

qra_error_code_e CQRAPlaylistManager::GetPlayList(const std::string& strMountPath,
                                                  const std::string& strPlayListName,
                                                  std::shared_ptr<M3UPlaylist>* pPlayList) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    if (!m_CheckExist(strMountPath, strPlayListName)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Not exist, playlist[%s]", strPlayListName.c_str());
        return QRA_ERROR_NOT_EXIST;
    }
    *pPlayList = m_MapAllDevicePlayLists[strMountPath][strPlayListName];
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAPlaylistManager::GetDBIndex(const std::string& strMountPath,
                                                 const std::string& strPlayListName, int& nIndex) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    const auto itDevice = m_MapAllDevicePlayLists.find(strMountPath);
    if (itDevice == m_MapAllDevicePlayLists.end())
        return NotScanned(strMountPath);
    const PlayLists& playLists = itDevice->second;
    const auto it = playLists.find(strPlayListName);
    if (it == playLists.end()) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Not exists, path[%s], playlist[%s]", strMountPath.c_str(),
                        strPlayListName.c_str());
        return QRA_ERROR_NOT_EXIST;
    }
    nIndex = static_cast<int>(std::distance(playLists.begin(), it));
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAPlaylistManager::Add(const std::string& strMountPath, const std::string& strPlayListName,
                                          int nMaxItemCount) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    return m_Add(strMountPath, strPlayListName, nMaxItemCount);
}

qra_error_code_e CQRAPlaylistManager::AddIfScanned(const std::string& strMountPath,
                                                   const std::string& strPlayListName, int nMaxItemCount) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    if (!m_CheckScaned(strMountPath))
        return NotScanned(strMountPath);
    return m_Add(strMountPath, strPlayListName, nMaxItemCount);
}

qra_error_code_e CQRAPlaylistManager::m_Add(const std::string& strMountPath,
                                            const std::string& strPlayListName, int nMaxItemCount) {
    QRA_LOG_INFO(QRA_TAG_COMMON, "Add playlist: strMountPath[%s], strPlayListName[%s], nMaxItemCount[%d].",
                 strMountPath.c_str(), strPlayListName.c_str(), nMaxItemCount);
    if (m_CheckExist(strMountPath, strPlayListName)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Already exists: PlayList [%s], path[%s].", strPlayListName.c_str(),
                        strMountPath.c_str());
        return QRA_ERROR_ALREADY_EXIST;
    }
    if (!m_CheckCount(strMountPath)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Exceed max num[%zu] of playlists!!", kMaxPlayLists);
        return QRA_ERROR_PLAYLIST_MAX;
    }
    auto playList = std::make_shared<M3UPlaylist>();
    if (!playList->CreateNew(strMountPath, strPlayListName, nMaxItemCount)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Create PlayList [%s] failed.", strPlayListName.c_str());
        return QRA_ERROR_CREATE_FAILED;
    }
    const auto it = m_MapAllDevicePlayLists.find(strMountPath);
    QRA_ASSERT(it != m_MapAllDevicePlayLists.end());
    it->second.emplace(strPlayListName, std::move(playList));
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAPlaylistManager::Delete(const std::string& strMountPath, int nIndex) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    PlayLists::iterator it;
    const qra_error_code_e eCode = m_FindByIndex(strMountPath, nIndex, it);
    return eCode == QRA_ERROR_NONE ? m_Delete(m_MapAllDevicePlayLists[strMountPath], it) : eCode;
}

qra_error_code_e CQRAPlaylistManager::Delete(const std::string& strMountPath,
                                             const std::string& strPlayListName) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    QRA_LOG_INFO(QRA_TAG_COMMON, "Delete playlist: strMountPath[%s], strPlayListName[%s].",
                 strMountPath.c_str(), strPlayListName.c_str());
    if (!m_CheckExist(strMountPath, strPlayListName)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Not exists: PlayList [%s], path[%s].", strPlayListName.c_str(),
                        strMountPath.c_str());
        return QRA_ERROR_NOT_EXIST;
    }
    PlayLists& playLists = m_MapAllDevicePlayLists[strMountPath];
    return m_Delete(playLists, playLists.find(strPlayListName));
}

qra_error_code_e CQRAPlaylistManager::m_Delete(PlayLists& playLists, PlayLists::iterator it) {
    if (!it->second->Remove()) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Remove [%s] failed.", it->first.c_str());
        return QRA_ERROR_INTERNAL;
    }
    playLists.erase(it);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAPlaylistManager::Rename(const std::string& strMountPath, const std::string& strOldName,
                                             const std::string& strNewName) {
    const CQRALockGuard<CQRAMutex> lock(m_Mutex);
    if (!m_CheckExist(strMountPath, strOldName)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Not exist, old name playlist[%s]", strOldName.c_str());
        return QRA_ERROR_NOT_EXIST;
    }
    if (m_CheckExist(strMountPath, strNewName)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Already exist, new name playlist[%s]", strNewName.c_str());
        return QRA_ERROR_ALREADY_EXIST;
    }
    PlayLists& playLists = m_MapAllDevicePlayLists[strMountPath];
    const auto it = playLists.find(strOldName);
    if (!it->second->Rename(strNewName)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Rename [%s] to [%s] failed.", strOldName.c_str(),
                        strNewName.c_str());
        return QRA_ERROR_INTERNAL;
    }
    auto node = playLists.extract(it);
    node.key() = strNewName;
    playLists.insert(std::move(node));
    return QRA_ERROR_NONE;
}

void CQRAPlaylistManager::m_DealUsbEvent(usb_device_s* pDevice, char* pAction, void* pUser) {
    if (pDevice == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "usb_device == NULL");
        return;
    }
    const std::unique_ptr<usb_device_s, FreeDevice> device(pDevice);
    if (pAction == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "action == NULL");
        return;
    }
    if (usb_device_get_class(pDevice) != USB_DEVICE_CLASS_MASS_STORAGE) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "usb_device is not storage");
        return;
    }
    const char* pMountPath = usb_device_get_mountpath(pDevice);
    if (pMountPath == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "mount_path == NULL");
        return;
    }
    if (strcmp(pAction, "unmounted") != 0)
        return;
    QRA_ASSERT(pUser != NULL);
    auto* pThis = static_cast<CQRAPlaylistManager*>(pUser);
    const std::string strMountPath = pMountPath;
    const CQRALockGuard<CQRAMutex> lock(pThis->m_Mutex);
    QRA_LOG_INFO(QRA_TAG_COMMON, "USB UNMOUNTED : %s", strMountPath.c_str());
    pThis->m_DelPlayList(strMountPath);
}

void CQRAPlaylistManager::m_DelPlayList(const std::string& strMountPath) {
    if (!m_CheckScaned(strMountPath))
        return;
    QRA_LOG_INFO(QRA_TAG_COMMON, "Delete playlist file from path[%s].", strMountPath.c_str());
    m_MapAllDevicePlayLists.erase(strMountPath);
    QRA_LOG_INFO(QRA_TAG_COMMON, "After Delete, Total cached [%zu] device's playlist file.",
                 m_MapAllDevicePlayLists.size());
}
