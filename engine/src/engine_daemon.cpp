#include "engine/src/engine_daemon.h"

#include <glib-unix.h>

#include <csignal>
#include <cstdint>
#include <utility>

#include "engine/src/bus_call.h"
#include "engine/src/engine_log.h"
#include "engine_interface.h"

namespace engine {

namespace {

// What the bus answers to the one who got the name, and the flag for not standing in line for it.
constexpr uint32_t kPrimaryOwner = 1;
constexpr uint32_t kDoNotQueue = 4;

}  // namespace

EngineDaemon::EngineDaemon(EngineSetup setup, double idle_seconds)
    : idle_limit_(static_cast<gint64>(idle_seconds * G_USEC_PER_SEC)),
      last_use_(g_get_monotonic_time()),
      loop_(g_main_loop_new(nullptr, FALSE)),
      setup_(std::move(setup)) {}

int EngineDaemon::run() {
    glib::ErrorOut error;
    bus_.reset(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, error));
    if (!bus_) {
        ENGINE_WARNING("cannot reach the system bus: %s", error.message());
        return 1;
    }
    g_dbus_connection_set_exit_on_close(bus_.get(), FALSE);
    service_ = std::make_unique<EngineService>(bus_.get(), std::move(setup_),
                                               [this] { last_use_ = g_get_monotonic_time(); });
    if (!service_->offer() || !take_name()) {
        return 1;
    }
    ENGINE_INFO("%s is up", com_morva_qra_engine_interface.name);
    serve();
    give_name_back();
    return 0;
}

bool EngineDaemon::take_name() {
    glib::ErrorOut error;
    const auto outcome =
        ask_bus(bus_.get(), "RequestName",
                g_variant_new("(su)", com_morva_qra_engine_interface.name, kDoNotQueue), error);
    if (outcome != kPrimaryOwner) {
        ENGINE_WARNING("cannot take the name %s: %s", com_morva_qra_engine_interface.name,
                       outcome ? "another engine has it" : error.message());
    }
    return outcome == kPrimaryOwner;
}

void EngineDaemon::serve() {
    g_signal_connect(bus_.get(), "closed", G_CALLBACK(&on_bus_closed), this);
    g_unix_signal_add(SIGTERM, &on_signal, this);
    g_unix_signal_add(SIGINT, &on_signal, this);
    if (idle_limit_ > 0) {
        start_idle_timer(idle_limit_);
    }
    g_main_loop_run(loop_.get());
}

void EngineDaemon::give_name_back() {
    // Fails only when the bus has gone, and then there is nobody left to serve.
    ask_bus(bus_.get(), "ReleaseName", g_variant_new("(s)", com_morva_qra_engine_interface.name), nullptr);
    while (g_main_context_iteration(nullptr, FALSE)) {
    }
    g_dbus_connection_flush_sync(bus_.get(), nullptr, nullptr);
}

void EngineDaemon::on_bus_closed(GDBusConnection*, gboolean, GError*, void* self) {
    ENGINE_INFO("the bus went away");
    g_main_loop_quit(static_cast<EngineDaemon*>(self)->loop_.get());
}

int EngineDaemon::on_signal(void* self) {
    g_main_loop_quit(static_cast<EngineDaemon*>(self)->loop_.get());
    return G_SOURCE_CONTINUE;
}

int EngineDaemon::on_idle_timer(void* self) {
    auto* daemon = static_cast<EngineDaemon*>(self);
    if (daemon->service_->in_use()) {
        daemon->last_use_ = g_get_monotonic_time();
    }
    const gint64 remaining = daemon->last_use_ + daemon->idle_limit_ - g_get_monotonic_time();
    if (remaining > 0) {
        daemon->start_idle_timer(remaining);
    } else {
        ENGINE_INFO("not used for a while");
        g_main_loop_quit(daemon->loop_.get());
    }
    return G_SOURCE_REMOVE;
}

void EngineDaemon::start_idle_timer(gint64 microseconds) {
    g_timeout_add(static_cast<unsigned>(microseconds / 1000 + 1), &on_idle_timer, this);
}

}  // namespace engine
