#ifndef QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_MGR_H
#define QRA_LIBQRA_AGENT_SOURCE_NUBELINK_QRA_DLNA_MGR_H

#include <qra/qra_storage.h>

#include <string>

#include "common/util/qra_mutex.h"
#include "common/util/qra_singleton.h"
#include "nubelink.h"

enum { DLNA_STATUS_NONE = 0, DLNA_STATUS_CONNECT_OK = 2 };

/// What an event of the manager is about.
enum QRADeviceActionType {
    QRA_DEVICE_ACTION_ADDED = 0,
    QRA_DEVICE_ACTION_REMOVED = 1,
    QRA_DEVICE_ACTION_LIST = 3  ///< the whole list; an empty text if there is none
};

/// Devices as JSON: an object with an array "devices" of objects with "deviceID", "deviceIP", "deviceName"
/// and "bKelvoraDevice". Without the array if there are none.
using qra_dlna_event_cb = void (*)(QRADeviceActionType eAction, const char* szJson, void* pUserData);

/**
 * The process's link to the home network service: connects it, keeps its provider, and tells of media
 * servers.
 *
 * Exported functions come on the client's threads, m_On... on the service's. The manager has its service call
 * it with no lock of its own held, so that a service which answers at once is survived.
 *
 * Locks: m_Mutex is held through the event callback, the connect callback, and the list that a connection
 * asks for; a callback must therefore not set or unset one, nor disconnect. It comes before m_StateMutex,
 * which covers the fields and is held across no call, and before the locks that a client's callback takes.
 */
class CQRADlnaMgr : public CQRASingleton<CQRADlnaMgr> {
public:
    using connect_cb = qra_dlna_connect_cb;

    CQRADlnaMgr() = default;
    /// Disconnects the service, whose answer then comes to nobody. The singleton never goes.
    ~CQRADlnaMgr();
    CQRADlnaMgr(const CQRADlnaMgr&) = delete;
    CQRADlnaMgr& operator=(const CQRADlnaMgr&) = delete;

    /// Has the service connected; the outcome comes by the connect callback. True if it is connected already.
    /// Asked again before the outcome has come, it connects once more.
    bool ConnectService() QRA_EXCLUDES(m_Mutex, m_StateMutex);
    /// Ends the connection, and drops the event callback.
    bool DisConnectSerivce() QRA_EXCLUDES(m_Mutex, m_StateMutex);
    /// Makes sure that the service is connected; the list then comes by the event callback.
    bool GetDlnaListAsync() QRA_EXCLUDES(m_Mutex, m_StateMutex);
    /// Searches the network and keeps the list of what is there; see GetAllDlnaListContent().
    bool GetDlnaListSync() QRA_EXCLUDES(m_StateMutex);
    /// The latest list, as JSON.
    std::string GetAllDlnaListContent() const QRA_EXCLUDES(m_StateMutex);

    /// Waits for a callback that is running. With a connect callback set, servers are reported from now on,
    /// which needs a connected service; without one, from the next list on.
    bool SetDLNAEventCallback(qra_dlna_event_cb cb, void* pUserData) QRA_EXCLUDES(m_Mutex, m_StateMutex);
    /// Returns with no event callback running. True.
    bool UnSetDLNAEventCallback() QRA_EXCLUDES(m_Mutex, m_StateMutex);
    /// Waits for a callback that is running. Null drops it.
    void SetDLNAConnectCallback(connect_cb cb, void* pUserData) QRA_EXCLUDES(m_Mutex, m_StateMutex);

    /// A provider that is there counts as a connection.
    void SetServiceProvide(void* pProvider) QRA_EXCLUDES(m_StateMutex);
    void* GetServiceProvide() const QRA_EXCLUDES(m_StateMutex);

private:
    static void m_OnServiceConnectCB(nbl_serviceprovider_t pProvider, int nState, void* pThis);
    static void m_OnServiceDisConnectCB(nbl_serviceprovider_t pProvider, int nState, void* pThis);
    static void m_OnDeviceEventCB(nbl_device_event* pEvent, int nCommonEvent, int nError, void* pThis);
    static bool m_DistinguishDevice(nbl_device_t* pDevices, int nIndex);
    static std::string m_BuildDeviceList(nbl_device_t* pDevices, int nCount);

    bool m_DisConnect(nbl_serviceconnector_cb cb) QRA_EXCLUDES(m_Mutex, m_StateMutex);
    void m_OnConnected(nbl_serviceprovider_t pProvider, int nState) QRA_EXCLUDES(m_Mutex, m_StateMutex);
    /// True if the connect callback, which then was told, is set.
    bool m_TellConnectCallback(int nState) QRA_REQUIRES(m_Mutex) QRA_EXCLUDES(m_StateMutex);
    bool m_HasConnectCallback() const QRA_EXCLUDES(m_StateMutex);
    bool m_GetFinder(nbl_devicefinder_t& pFinder) QRA_EXCLUDES(m_StateMutex);
    bool m_WatchDevices(nbl_devicefinder_t pFinder);
    int m_GetStatus() const QRA_EXCLUDES(m_StateMutex);
    void m_SetStatus(int nStatus) QRA_EXCLUDES(m_StateMutex);
    void m_NotifyListener(int nType, const std::string& strText) QRA_EXCLUDES(m_Mutex, m_StateMutex);

    CQRAGMutex m_Mutex;
    mutable CQRAGMutex m_StateMutex;
    void* pServiceProvider QRA_GUARDED_BY(m_StateMutex) = nullptr;
    nbl_devicefinder_t m_pDeviceFinder QRA_GUARDED_BY(m_StateMutex) = nullptr;
    int m_bConnectStatus QRA_GUARDED_BY(m_StateMutex) = DLNA_STATUS_NONE;
    qra_dlna_event_cb m_cbEvent QRA_GUARDED_BY(m_StateMutex) = nullptr;  ///< changed under m_Mutex too
    void* m_pUserData QRA_GUARDED_BY(m_StateMutex) = nullptr;
    connect_cb m_cbConnect QRA_GUARDED_BY(m_StateMutex) = nullptr;  ///< changed under m_Mutex too
    void* m_pConnectUserData QRA_GUARDED_BY(m_StateMutex) = nullptr;
    std::string m_strListContent QRA_GUARDED_BY(m_StateMutex);
};

#endif
