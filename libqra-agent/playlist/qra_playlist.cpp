#include <qra/qra_playlist.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>

#include "common/util/qra_assert.h"
#include "common/util/qra_file64.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/playlist/m3u_playlist.h"
#include "libqra-agent/playlist/qra_playlist_location.h"
#include "libqra-agent/playlist/qra_playlist_manager.h"

namespace {

constexpr char kExtension[] = ".m3u";

qra_handle_value_t ValueOf(const CQRAM3UHandle* pHandle) {
    return reinterpret_cast<qra_handle_value_t>(pHandle);
}

/// The gate of every function that takes a handle: `operation` is called with the playlist of an open one.
template <class Operation>
qra_error_code_e Forward(CQRAM3UHandle* pHandle, Operation operation) {
    if (!CQRAHandlerMgr::GetInstance()->CheckHandler(ValueOf(pHandle), QRA_HANDLE_TYPE_M3U)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "CheckHandler[%p] faild!!", static_cast<void*>(pHandle));
        return QRA_ERROR_INVALID_HANDLE;
    }
    QRA_ASSERT(pHandle != NULL && pHandle->GetM3U() != NULL && pHandle->GetM3U().get() != NULL);
    const std::shared_ptr<M3UPlaylist> playList = pHandle->GetM3U();
    return operation(*playList);
}

bool NoFile(const qra_playlist_file_s* pParam) {
    return pParam == nullptr || pParam->path == nullptr || pParam->name == nullptr;
}

qra_error_code_e InvalidParam(const char* szWhat) {
    QRA_LOG_WARNING(QRA_TAG_COMMON, "%s", szWhat);
    return QRA_ERROR_INVALID_PARAM;
}

/// The manager compares paths as they are, and it has to be the drive's mount path.
std::string DirectoryOf(const qra_playlist_file_s& param) {
    return qra_is_on_usb(param.path) ? CQRAUtil::RemoveForwardSlashInPath(param.path) : param.path;
}

CQRAPlaylistManager* Manager() {
    return CQRAPlaylistManager::GetInstance();
}

/// Reads the playlists of a drive at its first use.
qra_error_code_e InitDrive(const std::string& strPath) {
    std::string strMountPath;
    return CQRALocalAgent::m_InitAllPlayList(strPath, strMountPath);
}

qra_error_code_e CreateOnUsb(const std::string& strPath, const std::string& strName, int nMaxItemCount) {
    QRA_LOG_INFO(QRA_TAG_COMMON, "Create playlist file in USB.");
    const qra_error_code_e eCode = InitDrive(strPath);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    return Manager()->AddIfScanned(strPath, strName, nMaxItemCount);
}

