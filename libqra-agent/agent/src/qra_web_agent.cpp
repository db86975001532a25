#include "libqra-agent/agent/src/qra_web_agent.h"

#include <cstring>
#include <new>

#include "common/datamodel/qra_resultpool.h"
#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_backup_param.h"
#include "libqra-agent/agent/src/qra_dbus_client.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/agent/src/qra_web_agent_names.h"
#include "libqra-agent/agent/util/qra_web_agent_json.h"

// Never destroyed: signals may still come while the process ends.
CQRAMutex& CQRAWebAgent::m_AgentMutex = *new CQRAMutex;

namespace {

constexpr unsigned int kNoId = 0xFFFFFFFF;

}  // namespace

qra_error_code_e CQRAWebAgent::RequestList(qra_general_s* pParam, on_list_complete_cb cb, void* pUserData,
                                           CQRAAgentHandle** ppHandle) {
    // Held to the end: the first section may arrive at once, and its signal then waits here until the handle
    // is in the registry.
    const CQRALockGuard<CQRAMutex> guard(m_AgentMutex);
    qra_error_code_e eCode = m_InitHandler(cb, ppHandle, pUserData, pParam);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    unsigned int nId = kNoId;
    eCode = m_Connect(pParam, nId);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    CQRAAgentHandle* pHandle = CQRAAgentHandle::GetInstance(*ppHandle);
    if (pHandle == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "pHandle == NULL");
        return QRA_ERROR_INVALID_HANDLE;
    }
    m_TakeId(pHandle, nId);
    eCode = m_RequestFirstSection(pParam, pHandle);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    pHandle->GetResultPool()->SetCallBack(m_PrefetchPartialList, this, m_DropPartialList, this);
    CQRAHandlerMgr* pHandlerMgr = CQRAHandlerMgr::GetInstance();
    pHandlerMgr->Add(pHandle->GetValue());
    QRA_LOG_INFO(QRA_TAG_WEB, "Insert agent[%p] to Set. Handler.Size[%d].", static_cast<void*>(pHandle),
                 pHandlerMgr->GetCount());
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::m_CheckRequest(CQRAAgentHandle** ppHandle, const qra_general_s* pParam) {
    const char* szWrong = nullptr;
    if (ppHandle == nullptr || *ppHandle == nullptr)
        szWrong = "pAgent == NULL";
    else if (pParam == nullptr)
        szWrong = "pParam == NULL";
    else if (pParam->pPluginName == nullptr)
        szWrong = "pParam->pPluginNam == NULL";
    else if (pParam->pSource == nullptr)
        szWrong = "pParam->pSource == NULL";
    else if (pParam->nWindowSize < QRA_UNPREFETCH_WINDOW_SIZE)
        szWrong = "pParam->nWindowSize < QRA_UNPREFETCH_WINDOW_SIZE";
    else if (pParam->nPrefectchNum < QRA_UNPREFETCH_PREFETCH_NUM)
        szWrong = "pParam->nPrefectchNum < QRA_UNPREFETCH_PREFETCH_NUM";
    if (szWrong == nullptr)
        return QRA_ERROR_NONE;
    QRA_LOG_WARNING(QRA_TAG_WEB, "%s", szWrong);
    return QRA_ERROR_INVALID_PARAM;
}

qra_error_code_e CQRAWebAgent::m_InitHandler(on_list_complete_cb cb, CQRAAgentHandle** ppHandle,
                                             void* pUserData, qra_general_s* pParam) {
    qra_error_code_e eCode = m_CheckRequest(ppHandle, pParam);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    CQRAAgentHandle* pHandle = *ppHandle;
    pHandle->SetResultPool(new (std::nothrow)
                               CResultPool(pParam->nWindowSize, pParam->nPrefectchNum, QRA_PREFETCH_AUTO));
    eCode = m_InitSelectList(pHandle, pParam->pPrepareData);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "m_InitSelectList faild. eCode[%d].", eCode);
        return eCode;
    }
    pHandle->SetRequestParam(new (std::nothrow) _stBackupParam);
    pHandle->SetSourceName(pParam->pSource);
    pHandle->SetPrefetchNum(pParam->nPrefectchNum);
    pHandle->SetWindowSize(pParam->nWindowSize);
    pHandle->ClearRequestListData();
    pHandle->ClearRequestDetailData();
    pHandle->ClearRequestActData();
    _stAppData stAppData;
    stAppData.pUserData = pUserData;
    stAppData.cbList = cb;
    pHandle->PushRequestListData(kRequestListKey, stAppData);
    pHandle->SetAgentInstance(this);
    m_pHandle = pHandle;
    if (pHandle->GetResultPool() != nullptr && pHandle->GetSelectList() != nullptr &&
        pHandle->GetRequestParam() != nullptr)
        return QRA_ERROR_NONE;
    QRA_LOG_WARNING(QRA_TAG_WEB, "new handle faild!!");
    return QRA_ERROR_PLAYLIST_MAX;
}

