// Bookmarks, and transfers from and to a server.

#include <atomic>
#include <cstring>

#include "common/util/json_value.h"
#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/nubelink/qra_dlna_call_table.h"
#include "libqra-agent/source/nubelink/qra_dlna_wrapper.h"
#include "qra/qra_util.h"

namespace {

constexpr int PROGRESS_INTERVAL_MS = 1000;
constexpr int BOOKMARK_TAG = 65535;
constexpr const char* LIVE_MIME = "image/jpg";
constexpr const char* UNKNOWN_MIME = "application/octet-stream";
/// Keeps a consumer's division from meeting 0.
constexpr double A_LITTLE = 1e-6;

using Lock = CQRALockGuard<CQRAGMutex>;

int percent(const nbl_transfer_info& info) {
    return info.total != 0 ? static_cast<int>(info.received * 100 / info.total) : 0;
}

double above(unsigned long long nBytes) {
    return static_cast<double>(nBytes) + A_LITTLE;
}

void remove_if_there(const std::string& strPath) {
    if (CQRAUtil::IsFileExist(strPath.c_str())) {
        CQRAUtil::RemoveFile(strPath.c_str());
    }
}

/// The transfer that a call belongs to; taken out of its map, or null if it is not there.
template <class Map>
typename Map::mapped_type find_call(Map& map, void* pCall, bool bTake) {
    for (auto it = map.begin(); it != map.end(); ++it) {
        if (it->second->pCall != pCall) {
            continue;
        }
        const typename Map::mapped_type transfer = it->second;
        if (bTake) {
            CQRADlnaCallTable::GetInstance()->Remove(pCall);
            map.erase(it);
        }
        return transfer;
    }
    return nullptr;
}

}  // namespace

struct CQRADLNAWrapper::Download {
    void Tell(int nCode, const nbl_transfer_info& info) {
        if (cb != nullptr) {
            cb(nCode, szRequestId, pUserData, above(info.total), above(info.received), 0.0, 0.0);
        }
    }

    std::string strDstPath;
    transfer_cb cb = nullptr;
    std::atomic<bool> bStop{false};
    void* pUserData = nullptr;
    int nToken = 0;
    char szRequestId[DLNA_REQUEST_ID_SIZE] = "";
    void* pCall = nullptr;
};

struct CQRADLNAWrapper::Upload {
    void Tell(int nCode, double dTotal, double dNow) {
        if (cb != nullptr) {
            cb(nCode, szRequestId, pUserData, 0.0, 0.0, dTotal, dNow);
        }
    }

    transfer_cb cb = nullptr;
    std::atomic<bool> bStop{false};
    void* pUserData = nullptr;
    int nRequestId = 0;
    char szRequestId[DLNA_REQUEST_ID_SIZE] = "";
    void* pCall = nullptr;
};

bool CQRADLNAWrapper::QraNblGetBookmark(const char* szContentId, bookmark_cb cb, void* pUserData) {
    const Lock lock(m_RequestMutex);
    void* const pCall = CQRADlnaCallTable::GetInstance()->Add(this);
    int nToken = 0;
    const int nCode = nbl_provider_browse_item(m_pProvider, szContentId, cb_GetBookMark, pCall, &nToken);
    if (nCode != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: the bookmark was not asked for, code[%d]", nCode);
        CQRADlnaCallTable::GetInstance()->Remove(pCall);
        return false;
    }
    m_BookmarkMap[nToken] = {cb, pUserData, pCall};
    return true;
}

CQRADLNAWrapper::Bookmark CQRADLNAWrapper::m_TakeBookmark(void* pCall) {
    const Lock lock(m_RequestMutex);
    for (auto it = m_BookmarkMap.begin(); it != m_BookmarkMap.end(); ++it) {
        if (it->second.pCall == pCall) {
            const Bookmark bookmark = it->second;
            CQRADlnaCallTable::GetInstance()->Remove(pCall);
            m_BookmarkMap.erase(it);
            return bookmark;
        }
    }
    return {};
}

