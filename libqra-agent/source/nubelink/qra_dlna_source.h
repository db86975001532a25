#ifndef QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_SOURCE_H
#define QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_SOURCE_H

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/util/qra_extensionlist.h"
#include "common/util/qra_mutex.h"
#include "common/util/qra_thread.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "libqra-agent/source/nubelink/qra_dlna_item.h"
#include "libqra-agent/source/qra_source_base.h"

class CQRADLNAWrapper;

/**
 * One media server of the home network.
 *
 * A request fetches the whole list into memory, in steps on the source's own thread, "qra-source-dlna"; the
 * cursor then walks it. Folders come first, then everything in the server's order. Items keep the records
 * that the server sent: a value read asks nobody.
 *
 * The client's thread makes requests, walks and reads. The service's threads deliver items and groups while
 * the source's thread waits for them in the wrapper, and tell of transfers.
 *
 * A request that comes while an earlier one is under way supersedes it: the earlier one is cancelled and not
 * completed, unless its completion callback has begun; the new one begins when it has ended.
 *
 * Locks: m_CallbackMutex is held through the completion callback, and comes before the agent mutex, which a
 * callback takes. m_RegistrationMutex covers the callbacks' registration and is held across no call, so that
 * SetCallback() waits for nobody. m_WorkMutex orders Execute(), Close() and the ends of requests; it comes
 * before the wrapper's locks. m_ListMutex covers what a request gathers; it comes after the wrapper's locks
 * and is held across no call.
 *
 * A source must be closed before it is destroyed. The type counters go on counting from request to request.
 */
class CQRADLNASource : public IQRASourceBase, public CQRAThread {
public:
    CQRADLNASource();
    ~CQRADLNASource() override;

    /// Without effect: a server is opened by its id. True.
    bool Open() override { return true; }
    /// Opens a server by its device id. True if the source is open already, whatever the id.
    bool Open(char* szDeviceId) override;
    bool IsOpen() override { return m_bIsOpen; }
    /// Cancels a request that is under way, without completing it, and stops all transfers. Waits for
    /// callbacks that are running. False, with the source still open, if the request cannot be cancelled; it
    /// may be called again then.
    bool Close() override QRA_EXCLUDES(m_CallbackMutex, m_RegistrationMutex, m_WorkMutex);
    bool SetCallback(qra_source_complete_cb cb, void* pUserData) override QRA_EXCLUDES(m_RegistrationMutex);
    bool SetCallback(qra_source_transfer_cb cb, void* pUserData) override QRA_EXCLUDES(m_RegistrationMutex);
    bool UNSetCallback() override QRA_EXCLUDES(m_CallbackMutex, m_RegistrationMutex);
    /// Takes path (the device id), folder id, content type and category; a search takes the keyword too. A
    /// folder id other than "/" lists that folder; "/" lists the whole server in the order of the category.
    bool Execute(qra_general_s* pParam) override QRA_EXCLUDES(m_WorkMutex);

    bool MoveToIndex(int nIndex) override QRA_EXCLUDES(m_ListMutex);
    bool MoveToPrevious() override;
    /// True one past the last item too.
    bool MoveToNext() override QRA_EXCLUDES(m_ListMutex);
    bool GetItemCount(int* pnCount) override QRA_EXCLUDES(m_ListMutex);
    bool GetItemCountByType(qra_media_type_e eType, int* pnCount) override QRA_EXCLUDES(m_ListMutex);

    bool GetValue(std::string strField, char** ppValue) override;
    bool GetValue(std::string strField, int* pValue) override;
    bool GetValue(std::string strField, unsigned long long* pValue) override;
    // True without a value.
    bool GetValue(std::string strField, long* pValue) override;
    bool GetValue(std::string strField, bool* pValue) override;
    bool GetValue(std::string strField, double* pValue) override;
    /// "PLAYED_POSITION", in seconds, alone: keeps the position at which the item at the cursor was left.
    bool SetValue(const char* szField, int nValue) override;
    // True without effect.
    bool SetValue(const char* szField, long nValue) override;
    bool SetValue(const char* szField, const char* szValue) override;
    template <class First, class Second, class... More>
    bool SetValue(const char*, First, Second, More...) {
        return true;
    }

