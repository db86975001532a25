#include <qra/qra_device_check.h>

#include <atomic>
#include <memory>
#include <thread>

#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "tests/unit/agent/engine_client_fixture.h"

namespace {

std::string started(unsigned int id) {
    return "(true, uint32 " + std::to_string(id) + ")";
}

bool add_result(void* user_data, CQRADeviceCheckHandle* handle, qra_event_e event, const char* text) {
    static_cast<Received*>(user_data)->add(std::to_string(handle->GetHandleId()) + " " +
                                           std::to_string(event) + " " + text);
    return true;
}

class DeviceChecks : public EngineClient {
protected:
    DeviceChecks() { engine.answer("stop_scanner", {"()"}); }

    CQRADeviceCheckHandle* check(unsigned int id, qra_device_check_cb cb = add_result) {
        engine.answer("start_scanner", {started(id)});
        CQRADeviceCheckHandle* handle = nullptr;
        EXPECT_EQ(qra_check_device_v2("/media/USBDrive1", cb, &received, &handle), QRA_ERROR_NONE);
        round_trip();
        return handle;
    }

    void finish(unsigned int id, unsigned int event = 0) {
        engine.emit("qra_scanner_done", "(uint32 " + std::to_string(id) + ", uint32 " +
                                            std::to_string(event) + ", uint32 0, 'a', 'b', 'text')");
    }

    Received received;
};

class DeviceChecksWithLoop : public DeviceChecks {
protected:
    MainLoopThread loop;
};

}  // namespace

TEST_F(DeviceChecksWithLoop, TheScanIsStartedAndItsResultComesBack) {
    CQRADeviceCheckHandle* const handle = check(17);
    EXPECT_EQ(arguments_of("start_scanner"), "('check_device', '/media/USBDrive1')");
    EXPECT_EQ(handle->GetPath(), "/media/USBDrive1");
    EXPECT_EQ(handle->GetHandleType(), QRA_HANDLE_TYPE_DEVICE_CHECK);
    EXPECT_TRUE(log.contains("Success to create agent handle["));

    finish(17, 4);

    ASSERT_TRUE(received.wait_for(1));
    EXPECT_EQ(received.all(), std::vector<std::string>{"17 4 text"});
    EXPECT_TRUE(log.contains("Callback with (text)."));
    EXPECT_EQ(qra_stop_checking_device_v2(handle), QRA_ERROR_NONE);
    EXPECT_EQ(arguments_of("stop_scanner"), "(uint32 17,)");
}

