#include "libqra-agent/source/ptp/qra_ptp_file_operator.h"

#include <algorithm>
#include <cstring>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"
#include "libqra-agent/source/ptp/qra_ptp_manage.h"

namespace {

constexpr char kScheme[] = "ptp://";

/// What follows the scheme; null for a text of another scheme.
char* M_CONVERT_URI_TO_PATH(std::string& strURI) {
    constexpr size_t nScheme = sizeof kScheme - 1;
    return strURI.compare(0, nScheme, kScheme) == 0 ? strURI.data() + nScheme : nullptr;
}

}  // namespace

bool CQRAPTPFileOperator::Open(std::string strURI) {
    const std::string strWhole = strURI;
    char* const szPath = M_CONVERT_URI_TO_PATH(strURI);
    if (szPath == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Please check params, strURI=%s", strWhole.c_str());
        return false;
    }
    char* szRest = nullptr;
    const char* const szBus = strtok_r(szPath, ";", &szRest);
    const char* const szDevice = strtok_r(nullptr, ";", &szRest);
    const char* const szObject = strtok_r(nullptr, ";", &szRest);
    const int nBusValue = szBus != nullptr ? CQRAUtil::str2int(szBus) : 0;
    const int nDeviceValue = szDevice != nullptr ? CQRAUtil::str2int(szDevice) : 0;
    if (szObject == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Please check params, strURI=%s", strWhole.c_str());
        return false;
    }
    CQRAPTPManage* const pManage = CQRAPTPManage::GetInstance();
    if (!pManage->FindCamera(nBusValue, nDeviceValue, false)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "can not find camera");
        return false;
    }
    if (!pManage->DownloadFileToBuffer(szObject, this, &m_uSize)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "DownloadFileToBuffer fail");
        return false;
    }
    m_bIsOpen = true;
    return true;
}

bool CQRAPTPFileOperator::Read(char* pBuffer, unsigned long uSize, unsigned long* puDone) {
    if (pBuffer == nullptr || uSize == 0 || puDone == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Please check params");
        return false;
    }
    if (!m_bIsOpen || m_szBuffer == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Not Open or m_szBuffer is NULL");
        return false;
    }
    const unsigned long uCount = std::min(uSize, m_uSize - m_uIndex);
    std::memcpy(pBuffer, m_szBuffer, uCount);
    m_szBuffer += uCount;
    m_uIndex += uCount;
    *puDone = uCount;
    QRA_LOG_DEBUG(QRA_TAG_LOCAL, "total size:%lu; index:%lu; read size:%lu", m_uSize, m_uIndex, uCount);
    return true;
}

void CQRAPTPFileOperator::Close() {
    m_szBuffer = nullptr;
    m_uSize = 0;
    m_uIndex = 0;
    m_bIsOpen = false;
}
