// The agent's own share of a list's time: the request with the platform's iteration replaced by one that
// hands out rows prepared beforehand, beside that iteration alone with a callback that does nothing.

#include <benchmark/benchmark.h>
#include <dlfcn.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <vector>

#include "bench/list_client.h"
#include "bench/media_tree.h"
#include "media_filter.h"
#include "media_info.h"

namespace {

constexpr int kPictures = 100000;

std::vector<media_info_h> g_prepared;

bool keep_row(media_info_h row, void*) {
    media_info_h copy = nullptr;
    if (media_info_clone(&copy, row) == 0) {
        g_prepared.push_back(copy);
    }
    return true;
}

bool ignore_row(media_info_h row, void*) {
    benchmark::DoNotOptimize(row);
    return true;
}

using Iterate = int (*)(filter_h, media_info_cb, void*);

/// The first iteration is the platform's, and its rows are kept; every later one hands those out.
int iterate(filter_h filter, media_info_cb callback, void* user_data) {
    if (g_prepared.empty()) {
        static const auto platform =
            reinterpret_cast<Iterate>(dlsym(RTLD_NEXT, "media_info_foreach_media_from_db"));
        return platform(filter, callback == nullptr ? keep_row : callback, user_data);
    }
    for (const media_info_h row : g_prepared) {
        callback(row, user_data);
    }
    return 0;
}

std::string g_path;

void whole_request(benchmark::State& state) {
    for (auto _ : state) {
        const bench::ListClient client(g_path, "CONTENT-IMAGE", "CATEGORY-TITLE");
        state.SetIterationTime(client.seconds());
    }
}

void prepared_iteration(benchmark::State& state) {
    for (auto _ : state) {
        iterate(nullptr, ignore_row, nullptr);
    }
}

void prepare_rows() {
    filter_h filter = nullptr;
    media_filter_create(&filter);
    media_filter_set_condition(filter, "MEDIA_DISPLAY_NAME LIKE '%.jpg'", 1);
    media_filter_set_order(filter, MEDIA_CONTENT_ORDER_ASC, "MEDIA_DISPLAY_NAME", 1);
    iterate(filter, nullptr, nullptr);
    media_filter_destroy(filter);
}

}  // namespace

// The program's own definition stands before the service's.
extern "C" __attribute__((visibility("default"))) int media_info_foreach_media_from_db(filter_h filter,
                                                                                       media_info_cb callback,
                                                                                       void* user_data) {
    return iterate(filter, callback, user_data);
}

int main(int argc, char** argv) {
    setenv("QRA_LOG", "off", 1);
    bench::MediaTree tree;
    g_path = tree.add_pictures("pictures", kPictures);

    benchmark::Initialize(&argc, argv);
    const auto unit = benchmark::kMillisecond;
    // In this order: rows are handed out as soon as they are prepared.
    benchmark::RegisterBenchmark("agent_share/100000/whole_request",
                                 [](benchmark::State& state) {
                                     g_prepared.clear();
                                     whole_request(state);
                                 })
        ->UseManualTime()
        ->Iterations(10)
        ->Unit(unit);
    benchmark::RegisterBenchmark("agent_share/100000/measured",
                                 [](benchmark::State& state) {
                                     prepare_rows();
                                     whole_request(state);
                                 })
        ->UseManualTime()
        ->Iterations(10)
        ->Unit(unit);
    benchmark::RegisterBenchmark("agent_share/100000/floor", prepared_iteration)->Iterations(10)->Unit(unit);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    for (const media_info_h row : g_prepared) {
        media_info_destroy(row);
    }
    return 0;
}
