#include <json/value.h>
#include <json/writer.h>
#include <qra/qra_content_agent.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <variant>
#include <vector>

#include "apps/qra/browsing.h"
#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/item_value.h"
#include "apps/qra/json_text.h"
#include "apps/qra/list_output.h"
#include "apps/qra/output.h"
#include "apps/qra/terminal_text.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kNumbers[] = {"INDEX", "WIDTH", "HEIGHT"};
constexpr const char* kTexts[] = {
    "FILE_PATH",   "FORMAT",       "ID_QRA",        "CONTENT_ID",      "PROFILE",         "RUNLENGTH",
    "PUBLISHER",   "TITLE_19",     "TITLE_60",      "TITLE_UNLIMITED", "TITLE_SORT",      "SUMMARY_190",
    "SUMMARY_400", "SUMMARY_4000", "DESC_LANGUAGE", "ENCODING",        "TRACK_REFERENCE", "STREAM_NAME",
    "COUNTRY",     "SYSTEM",       "RATING_VALUE",  "RATING_DESC",     "ADULT_CONTENT",
};

using Values = std::vector<std::pair<std::string, std::variant<std::string, int>>>;

/// The folder of a package as a list of its folders and of such packages. Without the folders the list's
/// first tile would not be the source's first item, and the cursor would start beside it.
CommandLine list_line(const CommandLine& line, const fs::path& file) {
    std::string extension = file.extension().string();
    if (extension.size() < 2) {
        throw CommandError(ExitStatus::RequestFailed,
                           printable_text(line.path) + ": no package is called so");
    }
    Json::Value names(Json::objectValue);
    names["param_media_extension_video"].append(extension.substr(1));
    CommandLine list = line;
    list.path = file.parent_path().string();
    list.list.extension = json_text(names);
    list.list.uhd = true;
    list.list.mask = kFoldersAndMedia;
    return list;
}

/// A text that is there and empty leaves the variable as it was.
std::optional<std::string> text_value(qra_agent_handler_h list, const char* field) {
    char* text = nullptr;
    if (qra_get_item_value_char_v2(list, field, &text) != QRA_ERROR_NONE) {
        return std::nullopt;
    }
    const std::unique_ptr<char, decltype(&std::free)> owner(text, &std::free);
    return text != nullptr ? text : "";
}

/// What the package under the cursor tells. Only packages have an index, and of those only ones with a
/// content.
Values read_values(qra_agent_handler_h list) {
    Values values;
    int index = 0;
    if (qra_get_item_value_int_v2(list, "INDEX", &index) != QRA_ERROR_NONE) {
        return values;
    }
    for (const char* const field : kTexts) {
        if (const auto text = text_value(list, field)) {
            values.emplace_back(field, *text);
        }
    }
    for (const char* const field : kNumbers) {
        int number = 0;
        if (qra_get_item_value_int_v2(list, field, &number) == QRA_ERROR_NONE) {
            values.emplace_back(field, number);
        }
    }
    return values;
}

/// Puts the cursor on a file of the list. All tiles are items of the source: it can be walked tile by tile,
/// which reads no package, and each tells its path.
void move_to_file(ListRequest& request, const CommandLine& line, const std::string& name) {
    for (int index = 0; index < request.tile_count(); ++index, request.step()) {
        check_interrupt();
        const std::string path = read_text(request.handle(), "FILE_PATH");
        if (path.substr(path.rfind('/') + 1) != name) {
            continue;
        }
        if (!request.reach(index)) {
            throw CommandError(
                ExitStatus::RequestFailed,
                printable_text(line.path) + ": this package cannot be read (QRA_LOG=warning tells why)");
        }
        return;
    }
    throw CommandError(ExitStatus::RequestFailed,
                       printable_text(line.path) + ": the media database has no such file");
}

void print_object(const Values& values) {
    Json::Value object(Json::objectValue);
    for (const auto& [field, value] : values) {
        object[field] = std::visit([](const auto& content) { return Json::Value(content); }, value);
    }
    print_json(object);
}

void print_table(const Values& values) {
    constexpr std::size_t kWidth = 17;
    const bool for_a_person = isatty(STDOUT_FILENO) == 1;
    for (const auto& [field, value] : values) {
        const auto* const text = std::get_if<std::string>(&value);
        const std::string shown = text != nullptr ? *text : std::to_string(std::get<int>(value));
        print(field + std::string(kWidth - field.size(), ' ') +
              (for_a_person ? printable_text(shown) : shown) + "\n");
    }
}

}  // namespace

void run_package(const CommandLine& line) {
    std::error_code error;
    const fs::path file = fs::canonical(line.path, error);
    if (error || !fs::is_regular_file(file, error)) {
        throw CommandError(ExitStatus::RequestFailed, printable_text(line.path) + ": there is no such file");
    }
    Browsing browsing(list_line(line, file));
    move_to_file(browsing.request(), line, file.filename().string());
    const Values values = read_values(browsing.request().handle());
    if (values.empty()) {
        throw CommandError(ExitStatus::RequestFailed,
                           printable_text(line.path) + ": this file tells nothing of a film");
    }
    line.json ? print_object(values) : print_table(values);
}
