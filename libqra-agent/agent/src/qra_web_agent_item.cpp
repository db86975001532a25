#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "common/datamodel/qra_resultpool.h"
#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_content_page_factory.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "libqra-agent/agent/util/qra_web_agent_json.h"

namespace {

/// A field that no item has: the number of the item itself.
constexpr char kFocusIdField[] = "QRA_MEDIA_FOCUS_ID";

qra_error_code_e CopyText(const std::string& strText, char** ppOut) {
    auto* pText = static_cast<char*>(malloc(strText.size() + 1));
    if (pText == nullptr)
        return QRA_ERROR_OUT_OF_MEMORY;
    memcpy(pText, strText.c_str(), strText.size() + 1);
    *ppOut = pText;
    return QRA_ERROR_NONE;
}

// What an item's text holds under a key, for each type of value.

bool ReadField(const std::string& strJson, const char* pField, int* pValue) {
    return CQRAWebAgentJson::GetJsonFieldInt(strJson, pField, pValue);
}

bool ReadField(const std::string& strJson, const char* pField, bool* pValue) {
    return CQRAWebAgentJson::GetJsonFieldBool(strJson, pField, pValue);
}

bool ReadField(const std::string& strJson, const char* pField, char** ppValue) {
    return CQRAWebAgentJson::GetJsonFieldChar(strJson, pField, ppValue);
}

bool ReadField(const std::string& strJson, const char* pField, unsigned long long* pValue) {
    long long nValue = 0;
    if (!CQRAWebAgentJson::GetJsonFieldLongLong(strJson, pField, &nValue))
        return false;
    *pValue = static_cast<unsigned long long>(nValue);
    return true;
}

template <class T>
qra_error_code_e m_GetDetailValue(const std::string& strJson, const char* pField, T* pValue) {
    if (ReadField(strJson, pField, pValue))
        return QRA_ERROR_NONE;
    QRA_LOG_WARNING(QRA_TAG_WEB, "m_GetDetailValue() failed.");
    return QRA_ERROR_INTERNAL;
}

/// The number by which clients know the item at the cursor.
qra_error_code_e m_GetItemID(CResultPool& pool, char** ppValue) {
    return CopyText(CQRAUtil::int2str(pool.GetCursor()->nListIndex), ppValue);
}

}  // namespace

// The page.

qra_error_code_e CQRAWebAgent::SetPageStyle(CQRAAgentHandle* pHandle, qra_page_style_s* pParam) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(pParam, "pParam"))
        return QRA_ERROR_INVALID_PARAM;
    pHandle->DestroyContentPage();
    return CQRAContentPageFactory::GetInstance()->Build(pHandle, pParam->order, pParam->mask,
                                                        pParam->group_index, pParam->row, pParam->column,
                                                        pParam->padding);
}

qra_error_code_e CQRAWebAgent::GetGroupCount(CQRAAgentHandle* pHandle, int* pnCount) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(pnCount, "pnCount"))
        return QRA_ERROR_INVALID_PARAM;
    if (m_IsNull(pHandle->GetResultPool(), "pHandle->GetResultPool()"))
        return QRA_ERROR_INVALID_HANDLE;
    *pnCount = pHandle->GetResultPool()->GetGroupCount();
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::GetItemCount(CQRAAgentHandle* pHandle, int* pnItemCount) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(pnItemCount, "pnItemCount"))
        return QRA_ERROR_INVALID_PARAM;
    if (pHandle->GetNavigation() == QRA_NAVIGATION_TYPE_SELECTED)
        return GetSelectionCount(pHandle, pnItemCount);
    const CQRAContentPage* pPage = pHandle->GetContentPage();
    if (m_IsNull(pPage, "pHandle->GetContentPage()"))
        return QRA_ERROR_INVALID_HANDLE;
    *pnItemCount = pPage->GetTotalSize() - pPage->GetEmptyItemCount();
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::GetItemCount(CQRAAgentHandle* pHandle, qra_media_type_e, int*) {
    QRA_ASSERT(pHandle != NULL);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::GetPageIndex(CQRAAgentHandle* pHandle, char* pMediaId, int* pnPageIndex) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(pMediaId, "pMediaId") || m_IsNull(pnPageIndex, "pnPageIndex"))
        return QRA_ERROR_INVALID_PARAM;
    const CQRAContentPage* pPage = pHandle->GetContentPage();
    if (pHandle->GetNavigation() == QRA_NAVIGATION_TYPE_SELECTED ||
        (pPage != nullptr && pPage->GetPageMask() == kMaskSelected)) {
        *pnPageIndex = 0;
        QRA_LOG_INFO(QRA_TAG_WEB, "GetPageIndex In QRA_NAVIGATION_TYPE_SELECTED, pnPageIndex[%d].",
                     *pnPageIndex);
        return QRA_ERROR_NONE;
    }
    if (m_IsNull(pPage, "pHandle->GetContentPage()"))
        return QRA_ERROR_INVALID_HANDLE;
    const int nIndex = pPage->GetPageIndexByDBIndex(CQRAUtil::str2int(pMediaId), QRA_PG_ITEM_CONTENTS);
    if (nIndex < 0)
        return QRA_ERROR_INVALID_PARAM;
    *pnPageIndex = nIndex;
    return QRA_ERROR_NONE;
}

