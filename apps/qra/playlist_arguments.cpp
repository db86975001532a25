#include <CLI/CLI.hpp>
#include <climits>

#include "apps/qra/command_arguments.h"
#include "apps/qra/commands.h"

namespace {

constexpr const char* kPlaylists =
    "DIR is any folder of the drive; the playlists lie in the drive's top directory. "
    "With --internal DIR is a folder of\n"
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

}  // namespace

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
    add->add_option_function<std::string>("--select", choice_reader(options.positions, "--select"),
                                          "Its tiles, as for `qra copy`")
        ->trigger_on_parse();
    add_content_option(*add, line.list, "Content type of the list");
    add->add_option("--sort", line.list.sort_category, "Sort category of the list")->capture_default_str();

    CLI::App* remove =
        add_playlist_command(*playlist, line, "remove", "Take items out", true, run_playlist_remove);
    remove
        ->add_option_function<std::string>("ITEMS", choice_reader(options.positions, "ITEMS"),
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
