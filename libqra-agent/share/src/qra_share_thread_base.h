#ifndef QRA_AGENT_SHARE_SRC_QRA_SHARE_THREAD_BASE_H
#define QRA_AGENT_SHARE_SRC_QRA_SHARE_THREAD_BASE_H

#include <memory>
#include <string>
#include <vector>

#include "common/util/qra_mutex.h"
#include "common/util/qra_thread.h"
#include "libqra-agent/share/src/qra_share_file_info.h"
#include "libqra-agent/share/src/qra_share_status.h"
#include "libqra-agent/share/src/qra_share_thread.h"

class CQRALocalAgent;

/// What became of one file of a batch job.
enum SHARE_RESULT_TYPE : int {
    SHARE_RESULT_SUCCESS = 0,      ///< counted and reported
    SHARE_RESULT_FAILED = 1,       ///< ends the job with a failure
    SHARE_RESULT_IGNORE = 2,       ///< skipped without a word to the client
    SHARE_RESULT_STOPPED = 3,      ///< inside a copy: stopped by the client
    SHARE_RESULT_READ_FAILED = 4,  ///< inside a copy
    SHARE_RESULT_WRITE_FAILED = 5  ///< inside a copy
};

/**
 * What all batch jobs share: the thread, the way through the selection, the status that the client sees, and
 * the rules of the events. A job class adds Excute(), Stop() and what it does to one file.
 *
 * Threads: a job is initialised, started, stopped and destroyed on the client's thread, t_Process() and with
 * it t_JobProcess() and the client's callback run on the job's. The status record and the file info belong to
 * the job's thread while there is one. The job status, which tells the job's thread to go on, has its mutex;
 * the mutex is held for the access alone, so it has no place in the order of locks.
 *
 * The agent handle and the send handle outlive the job's thread. The destructor of every job class calls
 * t_EndJob(), since the thread uses the members of the class.
 */
class CQRAShareThreadBase : public CQRAThread {
public:
    ~CQRAShareThreadBase() override = default;

    /// True on the thread of the job that this handle stands for; nothing is read through the handle.
    static bool IsThreadOf(const CQRASendHandle* pSendHandle);

protected:
    /// Walks the selection, once.
    void t_Process() override;
    /// Does the job's work on the current file. The argument is null.
    virtual SHARE_RESULT_TYPE t_JobProcess(void* pParam);

    /// Takes over the parameters, and fills the send handle, which owns `pThread` from then on. False, and
    /// nothing is taken over, if one that is needed is null.
    bool t_InitShareHandler(const qra_share_s* pShare, const qra_share_user_data_s* pUserData,
                            CQRAAgentHandle* pAgentHandle, qra_processor_type_e eProcessType,
                            IQRAShareThread* pThread, CQRASendHandle** ppSendHandle);
    /// The same for a job that works through the local agent: the agent, null if something is missing.
    CQRALocalAgent* t_InitLocalShareHandler(const qra_share_s* pShare, const qra_share_user_data_s* pUserData,
                                            CQRAAgentHandle* pAgentHandle, qra_processor_type_e eProcessType,
                                            IQRAShareThread* pThread, CQRASendHandle** ppSendHandle);
    void t_DestroyShareHandler();
    bool t_CreateJob(std::string strName);
    /// Waits for the thread.
    void t_DestroyJob();
    void t_SetJobStatus(bool bRunning);
    bool t_GetJobStatus();

    /// Starts the thread of an initialised job: the end of every Excute().
    qra_error_code_e t_StartJob(const char* szThreadName);
    /// Tells the thread to end, waits for it, and releases what it worked with.
    void t_EndJob();
    /// Ends the job: all that most Stop() do. Refused on the job's own thread.
    qra_error_code_e t_StopJob();
    /// True, with a log line, on the job's own thread, which cannot wait for itself.
    bool t_IsOwnThread() const;

    /// Calls the client; true if it did. Without `bForce` at most once each 300 ms, counted over all jobs.
    bool t_SendEvent(qra_event_e eEvent, bool bForce);

    static void t_GetVideoFileExt(std::vector<std::string>& extensions);
    static void t_GetPvrFileExt(std::vector<std::string>& extensions);

    CQRAAgentHandle* t_GetAgentHandle() const { return m_pAgentHandle; }
    qra_dev_type_e t_GetSourceDevType() const { return m_eSourceDevType; }

    CQRAShareStatus t_ShareStatus;
    std::unique_ptr<CQRAShareFileInfo> t_pShareFileInfo;

private:
    enum class Step { GoOn, Failed };

    bool m_DoJobs();
    bool m_GetSelectCount(int& nCount);
    bool m_GetCurrentSelectFileInfo(int nIndex);
    Step m_DoJob(int nIndex);

    CQRAAgentHandle* m_pAgentHandle = nullptr;
    qra_dev_type_e m_eSourceDevType = QRA_DEV_TYPE_DEFAULT;
    qra_dev_type_e m_eDestDevType = QRA_DEV_TYPE_DEFAULT;
    qra_processor_type_e m_eProcessType = QRA_PROCESSOR_TYPE_RESERVED;
    bool m_bJobStatus QRA_GUARDED_BY(m_Mutex) = false;
    CQRASendHandle* m_pSendHandle = nullptr;
    CQRAMutex m_Mutex;
};

#endif
