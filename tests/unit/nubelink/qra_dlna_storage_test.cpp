#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <qra/qra_content_agent.h>

#include <cstdlib>
#include <cstring>
#include <future>

#include "libqra-agent/source/nubelink/qra_dlna_mgr.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_nubelink.h"
#include "tests/fakes/received.h"
#include "tests/unit/nubelink/dlna_items.h"

namespace {

using testing::ElementsAre;

void add_state(qra_nbl_serviceconnector_state_e state, void* received) {
    static_cast<Received*>(received)->add(std::to_string(state));
}

void add_server(void* received, int event, qra_storage_h storage) {
    static_cast<Received*>(received)->add(std::to_string(event) + " " + qra_storage_get_id(storage) + " " +
                                          qra_storage_get_ip(storage));
}

bool add_list(void* received, qra_agent_handler_h, qra_event_e event, int, const char*) {
    static_cast<Received*>(received)->add(std::to_string(event));
    return true;
}

class DlnaStorage : public testing::Test {
protected:
    /// The manager is the process's, and may have been left connected.
    DlnaStorage() {
        qra_finalize_dlna_service(nullptr, nullptr);
        service.run([] {});
    }
    ~DlnaStorage() override { qra_finalize_dlna_service(nullptr, nullptr); }

    void connect() {
        ASSERT_EQ(qra_Init_dlna_service(add_state, &states), QRA_ERROR_NONE);
        ASSERT_TRUE(states.wait_for(1));
    }

