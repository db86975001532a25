#include "libqra-agent/share/src/qra_playlist_threads.h"

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/playlist/m3u_playlist.h"
#include "libqra-agent/playlist/qra_playlist_manager.h"

namespace {

bool CheckShareHandler(bool bInitialised) {
    if (!bInitialised)
        QRA_LOG_WARNING(QRA_TAG_SEND, "InitShareHandler() faild.");
    return bInitialised;
}

/// The manager knows drives by their paths without a slash at the end.
bool ReadMountPath(const qra_share_s& share, std::string& strMountPath) {
    if (share.mount_path == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "MountPath NULL!");
        return false;
    }
    strMountPath = CQRAUtil::RemoveForwardSlashInPath(share.mount_path);
    return true;
}

bool FindPlayList(const qra_share_s& share, std::string& strMountPath, std::string& strPlayListName,
                  std::shared_ptr<M3UPlaylist>& pList) {
    if (!ReadMountPath(share, strMountPath))
        return false;
    if (share.playlist_name == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "playlist name NULL!");
        return false;
    }
    strPlayListName = share.playlist_name;
    const qra_error_code_e eCode =
        CQRAPlaylistManager::GetInstance()->GetPlayList(strMountPath, strPlayListName, &pList);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Get playlist[%s] from path[%s] faild!!", strPlayListName.c_str(),
                        strMountPath.c_str());
        return false;
    }
    return true;
}

CQRAPlayListItem BuildPlayListItem(const CQRAShareFileInfo& info) {
    CQRAPlayListItem item;
    item.m_strMediaId = info.GetMediaId();
    item.m_strName = info.GetFileName();
    item.m_strTitle = info.GetTitle();
    item.m_strPath = info.GetFilePath();
    item.m_strMimeType = info.GetMimeType();
    item.m_strArtist = info.GetArtist();
    item.m_strAlbum = info.GetAlbum();
    item.m_strGenre = info.GetGenre();
    item.m_strYear = info.GetYear();
    item.m_strThumbnailPath = info.GetThumbnailPath();
    item.m_strLocationTag = info.GetLocationTag();
    item.m_strFormat = info.GetFormat();
    item.m_nDuration = info.GetDuration();
    item.m_nAddTime = static_cast<int32_t>(info.GetAddTime());
    item.m_nModTime = static_cast<int32_t>(info.GetModTime());
    item.m_nSize = static_cast<int64_t>(info.GetFileSize());
    item.m_nPlayCount = info.GetPlayCount();
    item.m_nSampleRate = info.GetSamplerate();
    item.m_nBitResolution = info.GetBitResolition();
    item.m_nBitRate = info.GetBitrate();
    item.m_nMediaType = info.GetFileType();
    item.m_bDrm = info.GetIsDrm();
    return item;
}

}  // namespace

CQRAPlayListDeleteThread::~CQRAPlayListDeleteThread() {
    t_EndJob();
}

qra_error_code_e CQRAPlayListDeleteThread::Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                                                  qra_share_user_data_s* pUserData,
                                                  CQRASendHandle** ppSendHandle) {
    if (!CheckShareHandler(t_InitShareHandler(pShare, pUserData, pAgentHandle,
                                              QRA_PROCESSOR_TYPE_PLAYLIST_DELETE, this, ppSendHandle)) ||
        !ReadMountPath(*pShare, m_strMountPath)) {
        return QRA_ERROR_INVALID_PARAM;
    }
    return t_StartJob("share_playlist_delete_thread");
}

qra_error_code_e CQRAPlayListDeleteThread::Stop(CQRASendHandle* pSendHandle, qra_stop_type_e) {
    QRA_LOG_INFO(QRA_TAG_SEND, "Stop playlist delete, nShareHandler[%p].", static_cast<void*>(pSendHandle));
    return t_StopJob();
}

SHARE_RESULT_TYPE CQRAPlayListDeleteThread::t_JobProcess(void*) {
    QRA_ASSERT(t_pShareFileInfo != NULL);
    const std::string& strName = t_pShareFileInfo->GetFileName();
    if (CQRAPlaylistManager::GetInstance()->Delete(m_strMountPath, strName) != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Delete playlist file[%s] from path[%s] faild!!", strName.c_str(),
                        m_strMountPath.c_str());
        return SHARE_RESULT_FAILED;
    }
    return SHARE_RESULT_SUCCESS;
}

CQRAPlayListItemAddThread::~CQRAPlayListItemAddThread() {
    t_EndJob();
}

qra_error_code_e CQRAPlayListItemAddThread::Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                                                   qra_share_user_data_s* pUserData,
                                                   CQRASendHandle** ppSendHandle) {
    if (!CheckShareHandler(t_InitShareHandler(pShare, pUserData, pAgentHandle,
                                              QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_ADD, this, ppSendHandle)) ||
        !FindPlayList(*pShare, m_strMountPath, m_strPlayListName, m_pList)) {
        return QRA_ERROR_INVALID_PARAM;
    }
    return t_StartJob("share_playlist_item_add_thread");
}

qra_error_code_e CQRAPlayListItemAddThread::Stop(CQRASendHandle* pSendHandle, qra_stop_type_e) {
    QRA_LOG_INFO(QRA_TAG_SEND, "Stop playlist item add, nShareHandler[%p].", static_cast<void*>(pSendHandle));
    return t_StopJob();
}

SHARE_RESULT_TYPE CQRAPlayListItemAddThread::t_JobProcess(void*) {
    QRA_ASSERT(t_pShareFileInfo != NULL);
    QRA_ASSERT(m_pList != NULL);
    const CQRAPlayListItem item = BuildPlayListItem(*t_pShareFileInfo);
    if (!m_pList->AddItem(&item)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Add item[%s] to playlist faild!!", item.m_strPath.c_str());
        return SHARE_RESULT_FAILED;
    }
    return SHARE_RESULT_SUCCESS;
}

CQRAPlayListItemDeleteThread::~CQRAPlayListItemDeleteThread() {
    t_EndJob();
}

qra_error_code_e CQRAPlayListItemDeleteThread::Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                                                      qra_share_user_data_s* pUserData,
                                                      CQRASendHandle** ppSendHandle) {
    if (!CheckShareHandler(t_InitShareHandler(pShare, pUserData, pAgentHandle,
                                              QRA_PROCESSOR_TYPE_PLAYLIST_ITEM_DELETE, this, ppSendHandle)) ||
        !FindPlayList(*pShare, m_strMountPath, m_strPlayListName, m_pList)) {
        return QRA_ERROR_INVALID_PARAM;
    }
    return t_StartJob("share_playlist_item_delete_thread");
}

qra_error_code_e CQRAPlayListItemDeleteThread::Stop(CQRASendHandle* pSendHandle, qra_stop_type_e) {
    QRA_LOG_INFO(QRA_TAG_SEND, "Stop playlist item delete, nShareHandler[%p].",
                 static_cast<void*>(pSendHandle));
    return t_StopJob();
}

SHARE_RESULT_TYPE CQRAPlayListItemDeleteThread::t_JobProcess(void*) {
    QRA_ASSERT(t_pShareFileInfo != NULL);
    QRA_ASSERT(m_pList != NULL);
    if (!m_pList->DeleteItem(t_pShareFileInfo->GetMediaId())) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Delete item[%s] from playlist faild!!",
                        t_pShareFileInfo->GetFilePath().c_str());
        return SHARE_RESULT_FAILED;
    }
    return SHARE_RESULT_SUCCESS;
}
