// Batch jobs through the exported functions, on a real media database and real files.

#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "media_content.h"
#include "media_content_admin.h"
#include "tests/fakes/temp_dir.h"
#include "tests/integration/batch_list.h"

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

std::string content_of(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string take(char* text) {
    const std::string copy = text != nullptr ? text : "";
    std::free(text);
    return copy;
}

/// A media database of its own with one drive, which the test fills. After each test no descriptor points
/// below the drive.
class BatchJobs : public ::testing::Test {
protected:
    BatchJobs() {
        std::string pattern = (fs::temp_directory_path() / "qra-batch-XXXXXX").string();
        root_ = fs::canonical(mkdtemp(pattern.data()));
        setenv("QRA_DATA_DIR", (root_ / "data").c_str(), 1);
        setenv("QRA_MEDIA_ROOT", (root_ / "media").c_str(), 1);
        fs::create_directories(target("folder"));
        fs::create_directories(target("backup"));
    }
    ~BatchJobs() override {
        EXPECT_EQ(descriptors_below((root_ / "stick").string()), 0);
        media_content_disconnect();
        fs::remove_all(root_);
    }

    fs::path target(const std::string& relative) const { return root_ / "stick" / relative; }
    std::string path(const std::string& relative) const { return drive_ + "/" + relative; }
    void write(const std::string& relative, const std::string& content) const {
        std::ofstream(target(relative), std::ios::binary) << content;
    }
    void add(const std::string& fixture, const std::string& relative) const {
        fs::copy(fs::path(QRA_TEST_FIXTURES) / fixture, target(relative));
    }
    /// Attaches and scans the drive as it is now.
    void scan() {
        char* attached = nullptr;
        ASSERT_EQ(media_content_connect(), 0);
        ASSERT_EQ(media_content_admin_attach((root_ / "stick").c_str(), nullptr, &attached), 0);
        drive_ = take(attached);
        ASSERT_EQ(media_content_admin_scan(drive_.c_str(), true, nullptr, nullptr), 0);
    }
    /// Paths of the rows below a folder, without the folder, sorted.
    Names rows_below(const std::string& relative) const {
        Names paths;
        media_info_foreach_media_from_db(
            nullptr,
            [](media_info_h row, void* found) {
                char* row_path = nullptr;
                EXPECT_EQ(media_info_get_file_path(row, &row_path), 0);
                static_cast<Names*>(found)->push_back(take(row_path));
                return true;
            },
            &paths);
        const std::string above = path(relative) + "/";
        Names below;
        for (const std::string& one : paths) {
            if (one.rfind(above, 0) == 0) {
                below.push_back(one.substr(above.size()));
            }
        }
        std::sort(below.begin(), below.end());
        return below;
    }

private:
    fs::path root_;
    std::string drive_;
};

}  // namespace

TEST_F(BatchJobs, CopiesPicturesVideosMusicAndRecordingsIntoTheDatabase) {
    add("pictures/photo.jpg", "folder/photo.jpg");
    add("video/clip.mp4", "folder/clip.mp4");
    add("music/song.mp3", "folder/song.mp3");
    add("recordings/news.srf", "folder/news.srf");
    write("folder/news.inf", "[recording]\nprogram_title=The News\nfinished=true\n");
    write("folder/clip.srt", "subtitles");
    scan();
    BatchList list(path("folder"));
    ASSERT_TRUE(list.ok());
    for (const char* name : {"photo.jpg", "clip.mp4", "song.mp3", "news.srf"}) {
        EXPECT_TRUE(list.select(name)) << name;
    }
    list.navigate(QRA_NAVIGATION_TYPE_SELECTED);
    unsigned long long bytes = 0;
    const int event = list.run(
        QRA_PROCESSOR_TYPE_COPY, path("backup"),
        [&](qra_event_e, const qra_share_status_info_s& status) { bytes = status.llProgressedTotalSize; });
    EXPECT_EQ(event, QRA_EVENT_BATCH_FINISHED);
    unsigned long long expected = 0;
    for (const auto& [from, to] :
         std::vector<std::pair<std::string, std::string>>{{"photo.jpg", "PHOTO/photo.jpg"},
                                                          {"clip.mp4", "VIDEO/clip.mp4"},
                                                          {"song.mp3", "MUSIC/song.mp3"},
                                                          {"news.srf", "CONTENTS/news.srf"}}) {
        EXPECT_EQ(content_of(target("backup/" + to)), content_of(target("folder/" + from))) << from;
        expected += fs::file_size(target("folder/" + from));
    }
    EXPECT_EQ(bytes, expected);
    EXPECT_EQ(content_of(target("backup/VIDEO/clip.srt")), "subtitles");
    EXPECT_TRUE(fs::exists(target("backup/CONTENTS/news.inf")));
    EXPECT_EQ(rows_below("backup"),
              (Names{"CONTENTS/news.srf", "MUSIC/song.mp3", "PHOTO/photo.jpg", "VIDEO/clip.mp4"}));
}

