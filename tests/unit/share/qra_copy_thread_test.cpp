#include "libqra-agent/share/src/qra_copy_thread.h"

#include <sys/stat.h>

#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "tests/fakes/fake_mtp.h"
#include "tests/unit/share/share_fixture.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t kBlock = 65536;

using Events = std::vector<qra_event_e>;
using Names = std::vector<std::string>;

/// Bytes in which a block at the wrong place shows.
std::string content_of(size_t size) {
    std::string content(size, '\0');
    for (size_t i = 0; i < size; ++i) {
        content[i] = static_cast<char>((i * 31 + i / kBlock) % 251);
    }
    return content;
}

class CopyJob : public ShareTest {
protected:
    /// Selects a recording with its info file and a stream of companions.
    std::string select_recording(const std::string& stem, bool finished, bool locked = false) {
        dir_.write("source/" + stem + ".inf", std::string("[recording]\nfinished=") +
                                                  (finished ? "true" : "false") +
                                                  "\ncontent_lock=" + (locked ? "true" : "false") + "\n");
        return select(stem + ".srf", "stream of " + stem, QRA_MEDIA_TYPE_PVR);
    }
    std::string copy_of(const std::string& name) const { return dir_.read("dest/" + name); }
    /// Its files are "ptp://1;2;12/" and a number.
    static void plug_in_camera() {
        FakeMtp::Device camera;
        camera.handle = 12;
        camera.bus = 1;
        camera.number = 2;
        FakeMtp::instance().devices = {camera};
    }
};

}  // namespace

TEST_F(CopyJob, CopiesEverySizeWhole) {
    const std::vector<size_t> sizes = {0,          1,           kBlock - 1,      kBlock,
                                       kBlock + 1, 16 * kBlock, 16 * kBlock + 1, 33 * kBlock + 7};
    for (const size_t size : sizes) {
        select(std::to_string(size) + ".jpg", content_of(size));
    }
    run_copy();
    unsigned long long total = 0;
    for (const size_t size : sizes) {
        EXPECT_EQ(copy_of("PHOTO/" + std::to_string(size) + ".jpg"), content_of(size)) << size;
        total += size;
    }
    EXPECT_EQ(client_.count(QRA_EVENT_BATCH_FILE_DONE), static_cast<int>(sizes.size()));
    EXPECT_EQ(client_.milestones().back(), QRA_EVENT_BATCH_FINISHED);
    EXPECT_EQ(client_.events().back().status.llProgressedTotalSize, total);
    EXPECT_EQ(script_.added.size(), sizes.size());
}

TEST_F(CopyJob, PutsEachKindIntoItsFolderAndIntoTheDatabase) {
    const std::map<int, std::string> folders = {{QRA_MEDIA_TYPE_IMAGE, "PHOTO"},
                                                {QRA_MEDIA_TYPE_IMAGE_EXT, "PHOTO"},
                                                {QRA_MEDIA_TYPE_VIDEO, "VIDEO"},
                                                {QRA_MEDIA_TYPE_VIDEO_EXT, "VIDEO"},
                                                {QRA_MEDIA_TYPE_MUSIC, "MUSIC"}};
    Names expected;
    for (const auto& [type, folder] : folders) {
        const std::string name = std::to_string(type) + ".bin";
        select(name, name, type);
        expected.push_back(dest_ + "/" + folder + "/" + name);
    }
    run_copy();
    EXPECT_EQ(script_.added, expected);
    for (const auto& [type, folder] : folders) {
        EXPECT_EQ(copy_of(folder + "/" + std::to_string(type) + ".bin"), std::to_string(type) + ".bin");
    }
}

TEST_F(CopyJob, TellsWhichFileItIsAt) {
    select("a.jpg", "12345");
    run_copy();
    const qra_share_status_info_s status = client_.events().front().status;
    EXPECT_STREQ(status.szFileName, "a.jpg");
    EXPECT_EQ(status.nTotalCount, 1);
    EXPECT_EQ(status.llCurFileSize, 5u);
    EXPECT_EQ(status.llProgressedFileSize, 5u);
    EXPECT_EQ(status.llProgressedTotalSize, 5u);
}

TEST_F(CopyJob, ADatabaseThatRefusesTheCopyDoesNotFailIt) {
    select("a.jpg", "x");
    script_.add_works = false;
    run_copy();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_TRUE(log_.contains("Insert [" + dest_ + "/PHOTO/a.jpg] to db failed."));
}

