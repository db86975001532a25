#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_content_page_factory.h"
#include "libqra-agent/agent/src/qra_handle_parts.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_sort_category.h"
#include "libqra-agent/agent/src/qra_source_factory.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/playlist/qra_playlist_location.h"
#include "libqra-agent/playlist/qra_playlist_manager.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "libqra-agent/source/qra_source_base.h"

namespace {

constexpr char kCategoryGroup[] = "CATEGORY-GROUP";

void LogPageStyle(const qra_page_style_s& style, const CategoryLayout& layout,
                  const std::string& strCategory) {
    QRA_LOG_INFO(
        QRA_TAG_LOCAL,
        "ePageOrder[%d]. ePageStyle [%d]. nRow[%d]. nColumn[%d]. nGroupIndex[%d]. nPlayListCount[%d]. "
        "bIsFolderView[%d]. srotCategory[%s].",
        style.order, style.mask, style.row, style.column, style.group_index, 0, layout.bFolderView,
        strCategory.c_str());
}

}  // namespace

qra_error_code_e CQRALocalAgent::SetPageStyle(CQRAAgentHandle* pHandle, qra_page_style_s* pParam) {
    if (pParam == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pParam == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle, kPartSource))
        return QRA_ERROR_INVALID_HANDLE;
    pHandle->DestroyGroupInfo();
    pHandle->SetGroupInfo(pHandle->GetSource()->GetGroupInfo());
    pHandle->SetPageParam(pParam);
    if (pHandle->GetContentPage() != nullptr) {
        pHandle->DestroyContentPage();
        pHandle->SetCurrentPageIndex(0);
    }
    const std::string strCategory = pHandle->GetSortcategory();
    const CategoryLayout layout = qra_category_layout(strCategory);
    LogPageStyle(*pParam, layout, strCategory);
    const qra_error_code_e eCode =
        layout.bFolderBuild ? m_BuildFolderPage(pHandle)
                            : m_BuildListPage(pHandle, pParam->group_index, 0, false, layout.bFolderView);
    if (eCode != QRA_ERROR_NONE)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Build page faild, eCode[%d].", eCode);
    else if (!layout.bFolderBuild)
        QRA_LOG_INFO(QRA_TAG_LOCAL, "Build page success. PageSize[%d].",
                     pHandle->GetContentPage()->GetTotalSize());
    return eCode;
}

qra_error_code_e CQRALocalAgent::m_BuildFolderPage(CQRAAgentHandle* pHandle) {
    const qra_page_style_s& style = *pHandle->GetPageParam();
    const qra_error_code_e eCode = CQRAContentPageFactory::GetInstance()->Build(
        pHandle, style.order, style.mask, style.group_index, 0, style.row, style.column);
    if (eCode == QRA_ERROR_NONE) {
        const CQRAContentPage& page = *pHandle->GetContentPage();
        QRA_LOG_INFO(QRA_TAG_LOCAL,
                     "Build page success. Total PageSize[%d], UpfolderSize[%d], EmptySize[%d].",
                     page.GetTotalSize(), page.GetUpFolderItemCount(), page.GetEmptyItemCount());
    }
    return eCode;
}

qra_error_code_e CQRALocalAgent::m_BuildListPage(CQRAAgentHandle* pHandle, int nGroupIndex,
                                                 int nPlayListCount, bool bExpandMode, bool bIsFolderView) {
    const qra_page_style_s& style = *pHandle->GetPageParam();
    return CQRAContentPageFactory::GetInstance()->Build(pHandle, style.order, style.mask, nGroupIndex,
                                                        nPlayListCount, style.row, style.column, bExpandMode,
                                                        bIsFolderView);
}

