#include "libqra-agent/agent/src/qra_local_agent.h"

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_mutex.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_handle_parts.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_item_builder.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_source_factory.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/agent/util/qra_web_agent_json.h"
#include "libqra-agent/playlist/qra_playlist_location.h"
#include "libqra-agent/playlist/qra_playlist_manager.h"
#include "libqra-agent/source/nubelink/qra_dlna_mgr.h"
#include "libqra-agent/source/qra_source_base.h"

namespace {

constexpr char kRequestListKey[] = "qra_request_list";

// Orders the end of RequestList(), the body of the completion callback and the removal in Disconnect(). Never
// destroyed: a source may still answer while the process ends.
CQRAMutex& m_AgentMutex = *new CQRAMutex;

struct EventText {
    qra_event_e eEvent;
    const char* szText;
};

// The events that reach the client as they are; every other one is a failure.
constexpr EventText kClientEvents[] = {
    {QRA_EVENT_LIST_SUCCESS, "RequestList success."},
    {QRA_EVENT_LIST_UPDATE, "RequestList update."},
    {QRA_EVENT_METADATA_SUCCESS, "Request metadata success."},
    {QRA_EVENT_METADATA_FAILED, "Request metadata failed."},
    {QRA_EVENT_METADATA_LATEST, "Request metadata latest."},
    {QRA_EVENT_DLNA_ITEM_NOT_EXIST, "Request dlna item not exist."},
};

qra_event_e MapEvent(qra_event_e eEvent) {
    for (const EventText& event : kClientEvents) {
        if (event.eEvent == eEvent) {
            QRA_LOG_INFO(QRA_TAG_LOCAL, "%s", event.szText);
            return eEvent;
        }
    }
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "RequestList failed.");
    return QRA_EVENT_LIST_FAILED;
}

bool IsRepeatOf(const CQRAAgentHandle* pHandle, const std::string& strSource) {
    return (pHandle->GetRepeatDLNA() && strSource == kSourceDLNA) ||
           (pHandle->GetRepeatMSC() && strSource == kSourceMSC);
}

}  // namespace

qra_error_code_e CQRALocalAgent::RequestList(qra_general_s* pParam, on_list_complete_cb cb, void* pUserData,
                                             CQRAAgentHandle** ppHandle) {
    m_InitPlayListsOf(*pParam);
    // Held to the end: a source may complete at once on its own thread, and its callback then waits here
    // until the handle is in the registry.
    CQRALockGuard<CQRAMutex> guard(m_AgentMutex);
    qra_error_code_e eCode = m_InitHandler(cb, pUserData, pParam, ppHandle);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_InitHandler() faild.");
        return eCode;
    }
    eCode = m_OpenSource(*ppHandle, pParam);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_OpenSource() faild.");
        return eCode;
    }
    if (!qra_has_parts(m_pHandle, kPartSource))
        return QRA_ERROR_INVALID_HANDLE;

    m_pHandle->GetSource()->SetCallback(&cb_request_list_complete, this);
    if (!m_Execute(pParam)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pHandle->GetSource()->Execute() faild!!");
        return QRA_ERROR_INVALID_PARAM;
    }
    CQRAHandlerMgr* pHandlerMgr = CQRAHandlerMgr::GetInstance();
    pHandlerMgr->Add((*ppHandle)->GetValue());
    QRA_LOG_INFO(QRA_TAG_LOCAL, "pAgent->pSource->Execute() success. Insert [%p] to Set. Handler Size[%d].",
                 static_cast<void*>(*ppHandle), pHandlerMgr->GetCount());
    return QRA_ERROR_NONE;
}

// Before any lock is taken: a scan takes as long as the drive does. Whether there is such a playlist is the
// source's answer.
void CQRALocalAgent::m_InitPlayListsOf(const qra_general_s& param) {
    if (CQRAUtil::CharToString(param.pSource) != kSourcePlaylist || param.szPath == nullptr)
        return;
    const std::string strPath = CQRAUtil::RemoveForwardSlashInPath(param.szPath);
    std::string strMountPath;
    if (qra_is_on_usb(strPath))
        m_InitAllPlayList(strPath, strMountPath);
}

qra_error_code_e CQRALocalAgent::m_InitAllPlayList(const std::string& strPath, std::string& strMountPath) {
    constexpr size_t kShortestName = 7;  // where the name of a drive may end
    const size_t nFrom = CQRAUtil::GetStoragePath("").size() + kShortestName;
    strMountPath = strPath.substr(0, strPath.find('/', nFrom));
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Init palylist, mount path[%s].", strMountPath.c_str());
    return CQRAPlaylistManager::GetInstance()->Create(strMountPath);
}

