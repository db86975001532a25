#include "libqra-agent/source/ptp/qra_ptp_temp_file.h"

#include <unistd.h>

#include <filesystem>
#include <system_error>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"

namespace {

constexpr char kFolder[] = "/qra-core/data";

}  // namespace

CQRAPTPTempFile::CQRAPTPTempFile(int nObject, const char* szExtension)
    : m_strPath(CQRAUtil::GetUserAppPath(kFolder) + "/ptp_" + CQRAUtil::int2str(getpid()) + "_" +
                CQRAUtil::int2str(nObject) + "." + szExtension),
      m_bUsable(m_strPath.size() < kMostBytes) {
    if (!m_bUsable)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "The name of the temporary file[%s] is too long.", m_strPath.c_str());
    m_bUsable = m_bUsable && m_MakeFolder();
}

CQRAPTPTempFile::~CQRAPTPTempFile() {
    if (m_bUsable && access(m_strPath.c_str(), F_OK) == 0)
        CQRAUtil::RemoveFile(m_strPath.c_str());
}

bool CQRAPTPTempFile::m_MakeFolder() const {
    const std::filesystem::path folder = std::filesystem::path(m_strPath).parent_path();
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error)
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Make folder[%s] failed: %s.", folder.c_str(),
                        error.message().c_str());
    return !error;
}
