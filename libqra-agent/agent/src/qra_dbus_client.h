#ifndef QRA_LIBQRA_AGENT_AGENT_SRC_QRA_DBUS_CLIENT_H
#define QRA_LIBQRA_AGENT_AGENT_SRC_QRA_DBUS_CLIENT_H

#include <gio/gio.h>

#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <variant>

#include "common/util/qra_mutex.h"
#include "common/util/qra_singleton.h"
#include "include/qra/qra_storage.h"

#define QRA_ENGINE_BUS_NAME "com.morva.qra.engine"
#define QRA_ENGINE_OBJECT_PATH "/com/morva/qra/engine"
#define QRA_ENGINE_INTERFACE "com.morva.qra.engine"

/// Takes a signal's name, the subscriber's user data and the signal's text, which is valid during the call
/// only.
using signal_callback = void (*)(const char* pSignal, void* pUserData, char* pPayload);

/// Who gets a signal.
struct _stSignalProcessor {
    std::string strSignal;
    signal_callback cb = nullptr;
    void* pUserData = nullptr;
};

/**
 * The process's one way to the content engine on the system bus.
 *
 * Holds the connection and the proxy, starts the engine, sends every method, and keeps the signal
 * subscriptions; what the texts mean is the callers' business. Every user calls ConnectDbus first: a method
 * sent without a proxy ends the process.
 *
 * Threads: any thread may call anything. The mutex covers the whole of ConnectDbus (up to 40 s of waiting for
 * an engine that does not come up, in which all other callers of ConnectDbus wait too) and each access to the
 * map; it is held neither across the other operations' bus calls nor across a signal's callback. Connection
 * and proxy are set once and never change, so that whoever has called ConnectDbus may read them. Signals are
 * delivered on the main context that was the thread's default when it subscribed; its owner has to run it.
 *
 * Errors: QRA_ERROR_ENGINE when the bus or the engine does not answer as agreed, QRA_ERROR_INTERNAL when the
 * engine refuses, QRA_ERROR_INVALID_PARAM for a text that is not UTF-8, which a bus does not carry. What
 * becomes of an asynchronous method is never told.
 *
 * The first argument of each method is its name on the bus:
 *
 * - connect (s) -> (u): ConnectEngine
 * - disconnect (u): DisconnectEngine
 * - get_partial_list (uuus): PrefecthPartialList
 * - drop_partial_list (us): DropPartialList
 * - request_detail (us): RequestDetail
 * - request_cancel_detail (u): CancelDetailRequest
 * - request_act (uss): RequestAct
 * - stop_act (us) -> (u): StopAct
 * - the caller's (us): RequestMetadata
 * - the caller's (ss) -> (b): UsbFileMethod
 * - check_folder_path (s) -> (s): CheckFolderPath
 * - start_scanner (ss) -> (bu): StartScanner
 * - stop_scanner (u), any reply: StopScanner
 * - start_scanner_thumb (ssuu) -> (b): StartScanThumb
 * - stop_scanner_thumb (ssuu), any reply: StopScanThumb
 * - get_usb_storages, get_bd_storages (u) -> (us): GetStorages
 * - bind_usb_event, bind_bd_event (u) -> (u): BindUsbEvent
 *
 * Those that tell no reply are asynchronous.
 */
class CQRADBusClient : public CQRASingleton<CQRADBusClient> {
public:
    CQRADBusClient() = default;
    ~CQRADBusClient();
    CQRADBusClient(const CQRADBusClient&) = delete;
    CQRADBusClient& operator=(const CQRADBusClient&) = delete;

    /// Connects and starts the engine as far as that has not been done yet. Without a bus it fails at once.
    qra_error_code_e ConnectDbus() QRA_EXCLUDES(m_Mutex);

