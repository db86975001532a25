#include "libqra-agent/agent/src/qra_storage.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "common/util/qra_assert.h"
#include "common/util/qra_log.h"
#include "common/util/qra_mutex.h"
#include "libqra-agent/agent/src/qra_dbus_client.h"
#include "libqra-agent/agent/src/qra_storage_json.h"
#include "libqra-agent/source/nubelink/qra_dlna_mgr.h"

namespace {

/// Orders lists, callbacks and events. In the lock order it comes before the bus client's mutex. Never
/// destroyed: events may still come while the process ends.
CQRAMutex& m_mutex = *new CQRAMutex;

/// Who is told of events; nobody while `app_cb` is null. The bus client may still hold the address of a
/// record that is unset: the records never go, and an event looks at them under the mutex.
struct _stStorageUserData {
    qra_storage_cb app_cb;
    void* pUserData;
};
_stStorageUserData local_storage_userdata_usb QRA_GUARDED_BY(m_mutex);
_stStorageUserData local_storage_userdata_bd QRA_GUARDED_BY(m_mutex);
_stStorageUserData local_storage_userdata_dlna QRA_GUARDED_BY(m_mutex);

/// Orders the functions that set and unset the DLNA callback, which call the manager in the middle. Comes
/// before the manager's mutex, while m_mutex is not held when the manager is called.
CQRAMutex& m_DlnaCallbackMutex = *new CQRAMutex;

/// How the engine calls the events of one kind of device.
struct StorageEvents {
    const char* pKind;
    const char* pSignal;
    const char* pMethod;
};
constexpr StorageEvents USB_EVENTS{"usb", "qra_usb_notification", "bind_usb_event"};
constexpr StorageEvents BD_EVENTS{"bd", "qra_bd_notification", "bind_bd_event"};

/// The engine's own number as a code; one that is none is an engine that does not keep to what was agreed.
qra_error_code_e CodeOf(int nNumber) {
    return nNumber >= QRA_ERROR_NONE && nNumber <= QRA_ERROR_INTERNAL ? static_cast<qra_error_code_e>(nNumber)
                                                                      : QRA_ERROR_ENGINE;
}

qra_error_code_e Connect() {
    const qra_error_code_e eCode = CQRADBusClient::GetInstance()->ConnectDbus();
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "ConnectDbus() failed.");
    }
    return eCode;
}

struct ListDestroy {
    void operator()(qra_storage_list_h pList) const { qra_storage_list_destory(pList); }
};
using CList = std::unique_ptr<_qra_storage_list_s, ListDestroy>;

/// A list with empty places for as many records; null if there is no memory.
CList NewList(size_t nCount) {
    CList pList(new (std::nothrow) _qra_storage_list_s{});
    if (!pList) {
        return nullptr;
    }
    pList->storages = new (std::nothrow) qra_storage_h[nCount]{};
    if (pList->storages == nullptr) {
        return nullptr;
    }
    pList->count = static_cast<int>(nCount);
    return pList;
}

/// A list of the devices that a JSON text names.
qra_error_code_e MakeList(const std::string& strJson, StorageFields eFields, qra_storage_list_h* storages) {
    std::vector<std::unique_ptr<_qra_storage_s>> vStorages;
    if (!ReadStorages(strJson, eFields, vStorages)) {
        return QRA_ERROR_INTERNAL;
    }
    CList pList = NewList(vStorages.size());
    if (!pList) {
        return QRA_ERROR_OUT_OF_MEMORY;
    }
    std::transform(vStorages.begin(), vStorages.end(), pList->storages,
                   [](std::unique_ptr<_qra_storage_s>& pStorage) { return pStorage.release(); });
    *storages = pList.release();
    return QRA_ERROR_NONE;
}

qra_error_code_e GetList(const char* pMethod, qra_storage_device_type eType, StorageFields eFields,
                         qra_storage_list_h* storages) QRA_REQUIRES(m_mutex) {
    QRA_ASSERT(storages != NULL);
    const qra_error_code_e eConnected = Connect();
    if (eConnected != QRA_ERROR_NONE) {
        return eConnected;
    }
    std::string strJson;
    const qra_error_code_e eCode =
        CodeOf(CQRADBusClient::GetInstance()->GetStorages(pMethod, eType, strJson));
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "GetStorages() failed.");
        return eCode;
    }
    return MakeList(strJson, eFields, storages);
}

