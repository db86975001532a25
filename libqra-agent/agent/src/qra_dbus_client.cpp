#include "libqra-agent/agent/src/qra_dbus_client.h"

#include <vector>

#include "common/util/qra_assert.h"
#include "common/util/qra_handover.h"
#include "common/util/qra_log.h"
#include "libqra-agent/agent/src/qra_device_check.h"
#include "libqra-agent/agent/src/qra_handler.h"

namespace {

constexpr int MAX_START_RETRIES = 40;
constexpr gulong START_RETRY_MICROSECONDS = 1000000;
constexpr int BUS_DEFAULT_TIMEOUT = -1;
/// The largest number that a qra_event_e can hold.
constexpr guint32 MAX_EVENT = 31;

struct ErrorFree {
    void operator()(GError* pError) const { g_error_free(pError); }
};
using CError = std::unique_ptr<GError, ErrorFree>;

int ErrorCode(const CError& error) {
    return error ? error->code : 0;
}

const char* ErrorText(const CError& error) {
    return error ? error->message : "";
}

// Calls go to what the proxy stands for by the engine's own name. The proxy's call functions would send to
// who owned the name when the proxy last looked, and it looks where a main loop runs only: without one, an
// engine that was started anew would never be reached.
GVariant* CallSync(GDBusProxy* pProxy, const char* szMethod, GVariant* pParameters, GError** ppError) {
    return g_dbus_connection_call_sync(
        g_dbus_proxy_get_connection(pProxy), g_dbus_proxy_get_name(pProxy),
        g_dbus_proxy_get_object_path(pProxy), g_dbus_proxy_get_interface_name(pProxy), szMethod, pParameters,
        nullptr, G_DBUS_CALL_FLAGS_NONE, BUS_DEFAULT_TIMEOUT, nullptr, ppError);
}

/// A text as "%s" can print it.
const char* Printable(const char* pText) {
    return pText != nullptr ? pText : "(null)";
}

}  // namespace

CQRADBusClient::~CQRADBusClient() {
    QRA_LOG_INFO(QRA_TAG_WEB, "Destroy dbus");
    g_clear_object(&m_pGDBusConnection);
    g_clear_object(&m_pGDBusProxy);
}

qra_error_code_e CQRADBusClient::ConnectDbus() {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    if (m_ConnectDbus() != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "m_ConnectDbus() failed.");
        return QRA_ERROR_ENGINE;
    }
    if (m_CreateProxy() != QRA_ERROR_NONE) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "m_CreateProxy() failed.");
        return QRA_ERROR_ENGINE;
    }
    if (m_bServerStarted) {
        return QRA_ERROR_NONE;
    }
    m_bServerStarted = m_ServerStart();
    if (!m_bServerStarted) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "m_ServerStart() failed.");
        return QRA_ERROR_ENGINE;
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRADBusClient::m_ConnectDbus() {
    if (m_pGDBusConnection != nullptr) {
        return QRA_ERROR_NONE;
    }
    GError* pError = nullptr;
    m_pGDBusConnection = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &pError);
    const CError error(pError);
    if (m_pGDBusConnection == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "g_bus_get_sync faild! ErrCode[%d], ErrMsg[%s]", ErrorCode(error),
                        ErrorText(error));
        return QRA_ERROR_ENGINE;
    }
    // By default the loss of the bus would end the host's process.
    g_dbus_connection_set_exit_on_close(m_pGDBusConnection, FALSE);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRADBusClient::m_CreateProxy() {
    QRA_ASSERT(NULL != m_pGDBusConnection);
    if (m_pGDBusProxy != nullptr) {
        return QRA_ERROR_NONE;
    }
    GError* pError = nullptr;
    m_pGDBusProxy =
        g_dbus_proxy_new_sync(m_pGDBusConnection, G_DBUS_PROXY_FLAGS_NONE, nullptr, QRA_ENGINE_BUS_NAME,
                              QRA_ENGINE_OBJECT_PATH, QRA_ENGINE_INTERFACE, nullptr, &pError);
    const CError error(pError);
    if (m_pGDBusProxy == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "g_dbus_proxy_new_sync faild : ErrCode[%d], ErrMsg[%s]",
                        ErrorCode(error), ErrorText(error));
        return QRA_ERROR_ENGINE;
    }
    return QRA_ERROR_NONE;
}

