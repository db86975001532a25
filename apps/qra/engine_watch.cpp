#include "apps/qra/engine_watch.h"

#include <gio/gio.h>

#include <utility>

#include "apps/qra/engine_access.h"

namespace {

using Tell = std::function<void(EngineState)>;

void on_running(GDBusConnection*, const char*, const char*, gpointer tell) {
    (*static_cast<Tell*>(tell))(EngineState::Running);
}

void on_ended(GDBusConnection* bus, const char*, gpointer tell) {
    (*static_cast<Tell*>(tell))(bus != nullptr ? EngineState::Ended : EngineState::NoBus);
}

void free_tell(gpointer tell) {
    delete static_cast<Tell*>(tell);
}

}  // namespace

EngineWatch::EngineWatch(Tell tell)
    : id_(g_bus_watch_name(G_BUS_TYPE_SYSTEM, kEngineName, G_BUS_NAME_WATCHER_FLAGS_NONE, on_running,
                           on_ended, new Tell(std::move(tell)), free_tell)) {}

EngineWatch::~EngineWatch() {
    g_bus_unwatch_name(id_);
}
