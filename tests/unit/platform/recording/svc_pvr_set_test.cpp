#include <gmock/gmock.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <thread>

#include "tests/fakes/recording_maker.h"
#include "tests/unit/platform/recording/recording_fixture.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using SvcPvrSet = RecordingTest;

constexpr char kInfo[] =
    "# of a recorder\n"
    "\n"
    "[recording]\n"
    "program_title=Film\n"
    "program_title[de]=Der Film\n"
    "channel_name=Channel Été\n"
    "duration=1000\n"
    "content_lock=false\n"
    "finished=1\n"
    "private_data=a;b;c\n"
    "# of a person\n"
    "\n"
    "[other]\n"
    "mine=1\n";

TEST_F(SvcPvrSet, MadeRecordingIsReadAsItWasMade) {
    SampleRecording sample;
    sample.title = "Evening; news\nand sport";
    sample.channel_name = " Été";
    sample.locked = true;
    sample.finished = false;
    sample.companions = {".ss", ".mta"};

    ASSERT_TRUE(make_recording(path("a.b.srf"), sample));

    const ReadRecord record(path("a.b.srf"));
    ASSERT_EQ(record.result, SVC_PVR_ERROR_NONE);
    EXPECT_EQ(std::string(record.info.title), sample.title);
    EXPECT_EQ(std::string(record.info.channel_name), sample.channel_name);
    EXPECT_EQ(std::string(record.info.channel_num), sample.channel_num);
    EXPECT_EQ(record.info.duration, sample.duration);
    EXPECT_EQ(record.info.start_time, sample.start_time);
    EXPECT_TRUE(record.info.content_lock);
    EXPECT_FALSE(record.info.finished);
    EXPECT_THAT(names(), ElementsAre("a.b.inf", "a.b.mta", "a.b.srf", "a.b.ss"));
}

TEST_F(SvcPvrSet, LockChangesNothingButTheLock) {
    directory_.write("film.inf", kInfo);

    ASSERT_EQ(lock(path("film.srf"), true), SVC_PVR_ERROR_NONE);

    std::string expected = kInfo;
    expected.replace(expected.find("content_lock=false"), strlen("content_lock=false"), "content_lock=true");
    EXPECT_EQ(directory_.read("film.inf"), expected);
    EXPECT_THAT(names(), ElementsAre("film.inf"));
}

