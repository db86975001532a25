#include "libqra-agent/source/local-source/qra_msc_source.h"

#include <utility>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/source/local-source/qra_msc_names.h"
#include "libqra-agent/source/local-source/qra_obj_manager.h"

namespace {

constexpr const char* UHD_FOLDER_CONTENT_TYPES[] = {"CONTENT-UHD", "CONTENT-VIDEO", "CONTENT-FOLDER"};
constexpr const char* CHANNEL_CATEGORIES[] = {"CATEGORY-FOLDER-CHANNEL_NAME", "CATEGORY-FOLDER-CHANNEL_NUM",
                                              "CATEGORY-CHANNEL_NAME", "CATEGORY-CHANNEL_NUM"};
constexpr const char* UHD_DEVICE_CONTENT_TYPES[] = {"CONTENT-UHD", "CONTENT-SCSA"};

constexpr const char* SYSTEM_FOLDERS[] = {"recycler", "$recycle.bin", "system volume information",
                                          "lost+found"};

/// How a category's group table is made.
enum EGroups { ONE_GROUP, ONE_GROUP_AFTER_FOLDERS, UNTOUCHED, DATABASE_AFTER_FOLDERS, DATABASE };

EGroups FindGroups(const std::string& strCategory) {
    static constexpr struct {
        const char* pCategory;
        EGroups eGroups;
    } GROUPS[] = {
        {"CATEGORY-TITLE", ONE_GROUP},
        {"CATEGORY-TRACK", ONE_GROUP},
        {"CATEGORY-KEYWORD-SEARCH", ONE_GROUP},
        {"CATEGORY-MSC-PHOTO", ONE_GROUP},
        {"CATEGORY-FOLDER-TITLE", ONE_GROUP_AFTER_FOLDERS},
        {"CATEGORY-UHD-FOLDER-WITHUPFOLDER", ONE_GROUP_AFTER_FOLDERS},
        {"CATEGORY-FOLDER", UNTOUCHED},
        {"CATEGORY-UHD-FOLDER", UNTOUCHED},
        {"CATEGORY-FOLDER-DATE", DATABASE_AFTER_FOLDERS},
        {"CATEGORY-FOLDER-CHANNEL_NAME", DATABASE_AFTER_FOLDERS},
        {"CATEGORY-FOLDER-CHANNEL_NUM", DATABASE_AFTER_FOLDERS},
    };
    for (const auto& groups : GROUPS) {
        if (strCategory == groups.pCategory) {
            return groups.eGroups;
        }
    }
    return DATABASE;
}

}  // namespace

CQRAMSCSource::~CQRAMSCSource() {
    QRA_ASSERT(m_bIsOpen == false);
}

bool CQRAMSCSource::Open() {
    if (!m_pMCFWrapper) {
        m_pMCFWrapper = std::make_unique<CQRAMCFWrapper>();
    }
    if (!m_pMCFWrapper->ConnectMCF()) {
        m_pMCFWrapper.reset();
        return false;
    }
    m_bIsOpen = true;
    // A Close() that found the thread awake left a token behind, which is no request.
    m_Sem.Reset();
    if (!Create("qra-source-msc")) {
        m_pMCFWrapper->DisconnectMCF();
        m_pMCFWrapper.reset();
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Create thread fail.");
        return false;
    }
    if (!m_pDmpSource) {
        m_pDmpSource = std::make_unique<CQRADmpSource>();
    }
    if (!m_pContentInfoProvider) {
        m_pContentInfoProvider = std::make_unique<CContentInfoProvider>();
    }
    CQRAObjManager::GetInstance()->AddObj(reinterpret_cast<qra_handle_value_t>(this));
    return true;
}

bool CQRAMSCSource::Close() {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "MSC-SOURCE: Close.");
    m_bIsOpen = false;
    UNSetCallback();
    CQRAObjManager::GetInstance()->RemoveObj(reinterpret_cast<qra_handle_value_t>(this));
    m_Sem.Give();
    if (m_pMCFWrapper) {
        m_pMCFWrapper->StopRequest();
        m_pMCFWrapper->DisconnectMCF();
    }
    CQRAThread::Destroy();
    m_Clear();
    m_pMCFWrapper.reset();
    m_pDmpSource.reset();
    m_pContentInfoProvider.reset();
    return true;
}

