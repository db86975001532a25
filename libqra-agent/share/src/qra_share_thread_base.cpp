#include "libqra-agent/share/src/qra_share_thread_base.h"

#include <atomic>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_agent_base.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_type.h"

namespace {

constexpr gint64 kProgressIntervalUs = 300 * 1000;
constexpr gint64 kNever = -1;

/// The send handle of the job whose thread this is.
thread_local const CQRASendHandle* g_pOwnSendHandle = nullptr;

/// True for at most one call in each interval, over all jobs of the process.
bool m_NeedToSendEvent() {
    static std::atomic<gint64> lastTime{kNever};
    const gint64 now = g_get_monotonic_time();
    gint64 last = lastTime.load();
    // Of two jobs that come at once the slower one loses the exchange, and its turn with it.
    return (last == kNever || now - last >= kProgressIntervalUs) &&
           lastTime.compare_exchange_strong(last, now);
}

}  // namespace

bool CQRAShareThreadBase::IsThreadOf(const CQRASendHandle* pSendHandle) {
    return pSendHandle != nullptr && pSendHandle == g_pOwnSendHandle;
}

bool CQRAShareThreadBase::t_InitShareHandler(const qra_share_s* pShare,
                                             const qra_share_user_data_s* pUserData,
                                             CQRAAgentHandle* pAgentHandle, qra_processor_type_e eProcessType,
                                             IQRAShareThread* pThread, CQRASendHandle** ppSendHandle) {
    if (pShare == nullptr || pUserData == nullptr || pUserData->cb == nullptr || pAgentHandle == nullptr ||
        ppSendHandle == nullptr || *ppSendHandle == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "CQRAShareThreadBase::InitShareHandler Invalide param !!");
        return false;
    }
    m_pAgentHandle = pAgentHandle;
    m_eProcessType = eProcessType;
    m_eSourceDevType = pShare->source_dev_type;
    m_eDestDevType = pShare->dest_dev_type;
    m_pSendHandle = *ppSendHandle;
    m_pSendHandle->SetCallBack(pUserData->cb);
    m_pSendHandle->SetUserData(pUserData->udata);
    m_pSendHandle->SetShareThread(pThread);
    t_pShareFileInfo = std::make_unique<CQRAShareFileInfo>(pAgentHandle);
    return true;
}

CQRALocalAgent* CQRAShareThreadBase::t_InitLocalShareHandler(
    const qra_share_s* pShare, const qra_share_user_data_s* pUserData, CQRAAgentHandle* pAgentHandle,
    qra_processor_type_e eProcessType, IQRAShareThread* pThread, CQRASendHandle** ppSendHandle) {
    if (!t_InitShareHandler(pShare, pUserData, pAgentHandle, eProcessType, pThread, ppSendHandle)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "InitShareHandler() faild.");
        return nullptr;
    }
    CQRALocalAgent* const pLocalAgent = CQRAAgentHandle::GetLocalAgent(pAgentHandle);
    if (pLocalAgent == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Invalid agent handle recevied!!");
    }
    return pLocalAgent;
}

void CQRAShareThreadBase::t_DestroyShareHandler() {
    t_pShareFileInfo.reset();
}

bool CQRAShareThreadBase::t_CreateJob(std::string strName) {
    if (!Create(strName.c_str())) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Create share thread[%s] faild!!", strName.c_str());
        return false;
    }
    return true;
}

void CQRAShareThreadBase::t_DestroyJob() {
    Destroy();
}

void CQRAShareThreadBase::t_SetJobStatus(bool bRunning) {
    CQRALockGuard lock(m_Mutex);
    m_bJobStatus = bRunning;
}

bool CQRAShareThreadBase::t_GetJobStatus() {
    CQRALockGuard lock(m_Mutex);
    return m_bJobStatus;
}

qra_error_code_e CQRAShareThreadBase::t_StartJob(const char* szThreadName) {
    t_SetJobStatus(true);
    if (!t_CreateJob(szThreadName)) {
        t_SetJobStatus(false);
        QRA_LOG_WARNING(QRA_TAG_SEND, "create thread[%s] faild!!", szThreadName);
        return QRA_ERROR_THREAD_FAILED;
    }
    return QRA_ERROR_NONE;
}

void CQRAShareThreadBase::t_EndJob() {
    t_SetJobStatus(false);
    t_DestroyJob();
    t_DestroyShareHandler();
}

qra_error_code_e CQRAShareThreadBase::t_StopJob() {
    if (t_IsOwnThread()) {
        return QRA_ERROR_THREAD_FAILED;
    }
    t_EndJob();
    return QRA_ERROR_NONE;
}

