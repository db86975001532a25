#include "libqra-agent/source/nubelink/qra_dlna_wrapper.h"

#include <algorithm>
#include <cstdlib>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/nubelink/qra_dlna_call_table.h"
#include "libqra-agent/source/nubelink/qra_dlna_value.h"

namespace {

constexpr int PAGE_SIZE = 200;
constexpr int REQUESTS_IN_FLIGHT = 5;
/// More than any server of a home has in a folder; what claims more is not believed.
constexpr int MOST_ITEMS = 1000000;
constexpr const char* CATEGORY_FOLDER = "CATEGORY-FOLDER";

using Lock = CQRALockGuard<CQRAGMutex>;

constexpr struct {
    const char* szContentType;
    unsigned uFilterType;
} FILTER_TYPES[] = {
    {"CONTENT-IMAGE", 3},
    {"CONTENT-VIDEO", 9},
    {"CONTENT-MUSIC", 5},
    {"CONTENT-FOLDER", 15},
};

constexpr struct {
    const char* szCategory;
    int nLevel;
} GROUP_LEVELS[] = {
    {"CATEGORY-DATE", 2},   {"CATEGORY-TITLE", 2}, {"CATEGORY-TRACK", 1},
    {"CATEGORY-ARTIST", 1}, {"CATEGORY-ALBUM", 1}, {"CATEGORY-GENRE", 1},
};

}  // namespace

CQRADLNAWrapper::CQRADLNAWrapper() : m_MimeMap(qra_dlna_make_mime_map()) {}

CQRADLNAWrapper::~CQRADLNAWrapper() {
    CQRADlnaCallTable::GetInstance()->RemoveOwner(this);
    m_StopTransfers();
    int nCancelled = 0;
    m_CancelRequests(nCancelled);
    const Lock lock(m_RequestMutex);
    for (const auto& bookmark : m_BookmarkMap) {
        nbl_provider_cancel_async_action(bookmark.first);
    }
}

bool CQRADLNAWrapper::InitProvider(void* pServiceProvider, const char* szDeviceId) {
    if (pServiceProvider == nullptr || szDeviceId == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: no service provider or no device id");
        return false;
    }
    int nState = NBL_SERVICE_STATE_DISABLED;
    if (nbl_serviceprovider_get_service_state(pServiceProvider, &nState) != NBL_ERROR_NONE ||
        nState != NBL_SERVICE_STATE_ENABLED) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: the service is not enabled, state[%d]", nState);
        return false;
    }
    nbl_devicefinder_t pFinder = nullptr;
    if (nbl_serviceprovider_get_devicefinder(pServiceProvider, &pFinder) != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: no device finder");
        return false;
    }
    const int nCode =
        nbl_devicefinder_get_device(pFinder, NBL_DEVICE_CLASS_MEDIA_SERVER, szDeviceId, &m_pProvider);
    if (nCode != NBL_ERROR_NONE || m_pProvider == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: no device[%s], code[%d]", szDeviceId, nCode);
        return false;
    }
    return true;
}

bool CQRADLNAWrapper::InitParam(const _stDlnaParam* pParam) {
    if (pParam == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: pParam is null");
        return false;
    }
    const Lock lock(m_RequestMutex);
    m_DropRequests();
    m_bCancel = false;
    m_nError = DLNA_ERROR_NONE;
    m_strFolderId = pParam->strFolderId;
    m_strContentType = pParam->strContentType;
    m_strSortCategory =
        pParam->strSortCategory == "CATEGORY-FOLDER-TITLE" ? CATEGORY_FOLDER : pParam->strSortCategory;
    m_strKeyword = pParam->strKeyword;
    m_pUserData = pParam->pUserData;
    return true;
}

int CQRADLNAWrapper::GetGrouplevel(const std::string& strCategory) {
    for (const auto& level : GROUP_LEVELS) {
        if (strCategory == level.szCategory) {
            return level.nLevel;
        }
    }
    return 0;
}

