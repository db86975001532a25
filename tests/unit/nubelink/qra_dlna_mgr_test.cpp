#include "libqra-agent/source/nubelink/qra_dlna_mgr.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <json/json.h>

#include <future>
#include <memory>

#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_nubelink.h"
#include "tests/fakes/received.h"

namespace {

using testing::ElementsAre;

void add_event(QRADeviceActionType action, const char* text, void* received) {
    static_cast<Received*>(received)->add(std::to_string(action) + " " + text);
}

void add_state(qra_nbl_serviceconnector_state_e state, void* received) {
    static_cast<Received*>(received)->add(std::to_string(state));
}

Json::Value json(const std::string& text) {
    Json::Value value;
    Json::Reader().parse(text, value);
    return value;
}

class CQRADlnaMgrTest : public testing::Test {
protected:
    ~CQRADlnaMgrTest() override {
        service.run([] {});  // what the service still has to tell the manager
        mgr.reset();
    }

    void connect() {
        ASSERT_TRUE(mgr->ConnectService());
        service.run([] {});
        ASSERT_NE(mgr->GetServiceProvide(), nullptr);
    }

    Json::Value list() {
        EXPECT_TRUE(mgr->GetDlnaListSync());
        return json(mgr->GetAllDlnaListContent());
    }

    LogCapture log;
    FakeNubelink service;
    Received events;
    Received states;
    std::unique_ptr<CQRADlnaMgr> mgr = std::make_unique<CQRADlnaMgr>();
};

TEST_F(CQRADlnaMgrTest, ConnectingGivesTheProviderAndDeliversTheList) {
    service.devices = {{"uuid:1", "10.0.0.1", "Attic", "Acme"}};
    mgr->SetDLNAEventCallback(add_event, &events);

    connect();

    EXPECT_TRUE(log.contains("m_bConnectStatus == DLNA_STATUS_NONE"));
    ASSERT_TRUE(events.wait_for(1));
    const std::string event = events.all().at(0);
    EXPECT_EQ(event.substr(0, 2), "3 ");
    EXPECT_EQ(json(event.substr(2))["devices"][0]["deviceID"], "uuid:1");
}

TEST_F(CQRADlnaMgrTest, TheConnectCallbackIsToldInPlaceOfTheList) {
    mgr->SetDLNAEventCallback(add_event, &events);
    mgr->SetDLNAConnectCallback(add_state, &states);

    connect();

    EXPECT_THAT(states.all(), ElementsAre("1"));
    EXPECT_THAT(events.all(), ElementsAre());
    EXPECT_EQ(service.count("nbl_devicefinder_get_device_list"), 0);
}

TEST_F(CQRADlnaMgrTest, AConnectedServiceIsNotConnectedAgain) {
    connect();

    EXPECT_TRUE(mgr->ConnectService());

    EXPECT_EQ(service.count("nbl_serviceconnector_connect"), 1);
    EXPECT_TRUE(log.contains("End of ConnectService"));
}

TEST_F(CQRADlnaMgrTest, ASecondConnectBeforeTheAnswerConnectsOnceMore) {
    std::promise<void> go;
    service.post([&] { go.get_future().wait(); });

    EXPECT_TRUE(mgr->ConnectService());
    EXPECT_TRUE(mgr->ConnectService());

    EXPECT_EQ(service.count("nbl_serviceconnector_connect"), 2);
    go.set_value();
    service.run([] {});
}

TEST_F(CQRADlnaMgrTest, AConnectionThatComesAfterTheDisconnectIsNotKept) {
    std::promise<void> go;
    service.post([&] { go.get_future().wait(); });
    EXPECT_TRUE(mgr->ConnectService());
    EXPECT_TRUE(mgr->DisConnectSerivce());
    go.set_value();
    service.run([] {});

    EXPECT_TRUE(mgr->ConnectService());

    EXPECT_EQ(service.count("nbl_serviceconnector_connect"), 2);
    service.run([] {});
}

TEST_F(CQRADlnaMgrTest, AServiceThatAnswersFromInsideTheCallIsSurvived) {
    service.connect_inside = true;
    mgr->SetDLNAConnectCallback(add_state, &states);

    EXPECT_TRUE(mgr->ConnectService());

    EXPECT_THAT(states.all(), ElementsAre("1"));
}

TEST_F(CQRADlnaMgrTest, AServiceThatRefusesToConnectIsAFailure) {
    service.refuse["nbl_serviceconnector_connect"] = NBL_ERROR_FAILED;

    EXPECT_FALSE(mgr->ConnectService());
}

TEST_F(CQRADlnaMgrTest, ABadConnectionGivesAnEmptyListAndCanBeTriedAgain) {
    service.connect_state = NBL_SERVICECONNECTOR_FAILED;
    mgr->SetDLNAEventCallback(add_event, &events);

    EXPECT_TRUE(mgr->ConnectService());

    ASSERT_TRUE(events.wait_for(1));
    EXPECT_THAT(events.all(), ElementsAre("3 "));
    EXPECT_TRUE(log.contains("serviceprovider == NULL || state != NBL_SERVICECONNECTOR_ENABLED"));
    EXPECT_TRUE(log.contains("GetDlnaList failed"));
    EXPECT_EQ(mgr->GetServiceProvide(), nullptr);
    EXPECT_TRUE(mgr->ConnectService());
    EXPECT_EQ(service.count("nbl_serviceconnector_connect"), 2);
}

TEST_F(CQRADlnaMgrTest, TheConnectCallbackHearsOfABadStateToo) {
    service.connect_state = NBL_SERVICECONNECTOR_FAILED;
    mgr->SetDLNAConnectCallback(add_state, &states);

    EXPECT_TRUE(mgr->ConnectService());

    ASSERT_TRUE(states.wait_for(1));
    EXPECT_THAT(states.all(), ElementsAre("2"));
}

TEST_F(CQRADlnaMgrTest, DisconnectingClearsTheProviderAndTheEventCallback) {
    connect();
    mgr->SetDLNAConnectCallback(add_state, &states);
    mgr->SetDLNAEventCallback(add_event, &events);

    EXPECT_TRUE(mgr->DisConnectSerivce());

    EXPECT_EQ(mgr->GetServiceProvide(), nullptr);
    ASSERT_TRUE(states.wait_for(1));
    EXPECT_THAT(states.all(), ElementsAre("0"));
    EXPECT_FALSE(service.has_event_callback());
}

TEST_F(CQRADlnaMgrTest, OnlyTheResultTwoOfADisconnectIsAFailure) {
    connect();
    service.refuse["nbl_serviceconnector_disconnect"] = 2;

    EXPECT_FALSE(mgr->DisConnectSerivce());

    EXPECT_TRUE(log.contains("nbl_serviceconnector_disconnect failed"));
    EXPECT_NE(mgr->GetServiceProvide(), nullptr);
    service.refuse["nbl_serviceconnector_disconnect"] = 1;
    EXPECT_TRUE(mgr->DisConnectSerivce());
    EXPECT_EQ(mgr->GetServiceProvide(), nullptr);
}

TEST_F(CQRADlnaMgrTest, TheEndOfTheManagerDisconnects) {
    mgr.reset();

    EXPECT_EQ(service.count("nbl_serviceconnector_disconnect"), 1);
    mgr = std::make_unique<CQRADlnaMgr>();
}

TEST_F(CQRADlnaMgrTest, AListIsAskedForAtOnceWhenTheServiceIsGood) {
    connect();

    EXPECT_TRUE(mgr->GetDlnaListAsync());

    EXPECT_EQ(service.count("nbl_serviceconnector_connect"), 1);
}

TEST_F(CQRADlnaMgrTest, AServiceThatIsNotEnabledIsConnectedAnew) {
    connect();
    service.service_state = NBL_SERVICE_STATE_DISABLED;

    EXPECT_TRUE(mgr->GetDlnaListAsync());

    EXPECT_TRUE(log.contains("m_bConnectStatus!= DLNA_STATUS_CONNECT_OK"));
    EXPECT_EQ(service.count("nbl_serviceconnector_connect"), 2);
    service.run([] {});
}

TEST_F(CQRADlnaMgrTest, AListWithoutAProviderConnects) {
    EXPECT_TRUE(mgr->GetDlnaListAsync());

    EXPECT_EQ(service.count("nbl_serviceconnector_connect"), 1);
    service.run([] {});
}

TEST_F(CQRADlnaMgrTest, AProviderOfTheClientsOwnCountsAsAConnection) {
    int provider = 0;

    mgr->SetServiceProvide(&provider);

    EXPECT_EQ(mgr->GetServiceProvide(), &provider);
    EXPECT_TRUE(mgr->GetDlnaListAsync());
    EXPECT_EQ(service.count("nbl_serviceconnector_connect"), 0);
}

TEST_F(CQRADlnaMgrTest, ListsServersWithTheirFields) {
    connect();
    service.devices = {{"uuid:1", "10.0.0.1", "Attic", "KELVORA Ltd"},
                       {"uuid:2", "10.0.0.2", "Cellar", "Acme"}};

    const Json::Value devices = list()["devices"];

    ASSERT_EQ(devices.size(), 2U);
    EXPECT_EQ(devices[0]["deviceID"], "uuid:1");
    EXPECT_EQ(devices[0]["deviceIP"], "10.0.0.1");
    EXPECT_EQ(devices[0]["deviceName"], "Attic");
    EXPECT_EQ(devices[0]["bKelvoraDevice"], true);
    EXPECT_EQ(devices[1]["deviceName"], "Cellar");
    EXPECT_EQ(devices[1]["bKelvoraDevice"], false);
    EXPECT_TRUE(log.contains("lower strManufacturer = [kelvora ltd]"));
    EXPECT_EQ(service.count("nbl_devicefinder_get_device_list 4"), 2);
    EXPECT_EQ(service.count("nbl_devicefinder_refresh"), 2);
}

TEST_F(CQRADlnaMgrTest, TheMakersNameCountsAtAnyPlaceAndInAnyCase) {
    connect();
    for (const char* maker : {"kelvora", "The KelVora Company", "x-kelvora"}) {
        service.devices = {{"i", "a", "n", maker}};
        EXPECT_EQ(list()["devices"][0]["bKelvoraDevice"], true) << maker;
    }
    for (const char* maker : {"", "kelvor", "Acme"}) {
        service.devices = {{"i", "a", "n", maker}};
        EXPECT_EQ(list()["devices"][0]["bKelvoraDevice"], false) << maker;
    }
}

TEST_F(CQRADlnaMgrTest, WhatADeviceDoesNotTellIsEmpty) {
    connect();
    service.devices = {{std::nullopt, std::nullopt, std::nullopt, std::nullopt}};

    const Json::Value device = list()["devices"][0];

    EXPECT_EQ(device["deviceID"], "");
    EXPECT_EQ(device["deviceIP"], "");
    EXPECT_EQ(device["deviceName"], "");
    EXPECT_EQ(device["bKelvoraDevice"], false);
    EXPECT_TRUE(log.contains("dlna device name is NULL"));
}

TEST_F(CQRADlnaMgrTest, NoServersAreAListWithoutDevices) {
    connect();

    EXPECT_FALSE(list().isMember("devices"));
}

TEST_F(CQRADlnaMgrTest, AListNeedsAProvider) {
    EXPECT_FALSE(mgr->GetDlnaListSync());

    EXPECT_TRUE(log.contains("NULL == pServiceProvider"));
}

TEST_F(CQRADlnaMgrTest, EachFailureOfAListIsToldAndKeepsTheListBefore) {
    connect();
    service.devices = {{"uuid:1", "", "Attic", ""}};
    list();
    const std::string before = mgr->GetAllDlnaListContent();
    for (const char* function : {"nbl_serviceprovider_get_devicefinder",
                                 "nbl_devicefinder_set_event_callback", "nbl_devicefinder_get_device_list"}) {
        service.refuse = {{function, NBL_ERROR_FAILED}};

        EXPECT_FALSE(mgr->GetDlnaListSync()) << function;

        EXPECT_TRUE(log.contains(function + std::string(" failed"))) << function;
        EXPECT_EQ(mgr->GetAllDlnaListContent(), before);
    }
}

TEST_F(CQRADlnaMgrTest, AListThatDoesNotComeIsAFailure) {
    connect();
    service.null_device_list = true;

    EXPECT_FALSE(mgr->GetDlnaListSync());

    EXPECT_TRUE(log.contains("did not get device list"));
}

TEST_F(CQRADlnaMgrTest, AFailedRefreshStillGivesTheList) {
    connect();
    service.refuse["nbl_devicefinder_refresh"] = NBL_ERROR_FAILED;
    service.devices = {{"uuid:1", "", "Attic", ""}};

    EXPECT_EQ(list()["devices"].size(), 1U);
}

TEST_F(CQRADlnaMgrTest, WithoutAConnectCallbackTheListWatchesTheDevices) {
    connect();

    EXPECT_EQ(service.count("nbl_devicefinder_set_event_callback 4"), 1);
}

TEST_F(CQRADlnaMgrTest, WithAConnectCallbackSettingTheEventCallbackWatchesTheDevices) {
    mgr->SetDLNAConnectCallback(add_state, &states);
    connect();
    EXPECT_TRUE(mgr->GetDlnaListSync());
    EXPECT_EQ(service.count("nbl_devicefinder_set_event_callback"), 0);

    EXPECT_TRUE(mgr->SetDLNAEventCallback(add_event, &events));

    EXPECT_EQ(service.count("nbl_devicefinder_set_event_callback 4"), 1);
}

TEST_F(CQRADlnaMgrTest, EachFailureOfWatchingIsTold) {
    mgr->SetDLNAConnectCallback(add_state, &states);
    EXPECT_FALSE(mgr->SetDLNAEventCallback(add_event, &events)) << "not connected";
    connect();
    for (const char* function :
         {"nbl_serviceprovider_get_devicefinder", "nbl_devicefinder_set_event_callback"}) {
        service.refuse = {{function, NBL_ERROR_FAILED}};

        EXPECT_FALSE(mgr->SetDLNAEventCallback(add_event, &events)) << function;

        EXPECT_TRUE(log.contains(function + std::string(" failed"))) << function;
    }
}

TEST_F(CQRADlnaMgrTest, ServersThatComeAndGoAreToldOneByOne) {
    mgr->SetDLNAConnectCallback(add_state, &states);
    connect();
    mgr->SetDLNAEventCallback(add_event, &events);

    service.send_event(1, {"uuid:1", "10.0.0.1", "Attic", "kelvora"});
    service.send_event(2, {"uuid:1", "10.0.0.1", "Attic", "kelvora"});

    ASSERT_EQ(events.all().size(), 2U);
    EXPECT_EQ(events.all()[0].substr(0, 2), "0 ");
    EXPECT_EQ(events.all()[1].substr(0, 2), "1 ");
    const Json::Value device = json(events.all()[0].substr(2))["devices"][0];
    EXPECT_EQ(device["deviceName"], "Attic");
    EXPECT_EQ(device["bKelvoraDevice"], true);
    EXPECT_TRUE(log.contains("dlna device added"));
    EXPECT_TRUE(log.contains("dlna device removed"));
}

TEST_F(CQRADlnaMgrTest, OtherEventsAreIgnored) {
    mgr->SetDLNAConnectCallback(add_state, &states);
    connect();
    mgr->SetDLNAEventCallback(add_event, &events);

    service.send_event(3, {"uuid:1", "", "", ""});
    service.send_null_event();

    EXPECT_THAT(events.all(), ElementsAre());
    EXPECT_EQ(log.count("did not get provider"), 2);
}

TEST_F(CQRADlnaMgrTest, AnEventWithoutAListenerIsLogged) {
    connect();

    service.send_event(1, {"uuid:1", "", "", ""});

    EXPECT_TRUE(log.contains("m_NotifyListener m_pUserData == NULL!"));
}

TEST_F(CQRADlnaMgrTest, NoEventComesAfterItsCallbackWasDropped) {
    mgr->SetDLNAConnectCallback(add_state, &states);
    connect();
    mgr->SetDLNAEventCallback(add_event, &events);

    EXPECT_TRUE(mgr->UnSetDLNAEventCallback());
    service.send_event(1, {"uuid:1", "", "", ""});

    EXPECT_THAT(events.all(), ElementsAre());
}

TEST_F(CQRADlnaMgrTest, DroppingTheCallbackWaitsForOneThatRuns) {
    struct Slow {
        std::promise<void> begun, go;
        std::atomic<bool> done{false};
    } slow;
    mgr->SetDLNAConnectCallback(add_state, &states);
    connect();
    mgr->SetDLNAEventCallback(
        [](QRADeviceActionType, const char*, void* data) {
            auto* running = static_cast<Slow*>(data);
            running->begun.set_value();
            running->go.get_future().wait();
            running->done = true;
        },
        &slow);
    auto sending = std::async(std::launch::async, [&] { service.send_event(1, {"uuid:1", "", "", ""}); });
    slow.begun.get_future().wait();

    auto dropping = std::async(std::launch::async, [&] {
        mgr->UnSetDLNAEventCallback();
        EXPECT_TRUE(slow.done);
    });
    slow.go.set_value();
    dropping.wait();
    sending.wait();
}

TEST_F(CQRADlnaMgrTest, AListMayBeAskedForFromInsideAnEvent) {
    struct Asking {
        CQRADlnaMgr* mgr;
        bool listed;
    } asking{mgr.get(), false};
    mgr->SetDLNAConnectCallback(add_state, &states);
    connect();
    mgr->SetDLNAEventCallback(
        [](QRADeviceActionType, const char*, void* data) {
            auto* from = static_cast<Asking*>(data);
            from->listed = from->mgr->GetDlnaListSync();
        },
        &asking);

    service.send_event(1, {"uuid:1", "", "", ""});

    EXPECT_TRUE(asking.listed);
}

}  // namespace
