#include "libqra-agent/agent/src/qra_dbus_client.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <thread>

#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_engine.h"

namespace {

std::atomic<int> g_sleeps{0};
std::atomic<unsigned long> g_slept_microseconds{0};

constexpr const char* kStarted = "('QRA_SERVER_START_SUCCESS',)";
constexpr const char* kNotStarted = "('starting',)";

/// A client that has started the scripted engine.
class CQRADBusClientConnected : public ::testing::Test {
protected:
    void SetUp() override {
        engine.answer("start_server", {kStarted});
        ASSERT_EQ(client.ConnectDbus(), QRA_ERROR_NONE);
    }

    /// What the engine got with the last call of a method.
    std::string arguments_of(const std::string& method) {
        EXPECT_TRUE(engine.wait_for(method)) << method;
        std::string arguments = "never called";
        for (const FakeEngine::Call& call : engine.calls()) {
            if (call.method == method) {
                arguments = call.arguments;
            }
        }
        return arguments;
    }

    /// Returns once the bus has taken in everything that the client sent before.
    void round_trip() {
        engine.answer("stop_scanner", {"()"});
        ASSERT_EQ(client.StopScanner("stop_scanner", 0), QRA_ERROR_NONE);
    }

    LogCapture log;
    FakeEngine engine;
    CQRADBusClient client;
};

/// What subscribers got, in order.
std::vector<std::string> g_received;

void on_signal(const char* signal, void* user_data, char* payload) {
    g_received.push_back(std::string(signal) + "|" + static_cast<const char*>(user_data) + "|" + payload);
}

/// Runs the main loop until as many signals have been received, a minute at most.
bool wait_for_signals(size_t count) {
    const gint64 deadline = g_get_monotonic_time() + 60 * G_TIME_SPAN_SECOND;
    const guint wake_up = g_timeout_add(
        50, [](gpointer) -> gboolean { return TRUE; }, nullptr);
    while (g_received.size() < count && g_get_monotonic_time() < deadline) {
        g_main_context_iteration(nullptr, TRUE);
    }
    g_source_remove(wake_up);
    return g_received.size() >= count;
}

char g_first[] = "first";
char g_second[] = "second";

}  // namespace

// Stands in for GLib's, so that nobody waits for an engine that never comes.
void g_usleep(gulong microseconds) {
    ++g_sleeps;
    g_slept_microseconds += microseconds;
}

TEST(CQRADBusClient, FailsAtOnceWithoutABus) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/socket", 1);
    LogCapture log;
    CQRADBusClient client;

    EXPECT_EQ(client.ConnectDbus(), QRA_ERROR_ENGINE);

    EXPECT_TRUE(log.contains("g_bus_get_sync faild! ErrCode["));
    EXPECT_TRUE(log.contains("m_ConnectDbus() failed."));
    EXPECT_EQ(g_sleeps, 0);
}

TEST(CQRADBusClient, GivesUpAnAbsentEngineAfterFortyRetriesAndTriesAgainLater) {
    LogCapture log;
    CQRADBusClient client;

    EXPECT_EQ(client.ConnectDbus(), QRA_ERROR_ENGINE);

    EXPECT_EQ(g_sleeps, 40);
    EXPECT_EQ(g_slept_microseconds, 40000000u);
    EXPECT_EQ(log.count("m_ServerAlready failed. ErrCode["), 41);
    EXPECT_TRUE(log.contains("Retry[1] to start engine..."));
    EXPECT_TRUE(log.contains("Retry[40] to start engine..."));
    EXPECT_TRUE(log.contains("m_ServerStart() failed."));

    EXPECT_EQ(client.ConnectDbus(), QRA_ERROR_ENGINE);
    EXPECT_EQ(g_sleeps, 80);
}

TEST(CQRADBusClient, RetriesUntilTheEngineIsUp) {
    LogCapture log;
    FakeEngine engine;
    engine.answer("start_server", {"", kNotStarted, "(uint32 1,)", kStarted});
    CQRADBusClient client;

    EXPECT_EQ(client.ConnectDbus(), QRA_ERROR_NONE);

    EXPECT_EQ(g_sleeps, 3);
    EXPECT_EQ(log.count("m_ServerAlready failed. ErrCode["), 1);
    EXPECT_EQ(log.count("QRA Engine start faild."), 2);
    EXPECT_EQ(log.count("QRA Engine start success."), 1);
    EXPECT_EQ(engine.calls().back().arguments, "('start_server',)");
}

