#ifndef QRA_TESTS_FAKES_VIRTUAL_CAMERAS_H
#define QRA_TESTS_FAKES_VIRTUAL_CAMERAS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tests/fakes/temp_dir.h"

/**
 * Virtual cameras in place of the system's USB, for a test program that links virtual-camera. To be made
 * before anything asks USB for its devices.
 */
class VirtualCameras {
public:
    VirtualCameras();

    /**
     * Plugs a camera in, or another one in its place: it gets a device number of its own on bus 1.
     *
     * @param lines  of the camera's description, such as "storage = PATH" and "fault = unplug GetObject 1";
     * its log is kept for transactions()
     * @return its device number
     */
    int plug(const std::string& name, const std::vector<std::string>& lines);
    void pull(const std::string& name);

    /// A folder for files, made when it is missing.
    std::string folder(const std::string& name) const;
    /// Writes a file into a folder.
    std::string write(const std::string& folder, const std::string& name, const std::string& content) const;

    /// How many transactions the camera that was plugged in last had, of one operation by its name or ("") of
    /// all; after it was pulled out, too.
    int transactions(const std::string& operation) const;
    /// Their lines, for the message of a failed expectation.
    std::string log() const { return directory_.read("log"); }

    const TempDir& directory() const { return directory_; }

private:
    TempDir directory_;
    int last_device_ = 0;
};

/// A small JPEG picture of the size, with a small one in its head.
std::string jpeg_with_thumbnail(int width, int height);
/// The small one.
std::string jpeg_thumbnail();

#endif
