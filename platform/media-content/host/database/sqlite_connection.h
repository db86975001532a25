#ifndef QRA_MEDIA_CONTENT_DATABASE_SQLITE_CONNECTION_H
#define QRA_MEDIA_CONTENT_DATABASE_SQLITE_CONNECTION_H

#include <sqlite3.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/media-content/host/error.h"

namespace media_content {

/// The error of a failed call on `database`, with the code that tells full disks and damaged files apart.
MediaError sqlite_error(sqlite3* database, int code, std::string_view what);

/**
 * A connection to the database file, with its cached statements. One thread at a time uses it.
 * Failures are thrown as MediaError.
 */
class SqliteConnection {
public:
    enum class Access { kRead, kWrite };

    /// Opens the file; kWrite makes it where there is none.
    SqliteConnection(const std::string& path, Access access);
    ~SqliteConnection();
    SqliteConnection(const SqliteConnection&) = delete;
    SqliteConnection& operator=(const SqliteConnection&) = delete;

    /// Runs a script that gives no rows.
    void execute(const char* script);

    sqlite3* handle() const { return handle_.get(); }
    int64_t last_inserted_id() const { return sqlite3_last_insert_rowid(handle_.get()); }
    /// Rows changed by the last statement.
    int changes() const { return sqlite3_changes(handle_.get()); }

private:
    friend class Query;

    struct CloseConnection {
        void operator()(sqlite3* handle) const { sqlite3_close_v2(handle); }
    };
    struct FinalizeStatement {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };
    using Statement = std::unique_ptr<sqlite3_stmt, FinalizeStatement>;

    /// Takes the statement out of the cache, or prepares it.
    Statement take_statement(const std::string& sql);
    void give_back(std::string sql, Statement statement);

    std::unique_ptr<sqlite3, CloseConnection> handle_;
    std::unordered_map<std::string, Statement> idle_statements_;
};

/**
 * One run of a statement: bind the parameters in order, then step through the rows. The statement goes back
 * into the connection's cache at the end; the connection has to live longer than the query.
 */
class Query {
public:
    Query(SqliteConnection& connection, std::string sql);
    ~Query();
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    Query& bind(int64_t value);
    Query& bind(int value) { return bind(static_cast<int64_t>(value)); }
    Query& bind(bool value) { return bind(static_cast<int64_t>(value)); }
    Query& bind(double value);
    /// The text has to stay as it is until the query ends.
    Query& bind(std::string_view text);
    Query& bind(const std::string& text) { return bind(std::string_view(text)); }
    Query& bind(const char* text) { return bind(std::string_view(text)); }
    /// A sort key, or other bytes that are no text; the same rule.
    Query& bind_blob(std::string_view bytes);
    Query& bind_null();

    /// Goes to the next row. False: there is none.
    bool step();
    /// Runs a statement that gives no rows.
    void run();
    /// Starts again: the rows from the first, the parameters to be bound anew.
    void reset();

    int64_t integer(int column) const { return sqlite3_column_int64(statement_.get(), column); }
    double real(int column) const { return sqlite3_column_double(statement_.get(), column); }
    bool is_null(int column) const { return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL; }
    /// Valid until the next step().
    std::string_view text(int column) const;

private:
    void check(int code, const char* what) const;

    SqliteConnection& connection_;
    std::string sql_;
    SqliteConnection::Statement statement_;
    int next_parameter_ = 1;
};

}  // namespace media_content

#endif
