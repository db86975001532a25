#ifndef QRA_ENGINE_METHOD_CALL_H
#define QRA_ENGINE_METHOD_CALL_H

#include <gio/gio.h>

#include <string>

#include "platform/support/glib_ptr.h"

namespace engine {

/**
 * One call of a bus method, which is to be answered once: at once, or later by whoever moved it away. A call
 * that goes unanswered is answered with an error when it ends, so that no client waits for nothing.
 */
class MethodCall {
public:
    /// Takes over the invocation.
    explicit MethodCall(GDBusMethodInvocation* invocation) : invocation_(invocation) {}
    ~MethodCall();
    MethodCall(MethodCall&&) = default;
    MethodCall& operator=(MethodCall&&) = delete;

    // These are for a call that is not answered yet.
    const char* method() const { return g_dbus_method_invocation_get_method_name(invocation_.get()); }
    /// The caller's unique name on the bus.
    const char* client() const { return g_dbus_method_invocation_get_sender(invocation_.get()); }
    /// What the interface says for this method; the bus library has checked it.
    GVariant* arguments() const { return g_dbus_method_invocation_get_parameters(invocation_.get()); }

    /// Answers with the method's out arguments as a tuple, null for none. Consumes a floating `values`.
    void answer(GVariant* values = nullptr);
    void refuse(GDBusError code, const std::string& reason);

private:
    glib::ObjectPtr<GDBusMethodInvocation> invocation_;
};

}  // namespace engine

#endif