// The cursor.

qra_error_code_e CQRAWebAgent::SetNavigation(CQRAAgentHandle* pHandle, qra_navigation_e eNavigation) {
    QRA_ASSERT(pHandle != NULL);
    pHandle->SetNavigation(eNavigation);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::GetNavigation(CQRAAgentHandle* pHandle, qra_navigation_e* peNavigation) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(peNavigation, "peNavigation"))
        return QRA_ERROR_INVALID_PARAM;
    *peNavigation = pHandle->GetNavigation();
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::MoveToNext(CQRAAgentHandle* pHandle) {
    return m_MoveCursor(pHandle, MOVE_MODEL_NEXT, 0);
}

qra_error_code_e CQRAWebAgent::MoveToPrevious(CQRAAgentHandle* pHandle) {
    return m_MoveCursor(pHandle, MOVE_MODEL_PREVIOUS, 0);
}

qra_error_code_e CQRAWebAgent::MoveToIndex(CQRAAgentHandle* pHandle, int nIndex) {
    return m_MoveCursor(pHandle, MOVE_MODEL_INDEX, nIndex);
}

qra_error_code_e CQRAWebAgent::m_MoveCursor(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nPageIndex) {
    QRA_ASSERT(pHandle != NULL);
    const qra_navigation_e eNavigation = pHandle->GetNavigation();
    if (eNavigation == QRA_NAVIGATION_TYPE_SELECTED &&
        m_MoveOnSelectList(pHandle, eModel, nPageIndex) != QRA_ERROR_NONE)
        QRA_LOG_WARNING(QRA_TAG_WEB, "m_MoveOnSelectList faild. nPageIndex[%d].", nPageIndex);
    const int nIndex = m_GetDBIndex(pHandle, nPageIndex, eNavigation);
    if (nIndex < 0) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "m_GetDBIndex() faild, nPageIndex[%d].", nPageIndex);
        return QRA_ERROR_INVALID_PARAM;
    }
    return m_MoveOnResultList(pHandle, eModel, nIndex);
}

qra_error_code_e CQRAWebAgent::m_MoveOnSelectList(CQRAAgentHandle* pHandle, MOVE_MODEL eModel,
                                                  int nPageIndex) {
    CSelectList* pSelectList = pHandle->GetSelectList();
    if (m_IsNull(pSelectList, "pHandle->GetSelectList()"))
        return QRA_ERROR_INVALID_HANDLE;
    switch (eModel) {
        case MOVE_MODEL_NEXT:
            return pSelectList->MoveToNext();
        case MOVE_MODEL_PREVIOUS:
            return pSelectList->MoveToPrevious();
        case MOVE_MODEL_INDEX:
            return pSelectList->MoveToIndex(nPageIndex);
    }
    return QRA_ERROR_INTERNAL;
}

qra_error_code_e CQRAWebAgent::m_MoveOnResultList(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex) {
    CResultPool* pPool = pHandle->GetResultPool();
    if (m_IsNull(pPool, "pHandle->GetResultPool()"))
        return QRA_ERROR_INVALID_HANDLE;
    switch (eModel) {
        case MOVE_MODEL_NEXT:
            return pPool->MoveToNext();
        case MOVE_MODEL_PREVIOUS:
            return pPool->MoveToPrevious();
        case MOVE_MODEL_INDEX:
            return pPool->MoveToIndex(nIndex);
    }
    return QRA_ERROR_INTERNAL;
}

// Without a page, or a selection, the index is that of the second item: clients that move before they set a
// page style rely on it.
int CQRAWebAgent::m_GetDBIndex(CQRAAgentHandle* pHandle, int nPageIndex, qra_navigation_e eNavigation) {
    if (eNavigation == QRA_NAVIGATION_TYPE_SELECTED) {
        if (m_IsNull(pHandle->GetSelectList(), "pHandle->GetSelectList()"))
            return QRA_ERROR_INVALID_HANDLE;
        return pHandle->GetSelectList()->GetCurrentDBIndex();
    }
    if (m_IsNull(pHandle->GetContentPage(), "pHandle->GetContentPage()"))
        return QRA_ERROR_INVALID_HANDLE;
    return pHandle->GetContentPage()->GetDBIndex(nPageIndex);
}

// Values.

qra_error_code_e CQRAWebAgent::GetItem(CQRAAgentHandle* pHandle, int nIndex, char** ppItem) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(ppItem, "ppItem"))
        return QRA_ERROR_INVALID_PARAM;
    const qra_error_code_e eCode = m_MoveCursor(pHandle, MOVE_MODEL_INDEX, nIndex);
    if (eCode != QRA_ERROR_NONE)
        return eCode;
    return CopyText(pHandle->GetResultPool()->GetCursor()->strItem, ppItem);
}

