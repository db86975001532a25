#include "libqra-agent/agent/src/qra_recording_file.h"

#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_pvr_info.h"

RecordingFileInfo qra_read_recording_file(const std::string& strPath) {
    QRA_LOG_DEBUG(QRA_TAG_LOCAL, "Get pvr file info steat");
    CQRAPvrInfo info;
    if (!info.Read(strPath)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "Get pvr file info failed.");
        return {};
    }
    QRA_LOG_DEBUG(QRA_TAG_LOCAL, "content_version [%d] ,incomplete_reason [%d]", info->content_version,
                  info->incomplete_reason);
    return {info->content_version, info->incomplete_reason};
}