TEST_F(BatchJobs, DeletesTheSelectionAndItsRows) {
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg"}) {
        add("pictures/photo.jpg", std::string("folder/") + name);
    }
    scan();
    BatchList list(path("folder"));
    ASSERT_TRUE(list.ok());
    EXPECT_TRUE(list.select("c.jpg"));
    EXPECT_TRUE(list.select("a.jpg"));
    list.navigate(QRA_NAVIGATION_TYPE_SELECTED);
    EXPECT_EQ(list.run(QRA_PROCESSOR_TYPE_DELETE, path("backup")), QRA_EVENT_BATCH_FINISHED);
    EXPECT_FALSE(fs::exists(target("folder/a.jpg")));
    EXPECT_TRUE(fs::exists(target("folder/b.jpg")));
    EXPECT_FALSE(fs::exists(target("folder/c.jpg")));
    EXPECT_EQ(rows_below("folder"), Names{"b.jpg"});
}

TEST_F(BatchJobs, WorksOnTheFirstTilesOfThePageWhileTheCursorWalksThePage) {
    for (const char* name : {"a.jpg", "b.jpg", "c.jpg", "d.jpg"}) {
        add("pictures/photo.jpg", std::string("folder/") + name);
    }
    scan();
    BatchList list(path("folder"));
    ASSERT_TRUE(list.ok());
    ASSERT_EQ(list.names(), (Names{"a.jpg", "b.jpg", "c.jpg", "d.jpg"}));
    EXPECT_TRUE(list.select("c.jpg"));
    EXPECT_TRUE(list.select("d.jpg"));
    EXPECT_EQ(list.run(QRA_PROCESSOR_TYPE_COPY, path("backup")), QRA_EVENT_BATCH_FINISHED);
    EXPECT_EQ(rows_below("backup"), (Names{"PHOTO/a.jpg", "PHOTO/b.jpg"}));
}

TEST_F(BatchJobs, FailsAtTheUpFolderTileWhileTheCursorWalksThePage) {
    add("pictures/photo.jpg", "folder/a.jpg");
    scan();
    BatchList list(path("folder"), 0x26);
    ASSERT_TRUE(list.ok());
    EXPECT_TRUE(list.select("a.jpg"));
    EXPECT_EQ(list.run(QRA_PROCESSOR_TYPE_DELETE, path("backup")), QRA_EVENT_BATCH_FAILED);
    EXPECT_EQ(rows_below("folder"), Names{"a.jpg"});
}

TEST_F(BatchJobs, AnEmptySelectionIsFinishedAtOnce) {
    add("pictures/photo.jpg", "folder/a.jpg");
    scan();
    BatchList list(path("folder"));
    ASSERT_TRUE(list.ok());
    list.navigate(QRA_NAVIGATION_TYPE_SELECTED);
    EXPECT_EQ(list.run(QRA_PROCESSOR_TYPE_DELETE, path("backup")), QRA_EVENT_BATCH_FINISHED);
    EXPECT_EQ(rows_below("folder"), Names{"a.jpg"});
}

TEST_F(BatchJobs, TwoJobsAtOnceCopyTwoSelectionsToOnePlaceWithTheirRows) {
    constexpr size_t kFiles = 8;
    fs::create_directories(target("other"));
    for (size_t i = 0; i < kFiles; ++i) {
        add("pictures/photo.jpg", "folder/" + std::to_string(i) + ".jpg");
        add("pictures/photo.jpg", "other/" + std::to_string(i) + ".jpg");
    }
    scan();
    BatchList one(path("folder"));
    BatchList other(path("other"));
    for (BatchList* list : {&one, &other}) {
        ASSERT_TRUE(list->ok());
        list->select_all();
        list->navigate(QRA_NAVIGATION_TYPE_SELECTED);
        ASSERT_TRUE(list->start(QRA_PROCESSOR_TYPE_COPY, path("backup")));
    }
    EXPECT_EQ(one.finish(), QRA_EVENT_BATCH_FINISHED);
    EXPECT_EQ(other.finish(), QRA_EVENT_BATCH_FINISHED);
    Names files;
    for (const fs::directory_entry& entry : fs::directory_iterator(target("backup/PHOTO"))) {
        EXPECT_EQ(content_of(entry.path()), content_of(target("folder/0.jpg"))) << entry.path();
        files.push_back("PHOTO/" + entry.path().filename().string());
    }
    std::sort(files.begin(), files.end());
    EXPECT_EQ(files.size(), 2 * kFiles);
    EXPECT_EQ(rows_below("backup"), files);
}

