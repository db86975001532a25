#include "libqra-agent/share/src/qra_copy_thread.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_pvr_info.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/share/src/qra_share_common.h"

namespace {

constexpr unsigned long kBlockSize = 65536;
constexpr int kBlocksPerFlush = 16;
constexpr gulong kEmptyReadPauseUs = 5000;
constexpr int kNameAttempts = 100;

/// Writes all of a block; a disk that is about to be full takes a part of it first.
bool WriteBlock(CQRAFile64& file, const char* pBuffer, unsigned long nCount) {
    while (nCount > 0) {
        unsigned long nDone = nCount;
        if (!file.Write(pBuffer, &nDone) || nDone == 0) {
            return false;
        }
        pBuffer += nDone;
        nCount -= nDone;
    }
    return true;
}

/// Copies `nSize` bytes; false also for a source that ends before.
bool CopyWhole(CQRAFile64& source, CQRAFile64& dest, char* pBuffer, long long nSize) {
    for (long long nDone = 0; nDone < nSize;) {
        unsigned long nCount = kBlockSize;
        if (!source.Read(pBuffer, &nCount) || nCount == 0 || !WriteBlock(dest, pBuffer, nCount) ||
            !dest.Flush()) {
            return false;
        }
        nDone += static_cast<long long>(nCount);
    }
    return true;
}

bool IsSameFile(const std::string& strOne, const std::string& strOther) {
    struct stat64 one {};
    struct stat64 other {};
    return stat64(strOne.c_str(), &one) == 0 && stat64(strOther.c_str(), &other) == 0 &&
           one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool IsLink(const std::string& strPath) {
    struct stat64 status {};
    return lstat64(strPath.c_str(), &status) == 0 && S_ISLNK(status.st_mode);
}

bool CopyCompanion(const std::string& strSource, const std::string& strDest, char* pBuffer) {
    // The copy of "film" is "film.jpg": where it lies beside its source they share the companions.
    if (IsSameFile(strSource, strDest)) {
        return true;
    }
    // A link of the drive may lead to any file of this machine.
    if (IsLink(strDest)) {
        return false;
    }
    long long nSize = 0;
    CQRAFile64 source;
    CQRAFile64 dest;
    return CQRAFile64::FileSize(strSource.c_str(), &nSize) && source.Open(strSource.c_str(), 0, 0, true) &&
           CQRAFile64::Create(strDest.c_str()) &&
           CQRAFile64::FileExists(strDest.c_str()) &&  // nothing to wait for, such as a pipe
           dest.Open(strDest.c_str(), 1, O_TRUNC | O_NOFOLLOW, true) &&
           CopyWhole(source, dest, pBuffer, nSize);
}

bool IsInDatabase(int nFileType) {
    switch (nFileType) {
        case QRA_MEDIA_TYPE_IMAGE:
        case QRA_MEDIA_TYPE_VIDEO:
        case QRA_MEDIA_TYPE_MUSIC:
        case QRA_MEDIA_TYPE_PVR:
        case QRA_MEDIA_TYPE_IMAGE_EXT:
        case QRA_MEDIA_TYPE_VIDEO_EXT:
            return true;
        default:
            return false;
    }
}

}  // namespace

CQRACopyThread::~CQRACopyThread() {
    t_EndJob();
}

qra_error_code_e CQRACopyThread::Excute(qra_share_s* pShare, CQRAAgentHandle* pAgentHandle,
                                        qra_share_user_data_s* pUserData, CQRASendHandle** ppSendHandle) {
    m_pLocalAgent =
        t_InitLocalShareHandler(pShare, pUserData, pAgentHandle, QRA_PROCESSOR_TYPE_COPY, this, ppSendHandle);
    if (m_pLocalAgent == nullptr) {
        return QRA_ERROR_INVALID_PARAM;
    }
    if (!m_CheckDestDev(pShare->dest_dev_path)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Invalid dest dev path !!");
        return QRA_ERROR_INVALID_PARAM;
    }
    return t_StartJob("share_copy_thread");
}

qra_error_code_e CQRACopyThread::Stop(CQRASendHandle* pSendHandle, qra_stop_type_e eType) {
    QRA_LOG_INFO(QRA_TAG_SEND, "Stop copy, nShareHandler[%p], type[%d].", static_cast<void*>(pSendHandle),
                 eType);
    if (t_IsOwnThread()) {
        return QRA_ERROR_THREAD_FAILED;
    }
    m_eStopType = eType;
    t_EndJob();
    return QRA_ERROR_NONE;
}

bool CQRACopyThread::m_CheckDestDev(const char* szPath) {
    if (szPath == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "DestDevPath is NULL");
        return true;
    }
    m_strDestDevPath = szPath;
    struct stat64 status {};
    if (stat64(szPath, &status) != 0 || !S_ISDIR(status.st_mode)) {
        return false;
    }
    m_nDestDevice = status.st_dev;
    return true;
}

