#ifndef QRA_LIBQRA_AGENT_SOURCE_FOLDER_THUMB_QRA_FOLDER_THUMB_JOB_H
#define QRA_LIBQRA_AGENT_SOURCE_FOLDER_THUMB_QRA_FOLDER_THUMB_JOB_H

#include <list>
#include <memory>
#include <string>

#include "common/util/qra_intrusive_ptr.h"
#include "common/util/qra_mutex.h"

/// Takes the answer of a request: its user data and a JSON text, which is valid during the call only.
using folder_thumb_source_cb = bool (*)(void* pUserData, char* pPath);

/// One waiting caller.
struct CFolderThumbRequester {
    std::string strPath;
    std::string strContentType;
    std::string strExtension;
    int nRequestCount = 0;
    void* pUserData = nullptr;
    folder_thumb_source_cb cb = nullptr;
    std::shared_ptr<void> pKeepAlive;  ///< holds what pUserData points to as long as a job names it

    /// Whether both are the same request.
    bool operator==(const CFolderThumbRequester& other) const;
};

/**
 * One question for a folder's thumbnail, with all callers that wait for its answer.
 *
 * The mutex covers the observers; status and cancelled flag belong to the list of jobs and its mutex, which
 * comes before this one. All else is fixed.
 */
class CFolderThumbRequestJob : public QRA_IntrusivePtr_Base {
public:
    enum EStatus { WAITING = 0, TAKEN = 1 };

    /// A job with the key and the extension of its first observer.
    explicit CFolderThumbRequestJob(const CFolderThumbRequester& first);

    bool HasKey(const std::string& strPath, const std::string& strContentType, int nRequestCount) const;
    const std::string& GetPath() const { return m_strPath; }
    const std::string& GetContentType() const { return m_strContentType; }
    const std::string& GetExtension() const { return m_strExtension; }
    int GetRequestCount() const { return m_nRequestCount; }

    void SetStatus(EStatus eStatus) { m_eStatus = eStatus; }
    EStatus GetStatus() const { return m_eStatus; }
    void SetCancelled() { m_bCancelled = true; }
    bool IsCancelled() const { return m_bCancelled; }

    void AddObserver(const CFolderThumbRequester& requester) QRA_EXCLUDES(m_Mutex);
    /// False if the requester is none of the observers.
    bool RemoveObserver(const CFolderThumbRequester& requester) QRA_EXCLUDES(m_Mutex);
    bool HasObservers() QRA_EXCLUDES(m_Mutex);
    /// Calls every observer, with the mutex held, and lets go of them.
    void Answer(char* pValue) QRA_EXCLUDES(m_Mutex);

private:
    const std::string m_strPath;
    const std::string m_strContentType;
    const std::string m_strExtension;
    const int m_nRequestCount;
    EStatus m_eStatus = WAITING;
    bool m_bCancelled = false;
    CQRAGMutex m_Mutex;
    std::list<CFolderThumbRequester> m_Observers QRA_GUARDED_BY(m_Mutex);
};

#endif