TEST_F(BatchJobs, EachRowIsThereWhenItsFileIsReported) {
    constexpr int kFiles = 5;
    for (int i = 0; i < kFiles; ++i) {
        add("pictures/photo.jpg", "folder/" + std::to_string(i) + ".jpg");
    }
    scan();
    BatchList list(path("folder"));
    ASSERT_TRUE(list.ok());
    list.select_all();
    list.navigate(QRA_NAVIGATION_TYPE_SELECTED);
    std::vector<size_t> rows;
    EXPECT_EQ(list.run(QRA_PROCESSOR_TYPE_COPY, path("backup"),
                       [&](qra_event_e event, const qra_share_status_info_s&) {
                           if (event == QRA_EVENT_BATCH_FILE_DONE) {
                               rows.push_back(rows_below("backup").size());
                           }
                       }),
              QRA_EVENT_BATCH_FINISHED);
    EXPECT_EQ(rows, (std::vector<size_t>{1, 2, 3, 4, 5}));
}

TEST_F(BatchJobs, AKilledCopyLeavesWholeFilesAndAtMostOnePartOfOneWithoutARow) {
    constexpr int kFiles = 12;
    std::string picture = content_of(fs::path(QRA_TEST_FIXTURES) / "pictures/photo.jpg");
    picture.resize(3 << 20, 'p');
    for (int i = 0; i < kFiles; ++i) {
        write("folder/" + std::to_string(i) + ".jpg", picture);
    }
    write("folder/last.jpg", picture);
    scan();
    fs::resize_file(target("folder/last.jpg"),
                    picture.size() / 2);  // so that the copy does not end by itself
    for (int done_before = 0; done_before < 3; ++done_before) {
        fs::remove_all(target("backup/PHOTO"));
        ASSERT_EQ(media_content_admin_scan(path("backup").c_str(), true, nullptr, nullptr), 0);
        ASSERT_TRUE(rows_below("backup").empty());
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        posix_spawn_file_actions_addclose(&actions, ends[0]);
        std::string program = QRA_BATCH_COPIER;
        std::string from = path("folder");
        std::string to = path("backup");
        char* argv[] = {program.data(), from.data(), to.data(), nullptr};
        pid_t pid = 0;
        ASSERT_EQ(posix_spawn(&pid, argv[0], &actions, nullptr, argv, environ), 0);
        posix_spawn_file_actions_destroy(&actions);
        close(ends[1]);
        FILE* output = fdopen(ends[0], "r");
        char line[64];
        int done = 0;
        while (done <= done_before && fgets(line, sizeof line, output) != nullptr) {
            done += std::atoi(line) == QRA_EVENT_BATCH_FILE_DONE ? 1 : 0;
        }
        kill(pid, SIGKILL);
        int status = 0;
        waitpid(pid, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status)) << status;
        fclose(output);

        Names whole;
        int parts = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(target("backup/PHOTO"))) {
            if (content_of(entry.path()) == picture) {
                whole.push_back("PHOTO/" + entry.path().filename().string());
            } else {
                EXPECT_LT(entry.file_size(), picture.size());
                ++parts;
            }
        }
        EXPECT_LE(parts, 1);
        EXPECT_GE(static_cast<int>(whole.size()), done);
        std::sort(whole.begin(), whole.end());
        const Names rows = rows_below("backup");
        EXPECT_TRUE(std::includes(whole.begin(), whole.end(), rows.begin(), rows.end()))
            << "a file that is not whole has a row";
        ASSERT_EQ(media_content_admin_scan(path("backup").c_str(), true, nullptr, nullptr), 0);
        const Names found = rows_below("backup");
        EXPECT_TRUE(std::includes(found.begin(), found.end(), whole.begin(), whole.end()))
            << "a scan does not find a whole file without a row";
    }
}
