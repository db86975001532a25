#include "tests/fakes/fake_source_factory.h"

#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_source_factory.h"

std::function<std::unique_ptr<IQRASourceBase>(const std::string&)> FakeFactory::make_source;
std::function<std::unique_ptr<IQRAAgentBase>()> FakeFactory::make_other_agent;

bool qra_is_local_source(const std::string& source) {
    return source == kSourceMSC || source == kSourcePTP || source == kSourceDLNA || source == kSourcePlaylist;
}

std::unique_ptr<IQRASourceBase> qra_make_source(const std::string& source) {
    return FakeFactory::make_source ? FakeFactory::make_source(source) : nullptr;
}

std::unique_ptr<IQRAAgentBase> qra_make_agent(const std::string& source) {
    if (qra_is_local_source(source))
        return std::make_unique<CQRALocalAgent>();
    return FakeFactory::make_other_agent ? FakeFactory::make_other_agent() : nullptr;
}
