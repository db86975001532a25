#ifndef QRA_MEDIA_CONTENT_DATABASE_DATABASE_H
#define QRA_MEDIA_CONTENT_DATABASE_DATABASE_H

#include <atomic>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/media-content/host/database/sqlite_connection.h"

namespace media_content {

class NewRows;

/**
 * The open database of this process: a pool of connections for reading, and one for writing. Readers and the
 * writer do not wait for each other; only for the rows of single new files a reader does.
 *
 * Any thread may call anything. A lease keeps its connection for one thread until it is destroyed; leases may
 * be nested, also in a row callback, but for WriteLease, of which a thread may have one, with no new
 * ReadLease meanwhile.
 */
class Database {
public:
    /**
     * Opens the file at `path`, making it and its directory where there are none, and brings it to the
     * current version. A damaged file is renamed to keep it. Throws MediaError.
     */
    explicit Database(std::string path);
    ~Database();
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    /// Whether a reader waits for the rows of files that were entered just before.
    enum class LateRows { kAwaited, kIgnored };

    class ReadLease {
    public:
        explicit ReadLease(Database& database, LateRows late_rows = LateRows::kAwaited);
        ~ReadLease();
        ReadLease(const ReadLease&) = delete;
        ReadLease& operator=(const ReadLease&) = delete;
        SqliteConnection& connection() { return *connection_; }

    private:
        Database& database_;
        std::unique_ptr<SqliteConnection> connection_;
    };

    /// A transaction of the writer: rolled back unless it is committed. To be kept short, as other writers
    /// wait.
    class WriteLease {
    public:
        explicit WriteLease(Database& database);
        ~WriteLease();
        WriteLease(const WriteLease&) = delete;
        WriteLease& operator=(const WriteLease&) = delete;
        SqliteConnection& connection() { return *database_.writer_; }
        void commit();

    private:
        Database& database_;
        std::lock_guard<std::mutex> lock_;
        bool open_ = true;
    };

    /// Where single files are entered.
    NewRows& new_rows() { return *new_rows_; }

    /// Gives back memory that the writer keeps for its next batch: for the end of a scan.
    void trim();

    const std::string& path() const { return path_; }

    /// Tells that a query found the file damaged; it is looked at, and kept aside, when the database is
    /// closed.
    void note_damage() { damaged_ = true; }

private:
    const std::string path_;
    std::atomic<bool> damaged_{false};
    std::mutex write_mutex_;
    std::unique_ptr<SqliteConnection> writer_;  // guarded by write_mutex_
    std::mutex pool_mutex_;
    std::vector<std::unique_ptr<SqliteConnection>> idle_;  // guarded by pool_mutex_
    std::unique_ptr<NewRows> new_rows_;
};

/// The file that all processes share.
std::string database_path();

/// One more connection of this process; the first one opens the database. Throws MediaError.
void connect_database();

/// One connection less; the last one closes the database when nobody uses it any more. False: there was none.
bool disconnect_database();

/// The database while it is connected. Throws MediaError with MEDIA_CONTENT_ERROR_NOT_CONNECTED otherwise.
std::shared_ptr<Database> connected_database();

}  // namespace media_content

#endif
