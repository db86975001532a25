// A request: how it begins, its steps, and how what it gathers becomes the list.

#include <algorithm>
#include <iterator>
#include <utility>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/source/nubelink/qra_dlna_source.h"
#include "libqra-agent/source/nubelink/qra_dlna_wrapper.h"

namespace {

using Lock = CQRALockGuard<CQRAGMutex>;

constexpr const char* ROOT_FOLDER = "/";
constexpr const char* CONTENT_FOLDER = "CONTENT-FOLDER";
constexpr const char* CATEGORY_SEARCH = "CATEGORY-KEYWORD-SEARCH";
constexpr const char* SEARCH_GROUP = "search";

constexpr const char* CONTENT_TYPES[] = {"CONTENT-FOLDER", "CONTENT-IMAGE", "CONTENT-VIDEO", "CONTENT-MUSIC"};
constexpr const char* CATEGORIES[] = {
    "CATEGORY-FOLDER", "CATEGORY-TITLE", "CATEGORY-DATE", "CATEGORY-TRACK",        "CATEGORY-ARTIST",
    "CATEGORY-ALBUM",  "CATEGORY-GENRE", CATEGORY_SEARCH, "CATEGORY-FOLDER-TITLE",
};
constexpr const char* FOLDER_CATEGORIES[] = {"CATEGORY-FOLDER", "CATEGORY-FOLDER-TITLE"};
/// Those that list all items, group after group; the others list groups alone.
constexpr const char* ITEM_CATEGORIES[] = {"CATEGORY-TITLE", "CATEGORY-TRACK", "CATEGORY-DATE"};

constexpr struct {
    const char* szContentType;
    const char* szCategory;
    const char* szFolderId;
} SORTED_FOLDERS[] = {
    {"CONTENT-IMAGE", "CATEGORY-TITLE", "I_N"}, {"CONTENT-IMAGE", "CATEGORY-DATE", "I_L"},
    {"CONTENT-VIDEO", "CATEGORY-TITLE", "V_T"}, {"CONTENT-VIDEO", "CATEGORY-DATE", "V_L"},
    {"CONTENT-MUSIC", "CATEGORY-TRACK", "A_M"}, {"CONTENT-MUSIC", "CATEGORY-ARTIST", "A_A"},
    {"CONTENT-MUSIC", "CATEGORY-ALBUM", "A_L"}, {"CONTENT-MUSIC", "CATEGORY-GENRE", "A_G"},
};

constexpr struct {
    const char* szContentType;
    int nItemType;
} FILE_TYPES[] = {
    {"CONTENT-IMAGE", NBL_ITEM_TYPE_IMAGE},
    {"CONTENT-VIDEO", NBL_ITEM_TYPE_VIDEO},
    {"CONTENT-MUSIC", NBL_ITEM_TYPE_MUSIC},
};

template <size_t size>
bool is_one_of(const std::string& strText, const char* const (&texts)[size]) {
    return std::any_of(std::begin(texts), std::end(texts),
                       [&](const char* szText) { return strText == szText; });
}

/// Stands for a group without an item: the folder of the request. Never destroyed: a source may still be at
/// work while the process ends.
const _stDLNAGroupItem& NO_GROUP = *new _stDLNAGroupItem;

}  // namespace

std::string CQRADLNASource::m_GetFolderID(const std::string& strContentType, const std::string& strCategory) {
    for (const auto& folder : SORTED_FOLDERS) {
        if (strContentType == folder.szContentType && strCategory == folder.szCategory) {
            return folder.szFolderId;
        }
    }
    return "";
}