void CQRADLNAWrapper::m_SetFilterType(unsigned& uFilterType) {
    const Lock lock(m_RequestMutex);
    for (const auto& filter : FILTER_TYPES) {
        if (m_strContentType == filter.szContentType) {
            uFilterType = filter.uFilterType;
            return;
        }
    }
    QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: set filter type fail");
}

std::string CQRADLNAWrapper::m_GetFolderId() {
    const Lock lock(m_RequestMutex);
    return m_strFolderId;
}

std::string CQRADLNAWrapper::m_GetKeyword() {
    const Lock lock(m_RequestMutex);
    return m_strKeyword;
}

bool CQRADLNAWrapper::m_IsFolderView() {
    const Lock lock(m_RequestMutex);
    return m_strSortCategory == CATEGORY_FOLDER;
}

// What an earlier step or an earlier request left over - answers that came too late, posts that nobody waited
// for - must not count for the one that begins. False after a cancel: nothing may begin then.
bool CQRADLNAWrapper::m_Begin() {
    const Lock lock(m_RequestMutex);
    if (m_bCancel) {
        return false;
    }
    m_DropRequests();
    m_Semaphore.Reset();
    return true;
}

// What could not be cancelled is answered later, to nobody.
void CQRADLNAWrapper::m_EndRequests() {
    const Lock lock(m_RequestMutex);
    m_DropRequests();
}

void CQRADLNAWrapper::m_DropRequests() {
    for (const auto& entry : m_TokenMap) {
        CQRADlnaCallTable::GetInstance()->Remove(entry.second.pCall);
    }
    m_TokenMap.clear();
}

// The mutex is held over the call and the entry, so that no answer comes before the request is in the map.
bool CQRADLNAWrapper::m_Send(const Request& request, const Start& start) {
    const Lock lock(m_RequestMutex);
    if (m_bCancel) {
        return false;
    }
    Request entry = request;
    entry.pCall = CQRADlnaCallTable::GetInstance()->Add(this);
    int nToken = 0;
    const int nCode = start(entry.pCall, &nToken);
    if (nCode != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: the request was not taken, code[%d]", nCode);
        CQRADlnaCallTable::GetInstance()->Remove(entry.pCall);
        return false;
    }
    m_TokenMap[nToken] = std::move(entry);
    return true;
}

// For a request of one answer: waits for it.
int CQRADLNAWrapper::m_WaitForOne(bool bSent) {
    if (bSent) {
        m_Semaphore.Take();
    } else if (!m_bCancel) {
        m_nError = DLNA_ERROR_FAILED;
    }
    return m_nError;
}

template <class Response>
void CQRADLNAWrapper::m_Answer(void* pCall, Handler<Response> handler, const Response* pResponse,
                               int nError) {
    if (pCall == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "pQraNblRequestListUserData = NULL");
        return;
    }
    const CQRADlnaAnswer answer(pCall);
    CQRADLNAWrapper* const pThis = answer.GetWrapper();
    if (pThis == nullptr) {
        return;
    }
    const Lock lock(pThis->m_RequestMutex);
    const auto it = std::find_if(pThis->m_TokenMap.begin(), pThis->m_TokenMap.end(),
                                 [&](const auto& entry) { return entry.second.pCall == pCall; });
    if (it == pThis->m_TokenMap.end()) {
        return;
    }
    const Response none{};
    const int nAnswerError = pResponse == nullptr && nError == NBL_ERROR_NONE ? NBL_ERROR_FAILED : nError;
    // The answer to a cancel may come before the call that cancels has returned.
    const bool bCancelled = nError == NBL_ERROR_CANCELLED && it->second.bCancelled;
    const EAnswer eAnswer =
        bCancelled ? ANSWER_DROPPED
                   : (pThis->*handler)(it->second, pResponse != nullptr ? *pResponse : none, nAnswerError);
    if (eAnswer != ANSWER_MORE) {
        CQRADlnaCallTable::GetInstance()->Remove(pCall);
        pThis->m_TokenMap.erase(it);
    }
    if (eAnswer == ANSWER_COMPLETE) {
        pThis->m_Semaphore.Give();
    }
}

