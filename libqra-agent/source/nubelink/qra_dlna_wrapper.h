#ifndef QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_WRAPPER_H
#define QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_WRAPPER_H

#include <qra/qra_types.h>

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <string>

#include "common/util/qra_mutex.h"
#include "common/util/qra_thread.h"
#include "libqra-agent/source/nubelink/qra_dlna_item.h"
#include "libqra-agent/source/nubelink/qra_dlna_mime.h"

/// One list request, as the wrapper needs it.
struct _stDlnaParam {
    std::string strDeviceId;
    std::string strFolderId;
    void* pServiceProvider = nullptr;
    std::string strContentType;
    std::string strSortCategory;
    std::string strKeyword;
    void* pUserData = nullptr;  ///< for the media and group callbacks
};

/// What comes of a request: 0, 1 for a failure, or the event of an item that is gone.
enum {
    DLNA_ERROR_NONE = 0,
    DLNA_ERROR_FAILED = 1,
    DLNA_ERROR_ITEM_NOT_EXIST = QRA_EVENT_DLNA_ITEM_NOT_EXIST
};

/// The codes of a transfer callback; the first two are what starting one answers with, too.
enum { DLNA_TRANSFER_FINISHED = 0, DLNA_TRANSFER_FAILED = 2, DLNA_TRANSFER_PROGRESS = 20 };

/// Room for a transfer's id with its zero byte.
constexpr int DLNA_REQUEST_ID_SIZE = 40;

/**
 * Everything that touches one DLNA server: its lists, the values of its items, bookmarks and transfers.
 *
 * The worker of the source that owns the wrapper calls the list operations, one after the other; each waits
 * until the server has answered or CancelAsync() is called. Answers come on the service's threads. Values,
 * bookmarks and transfers belong to the client's thread. FailProcess() and CancelAsync() may be called from
 * any. The media and group callbacks run on the service's threads with the request mutex held; bookmark and
 * transfer callbacks without a lock, so that they may stop a transfer or ask for another bookmark.
 *
 * The service knows a request by a number (see CQRADlnaCallTable): an answer that comes late finds nothing.
 * The destructor drops all requests, stops the transfers, and waits for callbacks that run on other threads.
 *
 * Locks: m_CancelMutex, then m_RequestMutex, then whatever the media and group callbacks take. The service
 * never answers from inside a call, so that the request mutex is held from before a request until it stands
 * in its map: no answer comes before that. Cancels are made without it.
 */
class CQRADLNAWrapper {
public:
    using media_cb = void (*)(const _stDLNAMediaItem& item, void* pUserData);
    using group_cb = void (*)(const _stDLNAGroupItem& group, void* pUserData);
    using bookmark_cb = bool (*)(void* pUserData, int nBookMark);
    /// Totals and bytes so far, each a little above the true number, so that it can be divided by. Of the
    /// direction that a transfer does not have, 0.
    using transfer_cb = int (*)(int nCode, char* szRequestId, void* pUserData, double dDownloadTotal,
                                double dDownloadNow, double dUploadTotal, double dUploadNow);

    CQRADLNAWrapper();
    ~CQRADLNAWrapper();
    CQRADLNAWrapper(const CQRADLNAWrapper&) = delete;
    CQRADLNAWrapper& operator=(const CQRADLNAWrapper&) = delete;

    /// Finds the server. Neither argument may be null.
    bool InitProvider(void* pServiceProvider, const char* szDeviceId);
    /// Takes a request's texts; what an earlier one left behind is gone.
    bool InitParam(const _stDlnaParam* pParam) QRA_EXCLUDES(m_RequestMutex);

    /// Asks whether the server sorts its content in the folder of the request.
    int GetFeatureList() QRA_EXCLUDES(m_RequestMutex);
    /// The groups below the folder of the request; 200 at most.
    int GetGroupLevel1(group_cb cb) QRA_EXCLUDES(m_RequestMutex);
    /// The groups below a group; 200 at most.
    int GetGroupLevel2(const _stDLNAGroupItem& group, group_cb cb) QRA_EXCLUDES(m_RequestMutex);
    /// What lies in a group, or in the folder of the request for a group without an item. Comes in any order.
    int GetItemList(const _stDLNAGroupItem& group, media_cb cbMedia, group_cb cbGroup)
        QRA_EXCLUDES(m_RequestMutex);
    /// All pictures, songs and videos of the server whose title holds the keyword.
    bool SearchByKeyword(media_cb cb) QRA_EXCLUDES(m_RequestMutex);

    /// Cancels the open requests of a list, and lets its waiting worker go. False if the service refuses.
    bool CancelAsync() QRA_EXCLUDES(m_CancelMutex, m_RequestMutex);
    /// Cancels the open requests of a list.
    bool FailProcess() QRA_EXCLUDES(m_CancelMutex, m_RequestMutex);

    /// How many levels of groups a category has.
    static int GetGrouplevel(const std::string& strCategory);

