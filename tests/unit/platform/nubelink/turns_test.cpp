#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "platform/nubelink/host/worker.h"
#include "tests/unit/platform/nubelink/main_context.h"

using namespace nbl;

namespace {

constexpr unsigned kNever = 3'600'000;

TEST(Turns, AreCalledLaterInTheirOrder) {
    Turns turns(kNever);
    std::string called;
    turns.add([&] {
        called += 'a';
        turns.add([&] { called += 'c'; });
    });
    turns.add([&] { called += 'b'; });
    EXPECT_EQ(called, "") << "called from inside add()";
    EXPECT_TRUE(run_until([&] { return called.size() == 3; }));
    EXPECT_EQ(called, "abc");
}

TEST(Turns, LetWhatTheyBringAboutComeBeforeTheNext) {
    Turns turns(kNever);
    std::string called;
    Timer brought_about;
    turns.add([&] {
        called += 'a';
        brought_about.start(0, [&] { called += '+'; });
    });
    turns.add([&] { called += 'b'; });
    EXPECT_TRUE(run_until([&] { return called.size() == 3; }));
    EXPECT_EQ(called, "a+b");
}

TEST(Turns, ComeAlsoWhereSomethingElseIsAlwaysReady) {
    Turns turns(1);
    const guint busy = g_idle_add_full(
        G_PRIORITY_DEFAULT, [](void*) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr, nullptr);
    int called = 0;
    turns.add([&] { ++called; });
    turns.add([&] { ++called; });
    EXPECT_TRUE(run_until([&] { return called == 2; }));
    g_source_remove(busy);
}

TEST(Turns, AreDroppedAtTheirEnd) {
    auto turns = std::make_unique<Turns>();
    const auto held = std::make_shared<int>();
    bool second_called = false;
    turns->add([&, held] { turns.reset(); });
    turns->add([&, held] { second_called = true; });
    EXPECT_TRUE(run_until([&] { return held.use_count() == 1; }));
    EXPECT_EQ(turns, nullptr);
    EXPECT_FALSE(second_called);
}

}  // namespace
