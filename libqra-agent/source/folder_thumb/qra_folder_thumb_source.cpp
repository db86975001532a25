#include "libqra-agent/source/folder_thumb/qra_folder_thumb_source.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "common/util/json_value.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_dbus_client.h"
#include "libqra-agent/source/local-source/qra_mcf_wrapper.h"

namespace {

constexpr const char* DONE_SIGNAL = "qra_folder_thumb_done";
constexpr const char* ERROR_CODE_KEY = "qra_folder_thumbnail_error_code";
constexpr unsigned int POLL_MICROSECONDS = 50000;

std::string TextOf(const char* pText) {
    return pText != nullptr ? pText : "";
}

unsigned int ProcessId() {
    return static_cast<unsigned int>(getpid());
}

CFolderThumbRequester MakeRequester(const char* pPath, const char* pContentType, const char* pExtension,
                                    int nRequestCount, folder_thumb_source_cb cb, void* pUserData) {
    CFolderThumbRequester requester;
    requester.strPath = TextOf(pPath);
    requester.strContentType = TextOf(pContentType);
    requester.strExtension = TextOf(pExtension);
    requester.nRequestCount = nRequestCount;
    requester.cb = cb;
    requester.pUserData = pUserData;
    return requester;
}

}  // namespace

CQRAFolderThumbSource::CQRAFolderThumbSource() {
    if (!Create("qra-folder-thumb-source")) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Create thread fail.");
    }
}

CQRAFolderThumbSource::~CQRAFolderThumbSource() {
    m_bStop = true;
    Destroy();
    m_DeleteAllRequestItem();
    CQRADBusClient::GetInstance()->UnSubscribeSignal(DONE_SIGNAL, nullptr, nullptr);
}

bool CQRAFolderThumbSource::RequestFolderThumbPath(const char* pPath, const char* pContentType,
                                                   const char* pExtension, int nRequestCount,
                                                   folder_thumb_source_cb cb, void* pUserData,
                                                   std::shared_ptr<void> pKeepAlive) {
    if (!FlagCreate()) {
        return false;
    }
    CFolderThumbRequester requester =
        MakeRequester(pPath, pContentType, pExtension, nRequestCount, cb, pUserData);
    requester.pKeepAlive = std::move(pKeepAlive);
    return m_InsertRequestItem(requester);
}

bool CQRAFolderThumbSource::CancelRequestFolderThumbPath(const char* pPath, const char* pContentType,
                                                         const char* pExtension, int nRequestCount,
                                                         folder_thumb_source_cb cb, void* pUserData) {
    return m_DeleteRequestItem(MakeRequester(pPath, pContentType, pExtension, nRequestCount, cb, pUserData));
}

bool CQRAFolderThumbSource::CancelAllRequestFolderThumbPath() {
    return m_DeleteAllRequestItem();
}

CQRAFolderThumbSource::JobList::iterator CQRAFolderThumbSource::m_FindJob(const std::string& strPath,
                                                                          const std::string& strContentType,
                                                                          int nRequestCount) {
    auto it = m_FolderThumbRequestJobs.begin();
    while (it != m_FolderThumbRequestJobs.end() && !(*it)->HasKey(strPath, strContentType, nRequestCount)) {
        ++it;
    }
    return it;
}

bool CQRAFolderThumbSource::m_InsertRequestItem(const CFolderThumbRequester& requester) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    const auto it = m_FindJob(requester.strPath, requester.strContentType, requester.nRequestCount);
    if (it != m_FolderThumbRequestJobs.end()) {
        (*it)->AddObserver(requester);
    } else {
        m_FolderThumbRequestJobs.emplace_back(new CFolderThumbRequestJob(requester));
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "m_FolderThumbRequestJobs size[%d]",
                 static_cast<int>(m_FolderThumbRequestJobs.size()));
    return true;
}

bool CQRAFolderThumbSource::m_DeleteRequestItem(const CFolderThumbRequester& requester) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    const auto it = m_FindJob(requester.strPath, requester.strContentType, requester.nRequestCount);
    if (it == m_FolderThumbRequestJobs.end() || !(*it)->RemoveObserver(requester)) {
        return false;
    }
    if (!(*it)->HasObservers()) {
        (*it)->SetCancelled();
        m_CancelScanFolderThumb(requester.strPath, requester.strContentType, requester.nRequestCount);
        m_FolderThumbRequestJobs.erase(it);
    }
    return true;
}

bool CQRAFolderThumbSource::m_DeleteAllRequestItem() {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    bool bStopped = true;
    for (const CJob& pJob : m_FolderThumbRequestJobs) {
        pJob->SetCancelled();
        bStopped =
            m_CancelScanFolderThumb(pJob->GetPath(), pJob->GetContentType(), pJob->GetRequestCount()) &&
            bStopped;
    }
    m_FolderThumbRequestJobs.clear();
    return bStopped;
}

CQRAFolderThumbSource::CJob CQRAFolderThumbSource::m_GetRequestJobItem() {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    for (const CJob& pJob : m_FolderThumbRequestJobs) {
        if (pJob->GetStatus() == CFolderThumbRequestJob::WAITING && pJob->HasObservers()) {
            pJob->SetStatus(CFolderThumbRequestJob::TAKEN);
            return pJob;
        }
    }
    return nullptr;
}

void CQRAFolderThumbSource::t_Process() {
    while (!m_bStop) {
        if (const CJob pJob = m_GetRequestJobItem()) {
            m_ProcessJob(pJob);
        } else {
            usleep(POLL_MICROSECONDS);
        }
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "MSC-SOURCE: Exit t_Process.");
}

