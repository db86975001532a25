#include <json/value.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <climits>
#include <initializer_list>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

#include "apps/qra/command_arguments.h"
#include "apps/qra/commands.h"
#include "apps/qra/json_text.h"

namespace {

constexpr int kMostRowsOrColumns = 1000;
constexpr const char* kPicturesInARow = "CATEGORY-TITLE";
constexpr const char* kTopFolder = "0";
constexpr const char* kServerTop = "/";

constexpr const char* kSearch = "CATEGORY-KEYWORD-SEARCH";
constexpr std::string_view kExtensionLists[] = {"param_media_extension_image", "param_media_extension_video",
                                                "param_media_extension_music", "param_media_extension_pvr",
                                                "param_media_extension_uhd"};

constexpr const char* kViews =
    R"(Sort categories of one folder: CATEGORY-FOLDER-TITLE, CATEGORY-FOLDER-DATE, CATEGORY-FOLDER,
CATEGORY-FOLDER-CHANNEL_NAME and CATEGORY-FOLDER-CHANNEL_NUM (recordings), CATEGORY-UHD-FOLDER-WITHUPFOLDER.
Of the whole drive: CATEGORY-TITLE, CATEGORY-TRACK, CATEGORY-KEYWORD-SEARCH, CATEGORY-MSC-PHOTO,
CATEGORY-DATE, CATEGORY-CHANNEL_NAME and CATEGORY-CHANNEL_NUM (recordings).
Content types: CONTENT-FOLDER (everything), CONTENT-IMAGE, CONTENT-VIDEO, CONTENT-MUSIC, CONTENT-PVR,
CONTENT-PVR-UNWATCHED, CONTENT-PVR-SCHEDULED, CONTENT-360IMAGE, CONTENT-360VIDEO; with --uhd CONTENT-UHD.

)";

/// The library takes a text that it does not understand, and lists that are not named, for empty lists.
std::string extension_problem(const std::string& text) {
    if (text.empty()) {
        return {};
    }
    const Json::Value lists = read_json_object(text);
    if (lists.isNull()) {
        return "is no JSON object";
    }
    for (const std::string& name : lists.getMemberNames()) {
        const auto* const known = std::find(std::begin(kExtensionLists), std::end(kExtensionLists), name);
        if (known == std::end(kExtensionLists)) {
            return "there is no list " + name;
        }
    }
    return {};
}

void add_request_options(CLI::App& command, CommandLine& line) {
    ListOptions& list = line.list;
    command.add_option("--source", list.source, "Source of the list")->capture_default_str();
    add_content_option(command, list, "Content type");
    command.add_option("--sort", list.sort_category, "Sort category")->capture_default_str();
    command.add_option("--mask", list.mask,
                       "What the page shows: 2 folders, 4 media, 8 groups, 16 playlists, "
                       "32 up-folder, 64 selected, 128 fillers; default 0x26");
    command.add_option("--rows", list.rows, "Rows of a page")
        ->check(CLI::Range(1, kMostRowsOrColumns))
        ->capture_default_str();
    command.add_option("--columns", list.columns, "Columns of a page")
        ->check(CLI::Range(1, kMostRowsOrColumns))
        ->capture_default_str();
    command.add_option("--group", list.group, "The group to show, counted from 0; -1 for all")
        ->capture_default_str();
    const auto set_order = [&list](const std::string& word) {
        list.order = word == "row" ? QRA_PAGE_ORDER_ROW : QRA_PAGE_ORDER_COLUMN;
    };
    command
        .add_option_function<std::string>("--order", set_order,
                                          "Fill order of a page; sources of this machine always use column")
        ->check(CLI::IsMember({"row", "column"}));
    command.add_option("--keyword", list.keyword, "What CATEGORY-KEYWORD-SEARCH looks for");
    command.add_option("--extension", list.extension, "File extensions of each content type, as JSON")
        ->check(CLI::Validator(extension_problem, "", ""));
    command.add_flag("--uhd", list.uhd, "With UHD content and packaged films");
    command.add_flag_callback(
        "--no-scan", [&line] { line.scan_first = false; },
        "Take what the media database has, without a scan");
    command.footer(std::string(kViews) + kFooter);
}

