#ifndef QRA_NUBELINK_FOLDER_END_H
#define QRA_NUBELINK_FOLDER_END_H

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/nubelink/host/page_loop.h"

namespace nbl {

/**
 * Looks for the end of a folder whose server does not tell how many children it has, or tells it in two ways:
 * asks for single children, first behind the number that is said, then at places that double until there is
 * none, then halving what lies between.
 *
 * Lives on the worker's thread. `done` is called once, never from inside the constructor; the end of the
 * object before that calls it off.
 */
class FolderEnd {
public:
    /// What claims to have more is not asked on.
    static constexpr int64_t kMostChildren = 1'000'000;
    /// `count` is how many children there are; as much as there may be, where a question was not answered;
    /// and what is said, where nothing lies behind it or the server gives the first child for any place.
    using Done = std::function<void(int64_t count)>;

    /// `first` holds the folder's first child alone, `said` is how many there are said to be, 0 if nothing is
    /// said.
    FolderEnd(Session& session, nbl_provider_t provider, std::string folder_id,
              const std::vector<ItemPtr>& first, int64_t said, Done done);

    /// As much as there may be, from what is known so far.
    int64_t most() const { return most_.value_or(kMostChildren); }

private:
    void ask();
    void take(Page page);
    int64_t place() const;

    Session& session_;
    nbl_provider_t const provider_;
    const std::string folder_id_;
    const uint64_t first_;  ///< the first child's fingerprint
    const int64_t said_;
    const Done done_;
    int64_t least_ = 1;            ///< so many are there
    std::optional<int64_t> most_;  ///< no more than that, once a place was found empty
    std::unique_ptr<PageCall> call_;
};

}  // namespace nbl

#endif
