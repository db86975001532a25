#include "engine/src/devices/device.h"

#include <json/json.h>

#include <algorithm>

#include "engine/src/json_text.h"

namespace engine {

namespace {

Json::Value record_of(const Device& device) {
    Json::Value record(Json::objectValue);
    record["id"] = device.id;
    record["name"] = device.name;
    record["mountPath"] = device.mount_path;
    record["serialNumber"] = device.serial_number;
    record["vendor"] = device.vendor;
    record["partitionLabel"] = device.partition_label;
    record["totalSize"] = std::to_string(device.total_size);
    record["availableSize"] = std::to_string(device.available_size);
    record["fileSystem"] = device.file_system;
    record["type"] = device.type;
    record["deviceAddress"] = std::to_string(device.address);
    record["deviceBus"] = std::to_string(device.bus);
    record["deviceIndex"] = device.index;
    return record;
}

Json::Value list_of(const Devices& devices) {
    Json::Value list(Json::objectValue);
    list["devices"] = Json::Value(Json::arrayValue);
    for (const Device& device : devices) {
        list["devices"].append(record_of(device));
    }
    return list;
}

}  // namespace

std::string devices_text(const Devices& devices) {
    return to_json_text(list_of(devices));
}

std::string notification_text(DeviceEvent event, const Device& device) {
    Json::Value notification = list_of({device});
    notification["event"] = static_cast<int>(event);
    return to_json_text(notification);
}

std::string file_system_name(const std::string& system_name) {
    if (system_name == "msdos") {
        return "VFAT";
    }
    if (system_name == "ntfs3" || system_name == "ntfs-3g") {
        return "NTFS";
    }
    std::string name = system_name;
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c; });
    return name;
}

}  // namespace engine
