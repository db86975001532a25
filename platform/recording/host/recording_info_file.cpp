#include "platform/recording/host/recording_info_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace recording {
namespace {

constexpr off_t kLargestFile = 1 << 20;

struct FreeText {
    void operator()(char* text) const { g_free(text); }
};
using Text = std::unique_ptr<char, FreeText>;

bool read_whole(int descriptor, std::string& content) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > kLargestFile) {
        return false;
    }
    content.resize(static_cast<size_t>(status.st_size));
    size_t done = 0;
    while (done < content.size()) {
        const ssize_t count = TEMP_FAILURE_RETRY(read(descriptor, &content[done], content.size() - done));
        if (count <= 0) {
            return false;
        }
        done += static_cast<size_t>(count);
    }
    return true;
}

}  // namespace

std::string info_file_name(const std::string& recording) {
    const size_t slash = recording.rfind('/');
    const size_t dot = recording.rfind('.');
    const bool has_extension = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    return (has_extension ? recording.substr(0, dot) : recording) + ".inf";
}

bool InfoFile::load_beside(int directory, const std::string& name) {
    const int descriptor =
        openat(directory, info_file_name(name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW);
    if (descriptor < 0) {
        return false;
    }
    const bool loaded = load(descriptor);
    close(descriptor);
    return loaded;
}

bool InfoFile::load(int descriptor) {
    std::string content;
    if (!read_whole(descriptor, content)) {
        return false;
    }
    std::unique_ptr<GKeyFile, Deleter> file(g_key_file_new());
    if (!g_key_file_load_from_data(file.get(), content.data(), content.size(), G_KEY_FILE_NONE, nullptr)) {
        return false;
    }
    const Text group(g_key_file_get_start_group(file.get()));
    if (!group) {
        return false;
    }
    file_ = std::move(file);
    group_ = group.get();
    return true;
}

std::string InfoFile::text(const char* key) const {
    const Text value(file_ ? g_key_file_get_string(file_.get(), group_.c_str(), key, nullptr) : nullptr);
    return value ? value.get() : "";
}

int InfoFile::number(const char* key) const {
    return file_ ? g_key_file_get_integer(file_.get(), group_.c_str(), key, nullptr) : 0;
}

bool InfoFile::flag(const char* key) const {
    const std::string value = text(key);
    return value == "true" || (value != "false" && number(key) != 0);
}

}  // namespace recording