qra_error_code_e CreateInFlash(const std::string& strPath, const std::string& strName, int nMaxItemCount) {
    QRA_LOG_INFO(QRA_TAG_COMMON, "Create playlist file in flash.");
    M3UPlaylist playList;
    return playList.CreateNew(strPath, strName, nMaxItemCount) ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

qra_error_code_e OpenOnUsb(const std::string& strPath, const std::string& strName,
                           std::shared_ptr<M3UPlaylist>& playList) {
    // A drive that cannot be read has no playlists.
    InitDrive(strPath);
    const qra_error_code_e eCode = Manager()->GetPlayList(strPath, strName, &playList);
    if (eCode != QRA_ERROR_NONE)
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Get playlist faild.");
    return eCode;
}

qra_error_code_e OpenInFlash(const std::string& strPath, const std::string& strName,
                             std::shared_ptr<M3UPlaylist>& playList) {
    playList = std::make_shared<M3UPlaylist>();
    if (!playList->Load(strPath, strName + kExtension)) {
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Load data from[%s] faild.", strName.c_str());
        return QRA_ERROR_INTERNAL;
    }
    QRA_LOG_INFO(QRA_TAG_COMMON, "Load data from[%s] success.", strName.c_str());
    return QRA_ERROR_NONE;
}

CQRAPlayListItem MakeItem(const qra_playlist_item_s& record) {
    CQRAPlayListItem item;
    item.m_strMediaId = CQRAUtil::CharToString(record.media_id);
    item.m_strTitle = CQRAUtil::CharToString(record.title);
    item.m_strPath = CQRAUtil::CharToString(record.path);
    item.m_strMimeType = CQRAUtil::CharToString(record.mime_type);
    item.m_strArtist = CQRAUtil::CharToString(record.artist);
    item.m_strAlbum = CQRAUtil::CharToString(record.album);
    item.m_strGenre = CQRAUtil::CharToString(record.genre);
    item.m_strYear = CQRAUtil::CharToString(record.year);
    item.m_strThumbnailPath = CQRAUtil::CharToString(record.thumbnail_path);
    item.m_strLocationTag = CQRAUtil::CharToString(record.location_tag);
    item.m_strFormat = CQRAUtil::CharToString(record.format);
    item.m_strName = CQRAUtil::CharToString(record.name);
    item.m_nDuration = record.duration;
    item.m_nAddTime = static_cast<int32_t>(record.addtime);
    item.m_nModTime = static_cast<int32_t>(record.modtime);
    item.m_nSize = static_cast<int64_t>(record.size);
    item.m_nPlayCount = record.playcount;
    item.m_nSampleRate = record.samplerate;
    item.m_nBitResolution = record.bit_resolution;
    item.m_nBitRate = record.bit_rate;
    item.m_nMediaType = record.media_type;
    item.m_bDrm = record.drm;
    return item;
}

struct TextField {
    char* qra_playlist_item_s::*record;
    std::string CQRAPlayListItem::*item;
};

constexpr TextField kTextFields[] = {
    {&qra_playlist_item_s::media_id, &CQRAPlayListItem::m_strMediaId},
    {&qra_playlist_item_s::title, &CQRAPlayListItem::m_strTitle},
    {&qra_playlist_item_s::path, &CQRAPlayListItem::m_strPath},
    {&qra_playlist_item_s::mime_type, &CQRAPlayListItem::m_strMimeType},
    {&qra_playlist_item_s::artist, &CQRAPlayListItem::m_strArtist},
    {&qra_playlist_item_s::album, &CQRAPlayListItem::m_strAlbum},
    {&qra_playlist_item_s::genre, &CQRAPlayListItem::m_strGenre},
    {&qra_playlist_item_s::year, &CQRAPlayListItem::m_strYear},
    {&qra_playlist_item_s::thumbnail_path, &CQRAPlayListItem::m_strThumbnailPath},
    {&qra_playlist_item_s::location_tag, &CQRAPlayListItem::m_strLocationTag},
    {&qra_playlist_item_s::format, &CQRAPlayListItem::m_strFormat},
    {&qra_playlist_item_s::name, &CQRAPlayListItem::m_strName},
};

qra_error_code_e FillRecord(const CQRAPlayListItem& item, qra_playlist_item_s& record) {
    qra_error_code_e eCode = QRA_ERROR_NONE;
    for (const TextField& field : kTextFields) {
        // What the record held is the caller's, who was to give an empty one.
        record.*field.record = strdup((item.*field.item).c_str());
        if (record.*field.record == nullptr)
            eCode = QRA_ERROR_OUT_OF_MEMORY;
    }
    record.duration = item.m_nDuration;
    record.addtime = item.m_nAddTime;
    record.modtime = item.m_nModTime;
    record.size = static_cast<unsigned long long>(item.m_nSize);
    record.playcount = item.m_nPlayCount;
    record.samplerate = item.m_nSampleRate;
    record.bit_resolution = item.m_nBitResolution;
    record.bit_rate = item.m_nBitRate;
    record.media_type = item.m_nMediaType;
    record.drm = item.m_bDrm;
    return eCode;
}

}  // namespace

qra_error_code_e qra_playlist_exist_v2(qra_playlist_file_param_h pParam) {
    if (NoFile(pParam))
        return InvalidParam("Invalid param.");
    const std::string strPath = DirectoryOf(*pParam);
    const std::string strName = pParam->name;
    bool bExists = false;
    if (qra_is_on_usb(strPath))
        bExists = Manager()->Exist(strPath, strName) == QRA_ERROR_NONE;
    else
        bExists = CQRAFile64::FileExists((strPath + "/" + strName + kExtension).c_str());
    if (bExists)
        QRA_LOG_INFO(QRA_TAG_COMMON, "playlist: path[%s], name[%s] exits.", strPath.c_str(), strName.c_str());
    else
        QRA_LOG_INFO(QRA_TAG_COMMON, "playlist: path[%s], name[%s] not exits.", strPath.c_str(),
                     strName.c_str());
    return bExists ? QRA_ERROR_NONE : QRA_ERROR_NOT_EXIST;
}

