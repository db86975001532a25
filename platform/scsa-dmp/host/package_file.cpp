#include "platform/scsa-dmp/host/package_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace scsa_host {
namespace {

std::array<uint64_t, 7> facts_of(const struct stat& status) {
    const auto fact = [](auto number) { return static_cast<uint64_t>(number); };
    return {fact(status.st_dev),         fact(status.st_ino),          fact(status.st_size),
            fact(status.st_mtim.tv_sec), fact(status.st_mtim.tv_nsec), fact(status.st_ctim.tv_sec),
            fact(status.st_ctim.tv_nsec)};
}

}  // namespace

PackageFile::PackageFile(const std::string& path) {
    // A pipe in the place of a file must not hold anybody up.
    files::Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
    if (file && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode)) {
        size_ = static_cast<uint64_t>(status.st_size);
        state_ = {path, facts_of(status)};
        file_ = std::move(file);
    }
}

size_t PackageFile::read(uint64_t offset, void* out, size_t length) {
    if (offset >= size_) {
        return 0;
    }
    length = static_cast<size_t>(std::min({uint64_t{length}, size_ - offset, bytes_left_}));
    size_t done = 0;
    while (done < length && reads_left_ > 0) {
        --reads_left_;
        const ssize_t count = pread(file_.get(), static_cast<char*>(out) + done, length - done,
                                    static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            break;
        }
        done += static_cast<size_t>(count);
    }
    bytes_left_ -= done;
    return done;
}

uint64_t PackageFile::cost() const {
    return kMostBytes - bytes_left_ + static_cast<uint64_t>(kMostReads - reads_left_) * kReadCost;
}

size_t PartSource::read(uint64_t offset, void* out, size_t length) {
    if (offset >= part_.length) {
        return 0;
    }
    length = static_cast<size_t>(std::min<uint64_t>(length, part_.length - offset));
    return whole_.read(part_.offset + offset, out, length);
}

}  // namespace scsa_host
