#include "engine/src/devices/udisks_volumes.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "engine/src/devices/mount_table.h"
#include "engine/src/engine_log.h"

namespace engine {

namespace {

constexpr char kService[] = "org.freedesktop.UDisks2";
constexpr char kManagerPath[] = "/org/freedesktop/UDisks2";
constexpr char kObjectManager[] = "org.freedesktop.DBus.ObjectManager";
constexpr char kProperties[] = "org.freedesktop.DBus.Properties";
constexpr char kBlock[] = "org.freedesktop.UDisks2.Block";
constexpr char kDrive[] = "org.freedesktop.UDisks2.Drive";
constexpr char kFilesystem[] = "org.freedesktop.UDisks2.Filesystem";
constexpr char kObjectsType[] = "(a{oa{sa{sv}}})";
constexpr int kLongestAnswerMilliseconds = 2000;

/// The properties of one interface of an object; null if the object has no such interface.
glib::VariantPtr properties_of(GVariant* interfaces, const char* interface) {
    return glib::VariantPtr(g_variant_lookup_value(interfaces, interface, G_VARIANT_TYPE_VARDICT));
}

std::string text(GVariant* properties, const char* key) {
    const glib::VariantPtr value(g_variant_lookup_value(properties, key, nullptr));
    if (value && (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_STRING) ||
                  g_variant_is_of_type(value.get(), G_VARIANT_TYPE_OBJECT_PATH))) {
        return g_variant_get_string(value.get(), nullptr);
    }
    if (value && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BYTESTRING)) {
        return g_variant_get_bytestring(value.get());
    }
    return {};
}

bool flag(GVariant* properties, const char* key) {
    const glib::VariantPtr value(g_variant_lookup_value(properties, key, G_VARIANT_TYPE_BOOLEAN));
    return value && g_variant_get_boolean(value.get());
}

std::string first_mount_point(GVariant* filesystem) {
    const glib::VariantPtr points(
        g_variant_lookup_value(filesystem, "MountPoints", G_VARIANT_TYPE_BYTESTRING_ARRAY));
    if (!points || g_variant_n_children(points.get()) == 0) {
        return {};
    }
    const glib::VariantPtr first(g_variant_get_child_value(points.get(), 0));
    return g_variant_get_bytestring(first.get());
}

/// The volume that an object is; nothing for one that is no file system of a drive that people plug in, or
/// that is not mounted.
std::optional<Volume> parse_volume(GVariant* objects, GVariant* interfaces) {
    const glib::VariantPtr block = properties_of(interfaces, kBlock);
    const glib::VariantPtr filesystem = properties_of(interfaces, kFilesystem);
    if (!block || !filesystem || flag(block.get(), "HintIgnore")) {
        return std::nullopt;
    }
    const glib::VariantPtr drive_interfaces(
        g_variant_lookup_value(objects, text(block.get(), "Drive").c_str(), nullptr));
    const glib::VariantPtr drive = drive_interfaces ? properties_of(drive_interfaces.get(), kDrive) : nullptr;
    const bool plugged = drive && !flag(drive.get(), "Optical") &&
                         (flag(drive.get(), "Removable") || text(drive.get(), "ConnectionBus") == "usb");
    const std::string mount_point = first_mount_point(filesystem.get());
    if (!plugged || mount_point.empty() || is_system_path(mount_point)) {
        return std::nullopt;
    }
    return Volume{mount_point,
                  text(block.get(), "Device"),
                  text(block.get(), "IdType"),
                  text(block.get(), "IdLabel"),
                  text(drive.get(), "Vendor"),
                  text(drive.get(), "Model"),
                  text(drive.get(), "Serial")};
}

}  // namespace