template <class T>
qra_error_code_e CQRAWebAgent::m_GetItemValue(CQRAAgentHandle* pHandle, const char* pField, T* pValue) {
    QRA_ASSERT(pHandle != NULL);
    const char* szMissing = nullptr;
    if (pField == nullptr)
        szMissing = "NULL == pField";
    else if (pValue == nullptr)
        szMissing = "NULL == pValue";
    if (szMissing != nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "%s", szMissing);
        return QRA_ERROR_INVALID_PARAM;
    }
    CResultPool* pPool = pHandle->GetResultPool();
    if (m_IsNull(pPool, "pHandle->GetResultPool()"))
        return QRA_ERROR_INVALID_HANDLE;
    if constexpr (std::is_same_v<T, char*>) {
        if (strcmp(pField, kFocusIdField) == 0)
            return m_GetItemID(*pPool, pValue);
    }
    return m_GetDetailValue(pPool->GetCursor()->strItem, pField, pValue);
}

qra_error_code_e CQRAWebAgent::GetItemValue(CQRAAgentHandle* pHandle, const char* pField, char** ppValue) {
    return m_GetItemValue(pHandle, pField, ppValue);
}

qra_error_code_e CQRAWebAgent::GetItemValue(CQRAAgentHandle* pHandle, const char* pField, int* pValue) {
    return m_GetItemValue(pHandle, pField, pValue);
}

qra_error_code_e CQRAWebAgent::GetItemValue(CQRAAgentHandle* pHandle, const char* pField, bool* pValue) {
    return m_GetItemValue(pHandle, pField, pValue);
}

qra_error_code_e CQRAWebAgent::GetItemValue(CQRAAgentHandle* pHandle, const char* pField,
                                            unsigned long long* pValue) {
    return m_GetItemValue(pHandle, pField, pValue);
}

// The selection.

qra_error_code_e CQRAWebAgent::ToggleSelect(CQRAAgentHandle* pHandle, int nListIndex) {
    QRA_ASSERT(pHandle != NULL);
    CSelectList* pSelectList = pHandle->GetSelectList();
    if (m_IsNull(pSelectList, "pHandle->GetSelectList()") ||
        m_IsNull(pHandle->GetContentPage(), "pHandle->GetContentPage()"))
        return QRA_ERROR_INVALID_HANDLE;
    const int nDBIndex = m_GetDBIndex(pHandle, nListIndex, QRA_NAVIGATION_TYPE_ALL);
    if (nDBIndex < 0)
        return QRA_ERROR_INVALID_PARAM;
    if (pSelectList->FindItem(nDBIndex))
        pSelectList->RemoveItem(nDBIndex);
    else
        pSelectList->AddItem(nDBIndex);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::GetSelectedState(CQRAAgentHandle* pHandle, int nListIndex, bool* pSelected) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(pSelected, "pSelected"))
        return QRA_ERROR_INVALID_PARAM;
    const CSelectList* pSelectList = pHandle->GetSelectList();
    if (m_IsNull(pSelectList, "pHandle->GetSelectList()") ||
        m_IsNull(pHandle->GetContentPage(), "pHandle->GetContentPage()"))
        return QRA_ERROR_INVALID_HANDLE;
    const int nDBIndex = m_GetDBIndex(pHandle, nListIndex, QRA_NAVIGATION_TYPE_ALL);
    if (nDBIndex < 0)
        return QRA_ERROR_INVALID_PARAM;
    *pSelected = pSelectList->FindItem(nDBIndex);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::GetSelectionCount(CQRAAgentHandle* pHandle, int* pnCount) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(pnCount, "pnCount"))
        return QRA_ERROR_INVALID_PARAM;
    if (m_IsNull(pHandle->GetSelectList(), "pHandle->GetSelectList()"))
        return QRA_ERROR_INVALID_HANDLE;
    *pnCount = pHandle->GetSelectList()->GetItemCount();
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRAWebAgent::DeselectAll(CQRAAgentHandle* pHandle) {
    QRA_ASSERT(pHandle != NULL);
    if (m_IsNull(pHandle->GetSelectList(), "pHandle->GetSelectList()"))
        return QRA_ERROR_INVALID_HANDLE;
    pHandle->GetSelectList()->RemoveAll();
    return QRA_ERROR_NONE;
}

// What the engine's lists do not have.

qra_error_code_e CQRAWebAgent::GetItemValue(CQRAAgentHandle* pHandle, const char*, double*) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::GetItemValue(CQRAAgentHandle* pHandle, const char*, long*) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::SetItemValue(CQRAAgentHandle* pHandle, const char*, long) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::SetItemValue(CQRAAgentHandle* pHandle, const char*, int) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::SetItemValue(CQRAAgentHandle* pHandle, const char*, char*) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::GetItemBookMark(CQRAAgentHandle* pHandle, on_get_dlna_bookmark_cb, void*) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::SetExpandMode(CQRAAgentHandle* pHandle, int, bool) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::SelectGroup(CQRAAgentHandle* pHandle, int) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::DeselectGroup(CQRAAgentHandle* pHandle, int) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::GetRatingInfo(CQRAAgentHandle* pHandle, char**) {
    return m_NotServed(pHandle);
}

qra_error_code_e CQRAWebAgent::GetStorageId(char*, char**) {
    return QRA_ERROR_INTERNAL;
}
