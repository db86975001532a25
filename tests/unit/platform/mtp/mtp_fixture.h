#ifndef QRA_TESTS_UNIT_PLATFORM_MTP_MTP_FIXTURE_H
#define QRA_TESTS_UNIT_PLATFORM_MTP_MTP_FIXTURE_H

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mtp.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/virtual_cameras.h"

constexpr mtp_storage_h kFirstStorage = 0x00010001;
constexpr mtp_storage_h kSecondStorage = 0x00020001;

/// The service with virtual cameras.
class Mtp : public testing::Test {
protected:
    Mtp();
    ~Mtp() override;

    /// Plugs in "card" with a folder of files, and lines of its description.
    mtp_device_h plug(std::vector<std::string> lines = {});
    std::vector<mtp_device_h> devices() const;
    mtp_device_h only_device() const;

    /// The objects of a folder by their names; a failure of the call fails the test.
    std::vector<mtp_object_h> children(mtp_device_h device, mtp_object_h parent,
                                       mtp_storage_h storage = kFirstStorage) const;
    mtp_object_h child(mtp_device_h device, const std::string& name, mtp_object_h parent = 0) const;
    std::vector<std::string> names(mtp_device_h device, mtp_object_h parent,
                                   mtp_storage_h storage = kFirstStorage) const;
    int list(mtp_device_h device, mtp_object_h parent = 0) const;
    mtp_object_info info(mtp_device_h device, mtp_object_h object) const;

    std::string output(const std::string& name = "out") const { return cameras_.directory().path(name); }
    std::string content(const std::string& name = "out") const { return cameras_.directory().read(name); }
    bool exists(const std::string& name = "out") const;

    VirtualCameras cameras_;
    LogCapture log_;
};

#endif
