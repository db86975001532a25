#include "vconf.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/file.h>
#include <unistd.h>

#include <memory>
#include <string>

namespace {

constexpr char kGroup[] = "values";

struct Deleter {
    void operator()(GKeyFile* file) const { g_key_file_free(file); }
    void operator()(gchar* text) const { g_free(text); }
};
using KeyFile = std::unique_ptr<GKeyFile, Deleter>;
using Text = std::unique_ptr<gchar, Deleter>;

/// Holds the lock between programs, and between the threads of one.
class FileLock {
public:
    explicit FileLock(const std::string& path) : fd_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
        held_ = fd_ >= 0 && TEMP_FAILURE_RETRY(flock(fd_, LOCK_EX)) == 0;
    }
    ~FileLock() {
        if (fd_ >= 0) {
            close(fd_);
        }
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

    bool held() const { return held_; }

private:
    int fd_;
    bool held_;
};

const std::string& directory() {
    static const std::string path = std::string(g_get_user_config_dir()) + "/qra-content-agent";
    return path;
}

std::string file_path() {
    return directory() + "/vconf.ini";
}

/// The name as a key file can hold it.
std::string encoded(const char* key) {
    const Text text(g_uri_escape_string(key, "/", FALSE));
    return text.get();
}

/// Loads the values; an absent file counts as an empty one.
bool load(GKeyFile* file) {
    GError* error = nullptr;
    const bool loaded =
        g_key_file_load_from_file(file, file_path().c_str(), G_KEY_FILE_KEEP_COMMENTS, &error);
    const bool absent = g_error_matches(error, G_FILE_ERROR, G_FILE_ERROR_NOENT);
    g_clear_error(&error);
    return loaded || absent;
}

}  // namespace

int vconf_get_int(const char* key, int* value) {
    if (key == nullptr || *key == '\0' || value == nullptr) {
        return VCONF_ERROR_PARAM;
    }
    const KeyFile file(g_key_file_new());
    if (!load(file.get())) {
        return VCONF_ERROR_READ;
    }
    const std::string name = encoded(key);
    if (!g_key_file_has_key(file.get(), kGroup, name.c_str(), nullptr)) {
        return VCONF_ERROR_NOT_SET;
    }
    GError* error = nullptr;
    const int stored = g_key_file_get_integer(file.get(), kGroup, name.c_str(), &error);
    if (error != nullptr) {
        g_error_free(error);
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
    const FileLock lock(directory() + "/vconf.lock");
    if (!lock.held()) {
        return VCONF_ERROR_WRITE;
    }
    const KeyFile file(g_key_file_new());
    if (!load(file.get())) {
        return VCONF_ERROR_READ;
    }
    g_key_file_set_integer(file.get(), kGroup, encoded(key).c_str(), value);
    const bool saved = g_key_file_save_to_file(file.get(), file_path().c_str(), nullptr);
    return saved ? VCONF_OK : VCONF_ERROR_WRITE;
}
