#include <cstring>
#include <memory>

#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_handle_parts.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_item_builder.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_source_factory.h"
#include "libqra-agent/agent/src/qra_value_target.h"
#include "libqra-agent/playlist/m3u_playlist.h"
#include "libqra-agent/playlist/qra_playlist_manager.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "libqra-agent/source/qra_source_base.h"

namespace {

bool Is(const char* pField, const char* szName) {
    return strcmp(pField, szName) == 0;
}

qra_error_code_e InternalUnless(bool ret) {
    return ret ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

}  // namespace

qra_error_code_e CQRALocalAgent::GetItemValue(CQRAAgentHandle* pHandle, const char* pField, char** ppValue) {
    return m_GetItemValue(pHandle, pField, CQRAValueTarget(ppValue));
}

qra_error_code_e CQRALocalAgent::GetItemValue(CQRAAgentHandle* pHandle, const char* pField, int* pValue) {
    return m_GetItemValue(pHandle, pField, CQRAValueTarget(pValue));
}

qra_error_code_e CQRALocalAgent::GetItemValue(CQRAAgentHandle* pHandle, const char* pField, bool* pValue) {
    return m_GetItemValue(pHandle, pField, CQRAValueTarget(pValue));
}

qra_error_code_e CQRALocalAgent::GetItemValue(CQRAAgentHandle* pHandle, const char* pField, double* pValue) {
    return m_GetItemValue(pHandle, pField, CQRAValueTarget(pValue));
}

qra_error_code_e CQRALocalAgent::GetItemValue(CQRAAgentHandle* pHandle, const char* pField, long* pValue) {
    return m_GetItemValue(pHandle, pField, CQRAValueTarget(pValue));
}

qra_error_code_e CQRALocalAgent::GetItemValue(CQRAAgentHandle* pHandle, const char* pField,
                                              unsigned long long* pValue) {
    return m_GetItemValue(pHandle, pField, CQRAValueTarget(pValue));
}

qra_error_code_e CQRALocalAgent::m_GetItemValue(CQRAAgentHandle* pHandle, const char* pField,
                                                const CQRAValueTarget& target) {
    if (pField == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pField == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (target.IsNull()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pValue == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle, kPartSource | kPartContentPage | kPartSelectList))
        return QRA_ERROR_INVALID_HANDLE;
    const qra_page_item_type_e ePageItemType = m_GetPageItemType(pHandle, pHandle->GetCurrentPageIndex());
    switch (ePageItemType) {
        case QRA_PG_ITEM_EMPTY:
            return m_GetEmptyItemInfo(pField, target);
        case QRA_PG_ITEM_CONTENTS:
            return m_GetNormalContentsInfo(pHandle, pField, target);
        case QRA_PG_ITEM_CLUSTER:
            return m_GetGroupInfo(pHandle, pField, target);
        case QRA_PG_ITEM_PLAYLIST:
            return m_GetPlayListInfo(pHandle, pField, target);
        case QRA_PG_ITEM_UPFOLDER:
            return m_GetUpFolderInfo(pField, target);
        default:
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "Wrong ePageItemType[%d].", ePageItemType);
            return QRA_ERROR_INTERNAL;
    }
}

qra_error_code_e CQRALocalAgent::m_GetEmptyItemInfo(const char* pField, const CQRAValueTarget& target) {
    return m_GetFixedInfo(pField, QRA_MEDIA_TYPE_EMPTY, target);
}

qra_error_code_e CQRALocalAgent::m_GetUpFolderInfo(const char* pField, const CQRAValueTarget& target) {
    return m_GetFixedInfo(pField, QRA_MEDIA_TYPE_UPFOLDER, target);
}

// A tile that has a kind and nothing else.
qra_error_code_e CQRALocalAgent::m_GetFixedInfo(const char* pField, int nMediaType,
                                                const CQRAValueTarget& target) {
    if (Is(pField, "MEDIA_TYPE"))
        return InternalUnless(target.SetNumber(nMediaType));
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Not support field[%s].", pField);
    return QRA_ERROR_NONE;
}

// The source answers at its own cursor, which the moves keep in step.
qra_error_code_e CQRALocalAgent::m_GetNormalContentsInfo(CQRAAgentHandle* pHandle, const char* pField,
                                                         const CQRAValueTarget& target) {
    if (Is(pField, "QRA_MEDIA_FOCUS_ID")) {
        QRA_LOG_INFO(QRA_TAG_LOCAL, "Get MEDIA_FOCUS_ID.");
        return target.AsText() != nullptr ? m_GetMediaFocusID(pHandle, target.AsText()) : QRA_ERROR_INTERNAL;
    }
    return InternalUnless(target.ReadFrom(*pHandle->GetSource(), pField));
}

qra_error_code_e CQRALocalAgent::m_GetMediaFocusID(CQRAAgentHandle* pHandle, char** ppValue) {
    const std::string strSource = pHandle->GetSourceName();
    if (strSource != kSourceMSC && strSource != kSourceDLNA && strSource != kSourcePTP)
        return QRA_ERROR_INTERNAL;
    const qra_error_code_e eCode = GetItemValue(pHandle, "ID_QRA", ppValue);
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Get MediaId[%s]: strSource[%s], strSortCategory[%s].",
                 eCode == QRA_ERROR_NONE && *ppValue != nullptr ? *ppValue : "", strSource.c_str(),
                 pHandle->GetSortcategory().c_str());
    return eCode;
}

