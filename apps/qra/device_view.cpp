#include "apps/qra/device_view.h"

#include <glib.h>
#include <json/json.h>

#include <memory>

#include "apps/qra/json_text.h"
#include "apps/qra/terminal_text.h"

namespace {

constexpr char kCamera[] = "ptp";
/// What the library gives for every size that is larger.
constexpr long long kLargestSize = 2147483647;

std::string type_of(qra_storage_h storage, bool optical) {
    if (optical) {
        return "bd";
    }
    switch (qra_storage_get_class(storage)) {
        case QRA_DEVICE_CLASS_MSC:
            return "usb";
        case QRA_DEVICE_CLASS_PTP:
            return kCamera;
        default:
            return "other";
    }
}

std::string file_system_of(qra_storage_h storage) {
    switch (qra_storage_get_filesystem(storage)) {
        case QRA_FILE_SYSTEM_VFAT:
            return "VFAT";
        case QRA_FILE_SYSTEM_EXT4:
            return "EXT4";
        case QRA_FILE_SYSTEM_NTFS:
            return "NTFS";
        default:
            return "";
    }
}

std::string size_text(long long size) {
    const std::string text = readable_size(static_cast<std::uint64_t>(size));
    return size == kLargestSize ? "over " + text : text;
}

std::string utf8(const std::string& text) {
    const std::unique_ptr<char, decltype(&g_free)> valid(
        g_utf8_make_valid(text.data(), static_cast<gssize>(text.size())), &g_free);
    return valid.get();
}

}  // namespace

std::vector<std::string> device_types() {
    return {"usb", kCamera, "bd", "other"};
}

DeviceLine device_line(const std::string& event, qra_storage_h storage, bool optical) {
    return {event,
            type_of(storage, optical),
            qra_storage_get_id(storage),
            qra_storage_get_name(storage),
            qra_storage_get_mountpath(storage),
            qra_storage_get_serialnumber(storage),
            qra_storage_get_vendor(storage),
            qra_storage_get_partitionlabel(storage),
            file_system_of(storage),
            qra_storage_get_totalsize(storage),
            qra_storage_get_availablesize(storage),
            qra_storage_get_bus(storage),
            qra_storage_get_address(storage),
            qra_storage_get_index(storage)};
}

std::string device_text(const DeviceLine& device, bool with_event) {
    std::string line = with_event ? device.event + "  " : "";
    line += device.type + "  " + printable_text(device.name);
    for (const std::string& text : {device.mount_path, device.vendor, device.label, device.file_system}) {
        if (!text.empty() && text != device.name) {
            line += "  " + printable_text(text);
        }
    }
    if (device.type == kCamera) {
        line += "  bus " + std::to_string(device.bus) + "  device " + std::to_string(device.address);
    }
    if (device.total_size > 0) {
        line += "  " + size_text(device.available_size) + " of " + size_text(device.total_size) + " free";
    }
    return line + "\n";
}

std::string device_json(const DeviceLine& device) {
    Json::Value object(Json::objectValue);
    object["event"] = device.event;
    object["type"] = device.type;
    object["id"] = utf8(device.id);
    object["name"] = utf8(device.name);
    object["mountPath"] = utf8(device.mount_path);
    object["serialNumber"] = utf8(device.serial_number);
    object["vendor"] = utf8(device.vendor);
    object["partitionLabel"] = utf8(device.label);
    object["fileSystem"] = device.file_system;
    object["totalSize"] = Json::Int64{device.total_size};
    object["availableSize"] = Json::Int64{device.available_size};
    object["deviceBus"] = device.bus;
    object["deviceAddress"] = device.address;
    object["deviceIndex"] = device.index;
    return json_text(object) + "\n";
}
