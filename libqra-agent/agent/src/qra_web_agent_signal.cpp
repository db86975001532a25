#include <algorithm>
#include <iterator>

#include "common/datamodel/qra_resultpool.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "libqra-agent/agent/src/qra_web_agent_names.h"
#include "libqra-agent/agent/util/qra_web_agent_json.h"

// The engine's completion signals. Everything in them is input.

namespace {

/// Event types of the engine.
enum EngineEvent {
    kListReady = 0,
    kListEmpty = 1,
    kListFailed = 2,
    kDetailReady = 3,
    kDetailEmpty = 4,
    kDetailFailed = 5,
    kActSucceeded = 6,
    kActFailed = 7,
    kDisconnectSucceeded = 8,
    kDisconnectFailed = 9,
    kDropSucceeded = 10,
    kActUpdating = 12
};

struct ClientEvent {
    EngineEvent eType;
    qra_event_e eEvent;
};

constexpr ClientEvent kClientEvents[] = {
    {kListReady, QRA_EVENT_LIST_SUCCESS},   {kListEmpty, QRA_EVENT_LIST_EMPTY},
    {kListFailed, QRA_EVENT_LIST_FAILED},   {kDetailReady, QRA_EVENT_DETAIL_SUCCESS},
    {kDetailEmpty, QRA_EVENT_DETAIL_EMPTY}, {kDetailFailed, QRA_EVENT_DETAIL_FAILED},
    {kActSucceeded, QRA_EVENT_ACT_SUCCESS}, {kActFailed, QRA_EVENT_ACT_FAILED},
    {kActUpdating, QRA_EVENT_ACT_UPDATE},
};

/// The client's event for a type that its handler was chosen by.
qra_event_e EventOf(int eType) {
    const auto it = std::find_if(std::begin(kClientEvents), std::end(kClientEvents),
                                 [eType](const ClientEvent& event) { return event.eType == eType; });
    return it != std::end(kClientEvents) ? it->eEvent : QRA_EVENT_LIST_FAILED;
}

std::string TextOf(const std::string& strPayload, const char* szKey) {
    std::string strText;
    CQRAWebAgentJson::GetJsonFieldString(strPayload, szKey, strText);
    return strText;
}

/// The live agent handle with the engine's id; null, with a log line, if there is none.
CQRAAgentHandle* FindHandle(unsigned int uId) {
    // Handles that no engine knows share one id; they are not even looked at, as their owners may be about to
    // destroy them.
    CQRAHandleBase* pBase =
        uId != kNobodysId ? CQRAHandlerMgr::GetInstance()->GetHandler(QRA_HANDLE_TYPE_AGENT, uId) : nullptr;
    if (pBase == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Can't found agent handle[%p].", static_cast<void*>(pBase));
        return nullptr;
    }
    auto* pHandle = dynamic_cast<CQRAAgentHandle*>(pBase);
    if (pHandle == nullptr)
        QRA_LOG_WARNING(QRA_TAG_WEB, "dynamic_cast<CQRAAgentHandle*>( %p ) failed.",
                        static_cast<void*>(pBase));
    return pHandle;
}

}  // namespace

void CQRAWebAgent::m_ProcessDbusSignal(const char* pSignal, void*, char* pPayload) {
    const CQRALockGuard<CQRAMutex> guard(m_AgentMutex);
    if (pSignal == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Invalid Signal received from dbus server.");
        return;
    }
    if (pPayload == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Invalid content data received from dbus server.");
        return;
    }
    const std::string strPayload = pPayload;
    int eType = -1;
    unsigned int uId = static_cast<unsigned int>(-1);
    CQRAWebAgentJson::GetJsonFieldInt(strPayload, "qra_event_type", &eType);
    CQRAWebAgentJson::GetJsonFieldUInt(strPayload, "qra_handle_id", &uId);
    CQRAAgentHandle* pHandle = FindHandle(uId);
    if (pHandle != nullptr)
        m_Dispatch(eType, pHandle, strPayload);
}