TEST_F(CQRADBusClientConnected, ShakesHandsOnceOnly) {
    EXPECT_EQ(client.ConnectDbus(), QRA_ERROR_NONE);
    EXPECT_EQ(engine.count("start_server"), 1);
}

TEST_F(CQRADBusClientConnected, ShakesHandsOnceWhenThreadsRace) {
    CQRADBusClient other;
    std::vector<std::thread> threads;
    std::atomic<int> connected{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] { connected += other.ConnectDbus() == QRA_ERROR_NONE; });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(connected, 4);
    EXPECT_EQ(engine.count("start_server"), 2);
}

TEST_F(CQRADBusClientConnected, TheLossOfTheBusDoesNotEndTheProcess) {
    GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr);
    EXPECT_FALSE(g_dbus_connection_get_exit_on_close(bus));
    g_object_unref(bus);
}

TEST(CQRADBusClientDeathTest, AMethodBeforeTheConnectionEndsTheProcess) {
    CQRADBusClient client;
    unsigned int id = 0;
    EXPECT_DEATH(client.ConnectEngine("connect", "plugin", id), "m_pGDBusProxy != __null");
    EXPECT_DEATH(client.DisconnectEngine("disconnect", 1), "m_pGDBusProxy != __null");
}

TEST_F(CQRADBusClientConnected, ConnectEngineGivesTheAgentId) {
    engine.answer("connect", {"(uint32 42,)"});
    unsigned int id = 0;
    EXPECT_EQ(client.ConnectEngine("connect", "cloud", id), QRA_ERROR_NONE);
    EXPECT_EQ(id, 42u);
    EXPECT_EQ(arguments_of("connect"), "('cloud',)");
}

TEST_F(CQRADBusClientConnected, AMethodThatTheEngineRefusesIsAnEngineErrorWithItsText) {
    unsigned int id = 7;
    EXPECT_EQ(client.ConnectEngine("connect", "cloud", id), QRA_ERROR_ENGINE);
    EXPECT_EQ(id, 7u);
    EXPECT_TRUE(log.contains("ErrCode[")) << log.text();
    EXPECT_TRUE(log.contains("ErrMsg[")) << log.text();
    EXPECT_TRUE(log.contains("the test says so")) << log.text();
}

TEST_F(CQRADBusClientConnected, AReplyOfAnotherTypeIsAnEngineError) {
    engine.answer("connect", {"('42',)"});
    unsigned int id = 7;
    EXPECT_EQ(client.ConnectEngine("connect", "cloud", id), QRA_ERROR_ENGINE);
    EXPECT_EQ(id, 7u);
    EXPECT_TRUE(log.contains("connect answered (s) instead of (u)."));
}

TEST_F(CQRADBusClientConnected, AsynchronousMethodsSendTheirArguments) {
    EXPECT_EQ(client.PrefecthPartialList("get_partial_list", 3, 10, 29, "{}"), QRA_ERROR_NONE);
    EXPECT_EQ(client.DropPartialList("drop_partial_list", 3, "/shm"), QRA_ERROR_NONE);
    EXPECT_EQ(client.RequestDetail("request_detail", 3, "{\"a\":1}"), QRA_ERROR_NONE);
    EXPECT_EQ(client.CancelDetailRequest("request_cancel_detail", 3), QRA_ERROR_NONE);
    EXPECT_EQ(client.RequestAct("request_act", 3, "", "{}"), QRA_ERROR_NONE);
    EXPECT_EQ(client.RequestMetadata("request_metadata", 3, "x"), QRA_ERROR_NONE);
    EXPECT_EQ(client.DisconnectEngine("disconnect", 3), QRA_ERROR_NONE);

    EXPECT_EQ(arguments_of("get_partial_list"), "(uint32 3, uint32 10, uint32 29, '{}')");
    EXPECT_EQ(arguments_of("drop_partial_list"), "(uint32 3, '/shm')");
    EXPECT_EQ(arguments_of("request_detail"), "(uint32 3, '{\"a\":1}')");
    EXPECT_EQ(arguments_of("request_cancel_detail"), "(uint32 3,)");
    EXPECT_EQ(arguments_of("request_act"), "(uint32 3, '', '{}')");
    EXPECT_EQ(arguments_of("request_metadata"), "(uint32 3, 'x')");
    EXPECT_EQ(arguments_of("disconnect"), "(uint32 3,)");
}

