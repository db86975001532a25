#include "engine/plugins/support/held_items.h"

#include <glib.h>
#include <qra/qra_types.h>

#include <algorithm>
#include <memory>
#include <string_view>
#include <utility>

#include "platform/support/glib_ptr.h"

namespace engine {

namespace {

bool ends_with(std::string_view text, std::string_view end) {
    return text.size() >= end.size() && text.substr(text.size() - end.size()) == end;
}

std::string folded(const std::string& text) {
    const glib::TextPtr fold(g_utf8_casefold(text.c_str(), -1));
    return fold.get();
}

}  // namespace

ItemOrder item_order_of(const std::string& category) {
    if (ends_with(category, "-TITLE")) {
        return ItemOrder::kTitle;
    }
    return ends_with(category, "-DATE") ? ItemOrder::kNewestFirst : ItemOrder::kAsItComes;
}

TitleFilter::TitleFilter(const std::string& word)
    : folded_(g_utf8_validate(word.c_str(), -1, nullptr) ? folded(word) : word) {}

bool TitleFilter::lets_pass(const std::string& title) const {
    return folded_.empty() || folded(title).find(folded_) != std::string::npos;
}

void HeldItems::add(const Item& item) {
    Group& group = item.media_type == QRA_MEDIA_TYPE_FOLDER ? folders_ : media_;
    const bool by_name = order_ == ItemOrder::kTitle;
    group.push_back({item_text(item), by_name ? folded(item.display_name) : "", item.modified});
}

void HeldItems::sort(Group& group) const {
    if (order_ == ItemOrder::kTitle) {
        std::stable_sort(group.begin(), group.end(),
                         [](const Held& one, const Held& other) { return one.name < other.name; });
    } else if (order_ == ItemOrder::kNewestFirst) {
        std::stable_sort(group.begin(), group.end(),
                         [](const Held& one, const Held& other) { return one.modified > other.modified; });
    }
}

void HeldItems::hand_to(ListAnswer& answer, const std::function<bool()>& goes_on) {
    const std::pair<Group*, void (ListAnswer::*)(std::string)> groups[] = {
        {&folders_, &ListAnswer::add_folder},
        {&media_, &ListAnswer::add_medium},
    };
    for (const auto& [group, add] : groups) {
        sort(*group);
        const Group items = std::exchange(*group, {});
        for (const Held& item : items) {
            if (!goes_on()) {
                return;
            }
            (answer.*add)(item.text);
        }
    }
}

}  // namespace engine
