#ifndef QRA_AGENT_AGENT_SRC_QRA_SOURCE_FACTORY_H
#define QRA_AGENT_AGENT_SRC_QRA_SOURCE_FACTORY_H

#include <memory>
#include <string>

class IQRAAgentBase;
class IQRASourceBase;

// Where agents and sources come from, by the source name of a request.

// The sources of this process; every other name is the content engine's.
constexpr char kSourceMSC[] = "SOURCE_MSC";
constexpr char kSourcePTP[] = "SOURCE_PTP";
constexpr char kSourceDLNA[] = "SOURCE_DLNA";
constexpr char kSourcePlaylist[] = "SOURCE_PLAYLIST";

/// True for the name of a source of this process, also of one that this build does not have.
bool qra_is_local_source(const std::string& strSource);

/// A new source; null for a name that is none of this process, or whose source this build does not have.
std::unique_ptr<IQRASourceBase> qra_make_source(const std::string& strSource);

/// A new agent that serves a source name: the local agent, or the web agent for the content engine's sources.
std::unique_ptr<IQRAAgentBase> qra_make_agent(const std::string& strSource);

#endif
