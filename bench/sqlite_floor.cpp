#include "bench/sqlite_floor.h"

#include "bench/measure.h"

namespace bench {

namespace {

const char* const kColumns =
    // Texts.
    "folder.path, media.name, media.extension, media.title, media.mime_type, media.author, media.provider,"
    "media.content_name, media.category, media.location_tag, media.age_rating, media.keyword, "
    "media.date_taken,"
    "media.burst_id, media.exposure_time, media.model, media.album, media.artist, media.genre, "
    "media.composer,"
    "media.year, media.recorded_date, media.copyright, media.track_number,"
    // Numbers.
    "media.id, media.kind, media.size, media.modified_ns, media.added_time, media.is_360, media.stitch_type,"
    "media.is_drm, media.favorite, media.rating, media.played_count, media.played_position, media.width,"
    "media.height, media.orientation, media.iso";

void must(sqlite3* database, const char* what, int code) {
    if (code != SQLITE_OK) {
        give_up(std::string(what) + ": " + sqlite3_errmsg(database));
    }
}

}  // namespace

SqliteFloor::SqliteFloor(const std::string& database_path, const std::string& where_and_order) {
    must(m_database, "open the database",
         sqlite3_open_v2(database_path.c_str(), &m_database, SQLITE_OPEN_READONLY, nullptr));
    // The page cache and the mapping that such a program would give itself.
    sqlite3_exec(m_database, "PRAGMA cache_size=-131072; PRAGMA mmap_size=268435456", nullptr, nullptr,
                 nullptr);
    const std::string sql = std::string("SELECT ") + kColumns +
                            " FROM media JOIN folder ON folder.id = media.folder " + where_and_order;
    must(m_database, "prepare the floor",
         sqlite3_prepare_v2(m_database, sql.c_str(), -1, &m_statement, nullptr));
}

SqliteFloor::~SqliteFloor() {
    sqlite3_finalize(m_statement);
    sqlite3_close(m_database);
}

void SqliteFloor::bind(const std::vector<sqlite3_int64>& values) {
    sqlite3_reset(m_statement);
    for (size_t i = 0; i < values.size(); ++i) {
        must(m_database, "bind a value", sqlite3_bind_int64(m_statement, static_cast<int>(i) + 1, values[i]));
    }
}

double SqliteFloor::run(const std::function<void(const Row&)>& visit) {
    const Clock::time_point start = Clock::now();
    m_row_count = 0;
    sqlite3_reset(m_statement);
    while (sqlite3_step(m_statement) == SQLITE_ROW) {
        read_row();
        ++m_row_count;
        if (visit) {
            visit(m_row);
        }
    }
    return seconds_since(start);
}

void SqliteFloor::read_row() {
    int column = 0;
    for (std::string& text : m_row.texts) {
        const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
        const auto length = static_cast<size_t>(sqlite3_column_bytes(m_statement, column));
        text.assign(bytes != nullptr ? bytes : "", length);
        ++column;
    }
    for (sqlite3_int64& number : m_row.numbers) {
        number = sqlite3_column_int64(m_statement, column++);
    }
}

}  // namespace bench
