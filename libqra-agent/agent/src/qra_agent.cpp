#include <qra/qra_agent.h>

#include <cstdlib>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_agent_base.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_source_factory.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/source/qra_source_base.h"

// The exported functions check the handle and forward to the agent that it holds. They take no lock but the
// registry's, for the length of the check.

namespace {

qra_handle_value_t ValueOf(const CQRAAgentHandle* pHandle) {
    return reinterpret_cast<qra_handle_value_t>(pHandle);
}

/// The gate of every function that takes a handle: `operation` is called with the agent of a live list
/// handle.
template <class Operation>
qra_error_code_e Forward(CQRAAgentHandle* pHandle, Operation operation) {
    if (!CQRAHandlerMgr::GetInstance()->CheckHandler(ValueOf(pHandle), QRA_HANDLE_TYPE_AGENT)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CheckHandler[%p] faild!!", static_cast<void*>(pHandle));
        return QRA_ERROR_INVALID_HANDLE;
    }
    QRA_ASSERT(pHandle != NULL && pHandle->GetAgentInstance() != NULL);
    return operation(*pHandle->GetAgentInstance());
}

/// Lets `operation` write a text into a variable of its own, so that the client's is written on success only.
template <class Operation>
qra_error_code_e ReadText(char** ppValue, Operation operation) {
    char* pValue = nullptr;
    const qra_error_code_e eCode = operation(ppValue != nullptr ? &pValue : nullptr);
    if (eCode == QRA_ERROR_NONE && pValue != nullptr)
        *ppValue = pValue;
    else
        free(pValue);
    return eCode;
}

template <class... Pointers>
bool AnyNull(Pointers... pointers) {
    if ((... && (pointers != nullptr)))
        return false;
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid param.");
    return true;
}

/// Prepares a live handle for another request.
qra_error_code_e PrepareRepeat(CQRAAgentHandle* pHandle) {
    if (!CQRAHandlerMgr::GetInstance()->CheckHandler(ValueOf(pHandle), QRA_HANDLE_TYPE_AGENT))
        return QRA_ERROR_INVALID_PARAM;
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Reuse existed Agent[%p].", static_cast<void*>(pHandle));
    if (dynamic_cast<CQRALocalAgent*>(pHandle->GetAgentInstance()) == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Exist web agent");
        return QRA_ERROR_INVALID_PARAM;
    }
    const std::string strSource = pHandle->GetSourceName();
    if (strSource == kSourceDLNA) {
        pHandle->SetRepeatDLNA(true);
    } else if (strSource == kSourceMSC) {
        pHandle->SetRepeatMSC(true);
    } else {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Current source not support repeat request!!");
        return QRA_ERROR_NOT_SUPPORTED;
    }
    return QRA_ERROR_NONE;
}

/// A new handle with the agent that serves the source.
CQRAAgentHandle* MakeHandle(const char* pSource) {
    auto* pHandle = new CQRAAgentHandle;
    pHandle->SetAgentInstance(qra_make_agent(pSource).release());
    pHandle->SetRepeatDLNA(false);
    return pHandle;
}

/// Destroys the handle of a failed request. That of a failed repeat stays in the registry as a dead entry.
/// The source's callback, which goes to the agent, is dropped first, as the handle destroys its agent before
/// its source.
void DestroyFailed(CQRAAgentHandle* pHandle) {
    CQRAHandlerMgr::GetInstance()->MarkDead(ValueOf(pHandle));
    if (pHandle->GetSource() != nullptr)
        pHandle->GetSource()->UNSetCallback();
    delete pHandle;
}

}  // namespace

qra_error_code_e qra_request_list_v2(qra_general_s* pParam, on_list_complete_cb cb, void* pUserData,
                                     qra_agent_handler_h* pHandle) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Start to excute qra_request_list.");
    if (AnyNull(pParam, pHandle) || AnyNull(pParam->pSource))
        return QRA_ERROR_INVALID_PARAM;
    CQRAAgentHandle* pAgentHandle = *pHandle;
    if (CQRAHandlerMgr::GetInstance()->Exists(ValueOf(pAgentHandle))) {
        const qra_error_code_e eCode = PrepareRepeat(pAgentHandle);
        if (eCode != QRA_ERROR_NONE)
            return eCode;
    } else {
        pAgentHandle = MakeHandle(pParam->pSource);
    }
    IQRAAgentBase* pAgent = pAgentHandle->GetAgentInstance();
    if (pAgent == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "out of memory!");
        DestroyFailed(pAgentHandle);
        return QRA_ERROR_INTERNAL;
    }
    const qra_error_code_e eCode = pAgent->RequestList(pParam, cb, pUserData, &pAgentHandle);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "RequestList faild.eCode[%d].", eCode);
        DestroyFailed(pAgentHandle);
        return eCode;
    }
    *pHandle = pAgentHandle;
    QRA_LOG_INFO(QRA_TAG_LOCAL, "RequestList success. Get agent[%p].", static_cast<void*>(pAgentHandle));
    return QRA_ERROR_NONE;
}

