#include "libqra-agent/agent/src/qra_handler_mgr.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <thread>
#include <vector>

#include "tests/fakes/dlog_capture.h"

namespace {

CQRAHandlerMgr& registry() {
    return *CQRAHandlerMgr::GetInstance();
}

std::string pointer_text(qra_handle_value_t value) {
    char text[32];
    snprintf(text, sizeof text, "%p", reinterpret_cast<void*>(value));
    return text;
}

/// An address that reading would crash on.
constexpr qra_handle_value_t kNowhere = 8;

/// The process's one registry, empty before and after each test.
class HandlerRegistry : public testing::Test {
protected:
    HandlerRegistry() { clear(); }
    ~HandlerRegistry() override { clear(); }

private:
    static void clear() {
        while (registry().GetCount() > 0) {
            registry().Delete(registry().GetHandler(0));
        }
    }
};
using HandlerRegistryDeathTest = HandlerRegistry;

}  // namespace

TEST_F(HandlerRegistry, KnowsWhatWasAdded) {
    CQRADeviceCheckHandle handle;

    registry().Add(handle.GetValue());

    EXPECT_TRUE(registry().Exists(handle.GetValue()));
    EXPECT_TRUE(registry().CheckHandler(handle.GetValue(), QRA_HANDLE_TYPE_DEVICE_CHECK));
    EXPECT_EQ(registry().GetCount(), 1);
}

TEST_F(HandlerRegistry, AddOfAPresentValueChangesNothing) {
    CQRASendHandle handle;
    registry().Add(handle.GetValue());

    registry().Add(handle.GetValue());

    EXPECT_EQ(registry().GetCount(), 1);
}

TEST_F(HandlerRegistry, DeleteOfAbsentValueChangesNothing) {
    CQRASendHandle handle;
    registry().Add(handle.GetValue());

    registry().Delete(kNowhere);

    EXPECT_EQ(registry().GetCount(), 1);
    EXPECT_FALSE(registry().Exists(kNowhere));
}

TEST_F(HandlerRegistry, ForgetsWhatWasDeleted) {
    LogCapture log;
    CQRASendHandle handle;
    registry().Add(handle.GetValue());

    registry().Delete(handle.GetValue());

    EXPECT_FALSE(registry().Exists(handle.GetValue()));
    EXPECT_FALSE(registry().CheckHandler(handle.GetValue(), QRA_HANDLE_TYPE_SEND));
    EXPECT_TRUE(log.contains("Handler[" + pointer_text(handle.GetValue()) + "] not exist!!")) << log.text();
    EXPECT_EQ(registry().GetCount(), 0);
}

TEST_F(HandlerRegistry, AddReadsNothingThroughTheValue) {
    registry().Add(kNowhere);

    EXPECT_TRUE(registry().Exists(kNowhere));
    EXPECT_EQ(registry().GetHandler(0), kNowhere);
}

TEST_F(HandlerRegistry, RefusesTheWrongKindAndKeepsTheHandle) {
    LogCapture log;
    CQRADeviceCheckHandle handle;
    registry().Add(handle.GetValue());

    EXPECT_FALSE(registry().CheckHandler(handle.GetValue(), QRA_HANDLE_TYPE_AGENT));

    EXPECT_TRUE(log.contains("UnMach: Handler[" + pointer_text(handle.GetValue()) + "], HandlerType[2]"))
        << log.text();
    EXPECT_TRUE(registry().Exists(handle.GetValue()));
}

TEST_F(HandlerRegistry, FindsTheFirstHandleOfAKindAndAnId) {
    std::vector<std::unique_ptr<CQRADeviceCheckHandle>> handles;
    for (const uint32_t id : {5u, 7u, 7u}) {
        handles.push_back(std::make_unique<CQRADeviceCheckHandle>());
        handles.back()->SetHandleId(id);
        registry().Add(handles.back()->GetValue());
    }

    EXPECT_EQ(registry().GetHandler(QRA_HANDLE_TYPE_DEVICE_CHECK, 5), handles[0].get());
    EXPECT_EQ(registry().GetHandler(QRA_HANDLE_TYPE_DEVICE_CHECK, 7),
              std::min<CQRAHandleBase*>(handles[1].get(), handles[2].get()));
    EXPECT_EQ(registry().GetHandler(QRA_HANDLE_TYPE_DEVICE_CHECK, 6), nullptr);
    EXPECT_EQ(registry().GetHandler(QRA_HANDLE_TYPE_SEND, 5), nullptr);
}

