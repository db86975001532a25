#ifndef QRA_TESTS_UNIT_PTP_CAMERA_FIXTURE_H
#define QRA_TESTS_UNIT_PTP_CAMERA_FIXTURE_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_mtp.h"
#include "tests/fakes/temp_dir.h"

/// Cameras as the test says, and an application directory of the test's own.
class CameraFixture : public testing::Test {
protected:
    CameraFixture() {
        setenv("QRA_APP_DIR", app_.path("app").c_str(), 1);
        fake_.reset();
    }
    ~CameraFixture() override { fake_.reset(); }

    /// A camera at bus 1, device `number`, with the handle `number` + 10.
    FakeMtp::Device& add_camera(int number = 2, const std::string& model = "Plain") {
        FakeMtp::Device camera;
        camera.handle = number + 10;
        camera.bus = 1;
        camera.number = number;
        camera.model = model;
        fake_.devices.push_back(camera);
        return fake_.devices.back();
    }

    static FakeMtp::Object folder(int handle, const std::string& name, int parent = 0) {
        FakeMtp::Object object;
        object.handle = handle;
        object.parent = parent;
        object.name = name;
        return object;
    }

    static FakeMtp::Object file(int handle, const std::string& name, int file_type, int parent = 0,
                                const std::string& content = "x") {
        FakeMtp::Object object = folder(handle, name, parent);
        object.file_type = file_type;
        object.content = content;
        return object;
    }

    std::string data_folder() const { return app_.path("app/qra-core/data"); }

    TempDir app_;
    LogCapture log_;
    FakeMtp& fake_ = FakeMtp::instance();
};

#endif
