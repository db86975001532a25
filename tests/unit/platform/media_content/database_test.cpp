#include "platform/media-content/host/database/database.h"

#include <fstream>

#include "platform/media-content/host/database/schema.h"
#include "tests/fakes/dlog_capture.h"
#include "tests/unit/platform/media_content/contract.h"
#include "tests/unit/platform/media_content/temporary_database.h"

namespace media_content {
namespace {

class DatabaseFile : public TemporaryDirectories {
protected:
    std::string file() const { return root() + "/data/media.db"; }

    /// Files beside the database that hold damaged ones.
    size_t kept_aside() const {
        size_t count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(root() + "/data")) {
            const std::string name = entry.path().filename().string();
            count += name.find("media.db.damaged-") == 0 && name.find("-wal") == std::string::npos &&
                             name.find("-shm") == std::string::npos
                         ? 1
                         : 0;
        }
        return count;
    }

    void fill() {
        const Database database(file());
        SqliteConnection connection(file(), SqliteConnection::Access::kWrite);
        connection.execute("INSERT INTO storage(id, number, attached, target) VALUES('x', 1, 0, '/x')");
    }

    int64_t number(const std::string& sql) {
        SqliteConnection connection(file(), SqliteConnection::Access::kRead);
        Query query(connection, sql);
        return query.step() ? query.integer(0) : -1;
    }
};

TEST_F(DatabaseFile, IsMadeWithItsDirectoryAndTheCurrentVersion) {
    ASSERT_EQ(media_content_connect(), 0);
    EXPECT_EQ(number("PRAGMA user_version"), schema_version());
    EXPECT_EQ(number("SELECT count(*) FROM pragma_journal_mode WHERE journal_mode = 'wal'"), 1);
    media_content_disconnect();
}

TEST_F(DatabaseFile, KeepsItsRowsWhenItIsOpenedAgain) {
    fill();
    const Database database(file());
    EXPECT_EQ(number("SELECT count(*) FROM storage"), 1);
}

TEST_F(DatabaseFile, ConnectionsAreCounted) {
    EXPECT_EQ(media_content_disconnect(), MEDIA_CONTENT_ERROR_NOT_CONNECTED);
    EXPECT_EQ(media_content_connect(), 0);
    EXPECT_EQ(media_content_connect(), 0);
    EXPECT_EQ(media_content_disconnect(), 0);
    EXPECT_EQ(media_names(nullptr), Names{});
    EXPECT_EQ(media_content_disconnect(), 0);
    EXPECT_EQ(media_names(nullptr), Names{"error " + std::to_string(MEDIA_CONTENT_ERROR_NOT_CONNECTED)});
    EXPECT_EQ(media_content_disconnect(), MEDIA_CONTENT_ERROR_NOT_CONNECTED);
}

TEST_F(DatabaseFile, OfANewerVersionIsLeftAlone) {
    fill();
    {
        SqliteConnection connection(file(), SqliteConnection::Access::kWrite);
        connection.execute("PRAGMA user_version = 1000");
    }
    LogCapture log;
    EXPECT_EQ(media_content_connect(), MEDIA_CONTENT_ERROR_NEWER_SCHEMA);
    EXPECT_TRUE(log.contains("version 1000")) << log.text();
    EXPECT_EQ(number("PRAGMA user_version"), 1000);
    EXPECT_EQ(number("SELECT count(*) FROM storage"), 1);
    EXPECT_EQ(kept_aside(), 0u);
}

TEST_F(DatabaseFile, ThatIsNoDatabaseIsKeptAside) {
    write_file("data/media.db", std::string(10000, 'x'));
    LogCapture log;
    EXPECT_EQ(media_content_connect(), MEDIA_CONTENT_ERROR_CORRUPT);
    EXPECT_TRUE(log.contains("is damaged; it is kept as")) << log.text();
    EXPECT_EQ(kept_aside(), 1u);
    EXPECT_EQ(media_content_connect(), 0);
    media_content_disconnect();
}

TEST_F(DatabaseFile, ThatTurnsOutDamagedIsKeptAsideAtTheEnd) {
    ASSERT_EQ(media_content_connect(), 0);
    {
        const auto database = connected_database();
        attach(*database, directory("stick"), "");
        MediaWriter writer(*database);
        const int64_t folder = writer.ensure_folder(1, "", 0);
        for (int i = 0; i < 2000; ++i) {
            writer.put_file(folder, FileFacts{std::to_string(i) + ".jpg", 1, 0}, MediaRecord{});
        }
        writer.commit();
    }
    ASSERT_EQ(media_content_disconnect(), 0);
    {
        std::fstream bytes(file(), std::ios::in | std::ios::out | std::ios::binary);
        for (int page = 60; page < 140; ++page) {
            bytes.seekp(page * 4096);
            bytes << std::string(4096, '\x5a');
        }
    }
    ASSERT_EQ(media_content_connect(), 0);
    EXPECT_EQ(media_names(nullptr), Names{"error " + std::to_string(MEDIA_CONTENT_ERROR_CORRUPT)});
    EXPECT_EQ(kept_aside(), 0u);
    ASSERT_EQ(media_content_disconnect(), 0);
    EXPECT_EQ(kept_aside(), 1u);
    EXPECT_EQ(media_content_connect(), 0);
    EXPECT_EQ(media_names(nullptr), Names{});
    media_content_disconnect();
}

TEST_F(DatabaseFile, TwoDamagedFilesAreBothKept) {
    for (int round = 0; round < 2; ++round) {
        write_file("data/media.db", std::string(10000, 'x'));
        EXPECT_EQ(media_content_connect(), MEDIA_CONTENT_ERROR_CORRUPT);
    }
    EXPECT_EQ(kept_aside(), 2u);
}

TEST_F(DatabaseFile, ThatIsEmptyBecomesADatabase) {
    write_file("data/media.db");
    EXPECT_EQ(media_content_connect(), 0);
    media_content_disconnect();
}

TEST_F(DatabaseFile, WhereADirectoryCannotBeIsAnError) {
    write_file("data", "a file");
    EXPECT_EQ(media_content_connect(), MEDIA_CONTENT_ERROR_DATABASE);
}

TEST_F(DatabaseFile, OfSomebodyElseIsNotTouched) {
    directory("data");
    {
        SqliteConnection connection(file(), SqliteConnection::Access::kWrite);
        connection.execute("CREATE TABLE media(x); PRAGMA user_version = 0");
    }
    EXPECT_EQ(media_content_connect(), MEDIA_CONTENT_ERROR_DATABASE);
    EXPECT_EQ(number("SELECT count(*) FROM sqlite_master"), 1);
}

TEST_F(DatabaseFile, AFullDiskUndoesTheBatchAndKeepsTheRest) {
    const std::string path = file();
    Database database(path);
    const Storage drive = attach(database, directory("stick"), "").storage;
    {
        MediaWriter writer(database);
        writer.put_file(writer.ensure_folder(drive.key, "", 0), FileFacts{"first.jpg", 1, 0}, MediaRecord{});
        writer.commit();
    }
    {
        Database::WriteLease lease(database);
        Query pages(lease.connection(), "PRAGMA page_count");
        pages.step();
        lease.connection().execute(
            ("PRAGMA max_page_count = " + std::to_string(pages.integer(0) + 4)).c_str());
    }
    const auto fill_up = [&] {
        MediaWriter writer(database);
        const int64_t folder = writer.ensure_folder(drive.key, "", 0);
        for (int i = 0; i < 1000; ++i) {
            writer.put_file(folder, FileFacts{std::to_string(i) + ".jpg", 1, 0}, MediaRecord{});
        }
        writer.commit();
    };
    try {
        fill_up();
        ADD_FAILURE() << "the disk was not full";
    } catch (const MediaError& error) {
        EXPECT_EQ(error.code(), MEDIA_CONTENT_ERROR_DISK_FULL) << error.what();
    }
    Database::ReadLease lease(database);
    Query count(lease.connection(), "SELECT count(*) FROM media");
    ASSERT_TRUE(count.step());
    EXPECT_EQ(count.integer(0), 1);
}

}  // namespace
}  // namespace media_content
