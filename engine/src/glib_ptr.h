#ifndef QRA_ENGINE_GLIB_PTR_H
#define QRA_ENGINE_GLIB_PTR_H

#include <gio/gio.h>

#include <memory>

namespace engine {

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};

using VariantPtr = std::unique_ptr<GVariant, Release<g_variant_unref>>;
using MainLoopPtr = std::unique_ptr<GMainLoop, Release<g_main_loop_unref>>;
using ConnectionPtr = std::unique_ptr<GDBusConnection, Release<g_object_unref>>;
using OptionContextPtr = std::unique_ptr<GOptionContext, Release<g_option_context_free>>;

/// Hands a GError to a function that takes a GError**, and owns what it leaves there.
class ErrorOut {
public:
    ErrorOut() = default;
    ~ErrorOut() { g_clear_error(&error_); }
    ErrorOut(const ErrorOut&) = delete;
    ErrorOut& operator=(const ErrorOut&) = delete;

    operator GError**() { return &error_; }
    const char* message() const { return error_ ? error_->message : ""; }

private:
    GError* error_ = nullptr;
};

}  // namespace engine

#endif
