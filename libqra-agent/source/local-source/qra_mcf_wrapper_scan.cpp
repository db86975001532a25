// How a request finds its storage and waits for the scan of a folder that the database does not know yet.
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/local-source/qra_mcf_wrapper.h"
#include "libqra-agent/source/local-source/qra_obj_manager.h"

namespace {

constexpr int SCAN_RUNNING = 1;
constexpr int SCAN_FINISHED = 4;
constexpr int SCAN_FAILED = 5;

bool BeginsWith(const std::string& strText, const std::string& strStart) {
    return strText.compare(0, strStart.size(), strStart) == 0;
}

/// Position from which on the first "/" ends the path of a path's storage; npos for a path on no storage.
size_t EndOfStorageSearch(const std::string& strRoot) {
    // A drive has a name of one character at least behind its prefix.
    for (const std::string& strPrefix :
         {CQRAUtil::GetStoragePath("/USBDrive"), CQRAUtil::GetStoragePath("/usb/")}) {
        if (BeginsWith(strRoot, strPrefix)) {
            return strPrefix.size() + 1;
        }
    }
    constexpr size_t nPastMountName = 6;
    return BeginsWith(strRoot, "/mnt/") ? nPastMountName : std::string::npos;
}

}  // namespace

bool CQRAMCFWrapper::m_GetStoragePath() {
    const size_t nSearch = EndOfStorageSearch(m_strRoot);
    if (nSearch == std::string::npos) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: no storage, m_strRoot[%s], m_strStoragePath[%s].",
                        m_strRoot.c_str(), m_strStoragePath.c_str());
        return false;
    }
    m_strStoragePath = m_strRoot.substr(0, m_strRoot.find('/', nSearch));
    return true;
}

bool CQRAMCFWrapper::m_GetStorageId() {
    if (!m_strStorageId.empty()) {
        return true;
    }
    if (!m_GetStoragePath()) {
        return false;
    }
    filter_h hFilter = nullptr;
    int ret = media_filter_create(&hFilter);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: media_filter_create fail, ret[%d].", ret);
        return false;
    }
    const CFilter filter(hFilter);
    const std::string strCondition = "STORAGE_PATH = '" + m_strStoragePath + "'";
    ret = media_filter_set_condition(hFilter, strCondition.c_str(), MEDIA_CONTENT_COLLATE_NOCASE);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: media_filter_set_condition fail, ret[%d].", ret);
        return false;
    }
    ret = media_storage_foreach_storage_from_db(hFilter, cb_getStorageId, this);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: media_storage_foreach_storage_from_db fail, ret[%d].",
                        ret);
        return false;
    }
    if (m_strStorageId.empty()) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: m_strStorageId.empty() == true.");
        return false;
    }
    return true;
}

bool CQRAMCFWrapper::cb_getStorageId(media_storage_h hStorage, void* pUserData) {
    char* pId = nullptr;
    const int ret = media_storage_get_id(hStorage, &pId);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: media_storage_get_id fail, ret[%d].", ret);
        return true;
    }
    const CMallocText id(pId);
    static_cast<CQRAMCFWrapper*>(pUserData)->m_strStorageId = CQRAUtil::CharToString(pId);
    return true;
}

bool CQRAMCFWrapper::m_CheckScanStatus(bool bRecursive) {
    if (!m_GetStorageId()) {
        return false;
    }
    int nStatus = MEDIA_SCAN_STATUS_NONE;
    const int ret = media_storage_get_scan_status(m_strStorageId.c_str(), &nStatus);
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: media_storage_get_scan_status fail, ret[%d].", ret);
        return false;
    }
    if (nStatus == MEDIA_SCAN_STATUS_INVALID) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: invaild status.");
        return false;
    }
    return nStatus == MEDIA_SCAN_STATUS_FULLY_SCANNED || m_ScanFolder(bRecursive);
}

bool CQRAMCFWrapper::m_ScanFolder(bool bRecursive) {
    if (!m_StartScan(bRecursive)) {
        return false;
    }
    m_ScanSem.Take();
    if (m_eScanStatus != SCAN_FINISHED) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: scan fail or exit qra during scanning");
        return false;
    }
    return true;
}

bool CQRAMCFWrapper::m_StartScan(bool bRecursive) {
    const CQRALockGuard<CQRAGMutex> lock(m_StopMutex);
    if (m_bStopped) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: stopped before the scan of [%s].", m_strRoot.c_str());
        return false;
    }
    auto pScan = std::make_unique<SScanUserData>(SScanUserData{m_cbScan, m_pScanUserData, this});
    m_pScan = pScan.get();
    m_eScanStatus = SCAN_RUNNING;
    const int ret =
        media_content_scan_folder_v2(m_strRoot.c_str(), bRecursive, cb_getScanFolder, pScan.get());
    if (ret != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: media_content_scan_folder_v2 fail, ret[%d].", ret);
        m_eScanStatus = SCAN_FAILED;
        return false;
    }
    // From here on it is the answer's.
    static_cast<void>(pScan.release());
    return true;
}

void CQRAMCFWrapper::cb_getScanFolder(int nError, int nPhase, void* pUserData) {
    auto* const pScan = static_cast<SScanUserData*>(pUserData);
    if (pScan == nullptr || pScan->pThis == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: pThis == NULL");
        return;
    }
    const bool bLast = nError != 0 || nPhase == MEDIA_SCAN_PHASE_FINISHED;
    const auto nWrapper = reinterpret_cast<qra_handle_value_t>(pScan->pThis);
    const bool bFound = CQRAObjManager::GetInstance()->RunIfFound(nWrapper, [&] {
        if (bLast) {
            pScan->pThis->m_ScanAnswered(pScan, nError);
        }
    });
    if (!bFound) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: Current MCF Wrapper Obj does not exist!");
    }
    if (bLast) {
        delete pScan;
    }
}

void CQRAMCFWrapper::m_ScanAnswered(const SScanUserData* pScan, int nError) {
    if (m_pScan != pScan) {
        return;
    }
    m_pScan = nullptr;
    m_eScanStatus = nError != 0 ? SCAN_FAILED : SCAN_FINISHED;
    m_ScanSem.Give();
}

void CQRAMCFWrapper::StopRequest() {
    CQRAObjManager::GetInstance()->RemoveObj(m_GetAddress());
    const CQRALockGuard<CQRAGMutex> lock(m_StopMutex);
    m_bStopped = true;
    if (m_eScanStatus != SCAN_RUNNING) {
        return;
    }
    if (!m_strRoot.empty()) {
        const int ret = media_content_cancel_scan_folder(m_strRoot.c_str());
        if (ret != 0) {
            QRA_LOG_WARNING(QRA_TAG_LOCAL, "MCF-Wrapper: media_content_cancel_scan_folder fail, ret[%d].",
                            ret);
        }
    }
    // The status stays: that is what makes the waiter give up.
    m_ScanSem.Give();
}
