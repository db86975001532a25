#include "engine/src/devices/device.h"

#include <gtest/gtest.h>
#include <json/json.h>

#include <algorithm>
#include <sstream>

using engine::Device;
using engine::DeviceEvent;

namespace {

Json::Value parse(const std::string& text) {
    std::istringstream stream(text);
    Json::Value value;
    std::string errors;
    EXPECT_TRUE(Json::parseFromStream(Json::CharReaderBuilder(), stream, &value, &errors)) << errors << text;
    return value;
}

Device sample() {
    Device device;
    device.id = "7c0e";
    device.name = "Stick 3000";
    device.mount_path = "/media/USBDrive2";
    device.serial_number = "SN-1";
    device.vendor = "Somebody";
    device.partition_label = "HOLIDAY";
    device.total_size = 64000000000;
    device.available_size = 18446744073709551615U;
    device.file_system = "VFAT";
    device.type = engine::kMassStorage;
    device.bus = 2;
    device.address = 17;
    device.index = 2;
    return device;
}

TEST(DeviceText, HasEveryKeyThatClientsRead) {
    const Json::Value list = parse(engine::devices_text({sample()}));
    ASSERT_EQ(1U, list["devices"].size());
    const Json::Value expected = parse(R"({
        "id": "7c0e", "name": "Stick 3000", "mountPath": "/media/USBDrive2", "serialNumber": "SN-1",
        "vendor": "Somebody", "partitionLabel": "HOLIDAY", "totalSize": "64000000000",
        "availableSize": "18446744073709551615", "fileSystem": "VFAT", "type": "msc", "deviceAddress": "17",
        "deviceBus": "2", "deviceIndex": 2})");
    EXPECT_EQ(expected, list["devices"][0]);
}

TEST(DeviceText, IsAnEmptyArrayWithoutDevices) {
    const Json::Value list = parse(engine::devices_text({}));
    EXPECT_TRUE(list["devices"].isArray());
    EXPECT_EQ(0U, list["devices"].size());
}

TEST(DeviceText, TellsOfOneDeviceThatCameOrWent) {
    const Json::Value came = parse(engine::notification_text(DeviceEvent::kCame, sample()));
    EXPECT_EQ(1, came["event"].asInt());
    EXPECT_EQ("7c0e", came["devices"][0]["id"].asString());
    EXPECT_EQ(2, parse(engine::notification_text(DeviceEvent::kWent, sample()))["event"].asInt());
}

TEST(DeviceText, IsFitForTheBusWhateverADeviceCallsItself) {
    Device device = sample();
    device.name =
        "St\xfc"
        "i\xff\xc3(ck";
    device.partition_label =
        "\xc3\x9c"
        "BER";
    device.vendor = "\"}]\\\n\x01";
    const std::string text = engine::devices_text({device});
    EXPECT_TRUE(std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c < 127; })) << text;
    const Json::Value record = parse(text)["devices"][0];
    EXPECT_EQ(
        "\xc3\x9c"
        "BER",
        record["partitionLabel"].asString());
    EXPECT_EQ("\"}]\\\n\x01", record["vendor"].asString());
}

TEST(FileSystemName, IsTheOneThatClientsKnow) {
    const std::pair<const char*, const char*> names[] = {
        {"vfat", "VFAT"},  {"msdos", "VFAT"},  {"ext4", "EXT4"},       {"ntfs", "NTFS"},
        {"ntfs3", "NTFS"}, {"exfat", "EXFAT"}, {"fuseblk", "FUSEBLK"}, {"", ""},
    };
    for (const auto& [system_name, name] : names) {
        EXPECT_EQ(name, engine::file_system_name(system_name));
    }
}

}  // namespace