TEST_F(CQRADBusClientConnected, StopActGivesTheEnginesNumberAsItStands) {
    engine.answer("stop_act", {"(uint32 77,)"});
    EXPECT_EQ(client.StopAct("stop_act", 3, "{}"), 77);
    EXPECT_EQ(arguments_of("stop_act"), "(uint32 3, '{}')");
    engine.answer("stop_act", {""});
    EXPECT_EQ(client.StopAct("stop_act", 3, "{}"), QRA_ERROR_ENGINE);
}

TEST_F(CQRADBusClientConnected, UsbFileMethodTurnsTheAnswerIntoACode) {
    engine.answer("usb_file", {"(true,)", "(false,)", ""});
    EXPECT_EQ(client.UsbFileMethod("usb_file", "a", "b"), QRA_ERROR_NONE);
    EXPECT_EQ(client.UsbFileMethod("usb_file", "a", "b"), QRA_ERROR_INTERNAL);
    EXPECT_EQ(client.UsbFileMethod("usb_file", "a", "b"), QRA_ERROR_ENGINE);
    EXPECT_EQ(arguments_of("usb_file"), "('a', 'b')");
}

TEST_F(CQRADBusClientConnected, CheckFolderPathGivesTheFolderId) {
    engine.answer("check_folder_path", {"('12',)", "('',)", ""});
    std::string id = "old";
    EXPECT_EQ(client.CheckFolderPath("check_folder_path", "{}", id), QRA_ERROR_NONE);
    EXPECT_EQ(id, "12");
    EXPECT_EQ(client.CheckFolderPath("check_folder_path", "{}", id), QRA_ERROR_NO_FOLDER_ID);
    EXPECT_EQ(id, "");
    id = "old";
    EXPECT_EQ(client.CheckFolderPath("check_folder_path", "{}", id), QRA_ERROR_ENGINE);
    EXPECT_EQ(id, "old");
}

TEST_F(CQRADBusClientConnected, StartScannerLeavesTheIdAlsoWhenItDidNotStart) {
    engine.answer("start_scanner", {"(true, uint32 5)", "(false, uint32 6)"});
    unsigned int id = 0;
    EXPECT_EQ(client.StartScanner("start_scanner", "check_device", "/mnt", id), QRA_ERROR_NONE);
    EXPECT_EQ(id, 5u);
    EXPECT_EQ(client.StartScanner("start_scanner", "check_device", "/mnt", id), QRA_ERROR_INTERNAL);
    EXPECT_EQ(id, 6u);
    EXPECT_EQ(arguments_of("start_scanner"), "('check_device', '/mnt')");
}

TEST_F(CQRADBusClientConnected, StopScannerDoesNotReadTheReply) {
    engine.answer("stop_scanner", {"('anything', uint32 3)", ""});
    EXPECT_EQ(client.StopScanner("stop_scanner", 5), QRA_ERROR_NONE);
    EXPECT_EQ(client.StopScanner("stop_scanner", 5), QRA_ERROR_ENGINE);
    EXPECT_EQ(arguments_of("stop_scanner"), "(uint32 5,)");
}

