#include "apps/qra/directory_path.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "apps/qra/exit_status.h"
#include "apps/qra/terminal_text.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const std::string& path, const std::error_code& error) {
    throw CommandError(ExitStatus::RequestFailed, shown_path(path) + ": " + error.message());
}

}  // namespace

std::string existing_directory(const std::string& path) {
    std::error_code error;
    const fs::path directory = fs::canonical(path, error);
    if (!error && !fs::is_directory(directory, error) && !error) {
        error = std::make_error_code(std::errc::not_a_directory);
    }
    if (error) {
        fail(path, error);
    }
    return directory;
}

std::string readable_directory(const std::string& path) {
    const std::string directory = existing_directory(path);
    if (faccessat(AT_FDCWD, directory.c_str(), R_OK | X_OK, AT_EACCESS) != 0) {
        fail(path, {errno, std::generic_category()});
    }
    return directory;
}