    bool GetValue(const _stDLNAMediaItem& item, const std::string& strField, char** ppValue)
        QRA_EXCLUDES(m_RequestMutex);
    bool GetValue(const _stDLNAMediaItem& item, const std::string& strField, int* pValue)
        QRA_EXCLUDES(m_RequestMutex);
    bool GetValue(const _stDLNAMediaItem& item, const std::string& strField, unsigned long long* pValue);

    /// The position at which an item was left, in seconds, comes by the callback; 0 for an item that is gone.
    bool QraNblGetBookmark(const char* szContentId, bookmark_cb cb, void* pUserData)
        QRA_EXCLUDES(m_RequestMutex);
    bool QraNblSetBookmark(const CQRADlnaItem& item, int nSeconds);

    /// Fetches a file. `szRequestId` has room for DLNA_REQUEST_ID_SIZE bytes and receives the transfer's id.
    int QraNblDownLoad(const char* szUri, const char* szMimeType, const char* szDstPath, transfer_cb cb,
                       void* pUserData, char* szRequestId) QRA_EXCLUDES(m_RequestMutex);
    /// Sends a file: `szSrc` is its path, or a JSON object with "fifo_name", a FIFO that the content comes
    /// through, and "file_name", what to call it.
    int QraNblUpLoad(const char* szSrc, transfer_cb cb, void* pUserData, char* szRequestId)
        QRA_EXCLUDES(m_RequestMutex);
    /// The service's code; 0 for a transfer that is not there.
    int QraNblStopDownload(const char* szRequestId) QRA_EXCLUDES(m_RequestMutex);
    int QraNblStopUpload(const char* szRequestId) QRA_EXCLUDES(m_RequestMutex);

private:
    struct qra_nbl_request_list_user_data_s {
        bool bBrowse = false;
        unsigned uFilterType = 0;
        int nStartIndex = 0;
        int nLevel = 0;
        long long llStartTime = 0;
        media_cb cbMedia = nullptr;
        group_cb cbGroup = nullptr;
        std::string strParentTitle;
        void* pCall = nullptr;
        bool bCancelled = false;  ///< the service was asked to cancel it
    };
    using Request = qra_nbl_request_list_user_data_s;
    struct Bookmark {
        bookmark_cb cb = nullptr;
        void* pUserData = nullptr;
        void* pCall = nullptr;
    };
    struct Download;
    struct Upload;
    /// Makes a request of the service: gives its code.
    using Start = std::function<int(void* pCall, int* pnToken)>;

    static void cb_ProviderItem(nbl_device_t, nbl_response* pResponse, int nError, void* pCall);
    static void cb_MediaBrowse(nbl_device_t, nbl_response* pResponse, int nError, void* pCall);
    static void cb_ProviderSearch(nbl_device_t, nbl_response* pResponse, int nError, void* pCall);
    static void cb_GetDCMGroup(nbl_device_t, nbl_response* pResponse, int nError, void* pCall);
    static void cb_GetFeatureList(nbl_device_t, nbl_feature_response* pResponse, int nError, void* pCall);
    static void cb_GetBookMark(nbl_device_t, nbl_response* pResponse, int nError, void* pCall);
    static void cb_SetBookMark(nbl_device_t, int nError, int nTag);
    static void cb_ProviderDownload(int nToken, nbl_transfer_info* pInfo, void* pCall);
    static void cb_ProviderReceive(int nId, nbl_item_t, int nError, void* pCall);
    static void cb_ProviderReceiveCompleted(int nId, nbl_item_t, int nError, void* pCall);
    static void cb_ProviderReceiveUpdate(int nId, nbl_transfer_info* pInfo, int nError, void* pCall);

    /// What an answer means for its request: more will come, it is over, or it is over and its worker goes
    /// on.
    enum EAnswer { ANSWER_MORE, ANSWER_DROPPED, ANSWER_COMPLETE };
    template <class Response>
    using Handler = EAnswer (CQRADLNAWrapper::*)(Request&, const Response&, int);
    template <class Response>
    static void m_Answer(void* pCall, Handler<Response> handler, const Response* pResponse, int nError);

    bool m_Begin() QRA_EXCLUDES(m_RequestMutex);
    bool m_Send(const Request& request, const Start& start) QRA_EXCLUDES(m_RequestMutex);
    void m_EndRequests() QRA_EXCLUDES(m_RequestMutex);
    void m_DropRequests() QRA_REQUIRES(m_RequestMutex);
    bool m_CancelRequests(int& nCancelled) QRA_EXCLUDES(m_CancelMutex, m_RequestMutex);
    bool m_CancelNext(bool& bDone) QRA_REQUIRES(m_CancelMutex) QRA_EXCLUDES(m_RequestMutex);
    int m_WaitForOne(bool bSent);
    std::string m_GetFolderId() QRA_EXCLUDES(m_RequestMutex);
    std::string m_GetKeyword() QRA_EXCLUDES(m_RequestMutex);
    bool m_IsFolderView() QRA_EXCLUDES(m_RequestMutex);
    void m_SetFilterType(unsigned& uFilterType) QRA_EXCLUDES(m_RequestMutex);

