#include "apps/qra/command_line.h"

#include <CLI/CLI.hpp>
#include <climits>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <utility>

#include "apps/qra/commands.h"
#include "apps/qra/device_view.h"

namespace {

constexpr int kMostRowsOrColumns = 1000;
constexpr int kLongestTimeout = 86400;
constexpr const char* kPicturesInARow = "CATEGORY-TITLE";
constexpr const char* kTopFolder = "0";
constexpr const char* kServerTop = "/";
constexpr int kLargestUsbNumber = 255;

/// The built-in lists of the library, and what cameras and phones make today besides. Packaged films have no
/// list of their own: they show where they count among the videos.
std::string default_extensions(bool with_packages) {
    return std::string(
               R"({"param_media_extension_image":["jpg","jpeg","jpe","jfif","mpo","bmp","png","gif","webp","heic",)"
               R"("heif","hif","avif","tif","tiff","dng","arw","cr2","cr3","nef","orf","raf","rw2"],)"
               R"("param_media_extension_video":["avi","mpg","mpeg","mp4","m4v","vob","vro","ts","trp","tp","svi",)"
               R"("mkv","wmv","asf","3gp","3g2","divx","flv","m2ts","mov","mts","webm","ogv","insv","s4ud","rmvb",)"
               R"("rm")") +
           (with_packages ? R"(,"uvu","uva","uvt","scsa","uvz")" : "") +
           R"(],"param_media_extension_music":["mp3","wma","wav","m4a","m4b","aac","mpa","flac","ogg","oga","opus",)"
           R"("amr","mid","midi","ape","aif","aiff"],)"
           R"("param_media_extension_pvr":["srf"],)"
           R"("param_media_extension_uhd":["um4","km4","sum4"]})";
}

constexpr const char* kViews =
    "Sort categories of one folder: CATEGORY-FOLDER-TITLE, CATEGORY-FOLDER-DATE, CATEGORY-FOLDER,\n"
    "CATEGORY-FOLDER-CHANNEL_NAME and CATEGORY-FOLDER-CHANNEL_NUM (recordings), "
    "CATEGORY-UHD-FOLDER-WITHUPFOLDER.\n"
    "Of the whole drive: CATEGORY-TITLE, CATEGORY-TRACK, CATEGORY-KEYWORD-SEARCH, CATEGORY-MSC-PHOTO,\n"
    "CATEGORY-DATE, CATEGORY-CHANNEL_NAME and CATEGORY-CHANNEL_NUM (recordings).\n"
    "Content types: CONTENT-FOLDER (everything), CONTENT-IMAGE, CONTENT-VIDEO, CONTENT-MUSIC, CONTENT-PVR,\n"
    "CONTENT-PVR-UNWATCHED, CONTENT-PVR-SCHEDULED, CONTENT-360IMAGE, CONTENT-360VIDEO; with --uhd "
    "CONTENT-UHD.\n\n";

constexpr const char* kFooter =
    "Exit status: 0 success, 1 usage, 2 the request failed, 3 the engine or a service is not there.\n"
    "Environment: QRA_DATA_DIR the media database's directory, QRA_MEDIA_ROOT where drives are linked,\n"
    "QRA_ENGINE the content engine to start where the system has none, QRA_ACCOUNTS the file of your "
    "accounts,\n"
    "QRA_LOG=warning, info or debug shows the library's log, NO_COLOR.";

std::string version_text() {
    return "qra " + std::to_string(QRA_CONTENT_AGENT_VERSION_MAJOR) + "." +
           std::to_string(QRA_CONTENT_AGENT_VERSION_MINOR) + "." +
           std::to_string(QRA_CONTENT_AGENT_VERSION_PATCH);
}

CLI::Validator drive_name_check() {
    return CLI::Validator(
        [](std::string& name) {
            const std::string prefix = "USBDrive";
            const bool valid = name.rfind(prefix, 0) == 0 && name.size() > prefix.size() &&
                               name.find_first_not_of("0123456789", prefix.size()) == std::string::npos;
            return valid ? std::string() : "a drive is called USBDrive and a number";
        },
        "USBDriveN");
}

void add_drive_commands(CLI::App& app, CommandLine& line) {
    CLI::App* attach =
        app.add_subcommand("attach", "Make a folder a drive below the media root; prints its name");
    attach->add_option("DIR", line.path, "The folder")->required();
    attach->add_option("--as", line.drive_name, "Its name; without it the first free one")
        ->check(drive_name_check());
    attach->callback([&line] { line.command = run_attach; });

    CLI::App* detach = app.add_subcommand("detach", "Take a drive away; what is known of it is kept");
    detach->add_option("NAME", line.drive_name, "The drive")->required();
    detach->callback([&line] { line.command = run_detach; });

    CLI::App* storages = app.add_subcommand("storages", "Show the drives that the media database knows");
    storages->callback([&line] { line.command = run_storages; });

    CLI::App* scan =
        app.add_subcommand("scan", "Bring the media database up to date with a folder of a drive");
    scan->add_option("PATH", line.path, "The folder; one that lies on no drive is attached first")
        ->required();
    scan->add_flag("--recursive", line.recursive, "With everything below it");
    scan->callback([&line] { line.command = run_scan; });
}

void add_timeout_option(CLI::App& command, CommandLine& line) {
    command.add_option("--timeout", line.devices.timeout, "Seconds to wait for the answer")
        ->check(CLI::Range(1, kLongestTimeout))
        ->capture_default_str();
}

void add_device_commands(CLI::App& app, CommandLine& line) {
    CLI::App* devices =
        app.add_subcommand("devices", "Show the drives, cameras and optical drives that the engine sees");
    devices->add_flag("--watch", line.devices.watch, "Then show what comes and goes, until Ctrl-C");
    devices->add_option("--type", line.devices.types, "Only these: usb, ptp, bd, other; without it all")
        ->delimiter(',')
        ->check(CLI::IsMember(device_types()));
    devices->add_flag("--json", line.json, "One JSON object for each device or event, one on a line");
    devices->callback([&line] { line.command = run_devices; });

    CLI::App* check = app.add_subcommand("check-device", "Have the engine scan a drive or folder");
    check->add_option("PATH", line.path, "The folder; one that lies on no drive is attached first")
        ->required();
    add_timeout_option(*check, line);
    check->add_flag("--json", line.json, "One JSON object with the result");
    check->callback([&line] { line.command = run_check_device; });

    CLI::App* thumbs = app.add_subcommand("thumbs", "Show which media the tile of a folder has");
    thumbs->add_option("DIR", line.path, "The folder; one that lies on no drive is attached first")
        ->required();
    thumbs->add_option("--count", line.devices.count, "Most media to show")
        ->check(CLI::Range(1, INT_MAX))
        ->capture_default_str();
    thumbs
        ->add_option("--content", line.devices.content_type,
                     "Content type: image, video, music, or a full name")
        ->capture_default_str();
    add_timeout_option(*thumbs, line);
    thumbs->add_flag("--json", line.json, "The library's answer, one JSON object");
    thumbs->callback([&line] { line.command = run_thumbs; });
}

void add_request_options(CLI::App& command, CommandLine& line) {
    ListOptions& list = line.list;
    command.add_option("--source", list.source, "Source of the list")->capture_default_str();
    command.add_option("--content", list.content_type, "Content type")->capture_default_str();
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
    command.add_option("--extension", list.extension, "File extensions of each content type, as JSON");
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

void check_local_list(const CLI::App& command) {
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

/// A folder of a media server, or without one the whole server in the order of the sort category.
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

void check_server_list(const CLI::App& command, ListOptions& list) {
    if (command.count("PATH") == 0) {
        throw CLI::RequiredError("PATH");
    }
    refuse(command, {"--plugin", "--timeout", "--uhd", "--no-scan", "--bus", "--device"},
           "not for lists of media servers");
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
    is_source_of_this_machine(line.list.source) ? check_local_list(command)
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
    get->callback([&line] { line.command = run_get; });
}

void add_package_command(CLI::App& app, CommandLine& line) {
    CLI::App* package =
        app.add_subcommand("package", "Show what a packaged film tells: titles, rating, picture");
    package
        ->add_option("FILE", line.path,
                     "The package; one that lies on no drive has its folder attached first")
        ->required();
    package->add_flag("--json", line.json, "One JSON object");
    package->add_flag_callback(
        "--no-scan", [&line] { line.scan_first = false; },
        "Take what the media database has, without a scan");
    package->callback([&line] { line.command = run_package; });
}

constexpr const char* kChoices =
    "What --select takes, with commas between: a list index as `qra list` shows it (3), a range (3-7, or 3- "
    "to the\n"
    "end), all, a group counted from 0 (group:2), a field and a pattern of the shell (TITLE=IMG*, "
    "MEDIA_TYPE=2).\n"
    "The other options choose the list, as for `qra list`.\n\n";

/// What parses "3-7,12" for a job.
auto choice_reader(CommandLine& line) {
    return [&line](const std::string& text) {
        try {
            for (TileChoice& choice : parse_tile_choices(text)) {
                line.job.choices.push_back(std::move(choice));
            }
        } catch (const std::invalid_argument& error) {
            throw CLI::ValidationError("--select", error.what());
        }
    };
}

void add_job_options(CLI::App& command, CommandLine& line) {
    add_path(command, line);
    add_request_options(command, line);
    command
        .add_option_function<std::string>("--select", choice_reader(line),
                                          "The tiles, such as 3-7,12; may be repeated")
        ->required()
        ->trigger_on_parse();
    command.add_flag("--dry-run", line.job.dry_run, "Only tell what would be done and what cannot be");
    command.add_flag("--json", line.json, "One JSON object for each event, one on a line");
    command.footer(std::string(kChoices) + kViews + kFooter);
}

void add_job_commands(CLI::App& app, CommandLine& line) {
    CLI::App* copy =
        app.add_subcommand("copy", "Copy chosen tiles to another folder, such as one on another drive");
    add_job_options(*copy, line);
    copy->add_option("--to", line.job.target,
                     "The folder; copies go to PHOTO, VIDEO, MUSIC and CONTENTS (recordings) in it")
        ->required();
    copy->callback([&line] { line.command = run_copy; });

    CLI::App* remove = app.add_subcommand("delete", "Delete the files of chosen tiles; asks first");
    add_job_options(*remove, line);
    remove->add_flag("--yes", line.job.yes, "Do not ask");
    remove->callback([&line] { line.command = run_delete; });
}

constexpr const char* kPlaylists =
    "DIR is any folder of the drive; the playlists lie in the drive's top directory. With --internal DIR is "
    "a "
    "folder of\n"
    "internal storage, which has one playlist that can be opened again: .bgm\n\n";

/// A command on the playlists of a place, and on one of them where it takes a name.
CLI::App* add_playlist_command(CLI::App& playlist, CommandLine& line, const char* name, const char* help,
                               bool named, Command command) {
    CLI::App* added = playlist.add_subcommand(name, help);
    added->add_option("DIR", line.path, "A folder of the drive")->required();
    if (named) {
        added->add_option("NAME", line.playlist.name, "The playlist")->required();
    }
    added->add_flag("--internal", line.playlist.internal, "DIR is a folder of internal storage");
    added->add_flag("--json", line.json, "JSON objects, one on a line");
    added->callback([&line, command] { line.command = command; });
    return added;
}

/// What parses "0,3-5" for a command.
auto position_reader(CommandLine& line, const char* option) {
    return [&line, option](const std::string& text) {
        try {
            for (TileChoice& choice : parse_tile_choices(text)) {
                line.playlist.positions.push_back(std::move(choice));
            }
        } catch (const std::invalid_argument& error) {
            throw CLI::ValidationError(option, error.what());
        }
    };
}

void add_playlist_commands(CLI::App& app, CommandLine& line) {
    PlaylistOptions& options = line.playlist;
    CLI::App* playlist = app.add_subcommand("playlist", "Playlists on drives: make, show and edit them");
    playlist->require_subcommand(1);
    playlist->footer(kPlaylists);

    add_playlist_command(*playlist, line, "list", "Show the playlists of a drive", false, run_playlist_list);
    CLI::App* make =
        add_playlist_command(*playlist, line, "new", "Make an empty playlist", true, run_playlist_new);
    make->add_option("--max", options.max_items, "Most items that it may hold")
        ->check(CLI::Range(1, INT_MAX))
        ->capture_default_str();
    add_playlist_command(*playlist, line, "show", "Show the items", true, run_playlist_show);

    CLI::App* add =
        add_playlist_command(*playlist, line, "add", "Add files, or tiles of a list", true, run_playlist_add);
    add->add_option("FILE", options.files, "Media on the same drive");
    add->add_option("--from", options.list_path, "Instead of files: the folder of a list");
    add->add_option_function<std::string>("--select", position_reader(line, "--select"),
                                          "Its tiles, as for `qra copy`")
        ->trigger_on_parse();
    add->add_option("--content", line.list.content_type, "Content type of the list")->capture_default_str();
    add->add_option("--sort", line.list.sort_category, "Sort category of the list")->capture_default_str();

    CLI::App* remove =
        add_playlist_command(*playlist, line, "remove", "Take items out", true, run_playlist_remove);
    remove
        ->add_option_function<std::string>("ITEMS", position_reader(line, "ITEMS"),
                                           "Their positions as `qra playlist show` has them, such as 0,3-5")
        ->required();
    CLI::App* rename =
        add_playlist_command(*playlist, line, "rename", "Give it another name", true, run_playlist_rename);
    rename->add_option("NEWNAME", options.new_name, "Its name from now on")->required();
    CLI::App* erase = add_playlist_command(*playlist, line, "delete", "Delete the playlist; asks first", true,
                                           run_playlist_delete);
    erase->add_flag("--yes", options.yes, "Do not ask");
    add_playlist_command(*playlist, line, "check", "Look for missing files and double entries", true,
                         run_playlist_check);
    CLI::App* save = add_playlist_command(*playlist, line, "export",
                                          "Write an M3U8 with relative paths, for other players", true,
                                          run_playlist_export);
    save->add_option("FILE", options.file, "The file; - for the standard output")->required();
    CLI::App* load =
        add_playlist_command(*playlist, line, "import", "Make a playlist of an M3U, M3U8, PLS or XSPF", false,
                             run_playlist_import);
    load->add_option("FILE", options.file, "The file")->required();
    load->add_option("--name", options.name, "Name of the playlist; without it that of the file");
    load->add_option("--max", options.max_items, "Most items that it may hold, if they are not more")
        ->check(CLI::Range(1, INT_MAX))
        ->capture_default_str();
}

/// A subcommand of "camera" for one camera.
CLI::App* add_camera_command(CLI::App& camera, CommandLine& line, const char* name, const char* description,
                             Command command) {
    CLI::App* added = camera.add_subcommand(name, description);
    added->add_option("--bus", line.camera.bus, "USB bus of the camera; needed where there are several")
        ->check(CLI::Range(0, kLargestUsbNumber));
    added->add_option("--device", line.camera.device, "Its number there")
        ->check(CLI::Range(0, kLargestUsbNumber));
    added->add_flag("--json", line.json, "One JSON object for each file, one on a line");
    added->callback([&line, command] { line.command = command; });
    return added;
}

void add_camera_commands(CLI::App& app, CommandLine& line) {
    CameraOptions& options = line.camera;
    CLI::App* camera = app.add_subcommand("camera", "Cameras and phones on USB, and what is on their cards");
    camera->require_subcommand(1);

    CLI::App* list = camera->add_subcommand("list", "Show the cameras");
    list->add_flag("--json", line.json, "One JSON object for each camera, one on a line");
    list->callback([&line] { line.command = run_camera_list; });

    CLI::App* files =
        add_camera_command(*camera, line, "files", "Show the files with their ids", run_camera_files);
    files->add_option("--folder-id", options.folder,
                      "Those of a folder; without it of the card's first level");
    files->add_flag("--recursive", line.recursive, "With everything below");

    CLI::App* get = add_camera_command(*camera, line, "get", "Copy files from the camera", run_camera_get);
    get->add_option("ID", options.ids, "The files, by the ids that 'camera files' and 'list' show")
        ->required();
    get->add_option("--to", options.target, "The folder to copy them to; nothing there is replaced")
        ->required();

    CLI::App* thumb =
        add_camera_command(*camera, line, "thumb", "Copy the small pictures of files", run_camera_thumb);
    thumb->add_option("ID", options.ids, "The files")->required();
    thumb->add_option("--to", options.target, "The folder to copy them to, as thumb-ID.jpg")
        ->capture_default_str();
}

void add_account_commands(CLI::App& app, CommandLine& line) {
    CLI::App* account =
        app.add_subcommand("account", "Accounts with services of the network that the content engine uses");
    account->require_subcommand(1);

    CLI::App* add = account->add_subcommand("add", "Store an account, for you alone");
    add->add_option("NAME", line.account.name, "How it is called from now on")->required();
    add->add_option("--plugin", line.account.plugin, "The kind of service: webdav, feed")->required();
    add->add_option("--address", line.account.address, "Its URL, without user and password")->required();
    add->add_option("--user", line.account.user, "The user's name there");
    add->add_flag("--password-stdin", line.account.password_from_stdin,
                  "Read the password, one line, from the standard input");
    add->callback([&line] { line.command = run_account_add; });

    CLI::App* list = account->add_subcommand("list", "Show the accounts, without their passwords");
    list->add_flag("--json", line.json, "One JSON object for each account, one on a line");
    list->callback([&line] { line.command = run_account_list; });

    CLI::App* remove = account->add_subcommand("remove", "Forget an account and its password");
    remove->add_option("NAME", line.account.name, "The account")->required();
    remove->callback([&line] { line.command = run_account_remove; });
}

/// A command on a list of a media server.
CLI::App* add_server_command(CLI::App& dlna, CommandLine& line, const char* name, const char* help,
                             Command command) {
    CLI::App* added = dlna.add_subcommand(name, help);
    added->add_option("SERVER", line.path, "Its id or its name")->required();
    added->add_option("--folder-id", line.list.folder_id,
                      "The ID_QRA of a folder, / for the top; without it the whole server");
    added->add_option("--sort", line.list.sort_category, "Sort category of the list")->capture_default_str();
    added->add_option("--content", line.list.content_type, "Content type of the list")->capture_default_str();
    added->add_option("--keyword", line.list.keyword, "What CATEGORY-KEYWORD-SEARCH looks for");
    added->add_flag("--json", line.json, "JSON objects, one on a line");
    added->callback([&line, added, command] {
        line.list.source = kServerSource;
        prepare_server_list(*added, line.list);
        line.command = command;
    });
    return added;
}

void add_dlna_commands(CLI::App& app, CommandLine& line) {
    CLI::App* dlna =
        app.add_subcommand("dlna", "Media servers of the home network: find, fetch, send, resume");
    dlna->require_subcommand(1);
    dlna->footer(std::string(kChoices) + kFooter);

    CLI::App* servers = dlna->add_subcommand("servers", "Show the media servers that are there");
    servers->add_flag("--watch", line.devices.watch, "Then show what comes and goes, until Ctrl-C");
    servers
        ->add_option("--wait", line.dlna.wait,
                     "How many seconds to look for servers; without it until the first search is over and a "
                     "server is there, 5 seconds at most")
        ->check(CLI::Range(0, 3600))
        ->excludes("--watch");
    servers->add_flag("--json", line.json, "One JSON object for each server or event, one on a line");
    servers->callback([&line] { line.command = run_dlna_servers; });

    CLI::App* get = add_server_command(*dlna, line, "get", "Fetch chosen tiles of a list", run_dlna_get);
    get->add_option_function<std::string>("--select", choice_reader(line),
                                          "The tiles, such as 3-7,12; may be repeated")
        ->required()
        ->trigger_on_parse();
    get->add_option("--to", line.job.target, "The folder where the files go")->required();
    get->add_flag("--overwrite", line.dlna.overwrite, "Replace files that are there already");

    CLI::App* put = dlna->add_subcommand("put", "Send files, or what comes through a FIFO");
    put->add_option("SERVER", line.path, "Its id or its name")->required();
    put->add_option("FILE", line.dlna.files, "The files")->required();
    put->add_option("--as", line.dlna.name, "The file name that a FIFO's content gets");
    put->add_flag("--json", line.json, "One JSON object for each event, one on a line");
    put->callback([&line] {
        if (!line.dlna.name.empty() && line.dlna.files.size() > 1) {
            throw CLI::ValidationError("--as", "is for one file");
        }
        line.command = run_dlna_put;
    });

    CLI::App* bookmark = add_server_command(
        *dlna, line, "bookmark", "Print where a tile of a list was left, in seconds", run_dlna_bookmark);
    bookmark->add_option("INDEX", line.index, "List index of the tile")->required();
    bookmark->add_option("--set", line.dlna.seconds, "Keep this position first; 0 forgets it")
        ->check(CLI::Range(0, INT_MAX));
}

}  // namespace

std::optional<ExitStatus> parse_command_line(int argc, char** argv, CommandLine& command_line) {
    CLI::App app("Browse media with the QRA content agent.", "qra");
    command_line.list.extension = default_extensions(false);
    app.set_version_flag("--version", version_text());
    app.require_subcommand(1);
    app.footer(kFooter);
    add_drive_commands(app, command_line);
    add_device_commands(app, command_line);
    add_list_command(app, command_line);
    add_item_commands(app, command_line);
    add_get_command(app, command_line);
    add_package_command(app, command_line);
    add_job_commands(app, command_line);
    add_account_commands(app, command_line);
    add_playlist_commands(app, command_line);
    add_dlna_commands(app, command_line);
    add_camera_commands(app, command_line);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? ExitStatus::Success : ExitStatus::Usage;
    }
    if (command_line.list.uhd && command_line.list.extension == default_extensions(false)) {
        command_line.list.extension = default_extensions(true);
    }
    return std::nullopt;
}