void CQRADLNAWrapper::cb_GetBookMark(nbl_device_t, nbl_response* pResponse, int nError, void* pCall) {
    const CQRADlnaAnswer answer(pCall);
    if (answer.GetWrapper() == nullptr) {
        return;
    }
    const Bookmark bookmark = answer.GetWrapper()->m_TakeBookmark(pCall);
    if (bookmark.cb == nullptr) {
        return;
    }
    const int nLength = nError == NBL_ERROR_NONE && pResponse != nullptr ? pResponse->length : 0;
    int nBookmark = 0;
    if (nLength > 0) {
        nbl_item_get_bookmark(pResponse->items[0], &nBookmark);
    } else {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "dlna server item not exist,response length: %d", nLength);
    }
    bookmark.cb(bookmark.pUserData, nBookmark);
}

bool CQRADLNAWrapper::QraNblSetBookmark(const CQRADlnaItem& item, int nSeconds) {
    const int nCode =
        nbl_provider_set_bookmark(m_pProvider, item.Get(), nSeconds, cb_SetBookMark, BOOKMARK_TAG);
    if (nCode != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: the bookmark was not set, code[%d]", nCode);
    }
    return nCode == NBL_ERROR_NONE;
}

void CQRADLNAWrapper::cb_SetBookMark(nbl_device_t, int nError, int) {
    QRA_LOG_INFO(QRA_TAG_DLNA, "set bookmark, error[%d]", nError);
}

int CQRADLNAWrapper::QraNblDownLoad(const char* szUri, const char* szMimeType, const char* szDstPath,
                                    transfer_cb cb, void* pUserData, char* szRequestId) {
    if (szRequestId == nullptr) {
        return DLNA_TRANSFER_FAILED;
    }
    qra_uuid_time(szRequestId);
    const auto pDownload = std::make_shared<Download>();
    pDownload->strDstPath = CQRAUtil::CharToString(szDstPath);
    pDownload->cb = cb;
    pDownload->pUserData = pUserData;
    std::strncpy(pDownload->szRequestId, szRequestId, DLNA_REQUEST_ID_SIZE - 1);
    // Held until the transfer stands in its map: one that ends at once must find it there.
    const Lock lock(m_RequestMutex);
    pDownload->pCall = CQRADlnaCallTable::GetInstance()->Add(this);
    const int nCode = nbl_provider_download(szUri, szMimeType, szDstPath, PROGRESS_INTERVAL_MS,
                                            cb_ProviderDownload, pDownload->pCall, &pDownload->nToken);
    if (nCode != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "nbl_provider_download error %d", nCode);
        CQRADlnaCallTable::GetInstance()->Remove(pDownload->pCall);
        return DLNA_TRANSFER_FAILED;
    }
    m_DownloadRequestMap[pDownload->szRequestId] = pDownload;
    return DLNA_TRANSFER_FINISHED;
}

std::shared_ptr<CQRADLNAWrapper::Download> CQRADLNAWrapper::m_FindDownload(void* pCall, bool bTake) {
    const Lock lock(m_RequestMutex);
    return find_call(m_DownloadRequestMap, pCall, bTake);
}

void CQRADLNAWrapper::cb_ProviderDownload(int, nbl_transfer_info* pInfo, void* pCall) {
    const CQRADlnaAnswer answer(pCall);
    if (answer.GetWrapper() == nullptr || pInfo == nullptr) {
        return;
    }
    // A download that has come to its end is taken out before its client is told, who may end the source
    // then.
    const bool bEnd =
        pInfo->state == NBL_DOWNLOAD_STATE_COMPLETE || pInfo->state == NBL_DOWNLOAD_STATE_CANCELLED;
    const std::shared_ptr<Download> pDownload = answer.GetWrapper()->m_FindDownload(pCall, bEnd);
    if (pDownload == nullptr) {
        return;
    }
    if (pDownload->bStop) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "user request for stopping.");
        return;
    }
    switch (pInfo->state) {
        case NBL_DOWNLOAD_STATE_COMPLETE:
            QRA_LOG_INFO(QRA_TAG_DLNA, "Download Complete");
            pDownload->Tell(DLNA_TRANSFER_FINISHED, *pInfo);
            break;
        case NBL_DOWNLOAD_STATE_PROGRESS:
            QRA_LOG_DEBUG(QRA_TAG_DLNA, "Download %d%%", percent(*pInfo));
            if (!pDownload->bStop) {
                pDownload->Tell(DLNA_TRANSFER_PROGRESS, *pInfo);
            } else {
                remove_if_there(pDownload->strDstPath);
            }
            break;
        case NBL_DOWNLOAD_STATE_FAILED:
            QRA_LOG_WARNING(QRA_TAG_DLNA, "Download failed, error[%d]", pInfo->error);
            pDownload->Tell(DLNA_TRANSFER_FAILED, *pInfo);
            remove_if_there(pDownload->strDstPath);
            break;
        default:
            break;
    }
}

