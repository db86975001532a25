#include "apps/qra/media_path.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "apps/qra/exit_status.h"
#include "apps/qra/media_drives.h"
#include "apps/qra/output.h"
#include "apps/qra/terminal_text.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kMostCharactersOfPath = 200;

/// For messages: printable, and short enough for a line or two.
std::string shown(const std::string& path) {
    const std::string text = printable_text(path.substr(0, kMostCharactersOfPath));
    return path.size() > kMostCharactersOfPath ? text + "..." : text;
}

}  // namespace

std::string existing_directory(const std::string& path) {
    std::error_code error;
    const fs::path directory = fs::canonical(path, error);
    if (!error && !fs::is_directory(directory, error) && !error) {
        error = std::make_error_code(std::errc::not_a_directory);
    }
    if (error) {
        throw CommandError(ExitStatus::RequestFailed, shown(path) + ": " + error.message());
    }
    return directory;
}

std::string media_path(MediaDrives& drives, const std::string& path) {
    const std::string directory = existing_directory(path);
    const std::vector<Drive> before = drives.all();
    std::string result = drives.attach(directory, "");
    const Drive drive = drives.drive_of(result);
    const bool is_new = std::none_of(before.begin(), before.end(),
                                     [&](const Drive& known) { return known.name == drive.name; });
    if (is_new) {
        print_note("attached " + shown(directory) + " as " + drive.name);
    }
    return result;
}
