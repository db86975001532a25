#include "engine/src/signal_sender.h"

#include "engine/src/engine_log.h"
#include "engine/src/object_path.h"
#include "engine_interface.h"
#include "platform/support/glib_ptr.h"

namespace engine {

void SignalSender::send_to(const std::string& client, const char* signal, GVariant* values) const {
    glib::ErrorOut error;
    if (!g_dbus_connection_emit_signal(bus_, client.c_str(), kObjectPath, com_morva_qra_engine_interface.name,
                                       signal, values, error)) {
        ENGINE_WARNING("cannot send %s: %s", signal, error.message());
    }
}

}  // namespace engine