qra_error_code_e qra_playlist_create_v2(qra_playlist_file_param_h pParam) {
    if (NoFile(pParam))
        return InvalidParam("Invalid param.");
    QRA_LOG_INFO(QRA_TAG_COMMON, "Create:szPath[%s], szName[%s], max count[%d]", pParam->path, pParam->name,
                 pParam->max_item_count);
    const std::string strPath = DirectoryOf(*pParam);
    const qra_error_code_e eCode = qra_is_on_usb(strPath)
                                       ? CreateOnUsb(strPath, pParam->name, pParam->max_item_count)
                                       : CreateInFlash(strPath, pParam->name, pParam->max_item_count);
    if (eCode != QRA_ERROR_NONE)
        QRA_LOG_WARNING(QRA_TAG_COMMON, "Create faild, eCode[%d]!!", eCode);
    else
        QRA_LOG_INFO(QRA_TAG_COMMON, "Create success.");
    return eCode;
}

qra_error_code_e qra_playlist_open_v2(qra_playlist_file_param_h pParam, qra_playlist_handler_h* pHandle) {
    if (NoFile(pParam) || pHandle == nullptr)
        return InvalidParam("Invalid param!");
    QRA_LOG_INFO(QRA_TAG_COMMON, "Open: szPath[%s], szName[%s], max count[%d]", pParam->path, pParam->name,
                 pParam->max_item_count);
    const std::string strPath = DirectoryOf(*pParam);
    std::shared_ptr<M3UPlaylist> playList;
    const qra_error_code_e eCode = qra_is_on_usb(strPath) ? OpenOnUsb(strPath, pParam->name, playList)
                                                          : OpenInFlash(strPath, pParam->name, playList);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    auto* pM3UHandle = new CQRAM3UHandle;
    pM3UHandle->SetM3U(std::move(playList));
    *pHandle = pM3UHandle;
    QRA_LOG_INFO(QRA_TAG_COMMON, "Open m3u handle success, get handle[%p].", static_cast<void*>(pM3UHandle));
    CQRAHandlerMgr::GetInstance()->Add(ValueOf(pM3UHandle));
    return QRA_ERROR_NONE;
}

qra_error_code_e qra_playlist_close_v2(qra_playlist_handler_h hPlaylist) {
    return Forward(hPlaylist, [hPlaylist](M3UPlaylist&) {
        CQRAHandlerMgr::GetInstance()->Delete(ValueOf(hPlaylist));
        delete hPlaylist;
        QRA_LOG_INFO(QRA_TAG_COMMON, "qra_playlist_close_v2 success.");
        return QRA_ERROR_NONE;
    });
}

qra_error_code_e qra_playlist_remove_v2(qra_playlist_handler_h hPlaylist) {
    return Forward(hPlaylist, [](M3UPlaylist& playList) {
        const std::string strPath = playList.GetDir();
        const std::string strName = playList.GetName();
        QRA_LOG_INFO(QRA_TAG_COMMON, "Remove: strPath[%s], strName[%s].", strPath.c_str(), strName.c_str());
        qra_error_code_e eCode = QRA_ERROR_NONE;
        if (qra_is_on_usb(strPath))
            eCode = Manager()->Delete(strPath, strName);
        else if (!playList.Remove())
            eCode = QRA_ERROR_INTERNAL;
        if (eCode != QRA_ERROR_NONE)
            QRA_LOG_WARNING(QRA_TAG_COMMON, "Remove faild!!");
        else
            QRA_LOG_INFO(QRA_TAG_COMMON, "Remove success!!");
        return eCode;
    });
}

qra_error_code_e qra_playlist_rename_v2(qra_playlist_handler_h hPlaylist, const char* szNewName) {
    return Forward(hPlaylist, [szNewName](M3UPlaylist& playList) {
        if (szNewName == nullptr)
            return InvalidParam("Invalid param.");
        const std::string strPath = playList.GetDir();
        const std::string strOldName = playList.GetName();
        QRA_LOG_INFO(QRA_TAG_COMMON, "Rename: strPath[%s], strOldName[%s], strNewName[%s].", strPath.c_str(),
                     strOldName.c_str(), szNewName);
        qra_error_code_e eCode = QRA_ERROR_NONE;
        if (qra_is_on_usb(strPath))
            eCode = Manager()->Rename(strPath, strOldName, szNewName);
        else if (!playList.Rename(szNewName))
            eCode = QRA_ERROR_INTERNAL;
        if (eCode != QRA_ERROR_NONE)
            QRA_LOG_WARNING(QRA_TAG_COMMON, "Rename faild!!.");
        else
            QRA_LOG_INFO(QRA_TAG_COMMON, "Rename sucess!!");
        return eCode;
    });
}

