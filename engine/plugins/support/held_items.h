#ifndef QRA_ENGINE_PLUGINS_SUPPORT_HELD_ITEMS_H
#define QRA_ENGINE_PLUGINS_SUPPORT_HELD_ITEMS_H

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "engine/plugins/support/item_text.h"
#include "engine/src/plugin.h"

namespace engine {

enum class ItemOrder { kAsItComes, kTitle, kNewestFirst };

/// The order that a list's category asks for: "...-TITLE" by name, capitals ignored, "...-DATE" the newest
/// first; anything else leaves the items as they come.
ItemOrder item_order_of(const std::string& category);

/// The word that titles have to hold, capitals ignored; an empty one is in all of them.
class TitleFilter {
public:
    explicit TitleFilter(const std::string& word);
    bool lets_pass(const std::string& title) const;
    bool is_empty() const { return folded_.empty(); }

private:
    const std::string folded_;
};

/// Items, as texts, that wait to be handed over.
class HeldItems {
public:
    explicit HeldItems(ItemOrder order) : order_(order) {}

    void add(const Item& item);
    size_t folders() const { return folders_.size(); }
    size_t media() const { return media_.size(); }

    /// Gives all to the answer, in their order, and holds none any more; ends early when `goes_on` says so.
    void hand_to(ListAnswer& answer, const std::function<bool()>& goes_on);

private:
    struct Held {
        std::string text;
        std::string name;  ///< what it is ordered by, if by name
        int64_t modified;
    };
    using Group = std::vector<Held>;
    void sort(Group& group) const;

    const ItemOrder order_;
    Group folders_;
    Group media_;
};

}  // namespace engine

#endif
