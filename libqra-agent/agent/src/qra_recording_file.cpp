#include "libqra-agent/agent/src/qra_recording_file.h"

#include <cstdlib>

#include "common/util/qra_log.h"
#include "svc_pvr.h"

RecordingFileInfo qra_read_recording_file(const std::string& strPath) {
    QRA_LOG_DEBUG(QRA_TAG_LOCAL, "Get pvr file info steat");
    pvr_file_info_s stInfo = {};
    if (svc_pvr_get_pvr_file_info(strPath.c_str(), &stInfo) != 0) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Get pvr file info failed.");
        return {};
    }
    QRA_LOG_DEBUG(QRA_TAG_LOCAL, "content_version [%d] ,incomplete_reason [%d]", stInfo.content_version,
                  stInfo.incomplete_reason);
    free(stInfo.channel_name);
    free(stInfo.channel_num);
    free(stInfo.synopsis);
    free(stInfo.genre);
    return {stInfo.content_version, stInfo.incomplete_reason};
}
