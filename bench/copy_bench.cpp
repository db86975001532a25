// What a copy job costs beside a plain loop with the same blocks and the same flushes: one large file, and
// many small ones with their rows in the media database. Each pair runs in turn, and the median of the ratios
// counts.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "media_content.h"
#include "media_content_admin.h"
#include "tests/integration/batch_list.h"

namespace fs = std::filesystem;

namespace {

constexpr size_t kBlock = 65536;
constexpr int kBlocksPerFlush = 16;
constexpr size_t kSmallFile = 4096;

[[noreturn]] void give_up(const std::string& what) {
    std::fprintf(stderr, "bench: %s\n", what.c_str());
    std::exit(1);
}

template <class Work>
double seconds_of(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

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
        fs::create_directories(target("copy"));
        fs::create_directories(target("floor"));
    }
    ~Drive() {
        media_content_disconnect();
        fs::remove_all(root_);
    }
    Drive(const Drive&) = delete;
    Drive& operator=(const Drive&) = delete;

    fs::path target(const std::string& relative) const { return root_ / "stick" / relative; }
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
    void clear() const {
        for (const char* folder : {"copy", "floor"}) {
            fs::remove_all(target(folder));
            fs::create_directories(target(folder));
        }
        // Whatever these removals left to the file system is not to be paid for by the next run.
        sync();
    }

private:
    fs::path root_;
    std::string drive_;
};

void copy_plainly(const fs::path& from, const fs::path& to) {
    std::vector<char> buffer(kBlock);
    const int source = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int dest = open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    int blocks = 0;
    for (ssize_t size = 0; (size = read(source, buffer.data(), kBlock)) > 0;) {
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

double plain_loop(const Drive& drive, const std::vector<std::string>& names) {
    return seconds_of([&] {
        for (const std::string& name : names) {
            copy_plainly(drive.target("source/" + name), drive.target("floor/" + name));
        }
    });
}

double copy_job(const Drive& drive, const std::vector<std::string>& names) {
    BatchList list(drive.path("source"));
    if (!list.ok()) {
        give_up("cannot list the drive");
    }
    list.set_patience(std::chrono::hours(1));
    list.select_all();
    list.navigate(QRA_NAVIGATION_TYPE_SELECTED);
    int done = 0;
    int event = -1;
    const double seconds = seconds_of([&] {
        event = list.run(
            QRA_PROCESSOR_TYPE_COPY, drive.path("copy"),
            [&](qra_event_e, const qra_share_status_info_s& status) { done = status.nFinishedCount; });
    });
    if (event != QRA_EVENT_BATCH_FINISHED || done != static_cast<int>(names.size())) {
        give_up("the job copied " + std::to_string(done) + " files");
    }
    return seconds;
}

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void compare(const std::string& what, const std::string& directory, int files, size_t size, int pairs) {
    Drive drive(directory);
    std::vector<std::string> names;
    for (int i = 0; i < files; ++i) {
        names.push_back(std::to_string(i) + ".jpg");
        drive.write(names.back(), size);
    }
    drive.scan();
    std::vector<double> floors;
    std::vector<double> jobs;
    std::vector<double> ratios;
    for (int pair = 0; pair < pairs; ++pair) {
        drive.clear();
        floors.push_back(plain_loop(drive, names));
        drive.clear();
        jobs.push_back(copy_job(drive, names));
        ratios.push_back(jobs.back() / floors.back());
    }
    double load = 0;
    getloadavg(&load, 1);
    std::printf("%-24s floor %8.3f s  job %8.3f s  ratio %5.2f  (medians of %d pairs; load %.1f)\n",
                what.c_str(), median(floors), median(jobs), median(ratios), pairs, load);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 4) {
        give_up("usage: copy_bench DIRECTORY [MIB_OF_THE_LARGE_FILE [SMALL_FILES]]");
    }
    setenv("QRA_LOG", "off", 1);
    const int mebibytes = argc > 2 ? std::atoi(argv[2]) : 1024;
    const int small_files = argc > 3 ? std::atoi(argv[3]) : 10000;
    compare(std::to_string(mebibytes) + " MiB in one file", argv[1], 1, static_cast<size_t>(mebibytes) << 20,
            7);
    compare(std::to_string(small_files) + " small files", argv[1], small_files, kSmallFile, 3);
    return 0;
}