TEST_F(CopyJob, NumbersCompanionsWithTheirVideo) {
    select("movie.avi", "movie", QRA_MEDIA_TYPE_VIDEO);
    dir_.write("source/movie.srt", "subtitles");
    dir_.write("source/movie.smi", content_of(2 * kBlock + 1));
    fs::create_directories(dest_ + "/VIDEO");
    dir_.write("dest/VIDEO/movie.avi", "another movie");
    run_copy();
    EXPECT_EQ(copied("VIDEO"), (Names{"movie.avi", "movie_001.avi", "movie_001.smi", "movie_001.srt"}));
    EXPECT_EQ(copy_of("VIDEO/movie.avi"), "another movie");
    EXPECT_EQ(copy_of("VIDEO/movie_001.avi"), "movie");
    EXPECT_EQ(copy_of("VIDEO/movie_001.srt"), "subtitles");
    EXPECT_EQ(copy_of("VIDEO/movie_001.smi"), content_of(2 * kBlock + 1));
    EXPECT_TRUE(log_.contains("File[" + dir_.path("source/movie.ttxt") + "] not exist."));
    EXPECT_EQ(client_.events().back().status.llProgressedTotalSize, 5u);
}

TEST_F(CopyJob, ACompanionThatCannotBeCopiedDoesNotFailItsVideo) {
    select("movie.avi", "movie", QRA_MEDIA_TYPE_VIDEO);
    dir_.write("source/movie.smi", "one");
    dir_.write("source/movie.srt", "two");
    fs::create_directories(dest_ + "/VIDEO/movie.smi");
    run_copy();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_EQ(copied("VIDEO"), (Names{"movie.avi", "movie.smi"}));  // the folder that was there
    EXPECT_EQ(script_.added, Names{dest_ + "/VIDEO/movie.avi"});
}

TEST_F(CopyJob, ACompanionReplacesAFileWithoutAVideoWhole) {
    select("movie.avi", "movie", QRA_MEDIA_TYPE_VIDEO);
    dir_.write("source/movie.srt", "short");
    fs::create_directories(dest_ + "/VIDEO");
    dir_.write("dest/VIDEO/movie.srt", "something longer");
    run_copy();
    EXPECT_EQ(copy_of("VIDEO/movie.srt"), "short");
}

TEST_F(CopyJob, ACompanionThatIsItsOwnCopyStaysWhole) {
    select("film", "film", QRA_MEDIA_TYPE_VIDEO);
    fs::create_directories(dest_ + "/VIDEO");
    script_.items.back().texts["FILE_PATH"] = dir_.write("dest/VIDEO/film", "film");
    dir_.write("dest/VIDEO/film.srt", "subtitles");
    run_copy();
    EXPECT_EQ(copied("VIDEO"), (Names{"film", "film.jpg", "film.srt"}));
    EXPECT_EQ(copy_of("VIDEO/film.srt"), "subtitles");
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
}

TEST_F(CopyJob, ACompanionIsNotWrittenThroughALink) {
    select("movie.avi", "movie", QRA_MEDIA_TYPE_VIDEO);
    dir_.write("source/movie.srt", "subtitles");
    dir_.write("elsewhere", "other data");
    fs::create_directories(dest_ + "/VIDEO");
    for (const char* target : {"elsewhere", "missing"}) {
        fs::remove(dest_ + "/VIDEO/movie.avi");
        fs::remove(dest_ + "/VIDEO/movie.srt");
        fs::create_symlink(dir_.path(target), dest_ + "/VIDEO/movie.srt");
        BatchClient client;
        CQRASendHandle* job = nullptr;
        ASSERT_EQ(qra_batch_process_v2(QRA_PROCESSOR_TYPE_COPY, &param_, list_, client.param(), &job),
                  QRA_ERROR_NONE);
        EXPECT_TRUE(client.wait_for_end());
        EXPECT_EQ(qra_stop_batch_process_v2(job), QRA_ERROR_NONE);
        EXPECT_EQ(client.count(QRA_EVENT_BATCH_FILE_DONE), 1);
    }
    EXPECT_EQ(copy_of("VIDEO/movie.avi"), "movie");
    EXPECT_EQ(dir_.read("elsewhere"), "other data");
    EXPECT_FALSE(fs::exists(dir_.path("missing")));
}

TEST_F(CopyJob, DoesNotWaitForACompanionThatIsAPipe) {
    select("movie.avi", "movie", QRA_MEDIA_TYPE_VIDEO);
    dir_.write("source/movie.srt", "subtitles");
    fs::create_directories(dest_ + "/VIDEO");
    ASSERT_EQ(mkfifo((dest_ + "/VIDEO/movie.srt").c_str(), 0600), 0);
    run_copy();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
}

