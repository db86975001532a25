#ifndef QRA_BENCH_SQLITE_FLOOR_H
#define QRA_BENCH_SQLITE_FLOOR_H

#include <sqlite3.h>

#include <functional>
#include <string>
#include <vector>

namespace bench {

/// What a program of its own would do for a list: one cached statement over the same rows in the same order,
/// which reads 40 columns (24 texts, 16 numbers) of each and copies the texts.
class SqliteFloor {
public:
    struct Row {
        std::string texts[24];
        sqlite3_int64 numbers[16];
    };

    /// @param where_and_order what follows "FROM media JOIN folder ON folder.id = media.folder"
    SqliteFloor(const std::string& database_path, const std::string& where_and_order);
    ~SqliteFloor();
    SqliteFloor(const SqliteFloor&) = delete;
    SqliteFloor& operator=(const SqliteFloor&) = delete;

    /// Runs the loop and gives the seconds that it took. @param visit called for each row; may be empty
    double run(const std::function<void(const Row&)>& visit = {});
    /// Gives the statement's parameters ?1, ?2 ... their values.
    void bind(const std::vector<sqlite3_int64>& values);
    /// Rows of the latest run.
    int row_count() const { return m_row_count; }

private:
    void read_row();

    sqlite3* m_database = nullptr;
    sqlite3_stmt* m_statement = nullptr;
    Row m_row;
    int m_row_count = 0;
};

}  // namespace bench

#endif