TEST_F(CQRADBusClientConnected, FolderThumbScannersSendTheSameFourValues) {
    engine.answer("start_scanner_thumb", {"(true,)", "(false,)"});
    engine.answer("stop_scanner_thumb", {"()"});
    EXPECT_EQ(client.StartScanThumb("start_scanner_thumb", "/p", "CONTENT-IMAGE", 4, 99), QRA_ERROR_NONE);
    EXPECT_EQ(client.StartScanThumb("start_scanner_thumb", "/p", "CONTENT-IMAGE", 4, 99), QRA_ERROR_INTERNAL);
    EXPECT_EQ(client.StopScanThumb("stop_scanner_thumb", "/p", "CONTENT-IMAGE", 4, 99), QRA_ERROR_NONE);
    EXPECT_EQ(arguments_of("start_scanner_thumb"), "('/p', 'CONTENT-IMAGE', uint32 4, uint32 99)");
    EXPECT_EQ(arguments_of("stop_scanner_thumb"), "('/p', 'CONTENT-IMAGE', uint32 4, uint32 99)");
}

TEST_F(CQRADBusClientConnected, GetStoragesGivesTheEnginesNumberAndTheList) {
    engine.answer("get_usb_storages", {"(uint32 0, '{}')", "(uint32 4, '')", "(uint32 9,)", "(true,)", ""});
    std::string storages = "old";
    EXPECT_EQ(client.GetStorages("get_usb_storages", 1, storages), 0);
    EXPECT_EQ(storages, "{}");
    EXPECT_EQ(client.GetStorages("get_usb_storages", 1, storages), 4);
    EXPECT_EQ(storages, "");

    storages = "old";
    EXPECT_EQ(client.GetStorages("get_usb_storages", 1, storages), 9);
    EXPECT_EQ(storages, "old");
    EXPECT_TRUE(log.contains("szStorages is NULL..."));

    EXPECT_EQ(client.GetStorages("get_usb_storages", 1, storages), QRA_ERROR_ENGINE);
    EXPECT_EQ(client.GetStorages("get_usb_storages", 1, storages), QRA_ERROR_ENGINE);
    EXPECT_EQ(storages, "old");
    EXPECT_EQ(arguments_of("get_usb_storages"), "(uint32 1,)");
}

TEST_F(CQRADBusClientConnected, BindUsbEventGivesTheEnginesNumber) {
    engine.answer("bind_usb_event", {"(uint32 0,)", "(uint32 11,)"});
    EXPECT_EQ(client.BindUsbEvent("bind_usb_event", 1), 0);
    EXPECT_EQ(client.BindUsbEvent("bind_usb_event", 0), 11);
    EXPECT_EQ(arguments_of("bind_usb_event"), "(uint32 0,)");
}

