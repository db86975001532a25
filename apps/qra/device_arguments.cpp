#include <CLI/CLI.hpp>
#include <climits>
#include <string>

#include "apps/qra/command_arguments.h"
#include "apps/qra/commands.h"
#include "apps/qra/device_view.h"

namespace {

constexpr int kLargestUsbNumber = 255;

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

void add_timeout_option(CLI::App& command, CommandLine& line) {
    command.add_option("--timeout", line.devices.timeout, "Seconds to wait for the answer")
        ->check(CLI::Range(1, kLongestTimeout))
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

/// A command on a list of a media server.
CLI::App* add_server_command(CLI::App& dlna, CommandLine& line, const char* name, const char* help,
                             Command command) {
    CLI::App* added = dlna.add_subcommand(name, help);
    added->add_option("SERVER", line.path, "Its id or its name")->required();
    added->add_option("--folder-id", line.list.folder_id,
                      "The ID_QRA of a folder, / for the top; without it the whole server");
    added->add_option("--sort", line.list.sort_category, "Sort category of the list")->capture_default_str();
    add_content_option(*added, line.list, "Content type of the list");
    added->add_option("--keyword", line.list.keyword, "What CATEGORY-KEYWORD-SEARCH looks for");
    added->add_flag("--json", line.json, "JSON objects, one on a line");
    added->callback([&line, added, command] {
        line.list.source = kServerSource;
        prepare_server_list(*added, line.list);
        line.command = command;
    });
    return added;
}

}  // namespace

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
    get->add_option_function<std::string>("--select", choice_reader(line.job.choices, "--select"),
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
