#include <json/json.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "apps/qra/command_line.h"
#include "apps/qra/commands.h"
#include "apps/qra/item_act.h"
#include "apps/qra/json_text.h"
#include "apps/qra/list_output.h"
#include "apps/qra/output.h"
#include "apps/qra/remote_list.h"
#include "apps/qra/terminal_text.h"
#include "apps/qra/tile_reader.h"

namespace {

std::string headline(const CommandLine& line, int count) {
    const std::string items = count == 1 ? "1 item" : std::to_string(count) + " items";
    return printable_text(line.account.name + ":/" + line.path) + "  " +
           (count == 0 ? "nothing to show" : items) + "\n";
}

Json::Value read_object(const std::string& text) {
    Json::Value value = read_json_object(text);
    if (value.isNull()) {
        throw CommandError(ExitStatus::RequestFailed, "the engine's answer cannot be read");
    }
    return value;
}

/// Whether the list is that of a medium: it alone.
bool is_medium(RemoteList& list, const std::string& id) {
    if (list.count() != 1) {
        return false;
    }
    const Json::Value item = read_object(list.item(0));
    return item["ID_QRA"] == id && item["MEDIA_TYPE"] != QRA_MEDIA_TYPE_FOLDER;
}

/// A value on one line, whatever it is.
std::string value_text(const Json::Value& value) {
    if (value.isString()) {
        return value.asString();
    }
    return json_text(value, JsonCharacters::Utf8);
}

std::string shown_value(const std::string& name, const Json::Value& value) {
    constexpr std::string_view kTime = "_TIME";
    const bool is_time = name.size() > kTime.size() &&
                         std::string_view(name).substr(name.size() - kTime.size()) == kTime &&
                         value.isInt64() && value.asInt64() > 0;
    return is_time ? readable_time(static_cast<std::time_t>(value.asInt64())) : value_text(value);
}

void print_detail(const Json::Value& detail) {
    std::size_t width = 0;
    for (const std::string& name : detail.getMemberNames()) {
        width = std::max(width, printable_text(name).size());
    }
    for (const std::string& name : detail.getMemberNames()) {
        const std::string label = printable_text(name);
        const std::string value = printable_text(shown_value(name, detail[name]));
        print(label + (value.empty() ? "" : std::string(width + 2 - label.size(), ' ') + value) + "\n");
    }
}

/// The list of one medium alone.
std::unique_ptr<RemoteList> list_of_medium(const CommandLine& line, const std::string& what) {
    ListOptions options;
    options.source = kCloudSource;
    options.sort_category.clear();
    options.mask = kFoldersAndMedia;
    auto list = std::make_unique<RemoteList>(options, RemoteFolder{line.account.name, line.item_id},
                                             std::chrono::seconds(line.cloud_timeout));
    if (!is_medium(*list, line.item_id)) {
        throw CommandError(ExitStatus::RequestFailed, printable_text(line.item_id) + " is no medium: " +
                                                          what + " are of media, not of folders");
    }
    return list;
}

void act_on_medium(const CommandLine& line, const std::string& what, Json::Value request) {
    Completions completions;  // outlives the list's main loop
    const std::unique_ptr<RemoteList> list = list_of_medium(line, what);
    request["qra_item_content"] = list->item(0);
    ItemActs(line.account.name, completions)
        .perform(std::move(request), std::chrono::seconds(line.cloud_timeout));
}

}  // namespace

void run_remote_list(const CommandLine& line) {
    RemoteList list(line.list, {line.account.name, line.path}, std::chrono::seconds(line.cloud_timeout));
    const TileRange range = tile_range(line, list.count());
    if (line.json) {
        for (int index = range.begin; index < range.end; ++index) {
            check_interrupt();
            print(list.item(index));
        }
        return;
    }
    print(headline(line, list.count()));
    if (list.count() == 0) {
        return;
    }
    print("\n");
    print_grid(line.list, range, list.count(), [&list](int index) {
        list.move_to(index);
        return read_tile(list.handle());
    });
}

void run_detail(const CommandLine& line) {
    const std::unique_ptr<RemoteList> list = list_of_medium(line, "details");
    const std::string detail = list->detail_of_first();
    if (line.json) {
        print(detail);
    } else {
        print_detail(read_object(detail));
    }
}

void run_like(const CommandLine& line) {
    Json::Value request(Json::objectValue);
    request["qra_command"] = "qra_setlike";
    request["qra_like"] = !line.take_like_back;
    act_on_medium(line, "likes", std::move(request));
}

void run_comment(const CommandLine& line) {
    Json::Value request(Json::objectValue);
    request["qra_command"] = "qra_uploadcomment";
    request["qra_comment"] = line.comment;
    act_on_medium(line, "comments", std::move(request));
}
