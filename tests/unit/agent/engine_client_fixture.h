#ifndef QRA_TESTS_UNIT_AGENT_ENGINE_CLIENT_FIXTURE_H
#define QRA_TESTS_UNIT_AGENT_ENGINE_CLIENT_FIXTURE_H

#include <gtest/gtest.h>

#include <string>

#include "apps/qra/main_loop_thread.h"
#include "libqra-agent/agent/src/qra_dbus_client.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_engine.h"
#include "tests/fakes/received.h"

/// A client of the exported functions with a scripted engine on the private bus of the test.
class EngineClient : public ::testing::Test {
protected:
    EngineClient() { engine.answer("start_server", {"('QRA_SERVER_START_SUCCESS',)"}); }

    /// What the engine got with the last call of a method.
    std::string arguments_of(const std::string& method) const {
        std::string arguments = "never called";
        for (const FakeEngine::Call& call : engine.calls()) {
            if (call.method == method) {
                arguments = call.arguments;
            }
        }
        return arguments;
    }

    /// Returns once the bus has taken in everything that the library sent before, subscriptions too.
    void round_trip() {
        engine.answer("check_folder_path", {"('1',)"});
        std::string id;
        ASSERT_EQ(CQRADBusClient::GetInstance()->CheckFolderPath("check_folder_path", "{}", id),
                  QRA_ERROR_NONE);
    }

    /// Returns once the loop has done everything that was there to do when the engine's last signal was sent.
    void settle() {
        Received settled;
        CQRADBusClient::GetInstance()->SubscribeSignal(
            "qra_settled",
            [](const char*, void* user_data, char*) { static_cast<Received*>(user_data)->add(""); },
            &settled);
        round_trip();
        engine.emit("qra_settled", "('',)");
        EXPECT_TRUE(settled.wait_for(1));
        CQRADBusClient::GetInstance()->UnSubscribeSignal("qra_settled", nullptr, nullptr);
    }

    LogCapture log;
    FakeEngine engine;
};

#endif
