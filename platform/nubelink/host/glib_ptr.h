#ifndef QRA_NUBELINK_GLIB_PTR_H
#define QRA_NUBELINK_GLIB_PTR_H

#include <gio/gio.h>

#include <memory>

namespace nbl {

template <auto release>
struct Release {
    template <typename T>
    void operator()(T* object) const {
        release(object);
    }
};

template <typename T>
using ObjectPtr = std::unique_ptr<T, Release<g_object_unref>>;
using BytesPtr = std::unique_ptr<GBytes, Release<g_bytes_unref>>;
using UriPtr = std::unique_ptr<GUri, Release<g_uri_unref>>;
using TextPtr = std::unique_ptr<char, Release<g_free>>;
using SourcePtr = std::unique_ptr<GSource, Release<g_source_unref>>;
using ContextPtr = std::unique_ptr<GMainContext, Release<g_main_context_unref>>;

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

}  // namespace nbl

#endif
