#include "platform/files/descriptor.h"

#include <unistd.h>

#include <utility>

namespace files {

Descriptor::~Descriptor() {
    if (number_ >= 0) {
        close(number_);
    }
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
}

}  // namespace files
