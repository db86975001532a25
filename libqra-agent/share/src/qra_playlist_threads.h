#ifndef QRA_AGENT_SHARE_SRC_QRA_PLAYLIST_THREADS_H
#define QRA_AGENT_SHARE_SRC_QRA_PLAYLIST_THREADS_H

#include <memory>
#include <string>

#include "libqra-agent/share/src/qra_share_thread_base.h"

class M3UPlaylist;

// The batch jobs on playlists. They work on the playlists of the process-wide manager, which other jobs,
// handles and sources may hold too: nobody else may use a playlist while a job works on it. The drive's
// playlists have to be known already. No exported function starts these jobs.
//
// Everything but Excute(), Stop() and the destructor runs on the job's thread.

/// Removes the selected playlists with their files. The selection holds positions in the drive's order of
/// names, which each removal shifts: who selects several has to select them from the last one on.
class CQRAPlayListDeleteThread : public CQRAShareThreadBase, public IQRAShareThread {
public:
    ~CQRAPlayListDeleteThread() override;

    /// Needs the mount path.
    qra_error_code_e Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                            qra_share_user_data_s* pUserData, CQRASendHandle** ppSendHandle) override;
    qra_error_code_e Stop(CQRASendHandle* pSendHandle, qra_stop_type_e eType) override;

protected:
    SHARE_RESULT_TYPE t_JobProcess(void* pParam) override;

private:
    std::string m_strMountPath;
};

/// Adds the selected items to a playlist, with all their values. Saves nothing: the client flushes the
/// playlist when the job has ended.
class CQRAPlayListItemAddThread : public CQRAShareThreadBase, public IQRAShareThread {
public:
    ~CQRAPlayListItemAddThread() override;

    /// Needs the mount path and the name of a playlist that the manager knows.
    qra_error_code_e Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                            qra_share_user_data_s* pUserData, CQRASendHandle** ppSendHandle) override;
    qra_error_code_e Stop(CQRASendHandle* pSendHandle, qra_stop_type_e eType) override;

protected:
    SHARE_RESULT_TYPE t_JobProcess(void* pParam) override;

private:
    std::string m_strPlayListName;
    std::string m_strMountPath;
    std::shared_ptr<M3UPlaylist> m_pList;
};

/// Deletes the selected items from a playlist, by their media ids. Saves nothing, as the job above.
class CQRAPlayListItemDeleteThread : public CQRAShareThreadBase, public IQRAShareThread {
public:
    ~CQRAPlayListItemDeleteThread() override;

    /// Needs the mount path and the name of a playlist that the manager knows.
    qra_error_code_e Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                            qra_share_user_data_s* pUserData, CQRASendHandle** ppSendHandle) override;
    qra_error_code_e Stop(CQRASendHandle* pSendHandle, qra_stop_type_e eType) override;

protected:
    SHARE_RESULT_TYPE t_JobProcess(void* pParam) override;

private:
    std::string m_strPlayListName;
    std::string m_strMountPath;
    std::shared_ptr<M3UPlaylist> m_pList;
};

#endif
