#ifndef QRA_LIBQRA_AGENT_SOURCE_FOLDER_THUMB_QRA_FOLDER_THUMB_SOURCE_H
#define QRA_LIBQRA_AGENT_SOURCE_FOLDER_THUMB_QRA_FOLDER_THUMB_SOURCE_H

#include <atomic>
#include <boost/smart_ptr/intrusive_ptr.hpp>
#include <list>
#include <memory>
#include <string>

#include "common/util/qra_mutex.h"
#include "common/util/qra_singleton.h"
#include "common/util/qra_thread.h"
#include "libqra-agent/source/folder_thumb/qra_folder_thumb_job.h"

/**
 * Finds what the tiles of folders show: from the media database where the folder has been scanned, else
 * through the content engine, which scans it and signals the answer. Requests for the same path, content type
 * and count are one job; the extensions are those of its first request.
 *
 * A job waits, is taken by the thread, and leaves the list with its answer or with its last request. One that
 * the engine scans stays until the engine's signal, however long that takes.
 *
 * Threads: requests and cancels come on any thread. Jobs are taken on a thread of this object's own, which
 * also answers those that need no scan; the others are answered on the thread that runs the default main
 * context, since this object's thread subscribes to the signal. The list mutex is held while observers are
 * called, with the job's mutex after it, and while a scan is stopped, so that a stop never meets a later
 * start for the same folder. Callbacks must not call this object. In the lock order the list mutex comes
 * before a job's, the registry's and the bus client's.
 *
 * Errors: a folder that can be neither read nor scanned is answered with a JSON text that holds an error
 * code.
 */
class CQRAFolderThumbSource : public CQRASingleton<CQRAFolderThumbSource>, public CQRAThread {
public:
    CQRAFolderThumbSource();
    ~CQRAFolderThumbSource() override;

    /// Queues a request; false if there is no thread to answer it.
    /// @param pExtension null: the built-in extensions
    /// @param pKeepAlive let go of when no job names pUserData any more
    bool RequestFolderThumbPath(const char* pPath, const char* pContentType, const char* pExtension,
                                int nRequestCount, folder_thumb_source_cb cb, void* pUserData,
                                std::shared_ptr<void> pKeepAlive = nullptr) QRA_EXCLUDES(m_Mutex);
    /// Takes a request back, the same in all arguments; false if there is none. The last one of a job stops
    /// its scan.
    bool CancelRequestFolderThumbPath(const char* pPath, const char* pContentType, const char* pExtension,
                                      int nRequestCount, folder_thumb_source_cb cb, void* pUserData)
        QRA_EXCLUDES(m_Mutex);
    /// Takes all requests back; false if the engine could not be told to stop one of the scans.
    bool CancelAllRequestFolderThumbPath() QRA_EXCLUDES(m_Mutex);

protected:
    void t_Process() override;

private:
    using CJob = boost::intrusive_ptr<CFolderThumbRequestJob>;
    using JobList = std::list<CJob>;

    bool m_InsertRequestItem(const CFolderThumbRequester& requester) QRA_EXCLUDES(m_Mutex);
    bool m_DeleteRequestItem(const CFolderThumbRequester& requester) QRA_EXCLUDES(m_Mutex);
    bool m_DeleteAllRequestItem() QRA_EXCLUDES(m_Mutex);
    CJob m_GetRequestJobItem() QRA_EXCLUDES(m_Mutex);
    JobList::iterator m_FindJob(const std::string& strPath, const std::string& strContentType,
                                int nRequestCount) QRA_REQUIRES(m_Mutex);

    void m_ProcessJob(const CJob& pJob);
    static bool m_GetFolderThumbFromDB(const CFolderThumbRequestJob& job, std::string& strThumb);
    bool m_ScanFolderThumb(const char* pPath, const char* pContentType, int nRequestCount);
    static bool m_CancelScanFolderThumb(const std::string& strPath, const std::string& strContentType,
                                        int nRequestCount);
    bool m_IsCancelled(const CFolderThumbRequestJob& job) QRA_EXCLUDES(m_Mutex);
    void m_StopScanIfCancelled(const CFolderThumbRequestJob& job) QRA_EXCLUDES(m_Mutex);
    bool m_FolderThumbCallBack(const std::string& strPath, const std::string& strContentType,
                               int nRequestCount, std::string strValue) QRA_EXCLUDES(m_Mutex);
    static void cb_FolderThumbScan(const char* pSignal, void* pUserData, char* pText);

    std::atomic<bool> m_bStop{false};
    CQRAGMutex m_Mutex;
    JobList m_FolderThumbRequestJobs QRA_GUARDED_BY(m_Mutex);
};

#endif
