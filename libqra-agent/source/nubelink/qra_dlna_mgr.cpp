#include "libqra-agent/source/nubelink/qra_dlna_mgr.h"

#include <json/json.h>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"

namespace {

constexpr const char* MAKER = "kelvora";
constexpr int DISCONNECT_FAILURE = 2;

using StateLock = CQRALockGuard<CQRAGMutex>;

/// A text of a device, or "".
std::string device_text(int (*get)(nbl_device_t, const char**), nbl_device_t device) {
    const char* szText = nullptr;
    return get(device, &szText) == NBL_ERROR_NONE ? CQRAUtil::CharToString(szText) : "";
}

std::string device_name(nbl_device_t device) {
    const char* szName = nullptr;
    if (nbl_device_get_name(device, &szName) != NBL_ERROR_NONE || szName == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "dlna device name is NULL");
        return "";
    }
    return szName;
}

}  // namespace

CQRADlnaMgr::~CQRADlnaMgr() {
    m_DisConnect(nullptr);
}

bool CQRADlnaMgr::ConnectService() {
    if (m_GetStatus() == DLNA_STATUS_NONE) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "m_bConnectStatus == DLNA_STATUS_NONE");
        if (nbl_serviceconnector_connect(m_OnServiceConnectCB, this) != NBL_ERROR_NONE) {
            QRA_LOG_WARNING(QRA_TAG_DLNA, "nbl_serviceconnector_connect failed");
            return false;
        }
    }
    QRA_LOG_INFO(QRA_TAG_DLNA, "End of ConnectService");
    return true;
}

bool CQRADlnaMgr::DisConnectSerivce() {
    return m_DisConnect(m_OnServiceDisConnectCB);
}

bool CQRADlnaMgr::m_DisConnect(nbl_serviceconnector_cb cb) {
    if (nbl_serviceconnector_disconnect(cb, this) == DISCONNECT_FAILURE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "nbl_serviceconnector_disconnect failed");
        return false;
    }
    {
        const StateLock lock(m_StateMutex);
        m_bConnectStatus = DLNA_STATUS_NONE;
        pServiceProvider = nullptr;
        m_pDeviceFinder = nullptr;
    }
    UnSetDLNAEventCallback();
    return true;
}

bool CQRADlnaMgr::GetDlnaListAsync() {
    void* const pProvider = GetServiceProvide();
    if (pProvider != nullptr) {
        int nState = NBL_SERVICE_STATE_DISABLED;
        nbl_serviceprovider_get_service_state(pProvider, &nState);
        if (nState != NBL_SERVICE_STATE_ENABLED) {
            m_SetStatus(DLNA_STATUS_NONE);
        } else if (m_GetStatus() == DLNA_STATUS_CONNECT_OK) {
            return true;
        }
    } else {
        m_SetStatus(DLNA_STATUS_NONE);
    }
    QRA_LOG_INFO(QRA_TAG_DLNA, "m_bConnectStatus!= DLNA_STATUS_CONNECT_OK");
    return ConnectService();
}

bool CQRADlnaMgr::GetDlnaListSync() {
    if (GetServiceProvide() == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "NULL == pServiceProvider");
        return false;
    }
    nbl_devicefinder_t pFinder = nullptr;
    if (!m_GetFinder(pFinder) || (!m_HasConnectCallback() && !m_WatchDevices(pFinder))) {
        return false;
    }
    if (nbl_devicefinder_refresh(pFinder) != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "nbl_devicefinder_refresh failed");
    }
    nbl_device_t* pDevices = nullptr;
    int nCount = 0;
    if (nbl_devicefinder_get_device_list(pFinder, NBL_DEVICE_CLASS_MEDIA_SERVER, &pDevices, &nCount) !=
        NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "nbl_devicefinder_get_device_list failed");
        return false;
    }
    if (pDevices == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "did not get device list");
        return false;
    }
    std::string strList = m_BuildDeviceList(pDevices, nCount);
    const StateLock lock(m_StateMutex);
    m_strListContent.swap(strList);
    return true;
}

