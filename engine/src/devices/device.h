#ifndef QRA_ENGINE_DEVICE_H
#define QRA_ENGINE_DEVICE_H

#include <cstdint>
#include <string>
#include <vector>

namespace engine {

/// A drive, a camera or an optical drive, as clients see it. What is not known is empty or 0.
struct Device {
    std::string id;    ///< of a drive that of the media database, the same whenever the drive comes
    std::string name;  ///< for people
    std::string mount_path;
    std::string serial_number;
    std::string vendor;
    std::string partition_label;
    uint64_t total_size = 0;      ///< bytes
    uint64_t available_size = 0;  ///< bytes
    std::string file_system;      ///< "VFAT", "EXT4", "NTFS", or another name in capitals
    std::string type;             ///< "msc" for a drive, "ptp" for a camera
    unsigned bus = 0;             ///< of a USB device: the bus's number
    unsigned address = 0;         ///< of a USB device: its number on the bus
    int index = 0;  ///< of a drive: N of "USBDriveN"; of others: the place among their kind, from 1
};

inline constexpr char kMassStorage[] = "msc";
inline constexpr char kCamera[] = "ptp";

/// What a client asks for.
enum class DeviceKind : uint32_t { kAll = 0, kMassStorage = 1, kCamera = 2 };

/// The numbers are part of the protocol.
enum class DeviceEvent { kCame = 1, kWent = 2 };

using Devices = std::vector<Device>;

/// The JSON text of a list of devices.
std::string devices_text(const Devices& devices);

/// The JSON text that tells of one device that came or went.
std::string notification_text(DeviceEvent event, const Device& device);

/// The name that clients know a file system by, for the name that the kernel or udev has.
std::string file_system_name(const std::string& system_name);

}  // namespace engine

#endif
