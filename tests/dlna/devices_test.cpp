// Servers that come, go, and do both in odd ways.
#include <gmock/gmock.h>

#include <algorithm>

#include "tests/dlna/home_network.h"
#include "tests/dlna/media_server.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using DevicesTest = HomeNetworkTest;

/// What the service knows of the only device.
struct Shown {
    std::string id;
    std::string address;
    std::string name;
    std::string maker;
};

Shown only_device(nbl_devicefinder_t finder) {
    nbl_device_t* list = nullptr;
    int count = 0;
    nbl_devicefinder_get_device_list(finder, NBL_DEVICE_CLASS_MEDIA_SERVER, &list, &count);
    if (count != 1) {
        return {};
    }
    const auto text = [&](int (*getter)(nbl_device_t, const char**)) {
        const char* value = nullptr;
        getter(list[0], &value);
        return std::string(value);
    };
    return {text(nbl_device_get_id), text(nbl_device_get_ip_address), text(nbl_device_get_name),
            text(nbl_device_get_manufacturer_name)};
}

TEST_F(DevicesTest, ListsNothingWhereThereIsNothing) {
    EXPECT_THAT(devices(), IsEmpty());
}

TEST_F(DevicesTest, FindsAServerThatStartsAndTellsWhatItIs) {
    MediaServer server({"--name=The <music> & more", "--maker=Kelvora"});
    ASSERT_NE(wait_for(), nullptr);

    const Shown shown = only_device(finder);
    EXPECT_EQ(shown.id, kFirstId);
    EXPECT_EQ(shown.address, "127.0.0.1");
    EXPECT_EQ(shown.name, "The <music> & more");
    EXPECT_EQ(shown.maker, "Kelvora");
    EXPECT_TRUE(wait_for_event(NBL_DEVICE_EVENT_ADDED, kFirstId));
    EXPECT_EQ(events(NBL_DEVICE_EVENT_ADDED, kFirstId), 1);
}

TEST_F(DevicesTest, FindsAServerThatWasThereBefore) {
    disconnect();
    MediaServer server;
    connect();
    EXPECT_NE(wait_for(), nullptr);
}

TEST_F(DevicesTest, TakesAServerThatSaysGoodbyeAway) {
    MediaServer server;
    ASSERT_NE(wait_for(), nullptr);
    server.tell({"goodbye"});

    EXPECT_TRUE(wait_until_gone());
    EXPECT_TRUE(wait_for_event(NBL_DEVICE_EVENT_REMOVED, kFirstId));
    EXPECT_THAT(devices(), IsEmpty());

    server.tell({"hello"});
    EXPECT_NE(wait_for(), nullptr);
    EXPECT_TRUE(wait_for_event(NBL_DEVICE_EVENT_ADDED, kFirstId, 2));
}

TEST_F(DevicesTest, TakesNoLateAnswerOfAServerThatSaidGoodbyeForItsReturn) {
    MediaServer server;
    ASSERT_NE(wait_for(), nullptr);
    ASSERT_EQ(nbl_devicefinder_refresh(finder), NBL_ERROR_NONE);
    server.await("M-SEARCH", 1);
    server.tell({"goodbye"});
    ASSERT_TRUE(wait_for_event(NBL_DEVICE_EVENT_REMOVED, kFirstId));
    server.tell({"answer"});
    // What is said after the answer is heard after it.
    MediaServer other({"--id=uuid:other"});
    ASSERT_NE(wait_for("uuid:other"), nullptr);

    EXPECT_THAT(devices(), ElementsAre("uuid:other"));
    EXPECT_EQ(events(NBL_DEVICE_EVENT_ADDED, kFirstId), 1);
}

