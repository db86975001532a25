#ifndef QRA_ENGINE_ITEM_LIST_H
#define QRA_ENGINE_ITEM_LIST_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/datamodel/result_list_layout.h"
#include "engine/src/engine_limits.h"
#include "engine/src/plugin.h"
#include "engine/src/timer.h"

namespace engine {

/**
 * One list of an account: takes the plug-in's answer and keeps the item texts, folders first, then media.
 *
 * What was told cannot be taken back. Until the first section is out, the list is as long as the plug-in
 * announced or, at its end, as the items that came. From then on its length stands: what comes beyond is
 * dropped, with one log line, and the places of items that do not come hold an item of the type "empty".
 *
 * A plug-in that falls silent, goes on for too long, or sends too much, makes the list fail. For one thread.
 */
class ItemList : private ListAnswer {
public:
    enum class State { kLoading, kComplete, kFailed };

    /// The session stays open as long as it is asked.
    ItemList(std::shared_ptr<PluginSession> session, ListQuery query, const EngineLimits& limits);
    ~ItemList() override = default;
    ItemList(const ItemList&) = delete;
    ItemList& operator=(const ItemList&) = delete;

    /// Asks the plug-in, once.
    void load();

    const ListQuery& query() const { return query_; }
    State state() const { return state_; }
    const std::string& failure() const { return failure_; }  ///< why, for a person

    /// Whether total() stands, or would stand if it were told now.
    bool has_total() const {
        return is_told_ || state_ == State::kComplete || (is_announced_ && total() != 0);
    }
    size_t total() const { return folder_count() + medium_count(); }
    /// Whether all items of a range within the total are there, or never come.
    bool has(size_t first, size_t last) const;
    /// From now on the length stands.
    void tell_total();

    std::string_view text(size_t index) const;
    /// Folders, then media, each as a pair of first and last index: clients know them by their places, so
    /// that one without items is there too, with its last index one below its first.
    std::vector<_stQRAGroupEntry> groups() const;

    /// Calls `progress` at each item, at the end and at a failure, until the owner is removed. It must not
    /// add or remove owners.
    void watch(const void* owner, std::function<void()> progress) { watchers_[owner] = std::move(progress); }
    void unwatch(const void* owner) { watchers_.erase(owner); }

private:
    struct Group {
        size_t announced = 0;
        size_t told = 0;  ///< once the total was told
        std::vector<std::string> texts;
    };

    void begin(size_t folders, size_t media) override;
    void add_folder(std::string text) override { add(folders_, std::move(text)); }
    void add_medium(std::string text) override { add(media_, std::move(text)); }
    void end() override { finish(State::kComplete, {}); }
    void fail(std::string reason) override { finish(State::kFailed, std::move(reason)); }

    void add(Group& group, std::string text);
    void finish(State state, std::string failure);
    void check_deadlines();
    void progress();
    gint64 whole_end() const { return started_ + gint64{limits_.list_whole} * 1000; }

    size_t folder_count() const { return count(folders_); }
    size_t medium_count() const { return count(media_); }
    size_t count(const Group& group) const;
    static bool holds(const Group& group, size_t last) { return last < group.texts.size(); }

    const ListQuery query_;
    const EngineLimits& limits_;
    std::shared_ptr<PluginSession> session_;
    RequestPtr request_;
    State state_ = State::kLoading;
    std::string failure_;
    bool is_announced_ = false;
    bool is_told_ = false;
    Group folders_;
    Group media_;
    size_t bytes_ = 0;
    size_t dropped_ = 0;
    gint64 started_ = 0;  ///< monotonic time, microseconds, as are the others
    gint64 last_word_ = 0;
    Timer deadline_{G_PRIORITY_LOW};
    Timer release_;  ///< of the request, not from within its own call
    std::map<const void*, std::function<void()>> watchers_;
};

}  // namespace engine

#endif
