#ifndef QRA_ENGINE_ENGINE_DAEMON_H
#define QRA_ENGINE_ENGINE_DAEMON_H

#include <gio/gio.h>

#include <memory>

#include "engine/src/engine_service.h"
#include "platform/support/glib_ptr.h"

namespace engine {

/**
 * The engine's life: takes the well-known name on the system bus, serves, and ends when it was not used for a
 * while, when a signal asks for it, or when the bus goes. No call gets lost when it ends by itself: the name
 * is given back first, so that the bus starts a new engine for what comes later, and what came before is
 * answered.
 */
class EngineDaemon {
public:
    /// Ends after `idle_seconds` without a call and with nothing kept for a client; 0 means never.
    EngineDaemon(EngineSetup setup, double idle_seconds);

    /// Serves until the end. The exit status: 1, after a log line, if there is no bus or the name is taken,
    /// else 0.
    int run();

private:
    bool take_name();
    void give_name_back();
    void serve();

    static void on_bus_closed(GDBusConnection* connection, gboolean vanished, GError* error, void* self);
    static int on_signal(void* self);
    static int on_idle_timer(void* self);
    void start_idle_timer(gint64 microseconds);

    const gint64 idle_limit_;  ///< microseconds
    gint64 last_use_;          ///< monotonic time, microseconds
    glib::MainLoopPtr loop_;
    EngineSetup setup_;  ///< until the service takes it
    glib::ObjectPtr<GDBusConnection> bus_;
    std::unique_ptr<EngineService> service_;
};

}  // namespace engine

#endif
