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
    bool is_system;           ///< one of those that make up the system itself
};

/// All that is mounted, in the order of the table.
std::vector<Mount> mount_table();

/// Where the device is mounted; empty if it is not. The first place, if there are several.
std::string mount_point_of(const std::string& device_file);

/// What the directory lies on.
Mount mount_of(const std::string& directory);

}  // namespace engine

#endif