bool CQRAMSCSource::SetCallback(qra_source_complete_cb cb, void* pUserData) {
    QRA_ASSERT(cb != NULL);
    const CQRALockGuard<CQRAGMutex> lock(m_RegistrationMutex);
    m_cbComplete = cb;
    m_pUserData = pUserData;
    return true;
}

bool CQRAMSCSource::SetCallback(qra_source_transfer_cb, void*) {
    return true;
}

bool CQRAMSCSource::UNSetCallback() {
    const CQRALockGuard<CQRAGMutex> running(m_CallbackMutex);
    const CQRALockGuard<CQRAGMutex> lock(m_RegistrationMutex);
    m_cbComplete = nullptr;
    m_pUserData = nullptr;
    return true;
}

void CQRAMSCSource::m_NotifyComplete(qra_event_e eEvent) {
    const CQRALockGuard<CQRAGMutex> running(m_CallbackMutex);
    qra_source_complete_cb cb = nullptr;
    void* pUserData = nullptr;
    {
        const CQRALockGuard<CQRAGMutex> lock(m_RegistrationMutex);
        cb = m_cbComplete;
        pUserData = m_pUserData;
    }
    if (cb == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: There is no registered callback.");
        return;
    }
    cb(eEvent, pUserData);
}

bool CQRAMSCSource::Execute(qra_general_s* pParam) {
    m_Clear();
    _SMCFParam param;
    if (!m_FillParam(pParam, param)) {
        return false;
    }
    m_ExtensionList.ClearExtension();
    if (!m_ExtensionList.GetExtensionFromApp(param.strExtension)) {
        m_ExtensionList.SetDefaultExtension();
    }
    m_FileType.Prepare(m_ExtensionList);
    if (!m_pMCFWrapper || !m_pMCFWrapper->InitParam(&param)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: m_pMCFWrapper->Initparam failed.");
        return false;
    }
    m_Sem.Give();
    return true;
}

bool CQRAMSCSource::m_FillParam(const qra_general_s* pParam, _SMCFParam& param) {
    QRA_ASSERT(pParam != NULL);
    QRA_ASSERT(pParam->szPath != NULL);
    param.strRootPath = CQRAUtil::RemoveForwardSlashInPath(pParam->szPath);
    param.strKeyword = CQRAUtil::CharToString(pParam->szKeyWord);
    param.strContentType = CQRAUtil::CharToString(pParam->szContentType);
    param.strExtension = CQRAUtil::CharToString(pParam->szExtension);
    param.bIsUHDDevice = pParam->bIsUHDMeta;
    m_strCategory = CQRAUtil::CharToString(pParam->szSortCategory);
    if (IsOneOf(m_strCategory, UHD_FOLDER_CATEGORIES) &&
        !IsOneOf(param.strContentType, UHD_FOLDER_CONTENT_TYPES)) {
        m_strCategory = "CATEGORY-FOLDER-TITLE";
    }
    param.strCategory = m_strCategory;
    if (IsOneOf(m_strCategory, CHANNEL_CATEGORIES) && !IsOneOf(param.strContentType, PVR_CONTENT_TYPES)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL,
                        "m_strCategory is Channel but strContentType is not PVR, Parament Error");
        return false;
    }
    if (IsOneOf(param.strContentType, UHD_DEVICE_CONTENT_TYPES) && !param.bIsUHDDevice) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "strContentType is UHD or SCSA but bIsUHDDevice == false .");
        return false;
    }
    return true;
}

