// What a copy job costs beside its floor: for one large file a plain loop with the same blocks and the same
// flushes, for many small ones, whose rows go into the media database, two loops that make, write, flush and
// close files of the same size and read none: one without rows, and one that gives each file a row, as it is
// done plainly, in a transaction of its own. And how long a stop takes in the middle of the large file,
// beside the time that it takes to remove as much of it.
//
// Each pair runs in turn, in directories of its own, as a directory that others were removed from is slower.
// The medians count. Beside the time stands the processor time of one file, which a busy disk does not
// change.

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "bench/measure.h"
#include "media_content.h"
#include "media_content_admin.h"
#include "tests/integration/batch_list.h"

namespace fs = std::filesystem;

namespace {

using bench::Cost;
using bench::cost_of;
using bench::give_up;
using bench::median;

constexpr size_t kBlock = 65536;
constexpr int kBlocksPerFlush = 16;
constexpr size_t kSmallFile = 4096;
constexpr int kPatience = 10000;  // milliseconds for the rows of the job before

/// A drive with a media database of its own, in the directory that the command line names.
class Drive {
public:
    explicit Drive(const std::string& directory) {
        std::string pattern = directory + "/qra-bench-XXXXXX";
        if (mkdtemp(pattern.data()) == nullptr) {
            give_up("cannot make a directory in " + directory);
        }
        root_ = fs::canonical(pattern);
        setenv("QRA_DATA_DIR", (root_ / "data").c_str(), 1);
        setenv("QRA_MEDIA_ROOT", (root_ / "media").c_str(), 1);
        setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/socket", 1);
        fs::create_directories(target("source"));
    }
    ~Drive() {
        media_content_disconnect();
        fs::remove_all(root_);
    }
    Drive(const Drive&) = delete;
    Drive& operator=(const Drive&) = delete;

    fs::path target(const std::string& relative) const { return root_ / "stick" / relative; }
    fs::path database() const { return root_ / "data" / "media.db"; }
    std::string path(const std::string& relative) const { return drive_ + "/" + relative; }

    void write(const std::string& name, size_t size) const {
        const std::vector<char> block(kBlock, 'x');
        std::ofstream file(target("source/" + name), std::ios::binary);
        for (size_t left = size; left > 0; left -= std::min(left, kBlock)) {
            file.write(block.data(), static_cast<std::streamsize>(std::min(left, kBlock)));
        }
    }
    void scan() {
        char* attached = nullptr;
        if (media_content_connect() != 0 ||
            media_content_admin_attach((root_ / "stick").c_str(), nullptr, &attached) != 0 ||
            media_content_admin_scan(attached, true, nullptr, nullptr) != 0) {
            give_up("cannot scan the drive");
        }
        drive_ = attached;
        std::free(attached);
    }
    /// An empty directory. Whatever was written before is not to be paid for by what goes there.
    std::string fresh(const std::string& name) {
        std::string relative = name + std::to_string(made_++);
        fs::create_directories(target(relative));
        sync();
        return relative;
    }

private:
    fs::path root_;
    std::string drive_;
    int made_ = 0;
};

void copy_plainly(const fs::path& from, const fs::path& to, size_t most = SIZE_MAX) {
    std::vector<char> buffer(kBlock);
    const int source = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int dest = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    int blocks = 0;
    size_t done = 0;
    for (ssize_t size = 0; done < most && (size = read(source, buffer.data(), kBlock)) > 0;) {
        done += static_cast<size_t>(size);
        if (write(dest, buffer.data(), static_cast<size_t>(size)) != size) {
            give_up("cannot write " + to.string());
        }
        if (++blocks % kBlocksPerFlush == 0) {
            fsync(dest);
        }
    }
    fsync(dest);
    close(source);
    close(dest);
}

void write_plainly(const std::vector<char>& content, const fs::path& to) {
    const int dest = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (write(dest, content.data(), content.size()) != static_cast<ssize_t>(content.size())) {
        give_up("cannot write " + to.string());
    }
    fsync(dest);
    close(dest);
}

/// Enters copies of the first drive's files as a plain program would: the row of the source once more, in
/// another folder, each in a transaction of its own.
class PlainRows {
public:
    PlainRows(const fs::path& database, const std::string& folder) {
        check(sqlite3_open(database.c_str(), &database_));
        sqlite3_busy_timeout(database_, kPatience);
        run("PRAGMA synchronous = NORMAL");
        run("INSERT INTO folder(storage, path, name, name_key) SELECT key, '/" + folder + "', '" + folder +
            "', x'00' FROM storage LIMIT 1");
        const std::string folder_id = std::to_string(sqlite3_last_insert_rowid(database_));
        std::string columns;
        std::string values;
        sqlite3_stmt* names = nullptr;
        check(sqlite3_prepare_v2(database_, "SELECT name FROM pragma_table_info('media') WHERE name <> 'id'",
                                 -1, &names, nullptr));
        while (sqlite3_step(names) == SQLITE_ROW) {
            const std::string name = reinterpret_cast<const char*>(sqlite3_column_text(names, 0));
            columns += (columns.empty() ? "" : ", ") + name;
            values += (values.empty() ? "" : ", ") + (name == "folder" ? folder_id : name);
        }
        sqlite3_finalize(names);
        const std::string sql =
            "INSERT INTO media(" + columns + ") SELECT " + values + " FROM media WHERE id = ?";
        check(sqlite3_prepare_v2(database_, sql.c_str(), -1, &insert_, nullptr));
    }
    ~PlainRows() {
        sqlite3_finalize(insert_);
        sqlite3_close(database_);
    }
    PlainRows(const PlainRows&) = delete;
    PlainRows& operator=(const PlainRows&) = delete;

