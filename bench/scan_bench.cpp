// What a scan costs, in processor time and in wall time, beside the sum of its parts on one thread: walk,
// open, the metadata readers on the same files, batched inserts. The tree is named on the command line (see
// scripts/make-sample-media).

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "bench/measure.h"
#include "media_content.h"
#include "media_content_admin.h"
#include "platform/media-content/host/database/database.h"
#include "platform/media-content/host/metadata/metadata_reader.h"
#include "platform/media-content/host/text/sort_key.h"

namespace fs = std::filesystem;
using namespace media_content;

namespace {

using bench::Cost;
using bench::cost_of;
using bench::give_up;

constexpr int kRowsInBatch = 500;

std::string g_tree;

class TemporaryDirectory {
public:
    TemporaryDirectory() {
        path_ = (fs::temp_directory_path() / "qra-bench-XXXXXX").string();
        if (mkdtemp(path_.data()) == nullptr) {
            give_up("cannot make a temporary directory");
        }
    }
    ~TemporaryDirectory() { fs::remove_all(path_); }
    const std::string& path() const { return path_; }

private:
    std::string path_;
};

/// A media database of its own with the tree attached.
class FreshDatabase {
public:
    FreshDatabase() {
        setenv("QRA_DATA_DIR", directory_.path().c_str(), 1);
        setenv("QRA_MEDIA_ROOT", (directory_.path() + "/media").c_str(), 1);
        char* path = nullptr;
        if (media_content_connect() != 0 || media_content_admin_attach(g_tree.c_str(), nullptr, &path) != 0) {
            give_up("cannot attach " + g_tree);
        }
        drive_ = path;
        std::free(path);
    }
    ~FreshDatabase() { media_content_disconnect(); }

