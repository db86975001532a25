#include "apps/qra/chosen_items.h"

#include <algorithm>
#include <climits>
#include <map>
#include <string>

#include "apps/qra/exit_status.h"
#include "apps/qra/interrupt.h"
#include "apps/qra/item_value.h"

namespace {

void check(const std::string& what, qra_error_code_e code) {
    if (code != QRA_ERROR_NONE) {
        throw CommandError(ExitStatus::RequestFailed, what + ": error " + std::to_string(code));
    }
}

[[noreturn]] void fail(const std::string& message) {
    throw CommandError(ExitStatus::RequestFailed, message);
}

/// Marks the tiles that a choice means.
class Marker {
public:
    Marker(ListRequest& request, const ListOptions& options)
        : request_(request), options_(options), marks_(static_cast<std::size_t>(request.tile_count())) {}

    void operator()(const IndexChoice& choice) {
        const int count = request_.tile_count();
        const int last = choice.last == INT_MAX ? std::max(choice.first, count - 1) : choice.last;
        if (last >= count) {
            fail("there is no tile " + std::to_string(last) + ": the list has " + std::to_string(count));
        }
        for (int tile = choice.first; tile <= last; ++tile) {
            mark(tile);
        }
    }

    void operator()(const GroupChoice& choice) {
        const int groups = request_.group_count(options_);
        if (choice.group >= groups) {
            fail("there is no group " + std::to_string(choice.group) + ": the list has " +
                 std::to_string(groups));
        }
        const qra_agent_handler_h list = request_.handle();
        check("group", qra_select_group_v2(list, choice.group));
        for (int tile = 0; tile < request_.tile_count(); ++tile) {
            bool selected = false;
            if (qra_get_selected_state_v2(list, tile, &selected) == QRA_ERROR_NONE && selected) {
                mark(tile);
            }
        }
        check("group", qra_deselect_all_v2(list));
    }

    void operator()(const FieldChoice& choice) {
        for (int tile = 0; tile < request_.tile_count(); ++tile) {
            if (interrupt::requested()) {
                fail("interrupted");
            }
            request_.move_to(tile);
            const auto value = read_item_value(request_.handle(), choice.field);
            if (value && matches(choice, to_text(*value))) {
                mark(tile);
            }
        }
    }

    const std::vector<bool>& marks() const { return marks_; }

private:
    void mark(int tile) { marks_[static_cast<std::size_t>(tile)] = true; }

    ListRequest& request_;
    const ListOptions& options_;
    std::vector<bool> marks_;
};

/// The item under the cursor.
JobItem item_at_cursor(qra_agent_handler_h list, int tile) {
    JobItem item;
    item.tile = tile;
    item.media_type = static_cast<int>(read_number(list, "MEDIA_TYPE"));
    item.name = read_text(list, "DISPLAY_NAME");
    item.path = read_text(list, "FILE_PATH");
    item.size = read_number(list, "SIZE");
    item.has_time = read_item_value(list, "MODIFIED_TIME").has_value();
    return item;
}

}  // namespace

std::vector<JobItem> chosen_items(ListRequest& request, const ListOptions& options,
                                  const std::vector<TileChoice>& choices) {
    Marker marker(request, options);
    for (const TileChoice& choice : choices) {
        std::visit(marker, choice);
    }
    std::vector<JobItem> items;
    for (int tile = 0; tile < request.tile_count(); ++tile) {
        if (interrupt::requested()) {
            fail("interrupted");
        }
        if (marker.marks()[static_cast<std::size_t>(tile)]) {
            request.move_to(tile);
            items.push_back(item_at_cursor(request.handle(), tile));
        }
    }
    return items;
}

std::vector<JobItem> select_for_job(ListRequest& request, const std::vector<JobItem>& items) {
    const qra_agent_handler_h list = request.handle();
    std::map<std::string, int> tiles;
    for (const JobItem& item : items) {
        check("tile " + std::to_string(item.tile), qra_toggle_select_v2(list, item.tile));
        tiles[item.path] = item.tile;
    }
    check("navigation", qra_set_navigation_v2(list, QRA_NAVIGATION_TYPE_SELECTED));
    std::vector<JobItem> ordered;
    for (int number = 0; number < static_cast<int>(items.size()); ++number) {
        request.move_to(number);
        JobItem item = item_at_cursor(list, 0);
        item.tile = tiles.at(item.path);
        ordered.push_back(std::move(item));
    }
    return ordered;
}
