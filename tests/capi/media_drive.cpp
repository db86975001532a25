#include "tests/capi/media_drive.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include "media_content.h"
#include "media_content_admin.h"

namespace {

std::string picture_of_one_pixel() {
    const unsigned char bitmap[] = {
        'B', 'M', 58, 0, 0, 0, 0, 0, 0, 0, 54, 0, 0, 0,  // file: size, where the pixels are
        40,  0,   0,  0, 1, 0, 0, 0, 1, 0, 0,  0, 1, 0, 24, 0, 0, 0, 0, 0,  // picture: its size
        4,   0,   0,  0, 0, 0, 0, 0, 0, 0, 0,  0, 0, 0, 0,  0, 0, 0, 0, 0, 255, 128, 64, 0,  // the pixel
    };
    return std::string(bitmap, bitmap + sizeof bitmap);
}

}  // namespace

MediaDrive::MediaDrive() {
    setenv("QRA_DATA_DIR", directory_.path("data").c_str(), 1);
    setenv("QRA_MEDIA_ROOT", directory_.path("root").c_str(), 1);
    std::filesystem::create_directories(directory_.path("stick/folder"));
    for (const char* name : {"1.bmp", "2.bmp", "3.bmp", "4.bmp", "folder/5.bmp"}) {
        directory_.write(std::string("stick/") + name, picture_of_one_pixel());
    }
    char* path = nullptr;
    EXPECT_EQ(0, media_content_connect());
    EXPECT_EQ(0, media_content_admin_attach(directory_.path("stick").c_str(), nullptr, &path));
    EXPECT_EQ(0, media_content_admin_scan(path, true, nullptr, nullptr));
    EXPECT_EQ(0, media_content_disconnect());
    path_ = path ? path : "";
    free(path);
}
