#include "bench/media_tree.h"

#include <sys/stat.h>
#include <sys/time.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include "bench/measure.h"
#include "media_content.h"
#include "media_content_admin.h"

namespace fs = std::filesystem;

namespace bench {

namespace {

constexpr int kSecondsPerDay = 86400;
constexpr int kPicturesPerDay = 100;
constexpr int kFirstDay = 18000;

std::string read_file(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Spreads the pictures over days, so that a list by date has groups.
void set_day(const fs::path& path, int index) {
    const time_t time = static_cast<time_t>(kFirstDay + index / kPicturesPerDay) * kSecondsPerDay + index;
    const timeval times[2] = {{time, 0}, {time, 0}};
    utimes(path.c_str(), times);
}

}  // namespace

MediaTree::MediaTree() {
    std::string name = (fs::temp_directory_path() / "qra-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        give_up("cannot make a temporary directory");
    }
    m_directory = name;
    setenv("QRA_DATA_DIR", (m_directory + "/data").c_str(), 1);
    setenv("QRA_MEDIA_ROOT", (m_directory + "/media").c_str(), 1);
    fs::create_directories(m_directory + "/files");
    if (media_content_connect() != 0) {
        give_up("cannot open the media database in " + m_directory);
    }
}

MediaTree::~MediaTree() {
    media_content_disconnect();
    fs::remove_all(m_directory);
}

std::string MediaTree::add_pictures(const std::string& name, int count) {
    const fs::path folder = fs::path(m_directory) / "files" / name;
    fs::create_directories(folder);
    const std::string photograph = read_file(QRA_BENCH_FIXTURES "/pictures/photo.jpg");
    for (int i = 0; i < count; ++i) {
        char file[64];
        std::snprintf(file, sizeof file, "Holiday by the sea IMG_%06d.jpg", i);
        std::ofstream(folder / file, std::ios::binary) << photograph;
        set_day(folder / file, i);
    }
    char* path = nullptr;
    if (media_content_admin_attach((m_directory + "/files").c_str(), nullptr, &path) != 0) {
        give_up("cannot attach " + m_directory);
    }
    const std::unique_ptr<char, decltype(&std::free)> owned(path, &std::free);
    if (media_content_admin_scan(path, true, nullptr, nullptr) != 0) {
        give_up("cannot scan " + folder.string());
    }
    return std::string(path) + "/" + name;
}

std::string MediaTree::database_path() const {
    char* path = nullptr;
    if (media_content_admin_database_path(&path) != 0) {
        give_up("cannot tell the database's path");
    }
    const std::unique_ptr<char, decltype(&std::free)> owned(path, &std::free);
    return path;
}

}  // namespace bench
