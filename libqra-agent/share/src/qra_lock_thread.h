#ifndef QRA_AGENT_SHARE_SRC_QRA_LOCK_THREAD_H
#define QRA_AGENT_SHARE_SRC_QRA_LOCK_THREAD_H

#include <string>

#include "libqra-agent/share/src/qra_share_thread_base.h"

class CQRALocalAgent;
class CQRAPvrInfo;

/**
 * Sets or clears the content lock of the selected recordings, in their info files and in the media database.
 *
 * Everything but Excute(), Stop() and the destructor runs on the job's thread. No exported function starts
 * this job.
 */
class CQRALockUnLockThread : public CQRAShareThreadBase, public IQRAShareThread {
public:
    ~CQRALockUnLockThread() override;

    qra_error_code_e Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                            qra_share_user_data_s* pUserData, CQRASendHandle** ppSendHandle) override;
    qra_error_code_e Stop(CQRASendHandle* pSendHandle, qra_stop_type_e eType) override;

protected:
    SHARE_RESULT_TYPE t_JobProcess(void* pParam) override;

private:
    bool m_LockPvrFile(bool bLock);
    bool m_GetPvrInfo(const std::string& strPath, CQRAPvrInfo& info);
    void m_GetPvrInfoFromDB(CQRAPvrInfo& info);
    bool m_UpdateFileLock(bool bLock);
    bool m_UpdateInfoFile(const std::string& strInfoPath, bool bLock);

    CQRALocalAgent* m_pLocalAgent = nullptr;
    bool m_bLock = false;
};

#endif
