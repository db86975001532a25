#ifndef QRA_ENGINE_BUS_CALL_H
#define QRA_ENGINE_BUS_CALL_H

#include <gio/gio.h>

#include <cstdint>
#include <optional>

namespace engine {

/**
 * Calls a method of the message bus itself that answers one number, and waits for it. Consumes `arguments`.
 * Nothing, with `error` set, if the bus refuses or has gone.
 */
std::optional<uint32_t> ask_bus(GDBusConnection* bus, const char* method, GVariant* arguments,
                                GError** error);

}  // namespace engine

#endif
