// What lists cost in memory: heap in use per row of a large list, and the private dirty memory of a process
// that holds one list of 1,000 rows. Prints one JSON object in the form of the other benchmarks' counters.

#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "bench/list_client.h"
#include "bench/media_tree.h"

namespace {

constexpr int kLargeList = 100000;
constexpr int kSmallList = 1000;
// "Holiday by the sea IMG_000000.jpg"
constexpr int kNameLength = 33;

size_t heap_in_use() {
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

long private_dirty_kib() {
    std::ifstream rollup("/proc/self/smaps_rollup");
    std::string line;
    while (std::getline(rollup, line)) {
        if (line.rfind("Private_Dirty:", 0) == 0) {
            return std::atol(line.c_str() + std::strlen("Private_Dirty:"));
        }
    }
    return -1;
}

/// Only lists what another process of this program scanned: a scan leaves its own traces in memory.
void hold_small_list(const char* path) {
    const bench::ListClient client(path, "CONTENT-FOLDER", "CATEGORY-FOLDER-TITLE");
    std::printf("private_dirty_kib %ld\n", private_dirty_kib());
}

void hold_large_list(const std::string& path) {
    // The first list pays for what stays in the process.
    { const bench::ListClient warm_up(path, "CONTENT-IMAGE", "CATEGORY-TITLE"); }
    const size_t before = heap_in_use();
    const bench::ListClient client(path, "CONTENT-IMAGE", "CATEGORY-TITLE");
    const double rows = kLargeList + kSmallList;
    const double texts = 6 + kNameLength + static_cast<double>(path.size() + 1 + kNameLength);
    std::printf("heap_bytes_per_row_beyond_texts %.1f\n",
                static_cast<double>(heap_in_use() - before) / rows - texts);
}

}  // namespace

int main(int argc, char** argv) {
    setenv("QRA_LOG", "off", 1);
    if (argc == 2) {
        hold_small_list(argv[1]);
        return 0;
    }
    bench::MediaTree tree;
    const std::string small = tree.add_pictures("small", kSmallList);
    const std::string large = tree.add_pictures("large", kLargeList);
    hold_large_list(large);
    std::fflush(stdout);
    return std::system((std::string(argv[0]) + " '" + small + "'").c_str());
}
