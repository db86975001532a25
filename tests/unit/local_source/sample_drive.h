#ifndef QRA_TESTS_UNIT_LOCAL_SOURCE_SAMPLE_DRIVE_H
#define QRA_TESTS_UNIT_LOCAL_SOURCE_SAMPLE_DRIVE_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "media_content.h"
#include "media_content_admin.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/media_content_faults.h"

/**
 * A real media database with one drive, USBDrive1, which the test fills with files.
 *
 * There is no message bus, so that nobody waits for an engine. Everything is gone when the test is over.
 */
class SampleDrive : public ::testing::Test {
protected:
    SampleDrive() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qra-drive-XXXXXX").string();
        root_ = std::filesystem::canonical(mkdtemp(pattern.data())).string();
        setenv("QRA_DATA_DIR", (root_ + "/data").c_str(), 1);
        setenv("QRA_MEDIA_ROOT", (root_ + "/media").c_str(), 1);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/socket", 1);
        media_content_faults::reset();
        std::filesystem::create_directories(root_ + "/stick");
        EXPECT_EQ(media_content_connect(), 0);
        char* path = nullptr;
        EXPECT_EQ(media_content_admin_attach((root_ + "/stick").c_str(), nullptr, &path), 0);
        drive_ = path != nullptr ? path : "";
        std::free(path);
    }

    ~SampleDrive() override {
        media_content_faults::reset();
        while (media_content_disconnect() == 0) {
        }
        std::filesystem::remove_all(root_);
    }

    /// Writes a file of the drive, and the folders above it.
    void write(const std::string& relative, const std::string& content = "x") const {
        const std::filesystem::path path = root_ + "/stick/" + relative;
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path) << content;
    }

    /// Writes a recording with the values of its info file, as "key=value" lines.
    void write_recording(const std::string& relative, const std::string& values) const {
        write(relative + ".srf");
        write(relative + ".inf", "[recording]\n" + values);
    }

    /// Enters everything on the drive, whose storage counts as fully scanned from then on.
    void scan() const {
        EXPECT_EQ(media_content_admin_scan(drive_.c_str(), true, nullptr, nullptr), 0);
        media_content_faults::reset();
    }

    /// The path of a file or folder as a client gives it.
    std::string path(const std::string& relative = "") const {
        return relative.empty() ? drive_ : drive_ + "/" + relative;
    }

    /// A directory outside of the drive.
    const std::string& root() const { return root_; }

    LogCapture log;

private:
    std::string root_;
    std::string drive_;
};

/// A text that the caller of a getter owns, taken over; "(none)" for null.
inline std::string take(char* text) {
    const std::string copy = text != nullptr ? text : "(none)";
    std::free(text);
    return copy;
}

#endif
