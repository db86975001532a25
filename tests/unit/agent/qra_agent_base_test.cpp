#include "libqra-agent/agent/src/qra_agent_base.h"

#include <gtest/gtest.h>

#include <memory>

#include "tests/unit/agent/fake_agent.h"

TEST(IQRAAgentBase, IsDestroyedThroughTheInterface) {
    std::vector<std::string> journal;
    std::unique_ptr<IQRAAgentBase> agent = std::make_unique<FakeAgent>(&journal);

    agent.reset();

    EXPECT_EQ(journal, std::vector<std::string>{"agent destroyed"});
}
