// What announcements make of devices, without a network: the messages are the test's, the descriptions a web
// server's.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/nubelink/host/discovery.h"
#include "tests/fakes/web_server.h"
#include "tests/unit/platform/nubelink/main_context.h"

using namespace nbl;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

namespace {

std::string description_of(const std::string& id, const std::string& name) {
    return "<root><device><UDN>" + id + "</UDN><friendlyName>" + name +
           "</friendlyName><serviceList><service>"
           "<serviceType>urn:schemas-upnp-org:service:ContentDirectory:1</serviceType><controlURL>/ctl</"
           "controlURL>"
           "</service></serviceList></device></root>";
}

struct AnnouncementsTest : testing::Test {
    AnnouncementsTest() {
        serve("/d", "uuid:1", "One");
        serve("/moved", "uuid:1", "One");
    }

    void serve(const std::string& path, const std::string& id, const std::string& name) {
        server.on(path, [=](SoupServerMessage* message) { reply(message, 200, description_of(id, name)); });
    }
    bool wait_for_events(size_t count) {
        return run_until([&] { return events.size() >= count; });
    }
    void come(const std::string& id, const std::string& path, const void* network) {
        announcements.on_alive(id, server.url(path), network);
    }
    std::vector<std::string> there() const {
        std::vector<std::string> names;
        for (const DevicePtr& device : table.list()) {
            names.push_back(device->description.name);
        }
        return names;
    }

