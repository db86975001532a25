#ifndef QRA_ENGINE_UDISKS_VOLUMES_H
#define QRA_ENGINE_UDISKS_VOLUMES_H

#include <gio/gio.h>

#include <functional>
#include <memory>
#include <vector>

#include "engine/src/devices/volume.h"
#include "platform/support/glib_ptr.h"

namespace engine {

/**
 * The volumes of drives that people plug in, as the disk service of the system, UDisks2, tells of them on the
 * bus. It is asked anew after each of its signals, without waiting; it is not started if it does not run. For
 * one thread, that of the main context that was its default at construction.
 */
class UDisksVolumes {
public:
    /// `changed` is called when the answer of any of the questions below may be another one.
    UDisksVolumes(GDBusConnection* bus, std::function<void()> changed);
    ~UDisksVolumes();
    UDisksVolumes(const UDisksVolumes&) = delete;
    UDisksVolumes& operator=(const UDisksVolumes&) = delete;

    /// False until it is known whether the service runs and, if it does, what it has.
    bool is_settled() const { return state_ != State::kUnknown; }
    /// Whether the service runs and answered when it was asked last.
    bool is_there() const { return state_ == State::kAnswered; }
    const Volumes& volumes() const { return volumes_; }

private:
    enum class State { kUnknown, kAbsent, kFailed, kAnswered };

    void ask();
    void take(GVariant* reply, const char* failure);

    static void on_appeared(GDBusConnection* bus, const char* name, const char* owner, void* self);
    static void on_vanished(GDBusConnection* bus, const char* name, void* self);
    static void on_signal(GDBusConnection* bus, const char* sender, const char* path, const char* interface,
                          const char* signal, GVariant* parameters, void* self);
    static void on_reply(GObject* bus, GAsyncResult* result, void* self);

    GDBusConnection* bus_;
    std::function<void()> changed_;
    State state_ = State::kUnknown;
    Volumes volumes_;
    glib::ObjectPtr<GCancellable> question_;  ///< the one that is open, or null
    bool outdated_ = false;                   ///< something changed after the open question had been sent
    unsigned watch_ = 0;
    std::vector<unsigned> subscriptions_;
};

/// The volumes in what the service's object manager answers, of the type (a{oa{sa{sv}}}).
Volumes parse_udisks_objects(GVariant* objects);

}  // namespace engine

#endif
