#include "apps/qra/job_check.h"

#include <gmock/gmock.h>
#include <qra/qra_types.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include "apps/qra/exit_status.h"
#include "tests/fakes/own_mounts.h"
#include "tests/fakes/recording_maker.h"
#include "tests/fakes/temp_dir.h"
#include "tests/fakes/without_roots_rights.h"

namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr std::uint64_t kGiB = std::uint64_t{1} << 30;

JobItem item_named(const std::string& name, std::uint64_t size = 0) {
    JobItem item;
    item.media_type = QRA_MEDIA_TYPE_IMAGE;
    item.name = name;
    item.size = size;
    item.has_time = true;
    return item;
}

TargetLimits fat() {
    TargetLimits limits;
    limits.file_system = "vfat";
    limits.largest_file = 0xFFFFFFFF;
    limits.windows_names = true;
    return limits;
}

class JobCheck : public testing::Test {
protected:
    /// An item for a file of the test's directory.
    JobItem item(const std::string& name, const std::string& content = "content") {
        JobItem item = item_named(name, content.size());
        item.path = directory_.write(name, content);
        return item;
    }

    /// An item for a recording of the test's directory.
    JobItem recording(const std::string& name, const SampleRecording& sample) {
        JobItem item = item_named(name, sample.bytes);
        item.media_type = QRA_MEDIA_TYPE_PVR;
        item.path = directory_.path(name);
        EXPECT_TRUE(make_recording(item.path, sample));
        return item;
    }

    /// Why an item has no place as the only one of a job.
    std::string place_refusal(const JobItem& item, const TargetLimits& limits = TargetLimits()) {
        return PlannedCopies(directory_.path(), limits).add(item);
    }

    TempDir directory_;
};

TEST_F(JobCheck, TilesOfThePageAreNoContent) {
    for (const int type : {QRA_MEDIA_TYPE_GROUP, QRA_MEDIA_TYPE_UPFOLDER, QRA_MEDIA_TYPE_EMPTY}) {
        EXPECT_TRUE(is_without_content(type)) << type;
    }
    for (const int type : {QRA_MEDIA_TYPE_FOLDER, QRA_MEDIA_TYPE_IMAGE, QRA_MEDIA_TYPE_PVR}) {
        EXPECT_FALSE(is_without_content(type)) << type;
    }
}

TEST_F(JobCheck, FoldersAndPlaylistsAreRefused) {
    EXPECT_THAT(tile_refusal(QRA_MEDIA_TYPE_FOLDER), HasSubstr("folder"));
    EXPECT_THAT(tile_refusal(QRA_MEDIA_TYPE_PLAYLIST), HasSubstr("playlist"));
    for (const int type :
         {QRA_MEDIA_TYPE_IMAGE, QRA_MEDIA_TYPE_VIDEO, QRA_MEDIA_TYPE_MUSIC, QRA_MEDIA_TYPE_PVR,
          QRA_MEDIA_TYPE_UHD, QRA_MEDIA_TYPE_IMAGE_EXT, QRA_MEDIA_TYPE_VIDEO_EXT}) {
        EXPECT_EQ(tile_refusal(type), "") << type;
    }
}

TEST_F(JobCheck, KindsHaveTheirFolders) {
    EXPECT_STREQ(copy_folder(QRA_MEDIA_TYPE_IMAGE), "PHOTO");
    EXPECT_STREQ(copy_folder(QRA_MEDIA_TYPE_IMAGE_EXT), "PHOTO");
    EXPECT_STREQ(copy_folder(QRA_MEDIA_TYPE_VIDEO), "VIDEO");
    EXPECT_STREQ(copy_folder(QRA_MEDIA_TYPE_VIDEO_EXT), "VIDEO");
    EXPECT_STREQ(copy_folder(QRA_MEDIA_TYPE_MUSIC), "MUSIC");
    EXPECT_STREQ(copy_folder(QRA_MEDIA_TYPE_PVR), "CONTENTS");
    EXPECT_EQ(copy_folder(QRA_MEDIA_TYPE_UHD), nullptr);
}