void CQRADLNAWrapper::cb_ProviderItem(nbl_device_t, nbl_response* pResponse, int nError, void* pCall) {
    m_Answer<nbl_response>(pCall, &CQRADLNAWrapper::m_OnItem, pResponse, nError);
}

void CQRADLNAWrapper::cb_MediaBrowse(nbl_device_t, nbl_response* pResponse, int nError, void* pCall) {
    m_Answer<nbl_response>(pCall, &CQRADLNAWrapper::m_OnMediaBrowse, pResponse, nError);
}

void CQRADLNAWrapper::cb_ProviderSearch(nbl_device_t, nbl_response* pResponse, int nError, void* pCall) {
    m_Answer<nbl_response>(pCall, &CQRADLNAWrapper::m_OnSearch, pResponse, nError);
}

void CQRADLNAWrapper::cb_GetDCMGroup(nbl_device_t, nbl_response* pResponse, int nError, void* pCall) {
    m_Answer<nbl_response>(pCall, &CQRADLNAWrapper::m_OnGroups, pResponse, nError);
}

void CQRADLNAWrapper::cb_GetFeatureList(nbl_device_t, nbl_feature_response* pResponse, int nError,
                                        void* pCall) {
    m_Answer<nbl_feature_response>(pCall, &CQRADLNAWrapper::m_OnFeatures, pResponse, nError);
}

bool CQRADLNAWrapper::FailProcess() {
    int nCancelled = 0;
    return m_CancelRequests(nCancelled);
}

bool CQRADLNAWrapper::CancelAsync() {
    int nCancelled = 0;
    const bool bAll = m_CancelRequests(nCancelled);
    const Lock lock(m_RequestMutex);
    if (bAll) {
        m_bCancel = true;
    } else if (nCancelled > 0) {
        // Some answers of what the worker waits for will never count.
        m_nError = DLNA_ERROR_FAILED;
    } else {
        return false;
    }
    m_Semaphore.Give();
    return bAll;
}

bool CQRADLNAWrapper::m_CancelRequests(int& nCancelled) {
    const Lock cancelling(m_CancelMutex);
    bool bDone = false;
    while (m_CancelNext(bDone)) {
        if (bDone) {
            return true;
        }
        ++nCancelled;
    }
    return false;
}

// One at a time and with the request mutex free during the call, for a service that waits for its callbacks.
bool CQRADLNAWrapper::m_CancelNext(bool& bDone) {
    int nToken = 0;
    void* pCall = nullptr;
    {
        const Lock lock(m_RequestMutex);
        bDone = m_TokenMap.empty();
        if (bDone) {
            return true;
        }
        nToken = m_TokenMap.begin()->first;
        pCall = m_TokenMap.begin()->second.pCall;
        m_TokenMap.begin()->second.bCancelled = true;
    }
    const int nCode = nbl_provider_cancel_async_action(nToken);
    const Lock lock(m_RequestMutex);
    const auto it = m_TokenMap.find(nToken);
    if (it == m_TokenMap.end() || it->second.pCall != pCall) {
        return true;  // answered meanwhile
    }
    if (nCode != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "nbl_provider_cancel_async_action error %d", nCode);
        return false;
    }
    CQRADlnaCallTable::GetInstance()->Remove(pCall);
    m_TokenMap.erase(it);
    return true;
}

CQRADlnaItem CQRADLNAWrapper::m_MakeFolderItem(const std::string& strFolderId) {
    CQRADlnaItem item;
    const int nCode = strFolderId == "/" ? nbl_provider_get_root_folder(m_pProvider, item.Receive())
                                         : nbl_item_create_provider_item(strFolderId.c_str(), item.Receive());
    if (nCode != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: no item of folder[%s], code[%d]", strFolderId.c_str(),
                        nCode);
    }
    return item;
}

