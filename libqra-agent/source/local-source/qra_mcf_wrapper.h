#ifndef QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_WRAPPER_H
#define QRA_LIBQRA_AGENT_SOURCE_LOCAL_SOURCE_QRA_MCF_WRAPPER_H

#include <qra/qra_types.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "common/util/qra_extensionlist.h"
#include "common/util/qra_handle_value.h"
#include "common/util/qra_mutex.h"
#include "common/util/qra_thread.h"
#include "libqra-agent/source/local-source/qra_filter_factory.h"
#include "libqra-agent/source/local-source/qra_filter_product.h"
#include "libqra-agent/source/local-source/qra_mcf_convert.h"
#include "libqra-agent/source/local-source/qra_media.h"

/// What a list is asked for with.
struct _SMCFParam {
    std::string strRootPath;
    std::string strContentType;
    std::string strCategory;
    std::string strKeyword;
    std::string strExtension;  ///< the client's extension lists as JSON; empty for the built-in ones
    bool bIsUHDDevice = false;
};

/// Kept with a scan; nothing calls it.
using mcf_scan_cb = bool (*)(qra_event_e eEvent, void* pUserData);
/// Takes a row of a list. The callback may keep the entry by moving it away, which spares a clone for each
/// row; the result is not looked at.
using mcf_media_cb = bool (*)(const std::string& strId, CMedia& media, void* pUserData);
/// Takes a group of a list, with its number of rows.
using mcf_group_cb = bool (*)(const std::string& strName, int nCount, void* pUserData);

/**
 * All that is asked of the platform's media database: one request's rows and groups, values of rows, and
 * single values by media id.
 *
 * One object serves one source, or one question. ConnectMCF() comes first and DisconnectMCF() last,
 * InitParam() before each request.
 *
 * Threads: the requests run on the source's thread and wait there for the scan of a folder that the database
 * does not know yet. StopRequest() comes from the thread that closes the source, while a request may be
 * running; after it this object starts no more scans. The answer of a scan comes on a thread of the platform,
 * also after this object has gone: it asks CQRAObjManager, where a wrapper stands from its first list to
 * StopRequest(). All else belongs to one thread at a time.
 *
 * Errors: whatever the platform refuses is logged with its number and becomes false. A row that cannot be
 * read is left out and never ends a list.
 */
class CQRAMCFWrapper {
public:
    CQRAMCFWrapper() = default;
    ~CQRAMCFWrapper();
    CQRAMCFWrapper(const CQRAMCFWrapper&) = delete;
    CQRAMCFWrapper& operator=(const CQRAMCFWrapper&) = delete;

    bool ConnectMCF();
    bool DisconnectMCF();
    /// Takes over a request. A storage that was found before is kept, whatever the path.
    bool InitParam(const _SMCFParam* pParam);
    /// Calls back for each row of the list, on this thread.
    bool RequestMCFMedia(mcf_scan_cb cbScan, mcf_media_cb cbMedia, void* pUserData);
    /// Calls back for each group of the list, on this thread. False for a category that has no groups.
    bool RequestMCFGroup(mcf_group_cb cbGroup, void* pUserData);
    /// Cancels the scan that a request waits for, which then fails. Not to be called from within a callback.
    void StopRequest() QRA_EXCLUDES(m_StopMutex);

    /// The id of the storage that the path lies on; the caller frees it.
    bool GetStorageId(char** ppStorageId);
    bool InsertToDB(const char* pPath);
    bool RemoveFromDB(const char* pMediaId);
    bool GetFieldValue(const CMedia& media, const std::string& strField, const mcf_out& out);
    bool SetFieldValue(const CMedia& media, const std::string& strField, const mcf_in& in);
    /// Reads a number of a media row outside any list.
    bool GetItemValueMcf(const char* pId, const char* pField, int* pValue);
    bool SetItemValueMcf(const char* pId, const char* pField, int nValue);
    /// What the thumbnail of the folder shows, as JSON which the caller frees; false if the folder has not
    /// been scanned.
    bool GetFolderThumbPath(int nRequestNum, char** ppThumbPath);
    /// The same for whoever has just scanned the folder: asks the database alone, and nothing of the engine.
    /// False if the folder is not in the database.
    bool GetScannedFolderThumbPath(int nRequestNum, std::string& strThumbPath);

private:
    struct FilterDestroy {
        void operator()(filter_h hFilter) const { media_filter_destroy(hFilter); }
    };
    using CFilter = std::unique_ptr<filter_s, FilterDestroy>;

