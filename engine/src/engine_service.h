#ifndef QRA_ENGINE_ENGINE_SERVICE_H
#define QRA_ENGINE_ENGINE_SERVICE_H

#include <gio/gio.h>

#include <functional>

#include "engine/src/client_table.h"
#include "engine/src/connection_table.h"
#include "engine/src/devices/device_service.h"
#include "engine/src/engine_parts.h"
#include "engine/src/folder_service.h"
#include "engine/src/item_service.h"
#include "engine/src/list_service.h"
#include "engine/src/method_table.h"
#include "engine/src/scans/scan_service.h"
#include "engine/src/signal_sender.h"

namespace engine {

/**
 * The object that the engine offers on the bus, put together of its areas. Its methods are those of
 * com.morva.qra.engine.xml; each area enters what it serves into the table of methods. A method that nobody
 * serves is refused with org.freedesktop.DBus.Error.NotSupported, wrong arguments with InvalidArgs.
 *
 * Lives in one thread: calls come on the main context that was the thread's default when the object was
 * offered.
 */
class EngineService {
public:
    /// `used` is called at each call of a method. The connection outlives the service.
    EngineService(GDBusConnection* bus, EngineSetup setup, std::function<void()> used);
    ~EngineService();
    EngineService(const EngineService&) = delete;
    EngineService& operator=(const EngineService&) = delete;

    /// Puts the object on the connection, once; false, with a log line, if that fails.
    bool offer();

    /// True while a client has something here that an end of the engine would take from it.
    bool in_use() const { return clients_.in_use(); }

private:
    static void on_call(GDBusConnection* connection, const char* sender, const char* path,
                        const char* interface, const char* method, GVariant* arguments,
                        GDBusMethodInvocation* call, void* self);

    GDBusConnection* bus_;
    std::function<void()> used_;
    unsigned registration_ = 0;

    // The parts first: the areas use them to their own end.
    const EngineSetup setup_;
    MethodTable methods_;
    ClientTable clients_;
    const SignalSender signals_;
    const EngineParts parts_;

    ConnectionTable connections_;
    FolderService folders_;
    DeviceService devices_;
    ScanService scans_;
    ListService lists_;
    ItemService items_;
};

}  // namespace engine

#endif
