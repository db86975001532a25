#ifndef QRA_PLATFORM_FILES_FILE_LOCK_H
#define QRA_PLATFORM_FILES_FILE_LOCK_H

#include <string>

#include "platform/files/descriptor.h"

namespace files {

/**
 * Keeps writers apart, those of other programs and other threads of this one alike: making it waits until no
 * other has the lock. The lock ends with the object, and with the process, however that ends.
 */
class FileLock {
public:
    /// A lock on a file that is there for nothing else; made, readable by its owner alone, where there is
    /// none.
    static FileLock on_file(const std::string& path);

    /// A lock on a directory, which leaves nothing behind on a drive of the user. Some network file systems
    /// have none.
    static FileLock on_directory(const std::string& path);

    /// False if the lock could not be had: no such place, no rights, or a file system without locks.
    bool held() const { return held_; }

private:
    explicit FileLock(int descriptor);

    Descriptor descriptor_;
    bool held_;
};

}  // namespace files

#endif