    void add(int source_id) {
        sqlite3_bind_int(insert_, 1, source_id);
        if (sqlite3_step(insert_) != SQLITE_DONE || sqlite3_changes(database_) != 1) {
            give_up(std::string("cannot enter a file: ") + sqlite3_errmsg(database_));
        }
        sqlite3_reset(insert_);
    }

private:
    void run(const std::string& sql) {
        check(sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr));
    }
    void check(int code) {
        if (code != SQLITE_OK) {
            give_up(std::string("the database of the plain program: ") + sqlite3_errmsg(database_));
        }
    }

    sqlite3* database_ = nullptr;
    sqlite3_stmt* insert_ = nullptr;
};

/// Opens the list of the source folder and selects all of it.
void open_selection(BatchList& list) {
    if (!list.ok()) {
        give_up("cannot list the drive");
    }
    list.set_patience(std::chrono::hours(1));
    list.select_all();
    list.navigate(QRA_NAVIGATION_TYPE_SELECTED);
}

Cost copy_job(const Drive& drive, const std::string& folder, int files) {
    BatchList list(drive.path("source"));
    open_selection(list);
    int done = 0;
    int event = -1;
    const Cost cost = cost_of([&] {
        event = list.run(
            QRA_PROCESSOR_TYPE_COPY, drive.path(folder),
            [&](qra_event_e, const qra_share_status_info_s& status) { done = status.nFinishedCount; });
    });
    if (event != QRA_EVENT_BATCH_FINISHED || done != files) {
        give_up("the job copied " + std::to_string(done) + " files");
    }
    return cost;
}

/// How long it takes to stop a copy at the end of the `mebibytes`th of its file.
double stop_of_job(const Drive& drive, const std::string& folder, size_t mebibytes) {
    BatchList list(drive.path("source"));
    open_selection(list);
    const std::string copy = drive.target(folder + "/PHOTO/0.jpg");
    if (!list.start(QRA_PROCESSOR_TYPE_COPY, drive.path(folder))) {
        give_up("cannot start a job");
    }
    struct stat status {};
    while (stat(copy.c_str(), &status) != 0 ||
           static_cast<unsigned long long>(status.st_size) >> 20 < mebibytes) {
        usleep(100);
    }
    const Cost cost = cost_of([&] { list.stop(); });
    if (fs::exists(copy)) {
        give_up("the job was over before it was stopped");
    }
    return cost.wall;
}

double load() {
    double load = 0;
    getloadavg(&load, 1);
    return load;
}

using Floor = std::function<void(const Drive&, const std::string& folder)>;