    bool GetDBIndex(char* szId, int* pnIndex) override QRA_EXCLUDES(m_ListMutex);
    CQRAGroupInfo* GetGroupInfo() override QRA_EXCLUDES(m_ListMutex);
    bool GetBookMark(bool (*cb)(void*, int), void* pUserData) override;
    int GetFolderCount() override QRA_EXCLUDES(m_ListMutex);
    /// By the group's id. An unknown group leaves the output as it was, and is true.
    bool GetItemCountOfGroup(char* szGroup, int* pnCount) override QRA_EXCLUDES(m_ListMutex);
    // True without effect.
    bool IndexSearch(char*, int*, int*) override { return true; }
    bool GetBrowseIndex(int, char*, int*) override { return true; }
    bool UpLoad(char*, char*, char*) override { return true; }

    using IQRASourceBase::Download;
    /// Fetches `szUri`, of the content type `szMimeType`, to a file. `szRequestId` has room for
    /// DLNA_REQUEST_ID_SIZE bytes and receives the transfer's id. The transfer callback tells how it goes.
    bool Download(char* szUri, char* szMimeType, char* szDstPath, char* szRequestId) override;
    /// Sends a file; see CQRADLNAWrapper::QraNblUpLoad().
    bool UpLoad(char* szSrc, char* szRequestId);
    using IQRASourceBase::Stop;
    /// Stops a download (1) or an upload (0): the service's code, or -1.
    int Stop(char* szRequestId, int nKind);

protected:
    void t_Process() override QRA_EXCLUDES(m_WorkMutex);

private:
    /// A request's texts; what its record lacks is not there.
    struct Request {
        std::string strDeviceId;
        std::string strFolderId;
        std::string strContentType;
        std::string strSortCategory;
        std::optional<std::string> keyword;
        std::string strExtension;
    };
    struct FileType {
        int nItemType;
        std::vector<std::string> extensions;
    };
    /// Shared by the list and its group. A record never changes once it is there.
    using Item = std::shared_ptr<const _stDLNAMediaItem>;
    enum EStep { STEP_END, STEP_SEARCH, STEP_CHILD_ITEMS, STEP_ALL_ITEMS, STEP_GROUPS, STEP_FEATURES };

    static void cb_GetMediaItem(const _stDLNAMediaItem& item, void* pThis);
    static void cb_GetGroupItem(const _stDLNAGroupItem& group, void* pThis);
    static int cb_DLNASend(int nCode, char* szId, void* pThis, double dDownloadTotal, double dDownloadNow,
                           double dUploadTotal, double dUploadNow);

    static bool m_ReadRequest(const qra_general_s* pParam, Request& request);
    static bool m_IsValid(const Request& request);
    static std::string m_GetFolderID(const std::string& strContentType, const std::string& strCategory);
    bool m_InitExcuteParam(const Request& request) QRA_EXCLUDES(m_ListMutex);
    bool m_CheckReused(const Request& request) QRA_EXCLUDES(m_ListMutex);
    static bool m_FindFirstStep(const Request& request, EStep& eStep, std::string& strFolderId);
    void m_PrepareExtensions(const std::string& strExtension);

    bool m_BeginProcess() QRA_EXCLUDES(m_WorkMutex);
    bool m_Process() QRA_EXCLUDES(m_ListMutex);
    bool m_RequestList();
    void m_EndProcess(bool bCompleted) QRA_EXCLUDES(m_WorkMutex);
    void m_GetFeatureList();
    void m_GetGroupList() QRA_EXCLUDES(m_ListMutex);
    void m_GetNextGroupLevel() QRA_EXCLUDES(m_ListMutex);
    void m_GetAllItemList() QRA_EXCLUDES(m_ListMutex);
    void m_GetChildItemList() QRA_EXCLUDES(m_ListMutex);
    void m_GetDLNASearchList() QRA_EXCLUDES(m_ListMutex);
    void m_ChangeStep();
    bool m_IsStopped() const { return m_bCancel || m_bSuperseded || m_nEvent != 0; }
    void m_CompleteCb(int nEvent) QRA_EXCLUDES(m_CallbackMutex, m_RegistrationMutex);

