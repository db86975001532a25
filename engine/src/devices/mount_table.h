#ifndef QRA_ENGINE_MOUNT_TABLE_H
#define QRA_ENGINE_MOUNT_TABLE_H

#include <string>
#include <vector>

namespace engine {

/// One line of the system's table of mounted file systems.
struct Mount {
    std::string point;
    std::string device_file;  ///< what was mounted, which need not be a device
    std::string file_system;  ///< as the kernel calls it
};

/// All that is mounted, in the order of the table.
std::vector<Mount> mount_table();

/// Where the device is mounted; empty if it is not. The first place, if there are several.
std::string mount_point_of(const std::string& device_file);

/// Whether what is mounted there is a part of the system itself, such as "/" and "/boot".
bool is_system_path(const std::string& mount_point);

/// Whether it lies where systems mount what people plug in, and nothing else.
bool is_media_path(const std::string& mount_point);

/// Whether a path is the directory or lies below it. Both are absolute and without a slash at the end.
bool is_within(const std::string& path, const std::string& directory);

/// What the directory lies on.
Mount mount_of(const std::string& directory);

}  // namespace engine

#endif