void add_path(CLI::App& command, CommandLine& line) {
    command.add_option("PATH", line.path, "The folder; one that lies on no drive is attached first")
        ->required();
}

void refuse(const CLI::App& command, std::initializer_list<const char*> options, const char* why) {
    for (const char* option : options) {
        if (command.count(option) > 0) {
            throw CLI::ValidationError(option, why);
        }
    }
}

/// A list of the content engine shows all that its account has in the folder, in the order that the service
/// gives unless the user asks for another one.
void check_remote_list(const CLI::App& command, CommandLine& line) {
    if (line.account.name.empty()) {
        throw CLI::RequiredError("--plugin");
    }
    refuse(command, {"--mask", "--group", "--extension", "--uhd", "--no-scan"},
           "not for lists of the content engine");
    if (command.count("--sort") == 0) {
        line.list.sort_category.clear();
    }
    // Other sources than this one have no folders of their own kind on a page.
    line.list.mask = line.list.source == kCloudSource ? kFoldersAndMedia : kMedia;
}

/// No other view of a drive or a media server looks at the keyword.
void check_keyword(const CLI::App& command, const ListOptions& list) {
    if (list.sort_category != kSearch) {
        refuse(command, {"--keyword"}, "only with --sort CATEGORY-KEYWORD-SEARCH");
    }
}

void check_local_list(const CLI::App& command, const ListOptions& list) {
    check_keyword(command, list);
    if (command.count("PATH") == 0) {
        throw CLI::RequiredError("PATH");
    }
    refuse(command, {"--plugin", "--timeout"}, "only for lists of the content engine");
}

/// A folder of a camera, or without one all pictures of the camera in a row.
void check_camera_list(const CLI::App& command, ListOptions& list) {
    for (const char* option : {"--bus", "--device"}) {
        if (command.count(option) == 0) {
            throw CLI::RequiredError(option);
        }
    }
    if (list.folder_id.find_first_not_of("0123456789") != std::string::npos) {
        throw CLI::ValidationError("--folder-id", "a camera's folder is a number");
    }
    refuse(command, {"PATH", "--plugin", "--timeout", "--keyword", "--uhd", "--no-scan"},
           "not for lists of cameras");
    const std::string folder_view = ListOptions().sort_category;
    if (command.count("--sort") == 0 && list.folder_id.empty()) {
        list.sort_category = kPicturesInARow;
    } else if (list.sort_category != folder_view && !list.folder_id.empty()) {
        throw CLI::ValidationError("--folder-id", "only with --sort " + folder_view);
    } else if (list.sort_category == folder_view && list.folder_id.empty()) {
        list.folder_id = kTopFolder;
    }
}

/// What a view of a media server has: folders and media, media under the headers of their groups, or nothing
/// but groups.
int server_mask(const std::string& sort_category) {
    for (const char* view : {"CATEGORY-ARTIST", "CATEGORY-ALBUM", "CATEGORY-GENRE"}) {
        if (sort_category == view) {
            return kGroupHeaders;
        }
    }
    for (const char* view : {"CATEGORY-TITLE", "CATEGORY-TRACK", "CATEGORY-DATE"}) {
        if (sort_category == view) {
            return kGroupHeaders | kMedia;
        }
    }
    return kFoldersAndMedia;
}

void check_server_list(const CLI::App& command, ListOptions& list) {
    if (command.count("PATH") == 0) {
        throw CLI::RequiredError("PATH");
    }
    refuse(command, {"--plugin", "--timeout", "--uhd", "--no-scan", "--bus", "--device"},
           "not for lists of media servers");
    check_keyword(command, list);
    prepare_server_list(command, list);
}

