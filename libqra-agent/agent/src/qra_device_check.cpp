#include "libqra-agent/agent/src/qra_device_check.h"

#include <algorithm>
#include <memory>

#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_dbus_client.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"

CQRADeviceChecks::CStarting::CStarting() {
    GetInstance()->m_Starting(1);
}

CQRADeviceChecks::CStarting::~CStarting() {
    GetInstance()->m_Starting(-1);
}

CQRADeviceChecks::CDelivery::CDelivery(unsigned int nScannerId)
    : m_pHandle(GetInstance()->m_BeginDelivery(nScannerId)) {}

CQRADeviceChecks::CDelivery::~CDelivery() {
    if (m_pHandle != nullptr) {
        GetInstance()->m_EndDelivery(m_pHandle);
    }
}

void CQRADeviceChecks::m_Starting(int nChange) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    m_nStarting += nChange;
    m_Changed.Broadcast();
}

CQRAHandleBase* CQRADeviceChecks::m_BeginDelivery(unsigned int nScannerId) {
    CQRAHandlerMgr* const pRegistry = CQRAHandlerMgr::GetInstance();
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    CQRAHandleBase* pHandle = pRegistry->GetHandler(QRA_HANDLE_TYPE_DEVICE_CHECK, nScannerId);
    while (pHandle == nullptr && m_nStarting > 0) {
        m_Changed.Wait(m_Mutex);
        pHandle = pRegistry->GetHandler(QRA_HANDLE_TYPE_DEVICE_CHECK, nScannerId);
    }
    if (pHandle != nullptr) {
        m_Deliveries.push_back({pHandle, std::this_thread::get_id()});
    }
    return pHandle;
}

void CQRADeviceChecks::m_EndDelivery(CQRAHandleBase* pHandle) {
    std::unique_ptr<CQRAHandleBase> pEnded;
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    m_Deliveries.erase(
        std::find_if(m_Deliveries.begin(), m_Deliveries.end(), [pHandle](const SDelivery& delivery) {
            return delivery.pHandle == pHandle && delivery.thread == std::this_thread::get_id();
        }));
    const auto it = std::find(m_Ended.begin(), m_Ended.end(), pHandle);
    if (it != m_Ended.end() && !m_IsDeliveredTo(pHandle)) {
        pEnded.reset(pHandle);
        m_Ended.erase(it);
    }
    m_Changed.Broadcast();
}

bool CQRADeviceChecks::Remove(CQRADeviceCheckHandle* pHandle, unsigned int& nScannerId) {
    const auto nValue = reinterpret_cast<qra_handle_value_t>(pHandle);
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    if (!CQRAHandlerMgr::GetInstance()->CheckHandler(nValue, QRA_HANDLE_TYPE_DEVICE_CHECK)) {
        return false;
    }
    nScannerId = pHandle->GetHandleId();
    CQRAHandlerMgr::GetInstance()->Delete(nValue);
    if (m_DeliversOn(std::this_thread::get_id()) && m_IsDeliveredTo(pHandle)) {
        m_Ended.push_back(pHandle);
        return true;
    }
    while (m_IsDeliveredTo(pHandle)) {
        m_Changed.Wait(m_Mutex);
    }
    delete pHandle;
    return true;
}

bool CQRADeviceChecks::m_IsDeliveredTo(const CQRAHandleBase* pHandle) const {
    return std::any_of(m_Deliveries.begin(), m_Deliveries.end(),
                       [pHandle](const SDelivery& delivery) { return delivery.pHandle == pHandle; });
}

bool CQRADeviceChecks::m_DeliversOn(std::thread::id thread) const {
    return std::any_of(m_Deliveries.begin(), m_Deliveries.end(),
                       [thread](const SDelivery& delivery) { return delivery.thread == thread; });
}

qra_error_code_e qra_check_device_v2(const char* pPath, qra_device_check_cb cb, void* pUserData,
                                     CQRADeviceCheckHandle** ppHandle) {
    if (pPath == nullptr || cb == nullptr || ppHandle == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "pPath == NULL.");
        return QRA_ERROR_INVALID_PARAM;
    }
    CQRADBusClient* const pClient = CQRADBusClient::GetInstance();
    qra_error_code_e eCode = pClient->ConnectDbus();
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "ConnectDbus() failed.");
        return eCode;
    }
    const CQRADeviceChecks::CStarting starting;
    const GDBusSignalCallback on_signal = CQRADBusClient::_OnSignal;
    eCode = pClient->SubscribeSignal("qra_scanner_done", on_signal, nullptr);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "SubscribeSignal() failed.");
        return eCode;
    }
    unsigned int nScannerId = 0;
    eCode = pClient->StartScanner("start_scanner", "check_device", pPath, nScannerId);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "StartScanner() failed.");
        return eCode;
    }
    auto* const pHandle = new CQRADeviceCheckHandle;
    pHandle->SetUserData(pUserData);
    pHandle->SetCallBack(cb);
    pHandle->SetPath(pPath);
    pHandle->SetHandleId(nScannerId);
    *ppHandle = pHandle;
    CQRAHandlerMgr::GetInstance()->Add(pHandle->GetValue());
    QRA_LOG_INFO(QRA_TAG_LOCAL, "Success to create agent handle[%p]", static_cast<void*>(pHandle));
    return QRA_ERROR_NONE;
}

qra_error_code_e qra_stop_checking_device_v2(CQRADeviceCheckHandle* pHandle) {
    unsigned int nScannerId = 0;
    if (!CQRADeviceChecks::GetInstance()->Remove(pHandle, nScannerId)) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "CheckHandler[%p] faild!!", static_cast<void*>(pHandle));
        return QRA_ERROR_INVALID_HANDLE;
    }
    const qra_error_code_e eCode = CQRADBusClient::GetInstance()->StopScanner("stop_scanner", nScannerId);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_LOCAL, "qra_stop_checking_device failed eCode == %d", eCode);
    }
    return eCode;
}