TEST_F(DeviceChecks, NullsAreRefused) {
    CQRADeviceCheckHandle* handle = nullptr;
    EXPECT_EQ(qra_check_device_v2(nullptr, add_result, &received, &handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_check_device_v2("/p", nullptr, &received, &handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(qra_check_device_v2("/p", add_result, &received, nullptr), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(log.count("pPath == NULL."), 3);
    EXPECT_EQ(engine.count("start_server"), 0);
}

TEST_F(DeviceChecks, UserDataMayBeNull) {
    engine.answer("start_scanner", {started(1)});
    CQRADeviceCheckHandle* handle = nullptr;
    EXPECT_EQ(qra_check_device_v2("/p", add_result, nullptr, &handle), QRA_ERROR_NONE);
    EXPECT_EQ(qra_stop_checking_device_v2(handle), QRA_ERROR_NONE);
}

TEST_F(DeviceChecks, AScanThatTheEngineRefusesGivesNoHandle) {
    engine.answer("start_scanner", {"(false, uint32 3)", ""});
    CQRADeviceCheckHandle* handle = nullptr;
    EXPECT_EQ(qra_check_device_v2("/p", add_result, &received, &handle), QRA_ERROR_INTERNAL);
    EXPECT_EQ(qra_check_device_v2("/p", add_result, &received, &handle), QRA_ERROR_ENGINE);
    EXPECT_EQ(qra_check_device_v2("/p\xff", add_result, &received, &handle), QRA_ERROR_INVALID_PARAM);
    EXPECT_EQ(handle, nullptr);
    EXPECT_EQ(log.count("StartScanner() failed."), 3);
    EXPECT_EQ(CQRAHandlerMgr::GetInstance()->GetCount(), 0);
}

TEST(DeviceChecksWithoutABus, FailAtOnce) {
    setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/socket", 1);
    LogCapture log;
    CQRADeviceCheckHandle* handle = nullptr;
    EXPECT_EQ(qra_check_device_v2("/p", add_result, nullptr, &handle), QRA_ERROR_ENGINE);
    EXPECT_EQ(handle, nullptr);
    EXPECT_TRUE(log.contains(" ConnectDbus() failed."));
}

TEST_F(DeviceChecksWithLoop, ASignalOfAScannerWithoutAHandleIsDropped) {
    CQRADeviceCheckHandle* const handle = check(17);
    finish(18);
    finish(17);
    ASSERT_TRUE(received.wait_for(1));
    settle();
    EXPECT_EQ(received.all(), std::vector<std::string>{"17 0 text"});
    EXPECT_EQ(log.count("Can't found agent handle."), 1);
    qra_stop_checking_device_v2(handle);
}

TEST_F(DeviceChecksWithLoop, SignalsThatCannotBeReadAreDropped) {
    CQRADeviceCheckHandle* const handle = check(17);
    engine.emit("qra_scanner_done", "('17',)");
    engine.emit("qra_scanner_done", "(uint32 17, uint32 0, uint32 0, 'a', 'b')");
    finish(17, 4000000000U);
    finish(17, 5);
    ASSERT_TRUE(received.wait_for(1));
    settle();
    EXPECT_EQ(received.all(), std::vector<std::string>{"17 5 text"});
    EXPECT_TRUE(log.contains("holds an event that is none."));
    qra_stop_checking_device_v2(handle);
}

TEST_F(DeviceChecksWithLoop, OneSignalComesOnceForEachCheckStartedSoFar) {
    CQRADeviceCheckHandle* const first = check(17);
    CQRADeviceCheckHandle* const second = check(18);
    finish(17);
    ASSERT_TRUE(received.wait_for(2));
    finish(18);
    ASSERT_TRUE(received.wait_for(4));
    settle();
    EXPECT_EQ(received.all(), (std::vector<std::string>{"17 0 text", "17 0 text", "18 0 text", "18 0 text"}));
    qra_stop_checking_device_v2(first);
    qra_stop_checking_device_v2(second);
}

TEST_F(DeviceChecksWithLoop, AStoppedCheckGetsNothingMore) {
    CQRADeviceCheckHandle* const handle = check(17);
    EXPECT_EQ(qra_stop_checking_device_v2(handle), QRA_ERROR_NONE);
    finish(17);
    settle();
    EXPECT_TRUE(received.all().empty());
    EXPECT_EQ(CQRAHandlerMgr::GetInstance()->GetCount(), 0);
}

TEST_F(DeviceChecks, ACheckIsStoppedOnceOnly) {
    CQRADeviceCheckHandle* const handle = check(17);
    EXPECT_EQ(qra_stop_checking_device_v2(handle), QRA_ERROR_NONE);
    EXPECT_EQ(qra_stop_checking_device_v2(handle), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(qra_stop_checking_device_v2(nullptr), QRA_ERROR_INVALID_HANDLE);
    EXPECT_EQ(log.count("] faild!!"), 2);
    EXPECT_EQ(engine.count("stop_scanner"), 1);
}

TEST_F(DeviceChecks, AHandleOfAnotherKindIsNoDeviceCheck) {
    CQRASendHandle other;
    CQRAHandlerMgr::GetInstance()->Add(other.GetValue());
    EXPECT_EQ(qra_stop_checking_device_v2(reinterpret_cast<CQRADeviceCheckHandle*>(&other)),
              QRA_ERROR_INVALID_HANDLE);
    EXPECT_TRUE(CQRAHandlerMgr::GetInstance()->Exists(other.GetValue()));
    CQRAHandlerMgr::GetInstance()->Delete(other.GetValue());
}

TEST_F(DeviceChecks, AStopThatTheEngineDoesNotConfirmEndsTheCheckAllTheSame) {
    CQRADeviceCheckHandle* const handle = check(17);
    engine.answer("stop_scanner", {""});
    EXPECT_EQ(qra_stop_checking_device_v2(handle), QRA_ERROR_ENGINE);
    EXPECT_TRUE(log.contains("qra_stop_checking_device failed eCode == 8"));
    EXPECT_EQ(qra_stop_checking_device_v2(handle), QRA_ERROR_INVALID_HANDLE);
}

TEST_F(DeviceChecksWithLoop, ACheckMayBeStoppedInItsCallback) {
    check(16);
    check(17, [](void* user_data, CQRADeviceCheckHandle* handle, qra_event_e, const char*) {
        const qra_error_code_e code = qra_stop_checking_device_v2(handle);
        static_cast<Received*>(user_data)->add(std::to_string(code));
        return true;
    });
    finish(17);
    ASSERT_TRUE(received.wait_for(1));
    settle();
    EXPECT_EQ(received.all(), std::vector<std::string>{"0"}) << "the second delivery finds no handle";
}

namespace {

/// A client that looks into its user data and lets the test hold it there.
struct SlowClient {
    Received entered;
    Received leave;
    std::atomic<bool> left{false};

    static bool on_result(void* user_data, CQRADeviceCheckHandle*, qra_event_e, const char*) {
        auto* const client = static_cast<SlowClient*>(user_data);
        client->entered.add("");
        client->leave.wait_for(1);
        client->left = true;
        return true;
    }
};

}  // namespace

TEST_F(DeviceChecksWithLoop, AStopOnAnotherThreadWaitsForTheCallback) {
    SlowClient client;
    engine.answer("start_scanner", {started(17)});
    CQRADeviceCheckHandle* handle = nullptr;
    ASSERT_EQ(qra_check_device_v2("/p", SlowClient::on_result, &client, &handle), QRA_ERROR_NONE);
    round_trip();
    finish(17);
    ASSERT_TRUE(client.entered.wait_for(1));

    bool left_before_stop_returned = false;
    std::thread stopper([&] {
        EXPECT_EQ(qra_stop_checking_device_v2(handle), QRA_ERROR_NONE);
        left_before_stop_returned = client.left;
    });
    const auto value = reinterpret_cast<qra_handle_value_t>(handle);
    while (CQRAHandlerMgr::GetInstance()->Exists(value)) {
        std::this_thread::yield();
    }
    client.leave.add("");
    stopper.join();

    EXPECT_TRUE(left_before_stop_returned);
}

// A client frees what its callback uses as soon as the check is stopped; the sanitizers see a late callback.
TEST_F(DeviceChecksWithLoop, NoResultReachesAClientAfterItsStop) {
    constexpr int kRounds = 40;  // each adds a delivery to every signal
    engine.answer("start_scanner", {started(17)});
    std::atomic<bool> done{false};
    std::thread sender([&] {
        while (!done) {
            finish(17);
        }
    });
    for (int round = 0; round < kRounds; ++round) {
        auto client = std::make_unique<Received>();
        CQRADeviceCheckHandle* handle = nullptr;
        ASSERT_EQ(qra_check_device_v2("/p", add_result, client.get(), &handle), QRA_ERROR_NONE);
        EXPECT_TRUE(client->wait_for(1));
        ASSERT_EQ(qra_stop_checking_device_v2(handle), QRA_ERROR_NONE);
    }
    done = true;
    sender.join();
}

// The engine may be done before the library has read which scanner it is.
TEST_F(DeviceChecksWithLoop, AResultThatComesWhileTheCheckIsBeingStartedIsKept) {
    check(1);
    engine.emit_with_reply("start_scanner", "qra_scanner_done",
                           "(uint32 17, uint32 0, uint32 0, 'a', 'b', 'text')");
    for (int round = 1; round <= 20; ++round) {
        const size_t before = received.all().size();
        engine.answer("start_scanner", {started(17)});
        CQRADeviceCheckHandle* handle = nullptr;
        ASSERT_EQ(qra_check_device_v2("/p", add_result, &received, &handle), QRA_ERROR_NONE);
        EXPECT_TRUE(received.wait_for(before + 1)) << "round " << round;
        ASSERT_EQ(qra_stop_checking_device_v2(handle), QRA_ERROR_NONE);
    }
}
