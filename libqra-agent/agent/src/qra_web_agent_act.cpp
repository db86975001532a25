#include <cstring>

#include "common/datamodel/qra_resultpool.h"
#include "common/util/json_value.h"
#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_dbus_client.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_selectlist_builder.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "libqra-agent/agent/src/qra_web_agent_names.h"
#include "libqra-agent/agent/util/qra_web_agent_json.h"

namespace {

constexpr char kRequestAct[] = "request_act";

/// The id of a handle that has no list request.
constexpr unsigned int kSendHandleId = 0x7FFFFFFE;

// The requests that go with an item.

bool ActToJson(qra_comment_s* pParam, std::string& strInOut, const std::string& strRequestId) {
    if (CQRAWebAgentJson::CommentParamToJson(pParam, "qra_uploadcomment", strInOut, strRequestId))
        return true;
    QRA_LOG_WARNING(QRA_TAG_WEB, "CQRAWebAgentJson::CommentParamToJson excute failed.");
    return false;
}

bool ActToJson(qra_like_s* pParam, std::string& strInOut, const std::string& strRequestId) {
    if (CQRAWebAgentJson::LikeParamToJson(pParam, "qra_setlike", strInOut, strRequestId))
        return true;
    QRA_LOG_WARNING(QRA_TAG_WEB, "CQRAWebAgentJson::LikeParamToJson excute failed.");
    return false;
}

void LogWrongIndex(const qra_comment_s*, int nIndex) {
    QRA_LOG_WARNING(QRA_TAG_WEB, "Invalid item index: %d", nIndex);
}

void LogWrongIndex(const qra_like_s*, int nIndex) {
    QRA_LOG_WARNING(QRA_TAG_WEB, "Invalid item index[%d]", nIndex);
}

}  // namespace

qra_error_code_e CQRAWebAgent::RequestDetail(CQRAAgentHandle* pHandle, qra_detail_s* pParam, void* pUserData,
                                             on_detail_complete_cb cb) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(pParam, "pParam"))
        return QRA_ERROR_INVALID_PARAM;
    const std::string strRequestId = CQRAUtil::GetUUID();
    _stAppData stAppData;
    stAppData.pUserData = pUserData;
    stAppData.cbDetail = cb;
    pHandle->PushRequestDetailData(strRequestId, stAppData);
    std::string strRequest;
    if (!CQRAWebAgentJson::DetailParamToJson(pParam, "qra_requestdetail", strRequest, strRequestId)) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "CQRAWebAgentJson::DetailParamToJson excute failed.");
        return QRA_ERROR_INVALID_PARAM;
    }
    CQRADBusClient::GetInstance()->RequestDetail("request_detail", pHandle->GetHandleId(), strRequest);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::CancelDetailRequest(CQRAAgentHandle* pHandle) {
    QRA_ASSERT(pHandle != NULL);
    pHandle->ClearRequestDetailData();
    CQRADBusClient::GetInstance()->CancelDetailRequest("request_cancel_detail", pHandle->GetHandleId());
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::UploadComment(CQRAAgentHandle* pHandle, qra_comment_s* pParam, int nIndex,
                                             void* pUserData, on_detail_complete_cb cb) {
    return m_RequestAct(pHandle, pParam, nIndex, pUserData, cb);
}

qra_error_code_e CQRAWebAgent::SetLike(CQRAAgentHandle* pHandle, qra_like_s* pParam, int nIndex,
                                       void* pUserData, on_detail_complete_cb cb) {
    return m_RequestAct(pHandle, pParam, nIndex, pUserData, cb);
}

template <class Param>
qra_error_code_e CQRAWebAgent::m_RequestAct(CQRAAgentHandle* pHandle, Param* pParam, int nIndex,
                                            void* pUserData, on_detail_complete_cb cb) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(pParam, "pParam"))
        return QRA_ERROR_INVALID_PARAM;
    int nItemCount = 0;
    const qra_error_code_e eCode = GetItemCount(pHandle, &nItemCount);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    if (nIndex < 0 || nIndex >= nItemCount) {
        LogWrongIndex(pParam, nIndex);
        return QRA_ERROR_INVALID_PARAM;
    }
    if (m_IsNull(pHandle->GetResultPool(), "pHandle->GetResultPool()"))
        return QRA_ERROR_INVALID_HANDLE;
    const std::string strRequestId = m_PushActData(pHandle, pUserData, cb);
    std::string strText = m_GetItemText(pHandle, nIndex);
    if (!ActToJson(pParam, strText, strRequestId))
        return QRA_ERROR_INVALID_PARAM;
    CQRADBusClient::GetInstance()->RequestAct(kRequestAct, pHandle->GetHandleId(), "", strText);
    return QRA_ERROR_NONE;
}

