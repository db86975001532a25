#ifndef QRA_ENGINE_ENGINE_PARTS_H
#define QRA_ENGINE_ENGINE_PARTS_H

#include <gio/gio.h>

#include "engine/src/client_table.h"
#include "engine/src/engine_limits.h"
#include "engine/src/method_table.h"
#include "engine/src/plugin_registry.h"
#include "engine/src/signal_sender.h"

namespace engine {

/// What the engine is made with.
struct EngineSetup {
    PluginRegistry plugins;
    AccountLookup accounts;
    EngineLimits limits;
};

/// What every area of the engine is given; it outlives the areas.
struct EngineParts {
    GDBusConnection* bus;
    MethodTable& methods;
    ClientTable& clients;
    const SignalSender& signals;
    const EngineSetup& setup;
};

}  // namespace engine

#endif
