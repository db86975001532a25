// How long one page of 18 tiles takes through qra_get_item_v2(), beside one query for the same rows and the
// JSON library's own build and write of the same objects.

#include <benchmark/benchmark.h>
#include <json/json.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "bench/list_client.h"
#include "bench/measure.h"
#include "bench/media_tree.h"
#include "bench/sqlite_floor.h"

namespace {

constexpr int kTiles = 18;
// Pages far enough from each other that none brings another one's values with it.
constexpr int kPageStep = 20 * kTiles;
constexpr int kMediaOnly = 0x04;

bench::MediaTree* g_tree;
std::string g_folder;

using bench::Clock;
using bench::seconds_since;

/// Reads the tiles from `first` on and gives their texts.
std::vector<std::string> read_page(qra_agent_handler_h handle, int first) {
    std::vector<std::string> texts;
    for (int index = first; index < first + kTiles; ++index) {
        char* text = nullptr;
        if (qra_get_item_v2(handle, index, &text) != QRA_ERROR_NONE) {
            std::abort();
        }
        texts.emplace_back(text);
        std::free(text);
    }
    return texts;
}

void first_touch(benchmark::State& state) {
    bench::ListClient client(g_folder, "CONTENT-FOLDER", "CATEGORY-FOLDER-TITLE");
    const int count = client.lay_out(kMediaOnly);
    int first = 0;
    for (auto _ : state) {
        const auto start = Clock::now();
        benchmark::DoNotOptimize(read_page(client.handle(), first));
        state.SetIterationTime(seconds_since(start));
        first += kPageStep;
        if (first + kTiles > count) {
            state.SkipWithError("the folder is too small");
            break;
        }
    }
}

void again(benchmark::State& state) {
    bench::ListClient client(g_folder, "CONTENT-FOLDER", "CATEGORY-FOLDER-TITLE");
    client.lay_out(kMediaOnly);
    read_page(client.handle(), 0);
    for (auto _ : state) {
        benchmark::DoNotOptimize(read_page(client.handle(), 0));
    }
}

/// The objects of the first page, as plain JSON values.
std::vector<Json::Value> first_page_objects() {
    bench::ListClient client(g_folder, "CONTENT-FOLDER", "CATEGORY-FOLDER-TITLE");
    client.lay_out(kMediaOnly);
    std::vector<Json::Value> objects(kTiles);
    const std::vector<std::string> texts = read_page(client.handle(), 0);
    for (int i = 0; i < kTiles; ++i) {
        Json::Reader().parse(texts[static_cast<size_t>(i)], objects[static_cast<size_t>(i)]);
    }
    return objects;
}

/// Members of an object with their keys and values apart, ready for a build.
struct Members {
    std::vector<std::string> keys;
    std::vector<Json::Value> values;
};

std::vector<Members> members_of(const std::vector<Json::Value>& objects) {
    std::vector<Members> all;
    for (const Json::Value& object : objects) {
        Members members;
        for (const std::string& key : object.getMemberNames()) {
            members.keys.push_back(key);
            members.values.push_back(object[key]);
        }
        all.push_back(std::move(members));
    }
    return all;
}

/// Builds the objects member by member and writes them, as any client of the JSON library has to.
size_t build_and_write(const std::vector<Members>& all) {
    size_t length = 0;
    for (const Members& members : all) {
        Json::Value object(Json::objectValue);
        for (size_t i = 0; i < members.keys.size(); ++i) {
            object[members.keys[i]] = members.values[i];
        }
        length += Json::FastWriter().write(object).size();
    }
    return length;
}

/// The ids of the folder's pictures in list order.
std::vector<sqlite3_int64> ids_in_order() {
    std::vector<sqlite3_int64> ids;
    bench::SqliteFloor all(g_tree->database_path(),
                           "WHERE media.storage = 1 AND media.folder = (SELECT id FROM folder WHERE path = "
                           "'/pictures') ORDER BY media.name_key, media.name");
    all.run([&](const bench::SqliteFloor::Row& row) { ids.push_back(row.numbers[0]); });
    return ids;
}

void first_touch_floor(benchmark::State& state) {
    const std::vector<Members> members = members_of(first_page_objects());
    const std::vector<sqlite3_int64> ids = ids_in_order();
    bench::SqliteFloor page(g_tree->database_path(),
                            "WHERE media.id IN (?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
    auto first = ids.begin();
    for (auto _ : state) {
        page.bind({first, first + kTiles});
        const auto start = Clock::now();
        page.run();
        benchmark::DoNotOptimize(build_and_write(members));
        state.SetIterationTime(seconds_since(start));
        first += kPageStep;
    }
    if (page.row_count() != kTiles) {
        state.SkipWithError("the floor did not see 18 rows");
    }
}

void again_floor(benchmark::State& state) {
    const std::vector<Members> members = members_of(first_page_objects());
    for (auto _ : state) {
        benchmark::DoNotOptimize(build_and_write(members));
    }
}

}  // namespace

int main(int argc, char** argv) {
    setenv("QRA_LOG", "off", 1);
    bench::MediaTree tree;
    g_tree = &tree;
    g_folder = tree.add_pictures("pictures", 40000);

    const auto unit = benchmark::kMicrosecond;
    benchmark::RegisterBenchmark("item/first_touch/measured", first_touch)
        ->UseManualTime()
        ->Iterations(100)
        ->Unit(unit);
    benchmark::RegisterBenchmark("item/first_touch/floor", first_touch_floor)
        ->UseManualTime()
        ->Iterations(100)
        ->Unit(unit);
    benchmark::RegisterBenchmark("item/again/measured", again)->Unit(unit);
    benchmark::RegisterBenchmark("item/again/floor", again_floor)->Unit(unit);

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
