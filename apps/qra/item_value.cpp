#include "apps/qra/item_value.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <string_view>

namespace {

using Reader = std::optional<ItemValue> (*)(qra_agent_handler_h, const char*);

// Tiles that are no content (group headers, the up-folder tile, fillers) answer success to a field that they
// do not have and leave the variable as it was. So each reader starts from a value that no field has.

std::optional<ItemValue> text_value(qra_agent_handler_h list, const char* field) {
    char* text = nullptr;
    if (qra_get_item_value_char_v2(list, field, &text) != QRA_ERROR_NONE || text == nullptr) {
        return std::nullopt;
    }
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return std::string(text);
}

std::optional<ItemValue> int_value(qra_agent_handler_h list, const char* field) {
    int number = INT_MIN;
    if (qra_get_item_value_int_v2(list, field, &number) != QRA_ERROR_NONE || number == INT_MIN) {
        return std::nullopt;
    }
    return static_cast<long long>(number);
}

std::optional<ItemValue> unsigned_value(qra_agent_handler_h list, const char* field) {
    unsigned long long number = ULLONG_MAX;
    if (qra_get_item_value_lint_v2(list, field, &number) != QRA_ERROR_NONE || number == ULLONG_MAX) {
        return std::nullopt;
    }
    return number;
}

std::optional<ItemValue> time_value(qra_agent_handler_h list, const char* field) {
    constexpr time_t kAbsent = std::numeric_limits<time_t>::min();
    time_t time = kAbsent;
    if (qra_get_item_value_time_v2(list, field, &time) != QRA_ERROR_NONE) {
        // Lists of the content engine, and of cameras, have times as plain numbers.
        const auto number = unsigned_value(list, field);
        return number ? number : int_value(list, field);
    }
    if (time == kAbsent) {
        return std::nullopt;
    }
    return static_cast<long long>(time);
}

std::optional<ItemValue> double_value(qra_agent_handler_h list, const char* field) {
    double number = std::nan("");
    if (qra_get_item_value_double_v2(list, field, &number) != QRA_ERROR_NONE || std::isnan(number)) {
        return std::nullopt;
    }
    return number;
}

std::optional<ItemValue> bool_value(qra_agent_handler_h list, const char* field) {
    // A bool has no value to spare: only a reader that writes leaves both copies equal.
    bool if_false = false;
    bool if_true = true;
    if (qra_get_item_value_bool_v2(list, field, &if_false) != QRA_ERROR_NONE ||
        qra_get_item_value_bool_v2(list, field, &if_true) != QRA_ERROR_NONE || if_false != if_true) {
        return std::nullopt;
    }
    return if_true;
}

struct FieldReader {
    std::string_view field;
    Reader read;
};

/// The fields that are no texts.
constexpr FieldReader kFieldReaders[] = {
    {"MEDIA_TYPE", int_value},
    {"STORAGE_TYPE", int_value},
    {"RATING", int_value},
    {"PLAYED_COUNT", int_value},
    {"PLAYED_POSITION", int_value},
    {"STITCH_TYPE", int_value},
    {"WIDTH", int_value},
    {"HEIGHT", int_value},
    {"ORIENTATION", int_value},
    {"ISO", int_value},
    {"BITRATE", int_value},
    {"CHANNEL", int_value},
    {"SAMPLERATE", int_value},
    {"BIT_RESOLUTION", int_value},
    {"TIMEZONE", int_value},
    {"PTC", int_value},
    {"MAJOR", int_value},
    {"MINOR", int_value},
    {"CHANNEL_TYPE", int_value},
    {"PROGRAM_NUM", int_value},
    {"EMBARGO_TIME", int_value},
    {"EXPIRY_TIME", int_value},
    {"START_TIME", int_value},
    {"PROGRAM_START_TIME", int_value},
    {"PROGRAM_END_TIME", int_value},
    {"PROGRAM_DATE", int_value},
    {"PARENTAL_RATING", int_value},
    {"ASPECTRATIO", int_value},
    {"RESOLUTION", int_value},
    {"SPORTS_TYPE", int_value},
    {"GUIDANCE_LENGTH", int_value},
    {"TVMODE", int_value},
    {"PLAY_COUNT", int_value},
    {"HD", int_value},
    {"INDEX", int_value},
    {"GROUP_ITEM_COUNT", int_value},
    {"SONGS_COUNT", int_value},
    {"SIZE", unsigned_value},
    {"DURATION", unsigned_value},
    {"LONGITUDE", double_value},
    {"LATITUDE", double_value},
    {"ALTITUDE", double_value},
    {"FNUMBER", double_value},
    {"ADDED_TIME", time_value},
    {"MODIFIED_TIME", time_value},
    {"PLAYED_TIME", time_value},
    {"FAVOURITE", bool_value},
    {"IS_DRM", bool_value},
    {"IS_360", bool_value},
    {"TIMER_RECORD", bool_value},
    {"SERIES_RECORD", bool_value},
    {"SUBTITLE", bool_value},
    {"TTX", bool_value},
    {"AD", bool_value},
    {"HARD_OF_HEARING_RADIO", bool_value},
    {"DATA_SERVICE", bool_value},
    {"CONTENT_LOCK", bool_value},
    {"CONTENT_WATCH", bool_value},
    {"HAS_AUDIO_ONLY", bool_value},
    {"IS_LOCAL_RECORD", bool_value},
};

constexpr Reader kReadersToTry[] = {text_value, time_value, unsigned_value, double_value, bool_value};

}  // namespace

std::optional<ItemValue> read_item_value(qra_agent_handler_h list, const std::string& field) {
    const auto* known = std::find_if(std::begin(kFieldReaders), std::end(kFieldReaders),
                                     [&](const FieldReader& entry) { return entry.field == field; });
    if (known != std::end(kFieldReaders)) {
        return known->read(list, field.c_str());
    }
    for (const Reader read : kReadersToTry) {
        if (auto value = read(list, field.c_str())) {
            return value;
        }
    }
    return std::nullopt;
}

std::string read_text(qra_agent_handler_h list, const char* field) {
    const auto value = text_value(list, field);
    return value ? std::get<std::string>(*value) : std::string();
}

unsigned long long read_number(qra_agent_handler_h list, const char* field) {
    const auto value = read_item_value(list, field);
    if (!value) {
        return 0;
    }
    if (const auto* number = std::get_if<long long>(&*value)) {
        return static_cast<unsigned long long>(std::max(*number, 0LL));
    }
    const auto* number = std::get_if<unsigned long long>(&*value);
    return number != nullptr ? *number : 0;
}

std::string to_text(const ItemValue& value) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return *text;
    }
    if (const auto* truth = std::get_if<bool>(&value)) {
        return *truth ? "true" : "false";
    }
    if (const auto* number = std::get_if<double>(&value)) {
        std::array<char, 32> buffer{};
        const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), *number).ptr;
        return std::string(buffer.data(), end);
    }
    const auto* number = std::get_if<long long>(&value);
    return number != nullptr ? std::to_string(*number) : std::to_string(std::get<unsigned long long>(value));
}