TEST_F(CopyJob, APictureHasNoCompanions) {
    select("a.jpg", "x");
    dir_.write("source/a.srt", "no subtitles of a picture");
    run_copy();
    EXPECT_EQ(copied(), Names{"a.jpg"});
}

TEST_F(CopyJob, CopiesARecordingWithItsCompanions) {
    select_recording("news", true, true);
    for (const char* extension : {".ss", ".mdb", ".mta", ".cip", ".srt"}) {
        dir_.write(std::string("source/news") + extension, extension);
    }
    run_copy();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_EQ(copied("CONTENTS"),
              (Names{"news.cip", "news.inf", "news.mdb", "news.mta", "news.srf", "news.ss"}));
    EXPECT_EQ(copy_of("CONTENTS/news.inf"), dir_.read("source/news.inf"));
    EXPECT_EQ(script_.added, Names{dest_ + "/CONTENTS/news.srf"});
}

TEST_F(CopyJob, StopsAtARecordingInProgress) {
    select("a.jpg", "x");
    const std::string path = select_recording("news", false);
    select("b.jpg", "y");
    run_copy();
    EXPECT_EQ(client_.milestones(), (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FAILED}));
    EXPECT_EQ(client_.events().back().status.nFinishedCount, 1);
    EXPECT_TRUE(log_.contains("File [" + path + "] is recording, can not be copy !"));
    EXPECT_EQ(copied(), Names{"a.jpg"});
    EXPECT_TRUE(copied("CONTENTS").empty());
}

TEST_F(CopyJob, StopsAtARecordingThatTheServiceDoesNotKnow) {
    select("news.srf", "stream", QRA_MEDIA_TYPE_PVR);
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("Get pvr file info failed."));
}

TEST_F(CopyJob, ANameNeverLeavesTheDestination) {
    for (const char* name : {"../../evil.jpg", "/etc/evil.jpg", "a\\..\\evil.jpg"}) {
        select("a.jpg", "x");
        script_.items.back().texts["DISPLAY_NAME"] = name;
    }
    run_copy();
    EXPECT_EQ(copied(), (Names{"evil.jpg", "evil_001.jpg", "evil_002.jpg"}));
    EXPECT_FALSE(fs::exists(dir_.path("evil.jpg")));
}

TEST_F(CopyJob, ANameWithNothingLeftFailsItsFile) {
    for (const char* name : {"", ".", "..", "a/", "a/..", "..\\.."}) {
        script_.items.clear();
        select("a.jpg", "x");
        script_.items.back().texts["DISPLAY_NAME"] = name;
        CQRASendHandle* job = nullptr;
        BatchClient client;
        ASSERT_EQ(qra_batch_process_v2(QRA_PROCESSOR_TYPE_COPY, &param_, list_, client.param(), &job),
                  QRA_ERROR_NONE);
        EXPECT_TRUE(client.wait_for_end());
        EXPECT_EQ(qra_stop_batch_process_v2(job), QRA_ERROR_NONE);
        EXPECT_EQ(client.milestones(), Events{QRA_EVENT_BATCH_FAILED}) << name;
    }
    EXPECT_TRUE(fs::is_empty(dest_));
}

TEST_F(CopyJob, CopiesANameOfTwoHundredAndFiftyFiveBytes) {
    const std::string name = std::string(251, 'n') + ".jpg";
    select(name, "x");
    run_copy();
    EXPECT_EQ(copied(), Names{name});
}

TEST_F(CopyJob, FailsWhereANumberMakesTheNameTooLong) {
    const std::string name = std::string(251, 'n') + ".jpg";
    select(name, "x");
    fs::create_directories(dest_ + "/PHOTO");
    dir_.write("dest/PHOTO/" + name, "earlier");
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_EQ(copied(), Names{name});
    EXPECT_EQ(copy_of("PHOTO/" + name), "earlier");
}

TEST_F(CopyJob, FailsAtTheHundredthCollision) {
    fs::create_directories(dest_ + "/PHOTO");
    for (int i = 0; i < 101; ++i) {
        select("a.jpg", "x");
    }
    run_copy();
    EXPECT_EQ(client_.count(QRA_EVENT_BATCH_FILE_DONE), 100);
    EXPECT_EQ(client_.milestones().back(), QRA_EVENT_BATCH_FAILED);
    EXPECT_EQ(client_.events().back().status.nFinishedCount, 100);
    EXPECT_EQ(copied().size(), 100u);
    EXPECT_EQ(copied().back(), "a_099.jpg");
}