bool CQRADLNASource::m_ReadRequest(const qra_general_s* pParam, Request& request) {
    if (pParam == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: pParam is null");
        return false;
    }
    if (pParam->szPath == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: Deviceid is null");
        return false;
    }
    if (pParam->szFolderId == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: pFolderId is null");
        return false;
    }
    request.strDeviceId = pParam->szPath;
    request.strFolderId = pParam->szFolderId;
    request.strContentType = CQRAUtil::CharToString(pParam->szContentType);
    request.strSortCategory = CQRAUtil::CharToString(pParam->szSortCategory);
    if (pParam->szKeyWord != nullptr) {
        request.keyword = pParam->szKeyWord;
    }
    request.strExtension = CQRAUtil::CharToString(pParam->szExtension);
    return true;
}

bool CQRADLNASource::m_IsValid(const Request& request) {
    if (!is_one_of(request.strContentType, CONTENT_TYPES)) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: Invalid ContentType");
        return false;
    }
    if (!is_one_of(request.strSortCategory, CATEGORIES)) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: Invalid SortCategory");
        return false;
    }
    return true;
}

bool CQRADLNASource::m_FindFirstStep(const Request& request, EStep& eStep, std::string& strFolderId) {
    strFolderId = request.strFolderId;
    if (request.strSortCategory == CATEGORY_SEARCH) {
        if (!request.keyword.has_value()) {
            QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: Invalid keyword");
            return false;
        }
        eStep = STEP_SEARCH;
        return true;
    }
    if (is_one_of(request.strSortCategory, FOLDER_CATEGORIES) || strFolderId != ROOT_FOLDER) {
        eStep = STEP_CHILD_ITEMS;
        return true;
    }
    strFolderId = m_GetFolderID(request.strContentType, request.strSortCategory);
    if (strFolderId.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: Invalid m_Folderid");
        return false;
    }
    eStep = STEP_FEATURES;
    return true;
}

bool CQRADLNASource::Execute(qra_general_s* pParam) {
    Request request;
    if (!m_ReadRequest(pParam, request)) {
        return false;
    }
    const Lock lock(m_WorkMutex);
    if (!m_bActive) {
        if (!m_InitExcuteParam(request)) {
            return false;
        }
        m_bActive = true;
        m_StepSemaphore.Give();
        return true;
    }
    // The thread may be waiting for whoever calls this, so that the request is left to it.
    EStep eStep = STEP_END;
    std::string strFolderId;
    if (m_bClosing || !m_IsValid(request) || !m_FindFirstStep(request, eStep, strFolderId)) {
        return false;
    }
    m_Pending = std::move(request);
    m_bSuperseded = true;
    m_pWrapper->CancelAsync();
    return true;
}

bool CQRADLNASource::m_InitExcuteParam(const Request& request) {
    m_bCancel = false;
    m_bSuperseded = false;
    m_bReused = m_CheckReused(request);
    m_strContentType = request.strContentType;
    m_strSortCategory = request.strSortCategory;
    m_strDeviceId = request.strDeviceId;
    m_strFolderId = request.strFolderId;
    if (!m_IsValid(request)) {
        return false;
    }
    {
        // Also what a reuse has just put there: such a request ends with an empty list. The counters go on
        // counting, and the items of groups stay.
        const Lock lock(m_ListMutex);
        m_vItems.clear();
        m_vGroups.clear();
        m_vHeap.clear();
        m_GroupInfo.Reset();
    }
    m_PrepareExtensions(request.strExtension);
    EStep eStep = STEP_END;
    if (!m_FindFirstStep(request, eStep, m_strFolderId)) {
        return false;
    }
    if (eStep == STEP_SEARCH) {
        m_strKeyword = *request.keyword;
    }
    _stDlnaParam param;
    param.strDeviceId = m_strDeviceId;
    param.strFolderId = m_strFolderId;
    param.strContentType = m_strContentType;
    param.strSortCategory = m_strSortCategory;
    param.strKeyword = m_strKeyword;
    param.pUserData = this;
    if (m_pWrapper == nullptr || !m_pWrapper->InitParam(&param)) {
        return false;
    }
    m_nEvent = 0;
    m_nStep = eStep;
    return true;
}