    // What a row iteration hands to its callback.
    struct SMediaUserData {
        mcf_media_cb cb;
        void* pUserData;
    };
    struct SGroupUserData {
        mcf_group_cb cb;
        void* pUserData;
    };
    // What a scan hands to its callback. Outlives the wrapper until the scan's last answer, which releases
    // it.
    struct SScanUserData {
        mcf_scan_cb cb;
        void* pUserData;
        CQRAMCFWrapper* pThis;
    };

    // Storage and scan, in qra_mcf_wrapper_scan.cpp.
    bool m_GetStoragePath();
    bool m_GetStorageId();
    bool m_CheckScanStatus(bool bRecursive);
    bool m_ScanFolder(bool bRecursive);
    bool m_StartScan(bool bRecursive) QRA_EXCLUDES(m_StopMutex);
    void m_ScanAnswered(const SScanUserData* pScan, int nError);
    static bool cb_getStorageId(media_storage_h hStorage, void* pUserData);
    static void cb_getScanFolder(int nError, int nPhase, void* pUserData);

    // Lists and groups.
    bool m_CreateAndSetFilter(CFilter& filter, int nFilterType);
    bool m_RequestListOfSearchAll(ESearchType eSearchType, int nFilterType, SMediaUserData data);
    bool m_RequestListOfKeyword(SMediaUserData data);
    bool m_RequestListOfMSC(SMediaUserData data);
    bool m_RequestListOfDCM(SMediaUserData data);
    bool m_RequestListOfFolder(SMediaUserData data);
    bool m_RequestFolderList(SMediaUserData data);
    bool m_RequestUHDList(SMediaUserData data);
    bool m_RequestPVRList(SMediaUserData data);
    bool m_RequestMediaList(SMediaUserData data);
    bool m_GetFolderId();
    bool m_FindFolderCache();
    bool m_AddFolderCache();
    static bool cb_getFolderId(media_folder_h hFolder, void* pUserData);
    static bool cb_getFolderList(media_folder_h hFolder, void* pUserData);
    static bool cb_getMediaList(media_info_h hMedia, void* pUserData);
    static bool cb_getPVRList(media_pvr_h hPVR, void* pUserData);
    static bool cb_getUHDList(media_uhd_h hUHD, void* pUserData);
    static bool cb_getGroupInfo(const char* pName, int nCount, void* pUserData);

    // Folder thumbnails, in qra_mcf_wrapper_thumb.cpp.
    bool m_CheckFolderScanStatus();
    int m_GetFolderThumbFolderCount();
    int m_GetFolderThumbMediaCount();
    bool m_GetFolderThumbMediaList(int nRequestNum);
    std::string m_BuildFolderThumb(int nRequestNum);
    static bool cb_getFolderThumbMediaList(const std::string& strId, CMedia& media, void* pUserData);

    qra_handle_value_t m_GetAddress() const { return reinterpret_cast<qra_handle_value_t>(this); }

    bool bIsUHDDevice = false;
    CQRASemphore m_ScanSem;
    std::string m_strRoot;
    std::string m_strKeyword;
    std::string m_strContentType;
    std::string m_strCategory;
    std::string m_strStorageId;
    std::string m_strFolderId;
    std::string m_strStoragePath;
    ESearchType m_eSearchType = SEARCH_NONE;
    std::atomic<int> m_eScanStatus{0};
    CQRAExtensionList m_ExtensionList;
    mcf_scan_cb m_cbScan = nullptr;
    void* m_pScanUserData = nullptr;
    /// The scan that is being waited for. A wrapper made where an old one lay is not taken for it.
    std::atomic<const SScanUserData*> m_pScan{nullptr};
    std::unique_ptr<CQRAFilterFactory> m_pFilterFactory;
    std::vector<CMedia> m_FolderThumbMediaList;
    /// Orders the start of a scan and its end by StopRequest().
    CQRAGMutex m_StopMutex;
    bool m_bStopped QRA_GUARDED_BY(m_StopMutex) = false;
};

#endif
