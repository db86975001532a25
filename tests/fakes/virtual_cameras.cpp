#include "tests/fakes/virtual_cameras.h"

#include <stdlib.h>

#include <filesystem>
#include <sstream>

// libmtp forgets to free some of what it has when a device fails: texts, tables, and the devices of libusb.
extern "C" __attribute__((visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:libmtp.so\nleak:iconv_open\nleak:libusb_context::refresh\nleak:libusb_open\n";
}

namespace {

std::string bytes(std::initializer_list<int> values) {
    std::string text;
    for (const int value : values) {
        text += static_cast<char>(value);
    }
    return text;
}

}  // namespace

VirtualCameras::VirtualCameras() {
    std::filesystem::create_directory(directory_.path("plugged"));
    setenv("QRA_VIRTUAL_CAMERAS", directory_.path("plugged").c_str(), 1);
}

int VirtualCameras::plug(const std::string& name, const std::vector<std::string>& lines) {
    std::filesystem::remove(directory_.path("log"));
    std::string text =
        "device = " + std::to_string(++last_device_) + "\nlog = " + directory_.path("log") + "\n";
    for (const std::string& line : lines) {
        text += line + "\n";
    }
    // In one step, as nobody plugs half a camera in.
    std::filesystem::rename(directory_.write(name + ".new", text),
                            directory_.path("plugged/" + name + ".camera"));
    return last_device_;
}

void VirtualCameras::pull(const std::string& name) {
    std::filesystem::remove(directory_.path("plugged/" + name + ".camera"));
}

std::string VirtualCameras::folder(const std::string& name) const {
    std::filesystem::create_directories(directory_.path(name));
    return directory_.path(name);
}

std::string VirtualCameras::write(const std::string& folder, const std::string& name,
                                  const std::string& content) const {
    std::filesystem::create_directories(directory_.path(folder));
    return directory_.write(folder + "/" + name, content);
}

int VirtualCameras::transactions(const std::string& operation) const {
    std::istringstream lines(log());
    int count = 0;
    for (std::string line; std::getline(lines, line);) {
        count += operation.empty() || line.rfind(operation + " ", 0) == 0 ? 1 : 0;
    }
    return count;
}

std::string jpeg_thumbnail() {
    return bytes({0xFF, 0xD8, 0xFF, 0xDB, 0x00, 0x04, 0x00, 0x01, 0xFF, 0xD9});
}

std::string jpeg_with_thumbnail(int width, int height) {
    const std::string exif = std::string("Exif\0\0", 6) + jpeg_thumbnail();
    const int length = static_cast<int>(exif.size()) + 2;
    return bytes({0xFF, 0xD8, 0xFF, 0xE1, length >> 8, length & 0xFF}) + exif +
           bytes({0xFF, 0xC0, 0x00, 0x0B, 8, height >> 8, height & 0xFF, width >> 8, width & 0xFF, 1, 1, 0x11,
                  0}) +
           bytes({0xFF, 0xD9});
}
