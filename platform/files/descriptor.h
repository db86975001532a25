#ifndef QRA_PLATFORM_FILES_DESCRIPTOR_H
#define QRA_PLATFORM_FILES_DESCRIPTOR_H

#include <unistd.h>

#include <utility>

namespace files {

/// An open file or directory, closed at the end.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    ~Descriptor() {
        if (number_ >= 0) {
            close(number_);
        }
    }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

private:
    int number_;
};

}  // namespace files

#endif