bool CQRADLNASource::m_CheckReused(const Request& request) {
    const bool bSame = !m_strDeviceId.empty() && m_strDeviceId == request.strDeviceId &&
                       !m_strContentType.empty() && m_strContentType == request.strContentType &&
                       !m_strSortCategory.empty() && m_strSortCategory == request.strSortCategory;
    if (!bSame || is_one_of(request.strSortCategory, ITEM_CATEGORIES) || request.strFolderId == ROOT_FOLDER) {
        return false;
    }
    const Lock lock(m_ListMutex);
    const auto it = m_mapGroupItems.find(request.strFolderId);
    if (it == m_mapGroupItems.end() || it->second.empty()) {
        return false;
    }
    m_vItems = it->second;
    QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA Source Reused Request Media in Group");
    return true;
}

void CQRADLNASource::m_PrepareExtensions(const std::string& strExtension) {
    m_ExtensionList.ClearExtension();
    if (!m_ExtensionList.GetExtensionFromApp(strExtension)) {
        m_ExtensionList.SetDefaultExtension();
    }
    m_FileTypes.clear();
    for (const auto& type : FILE_TYPES) {
        if (m_strContentType == CONTENT_FOLDER || m_strContentType == type.szContentType) {
            m_FileTypes.push_back({type.nItemType, {}});
            m_ExtensionList.GetExtensionByType(type.szContentType, m_FileTypes.back().extensions);
        }
    }
}

void CQRADLNASource::t_Process() {
    while (m_bIsOpen) {
        m_StepSemaphore.Take();
        if (!m_BeginProcess()) {
            break;
        }
        m_EndProcess(m_Process());
    }
    QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE: Exit t_Process.");
}

// A Close() that waits for the end of a request has set m_bCancel, and needs the steps that are left.
bool CQRADLNASource::m_BeginProcess() {
    const Lock lock(m_WorkMutex);
    if (!m_bIsOpen || (m_bClosing && !m_bCancel)) {
        return false;
    }
    m_bRunning = true;
    return true;
}

void CQRADLNASource::m_EndProcess(bool bCompleted) {
    const Lock lock(m_WorkMutex);
    m_bRunning = false;
    if (!bCompleted) {
        return;
    }
    m_bActive = false;
    if (m_bCancel) {
        m_CloseSemaphore.Give();
    }
    if (!m_Pending.has_value()) {
        return;
    }
    const Request request = std::move(*m_Pending);
    m_Pending.reset();
    if (!m_InitExcuteParam(request)) {
        m_nEvent = DLNA_ERROR_FAILED;
        m_nStep = STEP_END;
    }
    m_bActive = true;
    m_StepSemaphore.Give();
}

// True when the request has come to its end.
bool CQRADLNASource::m_Process() {
    if (m_bReused) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA Source Reused callback to app");
        m_nStep = STEP_END;
        m_nEvent = 0;
    }
    m_bIndexSet = false;
    return m_RequestList();
}

bool CQRADLNASource::m_RequestList() {
    const int nStep = m_nStep;
    switch (nStep) {
        case STEP_END:
            m_CompleteCb(m_nEvent);
            return true;
        case STEP_SEARCH:
            m_GetDLNASearchList();
            break;
        case STEP_CHILD_ITEMS:
            m_GetChildItemList();
            break;
        case STEP_ALL_ITEMS:
            m_GetAllItemList();
            break;
        case STEP_GROUPS:
            m_GetGroupList();
            break;
        case STEP_FEATURES:
            m_GetFeatureList();
            break;
        default:
            QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: unexpected step[%d].", nStep);
            QRA_ASSERT(nStep >= STEP_END && nStep <= STEP_FEATURES);
    }
    m_ChangeStep();
    m_StepSemaphore.Give();
    return false;
}

