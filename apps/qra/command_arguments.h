#ifndef QRA_APPS_QRA_COMMAND_ARGUMENTS_H
#define QRA_APPS_QRA_COMMAND_ARGUMENTS_H

#include <functional>
#include <string>
#include <vector>

#include "apps/qra/command_line.h"

namespace CLI {
class App;
}

// Each puts one group of commands, with their arguments, on the command line.

void add_drive_commands(CLI::App& app, CommandLine& line);
void add_device_commands(CLI::App& app, CommandLine& line);
void add_list_command(CLI::App& app, CommandLine& line);
void add_item_commands(CLI::App& app, CommandLine& line);
void add_get_command(CLI::App& app, CommandLine& line);
void add_package_command(CLI::App& app, CommandLine& line);
void add_job_commands(CLI::App& app, CommandLine& line);
void add_account_commands(CLI::App& app, CommandLine& line);
void add_playlist_commands(CLI::App& app, CommandLine& line);
void add_dlna_commands(CLI::App& app, CommandLine& line);
void add_camera_commands(CLI::App& app, CommandLine& line);

// What several groups have in common.

inline constexpr int kLongestTimeout = 86400;

inline constexpr const char* kFooter =
    R"(Exit status: 0 success, 1 usage, 2 the request failed, 3 the engine or a service is not there.
Environment: QRA_DATA_DIR the media database's directory, QRA_MEDIA_ROOT where drives are linked,
QRA_ENGINE the content engine to start where the system has none, QRA_ACCOUNTS the file of your accounts,
QRA_LOG=warning, info or debug shows the library's log, NO_COLOR.)";

inline constexpr const char* kChoices =
    R"(What --select takes, with commas between: a list index as `qra list` shows it (3), a range (3-7, or 3- to the
end), all, a group counted from 0 (group:2), a field and a pattern of the shell (TITLE=IMG*, MEDIA_TYPE=2).
The other options choose the list, as for `qra list`.

)";

/// What parses "3-7,12" for the option or argument `name`, and adds it to `choices`.
std::function<void(const std::string&)> choice_reader(std::vector<TileChoice>& choices, const char* name);

/// The option that names a content type which the library knows.
void add_content_option(CLI::App& command, ListOptions& list, const char* help);

/// A folder of a media server, or without one the whole server in the order of the sort category.
void prepare_server_list(const CLI::App& command, ListOptions& list);

#endif
