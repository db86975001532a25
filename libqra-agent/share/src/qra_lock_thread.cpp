#include "libqra-agent/share/src/qra_lock_thread.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "common/util/qra_assert.h"
#include "common/util/qra_file64.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_pvr_info.h"
#include "libqra-agent/agent/src/qra_type.h"

namespace {

constexpr char kInfoExtension[] = "inf";
constexpr size_t kInfoExtensionLength = sizeof kInfoExtension - 1;

}  // namespace

CQRALockUnLockThread::~CQRALockUnLockThread() {
    t_EndJob();
}

qra_error_code_e CQRALockUnLockThread::Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                                              qra_share_user_data_s* pUserData,
                                              CQRASendHandle** ppSendHandle) {
    m_pLocalAgent =
        t_InitLocalShareHandler(pShare, pUserData, pAgentHandle, QRA_PROCESSOR_TYPE_LOCK, this, ppSendHandle);
    if (m_pLocalAgent == nullptr) {
        return QRA_ERROR_INVALID_PARAM;
    }
    m_bLock = pShare->lock;
    return t_StartJob("share_lock_unlock_thread");
}

qra_error_code_e CQRALockUnLockThread::Stop(CQRASendHandle* pSendHandle, qra_stop_type_e) {
    QRA_LOG_INFO(QRA_TAG_SEND, "Stop lock or unlock, nShareHandler[%p].", static_cast<void*>(pSendHandle));
    return t_StopJob();
}

SHARE_RESULT_TYPE CQRALockUnLockThread::t_JobProcess(void*) {
    QRA_ASSERT(t_pShareFileInfo != NULL);
    if (!m_LockPvrFile(m_bLock)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "m_AddLockUnlockFile() faild!!");
        return SHARE_RESULT_FAILED;
    }
    return SHARE_RESULT_SUCCESS;
}

bool CQRALockUnLockThread::m_LockPvrFile(bool bLock) {
    const std::string& strPath = t_pShareFileInfo->GetFilePath();
    CQRAPvrInfo info;
    if (!m_GetPvrInfo(strPath, info)) {
        m_GetPvrInfoFromDB(info);
    }
    QRA_LOG_INFO(QRA_TAG_SEND, "File[%s] Lock status: original[%d], wanted[%d].", strPath.c_str(),
                 info->content_lock, bLock);
    if (info->content_lock == bLock) {
        QRA_LOG_INFO(QRA_TAG_SEND, "Need not do lock/unlock operation!!");
        return true;
    }
    if (!m_UpdateFileLock(bLock)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "m_UpdateFileLock [%s] failed.", strPath.c_str());
        return false;
    }
    return true;
}

bool CQRALockUnLockThread::m_GetPvrInfo(const std::string& strPath, CQRAPvrInfo& info) {
    return info.Read(strPath);
}

void CQRALockUnLockThread::m_GetPvrInfoFromDB(CQRAPvrInfo& info) {
    CQRAAgentHandle* pHandle = t_GetAgentHandle();
    char* pTitle = nullptr;
    m_pLocalAgent->GetItemValue(pHandle, "TITLE", &pTitle);
    const std::unique_ptr<char, decltype(&free)> title(pTitle, &free);
    if (title != nullptr) {
        const std::string strTitle = title.get();
        const size_t nLength = strTitle.copy(info->title, sizeof info->title - 1);
        info->title[nLength] = '\0';
    }
    m_pLocalAgent->GetItemValue(pHandle, "DURATION", &info->duration);
    m_pLocalAgent->GetItemValue(pHandle, "CONTENT_LOCK", &info->content_lock);
}

bool CQRALockUnLockThread::m_UpdateFileLock(bool bLock) {
    const char* pPath = t_pShareFileInfo->GetFilePath().c_str();
    QRA_ASSERT(pPath != NULL);
    QRA_LOG_INFO(QRA_TAG_SEND, "Origin pvr[%s].", pPath);
    std::string strInfoPath = pPath;
    const size_t nReplaced = std::min(strInfoPath.size(), kInfoExtensionLength);
    strInfoPath.replace(strInfoPath.size() - nReplaced, nReplaced, kInfoExtension);
    if (!CQRAFile64::FileExists(strInfoPath.c_str())) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "pvr info file[%s] not exists.", strInfoPath.c_str());
    } else if (!m_UpdateInfoFile(strInfoPath, bLock)) {
        return false;
    }
    const qra_error_code_e eCode =
        m_pLocalAgent->SetItemValue(t_GetAgentHandle(), "CONTENT_LOCK", static_cast<int>(bLock));
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Set pvr info in db failed");
        return false;
    }
    return true;
}

bool CQRALockUnLockThread::m_UpdateInfoFile(const std::string& strInfoPath, bool bLock) {
    CQRAPvrInfo info;
    if (!info.Read(strInfoPath)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Get pvr file info failed.");
        return false;
    }
    info->content_lock = bLock;
    if (svc_pvr_set_pvr_file_info_ex(strInfoPath.c_str(), &*info) != 0) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Set pvr file info failed.");
        return false;
    }
    return true;
}
