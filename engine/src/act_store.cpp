#include "engine/src/act_store.h"

#include <filesystem>
#include <utility>

#include "engine/src/engine_log.h"

namespace engine {

namespace {

constexpr int kBusyMilliseconds = 500;
constexpr int kSchemaVersion = 1;

constexpr char kSchema[] =
    "BEGIN IMMEDIATE;"
    "CREATE TABLE IF NOT EXISTS likes ("
    " user INTEGER NOT NULL, account TEXT NOT NULL, item TEXT NOT NULL,"
    " PRIMARY KEY (user, account, item)) WITHOUT ROWID;"
    "CREATE TABLE IF NOT EXISTS comments ("
    " id INTEGER PRIMARY KEY, user INTEGER NOT NULL, account TEXT NOT NULL, item TEXT NOT NULL,"
    " time INTEGER NOT NULL, text TEXT NOT NULL);"
    "CREATE INDEX IF NOT EXISTS comments_of_item ON comments (user, account, item, id);"
    "PRAGMA user_version = 1;"
    "COMMIT;";

}  // namespace

/// One run of a statement, with its parameters bound in order. Every failure is logged and shows as no row.
class ActStore::Query {
public:
    Query(sqlite3* database, const char* sql) : database_(database) {
        sqlite3_stmt* statement = nullptr;
        check(sqlite3_prepare_v2(database, sql, -1, &statement, nullptr));
        statement_.reset(statement);
    }

    Query& bind(int64_t value) {
        check(sqlite3_bind_int64(statement_.get(), ++parameters_, value));
        return *this;
    }
    /// The text stays as it is until the query ends.
    Query& bind(const std::string& text) {
        check(sqlite3_bind_text64(statement_.get(), ++parameters_, text.data(), text.size(), SQLITE_STATIC,
                                  SQLITE_UTF8));
        return *this;
    }
    Query& bind(const ItemKey& key) { return bind(int64_t{key.user}).bind(key.account).bind(key.item_id); }

    /// Goes to the next row; false if there is none or the query failed.
    bool step() {
        const int code = is_good_ ? sqlite3_step(statement_.get()) : SQLITE_ERROR;
        if (code != SQLITE_ROW && code != SQLITE_DONE) {
            check(code);
        }
        return code == SQLITE_ROW;
    }
    /// Runs a statement that gives no rows.
    bool run() {
        step();
        return is_good_;
    }
    bool is_good() const { return is_good_; }

    int64_t number(int column) const { return sqlite3_column_int64(statement_.get(), column); }
    std::string text(int column) const {
        const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_.get(), column));
        return text ? std::string(text, static_cast<size_t>(sqlite3_column_bytes(statement_.get(), column)))
                    : std::string();
    }

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
    };

    void check(int code) {
        if (code != SQLITE_OK && is_good_) {
            ENGINE_WARNING("likes and comments: %s", sqlite3_errmsg(database_));
            is_good_ = false;
        }
    }

    sqlite3* database_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
    int parameters_ = 0;
    bool is_good_ = true;
};

bool ActStore::open() {
    if (database_) {
        return true;
    }
    std::error_code ignored;  // what is wrong shows when the file is opened
    const std::filesystem::path path(path_);
    if (std::filesystem::create_directories(path.parent_path(), ignored)) {
        std::filesystem::permissions(path.parent_path(), std::filesystem::perms::owner_all, ignored);
    }
    sqlite3* database = nullptr;
    const int code = sqlite3_open_v2(
        path_.c_str(), &database, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    database_.reset(database);
    if (code == SQLITE_OK && prepare_schema()) {
        return true;
    }
    ENGINE_WARNING("cannot open %s: %s", path_.c_str(), sqlite3_errmsg(database));
    database_.reset();
    return false;
}

bool ActStore::prepare_schema() {
    sqlite3* database = database_.get();
    sqlite3_busy_timeout(database, kBusyMilliseconds);
    std::error_code ignored;  // a file that others read is still one of the engine's directory
    std::filesystem::permissions(
        path_, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write, ignored);
    int64_t version = 0;
    {
        Query query(database, "PRAGMA user_version");
        if (!query.step()) {
            return false;
        }
        version = query.number(0);
    }
    const char* script = version == 0 ? kSchema : "";
    return version <= kSchemaVersion &&
           sqlite3_exec(database, "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;", nullptr, nullptr,
                        nullptr) == SQLITE_OK &&
           sqlite3_exec(database, script, nullptr, nullptr, nullptr) == SQLITE_OK;
}

bool ActStore::set_like(const ItemKey& key, bool like) {
    return open() &&
           Query(database_.get(), like ? "INSERT OR IGNORE INTO likes (user, account, item) VALUES (?, ?, ?)"
                                       : "DELETE FROM likes WHERE user = ? AND account = ? AND item = ?")
               .bind(key)
               .run();
}

bool ActStore::add_comment(const ItemKey& key, const std::string& text, int64_t time) {
    if (text.empty() || text.size() > kLongestComment || !open()) {
        return false;
    }
    return Query(database_.get(),
                 "INSERT INTO comments (user, account, item, time, text) VALUES (?, ?, ?, ?, ?)")
               .bind(key)
               .bind(time)
               .bind(text)
               .run() &&
           Query(database_.get(),
                 "DELETE FROM comments WHERE id IN (SELECT id FROM comments"
                 " WHERE user = ? AND account = ? AND item = ? ORDER BY id DESC LIMIT -1 OFFSET ?)")
               .bind(key)
               .bind(int64_t{kMostComments})
               .run();
}

std::optional<ItemOpinion> ActStore::opinion(const ItemKey& key) {
    ItemOpinion opinion;
    if (!open()) {
        return std::nullopt;
    }
    Query likes(database_.get(), "SELECT 1 FROM likes WHERE user = ? AND account = ? AND item = ?");
    opinion.like = likes.bind(key).step();
    if (!likes.is_good() || !read_comments(key, opinion)) {
        return std::nullopt;
    }
    return opinion;
}

bool ActStore::read_comments(const ItemKey& key, ItemOpinion& opinion) {
    Query query(database_.get(),
                "SELECT time, text FROM comments WHERE user = ? AND account = ? AND item = ? ORDER BY id");
    query.bind(key);
    while (query.step()) {
        opinion.comments.push_back({query.number(0), query.text(1)});
    }
    return query.is_good();
}

}  // namespace engine