    void m_AddItem(const _stDLNAMediaItem& item) QRA_EXCLUDES(m_ListMutex);
    void m_AddGroup(const _stDLNAGroupItem& group) QRA_EXCLUDES(m_ListMutex);
    bool m_GetFileType(const std::string& strExtension, int& nType) const;
    int* m_GetCounter(int nItemType) QRA_REQUIRES(m_ListMutex);
    std::vector<_stDLNAGroupItem> m_TakeGroups() QRA_EXCLUDES(m_ListMutex);
    void m_UpdateVector() QRA_EXCLUDES(m_ListMutex);
    void m_ResetGroupInfo() QRA_EXCLUDES(m_ListMutex);
    void m_RebuildGroupInfo() QRA_REQUIRES(m_ListMutex);
    static bool m_ComesAfter(const Item& left, const Item& right);
    Item m_GetCurrentItem() QRA_EXCLUDES(m_ListMutex);

    CQRAGMutex m_CallbackMutex;
    CQRAGMutex m_RegistrationMutex;
    qra_source_complete_cb m_cbComplete QRA_GUARDED_BY(m_RegistrationMutex) = nullptr;
    void* m_pCompleteUserData QRA_GUARDED_BY(m_RegistrationMutex) = nullptr;
    qra_source_transfer_cb m_cbSend QRA_GUARDED_BY(m_RegistrationMutex) = nullptr;
    void* m_pSendUserData QRA_GUARDED_BY(m_RegistrationMutex) = nullptr;

    // The request: written by Execute() while the source's thread is idle, else by that thread.
    std::string m_strDeviceId;
    std::string m_strFolderId;
    std::string m_strSortCategory;
    std::string m_strContentType;
    std::string m_strKeyword;
    bool m_bReused = false;
    std::atomic<int> m_nEvent{0};  ///< the outcome
    std::atomic<int> m_nStep{STEP_END};
    CQRAExtensionList m_ExtensionList;
    std::vector<FileType> m_FileTypes;  ///< of m_ExtensionList, what the content type shows

    CQRAGMutex m_WorkMutex;
    std::atomic<bool> m_bIsOpen{false};
    std::atomic<bool> m_bCancel{false};      ///< the request that runs is being closed
    std::atomic<bool> m_bSuperseded{false};  ///< the request that runs has given way to m_Pending
    bool m_bRunning QRA_GUARDED_BY(m_WorkMutex) = false;  ///< the thread is inside a step
    bool m_bClosing QRA_GUARDED_BY(m_WorkMutex) = false;
    bool m_bActive QRA_GUARDED_BY(m_WorkMutex) = false;  ///< a request was accepted and has not ended
    std::optional<Request> m_Pending QRA_GUARDED_BY(m_WorkMutex);
    CQRASemphore m_StepSemaphore;
    CQRASemphore m_CloseSemaphore;
    std::unique_ptr<CQRADLNAWrapper> m_pWrapper;

    CQRAGMutex m_ListMutex;
    CQRAGroupInfo m_GroupInfo QRA_GUARDED_BY(m_ListMutex);
    std::map<std::string, std::vector<Item>> m_mapGroupItems QRA_GUARDED_BY(m_ListMutex);
    std::vector<Item> m_vHeap QRA_GUARDED_BY(m_ListMutex);
    int m_nImageCount QRA_GUARDED_BY(m_ListMutex) = 0;
    int m_nVideoCount QRA_GUARDED_BY(m_ListMutex) = 0;
    int m_nMusicCount QRA_GUARDED_BY(m_ListMutex) = 0;
    int m_nFolderCount QRA_GUARDED_BY(m_ListMutex) = 0;
    std::vector<Item> m_vItems QRA_GUARDED_BY(m_ListMutex);
    std::vector<_stDLNAGroupItem> m_vGroups QRA_GUARDED_BY(m_ListMutex);

    // The cursor: the client's, but for the thread's clearing m_bIndexSet when a request begins.
    std::atomic<int> m_nIndex{0};
    std::atomic<bool> m_bIndexSet{false};
};

#endif
