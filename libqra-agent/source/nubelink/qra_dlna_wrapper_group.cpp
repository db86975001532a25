// Groups, features and the search of a server.

#include <algorithm>
#include <memory>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/nubelink/qra_dlna_wrapper.h"

namespace {

constexpr int PAGE_SIZE = 200;
constexpr const char* SORTING_FEATURE = "DCM";

struct CriteriaFree {
    void operator()(nbl_searchcriteria_s* criteria) const { nbl_searchcriteria_free(criteria); }
};
using Criteria = std::unique_ptr<nbl_searchcriteria_s, CriteriaFree>;

/// Criteria for all media whose title holds the keyword; null on a failure.
Criteria make_criteria(const std::string& strKeyword) {
    nbl_searchcriteria_t hCriteria = nullptr;
    bool bDone = nbl_searchcriteria_create(strKeyword.c_str(), &hCriteria) == NBL_ERROR_NONE;
    Criteria criteria(hCriteria);
    for (const int nType : {NBL_ITEM_TYPE_IMAGE, NBL_ITEM_TYPE_MUSIC, NBL_ITEM_TYPE_VIDEO}) {
        bDone = bDone && nbl_searchcriteria_add_item_type(hCriteria, nType) == NBL_ERROR_NONE;
    }
    if (!bDone) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "Fatal error: add_item_type fail Please check it");
        criteria.reset();
    }
    return criteria;
}

}  // namespace

int CQRADLNAWrapper::GetFeatureList() {
    if (!m_Begin()) {
        return m_nError;
    }
    const bool bSent = m_Send(Request(), [&](void* pCall, int* pnToken) {
        return nbl_provider_get_feature_list(m_pProvider, cb_GetFeatureList, pCall, pnToken);
    });
    return m_WaitForOne(bSent);
}

CQRADLNAWrapper::EAnswer CQRADLNAWrapper::m_OnFeatures(Request&, const nbl_feature_response& response,
                                                       int nError) {
    if (m_bCancel) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE: requestlist is finished");
        return ANSWER_DROPPED;
    }
    const int nFeatures = nError == NBL_ERROR_NONE ? response.length : 0;
    bool bFound = false;
    for (int i = 0; i < nFeatures && !bFound; ++i) {
        bFound = m_HasContainer(response.features[i]);
    }
    if (!bFound) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: GetFeatureList failed.");
        m_nError = DLNA_ERROR_FAILED;
    }
    return ANSWER_COMPLETE;
}

// True for the feature that sorts the server's content, if it does so in the folder of the request.
bool CQRADLNAWrapper::m_HasContainer(nbl_feature_t feature) {
    const char* szName = nullptr;
    int nCount = 0;
    if (nbl_feature_get_details(feature, &szName, &nCount) != NBL_ERROR_NONE || nCount < 1 ||
        CQRAUtil::CharToString(szName).find(SORTING_FEATURE) == std::string::npos) {
        return false;
    }
    nbl_container_t* pContainers = nullptr;
    if (nbl_feature_get_container_list(feature, &pContainers, &nCount) != NBL_ERROR_NONE ||
        pContainers == nullptr) {
        return false;
    }
    for (int i = 0; i < nCount; ++i) {
        const char* szId = nullptr;
        if (nbl_container_get_details(pContainers[i], &szId) == NBL_ERROR_NONE &&
            CQRAUtil::CharToString(szId) == m_strFolderId) {
            return true;
        }
    }
    return false;
}

int CQRADLNAWrapper::GetGroupLevel1(group_cb cb) {
    const std::string strFolderId = m_GetFolderId();
    CQRADlnaItem item;
    const int nCode = nbl_item_create_provider_item(strFolderId.c_str(), item.Receive());
    if (nCode != NBL_ERROR_NONE || !item) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: no item of folder[%s], code[%d]", strFolderId.c_str(),
                        nCode);
        return m_nError = DLNA_ERROR_FAILED;
    }
    return m_GroupBrowse(item, "", 1, cb);
}

int CQRADLNAWrapper::GetGroupLevel2(const _stDLNAGroupItem& group, group_cb cb) {
    std::string strTitle;
    if (!group.pItem || !qra_dlna_read_text(nbl_item_get_title, group.pItem, strTitle)) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: no title of group[%s]", group.strGroupId.c_str());
        return m_nError = DLNA_ERROR_FAILED;
    }
    return m_GroupBrowse(group.pItem, strTitle, 2, cb);
}

