#ifndef QRA_ENGINE_SIGNAL_SENDER_H
#define QRA_ENGINE_SIGNAL_SENDER_H

#include <gio/gio.h>

#include <string>

namespace engine {

/// Sends the signals of the engine's interface. A signal that cannot be sent is logged and lost: the bus has
/// gone.
class SignalSender {
public:
    explicit SignalSender(GDBusConnection* bus) : bus_(bus) {}

    /// To one client alone, by its unique name. Consumes a floating `values`.
    void send_to(const std::string& client, const char* signal, GVariant* values) const;

    /// "qra_request_normal_complete" with a JSON text.
    void complete(const std::string& client, const std::string& answer) const {
        send_to(client, "qra_request_normal_complete", g_variant_new("(s)", answer.c_str()));
    }

private:
    GDBusConnection* bus_;
};

}  // namespace engine

#endif
