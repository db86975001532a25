#ifndef QRA_SCSA_DMP_IMAGE_BYTES_H
#define QRA_SCSA_DMP_IMAGE_BYTES_H

#include <cstddef>
#include <cstdlib>
#include <memory>

namespace scsa_host {

/// A picture on its way to the caller, who frees it with free().
class ImageBytes {
public:
    /// Makes room for so many bytes and keeps those that are there; false if there is no memory.
    bool resize(size_t size) {
        void* const grown = std::realloc(bytes_.get(), size != 0 ? size : 1);
        if (!grown) {
            return false;
        }
        static_cast<void>(bytes_.release());
        bytes_.reset(static_cast<char*>(grown));
        size_ = size;
        return true;
    }
    char* data() { return bytes_.get(); }
    size_t size() const { return size_; }
    char* release() { return bytes_.release(); }

private:
    std::unique_ptr<char, decltype(&std::free)> bytes_{nullptr, &std::free};
    size_t size_ = 0;
};

}  // namespace scsa_host

#endif