void get_storage_callback(const char* pSignal, void* pUserData, char* pJson) {
    const CQRALockGuard<CQRAMutex> lock(m_mutex);
    QRA_LOG_INFO(QRA_TAG_STORAGE, "recive [%s]\n%s.", pSignal, pJson);
    const auto* const userdata = static_cast<const _stStorageUserData*>(pUserData);
    if (userdata == nullptr || userdata->app_cb == nullptr) {
        return;
    }
    int nEvent = 0;
    _qra_storage_s stStorage{};
    if (!ReadStorageEvent(pJson, nEvent, stStorage)) {
        return;
    }
    QRA_LOG_INFO(QRA_TAG_STORAGE, "Calling userdata->app_cb  in get_storage_callback...");
    userdata->app_cb(userdata->pUserData, nEvent, &stStorage);
}

/// The client's pair, as it is at this moment.
_stStorageUserData DlnaUserData() QRA_EXCLUDES(m_mutex) {
    const CQRALockGuard<CQRAMutex> lock(m_mutex);
    return local_storage_userdata_dlna;
}

/// What a client's callback is told of an action of the manager; 0 for one that it is not told of.
int DlnaEventOf(QRADeviceActionType eAction) {
    switch (eAction) {
        case QRA_DEVICE_ACTION_ADDED:
            return QRA_STORAGE_EVENT_ATTACHED;
        case QRA_DEVICE_ACTION_REMOVED:
            return QRA_STORAGE_EVENT_DETACHED;
        default:
            return 0;
    }
}

/// Comes on the service's thread. The client is called without this file's mutex.
void get_dlna_list_callback(QRADeviceActionType eAction, const char* pJson, void*) {
    const _stStorageUserData stUserData = DlnaUserData();
    const _stStorageUserData* const userdata = &stUserData;
    QRA_ASSERT(userdata->app_cb != NULL);
    _qra_storage_s stStorage{};
    const bool bServer = ReadServer(pJson, stStorage);
    QRA_LOG_INFO(QRA_TAG_STORAGE, "Start Calling Get_dlna_list_callback...");
    const int nEvent = DlnaEventOf(eAction);
    if (nEvent == 0) {
        QRA_LOG_INFO(QRA_TAG_STORAGE, "Ignore");
    } else if (bServer) {
        userdata->app_cb(userdata->pUserData, nEvent, &stStorage);
    }
    QRA_LOG_INFO(QRA_TAG_STORAGE, "End Calling Get_dlna_list_callback...");
}

void KeepDlnaUserData(const _stStorageUserData& userdata) QRA_EXCLUDES(m_mutex) {
    const CQRALockGuard<CQRAMutex> lock(m_mutex);
    local_storage_userdata_dlna = userdata;
}

void DropCallback(const StorageEvents& events, _stStorageUserData& userdata) QRA_REQUIRES(m_mutex) {
    if (CQRADBusClient::GetInstance()->UnSubscribeSignal(events.pSignal, nullptr, nullptr) !=
        QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "UnSubscribeSignal() failed.");
    }
    userdata = {};
}

qra_error_code_e SetCallback(const StorageEvents& events, _stStorageUserData& userdata, qra_storage_cb cb,
                             void* pUserData) QRA_REQUIRES(m_mutex) {
    QRA_LOG_INFO(QRA_TAG_STORAGE, "Calling qra_set_%s_callback...", events.pKind);
    if (cb == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "cb == NULL.");
        return QRA_ERROR_INVALID_PARAM;
    }
    const qra_error_code_e eConnected = Connect();
    if (eConnected != QRA_ERROR_NONE) {
        return eConnected;
    }
    DropCallback(events, userdata);
    userdata = {cb, pUserData};
    qra_error_code_e eCode =
        CQRADBusClient::GetInstance()->SubscribeSignal(events.pSignal, get_storage_callback, &userdata);
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "SubscribeSignal() failed.");
    } else {
        eCode = CodeOf(CQRADBusClient::GetInstance()->BindUsbEvent(events.pMethod, 1));
        if (eCode != QRA_ERROR_NONE) {
            QRA_LOG_WARNING(QRA_TAG_STORAGE, "qra_set_%s_callback() failed.", events.pKind);
        }
    }
    if (eCode != QRA_ERROR_NONE) {
        // A client that was told of a failure does not keep what its callback uses.
        DropCallback(events, userdata);
    }
    return eCode;
}

qra_error_code_e UnsetCallback(const StorageEvents& events, _stStorageUserData& userdata)
    QRA_REQUIRES(m_mutex) {
    QRA_LOG_INFO(QRA_TAG_STORAGE, "Calling qra_unset_%s_callback...", events.pKind);
    DropCallback(events, userdata);
    const qra_error_code_e eConnected = Connect();
    if (eConnected != QRA_ERROR_NONE) {
        return eConnected;
    }
    const qra_error_code_e eCode = CodeOf(CQRADBusClient::GetInstance()->BindUsbEvent(events.pMethod, 0));
    if (eCode != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "qra_unset_%s_callback() failed.", events.pKind);
    }
    return eCode;
}

