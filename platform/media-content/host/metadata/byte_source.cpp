#include "platform/media-content/host/metadata/byte_source.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

namespace media_content {

bool ByteSource::read_block(ByteRange range, size_t limit, std::vector<uint8_t>& out) {
    out.clear();
    if (range.length > limit || range.offset > size() || range.length > size() - range.offset) {
        return false;
    }
    out.resize(static_cast<size_t>(range.length));
    if (!out.empty() && !read_exactly(range.offset, out.data(), out.size())) {
        out.clear();
        return false;
    }
    return true;
}

size_t MemorySource::read(uint64_t offset, void* out, size_t length) {
    if (offset >= size_) {
        return 0;
    }
    const size_t count = std::min(length, size_ - static_cast<size_t>(offset));
    std::memcpy(out, bytes_ + offset, count);
    return count;
}

FileSource::FileSource(const std::atomic<bool>* stop) : stop_(stop), window_(kWindowSize) {}

void FileSource::open(int descriptor, uint64_t size) {
    descriptor_ = descriptor;
    failed_ = false;
    size_ = size;
    appetite_ = kAppetite;
    windowed_ = {};
}

size_t FileSource::read(uint64_t offset, void* out, size_t length) {
    if (offset >= size_) {
        return 0;
    }
    length = static_cast<size_t>(std::min<uint64_t>(length, size_ - offset));
    if (offset < windowed_.offset || offset + length > windowed_.end()) {
        if (length > kWindowSize / 2) {
            return fetch(offset, out, length);
        }
        const auto most = static_cast<size_t>(std::min<uint64_t>(kWindowSize, size_ - offset));
        windowed_ = {offset, fetch(offset, window_.data(), most)};
        length = static_cast<size_t>(std::min<uint64_t>(length, windowed_.length));
    }
    std::memcpy(out, window_.data() + (offset - windowed_.offset), length);
    return length;
}

size_t FileSource::fetch(uint64_t offset, void* out, size_t length) {
    length = static_cast<size_t>(std::min<uint64_t>(length, appetite_));
    size_t done = 0;
    while (done < length && !(stop_ && stop_->load(std::memory_order_relaxed))) {
        const ssize_t count = pread(descriptor_, static_cast<uint8_t*>(out) + done, length - done,
                                    static_cast<off_t>(offset + done));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            failed_ = failed_ || count < 0;
            break;
        }
        done += static_cast<size_t>(count);
    }
    appetite_ -= done;
    return done;
}

}  // namespace media_content
