#ifndef QRA_AGENT_SHARE_SRC_QRA_COPY_THREAD_H
#define QRA_AGENT_SHARE_SRC_QRA_COPY_THREAD_H

#include <sys/types.h>

#include <atomic>
#include <string>
#include <vector>

#include "common/util/qra_file64.h"
#include "libqra-agent/share/src/qra_share_thread_base.h"
#include "libqra-agent/source/ptp/qra_ptp_file_operator.h"

class CQRALocalAgent;

/// Which end of a copy a file is.
enum FILE_TYPE { FILE_TYPE_SOURCE = 0, FILE_TYPE_DESTINATION = 1 };

/**
 * Copies each selected item to a directory, into the folder of its kind, under a name that collides with
 * nothing, with the companion files of videos and recordings, and enters the copy in the media database.
 *
 * Durability: a file is written in blocks of 64 KiB and flushed to the disk each MiB and at its end, before
 * it is entered or reported, so that a pulled drive costs at most the last MiB of one main file. What is left
 * after a failure: a write that failed leaves the file as far as it got, a stop or a failed read removes it,
 * unless the stop type says to keep it.
 *
 * A drive that is unmounted under a copy leaves its mount point behind, and the file that was open still
 * takes what is written to it. So the file system of the destination is looked at before and after each file:
 * a copy counts only where it can be found.
 *
 * The size that the media database has decides when a file is complete; a source that has become shorter is
 * waited for until the client stops the job.
 *
 * Everything but the constructor, Excute(), Stop() and the destructor runs on the job's thread.
 */
class CQRACopyThread : public CQRAShareThreadBase, public IQRAShareThread {
public:
    CQRACopyThread() = default;
    ~CQRACopyThread() override;

    qra_error_code_e Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                            qra_share_user_data_s* pUserData, CQRASendHandle** ppSendHandle) override;
    qra_error_code_e Stop(CQRASendHandle* pSendHandle, qra_stop_type_e eType) override;

protected:
    SHARE_RESULT_TYPE t_JobProcess(void* pParam) override;

private:
    bool m_CheckDestDev(const char* szPath);
    bool m_IsDestDevThere() const;
    bool m_CheckCopy(const std::string& strPath);
    bool m_CopyFile(const std::string& strPath, const std::string& strDestDir, std::string& strOut);
    bool m_OpenSrcAndDstFile(const std::string& strPath, const std::string& strDestDir, std::string& strOut);
    bool m_OpenSourceFile(const std::string& strPath);
    bool m_OpenDestFile(const std::string& strDestDir, std::string& strOut);
    SHARE_RESULT_TYPE m_CopySrcFile(char* pBuffer);
    bool m_ReadBlock(char* pBuffer, unsigned long& nCount);
    bool m_FlushDestFile();
    void m_ReportProgress();
    void m_CopyAttacheFile(char* pBuffer, const std::string& strDestName);
    SHARE_RESULT_TYPE m_CopyAttachment(char* pBuffer, const std::string& strDestName,
                                       const std::vector<std::string>& extensions);
    void m_DelUnCompletedCopyFile(const std::string& strDestName);
    void m_InsertDB(const std::string& strDestName);
    void m_CloseFile(CQRAFile64& file, FILE_TYPE eType);
    static void m_UpdateModTime(std::string strPath);
    bool m_IsPTP() const { return t_GetSourceDevType() == QRA_DEV_TYPE_PTP; }

    std::string m_strDestDevPath;
    dev_t m_nDestDevice = 0;  ///< the file system of m_strDestDevPath when the job began
    CQRALocalAgent* m_pLocalAgent = nullptr;
    /// Set by the client's thread while the job's may read it.
    std::atomic<qra_stop_type_e> m_eStopType{QRA_STOP_TYPE_REMOVE};
    CQRAFile64 m_SrcFile;
    CQRAFile64 m_DstFile;
    bool m_bDstFlushed = false;  ///< nothing was written to m_DstFile since its last flush
    CQRAPTPFileOperator m_PTPFile;
};

#endif
