#include "platform/media-content/host/scanner/scan_lock.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <limits>
#include <thread>

#include "platform/media-content/host/error.h"

namespace media_content {
namespace {

// A lock cannot be waited for together with a stop; this is well below what a cancel may take.
constexpr auto kRetry = std::chrono::milliseconds(20);

/// Each place locks one byte of the file, far beyond its end: nothing needs to be written, and nothing is
/// left over.
off_t byte_of(std::string_view place) {
    uint64_t hash = 14695981039346656037U;  // FNV-1a: the same in every process and build
    for (const char c : place) {
        hash = (hash ^ static_cast<unsigned char>(c)) * 1099511628211U;
    }
    return static_cast<off_t>(hash & static_cast<uint64_t>(std::numeric_limits<off_t>::max() - 1));
}

}  // namespace

ScanLock::ScanLock(const std::string& lock_file)
    : file_(open(lock_file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0644)) {
    if (!file_) {
        throw MediaError(errno == ENOSPC ? MEDIA_CONTENT_ERROR_DISK_FULL : MEDIA_CONTENT_ERROR_IO,
                         "cannot open " + lock_file + ": " + std::strerror(errno));
    }
}

bool ScanLock::take(std::string_view place, const std::atomic<bool>& stop) {
    struct flock lock {};
    lock.l_type = F_WRLCK;
    lock.l_whence = SEEK_SET;
    lock.l_start = byte_of(place);
    lock.l_len = 1;
    for (;;) {
        if (fcntl(file_.get(), F_OFD_SETLK, &lock) == 0) {
            return true;
        }
        if (errno != EAGAIN && errno != EACCES && errno != EINTR) {
            throw MediaError(MEDIA_CONTENT_ERROR_IO,
                             std::string("cannot lock a scan: ") + std::strerror(errno));
        }
        if (stop) {
            return false;
        }
        std::this_thread::sleep_for(kRetry);
    }
}

}  // namespace media_content
