#include "platform/media-content/host/database/sql_functions.h"

#include <new>
#include <string>
#include <string_view>

#include "platform/media-content/host/database/sqlite_connection.h"
#include "platform/media-content/host/storage/storage.h"
#include "platform/media-content/host/text/like.h"
#include "platform/media-content/host/text/local_calendar.h"
#include "platform/media-content/host/text/sort_key.h"

namespace media_content {

namespace {

std::string_view argument(sqlite3_value* value) {
    const auto* data = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return {data != nullptr ? data : "", static_cast<size_t>(sqlite3_value_bytes(value))};
}

/// What an SQL function does; a lack of memory is the only thing that can go wrong with it.
template <void (*body)(sqlite3_context*, sqlite3_value**)>
void call(sqlite3_context* context, int, sqlite3_value** arguments) {
    try {
        body(context, arguments);
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(context);
    }
}

void contains(sqlite3_context* context, sqlite3_value** arguments) {
    const bool found = fold(argument(arguments[0])).find(argument(arguments[1])) != std::string::npos;
    sqlite3_result_int(context, found ? 1 : 0);
}

void like(sqlite3_context* context, sqlite3_value** arguments) {
    const bool matches = matches_pattern(fold(argument(arguments[0])), argument(arguments[1]));
    sqlite3_result_int(context, matches ? 1 : 0);
}

void make_sort_key(sqlite3_context* context, sqlite3_value** arguments) {
    const std::string key = sort_key(argument(arguments[0]));
    sqlite3_result_blob(context, key.data(), static_cast<int>(key.size()), SQLITE_TRANSIENT);
}

void make_drive_path(sqlite3_context* context, sqlite3_value** arguments) {
    const std::string path = drive_path(sqlite3_value_int64(arguments[0]));
    sqlite3_result_text(context, path.data(), static_cast<int>(path.size()), SQLITE_TRANSIENT);
}

void make_local_date(sqlite3_context* context, sqlite3_value** arguments) {
    const std::string date = LocalCalendar().date(sqlite3_value_int64(arguments[0]));
    sqlite3_result_text(context, date.data(), static_cast<int>(date.size()), SQLITE_TRANSIENT);
}

struct SqlFunction {
    const char* name;
    int arguments;
    void (*body)(sqlite3_context*, int, sqlite3_value**);
};

constexpr SqlFunction kFunctions[] = {
    {"qra_contains", 2, call<contains>},          {"qra_like", 2, call<like>},
    {"qra_sort_key", 1, call<make_sort_key>},     {"qra_drive_path", 1, call<make_drive_path>},
    {"qra_local_date", 1, call<make_local_date>},
};

}  // namespace

void register_sql_functions(sqlite3* database) {
    for (const SqlFunction& function : kFunctions) {
        const int code = sqlite3_create_function_v2(database, function.name, function.arguments,
                                                    SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY,
                                                    nullptr, function.body, nullptr, nullptr, nullptr);
        if (code != SQLITE_OK) {
            throw sqlite_error(database, code, function.name);
        }
    }
}

}  // namespace media_content
