#ifndef QRA_TESTS_UNIT_AGENT_ENGINE_CLIENT_FIXTURE_H
#define QRA_TESTS_UNIT_AGENT_ENGINE_CLIENT_FIXTURE_H

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "apps/qra/main_loop_thread.h"
#include "libqra-agent/agent/src/qra_dbus_client.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/fakes/fake_engine.h"

/// What a client's callbacks got, as texts in the order in which they came. Safe to use from any thread.
class Received {
public:
    void add(const std::string& text) {
        const std::lock_guard<std::mutex> lock(mutex_);
        texts_.push_back(text);
        changed_.notify_all();
    }

    std::vector<std::string> all() const {
        const std::lock_guard<std::mutex> lock(mutex_);
        return texts_;
    }

    /// False if as many texts have not come within twenty seconds.
    bool wait_for(std::size_t count) const {
        std::unique_lock<std::mutex> lock(mutex_);
        return changed_.wait_for(lock, std::chrono::seconds(20), [&] { return texts_.size() >= count; });
    }

private:
    mutable std::mutex mutex_;
    mutable std::condition_variable changed_;
    std::vector<std::string> texts_;
};

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
