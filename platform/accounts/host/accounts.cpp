#include "accounts.h"

#include <fcntl.h>
#include <glib.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <mutex>
#include <string>
#include <unordered_set>
#include <vector>

#include "platform/files/descriptor.h"
#include "platform/files/file_lock.h"
#include "platform/files/key_file.h"
#include "platform/support/glib_ptr.h"

namespace {

using files::FileLock;
using glib::KeyFilePtr;
using glib::TextPtr;

constexpr size_t kLongestName = 128;
constexpr size_t kLongestText = 4096;
constexpr off_t kLargestFile = 4 << 20;

constexpr const char* kSchemes[] = {"http", "https"};
constexpr const char* kSchemesText = "http:// or https://";

/// The texts of an account beside its name, as the key file calls them.
struct Field {
    const char* key;
    const char* account_s::*text;
    bool needed;
};
constexpr Field kFields[] = {
    {"plugin", &account_s::plugin, true},
    {"address", &account_s::address, true},
    {"user", &account_s::user, false},
    {"password", &account_s::password, false},
};

/// The directory in which another user's programs keep their settings, as far as another process can know.
std::string config_directory_of(uid_t user) {
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) {
        return {};
    }
    return std::string(entry.pw_dir) + "/.config";
}

/// Empty if that user is not known.
std::string file_path(uid_t user) {
    const char* override_path = g_getenv("QRA_ACCOUNTS");
    if (override_path != nullptr && override_path[0] == '/') {
        return override_path;
    }
    const std::string base =
        user == geteuid() ? std::string(g_get_user_config_dir()) : config_directory_of(user);
    return base.empty() ? base : base + "/qra/accounts.conf";
}

std::string directory_of(const std::string& path) {
    const TextPtr directory(g_path_get_dirname(path.c_str()));
    return directory.get();
}