void CQRADLNASource::m_ChangeStep() {
    const int nStep = m_nStep;
    int nNext = STEP_END;
    if (!m_IsStopped() && nStep == STEP_FEATURES) {
        nNext = STEP_GROUPS;
    } else if (!m_IsStopped() && nStep == STEP_GROUPS) {
        if (is_one_of(m_strSortCategory, ITEM_CATEGORIES)) {
            nNext = STEP_ALL_ITEMS;
        } else {
            QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE:Get  Grouplist Complete");
        }
    }
    m_nStep = nNext;
}

void CQRADLNASource::m_GetFeatureList() {
    m_nEvent = m_pWrapper->GetFeatureList();
}

void CQRADLNASource::m_GetGroupList() {
    const int nLevels = CQRADLNAWrapper::GetGrouplevel(m_strSortCategory);
    for (int nLeft = nLevels; nLeft > 0 && !m_IsStopped(); --nLeft) {
        if (nLeft == nLevels) {
            m_nEvent = m_pWrapper->GetGroupLevel1(cb_GetGroupItem);
        } else {
            QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE: go on get group from next level.");
            m_GetNextGroupLevel();
        }
    }
}

void CQRADLNASource::m_GetNextGroupLevel() {
    for (const _stDLNAGroupItem& group : m_TakeGroups()) {
        m_nEvent = m_pWrapper->GetGroupLevel2(group, cb_GetGroupItem);
        if (m_IsStopped()) {
            QRA_LOG_INFO(QRA_TAG_DLNA, "quit loop of  GetGroupLevel2 ");
            break;
        }
    }
}

void CQRADLNASource::m_GetAllItemList() {
    for (const _stDLNAGroupItem& group : m_TakeGroups()) {
        m_strFolderId = group.strGroupId;
        m_nEvent = m_pWrapper->GetItemList(group, cb_GetMediaItem, cb_GetGroupItem);
        if (m_IsStopped()) {
            QRA_LOG_INFO(QRA_TAG_DLNA, "quit loop of  m_GetAllItemList");
            break;
        }
        m_UpdateVector();
    }
    m_ResetGroupInfo();
}

void CQRADLNASource::m_GetChildItemList() {
    m_nEvent = m_pWrapper->GetItemList(NO_GROUP, cb_GetMediaItem, cb_GetGroupItem);
    m_UpdateVector();
}

void CQRADLNASource::m_GetDLNASearchList() {
    m_nEvent = m_pWrapper->SearchByKeyword(cb_GetMediaItem) ? DLNA_ERROR_NONE : DLNA_ERROR_FAILED;
    m_UpdateVector();
    m_ResetGroupInfo();
}

std::vector<_stDLNAGroupItem> CQRADLNASource::m_TakeGroups() {
    const Lock lock(m_ListMutex);
    return std::exchange(m_vGroups, {});
}

void CQRADLNASource::cb_GetGroupItem(const _stDLNAGroupItem& group, void* pThis) {
    static_cast<CQRADLNASource*>(pThis)->m_AddGroup(group);
}

void CQRADLNASource::m_AddGroup(const _stDLNAGroupItem& group) {
    const Lock lock(m_ListMutex);
    m_vGroups.push_back(group);
    if (!group.bLeaf) {
        return;
    }
    if (group.nChildCount == 0) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE: empty group from dlna server");
    }
    m_GroupInfo.AddGroup(group.strGroupName, group.nChildCount, group.strGroupId);
    m_mapGroupItems[group.strGroupId].clear();
}

void CQRADLNASource::cb_GetMediaItem(const _stDLNAMediaItem& item, void* user_data) {
    // clang-format off
    QRA_ASSERT(user_data!= NULL);
    // clang-format on
    static_cast<CQRADLNASource*>(user_data)->m_AddItem(item);
}

