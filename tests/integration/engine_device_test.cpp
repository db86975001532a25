// Devices that come and go, as clients of the engine see them. The system's disk service, udev and mounts are
// the test's own (with-mock-devices, scripts/with-bus).

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <umockdev.h>

#include <memory>
#include <optional>
#include <string>

#include "media_content.h"
#include "media_content_admin.h"
#include "platform/support/glib_ptr.h"
#include "tests/fakes/own_mounts.h"
#include "tests/fakes/temp_dir.h"
#include "tests/integration/engine_client.h"
#include "tests/integration/fake_udisks.h"

namespace {

using glib::VariantPtr;

constexpr unsigned kAll = 0;
constexpr unsigned kMassStorage = 1;
constexpr unsigned kCameras = 2;
constexpr int kCame = 1;
constexpr int kWent = 2;

/// A machine without devices but those that the test makes, and a media database of its own.
class EngineDevices : public testing::Test {
protected:
    EngineDevices() {
        setenv("QRA_DATA_DIR", data_.path().c_str(), 1);
        setenv("QRA_MEDIA_ROOT", data_.path("media").c_str(), 1);
        devices_.reset(umockdev_testbed_new());
        EXPECT_FALSE(std::filesystem::exists("/sys/kernel")) << "this is not run by with-mock-devices";
        hub_ = plug_usb("9-0", "9", "1", "Hub");
        EXPECT_EQ(0, media_content_connect());
    }
    ~EngineDevices() override { media_content_disconnect(); }

    static Json::Value devices(EngineClient& client, const char* method, unsigned kind) {
        guint32 result = 99;
        const char* text = "{}";
        const glib::VariantPtr reply = client.call(method, g_variant_new("(u)", kind));
        if (reply) {
            g_variant_get(reply.get(), "(u&s)", &result, &text);
        }
        EXPECT_EQ(0U, result);
        return parse_json(text)["devices"];
    }
    static Json::Value usb(EngineClient& client, unsigned kind = kAll) {
        return devices(client, "get_usb_storages", kind);
    }
    static Json::Value optical(EngineClient& client) { return devices(client, "get_bd_storages", kAll); }

    static void bind(EngineClient& client, const char* method = "bind_usb_event") {
        EXPECT_EQ(0U, client.number(method, g_variant_new("(u)", 1)));
    }

    /// The one device of the next notification.
    static Json::Value take(EngineClient& client, int event, const char* signal = "qra_usb_notification") {
        const Json::Value notification = client.take_json(signal);
        EXPECT_EQ(event, notification["event"].asInt());
        EXPECT_EQ(1U, notification["devices"].size());
        return notification["devices"][0];
    }

    std::string folder(const std::string& name) const {
        std::filesystem::create_directory(files_.path(name));
        return files_.path(name);
    }

    /// Attaches a folder, as another process than the engine does; gives its path below the media root.
    static std::string attach(const std::string& folder) {
        char* path = nullptr;
        EXPECT_EQ(0, media_content_admin_attach(folder.c_str(), nullptr, &path));
        const std::string copy = path != nullptr ? path : "";
        free(path);
        return copy;
    }
    static void detach(const std::string& path) {
        EXPECT_EQ(0, media_content_admin_detach(std::filesystem::path(path).filename().c_str()));
    }

    /// Whether the media database has a drive with that path.
    static bool database_has(const std::string& path) {
        std::pair<const std::string&, bool> wanted = {path, false};
        const auto compare = [](media_storage_h storage, void* data) {
            auto* searched = static_cast<std::pair<const std::string&, bool>*>(data);
            char* text = nullptr;
            EXPECT_EQ(0, media_storage_get_path(storage, &text));
            searched->second = searched->second || searched->first == text;
            free(text);
            return true;
        };
        EXPECT_EQ(0, media_storage_foreach_storage_from_db(nullptr, compare, &wanted));
        return wanted.second;
    }

