#include "libqra-agent/source/nubelink/qra_dlna_source.h"

#include <algorithm>
#include <cstring>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/source/nubelink/qra_dlna_mgr.h"
#include "libqra-agent/source/nubelink/qra_dlna_wrapper.h"

namespace {

using Lock = CQRALockGuard<CQRAGMutex>;

constexpr char PLAYED_POSITION[] = "PLAYED_POSITION";
constexpr int KIND_UPLOAD = 0;
constexpr int KIND_DOWNLOAD = 1;
constexpr int STOP_ERROR = -1;

bool is_null(const void* pFirst, const char* szMessage) {
    if (pFirst == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "%s", szMessage);
    }
    return pFirst == nullptr;
}

}  // namespace

CQRADLNASource::CQRADLNASource() = default;

CQRADLNASource::~CQRADLNASource() {
    QRA_ASSERT(m_bIsOpen == false);
}

bool CQRADLNASource::Open(char* szDeviceId) {
    if (m_bIsOpen) {
        return true;
    }
    auto pWrapper = std::make_unique<CQRADLNAWrapper>();
    if (!pWrapper->InitProvider(CQRADlnaMgr::GetInstance()->GetServiceProvide(), szDeviceId)) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "m_InitProvider failed.");
        return false;
    }
    m_pWrapper = std::move(pWrapper);
    {
        const Lock lock(m_WorkMutex);
        m_bActive = false;
        m_bRunning = false;
        m_bClosing = false;
        m_Pending.reset();
    }
    // A Close() leaves posts behind, which are no steps.
    m_StepSemaphore.Reset();
    m_bIsOpen = true;
    if (!Create("qra-source-dlna")) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "Create thread fail.");
        m_bIsOpen = false;
        m_pWrapper.reset();
        return false;
    }
    return true;
}

bool CQRADLNASource::Close() {
    UNSetCallback();
    bool bWait = false;
    {
        const Lock lock(m_WorkMutex);
        m_bClosing = true;
        m_Pending.reset();
        // The thread posts at the end of a request that is cancelled, with this mutex held: if it is inside
        // one now, its post is still to come.
        bWait = m_bRunning;
        m_bCancel = bWait;
        m_CloseSemaphore.Reset();
    }
    if (bWait) {
        if (!m_pWrapper->CancelAsync()) {
            QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: the request could not be cancelled");
            const Lock lock(m_WorkMutex);
            m_bClosing = false;
            return false;
        }
        m_CloseSemaphore.Take();
    }
    m_bIsOpen = false;
    m_StepSemaphore.Give();
    CQRAThread::Destroy();
    m_pWrapper.reset();
    return true;
}

bool CQRADLNASource::SetCallback(qra_source_complete_cb cb, void* pUserData) {
    const Lock lock(m_RegistrationMutex);
    m_cbComplete = cb;
    m_pCompleteUserData = pUserData;
    return true;
}

bool CQRADLNASource::SetCallback(qra_source_transfer_cb cb, void* pUserData) {
    const Lock lock(m_RegistrationMutex);
    m_cbSend = cb;
    m_pSendUserData = pUserData;
    return true;
}

bool CQRADLNASource::UNSetCallback() {
    const Lock running(m_CallbackMutex);
    const Lock lock(m_RegistrationMutex);
    m_cbComplete = nullptr;
    m_pCompleteUserData = nullptr;
    return true;
}

void CQRADLNASource::m_CompleteCb(int nEvent) {
    const Lock running(m_CallbackMutex);
    qra_source_complete_cb cb = nullptr;
    void* pUserData = nullptr;
    {
        const Lock lock(m_RegistrationMutex);
        cb = m_cbComplete;
        pUserData = m_pCompleteUserData;
    }
    if (cb == nullptr || m_bSuperseded) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "DLNA-SOURCE: There is no registered callback.");
        return;
    }
    cb(static_cast<qra_event_e>(nEvent), pUserData);
}