void CQRAFolderThumbSource::m_ProcessJob(const CJob& pJob) {
    const std::string& strPath = pJob->GetPath();
    const std::string& strContentType = pJob->GetContentType();
    const int nRequestCount = pJob->GetRequestCount();
    QRA_LOG_INFO(QRA_TAG_LOCAL, "path[%s], content type[%s], extension[%s], count[%d]", strPath.c_str(),
                 strContentType.c_str(), pJob->GetExtension().c_str(), nRequestCount);
    std::string strThumb;
    if (m_GetFolderThumbFromDB(*pJob, strThumb)) {
        m_FolderThumbCallBack(strPath, strContentType, nRequestCount, strThumb);
        return;
    }
    if (m_IsCancelled(*pJob)) {
        return;
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "start xxx m_ScanFolderThumb");
    if (m_ScanFolderThumb(strPath.c_str(), strContentType.c_str(), nRequestCount)) {
        m_StopScanIfCancelled(*pJob);
        return;
    }
    QRA_LOG_WARNING(QRA_TAG_LOCAL, "m_ScanFolderThumb failed...");
    CJsonValue json;
    json.Set(ERROR_CODE_KEY, 1);
    m_FolderThumbCallBack(strPath, strContentType, nRequestCount, json.ToString());
}

bool CQRAFolderThumbSource::m_GetFolderThumbFromDB(const CFolderThumbRequestJob& job, std::string& strThumb) {
    CQRAMCFWrapper wrapper;
    if (!wrapper.ConnectMCF()) {
        return false;
    }
    _SMCFParam stParam;
    stParam.strRootPath = job.GetPath();
    stParam.strContentType = job.GetContentType();
    stParam.strExtension = job.GetExtension();
    char* pThumb = nullptr;
    const bool bFound =
        wrapper.InitParam(&stParam) && wrapper.GetFolderThumbPath(job.GetRequestCount(), &pThumb);
    const std::unique_ptr<char, decltype(&std::free)> thumb(pThumb, &std::free);
    wrapper.DisconnectMCF();
    if (!bFound || !thumb) {
        return false;
    }
    strThumb = thumb.get();
    return true;
}

bool CQRAFolderThumbSource::m_ScanFolderThumb(const char* pPath, const char* pContentType,
                                              int nRequestCount) {
    if (pPath == nullptr || pContentType == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "param error");
        return false;
    }
    CQRADBusClient* const pClient = CQRADBusClient::GetInstance();
    if (pClient->ConnectDbus() != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "ConnectDbus() failed.");
        return false;
    }
    if (pClient->SubscribeSignal(DONE_SIGNAL, cb_FolderThumbScan, this) != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "SubscribeSignal() failed.");
        return false;
    }
    if (pClient->StartScanThumb("start_scanner_thumb", pPath, pContentType,
                                static_cast<unsigned int>(nRequestCount), ProcessId()) != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "StartScanThumb() failed.");
        return false;
    }
    return true;
}

bool CQRAFolderThumbSource::m_CancelScanFolderThumb(const std::string& strPath,
                                                    const std::string& strContentType, int nRequestCount) {
    CQRADBusClient* const pClient = CQRADBusClient::GetInstance();
    if (pClient->ConnectDbus() != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "ConnectDbus() failed.");
        return false;
    }
    if (pClient->StopScanThumb("stop_scanner_thumb", strPath, strContentType,
                               static_cast<unsigned int>(nRequestCount), ProcessId()) != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "StopScanThumb() failed.");
        return false;
    }
    return true;
}

bool CQRAFolderThumbSource::m_IsCancelled(const CFolderThumbRequestJob& job) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    return job.IsCancelled();
}

void CQRAFolderThumbSource::m_StopScanIfCancelled(const CFolderThumbRequestJob& job) {
    // A cancel that came before the start had nothing to stop.
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    if (job.IsCancelled()) {
        m_CancelScanFolderThumb(job.GetPath(), job.GetContentType(), job.GetRequestCount());
    }
}

bool CQRAFolderThumbSource::m_FolderThumbCallBack(const std::string& strPath,
                                                  const std::string& strContentType, int nRequestCount,
                                                  std::string strValue) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    const auto it = m_FindJob(strPath, strContentType, nRequestCount);
    if (it == m_FolderThumbRequestJobs.end()) {
        return false;
    }
    QRA_LOG_INFO(QRA_TAG_LOCAL, "pValue: [%s]", strValue.c_str());
    (*it)->Answer(strValue.data());
    m_FolderThumbRequestJobs.erase(it);
    return true;
}

void CQRAFolderThumbSource::cb_FolderThumbScan(const char* pSignal, void* pUserData, char* pText) {
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Received Signal : %s, process it ... \n", pSignal);
    const CJsonValue json{std::string(pText)};
    int nErrorCode = 0;
    std::string strPath;
    std::string strContentType;
    int nRequestCount = 0;
    std::string strData;
    const bool bHasCode = json.Get(ERROR_CODE_KEY, nErrorCode);
    if (!bHasCode) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "failed...");
    }
    if (!bHasCode || !json.Get("qra_folder_thumbnail_path", strPath) ||
        !json.Get("qra_folder_thumbnail_content_type", strContentType) ||
        !json.Get("qra_folder_thumbnail_request_num", nRequestCount) ||
        !json.Get("qra_folder_thumbnail_data", strData)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Invalid Signal received from dbus server ...");
        return;
    }
    static_cast<CQRAFolderThumbSource*>(pUserData)->m_FolderThumbCallBack(strPath, strContentType,
                                                                          nRequestCount, strData);
}
