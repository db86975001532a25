#ifndef QRA_AGENT_PLAYLIST_QRA_PLAYLIST_MANAGER_H
#define QRA_AGENT_PLAYLIST_QRA_PLAYLIST_MANAGER_H

#include <qra/qra_types.h>

#include <memory>
#include <string>

#include "common/util/qra_singleton.h"

class M3UPlaylist;

/**
 * The playlists on the USB drives, as the local agent asks for them. What scans a drive is not in this build,
 * so that every drive is one that has not been scanned. May be called from any thread.
 */
class CQRAPlaylistManager : public CQRASingleton<CQRAPlaylistManager> {
public:
    virtual ~CQRAPlaylistManager() = default;

    // Each gives QRA_ERROR_NOT_EXIST, and leaves the out value as it was, for a drive that has not been
    // scanned.

    /// Number of playlists on a drive.
    qra_error_code_e GetCount(const std::string& strMountPath, int* pnCount);
    /// The n-th playlist of a drive, by display name.
    qra_error_code_e GetPlayList(const std::string& strMountPath, int nIndex,
                                 std::shared_ptr<M3UPlaylist>* pPlayList);
    /// Position of a display name in the drive's order.
    qra_error_code_e GetDBIndex(const std::string& strMountPath, const std::string& strPlayListName,
                                int& nIndex);
};

#endif