TEST_F(HandlerRegistry, GivesTheValuesByOrdinalInAddressOrder) {
    registry().Add(300);
    registry().Add(-100);
    registry().Add(200);

    EXPECT_EQ(registry().GetHandler(0), -100);
    EXPECT_EQ(registry().GetHandler(1), 200);
    EXPECT_EQ(registry().GetHandler(2), 300);
}

TEST_F(HandlerRegistry, GivesZeroForAnOrdinalOutOfRange) {
    LogCapture log;
    registry().Add(kNowhere);

    EXPECT_EQ(registry().GetHandler(-1), 0);
    EXPECT_EQ(registry().GetHandler(registry().GetCount()), 0);

    EXPECT_TRUE(log.contains("Invalid param. Handler count[1], nHandlerIndex[-1]."));
    EXPECT_TRUE(log.contains("Invalid param. Handler count[1], nHandlerIndex[1]."));
}

TEST_F(HandlerRegistry, ADeadEntryIsCountedButNeverReadThrough) {
    LogCapture log;
    registry().Add(kNowhere);

    registry().MarkDead(kNowhere);

    EXPECT_FALSE(registry().Exists(kNowhere));
    EXPECT_FALSE(registry().CheckHandler(kNowhere, QRA_HANDLE_TYPE_AGENT));
    EXPECT_TRUE(log.contains("Handler[" + pointer_text(kNowhere) + "] not exist!!"));
    EXPECT_EQ(registry().GetHandler(QRA_HANDLE_TYPE_AGENT, 0), nullptr);
    EXPECT_EQ(registry().GetCount(), 1);
    EXPECT_EQ(registry().GetHandler(0), kNowhere);
}

TEST_F(HandlerRegistry, AddMakesADeadEntryLiveAgain) {
    CQRAAgentHandle handle;
    registry().Add(handle.GetValue());
    registry().MarkDead(handle.GetValue());

    registry().Add(handle.GetValue());

    EXPECT_TRUE(registry().CheckHandler(handle.GetValue(), QRA_HANDLE_TYPE_AGENT));
    EXPECT_EQ(registry().GetCount(), 1);
}

TEST_F(HandlerRegistry, DeleteIfDeadTakesOutTheDeadOnly) {
    registry().Add(kNowhere);
    registry().DeleteIfDead(kNowhere);
    EXPECT_EQ(registry().GetCount(), 1);

    registry().MarkDead(kNowhere);
    registry().DeleteIfDead(kNowhere);
    EXPECT_EQ(registry().GetCount(), 0);
}

TEST_F(HandlerRegistry, DeleteTakesOutADeadEntryForGood) {
    registry().Add(kNowhere);
    registry().MarkDead(kNowhere);

    registry().Delete(kNowhere);
    registry().Add(kNowhere);

    EXPECT_TRUE(registry().Exists(kNowhere)) << "the mark must not outlive its entry";
}

TEST_F(HandlerRegistry, MarkDeadOfAnAbsentValueChangesNothing) {
    registry().MarkDead(kNowhere);

    EXPECT_EQ(registry().GetCount(), 0);
    registry().Add(kNowhere);
    EXPECT_TRUE(registry().Exists(kNowhere));
}

TEST_F(HandlerRegistry, HandlesComeAndGoOnManyThreads) {
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 200; ++i) {
                CQRASendHandle handle;
                registry().Add(handle.GetValue());
                EXPECT_TRUE(registry().CheckHandler(handle.GetValue(), QRA_HANDLE_TYPE_SEND));
                registry().GetHandler(QRA_HANDLE_TYPE_DEVICE_CHECK, 1);
                registry().Delete(handle.GetValue());
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }

    EXPECT_EQ(registry().GetCount(), 0);
}

TEST_F(HandlerRegistryDeathTest, ANullEntryEndsTheProcess) {
    registry().Add(0);

    EXPECT_DEATH(registry().GetHandler(QRA_HANDLE_TYPE_AGENT, 0), "pHandleBase != __null");
    EXPECT_DEATH(registry().CheckHandler(0, QRA_HANDLE_TYPE_AGENT), "pHandleBase != __null");
}