bool CQRACopyThread::m_IsDestDevThere() const {
    if (m_strDestDevPath.empty()) {
        return true;
    }
    struct stat64 status {};
    if (stat64(m_strDestDevPath.c_str(), &status) != 0 || status.st_dev != m_nDestDevice) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "The destination[%s] is gone.", m_strDestDevPath.c_str());
        return false;
    }
    return true;
}

SHARE_RESULT_TYPE CQRACopyThread::t_JobProcess(void*) {
    QRA_ASSERT(t_pShareFileInfo != NULL);
    const std::string& strPath = t_pShareFileInfo->GetFilePath();
    if (!m_CheckCopy(strPath)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "m_CheckCopy() faild!!");
        return SHARE_RESULT_FAILED;
    }
    std::string strOut;
    if (!m_CopyFile(strPath, m_strDestDevPath, strOut)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "m_CopyFile() faild!!");
        return SHARE_RESULT_FAILED;
    }
    return SHARE_RESULT_SUCCESS;
}

bool CQRACopyThread::m_CheckCopy(const std::string& strPath) {
    if (t_pShareFileInfo->GetFileType() != QRA_MEDIA_TYPE_PVR) {
        return true;
    }
    // A copy does not read the lock status of an item, so that a lock never stands in its way.
    if (t_pShareFileInfo->GetLockStatus()) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "File [%s] is locked, can not be copy !", strPath.c_str());
        return false;
    }
    svc_pvr_service_init();
    CQRAPvrInfo info;
    if (!info.Read(strPath)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Get pvr file info failed.");
        return false;
    }
    if (!info->finished) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "File [%s] is recording, can not be copy !", strPath.c_str());
        return false;
    }
    return true;
}

bool CQRACopyThread::m_CopyFile(const std::string& strPath, const std::string& strDestDir,
                                std::string& strOut) {
    const unsigned long long llTotalBefore = t_ShareStatus.GetInfo().llProgressedTotalSize;
    if (!m_OpenSrcAndDstFile(strPath, strDestDir, strOut)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "m_OpenSrcAndDstFile() faild.");
        return false;
    }
    // Not filled with zeros, as make_unique does: that shows where thousands of small files are copied.
    const std::unique_ptr<char[]> buffer(new char[kBlockSize]);
    const SHARE_RESULT_TYPE eResType = m_CopySrcFile(buffer.get());
    if (eResType == SHARE_RESULT_SUCCESS) {
        m_CopyAttacheFile(buffer.get(), strOut);
        m_InsertDB(strOut);
        m_UpdateModTime(strOut);
        m_CloseFile(m_SrcFile, FILE_TYPE_SOURCE);
        m_CloseFile(m_DstFile, FILE_TYPE_DESTINATION);
        return true;
    }
    QRA_LOG_WARNING(QRA_TAG_SEND, "Do copy job failed, eResType[%d].", eResType);
    m_CloseFile(m_SrcFile, FILE_TYPE_SOURCE);
    m_CloseFile(m_DstFile, FILE_TYPE_DESTINATION);
    // What a full disk has taken stays: it may be all that is left of a source that goes away next.
    const bool bRemovable = eResType == SHARE_RESULT_STOPPED || eResType == SHARE_RESULT_READ_FAILED;
    if (bRemovable && m_eStopType != QRA_STOP_TYPE_KEEP) {
        m_DelUnCompletedCopyFile(strOut);
    }
    t_ShareStatus.DropFile(llTotalBefore);
    return false;
}

