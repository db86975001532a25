#ifndef QRA_TESTS_UNIT_PLAYLIST_PLAYLIST_DRIVE_H
#define QRA_TESTS_UNIT_PLAYLIST_PLAYLIST_DRIVE_H

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/temp_dir.h"

/// A media root of the test's own, with a drive and a folder of internal storage.
class PlaylistDrive : public testing::Test {
protected:
    PlaylistDrive() {
        setenv("QRA_MEDIA_ROOT", root_.path("media").c_str(), 1);
        std::filesystem::create_directories(drive());
        std::filesystem::create_directories(flash());
    }

    std::string drive() const { return root_.path("media/USBDriveA"); }
    std::string flash() const { return root_.path("flash"); }

    /// A playlist file on the drive, with items that have single letters as media ids.
    void write(const std::string& file, const std::string& name, const std::string& letters = "") const {
        std::string content = "#EXTM3U\n#EXT-X-COUNT:100\n#EXT-X-NAME:" + name + "\n";
        for (const char letter : letters)
            content += "#EXTINF:1.|t|a|b|g|2015|9|f|n|1|1|" + std::string(1, letter) + "|" + drive() + "/" +
                       letter + ".mp3|1|n|m|l|1|1|1|5|0\n\n";
        root_.write("media/USBDriveA/" + file, content);
    }

    static int count_files(const std::string& directory) {
        return static_cast<int>(std::distance(std::filesystem::directory_iterator(directory), {}));
    }

    TempDir root_;
    LogCapture log_;
};

#endif