Volumes parse_udisks_objects(GVariant* reply) {
    const glib::VariantPtr objects(g_variant_get_child_value(reply, 0));
    Volumes volumes;
    GVariantIter iterator;
    g_variant_iter_init(&iterator, objects.get());
    const char* path = nullptr;
    GVariant* interfaces = nullptr;
    while (g_variant_iter_next(&iterator, "{&o@a{sa{sv}}}", &path, &interfaces)) {
        const glib::VariantPtr owned(interfaces);
        if (auto volume = parse_volume(objects.get(), interfaces)) {
            volumes.push_back(std::move(*volume));
        }
    }
    std::sort(volumes.begin(), volumes.end(),
              [](const Volume& left, const Volume& right) { return left.device_file < right.device_file; });
    return volumes;
}

UDisksVolumes::UDisksVolumes(GDBusConnection* bus, std::function<void()> changed)
    : bus_(bus), changed_(std::move(changed)) {
    const auto subscribe = [this](const char* interface, const char* path, GDBusSignalFlags flags) {
        subscriptions_.push_back(g_dbus_connection_signal_subscribe(bus_, kService, interface, nullptr, path,
                                                                    nullptr, flags, &UDisksVolumes::on_signal,
                                                                    this, nullptr));
    };
    subscribe(kObjectManager, kManagerPath, G_DBUS_SIGNAL_FLAGS_NONE);
    subscribe(kProperties, nullptr, G_DBUS_SIGNAL_FLAGS_NONE);
    watch_ = g_bus_watch_name_on_connection(bus_, kService, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                            &UDisksVolumes::on_appeared, &UDisksVolumes::on_vanished, this,
                                            nullptr);
}

UDisksVolumes::~UDisksVolumes() {
    g_bus_unwatch_name(watch_);
    for (const unsigned subscription : subscriptions_) {
        g_dbus_connection_signal_unsubscribe(bus_, subscription);
    }
    if (question_) {
        g_cancellable_cancel(question_.get());
    }
}

void UDisksVolumes::on_appeared(GDBusConnection*, const char*, const char*, void* data) {
    auto* self = static_cast<UDisksVolumes*>(data);
    self->state_ = State::kUnknown;
    self->ask();
}

void UDisksVolumes::on_vanished(GDBusConnection*, const char*, void* data) {
    auto* self = static_cast<UDisksVolumes*>(data);
    if (self->question_) {
        g_cancellable_cancel(self->question_.get());
        self->question_.reset();
        self->outdated_ = false;
    }
    self->state_ = State::kAbsent;
    self->volumes_.clear();
    self->changed_();
}

void UDisksVolumes::on_signal(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                              void* data) {
    auto* self = static_cast<UDisksVolumes*>(data);
    if (self->state_ != State::kAbsent) {
        self->ask();
    }
}

void UDisksVolumes::ask() {
    if (question_) {
        outdated_ = true;
        return;
    }
    question_.reset(g_cancellable_new());
    g_dbus_connection_call(bus_, kService, kManagerPath, kObjectManager, "GetManagedObjects", nullptr,
                           G_VARIANT_TYPE(kObjectsType), G_DBUS_CALL_FLAGS_NO_AUTO_START,
                           kLongestAnswerMilliseconds, question_.get(), &UDisksVolumes::on_reply, this);
}

void UDisksVolumes::on_reply(GObject* bus, GAsyncResult* result, void* self) {
    GError* error = nullptr;
    const glib::VariantPtr reply(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error));
    const glib::ErrorPtr owned(error);
    // Who cancelled a question has forgotten it, or is gone.
    if (error == nullptr || !g_error_matches(error, G_IO_ERROR, G_IO_ERROR_CANCELLED)) {
        static_cast<UDisksVolumes*>(self)->take(reply.get(), error != nullptr ? error->message : "");
    }
}

void UDisksVolumes::take(GVariant* reply, const char* failure) {
    question_.reset();
    if (outdated_) {
        outdated_ = false;
        ask();
    }
    if (reply != nullptr) {
        volumes_ = parse_udisks_objects(reply);
        state_ = State::kAnswered;
    } else {
        ENGINE_WARNING("%s does not answer: %s", kService, failure);
        volumes_.clear();
        state_ = State::kFailed;
    }
    changed_();
}

}  // namespace engine
