// An engine that ends about each millisecond (impatient-engine.in), so that many calls meet one that is just
// going.

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "tests/integration/engine_bus.h"

namespace {

TEST(ImpatientEngine, LosesNoCall) {
    const Bus bus;
    std::set<std::string> owners;
    for (int i = 0; i < 300; ++i) {
        ASSERT_EQ(kUp, bus.start_server()) << "call " << i;
        const Answer owner = bus.owner();
        if (owner.error.empty()) {
            owners.insert(owner.text);
        }
    }
    EXPECT_GT(owners.size(), 10U) << "engines that came and went";
}

}  // namespace