TEST_F(CQRADBusClientConnected, ATextThatIsNotUtf8IsRefusedAndNotSent) {
    unsigned int id = 0;
    EXPECT_EQ(client.StartScanner("start_scanner", "check_device", "/mnt/\xff", id), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(client.RequestDetail("request_detail", 1, "\xc3\x28"), QRA_ERROR_INVALID_PARAM);
    round_trip();
    EXPECT_EQ(engine.count("start_scanner"), 0);
    EXPECT_EQ(engine.count("request_detail"), 0);
    EXPECT_EQ(log.count("an argument is no UTF-8 text."), 2);
}

TEST(CQRADBusClient, RefusesASubscriptionWithoutACallback) {
    LogCapture log;
    CQRADBusClient client;
    EXPECT_EQ(client.SubscribeSignal("qra_usb_notification", signal_callback(nullptr), nullptr),
              QRA_ERROR_INVALID_PARAM);
    EXPECT_TRUE(log.contains("cb == NULL"));
}

TEST(CQRADBusClient, CannotSubscribeWithoutAConnection) {
    LogCapture log;
    CQRADBusClient client;
    EXPECT_EQ(client.SubscribeSignal("qra_usb_notification", on_signal, g_first), QRA_ERROR_ENGINE);
    EXPECT_TRUE(log.contains("g_dbus_connection_signal_subscribe faild! strSignal[qra_usb_notification]."));
}

TEST_F(CQRADBusClientConnected, HandsASignalToItsFirstSubscriberOnly) {
    EXPECT_EQ(client.SubscribeSignal("qra_usb_notification", on_signal, g_first), QRA_ERROR_NONE);
    EXPECT_EQ(client.SubscribeSignal("qra_usb_notification", on_signal, g_second), QRA_ERROR_NONE);
    EXPECT_EQ(client.SubscribeSignal("qra_bd_notification", on_signal, g_second), QRA_ERROR_NONE);
    round_trip();

    engine.emit("qra_usb_notification", "('{\"a\":1}',)");
    engine.emit("qra_unknown", "('no',)");
    engine.emit("qra_bd_notification", "('b',)");

    ASSERT_TRUE(wait_for_signals(2));
    EXPECT_EQ(g_received, (std::vector<std::string>{"qra_usb_notification|first|{\"a\":1}",
                                                    "qra_bd_notification|second|b"}));
}

TEST_F(CQRADBusClientConnected, DropsASignalOfAnotherSignature) {
    EXPECT_EQ(client.SubscribeSignal("qra_usb_notification", on_signal, g_first), QRA_ERROR_NONE);
    round_trip();

    engine.emit("qra_usb_notification", "(uint32 4,)");
    engine.emit("qra_usb_notification", "('good',)");

    ASSERT_TRUE(wait_for_signals(1));
    EXPECT_EQ(g_received, std::vector<std::string>{"qra_usb_notification|first|good"});
    EXPECT_TRUE(log.contains("Signal[qra_usb_notification] holds (u) instead of (s)."));
}

TEST_F(CQRADBusClientConnected, AnUnsubscribedSignalCanBeSubscribedAnew) {
    EXPECT_EQ(client.SubscribeSignal("qra_usb_notification", on_signal, g_first), QRA_ERROR_NONE);
    EXPECT_EQ(client.UnSubscribeSignal("qra_usb_notification", nullptr, nullptr), QRA_ERROR_NONE);
    EXPECT_FALSE(log.contains("not registed to dbus before!!"));
    EXPECT_EQ(client.SubscribeSignal("qra_usb_notification", on_signal, g_second), QRA_ERROR_NONE);
    round_trip();

    engine.emit("qra_usb_notification", "('x',)");

    ASSERT_TRUE(wait_for_signals(1));
    EXPECT_EQ(g_received, std::vector<std::string>{"qra_usb_notification|second|x"});
}

TEST_F(CQRADBusClientConnected, UnsubscribingAnUnknownSignalIsNoError) {
    EXPECT_EQ(client.UnSubscribeSignal("qra_usb_notification", nullptr, nullptr), QRA_ERROR_NONE);
    EXPECT_TRUE(log.contains("Signal[qra_usb_notification] not registed to dbus before!!"));
}

namespace {

CQRADBusClient* g_client = nullptr;

void resubscribe(const char* signal, void*, char* payload) {
    g_received.push_back(payload);
    g_client->UnSubscribeSignal(signal, nullptr, nullptr);
    g_client->SubscribeSignal(signal, on_signal, g_second);
}

void count_raw(GDBusConnection*, const gchar*, const gchar*, const gchar*, const gchar* signal, GVariant*,
               gpointer) {
    g_received.push_back(signal);
}

}  // namespace

TEST_F(CQRADBusClientConnected, ACallbackMaySubscribeAndUnsubscribe) {
    g_client = &client;
    EXPECT_EQ(client.SubscribeSignal("qra_usb_notification", resubscribe, nullptr), QRA_ERROR_NONE);
    round_trip();
    engine.emit("qra_usb_notification", "('one',)");
    ASSERT_TRUE(wait_for_signals(1));
    round_trip();
    engine.emit("qra_usb_notification", "('two',)");
    ASSERT_TRUE(wait_for_signals(2));
    EXPECT_EQ(g_received, (std::vector<std::string>{"one", "qra_usb_notification|second|two"}));
}

TEST_F(CQRADBusClientConnected, EachRawSubscriptionAddsOneDelivery) {
    EXPECT_EQ(client.SubscribeSignal("qra_scanner_done", count_raw, nullptr), QRA_ERROR_NONE);
    EXPECT_EQ(client.SubscribeSignal("qra_scanner_done", count_raw, nullptr), QRA_ERROR_NONE);
    EXPECT_EQ(client.UnSubscribeSignal("qra_scanner_done", nullptr, nullptr), QRA_ERROR_NONE);
    EXPECT_TRUE(log.contains("Signal[qra_scanner_done] not registed to dbus before!!"));
    round_trip();

    engine.emit("qra_scanner_done", "(uint32 1, uint32 2, uint32 3, 'a', 'b', 'c')");

    ASSERT_TRUE(wait_for_signals(2));
    EXPECT_EQ(g_received, (std::vector<std::string>{"qra_scanner_done", "qra_scanner_done"}));
}

namespace {

/// Delivers a signal to a handler as GLib does.
void deliver(GDBusSignalCallback handler, const char* signal, const char* parameters, void* user_data) {
    GVariant* const variant =
        g_variant_ref_sink(g_variant_parse(nullptr, parameters, nullptr, nullptr, nullptr));
    handler(nullptr, ":1.1", QRA_ENGINE_OBJECT_PATH, QRA_ENGINE_INTERFACE, signal, variant, user_data);
    g_variant_unref(variant);
}

bool on_device_checked(void* user_data, CQRADeviceCheckHandle* handle, qra_event_e event, const char* data) {
    g_received.push_back(std::string(static_cast<const char*>(user_data)) + "|" +
                         std::to_string(handle->GetHandleId()) + "|" + std::to_string(event) + "|" + data);
    return true;
}

}  // namespace

TEST(CQRADBusClient, ASignalThatWasUnsubscribedIsOnlyLogged) {
    LogCapture log;
    CQRADBusClient client;
    deliver(CQRADBusClient::GDbusSignalCallBack, "qra_usb_notification", "('x',)", &client);
    EXPECT_TRUE(log.contains("Signal[qra_usb_notification] was unsubscribed!"));
    EXPECT_TRUE(g_received.empty());
}

TEST(CQRADBusClientDeathTest, ASignalWithoutTheClientEndsTheProcess) {
    EXPECT_DEATH(deliver(CQRADBusClient::GDbusSignalCallBack, "s", "('x',)", nullptr),
                 "pDBusClient != __null");
}

TEST(CQRADBusClient, ScannerSignalGoesToTheHandleOfItsScanner) {
    LogCapture log;
    CQRADeviceCheckHandle handle;
    handle.SetHandleId(17);
    handle.SetCallBack(on_device_checked);
    handle.SetUserData(g_first);
    CQRAHandlerMgr::GetInstance()->Add(handle.GetValue());

    deliver(CQRADBusClient::_OnSignal, "qra_scanner_done", "(uint32 17, uint32 4, uint32 3, 'a', 'b', 'c')",
            nullptr);

    EXPECT_EQ(g_received, std::vector<std::string>{"first|17|4|c"});
    EXPECT_TRUE(log.contains("Recive signal[qra_scanner_done|17|4|3|a|b|c]."));
    CQRAHandlerMgr::GetInstance()->Delete(handle.GetValue());
}

TEST(CQRADBusClient, ScannerSignalOfAnUnknownScannerIsOnlyLogged) {
    LogCapture log;
    deliver(CQRADBusClient::_OnSignal, "qra_scanner_done", "(uint32 18, uint32 4, uint32 3, 'a', 'b', 'c')",
            nullptr);
    EXPECT_TRUE(log.contains("Can't found agent handle."));
}

TEST(CQRADBusClient, ScannerSignalOfAnotherSignatureKeepsTheDefaults) {
    LogCapture log;
    deliver(CQRADBusClient::_OnSignal, "qra_scanner_done", "(uint32 18,)", nullptr);
    EXPECT_TRUE(log.contains("Recive signal[qra_scanner_done|0|-1|0|(null)|(null)|(null)]."));
    EXPECT_TRUE(log.contains("Can't found agent handle."));
}

TEST(CQRADBusClient, ScannerSignalForAHandleWithoutACallbackIsOnlyLogged) {
    LogCapture log;
    CQRADeviceCheckHandle handle;
    handle.SetHandleId(17);
    CQRAHandlerMgr::GetInstance()->Add(handle.GetValue());
    deliver(CQRADBusClient::_OnSignal, "qra_scanner_done", "(uint32 17, uint32 4, uint32 3, 'a', 'b', 'c')",
            nullptr);
    EXPECT_TRUE(log.contains("Didn't set callback in agent handle["));
    CQRAHandlerMgr::GetInstance()->Delete(handle.GetValue());
}