bool CQRACopyThread::m_OpenSrcAndDstFile(const std::string& strPath, const std::string& strDestDir,
                                         std::string& strOut) {
    if (strPath.empty()) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "source filepath is empty.\n");
        return false;
    }
    if (!m_OpenSourceFile(strPath)) {
        return false;
    }
    if (!m_OpenDestFile(strDestDir, strOut)) {
        m_CloseFile(m_SrcFile, FILE_TYPE_SOURCE);
        return false;
    }
    return true;
}

bool CQRACopyThread::m_OpenSourceFile(const std::string& strPath) {
    if (m_IsPTP()) {
        if (!m_PTPFile.Open(strPath)) {
            QRA_LOG_WARNING(QRA_TAG_SEND, "Open ptp file[%s] failed. ", strPath.c_str());
            return false;
        }
        return true;
    }
    if (!m_SrcFile.Open(strPath.c_str(), 0, 0, true)) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Open source file[%s] failed. ", strPath.c_str());
        return false;
    }
    return true;
}

bool CQRACopyThread::m_OpenDestFile(const std::string& strDestDir, std::string& strOut) {
    // The name comes from a camera or a database, and may not lead out of the destination.
    const std::string strName = QRAShareCommon::ExtractFullFileName(t_pShareFileInfo->GetFileName());
    if (strName.empty() || strName == "." || strName == "..") {
        QRA_LOG_WARNING(QRA_TAG_SEND, "No file name in [%s].", t_pShareFileInfo->GetFileName().c_str());
        return false;
    }
    if (!m_IsDestDevThere()) {
        return false;
    }
    if (m_DstFile.IsOpened()) {
        m_DstFile.Destroy();  // a camera's copy before this one left it open
    }
    for (int i = 0; i < kNameAttempts; ++i) {
        if (!QRAShareCommon::MakeOutputFileName(t_pShareFileInfo->GetFileType(), strDestDir, strName,
                                                strOut)) {
            QRA_LOG_WARNING(QRA_TAG_SEND, "--------QRAShareCommon::MakeOutputFileName: ERROR--------");
            return false;
        }
        // Only a file that was not there is written to: another job may take the same name at the same time.
        if (m_DstFile.Open(strOut.c_str(), 1, O_CREAT | O_EXCL, true)) {
            m_bDstFlushed = false;
            return true;
        }
        if (!CQRAFile64::FileExists(strOut.c_str())) {
            return false;
        }
    }
    return false;
}

SHARE_RESULT_TYPE CQRACopyThread::m_CopySrcFile(char* pBuffer) {
    const qra_share_status_info_s& info = t_ShareStatus.GetInfo();
    int nBlocks = 0;
    while (info.llProgressedFileSize < info.llCurFileSize) {
        if (!t_GetJobStatus()) {
            return SHARE_RESULT_STOPPED;
        }
        unsigned long nCount = kBlockSize;
        if (!m_ReadBlock(pBuffer, nCount)) {
            QRA_LOG_WARNING(QRA_TAG_SEND, "Read data form %s file faild.", m_IsPTP() ? "ptp" : "source");
            return SHARE_RESULT_READ_FAILED;
        }
        if (nCount == 0) {
            // The source has become shorter. It may grow again; if not, the client stops the job.
            g_usleep(kEmptyReadPauseUs);
        } else {
            m_bDstFlushed = false;
            if (!WriteBlock(m_DstFile, pBuffer, nCount) ||
                (++nBlocks % kBlocksPerFlush == 0 && !m_FlushDestFile())) {
                QRA_LOG_WARNING(QRA_TAG_SEND, "Wite data to dest file faild.");
                return SHARE_RESULT_WRITE_FAILED;
            }
            t_ShareStatus.AddBytes(nCount);
        }
        m_ReportProgress();
    }
    return m_FlushDestFile() && m_IsDestDevThere() ? SHARE_RESULT_SUCCESS : SHARE_RESULT_WRITE_FAILED;
}

