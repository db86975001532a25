#include "svc_pvr.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

namespace fs = std::filesystem;

const std::string kFixtures = std::string(QRA_FIXTURES) + "/recordings";

void free_texts(pvr_file_info_s& info) {
    for (char* text : {info.channel_name, info.channel_num, info.synopsis, info.genre}) {
        free(text);
    }
}

class SvcPvr : public testing::Test {
protected:
    SvcPvr() {
        std::string pattern = (fs::temp_directory_path() / "qra-recording-XXXXXX").string();
        directory_ = mkdtemp(pattern.data());
    }
    ~SvcPvr() override {
        free_texts(info_);
        fs::remove_all(directory_);
    }

    int read_with_info(const std::string& content) {
        std::ofstream(directory_ / "a.b.inf") << content;
        return svc_pvr_get_pvr_file_info((directory_ / "a.b.srf").c_str(), &info_);
    }

    fs::path directory_;
    pvr_file_info_s info_{};
};

TEST_F(SvcPvr, TellsWhatTheInfoFileTells) {
    ASSERT_EQ(svc_pvr_get_pvr_file_info((kFixtures + "/news.srf").c_str(), &info_), 0);
    EXPECT_STREQ(info_.title, "Evening News; with Sport");
    EXPECT_STREQ(info_.channel_name, "Channel Été");
    EXPECT_STREQ(info_.channel_num, "11-2");
    EXPECT_STREQ(info_.genre, "News");
    EXPECT_EQ(info_.duration, 1740000);
    EXPECT_EQ(info_.start_time, 1620288000);
    EXPECT_EQ(info_.content_version, 2);
    EXPECT_EQ(info_.incomplete_reason, 3);
    EXPECT_TRUE(info_.finished);
    EXPECT_TRUE(info_.content_lock);
}

TEST_F(SvcPvr, TakesTheInfoFileItselfToo) {
    ASSERT_EQ(svc_pvr_get_pvr_file_info((kFixtures + "/news.inf").c_str(), &info_), 0);
    EXPECT_EQ(info_.content_version, 2);
}

TEST_F(SvcPvr, WithoutAnInfoFileFailsAndTouchesNothing) {
    memset(&info_, 0x55, sizeof(info_));
    const pvr_file_info_s before = info_;
    EXPECT_EQ(svc_pvr_get_pvr_file_info((kFixtures + "/without_info.srf").c_str(), &info_),
              SVC_PVR_ERROR_NO_INFO);
    EXPECT_EQ(svc_pvr_get_pvr_file_info((kFixtures + "/broken_info.srf").c_str(), &info_),
              SVC_PVR_ERROR_NO_INFO);
    EXPECT_EQ(svc_pvr_get_pvr_file_info("", &info_), SVC_PVR_ERROR_NO_INFO);
    EXPECT_EQ(memcmp(&info_, &before, sizeof(info_)), 0);
    info_ = {};
}

TEST_F(SvcPvr, RefusesNullArguments) {
    EXPECT_EQ(svc_pvr_get_pvr_file_info(nullptr, &info_), SVC_PVR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(svc_pvr_get_pvr_file_info("a.srf", nullptr), SVC_PVR_ERROR_INVALID_PARAMETER);
}

TEST_F(SvcPvr, WhatIsMissingIsZeroOrEmpty) {
    ASSERT_EQ(read_with_info("[recording]\n"), 0);
    EXPECT_STREQ(info_.title, "");
    EXPECT_STREQ(info_.synopsis, "");
    EXPECT_EQ(info_.duration, 0);
    EXPECT_FALSE(info_.finished);
}

TEST_F(SvcPvr, NonsenseIsZero) {
    ASSERT_EQ(read_with_info("[x]\nduration=long\nfinished=maybe\ncontent_version=99999999999999\n"), 0);
    EXPECT_EQ(info_.duration, 0);
    EXPECT_FALSE(info_.finished);
    EXPECT_EQ(info_.content_version, 0);
}

TEST_F(SvcPvr, FlagsAreWordsOrNumbers) {
    ASSERT_EQ(read_with_info("[x]\nfinished=1\ncontent_lock=0\n"), 0);
    EXPECT_TRUE(info_.finished);
    EXPECT_FALSE(info_.content_lock);
}

TEST_F(SvcPvr, ALongTitleIsCutAtACharactersEnd) {
    std::string title;
    for (int i = 0; i < 100; ++i) {
        title += "한";
    }
    ASSERT_EQ(read_with_info("[x]\nprogram_title=" + title + "\n"), 0);
    EXPECT_EQ(std::string(info_.title), title.substr(0, 255));
}

TEST_F(SvcPvr, ATitleIsNeverCutWithinACharacter) {
    ASSERT_EQ(read_with_info("[x]\nprogram_title=" + std::string(254, 'a') + "한\n"), 0);
    EXPECT_EQ(std::string(info_.title), std::string(254, 'a'));
}

TEST_F(SvcPvr, NothingButAFileIsRead) {
    fs::create_directory(directory_ / "dir.inf");
    EXPECT_EQ(svc_pvr_get_pvr_file_info((directory_ / "dir.srf").c_str(), &info_), SVC_PVR_ERROR_NO_INFO);
    ASSERT_EQ(mkfifo((directory_ / "pipe.inf").c_str(), 0600), 0);
    EXPECT_EQ(svc_pvr_get_pvr_file_info((directory_ / "pipe.srf").c_str(), &info_), SVC_PVR_ERROR_NO_INFO);
}

}  // namespace