qra_error_code_e qra_cancel_request_list_v2(qra_agent_handler_h hAgent) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.CancelRequestList(hAgent); });
}

qra_error_code_e qra_disconnect_v2(qra_agent_handler_h hAgent) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Start to excute qra_disconnect of agent[%p].", static_cast<void*>(hAgent));
    return Forward(hAgent, [&](IQRAAgentBase& agent) {
        const qra_error_code_e eCode = agent.Disconnect(hAgent);
        if (eCode != QRA_ERROR_NONE) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "Disconnect agent[%p] faild, eCode[%d].",
                            static_cast<void*>(hAgent), eCode);
            return eCode;
        }
        QRA_LOG_INFO(QRA_TAG_LOCAL, "Disconnect agent[%p] success!", static_cast<void*>(hAgent));
        delete hAgent;
        return QRA_ERROR_NONE;
    });
}

qra_error_code_e qra_request_detail_v2(qra_agent_handler_h hAgent, qra_detail_param_h pParam, void* pUserData,
                                       on_detail_complete_cb cb) {
    return Forward(hAgent,
                   [&](IQRAAgentBase& agent) { return agent.RequestDetail(hAgent, pParam, pUserData, cb); });
}

qra_error_code_e qra_cancel_detail_request_v2(qra_agent_handler_h hAgent) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.CancelDetailRequest(hAgent); });
}

qra_error_code_e qra_upload_comment_v2(qra_agent_handler_h hAgent, qra_comment_param_h pParam, int nIndex,
                                       void* pUserData, on_detail_complete_cb cb) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) {
        return agent.UploadComment(hAgent, pParam, nIndex, pUserData, cb);
    });
}

qra_error_code_e qra_set_like_v2(qra_agent_handler_h hAgent, qra_like_param_h pParam, int nIndex,
                                 void* pUserData, on_detail_complete_cb cb) {
    return Forward(
        hAgent, [&](IQRAAgentBase& agent) { return agent.SetLike(hAgent, pParam, nIndex, pUserData, cb); });
}

qra_error_code_e qra_set_page_style_v2(qra_agent_handler_h hAgent, qra_page_param_h pParam) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Start to excute qra_set_page_style for agent[%p].",
                 static_cast<void*>(hAgent));
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.SetPageStyle(hAgent, pParam); });
}

qra_error_code_e qra_set_expand_mode_v2(qra_agent_handler_h hAgent, int nGroupIndex, bool bExpand) {
    return Forward(hAgent,
                   [&](IQRAAgentBase& agent) { return agent.SetExpandMode(hAgent, nGroupIndex, bExpand); });
}

qra_error_code_e qra_get_group_count_v2(qra_agent_handler_h hAgent, int* pnCount) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.GetGroupCount(hAgent, pnCount); });
}

qra_error_code_e qra_get_item_count_v2(qra_agent_handler_h hAgent, int* pnItemCount) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.GetItemCount(hAgent, pnItemCount); });
}

qra_error_code_e qra_get_item_count_by_type_v2(qra_agent_handler_h hAgent, qra_media_type_e eMediaType,
                                               int* pnItemCount) {
    return Forward(hAgent,
                   [&](IQRAAgentBase& agent) { return agent.GetItemCount(hAgent, eMediaType, pnItemCount); });
}

qra_error_code_e qra_get_item_v2(qra_agent_handler_h hAgent, int nIndex, char** ppItem) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) {
        return ReadText(ppItem, [&](char** ppText) { return agent.GetItem(hAgent, nIndex, ppText); });
    });
}

qra_error_code_e qra_get_page_index_v2(qra_agent_handler_h hAgent, char* pMediaId, int* pnPageIndex) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Start to excute qra_get_page_index for agent[%p].",
                 static_cast<void*>(hAgent));
    return Forward(hAgent,
                   [&](IQRAAgentBase& agent) { return agent.GetPageIndex(hAgent, pMediaId, pnPageIndex); });
}

qra_error_code_e qra_set_navigation_v2(qra_agent_handler_h hAgent, qra_navigation_e eNavigation) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Start to excute qra_set_navigation, agent[%p], eNavigation[%d].",
                 static_cast<void*>(hAgent), eNavigation);
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.SetNavigation(hAgent, eNavigation); });
}

qra_error_code_e qra_get_navigation_v2(qra_agent_handler_h hAgent, qra_navigation_e* peNavigation) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.GetNavigation(hAgent, peNavigation); });
}

qra_error_code_e qra_move_to_next_v2(qra_agent_handler_h hAgent) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.MoveToNext(hAgent); });
}

qra_error_code_e qra_move_to_previous_v2(qra_agent_handler_h hAgent) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.MoveToPrevious(hAgent); });
}

qra_error_code_e qra_move_to_index_v2(qra_agent_handler_h hAgent, int nIndex) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.MoveToIndex(hAgent, nIndex); });
}

