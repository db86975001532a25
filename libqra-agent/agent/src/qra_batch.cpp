#include <qra/qra_batch.h>

#include <cstdint>
#include <memory>

#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/share/src/qra_share_thread_base.h"
#include "libqra-agent/share/src/qra_share_thread_factory.h"

// The entry points of batch jobs: they check handles and own the job until its send handle does.

namespace {

template <class Handle>
bool IsLive(const Handle* pHandle, QRA_HANDLE_TYPE eType) {
    if (CQRAHandlerMgr::GetInstance()->CheckHandler(reinterpret_cast<qra_handle_value_t>(pHandle), eType))
        return true;
    QRA_LOG_WARNING(QRA_TAG_SEND, "CheckHandler[%p] faild!!", static_cast<const void*>(pHandle));
    return false;
}

/// Destroys what a failed start has left. The handle owns the job if the start came that far.
void DestroyFailed(CQRASendHandle** ppHandle, std::unique_ptr<IQRAShareThread> thread) {
    const std::unique_ptr<CQRASendHandle> handle(*ppHandle);
    *ppHandle = nullptr;
    if (handle->GetShareThread() == thread.get())
        thread.release();
}

/// Destroys a job that has ended. The entry outlives the handle, and may be that of a new one by then.
void DestroyStopped(CQRASendHandle* pHandle) {
    CQRAHandlerMgr* pHandlerMgr = CQRAHandlerMgr::GetInstance();
    const qra_handle_value_t nHandler = pHandle->GetValue();
    pHandlerMgr->MarkDead(nHandler);
    delete pHandle;
    pHandlerMgr->DeleteIfDead(nHandler);
    QRA_LOG_INFO(QRA_TAG_SEND, "After remove nShareHandler[%p]. Handler.size[%d].",
                 reinterpret_cast<void*>(nHandler), pHandlerMgr->GetCount());
}

qra_error_code_e StopJob(CQRASendHandle* pHandle, qra_stop_type_e eType) {
    // On the job's own thread the handle lives, but may not have reached the registry yet.
    if (!CQRAShareThreadBase::IsThreadOf(pHandle) && !IsLive(pHandle, QRA_HANDLE_TYPE_SEND))
        return QRA_ERROR_INVALID_HANDLE;
    IQRAShareThread* pThread = pHandle->GetShareThread();
    if (pThread == nullptr)
        return QRA_ERROR_NONE;
    const qra_error_code_e eCode = pThread->Stop(pHandle, eType);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "pShareHandler->pThread->Stop faild. for nShareHandler[%p], eCode[%p].",
                        static_cast<void*>(pHandle), reinterpret_cast<void*>(static_cast<intptr_t>(eCode)));
        return eCode;
    }
    QRA_LOG_INFO(QRA_TAG_SEND, "pShareHandler->pThread->Stop success for nShareHandler[%p].",
                 static_cast<void*>(pHandle));
    DestroyStopped(pHandle);
    return QRA_ERROR_NONE;
}

}  // namespace

qra_error_code_e qra_batch_process_v2(qra_processor_type_e eType, qra_share_s* pParam,
                                      qra_agent_handler_h hAgent, qra_share_user_data_s* pUserData,
                                      CQRASendHandle** ppHandle) {
    QRA_LOG_INFO(QRA_TAG_SEND, "Start to excute qra_send, nAgent[%p].", static_cast<void*>(hAgent));
    if (!IsLive(hAgent, QRA_HANDLE_TYPE_AGENT))
        return QRA_ERROR_INVALID_HANDLE;
    std::unique_ptr<IQRAShareThread> thread(CQRAShareThreadFactory::GetInstance()->GetShareThread(eType));
    if (thread == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "UnKown eShareType[%d].", eType);
        return QRA_ERROR_INVALID_PARAM;
    }
    if (ppHandle == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "ppHandle == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    CQRASendHandle* pSendHandle = new CQRASendHandle;
    *ppHandle = pSendHandle;
    const qra_error_code_e eCode = thread->Excute(pParam, hAgent, pUserData, ppHandle);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "pShareThread->Excute faild. eCode[%d].", eCode);
        DestroyFailed(ppHandle, std::move(thread));
        return eCode;
    }
    thread.release();
    QRA_LOG_INFO(QRA_TAG_SEND, "pShareThread->Excute success, Get pShareHandler[%p].",
                 static_cast<void*>(pSendHandle));
    CQRAHandlerMgr* pHandlerMgr = CQRAHandlerMgr::GetInstance();
    pHandlerMgr->Add(pSendHandle->GetValue());
    QRA_LOG_INFO(QRA_TAG_SEND, "After insert share handle[%p], Handler size[%d].",
                 static_cast<void*>(pSendHandle), pHandlerMgr->GetCount());
    return QRA_ERROR_NONE;
}

qra_error_code_e qra_stop_batch_process_v2(CQRASendHandle* pHandle) {
    QRA_LOG_INFO(QRA_TAG_SEND, "Start to excute qra_stop_send, nShareHandler[%p].",
                 static_cast<void*>(pHandle));
    return StopJob(pHandle, QRA_STOP_TYPE_REMOVE);
}

qra_error_code_e qra_stop_batch_process_v3(CQRASendHandle* pHandle, qra_stop_type_e eType) {
    QRA_LOG_INFO(QRA_TAG_SEND, "Start to excute qra_stop_batch_process_v3, nShareHandler[%p], type[%d].",
                 static_cast<void*>(pHandle), eType);
    return StopJob(pHandle, eType);
}