int CQRADLNAWrapper::m_GroupBrowse(const CQRADlnaItem& item, const std::string& strParentTitle, int nLevel,
                                   group_cb cb) {
    if (!m_Begin()) {
        return m_nError;
    }
    Request request;
    request.nLevel = nLevel;
    request.strParentTitle = strParentTitle;
    request.cbGroup = cb;
    const bool bSent = m_Send(request, [&](void* pCall, int* pnToken) {
        return nbl_provider_browse(m_pProvider, item.Get(), 0, PAGE_SIZE, cb_GetDCMGroup, pCall, pnToken);
    });
    return m_WaitForOne(bSent);
}

CQRADLNAWrapper::EAnswer CQRADLNAWrapper::m_OnGroups(Request& request, const nbl_response& response,
                                                     int nError) {
    if (m_bCancel) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE: cancel request");
        return ANSWER_DROPPED;
    }
    if (nError != NBL_ERROR_NONE) {
        m_bCancel = true;
        m_nError = DLNA_ERROR_FAILED;
        return ANSWER_COMPLETE;
    }
    if (response.length <= 0) {
        if (request.strParentTitle.empty()) {
            QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE: cb_GetDCMGroup get item empty");
        } else {
            QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE: cb_GetDCMGroup get item failed and skip");
        }
        return ANSWER_COMPLETE;
    }
    for (int i = 0; i < response.length; ++i) {
        m_GiveGroup(request, response.items[i], i);
    }
    return ANSWER_COMPLETE;
}

void CQRADLNAWrapper::m_GiveGroup(const Request& request, nbl_item_t hItem, int nIndex) {
    _stDLNAGroupItem group;
    group.pItem = CQRADlnaItem::Copy(hItem);
    if (!group.pItem || !m_CheckValidGroupItem(group.pItem, group.strGroupId, group.nChildCount)) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE:Invalid Item[%d]", nIndex);
        return;
    }
    if (GetGrouplevel(m_strSortCategory) == request.nLevel) {
        group.strGroupName = m_GenerateGroupName(group.pItem, request.strParentTitle);
        group.bLeaf = true;
    }
    if (request.cbGroup != nullptr) {
        request.cbGroup(group, m_pUserData);
    }
}

bool CQRADLNAWrapper::m_CheckValidGroupItem(const CQRADlnaItem& item, std::string& strId, int& nCount) {
    if (!qra_dlna_read_text(nbl_item_get_content_id, item, strId) || strId.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "invalid content_id");
        return false;
    }
    if (nbl_item_get_child_count(item.Get(), &nCount) != NBL_ERROR_NONE || nCount <= 0) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "null group");
        return false;
    }
    return true;
}

std::string CQRADLNAWrapper::m_GenerateGroupName(const CQRADlnaItem& item,
                                                 const std::string& strParentTitle) {
    std::string strTitle;
    qra_dlna_read_text(nbl_item_get_title, item, strTitle);
    return strParentTitle.empty() ? strTitle : strParentTitle + "/" + strTitle;
}

bool CQRADLNAWrapper::SearchByKeyword(media_cb cb) {
    if (m_pProvider == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "nbl_provider_t  is NULL");
        return false;
    }
    const std::string strKeyword = m_GetKeyword();
    if (strKeyword.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "m_Keyword  is empty");
        return false;
    }
    const Criteria criteria = make_criteria(strKeyword);
    if (criteria == nullptr || !m_Begin()) {
        return false;
    }
    Request request;
    request.cbMedia = cb;
    request.llStartTime = CQRAUtil::GetCurrentSystemTime();
    const bool bSent = m_Send(request, [&](void* pCall, int* pnToken) {
        return nbl_provider_search(m_pProvider, criteria.get(), 0, PAGE_SIZE, cb_ProviderSearch, pCall,
                                   pnToken);
    });
    return m_WaitForOne(bSent) == DLNA_ERROR_NONE;
}

CQRADLNAWrapper::EAnswer CQRADLNAWrapper::m_OnSearch(Request& request, const nbl_response& response,
                                                     int nError) {
    if (m_bCancel) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE:cb_ProviderSearch end return");
        return ANSWER_DROPPED;
    }
    if (nError != NBL_ERROR_NONE) {
        m_bCancel = true;
        m_nError = DLNA_ERROR_FAILED;
        return ANSWER_COMPLETE;
    }
    m_GiveItems(request, response);
    // The next answer of this search goes on where this one ended.
    request.nStartIndex += std::max(0, response.length);
    return response.end != 0 ? ANSWER_COMPLETE : ANSWER_MORE;
}