void CQRADLNASource::m_AddItem(const _stDLNAMediaItem& item) {
    int nType = item.eType;
    if (!m_GetFileType(item.strExtension, nType)) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE:filter extension [%s]", item.strExtension.c_str());
        return;
    }
    auto kept = std::make_shared<_stDLNAMediaItem>(item);
    kept->eType = nType;
    const Lock lock(m_ListMutex);
    m_vHeap.push_back(std::move(kept));
    std::push_heap(m_vHeap.begin(), m_vHeap.end(), m_ComesAfter);
    if (int* const pCounter = m_GetCounter(nType)) {
        ++*pCounter;
    } else {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: unexpected type.");
    }
}

// The order of a heap whose top is the list's next item: folders first, each kind by its place.
bool CQRADLNASource::m_ComesAfter(const Item& left, const Item& right) {
    const bool bLeftFolder = left->eType == NBL_ITEM_TYPE_FOLDER;
    const bool bRightFolder = right->eType == NBL_ITEM_TYPE_FOLDER;
    return bLeftFolder != bRightFolder ? bRightFolder : left->nIndex > right->nIndex;
}

// What has no extension is kept as what the server says that it is.
bool CQRADLNASource::m_GetFileType(const std::string& strExtension, int& nType) const {
    if (strExtension.empty()) {
        return true;
    }
    for (const FileType& type : m_FileTypes) {
        if (CQRAUtil::CompareMediaExtension(type.extensions, strExtension)) {
            nType = type.nItemType;
            return true;
        }
    }
    return false;
}

int* CQRADLNASource::m_GetCounter(int nItemType) {
    switch (nItemType) {
        case NBL_ITEM_TYPE_IMAGE:
            return &m_nImageCount;
        case NBL_ITEM_TYPE_VIDEO:
            return &m_nVideoCount;
        case NBL_ITEM_TYPE_MUSIC:
            return &m_nMusicCount;
        case NBL_ITEM_TYPE_FOLDER:
            return &m_nFolderCount;
        default:
            return nullptr;
    }
}

void CQRADLNASource::m_UpdateVector() {
    const Lock lock(m_ListMutex);
    std::vector<Item> items;
    items.reserve(m_vHeap.size());
    while (!m_vHeap.empty()) {
        std::pop_heap(m_vHeap.begin(), m_vHeap.end(), m_ComesAfter);
        items.push_back(std::move(m_vHeap.back()));
        m_vHeap.pop_back();
    }
    m_vItems.insert(m_vItems.end(), items.begin(), items.end());
    if (!m_mapGroupItems.empty()) {
        m_mapGroupItems[m_strFolderId] = std::move(items);
    }
}

void CQRADLNASource::m_ResetGroupInfo() {
    if (m_IsStopped()) {
        return;
    }
    const Lock lock(m_ListMutex);
    if (m_nStep == STEP_ALL_ITEMS) {
        m_RebuildGroupInfo();
    } else if (m_nStep == STEP_SEARCH) {
        m_GroupInfo.AddGroup(SEARCH_GROUP, static_cast<int>(m_vItems.size()));
    }
}

// Servers' own counts may be wrong, and files of other kinds are left out: the groups get the counts of what
// the list has. A group that was reported as empty after it was named has its items under its name already.
void CQRADLNASource::m_RebuildGroupInfo() {
    const CQRAGroupInfo groups = m_GroupInfo;
    m_GroupInfo.Reset();
    for (int i = 0; i < groups.GetGroupCount(); ++i) {
        const std::string strId = groups.GetGroupId(i);
        int nStart = 0;
        int nSaid = 0;
        std::string strName;
        groups.GetGroup(i, nStart, nSaid, strName);
        const auto it = m_mapGroupItems.find(strId);
        if (it == m_mapGroupItems.end()) {
            QRA_LOG_INFO(QRA_TAG_DLNA, "no such group");
            continue;
        }
        const int nSize = nSaid > 0 ? static_cast<int>(it->second.size()) : 0;
        QRA_LOG_INFO(QRA_TAG_DLNA, "reset group is [%s],size [%d]", strName.c_str(), nSize);
        m_GroupInfo.AddGroup(strName, nSize, strId);
    }
}