int CQRADLNAWrapper::QraNblStopDownload(const char* szRequestId) {
    std::shared_ptr<Download> pDownload;
    {
        const Lock lock(m_RequestMutex);
        const auto it = m_DownloadRequestMap.find(CQRAUtil::CharToString(szRequestId));
        if (it == m_DownloadRequestMap.end()) {
            QRA_LOG_INFO(QRA_TAG_DLNA, "no such item");
            return 0;
        }
        pDownload = it->second;
        pDownload->bStop = true;
        CQRADlnaCallTable::GetInstance()->Remove(pDownload->pCall);
        m_DownloadRequestMap.erase(it);
    }
    return nbl_provider_cancel_download(pDownload->nToken);
}

int CQRADLNAWrapper::QraNblUpLoad(const char* szSrc, transfer_cb cb, void* pUserData, char* szRequestId) {
    if (szRequestId == nullptr) {
        return DLNA_TRANSFER_FAILED;
    }
    qra_uuid_time(szRequestId);
    const CQRADlnaItem item = m_MakeUploadItem(CQRAUtil::CharToString(szSrc));
    if (!item) {
        return DLNA_TRANSFER_FAILED;
    }
    const auto pUpload = std::make_shared<Upload>();
    pUpload->cb = cb;
    pUpload->pUserData = pUserData;
    std::strncpy(pUpload->szRequestId, szRequestId, DLNA_REQUEST_ID_SIZE - 1);
    const nbl_provider_receive_handler handlers{cb_ProviderReceive, cb_ProviderReceiveCompleted,
                                                cb_ProviderReceiveUpdate};
    const Lock lock(m_RequestMutex);
    pUpload->pCall = CQRADlnaCallTable::GetInstance()->Add(this);
    const int nCode =
        nbl_provider_receive(m_pProvider, item.Get(), &handlers, pUpload->pCall, &pUpload->nRequestId);
    if (nCode != NBL_ERROR_NONE || pUpload->nRequestId == -1) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "nbl_provider_receive error or request_id is error");
        CQRADlnaCallTable::GetInstance()->Remove(pUpload->pCall);
        return nCode != NBL_ERROR_NONE ? nCode : DLNA_TRANSFER_FAILED;
    }
    m_UploadRequestMap[pUpload->szRequestId] = pUpload;
    return DLNA_TRANSFER_FINISHED;
}

CQRADlnaItem CQRADLNAWrapper::m_MakeUploadItem(const std::string& strSrc) const {
    CQRADlnaItem item;
    std::string strFifo;
    std::string strName;
    int nCode = NBL_ERROR_NONE;
    // A path is no JSON object; what looks like an object is taken apart as one.
    const size_t nStart = strSrc.find_first_not_of(" \t\r\n");
    if (nStart != std::string::npos && strSrc[nStart] == '{') {
        const CJsonValue json(strSrc);
        json.Get("fifo_name", strFifo);
        json.Get("file_name", strName);
    }
    if (!strFifo.empty()) {
        nCode = nbl_item_get_live_content(strName.c_str(), LIVE_MIME, strFifo.c_str(), item.Receive());
    } else {
        std::string strMime;
        m_GetMime(strSrc.substr(strSrc.rfind('/') + 1), strMime);
        nCode = nbl_item_get_local_content(strSrc.c_str(), strMime.c_str(), item.Receive());
    }
    if (nCode != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "DLNA-SOURCE: no item to send for [%s], code[%d]", strSrc.c_str(),
                        nCode);
    }
    return item;
}

