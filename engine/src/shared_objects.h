#ifndef QRA_ENGINE_SHARED_OBJECTS_H
#define QRA_ENGINE_SHARED_OBJECTS_H

#include <sys/types.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/files/descriptor.h"

namespace engine {

/// A shared memory object of this engine. It is unlinked at the end; who has it mapped keeps what is mapped.
class SharedObject {
public:
    SharedObject(std::string name, size_t size) : name_(std::move(name)), size_(size) {}
    ~SharedObject();
    SharedObject(SharedObject&& other) noexcept : name_(std::exchange(other.name_, {})), size_(other.size_) {}
    SharedObject& operator=(SharedObject&& other) noexcept {
        std::swap(name_, other.name_);
        std::swap(size_, other.size_);
        return *this;
    }

    /// For shm_open: a slash and less than 127 further bytes.
    const std::string& name() const { return name_; }
    size_t size() const { return size_; }

private:
    std::string name_;
    size_t size_;
};

/**
 * Makes the shared memory objects of one engine process.
 *
 * A name is "/qra_engine_", the engine's own number, "_" and a number of the object's, both drawn at random
 * (64 and 128 bits), so that none can be guessed and none collides. An engine that lives holds a lock on the
 * object "/qra_engine_NUMBER_live"; what carries the number of an engine that does not is a leftover.
 */
class SharedObjects {
public:
    /// Makes the mark of life. Without one, which is logged, nothing can be created.
    SharedObjects();
    ~SharedObjects();
    SharedObjects(const SharedObjects&) = delete;
    SharedObjects& operator=(const SharedObjects&) = delete;

    /**
     * Creates an object of the given pieces, which `reader` and nobody else but the engine's own user may
     * read. Another user is let in through an access control list; where the file system has none, an engine
     * that runs as root makes the reader the owner. Nothing, after a log line, if it cannot be made so.
     */
    std::optional<SharedObject> create(const std::vector<std::string_view>& pieces, uid_t reader) const;

    /// Unlinks what engines of the same user left that did not come to a proper end. Those that live, and
    /// what other users made, are left alone. How many objects went.
    size_t remove_leftovers() const;

private:
    std::string instance_;    ///< what all names of this engine start with, without the slash
    files::Descriptor live_;  ///< holds the lock
};

}  // namespace engine

#endif
