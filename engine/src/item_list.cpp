#include "engine/src/item_list.h"

#include <algorithm>
#include <utility>

#include "engine/src/engine_log.h"

namespace engine {

namespace {

/// An item of the media type "empty".
constexpr std::string_view kNoItem = "{\"MEDIA_TYPE\":14}";

constexpr char kTooLate[] = "The service did not answer in time.";

}  // namespace

ItemList::ItemList(std::shared_ptr<PluginSession> session, ListQuery query, const EngineLimits& limits)
    : query_(std::move(query)), limits_(limits), session_(std::move(session)) {}

void ItemList::load() {
    started_ = last_word_ = g_get_monotonic_time();
    check_deadlines();
    request_ = session_->list(query_, *this);
    if (!request_ && state_ == State::kLoading) {
        finish(State::kFailed, "The service does not list folders.");
    }
}

size_t ItemList::count(const Group& group) const {
    if (is_told_) {
        return group.told;
    }
    return state_ == State::kComplete ? group.texts.size() : group.announced;
}

bool ItemList::has(size_t first, size_t last) const {
    if (state_ == State::kComplete) {
        return true;
    }
    const size_t folders = folder_count();
    return (first >= folders || holds(folders_, std::min(last, folders - 1))) &&
           (last < folders || holds(media_, last - folders));
}

void ItemList::tell_total() {
    if (!is_told_) {
        folders_.told = folder_count();
        media_.told = medium_count();
        is_told_ = true;
        for (Group* group : {&folders_, &media_}) {
            const size_t surplus = group->texts.size() - std::min(group->texts.size(), group->told);
            dropped_ += surplus;
            group->texts.resize(group->texts.size() - surplus);
        }
    }
}

std::string_view ItemList::text(size_t index) const {
    const size_t folders = folder_count();
    const Group& group = index < folders ? folders_ : media_;
    const size_t place = index < folders ? index : index - folders;
    return holds(group, place) ? group.texts[place] : kNoItem;
}

std::vector<_stQRAGroupEntry> ItemList::groups() const {
    std::vector<_stQRAGroupEntry> groups;
    size_t first = 0;
    for (const size_t count : {folder_count(), medium_count()}) {
        // Of an empty group the last index is one below the first.
        groups.push_back({static_cast<int32_t>(first), static_cast<int32_t>(first + count) - 1});
        first += count;
    }
    return groups;
}

void ItemList::begin(size_t folders, size_t media) {
    if (state_ != State::kLoading || is_announced_) {
        return;
    }
    if (folders > limits_.list_items || media > limits_.list_items - folders) {
        finish(State::kFailed, "The folder holds too many items.");
        return;
    }
    folders_.announced = folders;
    media_.announced = media;
    is_announced_ = true;
    progress();
}

void ItemList::add(Group& group, std::string text) {
    if (state_ != State::kLoading) {
        return;
    }
    if (is_told_ && group.texts.size() >= group.told) {
        ++dropped_;
        last_word_ = g_get_monotonic_time();
        return;
    }
    bytes_ += text.size();
    group.texts.push_back(std::move(text));
    if (folders_.texts.size() + media_.texts.size() > limits_.list_items || bytes_ > limits_.list_bytes) {
        finish(State::kFailed, "The folder holds too many items.");
        return;
    }
    progress();
}

void ItemList::finish(State state, std::string failure) {
    if (state_ != State::kLoading) {
        return;
    }
    if (state == State::kComplete && is_told_) {
        const size_t missing = total() - folders_.texts.size() - media_.texts.size();
        if (missing + dropped_ != 0) {
            ENGINE_WARNING("list of %zu items: %zu did not come, %zu more did", total(), missing, dropped_);
        }
    }
    if (state == State::kFailed) {
        ENGINE_WARNING("list failed: %s", failure.c_str());
    }
    state_ = state;
    failure_ = std::move(failure);
    deadline_.stop();
    release_.start(0, [this] {
        request_.reset();
        session_.reset();
    });
    progress();
}

void ItemList::check_deadlines() {
    const gint64 silence_end = last_word_ + gint64{limits_.list_silence} * 1000;
    const gint64 rest = std::min(silence_end, whole_end()) - g_get_monotonic_time();
    if (rest > 0) {
        deadline_.start(static_cast<unsigned>(rest / 1000 + 1), [this] { check_deadlines(); });
    } else {
        finish(State::kFailed, kTooLate);
    }
}

void ItemList::progress() {
    last_word_ = g_get_monotonic_time();
    if (state_ == State::kLoading && last_word_ >= whole_end()) {
        finish(State::kFailed, kTooLate);  // also when the items leave the timer no time
        return;
    }
    for (const auto& [owner, watcher] : watchers_) {
        watcher();
    }
}

}  // namespace engine