qra_error_code_e CQRALocalAgent::SetExpandMode(CQRAAgentHandle* pHandle, int nGroupIndex, bool bExpand) {
    if (!qra_has_parts(pHandle, kPartGroupInfo))
        return QRA_ERROR_INVALID_HANDLE;
    pHandle->GetGroupInfo()->ExpandGroup(nGroupIndex, bExpand);
    pHandle->DestroyContentPage();

    const bool bIsFolderView = qra_category_layout(pHandle->GetSortcategory()).bFolderViewExpand;
    int nPlayListCount = 0;
    if (pHandle->GetSourceName() == kSourceMSC) {
        const qra_error_code_e eCode =
            CQRAPlaylistManager::GetInstance()->GetCount(pHandle->GetMountPath(), &nPlayListCount);
        if (eCode != QRA_ERROR_NONE) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "Get playlist count faild.");
            return eCode;
        }
    }
    const qra_error_code_e eCode = m_BuildListPage(pHandle, -1, nPlayListCount, true, bIsFolderView);
    if (eCode != QRA_ERROR_NONE)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CQRALocalAgent::SetExpandMode() faild, eCode[%d].", eCode);
    else
        QRA_LOG_INFO(QRA_TAG_LOCAL, "PageSize[%d]", pHandle->GetContentPage()->GetTotalSize());
    return eCode;
}

