#include "platform/nubelink/host/view_tree.h"

#include <algorithm>
#include <iterator>
#include <tuple>

#include "platform/nubelink/host/item_values.h"
#include "platform/nubelink/host/text.h"
#include "platform/support/glib_ptr.h"

namespace nbl {

namespace {

constexpr char kUnknown[] = "Unknown";
constexpr char kOthers[] = "#";
constexpr char kOthersKey[] = "###";  // Longer than the letters of any title.

/// How a level of a view names the group of an item.
using Name = std::string (*)(const nbl_item_s&);
/// What the items of a group are sorted by, first of all.
using Key = std::string (*)(const nbl_item_s&);

std::string folded(std::string_view text) {
    const glib::TextPtr out(g_utf8_casefold(std::string(text).c_str(), -1));
    return out.get();
}

std::string_view title_of(const nbl_item_s& item) {
    return trimmed(item.text("dc:title"));
}

/// The first letters of the title, the first of all as a capital.
std::string first_letters(const nbl_item_s& item, glong count) {
    const std::string title(title_of(item));
    if (title.empty()) {
        return kUnknown;
    }
    const char* second = g_utf8_next_char(title.c_str());
    const glib::TextPtr capital(g_utf8_strup(title.c_str(), second - title.c_str()));
    std::string letters = capital.get();
    if (count > 1 && *second != '\0') {
        const glib::TextPtr rest(g_utf8_strdown(second, g_utf8_next_char(second) - second));
        letters += rest.get();
    }
    return letters;
}

std::string first_letter(const nbl_item_s& item) {
    return first_letters(item, 1);
}

std::string two_letters(const nbl_item_s& item) {
    return first_letters(item, 2);
}

/// Digits of "2021-05-06".
std::string digits_of_date(const nbl_item_s& item, size_t start, size_t count) {
    const std::string_view date = trimmed(item.text("dc:date"));
    if (date.size() < start + count) {
        return kUnknown;
    }
    const std::string_view digits = date.substr(start, count);
    return number_of(digits) ? std::string(digits) : kUnknown;
}

std::string year(const nbl_item_s& item) {
    return digits_of_date(item, 0, 4);
}

std::string month(const nbl_item_s& item) {
    return digits_of_date(item, 5, 2);
}

std::string known(std::string_view text) {
    text = trimmed(text);
    return text.empty() ? kUnknown : std::string(text);
}

std::string artist(const nbl_item_s& item) {
    return known(artist_of(item));
}

std::string album(const nbl_item_s& item) {
    return known(item.text("upnp:album"));
}

std::string genre(const nbl_item_s& item) {
    return known(item.text("upnp:genre"));
}

std::string no_key(const nbl_item_s&) {
    return {};
}

std::string date_key(const nbl_item_s& item) {
    return std::string(item.text("dc:date"));
}

/// The place on the album, so that it sorts as a text.
std::string track_key(const nbl_item_s& item) {
    const std::string number(trimmed(item.text("upnp:originalTrackNumber")));
    constexpr size_t kDigits = 10;
    return number.size() < kDigits ? std::string(kDigits - number.size(), '0') + number : number;
}

std::string album_and_track_key(const nbl_item_s& item) {
    return folded(item.text("upnp:album")) + '\n' + track_key(item);
}

struct ViewRules {
    View view;
    std::vector<Name> levels;
    bool by_letters;
    Key key;
};

const std::vector<ViewRules>& rules() {
    // Never destroyed, like the views: the service's thread is at work until the process is gone.
    static const auto& all = *new std::vector<ViewRules>{
        {{"I_N", "Pictures by title", NBL_ITEM_TYPE_IMAGE}, {first_letter, two_letters}, true, no_key},
        {{"I_L", "Pictures by date", NBL_ITEM_TYPE_IMAGE}, {year, month}, false, date_key},
        {{"V_T", "Videos by title", NBL_ITEM_TYPE_VIDEO}, {first_letter, two_letters}, true, no_key},
        {{"V_L", "Videos by date", NBL_ITEM_TYPE_VIDEO}, {year, month}, false, date_key},
        {{"A_M", "Music by track", NBL_ITEM_TYPE_MUSIC}, {first_letter}, true, no_key},
        {{"A_A", "Music by artist", NBL_ITEM_TYPE_MUSIC}, {artist}, false, album_and_track_key},
        {{"A_L", "Music by album", NBL_ITEM_TYPE_MUSIC}, {album}, false, track_key},
        {{"A_G", "Music by genre", NBL_ITEM_TYPE_MUSIC}, {genre}, false, no_key},
    };
    return all;
}

const ViewRules* rules_of(std::string_view id) {
    const std::string_view top = id.substr(0, id.find('/'));
    for (const ViewRules& one : rules()) {
        if (one.view.id == top) {
            return &one;
        }
    }
    return nullptr;
}

/// Groups the items of a node, and those groups in turn.
class Grouping {
public:
    explicit Grouping(const ViewRules& rules) : rules_(rules) {}