qra_error_code_e qra_get_item_value_char_v2(qra_agent_handler_h hAgent, const char* pField, char** ppValue) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) {
        return ReadText(ppValue, [&](char** ppText) { return agent.GetItemValue(hAgent, pField, ppText); });
    });
}

qra_error_code_e qra_get_item_value_int_v2(qra_agent_handler_h hAgent, const char* pField, int* pValue) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.GetItemValue(hAgent, pField, pValue); });
}

qra_error_code_e qra_get_item_value_bool_v2(qra_agent_handler_h hAgent, const char* pField, bool* pValue) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.GetItemValue(hAgent, pField, pValue); });
}

qra_error_code_e qra_get_item_value_double_v2(qra_agent_handler_h hAgent, const char* pField,
                                              double* pValue) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.GetItemValue(hAgent, pField, pValue); });
}

qra_error_code_e qra_get_item_value_time_v2(qra_agent_handler_h hAgent, const char* pField, time_t* pValue) {
    static_assert(sizeof(time_t) == sizeof(long), "agents write a time as a long");
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.GetItemValue(hAgent, pField, pValue); });
}

qra_error_code_e qra_get_item_value_lint_v2(qra_agent_handler_h hAgent, const char* pField,
                                            unsigned long long* pValue) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.GetItemValue(hAgent, pField, pValue); });
}

qra_error_code_e qra_set_item_value_time_v2(qra_agent_handler_h hAgent, const char* pField, time_t nValue) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) {
        return agent.SetItemValue(hAgent, pField, static_cast<long>(nValue));
    });
}

qra_error_code_e qra_set_item_value_int_v2(qra_agent_handler_h hAgent, const char* pField, int nValue) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.SetItemValue(hAgent, pField, nValue); });
}

qra_error_code_e qra_set_item_value_char_v2(qra_agent_handler_h hAgent, const char* pField, char* pValue) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.SetItemValue(hAgent, pField, pValue); });
}

qra_error_code_e qra_get_book_mark_v2(qra_agent_handler_h hAgent, on_get_dlna_bookmark_cb cb,
                                      void* pUserData) {
    return Forward(hAgent,
                   [&](IQRAAgentBase& agent) { return agent.GetItemBookMark(hAgent, cb, pUserData); });
}

qra_error_code_e qra_get_rating_info_v2(qra_agent_handler_h hAgent, char** ppRating) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) {
        return ReadText(ppRating, [&](char** ppText) { return agent.GetRatingInfo(hAgent, ppText); });
    });
}

qra_error_code_e qra_toggle_select_v2(qra_agent_handler_h hAgent, int nListIndex) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.ToggleSelect(hAgent, nListIndex); });
}

qra_error_code_e qra_get_selected_state_v2(qra_agent_handler_h hAgent, int nListIndex, bool* pSelected) {
    return Forward(
        hAgent, [&](IQRAAgentBase& agent) { return agent.GetSelectedState(hAgent, nListIndex, pSelected); });
}

qra_error_code_e qra_get_selection_count_v2(qra_agent_handler_h hAgent, int* pnCount) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.GetSelectionCount(hAgent, pnCount); });
}

qra_error_code_e qra_deselect_all_v2(qra_agent_handler_h hAgent) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.DeselectAll(hAgent); });
}

qra_error_code_e qra_select_group_v2(qra_agent_handler_h hAgent, int nGroupIndex) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.SelectGroup(hAgent, nGroupIndex); });
}

qra_error_code_e qra_deselect_group_v2(qra_agent_handler_h hAgent, int nGroupIndex) {
    return Forward(hAgent, [&](IQRAAgentBase& agent) { return agent.DeselectGroup(hAgent, nGroupIndex); });
}

qra_error_code_e qra_prepare_play_data_v2(qra_agent_handler_h hAgent, char** ppData) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Start to excute qra_prepare_play_data for agent[%p].",
                 static_cast<void*>(hAgent));
    return Forward(hAgent, [&](IQRAAgentBase& agent) {
        return ReadText(ppData, [&](char** ppText) { return agent.PreparePlayData(hAgent, ppText); });
    });
}

qra_error_code_e qra_get_storage_id_v2(char* pPath, char** ppStorageId) {
    if (AnyNull(pPath, ppStorageId))
        return QRA_ERROR_INVALID_PARAM;
    return ReadText(ppStorageId, [&](char** ppText) { return CQRALocalAgent().GetStorageId(pPath, ppText); });
}

qra_error_code_e qra_set_item_value_int_mcf(const char* pId, const char* pField, int nValue) {
    if (AnyNull(pId, pField))
        return QRA_ERROR_INVALID_PARAM;
    return CQRALocalAgent().SetItemValueMcf(pId, pField, nValue);
}

qra_error_code_e qra_get_item_value_int_mcf(const char* pId, const char* pField, int* pnValue) {
    if (AnyNull(pId, pField, pnValue))
        return QRA_ERROR_INVALID_PARAM;
    return CQRALocalAgent().GetItemValueMcf(pId, pField, pnValue);
}