TEST_F(SvcPvrSet, RecordThatIsWrittenBackUnchangedLeavesTheFileAlone) {
    directory_.write("film.inf", kInfo);
    struct stat before {};
    ASSERT_EQ(stat(path("film.inf").c_str(), &before), 0);

    ASSERT_EQ(lock(path("film.srf"), false), SVC_PVR_ERROR_NONE);

    struct stat after {};
    ASSERT_EQ(stat(path("film.inf").c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino) << "the file was replaced";
    EXPECT_EQ(directory_.read("film.inf"), kInfo);
}

TEST_F(SvcPvrSet, TakesTheInfoFileItselfToo) {
    directory_.write("film.inf", kInfo);

    ASSERT_EQ(lock(path("film.inf"), true), SVC_PVR_ERROR_NONE);

    EXPECT_TRUE(ReadRecord(path("film.srf")).info.content_lock);
}

TEST_F(SvcPvrSet, TitleLongerThanTheRecordsIsNotCut) {
    const std::string title(1000, 't');
    directory_.write("film.inf", "[recording]\nprogram_title=" + title + "\n");

    ASSERT_EQ(lock(path("film.srf"), true), SVC_PVR_ERROR_NONE);

    EXPECT_THAT(directory_.read("film.inf"), HasSubstr("program_title=" + title + "\n"));
}

TEST_F(SvcPvrSet, TitleThatFillsTheRecordWithoutAnEndIsTakenWhole) {
    pvr_file_info_s info{};
    memset(info.title, 'x', sizeof(info.title));
    directory_.write("film.inf", kInfo);

    ASSERT_EQ(svc_pvr_set_pvr_file_info_ex(path("film.srf").c_str(), &info), SVC_PVR_ERROR_NONE);

    EXPECT_THAT(directory_.read("film.inf"),
                HasSubstr("program_title=" + std::string(SVC_PVR_TITLE_SIZE, 'x') + "\n"));
}

TEST_F(SvcPvrSet, NullTextsStayAsTheyAre) {
    directory_.write("film.inf", kInfo);
    pvr_file_info_s info{};
    strcpy(info.title, "Another film");

    ASSERT_EQ(svc_pvr_set_pvr_file_info_ex(path("film.srf").c_str(), &info), SVC_PVR_ERROR_NONE);

    const ReadRecord record(path("film.srf"));
    EXPECT_STREQ(record.info.title, "Another film");
    EXPECT_STREQ(record.info.channel_name, "Channel Été");
    EXPECT_EQ(record.info.duration, 0);
}

TEST_F(SvcPvrSet, WhatIsNotUtf8IsRefused) {
    directory_.write("film.inf", kInfo);
    char broken[] = "\xff\xfe";
    pvr_file_info_s text{};
    text.genre = broken;
    pvr_file_info_s title{};
    strcpy(title.title, broken);

    EXPECT_EQ(svc_pvr_set_pvr_file_info_ex(path("film.srf").c_str(), &text), SVC_PVR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(svc_pvr_set_pvr_file_info_ex(path("film.srf").c_str(), &title),
              SVC_PVR_ERROR_INVALID_PARAMETER);

    EXPECT_EQ(directory_.read("film.inf"), kInfo);
}

TEST_F(SvcPvrSet, RefusesNullArguments) {
    const pvr_file_info_s info{};

    EXPECT_EQ(svc_pvr_set_pvr_file_info_ex(nullptr, &info), SVC_PVR_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(svc_pvr_set_pvr_file_info_ex("a.srf", nullptr), SVC_PVR_ERROR_INVALID_PARAMETER);
}

TEST_F(SvcPvrSet, RecordingWithoutAnInfoFileIsGivenOne) {
    directory_.write("film.srf", "stream");
    const pvr_file_info_s nothing{};

    ASSERT_EQ(svc_pvr_set_pvr_file_info_ex(path("film.srf").c_str(), &nothing), SVC_PVR_ERROR_NONE);

    EXPECT_EQ(ReadRecord(path("film.srf")).result, SVC_PVR_ERROR_NONE);
    EXPECT_EQ(directory_.read("film.srf"), "stream");
}

TEST_F(SvcPvrSet, WithoutARecordingNoInfoFileIsMade) {
    const pvr_file_info_s info{};

    EXPECT_EQ(svc_pvr_set_pvr_file_info_ex(path("film.srf").c_str(), &info), SVC_PVR_ERROR_NO_FILE);
    EXPECT_EQ(svc_pvr_set_pvr_file_info_ex(path("film.inf").c_str(), &info), SVC_PVR_ERROR_NO_FILE);
    EXPECT_EQ(svc_pvr_set_pvr_file_info_ex(path("no/film.srf").c_str(), &info), SVC_PVR_ERROR_NO_FILE);
    EXPECT_EQ(svc_pvr_set_pvr_file_info_ex("", &info), SVC_PVR_ERROR_NO_FILE);

    EXPECT_THAT(names(), ElementsAre());
}

TEST_F(SvcPvrSet, InfoFileThatCannotBeReadIsLeftAsItIs) {
    const pvr_file_info_s info{};
    directory_.write("film.srf", "stream");
    for (const std::string& content :
         {std::string("no key file"), std::string(), std::string("\0\1\2[x]\n", 7), std::string("[x\ny=1\n"),
          "[recording]\nsynopsis=" + std::string(1 << 20, 'x') + "\n"}) {
        directory_.write("film.inf", content);
        EXPECT_EQ(svc_pvr_set_pvr_file_info_ex(path("film.srf").c_str(), &info), SVC_PVR_ERROR_NO_INFO)
            << content.substr(0, 30);
        EXPECT_EQ(directory_.read("film.inf"), content);
    }
}

TEST_F(SvcPvrSet, WhatIsNoFileIsNotReplaced) {
    const pvr_file_info_s info{};
    directory_.write("elsewhere.txt", kInfo);
    std::filesystem::create_symlink(path("elsewhere.txt"), path("link.inf"));
    std::filesystem::create_directory(path("directory.inf"));
    ASSERT_EQ(mkfifo(path("pipe.inf").c_str(), 0600), 0);

    for (const char* name : {"link.srf", "directory.srf", "pipe.srf"}) {
        EXPECT_EQ(svc_pvr_set_pvr_file_info_ex(path(name).c_str(), &info), SVC_PVR_ERROR_NO_INFO) << name;
    }

    EXPECT_TRUE(std::filesystem::is_symlink(path("link.inf")));
    EXPECT_EQ(directory_.read("elsewhere.txt"), kInfo);
}

TEST_F(SvcPvrSet, HostileFilesEndSoon) {
    std::string many_groups;
    std::string many_keys = "[recording]\n";
    for (int i = 0; many_groups.size() < 200000; ++i) {
        many_groups += "[g" + std::to_string(i) + "]\nk=1\n";
        many_keys += "k" + std::to_string(i) + "=v\n";
    }
    for (const std::string& content : {many_groups, many_keys, "[x]\n" + std::string(200000, '\n')}) {
        directory_.write("film.inf", content);
        EXPECT_EQ(lock(path("film.srf"), true), SVC_PVR_ERROR_NONE);
        EXPECT_TRUE(ReadRecord(path("film.srf")).info.content_lock);
    }
}

TEST_F(SvcPvrSet, NewFileHasTheRightsOfTheOldOne) {
    directory_.write("film.inf", kInfo);
    ASSERT_EQ(chmod(path("film.inf").c_str(), 0640), 0);
    umask(022);

    ASSERT_EQ(lock(path("film.srf"), true), SVC_PVR_ERROR_NONE);

    struct stat status {};
    ASSERT_EQ(stat(path("film.inf").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0640U);
}

TEST_F(SvcPvrSet, RelativePathsStartAtTheWorkingDirectory) {
    directory_.write("film.inf", kInfo);
    ASSERT_EQ(chdir(directory_.path().c_str()), 0);

    EXPECT_EQ(lock("film.srf", true), SVC_PVR_ERROR_NONE);

    EXPECT_TRUE(ReadRecord(path("film.srf")).info.content_lock);
}

/// Writes the whole record over and over, each time with one sign in all of its texts.
int write_records(const std::string& recording, char sign, int rounds) {
    int failed = 0;
    std::string text(200, sign);
    for (int i = 0; i < rounds; ++i) {
        pvr_file_info_s info{};
        strcpy(info.title, text.c_str());
        info.channel_name = info.channel_num = info.synopsis = info.genre = text.data();
        info.duration = info.start_time = info.content_version = sign;
        failed += svc_pvr_set_pvr_file_info_ex(recording.c_str(), &info) != SVC_PVR_ERROR_NONE;
    }
    return failed;
}

bool is_of_one_writer(const pvr_file_info_s& info) {
    const std::string text(info.title);
    return text == std::string(200, info.title[0]) && text == info.channel_name && text == info.channel_num &&
           text == info.synopsis && text == info.genre && info.duration == info.title[0] &&
           info.start_time == info.duration && info.content_version == info.duration;
}

TEST_F(SvcPvrSet, ReadersBetweenTwoProgramsThatWriteFindOneWritersRecordWhole) {
    directory_.write("film.inf", "[recording]\nprivate_data=kept\n");
    const std::string recording = path("film.srf");
    ASSERT_EQ(write_records(recording, 'x', 1), 0);
    const pid_t child = fork();
    if (child == 0) {
        _exit(write_records(recording, 'y', 40));
    }
    std::thread writer([&recording] { EXPECT_EQ(write_records(recording, 'x', 40), 0); });

    for (int i = 0; i < 200; ++i) {
        const ReadRecord record(recording);
        ASSERT_EQ(record.result, SVC_PVR_ERROR_NONE);
        EXPECT_TRUE(is_of_one_writer(record.info)) << record.info.title;
    }
    writer.join();
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);

    EXPECT_EQ(status, 0);
    EXPECT_THAT(directory_.read("film.inf"), HasSubstr("private_data=kept\n"));
    EXPECT_THAT(names(), ElementsAre("film.inf"));
}

}  // namespace