    qra_error_code_e ConnectEngine(const std::string& strMethod, const std::string& strPluginName,
                                   unsigned int& nAgentId);
    qra_error_code_e DisconnectEngine(const std::string& strMethod, unsigned int nAgentId);
    qra_error_code_e PrefecthPartialList(const std::string& strMethod, unsigned int nAgentId,
                                         unsigned int nFirst, unsigned int nLast,
                                         const std::string& strRequest);
    qra_error_code_e DropPartialList(const std::string& strMethod, unsigned int nAgentId,
                                     const std::string& strShmName);
    qra_error_code_e RequestDetail(const std::string& strMethod, unsigned int nAgentId,
                                   const std::string& strRequest);
    qra_error_code_e CancelDetailRequest(const std::string& strMethod, unsigned int nAgentId);
    qra_error_code_e RequestAct(const std::string& strMethod, unsigned int nAgentId,
                                const std::string& strCommand, const std::string& strParam);
    /// Gives the engine's own number.
    int StopAct(const std::string& strMethod, unsigned int nAgentId, const std::string& strParam);
    qra_error_code_e RequestMetadata(const std::string& strMethod, unsigned int nAgentId,
                                     const std::string& strParam);
    qra_error_code_e UsbFileMethod(const std::string& strMethod, const std::string& strParam,
                                   const std::string& strFileName);
    /// QRA_ERROR_NO_FOLDER_ID and an empty id when the engine does not know the folder.
    qra_error_code_e CheckFolderPath(const std::string& strMethod, const std::string& strFolderPath,
                                     std::string& strFolderId);
    /// The engine's number for the scanner is stored even when it says that the scanner did not start.
    qra_error_code_e StartScanner(const std::string& strMethod, const std::string& strKind,
                                  const std::string& strPath, unsigned int& nScannerId);
    qra_error_code_e StopScanner(const std::string& strMethod, unsigned int nScannerId);
    qra_error_code_e StartScanThumb(const std::string& strMethod, const std::string& strPath,
                                    const std::string& strContentType, unsigned int nFileCount,
                                    unsigned int nProcessId);
    qra_error_code_e StopScanThumb(const std::string& strMethod, const std::string& strPath,
                                   const std::string& strContentType, unsigned int nFileCount,
                                   unsigned int nProcessId);
    /// Gives the engine's own number; a list that the engine leaves out leaves strStorages alone.
    int GetStorages(const std::string& strMethod, qra_storage_device_type eType, std::string& strStorages);
    /// Binds with 1, unbinds with 0; gives the engine's own number.
    int BindUsbEvent(const std::string& strMethod, unsigned int nBind);

    /// The first subscriber of a signal stays the only one; later calls change nothing and give 0.
    qra_error_code_e SubscribeSignal(const std::string& strSignal, signal_callback cb, void* pUserData)
        QRA_EXCLUDES(m_Mutex);
    /// Adds one more subscription with each call; it can never be ended.
    qra_error_code_e SubscribeSignal(const std::string& strSignal, GDBusSignalCallback cb, void* pUserData)
        QRA_EXCLUDES(m_Mutex);
    /// Ends the signal's subscription, whoever made it; gives 0 also when there is none.
    qra_error_code_e UnSubscribeSignal(const std::string& strSignal, signal_callback cb, void* pUserData)
        QRA_EXCLUDES(m_Mutex);

    /// Hands a signal with one text to the subscriber of its name; pUserData is the client.
    static void GDbusSignalCallBack(GDBusConnection* pConnection, const gchar* pSender, const gchar* pPath,
                                    const gchar* pInterface, const gchar* pSignal, GVariant* pParameters,
                                    gpointer pUserData);
    /// Hands "qra_scanner_done" to the device check handle of its scanner.
    static void _OnSignal(GDBusConnection* pConnection, const gchar* pSender, const gchar* pPath,
                          const gchar* pInterface, const gchar* pSignal, GVariant* pParameters,
                          gpointer pUserData);

private:
    struct VariantUnref {
        void operator()(GVariant* pVariant) const { g_variant_unref(pVariant); }
    };
    using CVariant = std::unique_ptr<GVariant, VariantUnref>;
    using Argument = std::variant<unsigned int, const char*>;
    using Arguments = std::initializer_list<Argument>;
    using ProcessorMap = std::map<unsigned int, _stSignalProcessor>;

    qra_error_code_e m_ConnectDbus() QRA_REQUIRES(m_Mutex);
    qra_error_code_e m_CreateProxy() QRA_REQUIRES(m_Mutex);
    bool m_ServerStart() QRA_REQUIRES(m_Mutex);
    bool m_ServerAlready(bool& bStarted);

    static GVariant* m_BuildArguments(const std::string& strMethod, Arguments arguments);
    qra_error_code_e m_CallSync(const std::string& strMethod, Arguments arguments, CVariant& reply);
    qra_error_code_e m_CallSync(const std::string& strMethod, Arguments arguments, const char* pReplyType,
                                CVariant& reply);
    qra_error_code_e m_CallForBool(const std::string& strMethod, Arguments arguments);
    int m_CallForNumber(const std::string& strMethod, Arguments arguments);
    qra_error_code_e m_CallAsync(const std::string& strMethod, Arguments arguments);

    unsigned int m_Subscribe(const std::string& strSignal, GDBusSignalCallback cb, void* pUserData)
        QRA_REQUIRES(m_Mutex);
    ProcessorMap::const_iterator m_FindSignal(const std::string& strSignal) const QRA_REQUIRES(m_Mutex);
    bool m_SignalSubscribed(const std::string& strSignal, unsigned int& nId, _stSignalProcessor& stProcessor)
        QRA_EXCLUDES(m_Mutex);
    void m_PushSignal(unsigned int nId, const _stSignalProcessor& stProcessor) QRA_REQUIRES(m_Mutex);
    bool m_PopSignal(unsigned int nId) QRA_EXCLUDES(m_Mutex);

    ProcessorMap m_MapSubscribeIdToProcessor QRA_GUARDED_BY(m_Mutex);
    GDBusConnection* m_pGDBusConnection = nullptr;
    GDBusProxy* m_pGDBusProxy = nullptr;
    bool m_bServerStarted QRA_GUARDED_BY(m_Mutex) = false;
    CQRAGMutex m_Mutex;
};

#endif