int CQRADLNAWrapper::GetItemList(const _stDLNAGroupItem& group, media_cb cbMedia, group_cb cbGroup) {
    if (group.pItem) {
        int nCount = 0;
        {
            const Lock lock(m_RequestMutex);
            m_strFolderId = group.strGroupId;
        }
        if (nbl_item_get_child_count(group.pItem.Get(), &nCount) != NBL_ERROR_NONE) {
            QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: no child count of group[%s]",
                            group.strGroupId.c_str());
            return m_nError = DLNA_ERROR_FAILED;
        }
        m_nTotalCount = nCount;
        return m_MediaBrowse(group.pItem, cbMedia, cbGroup);
    }
    const CQRADlnaItem item = m_MakeFolderItem(m_GetFolderId());
    if (!item) {
        return m_nError = DLNA_ERROR_FAILED;
    }
    char* szContentId = nullptr;
    const int nCode = nbl_item_get_content_id(item.Get(), &szContentId);
    const std::string strContentId = CQRAUtil::CharToString(szContentId);
    free(szContentId);
    if (nCode != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE:nbl_item_get_content_id  ERROR%d", nCode);
        return m_nError = DLNA_ERROR_FAILED;
    }
    const int nError = m_GetTotalItemCount(strContentId);
    return nError == DLNA_ERROR_NONE ? m_MediaBrowse(item, cbMedia, nullptr) : nError;
}

int CQRADLNAWrapper::m_GetTotalItemCount(const std::string& strContentId) {
    if (!m_Begin()) {
        return m_nError;
    }
    m_nTotalCount = 0;
    const bool bSent = m_Send(Request(), [&](void* pCall, int* pnToken) {
        return nbl_provider_browse_item(m_pProvider, strContentId.c_str(), cb_ProviderItem, pCall, pnToken);
    });
    return m_WaitForOne(bSent);
}

CQRADLNAWrapper::EAnswer CQRADLNAWrapper::m_OnItem(Request&, const nbl_response& response, int nError) {
    int nCount = 0;
    if (nError == NBL_ERROR_ITEM_NOT_EXIST) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "cb_ProviderItem nbl item not exist");
        m_nError = DLNA_ERROR_ITEM_NOT_EXIST;
    } else if (nError != NBL_ERROR_NONE || response.length < 1 ||
               nbl_item_get_child_count(response.items[0], &nCount) != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "cb_ProviderItem error");
        m_nError = DLNA_ERROR_FAILED;
    } else {
        m_nTotalCount = nCount;
    }
    return ANSWER_COMPLETE;
}

int CQRADLNAWrapper::m_MediaBrowse(const CQRADlnaItem& item, media_cb cbMedia, group_cb cbGroup) {
    Request request;
    request.bBrowse = true;
    request.cbMedia = cbMedia;
    request.cbGroup = cbGroup;
    m_SetFilterType(request.uFilterType);
    const int nTotal = std::clamp(m_nTotalCount.load(), 0, MOST_ITEMS);
    int nRequests = nTotal / PAGE_SIZE + (nTotal % PAGE_SIZE != 0 ? 1 : 0);
    if (!m_Begin()) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "m_MediaBrowse Cancel request Quit");
        return m_nError;
    }
    m_nEnd = nTotal;
    m_nCallbackCount = nRequests;
    int nSent = 0;
    while (m_nCallbackCount != 0 || m_nError != DLNA_ERROR_NONE) {
        if (m_bCancel) {
            QRA_LOG_INFO(QRA_TAG_DLNA, "m_MediaBrowse Cancel request Quit");
            break;
        }
        if (m_nError != DLNA_ERROR_NONE) {
            QRA_LOG_WARNING(QRA_TAG_DLNA, "m_MediaBrowse nbl_provider_browse error Quit");
            FailProcess();
            m_EndRequests();
            break;
        }
        if (nSent < nRequests && request.nStartIndex >= m_nEnd) {
            m_SkipRequests(nRequests - nSent);
            nRequests = nSent;
            continue;
        }
        if (nSent < nRequests) {
            if (!m_SendMediaBrowse(item, request)) {
                continue;
            }
            request.nStartIndex += PAGE_SIZE;
            ++nSent;
        }
        if (nSent < std::min(REQUESTS_IN_FLIGHT, nRequests)) {
            continue;
        }
        m_Semaphore.Take();
    }
    return m_nError;
}

