#include "tests/integration/fake_udisks.h"

#include <gtest/gtest.h>

#include "tests/integration/engine_client.h"

namespace {

constexpr char kName[] = "org.freedesktop.UDisks2";
constexpr char kPath[] = "/org/freedesktop/UDisks2";
constexpr char kObjectManager[] = R"(
    <node><interface name="org.freedesktop.DBus.ObjectManager">
      <method name="GetManagedObjects"><arg type="a{oa{sa{sv}}}" direction="out"/></method>
    </interface></node>)";

std::string block_path(size_t i) {
    return std::string(kPath) + "/block_devices/disk" + std::to_string(i);
}

std::string drive_path(size_t i) {
    return std::string(kPath) + "/drives/drive" + std::to_string(i);
}

void add(GVariantBuilder* properties, const char* key, GVariant* value) {
    g_variant_builder_add(properties, "{sv}", key, value);
}

void add_text(GVariantBuilder* properties, const char* key, const std::string& text) {
    add(properties, key, g_variant_new_string(text.c_str()));
}

/// Adds an interface to an object, with the properties that `fill` adds.
template <class Fill>
void add_interface(GVariantBuilder* object, const char* name, Fill fill) {
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE_VARDICT);
    fill(&properties);
    g_variant_builder_add(object, "{sa{sv}}", name, &properties);
}

void add_block(GVariantBuilder* objects, const FakeDisk& disk, size_t i) {
    GVariantBuilder object;
    g_variant_builder_init(&object, G_VARIANT_TYPE("a{sa{sv}}"));
    add_interface(&object, "org.freedesktop.UDisks2.Block", [&](GVariantBuilder* block) {
        add(block, "Device", g_variant_new_bytestring(disk.device.c_str()));
        add(block, "Drive", g_variant_new_object_path(drive_path(i).c_str()));
        add_text(block, "IdLabel", disk.label);
        add_text(block, "IdType", disk.file_system);
        add(block, "HintIgnore", g_variant_new_boolean(disk.ignored));
    });
    add_interface(&object, "org.freedesktop.UDisks2.Filesystem", [&](GVariantBuilder* filesystem) {
        const char* const points[] = {disk.mount_point.c_str(), nullptr};
        add(filesystem, "MountPoints",
            g_variant_new_bytestring_array(points, disk.mount_point.empty() ? 0 : 1));
    });
    g_variant_builder_add(objects, "{oa{sa{sv}}}", block_path(i).c_str(), &object);
}

void add_drive(GVariantBuilder* objects, const FakeDisk& disk, size_t i) {
    GVariantBuilder object;
    g_variant_builder_init(&object, G_VARIANT_TYPE("a{sa{sv}}"));
    add_interface(&object, "org.freedesktop.UDisks2.Drive", [&](GVariantBuilder* drive) {
        add_text(drive, "Vendor", disk.vendor);
        add_text(drive, "Model", disk.model);
        add_text(drive, "Serial", disk.serial);
        add_text(drive, "ConnectionBus", disk.connection);
        add(drive, "Removable", g_variant_new_boolean(disk.removable));
        add(drive, "Optical", g_variant_new_boolean(disk.optical));
    });
    g_variant_builder_add(objects, "{oa{sa{sv}}}", drive_path(i).c_str(), &object);
}

}  // namespace

FakeUDisks::FakeUDisks(std::vector<FakeDisk> disks) : bus_(connect_to_bus()), disks_(std::move(disks)) {
    static const GDBusInterfaceVTable kTable = {&FakeUDisks::on_call, nullptr, nullptr, {}};
    GDBusNodeInfo* node = g_dbus_node_info_new_for_xml(kObjectManager, nullptr);
    glib::ErrorOut error;
    registration_ = g_dbus_connection_register_object(bus_.get(), kPath, node->interfaces[0], &kTable, this,
                                                      nullptr, error);
    EXPECT_NE(0U, registration_) << error.message();
    g_dbus_node_info_unref(node);
    const glib::VariantPtr reply(g_dbus_connection_call_sync(
        bus_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", kName, 4U), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, error));
    EXPECT_TRUE(reply) << error.message();
}

FakeUDisks::~FakeUDisks() {
    for (GDBusMethodInvocation* call : unanswered_) {
        g_object_unref(call);
    }
    g_dbus_connection_unregister_object(bus_.get(), registration_);
    g_dbus_connection_close_sync(bus_.get(), nullptr, nullptr);
}

void FakeUDisks::set(std::vector<FakeDisk> disks) {
    disks_ = std::move(disks);
    GVariantBuilder changed;
    g_variant_builder_init(&changed, G_VARIANT_TYPE_VARDICT);
    g_dbus_connection_emit_signal(
        bus_.get(), nullptr, block_path(0).c_str(), "org.freedesktop.DBus.Properties", "PropertiesChanged",
        g_variant_new("(sa{sv}as)", "org.freedesktop.UDisks2.Filesystem", &changed, nullptr), nullptr);
}

GVariant* FakeUDisks::objects() const {
    GVariantBuilder objects;
    g_variant_builder_init(&objects, G_VARIANT_TYPE("a{oa{sa{sv}}}"));
    for (size_t i = 0; i < disks_.size(); ++i) {
        add_block(&objects, disks_[i], i);
        add_drive(&objects, disks_[i], i);
    }
    return g_variant_new("(a{oa{sa{sv}}})", &objects);
}

void FakeUDisks::on_call(GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                         GDBusMethodInvocation* call, void* data) {
    auto* self = static_cast<FakeUDisks*>(data);
    if (self->silent_) {
        self->unanswered_.push_back(call);
    } else if (self->failing_) {
        g_dbus_method_invocation_return_error(call, G_DBUS_ERROR, G_DBUS_ERROR_FAILED, "out of order");
    } else {
        g_dbus_method_invocation_return_value(call, self->objects());
    }
}