TEST_F(JobCheck, SourceThatIsAsTheDatabaseSaysGoes) {
    EXPECT_EQ(source_refusal(item("a.jpg")), "");
}

TEST_F(JobCheck, SourceThatHasGoneOrChangedIsRefused) {
    JobItem gone = item("gone.jpg");
    std::filesystem::remove(gone.path);
    EXPECT_THAT(source_refusal(gone), HasSubstr("No such file"));

    JobItem shorter = item("shorter.jpg");
    directory_.write("shorter.jpg", "c");
    EXPECT_THAT(source_refusal(shorter), HasSubstr("another size"));

    JobItem folder = item_named("folder");
    folder.path = directory_.path();
    EXPECT_THAT(source_refusal(folder), HasSubstr("no regular file"));
}

TEST_F(JobCheck, SourceThatItsOwnerMayNotReadIsRefusedForEverybody) {
    const JobItem source = item("a.jpg");
    ASSERT_EQ(chmod(source.path.c_str(), 0044), 0);
    EXPECT_THAT(source_refusal(source), StartsWith("cannot be read"));
}

TEST_F(JobCheck, CompanionThatCannotBeReadIsNotLeftBehindInSilence) {
    JobItem film = item("film.avi");
    film.media_type = QRA_MEDIA_TYPE_VIDEO;
    const std::string subtitles = directory_.write("film.srt", "subtitles");
    EXPECT_EQ(source_refusal(film), "");
    ASSERT_EQ(chmod(subtitles.c_str(), 0), 0);
    EXPECT_EQ(source_refusal(film), "has a companion that cannot be read: " + subtitles);
    film.media_type = QRA_MEDIA_TYPE_IMAGE;
    EXPECT_EQ(source_refusal(film), "");
}

TEST_F(JobCheck, SourceWithoutATimeCannotBeCopied) {
    JobItem recording = item("a.srf");
    recording.has_time = false;
    EXPECT_THAT(source_refusal(recording), HasSubstr("modification time"));
}

TEST_F(JobCheck, FinishedRecordingGoesAndIsRemovedLockedOrNot) {
    for (const bool locked : {false, true}) {
        SampleRecording sample;
        sample.locked = locked;
        const JobItem news = recording("news.srf", sample);
        EXPECT_EQ(source_refusal(news), "") << locked;
        EXPECT_EQ(removal_refusal(news), "") << locked;
    }
}

TEST_F(JobCheck, RecordingInProgressNeitherGoesNorIsRemoved) {
    SampleRecording sample;
    sample.finished = false;
    const JobItem live = recording("live.srf", sample);
    EXPECT_THAT(source_refusal(live), HasSubstr("still being recorded"));
    EXPECT_THAT(removal_refusal(live), HasSubstr("still being recorded"));
    EXPECT_THAT(copy_failure(live, directory_.path(), target_limits(directory_.path())),
                HasSubstr("still being recorded"));
}

TEST_F(JobCheck, RecordingThatNobodyKnowsNeitherGoesNorIsRemoved) {
    JobItem stray = item("stray.srf");
    stray.media_type = QRA_MEDIA_TYPE_PVR;
    EXPECT_THAT(source_refusal(stray), HasSubstr("info file"));
    EXPECT_THAT(removal_refusal(stray), HasSubstr("info file"));
}

TEST_F(JobCheck, CompanionReplacesNoFile) {
    JobItem film = item("film.mkv");
    film.media_type = QRA_MEDIA_TYPE_VIDEO;
    directory_.write("film.srt", "subtitles of film.mkv");
    EXPECT_EQ(place_refusal(film), "");

    std::filesystem::create_directory(directory_.path("VIDEO"));
    directory_.write("VIDEO/film.avi", "another film");
    EXPECT_EQ(place_refusal(film), "");
    directory_.write("VIDEO/film.srt", "subtitles of film.avi");
    EXPECT_THAT(place_refusal(film), HasSubstr("VIDEO/film.srt"));

    directory_.write("VIDEO/film.mkv", "the copy will be numbered");
    EXPECT_EQ(place_refusal(film), "");
    directory_.write("VIDEO/film_001.srt", "of nothing");
    EXPECT_THAT(place_refusal(film), HasSubstr("VIDEO/film_001.srt"));
    std::filesystem::remove(directory_.path("VIDEO/film_001.srt"));
    std::filesystem::create_symlink("missing", directory_.path("VIDEO/film_001.srt"));
    EXPECT_THAT(place_refusal(film), HasSubstr("VIDEO/film_001.srt"));

    film.media_type = QRA_MEDIA_TYPE_IMAGE;
    EXPECT_EQ(place_refusal(film), "");
}