std::string CQRADlnaMgr::m_BuildDeviceList(nbl_device_t* pDevices, int nCount) {
    Json::Value list(Json::objectValue);
    for (int i = 0; i < nCount; ++i) {
        Json::Value device;
        device["deviceID"] = device_text(nbl_device_get_id, pDevices[i]);
        device["deviceIP"] = device_text(nbl_device_get_ip_address, pDevices[i]);
        device["bKelvoraDevice"] = m_DistinguishDevice(pDevices, i);
        device["deviceName"] = device_name(pDevices[i]);
        list["devices"].append(std::move(device));
    }
    return list.toStyledString();
}

bool CQRADlnaMgr::m_DistinguishDevice(nbl_device_t* pDevices, int nIndex) {
    const std::string strManufacturer = device_text(nbl_device_get_manufacturer_name, pDevices[nIndex]);
    if (strManufacturer.empty()) {
        return false;
    }
    const std::string strLower = CQRAUtil::ToLower(strManufacturer);
    QRA_LOG_INFO(QRA_TAG_DLNA, "lower strManufacturer = [%s]", strLower.c_str());
    return strLower.find(MAKER) != std::string::npos;
}

std::string CQRADlnaMgr::GetAllDlnaListContent() const {
    const StateLock lock(m_StateMutex);
    return m_strListContent;
}

bool CQRADlnaMgr::SetDLNAEventCallback(qra_dlna_event_cb cb, void* pUserData) {
    {
        const CQRALockGuard<CQRAGMutex> running(m_Mutex);
        const StateLock lock(m_StateMutex);
        m_cbEvent = cb;
        m_pUserData = pUserData;
    }
    if (!m_HasConnectCallback()) {
        return true;
    }
    nbl_devicefinder_t pFinder = nullptr;
    return m_GetFinder(pFinder) && m_WatchDevices(pFinder);
}

bool CQRADlnaMgr::UnSetDLNAEventCallback() {
    const CQRALockGuard<CQRAGMutex> running(m_Mutex);
    const StateLock lock(m_StateMutex);
    m_cbEvent = nullptr;
    m_pUserData = nullptr;
    return true;
}

void CQRADlnaMgr::SetDLNAConnectCallback(connect_cb cb, void* pUserData) {
    const CQRALockGuard<CQRAGMutex> running(m_Mutex);
    const StateLock lock(m_StateMutex);
    m_cbConnect = cb;
    m_pConnectUserData = pUserData;
}

void CQRADlnaMgr::SetServiceProvide(void* pProvider) {
    const StateLock lock(m_StateMutex);
    if (pServiceProvider != pProvider) {
        m_pDeviceFinder = nullptr;
    }
    pServiceProvider = pProvider;
    m_bConnectStatus = DLNA_STATUS_CONNECT_OK;
}

void* CQRADlnaMgr::GetServiceProvide() const {
    const StateLock lock(m_StateMutex);
    return pServiceProvider;
}

void CQRADlnaMgr::m_OnServiceConnectCB(nbl_serviceprovider_t pProvider, int nState, void* pThis) {
    static_cast<CQRADlnaMgr*>(pThis)->m_OnConnected(pProvider, nState);
}

void CQRADlnaMgr::m_OnConnected(nbl_serviceprovider_t pProvider, int nState) {
    if (nState == NBL_SERVICECONNECTOR_ENABLED && pProvider != nullptr) {
        SetServiceProvide(pProvider);
    } else {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "serviceprovider == NULL || state != NBL_SERVICECONNECTOR_ENABLED");
        m_SetStatus(DLNA_STATUS_NONE);
    }
    bool bList = false;
    {
        const CQRALockGuard<CQRAGMutex> running(m_Mutex);
        if (m_TellConnectCallback(nState)) {
            return;
        }
        bList = GetDlnaListSync();
    }
    // Notifying takes the mutex itself.
    if (!bList) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "GetDlnaList failed");
    }
    m_NotifyListener(QRA_DEVICE_ACTION_LIST, bList ? GetAllDlnaListContent() : "");
}

