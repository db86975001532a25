#include <json/value.h>
#include <json/writer.h>
#include <unistd.h>

#include <string>
#include <variant>

#include "apps/qra/browsing.h"
#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/item_value.h"
#include "apps/qra/list_output.h"
#include "apps/qra/list_request.h"
#include "apps/qra/output.h"
#include "apps/qra/terminal_text.h"
#include "apps/qra/tile_reader.h"

namespace {

/// Tiles that cannot be read: the rest of the list is shown all the same.
class UnreadTiles {
public:
    void note(int index) {
        print_note("tile " + std::to_string(index) + " cannot be read");
        ++count_;
    }
    /// @throws CommandError if there are any
    void check() const {
        if (count_ > 0) {
            throw CommandError(ExitStatus::RequestFailed,
                               std::to_string(count_) + (count_ == 1 ? " tile" : " tiles") +
                                   " could not be read (QRA_LOG=warning tells why)");
        }
    }

private:
    int count_ = 0;
};

void print_json_tiles(ListRequest& request, const TileRange& range, UnreadTiles& unread) {
    for (int index = range.begin; index < range.end; ++index) {
        check_interrupt();
        const auto text = request.item(index);
        if (!text) {
            unread.note(index);
        }
        print(text.value_or("{}\n"));
    }
}

/// What is listed, for a person.
std::string heading(const CommandLine& line, const ListRequest& request) {
    if (line.list.source == kServerSource) {
        const bool in_folder = line.list.folder_id != "/";
        const int groups = line.list.mask == kGroupHeaders ? request.tile_count() : 0;
        return printable_text(line.path + (in_folder ? ", folder " + line.list.folder_id : "")) + "  " +
               (groups == 0 ? summary(request)
                            : std::to_string(groups) + (groups == 1 ? " group" : " groups"));
    }
    if (line.list.source == kPlaylistSource) {
        return printable_text(line.path + ", playlist " + line.list.playlist) + "  " + summary(request);
    }
    if (line.list.source != kCameraSource) {
        return printable_text(line.path) + "  " + summary(request);
    }
    const std::string camera =
        "camera " + std::to_string(line.list.bus) + ":" + std::to_string(line.list.device);
    // Cameras count all that they have as pictures.
    const int count = request.count_of(QRA_MEDIA_TYPE_IMAGE);
    return camera + (line.list.folder_id.empty() ? "" : ", folder " + line.list.folder_id) + "  " +
           std::to_string(count) + (count == 1 ? " item" : " items");
}

Tile read_tile_at(ListRequest& request, int index, UnreadTiles& unread) {
    if (request.reach(index)) {
        return read_tile(request.handle());
    }
    unread.note(index);
    Tile tile;
    tile.media_type = QRA_MEDIA_TYPE_VIDEO;
    tile.detail = "cannot be read";
    return tile;
}

Json::Value json_of(const ItemValue& value) {
    return std::visit(
        [](const auto& content) -> Json::Value {
            if constexpr (std::is_same_v<std::decay_t<decltype(content)>, long long>) {
                return Json::Int64{content};
            } else if constexpr (std::is_same_v<std::decay_t<decltype(content)>, unsigned long long>) {
                return Json::UInt64{content};
            } else {
                return content;
            }
        },
        value);
}

void print_json_values(const CommandLine& line, const std::vector<ItemValue>& values) {
    Json::Value object(Json::objectValue);
    for (std::size_t i = 0; i < values.size(); ++i) {
        object[line.fields[i]] = json_of(values[i]);
    }
    Json::StreamWriterBuilder builder;
    builder["indentation"] = "";
    builder["precision"] = 15;  // all digits that a double is sure to keep, and "2.8" stays "2.8"
    print(Json::writeString(builder, object) + "\n");
}

}  // namespace

void run_list(const CommandLine& line) {
    Browsing browsing(line);
    ListRequest& request = browsing.request();
    const TileRange range = tile_range(line, request.tile_count());
    UnreadTiles unread;
    if (line.json) {
        print_json_tiles(request, range, unread);
    } else {
        print(heading(line, request) + "\n\n");
        print_grid(line.list, range, request.tile_count(),
                   [&](int index) { return read_tile_at(request, index, unread); });
    }
    flush_output();
    unread.check();
}

void run_get(const CommandLine& line) {
    Browsing browsing(line);
    ListRequest& request = browsing.request();
    if (line.index < 0 || line.index >= request.tile_count()) {
        throw CommandError(ExitStatus::RequestFailed, "there is no tile " + std::to_string(line.index) +
                                                          ": the list has " +
                                                          std::to_string(request.tile_count()));
    }
    request.move_to(line.index);
    std::vector<ItemValue> values;
    for (const std::string& field : line.fields) {
        auto value = read_item_value(request.handle(), field);
        if (!value) {
            throw CommandError(ExitStatus::RequestFailed, "tile " + std::to_string(line.index) +
                                                              " has no value " + printable_text(field));
        }
        values.push_back(std::move(*value));
    }
    if (line.json) {
        print_json_values(line, values);
        return;
    }
    const bool for_a_person = isatty(STDOUT_FILENO) == 1;
    for (const ItemValue& value : values) {
        const std::string text = to_text(value);
        print((for_a_person ? printable_text(text) : text) + "\n");
    }
}