void compare(Drive& drive, const std::string& what, int files, int pairs, const Floor& floor) {
    std::vector<double> floors;
    std::vector<double> jobs;
    std::vector<double> ratios;
    std::vector<double> floor_processor;
    std::vector<double> job_processor;
    for (int pair = 0; pair < pairs; ++pair) {
        const std::string floor_folder = drive.fresh("floor");
        const Cost plain = cost_of([&] { floor(drive, floor_folder); });
        const Cost job = copy_job(drive, drive.fresh("copy"), files);
        floors.push_back(plain.wall);
        jobs.push_back(job.wall);
        ratios.push_back(job.wall / plain.wall);
        floor_processor.push_back(plain.processor * 1e3 / files);
        job_processor.push_back(job.processor * 1e3 / files);
    }
    std::printf(
        "%-24s floor %8.3f s  job %8.3f s  ratio %5.2f  (medians of %d pairs; load %.1f; processor %.3f and "
        "%.3f ms a file)\n",
        what.c_str(), median(floors), median(jobs), median(ratios), pairs, load(), median(floor_processor),
        median(job_processor));
}

double removal(const Drive& drive, const std::string& folder, size_t size) {
    const fs::path part = drive.target(folder + "/0.jpg");
    copy_plainly(drive.target("source/0.jpg"), part, size);
    return cost_of([&] { unlink(part.c_str()); }).wall;
}

void compare_stops(Drive& drive, size_t mebibytes, int pairs) {
    std::vector<double> removals;
    std::vector<double> stops;
    for (int pair = 0; pair < pairs; ++pair) {
        removals.push_back(removal(drive, drive.fresh("removed"), mebibytes << 20));
        stops.push_back(stop_of_job(drive, drive.fresh("stopped"), mebibytes));
    }
    std::printf("%-24s floor %8.1f ms job %8.1f ms  at most %.1f ms  (medians of %d pairs; load %.1f)\n",
                ("stop after " + std::to_string(mebibytes) + " MiB").c_str(), median(removals) * 1e3,
                median(stops) * 1e3, *std::max_element(stops.begin(), stops.end()) * 1e3, pairs, load());
}

void compare_large(const std::string& directory, int mebibytes, int pairs) {
    Drive drive(directory);
    drive.write("0.jpg", static_cast<size_t>(mebibytes) << 20);
    drive.scan();
    compare(drive, std::to_string(mebibytes) + " MiB in one file", 1, pairs,
            [](const Drive& on, const std::string& folder) {
                copy_plainly(on.target("source/0.jpg"), on.target(folder + "/0.jpg"));
            });
    compare_stops(drive, static_cast<size_t>(mebibytes) / 2, pairs);
}

void compare_small(const std::string& directory, int files, int pairs) {
    Drive drive(directory);
    for (int i = 0; i < files; ++i) {
        drive.write(std::to_string(i) + ".jpg", kSmallFile);
    }
    drive.scan();
    const std::vector<char> content(kSmallFile, 'x');
    const auto name = [](const std::string& folder, int i) {
        return folder + "/" + std::to_string(i) + ".jpg";
    };
    const std::string what = std::to_string(files) + " small files";
    compare(drive, what, files, pairs, [&](const Drive& on, const std::string& folder) {
        for (int i = 0; i < files; ++i) {
            write_plainly(content, on.target(name(folder, i)));
        }
    });
    compare(drive, what + ", rows", files, pairs, [&](const Drive& on, const std::string& folder) {
        PlainRows rows(on.database(), folder);
        for (int i = 0; i < files; ++i) {
            write_plainly(content, on.target(name(folder, i)));
            rows.add(i + 1);
        }
    });
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 5) {
        give_up("usage: copy_bench DIRECTORY [MIB_OF_THE_LARGE_FILE [SMALL_FILES [PAIRS]]]");
    }
    setenv("QRA_LOG", "off", 1);
    const int mebibytes = argc > 2 ? std::atoi(argv[2]) : 1024;
    const int small_files = argc > 3 ? std::atoi(argv[3]) : 10000;
    const int pairs = argc > 4 ? std::max(std::atoi(argv[4]), 1) : 7;
    if (mebibytes > 0) {
        compare_large(argv[1], mebibytes, pairs);
    }
    if (small_files > 0) {
        compare_small(argv[1], small_files, pairs);
    }
    return 0;
}
