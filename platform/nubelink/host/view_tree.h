#ifndef QRA_NUBELINK_VIEW_TREE_H
#define QRA_NUBELINK_VIEW_TREE_H

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/nubelink/host/item_record.h"

namespace nbl {

/// One of the ordered views that the service makes of a server's items.
struct View {
    std::string_view id;  ///< of its topmost container, as clients know it
    std::string_view title;
    int item_type;  ///< an nbl_item_type_e: what it shows
};

/// All of them.
const std::vector<View>& all_views();
/// The view whose topmost container, or one below it, has that id; null for other ids.
const View* view_of(std::string_view id);

/**
 * One ordered view: containers in containers, the lowest ones with items. Titles lie by their first letter
 * and below that by their first two, dates by year and month, tracks by first letter, and music by artist,
 * album or genre. Containers come in their order, and so do the items of each.
 *
 * What a letter or a date is missing lies under "Unknown". Of containers by letter only kMostLetters lie side
 * by side; the titles of further ones lie together in the last one, "#".
 *
 * Immutable; holds references to its items.
 */
class ViewTree {
public:
    static constexpr size_t kMostLetters = 200;

    struct Node {
        std::string id;
        std::string title;
        std::string parent;
        std::vector<std::unique_ptr<Node>> groups;  ///< empty where there are items
        std::vector<nbl_item_t> items;

        size_t size() const { return groups.empty() ? items.size() : groups.size(); }
    };

    /// `items` may hold others than those of the view.
    ViewTree(const View& view, const std::vector<ItemPtr>& items);

    /// Null for an id that is none of this view.
    const Node* find(std::string_view id) const;

    /// What a client sees of the node, as a container of that server.
    static ItemPtr item_of(const Node& node, nbl_provider_t provider);

private:
    void enter(const Node& node);

    std::vector<ItemPtr> items_;
    Node root_;
    std::map<std::string, const Node*, std::less<>> nodes_;
};

}  // namespace nbl

#endif
