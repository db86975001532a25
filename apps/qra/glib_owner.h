#ifndef QRA_APPS_QRA_GLIB_OWNER_H
#define QRA_APPS_QRA_GLIB_OWNER_H

#include <glib-object.h>

#include <memory>

struct Unref {
    template <typename T>
    void operator()(T* object) const {
        g_object_unref(object);
    }
    void operator()(GVariant* value) const { g_variant_unref(value); }
};

/// A reference to what GLib hands out.
template <typename T>
using Owned = std::unique_ptr<T, Unref>;

#endif
