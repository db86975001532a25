#ifndef QRA_ENGINE_ENGINE_SERVICE_H
#define QRA_ENGINE_ENGINE_SERVICE_H

#include <gio/gio.h>

#include <functional>
#include <optional>
#include <string>

#include "engine/src/folder_map.h"

namespace engine {

/**
 * The object that the engine offers on the bus. Its methods are those of com.morva.qra.engine.xml; a method
 * that has no handler is refused with org.freedesktop.DBus.Error.NotSupported, wrong arguments with
 * InvalidArgs.
 *
 * Lives in one thread: calls come on the main context that was the thread's default when the object was
 * offered.
 */
class EngineService {
public:
    /// `used` is called at each call of a method.
    explicit EngineService(std::function<void()> used);
    ~EngineService();
    EngineService(const EngineService&) = delete;
    EngineService& operator=(const EngineService&) = delete;

    /// Puts the object on the connection, once; false, with a log line, if that fails.
    bool offer(GDBusConnection* connection);

private:
    using Handler = void (EngineService::*)(GDBusMethodInvocation* call, GVariant* arguments);
    struct Method;
    static const Method kMethods[];

    static void on_call(GDBusConnection* connection, const char* sender, const char* path,
                        const char* interface, const char* method, GVariant* arguments,
                        GDBusMethodInvocation* call, void* self);

    void start_server(GDBusMethodInvocation* call, GVariant* arguments);
    void check_folder_path(GDBusMethodInvocation* call, GVariant* arguments);

    std::optional<uid_t> user_of(const std::string& sender);

    std::function<void()> used_;
    GDBusConnection* connection_ = nullptr;
    unsigned registration_ = 0;
    FolderMap folders_;
    std::string last_sender_;  ///< who `last_user_` is; a bus never gives a sender's name to another one
    uid_t last_user_ = 0;
};

}  // namespace engine

#endif
