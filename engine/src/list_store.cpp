#include "engine/src/list_store.h"

#include <utility>

namespace engine {

void ListStore::add(uint32_t id, uid_t user, const std::string& client, std::shared_ptr<ItemList> list) {
    const gint64 end = g_get_monotonic_time() + gint64{limits_.closed_list} * 1000;
    entries_.push_back({id, user, clients_.hold(client), std::move(list), end});
    if (entries_.size() > limits_.closed_lists) {
        entries_.pop_front();
    }
    drop_old();
}

std::shared_ptr<ItemList> ListStore::find(uint32_t id, uid_t user) const {
    for (const Entry& entry : entries_) {
        if (entry.id == id && entry.user == user) {
            return entry.list;
        }
    }
    return nullptr;
}

void ListStore::drop_client(const std::string& client) {
    entries_.remove_if([&](const Entry& entry) { return entry.hold.client() == client; });
}

void ListStore::drop_old() {
    const gint64 now = g_get_monotonic_time();
    while (!entries_.empty() && entries_.front().end <= now) {
        entries_.pop_front();
    }
    if (!entries_.empty()) {
        const auto rest = static_cast<unsigned>((entries_.front().end - now) / 1000 + 1);
        timer_.start(rest, [this] { drop_old(); });
    }
}

}  // namespace engine