qra_error_code_e CQRAWebAgent::m_InitSelectList(CQRAAgentHandle* pHandle, const char* pPrepareData) {
    std::string strShmName;
    if (pPrepareData != nullptr)
        CQRAWebAgentJson::GetJsonFieldString(pPrepareData, kSelectListShmNameKey, strShmName);
    if (strShmName.find(kSelectListShmPrefix) == std::string::npos) {
        pHandle->SetSelectList(new (std::nothrow) CSelectList);
        return QRA_ERROR_NONE;
    }
    QRA_LOG_INFO(QRA_TAG_WEB, "Loading selectList from shm[%s].", strShmName.c_str());
    pHandle->SetSelectList(new (std::nothrow) CSelectList(strShmName));
    if (pHandle->GetSelectList() != nullptr && !pHandle->GetSelectList()->m_Load()) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "pAgent->pSelectionList->m_Load() faild.");
        return QRA_ERROR_INTERNAL;
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::m_Connect(const qra_general_s* pParam, unsigned int& nId) {
    CQRADBusClient* pClient = CQRADBusClient::GetInstance();
    qra_error_code_e eCode = pClient->ConnectDbus();
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "CQRAWebAgentDbus::Get().ConnectDbus() failed.");
        return eCode;
    }
    eCode = pClient->ConnectEngine("connect", pParam->pPluginName, nId);
    if (eCode == QRA_ERROR_NONE && nId != kNoId)
        return QRA_ERROR_NONE;
    QRA_LOG_WARNING(QRA_TAG_WEB, "CQRAWebAgentDbus::Get().ConnectEngine faild.");
    // An engine that gives no id has refused, whatever else it says.
    return eCode != QRA_ERROR_NONE ? eCode : QRA_ERROR_ENGINE;
}

// An engine that was started anew counts from the beginning again. A handle that still bears the id belongs
// to the engine before it and will hear no more: the id is the new handle's.
void CQRAWebAgent::m_TakeId(CQRAAgentHandle* pHandle, unsigned int nId) {
    if (nId != kNobodysId) {
        CQRAHandleBase* pStale = CQRAHandlerMgr::GetInstance()->GetHandler(QRA_HANDLE_TYPE_AGENT, nId);
        if (pStale != nullptr)
            pStale->SetHandleId(kNobodysId);
    }
    pHandle->SetHandleId(nId);
}

unsigned int CQRAWebAgent::m_GetHitHandle(const char* pPrepareData, const CQRAAgentHandle* pHandle) {
    unsigned int uHandle = pHandle->GetHandleId();
    if (pPrepareData != nullptr &&
        CQRAWebAgentJson::GetJsonFieldUInt(pPrepareData, kAgentHandleKey, &uHandle))
        QRA_LOG_INFO(QRA_TAG_WEB, "Use browser's uHandle[%u] to hit cache.", uHandle);
    return uHandle;
}

