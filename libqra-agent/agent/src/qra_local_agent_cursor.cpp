#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_handle_parts.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/source/qra_source_base.h"

qra_error_code_e CQRALocalAgent::SetNavigation(CQRAAgentHandle* pHandle, qra_navigation_e eNavigation) {
    if (!qra_has_parts(pHandle))
        return QRA_ERROR_INVALID_HANDLE;
    pHandle->SetNavigation(eNavigation);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::GetNavigation(CQRAAgentHandle* pHandle, qra_navigation_e* peNavigation) {
    if (peNavigation == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "peNavigation == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle))
        return QRA_ERROR_INVALID_HANDLE;
    *peNavigation = pHandle->GetNavigation();
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::MoveToNext(CQRAAgentHandle* pHandle) {
    return m_MoveCursor(pHandle, MOVE_MODEL_NEXT, 0);
}

qra_error_code_e CQRALocalAgent::MoveToPrevious(CQRAAgentHandle* pHandle) {
    return m_MoveCursor(pHandle, MOVE_MODEL_PREVIOUS, 0);
}

qra_error_code_e CQRALocalAgent::MoveToIndex(CQRAAgentHandle* pHandle, int nIndex) {
    return m_MoveCursor(pHandle, MOVE_MODEL_INDEX, nIndex);
}

qra_error_code_e CQRALocalAgent::m_MoveCursor(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex) {
    if (!qra_has_parts(pHandle, kPartContentPage | kPartSource | kPartSelectList))
        return QRA_ERROR_INVALID_HANDLE;
    if (pHandle->GetNavigation() == QRA_NAVIGATION_TYPE_SELECTED) {
        const qra_error_code_e eCode = m_MoveOnSelectList(pHandle, eModel, nIndex);
        if (eCode != QRA_ERROR_NONE) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_MoveOnSelectList faild. nPageIndex[%d].", nIndex);
            return eCode;
        }
    }
    // For next and previous nIndex is 0: the kind of the first tile decides which way they take.
    const qra_page_item_type_e eType = m_GetPageItemType(pHandle, nIndex);
    switch (eType) {
        case QRA_PG_ITEM_CONTENTS: {
            const qra_error_code_e eCode = m_MoveOnResultList(pHandle, eModel, nIndex);
            if (eCode == QRA_ERROR_NONE)
                m_SetPageIndex(pHandle, eModel, nIndex);
            else
                QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_MoveOnResultList faild, nPageIndex[%d].", nIndex);
            return eCode;
        }
        case QRA_PG_ITEM_EMPTY:
        case QRA_PG_ITEM_CLUSTER:
        case QRA_PG_ITEM_PLAYLIST:
        case QRA_PG_ITEM_UPFOLDER:
            return m_MoveOnPage(pHandle, eModel, nIndex);
        default:
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "Wrong ePageItemType[%d].", eType);
            return QRA_ERROR_INTERNAL;
    }
}

qra_error_code_e CQRALocalAgent::m_MoveOnPage(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex) {
    int nTarget = nIndex;
    if (eModel == MOVE_MODEL_NEXT)
        nTarget = pHandle->GetCurrentPageIndex() + 1;
    else if (eModel == MOVE_MODEL_PREVIOUS)
        nTarget = pHandle->GetCurrentPageIndex() - 1;
    if (!m_CheckListIndex(pHandle, nTarget)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_CheckListIndex faild. nPageIndex[%d].", nTarget);
        return QRA_ERROR_INVALID_PARAM;
    }
    m_SetPageIndex(pHandle, eModel, nIndex);
    return QRA_ERROR_NONE;
}

// Next and previous move source and page by one each, in step: only MOVE_MODEL_INDEX lands the source on an
// item.
qra_error_code_e CQRALocalAgent::m_MoveOnResultList(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex) {
    const int nDBIndex = m_GetDBIndex(pHandle, nIndex, pHandle->GetNavigation());
    if (nDBIndex < 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_GetDBIndex faild. nPageIndex[%d].", nIndex);
        return QRA_ERROR_INVALID_PARAM;
    }
    IQRASourceBase* pSource = pHandle->GetSource();
    bool bMoved = false;
    switch (eModel) {
        case MOVE_MODEL_NEXT:
            bMoved = pSource->MoveToNext();
            break;
        case MOVE_MODEL_PREVIOUS:
            bMoved = pSource->MoveToPrevious();
            break;
        case MOVE_MODEL_INDEX:
            bMoved = pSource->MoveToIndex(nDBIndex);
            break;
    }
    return bMoved ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

qra_error_code_e CQRALocalAgent::m_MoveOnSelectList(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex) {
    CSelectList* pSelectList = pHandle->GetSelectList();
    switch (eModel) {
        case MOVE_MODEL_NEXT:
            return pSelectList->MoveToNext();
        case MOVE_MODEL_PREVIOUS:
            return pSelectList->MoveToPrevious();
        case MOVE_MODEL_INDEX:
            break;
    }
    return pSelectList->MoveToIndex(nIndex);
}

bool CQRALocalAgent::m_CheckListIndex(CQRAAgentHandle* pHandle, int nIndex) {
    return nIndex >= 0 && nIndex < pHandle->GetContentPage()->GetTotalSize();
}

void CQRALocalAgent::m_SetPageIndex(CQRAAgentHandle* pHandle, MOVE_MODEL eModel, int nIndex) {
    switch (eModel) {
        case MOVE_MODEL_NEXT:
            pHandle->SetCurrentPageIndex(pHandle->GetCurrentPageIndex() + 1);
            break;
        case MOVE_MODEL_PREVIOUS:
            pHandle->SetCurrentPageIndex(pHandle->GetCurrentPageIndex() - 1);
            break;
        case MOVE_MODEL_INDEX:
            pHandle->SetCurrentPageIndex(nIndex);
            break;
    }
}

int CQRALocalAgent::m_GetDBIndex(CQRAAgentHandle* pHandle, int nListIndex, qra_navigation_e eNavigation) {
    if (eNavigation == QRA_NAVIGATION_TYPE_SELECTED) {
        const int nDBIndex = pHandle->GetSelectList()->GetCurrentDBIndex();
        if (nDBIndex < 0)
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "pHandle->GetSelectList()->GetCurrentDBIndex() faild.");
        return nDBIndex;
    }
    const CQRAContentPage* pPage = pHandle->GetContentPage();
    switch (pPage->GetItemType(nListIndex)) {
        case QRA_PG_ITEM_CONTENTS: {
            const int nDBIndex = pPage->GetDBIndex(nListIndex);
            if (nDBIndex == -1)
                QRA_LOG_WARNING(QRA_TAG_LOCAL, "pHandle->GetContentPage()->GetDBIndex faild, nPageIndex[%d].",
                                nListIndex);
            return nDBIndex;
        }
        case QRA_PG_ITEM_PLAYLIST: {
            const int nPlayList = pPage->GetPlayListIndexByPageIndex(nListIndex);
            if (nPlayList < 0)
                QRA_LOG_WARNING(
                    QRA_TAG_LOCAL,
                    "pHandle->GetContentPage()->GetPlayListIndexByPageIndex faild, nPageIndex[%d].",
                    nListIndex);
            return nPlayList;
        }
        default:
            return -1;
    }
}

qra_page_item_type_e CQRALocalAgent::m_GetPageItemType(CQRAAgentHandle* pHandle, int nListIndex) {
    return pHandle->GetNavigation() == QRA_NAVIGATION_TYPE_ALL
               ? pHandle->GetContentPage()->GetItemType(nListIndex)
               : pHandle->GetSelectList()->m_ePageItemType;
}