bool CQRAShareThreadBase::t_IsOwnThread() const {
    if (!IsThreadOf(m_pSendHandle)) {
        return false;
    }
    QRA_LOG_WARNING(QRA_TAG_SEND, "A job cannot be stopped from its own callback, nShareHandler[%p].",
                    static_cast<const void*>(m_pSendHandle));
    return true;
}

void CQRAShareThreadBase::t_Process() {
    QRA_LOG_INFO(QRA_TAG_SEND, "Share thread starts, process type[%d].", m_eProcessType);
    g_pOwnSendHandle = m_pSendHandle;
    if (t_GetJobStatus()) {
        m_DoJobs();
        t_SetJobStatus(false);
    }
    g_pOwnSendHandle = nullptr;
    QRA_LOG_INFO(QRA_TAG_SEND, "Share thread ends, process type[%d].", m_eProcessType);
}

SHARE_RESULT_TYPE CQRAShareThreadBase::t_JobProcess(void*) {
    return SHARE_RESULT_SUCCESS;
}

bool CQRAShareThreadBase::m_DoJobs() {
    int nCount = 0;
    if (!m_GetSelectCount(nCount)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Get select count faild!!");
        return false;
    }
    t_ShareStatus.Begin(nCount);
    for (int i = 0; i < nCount && t_GetJobStatus(); ++i) {
        if (!m_GetCurrentSelectFileInfo(i)) {
            t_ShareStatus.GetInfo().nFinishedCount = i;
            QRA_LOG_WARNING(QRA_TAG_SEND, "Process type[%d]:Get the [%d]th fileinfo faild!!", m_eProcessType,
                            i);
            t_SendEvent(QRA_EVENT_BATCH_FAILED, true);
            return false;
        }
        if (m_DoJob(i) == Step::Failed) {
            return false;
        }
    }
    if (t_GetJobStatus()) {
        QRA_LOG_INFO(QRA_TAG_SEND, "Batch process finished");
        t_SendEvent(QRA_EVENT_BATCH_FINISHED, true);
    } else {
        QRA_LOG_INFO(QRA_TAG_SEND, "Batch process was stoped!");
    }
    return true;
}

bool CQRAShareThreadBase::m_GetSelectCount(int& nCount) {
    return m_pAgentHandle->GetAgentInstance()->GetSelectionCount(m_pAgentHandle, &nCount) == QRA_ERROR_NONE;
}

bool CQRAShareThreadBase::m_GetCurrentSelectFileInfo(int nIndex) {
    return t_pShareFileInfo->MoveToIndex(nIndex) &&
           CQRAShareFileBuilder(t_pShareFileInfo.get()).Build(m_eProcessType, m_eSourceDevType);
}

CQRAShareThreadBase::Step CQRAShareThreadBase::m_DoJob(int nIndex) {
    const std::string& strName = t_pShareFileInfo->GetFileName();
    qra_share_status_info_s& info = t_ShareStatus.GetInfo();
    t_ShareStatus.BeginFile(strName, t_pShareFileInfo->GetFileSize());
    switch (t_JobProcess(nullptr)) {
        case SHARE_RESULT_SUCCESS:
            info.nFinishedCount = nIndex + 1;
            t_SendEvent(QRA_EVENT_BATCH_FILE_DONE, true);
            return Step::GoOn;
        case SHARE_RESULT_FAILED:
            info.nFinishedCount = nIndex;
            QRA_LOG_WARNING(QRA_TAG_SEND, "Process the [%d]th file[%s] faild!!", nIndex, strName.c_str());
            t_SendEvent(QRA_EVENT_BATCH_FAILED, true);
            return Step::Failed;
        case SHARE_RESULT_IGNORE:
            QRA_LOG_INFO(QRA_TAG_SEND, "Ignore the [%d]th file[%s].", nIndex, strName.c_str());
            return Step::GoOn;
        default:
            return Step::GoOn;
    }
}

bool CQRAShareThreadBase::t_SendEvent(qra_event_e eEvent, bool bForce) {
    if (!bForce && !m_NeedToSendEvent()) {
        return false;
    }
    CQRASendHandle* pHandle = CQRASendHandle::GetInstance(m_pSendHandle);
    QRA_ASSERT(pHandle != NULL);
    pHandle->GetCallBack()(pHandle->GetUserData(), pHandle, eEvent, &t_ShareStatus.GetInfo());
    return true;
}

void CQRAShareThreadBase::t_GetVideoFileExt(std::vector<std::string>& extensions) {
    extensions = {".smi", ".srt", ".ttxt"};
}

void CQRAShareThreadBase::t_GetPvrFileExt(std::vector<std::string>& extensions) {
    extensions = {".inf", ".ss", ".mdb", ".mta", ".cip"};
}