qra_error_code_e CQRALocalAgent::m_InitHandler(on_list_complete_cb cb, void* pUserData, qra_general_s* pParam,
                                               CQRAAgentHandle** ppHandle) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Init qra_agent_handler_h.");
    if (ppHandle == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid handle address.");
        return QRA_ERROR_INVALID_PARAM;
    }
    QRA_ASSERT(*ppHandle != NULL);
    CQRAAgentHandle* pHandle = *ppHandle;
    if (IsRepeatOf(pHandle, pHandle->GetSourceName()))
        m_ClearRepeatAgent(pHandle, pParam->pSource);
    qra_error_code_e eCode = m_CheckRequest(pHandle, pParam);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    pHandle->SetSourceName(pParam->pSource);
    if (pParam->szSortCategory != nullptr)
        pHandle->SetSortcategory(pParam->szSortCategory);

    eCode = m_InitSelectList(pHandle, pParam->pPrepareData);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_InitSelectList faild. eCode[%d].", eCode);
        return eCode;
    }
    m_InitPage(pHandle);
    m_InitSource(pHandle);
    if (pHandle->GetSource() == nullptr)
        return QRA_ERROR_NOT_SUPPORTED;

    _stAppData stAppData;
    stAppData.pUserData = pUserData;
    stAppData.cbList = cb;
    pHandle->ClearRequestListData();
    pHandle->PushRequestListData(kRequestListKey, stAppData);
    pHandle->SetAgentInstance(this);
    m_pHandle = pHandle;
    QRA_ASSERT(pHandle->GetSelectList() != NULL && pHandle->GetPageParam() != NULL &&
               pHandle->GetItemBuilder() != NULL && pHandle->GetSource() != NULL);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::m_CheckRequest(CQRAAgentHandle* pHandle, const qra_general_s* pParam) const {
    const std::string strSource = pParam->pSource;
    if ((pHandle->GetRepeatMSC() && strSource != kSourceMSC) ||
        (pHandle->GetRepeatDLNA() && strSource != kSourceDLNA)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid request, repeat agent does not match current requst source.");
        return QRA_ERROR_NOT_SUPPORTED;
    }
    if (strSource == kSourceMSC && !pHandle->GetRepeatMSC() && pParam->szPath == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "szPath == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (strSource == kSourcePlaylist &&
        (pParam->szPath == nullptr || pParam->szContentType == nullptr || pParam->szSortCategory == nullptr ||
         pParam->szPlayListName == nullptr)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL,
                        "A playlist needs a path, a content type, a sort category and a name.");
        return QRA_ERROR_INVALID_PARAM;
    }
    return QRA_ERROR_NONE;
}

void CQRALocalAgent::m_InitPage(CQRAAgentHandle* pHandle) {
    pHandle->SetPageParam(new qra_page_style_s);
    pHandle->SetItemBuilder(new CQRAItemBuilder);
}

// Source, group info and cursor stay for the repeat, and so do the repeat flags: a handle that was repeated
// once is a repeat for the rest of its life.
void CQRALocalAgent::m_ClearRepeatAgent(CQRAAgentHandle* pHandle, const char* pSource) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "ReUsed agent[%p], request source[%s].", static_cast<void*>(pHandle),
                 pSource);
    pHandle->DestroyContentPage();
    pHandle->DestroyPageParam();
    pHandle->DestroyItemBuilder();
    pHandle->DestorySelectList();
}

void CQRALocalAgent::m_InitSource(CQRAAgentHandle* pHandle) {
    const std::string strSource = pHandle->GetSourceName();
    std::unique_ptr<IQRASourceBase> source;
    if (!IsRepeatOf(pHandle, strSource))
        source = qra_make_source(strSource);
    if (source == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "UnKown source name[%s].", strSource.c_str());
        return;
    }
    pHandle->SetSource(source.release());
}