void CQRAWebAgent::m_Dispatch(int eType, CQRAAgentHandle* pHandle, const std::string& strPayload) {
    switch (eType) {
        case kListReady:
        case kListEmpty:
        case kListFailed:
            m_ProcessRequestPartialSignal(eType, pHandle, strPayload);
            break;
        case kDetailReady:
        case kDetailEmpty:
        case kDetailFailed:
            m_ProcessRequestDetailSignal(eType, pHandle, strPayload);
            break;
        case kActSucceeded:
        case kActFailed:
        case kActUpdating:
            m_ProcessRequestActSignal(eType, pHandle, strPayload);
            break;
        case kDisconnectSucceeded:
            QRA_LOG_INFO(QRA_TAG_WEB, "Disconnect from engine success ... \n");
            break;
        case kDisconnectFailed:
            QRA_LOG_WARNING(QRA_TAG_WEB, "Disconnect from engine fail ... \n");
            break;
        case kDropSucceeded:
            QRA_LOG_INFO(QRA_TAG_WEB, "Drop partial list success.");
            break;
        default:
            QRA_LOG_WARNING(QRA_TAG_WEB, "Unkown operating type recevied from engine ...\n");
            break;
    }
}

void CQRAWebAgent::m_ProcessRequestPartialSignal(int eType, CQRAAgentHandle* pHandle,
                                                 const std::string& strPayload) {
    _stAppData stAppData;
    if (!pHandle->PopRequestListData(kRequestListKey, stAppData)) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "pHandle->PopRequestListData faild");
        return;
    }
    // A client may do without a callback: its list arrives all the same.
    if (stAppData.cbList == nullptr)
        QRA_LOG_WARNING(QRA_TAG_WEB, "cb == NULL");
    if (eType != kListReady && eType != kListEmpty && eType != kListFailed) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "UnKown eType[%d].", eType);
        return;
    }
    std::string strText;
    if (eType == kListFailed)
        strText = TextOf(strPayload, kErrorTextKey);
    else if (eType == kListReady && !m_PushSection(pHandle, strPayload))
        return;
    if (stAppData.cbList != nullptr)
        stAppData.cbList(stAppData.pUserData, pHandle, EventOf(eType),
                         static_cast<int>(pHandle->GetHandleId()), strText.c_str());
}

bool CQRAWebAgent::m_PushSection(CQRAAgentHandle* pHandle, const std::string& strPayload) {
    CResultPool* pPool = pHandle->GetResultPool();
    if (pPool == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "pHandle->GetResultPool() == NULL");
        return false;
    }
    QRA_LOG_INFO(QRA_TAG_WEB, "Load_resultlist\n");
    pPool->Push(new CResultList(TextOf(strPayload, "qra_result_list_block_name"), EQRAWriter::Untrusted));
    return true;
}

void CQRAWebAgent::m_ProcessRequestDetailSignal(int eType, CQRAAgentHandle* pHandle,
                                                const std::string& strPayload) {
    const std::string strRequestId = TextOf(strPayload, kDetailRequestKey);
    const std::string strDetail = TextOf(strPayload, "qra_result_detail_json");
    _stAppData stAppData;
    if (!pHandle->PopRequestDetailData(strRequestId, stAppData)) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "pHandle->PopRequestListData faild, requestId[%s].",
                        strRequestId.c_str());
        return;
    }
    if (stAppData.cbDetail == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "cb == NULL.");
        return;
    }
    stAppData.cbDetail(stAppData.pUserData, pHandle, static_cast<int>(pHandle->GetHandleId()), EventOf(eType),
                       strDetail.c_str());
    pHandle->EraseRequestDetailData(strRequestId);
}

void CQRAWebAgent::m_ProcessRequestActSignal(int eType, CQRAAgentHandle* pHandle,
                                             const std::string& strPayload) {
    const std::string strCommand = TextOf(strPayload, "act_command_and_return_data");
    const std::string strRequestId = TextOf(strPayload, kActRequestKey);
    int nTransfer = -1;
    CQRAWebAgentJson::GetJsonFieldInt(strPayload, "qra_file_transfer_signal", &nTransfer);
    _stAppData stAppData;
    if (!pHandle->PopRequestActData(strRequestId, stAppData)) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "pHandle->PopRequestActData faild, requestId[%s].",
                        strRequestId.c_str());
        return;
    }
    if (stAppData.cbAct == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "cb == NULL.");
        return;
    }
    stAppData.cbAct(stAppData.pUserData, pHandle, static_cast<int>(pHandle->GetHandleId()), EventOf(eType),
                    strCommand.c_str());
    if (nTransfer == 0) {
        QRA_LOG_INFO(QRA_TAG_WEB, "Remove nRequestID");
        pHandle->EraseRequestActData(strRequestId);
    }
}