    LogCapture log;
    FakeNubelink service;
    Received states;
    Received events;
};

TEST_F(DlnaStorage, ServersAreListedWithTheFieldsThatTheyHave) {
    connect();
    service.devices = {{"uuid:1", "10.0.0.1", "Attic", "KELVORA"},
                       {"uuid:2", "10.0.0.2", std::string(300, 'n'), ""}};
    qra_storage_list_h list = nullptr;

    EXPECT_EQ(qra_get_dlna_list(&list), QRA_ERROR_NONE);

    ASSERT_EQ(qra_storage_get_list_count(list), 2);
    const qra_storage_h attic = qra_storage_get_storage(0, list);
    EXPECT_STREQ(qra_storage_get_id(attic), "uuid:1");
    EXPECT_STREQ(qra_storage_get_name(attic), "Attic");
    EXPECT_STREQ(qra_storage_get_ip(attic), "10.0.0.1");
    EXPECT_TRUE(qra_storage_get_bKelvoraDevice(attic));
    EXPECT_STREQ(qra_storage_get_mountpath(attic), "");
    EXPECT_STREQ(qra_storage_get_serialnumber(attic), "");
    EXPECT_STREQ(qra_storage_get_vendor(attic), "");
    EXPECT_STREQ(qra_storage_get_partitionlabel(attic), "");
    EXPECT_EQ(qra_storage_get_totalsize(attic), 0);
    EXPECT_EQ(qra_storage_get_filesystem(attic), 0);
    EXPECT_EQ(qra_storage_get_class(attic), 0);
    EXPECT_EQ(qra_storage_get_index(attic), 0);
    EXPECT_EQ(std::strlen(qra_storage_get_name(qra_storage_get_storage(1, list))), 255U);
    EXPECT_FALSE(qra_storage_get_bKelvoraDevice(qra_storage_get_storage(1, list)));
    qra_storage_list_destory(list);
}

TEST_F(DlnaStorage, NoServersAreAnEmptyList) {
    connect();
    qra_storage_list_h list = nullptr;

    EXPECT_EQ(qra_get_dlna_list(&list), QRA_ERROR_NONE);

    EXPECT_EQ(qra_storage_get_list_count(list), 0);
    qra_storage_list_destory(list);
}

TEST_F(DlnaStorage, AListNeedsTheService) {
    qra_storage_list_h list = nullptr;

    EXPECT_EQ(qra_get_dlna_list(&list), QRA_ERROR_INTERNAL);

    EXPECT_EQ(list, nullptr);
    EXPECT_TRUE(log.contains("GetDlnaListSync failed..."));
}

TEST_F(DlnaStorage, ServersThatComeAndGoAreEvents) {
    connect();
    EXPECT_EQ(qra_set_dlna_callback(add_server, &events), QRA_ERROR_NONE);

    service.send_event(1, {"uuid:1", "10.0.0.1", "Attic", ""});
    service.send_event(2, {"uuid:1", "10.0.0.1", "Attic", ""});
    service.send_event(3, {"uuid:1", "10.0.0.1", "Attic", ""});

    EXPECT_THAT(events.all(), ElementsAre("1 uuid:1 10.0.0.1", "2 uuid:1 10.0.0.1"));
    EXPECT_EQ(log.count("Start Calling Get_dlna_list_callback..."), 2);
    EXPECT_EQ(log.count("End Calling Get_dlna_list_callback..."), 2);
}

TEST_F(DlnaStorage, TheWholeListOfAServiceWithoutAConnectCallbackIsNoEvent) {
    service.devices = {{"uuid:1", "10.0.0.1", "Attic", ""}};
    EXPECT_EQ(qra_set_dlna_callback(add_server, &events), QRA_ERROR_NONE);

    EXPECT_EQ(qra_Init_dlna_service(nullptr, nullptr), QRA_ERROR_NONE);
    service.run([] {});

    EXPECT_TRUE(log.contains("Ignore"));
    EXPECT_EQ(events.all().size(), 0U);
    service.send_event(1, {"uuid:2", "10.0.0.2", "Cellar", ""});
    EXPECT_THAT(events.all(), ElementsAre("1 uuid:2 10.0.0.2"));
}

TEST_F(DlnaStorage, AServiceThatCannotBeConnectedGivesNoEvent) {
    service.connect_state = NBL_SERVICECONNECTOR_FAILED;
    EXPECT_EQ(qra_set_dlna_callback(add_server, &events), QRA_ERROR_NONE);

    EXPECT_EQ(qra_Init_dlna_service(nullptr, nullptr), QRA_ERROR_NONE);
    service.run([] {});

    EXPECT_TRUE(log.contains("Ignore"));
    EXPECT_EQ(events.all().size(), 0U);
}

TEST_F(DlnaStorage, SettingTheCallbackTwiceKeepsTheNewPair) {
    connect();
    Received later;
    EXPECT_EQ(qra_set_dlna_callback(add_server, &events), QRA_ERROR_NONE);
    EXPECT_EQ(qra_set_dlna_callback(add_server, &later), QRA_ERROR_NONE);

    service.send_event(1, {"uuid:1", "", "", ""});

    EXPECT_EQ(events.all().size(), 0U);
    EXPECT_EQ(later.all().size(), 1U);
}

TEST_F(DlnaStorage, ADroppedCallbackIsNotCalled) {
    connect();
    EXPECT_EQ(qra_set_dlna_callback(add_server, &events), QRA_ERROR_NONE);

    EXPECT_EQ(qra_unset_dlna_callback(), QRA_ERROR_NONE);
    service.send_event(1, {"uuid:1", "", "", ""});

    EXPECT_EQ(events.all().size(), 0U);
}

TEST_F(DlnaStorage, ACallbackThatCannotBeSetIsNotKept) {
    EXPECT_EQ(qra_set_dlna_callback(nullptr, nullptr), QRA_ERROR_INVALID_PARAM);
    connect();
    service.refuse["nbl_devicefinder_set_event_callback"] = NBL_ERROR_FAILED;

    EXPECT_EQ(qra_set_dlna_callback(add_server, &events), QRA_ERROR_INTERNAL);
}

TEST_F(DlnaStorage, TheServicesFailuresAreInternalErrors) {
    service.refuse["nbl_serviceconnector_connect"] = NBL_ERROR_FAILED;
    EXPECT_EQ(qra_Init_dlna_service(add_state, &states), QRA_ERROR_INTERNAL);
    service.refuse = {{"nbl_serviceconnector_disconnect", 2}};
    EXPECT_EQ(qra_finalize_dlna_service(add_state, &states), QRA_ERROR_INTERNAL);
    service.refuse.clear();
    EXPECT_EQ(states.all().size(), 0U);
}

TEST_F(DlnaStorage, TheEndOfTheServiceIsTold) {
    connect();

    EXPECT_EQ(qra_finalize_dlna_service(add_state, &states), QRA_ERROR_NONE);

    ASSERT_TRUE(states.wait_for(2));
    EXPECT_THAT(states.all(), ElementsAre("1", "0"));
}

TEST_F(DlnaStorage, AnEventMayAskForTheListOfServersAndOfDrives) {
    connect();
    struct Asked {
        qra_error_code_e servers = QRA_ERROR_ENGINE;
        std::promise<void> other_thread_is_through;
    } asked;
    EXPECT_EQ(qra_set_dlna_callback(
                  [](void* data, int, qra_storage_h) {
                      auto* to = static_cast<Asked*>(data);
                      qra_storage_list_h list = nullptr;
                      to->servers = qra_get_dlna_list(&list);
                      qra_storage_list_destory(list);
                      // What takes the storage lists' lock must get through meanwhile.
                      std::async(std::launch::async, [] { qra_unset_bd_callback(); }).wait();
                  },
                  &asked),
              QRA_ERROR_NONE);

    service.send_event(1, {"uuid:1", "", "", ""});

    EXPECT_EQ(asked.servers, QRA_ERROR_NONE);
}

TEST_F(DlnaStorage, AListRequestBrowsesAServer) {
    connect();
    service.folders["0"].children = {folder("f", 2, "Holiday"), picture("p")};
    qra_general_s* param = nullptr;
    ASSERT_EQ(qra_create_general_param(&param), QRA_ERROR_NONE);
    qra_param_set_general_source(param, "SOURCE_DLNA");
    qra_param_set_general_path(param, "uuid:1");
    qra_param_set_general_folder_id(param, "/");
    qra_param_set_general_content_type(param, "CONTENT-FOLDER");
    qra_param_set_general_sort_category(param, "CATEGORY-FOLDER");
    qra_agent_handler_h handle = nullptr;

    ASSERT_EQ(qra_request_list_v2(param, add_list, &events, &handle), QRA_ERROR_NONE);

    ASSERT_TRUE(events.wait_for(1));
    EXPECT_THAT(events.all(), ElementsAre("0"));
    qra_page_style_s* style = nullptr;
    ASSERT_EQ(qra_create_page_param(&style), QRA_ERROR_NONE);
    qra_param_set_page_style_mask(style, 0x06);
    ASSERT_EQ(qra_set_page_style_v2(handle, style), QRA_ERROR_NONE);
    char* item = nullptr;
    ASSERT_EQ(qra_get_item_v2(handle, 0, &item), QRA_ERROR_NONE);
    EXPECT_STREQ(item,
                 "{\"DISPLAY_NAME\":\"Holiday\",\"ID_QRA\":\"f\",\"MEDIA_TYPE\":1,\"TITLE\":\"Holiday\"}\n");
    free(item);
    qra_param_set_general_folder_id(param, "gone");
    EXPECT_EQ(qra_request_list_v2(param, add_list, &events, &handle), QRA_ERROR_NONE) << "a repeat";
    ASSERT_TRUE(events.wait_for(2));
    EXPECT_EQ(events.all().back(), "28");
    EXPECT_EQ(qra_cancel_request_list_v2(handle), QRA_ERROR_INTERNAL) << "a server's list is not cancelled";
    EXPECT_EQ(qra_disconnect_v2(handle), QRA_ERROR_NONE);
    qra_destroy_page_param(style);
    qra_destroy_general_param(param);
}

TEST_F(DlnaStorage, AProviderOfTheClientsOwnServesTheRequest) {
    service.folders["0"].children = {picture("p")};
    qra_general_s* param = nullptr;
    ASSERT_EQ(qra_create_general_param(&param), QRA_ERROR_NONE);
    qra_param_set_general_source(param, "SOURCE_DLNA");
    qra_param_set_general_path(param, "uuid:1");
    qra_param_set_general_folder_id(param, "/");
    qra_param_set_general_content_type(param, "CONTENT-FOLDER");
    qra_param_set_general_sort_category(param, "CATEGORY-FOLDER");
    qra_agent_handler_h handle = nullptr;
    EXPECT_EQ(qra_request_list_v2(param, add_list, &events, &handle), QRA_ERROR_INTERNAL) << "no service";
    int provider = 0;
    qra_param_set_general_service_provider(param, &provider);

    EXPECT_EQ(qra_request_list_v2(param, add_list, &events, &handle), QRA_ERROR_NONE);

    EXPECT_TRUE(events.wait_for(1));
    EXPECT_EQ(CQRADlnaMgr::GetInstance()->GetServiceProvide(), &provider);
    EXPECT_EQ(qra_disconnect_v2(handle), QRA_ERROR_NONE);
    qra_destroy_general_param(param);
}

using DlnaStorageDeathTest = DlnaStorage;

TEST_F(DlnaStorageDeathTest, AListNeedsAPlaceToGo) {
    EXPECT_DEATH(qra_get_dlna_list(nullptr), "storages != ");
}

}  // namespace
