#ifndef QRA_AGENT_SOURCE_PTP_QRA_PTP_SOURCE_H
#define QRA_AGENT_SOURCE_PTP_QRA_PTP_SOURCE_H

#include <atomic>
#include <string>
#include <vector>

#include "common/util/qra_extensionlist.h"
#include "common/util/qra_mutex.h"
#include "common/util/qra_thread.h"
#include "libqra-agent/source/ptp/qra_ptp_item.h"
#include "libqra-agent/source/qra_source_base.h"

template <class Value>
struct _stPTPField;

/**
 * What is on a camera or phone: the folders and media of one folder, for the category
 * "CATEGORY-FOLDER-TITLE", or for any other one all pictures of its first storage.
 *
 * A request runs on the source's own thread, "PTP-SOURCE: PTPSourceThread", through CQRAPTPManage, which lets
 * one walk of all sources go at a time. Close() waits for a walk that is under way; once the camera is pulled
 * out each call of the walk fails at once.
 *
 * Client's thread: everything but t_Process(). The cursor, m_nIndex, and the extension list belong to it.
 *
 * Locks: m_CallbackMutex is held through the completion callback and comes before the agent mutex, which a
 * callback takes. m_RegistrationMutex covers what SetCallback() stores, so that callback and user data come
 * as a pair, and is held across no call. UNSetCallback() takes neither and does not wait for a callback that
 * is running; it clears the callback before the user data, and the thread reads them the other way round.
 * m_WorkMutex covers the request and the list; the manager's locks may be held when it is taken.
 *
 * A source must be closed before it is destroyed, also after an Open() that failed to make its thread. A null
 * request ends the process. Every false comes with a log line that tells why.
 */
class CQRAPTPSource : public IQRASourceBase, public CQRAThread {
public:
    CQRAPTPSource() = default;
    ~CQRAPTPSource() override;

    using IQRASourceBase::Open;
    bool Open() override;
    bool IsOpen() override { return m_bIsOpen; }
    bool Close() override QRA_EXCLUDES(m_CallbackMutex, m_RegistrationMutex);
    bool SetCallback(qra_source_complete_cb cb, void* pUserData) override QRA_EXCLUDES(m_RegistrationMutex);
    /// Without effect: nothing is transferred.
    bool SetCallback(qra_source_transfer_cb cb, void* pUserData) override;
    bool UNSetCallback() override;
    /// The answer is QRA_EVENT_LIST_SUCCESS, also for a folder without media, or QRA_EVENT_LIST_FAILED.
    bool Execute(qra_general_s* pParam) override QRA_EXCLUDES(m_WorkMutex);

    // A move that fails leaves the cursor where it is; so does a request, which may leave it behind the list.
    bool MoveToIndex(int nIndex) override QRA_EXCLUDES(m_WorkMutex);
    bool MoveToPrevious() override;
    bool MoveToNext() override QRA_EXCLUDES(m_WorkMutex);
    bool GetItemCount(int* pnCount) override QRA_EXCLUDES(m_WorkMutex);
    /// All items count as pictures, whatever they are.
    bool GetItemCountByType(qra_media_type_e eType, int* pnCount) override QRA_EXCLUDES(m_WorkMutex);

    // A field has one type; asked for as another one it is not known. An empty text leaves the output as it
    // was.
    bool GetValue(std::string strField, char** ppValue) override;
    bool GetValue(std::string strField, int* pValue) override;
    bool GetValue(std::string strField, unsigned long long* pValue) override;
    bool GetValue(std::string strField, long* pValue) override;
    bool GetValue(std::string strField, bool* pValue) override;
    bool GetValue(std::string strField, double* pValue) override;
    // False: nothing on a camera is changed.
    bool SetValue(const char* szField, long nValue) override;
    bool SetValue(const char* szField, int nValue) override;
    bool SetValue(const char* szField, const char* szValue) override;

    bool GetDBIndex(char* szId, int* pnIndex) override QRA_EXCLUDES(m_WorkMutex);
    /// One group, "PTP", over the whole list.
    CQRAGroupInfo* GetGroupInfo() override QRA_EXCLUDES(m_WorkMutex);
    /// Folders of all requests together that this source has answered.
    int GetFolderCount() override { return m_nFolderCount; }

protected:
    void t_Process() override QRA_EXCLUDES(m_WorkMutex);

private:
    static bool MediaCallBackForPTP(_stPtpContentItem& item, void* pUserData);

    void m_ClearVector() QRA_EXCLUDES(m_WorkMutex);
    bool m_TakeParam(const qra_general_s& param) QRA_EXCLUDES(m_WorkMutex);
    void m_Process() QRA_EXCLUDES(m_CallbackMutex, m_WorkMutex);
    bool m_RequestOnFolderViewForPTP(const _stPTPParam& param);
    bool m_RequestOnDCMViewForPTP(const _stPTPParam& param);
    void m_NotifyComplete(qra_event_e eEvent) QRA_EXCLUDES(m_CallbackMutex, m_RegistrationMutex);
    bool m_IsReadable(const void* pValue) const QRA_REQUIRES(m_WorkMutex);
    template <class Value, size_t nCount>
    bool m_GetField(const _stPTPField<Value> (&fields)[nCount], const std::string& strField, Value* pValue)
        QRA_EXCLUDES(m_WorkMutex);
    bool m_GetMediaType(int* pValue) QRA_EXCLUDES(m_WorkMutex);
    bool m_GetFileType(const std::string& strFormat, bool bIs360, qra_media_type_e& eType);
    bool m_CompareExtension(const char* szContentType, const std::string& strExtension);

    CQRASemphore m_Sem;
    std::atomic<bool> m_bIsOpen{false};
    std::atomic<bool> m_bIsExsit{false};  ///< as long as the thread is wanted
    CQRAGMutex m_CallbackMutex;
    CQRAGMutex m_RegistrationMutex;
    std::atomic<qra_source_complete_cb> m_cbComplete{nullptr};
    std::atomic<void*> m_pUserData{nullptr};
    CQRAGMutex m_WorkMutex;
    std::vector<_stPtpContentItem> m_vItems QRA_GUARDED_BY(m_WorkMutex);
    _stPTPParam m_Param QRA_GUARDED_BY(m_WorkMutex);
    int m_nIndex = 0;
    std::atomic<int> m_nFolderCount{0};
    CQRAExtensionList m_ExtensionList;
};

#endif
