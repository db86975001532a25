#include "vconf.h"

#include <glib.h>

#include <string>

#include "platform/files/file_lock.h"
#include "platform/files/key_file.h"
#include "platform/support/glib_ptr.h"

namespace {

constexpr char kGroup[] = "values";
constexpr mode_t kRights = 0666;

const std::string& directory() {
    static const std::string path = std::string(g_get_user_config_dir()) + "/qra-content-agent";
    return path;
}

std::string file_path() {
    return directory() + "/vconf.ini";
}

/// The name as a key file can hold it.
std::string encoded(const char* key) {
    const glib::TextPtr text(g_uri_escape_string(key, "/", FALSE));
    return text.get();
}

/// Loads the values; an absent file counts as an empty one.
bool load(GKeyFile* file) {
    glib::ErrorOut error;
    return g_key_file_load_from_file(file, file_path().c_str(), G_KEY_FILE_KEEP_COMMENTS, error) ||
           g_error_matches(error.get(), G_FILE_ERROR, G_FILE_ERROR_NOENT);
}

}  // namespace

int vconf_get_int(const char* key, int* value) {
    if (key == nullptr || *key == '\0' || value == nullptr) {
        return VCONF_ERROR_PARAM;
    }
    const glib::KeyFilePtr file(g_key_file_new());
    if (!load(file.get())) {
        return VCONF_ERROR_READ;
    }
    const std::string name = encoded(key);
    if (!g_key_file_has_key(file.get(), kGroup, name.c_str(), nullptr)) {
        return VCONF_ERROR_NOT_SET;
    }
    glib::ErrorOut error;
    const int stored = g_key_file_get_integer(file.get(), kGroup, name.c_str(), error);
    if (error.get() != nullptr) {
        return VCONF_ERROR_READ;
    }
    *value = stored;
    return VCONF_OK;
}

int vconf_set_int(const char* key, int value) {
    if (key == nullptr || *key == '\0') {
        return VCONF_ERROR_PARAM;
    }
    if (g_mkdir_with_parents(directory().c_str(), 0700) != 0) {
        return VCONF_ERROR_WRITE;
    }
    const auto lock = files::FileLock::on_file(directory() + "/vconf.lock");
    if (!lock.held()) {
        return VCONF_ERROR_WRITE;
    }
    const glib::KeyFilePtr file(g_key_file_new());
    if (!load(file.get())) {
        return VCONF_ERROR_READ;
    }
    g_key_file_set_integer(file.get(), kGroup, encoded(key).c_str(), value);
    return files::replace_key_file(file.get(), file_path(), kRights) ? VCONF_OK : VCONF_ERROR_WRITE;
}