TEST_F(CopyJob, FailsAfterTenFoldersThatCannotBeMade) {
    dir_.write("dest/PHOTO", "");
    for (int n = 1; n < 10; ++n) {
        dir_.write("dest/PHOTO00" + std::to_string(n), "");
    }
    select("a.jpg", "x");
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("--------QRAShareCommon::MakeOutputFileName: ERROR--------"));
}

TEST_F(CopyJob, FailsOnASourceThatIsGone) {
    fs::remove(select("a.jpg", "x"));
    select("b.jpg", "y");
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("Open source file[" + dir_.path("source/a.jpg") + "] failed. "));
    EXPECT_TRUE(fs::is_empty(dest_));
}

TEST_F(CopyJob, FailsOnASourceThatIsNoFile) {
    select("a.jpg", "x");
    script_.items.back().texts["FILE_PATH"] = dir_.path("source");
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
}

TEST_F(CopyJob, FailsOnAnEmptyPath) {
    select("a.jpg", "x");
    script_.items.back().texts["FILE_PATH"] = "";
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("source filepath is empty.\n"));
}

TEST_F(CopyJob, FailsWithoutASize) {
    select("a.jpg", "x");
    script_.items.back().numbers.erase("SIZE");
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
}

TEST_F(CopyJob, AcceptsAMissingDestinationAndFailsWithinIt) {
    select("folder", "x", QRA_MEDIA_TYPE_FOLDER);  // a kind without a folder of its own
    param_.dest_dev_path = nullptr;
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("DestDevPath is NULL"));
}

TEST_F(CopyJob, RefusesADestinationThatIsNoDirectory) {
    std::string file = dir_.write("file", "");
    param_.dest_dev_path = file.data();
    EXPECT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_INVALID_PARAM);
}

TEST_F(CopyJob, FailsToOpenAFileOfACamera) {
    select("a.jpg", "x");
    script_.items.back().texts["FILE_PATH"] = "ptp://1;2;3";
    param_.source_dev_type = QRA_DEV_TYPE_PTP;
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("Open ptp file[ptp://1;2;3] failed. "));
    EXPECT_TRUE(fs::is_empty(dest_));
}

TEST_F(CopyJob, OpensAFileOfACameraAndFailsAtItsFirstRead) {
    plug_in_camera();
    select("a.mp4", "x", QRA_MEDIA_TYPE_VIDEO);
    script_.items.back().texts["FILE_PATH"] = "ptp://1;2;12/5";
    select("b.jpg", "y");
    param_.source_dev_type = QRA_DEV_TYPE_PTP;
    run_copy();
    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("Not Open or m_szBuffer is NULL"));
    EXPECT_TRUE(log_.contains("Read data form ptp file faild."));
    EXPECT_TRUE(log_.contains("Do copy job failed, eResType[4]."));
    EXPECT_FALSE(log_.contains("Open ptp file["));
    for (const fs::directory_entry& left : fs::recursive_directory_iterator(dest_)) {
        EXPECT_TRUE(left.is_directory()) << left.path();
    }
    EXPECT_EQ(FakeMtp::instance().bytes(), 0U);
}

TEST_F(CopyJob, LooksForCompanionsOfAVideoOfACameraAndOfNothingElseThere) {
    plug_in_camera();
    select("empty.mp4", "", QRA_MEDIA_TYPE_VIDEO);
    script_.items.back().texts["FILE_PATH"] = "ptp://1;2;12/5";
    select("empty.jpg", "");
    script_.items.back().texts["FILE_PATH"] = "ptp://1;2;12/6";
    param_.source_dev_type = QRA_DEV_TYPE_PTP;
    run_copy();
    EXPECT_EQ(client_.count(QRA_EVENT_BATCH_FILE_DONE), 2);
    for (const char* extension : {"smi", "srt", "ttxt"}) {
        EXPECT_EQ(log_.count(std::string("File[ptp://1;2;12/5.") + extension + "] not exist."), 1);
    }
    EXPECT_FALSE(log_.contains("File[ptp://1;2;12/6"));
    EXPECT_EQ(copied("VIDEO"), Names{"empty.mp4"});
    EXPECT_EQ(copied("PHOTO"), Names{"empty.jpg"});
}

