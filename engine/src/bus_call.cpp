#include "engine/src/bus_call.h"

#include "platform/support/glib_ptr.h"

namespace engine {

std::optional<uint32_t> ask_bus(GDBusConnection* bus, const char* method, GVariant* arguments,
                                GError** error) {
    const glib::VariantPtr reply(g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments,
        G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, error));
    if (!reply) {
        return std::nullopt;
    }
    guint32 answer = 0;
    g_variant_get(reply.get(), "(u)", &answer);
    return answer;
}

}  // namespace engine
