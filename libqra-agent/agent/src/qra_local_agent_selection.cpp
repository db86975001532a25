#include <cstring>

#include "common/util/json_value.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_handle_parts.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_selectlist_builder.h"
#include "libqra-agent/source/local-source/qra_group_info.h"

namespace {

/// A group's range of DB indices.
struct GroupRange {
    int nBegin = 0;
    int nEnd = 0;
};

// Ends the process for an ordinal that the list does not have: the client answers for it.
GroupRange RangeOf(const CQRAGroupInfo& groups, int nGroupIndex) {
    int nStart = 0;
    int nCount = 0;
    std::string strName;
    groups.GetGroup(nGroupIndex, nStart, nCount, strName);
    return {nStart, nStart + nCount};
}

/// A selection without items may take items of any kind again.
void FreeTypeIfEmpty(CSelectList& selectList) {
    if (selectList.GetItemCount() == 0)
        selectList.m_ePageItemType = QRA_PG_ITEM_NONE;
}

}  // namespace

qra_error_code_e CQRALocalAgent::ToggleSelect(CQRAAgentHandle* pHandle, int nListIndex) {
    if (!qra_has_parts(pHandle, kPartSelectList | kPartContentPage))
        return QRA_ERROR_INVALID_HANDLE;
    const qra_page_item_type_e eType = pHandle->GetContentPage()->GetItemType(nListIndex);
    if (eType == QRA_PG_ITEM_EMPTY || eType == QRA_PG_ITEM_UPFOLDER) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Empty or Upfolder item can not be selected!!");
        return QRA_ERROR_NOT_SUPPORTED;
    }
    CSelectList& selectList = *pHandle->GetSelectList();
    if (selectList.m_ePageItemType == QRA_PG_ITEM_NONE)
        selectList.m_ePageItemType = eType;
    if (selectList.m_ePageItemType != eType) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL,
                        "Selectlist contains items of page[%d], can not add items of page[%d] to seleclist!!",
                        selectList.m_ePageItemType, eType);
        return QRA_ERROR_NOT_SUPPORTED;
    }
    // A group header ends here too, with its kind already taken by the list.
    const int nDBIndex = m_GetDBIndex(pHandle, nListIndex, QRA_NAVIGATION_TYPE_ALL);
    if (nDBIndex < 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_GetDBIndex for nPageIndex[%d] faild.", nListIndex);
        return QRA_ERROR_INVALID_PARAM;
    }
    if (selectList.FindItem(nDBIndex)) {
        selectList.RemoveItem(nDBIndex);
        QRA_LOG_INFO(QRA_TAG_LOCAL, "RemoveItem[%d], nSelectCount[%d]", nDBIndex, selectList.GetItemCount());
        FreeTypeIfEmpty(selectList);
    } else {
        selectList.AddItem(nDBIndex);
        QRA_LOG_INFO(QRA_TAG_LOCAL, "AddItem pageIndex[%d], dbIndex[%d], nSelectCount[%d]", nListIndex,
                     nDBIndex, selectList.GetItemCount());
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::GetSelectedState(CQRAAgentHandle* pHandle, int nListIndex, bool* pSelected) {
    if (pSelected == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pSelected == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle, kPartSelectList | kPartContentPage))
        return QRA_ERROR_INVALID_HANDLE;
    const CSelectList& selectList = *pHandle->GetSelectList();
    if (selectList.m_ePageItemType == QRA_PG_ITEM_NONE ||
        selectList.m_ePageItemType != pHandle->GetContentPage()->GetItemType(nListIndex)) {
        *pSelected = false;
        return QRA_ERROR_NONE;
    }
    const int nDBIndex = m_GetDBIndex(pHandle, nListIndex, QRA_NAVIGATION_TYPE_ALL);
    if (nDBIndex < 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_GetDBIndex for nPageIndex[%d] faild.", nListIndex);
        return QRA_ERROR_INVALID_PARAM;
    }
    *pSelected = selectList.FindItem(nDBIndex);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::GetSelectionCount(CQRAAgentHandle* pHandle, int* pnCount) {
    if (pnCount == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pnCount == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle, kPartSelectList))
        return QRA_ERROR_INVALID_HANDLE;
    *pnCount = pHandle->GetSelectList()->GetItemCount();
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::DeselectAll(CQRAAgentHandle* pHandle) {
    if (!qra_has_parts(pHandle, kPartSelectList))
        return QRA_ERROR_INVALID_HANDLE;
    pHandle->GetSelectList()->RemoveAll();
    pHandle->GetSelectList()->m_ePageItemType = QRA_PG_ITEM_NONE;
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::SelectGroup(CQRAAgentHandle* pHandle, int nGroupIndex) {
    if (!qra_has_parts(pHandle, kPartSelectList | kPartGroupInfo))
        return QRA_ERROR_INVALID_HANDLE;
    CSelectList& selectList = *pHandle->GetSelectList();
    if (selectList.m_ePageItemType == QRA_PG_ITEM_NONE)
        selectList.m_ePageItemType = QRA_PG_ITEM_CONTENTS;
    if (selectList.m_ePageItemType != QRA_PG_ITEM_CONTENTS) {
        QRA_LOG_WARNING(
            QRA_TAG_LOCAL,
            "Other page type[%d] of item in select list, please clear select list before you select group.",
            selectList.m_ePageItemType);
        return QRA_ERROR_NOT_SUPPORTED;
    }
    const GroupRange range = RangeOf(*pHandle->GetGroupInfo(), nGroupIndex);
    for (int nDBIndex = range.nBegin; nDBIndex < range.nEnd; ++nDBIndex)
        selectList.AddItem(nDBIndex);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::DeselectGroup(CQRAAgentHandle* pHandle, int nGroupIndex) {
    if (!qra_has_parts(pHandle, kPartSelectList | kPartGroupInfo))
        return QRA_ERROR_INVALID_HANDLE;
    CSelectList& selectList = *pHandle->GetSelectList();
    if (selectList.m_ePageItemType != QRA_PG_ITEM_CONTENTS) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Wrong page type[%d] of item in select list.",
                        selectList.m_ePageItemType);
        return QRA_ERROR_NOT_SUPPORTED;
    }
    const GroupRange range = RangeOf(*pHandle->GetGroupInfo(), nGroupIndex);
    for (int nDBIndex = range.nBegin; nDBIndex < range.nEnd; ++nDBIndex)
        selectList.RemoveItem(nDBIndex);
    FreeTypeIfEmpty(selectList);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::PreparePlayData(CQRAAgentHandle* pHandle, char** ppData) {
    if (ppData == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pPrepareData == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle, kPartSelectList))
        return QRA_ERROR_INVALID_HANDLE;
    CSelectList* pSelectList = pHandle->GetSelectList();
    const bool bHasSelectedItem = pSelectList->GetItemCount() > 0;
    CJsonValue json;
    json.Set("qra_has_selected_item", bHasSelectedItem);
    if (bHasSelectedItem) {
        QRA_LOG_INFO(QRA_TAG_LOCAL, "Build share memory for select item.");
        json.Set("qra_selectlist_shmname", CSelectListBuilder(pSelectList).Build());
    }
    char* pText = strdup(json.ToString().c_str());
    if (pText == nullptr)
        return QRA_ERROR_OUT_OF_MEMORY;
    *ppData = pText;
    QRA_LOG_INFO(QRA_TAG_LOCAL, "pPrepareData[%s]", pText);
    return QRA_ERROR_NONE;
}
