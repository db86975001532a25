#ifndef QRA_TESTS_MEDIA_CONTENT_TEMPORARY_DATABASE_H
#define QRA_TESTS_MEDIA_CONTENT_TEMPORARY_DATABASE_H

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/media-content/host/database/database.h"
#include "platform/media-content/host/database/media_writer.h"
#include "platform/media-content/host/storage/storage.h"

namespace media_content {

/// A directory of the test's own with the data directory and the media root in it; gone when the test is
/// over.
class TemporaryDirectories : public testing::Test {
protected:
    TemporaryDirectories() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qra-mediadb-XXXXXX").string();
        root_ = std::filesystem::canonical(mkdtemp(pattern.data())).string();
        setenv("QRA_DATA_DIR", (root_ + "/data").c_str(), 1);
        setenv("QRA_MEDIA_ROOT", (root_ + "/media").c_str(), 1);
    }
    ~TemporaryDirectories() override { std::filesystem::remove_all(root_); }

    const std::string& root() const { return root_; }

    /// Makes a directory below the root. @return its path
    std::string directory(const std::string& name) const {
        std::filesystem::create_directories(root_ + "/" + name);
        return root_ + "/" + name;
    }

    void write_file(const std::string& name, const std::string& content = "") const {
        std::filesystem::create_directories(std::filesystem::path(root_ + "/" + name).parent_path());
        std::ofstream(root_ + "/" + name) << content;
    }

private:
    std::string root_;
};

/// A connected database with one drive, USBDrive1, and help to fill it without any files.
class TemporaryDatabase : public TemporaryDirectories {
protected:
    TemporaryDatabase() {
        connect_database();
        database_ = connected_database();
        drive_ = attach(*database_, directory("stick"), "").storage;
    }
    ~TemporaryDatabase() override { close_database(); }

    void close_database() {
        database_.reset();
        while (disconnect_database()) {
        }
    }

    Database& database() { return *database_; }
    const Storage& drive() const { return drive_; }

    int64_t put_folder(const std::string& relative) {
        MediaWriter writer(*database_);
        const int64_t id = writer.ensure_folder(drive_.key, relative, 0);
        writer.commit();
        return id;
    }

    int64_t put_file(const std::string& folder, const FileFacts& facts, const MediaRecord& record) {
        MediaWriter writer(*database_);
        const int64_t id = writer.put_file(writer.ensure_folder(drive_.key, folder, 0), facts, record);
        writer.commit();
        return id;
    }

    int64_t put_file(const std::string& folder, const std::string& name, MediaKind kind,
                     int64_t modified = 0) {
        MediaRecord record;
        record.kind = kind;
        return put_file(folder, FileFacts{name, 100, modified * 1000000000}, record);
    }

    /// The first column of the first row, as a number.
    int64_t number(const std::string& sql) {
        Database::ReadLease reader(*database_);
        Query query(reader.connection(), sql);
        return query.step() ? query.integer(0) : -1;
    }

    std::string text(const std::string& sql) {
        Database::ReadLease reader(*database_);
        Query query(reader.connection(), sql);
        return query.step() ? std::string(query.text(0)) : "(no row)";
    }

private:
    std::shared_ptr<Database> database_;
    Storage drive_;
};

}  // namespace media_content

#endif
