#include "libqra-agent/source/folder_thumb/qra_folder_thumb_job.h"

#include <algorithm>
#include <tuple>

bool CFolderThumbRequester::operator==(const CFolderThumbRequester& other) const {
    return std::tie(strPath, strContentType, strExtension, nRequestCount, pUserData, cb) ==
           std::tie(other.strPath, other.strContentType, other.strExtension, other.nRequestCount,
                    other.pUserData, other.cb);
}

CFolderThumbRequestJob::CFolderThumbRequestJob(const CFolderThumbRequester& first)
    : m_strPath(first.strPath),
      m_strContentType(first.strContentType),
      m_strExtension(first.strExtension),
      m_nRequestCount(first.nRequestCount),
      m_Observers{first} {}

bool CFolderThumbRequestJob::HasKey(const std::string& strPath, const std::string& strContentType,
                                    int nRequestCount) const {
    return m_strPath == strPath && m_strContentType == strContentType && m_nRequestCount == nRequestCount;
}

void CFolderThumbRequestJob::AddObserver(const CFolderThumbRequester& requester) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    m_Observers.push_back(requester);
}

bool CFolderThumbRequestJob::RemoveObserver(const CFolderThumbRequester& requester) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    const auto it = std::find(m_Observers.begin(), m_Observers.end(), requester);
    if (it == m_Observers.end()) {
        return false;
    }
    m_Observers.erase(it);
    return true;
}

bool CFolderThumbRequestJob::HasObservers() {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    return !m_Observers.empty();
}

void CFolderThumbRequestJob::Answer(char* pValue) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    for (const CFolderThumbRequester& observer : m_Observers) {
        if (observer.cb != nullptr) {
            observer.cb(observer.pUserData, pValue);
        }
    }
    m_Observers.clear();
}