bool CQRADLNAWrapper::m_GetMime(const std::string& strName, std::string& strMime) const {
    if (m_MimeMap.empty()) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "MIMEMAP MUST NOT BE NULL!");
        return false;
    }
    const auto it = m_MimeMap.find(CQRAUtil::ToLower(CQRAUtil::GetFileExtension(strName.c_str())));
    if (it == m_MimeMap.end()) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "COULDN'T GET MIME FOR %s", strName.c_str());
        strMime = UNKNOWN_MIME;
        return true;
    }
    strMime = it->second;
    return true;
}

std::shared_ptr<CQRADLNAWrapper::Upload> CQRADLNAWrapper::m_FindUpload(void* pCall, bool bTake) {
    const Lock lock(m_RequestMutex);
    return find_call(m_UploadRequestMap, pCall, bTake);
}

void CQRADLNAWrapper::cb_ProviderReceive(int nId, nbl_item_t, int nError, void*) {
    QRA_LOG_INFO(QRA_TAG_DLNA, "Upload %d started, error[%d]", nId, nError);
}

void CQRADLNAWrapper::cb_ProviderReceiveCompleted(int, nbl_item_t, int nError, void* pCall) {
    const CQRADlnaAnswer answer(pCall);
    if (answer.GetWrapper() == nullptr) {
        return;
    }
    // An upload that failed stays where it is until it is stopped; one that is done goes before its client is
    // told, who may end the source then.
    const bool bDone = nError == NBL_ERROR_NONE;
    const std::shared_ptr<Upload> pUpload = answer.GetWrapper()->m_FindUpload(pCall, bDone);
    if (pUpload == nullptr) {
        return;
    }
    if (pUpload->bStop) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "Current upload send job stoped");
        return;
    }
    pUpload->Tell(bDone ? DLNA_TRANSFER_FINISHED : DLNA_TRANSFER_FAILED, 1.0 + A_LITTLE, 1.0 + A_LITTLE);
}

void CQRADLNAWrapper::cb_ProviderReceiveUpdate(int, nbl_transfer_info* pInfo, int nError, void* pCall) {
    const CQRADlnaAnswer answer(pCall);
    if (answer.GetWrapper() == nullptr) {
        return;
    }
    const bool bFailed = nError != NBL_ERROR_NONE || pInfo == nullptr;
    const std::shared_ptr<Upload> pUpload = answer.GetWrapper()->m_FindUpload(pCall, bFailed);
    if (pUpload == nullptr || pUpload->bStop) {
        return;
    }
    const nbl_transfer_info info = pInfo != nullptr ? *pInfo : nbl_transfer_info{};
    QRA_LOG_DEBUG(QRA_TAG_DLNA, "Upload %d%%", percent(info));
    pUpload->Tell(bFailed ? DLNA_TRANSFER_FAILED : DLNA_TRANSFER_PROGRESS, above(info.total),
                  above(info.received));
}

int CQRADLNAWrapper::QraNblStopUpload(const char* szRequestId) {
    std::shared_ptr<Upload> pUpload;
    {
        const Lock lock(m_RequestMutex);
        const auto it = m_UploadRequestMap.find(CQRAUtil::CharToString(szRequestId));
        if (it == m_UploadRequestMap.end()) {
            QRA_LOG_INFO(QRA_TAG_DLNA, "no such item");
            return 0;
        }
        pUpload = it->second;
        pUpload->bStop = true;
        CQRADlnaCallTable::GetInstance()->Remove(pUpload->pCall);
        m_UploadRequestMap.erase(it);
    }
    return nbl_provider_cancel_receive(m_pProvider, pUpload->nRequestId, nullptr, nullptr);
}

// For the destructor: nobody is told.
void CQRADLNAWrapper::m_StopTransfers() {
    const Lock lock(m_RequestMutex);
    for (const auto& download : m_DownloadRequestMap) {
        nbl_provider_cancel_download(download.second->nToken);
    }
    for (const auto& upload : m_UploadRequestMap) {
        nbl_provider_cancel_receive(m_pProvider, upload.second->nRequestId, nullptr, nullptr);
    }
    m_DownloadRequestMap.clear();
    m_UploadRequestMap.clear();
}