qra_error_code_e qra_playlist_add_v2(qra_playlist_handler_h hPlaylist, qra_playlist_item_param_h szItem) {
    return Forward(hPlaylist, [szItem](M3UPlaylist& playList) {
        if (szItem == nullptr || szItem->media_id == nullptr || szItem->path == nullptr)
            return InvalidParam("Invalid param!!");
        const CQRAPlayListItem item = MakeItem(*szItem);
        QRA_LOG_INFO(QRA_TAG_COMMON, "Add item[%s] to playlist file: path[%s], name[%s]",
                     item.m_strPath.c_str(), playList.GetDir().c_str(), playList.GetName().c_str());
        if (!playList.AddItem(&item)) {
            QRA_LOG_WARNING(QRA_TAG_COMMON, "add item to playlist faild.");
            return QRA_ERROR_INTERNAL;
        }
        QRA_LOG_INFO(QRA_TAG_COMMON, "add item to playlist success.");
        return QRA_ERROR_NONE;
    });
}

qra_error_code_e qra_playlist_delete_v2(qra_playlist_handler_h hPlaylist, int nIndex) {
    return Forward(hPlaylist, [nIndex](M3UPlaylist& playList) {
        QRA_LOG_INFO(QRA_TAG_COMMON, "Delete the [%d]th item from playlist file: path[%s], name[%s]", nIndex,
                     playList.GetDir().c_str(), playList.GetName().c_str());
        if (!playList.DeleteItem(nIndex)) {
            QRA_LOG_WARNING(QRA_TAG_COMMON, "delete item from playlist faild.");
            return QRA_ERROR_INVALID_PARAM;
        }
        QRA_LOG_INFO(QRA_TAG_COMMON, "delete item from playlist success.");
        return QRA_ERROR_NONE;
    });
}

qra_error_code_e qra_playlist_get_count_v2(qra_playlist_handler_h hPlaylist, int* pnCount) {
    return Forward(hPlaylist, [pnCount](M3UPlaylist& playList) {
        if (pnCount == nullptr)
            return InvalidParam("szCount == NULL");
        *pnCount = playList.GetItemCount();
        QRA_LOG_INFO(QRA_TAG_COMMON, "There are [%d] items in playlist file: path[%s], name[%s].", *pnCount,
                     playList.GetDir().c_str(), playList.GetName().c_str());
        return QRA_ERROR_NONE;
    });
}

qra_error_code_e qra_playlist_get_item_v2(qra_playlist_handler_h hPlaylist, int nIndex,
                                          qra_playlist_item_param_h szItem) {
    return Forward(hPlaylist, [nIndex, szItem](M3UPlaylist& playList) {
        const CQRAPlayListItem* pItem = playList.GetItem(nIndex);
        if (pItem == nullptr) {
            QRA_LOG_WARNING(QRA_TAG_COMMON, "Get item[%d] from playlist [%s] faild.", nIndex,
                            playList.GetName().c_str());
            return QRA_ERROR_INTERNAL;
        }
        return szItem != nullptr ? FillRecord(*pItem, *szItem) : InvalidParam("szItem == NULL");
    });
}

qra_error_code_e qra_playlist_flush_v2(qra_playlist_handler_h hPlaylist) {
    return Forward(hPlaylist, [](M3UPlaylist& playList) {
        QRA_LOG_INFO(QRA_TAG_COMMON, "Flush playlist. path[%s], name[%s].", playList.GetDir().c_str(),
                     playList.GetName().c_str());
        if (!playList.Flush()) {
            QRA_LOG_WARNING(QRA_TAG_COMMON, "Flush faild.");
            return QRA_ERROR_INTERNAL;
        }
        QRA_LOG_INFO(QRA_TAG_COMMON, "Flush success.");
        return QRA_ERROR_NONE;
    });
}
