#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/nubelink/host/device.h"
#include "platform/nubelink/host/device_table.h"

using namespace nbl;
using testing::ElementsAre;

namespace {

constexpr char kLocation[] = "http://10.0.0.5:8200/rootDesc.xml";

std::string device(const std::string& id, const std::string& name, const std::string& control,
                   const std::string& more = "") {
    return "<device><UDN>" + id + "</UDN><friendlyName>" + name +
           "</friendlyName><manufacturer>Kelvora</manufacturer>"
           "<serviceList><service><serviceType>urn:schemas-upnp-org:service:ConnectionManager:1</serviceType>"
           "<controlURL>/cm</controlURL></service><service>"
           "<serviceType>urn:schemas-upnp-org:service:ContentDirectory:2</serviceType><controlURL>" +
           control + "</controlURL></service></serviceList>" + more + "</device>";
}

std::string root(const std::string& content) {
    return "<?xml version=\"1.0\"?><root xmlns=\"urn:schemas-upnp-org:device-1-0\">" + content + "</root>";
}

bool read(const std::string& document, DeviceDescription& description, const std::string& id = "uuid:1") {
    return read_device_description(document, kLocation, id, description);
}

TEST(DeviceDescription, TellsNameMakerAndContentDirectory) {
    DeviceDescription description;
    ASSERT_TRUE(read(root(device("uuid:1", "Tom & Jerry's", "/ctl/ContentDir")), description));
    EXPECT_EQ(description.name, "Tom & Jerry's");
    EXPECT_EQ(description.maker, "Kelvora");
    EXPECT_EQ(description.content_directory.type, "urn:schemas-upnp-org:service:ContentDirectory:2");
    EXPECT_EQ(description.content_directory.control_url, "http://10.0.0.5:8200/ctl/ContentDir");
}

TEST(DeviceDescription, FindsTheDeviceAmongOthers) {
    const std::string inner = "<deviceList>" + device("uuid:2", "inner", "/two") + "</deviceList>";
    DeviceDescription description;
    ASSERT_TRUE(read(root(device("uuid:1", "outer", "/one", inner)), description, "uuid:2"));
    EXPECT_EQ(description.name, "inner");
    EXPECT_EQ(description.content_directory.control_url, "http://10.0.0.5:8200/two");
    DeviceDescription outer;
    ASSERT_TRUE(read(root(device("uuid:1", "outer", "/one", inner)), outer, "uuid:1"));
    EXPECT_EQ(outer.name, "outer");
    EXPECT_EQ(outer.content_directory.control_url, "http://10.0.0.5:8200/one");
}

TEST(DeviceDescription, AddressesAreRelativeToTheBaseThatItNames) {
    DeviceDescription description;
    ASSERT_TRUE(
        read(root("<URLBase>http://10.0.0.9:80/x/</URLBase>" + device("uuid:1", "n", "ctl")), description));
    EXPECT_EQ(description.content_directory.control_url, "http://10.0.0.9:80/x/ctl");
}

TEST(DeviceDescription, IsRefusedWithoutAContentDirectoryToSpeakTo) {
    DeviceDescription description;
    EXPECT_FALSE(read(root(device("uuid:other", "n", "/ctl")), description)) << "another device";
    EXPECT_FALSE(read(root(device("uuid:1", "n", "file:///etc/passwd")), description)) << "not on the web";
    EXPECT_FALSE(read(root(device("uuid:1", "n", "ftp://10.0.0.5/ctl")), description)) << "not on the web";
    EXPECT_FALSE(read(root("<device><UDN>uuid:1</UDN></device>"), description)) << "no service";
    EXPECT_FALSE(read("nonsense", description));
    EXPECT_FALSE(read("", description));
    EXPECT_FALSE(read("</device></root>", description));
}

TEST(DeviceDescription, TakesNoServiceTypeThatCannotStandInAHeader) {
    std::string document = root(device("uuid:1", "n", "/ctl"));
    const std::string type = "ContentDirectory:2";
    document.replace(document.find(type), type.size(), "ContentDirectory:2&#13;&#10;X-Evil: 1");
    DeviceDescription description;
    EXPECT_FALSE(read(document, description));
}

DevicePtr make_device(const std::string& id, const std::string& name) {
    return std::make_shared<nbl_device_s>(id, DeviceDescription{name, "", {}},
                                          std::vector<std::string>{"10.0.0.5"});
}

TEST(DeviceTable, KeepsOneDeviceForAnIdInTheOrderOfArrival) {
    DeviceTable table;
    EXPECT_TRUE(table.put(make_device("a", "A")));
    EXPECT_TRUE(table.put(make_device("b", "B")));
    EXPECT_FALSE(table.put(make_device("a", "A again")));
    std::vector<std::string> names;
    for (const DevicePtr& device : table.list()) {
        names.push_back(device->description.name);
    }
    EXPECT_THAT(names, ElementsAre("A again", "B"));
    EXPECT_NE(table.remove("a"), nullptr);
    EXPECT_EQ(table.remove("a"), nullptr);
    EXPECT_EQ(table.find("a"), nullptr);
    EXPECT_NE(table.find("b"), nullptr);
}

}  // namespace