bool CQRADLNAWrapper::m_SendMediaBrowse(const CQRADlnaItem& item, const Request& request) {
    Request timed = request;
    timed.llStartTime = CQRAUtil::GetCurrentSystemTime();
    const bool bSent = m_Send(timed, [&](void* pCall, int* pnToken) {
        return nbl_provider_browse(m_pProvider, item.Get(), request.nStartIndex, PAGE_SIZE, cb_MediaBrowse,
                                   pCall, pnToken);
    });
    if (!bSent && !m_bCancel) {
        m_nError = DLNA_ERROR_FAILED;
    }
    return bSent;
}

// A page that came empty is the end, whatever the server said of the total: the rest is not asked for.
void CQRADLNAWrapper::m_SkipRequests(int nCount) {
    QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: the server has fewer items than it said, end[%d]",
                    m_nEnd.load());
    const Lock lock(m_RequestMutex);
    m_nCallbackCount = std::max(0, m_nCallbackCount - nCount);
}

CQRADLNAWrapper::EAnswer CQRADLNAWrapper::m_OnMediaBrowse(Request& request, const nbl_response& response,
                                                          int nError) {
    if (m_bCancel) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE:cb_MediaBrowse end return");
        return ANSWER_DROPPED;
    }
    QRA_LOG_DEBUG(QRA_TAG_DLNA, "performance test cb time is %ld ms",
                  static_cast<long>(CQRAUtil::GetCurrentSystemTime() - request.llStartTime));
    if (nError != NBL_ERROR_NONE) {
        m_nCallbackCount = 0;
        m_nError = DLNA_ERROR_FAILED;
        return ANSWER_COMPLETE;
    }
    m_GiveItems(request, response);
    m_nCallbackCount = std::max(0, m_nCallbackCount - 1);
    return ANSWER_COMPLETE;
}

void CQRADLNAWrapper::m_GiveItems(const Request& request, const nbl_response& response) {
    if (response.length <= 0) {
        m_nEnd = std::min(m_nEnd.load(), request.nStartIndex);
        if (m_strSortCategory != CATEGORY_FOLDER) {
            QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE: cb_ProviderBrowse get item failed and skip");
            m_GiveEmptyGroup(request);
        }
        return;
    }
    for (int i = 0; i < response.length; ++i) {
        _stDLNAMediaItem item;
        item.nIndex = request.nStartIndex + i;
        item.pItem = CQRADlnaItem::Copy(response.items[i]);
        if (!item.pItem || request.cbMedia == nullptr) {
            continue;
        }
        qra_dlna_read_text(nbl_item_get_content_id, item.pItem, item.strContentId);
        nbl_item_get_type(item.pItem.Get(), &item.eType);
        qra_dlna_read_text(nbl_item_get_extension, item.pItem, item.strExtension);
        request.cbMedia(item, m_pUserData);
    }
}

void CQRADLNAWrapper::m_GiveEmptyGroup(const Request& request) {
    if (request.cbGroup == nullptr) {
        return;
    }
    _stDLNAGroupItem group;
    group.strGroupId = m_strFolderId;
    group.bLeaf = true;
    request.cbGroup(group, m_pUserData);
}

bool CQRADLNAWrapper::GetValue(const _stDLNAMediaItem& item, const std::string& strField, char** ppValue) {
    return qra_dlna_get_text(item, strField, m_IsFolderView(), ppValue);
}

bool CQRADLNAWrapper::GetValue(const _stDLNAMediaItem& item, const std::string& strField, int* pValue) {
    return qra_dlna_get_int(item, strField, m_IsFolderView(), pValue);
}

bool CQRADLNAWrapper::GetValue(const _stDLNAMediaItem& item, const std::string& strField,
                               unsigned long long* pValue) {
    return qra_dlna_get_number(item, strField, pValue);
}
