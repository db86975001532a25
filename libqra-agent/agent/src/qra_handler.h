#ifndef QRA_AGENT_AGENT_SRC_QRA_HANDLER_H
#define QRA_AGENT_AGENT_SRC_QRA_HANDLER_H

#include <qra/qra_device_check.h>
#include <qra/qra_folder_thumb.h>
#include <qra/qra_types.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>

#include "common/util/qra_handle_value.h"
#include "common/util/qra_mutex.h"

class CQRAContentPage;
class CQRAGroupInfo;
class CQRAItemBuilder;
class CQRALocalAgent;
class CQRAWebAgent;
class CResultPool;
class CSelectList;
class IQRAAgentBase;
class IQRAShareThread;
class IQRASourceBase;
class M3UPlaylist;
struct _stBackupParam;

/// Kind of a handle.
enum QRA_HANDLE_TYPE {
    QRA_HANDLE_TYPE_AGENT = 0,
    QRA_HANDLE_TYPE_SEND = 1,
    QRA_HANDLE_TYPE_DEVICE_CHECK = 2,
    QRA_HANDLE_TYPE_M3U = 3,
    QRA_HANDLE_TYPE_FOLDER_THUMB = 4,
    QRA_HANDLE_TYPE_NONE = 5
};

/// Answers an action of the content engine.
using on_act_complete_cb = on_detail_complete_cb;
/// A client's pending callback: its user data, and the one callback that the request has.
struct _stAppData {
    void* pUserData = nullptr;
    on_detail_complete_cb cbDetail = nullptr;
    on_act_complete_cb cbAct = nullptr;
    on_list_complete_cb cbList = nullptr;
    qra_share_cb cbSend = nullptr;
};

/// An object that the client holds across calls, known by its address; see CQRAHandlerMgr.
class CQRAHandleBase {
public:
    CQRAHandleBase() = default;
    virtual ~CQRAHandleBase() = default;
    CQRAHandleBase(const CQRAHandleBase&) = delete;
    CQRAHandleBase& operator=(const CQRAHandleBase&) = delete;

    QRA_HANDLE_TYPE GetHandleType() const { return m_HandleType; }
    uint32_t GetHandleId() const { return m_HandleId; }
    void SetHandleId(uint32_t nId) { m_HandleId = nId; }

    /// The handle's address as the registry knows it.
    qra_handle_value_t GetValue() const { return reinterpret_cast<qra_handle_value_t>(this); }

protected:
    explicit CQRAHandleBase(QRA_HANDLE_TYPE eType) : m_HandleType(eType) {}

private:
    QRA_HANDLE_TYPE m_HandleType = QRA_HANDLE_TYPE_NONE;
    /// Given by the content engine where its signals have to find the handle, else 0. A request on another
    /// thread takes it away when an engine that was started anew gives it out again.
    std::atomic<uint32_t> m_HandleId{0};
};

/**
 * Everything of one list request, from the request to the disconnect.
 *
 * The handle owns what its pointers point to, and its destructor releases it, the agent first and the source
 * last. Setting a pointer releases nothing: the object before has to be destroyed through its Destroy
 * operation.
 *
 * The accessors take no lock: the fields belong to the client's thread, and to the agent mutex where a
 * source's thread reads them. The pending callbacks have a mutex for each map, since the engine's signals
 * come on another thread; in the lock order these mutexes come after the agent mutex.
 */
class CQRAAgentHandle : public CQRAHandleBase {
public:
    CQRAAgentHandle() : CQRAHandleBase(QRA_HANDLE_TYPE_AGENT) {}
    ~CQRAAgentHandle() override;

    static CQRAAgentHandle* GetInstance(CQRAAgentHandle* pHandle) { return pHandle; }
    /// The handle's agent, if it is a local one, else null.
    static CQRALocalAgent* GetLocalAgent(CQRAAgentHandle* pHandle);
    /// The handle's agent, if it is one for the content engine, else null.
    static CQRAWebAgent* GetWebAgent(CQRAAgentHandle* pHandle);

    void SetSourceName(const std::string& strName) { m_strSourceName = strName; }
    std::string GetSourceName() const { return m_strSourceName; }
    void SetSortcategory(const std::string& strCategory) { m_strSortCategory = strCategory; }
    std::string GetSortcategory() const { return m_strSortCategory; }
    void SetMountPath(const std::string& strPath) { m_strMountPath = strPath; }
    std::string GetMountPath() const { return m_strMountPath; }
    void SetCurrentPageIndex(int nIndex) { m_nCurrentPageIndex = nIndex; }
    int GetCurrentPageIndex() const { return m_nCurrentPageIndex; }
    void SetWindowSize(int nSize) { m_nWindowSize = nSize; }
    int GetWindowSize() const { return m_nWindowSize; }
    void SetPrefetchNum(int nNum) { m_nPrefetchNum = nNum; }
    int GetPrefetchNum() const { return m_nPrefetchNum; }
    void SetRepeatDLNA(bool bRepeat) { m_bRepeatDLNA = bRepeat; }
    bool GetRepeatDLNA() const { return m_bRepeatDLNA; }
    void SetRepeatMSC(bool bRepeat) { m_bRepeatMSC = bRepeat; }
    bool GetRepeatMSC() const { return m_bRepeatMSC; }
    void SetNavigation(qra_navigation_e eNavigation) { m_eNavigation = eNavigation; }
    qra_navigation_e GetNavigation() const { return m_eNavigation; }
    void SetPageItemType(qra_page_item_type_e eType) { m_ePageItemType = eType; }
    qra_page_item_type_e GetPageItemType() const { return m_ePageItemType; }