qra_error_code_e CQRALocalAgent::GetItemCount(CQRAAgentHandle* pHandle, int* pnItemCount) {
    if (pnItemCount == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pnItemCount == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle, kPartContentPage | kPartSelectList))
        return QRA_ERROR_INVALID_HANDLE;
    if (pHandle->GetNavigation() == QRA_NAVIGATION_TYPE_SELECTED) {
        QRA_LOG_DEBUG(QRA_TAG_LOCAL, "GetItemCount in QRA_NAVIGATION_TYPE_SELECTED");
        *pnItemCount = pHandle->GetSelectList()->GetItemCount();
    } else {
        QRA_LOG_DEBUG(QRA_TAG_LOCAL, "GetItemCount in QRA_NAVIGATION_TYPE_ALL");
        *pnItemCount = pHandle->GetContentPage()->GetTotalSize();
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::GetItemCount(CQRAAgentHandle* pHandle, qra_media_type_e eMediaType,
                                              int* pnCount) {
    if (pnCount == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pnCount == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle, kPartSource | kPartContentPage))
        return QRA_ERROR_INVALID_HANDLE;
    if (pHandle->GetNavigation() != QRA_NAVIGATION_TYPE_ALL) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Only support all mode");
        return QRA_ERROR_INVALID_PARAM;
    }
    switch (eMediaType) {
        case QRA_MEDIA_TYPE_UPFOLDER:
            *pnCount = pHandle->GetContentPage()->GetUpFolderItemCount();
            break;
        case QRA_MEDIA_TYPE_EMPTY:
            *pnCount = pHandle->GetContentPage()->GetEmptyItemCount();
            break;
        default: {
            const qra_error_code_e eCode = m_CountInSource(pHandle, eMediaType, pnCount);
            if (eCode != QRA_ERROR_NONE)
                return eCode;
        }
    }
    QRA_LOG_DEBUG(QRA_TAG_LOCAL, "GetItemCount By Type: eMediaType[%d], ItemCount[%d].", eMediaType,
                  *pnCount);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::m_CountInSource(CQRAAgentHandle* pHandle, qra_media_type_e eMediaType,
                                                 int* pnCount) {
    IQRASourceBase* pSource = pHandle->GetSource();
    const bool bIsMSC = pHandle->GetSourceName() == kSourceMSC;
    int nCount = 0;
    bool ret = true;
    switch (eMediaType) {
        case QRA_MEDIA_TYPE_FOLDER:
        case QRA_MEDIA_TYPE_IMAGE:
        case QRA_MEDIA_TYPE_VIDEO:
        case QRA_MEDIA_TYPE_MUSIC:
        case QRA_MEDIA_TYPE_IMAGE_EXT:
        case QRA_MEDIA_TYPE_VIDEO_EXT:
            ret = pSource->GetItemCountByType(eMediaType, &nCount);
            break;
        case QRA_MEDIA_TYPE_PVR:
        case QRA_MEDIA_TYPE_UHD:
        case QRA_MEDIA_TYPE_SCSA:
            ret = !bIsMSC || pSource->GetItemCountByType(eMediaType, &nCount);
            break;
        case QRA_MEDIA_TYPE_PLAYLIST:
            if (bIsMSC && CQRAPlaylistManager::GetInstance()->GetCount(pHandle->GetMountPath(), &nCount) !=
                              QRA_ERROR_NONE) {
                QRA_LOG_WARNING(QRA_TAG_LOCAL, "Get playlist count faild, return count = 0.");
                nCount = 0;
            }
            break;
        case QRA_MEDIA_TYPE_GROUP:
            nCount = *pnCount;
            if (pHandle->GetSortcategory() == kCategoryGroup)
                ret = pSource->GetItemCount(&nCount);
            break;
        default:
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "UnKown eMediaType[%d].", eMediaType);
            return QRA_ERROR_NONE;
    }
    if (!ret)
        return QRA_ERROR_INTERNAL;
    *pnCount = nCount;
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::GetPageIndex(CQRAAgentHandle* pHandle, char* pMediaId, int* pnPageIndex) {
    if (pnPageIndex == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pnPageIndex== NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (pMediaId == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pMediaId == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!qra_has_parts(pHandle, kPartSource | kPartContentPage))
        return QRA_ERROR_INVALID_HANDLE;
    if (pHandle->GetNavigation() == QRA_NAVIGATION_TYPE_SELECTED ||
        pHandle->GetContentPage()->GetPageMask() == kMaskSelected) {
        *pnPageIndex = 0;
        QRA_LOG_INFO(QRA_TAG_LOCAL, "GetPageIndex In QRA_NAVIGATION_TYPE_SELECTED, pnPageIndex[%d].",
                     *pnPageIndex);
        return QRA_ERROR_NONE;
    }
    return qra_is_on_usb(pMediaId) ? m_GetPageIndexOfPlayList(pHandle, pMediaId, pnPageIndex)
                                   : m_GetPageIndexOfContents(pHandle, pMediaId, pnPageIndex);
}

qra_error_code_e CQRALocalAgent::m_GetPageIndexOfPlayList(CQRAAgentHandle* pHandle, const std::string& strId,
                                                          int* pnPageIndex) {
    const size_t nSlash = strId.rfind('/');
    int nIndex = 0;
    const qra_error_code_e eCode = CQRAPlaylistManager::GetInstance()->GetDBIndex(
        strId.substr(0, nSlash), strId.substr(nSlash + 1), nIndex);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Get DB index from CQRAPlaylistManager faild!!");
        return eCode;
    }
    *pnPageIndex = pHandle->GetContentPage()->GetPageIndexByDBIndex(nIndex, QRA_PG_ITEM_PLAYLIST);
    QRA_LOG_INFO(QRA_TAG_LOCAL, "GetPageIndex for playlist in QRA_NAVIGATION_TYPE_ALL, pnPageIndex[%d].",
                 *pnPageIndex);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRALocalAgent::m_GetPageIndexOfContents(CQRAAgentHandle* pHandle, char* pMediaId,
                                                          int* pnPageIndex) {
    int nDBIndex = 0;
    if (!pHandle->GetSource()->GetDBIndex(pMediaId, &nDBIndex)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pHandle->GetSource()->GetDBIndex() faild,  pMediaId[%s].", pMediaId);
        return QRA_ERROR_INVALID_PARAM;
    }
    const int nPageIndex = pHandle->GetContentPage()->GetPageIndexByDBIndex(nDBIndex, QRA_PG_ITEM_CONTENTS);
    if (nPageIndex < 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL,
                        "pHandle->GetContentPage()->GetPageIndexByDBIndex faild,  nDBIndex[%d].", nDBIndex);
        return QRA_ERROR_INVALID_PARAM;
    }
    *pnPageIndex = nPageIndex;
    QRA_LOG_INFO(QRA_TAG_LOCAL,
                 "GetPageIndex for normal contents in QRA_NAVIGATION_TYPE_ALL, pnPageIndex[%d].",
                 *pnPageIndex);
    return QRA_ERROR_NONE;
}
