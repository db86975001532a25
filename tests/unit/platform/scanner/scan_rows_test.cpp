#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <functional>

#include "tests/fakes/dlog_capture.h"
#include "tests/unit/platform/scanner/scanned_drive.h"

namespace media_content {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;
using ScanRows = ScannedDrive;

TEST_F(ScanRows, AreThereForEveryKindOfMedia) {
    put("a.jpg");
    put("b.mp4", "video/clip.mp4");
    put("c.mp3", "music/song.mp3");
    put("d.srf", "recordings/news.srf");
    put("d.inf", "recordings/news.inf");
    put("e.um4", "uhd/film.um4");
    put("f.uvu", "scsa/film.uvu");
    ASSERT_EQ(scan(), 0);
    EXPECT_EQ(media_paths(), (Names{"/a.jpg", "/b.mp4", "/c.mp3", "/d.srf", "/e.um4", "/f.uvu"}));
    EXPECT_EQ(text("SELECT date_taken FROM media WHERE name = 'a.jpg'"), "2021:05:06 10:20:30");
    EXPECT_EQ(number("SELECT width FROM media WHERE name = 'b.mp4'"), 64);
    EXPECT_EQ(text("SELECT artist FROM media WHERE name = 'c.mp3'"), "The Band");
    EXPECT_EQ(text("SELECT program_title FROM pvr"), "Evening News; with Sport");
    EXPECT_EQ(text("SELECT content_title || content_id || sub_type FROM uhd"), "A Clipe-1");
    EXPECT_EQ(number("SELECT kind FROM media WHERE name = 'f.uvu'"), 7);
    EXPECT_EQ(number("SELECT size FROM media WHERE name = 'a.jpg'"),
              static_cast<int64_t>(fs::file_size(files() + "/a.jpg")));
}

TEST_F(ScanRows, AreNotThereForWhatIsNotListed) {
    put("a.txt");
    put(".a.jpg");
    put("._b.jpg");
    put("$RECYCLE.BIN/c.jpg");
    put("System Volume Information/d.jpg");
    put(".Trash-1000/files/e.jpg");
    put("x/f.jpg");
    ASSERT_EQ(scan(), 0);
    EXPECT_EQ(media_paths(), Names{"/x/f.jpg"});
    EXPECT_EQ(folder_paths(), (Names{"", "/x"}));
}

TEST_F(ScanRows, AreWrittenByTheFirstScanAndLeftAloneByTheSecond) {
    const int count = put_many(5, 7);
    EXPECT_EQ(scan_with_progress().added, static_cast<size_t>(count));
    Database::ReadLease reader(database());
    const auto version = [&] {
        Query query(reader.connection(), "PRAGMA data_version");
        query.step();
        return query.integer(0);
    };
    const int64_t before = version();
    int error = -1;
    const media_content_scan_progress_s progress = scan_with_progress(&error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(progress.files_seen, static_cast<size_t>(count));
    EXPECT_EQ(progress.files_done, static_cast<size_t>(count));
    EXPECT_EQ(progress.added + progress.updated + progress.removed + progress.failed, 0U);
    EXPECT_EQ(version(), before);
}

TEST_F(ScanRows, OfAChangedFileAreUpdatedAndKeepTheirId) {
    put("a.jpg", "pictures/plain.jpg");
    put("b.jpg");
    ASSERT_EQ(scan(), 0);
    const int64_t id = id_of("a.jpg");
    EXPECT_EQ(text("SELECT model FROM media WHERE name = 'a.jpg'"), "");
    put("a.jpg");
    const media_content_scan_progress_s progress = scan_with_progress();
    EXPECT_EQ(progress.updated, 1U);
    EXPECT_EQ(progress.added, 0U);
    EXPECT_EQ(id_of("a.jpg"), id);
    EXPECT_EQ(text("SELECT model FROM media WHERE name = 'a.jpg'"), "Camera 7");
}

TEST_F(ScanRows, OfAFileOfTheSameSizeAndAnotherTimeAreReadAgain) {
    put("a.jpg");
    ASSERT_EQ(scan(), 0);
    const timespec times[2] = {{5, 0}, {5, 1}};
    ASSERT_EQ(utimensat(AT_FDCWD, (files() + "/a.jpg").c_str(), times, 0), 0);
    EXPECT_EQ(scan_with_progress().updated, 1U);
    EXPECT_EQ(number("SELECT modified_ns FROM media"), 5000000001);
}

TEST_F(ScanRows, OfARecordingAreReadAgainWhenItsInfoFileComesOrChanges) {
    put("d.srf", "recordings/news.srf");
    ASSERT_EQ(scan(), 0);
    EXPECT_EQ(text("SELECT program_title FROM pvr"), "d");
    put("d.inf", "recordings/news.inf");
    EXPECT_EQ(scan_with_progress().updated, 1U);
    EXPECT_EQ(text("SELECT program_title FROM pvr"), "Evening News; with Sport");
    EXPECT_EQ(scan_with_progress().updated, 0U);
    write_file("stick/d.inf", "[x]\nprogram_title=Late News\n");
    EXPECT_EQ(scan_with_progress().updated, 1U);
    EXPECT_EQ(text("SELECT program_title FROM pvr"), "Late News");
}

TEST_F(ScanRows, OfFilesAndFoldersThatAreGoneGo) {
    put("a.jpg");
    put("x/b.jpg");
    put("x/y/c.jpg");
    put("z/d.jpg");
    ASSERT_EQ(scan(), 0);
    fs::remove(files() + "/a.jpg");
    fs::remove_all(files() + "/x");
    EXPECT_EQ(scan_with_progress().removed, 2U);
    EXPECT_EQ(media_paths(), Names{"/z/d.jpg"});
    EXPECT_EQ(folder_paths(), (Names{"", "/z"}));
}

TEST_F(ScanRows, OfAFileThatBecameAFolderBecomeAFolder) {
    put("a.jpg");
    ASSERT_EQ(scan(), 0);
    fs::remove(files() + "/a.jpg");
    put("a.jpg/b.jpg");
    ASSERT_EQ(scan(), 0);
    EXPECT_EQ(media_paths(), Names{"/a.jpg/b.jpg"});
}

TEST_F(ScanRows, OfAScannedFolderThatIsGoneGoAndTheScanFails) {
    put("x/b.jpg");
    put("a.jpg");
    ASSERT_EQ(scan(), 0);
    fs::remove_all(files() + "/x");
    EXPECT_EQ(scan("/x"), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(media_paths(), Names{"/a.jpg"});
}

TEST_F(ScanRows, OfADriveThatIsNotThereStay) {
    put("a.jpg");
    ASSERT_EQ(scan(), 0);
    fs::rename(files(), root() + "/pulled");
    EXPECT_EQ(scan(), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(media_count(), 1);
    fs::rename(root() + "/pulled", files());
    EXPECT_EQ(scan(), 0);
    EXPECT_EQ(media_count(), 1);
}

TEST_F(ScanRows, OfOneFolderAloneHoldItsFilesAndItsFolders) {
    put("a.jpg");
    put("x/b.jpg");
    put("x/y/c.jpg");
    ASSERT_EQ(scan("", false), 0);
    EXPECT_EQ(media_paths(), Names{"/a.jpg"});
    EXPECT_EQ(folder_paths(), (Names{"", "/x"}));
    EXPECT_EQ(folder_status(""), MEDIA_SCAN_STATUS_FOLDER_SCANNED);
    EXPECT_EQ(folder_status("/x"), MEDIA_SCAN_STATUS_NONE);
    EXPECT_EQ(storage_status(), MEDIA_SCAN_STATUS_NONE);
    ASSERT_EQ(scan("/x", false), 0);
    EXPECT_EQ(media_paths(), (Names{"/a.jpg", "/x/b.jpg"}));
    EXPECT_EQ(folder_status("/x"), MEDIA_SCAN_STATUS_FOLDER_SCANNED);
}

TEST_F(ScanRows, OfAFolderDeepDownAreThereWithoutThoseAbove) {
    put("x/y/z/c.jpg");
    put("a.jpg");
    ASSERT_EQ(scan("/x/y"), 0);
    EXPECT_EQ(media_paths(), Names{"/x/y/z/c.jpg"});
    EXPECT_EQ(folder_status("/x/y/z"), MEDIA_SCAN_STATUS_FOLDER_SCANNED);
    EXPECT_EQ(folder_status("/x"), MEDIA_SCAN_STATUS_NONE);
    EXPECT_EQ(storage_status(), MEDIA_SCAN_STATUS_NONE);
}

TEST_F(ScanRows, OfTheWholeDriveMakeItFullyScanned) {
    put_many(3, 2);
    directory("stick/empty");
    ASSERT_EQ(scan(), 0);
    EXPECT_EQ(storage_status(), MEDIA_SCAN_STATUS_FULLY_SCANNED);
    EXPECT_EQ(number("SELECT count(*) FROM folder WHERE scan_status <> 4"), 0);
    EXPECT_EQ(folder_status("/empty"), MEDIA_SCAN_STATUS_FOLDER_SCANNED);
}

TEST_F(ScanRows, HaveThePathsBytesAsTheyAre) {
    const Names names = {
        "/a 'quoted' \"name\".jpg",           "/bytes \xff\xfe.jpg", "/line\nfeed.jpg", "/percent%_.jpg",
        "/" + std::string(250, 'n') + ".jpg", "/\xED\x95\x9C.jpg"};
    for (const std::string& name : names) {
        put(name.substr(1));
    }
    ASSERT_EQ(scan(), 0);
    Names sorted = names;
    std::sort(sorted.begin(), sorted.end());
    EXPECT_EQ(media_paths(), sorted);
    EXPECT_EQ(scan_with_progress().added, 0U);
}

TEST_F(ScanRows, OfNamesThatDifferByCaseOnlyAreTwo) {
    put("A/a.jpg");
    put("a/a.jpg");
    put("a/A.jpg");
    ASSERT_EQ(scan(), 0);
    EXPECT_EQ(media_paths(), (Names{"/A/a.jpg", "/a/A.jpg", "/a/a.jpg"}));
}

TEST_F(ScanRows, AreThereForLinksThatStayOnTheDrive) {
    put("real/a.jpg");
    write_file("outside/secret.jpg", "x");
    link("linked", "real");
    link("b.jpg", "real/a.jpg");
    link("real/loop", "..");
    link("out", root() + "/outside");
    link("secret.jpg", root() + "/outside/secret.jpg");
    ASSERT_EQ(scan(), 0);
    EXPECT_EQ(media_paths(), (Names{"/b.jpg", "/linked/a.jpg", "/real/a.jpg"}));
    EXPECT_EQ(text("SELECT model FROM media WHERE name = 'b.jpg'"), "Camera 7");
}

TEST_F(ScanRows, OfManyLinksBackAndForthAreFinite) {
    for (int i = 0; i < 12; ++i) {
        const std::string folder = "d" + std::to_string(i);
        put(folder + "/a.jpg");
        for (int j = 0; j < 12; ++j) {
            link(folder + "/to" + std::to_string(j), "../d" + std::to_string(j));
        }
    }
    ASSERT_EQ(scan(), 0);
    EXPECT_EQ(media_count(), 12 + 12 * 11);
}

TEST_F(ScanRows, OfVeryDeepFoldersAreThereAsFarAsPathsGo) {
    const std::string name(200, 'd');
    int descriptor = open(files().c_str(), O_RDONLY | O_DIRECTORY);
    for (int depth = 0; depth < 40; ++depth) {
        ASSERT_EQ(mkdirat(descriptor, name.c_str(), 0700), 0);
        const int below = openat(descriptor, name.c_str(), O_RDONLY | O_DIRECTORY);
        close(descriptor);
        descriptor = below;
        close(openat(descriptor, "a.jpg", O_CREAT | O_WRONLY, 0600));
    }
    close(descriptor);
    LogCapture log;
    ASSERT_EQ(scan(), 0);
    EXPECT_GE(media_count(), 18);
    EXPECT_LT(media_count(), 40);
}

TEST_F(ScanRows, OfBrokenFilesAreThereWithOneLogLineEach) {
    size_t count = 0;
    for (const auto& entry : fs::directory_iterator(std::string(QRA_FIXTURES) + "/broken")) {
        if (entry.path().filename() != "entities.jpg") {
            put(entry.path().filename().string(), "broken/" + entry.path().filename().string());
            ++count;
        }
    }
    LogCapture log;
    const media_content_scan_progress_s progress = scan_with_progress();
    EXPECT_EQ(progress.failed, count);
    EXPECT_EQ(progress.added, count);
    EXPECT_EQ(media_count(), static_cast<int64_t>(count));
    EXPECT_EQ(log.count("cannot read the metadata of ["), static_cast<int>(count)) << log.text();
    EXPECT_EQ(log.count("/lying.tif]"), 1);
}

TEST_F(ScanRows, OfFilesThatNobodyMayReadAreThere) {
    if (geteuid() == 0) {
        GTEST_SKIP() << "root may read everything";
    }
    put("a.jpg");
    put("locked/b.jpg");
    chmod((files() + "/a.jpg").c_str(), 0);
    chmod((files() + "/locked").c_str(), 0);
    EXPECT_EQ(scan(), 0);
    chmod((files() + "/locked").c_str(), 0700);
    EXPECT_EQ(media_paths(), Names{"/a.jpg"});
    EXPECT_EQ(folder_status("/locked"), MEDIA_SCAN_STATUS_FAILED);
    EXPECT_EQ(storage_status(), MEDIA_SCAN_STATUS_FULLY_SCANNED);
}

TEST_F(ScanRows, OfTheFirstFolderAreThereBeforeTheTreeIsDone) {
    put("first.jpg");
    const int count = put_many(40, 25);
    struct Seen {
        std::function<bool()> first_is_there;
        std::function<int64_t()> count;
        ScanAnswer answer;
        int64_t rows = -1;  // when the first one was there
    } seen;
    seen.first_is_there = [this] { return id_of("first.jpg") > 0; };
    seen.count = [this] { return media_count(); };
    ASSERT_EQ(media_content_scan_folder_v2(
                  drive_path().c_str(), true,
                  [](int error, int phase, void* data) {
                      auto* at = static_cast<Seen*>(data);
                      if (phase == MEDIA_SCAN_PHASE_PROGRESS && at->rows < 0 && at->first_is_there()) {
                          at->rows = at->count();
                      }
                      ScanAnswer::on_report(error, phase, &at->answer);
                  },
                  &seen),
              0);
    ASSERT_EQ(seen.answer.wait(), 0);
    EXPECT_EQ(media_count(), count + 1);
    EXPECT_GT(seen.rows, 0);
    EXPECT_LT(seen.rows, count / 2);
}

}  // namespace
}  // namespace media_content
