// How long it takes to lay out a page of a million items and to translate between its two index worlds,
// beside a vector of as many runs, filled and walked the same way.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "libqra-agent/agent/src/qra_content_page.h"
#include "libqra-agent/agent/src/qra_content_page_factory.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/source/local-source/qra_group_info.h"
#include "tests/fakes/fake_source.h"

namespace {

constexpr int kItems = 1000000;
constexpr int kRows = 2;
constexpr int kColumns = 9;
constexpr int kPageSize = kRows * kColumns;
constexpr int kTranslations = 1000;
constexpr int kMaskGroupsAndMedia = kMaskGroup | kMaskMedia;

std::vector<int> random_indices(int limit) {
    std::mt19937 random(7);
    std::vector<int> indices(kTranslations);
    for (int& index : indices) {
        index = static_cast<int>(random() % static_cast<unsigned int>(limit));
    }
    return indices;
}

/// A source that says how many items it holds, without holding them.
class MillionItems : public FakeSource {
public:
    using FakeSource::FakeSource;
    bool GetItemCount(int* count) override {
        *count = kItems;
        return true;
    }
};

/// A handle whose source holds `kItems` items in `groups` groups of one size.
struct Request {
    explicit Request(int groups) {
        CQRAGroupInfo info;
        for (int group = 0; group < groups; ++group) {
            info.AddGroup("2021-05-06", kItems / groups);
        }
        script.groups = info;
        handle.SetSource(new MillionItems(script));
        handle.SetGroupInfo(new CQRAGroupInfo(info));
        handle.SetSelectList(new CSelectList);
    }

    /// Lays the page out as SetPageStyle() does and walks it both ways.
    long long lay_out_and_walk(int mask) {
        handle.DestroyContentPage();
        const qra_error_code_e code = CQRAContentPageFactory::GetInstance()->Build(
            &handle, QRA_PAGE_ORDER_ROW, mask, -1, 0, kRows, kColumns, false, false);
        if (code != QRA_ERROR_NONE) {
            std::abort();
        }
        const CQRAContentPage& page = *handle.GetContentPage();
        long long sum = 0;
        for (const int index : random_indices(page.GetTotalSize())) {
            sum += page.GetDBIndex(index);
        }
        for (const int index : random_indices(kItems)) {
            sum += page.GetPageIndexByDBIndex(index, QRA_PG_ITEM_CONTENTS);
        }
        return sum;
    }

    SourceScript script;
    CQRAAgentHandle handle;
};

struct Run {
    int type;
    int start;
    int count;
};

void append(std::vector<Run>& runs, int& filled, Run run) {
    while (run.count > 0) {
        const int count = std::min(run.count, kPageSize - filled % kPageSize);
        runs.push_back({run.type, run.start, count});
        run.start += count;
        run.count -= count;
        filled += count;
    }
}

/// The same layout in one vector of runs, with the page's first run found by division and the way back walked
/// run by run.
long long floor_lay_out_and_walk(int groups, bool headers) {
    std::vector<Run> runs;
    std::vector<size_t> first_run_of_page;
    int filled = 0;
    for (int group = 0; group < groups; ++group) {
        if (headers) {
            append(runs, filled, {3, group, 1});
        }
        append(runs, filled, {2, group * (kItems / groups), kItems / groups});
    }
    int position = 0;
    for (size_t i = 0; i < runs.size(); ++i) {
        if (position % kPageSize == 0) {
            first_run_of_page.push_back(i);
        }
        position += runs[i].count;
    }
    long long sum = 0;
    for (const int index : random_indices(filled)) {
        int slot = index % kPageSize;
        size_t i = first_run_of_page[static_cast<size_t>(index / kPageSize)];
        for (; slot >= runs[i].count; ++i) {
            slot -= runs[i].count;
        }
        sum += runs[i].type == 2 ? runs[i].start + slot : -1;
    }
    for (const int index : random_indices(kItems)) {
        int at = 0;
        for (const Run& run : runs) {
            if (run.type == 2 && index >= run.start && index < run.start + run.count) {
                sum += at + index - run.start;
                break;
            }
            at += run.count;
        }
    }
    return sum;
}

void measured(benchmark::State& state, int groups, int mask) {
    Request request(groups);
    long long sum = 0;
    for (auto _ : state) {
        sum = request.lay_out_and_walk(mask);
    }
    if (sum != floor_lay_out_and_walk(groups, mask == kMaskGroupsAndMedia)) {
        state.SkipWithError("the page and the floor do not agree");
    }
}

void floor(benchmark::State& state, int groups, bool headers) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(floor_lay_out_and_walk(groups, headers));
    }
}

}  // namespace

int main(int argc, char** argv) {
    setenv("QRA_LOG", "off", 1);
    const auto add = [](const char* name, int groups, int mask) {
        const std::string prefix = std::string("page/") + name;
        benchmark::RegisterBenchmark((prefix + "/measured").c_str(), [=](benchmark::State& state) {
            measured(state, groups, mask);
        })->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((prefix + "/floor").c_str(), [=](benchmark::State& state) {
            floor(state, groups, mask == kMaskGroupsAndMedia);
        })->Unit(benchmark::kMillisecond);
    };
    add("one_run", 1, kMaskMedia);
    add("thousand_groups", 1000, kMaskGroupsAndMedia);

    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