    const int network = 0;
    const int other_network = 0;
    WebServer server;
    HttpClient client;
    DeviceTable table;
    std::vector<std::pair<int, std::string>> events;
    Announcements announcements{client, table, [this](int event, nbl_device_t device) {
                                    events.emplace_back(event, device->description.name);
                                }};
};

TEST_F(AnnouncementsTest, ADeviceIsThereWhenItsDescriptionIs) {
    come("uuid:1", "/d", &network);
    EXPECT_THAT(events, IsEmpty());
    ASSERT_TRUE(wait_for_events(1));
    EXPECT_THAT(events, ElementsAre(Pair(NBL_DEVICE_EVENT_ADDED, "One")));
    const DevicePtr device = table.find("uuid:1");
    ASSERT_NE(device, nullptr);
    EXPECT_THAT(device->addresses, ElementsAre("127.0.0.1"));
    EXPECT_EQ(device->description.content_directory.control_url, server.url("/ctl"));
}

TEST_F(AnnouncementsTest, ADeviceThatIsAnnouncedAgainIsTheSame) {
    come("uuid:1", "/d", &network);
    come("uuid:1", "/d", &network);
    ASSERT_TRUE(wait_for_events(1));
    come("uuid:1", "/d", &network);
    come("uuid:1", "/d", &other_network);
    EXPECT_THAT(there(), ElementsAre("One"));
    EXPECT_THAT(server.requests(), SizeIs(1)) << "its description is fetched once";
    EXPECT_THAT(events, SizeIs(1));
}

TEST_F(AnnouncementsTest, ADeviceIsGoneWhenItIsGoneFromAllNetworks) {
    come("uuid:1", "/d", &network);
    come("uuid:1", "/d", &other_network);
    ASSERT_TRUE(wait_for_events(1));
    announcements.on_gone("uuid:1", &network);
    EXPECT_THAT(there(), ElementsAre("One"));
    announcements.on_network_gone(&other_network);
    EXPECT_THAT(there(), IsEmpty());
    EXPECT_THAT(events,
                ElementsAre(Pair(NBL_DEVICE_EVENT_ADDED, "One"), Pair(NBL_DEVICE_EVENT_REMOVED, "One")));
}

TEST_F(AnnouncementsTest, ADeviceThatComesBackWithAnotherAddressIsAskedThere) {
    WebServer elsewhere;
    elsewhere.on(
        "/d", [](SoupServerMessage* message) { reply(message, 200, description_of("uuid:1", "One again")); });
    come("uuid:1", "/d", &network);
    ASSERT_TRUE(wait_for_events(1));
    announcements.on_alive("uuid:1", elsewhere.url("/d"), &network);
    ASSERT_TRUE(wait_for_events(2));
    EXPECT_THAT(events, ElementsAre(Pair(NBL_DEVICE_EVENT_ADDED, "One"),
                                    Pair(NBL_DEVICE_EVENT_CHANGED, "One again")));
    EXPECT_EQ(table.find("uuid:1")->description.content_directory.control_url, elsewhere.url("/ctl"));
}

TEST_F(AnnouncementsTest, ADeviceThatLeavesOneAddressIsReachedAtTheOther) {
    come("uuid:1", "/d", &network);
    ASSERT_TRUE(wait_for_events(1));
    come("uuid:1", "/moved", &other_network);
    announcements.on_gone("uuid:1", &network);
    EXPECT_TRUE(run_until([&] { return server.requests().size() == 2; }));
    EXPECT_THAT(there(), ElementsAre("One"));
}

TEST_F(AnnouncementsTest, ADescriptionThatFailsIsAskedForAgain) {
    int asked = 0;
    server.on("/late", [&](SoupServerMessage* message) {
        if (++asked == 1) {
            reply(message, 503, "");
        } else {
            reply(message, 200, description_of("uuid:2", "Two"));
        }
    });
    come("uuid:2", "/late", &network);
    ASSERT_TRUE(wait_for_events(1));
    EXPECT_THAT(there(), ElementsAre("Two"));
}

TEST_F(AnnouncementsTest, WhoDescribesSomebodyElseIsNotThere) {
    come("uuid:liar", "/d", &network);
    come("uuid:1", "/d", &network);
    ASSERT_TRUE(wait_for_events(1));
    EXPECT_THAT(there(), ElementsAre("One"));
}

TEST_F(AnnouncementsTest, ADeviceThatDoesNotAnswerAndHasNoDescriptionAnyMoreIsGone) {
    come("uuid:1", "/d", &network);
    ASSERT_TRUE(wait_for_events(1));
    announcements.check("uuid:1");
    EXPECT_TRUE(run_until([&] { return server.requests().size() == 2; }));
    EXPECT_THAT(there(), ElementsAre("One")) << "it still describes itself";
    server.on("/d", [](SoupServerMessage* message) { reply(message, 404, ""); });
    // The answer to the second question may be on its way still: a check meanwhile asks nothing.
    EXPECT_TRUE(run_until([&] {
        announcements.check("uuid:1");
        return events.size() == 2;
    }));
    EXPECT_THAT(there(), IsEmpty());
    serve("/d", "uuid:1", "One");
    come("uuid:1", "/d", &network);
    ASSERT_TRUE(wait_for_events(3));
    EXPECT_THAT(there(), ElementsAre("One")) << "the next announcement brings it back";
}

TEST_F(AnnouncementsTest, OfAFloodOfDevicesTheRestIsNotLookedAt) {
    server.on("/x", [](SoupServerMessage* message) { fall_silent(message, 200, ""); });
    for (size_t i = 0; i < 10 * Announcements::kMostDevices; ++i) {
        come("uuid:flood-" + std::to_string(i), "/x", &network);
    }
    come("uuid:1", "/d", &network);
    EXPECT_TRUE(run_until([&] { return !server.requests().empty(); }));
    EXPECT_THAT(there(), IsEmpty());
}

TEST_F(AnnouncementsTest, AFloodFromOneHostHidesNobodyElse) {
    WebServer flooding;
    for (size_t i = 0; i < 10 * Announcements::kMostDevices; ++i) {
        announcements.on_alive("uuid:flood-" + std::to_string(i), flooding.url("/x"), &network);
    }
    come("uuid:1", "/d", &network);
    ASSERT_TRUE(wait_for_events(1));
    EXPECT_THAT(there(), ElementsAre("One"));
}

TEST_F(AnnouncementsTest, DevicesWithoutDescriptionsMakeRoomForOthers) {
    server.on("/x", [](SoupServerMessage* message) { reply(message, 404, ""); });
    for (size_t i = 0; i < Announcements::kMostDevices; ++i) {
        come("uuid:flood-" + std::to_string(i), "/x", &network);
    }
    EXPECT_TRUE(run_until([&] {
        come("uuid:1", "/d", &network);
        return !events.empty();
    }));
    EXPECT_THAT(there(), ElementsAre("One"));
}

}  // namespace
