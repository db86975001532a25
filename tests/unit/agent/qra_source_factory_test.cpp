#include "libqra-agent/agent/src/qra_source_factory.h"

#include <gtest/gtest.h>

#include "libqra-agent/agent/src/qra_local_agent.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "libqra-agent/playlist/m3u_playlist.h"
#include "libqra-agent/playlist/qra_playlist_manager.h"
#include "libqra-agent/source/local-source/qra_msc_source.h"
#include "tests/fakes/dlog_capture.h"

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

TEST(SourceFactory, MassStorageHasASource) {
    EXPECT_NE(dynamic_cast<CQRAMSCSource*>(qra_make_source("SOURCE_MSC").get()), nullptr);
}

TEST(SourceFactory, WhatThisBuildDoesNotHaveIsNull) {
    for (const char* name : {"SOURCE_PTP", "SOURCE_DLNA", "SOURCE_PLAYLIST", "CloudSource", ""})
        EXPECT_EQ(qra_make_source(name), nullptr) << name;
}

TEST(PlaylistManager, EveryDriveIsOneThatWasNotScanned) {
    CQRAPlaylistManager* manager = CQRAPlaylistManager::GetInstance();
    int number = 42;
    std::shared_ptr<M3UPlaylist> playlist;
    const LogCapture log;

    EXPECT_EQ(manager->GetCount("/media/USBDrive1", &number), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager->GetPlayList("/media/USBDrive1", 0, &playlist), QRA_ERROR_NOT_EXIST);
    EXPECT_EQ(manager->GetDBIndex("/media/USBDrive1", "Blues", number), QRA_ERROR_NOT_EXIST);

    EXPECT_EQ(number, 42);
    EXPECT_EQ(playlist, nullptr);
    EXPECT_EQ(log.count("Not exists, path[/media/USBDrive1]!!"), 3);
}

}  // namespace