void CQRADlnaMgr::m_OnServiceDisConnectCB(nbl_serviceprovider_t, int nState, void* pThis) {
    auto* const pMgr = static_cast<CQRADlnaMgr*>(pThis);
    // Once more: the answer to a connect may have come after the call that disconnects had returned.
    pMgr->m_SetStatus(DLNA_STATUS_NONE);
    const CQRALockGuard<CQRAGMutex> running(pMgr->m_Mutex);
    pMgr->m_TellConnectCallback(nState);
}

bool CQRADlnaMgr::m_TellConnectCallback(int nState) {
    connect_cb cb = nullptr;
    void* pUserData = nullptr;
    {
        const StateLock lock(m_StateMutex);
        cb = m_cbConnect;
        pUserData = m_pConnectUserData;
    }
    if (cb == nullptr) {
        return false;
    }
    cb(static_cast<qra_nbl_serviceconnector_state_e>(nState), pUserData);
    return true;
}

void CQRADlnaMgr::m_OnDeviceEventCB(nbl_device_event* pEvent, int, int, void* pThis) {
    if (pThis == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "NULL == user_data");
        return;
    }
    const int nEvent = pEvent != nullptr && pEvent->device != nullptr ? pEvent->event : 0;
    if (nEvent != NBL_DEVICE_EVENT_ADDED && nEvent != NBL_DEVICE_EVENT_REMOVED) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "did not get provider");
        return;
    }
    const std::string strDevice = m_BuildDeviceList(&pEvent->device, 1);
    auto* const pMgr = static_cast<CQRADlnaMgr*>(pThis);
    if (nEvent == NBL_DEVICE_EVENT_ADDED) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "dlna device added");
        pMgr->m_NotifyListener(QRA_DEVICE_ACTION_ADDED, strDevice);
    } else {
        QRA_LOG_INFO(QRA_TAG_DLNA, "dlna device removed");
        pMgr->m_NotifyListener(QRA_DEVICE_ACTION_REMOVED, strDevice);
    }
}

void CQRADlnaMgr::m_NotifyListener(int nType, const std::string& strText) {
    const CQRALockGuard<CQRAGMutex> running(m_Mutex);
    qra_dlna_event_cb cb = nullptr;
    void* pUserData = nullptr;
    {
        const StateLock lock(m_StateMutex);
        cb = m_cbEvent;
        pUserData = m_pUserData;
    }
    if (nType < 0 || cb == nullptr) {
        QRA_LOG_INFO(QRA_TAG_DLNA, "m_NotifyListener m_pUserData == NULL!");
        return;
    }
    cb(static_cast<QRADeviceActionType>(nType), strText.c_str(), pUserData);
}

bool CQRADlnaMgr::m_HasConnectCallback() const {
    const StateLock lock(m_StateMutex);
    return m_cbConnect != nullptr;
}

bool CQRADlnaMgr::m_GetFinder(nbl_devicefinder_t& pFinder) {
    void* const pProvider = GetServiceProvide();
    if (nbl_serviceprovider_get_devicefinder(pProvider, &pFinder) != NBL_ERROR_NONE || pFinder == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "nbl_serviceprovider_get_devicefinder failed");
        return false;
    }
    const StateLock lock(m_StateMutex);
    m_pDeviceFinder = pFinder;
    return true;
}

bool CQRADlnaMgr::m_WatchDevices(nbl_devicefinder_t pFinder) {
    if (nbl_devicefinder_set_event_callback(pFinder, NBL_DEVICE_CLASS_MEDIA_SERVER, m_OnDeviceEventCB,
                                            this) != NBL_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_DLNA, "nbl_devicefinder_set_event_callback failed");
        return false;
    }
    return true;
}

int CQRADlnaMgr::m_GetStatus() const {
    const StateLock lock(m_StateMutex);
    return m_bConnectStatus;
}

void CQRADlnaMgr::m_SetStatus(int nStatus) {
    const StateLock lock(m_StateMutex);
    m_bConnectStatus = nStatus;
}
