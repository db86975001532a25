#ifndef QRA_ENGINE_VOLUME_H
#define QRA_ENGINE_VOLUME_H

#include <string>
#include <vector>

namespace engine {

/// A mounted file system of a drive that people plug in. What is not known is empty.
struct Volume {
    std::string mount_point;
    std::string device_file;  ///< such as "/dev/sdb1"
    std::string file_system;  ///< as udev or the kernel calls it
    std::string label;
    std::string vendor;
    std::string model;
    std::string serial_number;
};

using Volumes = std::vector<Volume>;

}  // namespace engine

#endif