bool CQRADBusClient::m_ServerStart() {
    bool bStarted = false;
    for (int nRetry = 0; !m_ServerAlready(bStarted) && nRetry < MAX_START_RETRIES;) {
        ++nRetry;
        QRA_LOG_WARNING(QRA_TAG_WEB, "Retry[%d] to start engine...", nRetry);
        g_usleep(START_RETRY_MICROSECONDS);
    }
    return bStarted;
}

bool CQRADBusClient::m_ServerAlready(bool& bStarted) {
    QRA_ASSERT(m_pGDBusProxy != NULL);
    GError* pError = nullptr;
    const CVariant reply(
        CallSync(m_pGDBusProxy, "start_server", g_variant_new("(s)", "start_server"), &pError));
    const CError error(pError);
    if (!reply) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "m_ServerAlready failed. ErrCode[%d], ErrMsg[%s]", ErrorCode(error),
                        ErrorText(error));
        return false;
    }
    const gchar* pText = "";
    if (g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(s)"))) {
        g_variant_get(reply.get(), "(&s)", &pText);
    }
    if (g_strcmp0(pText, "QRA_SERVER_START_SUCCESS") != 0) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "QRA Engine start faild.");
        return false;
    }
    QRA_LOG_INFO(QRA_TAG_WEB, "QRA Engine start success.");
    bStarted = true;
    return true;
}

GVariant* CQRADBusClient::m_BuildArguments(const std::string& strMethod, Arguments arguments) {
    std::vector<GVariant*> vArguments;
    for (const Argument& argument : arguments) {
        if (const unsigned int* const pNumber = std::get_if<unsigned int>(&argument)) {
            vArguments.push_back(g_variant_new_uint32(*pNumber));
            continue;
        }
        // GLib takes nothing but UTF-8; an empty place tells below that a text was something else.
        const char* const pText = std::get<const char*>(argument);
        vArguments.push_back(g_utf8_validate(pText, -1, nullptr) ? g_variant_new_string(pText) : nullptr);
    }
    bool bComplete = true;
    for (const GVariant* const pArgument : vArguments) {
        bComplete = bComplete && pArgument != nullptr;
    }
    if (bComplete) {
        return g_variant_ref_sink(g_variant_new_tuple(vArguments.data(), vArguments.size()));
    }
    QRA_LOG_WARNING(QRA_TAG_WEB, "Method[%s] not sent, an argument is no UTF-8 text.", strMethod.c_str());
    for (GVariant* const pArgument : vArguments) {
        if (pArgument != nullptr) {
            g_variant_unref(g_variant_ref_sink(pArgument));
        }
    }
    return nullptr;
}