bool CQRADLNASource::MoveToIndex(int nIndex) {
    const Lock lock(m_ListMutex);
    if (nIndex < 0 || static_cast<size_t>(nIndex) >= m_vItems.size()) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: nIndex is not in [0,len], nIndex = %d", nIndex);
        return false;
    }
    m_nIndex = nIndex;
    m_bIndexSet = true;
    return true;
}

bool CQRADLNASource::MoveToPrevious() {
    if (!m_bIndexSet) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: Index set failed");
        return false;
    }
    if (--m_nIndex < 0) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: m_nIndex < 0");
        return false;
    }
    return true;
}

bool CQRADLNASource::MoveToNext() {
    if (!m_bIndexSet) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: Index set failed");
        return false;
    }
    const Lock lock(m_ListMutex);
    if (++m_nIndex > static_cast<int>(m_vItems.size())) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: m_nIndex > vector.size()");
        return false;
    }
    return true;
}

bool CQRADLNASource::GetItemCount(int* pnCount) {
    QRA_ASSERT(pnCount != NULL);
    const Lock lock(m_ListMutex);
    *pnCount = static_cast<int>(m_vItems.size());
    return true;
}

bool CQRADLNASource::GetItemCountByType(qra_media_type_e eType, int* pnCount) {
    QRA_ASSERT(pnCount != NULL);
    const Lock lock(m_ListMutex);
    switch (eType) {
        case QRA_MEDIA_TYPE_FOLDER:
            *pnCount = m_nFolderCount;
            break;
        case QRA_MEDIA_TYPE_IMAGE:
            *pnCount = m_nImageCount;
            break;
        case QRA_MEDIA_TYPE_VIDEO:
            *pnCount = m_nVideoCount;
            break;
        case QRA_MEDIA_TYPE_MUSIC:
            *pnCount = m_nMusicCount;
            break;
        default:
            *pnCount = 0;
            break;
    }
    return true;
}

// Null past either end, where the cursor may have been moved.
CQRADLNASource::Item CQRADLNASource::m_GetCurrentItem() {
    const Lock lock(m_ListMutex);
    const int nIndex = m_nIndex;
    if (!m_bIndexSet || m_pWrapper == nullptr || nIndex < 0 ||
        static_cast<size_t>(nIndex) >= m_vItems.size()) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: Index set failed");
        return nullptr;
    }
    return m_vItems[static_cast<size_t>(nIndex)];
}

bool CQRADLNASource::GetValue(std::string strField, char** ppValue) {
    const Item item = m_GetCurrentItem();
    return item != nullptr && m_pWrapper->GetValue(*item, strField, ppValue);
}

bool CQRADLNASource::GetValue(std::string strField, int* pValue) {
    const Item item = m_GetCurrentItem();
    return item != nullptr && m_pWrapper->GetValue(*item, strField, pValue);
}

bool CQRADLNASource::GetValue(std::string strField, unsigned long long* pValue) {
    const Item item = m_GetCurrentItem();
    return item != nullptr && m_pWrapper->GetValue(*item, strField, pValue);
}

bool CQRADLNASource::GetValue(std::string, long*) {
    return true;
}

bool CQRADLNASource::GetValue(std::string, bool*) {
    return true;
}

bool CQRADLNASource::GetValue(std::string, double*) {
    return true;
}

bool CQRADLNASource::SetValue(const char* szField, int nValue) {
    if (szField == nullptr || std::strncmp(szField, PLAYED_POSITION, sizeof(PLAYED_POSITION)) != 0) {
        return false;
    }
    const Item item = m_GetCurrentItem();
    return item != nullptr && m_pWrapper->QraNblSetBookmark(item->pItem, nValue);
}

bool CQRADLNASource::SetValue(const char*, long) {
    return true;
}

bool CQRADLNASource::SetValue(const char*, const char*) {
    return true;
}