/// What every accessor does: reads a field of a record that has to be there.
const _qra_storage_s& RecordOf(qra_storage_h storage_device) {
    QRA_ASSERT(storage_device != NULL);
    return *storage_device;
}

}  // namespace

qra_error_code_e qra_get_usb_list(qra_storage_device_type eType, qra_storage_list_h* ppList) {
    const CQRALockGuard<CQRAMutex> lock(m_mutex);
    QRA_LOG_INFO(QRA_TAG_STORAGE, "Calling qra_get_usb_list...");
    return GetList("get_usb_storages", eType, StorageFields::ALL, ppList);
}

qra_error_code_e qra_get_bd_list(qra_storage_list_h* ppList) {
    const CQRALockGuard<CQRAMutex> lock(m_mutex);
    QRA_LOG_INFO(QRA_TAG_STORAGE, "Calling qra_get_bd_list...");
    return GetList("get_bd_storages", QRA_STORAGE_DEVICE_ALL, StorageFields::NAMES, ppList);
}

qra_error_code_e qra_set_usb_callback(qra_storage_cb cb, void* pUserData) {
    const CQRALockGuard<CQRAMutex> lock(m_mutex);
    return SetCallback(USB_EVENTS, local_storage_userdata_usb, cb, pUserData);
}

qra_error_code_e qra_unset_usb_callback() {
    const CQRALockGuard<CQRAMutex> lock(m_mutex);
    return UnsetCallback(USB_EVENTS, local_storage_userdata_usb);
}

qra_error_code_e qra_set_bd_callback(qra_storage_cb cb, void* pUserData) {
    const CQRALockGuard<CQRAMutex> lock(m_mutex);
    return SetCallback(BD_EVENTS, local_storage_userdata_bd, cb, pUserData);
}

qra_error_code_e qra_unset_bd_callback() {
    const CQRALockGuard<CQRAMutex> lock(m_mutex);
    return UnsetCallback(BD_EVENTS, local_storage_userdata_bd);
}

qra_error_code_e qra_get_dlna_list(qra_storage_list_h* ppList) {
    QRA_LOG_INFO(QRA_TAG_STORAGE, "Calling qra_get_dlna_list...");
    qra_storage_list_h* const storages = ppList;
    QRA_ASSERT(storages != NULL);
    CQRADlnaMgr* const pMgr = CQRADlnaMgr::GetInstance();
    if (!pMgr->GetDlnaListSync()) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "GetDlnaListSync failed...");
        return QRA_ERROR_INTERNAL;
    }
    return MakeList(pMgr->GetAllDlnaListContent(), StorageFields::SERVER, storages);
}