// A move that fails leaves the cursor on another item, which the act must not meet.
std::string CQRAWebAgent::m_GetItemText(CQRAAgentHandle* pHandle, int nIndex) {
    if (MoveToIndex(pHandle, nIndex) != QRA_ERROR_NONE)
        return "";
    return pHandle->GetResultPool()->GetCursor()->strItem;
}

std::string CQRAWebAgent::m_PushActData(CQRAAgentHandle* pHandle, void* pUserData, on_act_complete_cb cb) {
    const std::string strRequestId = CQRAUtil::GetUUID();
    _stAppData stAppData;
    stAppData.pUserData = pUserData;
    stAppData.cbAct = cb;
    pHandle->PushRequestActData(strRequestId, stAppData);
    return strRequestId;
}

qra_error_code_e CQRAWebAgent::Send(CQRAAgentHandle* pHandle, int bConnected, std::string strParam,
                                    void* pUserData, on_act_complete_cb cb, std::string& strRequestId) {
    QRA_ASSERT(pHandle != NULL);
    CQRAHandlerMgr* pHandlerMgr = CQRAHandlerMgr::GetInstance();
    if (!bConnected) {
        pHandle->SetHandleId(kSendHandleId);
        pHandlerMgr->Add(pHandle->GetValue());
    } else if (!pHandlerMgr->Exists(reinterpret_cast<qra_handle_value_t>(pHandle))) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Invalid Handle.");
        return QRA_ERROR_INVALID_HANDLE;
    }
    CQRADBusClient* pClient = CQRADBusClient::GetInstance();
    pClient->ConnectDbus();
    pClient->SubscribeSignal(kCompleteSignal, m_ProcessDbusSignal, nullptr);

    bool bStop = false;
    CQRAWebAgentJson::GetJsonFieldBool(strParam, "qra_file_transfer_stop", &bStop);
    if (bStop) {
        pHandle->EraseRequestActData(strRequestId);
        pHandlerMgr->Delete(pHandle->GetValue());
        CQRAWebAgentJson::AddMemberString(kActRequestKey, strRequestId, strParam);
        QRA_LOG_INFO(QRA_TAG_WEB, "strSendParam [%s].", strParam.c_str());
        return static_cast<qra_error_code_e>(pClient->StopAct("stop_act", pHandle->GetHandleId(), strParam));
    }
    strRequestId = m_PushActData(pHandle, pUserData, cb);
    CQRAWebAgentJson::AddMemberString(kActRequestKey, strRequestId, strParam);
    pClient->RequestAct(kRequestAct, pHandle->GetHandleId(), "", strParam);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::PreparePlayData(CQRAAgentHandle* pHandle, char** ppData) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(ppData, "ppData"))
        return QRA_ERROR_INVALID_PARAM;
    CSelectList* pSelectList = pHandle->GetSelectList();
    if (m_IsNull(pSelectList, "pHandle->GetSelectList()"))
        return QRA_ERROR_INVALID_HANDLE;
    std::string strShmName;
    if (pSelectList->GetItemCount() > 0)
        strShmName = CSelectListBuilder(pSelectList).Build();
    CJsonValue json;
    json.Set(kAgentHandleKey, pHandle->GetHandleId());
    json.Set(kSelectListShmNameKey, strShmName);
    char* pText = strdup(json.ToString().c_str());
    if (pText == nullptr)
        return QRA_ERROR_OUT_OF_MEMORY;
    *ppData = pText;
    return QRA_ERROR_NONE;
}