    /// Plugs a USB device in; gives its path in /sys.
    std::string plug_usb(const char* name, const char* bus, const char* address, const char* product) {
        char* path = umockdev_testbed_add_device(
            devices_.get(), "usb", name, nullptr, "busnum", bus, "devnum", address, "manufacturer",
            "Somebody", "product", product, "serial", "SN-4711", nullptr, "DEVTYPE", "usb_device", nullptr);
        const std::string copy = path;
        g_free(path);
        return copy;
    }
    /// A disk with one partition on a USB device.
    void plug_disk(const std::string& usb, const char* name) {
        const std::string partition = std::string(name) + "1";
        char* disk = umockdev_testbed_add_device(devices_.get(), "block", name, usb.c_str(), "removable", "1",
                                                 nullptr, "DEVTYPE", "disk", "DEVNAME", name, nullptr);
        g_free(umockdev_testbed_add_device(devices_.get(), "block", partition.c_str(), disk, nullptr,
                                           "DEVTYPE", "partition", "DEVNAME", partition.c_str(), "ID_FS_TYPE",
                                           "ntfs", "ID_FS_LABEL", "HOLIDAY", nullptr));
        g_free(disk);
    }
    std::string plug_camera(const char* name, const char* address) {
        const std::string usb = plug_usb(name, "3", address, "Camera");
        const std::string interface = std::string(name) + ":1.0";
        g_free(umockdev_testbed_add_device(devices_.get(), "usb", interface.c_str(), usb.c_str(),
                                           "bInterfaceClass", "06", nullptr, "DEVTYPE", "usb_interface",
                                           nullptr));
        return usb;
    }
    std::string plug_optical(const char* name, const char* reads_blu_ray) {
        char* path = umockdev_testbed_add_device(devices_.get(), "block", name, nullptr, "removable", "1",
                                                 nullptr, "DEVTYPE", "disk", "DEVNAME", name, "ID_CDROM", "1",
                                                 "ID_CDROM_BD", reads_blu_ray, "ID_SERIAL",
                                                 "Somebody_Reader_77", "ID_MODEL", "Disc_Reader", nullptr);
        const std::string copy = path;
        g_free(path);
        return copy;
    }
    void unplug(const std::string& path) {
        umockdev_testbed_uevent(devices_.get(), path.c_str(), "remove");
        umockdev_testbed_remove_device(devices_.get(), path.c_str());
        // The kernel tells of a device that is gone, the test bed of one that still is there.
        umockdev_testbed_uevent(devices_.get(), hub_.c_str(), "change");
    }

