#include "apps/qra/song.h"

#include <glib.h>
#include <json/value.h>
#include <json/writer.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "apps/qra/item_value.h"
#include "apps/qra/json_text.h"

namespace {

using Item = qra_playlist_item_param_h;
using ItemOwner = std::unique_ptr<qra_playlist_item_s, qra_error_code_e (*)(Item)>;

template <class T>
struct Field {
    const char* name;
    T Song::*value;
    qra_error_code_e (*set)(Item, T);
    qra_error_code_e (*get)(Item, T*);
};

struct TextField {
    const char* name;
    std::string Song::*value;
    qra_error_code_e (*set)(Item, const char*);
    qra_error_code_e (*get)(Item, char**);
};

constexpr TextField kTexts[] = {
    {"ID_QRA", &Song::media_id, qra_param_set_playlist_item_media_id, qra_param_get_playlist_item_media_id},
    {"TITLE", &Song::title, qra_param_set_playlist_item_title, qra_param_get_playlist_item_title},
    {"FILE_PATH", &Song::path, qra_param_set_playlist_item_path, qra_param_get_playlist_item_path},
    {"MIME_TYPE", &Song::mime_type, qra_param_set_playlist_item_mime_type,
     qra_param_get_playlist_item_mime_type},
    {"ARTIST", &Song::artist, qra_param_set_playlist_item_artist, qra_param_get_playlist_item_artist},
    {"ALBUM", &Song::album, qra_param_set_playlist_item_album, qra_param_get_playlist_item_album},
    {"GENRE", &Song::genre, qra_param_set_playlist_item_genre, qra_param_get_playlist_item_genre},
    {"YEAR", &Song::year, qra_param_set_playlist_item_year, qra_param_get_playlist_item_year},
    {"THUMBNAIL_PATH", &Song::thumbnail_path, qra_param_set_playlist_item_thumbnail_path,
     qra_param_get_playlist_item_thumbnail_path},
    {"LOCATION_TAG", &Song::location_tag, qra_param_set_playlist_item_location_tag,
     qra_param_get_playlist_item_location_tag},
    {"FORMAT", &Song::format, qra_param_set_playlist_item_format, qra_param_get_playlist_item_format},
    {"DISPLAY_NAME", &Song::name, qra_param_set_playlist_item_name, qra_param_get_playlist_item_name},
};

constexpr Field<unsigned long long> kSizes[] = {
    {"DURATION", &Song::duration, qra_param_set_playlist_item_duration, qra_param_get_playlist_item_duration},
    {"SIZE", &Song::size, qra_param_set_playlist_item_size, qra_param_get_playlist_item_size},
};

constexpr Field<std::time_t> kTimes[] = {
    {"ADDED_TIME", &Song::added_time, qra_param_set_playlist_item_addtime,
     qra_param_get_playlist_item_addtime},
    {"MODIFIED_TIME", &Song::modified_time, qra_param_set_playlist_item_modtime,
     qra_param_get_playlist_item_modtime},
};

constexpr Field<int> kNumbers[] = {
    {"PLAYED_COUNT", &Song::played_count, qra_param_set_playlist_item_playcount,
     qra_param_get_playlist_item_playcount},
    {"SAMPLERATE", &Song::sample_rate, qra_param_set_playlist_item_samplerate,
     qra_param_get_playlist_item_samplerate},
    {"BIT_RESOLUTION", &Song::bit_resolution, qra_param_set_playlist_item_bit_resolution,
     qra_param_get_playlist_item_bit_resolution},
    {"BITRATE", &Song::bit_rate, qra_param_set_playlist_item_bit_rate, qra_param_get_playlist_item_bit_rate},
    {"MEDIA_TYPE", &Song::media_type, qra_param_set_playlist_item_media_type,
     qra_param_get_playlist_item_media_type},
};

ItemOwner make_item() {
    Item item = nullptr;
    qra_create_playlist_item_param(&item);
    return {item, &qra_destroy_playlist_item_param};
}

template <class Fields>
void read_tile(qra_agent_handler_h list, const Fields& fields, Song& song) {
    for (const auto& field : fields) {
        using T = std::decay_t<decltype(song.*field.value)>;
        song.*field.value = static_cast<T>(read_number(list, field.name));
    }
}

template <class Fields>
void write_item(const Song& song, const Fields& fields, Item item) {
    for (const auto& field : fields) {
        field.set(item, song.*field.value);
    }
}

template <class Fields>
void read_item(Item item, const Fields& fields, Song& song) {
    for (const auto& field : fields) {
        field.get(item, &(song.*field.value));
    }
}

/// A bar or a line feed would break the item in the playlist's file.
std::string without_breaks(std::string text) {
    std::replace(text.begin(), text.end(), '|', '/');
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

std::string valid_utf8(const std::string& bytes) {
    const std::unique_ptr<char, decltype(&g_free)> text(
        g_utf8_make_valid(bytes.data(), static_cast<gssize>(bytes.size())), &g_free);
    return text.get();
}

}  // namespace

Song song_at_cursor(qra_agent_handler_h list) {
    Song song;
    for (const TextField& field : kTexts) {
        song.*field.value = read_text(list, field.name);
    }
    read_tile(list, kSizes, song);
    read_tile(list, kTimes, song);
    read_tile(list, kNumbers, song);
    song.is_drm = read_number(list, "IS_DRM") != 0;
    return song;
}

qra_error_code_e add_song(qra_playlist_handler_h playlist, const Song& song) {
    const ItemOwner item = make_item();
    for (const TextField& field : kTexts) {
        // An empty text is one that is not set.
        field.set(item.get(), without_breaks(song.*field.value).c_str());
    }
    write_item(song, kSizes, item.get());
    write_item(song, kTimes, item.get());
    write_item(song, kNumbers, item.get());
    qra_param_set_playlist_item_drm(item.get(), song.is_drm);
    return qra_playlist_add_v2(playlist, item.get());
}

qra_error_code_e get_song(qra_playlist_handler_h playlist, int index, Song& song) {
    const ItemOwner item = make_item();
    const qra_error_code_e code = qra_playlist_get_item_v2(playlist, index, item.get());
    if (code != QRA_ERROR_NONE) {
        return code;
    }
    for (const TextField& field : kTexts) {
        char* text = nullptr;
        field.get(item.get(), &text);
        const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
        song.*field.value = text != nullptr ? text : "";
    }
    read_item(item.get(), kSizes, song);
    read_item(item.get(), kTimes, song);
    read_item(item.get(), kNumbers, song);
    qra_param_get_playlist_item_drm(item.get(), &song.is_drm);
    return QRA_ERROR_NONE;
}

std::string json_of(const Song& song, int index) {
    Json::Value object(Json::objectValue);
    object["INDEX"] = index;
    for (const TextField& field : kTexts) {
        object[field.name] = valid_utf8(song.*field.value);
    }
    for (const auto& field : kSizes) {
        object[field.name] = Json::UInt64(song.*field.value);
    }
    for (const auto& field : kTimes) {
        object[field.name] = Json::Int64(song.*field.value);
    }
    for (const auto& field : kNumbers) {
        object[field.name] = song.*field.value;
    }
    object["IS_DRM"] = song.is_drm;
    return json_text(object, JsonCharacters::Utf8) + "\n";
}
