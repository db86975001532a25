#ifndef QRA_AGENT_PLAYLIST_QRA_PLAYLIST_MANAGER_H
#define QRA_AGENT_PLAYLIST_QRA_PLAYLIST_MANAGER_H

#include <qra/qra_types.h>

#include <map>
#include <memory>
#include <string>

#include "common/util/qra_mutex.h"
#include "common/util/qra_singleton.h"
#include "usb_device.h"

class M3UPlaylist;

/**
 * The playlists on the USB drives: per mounted drive all playlist files of its top directory, by their
 * display names. The only way to make, delete or rename a playlist there.
 *
 * A drive is scanned once, by Create(), and forgotten when it is unmounted; what other programs write to it
 * meanwhile is not seen. Mount paths are compared byte for byte. The order of a drive's playlists is that of
 * their display names' bytes, so that an index shifts with every playlist that is added, deleted or renamed.
 * Of two files with one display name only the first in the directory's order is known.
 *
 * May be called from any thread. The one mutex is held through the whole of each operation, also through a
 * scan, and no other lock of the agent is taken under it. The playlists themselves have no lock: what
 * GetPlayList() gives is shared with whoever else has asked for it.
 */
class CQRAPlaylistManager : public CQRASingleton<CQRAPlaylistManager> {
public:
    CQRAPlaylistManager();
    virtual ~CQRAPlaylistManager();
    CQRAPlaylistManager(const CQRAPlaylistManager&) = delete;
    CQRAPlaylistManager& operator=(const CQRAPlaylistManager&) = delete;

    /// Scans a drive that has not been scanned. QRA_ERROR_INTERNAL if its directory cannot be read.
    qra_error_code_e Create(const std::string& strMountPath) QRA_EXCLUDES(m_Mutex);
    /// Forgets a drive; its files stay. QRA_ERROR_NOT_EXIST for one that has not been scanned.
    qra_error_code_e Destroy(const std::string& strMountPath) QRA_EXCLUDES(m_Mutex);

    // QRA_ERROR_NOT_EXIST for a drive that has not been scanned or a name that it does not have, and
    // QRA_ERROR_INVALID_PARAM for an index out of range. A failure leaves the out value as it was.

    qra_error_code_e Exist(const std::string& strMountPath, const std::string& strPlayListName)
        QRA_EXCLUDES(m_Mutex);
    /// Number of playlists on a drive.
    qra_error_code_e GetCount(const std::string& strMountPath, int* pnCount) QRA_EXCLUDES(m_Mutex);
    /// The n-th playlist of a drive, by display name.
    qra_error_code_e GetPlayList(const std::string& strMountPath, int nIndex,
                                 std::shared_ptr<M3UPlaylist>* pPlayList) QRA_EXCLUDES(m_Mutex);
    qra_error_code_e GetPlayList(const std::string& strMountPath, const std::string& strPlayListName,
                                 std::shared_ptr<M3UPlaylist>* pPlayList) QRA_EXCLUDES(m_Mutex);
    /// Position of a display name in the drive's order.
    qra_error_code_e GetDBIndex(const std::string& strMountPath, const std::string& strPlayListName,
                                int& nIndex) QRA_EXCLUDES(m_Mutex);

    /// Makes a playlist and its file. QRA_ERROR_ALREADY_EXIST for a name in use, QRA_ERROR_PLAYLIST_MAX for a
    /// drive that has kMaxPlayLists, QRA_ERROR_CREATE_FAILED. A drive that has not been scanned ends the
    /// process.
    qra_error_code_e Add(const std::string& strMountPath, const std::string& strPlayListName,
                         int nMaxItemCount) QRA_EXCLUDES(m_Mutex);
    /// As Add(), but QRA_ERROR_NOT_EXIST for a drive that has not been scanned: it may have been pulled
    /// since.
    qra_error_code_e AddIfScanned(const std::string& strMountPath, const std::string& strPlayListName,
                                  int nMaxItemCount) QRA_EXCLUDES(m_Mutex);
    /// Removes a playlist and its file; QRA_ERROR_INTERNAL if the file cannot be removed. Who holds the
    /// playlist keeps an object without a file.
    qra_error_code_e Delete(const std::string& strMountPath, int nIndex) QRA_EXCLUDES(m_Mutex);
    qra_error_code_e Delete(const std::string& strMountPath, const std::string& strPlayListName)
        QRA_EXCLUDES(m_Mutex);
    /// Gives a playlist another display name. QRA_ERROR_ALREADY_EXIST for a name in use, be it its own;
    /// QRA_ERROR_INTERNAL if the file cannot be written.
    qra_error_code_e Rename(const std::string& strMountPath, const std::string& strOldName,
                            const std::string& strNewName) QRA_EXCLUDES(m_Mutex);

    /// The most playlists of a drive; a drive that brings more keeps them all.
    static constexpr size_t kMaxPlayLists = 5;

private:
    using PlayLists = std::map<std::string, std::shared_ptr<M3UPlaylist>>;

    /// On the thread of the USB service. Frees the device.
    static void m_DealUsbEvent(usb_device_s* pDevice, char* pAction, void* pUser);

    static bool m_Scan(const std::string& strMountPath, PlayLists& playLists);
    bool m_CheckScaned(const std::string& strMountPath) const QRA_REQUIRES(m_Mutex);
    bool m_CheckExist(const std::string& strMountPath, const std::string& strPlayListName) const
        QRA_REQUIRES(m_Mutex);
    bool m_CheckCount(const std::string& strMountPath) const QRA_REQUIRES(m_Mutex);
    qra_error_code_e m_FindByIndex(const std::string& strMountPath, int nIndex, PlayLists::iterator& it)
        QRA_REQUIRES(m_Mutex);
    qra_error_code_e m_Add(const std::string& strMountPath, const std::string& strPlayListName,
                           int nMaxItemCount) QRA_REQUIRES(m_Mutex);
    qra_error_code_e m_Delete(PlayLists& playLists, PlayLists::iterator it) QRA_REQUIRES(m_Mutex);
    void m_AddPlayList(const std::string& strMountPath, PlayLists playLists) QRA_REQUIRES(m_Mutex);
    void m_DelPlayList(const std::string& strMountPath) QRA_REQUIRES(m_Mutex);

    CQRAMutex m_Mutex;
    /// By mount path: every drive that was scanned, also one without a playlist.
    std::map<std::string, PlayLists> m_MapAllDevicePlayLists QRA_GUARDED_BY(m_Mutex);
};

#endif
