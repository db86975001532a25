// How long it takes to walk a remote list in order through qra_get_item_v2(), all sections being there: 200
// items to a section, texts of some 300 bytes. Beside it the same texts copied out of a mapping of the same
// objects, with one malloc for each. The floor knows where each text lies.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <qra/qra_content_agent.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "common/datamodel/qra_resultpool.h"
#include "libqra-agent/agent/src/qra_handler.h"
#include "libqra-agent/agent/src/qra_handler_mgr.h"
#include "libqra-agent/agent/src/qra_selectlist.h"
#include "libqra-agent/agent/src/qra_type.h"
#include "libqra-agent/agent/src/qra_web_agent.h"
#include "tests/fakes/result_objects.h"

namespace {

constexpr int kSectionSize = 200;
constexpr int kMaskFolder = 0x02;

std::string item_text(int index) {
    const std::string number = std::to_string(index);
    return R"({"DISPLAY_NAME":"photo )" + number +
           R"(.jpg","FILE_PATH":"","ID_QRA":"/remote.php/dav/photos/)" + number +
           R"(.jpg","MEDIA_TYPE":2,"MIME_TYPE":"image/jpeg","MODIFIED_TIME":1700000000,"SIZE":)" + number +
           R"(000,"THUMBNAIL_PATH":"","TITLE":"photo )" + number +
           R"(","URL":"https://cloud.example.org/remote.php/dav/files/someone/photos/)" + number +
           R"(.jpg"})";
}

/// A list of an engine, in shared memory.
class SharedList {
public:
    explicit SharedList(int total) {
        for (int start = 0; start < total; start += kSectionSize)
            write_section(start, total);
    }

    const std::vector<std::string>& sections() const { return sections_; }
    const std::vector<std::string>& blocks() const { return blocks_; }

private:
    void write_section(int start, int total) {
        ResultListObject list;
        BlockObject block;
        list.start_index = block.start_index = start;
        list.section_index = start / kSectionSize;
        list.total_count = block.total_count = total;
        for (int i = 0; i < kSectionSize; ++i) {
            list.items.emplace_back(0, i);
            block.texts.push_back(item_text(start + i));
        }
        files_.push_back(std::make_unique<ShmFile>(block.bytes()));
        blocks_.push_back(files_.back()->name());
        list.block_names = {blocks_.back()};
        files_.push_back(std::make_unique<ShmFile>(list.bytes()));
        sections_.push_back(files_.back()->name());
    }

    std::vector<std::unique_ptr<ShmFile>> files_;
    std::vector<std::string> sections_;
    std::vector<std::string> blocks_;
};

/// A client's handle on such a list, every section of which has arrived.
class RemoteClient {
public:
    explicit RemoteClient(const SharedList& list) {
        handle_.SetAgentInstance(new CQRAWebAgent);
        handle_.SetSelectList(new CSelectList);
        handle_.SetSourceName("CloudSource");
        handle_.SetResultPool(new CResultPool(0, kSectionSize, QRA_PREFETCH_AUTO));
        handle_.GetResultPool()->SetCallBack([](void*, int, int, int) { return true; }, nullptr,
                                             [](void*, const std::string&) { return true; }, nullptr);
        for (const std::string& section : list.sections())
            handle_.GetResultPool()->Push(new CResultList(section, EQRAWriter::Untrusted));
        CQRAHandlerMgr::GetInstance()->Add(handle_.GetValue());
        qra_page_style_s style;
        style.mask = kMaskFolder;
        if (qra_set_page_style_v2(&handle_, &style) != QRA_ERROR_NONE)
            std::abort();
    }
    ~RemoteClient() { CQRAHandlerMgr::GetInstance()->Delete(handle_.GetValue()); }

    void walk(int total) {
        for (int i = 0; i < total; ++i) {
            char* text = nullptr;
            if (qra_get_item_v2(&handle_, i, &text) != QRA_ERROR_NONE || text[0] != '{')
                std::abort();
            benchmark::DoNotOptimize(text);
            std::free(text);
        }
    }

private:
    CQRAAgentHandle handle_;
};

/// The blocks of a list, mapped, with the place of each text.
class MappedTexts {
public:
    explicit MappedTexts(const SharedList& list) {
        int index = 0;
        for (const std::string& name : list.blocks()) {
            const int descriptor = shm_open(name.c_str(), O_RDONLY, 0);
            const auto size = static_cast<size_t>(lseek(descriptor, 0, SEEK_END));
            void* const address = mmap(nullptr, size, PROT_READ, MAP_SHARED, descriptor, 0);
            close(descriptor);
            if (address == MAP_FAILED)
                std::abort();
            const char* at = static_cast<const char*>(address) + 28 + kSectionSize * sizeof(int32_t);
            for (int i = 0; i < kSectionSize; ++i, ++index) {
                texts_.emplace_back(at, item_text(index).size());
                at += texts_.back().second;
            }
            mappings_.emplace_back(address, size);
        }
    }
    ~MappedTexts() {
        for (const auto& [address, size] : mappings_)
            munmap(address, size);
    }

    void walk() const {
        for (const auto& [at, length] : texts_) {
            char* const text = static_cast<char*>(std::malloc(length + 1));
            std::memcpy(text, at, length);
            text[length] = '\0';
            if (text[0] != '{')
                std::abort();
            benchmark::DoNotOptimize(text);
            std::free(text);
        }
    }

private:
    std::vector<std::pair<const char*, size_t>> texts_;
    std::vector<std::pair<void*, size_t>> mappings_;
};

void measured(benchmark::State& state, int total) {
    const SharedList list(total);
    RemoteClient client(list);
    client.walk(total);
    for (auto _ : state)
        client.walk(total);
    state.counters["per_item"] = benchmark::Counter(
        total, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void floor(benchmark::State& state, int total) {
    const SharedList list(total);
    const MappedTexts texts(list);
    texts.walk();
    for (auto _ : state)
        texts.walk();
    state.counters["per_item"] = benchmark::Counter(
        total, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

}  // namespace

int main(int argc, char** argv) {
    setenv("QRA_LOG", "off", 1);
    for (const int total : {1000, 100000}) {
        const std::string prefix = "remote_list/" + std::to_string(total) + "_items";
        benchmark::RegisterBenchmark((prefix + "/measured").c_str(), [total](benchmark::State& state) {
            measured(state, total);
        })->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark((prefix + "/floor").c_str(), [total](benchmark::State& state) {
            floor(state, total);
        })->Unit(benchmark::kMillisecond);
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