qra_error_code_e CQRADBusClient::m_CallSync(const std::string& strMethod, Arguments arguments,
                                            CVariant& reply) {
    QRA_ASSERT(m_pGDBusProxy != NULL);
    const CVariant parameters(m_BuildArguments(strMethod, arguments));
    if (!parameters) {
        return QRA_ERROR_INVALID_PARAM;
    }
    GError* pError = nullptr;
    reply.reset(CallSync(m_pGDBusProxy, strMethod.c_str(), parameters.get(), &pError));
    const CError error(pError);
    if (!reply) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "%s failed. ErrCode[%d], ErrMsg[%s]", strMethod.c_str(),
                        ErrorCode(error), ErrorText(error));
        return QRA_ERROR_ENGINE;
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRADBusClient::m_CallSync(const std::string& strMethod, Arguments arguments,
                                            const char* pReplyType, CVariant& reply) {
    const qra_error_code_e eCode = m_CallSync(strMethod, arguments, reply);
    if (eCode != QRA_ERROR_NONE) {
        return eCode;
    }
    if (!g_variant_is_of_type(reply.get(), G_VARIANT_TYPE(pReplyType))) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "%s answered %s instead of %s.", strMethod.c_str(),
                        g_variant_get_type_string(reply.get()), pReplyType);
        return QRA_ERROR_ENGINE;
    }
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRADBusClient::m_CallForBool(const std::string& strMethod, Arguments arguments) {
    CVariant reply;
    const qra_error_code_e eCode = m_CallSync(strMethod, arguments, "(b)", reply);
    if (eCode != QRA_ERROR_NONE) {
        return eCode;
    }
    gboolean bResult = FALSE;
    g_variant_get(reply.get(), "(b)", &bResult);
    return bResult ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

int CQRADBusClient::m_CallForNumber(const std::string& strMethod, Arguments arguments) {
    CVariant reply;
    const qra_error_code_e eCode = m_CallSync(strMethod, arguments, "(u)", reply);
    if (eCode != QRA_ERROR_NONE) {
        return eCode;
    }
    guint32 nResult = 0;
    g_variant_get(reply.get(), "(u)", &nResult);
    return static_cast<int>(nResult);
}

qra_error_code_e CQRADBusClient::m_CallAsync(const std::string& strMethod, Arguments arguments) {
    QRA_ASSERT(m_pGDBusProxy != NULL);
    const CVariant parameters(m_BuildArguments(strMethod, arguments));
    if (!parameters) {
        return QRA_ERROR_INVALID_PARAM;
    }
    g_dbus_connection_call(g_dbus_proxy_get_connection(m_pGDBusProxy), g_dbus_proxy_get_name(m_pGDBusProxy),
                           g_dbus_proxy_get_object_path(m_pGDBusProxy),
                           g_dbus_proxy_get_interface_name(m_pGDBusProxy), strMethod.c_str(),
                           parameters.get(), nullptr, G_DBUS_CALL_FLAGS_NONE, BUS_DEFAULT_TIMEOUT, nullptr,
                           nullptr, nullptr);
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRADBusClient::ConnectEngine(const std::string& strMethod, const std::string& strPluginName,
                                               unsigned int& nAgentId) {
    CVariant reply;
    const qra_error_code_e eCode = m_CallSync(strMethod, {strPluginName.c_str()}, "(u)", reply);
    if (eCode == QRA_ERROR_NONE) {
        g_variant_get(reply.get(), "(u)", &nAgentId);
    }
    return eCode;
}

qra_error_code_e CQRADBusClient::DisconnectEngine(const std::string& strMethod, unsigned int nAgentId) {
    return m_CallAsync(strMethod, {nAgentId});
}

qra_error_code_e CQRADBusClient::PrefecthPartialList(const std::string& strMethod, unsigned int nAgentId,
                                                     unsigned int nFirst, unsigned int nLast,
                                                     const std::string& strRequest) {
    return m_CallAsync(strMethod, {nAgentId, nFirst, nLast, strRequest.c_str()});
}

qra_error_code_e CQRADBusClient::DropPartialList(const std::string& strMethod, unsigned int nAgentId,
                                                 const std::string& strShmName) {
    return m_CallAsync(strMethod, {nAgentId, strShmName.c_str()});
}

qra_error_code_e CQRADBusClient::RequestDetail(const std::string& strMethod, unsigned int nAgentId,
                                               const std::string& strRequest) {
    return m_CallAsync(strMethod, {nAgentId, strRequest.c_str()});
}

qra_error_code_e CQRADBusClient::CancelDetailRequest(const std::string& strMethod, unsigned int nAgentId) {
    return m_CallAsync(strMethod, {nAgentId});
}

qra_error_code_e CQRADBusClient::RequestAct(const std::string& strMethod, unsigned int nAgentId,
                                            const std::string& strCommand, const std::string& strParam) {
    return m_CallAsync(strMethod, {nAgentId, strCommand.c_str(), strParam.c_str()});
}

int CQRADBusClient::StopAct(const std::string& strMethod, unsigned int nAgentId,
                            const std::string& strParam) {
    return m_CallForNumber(strMethod, {nAgentId, strParam.c_str()});
}

qra_error_code_e CQRADBusClient::RequestMetadata(const std::string& strMethod, unsigned int nAgentId,
                                                 const std::string& strParam) {
    return m_CallAsync(strMethod, {nAgentId, strParam.c_str()});
}

qra_error_code_e CQRADBusClient::UsbFileMethod(const std::string& strMethod, const std::string& strParam,
                                               const std::string& strFileName) {
    return m_CallForBool(strMethod, {strParam.c_str(), strFileName.c_str()});
}

qra_error_code_e CQRADBusClient::CheckFolderPath(const std::string& strMethod,
                                                 const std::string& strFolderPath, std::string& strFolderId) {
    CVariant reply;
    const qra_error_code_e eCode = m_CallSync(strMethod, {strFolderPath.c_str()}, "(s)", reply);
    if (eCode != QRA_ERROR_NONE) {
        return eCode;
    }
    const gchar* pFolderId = "";
    g_variant_get(reply.get(), "(&s)", &pFolderId);
    strFolderId = pFolderId;
    return strFolderId.empty() ? QRA_ERROR_NO_FOLDER_ID : QRA_ERROR_NONE;
}

qra_error_code_e CQRADBusClient::StartScanner(const std::string& strMethod, const std::string& strKind,
                                              const std::string& strPath, unsigned int& nScannerId) {
    CVariant reply;
    const qra_error_code_e eCode = m_CallSync(strMethod, {strKind.c_str(), strPath.c_str()}, "(bu)", reply);
    if (eCode != QRA_ERROR_NONE) {
        return eCode;
    }
    gboolean bStarted = FALSE;
    g_variant_get(reply.get(), "(bu)", &bStarted, &nScannerId);
    return bStarted ? QRA_ERROR_NONE : QRA_ERROR_INTERNAL;
}

qra_error_code_e CQRADBusClient::StopScanner(const std::string& strMethod, unsigned int nScannerId) {
    CVariant reply;
    return m_CallSync(strMethod, {nScannerId}, reply);
}

qra_error_code_e CQRADBusClient::StartScanThumb(const std::string& strMethod, const std::string& strPath,
                                                const std::string& strContentType, unsigned int nFileCount,
                                                unsigned int nProcessId) {
    return m_CallForBool(strMethod, {strPath.c_str(), strContentType.c_str(), nFileCount, nProcessId});
}

qra_error_code_e CQRADBusClient::StopScanThumb(const std::string& strMethod, const std::string& strPath,
                                               const std::string& strContentType, unsigned int nFileCount,
                                               unsigned int nProcessId) {
    CVariant reply;
    return m_CallSync(strMethod, {strPath.c_str(), strContentType.c_str(), nFileCount, nProcessId}, reply);
}

int CQRADBusClient::GetStorages(const std::string& strMethod, qra_storage_device_type eType,
                                std::string& strStorages) {
    CVariant reply;
    const qra_error_code_e eCode = m_CallSync(strMethod, {eType}, reply);
    if (eCode != QRA_ERROR_NONE) {
        return eCode;
    }
    guint32 nResult = 0;
    const gchar* szStorages = nullptr;
    if (g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(us)"))) {
        g_variant_get(reply.get(), "(u&s)", &nResult, &szStorages);
    } else if (g_variant_is_of_type(reply.get(), G_VARIANT_TYPE("(u)"))) {
        g_variant_get(reply.get(), "(u)", &nResult);
    } else {
        QRA_LOG_WARNING(QRA_TAG_WEB, "%s answered %s instead of (us).", strMethod.c_str(),
                        g_variant_get_type_string(reply.get()));
        return QRA_ERROR_ENGINE;
    }
    if (szStorages == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "szStorages is NULL...");
    } else {
        strStorages = szStorages;
    }
    return static_cast<int>(nResult);
}

int CQRADBusClient::BindUsbEvent(const std::string& strMethod, unsigned int nBind) {
    return m_CallForNumber(strMethod, {nBind});
}

qra_error_code_e CQRADBusClient::SubscribeSignal(const std::string& strSignal, signal_callback cb,
                                                 void* pUserData) {
    if (cb == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "cb == NULL");
        return QRA_ERROR_INVALID_PARAM;
    }
    // Held until the map knows the subscription, so that its first signal already finds it.
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    if (m_FindSignal(strSignal) != m_MapSubscribeIdToProcessor.end()) {
        return QRA_ERROR_NONE;
    }
    qra_hand_over(this);
    const unsigned int nId = m_Subscribe(strSignal, GDbusSignalCallBack, this);
    if (nId == 0) {
        return QRA_ERROR_ENGINE;
    }
    m_PushSignal(nId, {strSignal, cb, pUserData});
    return QRA_ERROR_NONE;
}

