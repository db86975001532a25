#include "platform/mtp/virtual-camera/description.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/mtp/virtual-camera/ptp_codes.h"

namespace virtual_camera {

namespace {

constexpr char kSuffix[] = ".camera";

struct OperationName {
    uint16_t number;
    const char* name;
};

constexpr OperationName kOperations[] = {
    {op::kGetDeviceInfo, "GetDeviceInfo"},
    {op::kOpenSession, "OpenSession"},
    {op::kCloseSession, "CloseSession"},
    {op::kGetStorageIds, "GetStorageIDs"},
    {op::kGetStorageInfo, "GetStorageInfo"},
    {op::kGetObjectHandles, "GetObjectHandles"},
    {op::kGetObjectInfo, "GetObjectInfo"},
    {op::kGetObject, "GetObject"},
    {op::kGetThumb, "GetThumb"},
    {op::kGetPartialObject, "GetPartialObject"},
    {op::kGetPartialObject64, "GetPartialObject64"},
    {op::kGetObjectPropsSupported, "GetObjectPropsSupported"},
    {op::kGetObjectPropDesc, "GetObjectPropDesc"},
    {op::kGetObjectPropValue, "GetObjectPropValue"},
    {op::kGetObjectPropList, "GetObjectPropList"},
};

struct FaultName {
    FaultKind kind;
    const char* name;
};

constexpr FaultName kFaults[] = {
    {FaultKind::kUnplug, "unplug"},   {FaultKind::kSever, "sever"}, {FaultKind::kStall, "stall"},
    {FaultKind::kSlow, "slow"},       {FaultKind::kShort, "short"}, {FaultKind::kLong, "long"},
    {FaultKind::kCut, "cut"},         {FaultKind::kFlood, "flood"}, {FaultKind::kVanish, "vanish"},
    {FaultKind::kRefuse, "refuse"},   {FaultKind::kName, "name"},   {FaultKind::kSize, "size"},
    {FaultKind::kGarbage, "garbage"},
};

std::string trimmed(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t\r");
    const size_t last = text.find_last_not_of(" \t\r");
    return first == std::string::npos ? std::string() : text.substr(first, last - first + 1);
}

void complain(const std::string& file, const std::string& text) {
    std::fprintf(stderr, "virtual camera: %s: not understood: %s\n", file.c_str(), text.c_str());
}

/// "KIND OPERATION AT [ARGUMENT]"
bool add_fault(const std::string& text, std::vector<Fault>& faults) {
    std::istringstream stream(text);
    std::string kind;
    std::string operation;
    unsigned at = 0;
    std::string argument;
    if (!(stream >> kind >> operation >> at)) {
        return false;
    }
    std::getline(stream, argument);
    for (const FaultName& known : kFaults) {
        if (kind == known.name && (operation == "any" || operation_number(operation) != 0)) {
            faults.push_back({known.kind, operation_number(operation), at, trimmed(argument)});
            return true;
        }
    }
    return false;
}

bool set_kind(const std::string& value, Kind& kind) {
    const std::map<std::string, Kind> kinds = {
        {"ptp", Kind::kPtp}, {"mtp", Kind::kMtp}, {"mtp-single", Kind::kMtpSingle}};
    const auto it = kinds.find(value);
    if (it == kinds.end()) {
        return false;
    }
    kind = it->second;
    return true;
}

bool set_ranges(const std::string& value, Description& camera) {
    camera.ranges = value != "no";
    camera.wide_ranges = value == "64";
    return value == "yes" || value == "no" || value == "64";
}

bool set_number(const std::string& value, unsigned long most, unsigned long& number) {
    char* end = nullptr;
    number = std::strtoul(value.c_str(), &end, 10);
    return !value.empty() && *end == '\0' && number <= most;
}

bool set(const std::string& key, const std::string& value, Description& camera) {
    const std::map<std::string, std::string*> texts = {{"vendor", &camera.vendor},
                                                       {"model", &camera.model},
                                                       {"serial", &camera.serial},
                                                       {"log", &camera.log}};
    if (const auto text = texts.find(key); text != texts.end()) {
        *text->second = value;
        return true;
    }
    unsigned long number = 0;
    if (key == "bus" && set_number(value, 255, number)) {
        camera.bus = static_cast<uint8_t>(number);
        return true;
    }
    if (key == "device" && set_number(value, 127, number)) {
        camera.device = static_cast<uint8_t>(number);
        return true;
    }
    if (key == "objects" && set_number(value, 1000000, number)) {
        camera.objects = static_cast<unsigned>(number);
        return true;
    }
    if (key == "storage") {
        camera.storages.push_back(value);
        return true;
    }
    return (key == "kind" && set_kind(value, camera.kind)) ||
           (key == "ranges" && set_ranges(value, camera)) ||
           (key == "fault" && add_fault(value, camera.faults));
}

Description read_camera(const std::filesystem::path& path) {
    Description camera;
    camera.name = path.stem().string();
    camera.file = path.string();
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        const size_t equals = line.find('=');
        const bool has_text = !trimmed(line).empty() && trimmed(line).front() != '#';
        if (has_text && (equals == std::string::npos ||
                         !set(trimmed(line.substr(0, equals)), trimmed(line.substr(equals + 1)), camera))) {
            complain(camera.file, line);
        }
    }
    return camera;
}

}  // namespace

std::map<std::string, Description> read_cameras(const std::string& directory) {
    std::map<std::string, Description> cameras;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        struct stat status {};
        if (entry.path().extension() != kSuffix || stat(entry.path().c_str(), &status) != 0) {
            continue;
        }
        const std::string identity = entry.path().string() + ":" + std::to_string(status.st_ino) + ":" +
                                     std::to_string(status.st_mtim.tv_sec) + "." +
                                     std::to_string(status.st_mtim.tv_nsec);
        cameras[identity] = read_camera(entry.path());
    }
    return cameras;
}

uint16_t operation_number(const std::string& name) {
    for (const OperationName& operation : kOperations) {
        if (name == operation.name) {
            return operation.number;
        }
    }
    return 0;
}

std::string operation_name(uint16_t number) {
    for (const OperationName& operation : kOperations) {
        if (number == operation.number) {
            return operation.name;
        }
    }
    return std::to_string(number);
}

}  // namespace virtual_camera
