#include "platform/mtp/host/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

namespace mtp {

bool write_all(int file, const void* bytes, size_t length) {
    const char* next = static_cast<const char*>(bytes);
    while (length > 0) {
        const ssize_t written = ::write(file, next, length);
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        next += written;
        length -= static_cast<size_t>(written);
    }
    return true;
}

OutputFile::OutputFile(const char* path)
    : path_(path), file_(open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)) {}

OutputFile::~OutputFile() {
    // What was there before and is no file, such as a device node, is not ours to remove.
    struct stat status {};
    if (is_open() && !kept_ && fstat(file_.get(), &status) == 0 && S_ISREG(status.st_mode)) {
        unlink(path_.c_str());
    }
}

bool OutputFile::write(const void* bytes, size_t length) {
    return write_all(file_.get(), bytes, length);
}

bool OutputFile::keep() {
    // Some file systems tell only at a close that there is no room.
    const int copy = dup(file_.get());
    kept_ = copy >= 0 && close(copy) == 0;
    return kept_;
}

files::Descriptor nameless_file_beside(const std::string& path) {
    const size_t slash = path.rfind('/');
    const std::string directory = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    files::Descriptor file(open(directory.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (!file) {
        std::string name = path + ".XXXXXX";
        file = files::Descriptor(mkostemp(name.data(), O_CLOEXEC));
        if (file) {
            unlink(name.c_str());
        }
    }
    return file;
}

}  // namespace mtp
