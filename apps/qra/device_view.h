#ifndef QRA_APPS_QRA_DEVICE_VIEW_H
#define QRA_APPS_QRA_DEVICE_VIEW_H

#include <qra/qra_storage.h>

#include <string>
#include <vector>

/// A device as the tool shows it, a copy of the library's record.
struct DeviceLine {
    std::string event;  ///< "present", "attached" or "detached"
    std::string type;   ///< "usb", "ptp", "bd" or "other"
    std::string id;
    std::string name;
    std::string mount_path;
    std::string serial_number;
    std::string vendor;
    std::string label;
    std::string file_system;
    long long total_size;
    long long available_size;
    int bus;
    int address;
    int index;
};

/// The types that `qra devices` can be asked for.
std::vector<std::string> device_types();

/// @param optical  the record is one of an optical drive, whose class says nothing
DeviceLine device_line(const std::string& event, qra_storage_h storage, bool optical);

/// A line for people, without control characters, with a line end.
std::string device_text(const DeviceLine& device, bool with_event);

/// One JSON object on a line, which is valid UTF-8 whatever devices call themselves.
std::string device_json(const DeviceLine& device);

#endif
