#include "usb_device.h"

#include <gtest/gtest.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "tests/fakes/own_mounts.h"
#include "tests/fakes/temp_dir.h"

namespace {

/// Collects what is reported to it, each as "action class path".
class Reports {
public:
    static void callback(usb_device_s* device, char* action, void* user_data) {
        auto* self = static_cast<Reports*>(user_data);
        const std::string text = std::string(action) + " " + std::to_string(usb_device_get_class(device)) +
                                 " " + usb_device_get_mountpath(device);
        free_usb_device_h(device);
        const std::lock_guard<std::mutex> lock(self->mutex_);
        self->texts_.push_back(text);
        self->changed_.notify_all();
    }

    /// Waits until there are as many reports, and gives them all.
    std::vector<std::string> wait_for(size_t count) {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait_for(lock, std::chrono::seconds(30), [&] { return texts_.size() >= count; });
        return texts_;
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> texts_;
};

class UsbDevice : public testing::Test {
protected:
    UsbDevice() { setenv("QRA_MEDIA_ROOT", root_.path().c_str(), 1); }
    ~UsbDevice() override {
        while (usb_device_fini() == 0) {
        }
    }

    void start() {
        ASSERT_EQ(usb_device_init(), 0);
        ASSERT_EQ(usb_set_connected_cb(Reports::callback, &reports_), 0);
    }

    std::string link(const std::string& name) const {
        EXPECT_EQ(symlink(folder_.path().c_str(), root_.path(name).c_str()), 0);
        return root_.path(name);
    }