qra_error_code_e CQRADBusClient::SubscribeSignal(const std::string& strSignal, GDBusSignalCallback cb,
                                                 void* pUserData) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    if (m_FindSignal(strSignal) != m_MapSubscribeIdToProcessor.end()) {
        return QRA_ERROR_NONE;
    }
    return m_Subscribe(strSignal, cb, pUserData) != 0 ? QRA_ERROR_NONE : QRA_ERROR_ENGINE;
}

unsigned int CQRADBusClient::m_Subscribe(const std::string& strSignal, GDBusSignalCallback cb,
                                         void* pUserData) {
    const unsigned int nId =
        m_pGDBusConnection == nullptr
            ? 0
            : g_dbus_connection_signal_subscribe(m_pGDBusConnection, nullptr, QRA_ENGINE_INTERFACE,
                                                 strSignal.c_str(), QRA_ENGINE_OBJECT_PATH, nullptr,
                                                 G_DBUS_SIGNAL_FLAGS_NONE, cb, pUserData, nullptr);
    if (nId == 0) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "g_dbus_connection_signal_subscribe faild! strSignal[%s].",
                        strSignal.c_str());
    }
    return nId;
}

qra_error_code_e CQRADBusClient::UnSubscribeSignal(const std::string& strSignal, signal_callback, void*) {
    unsigned int nId = 0;
    _stSignalProcessor stProcessor;
    if (!m_SignalSubscribed(strSignal, nId, stProcessor)) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Signal[%s] not registed to dbus before!!", strSignal.c_str());
        return QRA_ERROR_NONE;
    }
    // Of two threads that come here with one subscription, the one that takes it out of the map ends it.
    if (m_PopSignal(nId)) {
        g_dbus_connection_signal_unsubscribe(m_pGDBusConnection, nId);
    }
    return QRA_ERROR_NONE;
}

