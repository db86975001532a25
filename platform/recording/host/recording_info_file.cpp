#include "platform/recording/host/recording_info_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "platform/files/descriptor.h"

namespace recording {
namespace {

constexpr off_t kLargestFile = 1 << 20;
constexpr mode_t kRightsBits = 0777;
constexpr char kInfoExtension[] = ".inf";
constexpr char kGroupOfNewFiles[] = "recording";

bool read_whole(int descriptor, std::string& content) {
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

std::string companion_name(const std::string& recording, const char* extension) {
    const size_t slash = recording.rfind('/');
    const size_t dot = recording.rfind('.');
    const bool has_extension = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    return (has_extension ? recording.substr(0, dot) : recording) + extension;
}

std::string info_file_name(const std::string& recording) {
    return companion_name(recording, kInfoExtension);
}

InfoFile::LoadResult InfoFile::load_beside(int directory, const std::string& name) {
    const files::Descriptor descriptor(
        openat(directory, info_file_name(name).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    if (!descriptor) {
        return errno == ENOENT ? LoadResult::kAbsent : LoadResult::kUnreadable;
    }
    return load(descriptor.get());
}

InfoFile::LoadResult InfoFile::load(int descriptor) {
    struct stat status {};
    if (fstat(descriptor, &status) != 0 || !S_ISREG(status.st_mode) || status.st_size > kLargestFile) {
        return LoadResult::kUnreadable;
    }
    std::string content(static_cast<size_t>(status.st_size), '\0');
    if (!read_whole(descriptor, content)) {
        return LoadResult::kUnreadable;
    }
    constexpr auto kKeepAll =
        static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    glib::KeyFilePtr file(g_key_file_new());
    if (!g_key_file_load_from_data(file.get(), content.data(), content.size(), kKeepAll, nullptr)) {
        return LoadResult::kUnreadable;
    }
    const glib::TextPtr group(g_key_file_get_start_group(file.get()));
    if (!group) {
        return LoadResult::kUnreadable;
    }
    file_ = std::move(file);
    group_ = group.get();
    rights_ = status.st_mode & kRightsBits;
    changed_ = false;
    return LoadResult::kLoaded;
}

void InfoFile::start() {
    file_.reset(g_key_file_new());
    group_ = kGroupOfNewFiles;
    // Without a key there would be no group, and without a group no info file.
    g_key_file_set_boolean(file_.get(), group_.c_str(), "finished", FALSE);
    changed_ = true;
}

std::string InfoFile::text(const char* key) const {
    const glib::TextPtr value(file_ ? g_key_file_get_string(file_.get(), group_.c_str(), key, nullptr)
                                    : nullptr);
    return value ? value.get() : "";
}

int InfoFile::number(const char* key) const {
    return file_ ? g_key_file_get_integer(file_.get(), group_.c_str(), key, nullptr) : 0;
}

bool InfoFile::flag(const char* key) const {
    const std::string value = text(key);
    return value == "true" || (value != "false" && number(key) != 0);
}

void InfoFile::set_text(const char* key, const std::string& value) {
    if (text(key) != value) {
        g_key_file_set_string(file_.get(), group_.c_str(), key, value.c_str());
        changed_ = true;
    }
}

void InfoFile::set_number(const char* key, int value) {
    if (number(key) != value) {
        g_key_file_set_integer(file_.get(), group_.c_str(), key, value);
        changed_ = true;
    }
}

void InfoFile::set_flag(const char* key, bool value) {
    if (flag(key) != value) {
        g_key_file_set_boolean(file_.get(), group_.c_str(), key, value);
        changed_ = true;
    }
}

bool InfoFile::store_beside(const std::string& name) const {
    return files::replace_key_file(file_.get(), info_file_name(name), rights_);
}

}  // namespace recording
