#include "platform_paths.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

namespace {

constexpr const char* kSystemDataDirectory = "/var/lib/qra-content-agent";

/// The variable's value without slashes at its end; empty where it is unset, or no absolute path.
std::string environment_directory(const char* name) {
    const char* value = std::getenv(name);
    if (value == nullptr || value[0] != '/') {
        return {};
    }
    std::string path = value;
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

std::string home_directory() {
    std::string home = environment_directory("HOME");
    if (!home.empty()) {
        return home;
    }
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr) {
        return entry.pw_dir;
    }
    return "/";
}

std::string user_data_directory() {
    std::string base = environment_directory("XDG_DATA_HOME");
    if (base.empty()) {
        const std::string home = home_directory();
        base = (home == "/" ? "" : home) + "/.local/share";
    }
    return base + "/qra-content-agent";
}

/// All processes that work together have to come to the same answer, so nothing but the environment and the
/// system's own directory decides.
std::string data_directory() {
    std::string path = environment_directory("QRA_DATA_DIR");
    if (!path.empty()) {
        return path;
    }
    if (access(kSystemDataDirectory, R_OK | W_OK | X_OK) == 0) {
        return kSystemDataDirectory;
    }
    return user_data_directory();
}

std::string directory_of(int variable) {
    std::string path;
    switch (variable) {
        case PLATFORM_PATH_USER_APP:
            path = environment_directory("QRA_APP_DIR");
            return path.empty() ? user_data_directory() + "/apps" : path;
        case PLATFORM_PATH_MEDIA_ROOT:
            path = environment_directory("QRA_MEDIA_ROOT");
            return path.empty() ? data_directory() + "/media" : path;
        case PLATFORM_PATH_DATA:
            return data_directory();
        default:
            return {};
    }
}

}  // namespace

const char* platform_path_get(int variable) {
    std::string path = directory_of(variable);
    if (path.empty()) {
        return nullptr;
    }
    // Answers stay valid for ever, also after a change of the environment. There are never more than a few.
    static std::mutex mutex;
    static auto* answers = new std::unordered_set<std::string>;
    const std::lock_guard<std::mutex> lock(mutex);
    return answers->insert(std::move(path)).first->c_str();
}
