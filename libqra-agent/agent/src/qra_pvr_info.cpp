#include "libqra-agent/agent/src/qra_pvr_info.h"

#include <cstdlib>

#include "common/util/qra_log.h"

namespace {

constexpr int kNotThere = 1;

}  // namespace

CQRAPvrInfo::~CQRAPvrInfo() {
    free(m_stInfo.channel_name);
    free(m_stInfo.channel_num);
    free(m_stInfo.synopsis);
    free(m_stInfo.genre);
}

bool CQRAPvrInfo::Read(const std::string& strPath) {
    return svc_pvr_get_pvr_file_info(strPath.c_str(), &m_stInfo) == 0;
}

bool qra_delete_recording(const std::string& strPath) {
    int nOut = 0;
    if (svc_pvr_delete_record_file(strPath.c_str(), &nOut) != 0 && nOut != kNotThere) {
        QRA_LOG_WARNING(QRA_TAG_SEND, "Delete pvr file[%s] failed.", strPath.c_str());
        return false;
    }
    return true;
}