    CQRADlnaItem m_MakeFolderItem(const std::string& strFolderId);
    int m_GetTotalItemCount(const std::string& strContentId) QRA_EXCLUDES(m_RequestMutex);
    int m_MediaBrowse(const CQRADlnaItem& item, media_cb cbMedia, group_cb cbGroup)
        QRA_EXCLUDES(m_RequestMutex);
    bool m_SendMediaBrowse(const CQRADlnaItem& item, const Request& request);
    void m_SkipRequests(int nCount) QRA_EXCLUDES(m_RequestMutex);
    int m_GroupBrowse(const CQRADlnaItem& item, const std::string& strParentTitle, int nLevel, group_cb cb)
        QRA_EXCLUDES(m_RequestMutex);

    // Answers, taken apart.
    EAnswer m_OnItem(Request& request, const nbl_response& response, int nError) QRA_REQUIRES(m_RequestMutex);
    EAnswer m_OnMediaBrowse(Request& request, const nbl_response& response, int nError)
        QRA_REQUIRES(m_RequestMutex);
    EAnswer m_OnSearch(Request& request, const nbl_response& response, int nError)
        QRA_REQUIRES(m_RequestMutex);
    EAnswer m_OnGroups(Request& request, const nbl_response& response, int nError)
        QRA_REQUIRES(m_RequestMutex);
    EAnswer m_OnFeatures(Request& request, const nbl_feature_response& response, int nError)
        QRA_REQUIRES(m_RequestMutex);
    void m_GiveEmptyGroup(const Request& request) QRA_REQUIRES(m_RequestMutex);
    void m_GiveItems(const Request& request, const nbl_response& response) QRA_REQUIRES(m_RequestMutex);
    void m_GiveGroup(const Request& request, nbl_item_t hItem, int nIndex) QRA_REQUIRES(m_RequestMutex);
    bool m_HasContainer(nbl_feature_t feature) QRA_REQUIRES(m_RequestMutex);
    static bool m_CheckValidGroupItem(const CQRADlnaItem& item, std::string& strId, int& nCount);
    static std::string m_GenerateGroupName(const CQRADlnaItem& item, const std::string& strParentTitle);

    bool m_GetMime(const std::string& strName, std::string& strMime) const;
    CQRADlnaItem m_MakeUploadItem(const std::string& strSrc) const;
    std::shared_ptr<Download> m_FindDownload(void* pCall, bool bTake) QRA_EXCLUDES(m_RequestMutex);
    std::shared_ptr<Upload> m_FindUpload(void* pCall, bool bTake) QRA_EXCLUDES(m_RequestMutex);
    Bookmark m_TakeBookmark(void* pCall) QRA_EXCLUDES(m_RequestMutex);
    void m_StopTransfers() QRA_EXCLUDES(m_RequestMutex);

    nbl_provider_t m_pProvider = nullptr;  ///< set once, before the first request
    CQRASemphore m_Semaphore;              ///< given with each answer that the worker waits for
    CQRAGMutex m_CancelMutex;              ///< held while requests are cancelled
    CQRAGMutex m_RequestMutex;
    std::atomic<int> m_nError{DLNA_ERROR_NONE};  ///< written under the request mutex by answers
    std::atomic<bool> m_bCancel{false};          ///< set under the request mutex
    std::atomic<int> m_nTotalCount{0};           ///< items of the folder that is listed, as its server says
    std::atomic<int> m_nEnd{0};                  ///< from where on that folder turned out to have no items
    std::atomic<int> m_nCallbackCount{0};        ///< answers to come; written under the request mutex
    std::string m_strFolderId QRA_GUARDED_BY(m_RequestMutex);
    std::string m_strContentType QRA_GUARDED_BY(m_RequestMutex);
    std::string m_strSortCategory QRA_GUARDED_BY(m_RequestMutex);
    std::string m_strKeyword QRA_GUARDED_BY(m_RequestMutex);
    void* m_pUserData QRA_GUARDED_BY(m_RequestMutex) = nullptr;
    const qra_dlna_mime_map m_MimeMap;
    std::map<int, Request> m_TokenMap QRA_GUARDED_BY(m_RequestMutex);      ///< by token
    std::map<int, Bookmark> m_BookmarkMap QRA_GUARDED_BY(m_RequestMutex);  ///< by token
    std::map<std::string, std::shared_ptr<Download>> m_DownloadRequestMap QRA_GUARDED_BY(m_RequestMutex);
    std::map<std::string, std::shared_ptr<Upload>> m_UploadRequestMap QRA_GUARDED_BY(m_RequestMutex);
};

#endif