void check_playlist_list(const CLI::App& command, ListOptions& list) {
    for (const char* option : {"PATH", "--playlist"}) {
        if (command.count(option) == 0) {
            throw CLI::RequiredError(option);
        }
    }
    refuse(command,
           {"--plugin", "--timeout", "--keyword", "--uhd", "--no-scan", "--bus", "--device", "--folder-id"},
           "not for lists of playlists");
    if (command.count("--mask") == 0) {
        list.mask = kMedia;
    }
}

/// Which options a list takes depends on where it comes from.
void check_list(const CLI::App& command, CommandLine& line) {
    if (line.list.source == kPlaylistSource) {
        return check_playlist_list(command, line.list);
    }
    refuse(command, {"--playlist"}, "only for --source SOURCE_PLAYLIST");
    if (line.list.source == kCameraSource) {
        return check_camera_list(command, line.list);
    }
    if (line.list.source == kServerSource) {
        return check_server_list(command, line.list);
    }
    refuse(command, {"--bus", "--device", "--folder-id"}, "only for lists of cameras and media servers");
    is_source_of_this_machine(line.list.source) ? check_local_list(command, line.list)
                                                : check_remote_list(command, line);
}

void add_cloud_timeout(CLI::App& command, CommandLine& line) {
    command
        .add_option("--timeout", line.cloud_timeout, "Seconds to wait for each part of an account's answer")
        ->check(CLI::Range(1, kLongestTimeout))
        ->capture_default_str();
}

void add_camera_options(CLI::App& command, ListOptions& list) {
    command.add_option("--bus", list.bus, "USB bus of a camera, for --source SOURCE_PTP")
        ->check(CLI::Range(0, INT_MAX));
    command.add_option("--device", list.device, "The camera's device number on its bus")
        ->check(CLI::Range(0, INT_MAX));
    command.add_option("--folder-id", list.folder_id,
                       "The ID_QRA of a folder of a camera (0 for the top) or of a media server (/ for the "
                       "top); without it all pictures of the camera in a row, or the whole server");
}

/// What the commands on one medium of an account have in common.
void add_item_options(CLI::App& command, CommandLine& line, void (*run)(const CommandLine&)) {
    command.add_option("ITEM_ID", line.item_id, "Its ID_QRA, as `qra list --json` tells it")->required();
    command.add_option("--plugin", line.account.name, "The account")->required();
    add_cloud_timeout(command, line);
    command.callback([&line, run] {
        if (line.item_id.empty()) {
            throw CLI::ValidationError("ITEM_ID", "is empty");
        }
        line.command = run;
    });
}

/// A job works on the lists of drives alone; the name of their source is all that the hidden option takes.
void check_job_list(const CLI::App& command, const CommandLine& line) {
    check_keyword(command, line.list);
    if (line.list.source != kDriveSource) {
        throw CLI::ValidationError(
            "--source",
            "only files on drives; `qra dlna get` and `qra camera get` fetch what lies elsewhere");
    }
}

void add_job_options(CLI::App& command, CommandLine& line) {
    add_path(command, line);
    add_request_options(command, line);
    command.get_option("--source")->group("");
    command
        .add_option_function<std::string>("--select", choice_reader(line.job.choices, "--select"),
                                          "The tiles, such as 3-7,12; may be repeated")
        ->required()
        ->trigger_on_parse();
    command.add_flag("--dry-run", line.job.dry_run, "Only tell what would be done and what cannot be");
    command.add_flag("--json", line.json, "One JSON object for each event, one on a line");
    command.footer(std::string(kChoices) + kViews + kFooter);
}

}  // namespace

void add_list_command(CLI::App& app, CommandLine& line) {
    CLI::App* list = app.add_subcommand("list", "Show a folder as pages of tiles");
    list->add_option(
        "PATH,--path", line.path,
        "The folder; one that lies on no drive is attached first. In an account: the ID_QRA of "
        "a folder, without it the account's top. For --source SOURCE_DLNA: the id or the name of "
        "a media server");
    add_request_options(*list, line);
    list->add_option("--plugin", line.account.name, "The account, for --source CloudSource");
    add_cloud_timeout(*list, line);
    add_camera_options(*list, line.list);
    list->add_option("--playlist", line.list.playlist,
                     "The playlist of PATH's drive whose songs are shown, for --source SOURCE_PLAYLIST");
    list->add_option("--offset", line.offset, "First tile to show")->check(CLI::Range(0, INT_MAX));
    list->add_option("--limit", line.limit, "Most tiles to show")->check(CLI::Range(0, INT_MAX));
    list->add_flag("--json", line.json, "One JSON object for each tile, one on a line, in list order");
    list->callback([&line, list] {
        check_list(*list, line);
        line.command = is_source_of_this_machine(line.list.source) ? run_list : run_remote_list;
    });
}