bool CQRACopyThread::m_ReadBlock(char* pBuffer, unsigned long& nCount) {
    if (!m_IsPTP()) {
        return m_SrcFile.Read(pBuffer, &nCount);
    }
    unsigned long nDone = 0;
    const bool bRead = m_PTPFile.Read(pBuffer, nCount, &nDone);
    nCount = nDone;
    return bRead;
}

bool CQRACopyThread::m_FlushDestFile() {
    m_bDstFlushed = m_DstFile.Flush();
    return m_bDstFlushed;
}

void CQRACopyThread::m_ReportProgress() {
    const qra_share_status_info_s& info = t_ShareStatus.GetInfo();
    if (t_SendEvent(QRA_EVENT_BATCH_PROGRESS, false)) {
        const double percent =
            100.0 * static_cast<double>(info.llProgressedFileSize) / static_cast<double>(info.llCurFileSize);
        QRA_LOG_DEBUG(QRA_TAG_SEND, "File[%s] progress[%.1f%%].", info.szFileName, percent);
    }
}

void CQRACopyThread::m_CopyAttacheFile(char* pBuffer, const std::string& strDestName) {
    std::vector<std::string> extensions;
    switch (t_pShareFileInfo->GetFileType()) {
        case QRA_MEDIA_TYPE_VIDEO:
        case QRA_MEDIA_TYPE_VIDEO_EXT:
            t_GetVideoFileExt(extensions);
            break;
        case QRA_MEDIA_TYPE_PVR:
            t_GetPvrFileExt(extensions);
            break;
        default:
            return;
    }
    if (m_CopyAttachment(pBuffer, strDestName, extensions) != SHARE_RESULT_SUCCESS) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "A companion of [%s] is missing.", strDestName.c_str());
    }
}

SHARE_RESULT_TYPE CQRACopyThread::m_CopyAttachment(char* pBuffer, const std::string& strDestName,
                                                   const std::vector<std::string>& extensions) {
    for (const std::string& strExtension : extensions) {
        const std::string strSource =
            QRAShareCommon::ExtractFullPathandNameNoExt(t_pShareFileInfo->GetFilePath()) + strExtension;
        const std::string strDest = QRAShareCommon::ExtractFullPathandNameNoExt(strDestName) + strExtension;
        if (!CQRAFile64::FileExists(strSource.c_str())) {
            QRA_LOG_INFO(QRA_TAG_SEND, "File[%s] not exist.", strSource.c_str());
            continue;
        }
        if (!CopyCompanion(strSource, strDest, pBuffer)) {
            QRA_LOG_WARNING(QRA_TAG_SEND, "Copy companion[%s] to [%s] failed.", strSource.c_str(),
                            strDest.c_str());
            return SHARE_RESULT_FAILED;
        }
    }
    return SHARE_RESULT_SUCCESS;
}

void CQRACopyThread::m_DelUnCompletedCopyFile(const std::string& strDestName) {
    const qra_share_status_info_s& info = t_ShareStatus.GetInfo();
    if (!CQRAFile64::FileExists(strDestName.c_str()) || info.llProgressedFileSize >= info.llCurFileSize) {
        return;
    }
    if (t_pShareFileInfo->GetFileType() != QRA_MEDIA_TYPE_PVR) {
        if (!CQRAFile64::Remove(strDestName.c_str())) {
            QRA_LOG_WARNING(QRA_TAG_SEND, "CQRAFile64::Remove error!");
        }
        return;
    }
    svc_pvr_service_init();
    qra_delete_recording(strDestName);
}

void CQRACopyThread::m_InsertDB(const std::string& strDestName) {
    if (IsInDatabase(t_pShareFileInfo->GetFileType()) &&
        m_pLocalAgent->AddFile(strDestName.c_str()) != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Insert [%s] to db failed.", strDestName.c_str());
    }
}

void CQRACopyThread::m_CloseFile(CQRAFile64& file, FILE_TYPE eType) {
    if (m_IsPTP()) {
        m_PTPFile.Close();
        return;
    }
    if (!file.IsOpened()) {
        return;
    }
    if (eType == FILE_TYPE_DESTINATION && !m_bDstFlushed) {
        file.Flush();
    }
    file.Destroy();
}

// A copy has the time of its making.
void CQRACopyThread::m_UpdateModTime(std::string) {}