TEST_F(DevicesTest, AnswersARequestOnAServerThatWentWithoutAWord) {
    MediaServer server;
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    server.kill();

    Reply reply;
    browse(provider, "0", 0, 200, reply);
    EXPECT_NE(reply.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(reply.items, IsEmpty());
    // It does not describe itself any more either.
    EXPECT_TRUE(wait_until_gone());
}

TEST_F(DevicesTest, AnswersARequestUnderWayWhenTheServerGoes) {
    MediaServer server;
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    server.set("Browse.hold");
    Reply said_goodbye;
    browse(provider, "0", 0, 200, said_goodbye);
    server.await("Browse", 1);
    server.tell({"goodbye"});

    EXPECT_EQ(said_goodbye.wait(), NBL_ERROR_DEVICE_GONE);

    Reply afterwards;
    browse(provider, "0", 0, 200, afterwards);
    EXPECT_EQ(afterwards.wait(), NBL_ERROR_DEVICE_GONE);
    EXPECT_FALSE(afterwards.had_device);
}

TEST_F(DevicesTest, AnswersARequestUnderWayWhenTheServerDies) {
    MediaServer server;
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    server.set("Browse.hold");
    Reply reply;
    browse(provider, "0", 0, 200, reply);
    server.await("Browse", 1);
    server.kill();

    EXPECT_NE(reply.wait(), NBL_ERROR_NONE);
}

TEST_F(DevicesTest, UsesTheSameProviderForAServerThatComesBackElsewhere) {
    auto server = std::make_unique<MediaServer>();
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    const int port = server->port();
    server->kill();
    server.reset();
    MediaServer again({"--port=" + std::to_string(port + 1)});
    again.generate("p", "image", 3);
    // Until the service has heard of the new address it asks the old one. What it tells of the move depends
    // on whether the goodbye that a server begins with comes to it by itself.
    size_t items = 0;
    EXPECT_TRUE(comes_true([&] {
        Reply reply;
        browse(provider, "p", 0, 200, reply);
        const int error = reply.wait();
        items = reply.items.size();
        return error == NBL_ERROR_NONE;
    }));

    EXPECT_EQ(items, 3U);
    EXPECT_EQ(wait_for(), provider);
    EXPECT_THAT(devices(), SizeIs(1));
}

TEST_F(DevicesTest, FindsTenServersAtOnce) {
    std::vector<std::unique_ptr<MediaServer>> servers;
    for (int i = 0; i < 10; ++i) {
        servers.push_back(std::make_unique<MediaServer>(std::vector<std::string>{
            "--id=uuid:server-" + std::to_string(i), "--name=" + std::to_string(i)}));
        servers.back()->generate("p", "image", i + 1);
    }
    for (int i = 0; i < 10; ++i) {
        nbl_provider_t provider = wait_for("uuid:server-" + std::to_string(i));
        ASSERT_NE(provider, nullptr);
        Reply reply;
        browse(provider, "p", 0, 200, reply);
        EXPECT_EQ(reply.wait(), NBL_ERROR_NONE);
        EXPECT_THAT(reply.items, SizeIs(i + 1));
    }
    EXPECT_THAT(devices(), SizeIs(10));
    servers[3]->tell({"goodbye"});
    EXPECT_TRUE(wait_until_gone("uuid:server-3"));
    EXPECT_THAT(devices(), SizeIs(9));
}

TEST_F(DevicesTest, IsOfUseBesideAServerThatAnnouncesWhatIsNotThere) {
    disconnect();
    MediaServer flooding({"--id=uuid:flooding"});
    MediaServer server;
    server.generate("p", "image", 3);
    flooding.tell({"flood", "2000"});
    connect();
    // What a server says may be lost among all that: whoever looks again finds it.
    ASSERT_TRUE(comes_true([&] {
        nbl_devicefinder_refresh(finder);
        const std::vector<std::string> ids = devices();
        return std::find(ids.begin(), ids.end(), kFirstId) != ids.end();
    }));
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    Reply reply;
    browse(provider, "p", 0, 200, reply);

    EXPECT_EQ(reply.wait(), NBL_ERROR_NONE);
    EXPECT_THAT(reply.items, SizeIs(3));
    EXPECT_LE(devices().size(), 2U);
    EXPECT_THAT(devices(), Contains(kFirstId));
}

TEST_F(DevicesTest, EndsWhatIsUnderWayWhenTheClientLeaves) {
    MediaServer server;
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    server.set("Browse.hold");
    server.set("Search.hold");
    server.set("GetSearchCapabilities.hold");
    Reply children;
    Reply found;
    Reply told;
    browse(provider, "0", 0, 200, children);
    search(provider, "x", {NBL_ITEM_TYPE_IMAGE}, 200, found);
    features(provider, told);
    server.await("Browse", 1);
    server.await("Search", 1);
    disconnect();

    EXPECT_EQ(children.wait(), NBL_ERROR_NOT_CONNECTED);
    EXPECT_EQ(found.wait(), NBL_ERROR_NOT_CONNECTED);
    EXPECT_EQ(told.wait(), NBL_ERROR_NOT_CONNECTED);
    nbl_item_t root = nullptr;
    nbl_provider_get_root_folder(provider, &root);
    int token = 0;
    EXPECT_EQ(nbl_provider_browse(provider, root, 0, 1, &Reply::on_items, nullptr, &token),
              NBL_ERROR_NOT_CONNECTED);
    nbl_item_free(root);

    connect();
    EXPECT_EQ(wait_for(), provider);
    server.clear();
    Reply again;
    browse(provider, "0", 0, 200, again);
    EXPECT_EQ(again.wait(), NBL_ERROR_NONE);
}

TEST_F(DevicesTest, DoesNotStartForAClientThatHasLeftMeanwhile) {
    struct Told {
        Signal signal;
        std::vector<int> states;
        bool go = false;
    } told;
    const auto wait_and_add = [](nbl_serviceprovider_t, int state, void* to) {
        auto* all = static_cast<Told*>(to);
        EXPECT_TRUE(all->signal.wait([&] { return all->go; }));
        all->signal.change([&] { all->states.push_back(state); });
    };
    nbl_serviceprovider_t provider = service;
    disconnect();
    // The first answer holds the service up until all the rest is asked for.
    ASSERT_EQ(nbl_serviceconnector_connect(wait_and_add, &told), NBL_ERROR_NONE);
    ASSERT_EQ(nbl_serviceconnector_disconnect(wait_and_add, &told), NBL_ERROR_NONE);
    ASSERT_EQ(nbl_serviceconnector_connect(wait_and_add, &told), NBL_ERROR_NONE);
    ASSERT_EQ(nbl_serviceconnector_disconnect(wait_and_add, &told), NBL_ERROR_NONE);
    told.signal.change([&] { told.go = true; });
    ASSERT_TRUE(told.signal.wait([&] { return told.states.size() == 4; }));

    // The first answer was under way already, or was not, when the client left.
    told.signal.read([&] {
        EXPECT_THAT(told.states, ElementsAre(testing::_, NBL_SERVICECONNECTOR_DISABLED,
                                             NBL_SERVICECONNECTOR_DISABLED, NBL_SERVICECONNECTOR_DISABLED));
        return true;
    });
    int state = NBL_SERVICE_STATE_ENABLED;
    EXPECT_EQ(nbl_serviceprovider_get_service_state(provider, &state), NBL_ERROR_NONE);
    EXPECT_EQ(state, NBL_SERVICE_STATE_DISABLED);

    connect();
    EXPECT_THAT(devices(), IsEmpty());
}

TEST_F(DevicesTest, AnswersACancelledRequestOnce) {
    MediaServer server;
    nbl_provider_t provider = wait_for();
    ASSERT_NE(provider, nullptr);
    server.set("Browse.hold");
    Reply reply;
    browse(provider, "0", 0, 200, reply);
    server.await("Browse", 1);
    EXPECT_EQ(nbl_provider_cancel_async_action(reply.token), NBL_ERROR_NONE);
    EXPECT_EQ(reply.wait(), NBL_ERROR_CANCELLED);

    server.release();
    EXPECT_EQ(nbl_provider_cancel_async_action(reply.token), NBL_ERROR_NONE);
    EXPECT_EQ(nbl_provider_cancel_async_action(reply.token + 1000), NBL_ERROR_INVALID_PARAMETER);
    server.clear();
    Reply after;
    browse(provider, "0", 0, 200, after);
    EXPECT_EQ(after.wait(), NBL_ERROR_NONE);
    EXPECT_EQ(reply.answers, 1);
}

}  // namespace