bool CQRADLNASource::GetDBIndex(char* szId, int* pnIndex) {
    if (szId == nullptr || pnIndex == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: no id to look for");
        return false;
    }
    const Lock lock(m_ListMutex);
    const auto it = std::find_if(m_vItems.begin(), m_vItems.end(),
                                 [&](const Item& item) { return item->strContentId == szId; });
    if (it == m_vItems.end()) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: Invalid media[%s].", szId);
        return false;
    }
    *pnIndex = static_cast<int>(it - m_vItems.begin());
    return true;
}

CQRAGroupInfo* CQRADLNASource::GetGroupInfo() {
    const Lock lock(m_ListMutex);
    return new CQRAGroupInfo(m_GroupInfo);
}

bool CQRADLNASource::GetBookMark(bool (*cb)(void*, int), void* pUserData) {
    const Item item = m_GetCurrentItem();
    return item != nullptr && m_pWrapper->QraNblGetBookmark(item->strContentId.c_str(), cb, pUserData);
}

int CQRADLNASource::GetFolderCount() {
    const Lock lock(m_ListMutex);
    return m_nFolderCount;
}

bool CQRADLNASource::GetItemCountOfGroup(char* szGroup, int* pnCount) {
    if (szGroup == nullptr || pnCount == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: GroupName or ItemCount is null");
        return false;
    }
    const Lock lock(m_ListMutex);
    const auto it = m_mapGroupItems.find(szGroup);
    if (it != m_mapGroupItems.end()) {
        *pnCount = static_cast<int>(it->second.size());
    }
    return true;
}

bool CQRADLNASource::Download(char* szUri, char* szMimeType, char* szDstPath, char* szRequestId) {
    if (is_null(m_pWrapper.get(), "DLNA-SOURCE: Download m_InitDLNAEnv failed")) {
        return false;
    }
    return m_pWrapper->QraNblDownLoad(szUri, szMimeType, szDstPath, cb_DLNASend, this, szRequestId) == 0;
}

bool CQRADLNASource::UpLoad(char* szSrc, char* szRequestId) {
    if (szSrc == nullptr || szRequestId == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: upload parameter error");
        return false;
    }
    if (is_null(m_pWrapper.get(), "DLNA-SOURCE: Upload m_InitDLNAEnv failed")) {
        return false;
    }
    return m_pWrapper->QraNblUpLoad(szSrc, cb_DLNASend, this, szRequestId) == 0;
}

int CQRADLNASource::Stop(char* szRequestId, int nKind) {
    if (is_null(szRequestId, "DLNA-SOURCE: stop parameter error") || m_pWrapper == nullptr) {
        return STOP_ERROR;
    }
    switch (nKind) {
        case KIND_DOWNLOAD:
            return m_pWrapper->QraNblStopDownload(szRequestId);
        case KIND_UPLOAD:
            return m_pWrapper->QraNblStopUpload(szRequestId);
        default:
            return STOP_ERROR;
    }
}

int CQRADLNASource::cb_DLNASend(int nCode, char* szId, void* pThis, double dDownloadTotal,
                                double dDownloadNow, double dUploadTotal, double dUploadNow) {
    auto* const pSource = static_cast<CQRADLNASource*>(pThis);
    qra_source_transfer_cb cb = nullptr;
    void* pUserData = nullptr;
    {
        const Lock lock(pSource->m_RegistrationMutex);
        cb = pSource->m_cbSend;
        pUserData = pSource->m_pSendUserData;
    }
    qra_event_e eEvent = QRA_EVENT_ACT_FAILED;
    if (nCode == DLNA_TRANSFER_FINISHED) {
        eEvent = QRA_EVENT_ACT_SUCCESS;
    } else if (nCode == DLNA_TRANSFER_PROGRESS) {
        eEvent = QRA_EVENT_ACT_UPDATE;
    }
    if (cb != nullptr) {
        cb(nCode, eEvent, szId, dDownloadTotal, dDownloadNow, dUploadTotal, dUploadNow, pUserData);
    }
    return 1;
}
