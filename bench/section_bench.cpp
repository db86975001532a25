// What the engine's processor time for a section of 200 items is, written to shared memory and given up
// again, beside the bare system calls for as many objects with the same bytes.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "bench/measure.h"
#include "engine/src/section_writer.h"

namespace {

constexpr int kItems = 200;
constexpr size_t kTextLength = 450;  // of a picture's item text
constexpr uid_t kOtherUser = 12345;

double processor_seconds() {
    return bench::seconds_on(CLOCK_THREAD_CPUTIME_ID);
}

std::vector<std::string> item_texts() {
    return std::vector<std::string>(kItems, std::string(kTextLength, 'x'));
}

void write_sections(benchmark::State& state, uid_t reader) {
    const engine::SharedObjects objects;
    const engine::SectionWriter writer(objects);
    const std::vector<std::string> texts = item_texts();
    const engine::SectionContent content = {
        0, kItems - 1, 0, kItems, {{0, 19}, {20, kItems - 1}}, [&texts](int32_t index) {
            return std::string_view(texts[static_cast<size_t>(index)]);
        }};
    for (auto _ : state) {
        const double start = processor_seconds();
        if (!writer.write(content, reader)) {
            std::abort();
        }
        state.SetIterationTime(processor_seconds() - start);
    }
}

/// One result list and four blocks, from buffers that stand already.
void bare_calls(benchmark::State& state) {
    const std::string block(kItems / 4 * (kTextLength + 4) + 28, 'x');
    const std::string list(kItems * 8 + 4 * 128 + 36 + 16, 'x');
    for (auto _ : state) {
        const double start = processor_seconds();
        for (int i = 0; i < 5; ++i) {
            const std::string name = "/qra_bench_" + std::to_string(getpid()) + "_" + std::to_string(i);
            const std::string& bytes = i == 0 ? list : block;
            const int fd = shm_open(name.c_str(), O_CREAT | O_EXCL | O_RDWR, 0600);
            if (fd < 0 || write(fd, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
                std::abort();
            }
            close(fd);
        }
        for (int i = 0; i < 5; ++i) {
            shm_unlink(("/qra_bench_" + std::to_string(getpid()) + "_" + std::to_string(i)).c_str());
        }
        state.SetIterationTime(processor_seconds() - start);
    }
}

void own_user(benchmark::State& state) {
    write_sections(state, geteuid());
}

void other_user(benchmark::State& state) {
    write_sections(state, kOtherUser);
}

}  // namespace

BENCHMARK(own_user)
    ->Name("section/of 200, same user/measured")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(bare_calls)
    ->Name("section/of 200, same user/floor")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(other_user)
    ->Name("section/of 200, other user/measured")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(bare_calls)
    ->Name("section/of 200, other user/floor")
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);

BENCHMARK_MAIN();
