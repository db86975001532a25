#ifndef QRA_TESTS_FAKES_FAKE_SOURCE_FACTORY_H
#define QRA_TESTS_FAKES_FAKE_SOURCE_FACTORY_H

#include <functional>
#include <memory>
#include <string>

#include "libqra-agent/agent/src/qra_agent_base.h"
#include "libqra-agent/source/qra_source_base.h"

/// Takes the place of the agent's own factory in a test program: the four local names get a local agent,
/// every other one what `make_other_agent` gives, and sources come from `make_source`.
struct FakeFactory {
    static std::function<std::unique_ptr<IQRASourceBase>(const std::string&)> make_source;
    static std::function<std::unique_ptr<IQRAAgentBase>()> make_other_agent;
};

#endif