TEST_F(CopyJob, ASourceThatHasGrownIsCopiedToTheEndOfItsBlock) {
    select("a.jpg", content_of(3 * kBlock));
    script_.items.back().numbers["SIZE"] = static_cast<long long>(kBlock) + 1;
    select("b.jpg", "12345");
    script_.items.back().numbers["SIZE"] = 2;
    run_copy();
    EXPECT_EQ(client_.milestones(),
              (Events{QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FILE_DONE, QRA_EVENT_BATCH_FINISHED}));
    EXPECT_EQ(copy_of("PHOTO/a.jpg"), content_of(2 * kBlock));
    EXPECT_EQ(copy_of("PHOTO/b.jpg"), "12345");
    EXPECT_EQ(client_.events().back().status.llProgressedTotalSize, 2 * kBlock + 5);
}

TEST_F(CopyJob, ASourceThatHasShrunkIsWaitedForUntilTheStop) {
    select("a.jpg", content_of(kBlock));
    script_.items.back().numbers["SIZE"] = static_cast<long long>(kBlock) + 1;
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for(QRA_EVENT_BATCH_PROGRESS));

    stop();

    EXPECT_EQ(client_.milestones(), Events{QRA_EVENT_BATCH_FAILED});
    EXPECT_TRUE(log_.contains("Do copy job failed, eResType[3]."));
    EXPECT_TRUE(copied().empty());
}

TEST_F(CopyJob, AStopThatKeepsTheFileKeepsWhatWasCopied) {
    select("a.jpg", content_of(kBlock));
    script_.items.back().numbers["SIZE"] = static_cast<long long>(kBlock) + 1;
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for(QRA_EVENT_BATCH_PROGRESS));

    stop(QRA_STOP_TYPE_KEEP);

    EXPECT_EQ(copy_of("PHOTO/a.jpg"), content_of(kBlock));
    EXPECT_TRUE(script_.added.empty());
    const qra_share_status_info_s status = client_.events().back().status;
    EXPECT_EQ(status.llProgressedFileSize, 0u);
    EXPECT_EQ(status.llProgressedTotalSize, 0u);
}

TEST_F(CopyJob, AShrunkSourceThatGrowsAgainIsCopiedToItsEnd) {
    const std::string path = select("a.jpg", content_of(kBlock));
    script_.items.back().numbers["SIZE"] = static_cast<long long>(kBlock) + 3;
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for(QRA_EVENT_BATCH_PROGRESS));

    std::ofstream(path, std::ios::binary | std::ios::app) << "end";

    EXPECT_TRUE(client_.wait_for_end());
    EXPECT_EQ(copy_of("PHOTO/a.jpg"), content_of(kBlock) + "end");
}

TEST_F(CopyJob, AStoppedRecordingIsRemovedByTheService) {
    select_recording("news", true);
    script_.items.back().numbers["SIZE"] = 1000;
    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for(QRA_EVENT_BATCH_PROGRESS));
    stop();
    EXPECT_TRUE(copied("CONTENTS").empty());
}

TEST_F(CopyJob, TwoJobsAtOnceNeverTakeTheSameName) {
    // The second job has a list of its own.
    ShareScript other_script;
    CQRAAgentHandle other;
    other.SetAgentInstance(new ScriptedAgent(other_script));
    CQRAHandlerMgr::GetInstance()->Add(other.GetValue());
    BatchClient other_client;
    constexpr int kFiles = 40;
    for (int i = 0; i < kFiles; ++i) {
        select("a.jpg", "same name", QRA_MEDIA_TYPE_IMAGE);
    }
    other_script.items = script_.items;
    CQRASendHandle* other_job = nullptr;

    ASSERT_EQ(start(QRA_PROCESSOR_TYPE_COPY), QRA_ERROR_NONE);
    ASSERT_EQ(
        qra_batch_process_v2(QRA_PROCESSOR_TYPE_COPY, &param_, &other, other_client.param(), &other_job),
        QRA_ERROR_NONE);
    EXPECT_TRUE(client_.wait_for_end());
    EXPECT_TRUE(other_client.wait_for_end());
    EXPECT_EQ(qra_stop_batch_process_v2(other_job), QRA_ERROR_NONE);
    CQRAHandlerMgr::GetInstance()->Delete(other.GetValue());

    EXPECT_EQ(client_.milestones().back(), QRA_EVENT_BATCH_FINISHED);
    EXPECT_EQ(other_client.milestones().back(), QRA_EVENT_BATCH_FINISHED);
    EXPECT_EQ(copied().size(), 2u * kFiles);
    for (const std::string& name : copied()) {
        EXPECT_EQ(copy_of("PHOTO/" + name), "same name") << name;
    }
}