qra_error_code_e qra_set_dlna_callback(qra_storage_cb cb, void* pUserData) {
    QRA_LOG_INFO(QRA_TAG_STORAGE, "Calling qra_set_dlna_callback...");
    if (cb == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "cb == NULL.");
        return QRA_ERROR_INVALID_PARAM;
    }
    const CQRALockGuard<CQRAMutex> setting(m_DlnaCallbackMutex);
    CQRADlnaMgr* const pMgr = CQRADlnaMgr::GetInstance();
    pMgr->UnSetDLNAEventCallback();
    KeepDlnaUserData({cb, pUserData});
    if (!pMgr->SetDLNAEventCallback(get_dlna_list_callback, nullptr)) {
        // A client that was told of a failure does not keep what its callback uses.
        pMgr->UnSetDLNAEventCallback();
        KeepDlnaUserData({});
        return QRA_ERROR_INTERNAL;
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e qra_unset_dlna_callback() {
    QRA_LOG_INFO(QRA_TAG_STORAGE, "Calling qra_unset_dlna_callback...");
    const CQRALockGuard<CQRAMutex> setting(m_DlnaCallbackMutex);
    CQRADlnaMgr::GetInstance()->UnSetDLNAEventCallback();
    KeepDlnaUserData({});
    return QRA_ERROR_NONE;
}

qra_error_code_e qra_Init_dlna_service(qra_dlna_connect_cb cb, void* pUserData) {
    CQRADlnaMgr* const pMgr = CQRADlnaMgr::GetInstance();
    pMgr->SetDLNAConnectCallback(cb, pUserData);
    return pMgr->ConnectService() ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

qra_error_code_e qra_finalize_dlna_service(qra_dlna_connect_cb cb, void* pUserData) {
    CQRADlnaMgr* const pMgr = CQRADlnaMgr::GetInstance();
    pMgr->SetDLNAConnectCallback(cb, pUserData);
    return pMgr->DisConnectSerivce() ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

qra_error_code_e qra_storage_clone(qra_storage_h* pDest, qra_storage_h pSrc) {
    if (pDest == nullptr || pSrc == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "_src INVALID_PARAMETER");
        return QRA_ERROR_INVALID_PARAM;
    }
    const qra_storage_h pClone = new (std::nothrow) _qra_storage_s(*pSrc);
    if (pClone == nullptr) {
        return QRA_ERROR_OUT_OF_MEMORY;
    }
    *pDest = pClone;
    return QRA_ERROR_NONE;
}

qra_error_code_e qra_storage_list_clone(qra_storage_list_h* pDest, qra_storage_list_h pSrc) {
    if (pDest == nullptr || pSrc == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "_src INVALID_PARAMETER");
        return QRA_ERROR_INVALID_PARAM;
    }
    CList pList = NewList(static_cast<size_t>(pSrc->count));
    if (!pList) {
        return QRA_ERROR_OUT_OF_MEMORY;
    }
    for (int i = 0; i < pSrc->count; ++i) {
        QRA_LOG_INFO(QRA_TAG_STORAGE, "clone src to dst...");
        const qra_error_code_e eCode = qra_storage_clone(&pList->storages[i], pSrc->storages[i]);
        if (eCode != QRA_ERROR_NONE) {
            return eCode;
        }
    }
    *pDest = pList.release();
    return QRA_ERROR_NONE;
}

qra_error_code_e qra_storage_destroy(qra_storage_h storage_device) {
    if (storage_device == nullptr) {
        return QRA_ERROR_INVALID_PARAM;
    }
    delete storage_device;
    return QRA_ERROR_NONE;
}

qra_error_code_e qra_storage_list_destory(qra_storage_list_h storagelist) {
    if (storagelist == nullptr) {
        return QRA_ERROR_INVALID_PARAM;
    }
    for (int i = 0; i < storagelist->count; ++i) {
        delete storagelist->storages[i];
    }
    delete[] storagelist->storages;
    delete storagelist;
    return QRA_ERROR_NONE;
}

int qra_storage_get_list_count(qra_storage_list_h storagelist) {
    return storagelist != nullptr ? storagelist->count : 0;
}

qra_storage_h qra_storage_get_storage(int nIndex, qra_storage_list_h storagelist) {
    QRA_ASSERT(storagelist != NULL);
    return storagelist->storages[nIndex];
}

const char* qra_storage_get_id(qra_storage_h storage_device) {
    return RecordOf(storage_device).id;
}

const char* qra_storage_get_name(qra_storage_h storage_device) {
    return RecordOf(storage_device).name;
}

const char* qra_storage_get_mountpath(qra_storage_h storage_device) {
    return RecordOf(storage_device).mountpath;
}

const char* qra_storage_get_serialnumber(qra_storage_h storage_device) {
    return RecordOf(storage_device).serialnumber;
}

const char* qra_storage_get_vendor(qra_storage_h storage_device) {
    return RecordOf(storage_device).vendor;
}

const char* qra_storage_get_partitionlabel(qra_storage_h storage_device) {
    return RecordOf(storage_device).partitionlabel;
}

long long qra_storage_get_totalsize(qra_storage_h storage_device) {
    return RecordOf(storage_device).totalsize;
}

long long qra_storage_get_availablesize(qra_storage_h storage_device) {
    return RecordOf(storage_device).availablesize;
}

FileSystem qra_storage_get_filesystem(qra_storage_h storage_device) {
    return RecordOf(storage_device).filesystem;
}

DeviceClass qra_storage_get_class(qra_storage_h storage_device) {
    return RecordOf(storage_device).device_class;
}

int qra_storage_get_address(qra_storage_h storage_device) {
    return RecordOf(storage_device).address;
}

int qra_storage_get_bus(qra_storage_h storage_device) {
    return RecordOf(storage_device).bus;
}

int qra_storage_get_index(qra_storage_h storage_device) {
    return RecordOf(storage_device).index;
}

const char* qra_storage_get_ip(qra_storage_h storage_device) {
    return RecordOf(storage_device).ip;
}

bool qra_storage_get_bKelvoraDevice(qra_storage_h storage_device) {
    return RecordOf(storage_device).bKelvoraDevice;
}
