#include "libqra-agent/agent/src/qra_storage_json.h"

#include <json/json.h>

#include <cstring>
#include <exception>

#include "common/util/qra_log.h"
#include "common/util/qra_util.h"

namespace {

/// More devices than any machine has; what names more is no list of devices.
constexpr Json::ArrayIndex MOST_DEVICES = 4096;

struct TextField {
    const char* pKey;
    char (_qra_storage_s::*pText)[QRA_STORAGE_TEXT_SIZE];
};

constexpr TextField NAME_FIELDS[] = {
    {"id", &_qra_storage_s::id},
    {"name", &_qra_storage_s::name},
    {"mountPath", &_qra_storage_s::mountpath},
};

constexpr TextField FURTHER_TEXT_FIELDS[] = {
    {"serialNumber", &_qra_storage_s::serialnumber},
    {"vendor", &_qra_storage_s::vendor},
    {"partitionLabel", &_qra_storage_s::partitionlabel},
};

constexpr TextField SERVER_TEXT_FIELDS[] = {
    {"deviceID", &_qra_storage_s::id},
    {"deviceName", &_qra_storage_s::name},
    {"deviceIP", &_qra_storage_s::ip},
};

// Each of these raises a Json::Exception for a value of a type that it cannot turn into the field's.

template <size_t Count>
void ReadTexts(const Json::Value& device, const TextField (&fields)[Count], _qra_storage_s& stStorage) {
    for (const TextField& field : fields) {
        // The field is zeroed, and keeps its last byte.
        std::strncpy(stStorage.*field.pText, device[field.pKey].asString().c_str(),
                     QRA_STORAGE_TEXT_SIZE - 1);
    }
}

int ReadNumberText(const Json::Value& device, const char* pKey) {
    return CQRAUtil::str2int(device[pKey].asString());
}

FileSystem ConvertStringToFileSystem(const std::string& strFileSystem) {
    if (strFileSystem == "VFAT") {
        return QRA_FILE_SYSTEM_VFAT;
    }
    if (strFileSystem == "EXT4") {
        return QRA_FILE_SYSTEM_EXT4;
    }
    return strFileSystem == "NTFS" ? QRA_FILE_SYSTEM_NTFS : QRA_FILE_SYSTEM_OTHER;
}

DeviceClass ConvertStringToDeviceClass(const std::string& strClass) {
    if (strClass == "msc") {
        return QRA_DEVICE_CLASS_MSC;
    }
    return strClass == "ptp" ? QRA_DEVICE_CLASS_PTP : QRA_DEVICE_CLASS_OTHER;
}

void ReadStorage(const Json::Value& device, StorageFields eFields, _qra_storage_s& stStorage) {
    if (!device.isObject()) {
        Json::throwLogicError("a device that is no object");
    }
    if (eFields == StorageFields::SERVER) {
        ReadTexts(device, SERVER_TEXT_FIELDS, stStorage);
        stStorage.bKelvoraDevice = device["bKelvoraDevice"].asBool();
        return;
    }
    ReadTexts(device, NAME_FIELDS, stStorage);
    if (eFields == StorageFields::NAMES) {
        return;
    }
    ReadTexts(device, FURTHER_TEXT_FIELDS, stStorage);
    stStorage.totalsize = ReadNumberText(device, "totalSize");
    stStorage.availablesize = ReadNumberText(device, "availableSize");
    stStorage.filesystem = ConvertStringToFileSystem(device["fileSystem"].asString());
    stStorage.device_class = ConvertStringToDeviceClass(device["type"].asString());
    stStorage.address = ReadNumberText(device, "deviceAddress");
    stStorage.bus = ReadNumberText(device, "deviceBus");
    stStorage.index = device["deviceIndex"].asInt();
}

const Json::Value& DevicesOf(const Json::Value& root) {
    const Json::Value& devices = root["devices"];
    if (!devices.isArray() || devices.size() > MOST_DEVICES) {
        Json::throwLogicError("no array of devices");
    }
    return devices;
}

/// Has `read` take a text apart; whatever it raises ends here.
template <class Read>
bool ReadJson(const std::string& strJson, const Read& read) {
    try {
        Json::Value root;
        Json::Reader reader;
        if (!reader.parse(strJson, root, false)) {
            QRA_LOG_WARNING(QRA_TAG_STORAGE, "Can't parse storages:\n%s", strJson.c_str());
            return false;
        }
        read(const_cast<const Json::Value&>(root));
        return true;
    } catch (const std::exception& exception) {
        QRA_LOG_WARNING(QRA_TAG_STORAGE, "Exception Handled by[%s]: [%s] \n", __func__, exception.what());
        return false;
    }
}

}  // namespace

bool ReadStorages(const std::string& strJson, StorageFields eFields,
                  std::vector<std::unique_ptr<_qra_storage_s>>& vStorages) {
    return ReadJson(strJson, [&](const Json::Value& root) {
        if (eFields == StorageFields::SERVER && root.isObject() && !root.isMember("devices")) {
            return;
        }
        const Json::Value& devices = DevicesOf(root);
        QRA_LOG_INFO(QRA_TAG_STORAGE, "size[%d]", static_cast<int>(devices.size()));
        for (const Json::Value& device : devices) {
            vStorages.push_back(std::make_unique<_qra_storage_s>());
            ReadStorage(device, eFields, *vStorages.back());
        }
    });
}

bool ReadStorageEvent(const std::string& strJson, int& nEvent, _qra_storage_s& stStorage) {
    return ReadJson(strJson, [&](const Json::Value& root) {
        const Json::Value& devices = DevicesOf(root);
        if (!root["event"].isInt() || devices.empty()) {
            Json::throwLogicError("no event of a device");
        }
        nEvent = root["event"].asInt();
        ReadStorage(devices[0U], StorageFields::ALL, stStorage);
    });
}

bool ReadServer(const std::string& strJson, _qra_storage_s& stStorage) {
    return ReadJson(strJson, [&](const Json::Value& root) {
        const Json::Value& devices = DevicesOf(root);
        if (devices.empty()) {
            Json::throwLogicError("no media server");
        }
        ReadStorage(devices[0U], StorageFields::SERVER, stStorage);
    });
}