TEST_F(JobCheck, NameThatIsTakenWithAllItsNumbersIsRefused) {
    std::filesystem::create_directory(directory_.path("PHOTO"));
    const JobItem picture = item_named("a.jpg");
    directory_.write("PHOTO/a.jpg", "");
    for (int n = 1; n <= 98; ++n) {
        directory_.write("PHOTO/a_0" + std::string(n < 10 ? "0" : "") + std::to_string(n) + ".jpg", "");
    }
    EXPECT_EQ(place_refusal(picture), "");
    directory_.write("PHOTO/a_099.jpg", "");
    EXPECT_THAT(place_refusal(picture), HasSubstr("all numbers"));
}

TEST_F(JobCheck, NameThatIsTakenAndTooLongForANumberIsRefused) {
    std::filesystem::create_directory(directory_.path("PHOTO"));
    TargetLimits limits;
    limits.longest_name = 255;
    const JobItem longest = item_named(std::string(251, 'x') + ".jpg");
    EXPECT_EQ(place_refusal(longest, limits), "");
    directory_.write("PHOTO/" + longest.name, "");
    EXPECT_THAT(place_refusal(longest, limits), HasSubstr("too long for a number"));

    const JobItem shorter = item_named(std::string(247, 'x') + ".jpg");
    directory_.write("PHOTO/" + shorter.name, "");
    EXPECT_EQ(place_refusal(shorter, limits), "");
}

TEST_F(JobCheck, CopiesOfOneJobTakeNamesFromEachOther) {
    const TargetLimits limits;
    PlannedCopies planned(directory_.path(), limits);
    for (int n = 0; n < 100; ++n) {
        ASSERT_EQ(planned.add(item_named("a.jpg")), "") << n;
    }
    EXPECT_THAT(planned.add(item_named("a.jpg")), HasSubstr("all numbers"));
    EXPECT_EQ(planned.add(item_named("b.jpg")), "");
}

TEST_F(JobCheck, CopyThatLacksACompanionIsToldWhereItLies) {
    JobItem film = item("film.avi", "film");
    film.media_type = QRA_MEDIA_TYPE_VIDEO;
    const std::string subtitles = directory_.write("film.srt", "subtitles");
    const TargetLimits limits;
    PlannedCopies planned(directory_.path(), limits);
    ASSERT_EQ(planned.add(film), "");
    EXPECT_EQ(planned.shortfall(film), "") << "the copy took another name";

    std::filesystem::create_directory(directory_.path("VIDEO"));
    directory_.write("VIDEO/film.avi", "film");
    EXPECT_EQ(planned.shortfall(film), "is copied without its companion " + subtitles);
    directory_.write("VIDEO/film.srt", "subt");
    EXPECT_EQ(planned.shortfall(film), "is copied without its companion " + subtitles) << "a part of it";
    directory_.write("VIDEO/film.srt", "subtitles");
    EXPECT_EQ(planned.shortfall(film), "");
}