void add_item_commands(CLI::App& app, CommandLine& line) {
    CLI::App* detail = app.add_subcommand("detail", "Show all that a service tells of a medium");
    add_item_options(*detail, line, run_detail);
    detail->add_flag("--json", line.json, "One JSON object");

    CLI::App* like = app.add_subcommand("like", "Like a medium of an account; `qra detail` shows it");
    add_item_options(*like, line, run_like);
    like->add_flag("--off", line.take_like_back, "Take the like back");

    CLI::App* comment = app.add_subcommand("comment", "Say something on a medium of an account");
    add_item_options(*comment, line, run_comment);
    comment->add_option("TEXT", line.comment, "The comment")->required();
}

void add_get_command(CLI::App& app, CommandLine& line) {
    CLI::App* get = app.add_subcommand("get", "Print values of one tile, one on a line");
    add_path(*get, line);
    add_request_options(*get, line);
    get->add_option("INDEX", line.index, "List index of the tile")->required();
    get->add_option("FIELD", line.fields, "Names such as TITLE, FILE_PATH, WIDTH")->required();
    get->add_flag("--json", line.json, "One JSON object with all values");
    get->callback([&line, get] {
        check_keyword(*get, line.list);
        line.command = run_get;
    });
}

void add_job_commands(CLI::App& app, CommandLine& line) {
    CLI::App* copy =
        app.add_subcommand("copy", "Copy chosen tiles to another folder, such as one on another drive");
    add_job_options(*copy, line);
    copy->add_option("--to", line.job.target,
                     "The folder; copies go to PHOTO, VIDEO, MUSIC and CONTENTS (recordings) in it")
        ->required();
    copy->callback([&line, copy] {
        check_job_list(*copy, line);
        line.command = run_copy;
    });

    CLI::App* remove = app.add_subcommand("delete", "Delete the files of chosen tiles; asks first");
    add_job_options(*remove, line);
    remove->add_flag("--yes", line.job.yes, "Do not ask");
    remove->callback([&line, remove] {
        check_job_list(*remove, line);
        line.command = run_delete;
    });
}

void add_content_option(CLI::App& command, ListOptions& list, const char* help) {
    const auto problem = [](const std::string& name) {
        return is_content_type(name) ? "" : "there is no content type " + name;
    };
    command.add_option("--content", list.content_type, help)
        ->check(CLI::Validator(problem, "", ""))
        ->capture_default_str();
}

std::function<void(const std::string&)> choice_reader(std::vector<TileChoice>& choices, const char* name) {
    return [&choices, name](const std::string& text) {
        try {
            for (TileChoice& choice : parse_tile_choices(text)) {
                choices.push_back(std::move(choice));
            }
        } catch (const std::invalid_argument& error) {
            throw CLI::ValidationError(name, error.what());
        }
    };
}

void prepare_server_list(const CLI::App& command, ListOptions& list) {
    const std::string folder_views = "CATEGORY-FOLDER";
    const bool of_folder = list.sort_category.rfind(folder_views, 0) == 0;
    if (list.folder_id.empty()) {
        list.folder_id = kServerTop;
    }
    const bool below = list.folder_id != kServerTop;
    if (command.get_option_no_throw("--mask") == nullptr || command.count("--mask") == 0) {
        list.mask = below && !of_folder ? kMedia : server_mask(list.sort_category);
    }
    // Such a list has no groups, and the library shows it as the first one.
    if (below && !of_folder && list.group < 0) {
        list.group = 0;
    }
}
