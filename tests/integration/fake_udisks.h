#ifndef QRA_TESTS_INTEGRATION_FAKE_UDISKS_H
#define QRA_TESTS_INTEGRATION_FAKE_UDISKS_H

#include <gio/gio.h>

#include <string>
#include <vector>

#include "platform/support/glib_ptr.h"

/// A disk with one file system, as the disk service shows it.
struct FakeDisk {
    std::string device;       ///< such as "/dev/sdb1"
    std::string mount_point;  ///< empty: not mounted
    std::string label;
    std::string file_system = "vfat";
    std::string vendor;
    std::string model;
    std::string serial;
    std::string connection = "usb";
    bool removable = true;
    bool optical = false;
    bool ignored = false;
};

/// Plays the system's disk service on the bus, on the default main context.
class FakeUDisks {
public:
    explicit FakeUDisks(std::vector<FakeDisk> disks = {});
    ~FakeUDisks();
    FakeUDisks(const FakeUDisks&) = delete;
    FakeUDisks& operator=(const FakeUDisks&) = delete;

    /// Shows other disks from now on, and says so.
    void set(std::vector<FakeDisk> disks);
    /// From now on every question stays without an answer.
    void fall_silent() { silent_ = true; }
    /// Answers with an error from now on.
    void fail() { failing_ = true; }

private:
    GVariant* objects() const;
    static void on_call(GDBusConnection* bus, const char* sender, const char* path, const char* interface,
                        const char* method, GVariant* arguments, GDBusMethodInvocation* call, void* self);

    glib::ObjectPtr<GDBusConnection> bus_;
    std::vector<FakeDisk> disks_;
    std::vector<GDBusMethodInvocation*> unanswered_;
    unsigned registration_ = 0;
    bool silent_ = false;
    bool failing_ = false;
};

#endif