TEST_F(JobCheck, CompanionsOfOneJobDoNotReplaceEachOther) {
    const auto film = [this](const std::string& name) {
        JobItem result = item(name);
        result.media_type = QRA_MEDIA_TYPE_VIDEO;
        result.name = name.substr(name.rfind('/') + 1);
        return result;
    };
    for (const char* folder : {"one", "other"}) {
        std::filesystem::create_directory(directory_.path(folder));
        directory_.write(std::string(folder) + "/film.srt", "subtitles");
    }
    const TargetLimits limits;
    PlannedCopies planned(directory_.path(), limits);
    EXPECT_EQ(planned.add(film("one/film.avi")), "");
    EXPECT_EQ(planned.add(film("one/film.mkv")), "") << "the same subtitles";
    EXPECT_THAT(planned.add(film("other/film.mp4")), HasSubstr("VIDEO/film.srt"));
    EXPECT_EQ(planned.add(film("other/film.avi")), "") << "film_001.avi and film_001.srt";

    const TargetLimits windows = fat();
    PlannedCopies of_windows(directory_.path(), windows);
    directory_.write("other/Film.srt", "subtitles");
    EXPECT_EQ(of_windows.add(film("one/film.avi")), "");
    EXPECT_THAT(of_windows.add(film("other/Film.mkv")), HasSubstr("VIDEO/Film.srt"));
}

TEST_F(JobCheck, CopyBearsTheLastComponentOfAName) {
    std::filesystem::create_directory(directory_.path("PHOTO"));
    const JobItem picture = item_named("folder\\a.jpg");
    for (int n = 1; n <= 99; ++n) {
        directory_.write("PHOTO/a_0" + std::string(n < 10 ? "0" : "") + std::to_string(n) + ".jpg", "");
    }
    EXPECT_EQ(place_refusal(picture), "");
    directory_.write("PHOTO/a.jpg", "");
    EXPECT_THAT(place_refusal(picture), HasSubstr("all numbers"));
}

TEST_F(JobCheck, CopyGoesToTheNextFolderWhereAFileHasTheName) {
    directory_.write("PHOTO", "no folder");
    std::filesystem::create_directory(directory_.path("PHOTO001"));
    const std::string longest = std::string(251, 'x') + ".jpg";
    directory_.write("PHOTO001/" + longest, "");
    TargetLimits limits;
    limits.longest_name = 255;
    EXPECT_EQ(target_refusal(item_named("a.jpg"), directory_.path()), "");
    EXPECT_THAT(place_refusal(item_named(longest), limits), HasSubstr("too long for a number"));
}

TEST_F(JobCheck, TargetWithoutAFolderOfTheKindIsRefused) {
    directory_.write("MUSIC", "no folder");
    for (int n = 0; n < 10; ++n) {
        EXPECT_EQ(target_refusal(item_named("a.jpg"), directory_.path()), "") << n;
        directory_.write(n == 0 ? "PHOTO" : "PHOTO00" + std::to_string(n), "no folder");
    }
    EXPECT_THAT(target_refusal(item_named("a.jpg"), directory_.path()), HasSubstr("PHOTO, PHOTO001"));
}

TEST_F(JobCheck, FatHoldsNoFileOfFourGibibytes) {
    EXPECT_EQ(limit_refusal(item_named("a.avi", 4 * kGiB - 1), fat()), "");
    EXPECT_THAT(limit_refusal(item_named("a.avi", 4 * kGiB), fat()), HasSubstr("vfat"));
    EXPECT_EQ(limit_refusal(item_named("a.avi", 100 * kGiB), TargetLimits()), "");
}

TEST_F(JobCheck, FileIsNoLargerThanTheUserAllows) {
    TargetLimits limits;
    limits.user_limit = 2000000;
    EXPECT_EQ(limit_refusal(item_named("a.avi", 2000000), limits), "");
    EXPECT_THAT(limit_refusal(item_named("a.avi", 2000001), limits), HasSubstr("2.0 MB"));

    limits.user_limit = 7;
    JobItem film = item("film.avi", "content");
    film.media_type = QRA_MEDIA_TYPE_VIDEO;
    EXPECT_EQ(limit_refusal(film, limits), "");
    directory_.write("film.srt", "subtitles");
    EXPECT_THAT(limit_refusal(film, limits), StartsWith("has a companion that is too large"));
}