    TempDir root_;
    TempDir folder_;
    Reports reports_;
};

using Texts = std::vector<std::string>;

TEST_F(UsbDevice, AFolderThatIsAttachedComesAndGoes) {
    start();
    const std::string path = link("USBDrive1");
    EXPECT_EQ(reports_.wait_for(1), Texts{"mounted 8 " + path});
    unlink(path.c_str());
    EXPECT_EQ(reports_.wait_for(2), (Texts{"mounted 8 " + path, "unmounted 8 " + path}));
}

TEST_F(UsbDevice, ADriveThatWasThereBeforeIsReportedWhenItGoes) {
    const std::string path = link("USBDrive1");
    start();
    unlink(path.c_str());
    EXPECT_EQ(reports_.wait_for(1), Texts{"unmounted 8 " + path});
}

TEST_F(UsbDevice, ADriveIsExchangedForAnotherOne) {
    const TempDir other;
    const std::string path = link("USBDrive1");
    start();
    ASSERT_EQ(symlink(other.path().c_str(), folder_.path("new").c_str()), 0);
    std::filesystem::rename(folder_.path("new"), path);
    EXPECT_EQ(reports_.wait_for(2), (Texts{"unmounted 8 " + path, "mounted 8 " + path}));
}

TEST_F(UsbDevice, FilesAndFoldersBelowTheRootAreNoDrives) {
    start();
    root_.write("file", "");
    mkdir(root_.path("folder").c_str(), 0700);
    ASSERT_EQ(symlink("nowhere", root_.path("dangling").c_str()), 0);
    const std::string path = link("USBDrive1");
    EXPECT_EQ(reports_.wait_for(1), Texts{"mounted 8 " + path});
}

TEST_F(UsbDevice, TheMediaRootMayComeLater) {
    setenv("QRA_MEDIA_ROOT", root_.path("a/b/media").c_str(), 1);
    start();
    std::filesystem::create_directories(root_.path("a/b/media"));
    const std::string path = link("a/b/media/USBDrive1");
    EXPECT_EQ(reports_.wait_for(1), Texts{"mounted 8 " + path});
    std::filesystem::remove_all(root_.path("a"));
    EXPECT_EQ(reports_.wait_for(2).back(), "unmounted 8 " + path);
    std::filesystem::create_directories(root_.path("a/b/media"));
    link("a/b/media/USBDrive1");
    EXPECT_EQ(reports_.wait_for(3).back(), "mounted 8 " + path);
}

TEST_F(UsbDevice, AFileSystemBelowTheRootIsADrive) {
    if (!have_own_mounts())
        GTEST_SKIP() << "no mount namespace of our own is allowed here";
    const std::string path = root_.path("usb drive");
    mkdir(path.c_str(), 0700);
    start();
    ASSERT_TRUE(mount_memory(path, ""));
    EXPECT_EQ(reports_.wait_for(1), Texts{"mounted 8 " + path});
    ASSERT_EQ(umount(path.c_str()), 0);
    EXPECT_EQ(reports_.wait_for(2).back(), "unmounted 8 " + path);
}

TEST_F(UsbDevice, AFileSystemElsewhereOnNoUsbDeviceIsNone) {
    if (!have_own_mounts())
        GTEST_SKIP() << "no mount namespace of our own is allowed here";
    start();
    ASSERT_TRUE(mount_memory(folder_.path(), ""));
    const std::string path = link("USBDrive1");
    EXPECT_EQ(reports_.wait_for(1), Texts{"mounted 8 " + path});
    ASSERT_EQ(umount2(folder_.path().c_str(), MNT_DETACH), 0);
    EXPECT_EQ(reports_.wait_for(2)[1], "unmounted 8 " + path);
}

TEST_F(UsbDevice, EveryUserHears) {
    start();
    Reports second;
    ASSERT_EQ(usb_device_init(), 0);
    ASSERT_EQ(usb_set_connected_cb(Reports::callback, &second), 0);
    const std::string path = link("USBDrive1");
    EXPECT_EQ(reports_.wait_for(1), Texts{"mounted 8 " + path});
    EXPECT_EQ(second.wait_for(1), Texts{"mounted 8 " + path});

    ASSERT_EQ(usb_set_connected_cb(nullptr, &second), 0);
    ASSERT_EQ(usb_device_fini(), 0);
    unlink(path.c_str());
    EXPECT_EQ(reports_.wait_for(2).back(), "unmounted 8 " + path);
    EXPECT_EQ(second.wait_for(0).size(), 1U);
}

TEST_F(UsbDevice, AUserHasOneCallback) {
    start();
    start();
    const std::string path = link("USBDrive1");
    EXPECT_EQ(reports_.wait_for(1), Texts{"mounted 8 " + path});
    unlink(path.c_str());
    EXPECT_EQ(reports_.wait_for(2), (Texts{"mounted 8 " + path, "unmounted 8 " + path}));
}

/// Takes itself away, and says so to the collector that is its user.
void take_away(usb_device_s* device, char* action, void* user_data) {
    EXPECT_EQ(usb_set_connected_cb(nullptr, user_data), 0);
    Reports::callback(device, action, user_data);
}

TEST_F(UsbDevice, ACallbackMayTakeItselfAway) {
    Reports once;
    start();
    ASSERT_EQ(usb_set_connected_cb(take_away, &once), 0);
    const std::string path = link("USBDrive1");
    EXPECT_EQ(once.wait_for(1), Texts{"mounted 8 " + path});
    EXPECT_EQ(reports_.wait_for(1), Texts{"mounted 8 " + path});
    unlink(path.c_str());
    EXPECT_EQ(reports_.wait_for(2).back(), "unmounted 8 " + path);
    EXPECT_EQ(once.wait_for(0).size(), 1U);
}

TEST_F(UsbDevice, WithoutAUserThereIsNothingToSetOrToGiveBack) {
    EXPECT_EQ(usb_device_fini(), -1);
    EXPECT_EQ(usb_set_connected_cb(Reports::callback, &reports_), -1);
    EXPECT_EQ(usb_device_get_class(nullptr), 0);
    EXPECT_EQ(usb_device_get_mountpath(nullptr), nullptr);
    free_usb_device_h(nullptr);
}

TEST_F(UsbDevice, UsersMayComeAndGoWhileDrivesDo) {
    start();
    std::vector<std::thread> users;
    for (int i = 0; i < 4; ++i) {
        users.emplace_back([] {
            for (int round = 0; round < 50; ++round) {
                Reports own;
                EXPECT_EQ(usb_device_init(), 0);
                EXPECT_EQ(usb_set_connected_cb(Reports::callback, &own), 0);
                EXPECT_EQ(usb_set_connected_cb(nullptr, &own), 0);
                EXPECT_EQ(usb_device_fini(), 0);
            }
        });
    }
    const std::string path = link("USBDrive1");
    EXPECT_EQ(reports_.wait_for(1), Texts{"mounted 8 " + path});
    for (std::thread& user : users)
        user.join();
    unlink(path.c_str());
    EXPECT_EQ(reports_.wait_for(2).back(), "unmounted 8 " + path);
}

}  // namespace
