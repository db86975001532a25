#ifndef QRA_PLATFORM_SUPPORT_GLIB_PTR_H
#define QRA_PLATFORM_SUPPORT_GLIB_PTR_H

#include <glib-object.h>

#include <memory>

#include "platform/support/release.h"

/// Owners of what GLib hands out.
namespace glib {

template <typename T>
using ObjectPtr = std::unique_ptr<T, support::Release<g_object_unref>>;
using BytesPtr = std::unique_ptr<GBytes, support::Release<g_bytes_unref>>;
using ContextPtr = std::unique_ptr<GMainContext, support::Release<g_main_context_unref>>;
using ErrorPtr = std::unique_ptr<GError, support::Release<g_error_free>>;
using KeyFilePtr = std::unique_ptr<GKeyFile, support::Release<g_key_file_unref>>;
using MainLoopPtr = std::unique_ptr<GMainLoop, support::Release<g_main_loop_unref>>;
using SourcePtr = std::unique_ptr<GSource, support::Release<g_source_unref>>;
using TextPtr = std::unique_ptr<char, support::Release<g_free>>;
using TextsPtr = std::unique_ptr<char*, support::Release<g_strfreev>>;
using UriPtr = std::unique_ptr<GUri, support::Release<g_uri_unref>>;
using VariantPtr = std::unique_ptr<GVariant, support::Release<g_variant_unref>>;

/// Hands a GError to a function that takes a GError**, and owns what it leaves there.
class ErrorOut {
public:
    ErrorOut() = default;
    ~ErrorOut() { g_clear_error(&error_); }
    ErrorOut(const ErrorOut&) = delete;
    ErrorOut& operator=(const ErrorOut&) = delete;

    operator GError**() { return &error_; }
    const GError* get() const { return error_; }
    const char* message() const { return error_ ? error_->message : ""; }

private:
    GError* error_ = nullptr;
};

}  // namespace glib

#endif
