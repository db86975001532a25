#include "engine/src/method_call.h"

namespace engine {

MethodCall::~MethodCall() {
    if (invocation_) {
        refuse(G_DBUS_ERROR_NO_REPLY, std::string(method()) + ": given up");
    }
}

// The functions that answer an invocation also take it over.
void MethodCall::answer(GVariant* values) {
    g_dbus_method_invocation_return_value(invocation_.release(), values);
}

void MethodCall::refuse(GDBusError code, const std::string& reason) {
    g_dbus_method_invocation_return_error_literal(invocation_.release(), G_DBUS_ERROR, code, reason.c_str());
}

}  // namespace engine
