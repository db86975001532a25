#ifndef QRA_MEDIA_CONTENT_SCANNER_SCAN_LOCK_H
#define QRA_MEDIA_CONTENT_SCANNER_SCAN_LOCK_H

#include <atomic>
#include <string>
#include <string_view>

#include "platform/media-content/host/scanner/drive_directory.h"

namespace media_content {

/**
 * The right to scan one place, which at most one scan of all processes has. It ends with the object, and with
 * the process, however that ends.
 */
class ScanLock {
public:
    /// @param lock_file  the file that all processes share; made where there is none
    explicit ScanLock(const std::string& lock_file);

    /**
     * Waits until the right is free and takes it. False when `stop` is true before it is free.
     *
     * @param place  names the place to scan; two places may rarely share a lock, which only costs waiting
     */
    bool take(std::string_view place, const std::atomic<bool>& stop);

private:
    Descriptor file_;
};

}  // namespace media_content

#endif