    void fill(ViewTree::Node& node, std::vector<nbl_item_t> items, size_t level) const {
        if (level == rules_.levels.size()) {
            sort(items);
            node.items = std::move(items);
            return;
        }
        std::map<std::string, Group> groups = grouped(items, level);
        Group others{kOthers, {}};
        if (rules_.by_letters && groups.size() > ViewTree::kMostLetters) {
            others = take_last(groups);
        }
        for (auto& [key, group] : groups) {
            add(node, key, std::move(group), level);
        }
        if (!others.items.empty()) {
            add(node, kOthersKey, std::move(others), level);
        }
    }

private:
    struct Group {
        std::string title;
        std::vector<nbl_item_t> items;
    };

    /// By the folded name: spellings that differ in capitals alone are one group.
    std::map<std::string, Group> grouped(const std::vector<nbl_item_t>& items, size_t level) const {
        std::map<std::string, Group> groups;
        for (nbl_item_t item : items) {
            std::string name = rules_.levels[level](*item);
            Group& group = groups[folded(name)];
            if (group.items.empty()) {
                group.title = std::move(name);
            }
            group.items.push_back(item);
        }
        return groups;
    }

    void add(ViewTree::Node& node, const std::string& key, Group group, size_t level) const {
        auto inner = std::make_unique<ViewTree::Node>();
        inner->id = node.id + "/" + key;
        inner->title = std::move(group.title);
        inner->parent = node.id;
        fill(*inner, std::move(group.items), level + 1);
        node.groups.push_back(std::move(inner));
    }

    /// Leaves one place for what it takes.
    static Group take_last(std::map<std::string, Group>& groups) {
        Group others{kOthers, {}};
        while (groups.size() >= ViewTree::kMostLetters) {
            const auto last = std::prev(groups.end());
            others.items.insert(others.items.end(), last->second.items.begin(), last->second.items.end());
            groups.erase(last);
        }
        return others;
    }

    void sort(std::vector<nbl_item_t>& items) const {
        using Keyed = std::tuple<std::string, std::string, nbl_item_t>;
        std::vector<Keyed> keyed;
        keyed.reserve(items.size());
        for (nbl_item_t item : items) {
            keyed.emplace_back(rules_.key(*item), folded(title_of(*item)), item);
        }
        std::stable_sort(keyed.begin(), keyed.end(), [](const Keyed& one, const Keyed& other) {
            return std::tie(std::get<0>(one), std::get<1>(one)) <
                   std::tie(std::get<0>(other), std::get<1>(other));
        });
        for (size_t i = 0; i < items.size(); ++i) {
            items[i] = std::get<2>(keyed[i]);
        }
    }

    const ViewRules& rules_;
};

}  // namespace

const std::vector<View>& all_views() {
    static const auto& views = *[] {
        auto* all = new std::vector<View>;
        for (const ViewRules& one : rules()) {
            all->push_back(one.view);
        }
        return all;
    }();
    return views;
}

const View* view_of(std::string_view id) {
    const ViewRules* found = rules_of(id);
    return found ? &found->view : nullptr;
}

ViewTree::ViewTree(const View& view, const std::vector<ItemPtr>& items) {
    std::vector<nbl_item_t> own;
    for (const ItemPtr& item : items) {
        if (item->type() == view.item_type) {
            items_.push_back(share(item.get()));
            own.push_back(item.get());
        }
    }
    root_.id = view.id;
    root_.title = view.title;
    root_.parent = "0";
    Grouping(*rules_of(view.id)).fill(root_, std::move(own), 0);
    enter(root_);
}

void ViewTree::enter(const Node& node) {
    nodes_[node.id] = &node;
    for (const std::unique_ptr<Node>& group : node.groups) {
        enter(*group);
    }
}

const ViewTree::Node* ViewTree::find(std::string_view id) const {
    const auto found = nodes_.find(id);
    return found == nodes_.end() ? nullptr : found->second;
}

ItemPtr ViewTree::item_of(const Node& node, nbl_provider_t provider) {
    ItemBuilder builder;
    builder.add("@id", node.id);
    builder.add("dc:title", node.title);
    builder.add("upnp:class", "object.container");
    builder.add("@parentID", node.parent);
    builder.add("@childCount", std::to_string(node.size()));
    return builder.build(NBL_ITEM_TYPE_FOLDER, provider);
}

}  // namespace nbl