/// Nobody but the user, and the administrator, may put another file in this one's place.
bool is_safe_directory(const std::string& path, uid_t user) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && (status.st_uid == user || status.st_uid == 0) &&
           (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

bool is_safe_file(int fd, uid_t user) {
    struct stat status {};
    return fstat(fd, &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == user &&
           (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

bool read_all(int fd, std::string& content) {
    struct stat status {};
    if (fstat(fd, &status) != 0 || status.st_size > kLargestFile) {
        return false;
    }
    content.resize(static_cast<size_t>(status.st_size));
    size_t filled = 0;
    while (filled < content.size()) {
        const ssize_t got = TEMP_FAILURE_RETRY(read(fd, content.data() + filled, content.size() - filled));
        if (got < 0) {
            return false;
        }
        if (got == 0) {
            break;
        }
        filled += static_cast<size_t>(got);
    }
    content.resize(filled);
    return true;
}

/// Loads the accounts of a user; an absent file counts as an empty one.
int load(GKeyFile* file, uid_t user) {
    const std::string path = file_path(user);
    if (path.empty()) {
        return ACCOUNT_OK;
    }
    const files::Descriptor stored(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (!stored) {
        return errno == ENOENT ? ACCOUNT_OK : errno == ELOOP ? ACCOUNT_ERROR_UNSAFE : ACCOUNT_ERROR_READ;
    }
    if (!is_safe_file(stored.get(), user) || !is_safe_directory(directory_of(path), user)) {
        return ACCOUNT_ERROR_UNSAFE;
    }
    std::string content;
    if (!read_all(stored.get(), content)) {
        return ACCOUNT_ERROR_READ;
    }
    const bool loaded = content.empty() || g_key_file_load_from_data(file, content.data(), content.size(),
                                                                     G_KEY_FILE_KEEP_COMMENTS, nullptr);
    return loaded ? ACCOUNT_OK : ACCOUNT_ERROR_READ;
}

bool is_clean(const char* text, size_t longest) {
    if (text == nullptr) {
        return false;
    }
    const size_t length = std::strlen(text);
    if (length > longest || !g_utf8_validate(text, static_cast<gssize>(length), nullptr)) {
        return false;
    }
    for (const char* at = text; *at != '\0'; at = g_utf8_next_char(at)) {
        if (g_unichar_iscntrl(g_utf8_get_char(at))) {
            return false;
        }
    }
    return true;
}

bool is_name(const char* name) {
    return is_clean(name, kLongestName) && *name != '\0';
}

/// An absolute URL, and none that gives user or password away wherever it is shown.
bool is_address(const char* address) {
    GUri* uri = g_uri_parse(address, G_URI_FLAGS_HAS_PASSWORD, nullptr);
    const bool good = uri != nullptr && g_uri_get_userinfo(uri) == nullptr;
    if (uri != nullptr) {
        g_uri_unref(uri);
    }
    return good;
}

bool is_account(const account_s* account) {
    if (account == nullptr || !is_name(account->name)) {
        return false;
    }
    for (const Field& field : kFields) {
        const char* text = account->*field.text;
        if (!is_clean(text, kLongestText) || (field.needed && *text == '\0')) {
            return false;
        }
    }
    return is_address(account->address);
}

/// The account's name as a key file can hold it.
std::string group_of(const char* name) {
    const TextPtr group(g_uri_escape_string(name, nullptr, FALSE));
    return group.get();
}

/// Hands the account of that group to the callback; false if it lacks what an account needs.
bool hand_out(GKeyFile* file, const char* group, account_cb callback, void* user_data, bool& go_on) {
    const TextPtr name(g_uri_unescape_string(group, nullptr));
    account_s account = {name.get(), "", "", "", ""};
    TextPtr texts[std::size(kFields)];
    for (size_t i = 0; i < std::size(kFields); ++i) {
        texts[i].reset(g_key_file_get_string(file, group, kFields[i].key, nullptr));
        if (texts[i]) {
            account.*kFields[i].text = texts[i].get();
        }
    }
    if (!is_account(&account)) {
        return false;
    }
    go_on = callback(&account, user_data);
    return true;
}

/// Runs `change` on what is stored, under the lock that keeps programs from undoing each other's changes.
template <typename Change>
int change_stored(const Change& change) {
    const std::string path = file_path(geteuid());
    const std::string directory = directory_of(path);
    if (g_mkdir_with_parents(directory.c_str(), 0700) != 0) {
        return ACCOUNT_ERROR_WRITE;
    }
    if (!is_safe_directory(directory, geteuid())) {
        return ACCOUNT_ERROR_UNSAFE;
    }
    const FileLock lock = FileLock::on_file(path + ".lock");
    if (!lock.held()) {
        return ACCOUNT_ERROR_WRITE;
    }
    const KeyFilePtr file(g_key_file_new());
    int result = load(file.get(), geteuid());
    if (result == ACCOUNT_OK) {
        result = change(file.get());
    }
    if (result == ACCOUNT_OK && !files::replace_key_file(file.get(), path, 0600)) {
        result = ACCOUNT_ERROR_WRITE;
    }
    return result;
}

}  // namespace

int account_add(const account_s* account) {
    if (!is_account(account)) {
        return ACCOUNT_ERROR_PARAM;
    }
    if (!account_knows_scheme(account->address)) {
        return ACCOUNT_ERROR_SCHEME;
    }
    return change_stored([account](GKeyFile* file) -> int {
        const std::string group = group_of(account->name);
        if (g_key_file_has_group(file, group.c_str())) {
            return ACCOUNT_ERROR_EXISTS;
        }
        for (const Field& field : kFields) {
            g_key_file_set_string(file, group.c_str(), field.key, account->*field.text);
        }
        return ACCOUNT_OK;
    });
}

int account_remove(const char* name) {
    if (!is_name(name)) {
        return ACCOUNT_ERROR_PARAM;
    }
    return change_stored([name](GKeyFile* file) -> int {
        const bool removed = g_key_file_remove_group(file, group_of(name).c_str(), nullptr);
        return removed ? ACCOUNT_OK : ACCOUNT_ERROR_NOT_FOUND;
    });
}

int account_find(uid_t user, const char* name, account_cb callback, void* user_data) {
    if (!is_name(name) || callback == nullptr) {
        return ACCOUNT_ERROR_PARAM;
    }
    const KeyFilePtr file(g_key_file_new());
    const int result = load(file.get(), user);
    if (result != ACCOUNT_OK) {
        return result;
    }
    const std::string group = group_of(name);
    if (!g_key_file_has_group(file.get(), group.c_str())) {
        return ACCOUNT_ERROR_NOT_FOUND;
    }
    bool ignored = false;
    return hand_out(file.get(), group.c_str(), callback, user_data, ignored) ? ACCOUNT_OK
                                                                             : ACCOUNT_ERROR_READ;
}

int account_foreach(account_cb callback, void* user_data) {
    if (callback == nullptr) {
        return ACCOUNT_ERROR_PARAM;
    }
    const KeyFilePtr file(g_key_file_new());
    const int result = load(file.get(), geteuid());
    if (result != ACCOUNT_OK) {
        return result;
    }
    const glib::TextsPtr groups(g_key_file_get_groups(file.get(), nullptr));
    bool go_on = true;
    for (gchar** group = groups.get(); go_on && *group != nullptr; ++group) {
        if (!hand_out(file.get(), *group, callback, user_data, go_on)) {
            return ACCOUNT_ERROR_READ;
        }
    }
    return ACCOUNT_OK;
}

bool account_knows_scheme(const char* address) {
    const char* const scheme = address != nullptr ? g_uri_peek_scheme(address) : nullptr;
    return std::any_of(std::begin(kSchemes), std::end(kSchemes),
                       [scheme](const char* known) { return g_strcmp0(scheme, known) == 0; });
}

const char* account_schemes() {
    return kSchemesText;
}

const char* account_storage(void) {
    // Answers stay valid for ever, also after a change of the environment. There are never more than a few.
    static std::mutex mutex;
    static auto* answers = new std::unordered_set<std::string>;
    const std::lock_guard<std::mutex> lock(mutex);
    return answers->insert(file_path(geteuid())).first->c_str();
}
