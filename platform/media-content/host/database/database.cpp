#include "platform/media-content/host/database/database.h"

#include <sys/stat.h>

#include <chrono>
#include <ctime>
#include <filesystem>
#include <utility>

#include "platform/media-content/host/database/new_rows.h"
#include "platform/media-content/host/database/schema.h"
#include "platform/media-content/host/log.h"
#include "platform_paths.h"

namespace media_content {

namespace {

// More than these are closed when they come back: each keeps its page cache.
constexpr size_t kMostIdleReaders = 4;

// A list without the newest file is better than none, where another process does not let go of the database.
constexpr std::chrono::seconds kPatience{10};

void make_directory_of(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(std::filesystem::path(path).parent_path(), error);
    if (error) {
        throw MediaError(error == std::errc::no_space_on_device ? MEDIA_CONTENT_ERROR_DISK_FULL
                                                                : MEDIA_CONTENT_ERROR_DATABASE,
                         "cannot make the directory of " + path + ": " + error.message());
    }
}

/// A damaged database is nothing to be thrown away: somebody may want to rescue the play counts.
void keep_aside(const std::string& path) {
    char when[32] = "";
    const time_t now = time(nullptr);
    tm local{};
    strftime(when, sizeof when, "%Y%m%d-%H%M%S", localtime_r(&now, &local));
    const std::string base = path + ".damaged-" + when;
    std::string aside = base;
    struct stat existing {};
    for (int n = 2; lstat(aside.c_str(), &existing) == 0; ++n) {
        aside = base + "-" + std::to_string(n);
    }
    for (const char* suffix : {"-wal", "-shm", ""}) {
        std::rename((path + suffix).c_str(), (aside + suffix).c_str());
    }
    MC_LOG_WARNING("the media database %s is damaged; it is kept as %s", path.c_str(), aside.c_str());
}

bool is_damaged(const std::string& path) {
    try {
        SqliteConnection connection(path, SqliteConnection::Access::kRead);
        Query check(connection, "PRAGMA quick_check(1)");
        return !check.step() || check.text(0) != "ok";
    } catch (const MediaError& error) {
        return error.code() == MEDIA_CONTENT_ERROR_CORRUPT;
    }
}

std::unique_ptr<SqliteConnection> open_writer(const std::string& path) {
    try {
        auto writer = std::make_unique<SqliteConnection>(path, SqliteConnection::Access::kWrite);
        migrate(*writer);
        return writer;
    } catch (const MediaError& error) {
        MC_LOG_WARNING("cannot open the media database %s: %s", path.c_str(), error.what());
        if (error.code() == MEDIA_CONTENT_ERROR_CORRUPT) {
            keep_aside(path);
        }
        throw;
    }
}

/// The process's one database and how many connections are in force.
struct Connected {
    std::mutex mutex;
    int count = 0;                       // guarded by mutex
    std::shared_ptr<Database> database;  // guarded by mutex
};

Connected& connected() {
    static auto* instance = new Connected;  // outlives the threads that still use it at exit
    return *instance;
}

}  // namespace

Database::Database(std::string path) : path_(std::move(path)) {
    make_directory_of(path_);
    writer_ = open_writer(path_);
    new_rows_ = std::make_unique<NewRows>(*this);
}

Database::~Database() {
    new_rows_.reset();
    idle_.clear();
    writer_.reset();
    if (damaged_ && is_damaged(path_)) {
        keep_aside(path_);
    }
}

void Database::trim() {
    const std::lock_guard<std::mutex> lock(write_mutex_);
    sqlite3_db_release_memory(writer_->handle());
}

Database::ReadLease::ReadLease(Database& database, LateRows late_rows) : database_(database) {
    if (late_rows == LateRows::kAwaited) {
        if (!database.new_rows_->settle(kPatience)) {
            MC_LOG_WARNING("the media database is read without the rows of the newest files");
        }
    }
    {
        const std::lock_guard<std::mutex> lock(database.pool_mutex_);
        if (!database.idle_.empty()) {
            connection_ = std::move(database.idle_.back());
            database.idle_.pop_back();
        }
    }
    if (connection_ == nullptr) {
        connection_ = std::make_unique<SqliteConnection>(database.path_, SqliteConnection::Access::kRead);
    }
}

Database::ReadLease::~ReadLease() {
    const std::lock_guard<std::mutex> lock(database_.pool_mutex_);
    if (database_.idle_.size() < kMostIdleReaders) {
        database_.idle_.push_back(std::move(connection_));
    }
}

Database::WriteLease::WriteLease(Database& database) : database_(database), lock_(database.write_mutex_) {
    Query(connection(), "BEGIN IMMEDIATE").run();
}

Database::WriteLease::~WriteLease() {
    // A full disk may have rolled back by itself; then there is nothing left to roll back.
    if (open_ && sqlite3_get_autocommit(connection().handle()) == 0) {
        sqlite3_exec(connection().handle(), "ROLLBACK", nullptr, nullptr, nullptr);
    }
}

void Database::WriteLease::commit() {
    Query(connection(), "COMMIT").run();
    open_ = false;
}

std::string database_path() {
    return std::string(platform_path_get(PLATFORM_PATH_DATA)) + "/media.db";
}

void connect_database() {
    Connected& state = connected();
    const std::lock_guard<std::mutex> lock(state.mutex);
    if (state.count == 0) {
        state.database = std::make_shared<Database>(database_path());
    }
    ++state.count;
}

bool disconnect_database() {
    Connected& state = connected();
    std::shared_ptr<Database> last;  // closed after the lock is released
    const std::lock_guard<std::mutex> lock(state.mutex);
    if (state.count == 0) {
        return false;
    }
    if (--state.count == 0) {
        last = std::move(state.database);
    }
    return true;
}

std::shared_ptr<Database> connected_database() {
    Connected& state = connected();
    const std::lock_guard<std::mutex> lock(state.mutex);
    if (state.database == nullptr) {
        throw MediaError(MEDIA_CONTENT_ERROR_NOT_CONNECTED, "the media database is not connected");
    }
    return state.database;
}

}  // namespace media_content
