#include "libqra-agent/share/src/qra_share_status.h"

void CQRAShareStatus::Begin(int nTotalCount) {
    m_stInfo.nTotalCount = nTotalCount;
    m_stInfo.nFinishedCount = 0;
}

void CQRAShareStatus::BeginFile(const std::string& strName, unsigned long long llSize) {
    m_stInfo.llCurFileSize = llSize;
    m_stInfo.llProgressedFileSize = 0;
    if (!strName.empty() && strName.size() < sizeof m_stInfo.szFileName) {
        m_stInfo.szFileName[strName.copy(m_stInfo.szFileName, strName.size())] = '\0';
    }
}

void CQRAShareStatus::AddBytes(unsigned long long llBytes) {
    m_stInfo.llProgressedFileSize += llBytes;
    m_stInfo.llProgressedTotalSize += llBytes;
}

void CQRAShareStatus::DropFile(unsigned long long llTotalBefore) {
    m_stInfo.llProgressedTotalSize = llTotalBefore;
    m_stInfo.llProgressedFileSize = 0;
}