    void SetSelectList(CSelectList* pSelectList) { m_pSelectList = pSelectList; }
    CSelectList* GetSelectList() const { return m_pSelectList; }
    void SetResultPool(CResultPool* pPool) { m_pResultPool = pPool; }
    CResultPool* GetResultPool() const { return m_pResultPool; }
    void SetContentPage(CQRAContentPage* pPage) { m_pContentPage = pPage; }
    CQRAContentPage* GetContentPage() const { return m_pContentPage; }
    void SetRequestParam(_stBackupParam* pParam) { m_pRequestParam = pParam; }
    _stBackupParam* GetRequestParam() const { return m_pRequestParam; }
    void SetAgentInstance(IQRAAgentBase* pAgent) { m_pAgentInstance = pAgent; }
    IQRAAgentBase* GetAgentInstance() const { return m_pAgentInstance; }
    void SetSource(IQRASourceBase* pSource) { m_pSource = pSource; }
    IQRASourceBase* GetSource() const { return m_pSource; }
    void SetGroupInfo(CQRAGroupInfo* pGroupInfo) { m_pGroupInfo = pGroupInfo; }
    CQRAGroupInfo* GetGroupInfo() const { return m_pGroupInfo; }
    void SetItemBuilder(CQRAItemBuilder* pBuilder) { m_pItemBuilder = pBuilder; }
    CQRAItemBuilder* GetItemBuilder() const { return m_pItemBuilder; }
    /// Takes `pParam` itself, made by new or qra_create_page_param(), if no page style is held; else copies
    /// it, and `pParam` stays the caller's.
    void SetPageParam(qra_page_style_s* pParam);
    qra_page_style_s* GetPageParam() const { return m_pPageParam; }

    void DestorySelectList();
    void DestroyResultPool();
    void DestroyContentPage();
    void DestroyRequestParam();
    void DestroyAgentInstance();
    /// Closes the source first if it is open.
    void DestroySource();
    void DestroyPageParam();
    void DestroyGroupInfo();
    void DestroyItemBuilder();

    // Pending callbacks. A push keeps a record that is there; a pop copies the record and leaves it there, so
    // that one request can be answered many times.
    void PushRequestListData(const std::string& strKey, const _stAppData& stData);
    void PushRequestDetailData(const std::string& strKey, const _stAppData& stData);
    void PushRequestActData(const std::string& strKey, const _stAppData& stData);
    bool PopRequestListData(const std::string& strKey, _stAppData& stData);
    bool PopRequestDetailData(const std::string& strKey, _stAppData& stData);
    bool PopRequestActData(const std::string& strKey, _stAppData& stData);
    void EraseRequestActData(const std::string& strKey);
    void EraseRequestDetailData(const std::string& strKey);
    void ClearRequestListData();
    void ClearRequestDetailData();
    void ClearRequestActData();

private:
    using AppDataMap = std::map<std::string, _stAppData>;

    std::string m_strSourceName;
    std::string m_strSortCategory;
    std::string m_strMountPath;
    int m_nCurrentPageIndex = 0;  ///< the cursor, a list index
    CSelectList* m_pSelectList = nullptr;
    CResultPool* m_pResultPool = nullptr;       ///< null for a source of this process
    CQRAContentPage* m_pContentPage = nullptr;  ///< null until a page style was set
    qra_navigation_e m_eNavigation = QRA_NAVIGATION_TYPE_ALL;
    int m_nPrefetchNum = 0;
    int m_nWindowSize = 0;
    AppDataMap m_stRequestListData QRA_GUARDED_BY(m_MutexList);
    AppDataMap m_stDetailData QRA_GUARDED_BY(m_MutexDetail);
    AppDataMap m_stActData QRA_GUARDED_BY(m_MutexAct);
    _stBackupParam* m_pRequestParam = nullptr;
    IQRAAgentBase* m_pAgentInstance = nullptr;
    IQRASourceBase* m_pSource = nullptr;
    CQRAGroupInfo* m_pGroupInfo = nullptr;
    qra_page_item_type_e m_ePageItemType = QRA_PG_ITEM_NONE;
    qra_page_style_s* m_pPageParam = nullptr;
    CQRAItemBuilder* m_pItemBuilder = nullptr;
    bool m_bRepeatDLNA = false;
    bool m_bRepeatMSC = false;
    CQRAMutex m_MutexDetail;
    CQRAMutex m_MutexAct;
    CQRAMutex m_MutexList;
};

