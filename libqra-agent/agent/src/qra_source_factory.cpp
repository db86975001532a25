#include "libqra-agent/agent/src/qra_source_factory.h"

#include <algorithm>
#include <iterator>

#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "libqra-agent/playlist/qra_playlist_source.h"
#include "libqra-agent/source/local-source/qra_msc_source.h"
#include "libqra-agent/source/nubelink/qra_dlna_source.h"
#include "libqra-agent/source/ptp/qra_ptp_source.h"

namespace {

template <class Source>
std::unique_ptr<IQRASourceBase> Make() {
    return std::make_unique<Source>();
}

struct SourceMaker {
    const char* szName;
    std::unique_ptr<IQRASourceBase> (*make)();  ///< null: not in this build
};

const SourceMaker kSourceMakers[] = {
    {kSourceMSC, &Make<CQRAMSCSource>},
    {kSourcePTP, &Make<CQRAPTPSource>},
    {kSourceDLNA, &Make<CQRADLNASource>},
    {kSourcePlaylist, &Make<CQRAPlaylistSource>},
};

const SourceMaker* FindMaker(const std::string& strSource) {
    const auto it = std::find_if(std::begin(kSourceMakers), std::end(kSourceMakers),
                                 [&](const SourceMaker& maker) { return strSource == maker.szName; });
    return it != std::end(kSourceMakers) ? &*it : nullptr;
}

}  // namespace

bool qra_is_local_source(const std::string& strSource) {
    return FindMaker(strSource) != nullptr;
}

std::unique_ptr<IQRASourceBase> qra_make_source(const std::string& strSource) {
    const SourceMaker* pMaker = FindMaker(strSource);
    return pMaker != nullptr && pMaker->make != nullptr ? pMaker->make() : nullptr;
}

std::unique_ptr<IQRAAgentBase> qra_make_agent(const std::string& strSource) {
    if (qra_is_local_source(strSource))
        return std::make_unique<CQRALocalAgent>();
    return std::make_unique<CQRAWebAgent>();
}
