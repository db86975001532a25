#include "platform/nubelink/host/folder_end.h"

#include <algorithm>
#include <utility>

#include "platform/nubelink/host/page_memory.h"

namespace nbl {

FolderEnd::FolderEnd(Session& session, nbl_provider_t provider, std::string folder_id,
                     const std::vector<ItemPtr>& first, int64_t said, Done done)
    : session_(session),
      provider_(provider),
      folder_id_(std::move(folder_id)),
      first_(fingerprint_of(first)),
      said_(std::min(said, kMostChildren)),
      done_(std::move(done)) {
    ask();
}

int64_t FolderEnd::place() const {
    if (most_) {
        return least_ + (*most_ - least_) / 2;
    }
    return least_ == 1 ? std::max<int64_t>(said_, 1) : std::min(least_ * 2, kMostChildren);
}

void FolderEnd::ask() {
    call_ = std::make_unique<PageCall>(session_, provider_,
                                       PageSource{PageSource::Kind::kChildren, folder_id_, {}}, place(), 1,
                                       [this](Page page) { take(std::move(page)); });
}

void FolderEnd::take(Page page) {
    const std::unique_ptr<PageCall> ended = std::move(call_);
    const int64_t asked = place();
    const bool is_behind_what_is_said = !most_ && least_ == 1 && said_ > 0;
    const bool is_there = page.error == NBL_ERROR_NONE && !page.items.empty();
    // A copy: it may end this object.
    const Done done = done_;
    // Some answer with an error where there is no child.
    if (is_unanswered(page.error)) {
        done(most());
        return;
    }
    if (is_there) {
        if (fingerprint_of(page.items) == first_) {
            done(std::max(said_, least_));
            return;
        }
        least_ = asked + 1;
    } else {
        most_ = asked;
    }
    if ((is_behind_what_is_said && !is_there) || least_ >= most()) {
        done(std::min(most(), kMostChildren));
    } else {
        ask();
    }
}

}  // namespace nbl
