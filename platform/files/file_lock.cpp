#include "platform/files/file_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace files {

FileLock FileLock::on_file(const std::string& path) {
    return FileLock(open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
}

FileLock FileLock::on_directory(const std::string& path) {
    return FileLock(open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

FileLock::FileLock(int descriptor)
    : descriptor_(descriptor), held_(descriptor_ && TEMP_FAILURE_RETRY(flock(descriptor, LOCK_EX)) == 0) {}

}  // namespace files
