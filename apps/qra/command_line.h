#ifndef QRA_APPS_QRA_COMMAND_LINE_H
#define QRA_APPS_QRA_COMMAND_LINE_H

#include <optional>
#include <string>
#include <vector>

#include "apps/qra/exit_status.h"
#include "apps/qra/list_request.h"
#include "apps/qra/tile_choice.h"

struct CommandLine;
using Command = void (*)(const CommandLine&);

/// An account of the content engine.
struct AccountOptions {
    std::string name;
    std::string plugin;
    std::string address;
    std::string user;
    bool password_from_stdin = false;
};

/// A batch job on chosen tiles.
struct JobOptions {
    std::vector<TileChoice> choices;
    std::string target;  ///< copy --to
    bool dry_run = false;
    bool yes = false;  ///< delete without asking
};

/// What is asked of devices and the engine's scans.
struct DeviceOptions {
    std::vector<std::string> types;  ///< devices; none: all
    bool watch = false;
    int timeout = 60;  ///< check-device, thumbs: seconds
    std::string content_type = "image";
    int count = 4;
};

/// A playlist, and what is to be done with it.
struct PlaylistOptions {
    std::string name;
    std::string new_name;               ///< rename
    int max_items = 100;                ///< new, import
    std::vector<std::string> files;     ///< add
    std::string list_path;              ///< add --from
    std::vector<TileChoice> positions;  ///< add --select, remove
    std::string file;                   ///< export, import
    bool internal = false;
    bool yes = false;  ///< delete without asking
};

/// A camera, and what is wanted of it.
struct CameraOptions {
    int bus = -1;  ///< this and the next: negative for any
    int device = -1;
    int folder = 0;            ///< files: 0 the whole card
    std::vector<int> ids;      ///< get, thumb
    std::string target = ".";  ///< get, thumb: --to
};

/// What is to be done with a media server.
struct DlnaOptions {
    bool overwrite = false;          ///< get
    std::vector<std::string> files;  ///< put
    std::string name;                ///< put: how the server is to call it
    std::optional<int> seconds;      ///< bookmark: to be set
    std::optional<int> wait;         ///< servers: how long to look for them, in seconds
};

/// What the user asked for. Each command uses the fields that its options fill.
struct CommandLine {
    Command command = nullptr;
    std::string path;        ///< a folder; list: a container or a media server too; dlna: a media server
    std::string drive_name;  ///< attach --as, detach
    bool recursive = false;
    bool json = false;
    bool scan_first = true;
    ListOptions list;
    int offset = 0;
    int limit = -1;  ///< negative: all
    int index = 0;
    std::vector<std::string> fields;
    AccountOptions account;  ///< of list, detail, like and comment the name alone
    std::string item_id;     ///< detail, like, comment
    std::string comment;
    bool take_like_back = false;
    int cloud_timeout = 30;  ///< lists of the engine, detail, like, comment: seconds
    JobOptions job;
    DeviceOptions devices;
    PlaylistOptions playlist;
    DlnaOptions dlna;
    CameraOptions camera;
};

/// Reads the command line. Prints help, the version, or what is wrong with the arguments.
/// @return the status to exit with at once; nothing if there is a command to run
std::optional<ExitStatus> parse_command_line(int argc, char** argv, CommandLine& command_line);

#endif
