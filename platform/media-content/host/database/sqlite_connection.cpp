#include "platform/media-content/host/database/sqlite_connection.h"

#include <utility>

#include "platform/media-content/host/database/sql_functions.h"

namespace media_content {

namespace {

// A writer of another process may hold the file for one batch of rows; a checkpoint on a slow stick takes
// longer.
constexpr int kBusyTimeoutMs = 30000;
constexpr size_t kMostIdleStatements = 48;

const char* const kPragmas =
    "PRAGMA foreign_keys = ON;"
    "PRAGMA synchronous = NORMAL;"
    "PRAGMA temp_store = MEMORY;"
    "PRAGMA trusted_schema = OFF;";

media_content_error_e error_code_of(int code) {
    switch (code & 0xFF) {
        case SQLITE_NOMEM:
            return MEDIA_CONTENT_ERROR_OUT_OF_MEMORY;
        case SQLITE_FULL:
            return MEDIA_CONTENT_ERROR_DISK_FULL;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return MEDIA_CONTENT_ERROR_CORRUPT;
        default:
            return MEDIA_CONTENT_ERROR_DATABASE;
    }
}

}  // namespace

MediaError sqlite_error(sqlite3* database, int code, std::string_view what) {
    std::string text(what);
    text += ": ";
    text += database != nullptr ? sqlite3_errmsg(database) : sqlite3_errstr(code);
    text += " (" + std::to_string(code) + ")";
    return MediaError(error_code_of(code), text);
}

SqliteConnection::SqliteConnection(const std::string& path, Access access) {
    const int create = access == Access::kWrite ? SQLITE_OPEN_CREATE : 0;
    sqlite3* handle = nullptr;
    const int opened =
        sqlite3_open_v2(path.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX | create, nullptr);
    handle_.reset(handle);
    if (opened != SQLITE_OK) {
        throw sqlite_error(handle, opened, "cannot open " + path);
    }
    sqlite3_extended_result_codes(handle, 1);
    sqlite3_busy_timeout(handle, kBusyTimeoutMs);
    register_sql_functions(handle);
    execute(kPragmas);
    // KiB. New rows go to random places of the indexes, lists come from one place after the other.
    execute(access == Access::kWrite ? "PRAGMA cache_size = -8192"
                                     : "PRAGMA cache_size = -2048; PRAGMA query_only = ON");
}

SqliteConnection::~SqliteConnection() {
    idle_statements_.clear();
}

void SqliteConnection::execute(const char* script) {
    const int code = sqlite3_exec(handle_.get(), script, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) {
        throw sqlite_error(handle_.get(), code, script);
    }
}

SqliteConnection::Statement SqliteConnection::take_statement(const std::string& sql) {
    const auto idle = idle_statements_.find(sql);
    if (idle != idle_statements_.end()) {
        Statement statement = std::move(idle->second);
        idle_statements_.erase(idle);
        return statement;
    }
    sqlite3_stmt* statement = nullptr;
    const int code = sqlite3_prepare_v3(handle_.get(), sql.data(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    if (code != SQLITE_OK) {
        throw sqlite_error(handle_.get(), code, sql);
    }
    return Statement(statement);
}

void SqliteConnection::give_back(std::string sql, Statement statement) {
    if (idle_statements_.size() >= kMostIdleStatements) {
        idle_statements_.clear();
    }
    idle_statements_.insert_or_assign(std::move(sql), std::move(statement));
}

Query::Query(SqliteConnection& connection, std::string sql)
    : connection_(connection), sql_(std::move(sql)), statement_(connection.take_statement(sql_)) {}

Query::~Query() {
    sqlite3_reset(statement_.get());
    sqlite3_clear_bindings(statement_.get());
    try {
        connection_.give_back(std::move(sql_), std::move(statement_));
    } catch (const std::bad_alloc&) {
        statement_.reset();
    }
}

Query& Query::bind(int64_t value) {
    check(sqlite3_bind_int64(statement_.get(), next_parameter_++, value), "bind");
    return *this;
}

Query& Query::bind(double value) {
    check(sqlite3_bind_double(statement_.get(), next_parameter_++, value), "bind");
    return *this;
}

Query& Query::bind(std::string_view text) {
    const char* data = text.data() != nullptr ? text.data() : "";
    check(sqlite3_bind_text(statement_.get(), next_parameter_++, data, static_cast<int>(text.size()),
                            SQLITE_STATIC),
          "bind");
    return *this;
}

Query& Query::bind_blob(std::string_view bytes) {
    const char* data = bytes.data() != nullptr ? bytes.data() : "";
    check(sqlite3_bind_blob(statement_.get(), next_parameter_++, data, static_cast<int>(bytes.size()),
                            SQLITE_STATIC),
          "bind");
    return *this;
}

Query& Query::bind_null() {
    check(sqlite3_bind_null(statement_.get(), next_parameter_++), "bind");
    return *this;
}

bool Query::step() {
    const int code = sqlite3_step(statement_.get());
    if (code == SQLITE_ROW) {
        return true;
    }
    if (code != SQLITE_DONE) {
        throw sqlite_error(connection_.handle(), code, sql_);
    }
    return false;
}

void Query::run() {
    while (step()) {
    }
}

void Query::reset() {
    sqlite3_reset(statement_.get());
    next_parameter_ = 1;
}

std::string_view Query::text(int column) const {
    const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
    return {data != nullptr ? data : "", static_cast<size_t>(sqlite3_column_bytes(statement_.get(), column))};
}

void Query::check(int code, const char* what) const {
    if (code != SQLITE_OK) {
        throw sqlite_error(connection_.handle(), code, what);
    }
}

}  // namespace media_content
