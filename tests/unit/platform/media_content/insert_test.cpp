#include <sqlite3.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "platform/media-content/host/database/new_rows.h"
#include "tests/unit/platform/media_content/contract.h"
#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {
namespace {

class Insert : public TemporaryDatabase {
protected:
    void copy_fixture(const std::string& fixture, const std::string& name) {
        const std::filesystem::path target = root() + "/stick/" + name;
        std::filesystem::create_directories(target.parent_path());
        std::filesystem::copy_file(std::string(QRA_FIXTURES) + "/" + fixture, target);
    }

    /// The result, and the row where there is one.
    int insert(const std::string& path, MediaHandle& media) {
        media_info_h handle = nullptr;
        const int result = media_info_insert_to_db(path.c_str(), &handle);
        media.reset(handle);
        return result;
    }
    int insert(const std::string& path) {
        MediaHandle media;
        return insert(path, media);
    }
};

TEST_F(Insert, OfAPictureReadsIt) {
    copy_fixture("pictures/photo.jpg", "PHOTO/photo.jpg");
    MediaHandle media;
    ASSERT_EQ(insert(drive().link_path() + "/PHOTO/photo.jpg", media), 0);
    image_meta_h image = nullptr;
    ASSERT_EQ(media_info_get_image(media.get(), &image), 0);
    EXPECT_GT(int_of(image_meta_get_width, image), 0);
    image_meta_destroy(image);
    EXPECT_EQ(text_of(media_info_get_file_path, media.get()), drive().link_path() + "/PHOTO/photo.jpg");
    EXPECT_EQ(number("SELECT count(*) FROM media"), 1);
    EXPECT_EQ(folder_names(TestFilter(drive().id, "FOLDER_NAME = 'PHOTO'")), Names{"PHOTO"});
}

TEST_F(Insert, OfAPathInTheAttachedDirectoryItself) {
    copy_fixture("music/song.mp3", "song.mp3");
    MediaHandle media;
    ASSERT_EQ(insert(root() + "/stick/song.mp3", media), 0);
    EXPECT_EQ(text_of(media_info_get_file_path, media.get()), drive().link_path() + "/song.mp3");
}

TEST_F(Insert, TwiceKeepsTheId) {
    copy_fixture("music/song.mp3", "song.mp3");
    MediaHandle first;
    MediaHandle second;
    ASSERT_EQ(insert(drive().link_path() + "/song.mp3", first), 0);
    ASSERT_EQ(insert(drive().link_path() + "/song.mp3", second), 0);
    EXPECT_EQ(text_of(media_info_get_media_id, first.get()), text_of(media_info_get_media_id, second.get()));
}

TEST_F(Insert, GivesTheRowThatTheDatabaseHas) {
    copy_fixture("pictures/photo.jpg", "deep/folder/photo.jpg");
    copy_fixture("music/song.mp3", "song.mp3");
    for (const char* name : {"/deep/folder/photo.jpg", "/song.mp3"}) {
        MediaHandle media;
        ASSERT_EQ(insert(drive().link_path() + name, media), 0);
        media_info_h handle = nullptr;
        ASSERT_EQ(
            media_info_get_media_from_db(text_of(media_info_get_media_id, media.get()).c_str(), &handle), 0);
        const MediaHandle read(handle);
        for (const auto text : {media_info_get_file_path, media_info_get_display_name, media_info_get_title,
                                media_info_get_mime_type}) {
            EXPECT_EQ(text_of(text, media.get()), text_of(text, read.get())) << name;
        }
        EXPECT_EQ(int_of(media_info_get_media_type, media.get()),
                  int_of(media_info_get_media_type, read.get()));
    }
}

TEST_F(Insert, GivesARowThatCanBeChanged) {
    copy_fixture("music/song.mp3", "song.mp3");
    MediaHandle media;
    ASSERT_EQ(insert(drive().link_path() + "/song.mp3", media), 0);
    ASSERT_EQ(media_info_set_played_count(media.get(), 3), 0);
    ASSERT_EQ(media_info_update_to_db(media.get()), 0);
    EXPECT_EQ(int_of(media_info_get_played_count, media.get()), 3);
    EXPECT_EQ(number("SELECT played_count FROM media"), 3);
}

TEST_F(Insert, LeavesAFolderThatIsKnownAsItIs) {
    copy_fixture("music/song.mp3", "MUSIC/song.mp3");
    {
        MediaWriter writer(database());
        const int64_t folder = writer.ensure_folder(drive().key, "/MUSIC", 1234);
        writer.set_folder_status(folder, MEDIA_SCAN_STATUS_FOLDER_SCANNED);
        writer.commit();
    }
    ASSERT_EQ(insert(drive().link_path() + "/MUSIC/song.mp3"), 0);
    EXPECT_EQ(number("SELECT modified_ns FROM folder WHERE path = '/MUSIC'"), 1234);
    EXPECT_EQ(number("SELECT scan_status FROM folder WHERE path = '/MUSIC'"),
              MEDIA_SCAN_STATUS_FOLDER_SCANNED);
}

TEST_F(Insert, SeesWhatAnotherProcessDidToTheDrives) {
    copy_fixture("music/song.mp3", "song.mp3");
    const std::string path = drive().link_path() + "/song.mp3";
    ASSERT_EQ(insert(path), 0);
    SqliteConnection other(database().path(), SqliteConnection::Access::kWrite);
    other.execute("UPDATE storage SET attached = 0");
    EXPECT_EQ(insert(path), MEDIA_CONTENT_ERROR_NOT_FOUND);
    other.execute("UPDATE storage SET attached = 1");
    EXPECT_EQ(insert(path), 0);
}

TEST_F(Insert, IsThereAtOnceForWhoReadsInThisProcess) {
    for (int i = 1; i <= 3; ++i) {
        copy_fixture("music/song.mp3", std::to_string(i) + ".mp3");
        ASSERT_EQ(insert(drive().link_path() + "/" + std::to_string(i) + ".mp3"), 0);
        EXPECT_EQ(number("SELECT count(*) FROM media"), i);
    }
}

TEST_F(Insert, IsThereForOthersOnceItsIdIsKnown) {
    SqliteConnection other(database().path(), SqliteConnection::Access::kRead);
    for (int i = 1; i <= 3; ++i) {
        copy_fixture("music/song.mp3", std::to_string(i) + ".mp3");
        MediaHandle media;
        ASSERT_EQ(insert(drive().link_path() + "/" + std::to_string(i) + ".mp3", media), 0);
        const std::string id = text_of(media_info_get_media_id, media.get());
        Query rows(other, "SELECT count(*) FROM media WHERE id = ?");
        rows.bind(id);
        ASSERT_TRUE(rows.step());
        EXPECT_EQ(rows.integer(0), 1) << id;
    }
}

TEST_F(Insert, OfManyFilesTakesFewTransactions) {
    constexpr int kFiles = 50;
    int commits = 0;
    {
        Database::WriteLease lease(database());
        sqlite3_commit_hook(
            lease.connection().handle(),
            [](void* count) {
                ++*static_cast<int*>(count);
                return 0;
            },
            &commits);
        for (int i = 0; i < kFiles; ++i) {
            write_file("stick/" + std::to_string(i) + ".mp3");
            ASSERT_EQ(insert(drive().link_path() + "/" + std::to_string(i) + ".mp3"), 0);
        }
    }
    EXPECT_EQ(number("SELECT count(*) FROM media"), kFiles);
    Database::WriteLease lease(database());
    sqlite3_commit_hook(lease.connection().handle(), nullptr, nullptr);
    // One for what came until the thread found the database taken, one for the others.
    EXPECT_LE(commits, 2);
}

TEST_F(Insert, ThatCannotBeWrittenTakesNoOtherWithIt) {
    MediaHandle rows[3];
    {
        Database::WriteLease lease(database());
        lease.connection().execute(
            "CREATE TRIGGER refuse BEFORE INSERT ON media WHEN NEW.name = '1.mp3' "
            "BEGIN SELECT RAISE(ABORT, 'refused'); END");
        lease.commit();
        for (int i = 0; i < 3; ++i) {
            write_file("stick/" + std::to_string(i) + ".mp3");
            ASSERT_EQ(insert(drive().link_path() + "/" + std::to_string(i) + ".mp3", rows[i]), 0);
        }
    }
    char* id = nullptr;
    EXPECT_EQ(media_info_get_media_id(rows[1].get(), &id), MEDIA_CONTENT_ERROR_DATABASE);
    EXPECT_EQ(media_info_update_to_db(rows[1].get()), 0) << "nothing was set";
    int count = 0;
    EXPECT_EQ(media_info_get_played_count(rows[1].get(), &count), MEDIA_CONTENT_ERROR_DATABASE);
    EXPECT_EQ(text_of(media_info_get_display_name, rows[1].get()), "1.mp3");
    EXPECT_EQ(number("SELECT count(*) FROM media WHERE name IN ('0.mp3', '2.mp3')"), 2);
    EXPECT_EQ(number("SELECT count(*) FROM media"), 2);
}

TEST_F(Insert, IsWrittenBeforeTheDatabaseIsClosed) {
    copy_fixture("music/song.mp3", "song.mp3");
    const std::string path = database().path();
    ASSERT_EQ(insert(drive().link_path() + "/song.mp3"), 0);
    close_database();
    SqliteConnection connection(path, SqliteConnection::Access::kRead);
    Query rows(connection, "SELECT count(*) FROM media");
    ASSERT_TRUE(rows.step());
    EXPECT_EQ(rows.integer(0), 1);
}

TEST_F(Insert, IsNotWaitedForWithoutEndWhileAnotherProcessWrites) {
    copy_fixture("music/song.mp3", "song.mp3");
    SqliteConnection other(database().path(), SqliteConnection::Access::kWrite);
    other.execute("BEGIN IMMEDIATE");
    MediaHandle media;
    ASSERT_EQ(insert(drive().link_path() + "/song.mp3", media), 0);
    EXPECT_FALSE(database().new_rows().settle(std::chrono::milliseconds(50)));
    other.execute("COMMIT");
    EXPECT_NE(text_of(media_info_get_media_id, media.get()), "");
    EXPECT_TRUE(database().new_rows().settle(std::chrono::milliseconds(50)));
}

TEST_F(Insert, OnManyThreadsIsCompleteForEach) {
    constexpr int kThreads = 4;
    constexpr int kFiles = 25;
    for (int i = 0; i < kThreads * kFiles; ++i) {
        write_file("stick/" + std::to_string(i) + ".mp3");
    }
    std::vector<std::thread> threads;
    for (int first = 0; first < kThreads; ++first) {
        threads.emplace_back([this, first] {
            for (int i = 0; i < kFiles; ++i) {
                const std::string name = std::to_string(first * kFiles + i) + ".mp3";
                EXPECT_EQ(insert(drive().link_path() + "/" + name), 0);
                EXPECT_EQ(number("SELECT count(*) FROM media WHERE name = '" + name + "'"), 1);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(number("SELECT count(*) FROM media"), kThreads * kFiles);
}

TEST_F(Insert, OfAPathWithDotsAndDoubledSlashes) {
    copy_fixture("music/song.mp3", "a/song.mp3");
    for (const char* name : {"//a/song.mp3", "/a/./song.mp3", "/b/../a/song.mp3", "/a//song.mp3"}) {
        EXPECT_EQ(insert(drive().link_path() + name), 0) << name;
    }
    EXPECT_EQ(insert("a/song.mp3"), MEDIA_CONTENT_ERROR_NOT_FOUND);
    EXPECT_EQ(number("SELECT count(*) FROM media"), 1);
}

TEST_F(Insert, OfABrokenFileListsItWithWhatIsKnown) {
    copy_fixture("broken/text.jpg", "text.jpg");
    MediaHandle media;
    ASSERT_EQ(insert(drive().link_path() + "/text.jpg", media), 0);
    EXPECT_EQ(int_of(media_info_get_media_type, media.get()), MEDIA_CONTENT_TYPE_IMAGE);
    EXPECT_EQ(text_of(media_info_get_mime_type, media.get()), "image/jpeg");
}

TEST_F(Insert, OfAFileOfNoMediaTypeIsRefused) {
    write_file("stick/notes.txt");
    write_file("stick/.hidden.jpg");
    write_file("stick/.dir/a.jpg");
    for (const char* name : {"/notes.txt", "/.hidden.jpg", "/.dir/a.jpg"}) {
        EXPECT_EQ(insert(drive().link_path() + name), MEDIA_CONTENT_ERROR_NOT_SUPPORTED) << name;
    }
    EXPECT_EQ(number("SELECT count(*) FROM media"), 0);
}

TEST_F(Insert, OfWhatIsNoFileOnADriveIsRefused) {
    write_file("outside.jpg");
    directory("stick/dir.jpg");
    std::filesystem::create_symlink(root() + "/outside.jpg", root() + "/stick/link.jpg");
    for (const std::string& path :
         {root() + "/outside.jpg", drive().link_path() + "/nothing.jpg", drive().link_path() + "/dir.jpg",
          drive().link_path() + "/link.jpg", drive().link_path(), drive().link_path() + "/no/dir.jpg",
          std::string(), "/" + std::string(4000, 'x')}) {
        EXPECT_EQ(insert(path), MEDIA_CONTENT_ERROR_NOT_FOUND) << path;
    }
    EXPECT_EQ(number("SELECT count(*) FROM media"), 0);
}

TEST_F(Insert, NullArgumentsAreRefused) {
    media_info_h media = nullptr;
    EXPECT_EQ(media_info_insert_to_db(nullptr, &media), MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
    EXPECT_EQ(media_info_insert_to_db("/x", nullptr), MEDIA_CONTENT_ERROR_INVALID_PARAMETER);
}

}  // namespace
}  // namespace media_content
