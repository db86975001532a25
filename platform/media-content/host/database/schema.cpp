#include "platform/media-content/host/database/schema.h"

#include <iterator>
#include <string>

namespace media_content {

namespace {

// Names:  `key` columns hold sort keys. Paths of folders are relative to their drive ("" or "/a/b"), so that
// a drive that comes back under another name needs no change. Times are seconds since 1970 unless they say
// _ns. The list indexes hold all that a list reads, in its final order,
// and the first one all that a scan compares.
const char* const kVersion1 = R"sql(
CREATE TABLE storage(
    key INTEGER PRIMARY KEY,
    id TEXT NOT NULL UNIQUE,
    number INTEGER NOT NULL,
    attached INTEGER NOT NULL,
    target TEXT NOT NULL,
    scan_status INTEGER NOT NULL DEFAULT 0);
CREATE UNIQUE INDEX storage_by_number ON storage(number) WHERE attached = 1;

CREATE TABLE folder(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    storage INTEGER NOT NULL REFERENCES storage(key),
    parent INTEGER REFERENCES folder(id) ON DELETE CASCADE,
    path TEXT NOT NULL,
    name TEXT NOT NULL,
    name_key BLOB NOT NULL,
    modified_ns INTEGER NOT NULL DEFAULT 0,
    scan_status INTEGER NOT NULL DEFAULT 0,
    UNIQUE(storage, path));
CREATE INDEX folder_by_parent ON folder(parent, name_key, name);

CREATE TABLE media(
    id INTEGER PRIMARY KEY AUTOINCREMENT,
    storage INTEGER NOT NULL REFERENCES storage(key),
    folder INTEGER NOT NULL REFERENCES folder(id) ON DELETE CASCADE,
    kind INTEGER NOT NULL,
    name TEXT NOT NULL,
    name_key BLOB NOT NULL,
    extension TEXT NOT NULL,
    size INTEGER NOT NULL,
    modified_ns INTEGER NOT NULL,
    companion_ns INTEGER NOT NULL DEFAULT 0,
    sort_time INTEGER NOT NULL,
    added_time INTEGER NOT NULL,
    is_360 INTEGER NOT NULL DEFAULT 0,
    stitch_type INTEGER NOT NULL DEFAULT 0,
    is_drm INTEGER NOT NULL DEFAULT 0,
    favorite INTEGER NOT NULL DEFAULT 0,
    rating INTEGER NOT NULL DEFAULT 0,
    played_count INTEGER NOT NULL DEFAULT 0,
    played_position INTEGER NOT NULL DEFAULT 0,
    played_time INTEGER NOT NULL DEFAULT 0,
    title TEXT, mime_type TEXT, author TEXT, provider TEXT, content_name TEXT, category TEXT,
    location_tag TEXT, age_rating TEXT, keyword TEXT,
    longitude REAL, latitude REAL, altitude REAL,
    width INTEGER, height INTEGER, duration INTEGER, bit_rate INTEGER,
    orientation INTEGER, iso INTEGER, f_number REAL,
    date_taken TEXT, burst_id TEXT, exposure_time TEXT, model TEXT,
    channels INTEGER, sample_rate INTEGER, bits_per_sample INTEGER,
    album TEXT, artist TEXT, genre TEXT, composer TEXT, year TEXT, recorded_date TEXT, copyright TEXT,
    track_number TEXT);
CREATE INDEX media_in_folder_by_name
    ON media(folder, storage, name_key, name, kind, is_360, extension, size, modified_ns, companion_ns);
CREATE INDEX media_in_folder_by_time
    ON media(folder, storage, sort_time DESC, name_key, name, kind, is_360, extension);
CREATE INDEX media_by_name ON media(storage, name_key, name, folder, kind, is_360, extension);
CREATE INDEX media_by_time ON media(storage, sort_time DESC, name_key, name, folder, kind, is_360, extension);

CREATE TABLE pvr(
    id INTEGER PRIMARY KEY REFERENCES media(id) ON DELETE CASCADE,
    user_set INTEGER NOT NULL DEFAULT 0,
    program_title TEXT NOT NULL, title_key BLOB NOT NULL,
    channel_name TEXT NOT NULL, channel_key BLOB NOT NULL,
    channel_num TEXT, program_crid TEXT, guidance TEXT, synopsis TEXT, genre TEXT, language TEXT,
    modified_month TEXT, private_data TEXT,
    timezone INTEGER, ptc INTEGER, major INTEGER, minor INTEGER, channel_type INTEGER, program_num INTEGER,
    duration INTEGER, embargo_time INTEGER, expiry_time INTEGER, start_time INTEGER, program_start_time INTEGER,
    program_end_time INTEGER, program_date INTEGER, parental_rating INTEGER, aspect_ratio INTEGER,
    resolution INTEGER, sports_type INTEGER, guidance_length INTEGER, tv_mode INTEGER, play_count INTEGER,
    hd INTEGER,
    timer_record INTEGER, series_record INTEGER, subtitle INTEGER, ttx INTEGER, ad INTEGER,
    hard_of_hearing_radio INTEGER, data_service INTEGER, content_lock INTEGER, content_watch INTEGER,
    has_audio_only INTEGER, is_local_record INTEGER);

CREATE TABLE uhd(
    id INTEGER PRIMARY KEY REFERENCES media(id) ON DELETE CASCADE,
    user_set INTEGER NOT NULL DEFAULT 0,
    content_id TEXT NOT NULL, content_title TEXT NOT NULL, release_date TEXT NOT NULL,
    sub_type INTEGER NOT NULL);

-- Lists hold folders and media side by side and find a row by its id: the two must never be the same.
INSERT INTO sqlite_sequence(name, seq) VALUES('folder', 1 << 40);
)sql";

/// Entry n brings version n to version n + 1.
const char* const kMigrations[] = {kVersion1};

int stored_version(SqliteConnection& connection) {
    Query query(connection, "PRAGMA user_version");
    return query.step() ? static_cast<int>(query.integer(0)) : 0;
}

void refuse_foreign(int version) {
    if (version < 0 || version > schema_version()) {
        throw MediaError(MEDIA_CONTENT_ERROR_NEWER_SCHEMA,
                         "the database has version " + std::to_string(version) + ", this program knows " +
                             std::to_string(schema_version()));
    }
}

void run_migrations(SqliteConnection& connection) {
    const int version = stored_version(connection);
    refuse_foreign(version);
    for (int step = version; step < schema_version(); ++step) {
        connection.execute(kMigrations[step]);
    }
    connection.execute(("PRAGMA user_version = " + std::to_string(schema_version())).c_str());
}

/// Changes the journal, once for a database's life. SQLite does not wait for this lock, since that could be a
/// deadlock: where several processes come first at once, the losers have to ask again.
void enter_wal(SqliteConnection& connection) {
    constexpr int kAttempts = 500;
    constexpr int kPauseMs = 10;
    for (int attempt = 1; attempt < kAttempts; ++attempt) {
        const int code =
            sqlite3_exec(connection.handle(), "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr);
        if ((code & 0xff) != SQLITE_BUSY) {
            break;
        }
        sqlite3_sleep(kPauseMs);
    }
    connection.execute("PRAGMA journal_mode = WAL");  // nothing to do any more, or the error to tell
}

}  // namespace

int schema_version() {
    return static_cast<int>(std::size(kMigrations));
}

void migrate(SqliteConnection& connection) {
    const int version = stored_version(connection);
    refuse_foreign(version);
    if (version == schema_version()) {
        return;
    }
    enter_wal(connection);
    connection.execute("BEGIN IMMEDIATE");
    try {
        run_migrations(connection);
        connection.execute("COMMIT");
    } catch (const MediaError&) {
        sqlite3_exec(connection.handle(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
}

}  // namespace media_content
