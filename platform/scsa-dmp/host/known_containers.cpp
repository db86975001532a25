#include "platform/scsa-dmp/host/known_containers.h"

#include <algorithm>
#include <utility>

#include "platform/scsa-dmp/host/limits.h"

namespace scsa_host {

std::shared_ptr<const ContainerDigest> KnownContainer::digest() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return digest_;
}

void KnownContainer::keep(ContainerDigest digest) {
    auto kept = std::make_shared<const ContainerDigest>(std::move(digest));
    const std::lock_guard<std::mutex> lock(mutex_);
    digest_.swap(kept);
}

bool KnownContainer::is_too_costly() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return cost_ >= kMostTextCost;
}

void KnownContainer::charge(uint64_t cost) {
    const std::lock_guard<std::mutex> lock(mutex_);
    cost_ += cost;
}

KnownContainers& KnownContainers::instance() {
    static auto* const containers = new KnownContainers;  // outlives the threads that still use it at exit
    return *containers;
}

std::shared_ptr<KnownContainer> KnownContainers::find(const FileState& state) {
    const std::lock_guard<std::mutex> lock(mutex_);
    auto it = std::find_if(known_.begin(), known_.end(),
                           [&](const auto& container) { return container->state() == state; });
    if (it == known_.end()) {
        if (known_.size() == kKnownContainers) {
            known_.erase(known_.begin());
        }
        it = known_.insert(known_.end(), std::make_shared<KnownContainer>(state));
    }
    std::rotate(it, it + 1, known_.end());
    return known_.back();
}

}  // namespace scsa_host