void CQRAMSCSource::m_Clear() {
    m_ContentList.clear();
    m_IdIndex.Clear();
    m_GroupItemCounts.clear();
    for (const qra_media_type_e eType :
         {QRA_MEDIA_TYPE_FOLDER, QRA_MEDIA_TYPE_IMAGE, QRA_MEDIA_TYPE_VIDEO, QRA_MEDIA_TYPE_MUSIC,
          QRA_MEDIA_TYPE_PVR, QRA_MEDIA_TYPE_UHD, QRA_MEDIA_TYPE_SCSA, QRA_MEDIA_TYPE_IMAGE_EXT,
          QRA_MEDIA_TYPE_VIDEO_EXT}) {
        *m_GetCounter(eType) = 0;
    }
    m_Cursor.reset(&m_ContentList);
}

void CQRAMSCSource::t_Process() {
    while (m_bIsOpen) {
        m_Sem.Take();
        if (!m_bIsOpen) {
            break;
        }
        m_bBusy = true;
        m_Process();
        m_bBusy = false;
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "MSC-SOURCE: Exit t_Process.");
}

void CQRAMSCSource::m_Process() {
    const long long nStart = CQRAUtil::GetCurrentSystemTime();
    const bool bResult = m_RequestMCFData();
    m_Cursor.reset(&m_ContentList);
    QRA_LOG_INFO(QRA_TAG_LOCAL, "MSC-SOURCE: request took %lld ms.",
                 CQRAUtil::GetCurrentSystemTime() - nStart);
    m_NotifyComplete(bResult ? QRA_EVENT_LIST_SUCCESS : QRA_EVENT_LIST_FAILED);
}

bool CQRAMSCSource::m_RequestMCFData() {
    if (!m_pMCFWrapper->RequestMCFMedia(cb_getMCFScanStatus, cb_getMCFMedia, this)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: m_pMCFWrapper->RequestMCFMedia failed.");
        return false;
    }
    if (!m_RequestGroups()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: m_pMCFWrapper->RequestMCFGroup failed.");
        return false;
    }
    const int nListSize = static_cast<int>(m_ContentList.size());
    if (m_GroupInfo.GetItemCount() != nListSize) {
        QRA_LOG_INFO(QRA_TAG_LOCAL, "MSC-SOURCE: m_GroupInfo.GetItemCount()[%d] != m_ContentList.size()[%d].",
                     m_GroupInfo.GetItemCount(), nListSize);
    }
    return true;
}

bool CQRAMSCSource::m_RequestGroups() {
    const EGroups eGroups = FindGroups(m_strCategory);
    if (eGroups == UNTOUCHED) {
        return true;
    }
    m_GroupInfo.Reset();
    const bool bAfterFolders = eGroups == ONE_GROUP_AFTER_FOLDERS || eGroups == DATABASE_AFTER_FOLDERS;
    const int nFirst = bAfterFolders ? m_nFolderCount : 0;
    m_GroupInfo.SetStartDBIndexOffset(nFirst);
    if (eGroups == DATABASE || eGroups == DATABASE_AFTER_FOLDERS) {
        return m_pMCFWrapper->RequestMCFGroup(cb_getMCFGroup, this);
    }
    m_GroupInfo.AddGroup(m_strCategory, static_cast<int>(m_ContentList.size()) - nFirst);
    return true;
}

bool CQRAMSCSource::cb_getMCFMedia(const std::string& strId, CMedia& media, void* pUserData) {
    if (pUserData == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: pThis == NULL");
        return false;
    }
    return static_cast<CQRAMSCSource*>(pUserData)->m_AddMedia(strId, media);
}

bool CQRAMSCSource::m_AddMedia(const std::string& strId, CMedia& media) {
    int* pCounter = nullptr;
    if (!m_Classify(media, pCounter)) {
        return false;
    }
    m_ContentList.push_back(std::move(media));
    if (pCounter != nullptr) {
        ++*pCounter;
    }
    m_IdIndex.Append(strId);
    return true;
}

