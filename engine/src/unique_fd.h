#ifndef QRA_ENGINE_UNIQUE_FD_H
#define QRA_ENGINE_UNIQUE_FD_H

#include <unistd.h>

#include <utility>

namespace engine {

/// Owns a file descriptor; -1 is none.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    ~UniqueFd() {
        if (fd_ >= 0) {
            close(fd_);
        }
    }
    UniqueFd(UniqueFd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }

    explicit operator bool() const { return fd_ >= 0; }
    int get() const { return fd_; }

private:
    int fd_ = -1;
};

}  // namespace engine

#endif