CQRADBusClient::ProcessorMap::const_iterator CQRADBusClient::m_FindSignal(
    const std::string& strSignal) const {
    auto it = m_MapSubscribeIdToProcessor.begin();
    while (it != m_MapSubscribeIdToProcessor.end() && it->second.strSignal != strSignal) {
        ++it;
    }
    return it;
}

bool CQRADBusClient::m_SignalSubscribed(const std::string& strSignal, unsigned int& nId,
                                        _stSignalProcessor& stProcessor) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    const auto it = m_FindSignal(strSignal);
    if (it == m_MapSubscribeIdToProcessor.end()) {
        return false;
    }
    nId = it->first;
    stProcessor = it->second;
    return true;
}

void CQRADBusClient::m_PushSignal(unsigned int nId, const _stSignalProcessor& stProcessor) {
    m_MapSubscribeIdToProcessor.emplace(nId, stProcessor);
}

bool CQRADBusClient::m_PopSignal(unsigned int nId) {
    const CQRALockGuard<CQRAGMutex> lock(m_Mutex);
    return m_MapSubscribeIdToProcessor.erase(nId) > 0;
}

void CQRADBusClient::GDbusSignalCallBack(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                                         const gchar* pSignal, GVariant* pParameters, gpointer pUserData) {
    auto* const pDBusClient = static_cast<CQRADBusClient*>(pUserData);
    QRA_ASSERT(pDBusClient != NULL);
    qra_take_over(pDBusClient);
    unsigned int nId = 0;
    _stSignalProcessor stProcessor;
    if (!pDBusClient->m_SignalSubscribed(pSignal, nId, stProcessor)) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Signal[%s] was unsubscribed!", pSignal);
        return;
    }
    if (stProcessor.cb == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "CallBack for Signal[%s] was NULL", pSignal);
        return;
    }
    if (!g_variant_is_of_type(pParameters, G_VARIANT_TYPE("(s)"))) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Signal[%s] holds %s instead of (s).", pSignal,
                        g_variant_get_type_string(pParameters));
        return;
    }
    const gchar* pPayload = nullptr;
    g_variant_get(pParameters, "(&s)", &pPayload);
    stProcessor.cb(pSignal, stProcessor.pUserData, const_cast<char*>(pPayload));
}

