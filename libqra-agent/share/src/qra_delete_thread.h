#ifndef QRA_AGENT_SHARE_SRC_QRA_DELETE_THREAD_H
#define QRA_AGENT_SHARE_SRC_QRA_DELETE_THREAD_H

#include <string>

#include "libqra-agent/share/src/qra_share_thread_base.h"

class CQRALocalAgent;

/**
 * Removes the selected files with their companions and their rows in the media database. A recording that is
 * still being recorded is skipped.
 *
 * Everything but Excute(), Stop() and the destructor runs on the job's thread.
 */
class CQRADeleteThread : public CQRAShareThreadBase, public IQRAShareThread {
public:
    ~CQRADeleteThread() override;

    qra_error_code_e Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                            qra_share_user_data_s* pUserData, CQRASendHandle** ppSendHandle) override;
    qra_error_code_e Stop(CQRASendHandle* pSendHandle, qra_stop_type_e eType) override;

protected:
    SHARE_RESULT_TYPE t_JobProcess(void* pParam) override;

private:
    SHARE_RESULT_TYPE m_CheckDelete(const std::string& strPath);
    bool m_DeleteFile(const std::string& strPath);
    bool m_PvrDelete(const std::string& strPath);
    bool m_DeleteVideo(const std::string& strPath);
    bool m_DeleteOther(const std::string& strPath);
    bool m_DeleteFromDB(const std::string& strMediaId);

    CQRALocalAgent* m_pLocalAgent = nullptr;
};

#endif