TEST_F(JobCheck, WindowsFileSystemsForbidSigns) {
    for (const char* name : {"a?.jpg", "a:b.jpg", "a*.jpg", "a\"b.jpg", "<a>.jpg", "a|b.jpg", "a\nb.jpg",
                             "a.jpg ", "\xff.jpg"}) {
        EXPECT_THAT(limit_refusal(item_named(name), fat()), HasSubstr("target cannot hold")) << name;
        EXPECT_EQ(limit_refusal(item_named(name), TargetLimits()), "") << name;
    }
    for (const char* name :
         {"a.jpg", "Été (1) & more; #2.jpg", "한국어.jpg", ".hidden", "a b.jpg", "a\\b.jpg"}) {
        EXPECT_EQ(limit_refusal(item_named(name), fat()), "") << name;
    }
}

TEST_F(JobCheck, NamesHaveAGreatestLength) {
    std::string korean;
    for (int i = 0; i < 251; ++i) {
        korean += "한";
    }
    EXPECT_EQ(limit_refusal(item_named(korean + ".jpg"), fat()), "") << "255 units of UTF-16";
    EXPECT_THAT(limit_refusal(item_named(korean + "x.jpg"), fat()), HasSubstr("too long"));

    TargetLimits usual;
    usual.longest_name = 255;
    EXPECT_EQ(limit_refusal(item_named(std::string(251, 'x') + ".jpg"), usual), "");
    EXPECT_THAT(limit_refusal(item_named(std::string(252, 'x') + ".jpg"), usual), HasSubstr("too long"));
    EXPECT_THAT(limit_refusal(item_named(std::string(252, 'x')), usual), HasSubstr("too long"))
        << "the copy of a name without an extension is given one";
}

TEST_F(JobCheck, WritableTargetGoes) {
    EXPECT_EQ(target_refusal(item_named("a.jpg"), directory_.path()), "");
}

TEST_F(JobCheck, KindWithoutAFolderCannotBeCopied) {
    JobItem title = item_named("a.um4");
    title.media_type = QRA_MEDIA_TYPE_UHD;
    EXPECT_THAT(target_refusal(title, directory_.path()), HasSubstr("cannot be copied"));
}

TEST_F(JobCheck, SpaceIsCountedInBlocksAndWithCompanions) {
    TargetLimits limits;
    limits.block_bytes = 1000;
    JobItem video = item("film.avi", std::string(1500, 'x'));
    video.media_type = QRA_MEDIA_TYPE_VIDEO;
    directory_.write("film.srt", "subtitles");
    directory_.write("film.inf", "no companion of a film");
    JobItem picture = item("film.jpg", "x");

    EXPECT_EQ(needed_bytes({video}, limits), 3000U);
    EXPECT_EQ(needed_bytes({video, picture}, limits), 4000U);
    EXPECT_EQ(needed_bytes({}, limits), 0U);
}

TEST_F(JobCheck, LimitsAreThoseOfTheFileSystem) {
    const TargetLimits limits = target_limits(directory_.path());
    EXPECT_NE(limits.file_system, "");
    EXPECT_GT(limits.block_bytes, 0U);
    EXPECT_GE(limits.longest_name, 12U);
    EXPECT_FALSE(has_gone(directory_.path(), limits));
    EXPECT_THROW(target_limits(directory_.path("missing")), CommandError);
}

TEST_F(JobCheck, FileThatIsThereCanBeRemoved) {
    EXPECT_EQ(removal_refusal(item("a.jpg")), "");
    EXPECT_THAT(removal_refusal(item_named("b.jpg")), HasSubstr("cannot be found"));
}

TEST_F(JobCheck, LinkIsRemovedAsLongAsItsFileIsThere) {
    JobItem link = item_named("link.jpg");
    link.path = directory_.path("link.jpg");
    std::filesystem::create_symlink("a.jpg", link.path);
    EXPECT_THAT(removal_refusal(link), HasSubstr("link to a file that is not there"));
    directory_.write("a.jpg", "content");
    EXPECT_EQ(removal_refusal(link), "");
}

