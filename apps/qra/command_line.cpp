#include "apps/qra/command_line.h"

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "apps/qra/command_arguments.h"
#include "apps/qra/commands.h"

namespace {

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

std::string version_text() {
    return "qra " + std::to_string(QRA_CONTENT_AGENT_VERSION_MAJOR) + "." +
           std::to_string(QRA_CONTENT_AGENT_VERSION_MINOR) + "." +
           std::to_string(QRA_CONTENT_AGENT_VERSION_PATCH);
}

/// Prints the help that was asked for, or what is wrong with the command line.
ExitStatus tell(const CLI::App& app, const CLI::ParseError& error) {
    const std::vector<std::string> words = app.remaining(true);
    const bool has_no_command = std::string(error.what()) == CLI::RequiredError::Subcommand(1).what();
    if (has_no_command && !words.empty()) {
        app.exit(CLI::ValidationError(words.front(), "there is no such command or option"));
        return ExitStatus::Usage;
    }
    return app.exit(error) == 0 ? ExitStatus::Success : ExitStatus::Usage;
}

}  // namespace

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
        return tell(app, error);
    }
    if (command_line.list.uhd && command_line.list.extension == default_extensions(false)) {
        command_line.list.extension = default_extensions(true);
    }
    return std::nullopt;
}
