#ifndef QRA_AGENT_SHARE_SRC_QRA_SHARE_THREAD_H
#define QRA_AGENT_SHARE_SRC_QRA_SHARE_THREAD_H

#include <qra/qra_types.h>

/**
 * A batch job as the send handle sees it: started once, stopped, and ended by its destructor at the latest.
 *
 * Excute() and Stop() belong to the client's thread. A job that was initialised is owned by its send handle,
 * also when Excute() fails after that.
 */
class IQRAShareThread {
public:
    /// Starts the job on the selection of `pAgentHandle`. `*ppSendHandle` is the job's own handle, which is
    /// filled before the job's thread runs.
    virtual qra_error_code_e Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                                    qra_share_user_data_s* pUserData, CQRASendHandle** ppSendHandle) = 0;
    /// Ends the job and waits for its thread; refused with QRA_ERROR_THREAD_FAILED on that thread.
    virtual qra_error_code_e Stop(CQRASendHandle* pSendHandle, qra_stop_type_e eType) = 0;
    virtual ~IQRAShareThread() = default;
};

#endif