TEST_F(JobCheck, FilesOfSomebodyElseStayWhereEverybodyMayWrite) {
    JobItem film = item("film.avi");
    film.media_type = QRA_MEDIA_TYPE_VIDEO;
    const std::string subtitles = directory_.write("film.srt", "subtitles");
    ASSERT_EQ(chmod(directory_.path().c_str(), 01777), 0);
    if (chown(film.path.c_str(), WithoutRootsRights::kNobody, -1) != 0) {
        GTEST_SKIP() << "only root can give files away";
    }
    const WithoutRootsRights rights;
    if (!WithoutRootsRights::are_usual_in(directory_.path())) {
        GTEST_SKIP() << "there is no user without root's rights here, or the test's directory is not for it";
    }
    EXPECT_EQ(removal_refusal(film), "has a companion of somebody else: " + subtitles);
    film.media_type = QRA_MEDIA_TYPE_IMAGE;
    EXPECT_EQ(removal_refusal(film), "");
    film.path = subtitles;
    EXPECT_EQ(removal_refusal(film), "is a file of somebody else");
}

TEST_F(JobCheck, FailureIsExplainedByWhatCanBeSeen) {
    const TargetLimits limits = target_limits(directory_.path());
    JobItem source = item("a.jpg");
    EXPECT_THAT(copy_failure(source, directory_.path(), limits), HasSubstr("QRA_LOG"));
    JobItem huge = source;
    huge.size = UINT64_MAX;
    EXPECT_THAT(copy_failure(huge, directory_.path(), limits), HasSubstr("is full"));
    std::filesystem::remove(source.path);
    EXPECT_THAT(copy_failure(source, directory_.path(), limits), HasSubstr("cannot be found"));
    EXPECT_THAT(copy_failure(source, directory_.path("missing"), limits), HasSubstr("is gone"));
    EXPECT_THAT(removal_failure(item("b.jpg")), HasSubstr("QRA_LOG"));
}

/// With a file system of its own at `target`.
class JobCheckOnDrive : public JobCheck {
protected:
    void SetUp() override {
        if (!have_own_mounts()) {
            GTEST_SKIP() << "no mount namespace is to be had here";
        }
        target_ = directory_.path("target");
        std::filesystem::create_directory(target_);
        ASSERT_TRUE(mount_memory(target_, "size=1m"));
        mounted_ = true;
    }
    void TearDown() override {
        if (mounted_) {
            umount2(target_.c_str(), MNT_DETACH);
        }
    }

    std::string target_;
    bool mounted_ = false;
};

TEST_F(JobCheckOnDrive, LimitsAreThoseOfTheDrive) {
    const TargetLimits limits = target_limits(target_);
    EXPECT_EQ(limits.file_system, "tmpfs");
    EXPECT_LE(limits.free_bytes, std::uint64_t{1} << 20);
    EXPECT_FALSE(limits.windows_names);
}

TEST_F(JobCheckOnDrive, NothingCanBeWrittenToOrRemovedFromAReadOnlyOne) {
    JobItem stays = item_named("stays.jpg", 1);
    stays.path = directory_.write("target/stays.jpg", "x");
    ASSERT_TRUE(make_mount_read_only(target_));
    EXPECT_THAT(target_refusal(item_named("a.jpg"), target_), HasSubstr("Read-only"));
    EXPECT_THAT(removal_refusal(stays), HasSubstr("Read-only"));
}

TEST_F(JobCheckOnDrive, ReadOnlyFolderOfTheKindIsRefusedToo) {
    std::filesystem::create_directory(target_ + "/PHOTO");
    ASSERT_TRUE(mount_memory(target_ + "/PHOTO", "size=64k"));
    ASSERT_TRUE(make_mount_read_only(target_ + "/PHOTO"));
    EXPECT_THAT(target_refusal(item_named("a.jpg"), target_), HasSubstr("PHOTO: Read-only"));
    umount2((target_ + "/PHOTO").c_str(), MNT_DETACH);
}

TEST_F(JobCheckOnDrive, PulledOneIsGone) {
    const TargetLimits limits = target_limits(target_);
    ASSERT_EQ(umount2(target_.c_str(), MNT_DETACH), 0);
    mounted_ = false;
    EXPECT_TRUE(has_gone(target_, limits));
}

}  // namespace