    const TempDir data_;
    const TempDir files_;
    glib::ObjectPtr<UMockdevTestbed> devices_;
    std::string hub_;
};

TEST_F(EngineDevices, ListsADriveThatAnotherProcessAttached) {
    const FakeUDisks disks;
    const std::string path = attach(folder("drive"));
    EngineProcess engine;
    EngineClient client;
    const Json::Value drives = usb(client);
    ASSERT_EQ(1U, drives.size());
    const Json::Value& drive = drives[0];
    EXPECT_EQ(path, drive["mountPath"].asString());
    EXPECT_EQ("USBDrive1", drive["name"].asString());
    EXPECT_EQ("msc", drive["type"].asString());
    EXPECT_EQ(1, drive["deviceIndex"].asInt());
    EXPECT_FALSE(drive["id"].asString().empty());
    EXPECT_GT(std::stoull(drive["totalSize"].asString()), 0U);
    EXPECT_TRUE(drive["availableSize"].isString());
    EXPECT_FALSE(drive["fileSystem"].asString().empty());
    for (const char* key : {"deviceAddress", "deviceBus"}) {
        EXPECT_EQ("0", drive[key].asString()) << key;
    }
    for (const char* key : {"serialNumber", "vendor", "partitionLabel"}) {
        EXPECT_EQ("", drive[key].asString()) << key;
    }
}

TEST_F(EngineDevices, ListsNothingWhereNothingIs) {
    const FakeUDisks disks;
    EngineProcess engine;
    EngineClient client;
    EXPECT_TRUE(usb(client).isArray());
    EXPECT_EQ(0U, usb(client).size());
    EXPECT_EQ(0U, optical(client).size());
}

TEST_F(EngineDevices, TellsBoundClientsOfADriveOnceTheDatabaseKnowsIt) {
    const FakeUDisks disks;
    EngineProcess engine;
    EngineClient bound;
    EngineClient other;
    bind(bound);
    const std::string path = attach(folder("drive"));
    const Json::Value came = take(bound, kCame);
    EXPECT_EQ(path, came["mountPath"].asString());
    EXPECT_TRUE(database_has(path));
    detach(path);
    const Json::Value went = take(bound, kWent);
    EXPECT_EQ(came["id"].asString(), went["id"].asString());
    EXPECT_EQ(path, went["mountPath"].asString());
    EXPECT_EQ(0U, usb(bound).size());
    EXPECT_EQ(0U, bound.signals_left());
    EXPECT_EQ(0U, other.signals_left());
}

TEST_F(EngineDevices, TellsNothingOfDrivesThatWereThereBefore) {
    const FakeUDisks disks;
    attach(folder("drive"));
    EngineProcess engine;
    EngineClient client;
    bind(client);
    EXPECT_EQ(1U, usb(client).size());
    EXPECT_EQ(0U, client.signals_left());
}

TEST_F(EngineDevices, TellsNothingAfterAnUnbind) {
    const FakeUDisks disks;
    EngineProcess engine;
    EngineClient client;
    EngineClient bound;
    bind(client);
    bind(client);
    bind(bound);
    EXPECT_EQ(0U, client.number("bind_usb_event", g_variant_new("(u)", 0)));
    attach(folder("drive"));
    take(bound, kCame);
    EXPECT_EQ(0U, client.signals_left());
    EXPECT_EQ(2U, client.number("bind_usb_event", g_variant_new("(u)", 7))) << "neither binds nor unbinds";
}

TEST_F(EngineDevices, TellsAClientOnceThatBindsTwice) {
    const FakeUDisks disks;
    EngineProcess engine;
    EngineClient client;
    bind(client);
    bind(client);
    attach(folder("drive"));
    take(client, kCame);
    EXPECT_EQ(0U, client.signals_left());
}

TEST_F(EngineDevices, KeepTheEngineUpAsLongAsAClientIsBound) {
    const FakeUDisks disks;
    EngineClient client;
    const auto engine = client.use_impatient_engine("bind_usb_event", [] { return g_variant_new("(u)", 1); });
    const gint64 begin = g_get_monotonic_time();
    EXPECT_TRUE(wait_until([&] { return g_get_monotonic_time() - begin > G_USEC_PER_SEC / 2; }));
    EXPECT_FALSE(engine->has_ended());
    attach(folder("drive"));
    take(client, kCame);
    client.leave();
    EXPECT_TRUE(wait_until([&] { return engine->has_ended(); })) << "a client that is gone is still bound";
}

TEST_F(EngineDevices, MakeADriveOfAMountedDiskAsLongAsItIsMounted) {
    FakeUDisks disks;
    const std::string target = folder("stick");
    const FakeDisk stick = {"/dev/sdb1", target, "HOLIDAY", "vfat", "Somebody", "Memory Stick", "SN-1"};
    EngineProcess engine;
    EngineClient client;
    bind(client);
    disks.set({stick});
    const Json::Value came = take(client, kCame);
    const std::string path = came["mountPath"].asString();
    EXPECT_EQ(data_.path("media/USBDrive1"), path);
    EXPECT_EQ(target, std::filesystem::read_symlink(path));
    EXPECT_TRUE(database_has(path));
    detach(path);
    take(client, kWent);
    EXPECT_EQ(0U, client.signals_left());
}

TEST_F(EngineDevices, TakeADriveAwayWhenItsDiskIsUnmounted) {
    const std::string target = folder("stick");
    FakeUDisks disks({{"/dev/sdb1", target, "", "vfat", "", "", ""}});
    EngineProcess engine;
    EngineClient client;
    bind(client);
    ASSERT_EQ(1U, usb(client).size());
    const std::string path = usb(client)[0]["mountPath"].asString();
    disks.set({{"/dev/sdb1", "", "", "vfat", "", "", ""}});
    EXPECT_EQ(path, take(client, kWent)["mountPath"].asString());
    EXPECT_FALSE(std::filesystem::is_symlink(path));
    EXPECT_FALSE(database_has(path));
}

TEST_F(EngineDevices, LeaveADriveThatTookTheNameOfTheirsWhenTheirDiskIsUnmounted) {
    const FakeDisk stick = {"/dev/sdb1", folder("stick"), "", "vfat", "", "", ""};
    const FakeDisk other_stick = {"/dev/sdc1", folder("other"), "", "vfat", "", "", ""};
    FakeUDisks disks({stick});
    EngineProcess engine;
    EngineClient client;
    bind(client);
    ASSERT_EQ(1U, usb(client).size());
    const std::string path = usb(client)[0]["mountPath"].asString();
    detach(path);
    take(client, kWent);
    const std::string drive = folder("drive");
    ASSERT_EQ(path, attach(drive)) << "the name is not given out again";
    take(client, kCame);
    disks.set({other_stick});
    EXPECT_EQ(other_stick.mount_point,
              std::filesystem::read_symlink(take(client, kCame)["mountPath"].asString()));
    EXPECT_EQ(drive, std::filesystem::read_symlink(path));
    EXPECT_TRUE(database_has(path));
    EXPECT_EQ(0U, client.signals_left());
}

TEST_F(EngineDevices, TryADiskAgainThatCouldNotBecomeADrive) {
    const FakeDisk stick = {"/dev/sdb1", files_.path("late"), "", "vfat", "", "", ""};
    FakeUDisks disks({stick});
    EngineProcess engine;
    EngineClient client;
    bind(client);
    ASSERT_EQ(0U, usb(client).size());
    folder("late");
    disks.set({stick});
    EXPECT_EQ(stick.mount_point, std::filesystem::read_symlink(take(client, kCame)["mountPath"].asString()));
}

TEST_F(EngineDevices, DoNotShowDisksThatNobodyPlugsIn) {
    FakeDisk fixed = {"/dev/sda1", folder("fixed"), "", "ext4", "", "", ""};
    fixed.connection = "";
    fixed.removable = false;
    FakeDisk disc = {"/dev/sr0", folder("disc"), "", "udf", "", "", ""};
    disc.optical = true;
    FakeDisk hidden = {"/dev/sdc1", folder("hidden"), "", "vfat", "", "", ""};
    hidden.ignored = true;
    FakeDisk root = {"/dev/sdd1", "/", "", "ext4", "", "", ""};
    const FakeUDisks disks({fixed, disc, hidden, root});
    EngineProcess engine;
    EngineClient client;
    EXPECT_EQ(0U, usb(client).size());
    EXPECT_FALSE(std::filesystem::is_symlink(data_.path("media/USBDrive1")));
}

TEST_F(EngineDevices, KeepDrivesThatOthersAttachedWhereTheDiskServiceFails) {
    FakeUDisks disks;
    disks.fail();
    attach(folder("drive"));
    EngineProcess engine;
    EngineClient client;
    const Json::Value drives = usb(client, kMassStorage);
    const auto is_ours = [](const Json::Value& drive) { return drive["name"].asString() == "USBDrive1"; };
    EXPECT_EQ(1, std::count_if(drives.begin(), drives.end(), is_ours));
}

TEST_F(EngineDevices, AnswerThoughTheDiskServiceDoesNot) {
    FakeUDisks disks;
    disks.fall_silent();
    attach(folder("drive"));
    EngineProcess engine;
    EngineClient client;
    EXPECT_GE(usb(client).size(), 1U);
}

TEST_F(EngineDevices, AreShownWithWhatUdevKnows) {
    const std::string target = folder("stick");
    plug_disk(plug_usb("1-4", "1", "9", "Stick 3000"), "sdb");
    FakeUDisks disks({{"/dev/sdb1", target, "", "", "", "", ""}});
    EngineProcess engine;
    EngineClient client;
    const Json::Value drives = usb(client);
    ASSERT_EQ(1U, drives.size());
    const Json::Value& drive = drives[0];
    EXPECT_EQ("1", drive["deviceBus"].asString());
    EXPECT_EQ("9", drive["deviceAddress"].asString());
    EXPECT_EQ("Stick 3000", drive["name"].asString());
    EXPECT_EQ("Somebody", drive["vendor"].asString());
    EXPECT_EQ("SN-4711", drive["serialNumber"].asString());
    EXPECT_EQ("HOLIDAY", drive["partitionLabel"].asString());
    EXPECT_EQ("NTFS", drive["fileSystem"].asString());
}

TEST_F(EngineDevices, ShowACameraAsItComesAndGoes) {
    const FakeUDisks disks;
    plug_usb("1-1", "1", "2", "Keyboard");
    EngineProcess engine;
    EngineClient client;
    bind(client);
    const std::string camera = plug_camera("3-2", "12");
    umockdev_testbed_uevent(devices_.get(), camera.c_str(), "add");
    const Json::Value came = take(client, kCame);
    EXPECT_EQ("ptp", came["type"].asString());
    EXPECT_EQ("3", came["deviceBus"].asString());
    EXPECT_EQ("12", came["deviceAddress"].asString());
    EXPECT_EQ("Camera", came["name"].asString());
    EXPECT_EQ("SN-4711", came["serialNumber"].asString());
    EXPECT_EQ(1U, usb(client, kCameras).size());
    EXPECT_EQ(0U, usb(client, kMassStorage).size());
    unplug(camera + "/3-2:1.0");
    unplug(camera);
    EXPECT_EQ(came["id"].asString(), take(client, kWent)["id"].asString());
    EXPECT_EQ(0U, usb(client).size());
    EXPECT_EQ(0U, client.signals_left());
}

TEST_F(EngineDevices, ShowADriveThatReadsBluRayAsItComesAndGoes) {
    const FakeUDisks disks;
    plug_optical("sr0", "0");
    EngineProcess engine;
    EngineClient client;
    EngineClient usb_client;
    bind(client, "bind_bd_event");
    bind(usb_client);
    EXPECT_EQ(0U, optical(client).size()) << "a drive for discs of another kind";
    const std::string reader = plug_optical("sr1", "1");
    umockdev_testbed_uevent(devices_.get(), reader.c_str(), "add");
    const Json::Value came = take(client, kCame, "qra_bd_notification");
    EXPECT_EQ("Disc Reader", came["name"].asString());
    EXPECT_EQ("Somebody_Reader_77", came["id"].asString());
    EXPECT_EQ("", came["mountPath"].asString());
    EXPECT_EQ(1U, optical(client).size());
    unplug(reader);
    EXPECT_EQ("Somebody_Reader_77", take(client, kWent, "qra_bd_notification")["id"].asString());
    EXPECT_EQ(0U, client.signals_left() + usb_client.signals_left());
}

TEST_F(EngineDevices, RefusesAKindThatDoesNotExist) {
    const FakeUDisks disks;
    EngineProcess engine;
    EngineClient client;
    const glib::VariantPtr reply = client.call("get_usb_storages", g_variant_new("(u)", 3));
    guint32 result = 0;
    const char* text = nullptr;
    g_variant_get(reply.get(), "(u&s)", &result, &text);
    EXPECT_EQ(2U, result);
    EXPECT_EQ(0U, parse_json(text)["devices"].size());
}

/// The same where there is no disk service: the mounts themselves are watched.
class EngineMounts : public EngineDevices {
protected:
    void SetUp() override {
        if (!have_own_mounts()) {
            GTEST_SKIP() << "no mount namespace is to be had here";
        }
        ASSERT_TRUE(mount_memory("/media", "size=16m"));
        std::filesystem::create_directory("/media/stick");
    }
};

TEST_F(EngineMounts, AreDrivesWhileTheyAreThere) {
    EngineProcess engine;
    EngineClient client;
    bind(client);
    const size_t before = usb(client).size();
    ASSERT_TRUE(mount_memory("/media/stick", "size=1m"));
    const Json::Value came = take(client, kCame);
    EXPECT_EQ("/media/stick", std::filesystem::read_symlink(came["mountPath"].asString()));
    EXPECT_EQ("TMPFS", came["fileSystem"].asString());
    EXPECT_EQ(std::to_string(1 << 20), came["totalSize"].asString());
    EXPECT_TRUE(database_has(came["mountPath"].asString()));
    ASSERT_EQ(0, umount2("/media/stick", MNT_DETACH));
    EXPECT_EQ(came["id"].asString(), take(client, kWent)["id"].asString());
    EXPECT_FALSE(std::filesystem::is_symlink(came["mountPath"].asString()));
    EXPECT_EQ(before, usb(client).size());
}

TEST_F(EngineMounts, AreDrivesElsewhereIfTheirDiskIsOnUsb) {
    plug_disk(plug_usb("1-4", "1", "9", "Stick 3000"), "sdz");
    const std::string stick = folder("stick");
    const std::string other = folder("other");
    EngineProcess engine;
    EngineClient client;
    bind(client);
    ASSERT_EQ(0, mount("/dev/sda77", other.c_str(), "tmpfs", 0, "size=1m"));
    ASSERT_EQ(0, mount("/dev/sdz1", stick.c_str(), "tmpfs", 0, "size=1m"));
    const Json::Value came = take(client, kCame);
    EXPECT_EQ(stick, std::filesystem::read_symlink(came["mountPath"].asString()));
    EXPECT_EQ("9", came["deviceAddress"].asString());
    EXPECT_EQ("HOLIDAY", came["partitionLabel"].asString());
    EXPECT_EQ(0, umount2(stick.c_str(), MNT_DETACH));
    EXPECT_EQ(0, umount2(other.c_str(), MNT_DETACH));
    take(client, kWent);
    EXPECT_EQ(0U, client.signals_left());
}

TEST_F(EngineMounts, LeaveNoDriveWhenTheyAreUnmountedAfterTheEngineWasKilled) {
    ASSERT_TRUE(mount_memory("/media/stick", "size=1m"));
    std::string path;
    {
        EngineProcess killed;
        EngineClient client;
        for (const Json::Value& drive : usb(client)) {
            const std::string link = drive["mountPath"].asString();
            path = std::filesystem::read_symlink(link) == "/media/stick" ? link : path;
        }
        ASSERT_FALSE(path.empty());
        killed.kill();
    }
    ASSERT_EQ(0, umount2("/media/stick", MNT_DETACH));
    ASSERT_TRUE(std::filesystem::is_symlink(path));
    const std::string attached = attach(folder("drive"));
    EngineProcess engine;
    EngineClient client;
    usb(client);
    EXPECT_FALSE(std::filesystem::is_symlink(path));
    EXPECT_TRUE(database_has(attached));
}

TEST_F(EngineMounts, AreNoLongerShownWhenAnAttachedOneIsUnmounted) {
    const FakeUDisks disks;
    ASSERT_TRUE(mount_memory("/media/stick", "size=1m"));
    const std::string path = attach("/media/stick");
    EngineProcess engine;
    EngineClient client;
    bind(client);
    ASSERT_EQ(1U, usb(client).size());
    ASSERT_EQ(0, umount2("/media/stick", MNT_DETACH));
    EXPECT_EQ(path, take(client, kWent)["mountPath"].asString());
    EXPECT_EQ(0U, usb(client).size());
}

}  // namespace