qra_error_code_e CQRALocalAgent::m_OpenSource(CQRAAgentHandle* pHandle, qra_general_s* pParam) {
    if (!qra_has_parts(pHandle, kPartSource))
        return QRA_ERROR_INVALID_HANDLE;
    IQRASourceBase* pSource = pHandle->GetSource();
    if (pSource->IsOpen())
        return QRA_ERROR_NONE;
    bool bOpen = false;
    if (pHandle->GetSourceName() == kSourceDLNA) {
        if (pParam->pServiceProvider != nullptr)
            CQRADlnaMgr::GetInstance()->SetServiceProvide(pParam->pServiceProvider);
        bOpen = pSource->Open(pParam->szPath);
    } else {
        bOpen = pSource->Open();
    }
    return bOpen ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

// Sources take a path for granted, while a repeat may bring none: the latest one is listed again then.
bool CQRALocalAgent::m_Execute(qra_general_s* pParam) {
    qra_general_s stParam = *pParam;
    if (stParam.szPath != nullptr)
        m_LastPath = stParam.szPath;
    else if (m_LastPath.has_value())
        stParam.szPath = m_LastPath->data();
    return m_pHandle->GetSource()->Execute(&stParam);
}

qra_error_code_e CQRALocalAgent::m_InitSelectList(CQRAAgentHandle* pHandle, char* pPrepareData) {
    if (pPrepareData == nullptr) {
        QRA_LOG_INFO(QRA_TAG_LOCAL, "pPrepareData == NULL");
        pHandle->SetSelectList(new CSelectList);
        return QRA_ERROR_NONE;
    }
    bool bHasSelectedItem = false;
    CQRAWebAgentJson::GetJsonFieldBool(pPrepareData, "qra_has_selected_item", &bHasSelectedItem);
    if (!bHasSelectedItem) {
        pHandle->SetSelectList(new CSelectList);
        return QRA_ERROR_NONE;
    }
    std::string strShmName;
    CQRAWebAgentJson::GetJsonFieldString(pPrepareData, "qra_selectlist_shmname", strShmName);
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Loading selectList from shm[%s].", strShmName.c_str());
    pHandle->SetSelectList(new CSelectList(strShmName));
    if (!pHandle->GetSelectList()->m_Load()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pAgent->pSelectionList->m_Load() faild.");
        return QRA_ERROR_INTERNAL;
    }
    return QRA_ERROR_NONE;
}

bool CQRALocalAgent::cb_request_list_complete(qra_event_e eEvent, void* pThis) {
    // Held through the client's callback.
    CQRALockGuard<CQRAMutex> guard(m_AgentMutex);
    if (pThis == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pThis == NULL");
        return false;
    }
    return static_cast<CQRALocalAgent*>(pThis)->m_Complete(eEvent);
}

bool CQRALocalAgent::m_Complete(qra_event_e eEvent) {
    // Only the address is used before the registry knows it: a handle that is gone must not be touched.
    if (!CQRAHandlerMgr::GetInstance()->Exists(reinterpret_cast<qra_handle_value_t>(m_pHandle))) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Agent[%p] has been disconnected!", static_cast<void*>(m_pHandle));
        return false;
    }
    _stAppData stAppData;
    const bool ret = m_pHandle->PopRequestListData(kRequestListKey, stAppData);
    if (!ret) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "ret == false");
        return false;
    }
    if (stAppData.cbList == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "cb == NULL");
        return false;
    }
    stAppData.cbList(stAppData.pUserData, m_pHandle, MapEvent(eEvent), 1, "");
    return true;
}

qra_error_code_e CQRALocalAgent::CancelRequestList(CQRAAgentHandle* pHandle) {
    if (!qra_has_parts(pHandle, kPartSource))
        return QRA_ERROR_INVALID_HANDLE;
    IQRASourceBase* pSource = pHandle->GetSource();
    pSource->UNSetCallback();
    if (!pSource->CancelAsync()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pHandle->GetSource()->CancelAsync() faild!!");
        return QRA_ERROR_INTERNAL;
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::Disconnect(CQRAAgentHandle* pHandle) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Excute CQRALocalAgent::Disconnect for agent[%p].",
                 static_cast<void*>(pHandle));
    if (!qra_has_parts(pHandle, kPartSource))
        return QRA_ERROR_INVALID_HANDLE;
    // Outside the lock: closing waits for the source's thread, which may wait for the lock in its callback.
    if (!pHandle->GetSource()->Close()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pHandle->GetSource()->Close(), strSourceName[%s] faild.",
                        pHandle->GetSourceName().c_str());
        return QRA_ERROR_INTERNAL;
    }
    CQRALockGuard<CQRAMutex> guard(m_AgentMutex);
    CQRAHandlerMgr* pHandlerMgr = CQRAHandlerMgr::GetInstance();
    pHandlerMgr->Delete(pHandle->GetValue());
    QRA_LOG_INFO(QRA_TAG_LOCAL, "After disconnect agent[%p] , Handler Size[%d].", static_cast<void*>(pHandle),
                 pHandlerMgr->GetCount());
    return QRA_ERROR_NONE;
}

// What a source of this process does not serve; callers rely on these answers.

qra_error_code_e CQRALocalAgent::RequestDetail(CQRAAgentHandle*, qra_detail_s*, void*,
                                               on_detail_complete_cb) {
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::CancelDetailRequest(CQRAAgentHandle*) {
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::UploadComment(CQRAAgentHandle*, qra_comment_s*, int, void*,
                                               on_detail_complete_cb) {
    return QRA_ERROR_INTERNAL;
}

qra_error_code_e CQRALocalAgent::SetLike(CQRAAgentHandle*, qra_like_s*, int, void*, on_detail_complete_cb) {
    return QRA_ERROR_INTERNAL;
}

qra_error_code_e CQRALocalAgent::GetGroupCount(CQRAAgentHandle*, int*) {
    return QRA_ERROR_INTERNAL;
}