qra_error_code_e CQRAWebAgent::m_RequestFirstSection(qra_general_s* pParam, CQRAAgentHandle* pHandle) {
    const unsigned int uHitHandle = m_GetHitHandle(pParam->pPrepareData, pHandle);
    const int nLast = pParam->nPrefectchNum - 1;
    std::string strRequest;
    if (!CQRAWebAgentJson::GeneralParamToJson(pParam, uHitHandle, "qra_requestlist", 0, nLast, 0,
                                              strRequest)) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "CQRAWebAgentJson::GeneralParamToJson excute failed.");
        return QRA_ERROR_INVALID_PARAM;
    }
    CQRADBusClient* pClient = CQRADBusClient::GetInstance();
    pClient->SubscribeSignal(kCompleteSignal, m_ProcessDbusSignal, nullptr);
    pClient->PrefecthPartialList(kGetPartialList, pHandle->GetHandleId(), 0, static_cast<unsigned int>(nLast),
                                 strRequest);
    _stBackupParam* pBackup = pHandle->GetRequestParam();
    pBackup->pRequest.reset(strdup(strRequest.c_str()));
    if (pBackup->pRequest == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "memory out.");
        return QRA_ERROR_PLAYLIST_MAX;
    }
    QRA_LOG_INFO(QRA_TAG_WEB, "First prefetch param[%s].", pBackup->pRequest.get());
    return QRA_ERROR_NONE;
}

bool CQRAWebAgent::m_IsNull(const void* pObject, const char* szName) {
    if (pObject != nullptr)
        return false;
    QRA_LOG_WARNING(QRA_TAG_WEB, "%s == NULL", szName);
    return true;
}

qra_error_code_e CQRAWebAgent::CancelRequestList(CQRAAgentHandle* pHandle) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::m_NotServed(const CQRAAgentHandle* pHandle) {
    QRA_ASSERT(pHandle != NULL);
    return QRA_ERROR_INTERNAL;
}

qra_error_code_e CQRAWebAgent::Disconnect(CQRAAgentHandle* pHandle) {
    QRA_ASSERT(pHandle != NULL);
    const CQRALockGuard<CQRAMutex> guard(m_AgentMutex);
    CQRADBusClient::GetInstance()->DisconnectEngine("disconnect", pHandle->GetHandleId());
    CQRAHandlerMgr* pHandlerMgr = CQRAHandlerMgr::GetInstance();
    pHandlerMgr->Delete(pHandle->GetValue());
    QRA_LOG_INFO(QRA_TAG_WEB, "After disconnect agent[%p] , Handler.Size[%d].", static_cast<void*>(pHandle),
                 pHandlerMgr->GetCount());
    return QRA_ERROR_NONE;
}

CQRAAgentHandle* CQRAWebAgent::m_HandleOfPool(void* pUserData) {
    if (pUserData == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "pUserData == NULL.");
        return nullptr;
    }
    CQRAAgentHandle* pHandle = static_cast<CQRAWebAgent*>(pUserData)->m_pHandle;
    if (!CQRAHandlerMgr::GetInstance()->Exists(reinterpret_cast<qra_handle_value_t>(pHandle))) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Handler[%p] not exists!!", static_cast<void*>(pHandle));
        return nullptr;
    }
    QRA_ASSERT(pHandle != NULL);
    return pHandle;
}

bool CQRAWebAgent::m_PrefetchPartialList(void* pUserData, int nFirst, int nLast, int nSection) {
    CQRAAgentHandle* pHandle = m_HandleOfPool(pUserData);
    if (pHandle == nullptr)
        return false;
    if (pHandle->GetRequestParam() == nullptr || pHandle->GetRequestParam()->pRequest == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "pHandle->GetRequestParam() == NULL");
        return false;
    }
    std::string strRequest = pHandle->GetRequestParam()->pRequest.get();
    CQRAWebAgentJson::UpdateItemIndex(strRequest, nFirst, nLast, nSection);
    QRA_LOG_INFO(QRA_TAG_WEB, "Prefetch param [%s].", strRequest.c_str());
    return CQRADBusClient::GetInstance()->PrefecthPartialList(
               kGetPartialList, pHandle->GetHandleId(), static_cast<unsigned int>(nFirst),
               static_cast<unsigned int>(nLast), strRequest) == QRA_ERROR_NONE;
}

bool CQRAWebAgent::m_DropPartialList(void* pUserData, const std::string& strResultListName) {
    CQRAAgentHandle* pHandle = m_HandleOfPool(pUserData);
    if (pHandle == nullptr)
        return false;
    if (strResultListName.empty()) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "strResultListName.empty()");
        return false;
    }
    return CQRADBusClient::GetInstance()->DropPartialList("drop_partial_list", pHandle->GetHandleId(),
                                                          strResultListName) == QRA_ERROR_NONE;
}