qra_error_code_e CQRALocalAgent::m_GetGroupInfo(CQRAAgentHandle* pHandle, const char* pField,
                                                const CQRAValueTarget& target) {
    const int nGroup = pHandle->GetContentPage()->GetClusterIndex(pHandle->GetCurrentPageIndex());
    const std::unique_ptr<CQRAGroupInfo> groups(pHandle->GetSource()->GetGroupInfo());
    // The source's groups may be newer than the page.
    if (nGroup < 0 || groups == nullptr || nGroup >= groups->GetGroupCount()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_GetIGroupInfo() invalid nGroupIndex[%d].", nGroup);
        return QRA_ERROR_INTERNAL;
    }
    if (Is(pField, "GROUP_ITEM_COUNT")) {
        int nStart = 0;
        int nCount = 0;
        std::string strName;
        groups->GetGroup(nGroup, nStart, nCount, strName);
        return InternalUnless(target.SetNumber(nCount));
    }
    if (Is(pField, "MEDIA_TYPE"))
        return InternalUnless(target.SetNumber(QRA_MEDIA_TYPE_GROUP));
    if (Is(pField, "DISPLAY_NAME"))
        return InternalUnless(target.SetText(groups->GetGroupName(nGroup)));
    if (Is(pField, "ID_QRA"))
        return m_GetGroupId(pHandle, nGroup, target);
    return QRA_ERROR_NONE;
}

// The ordinal of a group serves as the DB index of the item whose id stands for the group.
qra_error_code_e CQRALocalAgent::m_GetGroupId(CQRAAgentHandle* pHandle, int nGroup,
                                              const CQRAValueTarget& target) {
    IQRASourceBase* pSource = pHandle->GetSource();
    return InternalUnless(target.AsText() != nullptr && pSource->MoveToIndex(nGroup) &&
                          pSource->GetValue("ID_QRA", target.AsText()));
}

qra_error_code_e CQRALocalAgent::m_GetPlayListInfo(CQRAAgentHandle* pHandle, const char* pField,
                                                   const CQRAValueTarget& target) {
    const int nOrdinal =
        pHandle->GetNavigation() == QRA_NAVIGATION_TYPE_SELECTED
            ? pHandle->GetSelectList()->GetCurrentDBIndex()
            : pHandle->GetContentPage()->GetPlayListIndexByPageIndex(pHandle->GetCurrentPageIndex());
    std::shared_ptr<M3UPlaylist> playlist;
    const qra_error_code_e eCode =
        CQRAPlaylistManager::GetInstance()->GetPlayList(pHandle->GetMountPath(), nOrdinal, &playlist);
    if (eCode != QRA_ERROR_NONE || playlist == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "GetPlaylist faild.");
        return eCode;
    }
    if (Is(pField, "SONGS_COUNT"))
        return InternalUnless(target.SetNumber(playlist->GetItemCount()));
    if (Is(pField, "MEDIA_TYPE"))
        return InternalUnless(target.SetNumber(QRA_MEDIA_TYPE_PLAYLIST));
    if (Is(pField, "DISPLAY_NAME"))
        return InternalUnless(target.SetText(playlist->GetName()));
    if (Is(pField, "FILE_PATH"))
        return InternalUnless(target.SetText(playlist->GetFullPath()));
    if (Is(pField, "ID_QRA"))
        return InternalUnless(target.SetText(playlist->GetDir() + "/" + playlist->GetName()));
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::SetItemValue(CQRAAgentHandle* pHandle, const char* pField, long nValue) {
    return m_SetItemValue(pHandle, pField, nValue);
}

qra_error_code_e CQRALocalAgent::SetItemValue(CQRAAgentHandle* pHandle, const char* pField, int nValue) {
    return m_SetItemValue(pHandle, pField, nValue);
}

qra_error_code_e CQRALocalAgent::SetItemValue(CQRAAgentHandle* pHandle, const char* pField, char* pValue) {
    if (pField != nullptr && pValue == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pValue == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    return m_SetItemValue<const char*>(pHandle, pField, pValue);
}

template <class T>
qra_error_code_e CQRALocalAgent::m_SetItemValue(CQRAAgentHandle* pHandle, const char* pField, T value) {
    if (pField == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pField == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle, kPartSource))
        return QRA_ERROR_INVALID_HANDLE;
    return InternalUnless(pHandle->GetSource()->SetValue(pField, value));
}

qra_error_code_e CQRALocalAgent::GetItem(CQRAAgentHandle* pHandle, int nIndex, char** ppValue) {
    if (!qra_has_parts(pHandle, kPartItemBuilder))
        return QRA_ERROR_INVALID_HANDLE;
    return pHandle->GetItemBuilder()->BuildItem(pHandle, nIndex, ppValue);
}

qra_error_code_e CQRALocalAgent::GetItemBookMark(CQRAAgentHandle* pHandle, on_get_dlna_bookmark_cb cb,
                                                 void* pUserData) {
    if (!qra_has_parts(pHandle, kPartSource))
        return QRA_ERROR_INVALID_HANDLE;
    if (!pHandle->GetSource()->GetBookMark(cb, pUserData)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pHandle->GetSource()->GetBookMark() faild!");
        return QRA_ERROR_INTERNAL;
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::GetRatingInfo(CQRAAgentHandle* pHandle, char** ppRating) {
    if (ppRating == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "ppRating == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle, kPartSource))
        return QRA_ERROR_INVALID_HANDLE;
    if (!pHandle->GetSource()->GetRatingInfo(ppRating)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pHandle->GetSource()->GetRatingInfo() faild.");
        return QRA_ERROR_INTERNAL;
    }
    return QRA_ERROR_NONE;
}
