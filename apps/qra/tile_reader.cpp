#include "apps/qra/tile_reader.h"

#include <ctime>

#include "apps/qra/item_value.h"
#include "apps/qra/terminal_text.h"

namespace {

std::string joined(const std::string& left, const std::string& right, const char* separator) {
    return left.empty() || right.empty() ? left + right : left + separator + right;
}

std::string date_of(qra_agent_handler_h list, const char* field) {
    return readable_time(static_cast<std::time_t>(read_number(list, field)));
}

std::string size_of(qra_agent_handler_h list) {
    return readable_size(read_number(list, "SIZE"));
}

std::string duration_of(qra_agent_handler_h list) {
    const auto milliseconds = read_number(list, "DURATION");
    return milliseconds == 0 ? std::string() : readable_duration(milliseconds);
}

std::string counted(unsigned long long count, const std::string& singular, const std::string& plural) {
    return std::to_string(count) + " " + (count == 1 ? singular : plural);
}

void read_folder(qra_agent_handler_h list, Tile& tile) {
    tile.title = read_text(list, "DISPLAY_NAME");
    tile.detail = "folder";
    tile.date = date_of(list, "MODIFIED_TIME");
}

void read_image(qra_agent_handler_h list, Tile& tile) {
    tile.title = read_text(list, "DISPLAY_NAME");
    const auto width = read_number(list, "WIDTH");
    const auto height = read_number(list, "HEIGHT");
    const std::string extent =
        width == 0 || height == 0 ? "" : std::to_string(width) + "x" + std::to_string(height);
    tile.detail = joined(size_of(list), extent, "  ");
    tile.date = date_of(list, "MODIFIED_TIME");
}

void read_package(qra_agent_handler_h list, Tile& tile) {
    const std::string path = read_text(list, "FILE_PATH");
    const std::string title = read_text(list, "TITLE_60");
    tile.title = title.empty() ? path.substr(path.rfind('/') + 1) : title;
    tile.detail = "package";
}

/// Packages in the lists of videos are tiles of the same kind, and have no name of their own.
void read_video(qra_agent_handler_h list, Tile& tile) {
    tile.title = read_text(list, "DISPLAY_NAME");
    if (tile.title.empty()) {
        read_package(list, tile);
        return;
    }
    tile.detail = joined(size_of(list), duration_of(list), "  ");
    tile.date = date_of(list, "MODIFIED_TIME");
}

void read_music(qra_agent_handler_h list, Tile& tile) {
    const std::string title = read_text(list, "TITLE");
    tile.title =
        title.empty() ? read_text(list, "DISPLAY_NAME") : joined(title, read_text(list, "ARTIST"), " - ");
    tile.detail = joined(size_of(list), duration_of(list), "  ");
    tile.date = date_of(list, "MODIFIED_TIME");
}

void read_recording(qra_agent_handler_h list, Tile& tile) {
    const std::string title = read_text(list, "PROGRAM_TITLE");
    tile.title = joined(title.empty() ? read_text(list, "DISPLAY_NAME") : title,
                        read_text(list, "CHANNEL_NAME"), " - ");
    tile.detail = joined(size_of(list), duration_of(list), "  ");
    tile.date = date_of(list, "START_TIME");
}

void read_playlist(qra_agent_handler_h list, Tile& tile) {
    tile.title = read_text(list, "DISPLAY_NAME");
    tile.detail = counted(read_number(list, "SONGS_COUNT"), "song", "songs");
}

void read_group(qra_agent_handler_h list, Tile& tile) {
    tile.title = read_text(list, "DISPLAY_NAME");
    tile.detail = counted(read_number(list, "GROUP_ITEM_COUNT"), "item", "items");
}

void read_uhd(qra_agent_handler_h list, Tile& tile) {
    tile.title = read_text(list, "DISPLAY_NAME");
    tile.detail = size_of(list);
    tile.date = date_of(list, "MODIFIED_TIME");
}

void read_up_folder(qra_agent_handler_h, Tile& tile) {
    tile.title = "..";
}

struct Kind {
    qra_media_type_e media_type;
    void (*read)(qra_agent_handler_h list, Tile& tile);
    const char* singular;
    const char* plural;
};

constexpr Kind kKinds[] = {
    {QRA_MEDIA_TYPE_FOLDER, read_folder, "folder", "folders"},
    {QRA_MEDIA_TYPE_IMAGE, read_image, "picture", "pictures"},
    {QRA_MEDIA_TYPE_IMAGE_EXT, read_image, "360-degree picture", "360-degree pictures"},
    {QRA_MEDIA_TYPE_VIDEO, read_video, "video", "videos"},
    {QRA_MEDIA_TYPE_VIDEO_EXT, read_video, "360-degree video", "360-degree videos"},
    {QRA_MEDIA_TYPE_MUSIC, read_music, "song", "songs"},
    {QRA_MEDIA_TYPE_PVR, read_recording, "recording", "recordings"},
    {QRA_MEDIA_TYPE_UHD, read_uhd, "UHD title", "UHD titles"},
    {QRA_MEDIA_TYPE_SCSA, read_package, "package", "packages"},
    {QRA_MEDIA_TYPE_PLAYLIST, read_playlist, "playlist", "playlists"},
    {QRA_MEDIA_TYPE_GROUP, read_group, nullptr, nullptr},
    {QRA_MEDIA_TYPE_UPFOLDER, read_up_folder, nullptr, nullptr},
};

}  // namespace

Tile read_tile(qra_agent_handler_h list) {
    Tile tile;
    tile.media_type = static_cast<int>(read_number(list, "MEDIA_TYPE"));
    for (const Kind& kind : kKinds) {
        if (kind.media_type == tile.media_type) {
            kind.read(list, tile);
        }
    }
    return tile;
}

std::string summary(const ListRequest& request) {
    std::string text;
    for (const Kind& kind : kKinds) {
        const int count = kind.singular != nullptr ? request.count_of(kind.media_type) : 0;
        if (count > 0) {
            text = joined(text, counted(static_cast<unsigned long long>(count), kind.singular, kind.plural),
                          ", ");
        }
    }
    return text.empty() ? "nothing to show" : text;
}

qra_page_order_e page_order(const ListOptions& options) {
    return is_source_of_this_machine(options.source) ? QRA_PAGE_ORDER_COLUMN : options.order;
}
