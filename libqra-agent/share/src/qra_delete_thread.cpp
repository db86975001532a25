#include "libqra-agent/share/src/qra_delete_thread.h"

#include "common/util/qra_assert.h"
#include "common/util/qra_file64.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_pvr_info.h"
#include "libqra-agent/share/src/qra_share_common.h"

CQRADeleteThread::~CQRADeleteThread() {
    t_EndJob();
}

qra_error_code_e CQRADeleteThread::Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                                          qra_share_user_data_s* pUserData, CQRASendHandle** ppSendHandle) {
    m_pLocalAgent = t_InitLocalShareHandler(pShare, pUserData, pAgentHandle, QRA_PROCESSOR_TYPE_DELETE, this,
                                            ppSendHandle);
    if (m_pLocalAgent == nullptr) {
        return QRA_ERROR_INVALID_PARAM;
    }
    return t_StartJob("share_delete_thread");
}

qra_error_code_e CQRADeleteThread::Stop(CQRASendHandle* pSendHandle, qra_stop_type_e) {
    QRA_LOG_INFO(QRA_TAG_SEND, "Stop delete, nShareHandler[%p].", static_cast<void*>(pSendHandle));
    return t_StopJob();
}

SHARE_RESULT_TYPE CQRADeleteThread::t_JobProcess(void*) {
    QRA_ASSERT(t_pShareFileInfo != NULL);
    const std::string& strPath = t_pShareFileInfo->GetFilePath();
    const SHARE_RESULT_TYPE eCheck = m_CheckDelete(strPath);
    if (eCheck == SHARE_RESULT_IGNORE) {
        QRA_LOG_INFO(QRA_TAG_SEND, "Igore file[%s].", strPath.c_str());
        return SHARE_RESULT_IGNORE;
    }
    if (eCheck == SHARE_RESULT_FAILED) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "delete File[%s] faild!!", strPath.c_str());
        return SHARE_RESULT_FAILED;
    }
    if (!m_DeleteFile(strPath)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "m_DeleteFile() faild!!");
        return SHARE_RESULT_FAILED;
    }
    return SHARE_RESULT_SUCCESS;
}

SHARE_RESULT_TYPE CQRADeleteThread::m_CheckDelete(const std::string& strPath) {
    if (t_pShareFileInfo->GetFileType() != QRA_MEDIA_TYPE_PVR) {
        return SHARE_RESULT_SUCCESS;
    }
    svc_pvr_service_init();
    CQRAPvrInfo info;
    if (!info.Read(strPath)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Get pvr file info failed.");
        return SHARE_RESULT_FAILED;
    }
    if (!info->finished) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "File [%s] is recording, can not be delete !", strPath.c_str());
        return SHARE_RESULT_IGNORE;
    }
    return SHARE_RESULT_SUCCESS;
}

bool CQRADeleteThread::m_DeleteFile(const std::string& strPath) {
    switch (t_pShareFileInfo->GetFileType()) {
        case QRA_MEDIA_TYPE_PVR:
            return m_PvrDelete(strPath);
        case QRA_MEDIA_TYPE_VIDEO:
        case QRA_MEDIA_TYPE_VIDEO_EXT:
            return m_DeleteVideo(strPath);
        default:
            return m_DeleteOther(strPath);
    }
}

bool CQRADeleteThread::m_PvrDelete(const std::string& strPath) {
    if (!qra_delete_recording(strPath)) {
        return false;
    }
    m_DeleteFromDB(t_pShareFileInfo->GetMediaId());
    return true;
}

// A video that is gone already still loses its companions.
bool CQRADeleteThread::m_DeleteVideo(const std::string& strPath) {
    bool bResult = true;
    if (CQRAFile64::FileExists(strPath.c_str())) {
        bResult = CQRAFile64::Remove(strPath.c_str());
        if (bResult) {
            m_DeleteFromDB(t_pShareFileInfo->GetMediaId());
        }
    }
    const std::string strBase = QRAShareCommon::ExtractFullPathandNameNoExt(strPath);
    std::vector<std::string> extensions;
    t_GetVideoFileExt(extensions);
    for (const std::string& strExtension : extensions) {
        const std::string strCompanion = strBase + strExtension;
        if (CQRAFile64::FileExists(strCompanion.c_str())) {
            bResult = CQRAFile64::Remove(strCompanion.c_str()) && bResult;
        }
    }
    return bResult;
}

bool CQRADeleteThread::m_DeleteOther(const std::string& strPath) {
    if (!CQRAFile64::FileExists(strPath.c_str())) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "file [%s] not exists.", strPath.c_str());
        return false;
    }
    if (!CQRAFile64::Remove(strPath.c_str())) {
        return false;
    }
    m_DeleteFromDB(t_pShareFileInfo->GetMediaId());
    return true;
}

bool CQRADeleteThread::m_DeleteFromDB(const std::string& strMediaId) {
    if (m_pLocalAgent->DeleteFile(strMediaId.c_str()) != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "m_DeleteFromDB failed.");
        return false;
    }
    return true;
}