/// A batch job; owns its thread.
class CQRASendHandle : public CQRAHandleBase {
public:
    CQRASendHandle() : CQRAHandleBase(QRA_HANDLE_TYPE_SEND) {}
    ~CQRASendHandle() override;

    static CQRASendHandle* GetInstance(CQRASendHandle* pHandle) { return pHandle; }

    void SetShareThread(IQRAShareThread* pThread) { m_pShareThread = pThread; }
    IQRAShareThread* GetShareThread() const { return m_pShareThread; }
    void SetUserData(void* pUserData) { m_pUserData = pUserData; }
    void* GetUserData() const { return m_pUserData; }
    void SetCallBack(qra_share_cb cb) { m_pCallBack = cb; }
    qra_share_cb GetCallBack() const { return m_pCallBack; }

private:
    IQRAShareThread* m_pShareThread = nullptr;
    void* m_pUserData = nullptr;
    qra_share_cb m_pCallBack = nullptr;
};

/// A one-shot scan of a device by the content engine.
class CQRADeviceCheckHandle : public CQRAHandleBase {
public:
    CQRADeviceCheckHandle() : CQRAHandleBase(QRA_HANDLE_TYPE_DEVICE_CHECK) {}

    static CQRADeviceCheckHandle* GetInstance(CQRADeviceCheckHandle* pHandle) { return pHandle; }

    void SetPath(const std::string& strPath) { m_strPath = strPath; }
    std::string GetPath() const { return m_strPath; }
    void SetDeviceId(const std::string& strDeviceId) { m_strDeviceId = strDeviceId; }
    std::string GetDeviceId() const { return m_strDeviceId; }
    void SetUserData(void* pUserData) { m_pUserData = pUserData; }
    void* GetUserData() const { return m_pUserData; }
    void SetCallBack(qra_device_check_cb cb) { m_pCallBack = cb; }
    qra_device_check_cb GetCallBack() const { return m_pCallBack; }

private:
    std::string m_strPath;
    std::string m_strDeviceId;
    void* m_pUserData = nullptr;
    qra_device_check_cb m_pCallBack = nullptr;
};

/// An open playlist, which other handles and the playlist manager may hold too.
class CQRAM3UHandle : public CQRAHandleBase {
public:
    CQRAM3UHandle() : CQRAHandleBase(QRA_HANDLE_TYPE_M3U) {}

    void SetM3U(std::shared_ptr<M3UPlaylist> pM3U) { m_pM3U = std::move(pM3U); }
    std::shared_ptr<M3UPlaylist> GetM3U() const { return m_pM3U; }

private:
    std::shared_ptr<M3UPlaylist> m_pM3U;
};

/**
 * A request for a folder's thumbnail, from RequestFolderThumbPath() to its one answer or its cancel.
 *
 * Lives in a shared pointer: one reference stands with the open requests as long as the registry knows the
 * handle, one with the job of the thumbnail source that names it, one with each call that works on it. The
 * last one that goes frees the handle.
 *
 * Threads: requests and cancels come on the clients' threads, the answer on the thumbnail source's or on the
 * one that the engine's signals come on. The two fields are written before a job knows the handle.
 */
class CQRAFolderThumbHandle : public CQRAHandleBase,
                              public std::enable_shared_from_this<CQRAFolderThumbHandle> {
public:
    CQRAFolderThumbHandle() : CQRAHandleBase(QRA_HANDLE_TYPE_FOLDER_THUMB) {}

    void SetUserData(void* pUserData) { m_pUserData = pUserData; }
    void* GetUserData() const { return m_pUserData; }
    void SetCallBack(qra_folder_thumb_cb cb) { m_cb = cb; }
    qra_folder_thumb_cb GetCallBack() const { return m_cb; }

    /// The open request with this address, or null.
    static std::shared_ptr<CQRAFolderThumbHandle> FindOpen(const CQRAFolderThumbHandle* pHandle);

    qra_error_code_e RequestFolderThumbPath(const char* pPath, const char* pContentType,
                                            const char* pExtension, int nRequestCount, qra_folder_thumb_cb cb,
                                            void* pUserData);
    qra_error_code_e CancelRequestFolderThumbPath(const char* pPath, const char* pContentType,
                                                  const char* pExtension, int nRequestCount);
    qra_error_code_e CancelAllRequestFolderThumbPath();

    /// The thumbnail source's callback: hands the answer to the client and ends the request.
    static bool cb_request_folder_thumb_path(void* pThis, char* pPath);

private:
    void* m_pUserData = nullptr;
    qra_folder_thumb_cb m_cb = nullptr;
};

#endif
