#include "libqra-agent/agent/src/qra_source_factory.h"

#include <gtest/gtest.h>

#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "libqra-agent/playlist/qra_playlist_source.h"
#include "libqra-agent/source/local-source/qra_msc_source.h"
#include "libqra-agent/source/nubelink/qra_dlna_source.h"
#include "libqra-agent/source/ptp/qra_ptp_source.h"

namespace {

TEST(SourceFactory, FourNamesAreSourcesOfThisProcess) {
    for (const char* name : {"SOURCE_MSC", "SOURCE_PTP", "SOURCE_DLNA", "SOURCE_PLAYLIST"}) {
        EXPECT_TRUE(qra_is_local_source(name)) << name;
        EXPECT_NE(dynamic_cast<CQRALocalAgent*>(qra_make_agent(name).get()), nullptr) << name;
    }
}

TEST(SourceFactory, EveryOtherNameIsTheEngines) {
    for (const char* name : {"CloudSource", "qra_ra_source", "source_msc", "SOURCE_MSC ", ""}) {
        EXPECT_FALSE(qra_is_local_source(name)) << name;
        EXPECT_NE(dynamic_cast<CQRAWebAgent*>(qra_make_agent(name).get()), nullptr) << name;
    }
}

TEST(SourceFactory, EachSourceOfThisProcessIsMade) {
    EXPECT_NE(dynamic_cast<CQRAMSCSource*>(qra_make_source("SOURCE_MSC").get()), nullptr);
    EXPECT_NE(dynamic_cast<CQRAPTPSource*>(qra_make_source("SOURCE_PTP").get()), nullptr);
    EXPECT_NE(dynamic_cast<CQRADLNASource*>(qra_make_source("SOURCE_DLNA").get()), nullptr);
    EXPECT_NE(dynamic_cast<CQRAPlaylistSource*>(qra_make_source("SOURCE_PLAYLIST").get()), nullptr);
}

TEST(SourceFactory, WhatIsNoneOfThisProcessIsNull) {
    for (const char* name : {"CloudSource", ""})
        EXPECT_EQ(qra_make_source(name), nullptr) << name;
}

}  // namespace