    void scan() {
        if (media_content_admin_scan(drive_.c_str(), true, nullptr, nullptr) != 0) {
            give_up("the scan failed");
        }
    }

private:
    TemporaryDirectory directory_;
    std::string drive_;
};

/// Calls `visit(directory descriptor, name, status)` for each regular file below a directory, each looked at
/// once.
template <class Visit>
void walk(int directory, const Visit& visit) {
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(fdopendir(directory), closedir);
    while (const dirent* entry = readdir(entries.get())) {
        struct stat status {};
        if (entry->d_name[0] == '.' || fstatat(directory, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0) {
            continue;
        }
        if (S_ISDIR(status.st_mode)) {
            walk(openat(directory, entry->d_name, O_RDONLY | O_DIRECTORY), visit);
        } else if (S_ISREG(status.st_mode)) {
            visit(directory, entry->d_name, status);
        }
    }
}

void walk_tree() {
    size_t files = 0;
    walk(open(g_tree.c_str(), O_RDONLY | O_DIRECTORY),
         [&](int, const char*, const struct stat&) { ++files; });
    benchmark::DoNotOptimize(files);
}

/// Plain inserts into a table like the database's own, with its indexes, in batches.
class RowWriter {
public:
    explicit RowWriter(SqliteConnection& connection) : connection_(connection) {
        connection_.execute("PRAGMA synchronous = NORMAL");
        connection_.execute(
            "INSERT INTO storage(key, id, number, attached, target) VALUES(1, 'x', 1, 1, '/')");
        connection_.execute("INSERT INTO folder(id, storage, path, name, name_key) VALUES(1, 1, '', '', '')");
        connection_.execute("BEGIN");
        const char* sql =
            "INSERT INTO media(storage, folder, kind, name, name_key, extension, size, modified_ns, "
            "sort_time,"
            "added_time, title, mime_type, width, height, duration, bit_rate, orientation, iso, f_number, "
            "date_taken,"
            "exposure_time, model, location_tag, album, artist, genre, year, track_number, sample_rate, "
            "channels)"
            "VALUES(1, 1, ?, ?, ?, ?, ?, ?, ?, 0, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
            "?)";
        if (sqlite3_prepare_v2(connection_.handle(), sql, -1, &statement_, nullptr) != SQLITE_OK) {
            give_up(sqlite3_errmsg(connection_.handle()));
        }
    }
    ~RowWriter() {
        sqlite3_finalize(statement_);
        connection_.execute("COMMIT");
    }

    void write(const std::string& name, const MediaType& type, const struct stat& status,
               const MediaRecord& record) {
        column_ = 0;
        number(static_cast<int>(record.kind));
        text(name);
        const std::string key = sort_key(name);
        text(key);
        text(type.extension);
        number(status.st_size);
        number(status.st_mtim.tv_nsec);
        number(status.st_mtim.tv_sec);
        text(record.title);
        text(type.mime_type);
        number(record.kind == MediaKind::kVideo ? record.video.width : record.image.width);
        number(record.kind == MediaKind::kVideo ? record.video.height : record.image.height);
        number(record.kind == MediaKind::kVideo ? record.video.duration_ms : record.audio.duration_ms);
        number(record.audio.bit_rate);
        number(record.image.orientation);
        number(record.image.iso);
        sqlite3_bind_double(statement_, ++column_, record.image.f_number);
        text(record.image.date_taken);
        text(record.image.exposure_time);
        text(record.image.model);
        text(record.location_tag);
        text(record.audio.album);
        text(record.audio.artist);
        text(record.audio.genre);
        text(record.audio.year);
        text(record.audio.track_number);
        number(record.audio.sample_rate);
        number(record.audio.channels);
        insert();
    }

private:
    void number(int64_t value) { sqlite3_bind_int64(statement_, ++column_, value); }
    void text(std::string_view value) {
        sqlite3_bind_text(statement_, ++column_, value.data(), static_cast<int>(value.size()), SQLITE_STATIC);
    }
    void insert() {
        if (sqlite3_step(statement_) != SQLITE_DONE) {
            give_up(sqlite3_errmsg(connection_.handle()));
        }
        sqlite3_reset(statement_);
        if (++rows_ % kRowsInBatch == 0) {
            connection_.execute("COMMIT");
            connection_.execute("BEGIN");
        }
    }

    SqliteConnection& connection_;
    sqlite3_stmt* statement_ = nullptr;
    int column_ = 0;
    int rows_ = 0;
};

void sum_of_parts() {
    const TemporaryDirectory directory;
    const std::string path = directory.path() + "/floor.db";
    const Database database(path);  // makes the tables
    SqliteConnection connection(path, SqliteConnection::Access::kWrite);
    RowWriter writer(connection);
    MetadataReader reader;
    walk(open(g_tree.c_str(), O_RDONLY | O_DIRECTORY),
         [&](int folder, const char* name, const struct stat& status) {
             const MediaType* type = find_media_type(name);
             if (type == nullptr) {
                 return;
             }
             MediaRecord record;
             record.kind = type->kind;
             const int file = openat(folder, name, O_RDONLY);
             reader.read(file, static_cast<uint64_t>(status.st_size), folder, name, *type, record);
             close(file);
             writer.write(name, *type, status, record);
         });
}

Cost first_scan() {
    FreshDatabase database;
    return cost_of([&] { database.scan(); });
}

Cost second_scan() {
    FreshDatabase database;
    database.scan();
    return cost_of([&] { database.scan(); });
}

void add(const char* name, double Cost::*part, Cost (*measure)()) {
    benchmark::RegisterBenchmark(name,
                                 [=](benchmark::State& state) {
                                     for (auto _ : state) {
                                         state.SetIterationTime(measure().*part);
                                     }
                                 })
        ->UseManualTime()
        ->Iterations(3)
        ->Unit(benchmark::kMillisecond);
}

}  // namespace

int main(int argc, char** argv) {
    setenv("QRA_LOG", "off", 1);
    benchmark::Initialize(&argc, argv);
    if (argc != 2) {
        give_up("usage: scan_bench TREE");
    }
    g_tree = argv[1];
    sum_of_parts();  // warms the cache

    add("scan/processor_time/measured", &Cost::processor, first_scan);
    add("scan/processor_time/floor", &Cost::processor, [] { return cost_of(sum_of_parts); });
    add("scan/wall_time/measured", &Cost::wall, first_scan);
    add("scan/wall_time/floor", &Cost::wall, [] { return cost_of(sum_of_parts); });
    add("scan/second_scan_wall_time/measured", &Cost::wall, second_scan);
    add("scan/second_scan_wall_time/floor", &Cost::wall, [] { return cost_of(walk_tree); });
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
