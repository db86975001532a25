// How long 5 playlists of 10,000 items each take to load, beside reading the same bytes and splitting them
// into fields; and one typed value of an open playlist through the C interface, beside a map look-up and a
// copy of the same text.

#include <benchmark/benchmark.h>
#include <qra/qra_content_agent.h>
#include <stdlib.h>

#include <condition_variable>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "libqra-agent/playlist/m3u_playlist.h"
#include "libqra-agent/playlist/qra_playlist_item.h"

namespace {

constexpr int kPlaylists = 5;
constexpr int kItems = 10000;

/// A media root with a drive that has the playlists "0" to "4".
class Drive {
public:
    Drive() {
        std::string pattern = (std::filesystem::temp_directory_path() / "qra-bench-XXXXXX").string();
        root_ = mkdtemp(pattern.data());
        setenv("QRA_MEDIA_ROOT", root_.c_str(), 1);
        setenv("QRA_LOG", "off", 1);
        std::filesystem::create_directories(path());
        for (int i = 0; i < kPlaylists; ++i) {
            write(i);
        }
    }
    ~Drive() { std::filesystem::remove_all(root_); }
    Drive(const Drive&) = delete;
    Drive& operator=(const Drive&) = delete;

    std::string path() const { return root_ + "/USBDriveA"; }
    static std::string file(int number) { return std::to_string(number) + ".m3u"; }

private:
    void write(int number) const {
        std::ofstream stream(path() + "/" + file(number), std::ios::binary);
        stream << "#EXTM3U\n#EXT-X-COUNT:" << kItems << "\n#EXT-X-NAME:" << number << "\n";
        for (int i = 0; i < kItems; ++i) {
            stream << "#EXTINF:215000.|A song that has the number " << i
                   << "|The band of the village|Greatest hits|Pop|2015|4096000|mp3|/thumbnails/" << i
                   << ".jpg|320|44100|" << i << "|" << path() << "/music/song-" << i
                   << ".mp3|1500000000|song-" << i << ".mp3|audio/mpeg|loc|1500000001|3|16|5|0\n\n";
        }
    }

    std::string root_;
};

Drive* g_drive;

void read_and_split(benchmark::State& state) {
    for (auto _ : state) {
        for (int i = 0; i < kPlaylists; ++i) {
            std::vector<std::vector<std::string>> records;
            std::ifstream stream(g_drive->path() + "/" + Drive::file(i), std::ios::binary);
            for (std::string line; std::getline(stream, line);) {
                std::vector<std::string>& fields = records.emplace_back();
                for (size_t begin = 0; begin <= line.size();) {
                    const size_t end = std::min(line.find('|', begin), line.size());
                    fields.emplace_back(line, begin, end - begin);
                    begin = end + 1;
                }
            }
            benchmark::DoNotOptimize(records);
        }
    }
}

void load(benchmark::State& state) {
    for (auto _ : state) {
        for (int i = 0; i < kPlaylists; ++i) {
            M3UPlaylist playlist;
            if (!playlist.Load(g_drive->path(), Drive::file(i)) || playlist.GetItemCount() != kItems) {
                state.SkipWithError("the playlist does not load");
            }
        }
    }
}

void map_and_copy(benchmark::State& state) {
    std::map<std::string, std::string> values;
    for (int i = 0; i < kItems; ++i) {
        values[std::to_string(i)] = g_drive->path() + "/music/song-" + std::to_string(i) + ".mp3";
    }
    std::vector<std::string> keys;
    for (int i = 0; i < kItems; ++i) {
        keys.push_back(std::to_string(i));
    }
    for (auto _ : state) {
        for (const std::string& key : keys) {
            char* text = strdup(values.find(key)->second.c_str());
            benchmark::DoNotOptimize(text);
            free(text);
        }
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

/// An open list of the playlist "0", laid out.
class OpenList {
public:
    OpenList() {
        qra_general_param_h param = nullptr;
        qra_create_general_param(&param);
        qra_param_set_general_source(param, "SOURCE_PLAYLIST");
        qra_param_set_general_path(param, g_drive->path().c_str());
        qra_param_set_general_playlist_name(param, "0");
        qra_param_set_general_content_type(param, "CONTENT-MUSIC");
        qra_param_set_general_sort_category(param, "CATEGORY-TITLE");
        qra_request_list_v2(param, &on_list, this, &handle_);
        qra_destroy_general_param(param);
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return answered_; });
        qra_page_param_h style = nullptr;
        qra_create_page_param(&style);
        qra_param_set_page_style_mask(style, 0x04);
        qra_param_set_page_style_group_index(style, -1);
        qra_set_page_style_v2(handle_, style);
        qra_destroy_page_param(style);
    }
    ~OpenList() { qra_disconnect_v2(handle_); }
    OpenList(const OpenList&) = delete;
    OpenList& operator=(const OpenList&) = delete;

    qra_agent_handler_h handle() const { return handle_; }

private:
    static bool on_list(void* self_pointer, CQRAAgentHandle*, qra_event_e, int, const char*) {
        auto* self = static_cast<OpenList*>(self_pointer);
        const std::lock_guard<std::mutex> lock(self->mutex_);
        self->answered_ = true;
        self->changed_.notify_all();
        return true;
    }

    qra_agent_handler_h handle_ = nullptr;
    std::mutex mutex_;
    std::condition_variable changed_;
    bool answered_ = false;
};

void move_and_read(benchmark::State& state) {
    const OpenList list;
    for (auto _ : state) {
        for (int i = 0; i < kItems; ++i) {
            char* text = nullptr;
            if (qra_move_to_index_v2(list.handle(), i) != QRA_ERROR_NONE ||
                qra_get_item_value_char_v2(list.handle(), "FILE_PATH", &text) != QRA_ERROR_NONE) {
                state.SkipWithError("the item cannot be read");
                break;
            }
            free(text);
        }
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

void read_only(benchmark::State& state) {
    const OpenList list;
    for (auto _ : state) {
        for (int i = 0; i < kItems; ++i) {
            char* text = nullptr;
            if (qra_get_item_value_char_v2(list.handle(), "FILE_PATH", &text) != QRA_ERROR_NONE) {
                state.SkipWithError("the item cannot be read");
                break;
            }
            free(text);
        }
    }
    state.SetItemsProcessed(state.iterations() * kItems);
}

}  // namespace

int main(int argc, char** argv) {
    Drive drive;
    g_drive = &drive;
    benchmark::Initialize(&argc, argv);
    constexpr benchmark::TimeUnit unit = benchmark::kMillisecond;
    benchmark::RegisterBenchmark("playlist/load/measured", load)->Unit(unit);
    benchmark::RegisterBenchmark("playlist/load/floor", read_and_split)->Unit(unit);
    benchmark::RegisterBenchmark("playlist/walk/measured", move_and_read)->Unit(unit);
    benchmark::RegisterBenchmark("playlist/walk/floor", map_and_copy)->Unit(unit);
    benchmark::RegisterBenchmark("playlist/value/measured", read_only)->Unit(unit);
    benchmark::RegisterBenchmark("playlist/value/floor", map_and_copy)->Unit(unit);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
