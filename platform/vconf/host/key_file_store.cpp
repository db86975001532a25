#include "platform/vconf/host/key_file_store.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace platform {

std::string key_file_name(const char* text, const char* allowed) {
    const KeyFileText name(g_uri_escape_string(text, allowed, FALSE));
    return name.get();
}

FileLock::FileLock(const std::string& path) : fd_(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    held_ = fd_ >= 0 && TEMP_FAILURE_RETRY(flock(fd_, LOCK_EX)) == 0;
}

FileLock::~FileLock() {
    if (fd_ >= 0) {
        close(fd_);
    }
}

bool save_key_file(GKeyFile* file, const std::string& path, int mode) {
    gsize length = 0;
    const KeyFileText text(g_key_file_to_data(file, &length, nullptr));
    constexpr auto kFlags = static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT |
                                                               G_FILE_SET_CONTENTS_ONLY_EXISTING);
    return g_file_set_contents_full(path.c_str(), text.get(), static_cast<gssize>(length), kFlags, mode,
                                    nullptr);
}

}  // namespace platform
