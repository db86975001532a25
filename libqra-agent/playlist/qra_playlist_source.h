#ifndef QRA_AGENT_PLAYLIST_QRA_PLAYLIST_SOURCE_H
#define QRA_AGENT_PLAYLIST_QRA_PLAYLIST_SOURCE_H

#include <atomic>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "common/util/qra_mutex.h"
#include "common/util/qra_thread.h"
#include "libqra-agent/source/qra_source_base.h"

class CQRAPlayListItem;

/**
 * The items of one playlist on a USB drive, as the playlist manager knows it: a drive that has not been
 * scanned has none.
 *
 * A request takes a snapshot of the playlist's items, on the source's own thread, "qra_source_playlist". The
 * items are shared with the playlist, so that the snapshot stays readable when the playlist is changed,
 * deleted, or goes with its drive. The playlist itself must not be changed between a request and its answer.
 *
 * Client's thread: everything but t_Process(). The snapshot is written by the source's thread and read by the
 * client's without a lock: the completion callback hands it over.
 *
 * Locks: m_CallbackMutex is held through the completion callback, and comes before the agent mutex, which a
 * callback takes. m_RegistrationMutex covers the registration, m_WorkMutex the queue and the handing over of
 * a snapshot; both are held across no call. Close() joins the thread with none of them held.
 *
 * A source must be closed before it is destroyed. Null arguments of GetItemCount() and a request without one
 * of its four texts end the process.
 */
class CQRAPlaylistSource : public IQRASourceBase, public CQRAThread {
public:
    CQRAPlaylistSource() = default;
    ~CQRAPlaylistSource() override;

    using IQRASourceBase::Open;
    bool Open() override;
    bool IsOpen() override { return m_bIsOpen; }
    bool Close() override QRA_EXCLUDES(m_CallbackMutex, m_WorkMutex);
    bool SetCallback(qra_source_complete_cb cb, void* pUserData) override QRA_EXCLUDES(m_RegistrationMutex);
    /// Without effect: a playlist transfers nothing.
    bool SetCallback(qra_source_transfer_cb cb, void* pUserData) override;
    /// Without effect: only Close() ends the callbacks.
    bool UNSetCallback() override;
    /// Takes path, content type, category and playlist name, all of them, and always accepts. The answer is
    /// QRA_EVENT_LIST_SUCCESS, QRA_EVENT_LIST_EMPTY for a playlist without items, or QRA_EVENT_LIST_FAILED
    /// where the manager knows no such playlist.
    bool Execute(qra_general_s* pParam) override QRA_EXCLUDES(m_WorkMutex);

    bool MoveToIndex(int nIndex) override;
    // Without effect.
    bool MoveToPrevious() override { return true; }
    bool MoveToNext() override { return true; }
    bool GetItemCount(int* pnCount) override;
    /// All items count as music, whatever they are.
    bool GetItemCountByType(qra_media_type_e eType, int* pnCount) override;

    // A number is given in the width that is asked for; a text as a number, or a number as a text, is false.
    // An empty text leaves the output as it was.
    bool GetValue(std::string strField, char** ppValue) override;
    bool GetValue(std::string strField, int* pValue) override;
    bool GetValue(std::string strField, unsigned long long* pValue) override;
    bool GetValue(std::string strField, long* pValue) override;
    bool GetValue(std::string strField, bool* pValue) override;
    /// True without a value: no field is a real number.
    bool GetValue(std::string strField, double* pValue) override;
    // True without effect: a playlist's items are changed through the playlist.
    bool SetValue(const char* szField, long nValue) override;
    bool SetValue(const char* szField, int nValue) override;
    bool SetValue(const char* szField, const char* szValue) override;

    bool GetDBIndex(char* szId, int* pnIndex) override;
    CQRAGroupInfo* GetGroupInfo() override;

protected:
    void t_Process() override QRA_EXCLUDES(m_WorkMutex);

private:
    struct Request {
        std::string strContentType;
        std::string strCategory;
        std::string strMountPath;
        std::string strPlayListName;
    };
    struct Snapshot {
        std::vector<std::shared_ptr<const CQRAPlayListItem>> items;
        std::unordered_map<std::string, int> positions;  ///< by media id; the first one of an id
    };

    void m_Process(const Request& request) QRA_EXCLUDES(m_CallbackMutex, m_WorkMutex);
    qra_event_e m_Read(const Request& request, Snapshot& snapshot);
    void m_NotifyComplete(qra_event_e eEvent) QRA_EXCLUDES(m_CallbackMutex, m_RegistrationMutex);
    const CQRAPlayListItem& m_GetCurrentItem() const;
    template <class T>
    bool m_GetNumber(const std::string& strField, T* pValue) const;

    std::atomic<bool> m_bIsOpen{false};
    std::atomic<bool> m_bRunning{false};
    CQRAGMutex m_CallbackMutex;
    CQRAGMutex m_RegistrationMutex;
    qra_source_complete_cb m_cbComplete QRA_GUARDED_BY(m_RegistrationMutex) = nullptr;
    void* m_pUserData QRA_GUARDED_BY(m_RegistrationMutex) = nullptr;
    CQRAGMutex m_WorkMutex;
    CQRAGCondition m_WorkCondition;
    int m_nWork QRA_GUARDED_BY(m_WorkMutex) = 0;
    Request m_Request QRA_GUARDED_BY(m_WorkMutex);
    int m_nCursor = 0;
    Snapshot m_Snapshot;
};

#endif
