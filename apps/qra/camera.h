#ifndef QRA_APPS_QRA_CAMERA_H
#define QRA_APPS_QRA_CAMERA_H

#include <string>
#include <vector>

#include "mtp.h"

/// Holds the camera service while a command runs. @throws CommandError ServiceMissing where there is no USB
class CameraService {
public:
    CameraService();
    ~CameraService();
    CameraService(const CameraService&) = delete;
    CameraService& operator=(const CameraService&) = delete;

    /// All cameras and phones, by their places on USB.
    std::vector<mtp_device_h> cameras() const;
    static mtp_usb_info describe(mtp_device_h camera);
    /// The camera at a place; a negative number fits any. @throws CommandError if it is not one camera
    mtp_device_h find(int bus, int device) const;
};

/// An object with its number.
struct CameraObject {
    mtp_object_h id = 0;
    mtp_object_h folder = 0;
    std::string path;  ///< below its storage, with blanks as they are
    mtp_object_info info{};
};

/// What a folder has, in the camera's order; with all below it where that is wanted. @throws CommandError
std::vector<CameraObject> camera_objects(mtp_device_h camera, mtp_object_h folder, bool recursive);

/// Tells people of a code of the camera service; 0 is no error.
/// @param what  what failed, the beginning of the message
/// @throws CommandError
void check_camera(const std::string& what, int code);

/// The reason that a code of the camera service stands for.
std::string camera_error_text(int code);

#endif
