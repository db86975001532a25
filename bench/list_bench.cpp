// How long a list request takes, from the call to its answer, beside a raw loop over the same rows.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "bench/list_client.h"
#include "bench/media_tree.h"
#include "bench/sqlite_floor.h"

namespace {

struct Places {
    bench::MediaTree tree;
    std::string thousand;
    std::string folder;
    std::string everything;
};

Places* g_places;

constexpr const char* kPictures = "media.extension IN ('jpg','jpeg','mpo','bmp','png','gif')";

void run_requests(benchmark::State& state, const std::string& path, const char* content,
                  const char* category) {
    for (auto _ : state) {
        const bench::ListClient client(path, content, category);
        state.SetIterationTime(client.seconds());
    }
}

void run_floor(benchmark::State& state, const std::string& where_and_order, int rows) {
    bench::SqliteFloor floor(g_places->tree.database_path(), where_and_order);
    for (auto _ : state) {
        state.SetIterationTime(floor.run());
    }
    if (floor.row_count() != rows) {
        state.SkipWithError(("the floor saw " + std::to_string(floor.row_count()) + " rows").c_str());
    }
}

std::string flat_by_title() {
    return "WHERE media.storage = 1 AND " + std::string(kPictures) + " ORDER BY media.name_key, media.name";
}

std::string in_folder(const char* name, const char* order) {
    return "WHERE media.storage = 1 AND media.folder = (SELECT id FROM folder WHERE path = '/" +
           std::string(name) + "') AND " + kPictures + " ORDER BY " + order;
}

void flat_request(benchmark::State& state) {
    run_requests(state, g_places->everything, "CONTENT-IMAGE", "CATEGORY-TITLE");
}
void flat_floor(benchmark::State& state) {
    run_floor(state, flat_by_title(), 111000);
}
void folder_title_request(benchmark::State& state) {
    run_requests(state, g_places->folder, "CONTENT-FOLDER", "CATEGORY-FOLDER-TITLE");
}
void folder_title_floor(benchmark::State& state) {
    run_floor(state, in_folder("ten_thousand", "media.name_key, media.name"), 10000);
}
void folder_date_request(benchmark::State& state) {
    run_requests(state, g_places->folder, "CONTENT-FOLDER", "CATEGORY-FOLDER-DATE");
}
void folder_date_floor(benchmark::State& state) {
    run_floor(state, in_folder("ten_thousand", "media.sort_time DESC, media.name_key, media.name"), 10000);
}
void small_request(benchmark::State& state) {
    run_requests(state, g_places->thousand, "CONTENT-FOLDER", "CATEGORY-FOLDER-TITLE");
}
void small_floor(benchmark::State& state) {
    run_floor(state, in_folder("thousand", "media.name_key, media.name"), 1000);
}

}  // namespace

int main(int argc, char** argv) {
    setenv("QRA_LOG", "off", 1);
    Places places;
    g_places = &places;
    places.thousand = places.tree.add_pictures("thousand", 1000);
    places.folder = places.tree.add_pictures("ten_thousand", 10000);
    places.everything = places.tree.add_pictures("hundred_thousand", 100000);

    const auto add = [](const char* name, void (*run)(benchmark::State&), int iterations) {
        benchmark::RegisterBenchmark(name, run)
            ->UseManualTime()
            ->Iterations(iterations)
            ->Unit(benchmark::kMillisecond);
    };
    add("list/flat_title_111000/measured", flat_request, 10);
    add("list/flat_title_111000/floor", flat_floor, 10);
    add("list/folder_title_10000/measured", folder_title_request, 50);
    add("list/folder_title_10000/floor", folder_title_floor, 50);
    add("list/folder_date_groups_10000/measured", folder_date_request, 50);
    add("list/folder_date_groups_10000/floor", folder_date_floor, 50);
    add("list/folder_title_1000/measured", small_request, 200);
    add("list/folder_title_1000/floor", small_floor, 200);

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
