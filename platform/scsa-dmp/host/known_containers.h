#ifndef QRA_SCSA_DMP_KNOWN_CONTAINERS_H
#define QRA_SCSA_DMP_KNOWN_CONTAINERS_H

#include <cstdint>
#include <memory>
#include <mutex>
#include <vector>

#include "platform/scsa-dmp/host/container_digest.h"
#include "platform/scsa-dmp/host/package_file.h"

namespace scsa_host {

/// What is remembered of one state of one container from question to question. Any thread.
class KnownContainer {
public:
    explicit KnownContainer(FileState state) : state_(std::move(state)) {}

    const FileState& state() const { return state_; }

    /// What the last walk over it brought; null if that is not known.
    std::shared_ptr<const ContainerDigest> digest() const;
    void keep(ContainerDigest digest);

    /// Whether its texts have cost too much already for one more.
    bool is_too_costly() const;
    void charge(uint64_t cost);

private:
    const FileState state_;
    mutable std::mutex mutex_;
    std::shared_ptr<const ContainerDigest> digest_;  // by mutex_
    uint64_t cost_ = 0;                              // by mutex_
};

/// The containers that were asked last. Whoever asks one holds it meanwhile. Any thread.
class KnownContainers {
public:
    static KnownContainers& instance();

    /// The container of that state; a new one takes the place of the one that was not asked for longest.
    std::shared_ptr<KnownContainer> find(const FileState& state);

private:
    std::mutex mutex_;
    std::vector<std::shared_ptr<KnownContainer>> known_;  // by mutex_; the last one asked is the last
};

}  // namespace scsa_host

#endif