// False for a row that the list does not show; no counter for one that it shows uncounted.
bool CQRAMSCSource::m_Classify(const CMedia& media, int*& pCounter) {
    switch (media.GetType()) {
        case MC_TYPE_FOLDER:
            pCounter = &m_nFolderCount;
            return m_CheckFolder(media.GetName());
        case MC_TYPE_MEDIA:
            return m_ClassifyFile(media, pCounter);
        case MC_TYPE_PVR:
            pCounter = &m_nPVRCount;
            return true;
        case MC_TYPE_UHD:
            pCounter = &m_nUHDCount;
            return true;
        case MC_TYPE_SCSA:
            pCounter = &m_nSCSACount;
            return true;
        default:
            return true;
    }
}

bool CQRAMSCSource::m_ClassifyFile(const CMedia& media, int*& pCounter) {
    qra_media_type_e eType = QRA_MEDIA_TYPE_FOLDER;
    if (!m_GetFileType(CQRAUtil::GetFileExtension(media.GetName()), media.Is360(), eType)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: m_GetFileType fail.");
        return false;
    }
    switch (eType) {
        case QRA_MEDIA_TYPE_IMAGE:
        case QRA_MEDIA_TYPE_VIDEO:
        case QRA_MEDIA_TYPE_IMAGE_EXT:
        case QRA_MEDIA_TYPE_VIDEO_EXT:
        case QRA_MEDIA_TYPE_MUSIC:
            pCounter = m_GetCounter(eType);
            break;
        default:
            break;
    }
    return true;
}

bool CQRAMSCSource::m_CheckFolder(const std::string& strName) const {
    return strName != "." && strName != ".." && !IsOneOf(CQRAUtil::ToLower(strName), SYSTEM_FOLDERS);
}

bool CQRAMSCSource::m_GetFileType(const std::string& strExtension, bool bIs360,
                                  qra_media_type_e& eType) const {
    return m_FileType.GetFileType(strExtension, bIs360, eType);
}

bool CQRAMSCSource::cb_getMCFGroup(const std::string& strName, int nCount, void* pUserData) {
    auto* const pThis = static_cast<CQRAMSCSource*>(pUserData);
    if (pThis == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: pThis == NULL");
        return false;
    }
    pThis->m_GroupInfo.AddGroup(strName, nCount);
    pThis->m_GroupItemCounts.emplace(strName, nCount);
    return true;
}

bool CQRAMSCSource::cb_getMCFScanStatus(qra_event_e eEvent, void* pUserData) {
    auto* const pThis = static_cast<CQRAMSCSource*>(pUserData);
    if (pThis == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MSC-SOURCE: pThis == NULL");
        return false;
    }
    if (!pThis->m_bBusy) {
        pThis->m_NotifyComplete(eEvent);
    }
    return true;
}

int* CQRAMSCSource::m_GetCounter(qra_media_type_e eType) {
    switch (eType) {
        case QRA_MEDIA_TYPE_FOLDER:
            return &m_nFolderCount;
        case QRA_MEDIA_TYPE_IMAGE:
            return &m_nImageCount;
        case QRA_MEDIA_TYPE_VIDEO:
            return &m_nVideoCount;
        case QRA_MEDIA_TYPE_MUSIC:
            return &m_nMusicCount;
        case QRA_MEDIA_TYPE_PVR:
            return &m_nPVRCount;
        case QRA_MEDIA_TYPE_UHD:
            return &m_nUHDCount;
        case QRA_MEDIA_TYPE_SCSA:
            return &m_nSCSACount;
        case QRA_MEDIA_TYPE_IMAGE_EXT:
            return &m_n360ImageCount;
        case QRA_MEDIA_TYPE_VIDEO_EXT:
            return &m_n360VideoCount;
        default:
            return nullptr;
    }
}

bool CQRAMSCSource::AddFile(const char* szPath) {
    QRA_ASSERT(szPath != NULL);
    return m_pMCFWrapper && m_pMCFWrapper->InsertToDB(szPath);
}

bool CQRAMSCSource::DeleteFile(const char* szMediaId) {
    QRA_ASSERT(szMediaId != NULL);
    return m_pMCFWrapper && m_pMCFWrapper->RemoveFromDB(szMediaId);
}
