#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_ROW_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_ROW_H

#include <string>

#include "libqra-agent/source/local-source/qra_media.h"

/**
 * Turns a row of the database into a list entry, which holds a clone of the row's handle, and gives its id.
 *
 * A row that cannot be read is logged and false, and is to be skipped. No state.
 */
class CQRAMCFRow {
public:
    static bool FromFolder(media_folder_h hFolder, std::string& strId, CMedia& media);
    /// Recordings, UHD titles and SCSA packages among the media rows become entries of their own kind.
    static bool FromMedia(media_info_h hMedia, std::string& strId, CMedia& media);
    static bool FromPVR(media_pvr_h hPVR, std::string& strId, CMedia& media);
    static bool FromUHD(media_uhd_h hUHD, std::string& strId, CMedia& media);
};

#endif