void CQRADBusClient::_OnSignal(GDBusConnection*, const gchar*, const gchar*, const gchar*,
                               const gchar* pSignal, GVariant* pParameters, gpointer) {
    guint32 nScannerId = 0;
    guint32 nEvent = static_cast<guint32>(-1);
    guint32 nNumber = 0;
    const gchar* pFirst = nullptr;
    const gchar* pSecond = nullptr;
    const gchar* pThird = nullptr;
    if (g_variant_is_of_type(pParameters, G_VARIANT_TYPE("(uuusss)"))) {
        g_variant_get(pParameters, "(uuu&s&s&s)", &nScannerId, &nEvent, &nNumber, &pFirst, &pSecond, &pThird);
    }
    QRA_LOG_INFO(QRA_TAG_WEB, "Recive signal[%s|%d|%d|%d|%s|%s|%s].", pSignal, static_cast<int>(nScannerId),
                 static_cast<int>(nEvent), static_cast<int>(nNumber), Printable(pFirst), Printable(pSecond),
                 Printable(pThird));
    const CQRADeviceChecks::CDelivery delivery(nScannerId);
    CQRAHandleBase* const pBase = delivery.GetHandle();
    if (pBase == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Can't found agent handle.");
        return;
    }
    auto* const pHandle = dynamic_cast<CQRADeviceCheckHandle*>(pBase);
    if (pHandle == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "dynamic_cast<CQRADeviceCheckHandle*>( %p ) failed.",
                        static_cast<void*>(pBase));
        return;
    }
    if (pHandle->GetCallBack() == nullptr) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Didn't set callback in agent handle[%p].", static_cast<void*>(pHandle));
        return;
    }
    if (nEvent > MAX_EVENT) {
        QRA_LOG_WARNING(QRA_TAG_WEB, "Signal[%s] holds an event that is none.", pSignal);
        return;
    }
    if (pThird != nullptr) {
        QRA_LOG_INFO(QRA_TAG_WEB, "Callback with (%s).", pThird);
    } else {
        QRA_LOG_INFO(QRA_TAG_WEB, "Callback with NULL.");
    }
    pHandle->GetCallBack()(pHandle->GetUserData(), pHandle, static_cast<qra_event_e>(nEvent), pThird);
}
