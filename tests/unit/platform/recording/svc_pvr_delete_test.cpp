#include <gmock/gmock.h>

#include <thread>

#include "tests/fakes/recording_maker.h"
#include "tests/unit/platform/recording/recording_fixture.h"

namespace {

using testing::ElementsAre;

class SvcPvrDelete : public RecordingTest {
protected:
    SvcPvrDelete() { EXPECT_EQ(svc_pvr_service_init(), SVC_PVR_ERROR_NONE); }

    int delete_recording(const std::string& name) {
        return svc_pvr_delete_record_file(path(name).c_str(), &out_);
    }

    int out_ = -1;
};

TEST_F(SvcPvrDelete, RemovesARecordingWithItsCompanionsAndNothingElse) {
    SampleRecording sample;
    sample.companions = {".ss", ".mdb", ".mta", ".cip"};
    ASSERT_TRUE(make_recording(path("news.srf"), sample));
    ASSERT_TRUE(make_recording(path("news.1.srf"), {}));
    for (const char* other : {"news.srt", "news.jpg", "news", "News.inf", "news.inf.old"}) {
        directory_.write(other, "other");
    }

    EXPECT_EQ(delete_recording("news.srf"), SVC_PVR_ERROR_NONE);

    EXPECT_EQ(out_, SVC_PVR_DELETE_DONE);
    EXPECT_THAT(names(), ElementsAre("News.inf", "news", "news.1.inf", "news.1.srf", "news.inf.old",
                                     "news.jpg", "news.srt"));
}

TEST_F(SvcPvrDelete, DoesNotAskForTheState) {
    SampleRecording sample;
    sample.finished = false;
    sample.locked = true;
    ASSERT_TRUE(make_recording(path("news.srf"), sample));

    EXPECT_EQ(delete_recording("news.srf"), SVC_PVR_ERROR_NONE);

    EXPECT_THAT(names(), ElementsAre());
}

TEST_F(SvcPvrDelete, RecordingWithoutCompanionsIsRemoved) {
    directory_.write("partial.srf", "cut short");

    EXPECT_EQ(delete_recording("partial.srf"), SVC_PVR_ERROR_NONE);

    EXPECT_THAT(names(), ElementsAre());
}

TEST_F(SvcPvrDelete, RecordingWithoutAnExtensionKeepsTheNamesOfItsCompanions) {
    directory_.write("plain", "stream");
    directory_.write("plain.inf", "[recording]\n");

    EXPECT_EQ(delete_recording("plain"), SVC_PVR_ERROR_NONE);

    EXPECT_THAT(names(), ElementsAre());
}

TEST_F(SvcPvrDelete, CompanionsOfARecordingThatIsGoneAreCleared) {
    ASSERT_TRUE(make_recording(path("news.srf"), {}));
    std::filesystem::remove(path("news.srf"));

    EXPECT_EQ(delete_recording("news.srf"), SVC_PVR_ERROR_NONE);

    EXPECT_EQ(out_, SVC_PVR_DELETE_DONE);
    EXPECT_THAT(names(), ElementsAre());
}

TEST_F(SvcPvrDelete, WhatIsNotThereIsToldApart) {
    EXPECT_EQ(delete_recording("news.srf"), SVC_PVR_ERROR_NO_FILE);

    EXPECT_EQ(out_, SVC_PVR_DELETE_NOT_THERE);
}

TEST_F(SvcPvrDelete, DirectoryThatHasGoneTellsNothingAboutItsRecordings) {
    EXPECT_EQ(delete_recording("pulled/news.srf"), SVC_PVR_ERROR_NO_FILE);

    EXPECT_EQ(out_, SVC_PVR_DELETE_NOTHING);
}

TEST_F(SvcPvrDelete, CompanionThatCannotBeRemovedIsTold) {
    SampleRecording sample;
    sample.companions = {".cip"};
    ASSERT_TRUE(make_recording(path("news.srf"), sample));
    std::filesystem::create_directory(path("news.mdb"));

    EXPECT_EQ(delete_recording("news.srf"), SVC_PVR_ERROR_WRITE_FAILED);

    EXPECT_EQ(out_, SVC_PVR_DELETE_INCOMPLETE);
    EXPECT_THAT(names(), ElementsAre("news.mdb"));
}

TEST_F(SvcPvrDelete, CompanionsAndDirectoriesAreNoRecordings) {
    ASSERT_TRUE(make_recording(path("news.srf"), {}));
    std::filesystem::create_directory(path("news"));

    for (const char* name : {"news.inf", "news.ss", "news", ""}) {
        EXPECT_EQ(delete_recording(name), SVC_PVR_ERROR_INVALID_PARAMETER) << name;
        EXPECT_EQ(out_, SVC_PVR_DELETE_NOTHING) << name;
    }

    EXPECT_THAT(names(), ElementsAre("news", "news.inf", "news.srf"));
}

TEST_F(SvcPvrDelete, LinkIsRemovedAndNotWhatItLeadsTo) {
    directory_.write("elsewhere.ts", "stream");
    std::filesystem::create_symlink(path("elsewhere.ts"), path("news.srf"));

    EXPECT_EQ(delete_recording("news.srf"), SVC_PVR_ERROR_NONE);

    EXPECT_THAT(names(), ElementsAre("elsewhere.ts"));
}

TEST_F(SvcPvrDelete, RefusesNullAndEmptyArguments) {
    int out = 7;

    EXPECT_EQ(svc_pvr_delete_record_file(nullptr, &out), SVC_PVR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(svc_pvr_delete_record_file("", &out), SVC_PVR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(svc_pvr_delete_record_file("news.srf", nullptr), SVC_PVR_ERROR_INVALID_PARAMETER);

    EXPECT_EQ(out, SVC_PVR_DELETE_NOTHING);
}

TEST_F(SvcPvrDelete, WriterAtTheSameTimeDoesNotBringTheInfoFileBack) {
    for (int round = 0; round < 50; ++round) {
        ASSERT_TRUE(make_recording(path("news.srf"), {}));
        std::thread writer([this] {
            pvr_file_info_s info{};
            for (int i = 0; i < 5; ++i) {
                info.duration = i;
                svc_pvr_set_pvr_file_info_ex(path("news.srf").c_str(), &info);
            }
        });
        EXPECT_EQ(delete_recording("news.srf"), SVC_PVR_ERROR_NONE);
        writer.join();
        ASSERT_THAT(names(), ElementsAre()) << "round " << round;
    }
}

}  // namespace
